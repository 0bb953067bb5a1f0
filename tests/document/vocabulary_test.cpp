#include "child_process.h"
#include "expected_parameters.h"
#include "pgm_common_xml_descriptor.h"
#include "pgm_common_xml_enum.h"
#include "pgm_common_xml_vek_cmd_enum.h"
#include "temporary_directory.h"

#include <gtest/gtest.h>

#include <cctype>
#include <map>
#include <set>
#include <string>

namespace
{

const char* text_of(unsigned row)
{
    return PGM_COMMON_XML_ENUM_STRING[row];
}

} // namespace

TEST(vocabulary, has_470_names_and_a_last_row_all_of_them_distinct)
{
    ASSERT_EQ(PGM_COMMON_XML_ENUM_STRING.size(), 471U);
    std::set<std::string> texts;
    for (const char* text : PGM_COMMON_XML_ENUM_STRING) {
        EXPECT_TRUE(texts.insert(text).second) << text;
    }
    EXPECT_EQ(PGM_COMMON_XML_ENUM__INVALID__, 0U);
    EXPECT_EQ(PGM_COMMON_XML_ENUM__MAX__, 470U);
    EXPECT_STREQ(text_of(0), "_INVALID__");
    EXPECT_STREQ(text_of(470), "_MAX__");
}

TEST(vocabulary, rows_of_the_setup_document_stand_at_their_numbers)
{
    const std::map<unsigned, std::vector<const char*>> rows{
        {105, {"0", "1", "2", "3"}},
        {151, {"OFF", "ON"}},
        {231, {"BITSTREAM"}},
        {301, {"SETTINGS"}},
        {305, {"BOOL", "HEX", "DECIMAL"}},
        {378,
         {"CVP_GROUP", "HPS_GROUP", "PS", "FPP", "ASX1", "ASX4", "LNKSX8", "LNKSX16", "LNKSX32", "INTERNAL"}},
        {388,
         {"RBF",
          "TTF",
          "JIC",
          "POF",
          "RPD",
          "PRRBF",
          "CVP_CORE_RBF",
          "HPS_CORE_RBF",
          "PERIPH_RBF",
          "PERIPH_JIC",
          "PERIPH_POF",
          "PERIPH_RPD",
          "MAP",
          "SEC_RPD",
          "JAM",
          "JBC",
          "SVF",
          "EKP",
          "QSPI_HELPER_RBF",
          "HELPER_RBF",
          "HELPER_RBF_CMD",
          "SOF",
          "PUF",
          "WKEY",
          "CCERT",
          "NON_JTAG_PROVISION_RBF",
          "RIM",
          "ABS",
          "REL",
          "HPS",
          "ALL",
          "PEM",
          "UP",
          "DOWN",
          "1_5V",
          "1_8V",
          "2_5V",
          "3_3V",
          "5_0V",
          "P",
          "V",
          "PB",
          "INVALID"}},
        {431,
         {"IID_PUF_WRAPPED_AES_KEY",
          "BLUEMARK_PUF_WRAPPED_AES_KEY",
          "BBRAM_AES_KEY",
          "BBRAM_WRAPPED_AES_KEY",
          "BBRAM_IID_PUF_WRAPPED_AES_KEY",
          "BBRAM_BLUEMARK_PUF_WRAPPED_AES_KEY",
          "EFUSE_WRAPPED_AES_KEY",
          "EFUSE_IID_PUF_WRAPPED_AES_KEY",
          "EFUSE_BLUEMARK_PUF_WRAPPED_AES_KEY",
          "CANCEL_KEY_HASH",
          "CANCEL_BLUEMARK_KEY",
          "CANCEL_OWNER_KEY",
          "SVN_COUNTER_0",
          "SVN_COUNTER_1",
          "SVN_COUNTER_2",
          "SVN_COUNTER_3",
          "PROVISION",
          "DEBUG",
          "RAW_FILES",
          "RAW_FILE",
          "ASSIGNMENTS",
          "ASSIGNMENT",
          "RAW_FILE_ID",
          "BITSTREAM_ID",
          "BITSTREAMS",
          "PATH",
          "FLASH_DEVICES",
          "FLASH_LOADER",
          "FLASH_DEVICE",
          "PARTITION",
          "MBR",
          "OUTPUT_FILES",
          "OUTPUT_FILE",
          "PROVISION_OPTIONS",
          "SECONDARY_FILE",
          "FILE_OPTIONS",
          "CCERT_OPTIONS",
          "FLASH_DEVICE_ID",
          "VEK"}},
    };
    std::set<unsigned> used{0, 470};
    for (const auto& [first, texts] : rows) {
        for (unsigned offset = 0; offset < texts.size(); ++offset) {
            EXPECT_STREQ(text_of(first + offset), texts[offset]);
            used.insert(first + offset);
        }
    }
    for (unsigned row = 0; row <= 470; ++row) {
        if (!used.contains(row)) {
            EXPECT_EQ(std::string(text_of(row)).substr(0, 15), "OTHER_DOCUMENT_") << row;
        }
    }
}

