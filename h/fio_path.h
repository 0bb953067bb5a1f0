#ifndef FIO_PATH_H
#define FIO_PATH_H

#include <string>

/// The path of a file or directory, as bytes in whatever encoding the file system has. A path is a value and
/// never looks at the disk: ".." is resolved in the text. It consists of a directory, up to and with the last
/// "/", and a file name behind it; the texts "", "." and ".." are directories without a file name.
class FIO_PATH
{
public:
    FIO_PATH() = default;
    FIO_PATH(const char* path); ///< null is an empty path
    FIO_PATH(const std::string& path);

    /// The whole text, as it was given.
    std::string fullpath() const { return m_directory + m_filename; }
    /// The directory without a "/" at its end, the root excepted; empty for a bare file name.
    std::string full_directory() const;
    std::string filename() const { return m_filename; }
    /// What stands behind the last dot of the file name, without the dot: "gz" for "a.tar.gz". A file name
    /// has no extension when its only dot is its first or its last character.
    std::string extension() const;
    bool is_empty() const { return m_directory.empty() && m_filename.empty(); }
    bool is_absolute() const;

    /// The way from `directory` to this path, with ".." where it leads outward; "." for the directory itself.
    /// `directory` is taken against the current directory when it is relative. A path that is relative, and
    /// any path when `directory` is empty, is given back as it is.
    std::string get_relative_to(const std::string& directory) const;

    /// Resolves a relative path against `directory`, or against the current directory when that is empty, and
    /// removes ".", ".." and repeated "/". An empty path becomes the directory itself.
    void become_absolute(const std::string& directory);

    /// Replaces the directory and keeps the file name. On an empty path the result is a directory without a
    /// file name.
    void directory(const std::string& directory);

    /// Replaces the extension of the file name, or adds one, with `suffix` in front of it: "top.sof" with
    /// ".jam" and "_a" becomes "top_a.jam". `extension` is taken with or without its dot. Nothing changes
    /// when it is empty or the path has no file name.
    void extension(const std::string& extension, const std::string& suffix);

    operator std::string() const { return fullpath(); }

    /// Equal when the texts are after the removal of ".", ".." and repeated or trailing "/".
    friend bool operator==(const FIO_PATH& left, const FIO_PATH& right);

private:
    std::string m_directory; ///< with its last "/" where a file name follows
    std::string m_filename;
};

#endif
