#include "database_words.h"
#include "vek_db.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace
{

std::vector<VEK_FILE_TYPE> by_description(std::vector<VEK_FILE_TYPE> types)
{
    std::ranges::sort(types, {}, [](VEK_FILE_TYPE type) { return VEK_DB::get_description(type); });
    return types;
}

/// What the tree shows for a type and below it: "JIC(MAP SEC_RPD)".
std::string branch(VEK_FILE_TYPE type, DEV_FAMILY_ENUM family, PGMIO_CONFIG_SCHEME mode)
{
    if (!VEK_DB::supports_output_file_type(mode, type) || !VEK_DB::get_enabled(type) ||
        VEK_DB::supports_excluded_family(type, family)) {
        return "";
    }
    std::string children;
    for (const VEK_FILE_TYPE child : by_description(VEK_DB::get_secondary_file_type(type))) {
        const std::string text = branch(child, family, mode);
        children += (children.empty() || text.empty() ? "" : " ") + text;
    }
    return word(type) + (children.empty() ? "" : "(" + children + ")");
}

std::string offer(DEV_FAMILY_ENUM family, PGMIO_CONFIG_SCHEME mode)
{
    std::string rows;
    for (const VEK_FILE_TYPE type : by_description(VEK_DB::get_all_output_file_type_keys())) {
        if (!VEK_DB_UTIL::has_parent(type) && !VEK_DB::get_cmd_only(type)) {
            const std::string text = branch(type, family, mode);
            rows += (rows.empty() || text.empty() ? "" : " ") + text;
        }
    }
    return rows;
}

// The whole offer, a line for each family and mode that the family has. A change of a row shows here.
constexpr const char* OFFER = R"(
Basalt ASX1: JAM JBC JIC(MAP SEC_RPD) POF(MAP SEC_RPD) RPD(MAP) SVF
Basalt ASX4: JAM JBC JIC(MAP SEC_RPD) POF(MAP SEC_RPD) RPD(MAP) SVF
Basalt PS: HEX JAM JBC POF(MAP SEC_RPD) RBF SVF TTF
Basalt FPP: HEX JAM JBC POF(MAP SEC_RPD) RBF SVF TTF
Calcite ASX1: EKP JAM JBC JIC(MAP SEC_RPD) PRRBF POF(MAP SEC_RPD) RPD(MAP) SVF
Calcite ASX4: EKP JAM JBC JIC(MAP SEC_RPD) PRRBF POF(MAP SEC_RPD) RPD(MAP) SVF
Calcite PS: EKP HEX JAM JBC PRRBF POF(MAP SEC_RPD) RBF SVF TTF
Calcite FPP: EKP HEX JAM JBC PRRBF POF(MAP SEC_RPD) RBF SVF TTF
Dolomite ASX1: JAM JBC JIC(MAP SEC_RPD) POF(MAP SEC_RPD) RPD(MAP) SVF
Dolomite PS: HEX JAM JBC POF(MAP SEC_RPD) RBF SVF TTF
Dolomite FPP: HEX JAM JBC POF(MAP SEC_RPD) RBF SVF TTF
Feldspar ASX1: JAM JBC JIC(MAP SEC_RPD) PRRBF POF(MAP SEC_RPD) RPD(MAP) SVF
Feldspar ASX4: JAM JBC JIC(MAP SEC_RPD) PRRBF POF(MAP SEC_RPD) RPD(MAP) SVF
Feldspar LNKSX8: HEX JAM JBC POF(MAP SEC_RPD) RBF RPD(MAP) RIM SVF
Feldspar LNKSX16: HEX JAM JBC POF(MAP SEC_RPD) RBF RPD(MAP) RIM SVF
Feldspar LNKSX32: HEX JAM JBC POF(MAP SEC_RPD) RBF RPD(MAP) RIM SVF
Hematite ASX1: JAM JBC JIC(MAP SEC_RPD) PRRBF POF(MAP SEC_RPD) RPD(MAP) SVF
Hematite ASX4: JAM JBC JIC(MAP SEC_RPD) PRRBF POF(MAP SEC_RPD) RPD(MAP) SVF
Hematite LNKSX8: HEX JAM JBC POF(MAP SEC_RPD) RBF RPD(MAP) RIM SVF
Hematite LNKSX16: HEX JAM JBC POF(MAP SEC_RPD) RBF RPD(MAP) RIM SVF
Hematite LNKSX32: HEX JAM JBC POF(MAP SEC_RPD) RBF RPD(MAP) RIM SVF
Granite ASX1: CVP_GROUP(PERIPH_JIC(CVP_CORE_RBF MAP SEC_RPD) PERIPH_POF(CVP_CORE_RBF MAP SEC_RPD) PERIPH_RPD(CVP_CORE_RBF MAP)) EKP JAM JBC JIC(MAP SEC_RPD) PRRBF POF(MAP SEC_RPD) RPD(MAP) SVF
Granite ASX4: CVP_GROUP(PERIPH_JIC(CVP_CORE_RBF MAP SEC_RPD) PERIPH_POF(CVP_CORE_RBF MAP SEC_RPD) PERIPH_RPD(CVP_CORE_RBF MAP)) EKP JAM JBC JIC(MAP SEC_RPD) PRRBF POF(MAP SEC_RPD) RPD(MAP) SVF
Granite PS: CVP_GROUP(PERIPH_POF(CVP_CORE_RBF MAP SEC_RPD) PERIPH_RBF(CVP_CORE_RBF)) EKP HEX JAM JBC PRRBF POF(MAP SEC_RPD) RBF SVF TTF
Granite FPP: CVP_GROUP(PERIPH_POF(CVP_CORE_RBF MAP SEC_RPD) PERIPH_RBF(CVP_CORE_RBF)) EKP HEX JAM JBC PRRBF POF(MAP SEC_RPD) RBF SVF TTF
Onyx ASX1: JAM JBC JIC(MAP SEC_RPD) POF(MAP SEC_RPD) RPD(MAP) SVF
Onyx ASX4: JAM JBC JIC(MAP SEC_RPD) POF(MAP SEC_RPD) RPD(MAP) SVF
Onyx PS: HEX JAM JBC POF(MAP SEC_RPD) RBF SVF TTF
Onyx FPP: HEX JAM JBC POF(MAP SEC_RPD) RBF SVF TTF
Zircon ASX1: JAM JBC JIC(MAP SEC_RPD) PRRBF HPS_GROUP(PERIPH_JIC(HPS_CORE_RBF MAP SEC_RPD) PERIPH_POF(HPS_CORE_RBF MAP SEC_RPD) PERIPH_RPD(HPS_CORE_RBF MAP)) POF(MAP SEC_RPD) RPD(MAP) SVF
Zircon ASX4: JAM JBC JIC(MAP SEC_RPD) PRRBF HPS_GROUP(PERIPH_JIC(HPS_CORE_RBF MAP SEC_RPD) PERIPH_POF(HPS_CORE_RBF MAP SEC_RPD) PERIPH_RPD(HPS_CORE_RBF MAP)) POF(MAP SEC_RPD) RPD(MAP) SVF
Zircon LNKSX8: HEX JAM JBC HPS_GROUP(PERIPH_POF(HPS_CORE_RBF MAP SEC_RPD) PERIPH_RBF(HPS_CORE_RBF) PERIPH_RPD(HPS_CORE_RBF MAP)) POF(MAP SEC_RPD) RBF RPD(MAP) RIM SVF
Zircon LNKSX16: HEX JAM JBC HPS_GROUP(PERIPH_POF(HPS_CORE_RBF MAP SEC_RPD) PERIPH_RBF(HPS_CORE_RBF) PERIPH_RPD(HPS_CORE_RBF MAP)) POF(MAP SEC_RPD) RBF RPD(MAP) RIM SVF
Zircon LNKSX32: HEX JAM JBC HPS_GROUP(PERIPH_POF(HPS_CORE_RBF MAP SEC_RPD) PERIPH_RBF(HPS_CORE_RBF) PERIPH_RPD(HPS_CORE_RBF MAP)) POF(MAP SEC_RPD) RBF RPD(MAP) RIM SVF
Gypsum INTERNAL: JAM JBC POF(MAP SEC_RPD) RPD(MAP) SVF
)";