TEST(vocabulary, options_have_their_names)
{
    const std::vector<std::string> names{"invalid",     "raw_file",     "assignment",   "settings",
                                         "output_file", "flash_loader", "flash_device", "bitstream"};
    ASSERT_EQ(PGM_COMMON_XML_VEK_CMD_OPT.size(), names.size());
    for (unsigned option = 0; option < names.size(); ++option) {
        EXPECT_EQ(PGM_COMMON_XML_VEK_CMD_OPT[option], names[option]);
        EXPECT_EQ(pgm_common_xml_find_vek_cmd_opt(names[option]), option);
    }
    EXPECT_EQ(pgm_common_xml_find_vek_cmd_opt("bit_stream"), VEK_CMD_OPT_INVALID);
}

TEST(vocabulary, parameters_stand_in_their_order)
{
    ASSERT_EQ(VEK_CMD_PARAM_MAX, 143U);
    ASSERT_EQ(PGM_COMMON_XML_VEK_CMD_PARAM.size(), 143U);
    for (unsigned number = 0; number < EXPECTED_PARAMETERS.size(); ++number) {
        EXPECT_EQ(EXPECTED_PARAMETERS[number], number);
    }
}

TEST(vocabulary, parameters_belong_to_the_option_of_their_range)
{
    const std::vector<std::pair<unsigned, PGM_COMMON_XML_VEK_CMD_OPT_ENUM>> last_of_option{
        {0, VEK_CMD_OPT_INVALID},       {4, VEK_CMD_OPT_RAW_FILE},     {11, VEK_CMD_OPT_ASSIGNMENT},
        {13, VEK_CMD_OPT_SETTINGS},     {58, VEK_CMD_OPT_OUTPUT_FILE}, {59, VEK_CMD_OPT_FLASH_LOADER},
        {97, VEK_CMD_OPT_FLASH_DEVICE}, {142, VEK_CMD_OPT_BITSTREAM},  {143, VEK_CMD_OPT_INVALID}};
    unsigned number = 0;
    for (const auto& [last, option] : last_of_option) {
        for (; number <= last; ++number) {
            EXPECT_EQ(pgm_common_xml_vek_cmd_opt_of(static_cast<PGM_COMMON_XML_VEK_CMD_PARAM_ENUM>(number)),
                      option)
                << number;
        }
    }
}

TEST(vocabulary, parameter_names_are_unique_within_an_option_and_found_by_it)
{
    for (unsigned number = 1; number < VEK_CMD_PARAM_MAX; ++number) {
        const auto param = static_cast<PGM_COMMON_XML_VEK_CMD_PARAM_ENUM>(number);
        EXPECT_EQ(pgm_common_xml_find_vek_cmd_param(pgm_common_xml_vek_cmd_opt_of(param),
                                                    PGM_COMMON_XML_VEK_CMD_PARAM[number]),
                  param)
            << PGM_COMMON_XML_VEK_CMD_PARAM[number];
    }
    EXPECT_STREQ(PGM_COMMON_XML_VEK_CMD_PARAM[VEK_CMD_PARAM_BITSTREAM_PATH_KEY_FILE1], "path_key_file1");
    EXPECT_STREQ(PGM_COMMON_XML_VEK_CMD_PARAM[VEK_CMD_PARAM_RAW_FILE_RAW_FILE], "raw_file");
    EXPECT_STREQ(PGM_COMMON_XML_VEK_CMD_PARAM[VEK_CMD_PARAM_BITSTREAM_PATH], "path");
    EXPECT_STREQ(PGM_COMMON_XML_VEK_CMD_PARAM[VEK_CMD_PARAM_OUTPUT_FILE_SECONDARY_FILE_TYPE],
                 "secondary_file_type");
    EXPECT_EQ(pgm_common_xml_find_vek_cmd_param(VEK_CMD_OPT_RAW_FILE, "path"), VEK_CMD_PARAM_INVALID);
    EXPECT_EQ(pgm_common_xml_find_vek_cmd_param(VEK_CMD_OPT_RAW_FILE, "id"), VEK_CMD_PARAM_RAW_FILE_ID);
    EXPECT_EQ(pgm_common_xml_find_vek_cmd_param(VEK_CMD_OPT_BITSTREAM, "id"), VEK_CMD_PARAM_BITSTREAM_ID);
}

