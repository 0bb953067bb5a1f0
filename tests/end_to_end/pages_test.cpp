#include "temporary_directory.h"
#include "tool.h"

#include <gmock/gmock.h>

#include <filesystem>

namespace
{

using testing::HasSubstr;

/// The first block of code of a language in a page.
std::string first_block(const std::string& page, const std::string& language)
{
    const std::string fence = "```" + language + "\n";
    const std::size_t begin = page.find(fence);
    EXPECT_NE(begin, std::string::npos);
    return page.substr(begin + fence.size(), page.find("```", begin + fence.size()) - begin - fence.size());
}

TEST(pages, the_picture_of_the_flash_map_is_that_of_the_example)
{
    const TEMPORARY_DIRECTORY directory;
    make_examples(directory / "examples");
    ASSERT_EQ(tool({"map", "active_serial.vek", "--svg", "-o", "map.svg"}, directory / "examples").exit_code,
              0);
    EXPECT_EQ(read_text_file(directory / "examples/map.svg"),
              read_text_file(IMAGEWRIGHT_SOURCE_DIR "/docs/images/flash-map.svg"));
}

TEST(pages, the_commands_that_make_a_fleet_make_a_setup_for_each_unit)
{
    const TEMPORARY_DIRECTORY directory;
    ASSERT_EQ(tool({"edit", "board.vek", "--new", "settings", "mode=PS", "bitstream", "path=top.sof",
                    "output_file", "type=RBF", "name=board", "directory=out", "bitstream_id=top.sof"},
                   directory.path())
                  .exit_code,
              0);
    std::string script = first_block(read_text_file(IMAGEWRIGHT_SOURCE_DIR "/docs/fleet.md"), "bash");
    ASSERT_THAT(script, HasSubstr(" 1 10000)"));
    script.replace(script.find(" 10000)"), 7, " 4)");
    const CHILD_RESULT result = run_program(
        {"bash", "-e", "-c", script}, directory.path(),
        {"PATH=" + std::filesystem::path(built_program("imagewright-cmd")).parent_path().string() +
         ":/usr/bin:/bin"});
    ASSERT_EQ(result.exit_code, 0) << result.err;
    for (const std::string serial : {"00001", "00002", "00003", "00004"}) {
        const std::string setup = read_text_file(directory / ("units/unit_" + serial + ".vek"));
        EXPECT_THAT(setup, HasSubstr("key_file1=\"keys/" + serial + ".key\""));
        EXPECT_THAT(setup, HasSubstr("name=\"unit_" + serial + "\""));
        EXPECT_THAT(setup, testing::Not(HasSubstr("name=\"board\"")));
    }
    EXPECT_FALSE(std::filesystem::exists(directory / "units/unit_00005.vek"));
}

TEST(installation, gives_a_program_that_runs_with_its_manual_page_and_completions)
{
    const TEMPORARY_DIRECTORY directory;
    const CHILD_RESULT installed =
        run_program({"cmake", "--install", IMAGEWRIGHT_BINARY_DIR, "--prefix", directory.path()});
    ASSERT_EQ(installed.exit_code, 0) << installed.err;
    const CHILD_RESULT version = run_program({directory / "bin/imagewright-cmd", "--version"}, "/");
    EXPECT_EQ(version.exit_code, 0) << version.err;
    EXPECT_EQ(version.out, tool({"--version"}).out);
    make_examples(directory / "examples");
    const CHILD_RESULT checked = run_program(
        {directory / "bin/imagewright-cmd", "check", "active_serial.vek"}, directory / "examples");
    EXPECT_EQ(checked.exit_code, 0) << checked.err;
    const CHILD_RESULT libraries = run_program({"ldd", directory / "bin/imagewright-cmd"});
    EXPECT_THAT(libraries.out, HasSubstr(std::filesystem::canonical(directory.path()).string()));
    EXPECT_THAT(libraries.out, testing::Not(HasSubstr(IMAGEWRIGHT_BINARY_DIR)));
    EXPECT_EQ(read_text_file(directory / "share/man/man1/imagewright-cmd.1"),
              read_text_file(IMAGEWRIGHT_SOURCE_DIR "/docs/man/imagewright-cmd.1"));
    EXPECT_EQ(read_text_file(directory / "share/bash-completion/completions/imagewright-cmd"),
              tool({"completion", "bash"}).out);
    EXPECT_EQ(read_text_file(directory / "share/zsh/site-functions/_imagewright-cmd"),
              tool({"completion", "zsh"}).out);
}

} // namespace
