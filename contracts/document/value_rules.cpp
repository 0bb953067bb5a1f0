#include "value_rules.h"

#include <algorithm>
#include <vector>

namespace
{

constexpr std::size_t SHORTEST_KEY_DIGITS = 32;

bool equals_ignoring_case(std::string_view text, std::string_view lower)
{
    return std::equal(text.begin(), text.end(), lower.begin(), lower.end(), [](char left, char right) {
        return (left >= 'A' && left <= 'Z' ? static_cast<char>(left - 'A' + 'a') : left) == right;
    });
}

bool is_hex_digit(char digit)
{
    return (digit >= '0' && digit <= '9') || (digit >= 'a' && digit <= 'f') || (digit >= 'A' && digit <= 'F');
}

bool normalise_bool(const PGM_COMMON_XML_ATTRIBUTE_DESCRIPTOR& attribute, std::string& text,
                    std::string& expected)
{
    if (text.empty()) {
        text = attribute.default_value;
        return true;
    }
    const std::optional<bool> value = parse_bool(text);
    if (!value) {
        expected = "1, 0, ON, OFF, true or false";
        return false;
    }
    text = *value ? "1" : "0";
    return true;
}

bool normalise_word(const PGM_COMMON_XML_ATTRIBUTE_DESCRIPTOR& attribute, std::string& text,
                    std::string& expected)
{
    if (text.empty() && attribute.exist != PGM_XML_EXIST_REQUIRED) {
        text = attribute.default_value;
        return true;
    }
    const auto is_text = [&text](PGM_COMMON_XML_ENUM word) {
        return text == PGM_COMMON_XML_ENUM_STRING[word];
    };
    if (std::any_of(attribute.words.begin(), attribute.words.end(), is_text)) {
        return true;
    }
    std::vector<std::string> words;
    for (const PGM_COMMON_XML_ENUM word : attribute.words) {
        words.emplace_back(PGM_COMMON_XML_ENUM_STRING[word]);
    }
    expected = join_words(words);
    return false;
}

bool require_text(const PGM_COMMON_XML_ATTRIBUTE_DESCRIPTOR& attribute, const std::string& text,
                  std::string& expected)
{
    if (text.empty() && attribute.exist == PGM_XML_EXIST_REQUIRED) {
        expected = "a name";
        return false;
    }
    return true;
}

} // namespace

std::optional<bool> parse_bool(std::string_view text)
{
    if (text == "1" || equals_ignoring_case(text, "on") || equals_ignoring_case(text, "true")) {
        return true;
    }
    if (text == "0" || equals_ignoring_case(text, "off") || equals_ignoring_case(text, "false")) {
        return false;
    }
    return std::nullopt;
}

bool normalise_value(const PGM_COMMON_XML_ATTRIBUTE_DESCRIPTOR& attribute, std::string& text,
                     std::string& expected)
{
    switch (attribute.type) {
    case PGM_XML_TYPE_BOOL:
        return normalise_bool(attribute, text, expected);
    case PGM_XML_TYPE_WORD:
        return normalise_word(attribute, text, expected);
    case PGM_XML_TYPE_NONE:
    case PGM_XML_TYPE_TEXT:
    case PGM_XML_TYPE_PATH:
    case PGM_XML_TYPE_ID:
    case PGM_XML_TYPE_DECIMAL:
    case PGM_XML_TYPE_RESERVED:
    case PGM_XML_TYPE_ADDRESS:
    case PGM_XML_TYPE_KEY_NAME:
    case PGM_XML_TYPE_SECRET:
    case PGM_XML_TYPE_INVALID:
        break;
    }
    return require_text(attribute, text, expected);
}

bool looks_like_key(std::string_view text)
{
    return text.size() >= SHORTEST_KEY_DIGITS && std::all_of(text.begin(), text.end(), is_hex_digit);
}

std::string join_words(const std::vector<std::string>& words)
{
    std::string text;
    for (std::size_t index = 0; index < words.size(); ++index) {
        text += index == 0 ? "" : index + 1 == words.size() ? " or " : ", ";
        text += words[index];
    }
    return text;
}
