#include "format_test_support.h"
#include "intel_hex_compare.h"

#include <gtest/gtest.h>

namespace
{
/// A record put together the slow way.
std::string line(std::size_t address, unsigned type, std::span<const std::uint8_t> data)
{
    std::string digits;
    unsigned sum = 0;
    const auto put = [&](std::size_t value) {
        char text[3];
        std::snprintf(text, sizeof text, "%02X", static_cast<unsigned>(value & 0xFF));
        digits += text;
        sum += static_cast<unsigned>(value);
    };
    for (const std::size_t value : {data.size(), address >> 8, address & 0xFF, std::size_t{type}})
        put(value);
    for (const std::uint8_t byte : data)
        put(byte);
    put(0x10000 - sum);
    return ":" + digits + "\n";
}
} // namespace

TEST(intel_hex_compare, vector_and_portable_reading_agree)
{
    DICE random(5);
    for (int round = 0; round != 3000; ++round) {
        const BYTES bytes = make_bytes(HEX_LINE_BYTES * (1 + random() % 8), random());
        const std::size_t address = random() % 4000 * HEX_LINE_BYTES;
        std::string text;
        for (std::size_t i = 0; i != bytes.size(); i += HEX_LINE_BYTES)
            text += line(address + i, 0, std::span(bytes).subspan(i, HEX_LINE_BYTES));
        BYTES lines = bytes_of(text);
        ASSERT_TRUE(hex_lines_say(lines.data(), address, bytes));
        ASSERT_TRUE(hex_lines_say_portable(lines.data(), address, bytes));
        lines[random() % lines.size()] ^= static_cast<std::uint8_t>(1u << random() % 8);
        ASSERT_FALSE(hex_lines_say(lines.data(), address, bytes));
        ASSERT_FALSE(hex_lines_say_portable(lines.data(), address, bytes));
    }
}

TEST(intel_hex_compare, every_other_character_in_a_line_is_seen)
{
    const BYTES bytes = make_bytes(HEX_LINE_BYTES, 9);
    BYTES text = bytes_of(line(0xABC0, 0, bytes));
    ASSERT_EQ(text.size(), hex_line_length(HEX_LINE_BYTES));
    for (std::uint8_t& character : text) {
        const std::uint8_t kept = character;
        for (unsigned value = 0; value != 256; ++value) {
            character = static_cast<std::uint8_t>(value);
            ASSERT_EQ(hex_lines_say(text.data(), 0xABC0, bytes), value == kept);
            ASSERT_EQ(hex_lines_say_portable(text.data(), 0xABC0, bytes), value == kept);
        }
        character = kept;
    }
}

TEST(intel_hex_compare, lines_of_any_length_and_type_are_compared)
{
    const BYTES bytes = make_bytes(255, 2);
    for (std::size_t length = 0; length != bytes.size(); ++length) {
        const std::span<const std::uint8_t> data = std::span(bytes).first(length);
        const BYTES text = bytes_of(line(0x1234, 4, data));
        ASSERT_EQ(text.size(), hex_line_length(length));
        EXPECT_TRUE(hex_line_says(text.data(), INTEL_HEX_RECORD::EXTENDED_LINEAR_ADDRESS, 0x1234, data));
        EXPECT_FALSE(hex_line_says(text.data(), INTEL_HEX_RECORD::DATA, 0x1234, data));
        EXPECT_FALSE(hex_line_says(text.data(), INTEL_HEX_RECORD::EXTENDED_LINEAR_ADDRESS, 0x1235, data));
    }
}
