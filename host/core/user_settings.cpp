#include "user_settings.h"

#include "msg_internal_error.h"
#include "small_text_file.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <mutex>
#include <pwd.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace
{

class DESCRIPTOR
{
public:
    explicit DESCRIPTOR(int value) : m_value(value) {}
    ~DESCRIPTOR()
    {
        if (m_value >= 0) {
            close(m_value);
        }
    }
    DESCRIPTOR(const DESCRIPTOR&) = delete;
    DESCRIPTOR& operator=(const DESCRIPTOR&) = delete;
    int get() const { return m_value; }

private:
    int m_value;
};

std::string home_directory()
{
    if (const char* const home = std::getenv("HOME"); home != nullptr && *home == '/') {
        return home;
    }
    std::vector<char> buffer(16384);
    struct passwd entry = {};
    struct passwd* found = nullptr;
    if (getpwuid_r(geteuid(), &entry, buffer.data(), buffer.size(), &found) == 0 && found != nullptr) {
        return found->pw_dir;
    }
    return {};
}

std::string escaped(const std::string& value)
{
    std::string text;
    for (std::size_t i = 0; i < value.size(); ++i) {
        const char letter = value[i];
        const bool at_an_end = i == 0 || i + 1 == value.size();
        switch (letter) {
        case '\\':
            text += "\\\\";
            break;
        case '\n':
            text += "\\n";
            break;
        case '\r':
            text += "\\r";
            break;
        case ' ':
            text += at_an_end ? "\\s" : " ";
            break;
        case '\t':
            text += at_an_end ? "\\t" : "\t";
            break;
        default:
            text += letter;
        }
    }
    return text;
}

std::string unescaped(const std::string& text)
{
    std::string value;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\' || i + 1 == text.size()) {
            value += text[i];
            continue;
        }
        switch (text[++i]) {
        case 'n':
            value += '\n';
            break;
        case 'r':
            value += '\r';
            break;
        case 's':
            value += ' ';
            break;
        case 't':
            value += '\t';
            break;
        default:
            value += text[i];
        }
    }
    return value;
}

std::vector<std::string> lines_of(const std::string& text)
{
    std::vector<std::string> lines;
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t end = std::min(text.find('\n', start), text.size());
        lines.push_back(text.substr(start, end - start));
        start = end + 1;
    }
    return lines;
}

/// Whether the line sets `key`; its value still escaped.
bool line_sets(const std::string& line, const std::string& key, std::string& value)
{
    const auto divider = line.find('=');
    if (divider == std::string::npos || trimmed(line)[0] == '#' || trimmed(line.substr(0, divider)) != key) {
        return false;
    }
    value = trimmed(line.substr(divider + 1));
    return true;
}

bool is_legal_key(const std::string& key)
{
    return !key.empty() && key == trimmed(key) && key.front() != '#' &&
           std::none_of(key.begin(), key.end(),
                        [](unsigned char letter) { return letter == '=' || letter < ' '; });
}

/// What the file held when it was last read, so that a key that is asked for in a loop costs one stat.
struct CACHE {
    std::mutex mutex;
    std::string path;
    struct stat status = {};
    std::vector<std::string> lines;
};

CACHE& cache()
{
    static auto* const instance = new CACHE;
    return *instance;
}

bool unchanged(const struct stat& left, const struct stat& right)
{
    return left.st_dev == right.st_dev && left.st_ino == right.st_ino && left.st_size == right.st_size &&
           left.st_mtim.tv_sec == right.st_mtim.tv_sec && left.st_mtim.tv_nsec == right.st_mtim.tv_nsec &&
           left.st_ctim.tv_sec == right.st_ctim.tv_sec && left.st_ctim.tv_nsec == right.st_ctim.tv_nsec;
}

bool failed(const std::string& path, std::string& message)
{
    message = path + " cannot be written: " + strerrordesc_np(errno) + ".";
    return false;
}

