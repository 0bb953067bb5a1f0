#include "fio_file_system.h"

#include <cstdlib>
#include <memory>
#include <unistd.h>

std::string FIO_FILE_SYSTEM::get_current_directory()
{
    const std::unique_ptr<char, decltype(&std::free)> path(getcwd(nullptr, 0), &std::free);
    // The kernel gives a text without a leading "/" for a directory that cannot be reached any more.
    return path != nullptr && *path == '/' ? std::string(path.get()) : std::string();
}

bool FIO_FILE_SYSTEM::set_current_directory(const std::string& directory)
{
    return !directory.empty() && chdir(directory.c_str()) == 0;
}
