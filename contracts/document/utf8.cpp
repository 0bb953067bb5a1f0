#include "utf8.h"

#include <cstdint>

namespace
{

constexpr char32_t REPLACEMENT = 0xFFFD;

bool is_high_surrogate(char16_t unit)
{
    return unit >= 0xD800 && unit <= 0xDBFF;
}

bool is_low_surrogate(char16_t unit)
{
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

void append_code_point(std::string& target, char32_t point)
{
    const auto put = [&target](char32_t byte) { target.push_back(static_cast<char>(byte)); };
    if (point < 0x800) {
        put(0xC0 | (point >> 6));
    } else if (point < 0x10000) {
        put(0xE0 | (point >> 12));
        put(0x80 | ((point >> 6) & 0x3F));
    } else {
        put(0xF0 | (point >> 18));
        put(0x80 | ((point >> 12) & 0x3F));
        put(0x80 | ((point >> 6) & 0x3F));
    }
    put(0x80 | (point & 0x3F));
}

bool is_xml_character(char32_t point)
{
    if (point < 0x20) {
        return point == '\t' || point == '\n' || point == '\r';
    }
    return (point < 0xD800 || point > 0xDFFF) && point != 0xFFFE && point != 0xFFFF && point <= 0x10FFFF;
}

/// The number of bytes of a well-formed sequence at the front of `text`, 0 when there is none.
std::size_t sequence_length(std::string_view text, char32_t& point)
{
    const auto byte = [text](std::size_t index) { return static_cast<std::uint8_t>(text[index]); };
    const std::uint8_t first = byte(0);
    const std::size_t length = first < 0x80   ? 1
                               : first < 0xC2 ? 0
                               : first < 0xE0 ? 2
                               : first < 0xF0 ? 3
                               : first < 0xF5 ? 4
                                              : 0;
    if (length == 0 || text.size() < length) {
        return 0;
    }
    constexpr char32_t SMALLEST[] = {0, 0, 0x80, 0x800, 0x10000};
    point = length == 1 ? first : first & (0x7FU >> length);
    for (std::size_t index = 1; index < length; ++index) {
        if ((byte(index) & 0xC0) != 0x80) {
            return 0;
        }
        point = (point << 6) | (byte(index) & 0x3FU);
    }
    return point < SMALLEST[length] ? 0 : length;
}

} // namespace

void append_utf8(std::string& target, const char16_t* units, std::size_t count)
{
    // Nearly all text is ASCII, which is copied without a look at each unit's neighbour.
    const std::size_t size = target.size();
    target.resize(size + count);
    char* const bytes = target.data() + size;
    std::size_t index = 0;
    for (; index < count && units[index] < 0x80; ++index) {
        bytes[index] = static_cast<char>(units[index]);
    }
    target.resize(size + index);
    for (; index < count; ++index) {
        const char16_t unit = units[index];
        if (unit < 0x80) {
            target.push_back(static_cast<char>(unit));
        } else if (is_high_surrogate(unit) && index + 1 < count && is_low_surrogate(units[index + 1])) {
            const char32_t high = unit - 0xD800U;
            const char32_t low = units[++index] - 0xDC00U;
            append_code_point(target, 0x10000 + (high << 10) + low);
        } else {
            const bool lone = is_high_surrogate(unit) || is_low_surrogate(unit);
            append_code_point(target, lone ? REPLACEMENT : unit);
        }
    }
}

std::size_t find_invalid_xml_character(std::string_view text)
{
    for (std::size_t offset = 0; offset < text.size();) {
        const auto byte = static_cast<std::uint8_t>(text[offset]);
        if (byte >= 0x20 && byte < 0x80) {
            ++offset;
            continue;
        }
        char32_t point = 0;
        const std::size_t length = sequence_length(text.substr(offset), point);
        if (length == 0 || !is_xml_character(point)) {
            return offset;
        }
        offset += length;
    }
    return std::string_view::npos;
}
