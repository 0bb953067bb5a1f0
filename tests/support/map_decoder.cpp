#include "map_decoder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

DECODED_MAP decode_map(const std::vector<std::uint8_t>& file)
{
    DECODED_MAP map;
    std::istringstream lines(std::string(file.begin(), file.end()));
    std::string line;
    while (std::getline(lines, line) && !line.empty())
        map.head.push_back(line);
    std::string titles;
    std::string underlines;
    std::getline(lines, titles);
    std::getline(lines, underlines);
    while (std::getline(lines, line)) {
        EXPECT_EQ(line.size(), underlines.size());
        std::map<std::string, std::string> row;
        for (std::size_t position = 0; position < underlines.size();) {
            const std::size_t end = std::min(underlines.find(' ', position), underlines.size());
            const auto cut = [&](const std::string& text) {
                if (position != 0) {
                    EXPECT_EQ(text.substr(position - 2, 2), "  ");
                }
                std::string value = text.substr(position, end - position);
                return value.erase(value.find_last_not_of(' ') + 1);
            };
            row[cut(titles)] = cut(line);
            position = end + 2;
        }
        map.rows.push_back(row);
    }
    return map;
}
