#include "fio_path.h"

#include "fio_file_system.h"

#include <algorithm>
#include <string_view>
#include <vector>

namespace
{

struct PARTS {
    bool absolute = false;
    std::vector<std::string_view> names;
};

/// The names of a path without ".", without repeated "/" and with ".." resolved; a relative path may still
/// begin with "..". The names point into `path`.
PARTS parts_of(std::string_view path)
{
    PARTS parts;
    parts.absolute = path.starts_with('/');
    for (std::size_t start = 0; start < path.size();) {
        const std::size_t end = std::min(path.find('/', start), path.size());
        const std::string_view name = path.substr(start, end - start);
        start = end + 1;
        if (name.empty() || name == ".") {
            continue;
        }
        if (name != "..") {
            parts.names.push_back(name);
        } else if (!parts.names.empty() && parts.names.back() != "..") {
            parts.names.pop_back();
        } else if (!parts.absolute) {
            parts.names.push_back(name);
        }
    }
    return parts;
}

std::string joined(const PARTS& parts)
{
    std::string path = parts.absolute ? "/" : "";
    for (const std::string_view name : parts.names) {
        if (!path.empty() && path.back() != '/') {
            path += '/';
        }
        path += name;
    }
    return path.empty() ? "." : path;
}

/// `directory` as an absolute text, or empty when the current directory is needed and not there any more.
std::string absolute_directory(const std::string& directory)
{
    if (directory.starts_with('/')) {
        return directory;
    }
    const std::string current = FIO_FILE_SYSTEM::get_current_directory();
    return current.empty() ? current : current + "/" + directory;
}

/// Where the extension's dot stands in a file name; npos when it has none.
std::size_t extension_dot(const std::string& filename)
{
    const std::size_t dot = filename.rfind('.');
    return dot == 0 ? std::string::npos : dot;
}

} // namespace

FIO_PATH::FIO_PATH(const char* path) : FIO_PATH(std::string(path != nullptr ? path : "")) {}

FIO_PATH::FIO_PATH(const std::string& path)
{
    // Without a "/" the find gives npos, and the name begins at 0.
    m_directory = path.substr(0, path.rfind('/') + 1);
    m_filename = path.substr(m_directory.size());
    if (m_filename == "." || m_filename == "..") {
        m_directory += m_filename;
        m_filename.clear();
    }
}

std::string FIO_PATH::full_directory() const
{
    const std::size_t last = m_directory.find_last_not_of('/');
    if (last == std::string::npos) {
        return m_directory.empty() ? m_directory : "/";
    }
    return m_directory.substr(0, last + 1);
}

std::string FIO_PATH::extension() const
{
    const std::size_t dot = extension_dot(m_filename);
    return dot == std::string::npos ? std::string() : m_filename.substr(dot + 1);
}

bool FIO_PATH::is_absolute() const
{
    return m_directory.starts_with('/');
}

std::string FIO_PATH::get_relative_to(const std::string& directory) const
{
    const std::string base_text = directory.empty() ? directory : absolute_directory(directory);
    const std::string path_text = fullpath();
    if (base_text.empty() || !is_absolute()) {
        return path_text;
    }
    const PARTS base = parts_of(base_text);
    const PARTS path = parts_of(path_text);
    const auto [base_rest, path_rest] =
        std::mismatch(base.names.begin(), base.names.end(), path.names.begin(), path.names.end());
    PARTS way;
    way.names.assign(static_cast<std::size_t>(base.names.end() - base_rest), "..");
    way.names.insert(way.names.end(), path_rest, path.names.end());
    return joined(way);
}

void FIO_PATH::become_absolute(const std::string& directory)
{
    std::string text = fullpath();
    if (!is_absolute()) {
        const std::string base = absolute_directory(directory);
        if (base.empty()) {
            return;
        }
        text = base + "/" + text;
    }
    const std::string absolute = joined(parts_of(text));
    if (m_filename.empty()) {
        m_directory = absolute;
    } else {
        *this = FIO_PATH(absolute);
    }
}

void FIO_PATH::directory(const std::string& directory)
{
    m_directory = directory;
    if (!m_filename.empty() && !m_directory.empty() && m_directory.back() != '/') {
        m_directory += '/';
    }
}

void FIO_PATH::extension(const std::string& extension, const std::string& suffix)
{
    const std::string letters = extension.starts_with('.') ? extension.substr(1) : extension;
    if (letters.empty() || m_filename.empty()) {
        return;
    }
    m_filename = m_filename.substr(0, extension_dot(m_filename)) + suffix + "." + letters;
}

bool operator==(const FIO_PATH& left, const FIO_PATH& right)
{
    if (left.is_empty() || right.is_empty()) {
        return left.is_empty() && right.is_empty();
    }
    return joined(parts_of(left.fullpath())) == joined(parts_of(right.fullpath()));
}
