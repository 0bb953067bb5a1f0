#include "temporary_directory.h"
#include "tool.h"

#include <gmock/gmock.h>

#include <filesystem>

namespace
{

using testing::HasSubstr;

/// The window, drawn without a display.
CHILD_RESULT window(const std::vector<std::string>& arguments, const std::string& directory,
                    const TEMPORARY_DIRECTORY& settings)
{
    std::vector<std::string> command{built_program("imagewright")};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return run_program(command, directory,
                       {"QT_QPA_PLATFORM=offscreen", "XDG_CONFIG_HOME=" + settings.path(), "DISPLAY="});
}

bool is_picture(const std::string& path)
{
    const std::vector<std::uint8_t> bytes = read_file(path);
    return bytes.size() > 5000 && bytes[1] == 'P' && bytes[2] == 'N' && bytes[3] == 'G';
}

TEST(window, opens_each_example_and_draws_it)
{
    const TEMPORARY_DIRECTORY directory;
    const TEMPORARY_DIRECTORY settings;
    make_examples(directory / "examples");
    for (const std::string name : {"passive_serial", "active_serial", "secure_boot"}) {
        const std::string picture = directory / (name + ".png");
        const CHILD_RESULT result =
            window({"--screenshot", picture, name + ".vek"}, directory / "examples", settings);
        EXPECT_EQ(result.exit_code, 0) << name << result.out << result.err;
        EXPECT_TRUE(is_picture(picture)) << name;
    }
}

TEST(window, takes_the_directory_to_work_in_as_an_option)
{
    const TEMPORARY_DIRECTORY directory;
    const TEMPORARY_DIRECTORY settings;
    make_examples(directory / "examples");
    const CHILD_RESULT result =
        window({"-C", directory / "examples", "--screenshot", directory / "window.png", "passive_serial.vek"},
               "/", settings);
    EXPECT_EQ(result.exit_code, 0) << result.err;
    EXPECT_TRUE(is_picture(directory / "window.png"));
}

TEST(window, refuses_a_setup_that_cannot_be_read)
{
    const TEMPORARY_DIRECTORY directory;
    const TEMPORARY_DIRECTORY settings;
    write_file(directory / "bad.vek", std::string("<VEK><NONSENSE/></VEK>"));
    const CHILD_RESULT result =
        window({"--screenshot", directory / "window.png", "bad.vek"}, directory.path(), settings);
    EXPECT_EQ(result.exit_code, 3) << result.err;
}

TEST(window, tells_its_usage_and_its_version)
{
    const TEMPORARY_DIRECTORY settings;
    EXPECT_EQ(window({"--help"}, "/", settings).exit_code, 0);
    const CHILD_RESULT version = window({"--version"}, "/", settings);
    EXPECT_EQ(version.exit_code, 0);
    EXPECT_THAT(version.out,
                HasSubstr(tool({"--version"}).out.substr(std::string("imagewright-cmd ").size())));
    const CHILD_RESULT wrong = window({"--nonsense"}, "/", settings);
    EXPECT_EQ(wrong.exit_code, 2);
    EXPECT_THAT(wrong.err, HasSubstr("--nonsense"));
}

TEST(programs, keep_to_the_libraries_that_they_need)
{
    const CHILD_RESULT command_line = run_program({"ldd", built_program("imagewright-cmd")});
    ASSERT_EQ(command_line.exit_code, 0);
    for (const std::string library : {"libQt5Gui", "libQt5Widgets", "libQt5Core", "libxerces"}) {
        EXPECT_THAT(command_line.out, testing::Not(HasSubstr(library)));
    }
}

} // namespace
