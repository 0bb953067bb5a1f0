#include "tool.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <unistd.h>

namespace fs = std::filesystem;

std::string built_program(const std::string& name)
{
    return std::string(IMAGEWRIGHT_BINARY_DIR "/bin/") + name;
}

CHILD_RESULT tool(const std::vector<std::string>& arguments, const std::string& directory)
{
    std::vector<std::string> command{built_program("imagewright-cmd")};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return run_program(command, directory);
}

CHILD_RESULT tool_with_file_limit(unsigned blocks, const std::vector<std::string>& arguments,
                                  const std::string& directory)
{
    // The signal is ignored, so that the write itself fails and the program has to notice.
    std::vector<std::string> command{"bash", "-c",
                                     "trap '' XFSZ; ulimit -f " + std::to_string(blocks) + "; exec \"$@\"",
                                     "bash", built_program("imagewright-cmd")};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return run_program(command, directory);
}

CHILD_RESULT tool_as_nobody(const std::vector<std::string>& arguments, const std::string& directory)
{
    std::vector<std::string> command;
    if (::geteuid() == 0) {
        command = {"setpriv", "--reuid=65534", "--regid=65534", "--clear-groups"};
    }
    command.push_back(built_program("imagewright-cmd"));
    command.insert(command.end(), arguments.begin(), arguments.end());
    return run_program(command, directory);
}

void make_examples(const std::string& directory)
{
    const fs::path source(IMAGEWRIGHT_SOURCE_DIR "/examples");
    fs::create_directories(directory);
    fs::copy(source / "images", fs::path(directory) / "images", fs::copy_options::recursive);
    for (const fs::directory_entry& entry : fs::directory_iterator(source)) {
        if (entry.path().extension() == ".vek" || entry.path().filename() == "make_inputs") {
            fs::copy(entry.path(), fs::path(directory) / entry.path().filename());
        }
    }
    const CHILD_RESULT made =
        run_program({directory + "/make_inputs", built_program("imagewright-cmd")}, directory);
    ASSERT_EQ(made.exit_code, 0) << made.out << made.err;
}
