#include "document_compare.h"
#include "internal_error_trap.h"
#include "vek_file_assistant.h"

#include <gmock/gmock.h>

namespace
{

using A = VEK_FILE_ASSISTANT;
using PARAMS = A::PARAMS;
using testing::ElementsAre;
using testing::IsEmpty;

class assistant : public testing::Test
{
protected:
    bool set(PGM_COMMON_XML_VEK_CMD_OPT_ENUM option, const PARAMS& params)
    {
        return A::set(&root, option, params);
    }
    bool remove(PGM_COMMON_XML_VEK_CMD_OPT_ENUM option, const PARAMS& params)
    {
        return A::remove(&root, option, params);
    }
    PARAMS get(PGM_COMMON_XML_VEK_CMD_OPT_ENUM option, const PARAMS& params)
    {
        return A::get(&root, option, params);
    }
    bool add_output(const std::string& type, const PARAMS& values = {})
    {
        PARAMS params = values;
        params.emplace_back(VEK_CMD_PARAM_OUTPUT_FILE_TYPE, type);
        return set(VEK_CMD_OPT_OUTPUT_FILE, params);
    }
    bool add_partition(const std::string& device, const std::string& partition)
    {
        return set(VEK_CMD_OPT_FLASH_DEVICE, {{VEK_CMD_PARAM_FLASH_DEVICE_ID, device},
                                              {VEK_CMD_PARAM_FLASH_DEVICE_PARTITION_ID, partition}});
    }
    bool assign(const std::string& partition, const PARAMS& values)
    {
        PARAMS params{{VEK_CMD_PARAM_ASSIGNMENT_PARTITION_ID, partition}};
        params.insert(params.end(), values.begin(), values.end());
        return set(VEK_CMD_OPT_ASSIGNMENT, params);
    }
    std::vector<std::string> raw_ids(const std::string& partition)
    {
        std::vector<std::string> ids;
        for (const auto* id : A::get_raw_file_id_elements(&root, partition)) {
            ids.push_back(id->text);
        }
        return ids;
    }
    template <typename LINK>
    static std::vector<std::string> texts(const std::vector<LINK*>& links)
    {
        std::vector<std::string> result;
        for (const LINK* link : links) {
            result.push_back(link->text);
        }
        return result;
    }
    PGM_COMMON_XML_VEK_OUTPUT_FILE& output(std::size_t index)
    {
        return *A::get_output_file_elements(&root).at(index);
    }

    PGM_COMMON_XML_VEK_VEK root{PGM_COMMON_XML_ENUM_VEK};
};

} // namespace

TEST_F(assistant, setting_the_mode_in_an_empty_document_creates_the_settings)
{
    PGMIO_CONFIG_SCHEME mode = PGMIO_CONFIG_SCHEME_ILLEGAL;
    EXPECT_FALSE(A::get_config_mode(&root, mode));
    EXPECT_EQ(mode, PGMIO_CONFIG_SCHEME_ILLEGAL);
    EXPECT_TRUE(set(VEK_CMD_OPT_SETTINGS, {{VEK_CMD_PARAM_SETTINGS_MODE, "ASX4"}}));
    ASSERT_EQ(root.settings.size(), 1U);
    EXPECT_TRUE(A::get_config_mode(&root, mode));
    EXPECT_EQ(mode, PGMIO_CONFIG_SCHEME_AS_X4);
}

TEST_F(assistant, a_word_that_is_no_mode_leaves_the_mode_untouched)
{
    EXPECT_TRUE(set(VEK_CMD_OPT_SETTINGS, {{VEK_CMD_PARAM_SETTINGS_MODE, "ASX4"}}));
    root.settings.front()->mode = "RBF";
    PGMIO_CONFIG_SCHEME mode = PGMIO_CONFIG_SCHEME_FPP;
    EXPECT_FALSE(A::get_config_mode(&root, mode));
    EXPECT_EQ(mode, PGMIO_CONFIG_SCHEME_FPP);
}

TEST_F(assistant, output_types_are_the_primary_ones_in_document_order)
{
    for (const char* type : {"RPD", "MAP", "HEX", "RBF"}) {
        EXPECT_TRUE(add_output(type)) << type;
    }
    EXPECT_THAT(A::get_output_file_types(&root),
                ElementsAre(VEK_RPD_FILE_TYPE, VEK_HEX_FILE_TYPE, VEK_RBF_FILE_TYPE));
    EXPECT_THAT(A::get_output_file_types(&root, true), ElementsAre(VEK_RPD_FILE_TYPE));
    EXPECT_THAT(A::get_output_file_types(&root, false), ElementsAre(VEK_HEX_FILE_TYPE, VEK_RBF_FILE_TYPE));
}

TEST_F(assistant, an_empty_directory_is_a_value)
{
    std::string directory = "untouched";
    EXPECT_FALSE(A::get_custom_db_dir(&root, directory));
    EXPECT_EQ(directory, "untouched");
    EXPECT_TRUE(set(VEK_CMD_OPT_SETTINGS, {{VEK_CMD_PARAM_SETTINGS_CUSTOM_DB_DIR, ""}}));
    EXPECT_TRUE(A::get_custom_db_dir(&root, directory));
    EXPECT_EQ(directory, "");
    PGMIO_CONFIG_SCHEME mode = PGMIO_CONFIG_SCHEME_FPP;
    EXPECT_FALSE(A::get_config_mode(&root, mode));
    EXPECT_EQ(mode, PGMIO_CONFIG_SCHEME_FPP);
}

TEST_F(assistant, values_convert_there_and_back)
{
    EXPECT_EQ(A::convert_bool_to_string(true), "1");
    EXPECT_EQ(A::convert_bool_to_string(false), "0");
    for (const bool value : {true, false}) {
        EXPECT_EQ(A::convert_string_to_bool(A::convert_bool_to_string(value)), value);
    }
    for (const char* text : {"ON", "on", "True", "TRUE", "1"}) {
        EXPECT_TRUE(A::convert_string_to_bool(text)) << text;
    }
    for (const char* text : {"OFF", "false", "0", "", "maybe", "11"}) {
        EXPECT_FALSE(A::convert_string_to_bool(text)) << text;
    }
    EXPECT_EQ(A::convert_dword_to_string(0), "0");
    EXPECT_EQ(A::convert_dword_to_string(4294967295U), "4294967295");
    for (unsigned row = 1; row < PGM_COMMON_XML_ENUM__MAX__; ++row) {
        const auto word = static_cast<PGM_COMMON_XML_ENUM>(row);
        EXPECT_EQ(A::convert_string_to_xml_enum(A::convert_xml_enum_to_string(word)), word);
    }
    EXPECT_EQ(A::convert_string_to_xml_enum("rbf"), PGM_COMMON_XML_ENUM__INVALID__);
    EXPECT_EQ(A::convert_string_to_xml_enum("_MAX__"), PGM_COMMON_XML_ENUM__INVALID__);
}

