#include "cfg.h"
#include "database_words.h"
#include "internal_error_trap.h"
#include "vek_db.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>

namespace
{

using testing::ElementsAre;
using testing::IsEmpty;

TEST(vek_db, the_numbers_of_the_file_types_are_those_of_saved_masks)
{
    EXPECT_EQ(VEK_HEX_FILE_TYPE, 2U);
    EXPECT_EQ(VEK_POF_FILE_TYPE, 4U);
    EXPECT_EQ(VEK_RPD_FILE_TYPE, 8U);
    EXPECT_EQ(VEK_CVP_GROUP_FILE_TYPE, 14U);
    EXPECT_EQ(VEK_HPS_GROUP_FILE_TYPE, 15U);
    EXPECT_EQ(VEK_PERIPH_JIC_FILE_TYPE, 16U);
    EXPECT_EQ(VEK_PERIPH_POF_FILE_TYPE, 17U);
    EXPECT_EQ(VEK_PERIPH_RBF_FILE_TYPE, 18U);
    EXPECT_EQ(VEK_SEC_RPD_FILE_TYPE, 21U);
    EXPECT_EQ(VEK_SVF_FILE_TYPE, 24U);
    EXPECT_EQ(VEK_PERIPH_RPD_FILE_TYPE, 26U);
    EXPECT_EQ(VEK_INVALID_FILE_TYPE, 32U);
}

TEST(vek_db, the_keys_are_all_thirty_types_in_ascending_order)
{
    const std::vector<VEK_FILE_TYPE> keys = VEK_DB::get_all_output_file_type_keys();
    ASSERT_EQ(keys.size(), 30U);
    for (unsigned value = 0; value < keys.size(); ++value) {
        EXPECT_EQ(keys[value], value);
    }
}

TEST(vek_db, a_key_outside_its_table_is_an_internal_error)
{
    EXPECT_INTERNAL_ERROR(VEK_DB::get_description(VEK_INVALID_FILE_TYPE), "key is in table");
    EXPECT_INTERNAL_ERROR(VEK_DB::get_enabled(static_cast<VEK_FILE_TYPE>(30)), "key is in table");
    EXPECT_INTERNAL_ERROR(
        VEK_DB::supports_excluded_family(static_cast<VEK_FILE_TYPE>(1000), DEV_FAMILY_BASALT),
        "key is in table");
    EXPECT_INTERNAL_ERROR(VEK_DB::get_config_device_family(static_cast<PGMIO_CONFIG_SCHEME>(26)),
                          "key is in table");
    EXPECT_INTERNAL_ERROR(VEK_DB::get_enabled(VEK_CMD_PARAM_MAX), "key is in table");
    EXPECT_INTERNAL_ERROR(VEK_DB_UTIL::get_common_input_file_types({VEK_INVALID_FILE_TYPE}),
                          "key is in table");
    EXPECT_INTERNAL_ERROR(VEK_DB_UTIL::param_enabled_by_ini(VEK_CMD_PARAM_MAX), "key is in table");
}

TEST(vek_db, every_type_comes_back_from_its_word)
{
    for (const VEK_FILE_TYPE type : VEK_DB::get_all_output_file_type_keys()) {
        EXPECT_EQ(VEK_DB_UTIL::get_vek_file_type_enum(VEK_DB::get_xml_enum(type)), type) << word(type);
    }
}

TEST(vek_db, the_words_of_the_types_are_those_of_the_document)
{
    EXPECT_EQ(VEK_DB::get_xml_enum(VEK_HEX_FILE_TYPE), 306U);
    EXPECT_EQ(VEK_DB::get_xml_enum(VEK_CVP_GROUP_FILE_TYPE), 378U);
    EXPECT_EQ(VEK_DB::get_xml_enum(VEK_HPS_GROUP_FILE_TYPE), 379U);
    EXPECT_EQ(
        joined(VEK_DB::get_all_output_file_type_keys()),
        "RBF TTF HEX JIC POF PRRBF CVP_CORE_RBF HPS_CORE_RBF RPD MAP JAM JBC EKP QSPI_HELPER_RBF CVP_GROUP "
        "HPS_GROUP PERIPH_JIC PERIPH_POF PERIPH_RBF HELPER_RBF HELPER_RBF_CMD SEC_RPD SOF PUF SVF WKEY "
        "PERIPH_RPD CCERT NON_JTAG_PROVISION_RBF RIM");
}

TEST(vek_db, a_word_that_names_no_type_gives_the_invalid_type)
{
    EXPECT_EQ(VEK_DB_UTIL::get_vek_file_type_enum(PGM_COMMON_XML_ENUM_SETTINGS), VEK_INVALID_FILE_TYPE);
    EXPECT_EQ(VEK_DB_UTIL::get_vek_file_type_enum(PGM_COMMON_XML_ENUM__INVALID__), VEK_INVALID_FILE_TYPE);
}

TEST(vek_db, the_modes_stand_in_the_order_of_the_combo)
{
    EXPECT_THAT(VEK_DB_UTIL::get_enabled_config_modes(), ElementsAre(7, 13, 0, 6, 20, 21, 22, 14));
    EXPECT_EQ(joined(VEK_DB_UTIL::get_enabled_config_modes()),
              "ASX1 ASX4 PS FPP LNKSX8 LNKSX16 LNKSX32 INTERNAL");
}

TEST(vek_db, every_enabled_mode_comes_back_from_its_word)
{
    for (const PGMIO_CONFIG_SCHEME mode : VEK_DB_UTIL::get_enabled_config_modes()) {
        EXPECT_EQ(VEK_DB_UTIL::get_config_scheme_enum(VEK_DB::get_xml_enum(mode)), mode);
    }
    EXPECT_EQ(VEK_DB_UTIL::get_config_scheme_enum(PGM_COMMON_XML_ENUM_RBF), PGMIO_CONFIG_SCHEME_ILLEGAL);
    EXPECT_EQ(VEK_DB_UTIL::get_config_scheme_enum(PGM_COMMON_XML_ENUM__INVALID__),
              PGMIO_CONFIG_SCHEME_ILLEGAL);
}

TEST(vek_db, the_schemes_of_an_on_chip_file_stand_as_internal)
{
    for (unsigned mode = 15; mode <= 19; ++mode) {
        EXPECT_EQ(word(static_cast<PGMIO_CONFIG_SCHEME>(mode)), "INTERNAL");
    }
    EXPECT_EQ(VEK_DB_UTIL::get_config_scheme_enum(PGM_COMMON_XML_ENUM_INTERNAL),
              PGMIO_CONFIG_SCHEME_INTERNAL);
}

TEST(vek_db, a_mode_without_a_word_is_an_internal_error)
{
    EXPECT_INTERNAL_ERROR(VEK_DB::get_xml_enum(PGMIO_CONFIG_SCHEME_SDMMC_X4), "mode has a document word");
    EXPECT_INTERNAL_ERROR(VEK_DB::get_xml_enum(PGMIO_CONFIG_SCHEME_ILLEGAL), "mode has a document word");
}

TEST(vek_db, the_illegal_scheme_offers_nothing)
{
    EXPECT_THAT(VEK_DB::get_config_device_family(PGMIO_CONFIG_SCHEME_ILLEGAL), IsEmpty());
    for (const VEK_FILE_TYPE type : VEK_DB::get_all_output_file_type_keys()) {
        EXPECT_FALSE(VEK_DB::supports_output_file_type(PGMIO_CONFIG_SCHEME_ILLEGAL, type));
    }
}

TEST(vek_db, each_mode_has_its_flash_families)
{
    EXPECT_THAT(VEK_DB::get_config_device_family(PGMIO_CONFIG_SCHEME_PS), ElementsAre(40));
    EXPECT_THAT(VEK_DB::get_config_device_family(PGMIO_CONFIG_SCHEME_FPP), ElementsAre(40));
    EXPECT_THAT(VEK_DB::get_config_device_family(PGMIO_CONFIG_SCHEME_AS), ElementsAre(10, 25, 26, 68));
    EXPECT_THAT(VEK_DB::get_config_device_family(PGMIO_CONFIG_SCHEME_AS_X4), ElementsAre(10, 25, 26, 68));
    for (const unsigned lnks : {20U, 21U, 22U}) {
        EXPECT_THAT(VEK_DB::get_config_device_family(static_cast<PGMIO_CONFIG_SCHEME>(lnks)),
                    ElementsAre(40, 68));
    }
    EXPECT_THAT(VEK_DB::get_config_device_family(PGMIO_CONFIG_SCHEME_INTERNAL), ElementsAre(71));
    EXPECT_THAT(VEK_DB::get_config_device_family(PGMIO_CONFIG_SCHEME_AP), IsEmpty());
}

TEST(vek_db, the_empty_list_has_nothing_in_common)
{
    EXPECT_THAT(VEK_DB_UTIL::get_common_file_categories({}), IsEmpty());
    EXPECT_THAT(VEK_DB_UTIL::get_common_input_file_types({}), IsEmpty());
    EXPECT_THAT(VEK_DB_UTIL::get_common_config_device_families({}), IsEmpty());
    EXPECT_THAT(VEK_DB_UTIL::get_primary_file_types({}), IsEmpty());
}

TEST(vek_db, types_share_the_categories_that_all_of_them_have)
{
    EXPECT_THAT(VEK_DB_UTIL::get_common_file_categories({VEK_RPD_FILE_TYPE}), ElementsAre(1, 13));
    EXPECT_THAT(VEK_DB_UTIL::get_common_file_categories({VEK_RPD_FILE_TYPE, VEK_POF_FILE_TYPE}),
                ElementsAre(1));
    EXPECT_THAT(VEK_DB_UTIL::get_common_file_categories({VEK_RBF_FILE_TYPE, VEK_SVF_FILE_TYPE}),
                ElementsAre(0));
    EXPECT_THAT(VEK_DB_UTIL::get_common_file_categories({VEK_RBF_FILE_TYPE, VEK_POF_FILE_TYPE}), IsEmpty());
    EXPECT_THAT(VEK_DB_UTIL::get_common_file_categories({VEK_PERIPH_POF_FILE_TYPE, VEK_PERIPH_RPD_FILE_TYPE}),
                ElementsAre(14));
    EXPECT_THAT(VEK_DB_UTIL::get_common_file_categories({VEK_PERIPH_RBF_FILE_TYPE, VEK_PERIPH_RPD_FILE_TYPE}),
                IsEmpty());
}

TEST(vek_db, a_type_that_stands_in_the_list_twice_changes_nothing)
{
    EXPECT_THAT(VEK_DB_UTIL::get_common_file_categories({VEK_RPD_FILE_TYPE, VEK_RPD_FILE_TYPE}),
                ElementsAre(1, 13));
}

TEST(vek_db, types_share_the_inputs_that_all_of_them_take)
{
    EXPECT_THAT(VEK_DB_UTIL::get_common_input_file_types({VEK_RBF_FILE_TYPE}), ElementsAre(FIO_SOF_FILE));
    EXPECT_THAT(VEK_DB_UTIL::get_common_input_file_types({VEK_PRRBF_FILE_TYPE}), ElementsAre(FIO_PMSF_FILE));
    EXPECT_THAT(VEK_DB_UTIL::get_common_input_file_types({VEK_RBF_FILE_TYPE, VEK_PRRBF_FILE_TYPE}),
                IsEmpty());
    EXPECT_THAT(
        VEK_DB_UTIL::get_common_input_file_types({VEK_POF_FILE_TYPE, VEK_RPD_FILE_TYPE}),
        ElementsAre(FIO_RBF_FILE, FIO_HEX_FILE, FIO_BIN_FILE, FIO_PUF_FILE, FIO_WKEY_FILE, FIO_SOF_FILE));
    EXPECT_THAT(VEK_DB_UTIL::get_common_input_file_types({VEK_POF_FILE_TYPE, VEK_RBF_FILE_TYPE}),
                ElementsAre(FIO_SOF_FILE));
}

TEST(vek_db, types_share_the_flash_families_that_all_of_them_can_go_to)
{
    EXPECT_THAT(VEK_DB_UTIL::get_common_config_device_families({VEK_POF_FILE_TYPE}),
                ElementsAre(10, 25, 26, 40, 68, 71));
    EXPECT_THAT(VEK_DB_UTIL::get_common_config_device_families({VEK_POF_FILE_TYPE, VEK_JIC_FILE_TYPE}),
                ElementsAre(10, 25, 26, 68));
    EXPECT_THAT(VEK_DB_UTIL::get_common_config_device_families({VEK_RBF_FILE_TYPE}), IsEmpty());
    EXPECT_THAT(VEK_DB_UTIL::get_common_config_device_families({VEK_POF_FILE_TYPE, VEK_RBF_FILE_TYPE}),
                IsEmpty());
}

TEST(vek_db, primary_types_are_neither_secondary_nor_groups_and_keep_their_order)
{
    EXPECT_THAT(
        VEK_DB_UTIL::get_primary_file_types({VEK_POF_FILE_TYPE, VEK_MAP_FILE_TYPE, VEK_CVP_GROUP_FILE_TYPE,
                                             VEK_PERIPH_RBF_FILE_TYPE, VEK_JIC_FILE_TYPE,
                                             VEK_SEC_RPD_FILE_TYPE, VEK_POF_FILE_TYPE}),
        ElementsAre(VEK_POF_FILE_TYPE, VEK_PERIPH_RBF_FILE_TYPE, VEK_JIC_FILE_TYPE, VEK_POF_FILE_TYPE));
}

TEST(vek_db, a_family_is_one_of_devices_to_configure_or_of_devices_that_configure)
{
    for (const unsigned family : {5U, 12U, 16U, 23U, 28U, 33U, 47U, 48U, 71U}) {
        EXPECT_TRUE(VEK_DB_UTIL::is_supported_family(static_cast<DEV_FAMILY_ENUM>(family))) << family;
        EXPECT_FALSE(VEK_DB_UTIL::is_configuration_family(static_cast<DEV_FAMILY_ENUM>(family))) << family;
    }
    for (const unsigned family : {10U, 25U, 26U, 40U, 68U}) {
        EXPECT_FALSE(VEK_DB_UTIL::is_supported_family(static_cast<DEV_FAMILY_ENUM>(family))) << family;
        EXPECT_TRUE(VEK_DB_UTIL::is_configuration_family(static_cast<DEV_FAMILY_ENUM>(family))) << family;
    }
    for (const unsigned family : {0U, 6U, 72U, 73U, 4'000'000'000U}) {
        EXPECT_FALSE(VEK_DB_UTIL::is_supported_family(static_cast<DEV_FAMILY_ENUM>(family))) << family;
        EXPECT_FALSE(VEK_DB_UTIL::is_configuration_family(static_cast<DEV_FAMILY_ENUM>(family))) << family;
    }
}

TEST(vek_db, a_configuration_key_takes_a_parameter_out_of_the_dialogs)
{
    for (const PGM_COMMON_XML_VEK_CMD_PARAM_ENUM param : all_params()) {
        EXPECT_TRUE(VEK_DB_UTIL::param_enabled_by_ini(param));
    }
    cfg_override("vek_param_bitstream_path_compression", "off");
    EXPECT_FALSE(VEK_DB_UTIL::param_enabled_by_ini(VEK_CMD_PARAM_BITSTREAM_PATH_COMPRESSION));
    EXPECT_TRUE(VEK_DB_UTIL::param_enabled_by_ini(VEK_CMD_PARAM_BITSTREAM_PATH_ENHANCED_COMPRESSION));
    cfg_clear_overrides();
    EXPECT_TRUE(VEK_DB_UTIL::param_enabled_by_ini(VEK_CMD_PARAM_BITSTREAM_PATH_COMPRESSION));
}

TEST(vek_db, many_threads_may_ask_at_once)
{
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([] {
            for (const VEK_FILE_TYPE type : VEK_DB::get_all_output_file_type_keys()) {
                EXPECT_EQ(VEK_DB_UTIL::get_vek_file_type_enum(VEK_DB::get_xml_enum(type)), type);
                VEK_DB_UTIL::get_common_file_categories({type, VEK_RBF_FILE_TYPE});
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

} // namespace