TEST(vocabulary, every_attribute_and_text_below_the_groups_has_one_parameter)
{
    std::size_t values = 0;
    for (const auto& option :
         {VEK_CMD_OPT_RAW_FILE, VEK_CMD_OPT_ASSIGNMENT, VEK_CMD_OPT_SETTINGS, VEK_CMD_OPT_OUTPUT_FILE,
          VEK_CMD_OPT_FLASH_LOADER, VEK_CMD_OPT_FLASH_DEVICE, VEK_CMD_OPT_BITSTREAM}) {
        std::vector<PGM_COMMON_XML_ENUM> open{pgm_common_xml_vek_option(option).element};
        while (!open.empty()) {
            const auto* element = pgm_common_xml_vek_find_element(open.back());
            open.pop_back();
            ASSERT_NE(element, nullptr);
            values += element->attributes.size() + (element->text_type == PGM_XML_TYPE_NONE ? 0 : 1);
            for (const auto& child : element->children) {
                open.push_back(child.kind);
            }
        }
    }
    EXPECT_EQ(values, 142U);
}

TEST(generator, gives_the_committed_files)
{
    const CHILD_RESULT result =
        run_program({"python3", IMAGEWRIGHT_SOURCE_DIR "/tools/generate_document.py", "--check"});
    EXPECT_EQ(result.exit_code, 0) << result.err;
}

TEST(generator, names_a_file_that_differs)
{
    const CHILD_RESULT result = run_program({"python3", "-c",
                                             "import sys, pathlib, tempfile, shutil\n"
                                             "root = pathlib.Path(sys.argv[1])\n"
                                             "sys.path.insert(0, str(root / 'tools'))\n"
                                             "sys.dont_write_bytecode = True\n"
                                             "import generate_document as g\n"
                                             "with tempfile.TemporaryDirectory() as d:\n"
                                             "    d = pathlib.Path(d)\n"
                                             "    shutil.copytree(root / 'tools', d / 'tools')\n"
                                             "    shutil.copytree(root / 'h', d / 'h')\n"
                                             "    (d / 'h/pgm_common_xml_enum.h').write_text('x')\n"
                                             "    sys.argv = ['g', '--check', '--root', str(d)]\n"
                                             "    sys.exit(g.main())\n",
                                             IMAGEWRIGHT_SOURCE_DIR});
    EXPECT_EQ(result.exit_code, 1);
    EXPECT_EQ(result.err, "h/pgm_common_xml_enum.h is not what tools/document_schema.json gives; run "
                          "tools/generate_document.py\n");
}

TEST(setup_file_page, describes_every_element_and_every_attribute_that_a_file_may_hold)
{
    const std::string page = read_text_file(IMAGEWRIGHT_SOURCE_DIR "/docs/formats/setup-file.md");
    for (const auto& element : pgm_common_xml_vek_elements()) {
        const std::size_t start = page.find("\n### " + std::string(element.tag) + "\n");
        ASSERT_NE(start, std::string::npos) << element.tag;
        const std::string section = page.substr(start, page.find("\n##", start + 1) - start);
        for (const auto& attribute : element.attributes) {
            const bool is_described =
                section.find("\n| " + std::string(attribute.name) + " |") != std::string::npos;
            EXPECT_EQ(is_described, attribute.type != PGM_XML_TYPE_SECRET) << element.tag << attribute.name;
        }
    }
}