TEST_F(assistant, finders_of_an_empty_document_find_nothing)
{
    EXPECT_THAT(A::get_output_file_types(&root), IsEmpty());
    EXPECT_THAT(A::get_output_file_types(&root, true), IsEmpty());
    EXPECT_THAT(A::get_output_file_elements(&root), IsEmpty());
    EXPECT_THAT(A::get_bitstream_elements(&root), IsEmpty());
    EXPECT_EQ(A::get_bitstream_element(&root, "Bitstream_1"), nullptr);
    EXPECT_THAT(A::get_bitstream_ids(&root), IsEmpty());
    EXPECT_EQ(A::get_bitstream_id_element(&root, "P1"), nullptr);
    EXPECT_THAT(A::get_path_elements(&root, "Bitstream_1"), IsEmpty());
    EXPECT_EQ(A::get_path_element(&root, "Bitstream_1", "top.sof"), nullptr);
    EXPECT_THAT(A::get_raw_file_elements(&root), IsEmpty());
    EXPECT_EQ(A::get_raw_file_element(&root, "Raw_File_1"), nullptr);
    EXPECT_THAT(A::get_raw_file_ids(&root), IsEmpty());
    EXPECT_EQ(A::get_raw_file_id_element(&root, "P1"), nullptr);
    EXPECT_THAT(A::get_raw_file_id_elements(&root, "P1"), IsEmpty());
    EXPECT_EQ(A::get_assignment_element(&root, "P1"), nullptr);
    EXPECT_THAT(A::get_partition_ids(&root, "", ""), IsEmpty());
    EXPECT_EQ(A::get_partition_element(&root, "P1"), nullptr);
    EXPECT_EQ(A::get_partition_element(&root, "F1", "P1"), nullptr);
    EXPECT_THAT(A::get_partition_elements(&root, "F1"), IsEmpty());
    EXPECT_THAT(A::get_mbr_elements(&root, "F1"), IsEmpty());
    EXPECT_THAT(A::get_flash_device_ids(&root), IsEmpty());
    EXPECT_EQ(A::get_flash_device_element(&root, "F1"), nullptr);
    EXPECT_THAT(A::get_flash_device_elements(&root), IsEmpty());
    EXPECT_THAT(A::get_flash_loader_elements(&root), IsEmpty());
    EXPECT_EQ(A::get_input_file_type(&root, "Bitstream_1"), PGM_COMMON_XML_ENUM__INVALID__);
    DSET_OTI_DEV_OPTIONS_INFO options;
    EXPECT_FALSE(A::get_internal_configuration_options(&root, options, "F1"));
    EXPECT_INTERNAL_ERROR(A::get_bitstream_ids(nullptr), "document != nullptr");
    EXPECT_INTERNAL_ERROR(A::get(nullptr, VEK_CMD_OPT_SETTINGS, {}), "document != nullptr");
    EXPECT_INTERNAL_ERROR(A::set(nullptr, VEK_CMD_OPT_SETTINGS, {}), "document != nullptr");
    EXPECT_INTERNAL_ERROR(A::remove(nullptr, VEK_CMD_OPT_SETTINGS, {}), "document != nullptr");
    EXPECT_INTERNAL_ERROR(A::modify_partition_id(nullptr, "a", "b", "F"), "document != nullptr");
}

TEST_F(assistant, a_call_that_it_cannot_place_changes_nothing)
{
    using PARAM = PGM_COMMON_XML_VEK_CMD_PARAM_ENUM;
    const std::pair<PGM_COMMON_XML_VEK_CMD_OPT_ENUM, PARAMS> calls[] = {
        {VEK_CMD_OPT_INVALID, {}},
        {VEK_CMD_OPT_MAX, {}},
        {VEK_CMD_OPT_SETTINGS, {{VEK_CMD_PARAM_RAW_FILE_ID, "R"}}},
        {VEK_CMD_OPT_SETTINGS, {{VEK_CMD_PARAM_INVALID, "R"}}},
        {VEK_CMD_OPT_SETTINGS, {{static_cast<PARAM>(200), "R"}}},
        {VEK_CMD_OPT_RAW_FILE, {}},
        {VEK_CMD_OPT_RAW_FILE, {{VEK_CMD_PARAM_RAW_FILE_TYPE, "HEX"}}},
        {VEK_CMD_OPT_RAW_FILE, {{VEK_CMD_PARAM_RAW_FILE_ID, ""}}},
        {VEK_CMD_OPT_BITSTREAM, {{VEK_CMD_PARAM_BITSTREAM_PATH, "top.sof"}}},
        {VEK_CMD_OPT_BITSTREAM,
         {{VEK_CMD_PARAM_BITSTREAM_ID, "B"}, {VEK_CMD_PARAM_BITSTREAM_PATH_COMPRESSION, "1"}}},
        {VEK_CMD_OPT_FLASH_DEVICE, {{VEK_CMD_PARAM_FLASH_DEVICE_PARTITION_ID, "P"}}},
        {VEK_CMD_OPT_FLASH_DEVICE,
         {{VEK_CMD_PARAM_FLASH_DEVICE_ID, "F"}, {VEK_CMD_PARAM_FLASH_DEVICE_PARTITION_SIZE, "1"}}},
        {VEK_CMD_OPT_OUTPUT_FILE, {{VEK_CMD_PARAM_OUTPUT_FILE_SECONDARY_FILE_TYPE, "MAP"}}},
        {VEK_CMD_OPT_ASSIGNMENT,
         {{VEK_CMD_PARAM_ASSIGNMENT_PARTITION_ID, "P"},
          {VEK_CMD_PARAM_ASSIGNMENT_RAW_FILE_ID_ADDR_MODE, "ABS"}}},
    };
    for (const auto& [option, params] : calls) {
        EXPECT_FALSE(set(option, params));
        EXPECT_FALSE(remove(option, params));
        EXPECT_THAT(get(option, params), IsEmpty());
        EXPECT_TRUE(root.m_childs.empty());
    }
}

