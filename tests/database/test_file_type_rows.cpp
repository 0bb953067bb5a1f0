#include "database_words.h"
#include "vek_db.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>

namespace
{

using testing::ElementsAre;
using testing::IsEmpty;

/// The types for which a query of the table answers true, as words.
template <class QUERY>
std::string types_where(QUERY query)
{
    std::vector<VEK_FILE_TYPE> types = VEK_DB::get_all_output_file_type_keys();
    std::erase_if(types, [&query](VEK_FILE_TYPE type) { return !query(type); });
    return joined(types);
}

std::string types_where(bool (*query)(VEK_FILE_TYPE))
{
    return types_where([query](VEK_FILE_TYPE type) { return query(type); });
}

TEST(file_type_rows, what_is_built_is_enabled_and_the_rest_is_for_the_command_line)
{
    EXPECT_EQ(types_where(VEK_DB::get_enabled),
              "RBF TTF HEX JIC POF PRRBF CVP_CORE_RBF HPS_CORE_RBF RPD MAP JAM JBC EKP CVP_GROUP HPS_GROUP "
              "PERIPH_JIC PERIPH_POF PERIPH_RBF SEC_RPD SVF PERIPH_RPD RIM");
    EXPECT_EQ(types_where(VEK_DB::get_cmd_only),
              "QSPI_HELPER_RBF HELPER_RBF HELPER_RBF_CMD SOF PUF WKEY CCERT NON_JTAG_PROVISION_RBF");
}

TEST(file_type_rows, the_flags_mark_the_types_that_they_are_for)
{
    EXPECT_EQ(types_where(VEK_DB::get_secondary), "CVP_CORE_RBF HPS_CORE_RBF MAP SEC_RPD");
    EXPECT_EQ(types_where(VEK_DB::get_virtual_type), "CVP_GROUP HPS_GROUP");
    EXPECT_EQ(types_where(VEK_DB::get_has_option), "HEX RPD SEC_RPD SVF PERIPH_RPD");
    EXPECT_EQ(types_where(VEK_DB::get_require_flash_loader), "JIC PERIPH_JIC");
    EXPECT_EQ(types_where(VEK_DB::get_default_checked_state), "CVP_CORE_RBF HPS_CORE_RBF MAP PERIPH_POF");
    EXPECT_EQ(types_where(VEK_DB_UTIL::has_parent),
              "CVP_CORE_RBF HPS_CORE_RBF MAP PERIPH_JIC PERIPH_POF PERIPH_RBF SEC_RPD PERIPH_RPD");
}

TEST(file_type_rows, each_type_has_its_categories)
{
    std::map<unsigned, std::string> types_by_category;
    for (unsigned category = 0; category < 32; ++category) {
        const std::string types = types_where([category](VEK_FILE_TYPE type) {
            return VEK_DB_UTIL::is_supported_file_category(type, static_cast<VEK_FILE_CATEGORY>(category));
        });
        if (!types.empty()) {
            types_by_category[category] = types;
        }
    }
    const std::map<unsigned, std::string> expected{
        {0, "RBF TTF HEX PRRBF CVP_CORE_RBF HPS_CORE_RBF JAM JBC EKP PERIPH_RBF SVF RIM"},
        {1, "JIC POF RPD MAP SEC_RPD"},
        {2, "SOF"},
        {3, "PUF"},
        {4, "WKEY"},
        {5, "CCERT"},
        {6, "QSPI_HELPER_RBF"},
        {7, "HELPER_RBF"},
        {8, "HELPER_RBF_CMD"},
        {9, "NON_JTAG_PROVISION_RBF"},
        {13, "RPD MAP"},
        {14, "CVP_CORE_RBF HPS_CORE_RBF MAP CVP_GROUP HPS_GROUP PERIPH_JIC PERIPH_POF SEC_RPD PERIPH_RPD"},
    };
    EXPECT_EQ(types_by_category, expected);
}

TEST(file_type_rows, a_type_of_bitstreams_goes_to_no_flash_device_and_the_others_do)
{
    for (const VEK_FILE_TYPE type :
         VEK_DB_UTIL::get_primary_file_types(VEK_DB::get_all_output_file_type_keys())) {
        const bool takes_flash = VEK_DB_UTIL::is_supported_file_category(type, VEK_FILE_CATEGORY_FLASH) ||
                                 VEK_DB_UTIL::is_supported_file_category(type, VEK_FILE_CATEGORY_RAW_FLASH) ||
                                 VEK_DB_UTIL::is_supported_file_category(type, VEK_FILE_CATEGORY_PERIPHERY);
        EXPECT_EQ(takes_flash, !VEK_DB_UTIL::get_common_config_device_families({type}).empty()) << word(type);
        EXPECT_THAT(VEK_DB_UTIL::get_common_input_file_types({type}), testing::Not(IsEmpty())) << word(type);
    }
}

TEST(file_type_rows, descriptions_and_tooltips_are_there_and_distinct)
{
    std::set<std::string> descriptions;
    std::set<std::string> tooltips;
    for (const VEK_FILE_TYPE type : VEK_DB::get_all_output_file_type_keys()) {
        EXPECT_TRUE(descriptions.insert(VEK_DB::get_description(type)).second) << word(type);
        EXPECT_TRUE(tooltips.insert(VEK_DB::get_tooltip(type)).second) << word(type);
        EXPECT_FALSE(VEK_DB::get_description(type).empty()) << word(type);
        EXPECT_TRUE(VEK_DB::get_tooltip(type).ends_with(".")) << word(type);
        EXPECT_NE(VEK_DB::get_tooltip(type).find(' '), std::string::npos) << word(type);
    }
}

TEST(file_type_rows, a_description_ends_in_the_extension_of_the_file)
{
    for (const VEK_FILE_TYPE type : VEK_DB::get_all_output_file_type_keys()) {
        if (VEK_DB::get_virtual_type(type)) {
            EXPECT_EQ(fio_get_extension_string(VEK_DB::get_fio_ext_enum(type)), "") << word(type);
        } else {
            const std::string extension = fio_get_extension_string(VEK_DB::get_fio_ext_enum(type));
            EXPECT_GT(extension.size(), 1U) << word(type);
            EXPECT_TRUE(VEK_DB::get_description(type).ends_with("(" + extension + ")")) << word(type);
        }
    }
}

TEST(file_type_rows, what_stands_under_a_type_exists_and_suits_its_place)
{
    for (const VEK_FILE_TYPE type : VEK_DB::get_all_output_file_type_keys()) {
        for (const VEK_FILE_TYPE child : VEK_DB::get_secondary_file_type(type)) {
            EXPECT_TRUE(VEK_DB::get_enabled(child)) << word(child);
            // Under a group stand primary types, under the others secondary ones.
            EXPECT_EQ(VEK_DB::get_secondary(child), !VEK_DB::get_virtual_type(type)) << word(child);
            if (VEK_DB::get_secondary(child)) {
                EXPECT_THAT(VEK_DB::get_secondary_file_type(child), IsEmpty()) << word(child);
            }
        }
    }
}

TEST(file_type_rows, a_secondary_type_has_a_parent)
{
    for (const VEK_FILE_TYPE type : VEK_DB::get_all_output_file_type_keys()) {
        if (VEK_DB::get_secondary(type)) {
            EXPECT_TRUE(VEK_DB_UTIL::has_parent(type)) << word(type);
        }
    }
}

TEST(file_type_rows, only_the_groups_add_to_file_names)
{
    for (const VEK_FILE_TYPE type : VEK_DB::get_all_output_file_type_keys()) {
        EXPECT_EQ(VEK_DB::get_file_name_suffix(type), "") << word(type);
        if (!VEK_DB::get_virtual_type(type)) {
            EXPECT_EQ(VEK_DB::get_child_file_name_suffix(type), "") << word(type);
        }
    }
    EXPECT_EQ(VEK_DB::get_child_file_name_suffix(VEK_CVP_GROUP_FILE_TYPE), ".periph");
    EXPECT_EQ(VEK_DB::get_child_file_name_suffix(VEK_HPS_GROUP_FILE_TYPE), ".hps");
}

/// The names on disk of a type and of all that stands under it, as the tree shows them.
void collect_names(VEK_FILE_TYPE type, const std::string& group_suffix, std::multiset<std::string>& names)
{
    if (VEK_DB::get_virtual_type(type)) {
        for (const VEK_FILE_TYPE child : VEK_DB::get_secondary_file_type(type)) {
            collect_names(child, VEK_DB::get_child_file_name_suffix(type), names);
        }
        return;
    }
    const std::string extension = fio_get_extension_string(VEK_DB::get_fio_ext_enum(type));
    names.insert("output_file" + group_suffix + extension);
    for (const VEK_FILE_TYPE child : VEK_DB::get_secondary_file_type(type)) {
        names.insert("output_file_" + extension.substr(1) +
                     fio_get_extension_string(VEK_DB::get_fio_ext_enum(child)));
    }
}

TEST(file_type_rows, files_that_can_be_made_together_have_distinct_names)
{
    for (const FAMILY_ROW* family : fpga_rows()) {
        for (const PGMIO_CONFIG_SCHEME mode : VEK_DB_UTIL::get_enabled_config_modes()) {
            for (unsigned category = 0; category < 32; ++category) {
                std::multiset<std::string> names;
                for (const VEK_FILE_TYPE type : VEK_DB::get_all_output_file_type_keys()) {
                    if (VEK_DB::get_enabled(type) && !VEK_DB_UTIL::has_parent(type) &&
                        VEK_DB::supports_output_file_type(mode, type) &&
                        !VEK_DB::supports_excluded_family(type, family->family) &&
                        !VEK_DB::get_virtual_type(type) &&
                        VEK_DB_UTIL::is_supported_file_category(type,
                                                                static_cast<VEK_FILE_CATEGORY>(category))) {
                        collect_names(type, "", names);
                    }
                }
                for (const std::string& name : names) {
                    EXPECT_EQ(names.count(name), 1U) << family->name << " " << word(mode) << " " << name;
                }
            }
        }
    }
}

TEST(file_type_rows, a_type_is_excluded_from_the_families_that_cannot_have_it)
{
    const auto families = [](VEK_FILE_TYPE type) {
        std::string names;
        for (const FAMILY_ROW* row : fpga_rows()) {
            if (!VEK_DB::supports_excluded_family(type, row->family)) {
                names += (names.empty() ? "" : " ") + std::string(row->name);
            }
        }
        return names;
    };
    const std::string all = "Basalt Calcite Dolomite Feldspar Hematite Granite Onyx Zircon Gypsum";
    for (const VEK_FILE_TYPE type :
         {VEK_RBF_FILE_TYPE, VEK_TTF_FILE_TYPE, VEK_HEX_FILE_TYPE, VEK_JIC_FILE_TYPE, VEK_POF_FILE_TYPE,
          VEK_RPD_FILE_TYPE, VEK_MAP_FILE_TYPE, VEK_JAM_FILE_TYPE, VEK_JBC_FILE_TYPE, VEK_SVF_FILE_TYPE,
          VEK_SEC_RPD_FILE_TYPE}) {
        EXPECT_EQ(families(type), all) << word(type);
    }
    EXPECT_EQ(families(VEK_PRRBF_FILE_TYPE), "Calcite Feldspar Hematite Granite Zircon");
    EXPECT_EQ(families(VEK_EKP_FILE_TYPE), "Calcite Granite");
    EXPECT_EQ(families(VEK_RIM_FILE_TYPE), "Feldspar Hematite Zircon");
    EXPECT_EQ(families(VEK_CVP_GROUP_FILE_TYPE), "Granite");
    EXPECT_EQ(families(VEK_CVP_CORE_RBF_FILE_TYPE), "Granite");
    EXPECT_EQ(families(VEK_HPS_GROUP_FILE_TYPE), "Zircon");
    EXPECT_EQ(families(VEK_HPS_CORE_RBF_FILE_TYPE), "Zircon");
    EXPECT_FALSE(VEK_DB::supports_excluded_family(VEK_RIM_FILE_TYPE, DEV_FAMILY_NONE));
}

} // namespace
