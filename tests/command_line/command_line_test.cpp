#include "command_run.h"
#include "pgm_common_xml_vek_cmd_enum.h"
#include "vek_db.h"
#include "vek_file_assistant.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>

namespace
{

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsSupersetOf;
using testing::Not;
using testing::StartsWith;

std::vector<std::string> column(const JSON& listing, const std::string& name)
{
    std::vector<std::string> values;
    for (const JSON& row : listing) {
        values.push_back(row.at(name));
    }
    return values;
}

TEST(help, lists_every_command_with_examples_and_exit_codes)
{
    const ANSWER answer = run({"--help"});
    EXPECT_EQ(answer.exit_code, EXIT_CODE_DONE);
    for (const std::string command :
         {"generate", "convert", "check", "show", "edit", "verify", "map", "inspect", "pack", "sample", "key",
          "firmware", "chain", "finalize", "list", "completion"}) {
        EXPECT_THAT(answer.out, HasSubstr("\n  " + command + " "));
        const ANSWER help = run({command, "--help"});
        EXPECT_EQ(help.exit_code, EXIT_CODE_DONE);
        EXPECT_THAT(help.out, HasSubstr("Example"));
    }
    EXPECT_THAT(answer.out, HasSubstr("Exit codes: 0 done, 1 refused by check or verify, 2 wrong usage"));
}

TEST(help, examples_of_sample_and_pack_name_a_device_that_exists)
{
    for (const std::string command : {"sample", "pack"}) {
        EXPECT_THAT(run({command, "--help"}).out, HasSubstr("--device BS1L40"));
    }
    EXPECT_THAT(column(run({"list", "devices", "--json"}).json(), "device"), testing::Contains("BS1L40"));
}

TEST(version, is_that_of_the_project)
{
    const std::string project = read_text_file(IMAGEWRIGHT_SOURCE_DIR "/CMakeLists.txt");
    const ANSWER answer = run({"--version"});
    EXPECT_EQ(answer.exit_code, EXIT_CODE_DONE);
    ASSERT_THAT(answer.out, StartsWith("imagewright-cmd "));
    const std::string number =
        answer.out.substr(std::string("imagewright-cmd ").size(), answer.out.find('\n') - 16);
    EXPECT_THAT(project, HasSubstr("project(imagewright VERSION " + number + " "));
}

TEST(wrong_usage, is_told_on_the_error_stream)
{
    const ANSWER answer = run({"generate"});
    EXPECT_EQ(answer.exit_code, EXIT_CODE_USAGE);
    EXPECT_EQ(answer.out, "");
    EXPECT_THAT(answer.err, HasSubstr("setup"));
}

TEST(wrong_usage, quiet_and_verbose_exclude_each_other)
{
    EXPECT_EQ(run({"list", "modes", "--quiet", "--verbose"}).exit_code, EXIT_CODE_USAGE);
}

TEST(wrong_usage, a_scheme_that_is_none_lists_the_words)
{
    const ANSWER answer = run({"sample", "--device", "BS1L15", "--scheme", "XYZ", "-o", "a.sof"});
    EXPECT_EQ(answer.exit_code, EXIT_CODE_USAGE);
    EXPECT_THAT(answer.err, HasSubstr("\"XYZ\" is no configuration scheme; use one of "));
    EXPECT_THAT(answer.err, HasSubstr("ASX4"));
}

TEST(list, families_are_those_on_offer_with_their_modes)
{
    const JSON families = run({"list", "families", "--json"}).json();
    EXPECT_THAT(column(families, "family"),
                testing::UnorderedElementsAre("Basalt", "Calcite", "Dolomite", "Feldspar", "Hematite",
                                              "Granite", "Zircon", "Gypsum"));
    for (const JSON& row : families) {
        if (row.at("family") == "Gypsum") {
            EXPECT_EQ(row.at("modes"), JSON({"INTERNAL"}));
            EXPECT_EQ(row.at("number"), 71);
        }
    }
}

TEST(list, modes_stand_in_the_order_of_the_window)
{
    EXPECT_THAT(column(run({"list", "modes", "--json"}).json(), "mode"),
                ElementsAre("ASX1", "ASX4", "PS", "FPP", "LNKSX8", "LNKSX16", "LNKSX32", "INTERNAL"));
}

TEST(list, flash_names_what_the_database_has)
{
    const JSON flash = run({"list", "flash", "--json"}).json();
    for (const JSON& row : flash) {
        if (row.at("device") == "W25Q128JV") {
            EXPECT_EQ(row.at("jedec_id"), "EF 40 18");
            EXPECT_EQ(row.at("bytes"), 16 * 1024 * 1024);
            return;
        }
    }
    ADD_FAILURE() << "no W25Q128JV";
}

TEST(list, params_are_all_of_the_interface)
{
    EXPECT_EQ(run({"list", "params", "--json"}).json().size(),
              static_cast<std::size_t>(VEK_CMD_PARAM_MAX - 1));
}

TEST(list, outputs_are_the_types_that_are_switched_on)
{
    std::vector<std::string> expected;
    for (const VEK_FILE_TYPE type : VEK_DB::get_all_output_file_type_keys()) {
        if (VEK_DB::get_enabled(type) && !VEK_DB::get_virtual_type(type)) {
            expected.push_back(VEK_FILE_ASSISTANT::convert_xml_enum_to_string(VEK_DB::get_xml_enum(type)));
        }
    }
    EXPECT_EQ(column(run({"list", "outputs", "--json"}).json(), "type"), expected);
}

TEST(list, the_table_says_what_the_json_says)
{
    for (const std::string what : {"families", "devices", "flash", "modes", "outputs", "params"}) {
        const JSON rows = run({"list", what, "--json"}).json();
        const ANSWER table = run({"list", what});
        EXPECT_EQ(std::count(table.out.begin(), table.out.end(), '\n'), static_cast<long>(rows.size() + 1))
            << what;
        const std::string header = table.out.substr(0, table.out.find('\n'));
        for (const auto& [key, value] : rows.front().items()) {
            EXPECT_THAT(header, HasSubstr(key)) << what;
        }
    }
}

/// A directory with a packed bitstream and a setup that names it.
class SETUP : public testing::Test
{
protected:
    void SetUp() override
    {
        write_file(m_directory / "core.bin", std::string(5000, 'c'));
        ASSERT_EQ(run({"pack", "--device", "BS1L15", "--core", m_directory / "core.bin", "--scheme", "PS",
                       "-o", m_directory / "top.sof"})
                      .exit_code,
                  EXIT_CODE_DONE);
        write_setup("Bitstream_1");
    }

