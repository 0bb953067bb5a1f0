#include "small_text_file.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

constexpr std::size_t SIZE_LIMIT = 4 * 1024 * 1024;

bool refuse(const std::string& path, const std::string& reason, std::string& message)
{
    message = path + " cannot be read: " + reason + ".";
    return false;
}

bool read_descriptor(int descriptor, const std::string& path, std::string& text, std::string& message)
{
    struct stat status = {};
    if (fstat(descriptor, &status) != 0) {
        return refuse(path, strerrordesc_np(errno), message);
    }
    if (!S_ISREG(status.st_mode)) {
        return refuse(path, "it is no regular file", message);
    }
    text.clear();
    std::array<char, 16384> block;
    for (;;) {
        const ssize_t count = read(descriptor, block.data(), block.size());
        if (count == 0) {
            return true;
        }
        if (count < 0) {
            if (errno == EINTR) {
                continue;
            }
            return refuse(path, strerrordesc_np(errno), message);
        }
        text.append(block.data(), static_cast<std::size_t>(count));
        if (text.size() > SIZE_LIMIT) {
            return refuse(path, "it is larger than 4 MiB", message);
        }
    }
}

} // namespace

bool read_small_text_file(const std::string& path, std::string& text, std::string& message, bool& missing)
{
    missing = false;
    const int descriptor = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (descriptor < 0) {
        missing = errno == ENOENT;
        return refuse(path, strerrordesc_np(errno), message);
    }
    const bool read = read_descriptor(descriptor, path, text, message);
    close(descriptor);
    return read;
}

std::string trimmed(const std::string& text)
{
    constexpr const char* blanks = " \t\r";
    const auto first = text.find_first_not_of(blanks);
    if (first == std::string::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}