bool write_all(int descriptor, const std::string& text)
{
    for (std::size_t done = 0; done < text.size();) {
        const ssize_t count = write(descriptor, text.data() + done, text.size() - done);
        if (count < 0 && errno != EINTR) {
            return false;
        }
        done += count > 0 ? static_cast<std::size_t>(count) : 0;
    }
    return true;
}

bool replace_file(const std::string& path, const std::string& text, std::string& message)
{
    struct stat old = {};
    const mode_t mode = stat(path.c_str(), &old) == 0 ? old.st_mode & 07777 : 0600;
    std::string temporary = path + ".XXXXXX";
    const DESCRIPTOR file(mkostemp(temporary.data(), O_CLOEXEC));
    if (file.get() < 0) {
        return failed(path, message);
    }
    if (!write_all(file.get(), text) || fchmod(file.get(), mode) != 0 || fsync(file.get()) != 0 ||
        rename(temporary.c_str(), path.c_str()) != 0) {
        failed(path, message);
        unlink(temporary.c_str());
        return false;
    }
    return true;
}

/// Reads, changes and writes the file, one process and thread at a time. A null value removes the key.
bool change(const std::string& key, const std::string* value, std::string& message)
{
    if (!is_legal_key(key)) {
        MSG_INTERNAL_ERROR::report("is_legal_key(key)", "MSG", __FILE__, __LINE__);
    }
    namespace fs = std::filesystem;
    std::string path = USER_SETTINGS::file_path();
    if (path.empty()) {
        message = "Settings cannot be kept: the user has no home directory.";
        return false;
    }
    const std::lock_guard lock(cache().mutex);
    std::error_code error;
    fs::create_directories(fs::path(path).parent_path(), error);
    const DESCRIPTOR guard(open((path + ".lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
    if (guard.get() < 0 || flock(guard.get(), LOCK_EX) != 0) {
        return failed(path, message);
    }
    // A file that is kept elsewhere behind a symbolic link stays there.
    if (const fs::path target = fs::canonical(path, error); !error) {
        path = target.string();
    }
    std::string text;
    bool missing = false;
    if (!read_small_text_file(path, text, message, missing) && !missing) {
        return false;
    }
    std::string changed;
    std::string old_value;
    bool written = value == nullptr;
    for (const std::string& line : lines_of(text)) {
        if (!line_sets(line, key, old_value)) {
            changed += line + "\n";
        } else if (!written) {
            changed += key + " = " + escaped(*value) + "\n";
            written = true;
        }
    }
    if (!written) {
        changed += key + " = " + escaped(*value) + "\n";
    }
    message.clear();
    return changed == text || replace_file(path, changed, message);
}

} // namespace

std::string USER_SETTINGS::file_path()
{
    std::string directory;
    if (const char* const config = std::getenv("XDG_CONFIG_HOME"); config != nullptr && *config == '/') {
        directory = config;
    } else if (const std::string home = home_directory(); !home.empty()) {
        directory = home + "/.config";
    }
    return directory.empty() ? directory : directory + "/imagewright/imagewright.ini";
}

bool USER_SETTINGS::get(const std::string& key, std::string& value)
{
    const std::string path = file_path();
    struct stat status = {};
    if (path.empty() || stat(path.c_str(), &status) != 0) {
        return false;
    }
    const std::lock_guard lock(cache().mutex);
    if (cache().path != path || !unchanged(cache().status, status)) {
        std::string text;
        std::string message;
        bool missing = false;
        if (!read_small_text_file(path, text, message, missing)) {
            return false;
        }
        cache().path = path;
        cache().status = status;
        cache().lines = lines_of(text);
    }
    std::string found;
    for (const std::string& line : cache().lines) {
        if (line_sets(line, key, found)) {
            value = unescaped(found);
            return true;
        }
    }
    return false;
}

bool USER_SETTINGS::set(const std::string& key, const std::string& value, std::string& message)
{
    return change(key, &value, message);
}

bool USER_SETTINGS::remove(const std::string& key, std::string& message)
{
    return change(key, nullptr, message);
}
