#include "temporary_directory.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace fs = std::filesystem;

TEMPORARY_DIRECTORY::TEMPORARY_DIRECTORY()
{
    std::string pattern = (fs::temp_directory_path() / "imagewright-test-XXXXXX").string();
    if (::mkdtemp(pattern.data()) == nullptr) {
        ADD_FAILURE() << "no temporary directory";
        return;
    }
    m_path = pattern;
}

TEMPORARY_DIRECTORY::~TEMPORARY_DIRECTORY()
{
    std::error_code ignored;
    fs::remove_all(m_path, ignored);
}

std::vector<std::string> TEMPORARY_DIRECTORY::entries() const
{
    std::vector<std::string> names;
    for (const fs::directory_entry& entry : fs::directory_iterator(m_path)) {
        names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

void write_file(const std::string& path, const std::string& bytes)
{
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    file.close();
    EXPECT_TRUE(file.good()) << path;
}

void write_file(const std::string& path, const std::vector<std::uint8_t>& bytes)
{
    write_file(path, std::string(bytes.begin(), bytes.end()));
}

std::string read_text_file(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    EXPECT_TRUE(file.good()) << path;
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::vector<std::uint8_t> read_file(const std::string& path)
{
    const std::string text = read_text_file(path);
    return {text.begin(), text.end()};
}
