#ifndef FORMAT_TEXT_H
#define FORMAT_TEXT_H

#include <cstdint>
#include <string>

/// "0x" and the value in upper-case hexadecimal digits, at least `digits` of them.
std::string hex_text(std::uint64_t value, unsigned digits = 8);

/// The text as it may stand in a comment or between quotation marks of any format: printable ASCII without
/// quotation marks, at most 100 characters.
std::string printable_text(const std::string& text);

/// "1 byte", "2 bytes".
std::string bytes_text(std::uint64_t count);

#endif
