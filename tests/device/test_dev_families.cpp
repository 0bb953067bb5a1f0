#include "family_traits.h"
#include "internal_error_trap.h"
#include "pgm_device.h"
#include "vek_db.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>

namespace
{

using testing::ElementsAre;

TEST(dev_families, the_numbers_are_those_of_the_device_database)
{
    EXPECT_THAT(DEV_FAMILY_MANAGER().families(),
                ElementsAre(5, 10, 12, 16, 23, 25, 26, 28, 33, 40, 47, 48, 68, 71));
    EXPECT_EQ(DEV_FAMILY_NONE, 72U);
    EXPECT_EQ(DEV_FAMILY_DEFAULT_CHOICE, 48U);
    EXPECT_EQ(DEV_FAMILY_NOT_OFFERED, 47U);
    EXPECT_EQ(DEV_FAMILY_ONCHIP_FLASH, 71U);
    EXPECT_EQ(DEV_FAMILY_MULTI_FILE, 16U);
    EXPECT_THAT(DEV_FAMILY_SECURE_GROUP, ElementsAre(23, 28, 48));
}

TEST(dev_families, a_name_passes_through_both_conversions_unchanged)
{
    for (const DEV_FAMILY_ENUM family : DEV_FAMILY_MANAGER().families()) {
        EXPECT_EQ(dstr_get_dev_family_enum_by_string(dstr_get_user_string(family)), family);
    }
    EXPECT_EQ(dstr_get_user_string(DEV_FAMILY_GRANITE), "Granite");
    EXPECT_EQ(dstr_get_user_string(DEV_FAMILY_DEFAULT_CHOICE), "Zircon");
}

TEST(dev_families, letter_case_does_not_matter_in_a_family_name)
{
    EXPECT_EQ(dstr_get_dev_family_enum_by_string("gRANITE"), DEV_FAMILY_GRANITE);
}

TEST(dev_families, a_text_that_is_no_family_gives_none)
{
    for (const char* text : {"", " ", "Granit", "Granite ", "None", "Unknown", "33"}) {
        EXPECT_EQ(dstr_get_dev_family_enum_by_string(text), DEV_FAMILY_NONE) << text;
    }
    EXPECT_EQ(dstr_get_user_string(DEV_FAMILY_NONE), "None");
    EXPECT_EQ(dstr_get_user_string(static_cast<DEV_FAMILY_ENUM>(99)), "Unknown");
}

TEST(dev_families, the_secure_group_is_told_from_the_others)
{
    std::vector<unsigned> secure;
    for (unsigned family = 0; family <= DEV_FAMILY_NONE; ++family) {
        if (dev_family_is_secure(static_cast<DEV_FAMILY_ENUM>(family))) {
            secure.push_back(family);
        }
    }
    EXPECT_THAT(secure, ElementsAre(23, 28, 48));
}

std::string masks(DEV_FAMILY_ENUM family, DEV_DEVICE_ENUM device = DEV_DEVICE_NONE)
{
    unsigned mode_mask_a = 0;
    unsigned mode_mask_b = 0;
    unsigned output_file_mask = 0;
    get_family_pcf_info(family, device, mode_mask_a, mode_mask_b, output_file_mask);
    char text[64];
    std::snprintf(text, sizeof text, "%08X %08X %08X", mode_mask_a, mode_mask_b, output_file_mask);
    return text;
}

TEST(dev_families, each_family_has_these_masks)
{
    // Modes a: 0 PS, 6 FPP, 7 AS, 13 AS x4. Modes b: 14 to 19 on-chip, 20 to 22 LNKS. Then the output types.
    EXPECT_EQ(masks(DEV_FAMILY_BASALT), "000020C1 00000000 01200F1F");
    EXPECT_EQ(masks(DEV_FAMILY_CALCITE), "000020C1 00000000 01201F3F");
    EXPECT_EQ(masks(DEV_FAMILY_DOLOMITE), "000000C1 00000000 01200F1F");
    EXPECT_EQ(masks(DEV_FAMILY_FELDSPAR), "00002080 00700000 21200F3D");
    EXPECT_EQ(masks(DEV_FAMILY_HEMATITE), "00002080 00700000 21200F3D");
    EXPECT_EQ(masks(DEV_FAMILY_GRANITE), "000020C1 00000000 05275F7F");
    EXPECT_EQ(masks(DEV_FAMILY_ONYX), "000020C1 00000000 01200F1F");
    EXPECT_EQ(masks(DEV_FAMILY_ZIRCON), "00002080 00700000 25278FBD");
    EXPECT_EQ(masks(DEV_FAMILY_GYPSUM), "00000000 000FC000 01200F10");
}

TEST(dev_families, a_device_narrows_the_modes_of_its_family)
{
    const auto number = [](const char* name) { return PGM_DEVICE_INDEX::find_by_name(name)->device; };
    EXPECT_EQ(masks(DEV_FAMILY_BASALT, number("BS1L06")), "00002081 00000000 01200F1F");
    EXPECT_EQ(masks(DEV_FAMILY_BASALT, number("BS1L15")), masks(DEV_FAMILY_BASALT));
    EXPECT_EQ(masks(DEV_FAMILY_FELDSPAR, number("FD7X120")), "00002080 00300000 21200F3D");
    EXPECT_EQ(masks(DEV_FAMILY_GYPSUM, number("GY1M02")), "00000000 0007C000 01200F10");
}

TEST(dev_families, a_device_of_another_family_or_an_unknown_one_narrows_nothing)
{
    EXPECT_EQ(masks(DEV_FAMILY_GRANITE, PGM_DEVICE_INDEX::find_by_name("BS1L06")->device),
              masks(DEV_FAMILY_GRANITE));
    EXPECT_EQ(masks(DEV_FAMILY_BASALT, static_cast<DEV_DEVICE_ENUM>(399)), masks(DEV_FAMILY_BASALT));
}

TEST(dev_families, the_masks_of_no_family_are_an_internal_error)
{
    EXPECT_INTERNAL_ERROR(masks(DEV_FAMILY_NONE), "family is in table");
    EXPECT_INTERNAL_ERROR(masks(static_cast<DEV_FAMILY_ENUM>(6)), "family is in table");
}

TEST(dev_families, every_family_that_is_offered_has_an_enabled_mode)
{
    for (const DEV_FAMILY_ENUM family : DEV_FAMILY_MANAGER().families()) {
        if (!VEK_DB_UTIL::is_supported_family(family)) {
            continue;
        }
        unsigned a = 0;
        unsigned b = 0;
        unsigned outputs = 0;
        get_family_pcf_info(family, DEV_DEVICE_NONE, a, b, outputs);
        unsigned enabled = 0;
        for (const PGMIO_CONFIG_SCHEME mode : VEK_DB_UTIL::get_enabled_config_modes()) {
            enabled |= 1U << (mode % 32U);
        }
        EXPECT_NE((a | b) & enabled, 0U) << dstr_get_user_string(family);
        EXPECT_NE(outputs, 0U) << dstr_get_user_string(family);
    }
}

} // namespace
