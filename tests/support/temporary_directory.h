#ifndef IMAGEWRIGHT_TESTS_TEMPORARY_DIRECTORY_H
#define IMAGEWRIGHT_TESTS_TEMPORARY_DIRECTORY_H

#include <cstdint>
#include <string>
#include <vector>

/// A fresh directory that goes with the object.
class TEMPORARY_DIRECTORY
{
public:
    TEMPORARY_DIRECTORY();
    ~TEMPORARY_DIRECTORY();
    TEMPORARY_DIRECTORY(const TEMPORARY_DIRECTORY&) = delete;
    TEMPORARY_DIRECTORY& operator=(const TEMPORARY_DIRECTORY&) = delete;

    const std::string& path() const { return m_path; }
    /// The path of `name` in the directory.
    std::string operator/(const std::string& name) const { return m_path + "/" + name; }
    /// Names of all entries, hidden ones too, sorted.
    std::vector<std::string> entries() const;

private:
    std::string m_path;
};

/// Whole files, for tests. A failure to write or read fails the test.
void write_file(const std::string& path, const std::string& bytes);
void write_file(const std::string& path, const std::vector<std::uint8_t>& bytes);
std::vector<std::uint8_t> read_file(const std::string& path);
std::string read_text_file(const std::string& path);

#endif