TEST_F(assistant, a_value_that_an_attribute_cannot_hold_changes_nothing)
{
    EXPECT_FALSE(set(VEK_CMD_OPT_SETTINGS, {{VEK_CMD_PARAM_SETTINGS_MODE, "asx4"}}));
    EXPECT_FALSE(add_output("RBX"));
    EXPECT_FALSE(set(VEK_CMD_OPT_RAW_FILE,
                     {{VEK_CMD_PARAM_RAW_FILE_ID, "R"}, {VEK_CMD_PARAM_RAW_FILE_BITSWAP, "maybe"}}));
    EXPECT_FALSE(assign(
        "P", {{VEK_CMD_PARAM_ASSIGNMENT_BITSTREAM_ID, "B"}, {VEK_CMD_PARAM_ASSIGNMENT_RAW_FILE_ID, "R"}}));
    EXPECT_FALSE(assign("P", {{VEK_CMD_PARAM_ASSIGNMENT_RAW_FILE_ID, ""}}));
    EXPECT_FALSE(assign(
        "P", {{VEK_CMD_PARAM_ASSIGNMENT_RAW_FILE_ID, "R"}, {VEK_CMD_PARAM_ASSIGNMENT_RAW_FILE_ID, ""}}));
    EXPECT_TRUE(root.m_childs.empty());
}

TEST_F(assistant, booleans_are_kept_as_digits_and_the_last_of_two_values_counts)
{
    EXPECT_TRUE(set(VEK_CMD_OPT_RAW_FILE,
                    {{VEK_CMD_PARAM_RAW_FILE_ID, "R"}, {VEK_CMD_PARAM_RAW_FILE_BITSWAP, "On"}}));
    EXPECT_EQ(A::get_raw_file_element(&root, "R")->bitswap, "1");
    EXPECT_TRUE(set(VEK_CMD_OPT_RAW_FILE, {{VEK_CMD_PARAM_RAW_FILE_ID, "R"},
                                           {VEK_CMD_PARAM_RAW_FILE_RAW_FILE, "a.hex"},
                                           {VEK_CMD_PARAM_RAW_FILE_BITSWAP, "1"},
                                           {VEK_CMD_PARAM_RAW_FILE_RAW_FILE, "b.hex"},
                                           {VEK_CMD_PARAM_RAW_FILE_BITSWAP, "false"}}));
    EXPECT_EQ(A::get_raw_file_element(&root, "R")->text, "b.hex");
    EXPECT_EQ(A::get_raw_file_element(&root, "R")->bitswap, "0");
    EXPECT_EQ(A::get_raw_file_elements(&root).size(), 1U);
}

TEST_F(assistant, lists_come_in_document_order_and_pointers_stay_valid)
{
    for (const char* id : {"Bitstream_2", "Bitstream_10", "Bitstream_1"}) {
        EXPECT_TRUE(set(VEK_CMD_OPT_BITSTREAM, {{VEK_CMD_PARAM_BITSTREAM_ID, id}}));
    }
    EXPECT_THAT(A::get_bitstream_ids(&root), ElementsAre("Bitstream_2", "Bitstream_10", "Bitstream_1"));
    const auto* last = A::get_bitstream_element(&root, "Bitstream_1");
    EXPECT_TRUE(remove(VEK_CMD_OPT_BITSTREAM, {{VEK_CMD_PARAM_BITSTREAM_ID, "Bitstream_10"}}));
    EXPECT_THAT(A::get_bitstream_ids(&root), ElementsAre("Bitstream_2", "Bitstream_1"));
    EXPECT_EQ(A::get_bitstream_element(&root, "Bitstream_1"), last);
    EXPECT_EQ(A::get_bitstream_elements(&root).back(), last);
    EXPECT_EQ(root.bitstreams.front()->get_element(PGM_COMMON_XML_ENUM_BITSTREAM, 1, true), last);
}

TEST_F(assistant, paths_are_found_by_bitstream_and_text)
{
    for (const char* path : {"b.sof", "a.sof"}) {
        EXPECT_TRUE(set(VEK_CMD_OPT_BITSTREAM, {{VEK_CMD_PARAM_BITSTREAM_ID, "B"},
                                                {VEK_CMD_PARAM_BITSTREAM_PATH, path},
                                                {VEK_CMD_PARAM_BITSTREAM_PATH_FW_SOURCE, "one"},
                                                {VEK_CMD_PARAM_BITSTREAM_PATH_FW_SOURCE, path}}));
    }
    EXPECT_THAT(texts(A::get_path_elements(&root, "B")), ElementsAre("b.sof", "a.sof"));
    const auto* path = A::get_path_element(&root, "B", "a.sof");
    ASSERT_NE(path, nullptr);
    EXPECT_EQ(path->fw_source, "a.sof");
    EXPECT_EQ(path->signing, "OFF");
    EXPECT_EQ(path->get_parent(), A::get_bitstream_element(&root, "B"));
    EXPECT_EQ(A::get_path_element(&root, "a.sof", "B"), nullptr);
    EXPECT_TRUE(remove(VEK_CMD_OPT_BITSTREAM,
                       {{VEK_CMD_PARAM_BITSTREAM_ID, "B"}, {VEK_CMD_PARAM_BITSTREAM_PATH, "b.sof"}}));
    EXPECT_THAT(texts(A::get_path_elements(&root, "B")), ElementsAre("a.sof"));
    EXPECT_TRUE(remove(VEK_CMD_OPT_BITSTREAM, {{VEK_CMD_PARAM_BITSTREAM_ID, "B"}}));
    EXPECT_TRUE(root.bitstreams.empty());
    EXPECT_TRUE(root.m_childs.empty());
}

TEST_F(assistant, input_ids_tell_their_kind_and_are_unique_among_both)
{
    EXPECT_TRUE(set(VEK_CMD_OPT_BITSTREAM, {{VEK_CMD_PARAM_BITSTREAM_ID, "B"}}));
    EXPECT_TRUE(set(VEK_CMD_OPT_RAW_FILE, {{VEK_CMD_PARAM_RAW_FILE_ID, "R"}}));
    EXPECT_EQ(A::get_input_file_type(&root, "B"), 231U);
    EXPECT_EQ(A::get_input_file_type(&root, "R"), 450U);
    EXPECT_EQ(A::get_input_file_type(&root, "X"), 0U);
    EXPECT_FALSE(set(VEK_CMD_OPT_RAW_FILE, {{VEK_CMD_PARAM_RAW_FILE_ID, "B"}}));
    EXPECT_FALSE(set(VEK_CMD_OPT_BITSTREAM, {{VEK_CMD_PARAM_BITSTREAM_ID, "R"}}));
}

