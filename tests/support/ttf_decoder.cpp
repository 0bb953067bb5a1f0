#include "ttf_decoder.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

std::vector<std::uint8_t> decode_ttf(const std::vector<std::uint8_t>& file)
{
    std::vector<std::uint8_t> result;
    std::istringstream lines(std::string(file.begin(), file.end()));
    std::string line;
    std::string last = ",";
    while (std::getline(lines, line)) {
        EXPECT_EQ(last.back(), ',') << "only the last line may lack a comma";
        last = line;
        std::istringstream numbers(line);
        std::string number;
        unsigned count = 0;
        for (; std::getline(numbers, number, ','); ++count) {
            const int value = std::stoi(number);
            EXPECT_EQ(std::to_string(value), number);
            EXPECT_LE(value, 255);
            result.push_back(static_cast<std::uint8_t>(value));
        }
        EXPECT_LE(count, 16u);
        if (line.back() == ',') {
            EXPECT_EQ(count, 16u) << "only the last line may be short";
        }
    }
    if (!file.empty()) {
        EXPECT_EQ(file.back(), '\n');
        EXPECT_NE(last.back(), ',') << "the last number has no comma";
    }
    return result;
}
