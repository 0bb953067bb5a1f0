#include "child_process.h"
#include "command_run.h"
#include "vek_db.h"
#include "vek_file_assistant.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <regex>

namespace
{

using testing::Contains;
using testing::HasSubstr;
using testing::Not;

const std::vector<std::string> COMMANDS{"generate", "convert",  "check", "show",      "edit", "verify",
                                        "map",      "inspect",  "pack",  "sample",    "key",  "firmware",
                                        "chain",    "finalize", "list",  "completion"};

/// The options that the help of a command shows, short and long.
std::vector<std::string> options_of(const std::vector<std::string>& command)
{
    std::vector<std::string> arguments = command;
    arguments.emplace_back("--help");
    const std::string help = run(arguments).out;
    std::vector<std::string> options;
    const std::regex pattern("\n  (-[a-zA-Z]),?|[ ,](--[a-z-]+)");
    for (std::sregex_iterator found(help.begin(), help.end(), pattern), end; found != end; ++found) {
        options.push_back((*found)[1].matched ? (*found)[1] : (*found)[2]);
    }
    return options;
}

class SHELL : public testing::Test
{
protected:
    /// What bash offers for the last of the words.
    std::vector<std::string> complete(const std::string& words) const
    {
        write_file(m_directory / "completion.bash", run({"completion", "bash"}).out);
        const CHILD_RESULT result =
            run_program({"bash", "-c",
                         "source ./completion.bash; COMP_WORDS=(imagewright-cmd " + words +
                             "); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _imagewright_cmd; "
                             "printf '%s\\n' \"${COMPREPLY[@]}\""},
                        m_directory.path());
        EXPECT_EQ(result.err, "");
        std::vector<std::string> offered;
        std::istringstream lines(result.out);
        for (std::string line; std::getline(lines, line);) {
            offered.push_back(line);
        }
        return offered;
    }

