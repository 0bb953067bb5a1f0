#include "temporary_directory.h"

#include <gtest/gtest.h>

#include <filesystem>

TEST(format_pages, the_index_names_every_page_and_no_other)
{
    const std::filesystem::path directory = std::filesystem::path(IMAGEWRIGHT_SOURCE_DIR) / "docs/formats";
    const std::string index = read_text_file((directory / "README.md").string());
    std::size_t pages = 0;
    for (const auto& entry : std::filesystem::directory_iterator(directory)) {
        const std::string name = entry.path().filename().string();
        if (name == "README.md" || entry.path().extension() != ".md")
            continue;
        ++pages;
        EXPECT_NE(index.find("(" + name + ")"), std::string::npos) << name << " is not in the index";
    }
    std::size_t links = 0;
    for (std::size_t at = index.find(".md)"); at != std::string::npos; at = index.find(".md)", at + 1)) {
        const std::size_t begin = index.rfind('(', at) + 1;
        const std::string name = index.substr(begin, at + 3 - begin);
        EXPECT_TRUE(std::filesystem::exists(directory / name)) << name;
        links += name.find('/') == std::string::npos ? 1 : 0;
    }
    EXPECT_EQ(links, pages);
}
