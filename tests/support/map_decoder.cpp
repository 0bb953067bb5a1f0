#include "map_decoder.h"

#include <gtest/gtest.h>

#include <regex>
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
    const std::regex dashes("-+");
    while (std::getline(lines, line)) {
        EXPECT_EQ(line.size(), underlines.size());
        std::map<std::string, std::string> row;
        for (std::sregex_iterator it(underlines.begin(), underlines.end(), dashes), end; it != end; ++it) {
            const auto cut = [&](const std::string& text) {
                const auto position = static_cast<std::size_t>(it->position());
                if (position != 0) {
                    EXPECT_EQ(text.substr(position - 2, 2), "  ");
                }
                std::string value = text.substr(position, static_cast<std::size_t>(it->length()));
                return value.erase(value.find_last_not_of(' ') + 1);
            };
            row[cut(titles)] = cut(line);
        }
        map.rows.push_back(row);
    }
    return map;
}