TEST_F(assistant, an_output_comes_with_its_file_options)
{
    EXPECT_TRUE(add_output(
        "HEX", {{VEK_CMD_PARAM_OUTPUT_FILE_DIRECTORY, "out"}, {VEK_CMD_PARAM_OUTPUT_FILE_NAME, "n"}}));
    const auto* options = A::get_file_options_element(&output(0));
    ASSERT_NE(options, nullptr);
    EXPECT_EQ(options->direction, "UP");
    EXPECT_EQ(options->operation, "P");
    EXPECT_EQ(options->voltage, "3_3V");
    EXPECT_EQ(options->bitswap, "0");
    EXPECT_TRUE(add_output("HEX", {{VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_S_ADDR, "1000"},
                                   {VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_DIRECTION, "DOWN"}}));
    EXPECT_EQ(A::get_output_file_elements(&root).size(), 1U);
    EXPECT_EQ(options->s_addr, "1000");
    EXPECT_EQ(options->direction, "DOWN");
    EXPECT_EQ(output(0).directory, "out");
}

TEST_F(assistant, secondary_files_hang_under_the_output_of_the_type)
{
    EXPECT_TRUE(add_output("POF"));
    EXPECT_TRUE(add_output("POF", {{VEK_CMD_PARAM_OUTPUT_FILE_SECONDARY_FILE_TYPE, "MAP"},
                                   {VEK_CMD_PARAM_OUTPUT_FILE_SECONDARY_FILE_NAME, "flash.map"}}));
    EXPECT_TRUE(add_output("POF", {{VEK_CMD_PARAM_OUTPUT_FILE_SECONDARY_FILE_TYPE, "SEC_RPD"},
                                   {VEK_CMD_PARAM_OUTPUT_FILE_SECONDARY_FILE_FILE_OPTIONS_BITSWAP, "1"}}));
    const auto secondary = A::get_secondary_file_elements(&output(0));
    ASSERT_EQ(secondary.size(), 2U);
    EXPECT_EQ(secondary[0]->name, "flash.map");
    EXPECT_EQ(A::get_file_options_element(secondary[0])->bitswap, "0");
    EXPECT_EQ(A::get_file_options_element(secondary[1])->bitswap, "1");
    EXPECT_EQ(A::get_file_options_element(&output(0))->bitswap, "0");
    const PARAMS map{{VEK_CMD_PARAM_OUTPUT_FILE_TYPE, "POF"},
                     {VEK_CMD_PARAM_OUTPUT_FILE_SECONDARY_FILE_TYPE, "MAP"}};
    EXPECT_TRUE(remove(VEK_CMD_OPT_OUTPUT_FILE, map));
    EXPECT_TRUE(remove(VEK_CMD_OPT_OUTPUT_FILE, map));
    EXPECT_THAT(A::get_secondary_file_elements(&output(0)), ElementsAre(secondary[1]));
    EXPECT_TRUE(remove(VEK_CMD_OPT_OUTPUT_FILE, {{VEK_CMD_PARAM_OUTPUT_FILE_TYPE, "POF"}}));
    EXPECT_TRUE(remove(VEK_CMD_OPT_OUTPUT_FILE, map));
    EXPECT_TRUE(root.m_childs.empty());
}

TEST_F(assistant, links_of_an_output_add_up_and_go_one_by_one)
{
    for (const char* type : {"RBF", "HEX"}) {
        for (const char* id : {"B1", "B2", "B1"}) {
            EXPECT_TRUE(add_output(type, {{VEK_CMD_PARAM_OUTPUT_FILE_BITSTREAM_ID, id}}));
        }
        EXPECT_TRUE(add_output(type, {{VEK_CMD_PARAM_OUTPUT_FILE_FLASH_DEVICE_ID, "F1"}}));
    }
    EXPECT_THAT(texts(output(0).bitstream_id), ElementsAre("B1", "B2"));
    EXPECT_TRUE(remove(VEK_CMD_OPT_OUTPUT_FILE, {{VEK_CMD_PARAM_OUTPUT_FILE_BITSTREAM_ID, "B1"}}));
    EXPECT_THAT(texts(output(0).bitstream_id), ElementsAre("B2"));
    EXPECT_THAT(texts(output(1).bitstream_id), ElementsAre("B2"));
    EXPECT_TRUE(remove(VEK_CMD_OPT_OUTPUT_FILE, {{VEK_CMD_PARAM_OUTPUT_FILE_TYPE, "HEX"},
                                                 {VEK_CMD_PARAM_OUTPUT_FILE_BITSTREAM_ID, "B2"}}));
    EXPECT_THAT(texts(output(0).bitstream_id), ElementsAre("B2"));
    EXPECT_THAT(texts(output(1).bitstream_id), IsEmpty());
    EXPECT_TRUE(remove(VEK_CMD_OPT_OUTPUT_FILE, {{VEK_CMD_PARAM_OUTPUT_FILE_FLASH_DEVICE_ID, "F1"}}));
    EXPECT_THAT(texts(output(0).flash_device_id), IsEmpty());
    EXPECT_EQ(A::get_output_file_elements(&root).size(), 2U);
    EXPECT_TRUE(remove(VEK_CMD_OPT_OUTPUT_FILE, {{VEK_CMD_PARAM_OUTPUT_FILE_BITSTREAM_ID, "B9"}}));
}

TEST_F(assistant, an_id_in_a_list_carries_the_values_behind_it)
{
    EXPECT_TRUE(add_output("RBF", {{VEK_CMD_PARAM_OUTPUT_FILE_BITSTREAM_ID, "B1"},
                                   {VEK_CMD_PARAM_OUTPUT_FILE_BITSTREAM_ID_SECTION, "HPS"},
                                   {VEK_CMD_PARAM_OUTPUT_FILE_BITSTREAM_ID, "B2"},
                                   {VEK_CMD_PARAM_OUTPUT_FILE_BITSTREAM_ID_SECTION, "ALL"}}));
    ASSERT_THAT(texts(output(0).bitstream_id), ElementsAre("B1", "B2"));
    EXPECT_EQ(output(0).bitstream_id[0]->section, "HPS");
    EXPECT_EQ(output(0).bitstream_id[1]->section, "ALL");
}

