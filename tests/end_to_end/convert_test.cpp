#include "temporary_directory.h"
#include "tool.h"

#include <gmock/gmock.h>

#include <filesystem>

namespace
{

/// What the window makes of a setup when it opens it without a display.
CHILD_RESULT open_in_window(const std::string& setup, const std::string& directory)
{
    const TEMPORARY_DIRECTORY settings;
    return run_program({built_program("imagewright"), "--screenshot", "window.png", setup}, directory,
                       {"QT_QPA_PLATFORM=offscreen", "XDG_CONFIG_HOME=" + settings.path(), "DISPLAY="});
}

TEST(convert, the_setup_that_it_saves_generates_the_same_bytes_and_opens_in_the_window)
{
    const TEMPORARY_DIRECTORY directory;
    make_examples(directory / "examples");
    const std::string examples = directory / "examples";
    struct CASE {
        std::string output;
        std::vector<std::string> arguments;
    };
    const CASE cases[] = {
        {"saved.rbf", {"inputs/blinky.sof", "--option", "path_compression=1"}},
        {"saved.jic",
         {"inputs/factory.sof", "inputs/application.sof", "images/board-data.hex", "--device", "W25Q128JV"}},
        {"saved.pof",
         {"inputs/secure_factory.sof", "inputs/secure_application.sof", "--device", "MT25QL512"}},
    };
    for (const CASE& one : cases) {
        std::vector<std::string> arguments{"-c"};
        arguments.insert(arguments.end(), one.arguments.begin(), one.arguments.end());
        arguments.insert(arguments.end(), {"-o", one.output, "--save", "saved.vek"});
        const CHILD_RESULT converted = tool(arguments, examples);
        ASSERT_EQ(converted.exit_code, 0) << one.output << converted.err;
        const std::vector<std::uint8_t> bytes = read_file(examples + "/" + one.output);

        const CHILD_RESULT window = open_in_window("saved.vek", examples);
        EXPECT_EQ(window.exit_code, 0) << one.output << window.err;
        EXPECT_GT(read_file(examples + "/window.png").size(), 5000U);

        std::filesystem::remove(examples + "/" + one.output);
        ASSERT_EQ(tool({"generate", "saved.vek"}, examples).exit_code, 0);
        EXPECT_EQ(read_file(examples + "/" + one.output), bytes) << one.output;
    }
}

TEST(edit, a_setup_made_of_nothing_opens_in_the_window)
{
    const TEMPORARY_DIRECTORY directory;
    make_examples(directory / "examples");
    const CHILD_RESULT edited =
        tool({"edit", "made.vek", "--new", "settings", "mode=PS", "bitstream", "path=inputs/blinky.sof",
              "output_file", "type=RBF", "name=made", "directory=output", "bitstream_id=inputs/blinky.sof"},
             directory / "examples");
    ASSERT_EQ(edited.exit_code, 0) << edited.err;
    const CHILD_RESULT window = open_in_window("made.vek", directory / "examples");
    EXPECT_EQ(window.exit_code, 0) << window.err;
}

} // namespace
