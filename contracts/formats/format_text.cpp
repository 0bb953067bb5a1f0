#include "format_text.h"

#include <algorithm>

std::string hex_text(std::uint64_t value, unsigned digits)
{
    std::string text;
    for (; value != 0 || text.size() < digits; value >>= 4)
        text.push_back("0123456789ABCDEF"[value & 0xF]);
    text += "x0";
    std::reverse(text.begin(), text.end());
    return text;
}

std::string printable_text(const std::string& text)
{
    std::string printable = text.substr(0, 100);
    std::replace_if(
        printable.begin(), printable.end(), [](char c) { return c < ' ' || c > '~' || c == '"'; }, '?');
    return printable;
}

std::string bytes_text(std::uint64_t count)
{
    return std::to_string(count) + (count == 1 ? " byte" : " bytes");
}