TEST_F(assistant, output_types_are_the_primary_ones_in_order_and_by_their_input)
{
    for (const char* type : {"RPD", "RBF", "POF"}) {
        EXPECT_TRUE(add_output(type));
    }
    EXPECT_THAT(A::get_output_file_types(&root),
                ElementsAre(VEK_RPD_FILE_TYPE, VEK_RBF_FILE_TYPE, VEK_POF_FILE_TYPE));
    EXPECT_THAT(A::get_output_file_types(&root, true), ElementsAre(VEK_RPD_FILE_TYPE, VEK_POF_FILE_TYPE));
    EXPECT_THAT(A::get_output_file_types(&root, false), ElementsAre(VEK_RBF_FILE_TYPE));
}

TEST_F(assistant, an_assignment_takes_the_inputs_of_the_last_call)
{
    EXPECT_TRUE(assign("P1", {{VEK_CMD_PARAM_ASSIGNMENT_RAW_FILE_ID, "R1"},
                              {VEK_CMD_PARAM_ASSIGNMENT_RAW_FILE_ID_ADDR_MODE, "ABS"},
                              {VEK_CMD_PARAM_ASSIGNMENT_RAW_FILE_ID, "R2"},
                              {VEK_CMD_PARAM_ASSIGNMENT_RAW_FILE_ID_ADDR_MODE, "REL"},
                              {VEK_CMD_PARAM_ASSIGNMENT_RAW_FILE_ID_ADDR_OFFSET, "0x10"}}));
    EXPECT_THAT(raw_ids("P1"), ElementsAre("R1", "R2"));
    const auto* second = A::get_raw_file_id_elements(&root, "P1")[1];
    EXPECT_EQ(A::get_raw_file_id_element(&root, "P1")->addr_mode, "ABS");
    EXPECT_EQ(second->addr_mode, "REL");
    EXPECT_TRUE(assign("P1", {{VEK_CMD_PARAM_ASSIGNMENT_RAW_FILE_ID, "R3"},
                              {VEK_CMD_PARAM_ASSIGNMENT_RAW_FILE_ID, "R2"},
                              {VEK_CMD_PARAM_ASSIGNMENT_RAW_FILE_ID, "R3"}}));
    EXPECT_THAT(raw_ids("P1"), ElementsAre("R3", "R2"));
    EXPECT_EQ(A::get_raw_file_id_elements(&root, "P1")[1], second);
    EXPECT_EQ(second->addr_offset, "0x10");
    EXPECT_TRUE(assign("P1", {{VEK_CMD_PARAM_ASSIGNMENT_PAGE, "3"}}));
    EXPECT_THAT(raw_ids("P1"), ElementsAre("R3", "R2"));
    EXPECT_TRUE(assign("P1", {{VEK_CMD_PARAM_ASSIGNMENT_BITSTREAM_ID, "B1"},
                              {VEK_CMD_PARAM_ASSIGNMENT_BITSTREAM_ID, "B2"}}));
    EXPECT_THAT(raw_ids("P1"), IsEmpty());
    EXPECT_EQ(A::get_bitstream_id_element(&root, "P1")->text, "B2");
    EXPECT_EQ(A::get_assignment_element(&root, "P1")->bitstream_id.size(), 1U);
    EXPECT_EQ(A::get_assignment_element(&root, "P1")->page, "3");
    EXPECT_TRUE(assign("P1", {{VEK_CMD_PARAM_ASSIGNMENT_BITSTREAM_ID, "B1"},
                              {VEK_CMD_PARAM_ASSIGNMENT_BITSTREAM_ID, "B2"}}));
    EXPECT_EQ(A::get_assignment_element(&root, "P1")->bitstream_id.size(), 1U);
}

TEST_F(assistant, partitions_are_found_by_what_they_hold)
{
    EXPECT_TRUE(assign("P2", {{VEK_CMD_PARAM_ASSIGNMENT_BITSTREAM_ID, "B1"}}));
    EXPECT_TRUE(assign("P1", {{VEK_CMD_PARAM_ASSIGNMENT_BITSTREAM_ID, "B1"}}));
    EXPECT_TRUE(assign(
        "P3", {{VEK_CMD_PARAM_ASSIGNMENT_RAW_FILE_ID, "R1"}, {VEK_CMD_PARAM_ASSIGNMENT_RAW_FILE_ID, "R2"}}));
    EXPECT_THAT(A::get_partition_ids(&root, "B1", ""), ElementsAre("P2", "P1"));
    EXPECT_THAT(A::get_partition_ids(&root, "", "R2"), ElementsAre("P3"));
    EXPECT_THAT(A::get_partition_ids(&root, "", ""), IsEmpty());
}

TEST_F(assistant, removing_from_an_assignment_is_idempotent_and_ends_with_its_last_input)
{
    EXPECT_TRUE(remove(VEK_CMD_OPT_ASSIGNMENT, {{VEK_CMD_PARAM_ASSIGNMENT_PARTITION_ID, "P1"}}));
    EXPECT_TRUE(assign("P1", {{VEK_CMD_PARAM_ASSIGNMENT_RAW_FILE_ID, "R1"},
                              {VEK_CMD_PARAM_ASSIGNMENT_RAW_FILE_ID, "R2"},
                              {VEK_CMD_PARAM_ASSIGNMENT_RAW_FILE_ID, "R3"}}));
    EXPECT_TRUE(remove(VEK_CMD_OPT_ASSIGNMENT, {{VEK_CMD_PARAM_ASSIGNMENT_PARTITION_ID, "P1"},
                                                {VEK_CMD_PARAM_ASSIGNMENT_RAW_FILE_ID, "R2"},
                                                {VEK_CMD_PARAM_ASSIGNMENT_RAW_FILE_ID, "R9"}}));
    EXPECT_THAT(raw_ids("P1"), ElementsAre("R1", "R3"));
    EXPECT_TRUE(assign("P1", {{VEK_CMD_PARAM_ASSIGNMENT_RAW_FILE_ID, "R1"},
                              {VEK_CMD_PARAM_ASSIGNMENT_RAW_FILE_ID, "R2"},
                              {VEK_CMD_PARAM_ASSIGNMENT_RAW_FILE_ID, "R3"}}));
    EXPECT_TRUE(remove(VEK_CMD_OPT_ASSIGNMENT, {{VEK_CMD_PARAM_ASSIGNMENT_PARTITION_ID, "P1"},
                                                {VEK_CMD_PARAM_ASSIGNMENT_RAW_FILE_ID, "R2"},
                                                {VEK_CMD_PARAM_ASSIGNMENT_RAW_FILE_ID, "R2"}}))
        << "named twice, removed once";
    EXPECT_THAT(raw_ids("P1"), ElementsAre("R1", "R3"));
    EXPECT_TRUE(remove(VEK_CMD_OPT_ASSIGNMENT, {{VEK_CMD_PARAM_ASSIGNMENT_PARTITION_ID, "P1"},
                                                {VEK_CMD_PARAM_ASSIGNMENT_RAW_FILE_ID, "R1"},
                                                {VEK_CMD_PARAM_ASSIGNMENT_RAW_FILE_ID, "R3"}}));
    EXPECT_EQ(A::get_assignment_element(&root, "P1"), nullptr);
    EXPECT_TRUE(root.assignments.empty());
    EXPECT_TRUE(assign("P1", {{VEK_CMD_PARAM_ASSIGNMENT_BITSTREAM_ID, "B1"}}));
    EXPECT_TRUE(remove(VEK_CMD_OPT_ASSIGNMENT, {{VEK_CMD_PARAM_ASSIGNMENT_PARTITION_ID, "P1"},
                                                {VEK_CMD_PARAM_ASSIGNMENT_BITSTREAM_ID, "B2"}}));
    EXPECT_NE(A::get_assignment_element(&root, "P1"), nullptr);
    EXPECT_TRUE(remove(VEK_CMD_OPT_ASSIGNMENT, {{VEK_CMD_PARAM_ASSIGNMENT_PARTITION_ID, "P1"}}));
    EXPECT_EQ(A::get_assignment_element(&root, "P1"), nullptr);
    EXPECT_FALSE(remove(VEK_CMD_OPT_ASSIGNMENT, {{VEK_CMD_PARAM_ASSIGNMENT_PARTITION_ID, "P1"},
                                                 {VEK_CMD_PARAM_ASSIGNMENT_PAGE, "1"}}));
}