TEST(offer, every_family_offers_in_every_mode_what_stands_here)
{
    std::string text;
    for (const FAMILY_ROW* family : fpga_rows()) {
        for (const PGMIO_CONFIG_SCHEME mode : VEK_DB_UTIL::get_enabled_config_modes()) {
            if ((family->modes & mode_bits(mode)) != 0) {
                text +=
                    "\n" + std::string(family->name) + " " + word(mode) + ": " + offer(family->family, mode);
            }
        }
    }
    EXPECT_EQ(text + "\n", OFFER);
}

TEST(offer, no_command_line_type_reaches_the_tree)
{
    for (const FAMILY_ROW* family : fpga_rows()) {
        for (const PGMIO_CONFIG_SCHEME mode : VEK_DB_UTIL::get_enabled_config_modes()) {
            const std::string text = " " + offer(family->family, mode) + " ";
            for (const VEK_FILE_TYPE type : VEK_DB::get_all_output_file_type_keys()) {
                if (VEK_DB::get_cmd_only(type)) {
                    EXPECT_EQ(text.find(" " + word(type) + " "), std::string::npos) << word(type);
                }
            }
        }
    }
}

TEST(offer, every_enabled_type_is_offered_somewhere)
{
    std::string text;
    for (const FAMILY_ROW* family : fpga_rows()) {
        for (const PGMIO_CONFIG_SCHEME mode : VEK_DB_UTIL::get_enabled_config_modes()) {
            if ((family->modes & mode_bits(mode)) != 0) {
                text += " " + offer(family->family, mode) + " ";
            }
        }
    }
    std::ranges::replace_if(
        text, [](char character) { return character == '(' || character == ')'; }, ' ');
    for (const VEK_FILE_TYPE type : VEK_DB::get_all_output_file_type_keys()) {
        if (VEK_DB::get_enabled(type)) {
            EXPECT_NE(text.find(" " + word(type) + " "), std::string::npos) << word(type);
        }
    }
}

TEST(offer, a_flash_type_has_a_flash_family_in_every_mode_that_offers_it)
{
    for (const PGMIO_CONFIG_SCHEME mode : VEK_DB_UTIL::get_enabled_config_modes()) {
        const std::vector<DEV_FAMILY_ENUM> of_mode = VEK_DB::get_config_device_family(mode);
        for (const VEK_FILE_TYPE type : VEK_DB::get_all_output_file_type_keys()) {
            const std::vector<DEV_FAMILY_ENUM> of_type =
                VEK_DB_UTIL::get_common_config_device_families({type});
            if (VEK_DB::supports_output_file_type(mode, type) && !of_type.empty()) {
                EXPECT_TRUE(std::ranges::any_of(of_mode,
                                                [&of_type](DEV_FAMILY_ENUM family) {
                                                    return std::ranges::find(of_type, family) !=
                                                           of_type.end();
                                                }))
                    << word(mode) << " " << word(type);
            }
        }
    }
}

} // namespace
