#include "file_errors.h"

#include "fio_path.h"

#include <climits>

#include <array>
#include <cerrno>
#include <cstring>
#include <unistd.h>

std::string error_words(int error_number)
{
    switch (error_number) {
    case ENOENT:
        return "no such file";
    case ENOSPC:
    case EDQUOT:
        return "the disk is full; free some space and try again";
    case EFBIG:
        return "the file would be larger than is allowed here";
    case EIO:
        return "the disk reports an error";
    case EROFS:
        return "the file system is read-only";
    case EACCES:
        return "permission denied";
    case ENAMETOOLONG:
        return "the name is too long";
    default:
        break;
    }
    const char* const description = strerrordesc_np(error_number);
    std::string words = description != nullptr ? description : "error " + std::to_string(error_number);
    // The system's descriptions begin with a capital unless they begin with a name such as RFS.
    const auto is_capital = [](char letter) { return letter >= 'A' && letter <= 'Z'; };
    if (words.size() > 1 && is_capital(words[0]) && !is_capital(words[1])) {
        words[0] = static_cast<char>(words[0] - 'A' + 'a');
    }
    return words;
}

std::string file_failure(const std::string& path, const std::string& deed, int error_number)
{
    return path + " cannot be " + deed + ": " + error_words(error_number) + ".";
}

std::string directory_of(const std::string& path)
{
    const std::string directory = FIO_PATH(path).full_directory();
    return directory.empty() ? "." : directory;
}

std::string link_target(const std::string& path)
{
    constexpr int MOST_LINKS = 40; // what the kernel follows
    std::string target = path;
    std::array<char, PATH_MAX> text;
    for (int links = 0; links < MOST_LINKS; ++links) {
        const ssize_t length = readlink(target.c_str(), text.data(), text.size());
        if (length < 0) {
            return target;
        }
        const std::string next(text.data(), static_cast<std::size_t>(length));
        target = next.starts_with('/') ? next : directory_of(target) + "/" + next;
    }
    return target;
}