TEST_F(assistant, partitions_stand_under_their_device_and_within_an_mbr)
{
    EXPECT_TRUE(add_partition("F1", "P1"));
    EXPECT_TRUE(add_partition("F1", "P2"));
    EXPECT_TRUE(add_partition("F2", "P3"));
    EXPECT_TRUE(set(VEK_CMD_OPT_FLASH_DEVICE, {{VEK_CMD_PARAM_FLASH_DEVICE_ID, "F1"},
                                               {VEK_CMD_PARAM_FLASH_DEVICE_MBR_ID, "M"},
                                               {VEK_CMD_PARAM_FLASH_DEVICE_MBR_PARTITION_ID, "P4"},
                                               {VEK_CMD_PARAM_FLASH_DEVICE_MBR_PARTITION_SIZE, "512"}}));
    EXPECT_THAT(A::get_flash_device_ids(&root), ElementsAre("F1", "F2"));
    EXPECT_EQ(A::get_partition_elements(&root, "F1").size(), 2U);
    EXPECT_EQ(A::get_partition_elements(&root, "F1")[0]->s_addr, "auto");
    ASSERT_EQ(A::get_mbr_elements(&root, "F1").size(), 1U);
    EXPECT_EQ(A::get_partition_element(&root, "P4"), A::get_mbr_elements(&root, "F1")[0]->partition[0]);
    EXPECT_EQ(A::get_partition_element(&root, "P4")->size, "512");
    EXPECT_EQ(A::get_partition_element(&root, "F1", "P3"), nullptr);
    EXPECT_EQ(A::get_partition_element(&root, "P3"), A::get_partition_element(&root, "F2", "P3"));
    EXPECT_FALSE(add_partition("F2", "P1"));
    EXPECT_FALSE(add_partition("F1", "P4"));
    EXPECT_TRUE(remove(VEK_CMD_OPT_FLASH_DEVICE, {{VEK_CMD_PARAM_FLASH_DEVICE_ID, "F1"},
                                                  {VEK_CMD_PARAM_FLASH_DEVICE_PARTITION_ID, "M"}}));
    EXPECT_TRUE(remove(VEK_CMD_OPT_FLASH_DEVICE, {{VEK_CMD_PARAM_FLASH_DEVICE_ID, "F1"},
                                                  {VEK_CMD_PARAM_FLASH_DEVICE_PARTITION_ID, "P1"}}));
    EXPECT_THAT(A::get_partition_elements(&root, "F1"), ElementsAre(A::get_partition_element(&root, "P2")));
    EXPECT_EQ(A::get_mbr_elements(&root, "F1").size(), 1U);
    EXPECT_TRUE(remove(VEK_CMD_OPT_FLASH_DEVICE, {{VEK_CMD_PARAM_FLASH_DEVICE_ID, "F1"}}));
    EXPECT_EQ(A::get_partition_element(&root, "P4"), nullptr);
}

TEST_F(assistant, flash_devices_stay_while_there_is_a_loader)
{
    EXPECT_TRUE(add_partition("F1", "P1"));
    EXPECT_TRUE(set(VEK_CMD_OPT_FLASH_LOADER, {{VEK_CMD_PARAM_FLASH_LOADER_FLASH_LOADER, "LD1"}}));
    EXPECT_TRUE(set(VEK_CMD_OPT_FLASH_LOADER, {{VEK_CMD_PARAM_FLASH_LOADER_FLASH_LOADER, "LD2"}}));
    EXPECT_THAT(texts(A::get_flash_loader_elements(&root)), ElementsAre("LD2"));
    EXPECT_TRUE(remove(VEK_CMD_OPT_FLASH_DEVICE, {{VEK_CMD_PARAM_FLASH_DEVICE_ID, "F1"}}));
    EXPECT_EQ(root.flash_devices.size(), 1U);
    EXPECT_TRUE(remove(VEK_CMD_OPT_FLASH_LOADER, {{VEK_CMD_PARAM_FLASH_LOADER_FLASH_LOADER, "LD1"}}));
    EXPECT_THAT(texts(A::get_flash_loader_elements(&root)), ElementsAre("LD2"));
    EXPECT_TRUE(remove(VEK_CMD_OPT_FLASH_LOADER, {{VEK_CMD_PARAM_FLASH_LOADER_FLASH_LOADER, "LD2"}}));
    EXPECT_TRUE(root.m_childs.empty());
    EXPECT_TRUE(remove(VEK_CMD_OPT_FLASH_LOADER, {}));
}

