#ifndef VALUE_RULES_H
#define VALUE_RULES_H

#include "pgm_common_xml_descriptor.h"

#include <optional>
#include <string>
#include <string_view>

/// The rules for single values, asked by the assistant, the reader and the writer alike.

/// "1", "on" and "true", "0", "off" and "false", in any letter case.
std::optional<bool> parse_bool(std::string_view text);

/// Whether the values of a type are words of a list. Others are kept as they are written.
constexpr bool is_of_listed_words(PGM_XML_TYPE type)
{
    return type == PGM_XML_TYPE_BOOL || type == PGM_XML_TYPE_WORD;
}

/// Whether the attribute may hold `text`, which is brought into the form that the document keeps: "1" or "0"
/// for a bool, and the default for a bool or a word without text. When not, `expected` says in words what is.
bool normalise_value(const PGM_COMMON_XML_ATTRIBUTE_DESCRIPTOR& attribute, std::string& text,
                     std::string& expected);

/// Whether a text that is meant for the name of a key looks like a key itself: hexadecimal digits of 128 bits
/// or more. Such a text never reaches a file.
bool looks_like_key(std::string_view text);

/// "A", "A or B", "A, B or C".
std::string join_words(const std::vector<std::string>& words);

#endif
