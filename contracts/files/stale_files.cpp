#include "atomic_file.h"
#include "stale_file_names.h"

#include <array>
#include <cstdio>
#include <dirent.h>
#include <fcntl.h>
#include <random>
#include <string_view>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

constexpr std::string_view MARK = ".imagewright-";
constexpr std::string_view END = ".tmp";
constexpr std::size_t DIGITS = 16;
constexpr std::size_t LONGEST_NAME = 255;

/// Removes the file unless some process holds its lock.
void remove_if_abandoned(int directory, const char* name)
{
    const int descriptor = openat(directory, name, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    if (descriptor < 0) {
        return;
    }
    struct stat status = {};
    if (fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode) && status.st_uid == geteuid() &&
        flock(descriptor, LOCK_EX | LOCK_NB) == 0) {
        unlinkat(directory, name, 0);
    }
    close(descriptor);
}

} // namespace

std::string hidden_temporary_name(const std::string& name)
{
    static thread_local std::random_device random;
    const std::uint64_t number = std::uint64_t{random()} << 32 | random();
    std::array<char, DIGITS + 1> digits;
    std::snprintf(digits.data(), digits.size(), "%016llx", static_cast<unsigned long long>(number));
    const std::size_t room = LONGEST_NAME - 1 - MARK.size() - DIGITS - END.size();
    return "." + name.substr(0, room) + std::string(MARK) + digits.data() + std::string(END);
}

bool is_hidden_temporary_name(const std::string& name)
{
    const std::size_t tail = MARK.size() + DIGITS + END.size();
    if (name.size() <= tail || name.front() != '.' || !name.ends_with(END)) {
        return false;
    }
    const std::string_view mark_and_digits = std::string_view(name).substr(name.size() - tail);
    return mark_and_digits.starts_with(MARK) &&
           mark_and_digits.substr(MARK.size(), DIGITS).find_first_not_of("0123456789abcdef") ==
               std::string_view::npos;
}

void ATOMIC_FILE::sweep_stale_files(const std::string& directory)
{
    DIR* const entries = opendir(directory.c_str());
    if (entries == nullptr) {
        return;
    }
    while (const dirent* const entry = readdir(entries)) {
        if (is_hidden_temporary_name(entry->d_name)) {
            remove_if_abandoned(dirfd(entries), entry->d_name);
        }
    }
    closedir(entries);
}