TEST_F(assistant, a_renamed_partition_keeps_its_assignment)
{
    EXPECT_TRUE(add_partition("F1", "P1"));
    EXPECT_TRUE(add_partition("F1", "P2"));
    EXPECT_TRUE(assign("P1", {{VEK_CMD_PARAM_ASSIGNMENT_BITSTREAM_ID, "B1"}}));
    EXPECT_TRUE(assign("New", {{VEK_CMD_PARAM_ASSIGNMENT_BITSTREAM_ID, "Orphan"}}));
    const auto* partition = A::get_partition_element(&root, "P1");
    EXPECT_TRUE(A::modify_partition_id(&root, "New", "P1", "F1"));
    EXPECT_EQ(partition->id, "New");
    EXPECT_EQ(A::get_assignment_element(&root, "P1"), nullptr);
    EXPECT_EQ(A::get_bitstream_id_element(&root, "New")->text, "B1");
    EXPECT_THAT(A::get_partition_ids(&root, "Orphan", ""), IsEmpty());
    EXPECT_TRUE(A::modify_partition_id(&root, "New", "New", "F1"));
    EXPECT_FALSE(A::modify_partition_id(&root, "P2", "New", "F1"));
    EXPECT_FALSE(A::modify_partition_id(&root, "", "New", "F1"));
    EXPECT_FALSE(A::modify_partition_id(&root, "P9", "P8", "F1"));
    EXPECT_FALSE(A::modify_partition_id(&root, "P9", "New", "F2"));
}

TEST_F(assistant, internal_options_come_from_the_device)
{
    EXPECT_TRUE(set(VEK_CMD_OPT_FLASH_DEVICE, {{VEK_CMD_PARAM_FLASH_DEVICE_ID, "F1"}}));
    DSET_OTI_DEV_OPTIONS_INFO options;
    EXPECT_TRUE(A::get_internal_configuration_options(&root, options, "F1"));
    EXPECT_EQ(options.power_on_scheme, 0U);
    EXPECT_TRUE(options.user_ios_weak_pullup);
    EXPECT_TRUE(options.not_cfm0_only);
    EXPECT_FALSE(options.watchdog_enabled);
    EXPECT_FALSE(options.fallback_enabled);
    EXPECT_TRUE(options.force_ssmclk_to_use_ismclk);
    EXPECT_TRUE(options.disable_test);
    EXPECT_TRUE(set(VEK_CMD_OPT_FLASH_DEVICE, {{VEK_CMD_PARAM_FLASH_DEVICE_ID, "F1"},
                                               {VEK_CMD_PARAM_FLASH_DEVICE_POWER_ON_SCHEME, "2"},
                                               {VEK_CMD_PARAM_FLASH_DEVICE_ENABLE_USER_IOS_WEAK_PULLUP, "0"},
                                               {VEK_CMD_PARAM_FLASH_DEVICE_CONFIG_FROM_CFM0_ONLY, "1"},
                                               {VEK_CMD_PARAM_FLASH_DEVICE_ISP_SOURCE, "1"},
                                               {VEK_CMD_PARAM_FLASH_DEVICE_ENABLE_JTAG_SECURITY, "1"},
                                               {VEK_CMD_PARAM_FLASH_DEVICE_ENABLE_VERIFY_PROTECT, "1"},
                                               {VEK_CMD_PARAM_FLASH_DEVICE_ENABLE_ENCRYPTED_POF_ONLY, "1"},
                                               {VEK_CMD_PARAM_FLASH_DEVICE_WATCHDOG_VALUE, "4096"},
                                               {VEK_CMD_PARAM_FLASH_DEVICE_ENABLE_SPI_MODE, "1"},
                                               {VEK_CMD_PARAM_FLASH_DEVICE_FALLBACK_ADDRESS, "0x800"},
                                               {VEK_CMD_PARAM_FLASH_DEVICE_FORCE_SSMCLK_TO_USE_ISMCLK, "0"},
                                               {VEK_CMD_PARAM_FLASH_DEVICE_UFM_SOURCE, "2"},
                                               {VEK_CMD_PARAM_FLASH_DEVICE_UFM_SOURCE_FILE, "ufm.hex"},
                                               {VEK_CMD_PARAM_FLASH_DEVICE_ENABLE_TEST, "1"},
                                               {VEK_CMD_PARAM_FLASH_DEVICE_DISABLE_TEST, "0"}}));
    EXPECT_TRUE(A::get_internal_configuration_options(&root, options, "F1"));
    EXPECT_EQ(options.power_on_scheme, 2U);
    EXPECT_FALSE(options.user_ios_weak_pullup);
    EXPECT_FALSE(options.not_cfm0_only);
    EXPECT_TRUE(options.isp_source && options.jtag_security && options.verify_protect &&
                options.encrypted_pof_only);
    EXPECT_TRUE(options.watchdog_enabled);
    EXPECT_EQ(options.watchdog_value, 4096U);
    EXPECT_TRUE(options.spi_mode && options.fallback_enabled && options.enable_test);
    EXPECT_EQ(options.fallback_address, 2048U);
    EXPECT_FALSE(options.force_ssmclk_to_use_ismclk);
    EXPECT_FALSE(options.disable_test);
    EXPECT_EQ(options.ufm_source, 2U);
    EXPECT_EQ(options.ufm_source_file, "ufm.hex");
    EXPECT_TRUE(options.option_flag_a && options.option_flag_b);

    EXPECT_TRUE(set(VEK_CMD_OPT_FLASH_DEVICE, {{VEK_CMD_PARAM_FLASH_DEVICE_ID, "F1"},
                                               {VEK_CMD_PARAM_FLASH_DEVICE_POWER_ON_SCHEME, "3 or so"},
                                               {VEK_CMD_PARAM_FLASH_DEVICE_WATCHDOG_VALUE, "4096 ms"},
                                               {VEK_CMD_PARAM_FLASH_DEVICE_FALLBACK_ADDRESS, "0XA00"}}));
    EXPECT_TRUE(A::get_internal_configuration_options(&root, options, "F1"));
    EXPECT_EQ(options.power_on_scheme, 2U) << "what is no number changes nothing";
    EXPECT_FALSE(options.watchdog_enabled);
    EXPECT_TRUE(options.fallback_enabled);
    EXPECT_EQ(options.fallback_address, 0xA00U);
}

