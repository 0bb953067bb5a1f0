#include "cfg.h"
#include "flash_offer.h"
#include "pgm_device.h"
#include "vek_db.h"

#include <gtest/gtest.h>

namespace
{

/// The two keys of the special family and the one of the largest parallel flash.
struct KEYS {
    bool cfi4g = false;
    bool kelt = true;
    bool tessel = false;
};

/// What is offered as the carrier of a flash image in a mode, in the order of the device list.
std::string offered(PGMIO_CONFIG_SCHEME mode, const KEYS& keys = {})
{
    cfg_override("pgm_allow_cfi4g", keys.cfi4g ? "on" : "off");
    cfg_override("PGM_ALLOW_KELT_DEVICE", keys.kelt ? "on" : "off");
    cfg_override("PGM_ALLOW_TESSEL_DEVICE", keys.tessel ? "on" : "off");
    const std::vector<DEV_FAMILY_ENUM> families = VEK_DB::get_config_device_family(mode);
    std::string names;
    for (const PGM_DEVICE* device : PGM_DEVICE_INDEX::get_device_list()) {
        if (flash_device_is_offered(*device, families)) {
            names += (names.empty() ? "" : " ") + device->user_name();
        }
    }
    cfg_clear_overrides();
    return names;
}

const std::string PARALLEL = "CFI_16Mb CFI_32Mb CFI_64Mb CFI_128Mb CFI_256Mb CFI_512Mb CFI_1Gb CFI_2Gb";

TEST(add_device_offer, passive_modes_offer_parallel_flash)
{
    EXPECT_EQ(offered(PGMIO_CONFIG_SCHEME_PS), PARALLEL);
    EXPECT_EQ(offered(PGMIO_CONFIG_SCHEME_FPP), PARALLEL);
}

TEST(add_device_offer, the_largest_parallel_flash_needs_its_key)
{
    EXPECT_EQ(offered(PGMIO_CONFIG_SCHEME_FPP, {.cfi4g = true}), PARALLEL + " CFI_4Gb");
}

TEST(add_device_offer, active_serial_modes_offer_serial_flash)
{
    const std::string expected =
        "ASC16 ASC64 ASC128 W25Q16JV W25Q32JV W25Q64JV W25Q128JV W25Q256JV W25Q512JV MX25L6433F MX25L12833F "
        "MX25L25645G MX25L51245G MX66L1G45G MX66L2G45G MT25QL128 MT25QL256 MT25QL512 MT25QL01G MT25QL02G "
        "IS25LP064 "
        "IS25LP128 IS25LP256 IS25LP512M GD25Q64C GD25Q127C GD25Q256D S25FL064L S25FL128L S25FL256L W25Q64JW "
        "W25Q128JW "
        "W25Q256JW W25Q512NW MX25U6435F MX25U12835F MX25U25645G MX25U51245G MX66U1G45G MX66U2G45G MT25QU128 "
        "MT25QU256 "
        "MT25QU512 MT25QU01G MT25QU02G IS25WP064 IS25WP128 IS25WP256 IS25WP512M GD25LQ64C GD25LQ128D "
        "GD25LQ256D TSU128 "
        "TSU512";
    EXPECT_EQ(offered(PGMIO_CONFIG_SCHEME_AS), expected);
    EXPECT_EQ(offered(PGMIO_CONFIG_SCHEME_AS_X4), expected);
}

TEST(add_device_offer, the_keys_of_the_special_family_look_crossed)
{
    EXPECT_EQ(offered(PGMIO_CONFIG_SCHEME_LNKS_X8), "TSU128 TSU512 " + PARALLEL);
    EXPECT_EQ(offered(PGMIO_CONFIG_SCHEME_LNKS_X8, {.kelt = false, .tessel = true}),
              "KELT64 KELT256 " + PARALLEL);
    EXPECT_EQ(offered(PGMIO_CONFIG_SCHEME_LNKS_X8, {.kelt = true, .tessel = true}),
              "TSU128 TSU512 KELT64 KELT256 " + PARALLEL);
    EXPECT_EQ(offered(PGMIO_CONFIG_SCHEME_LNKS_X8, {.kelt = false, .tessel = false}), PARALLEL);
}

TEST(add_device_offer, without_a_key_the_special_devices_are_offered_and_the_largest_parallel_flash_is_not)
{
    const auto is_offered = [](const char* name) {
        return flash_device_is_offered(*PGM_DEVICE_INDEX::find_by_name(name),
                                       {DEV_FAMILY_CFI_FLASH, DEV_FAMILY_SPECIAL_FLASH});
    };
    EXPECT_TRUE(is_offered("TSU128"));
    EXPECT_FALSE(is_offered("KELT64"));
    EXPECT_TRUE(is_offered("CFI_2Gb"));
    EXPECT_FALSE(is_offered("CFI_4Gb"));
}

TEST(add_device_offer, the_internal_mode_offers_nothing)
{
    EXPECT_EQ(offered(PGMIO_CONFIG_SCHEME_INTERNAL), "");
}

} // namespace
