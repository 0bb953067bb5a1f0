#include "database_words.h"
#include "vek_db.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace
{

using testing::ElementsAre;
using testing::IsEmpty;

using PARAM = PGM_COMMON_XML_VEK_CMD_PARAM_ENUM;

TEST(param_rows, every_parameter_has_a_description_of_its_own)
{
    std::set<std::string> descriptions;
    for (const PARAM param : all_params()) {
        const std::string description = VEK_DB::get_description(param);
        EXPECT_TRUE(descriptions.insert(description).second) << word(param) << ": " << description;
        EXPECT_TRUE(description.ends_with(".")) << word(param);
        EXPECT_NE(description.find(' '), std::string::npos) << word(param);
    }
    EXPECT_EQ(descriptions.size(), 143U);
}

TEST(param_rows, the_dialogs_have_these_parameters_and_no_others)
{
    std::vector<PARAM> enabled = all_params();
    std::erase_if(enabled, [](PARAM param) { return !VEK_DB::get_enabled(param); });
    EXPECT_THAT(enabled, ElementsAre(2, 25, 32, 33, 34, 35, 36, 37, 38, 100, 101, 102, 104, 107, 108, 109,
                                     110, 111, 113, 115, 117, 118, 119, 121, 123, 124, 126, 127, 128, 130,
                                     132, 133, 134, 136, 137, 138, 139));
}

TEST(param_rows, each_output_type_with_options_shows_its_own)
{
    const auto options = [](VEK_FILE_TYPE type) {
        std::vector<PARAM> params;
        for (const PARAM param :
             {VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_OPERATION,
              VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_FREQUENCY,
              VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_VOLTAGE,
              VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_USE_RELATIVE,
              VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_S_ADDR, VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_DIRECTION,
              VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_BITSWAP,
              VEK_CMD_PARAM_OUTPUT_FILE_SECONDARY_FILE_FILE_OPTIONS_BITSWAP}) {
            if (VEK_DB::supports_supported_output_file_type(param, type)) {
                params.push_back(param);
            }
        }
        return params;
    };
    for (const VEK_FILE_TYPE type : VEK_DB::get_all_output_file_type_keys()) {
        EXPECT_EQ(options(type).empty(), !VEK_DB::get_has_option(type)) << word(type);
    }
    EXPECT_THAT(options(VEK_SVF_FILE_TYPE), ElementsAre(VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_OPERATION,
                                                        VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_FREQUENCY,
                                                        VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_VOLTAGE));
    EXPECT_THAT(options(VEK_HEX_FILE_TYPE), ElementsAre(VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_S_ADDR,
                                                        VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_DIRECTION));
    for (const VEK_FILE_TYPE type : {VEK_RPD_FILE_TYPE, VEK_PERIPH_RPD_FILE_TYPE}) {
        EXPECT_THAT(options(type), ElementsAre(VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_USE_RELATIVE,
                                               VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_S_ADDR,
                                               VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_BITSWAP));
    }
    EXPECT_THAT(options(VEK_SEC_RPD_FILE_TYPE),
                ElementsAre(VEK_CMD_PARAM_OUTPUT_FILE_SECONDARY_FILE_FILE_OPTIONS_BITSWAP));
}

TEST(param_rows, lists_and_single_questions_agree)
{
    for (const PARAM param : all_params()) {
        for (unsigned value = 0; value <= DEV_FAMILY_NONE; ++value) {
            const DEV_FAMILY_ENUM family = static_cast<DEV_FAMILY_ENUM>(value);
            const auto in = [family](const std::vector<DEV_FAMILY_ENUM>& list) {
                return std::ranges::find(list, family) != list.end();
            };
            EXPECT_EQ(VEK_DB::supports_supported_family(param, family),
                      in(VEK_DB::get_supported_family(param)));
            EXPECT_EQ(VEK_DB::supports_excluded_family(param, family),
                      in(VEK_DB::get_excluded_family(param)));
            EXPECT_EQ(VEK_DB::supports_hidden_supported_family(param, family),
                      in(VEK_DB::get_hidden_supported_family(param)));
        }
        for (const PARAM other : all_params()) {
            const std::vector<PARAM> parents = VEK_DB::get_dependent_param(param);
            EXPECT_EQ(VEK_DB::supports_dependent_param(param, other),
                      std::ranges::find(parents, other) != parents.end());
        }
    }
}

TEST(param_rows, exclusion_holds_both_ways)
{
    std::vector<std::pair<PARAM, PARAM>> pairs;
    for (const PARAM param : all_params()) {
        EXPECT_FALSE(VEK_DB::supports_exclusive_param(param, param)) << word(param);
        for (const PARAM other : all_params()) {
            EXPECT_EQ(VEK_DB::supports_exclusive_param(param, other),
                      VEK_DB::supports_exclusive_param(other, param));
            if (param < other && VEK_DB::supports_exclusive_param(param, other)) {
                pairs.emplace_back(param, other);
            }
        }
    }
    EXPECT_THAT(pairs, ElementsAre(std::pair(VEK_CMD_PARAM_BITSTREAM_PATH_ENHANCED_COMPRESSION,
                                             VEK_CMD_PARAM_BITSTREAM_PATH_COMPRESSION),
                                   std::pair(VEK_CMD_PARAM_BITSTREAM_PATH_ELK_FILE,
                                             VEK_CMD_PARAM_BITSTREAM_PATH_KEY_FILE1)));
}

TEST(param_rows, what_hides_a_parameter_names_families_that_it_is_not_offered_in)
{
    for (const PARAM param : all_params()) {
        const std::vector<DEV_FAMILY_ENUM> hidden = VEK_DB::get_hidden_supported_family(param);
        for (const DEV_FAMILY_ENUM family : hidden) {
            EXPECT_FALSE(VEK_DB::supports_supported_family(param, family)) << word(param);
            EXPECT_TRUE(VEK_DB_UTIL::is_supported_family(family)) << word(param);
        }
        // Hidden families add to a list; without a list there is nothing to add to.
        EXPECT_TRUE(hidden.empty() || !VEK_DB::get_supported_family(param).empty()) << word(param);
        for (const DEV_FAMILY_ENUM family : VEK_DB::get_supported_family(param)) {
            EXPECT_TRUE(VEK_DB_UTIL::is_supported_family(family)) << word(param);
        }
    }
}

TEST(param_rows, values_of_a_parent_are_given_exactly_for_the_parent_with_several_values)
{
    // Of the parents only signing is a choice between words.
    for (const PARAM param : all_params()) {
        EXPECT_EQ(VEK_DB::supports_dependent_param(param, VEK_CMD_PARAM_BITSTREAM_PATH_SIGNING),
                  !VEK_DB::get_dependent_param_enum_value(param).empty())
            << word(param);
    }
    EXPECT_THAT(VEK_DB::get_dependent_param_enum_value(VEK_CMD_PARAM_BITSTREAM_PATH_SIGNING_PEM_FILE),
                ElementsAre(PGM_COMMON_XML_ENUM_ON));
}

TEST(param_rows, a_parameter_shown_in_a_dialog_hangs_on_one_shown_in_a_dialog)
{
    for (const PARAM param : all_params()) {
        for (const PARAM parent : VEK_DB::get_dependent_param(param)) {
            EXPECT_TRUE(VEK_DB::get_enabled(parent)) << word(param) << " hangs on " << word(parent);
            EXPECT_EQ(pgm_common_xml_vek_cmd_opt_of(parent), pgm_common_xml_vek_cmd_opt_of(param))
                << word(param);
        }
    }
}

} // namespace