    void write_setup(const std::string& linked) const
    {
        write_file(
            setup(),
            "<VEK version=\"1\"><SETTINGS mode=\"PS\"/><BITSTREAMS><BITSTREAM id=\"Bitstream_1\"><PATH>" +
                m_directory / "top.sof" +
                "</PATH></BITSTREAM></BITSTREAMS><OUTPUT_FILES><OUTPUT_FILE type=\"RBF\" name=\"board\" "
                "directory=\"" +
                m_directory.path() + "\"><BITSTREAM_ID>" + linked +
                "</BITSTREAM_ID></OUTPUT_FILE></OUTPUT_FILES></VEK>");
    }

    std::string setup() const { return m_directory / "board.vek"; }

    TEMPORARY_DIRECTORY m_directory;
};

TEST_F(SETUP, check_of_a_good_setup_finds_nothing)
{
    const ANSWER answer = run({"check", setup()});
    EXPECT_EQ(answer.exit_code, EXIT_CODE_DONE);
    EXPECT_EQ(answer.out, setup() + " can be generated.\n");
    const JSON json = run({"check", setup(), "--json"}).json();
    EXPECT_EQ(
        json,
        (JSON{{"setup", setup()}, {"can_save", true}, {"can_generate", true}, {"findings", JSON::array()}}));
}

TEST_F(SETUP, check_of_a_bad_setup_lists_each_finding_and_refuses)
{
    write_setup("Bitstream_9");
    const ANSWER answer = run({"check", setup()});
    EXPECT_EQ(answer.exit_code, EXIT_CODE_REFUSED);
    EXPECT_THAT(answer.out, StartsWith("Error: "));
    EXPECT_THAT(answer.out, HasSubstr("Bitstream_9"));
    EXPECT_THAT(answer.out, HasSubstr(setup() + " cannot be generated.\n"));
    const JSON json = run({"check", setup(), "--json"}).json();
    EXPECT_EQ(json.at("can_save"), false);
    EXPECT_EQ(json.at("findings").front().at("severity"), "forbids save");
}

TEST_F(SETUP, generate_says_what_it_wrote)
{
    const ANSWER answer = run({"generate", setup(), "--json"});
    EXPECT_EQ(answer.exit_code, EXIT_CODE_DONE) << answer.err;
    const JSON json = answer.json();
    EXPECT_EQ(json.at("complete"), true);
    ASSERT_EQ(json.at("files").size(), 1U);
    EXPECT_EQ(json.at("files")[0].at("file"), m_directory / "board.rbf");
    EXPECT_EQ(json.at("files")[0].at("type"), "RBF");
    EXPECT_EQ(json.at("files")[0].at("bytes"), std::filesystem::file_size(m_directory / "board.rbf"));
}

TEST_F(SETUP, quiet_prints_nothing_when_all_is_well)
{
    const ANSWER answer = run({"generate", setup(), "--quiet"});
    EXPECT_EQ(answer.exit_code, EXIT_CODE_DONE);
    EXPECT_EQ(answer.out + answer.err, "");
}

TEST_F(SETUP, a_refused_generation_prints_the_findings)
{
    write_setup("Bitstream_9");
    const ANSWER answer = run({"generate", setup()});
    EXPECT_EQ(answer.exit_code, EXIT_CODE_REFUSED);
    EXPECT_THAT(answer.err, HasSubstr("Bitstream_9"));
    EXPECT_FALSE(std::filesystem::exists(m_directory / "board.rbf"));
}

TEST_F(SETUP, show_leaves_out_what_stands_at_its_default)
{
    const JSON json = run({"show", setup(), "--json"}).json();
    EXPECT_EQ(json.at("settings"), (JSON{{"mode", "PS"}}));
    EXPECT_EQ(json.at("bitstreams").at("bitstream")[0].at("path")[0],
              (JSON{{"text", m_directory / "top.sof"}}));
    EXPECT_THAT(run({"show", setup()}).out, HasSubstr("mode: PS\n"));
}

TEST_F(SETUP, a_setup_that_cannot_be_read_is_an_error_document_too)
{
    const ANSWER answer = run({"show", m_directory / "missing.vek", "--json"});
    EXPECT_EQ(answer.exit_code, EXIT_CODE_INPUT_UNREADABLE);
    EXPECT_THAT(answer.json().at("error").get<std::string>(), HasSubstr("missing.vek"));
    EXPECT_THAT(answer.err, StartsWith("imagewright-cmd: "));
}

TEST_F(SETUP, inspect_tells_bitstreams_from_streams_and_gives_the_data_back)
{
    ASSERT_EQ(run({"generate", setup(), "--quiet"}).exit_code, EXIT_CODE_DONE);
    const JSON bitstream = run({"inspect", m_directory / "top.sof", "--json"}).json();
    EXPECT_EQ(bitstream.at("kind"), "bitstream");
    EXPECT_EQ(bitstream.at("device"), "BS1L15");
    EXPECT_EQ(bitstream.at("scheme"), "PS");
    const JSON stream = run({"inspect", m_directory / "board.rbf", "--json"}).json();
    EXPECT_EQ(stream.at("kind"), "configuration stream");
    EXPECT_EQ(stream.at("images")[0].at("parts")[0],
              (JSON{{"part", "core data"}, {"bytes", 5000}, {"stored_bytes", 5000}}));
    for (const std::string name : {"top.sof", "board.rbf"}) {
        ASSERT_EQ(run({"inspect", m_directory / name, "--extract", "core", "-o", m_directory / "back.bin"})
                      .exit_code,
                  EXIT_CODE_DONE);
        EXPECT_EQ(read_file(m_directory / "back.bin"), read_file(m_directory / "core.bin"));
    }
}

TEST_F(SETUP, inspect_refuses_what_it_does_not_know_and_what_is_not_there)
{
    EXPECT_EQ(run({"inspect", m_directory / "core.bin"}).exit_code, EXIT_CODE_INPUT_UNREADABLE);
    const ANSWER answer =
        run({"inspect", m_directory / "top.sof", "--extract", "periphery", "-o", m_directory / "back.bin"});
    EXPECT_EQ(answer.exit_code, EXIT_CODE_INPUT_UNREADABLE);
    EXPECT_THAT(answer.err, HasSubstr("periphery"));
    EXPECT_EQ(run({"inspect", m_directory / "top.sof", "--extract", "core", "-o", m_directory / "top.sof"})
                  .exit_code,
              EXIT_CODE_USAGE);
}

TEST_F(SETUP, samples_of_one_seed_are_equal_and_of_two_differ)
{
    for (const std::string name : {"1", "1 again", "2"}) {
        ASSERT_EQ(run({"sample", "--device", "BS1L15", "--seed", name.substr(0, 1), "-o", m_directory / name})
                      .exit_code,
                  EXIT_CODE_DONE);
    }
    EXPECT_EQ(read_file(m_directory / "1"), read_file(m_directory / "1 again"));
    EXPECT_NE(read_file(m_directory / "1"), read_file(m_directory / "2"));
}

TEST_F(SETUP, texts_of_hostile_files_do_not_steer_the_terminal)
{
    const std::string escape = "\x1B]0;title\x07";
    const ANSWER missing = run({"show", m_directory / ("missing" + escape + ".vek")});
    EXPECT_THAT(missing.err, Not(HasSubstr("\x1B")));
    EXPECT_THAT(missing.err, HasSubstr("\\x1B]0;title\\x07"));
    write_file(m_directory / "a.map", "Flash map, version 1\nDevice: " + escape + "\nSize: x\n");
    const ANSWER map = run({"inspect", m_directory / "a.map"});
    EXPECT_THAT(map.out + map.err, Not(HasSubstr("\x1B")));
}

TEST(command_line_page, names_every_command_and_exit_code)
{
    const std::string page = read_text_file(IMAGEWRIGHT_SOURCE_DIR "/docs/command-line.md");
    for (const std::string command :
         {"generate", "convert", "check", "show", "edit", "verify", "map", "inspect", "pack", "sample", "key",
          "firmware", "chain", "finalize", "list", "completion"}) {
        EXPECT_THAT(page, HasSubstr("| `" + command + " "));
    }
    for (const std::string code : {"| 0 |", "| 1 |", "| 2 |", "| 3 |", "| 4 |"}) {
        EXPECT_THAT(page, HasSubstr(code));
    }
}

} // namespace
