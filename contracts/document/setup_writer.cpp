#include "setup_writer.h"

#include "atomic_file.h"
#include "id_register.h"
#include "setup_reader.h"
#include "utf8.h"
#include "value_rules.h"
#include "xml_reader.h"

#include <span>
#include <string_view>

namespace
{

constexpr unsigned SETUP_FILE_PERMISSIONS = 0666;
constexpr std::string_view DECLARATION = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";

using ELEMENT = PGM_COMMON_XML_ELEMENT;
using DESCRIPTOR = PGM_COMMON_XML_ELEMENT_DESCRIPTOR;
using ATTRIBUTE = PGM_COMMON_XML_ATTRIBUTE_DESCRIPTOR;

/// Line feeds, tabs and carriage returns would be turned into others on reading, unless they are references.
void append_escaped(std::string& target, std::string_view text, bool in_attribute)
{
    constexpr std::string_view SPECIAL = "<>&\"\n\t\r";
    for (std::size_t from = 0; from < text.size();) {
        const std::size_t special = std::min(text.find_first_of(SPECIAL, from), text.size());
        target += text.substr(from, special - from);
        if (special == text.size()) {
            return;
        }
        const char character = text[special];
        switch (character) {
        case '<':
            target += "&lt;";
            break;
        case '>':
            target += "&gt;";
            break;
        case '&':
            target += "&amp;";
            break;
        case '"':
            target += in_attribute ? "&quot;" : "\"";
            break;
        default:
            if (in_attribute || character == '\r') {
                target += "&#" + std::to_string(static_cast<int>(character)) + ";";
            } else {
                target += character;
            }
        }
        from = special + 1;
    }
}

class SETUP_WRITER
{
public:
    SETUP_WRITER(std::string& text, std::string& message) : m_text(text), m_message(message) {}

    bool write(const ELEMENT& element, std::size_t depth)
    {
        const DESCRIPTOR& descriptor = *pgm_common_xml_vek_find_element(element.m_class_type);
        const char* tag = PGM_COMMON_XML_ENUM_STRING[descriptor.kind];
        if (!m_ids.add(descriptor, element, m_message)) {
            m_message = "The setup cannot be written: " + m_message + ".";
            return false;
        }
        m_text.append(2 * depth, ' ').append("<").append(tag);
        for (std::size_t index = 0; index < descriptor.attributes.size(); ++index) {
            if (!write_attribute(descriptor, element, static_cast<int>(index))) {
                return false;
            }
        }
        const std::string& text = element.read_string();
        if (descriptor.key == PGM_COMMON_XML_TEXT && text.empty()) {
            return refuse(std::string("the text of ") + tag + " is missing");
        }
        if (text.empty() && element.m_childs.empty()) {
            m_text += "/>\n";
            return true;
        }
        m_text += ">";
        if (!text.empty()) {
            if (!check_text(text, std::string("the text of ") + tag)) {
                return false;
            }
            append_escaped(m_text, text, false);
        }
        if (!element.m_childs.empty()) {
            m_text += "\n";
            for (const ELEMENT* child : element.m_childs) {
                if (!write(*child, depth + 1)) {
                    return false;
                }
            }
            m_text.append(2 * depth, ' ');
        }
        m_text.append("</").append(tag).append(">\n");
        return true;
    }

private:
    bool write_attribute(const DESCRIPTOR& descriptor, const ELEMENT& element, int index)
    {
        const ATTRIBUTE& attribute = descriptor.attributes[static_cast<std::size_t>(index)];
        std::string value = descriptor.kind == PGM_COMMON_XML_ENUM_VEK ? std::to_string(SETUP_FORMAT_VERSION)
                                                                       : pgm_common_xml_read(element, index);
        if (attribute.type == PGM_XML_TYPE_SECRET ||
            (value == attribute.default_value && attribute.exist != PGM_XML_EXIST_REQUIRED)) {
            return true;
        }
        const std::string place = "the attribute " + std::string(attribute.name) + " of " +
                                  PGM_COMMON_XML_ENUM_STRING[descriptor.kind];
        if (!check_text(value, place)) {
            return false;
        }
        if (attribute.type == PGM_XML_TYPE_KEY_NAME && looks_like_key(value)) {
            return refuse(place +
                          " looks like a key, which never goes into a setup; put the key into a key file "
                          "and give its name");
        }
        std::string expected;
        if (!normalise_value(attribute, value, expected)) {
            return refuse(place + " is \"" + value + "\", expected is " + expected);
        }
        m_text.append(" ").append(attribute.name).append("=\"");
        append_escaped(m_text, value, true);
        m_text += "\"";
        return true;
    }

    bool check_text(const std::string& text, const std::string& place)
    {
        const std::size_t invalid = find_invalid_xml_character(text);
        if (invalid != std::string::npos) {
            return refuse(
                place + " holds a byte at position " + std::to_string(invalid + 1) +
                " that is no UTF-8 text or a character that XML forbids; choose another name or path");
        }
        if (text.size() > XML_LIMITS().value_length) {
            return refuse(place + " is longer than " + std::to_string(XML_LIMITS().value_length) + " bytes");
        }
        return true;
    }

    bool refuse(const std::string& reason)
    {
        m_message = "The setup cannot be written: " + reason + ".";
        return false;
    }

    std::string& m_text;
    std::string& m_message;
    ID_REGISTER m_ids;
};

} // namespace

bool write_setup_text(const PGM_COMMON_XML_VEK_VEK& document, std::string& text, std::string& message)
{
    std::string result(DECLARATION);
    if (!SETUP_WRITER(result, message).write(document, 0)) {
        return false;
    }
    if (result.size() > XML_LIMITS().file_size) {
        message = "The setup cannot be written: it takes " + std::to_string(result.size()) +
                  " bytes, and a setup file has at most " + std::to_string(XML_LIMITS().file_size) + ".";
        return false;
    }
    text = std::move(result);
    return true;
}

bool write_setup_file(const PGM_COMMON_XML_VEK_VEK& document, const std::string& path, std::string& message)
{
    std::string text;
    if (!write_setup_text(document, text, message)) {
        return false;
    }
    const std::unique_ptr<ATOMIC_FILE> file = ATOMIC_FILE::create(path, SETUP_FILE_PERMISSIONS, message);
    return file && file->write({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()}, message) &&
           file->commit(message);
}
