// What cmake --install puts in place works there, without the folder that it was built in.

#include "temporary_directory.h"
#include "tool.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <sstream>

namespace
{

namespace fs = std::filesystem;
using testing::HasSubstr;

/// An installation that was moved after it was made.
class INSTALLATION : public testing::Test
{
protected:
    void SetUp() override
    {
        const std::string first = m_directory / "first";
        const CHILD_RESULT result =
            run_program({"cmake", "--install", IMAGEWRIGHT_BINARY_DIR, "--prefix", first});
        ASSERT_EQ(result.exit_code, 0) << result.out << result.err;
        fs::rename(first, m_prefix);
    }

    std::string path(const std::string& name) const { return m_prefix + "/" + name; }

    CHILD_RESULT run(std::vector<std::string> command, const std::string& directory) const
    {
        command.front() = path("bin/" + command.front());
        return run_program(command, directory,
                           {"QT_QPA_PLATFORM=offscreen", "XDG_CONFIG_HOME=" + m_directory.path(),
                            "DISPLAY=", "PATH=" + path("bin") + ":/usr/bin:/bin"});
    }

    TEMPORARY_DIRECTORY m_directory;
    std::string m_prefix = m_directory / "moved";
};

TEST_F(INSTALLATION, has_every_file_in_its_place)
{
    for (const std::string name :
         {"bin/imagewright", "bin/imagewright-cmd", "lib/imagewright/libpgm_vek.so",
          "lib/imagewright/libmod_devices_dlg.so", "lib/imagewright/libmod_flash_dlg.so",
          "lib/imagewright/libmod_options_dlg.so", "lib/imagewright/libmod_help.so",
          "lib/imagewright/libmod_xml.so", "share/man/man1/imagewright.1", "share/man/man1/imagewright-cmd.1",
          "share/bash-completion/completions/imagewright-cmd", "share/zsh/site-functions/_imagewright-cmd",
          "share/applications/imagewright.desktop", "share/icons/hicolor/scalable/apps/imagewright.svg",
          "share/mime/packages/imagewright.xml", "share/imagewright/examples/passive_serial.vek",
          "share/doc/imagewright/user-guide.md"}) {
        EXPECT_TRUE(fs::is_regular_file(path(name))) << name;
    }
}

TEST_F(INSTALLATION, loads_its_own_libraries_alone)
{
    std::vector<std::string> files = {path("bin/imagewright"), path("bin/imagewright-cmd")};
    for (const fs::directory_entry& entry : fs::directory_iterator(path("lib/imagewright"))) {
        files.push_back(entry.path());
    }
    for (const std::string& file : files) {
        std::istringstream lines(run_program({"ldd", file}).out);
        for (std::string line; std::getline(lines, line);) {
            EXPECT_THAT(line, testing::Not(HasSubstr("not found"))) << file;
            EXPECT_THAT(line, testing::Not(HasSubstr(IMAGEWRIGHT_BINARY_DIR))) << file;
        }
    }
}

TEST_F(INSTALLATION, generates_an_example_and_opens_it_in_the_window)
{
    const std::string examples = m_directory / "examples";
    fs::copy(path("share/imagewright/examples"), examples, fs::copy_options::recursive);
    const CHILD_RESULT version = run({"imagewright-cmd", "--version"}, examples);
    EXPECT_EQ(version.exit_code, 0) << version.err;
    EXPECT_EQ(run({"imagewright", "--version"}, examples).out,
              "imagewright " + version.out.substr(version.out.rfind(' ') + 1));
    const CHILD_RESULT made = run_program({examples + "/make_inputs", path("bin/imagewright-cmd")}, examples);
    ASSERT_EQ(made.exit_code, 0) << made.err;
    const CHILD_RESULT generated = run({"imagewright-cmd", "generate", "active_serial.vek"}, examples);
    EXPECT_EQ(generated.exit_code, 0) << generated.err;
    EXPECT_GT(fs::file_size(examples + "/output/board.rpd"), 0U);
    const CHILD_RESULT window =
        run({"imagewright", "--screenshot", m_directory / "window.png", "active_serial.vek"}, examples);
    EXPECT_EQ(window.exit_code, 0) << window.err;
    EXPECT_THAT(window.err, testing::Not(HasSubstr("imagewright: ")));
    EXPECT_GT(fs::file_size(m_directory / "window.png"), 5000U);
}

TEST(built_programs, take_no_library_out_of_the_directory_they_are_run_in)
{
    TEMPORARY_DIRECTORY directory;
    for (const char* library : {"liblz4.so.1", "libzstd.so.1", "libdeflate.so.0", "libQt5Widgets.so.5"}) {
        write_file(directory / library, "no library");
    }
    for (const char* program : {"imagewright-cmd", "imagewright"}) {
        const CHILD_RESULT result = run_program({built_program(program), "--version"}, directory.path());
        EXPECT_EQ(result.exit_code, 0) << result.err;
    }
}

TEST_F(INSTALLATION, a_window_without_its_module_says_so)
{
    fs::remove(path("lib/imagewright/libpgm_vek.so"));
    const CHILD_RESULT window =
        run({"imagewright", "--screenshot", m_directory / "window.png"}, m_directory.path());
    EXPECT_EQ(window.exit_code, 1);
    EXPECT_THAT(window.err, HasSubstr("Install the program again, with all files of its package."));
}

} // namespace