    TEMPORARY_DIRECTORY m_directory;
};

TEST_F(SHELL, bash_offers_commands_options_and_values)
{
    EXPECT_THAT(complete("\"\""), testing::ElementsAreArray(COMMANDS));
    EXPECT_THAT(complete("ge"), testing::ElementsAre("generate"));
    EXPECT_THAT(complete("-C /tmp ver"), testing::ElementsAre("verify"));
    EXPECT_THAT(complete("map --sv"), testing::ElementsAre("--svg"));
    EXPECT_THAT(complete("-c --sav"), testing::ElementsAre("--save"));
    EXPECT_THAT(complete("list \"\""),
                testing::ElementsAre("families", "devices", "flash", "modes", "outputs", "params"));
    EXPECT_THAT(complete("inspect a.sof --extract \"\""), testing::ElementsAre("core", "periphery", "image"));
    write_file(m_directory / "board.vek", std::string("x"));
    std::filesystem::create_directory(m_directory / "bin");
    EXPECT_THAT(complete("check bo"), testing::ElementsAre("board.vek"));
    write_file(m_directory / "other board.vek", std::string("x"));
    EXPECT_THAT(complete("check ot"), testing::ElementsAre("other board.vek"));
    EXPECT_THAT(complete("generate board.vek --output-directory b"), testing::ElementsAre("bin"));
}

TEST_F(SHELL, bash_offers_every_option_that_the_help_shows)
{
    for (const std::string& command : COMMANDS) {
        const std::vector<std::string> offered = complete(command + " -");
        for (const std::string& option : options_of({command})) {
            EXPECT_THAT(offered, Contains(option)) << command;
        }
    }
}

TEST_F(SHELL, the_script_for_zsh_is_sound_and_has_every_option)
{
    const std::string script = run({"completion", "zsh"}).out;
    write_file(m_directory / "_imagewright-cmd", script);
    const CHILD_RESULT result = run_program({"zsh", "-n", m_directory / "_imagewright-cmd"});
    EXPECT_EQ(result.exit_code, 0) << result.err;
    for (const std::string& command : COMMANDS) {
        EXPECT_THAT(script, HasSubstr("\n        " + command + ")\n"));
        for (const std::string& option : options_of({command})) {
            EXPECT_THAT(script, HasSubstr(option + "[")) << command;
        }
    }
}

TEST_F(SHELL, another_shell_is_no_choice)
{
    EXPECT_EQ(run({"completion", "fish"}).exit_code, EXIT_CODE_USAGE);
}

TEST(manual, is_sound_and_tells_every_command_and_option)
{
    const std::string path = IMAGEWRIGHT_SOURCE_DIR "/docs/man/imagewright-cmd.1";
    const CHILD_RESULT lint = run_program({"mandoc", "-T", "lint", "-W", "warning", path});
    EXPECT_EQ(lint.exit_code, 0) << lint.out;
    const std::string text = run_program({"mandoc", "-T", "ascii", "-O", "width=100", path}).out;
    // Bold letters are printed twice over a backspace.
    const std::string plain = std::regex_replace(text, std::regex(".\b"), "");
    for (const std::string& command : COMMANDS) {
        const std::size_t begin = plain.find("\n     " + command + " ");
        ASSERT_NE(begin, std::string::npos) << command;
        for (const std::string& option : options_of({command})) {
            EXPECT_THAT(plain, HasSubstr(option)) << command;
        }
    }
    for (const std::string& option : options_of({})) {
        EXPECT_THAT(plain, HasSubstr(option));
    }
}

TEST(manual, of_the_window_is_sound)
{
    const CHILD_RESULT lint = run_program(
        {"mandoc", "-T", "lint", "-W", "warning", IMAGEWRIGHT_SOURCE_DIR "/docs/man/imagewright.1"});
    EXPECT_EQ(lint.exit_code, 0) << lint.out;
}

TEST(pages, the_roadmap_has_a_reason_for_every_type_that_is_switched_off)
{
    const std::string page = read_text_file(IMAGEWRIGHT_SOURCE_DIR "/docs/roadmap.md");
    unsigned switched_off = 0;
    for (const VEK_FILE_TYPE type : VEK_DB::get_all_output_file_type_keys()) {
        const std::string word = VEK_FILE_ASSISTANT::convert_xml_enum_to_string(VEK_DB::get_xml_enum(type));
        const std::string row = "\n| " + word + " | ";
        if (VEK_DB::get_enabled(type)) {
            EXPECT_THAT(page, Not(HasSubstr(row)));
            continue;
        }
        ++switched_off;
        EXPECT_TRUE(VEK_DB::get_cmd_only(type)) << word;
        ASSERT_THAT(page, HasSubstr(row));
        const std::string line =
            page.substr(page.find(row) + 1, page.find('\n', page.find(row) + 1) - page.find(row) - 1);
        EXPECT_EQ(std::count(line.begin(), line.end(), '|'), 4) << line;
        EXPECT_GT(line.size(), row.size() + 40);
    }
    EXPECT_EQ(switched_off, 8U);
}

TEST(pages, a_setup_with_a_type_that_is_switched_off_is_refused_with_words)
{
    const BOARD board;
    const std::string setup =
        board.setup("sof.vek", "ASX4",
                    element("OUTPUT_FILES", "<OUTPUT_FILE type=\"SOF\" name=\"a\" directory=\"" +
                                                board.directory().path() + "\"/>"));
    const ANSWER answer = run({"generate", setup});
    EXPECT_EQ(answer.exit_code, EXIT_CODE_REFUSED);
    EXPECT_THAT(answer.err,
                HasSubstr("This version cannot write files of the type \"Signed Bitstream File (.sof)\""));
}

TEST(limits, the_program_may_open_as_many_files_as_the_system_allows)
{
    const BOARD board;
    std::string raw_files;
    std::string ids;
    for (unsigned i = 0; i < 100; ++i) {
        const std::string id = "R" + std::to_string(i);
        write_file(board.path(id + ".bin"), std::string(16, 'r'));
        raw_files += "<RAW_FILE type=\"RBF\" id=\"" + id + "\">" + board.path(id + ".bin") + "</RAW_FILE>";
        ids += element("RAW_FILE_ID", id);
    }
    const std::string setup = board.setup(
        "many.vek", "ASX4",
        element("RAW_FILES", raw_files) +
            element("ASSIGNMENTS", "<ASSIGNMENT partition_id=\"D\">" + ids + "</ASSIGNMENT>") +
            element("FLASH_DEVICES",
                    "<FLASH_DEVICE type=\"W25Q128JV\" id=\"F\"><PARTITION id=\"D\"/></FLASH_DEVICE>") +
            element("OUTPUT_FILES", "<OUTPUT_FILE type=\"RPD\" name=\"a\" directory=\"" +
                                        board.directory().path() + "\">" + element("FLASH_DEVICE_ID", "F") +
                                        "</OUTPUT_FILE>"));
    const std::string program = IMAGEWRIGHT_BINARY_DIR "/bin/imagewright-cmd";
    // 64 are too few for a hundred raw files, unless the program raises the soft limit to the hard one.
    const CHILD_RESULT raised =
        run_program({"bash", "-c", "ulimit -Sn 64; exec \"$@\"", "bash", program, "generate", setup});
    EXPECT_EQ(raised.exit_code, EXIT_CODE_DONE) << raised.err;
#ifndef __SANITIZE_ADDRESS__ // which opens files of its own to look at the memory
    const CHILD_RESULT held =
        run_program({"bash", "-c", "ulimit -n 64; exec \"$@\"", "bash", program, "generate", setup});
    EXPECT_NE(held.exit_code, EXIT_CODE_DONE);
    EXPECT_THAT(held.err, HasSubstr(".bin"));
#endif
}

} // namespace
