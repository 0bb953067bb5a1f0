#include "internal_error_trap.h"
#include "pgm_device.h"
#include "vek_db.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace
{

using testing::ElementsAre;

TEST(pgm_device_index, the_list_has_no_null_entry_and_no_name_twice)
{
    std::set<std::string> names;
    std::set<DEV_DEVICE_ENUM> numbers;
    for (const PGM_DEVICE* device : PGM_DEVICE_INDEX::get_device_list()) {
        ASSERT_NE(device, nullptr);
        EXPECT_TRUE(names.insert(device->name).second) << device->name;
        EXPECT_TRUE(numbers.insert(device->device).second) << device->name;
        EXPECT_FALSE(device->name.empty());
    }
}

TEST(pgm_device_index, every_device_is_found_by_each_of_its_names_and_by_its_number)
{
    for (const PGM_DEVICE* device : PGM_DEVICE_INDEX::get_device_list()) {
        EXPECT_EQ(PGM_DEVICE_INDEX::find_by_name(device->name), device);
        EXPECT_EQ(PGM_DEVICE_INDEX::find_by_name(device->user_name()), device);
        EXPECT_EQ(PGM_DEVICE_INDEX::find_by_enum(device->device), device);
    }
}

TEST(pgm_device_index, a_parallel_device_is_shown_with_a_lower_case_suffix)
{
    const PGM_DEVICE* device = PGM_DEVICE_INDEX::find_by_name("CFI_512Mb");
    ASSERT_NE(device, nullptr);
    EXPECT_EQ(device->name, "CFI_512MB");
    EXPECT_EQ(device->user_name(), "CFI_512Mb");
    EXPECT_EQ(PGM_DEVICE_INDEX::find_by_name("CFI_512MB"), device);
    EXPECT_EQ(PGM_DEVICE_INDEX::find_by_name("W25Q128JV")->user_name(), "W25Q128JV");
}

TEST(pgm_device_index, letter_case_does_not_matter_in_a_name)
{
    EXPECT_EQ(PGM_DEVICE_INDEX::find_by_name("gr5s066"), PGM_DEVICE_INDEX::find_by_name("GR5S066"));
    EXPECT_NE(PGM_DEVICE_INDEX::find_by_name("gr5s066"), nullptr);
}

TEST(pgm_device_index, an_unknown_name_or_number_gives_no_device)
{
    EXPECT_EQ(PGM_DEVICE_INDEX::find_by_name(""), nullptr);
    EXPECT_EQ(PGM_DEVICE_INDEX::find_by_name("GR5S06"), nullptr);
    EXPECT_EQ(PGM_DEVICE_INDEX::find_by_enum(DEV_DEVICE_NONE), nullptr);
    EXPECT_EQ(PGM_DEVICE_INDEX::find_by_enum(static_cast<DEV_DEVICE_ENUM>(399)), nullptr);
    EXPECT_EQ(PGM_DEVICE_INDEX::find_by_enum(static_cast<DEV_DEVICE_ENUM>(4'000'000'000U)), nullptr);
}

TEST(pgm_device_index, only_devices_that_are_marked_refuse_to_be_listed)
{
    std::vector<std::string> asked;
    std::vector<std::string> refused;
    for (const PGM_DEVICE* device : PGM_DEVICE_INDEX::get_device_list()) {
        if (device->ask_not_listed) {
            asked.push_back(device->name);
        }
        if (device->is_dev_not_listed()) {
            refused.push_back(device->name);
            EXPECT_TRUE(device->ask_not_listed) << device->name;
        }
    }
    // Samples are marked and yet listed.
    EXPECT_THAT(asked, ElementsAre("BS1L03", "CA3M210ES", "ZR9A012ES", "ASC4"));
    EXPECT_THAT(refused, ElementsAre("BS1L03", "ASC4"));
}

TEST(pgm_device_index, only_devices_that_are_marked_have_no_programmer_file)
{
    std::vector<std::string> refused;
    for (const PGM_DEVICE* device : PGM_DEVICE_INDEX::get_device_list()) {
        EXPECT_EQ(device->ask_no_pof, device->is_dev_no_pof()) << device->name;
        if (device->is_dev_no_pof()) {
            refused.push_back(device->name);
        }
    }
    EXPECT_THAT(refused, ElementsAre("DL2E20J", "ASC256J"));
}

TEST(pgm_device_index, a_serial_configuration_device_must_be_made_and_be_known_to_a_loader)
{
    const PGM_DEVICE* current = PGM_DEVICE_INDEX::find_by_name("ASC64");
    const PGM_DEVICE* withdrawn = PGM_DEVICE_INDEX::find_by_name("ASC4");
    const PGM_DEVICE* without_loader = PGM_DEVICE_INDEX::find_by_name("ASC1");
    EXPECT_TRUE(PGM_DEVICE_INDEX::enable_asc_device(current, true, true));
    EXPECT_FALSE(PGM_DEVICE_INDEX::enable_asc_device(withdrawn, true, true));
    EXPECT_TRUE(PGM_DEVICE_INDEX::enable_asc_device(withdrawn, false, true));
    EXPECT_FALSE(PGM_DEVICE_INDEX::enable_asc_device(without_loader, true, true));
    EXPECT_TRUE(PGM_DEVICE_INDEX::enable_asc_device(without_loader, true, false));
    EXPECT_FALSE(
        PGM_DEVICE_INDEX::enable_asc_device(PGM_DEVICE_INDEX::find_by_name("W25Q128JV"), false, false));
    EXPECT_INTERNAL_ERROR(PGM_DEVICE_INDEX::enable_asc_device(nullptr, true, true), "device");
}

TEST(pgm_device_index, the_special_family_has_devices_on_either_side_of_the_test)
{
    std::vector<std::string> special;
    std::vector<std::string> others;
    for (const PGM_DEVICE* device : PGM_DEVICE_INDEX::get_device_list()) {
        EXPECT_EQ(PGM_DEVICE_INDEX::is_tsu_tessel_device(device),
                  PGM_DEVICE_INDEX::is_tsu_tessel_device(device->name));
        if (device->family == DEV_FAMILY_SPECIAL_FLASH) {
            (PGM_DEVICE_INDEX::is_tsu_tessel_device(device) ? special : others).push_back(device->name);
        } else {
            EXPECT_FALSE(PGM_DEVICE_INDEX::is_tsu_tessel_device(device)) << device->name;
        }
    }
    EXPECT_THAT(special, ElementsAre("TSU128", "TSU512"));
    EXPECT_THAT(others, ElementsAre("KELT64", "KELT256"));
    EXPECT_FALSE(PGM_DEVICE_INDEX::is_tsu_tessel_device("TSU9"));
    EXPECT_FALSE(PGM_DEVICE_INDEX::is_tsu_tessel_device(static_cast<const PGM_DEVICE*>(nullptr)));
}

TEST(pgm_device_index, a_data_flash_is_no_configuration_flash)
{
    const PGM_DEVICE* device = PGM_DEVICE_INDEX::find_by_name("AT45DB641E");
    ASSERT_NE(device, nullptr);
    EXPECT_EQ(device->family, DEV_FAMILY_SERIAL_A);
    EXPECT_NE(device->device_class, 19U);
    EXPECT_EQ(DEV_CLASS_CONFIG_FLASH, 19U);
    for (const PGM_DEVICE* other : PGM_DEVICE_INDEX::get_device_list()) {
        const bool serial =
            VEK_DB_UTIL::is_configuration_family(other->family) && other->family != DEV_FAMILY_CFI_FLASH;
        EXPECT_EQ(other->device_class == DEV_CLASS_CONFIG_FLASH, serial && other != device) << other->name;
    }
}

TEST(pgm_device_index, the_list_can_be_overridden_even_with_a_null_entry)
{
    const PGM_DEVICE* device = PGM_DEVICE_INDEX::find_by_name("BS1L06");
    PGM_DEVICE_INDEX::override_device_list(std::vector<const PGM_DEVICE*>{device, nullptr});
    EXPECT_THAT(PGM_DEVICE_INDEX::get_device_list(), ElementsAre(device, nullptr));
    PGM_DEVICE_INDEX::override_device_list(std::nullopt);
    EXPECT_GT(PGM_DEVICE_INDEX::get_device_list().size(), 90U);
}

/// What a family combo is filled from: families of listed devices that can be configured.
TEST(pgm_device_index, eight_families_have_devices_to_offer)
{
    std::set<std::string> names;
    for (const PGM_DEVICE* device : PGM_DEVICE_INDEX::get_device_list()) {
        if ((device->ask_not_listed && device->is_dev_not_listed()) ||
            (device->ask_no_pof && device->is_dev_no_pof()) ||
            !VEK_DB_UTIL::is_supported_family(device->family) || device->family == DEV_FAMILY_NOT_OFFERED) {
            continue;
        }
        names.insert(dstr_get_user_string(device->family));
    }
    EXPECT_THAT(names, ElementsAre("Basalt", "Calcite", "Dolomite", "Feldspar", "Granite", "Gypsum",
                                   "Hematite", "Zircon"));
}

} // namespace