TEST_F(assistant, get_answers_the_query_in_its_order)
{
    EXPECT_TRUE(set(VEK_CMD_OPT_BITSTREAM, {{VEK_CMD_PARAM_BITSTREAM_ID, "B"},
                                            {VEK_CMD_PARAM_BITSTREAM_PATH, "top.sof"},
                                            {VEK_CMD_PARAM_BITSTREAM_PATH_COMPRESSION, "1"}}));
    EXPECT_EQ(get(VEK_CMD_OPT_BITSTREAM, {{VEK_CMD_PARAM_BITSTREAM_ID, "B"},
                                          {VEK_CMD_PARAM_BITSTREAM_PATH, "top.sof"},
                                          {VEK_CMD_PARAM_BITSTREAM_PATH_SIGNING, ""},
                                          {VEK_CMD_PARAM_BITSTREAM_PATH_COMPRESSION, ""}}),
              (PARAMS{{VEK_CMD_PARAM_BITSTREAM_ID, "B"},
                      {VEK_CMD_PARAM_BITSTREAM_PATH, "top.sof"},
                      {VEK_CMD_PARAM_BITSTREAM_PATH_SIGNING, "OFF"},
                      {VEK_CMD_PARAM_BITSTREAM_PATH_COMPRESSION, "1"}}));
    EXPECT_THAT(get(VEK_CMD_OPT_BITSTREAM, {{VEK_CMD_PARAM_BITSTREAM_ID, "X"}}), IsEmpty());
    EXPECT_EQ(get(VEK_CMD_OPT_BITSTREAM, {{VEK_CMD_PARAM_BITSTREAM_ID, "B"}}),
              (PARAMS{{VEK_CMD_PARAM_BITSTREAM_ID, "B"}, {VEK_CMD_PARAM_BITSTREAM_PATH, "top.sof"}}));
}

TEST_F(assistant, get_of_a_raw_file_answers_nothing_beside_the_query)
{
    EXPECT_TRUE(set(VEK_CMD_OPT_RAW_FILE, {{VEK_CMD_PARAM_RAW_FILE_ID, "R"},
                                           {VEK_CMD_PARAM_RAW_FILE_TYPE, "HEX"},
                                           {VEK_CMD_PARAM_RAW_FILE_RAW_FILE, "a.hex"}}));
    EXPECT_EQ(get(VEK_CMD_OPT_RAW_FILE, {{VEK_CMD_PARAM_RAW_FILE_ID, "R"},
                                         {VEK_CMD_PARAM_RAW_FILE_RAW_FILE, "a.hex"},
                                         {VEK_CMD_PARAM_RAW_FILE_BITSWAP, ""}}),
              (PARAMS{{VEK_CMD_PARAM_RAW_FILE_ID, "R"},
                      {VEK_CMD_PARAM_RAW_FILE_RAW_FILE, "a.hex"},
                      {VEK_CMD_PARAM_RAW_FILE_BITSWAP, "0"}}));
    EXPECT_EQ(get(VEK_CMD_OPT_RAW_FILE, {{VEK_CMD_PARAM_RAW_FILE_ID, "R"}}),
              (PARAMS{{VEK_CMD_PARAM_RAW_FILE_ID, "R"},
                      {VEK_CMD_PARAM_RAW_FILE_RAW_FILE, "a.hex"},
                      {VEK_CMD_PARAM_RAW_FILE_BITSWAP, "0"},
                      {VEK_CMD_PARAM_RAW_FILE_TYPE, "HEX"}}));
}

TEST_F(assistant, what_get_answers_to_keys_alone_sets_the_same_element_anew)
{
    EXPECT_TRUE(assign("P1", {{VEK_CMD_PARAM_ASSIGNMENT_RAW_FILE_ID, "R1"},
                              {VEK_CMD_PARAM_ASSIGNMENT_RAW_FILE_ID_ADDR_MODE, "ABS"},
                              {VEK_CMD_PARAM_ASSIGNMENT_RAW_FILE_ID, "R2"},
                              {VEK_CMD_PARAM_ASSIGNMENT_PAGE, "2"}}));
    EXPECT_TRUE(add_output("SVF", {{VEK_CMD_PARAM_OUTPUT_FILE_BITSTREAM_ID, "B1"},
                                   {VEK_CMD_PARAM_OUTPUT_FILE_BITSTREAM_ID, "B2"},
                                   {VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_FREQUENCY, "10"},
                                   {VEK_CMD_PARAM_OUTPUT_FILE_PROVISION_OPTIONS_PASSWORD, "hidden"}}));
    PGM_COMMON_XML_VEK_VEK copy(PGM_COMMON_XML_ENUM_VEK);
    const PARAMS assignment = get(VEK_CMD_OPT_ASSIGNMENT, {{VEK_CMD_PARAM_ASSIGNMENT_PARTITION_ID, "P1"}});
    const PARAMS svf = get(VEK_CMD_OPT_OUTPUT_FILE, {{VEK_CMD_PARAM_OUTPUT_FILE_TYPE, "SVF"}});
    for (const auto& [param, text] : svf) {
        EXPECT_NE(text, "hidden");
    }
    EXPECT_TRUE(A::set(&copy, VEK_CMD_OPT_ASSIGNMENT, assignment));
    EXPECT_TRUE(A::set(&copy, VEK_CMD_OPT_OUTPUT_FILE, svf));
    EXPECT_EQ(A::get(&copy, VEK_CMD_OPT_ASSIGNMENT, {{VEK_CMD_PARAM_ASSIGNMENT_PARTITION_ID, "P1"}}),
              assignment);
    EXPECT_EQ(A::get(&copy, VEK_CMD_OPT_OUTPUT_FILE, {{VEK_CMD_PARAM_OUTPUT_FILE_TYPE, "SVF"}}), svf);
    EXPECT_EQ(get(VEK_CMD_OPT_OUTPUT_FILE, {{VEK_CMD_PARAM_OUTPUT_FILE_TYPE, "SVF"},
                                            {VEK_CMD_PARAM_OUTPUT_FILE_PROVISION_OPTIONS_PASSWORD, ""}})
                  .back()
                  .second,
              "hidden");
}

TEST_F(assistant, a_secret_that_is_set_anew_leaves_no_trace_in_its_memory)
{
    const auto set_password = [this](const std::string& password) {
        return set(VEK_CMD_OPT_BITSTREAM, {{VEK_CMD_PARAM_BITSTREAM_ID, "B"},
                                           {VEK_CMD_PARAM_BITSTREAM_PATH, "top.sof"},
                                           {VEK_CMD_PARAM_BITSTREAM_PATH_PASSWORD, password}});
    };
    EXPECT_TRUE(set_password("correct horse battery staple"));
    const auto* const path = A::get_path_element(&root, "B", "top.sof");
    const char* const memory = path->password.data();
    EXPECT_TRUE(set_password("x"));
    ASSERT_EQ(path->password.data(), memory);
    EXPECT_EQ(std::string(memory, 28), "x" + std::string(27, '\0'));
}
