#ifndef UTF8_H
#define UTF8_H

#include <cstddef>
#include <string>
#include <string_view>

/// Appends UTF-16 code units as UTF-8. A lone surrogate becomes U+FFFD.
void append_utf8(std::string& target, const char16_t* units, std::size_t count);

/// Where the first byte stands that no XML 1.0 document in UTF-8 can hold: one that is not part of a
/// well-formed sequence, or of a character that XML forbids (control characters but tab, line feed and
/// carriage return; surrogates; U+FFFE and U+FFFF). std::string_view::npos when all is well.
std::size_t find_invalid_xml_character(std::string_view text);

#endif
