#include "setup_reader.h"

#include "id_register.h"
#include "value_rules.h"
#include "xml_reader.h"

#include <algorithm>
#include <charconv>
#include <vector>

namespace
{

using ELEMENT = PGM_COMMON_XML_ELEMENT;
using DESCRIPTOR = PGM_COMMON_XML_ELEMENT_DESCRIPTOR;

std::string tag_of(const DESCRIPTOR& descriptor)
{
    return PGM_COMMON_XML_ENUM_STRING[descriptor.kind];
}

std::string quote(std::string_view text)
{
    constexpr std::size_t LONGEST = 80;
    return "\"" + std::string(text.substr(0, LONGEST)) + (text.size() > LONGEST ? "...\"" : "\"");
}

bool is_blank(std::string_view text)
{
    return std::all_of(text.begin(), text.end(),
                       [](char one) { return one == ' ' || one == '\n' || one == '\t' || one == '\r'; });
}

std::string describe_children(const DESCRIPTOR& parent)
{
    std::vector<std::string> tags;
    for (const PGM_COMMON_XML_CHILD_DESCRIPTOR& child : parent.children) {
        tags.emplace_back(PGM_COMMON_XML_ENUM_STRING[child.kind]);
    }
    return tag_of(parent) + (tags.empty() ? " holds no elements" : " may hold " + join_words(tags));
}

std::string describe_attributes(const DESCRIPTOR& element)
{
    std::vector<std::string> names;
    for (const PGM_COMMON_XML_ATTRIBUTE_DESCRIPTOR& attribute : element.attributes) {
        if (attribute.type != PGM_XML_TYPE_SECRET) {
            names.emplace_back(attribute.name);
        }
    }
    return tag_of(element) + (names.empty() ? " has no attributes" : " may have " + join_words(names));
}

bool check_version(const std::string& text, std::string& refusal)
{
    unsigned version = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), version);
    if (end != text.data() + text.size() || error == std::errc::invalid_argument) {
        refusal = "the version of the setup is " + quote(text) + ", expected is a number";
        return false;
    }
    if (error != std::errc() || version > SETUP_FORMAT_VERSION) {
        refusal = "the setup has the format version " + text + ", but this program reads versions up to " +
                  std::to_string(SETUP_FORMAT_VERSION) + "; open it with a newer version of the program";
        return false;
    }
    return true;
}

/// Builds the document as the file is read. The tree hangs together at every moment, so that a file refused
/// half way is freed with its root.
class SETUP_LISTENER final : public XML_LISTENER
{
public:
    bool start_element(std::string_view name, std::span<const XML_ATTRIBUTE> attributes,
                       std::string& refusal) override
    {
        // Elements of one kind follow each other in their thousands.
        const DESCRIPTOR* descriptor =
            m_last && m_last->tag == name ? m_last : pgm_common_xml_vek_find_element(name);
        m_last = descriptor;
        ELEMENT* element =
            m_open.empty() ? open_root(name, descriptor, refusal) : open_child(name, descriptor, refusal);
        if (!element) {
            return false;
        }
        m_open.push_back({descriptor, element});
        return take_attributes(*descriptor, *element, attributes, refusal) &&
               m_ids.add(*descriptor, *element, refusal);
    }

    bool text(std::string_view text, std::string& refusal) override
    {
        const OPEN_ELEMENT& open = m_open.back();
        if (open.descriptor->text_type != PGM_XML_TYPE_NONE) {
            open.element->append_string(text);
            return true;
        }
        if (!is_blank(text)) {
            refusal = tag_of(*open.descriptor) + " holds no text; remove " + quote(text);
            return false;
        }
        return true;
    }

    bool end_element(std::string& refusal) override
    {
        const OPEN_ELEMENT& open = m_open.back();
        if (open.descriptor->key == PGM_COMMON_XML_TEXT && open.element->read_string().empty()) {
            refusal =
                tag_of(*open.descriptor) + " is empty; expected is the " +
                (open.descriptor->text_type == PGM_XML_TYPE_ID ? "id that it refers to" : "path of a file");
            return false;
        }
        pgm_common_xml_complete(*open.element);
        m_open.pop_back();
        return true;
    }

    std::unique_ptr<PGM_COMMON_XML_VEK_VEK> take_document() { return std::move(m_document); }

private:
    struct OPEN_ELEMENT {
        const DESCRIPTOR* descriptor;
        ELEMENT* element;
    };

    ELEMENT* open_root(std::string_view name, const DESCRIPTOR* descriptor, std::string& refusal)
    {
        if (!descriptor || descriptor->kind != PGM_COMMON_XML_ENUM_VEK) {
            refusal = "the file begins with the element " + quote(name) + ", a setup begins with VEK";
            return nullptr;
        }
        m_document = std::make_unique<PGM_COMMON_XML_VEK_VEK>(PGM_COMMON_XML_ENUM_VEK);
        return m_document.get();
    }

    ELEMENT* open_child(std::string_view name, const DESCRIPTOR* descriptor, std::string& refusal)
    {
        const OPEN_ELEMENT& parent = m_open.back();
        const PGM_COMMON_XML_CHILD_DESCRIPTOR* row =
            descriptor ? pgm_common_xml_find_child(*parent.descriptor, descriptor->kind) : nullptr;
        if (!row) {
            refusal = (descriptor ? "the element " + quote(name) + " may not stand here; "
                                  : "there is no element " + quote(name) + "; ") +
                      describe_children(*parent.descriptor);
            return nullptr;
        }
        if (row->count != PGM_COMMON_XML_COUNT_ANY &&
            parent.element->get_child_count(descriptor->kind, true) != 0) {
            refusal = tag_of(*parent.descriptor) + " may hold one " + tag_of(*descriptor) +
                      " only; remove the second";
            return nullptr;
        }
        return &pgm_common_xml_add_child(*parent.element, descriptor->kind);
    }

    bool take_attributes(const DESCRIPTOR& descriptor, ELEMENT& element,
                         std::span<const XML_ATTRIBUTE> attributes, std::string& refusal)
    {
        for (const XML_ATTRIBUTE& attribute : attributes) {
            const auto row = std::find_if(descriptor.attributes.begin(), descriptor.attributes.end(),
                                          [&](const auto& known) { return known.name == attribute.name; });
            if (row == descriptor.attributes.end()) {
                refusal = tag_of(descriptor) + " has no attribute " + quote(attribute.name) + "; " +
                          describe_attributes(descriptor);
                return false;
            }
            if (!take_value(descriptor, element, static_cast<int>(row - descriptor.attributes.begin()),
                            attribute.value, refusal)) {
                return false;
            }
        }
        return has_required(descriptor, element, refusal);
    }

    bool take_value(const DESCRIPTOR& descriptor, ELEMENT& element, int index, std::string_view text,
                    std::string& refusal)
    {
        const PGM_COMMON_XML_ATTRIBUTE_DESCRIPTOR& row =
            descriptor.attributes[static_cast<std::size_t>(index)];
        if (row.type == PGM_XML_TYPE_SECRET) {
            refusal = "a setup may not hold the attribute " + std::string(row.name) + " of " +
                      tag_of(descriptor) + ", which is a secret; remove it";
            return false;
        }
        if (is_of_listed_words(row.type)) {
            std::string value(text);
            std::string expected;
            if (!normalise_value(row, value, expected)) {
                refusal = "the attribute " + std::string(row.name) + " of " + tag_of(descriptor) + " is " +
                          quote(text) + ", expected is " + expected;
                return false;
            }
            pgm_common_xml_write(element, index, value);
            return true;
        }
        if (row.type == PGM_XML_TYPE_KEY_NAME && looks_like_key(text)) {
            refusal = "the attribute " + std::string(row.name) + " of " + tag_of(descriptor) +
                      " looks like a key; expected is the name of a key in a key file";
            return false;
        }
        if (descriptor.kind == PGM_COMMON_XML_ENUM_VEK && !check_version(std::string(text), refusal)) {
            return false;
        }
        pgm_common_xml_write(element, index, text);
        return true;
    }

    static bool has_required(const DESCRIPTOR& descriptor, const ELEMENT& element, std::string& refusal)
    {
        for (std::size_t index = 0; index < descriptor.attributes.size(); ++index) {
            if (descriptor.attributes[index].exist == PGM_XML_EXIST_REQUIRED &&
                pgm_common_xml_read(element, static_cast<int>(index)).empty()) {
                refusal = tag_of(descriptor) + " lacks the attribute " +
                          std::string(descriptor.attributes[index].name);
                return false;
            }
        }
        return true;
    }

    std::unique_ptr<PGM_COMMON_XML_VEK_VEK> m_document;
    std::vector<OPEN_ELEMENT> m_open;
    const DESCRIPTOR* m_last = nullptr;
    ID_REGISTER m_ids;
};

} // namespace

bool read_setup_file(const std::string& path, std::unique_ptr<PGM_COMMON_XML_VEK_VEK>& document,
                     std::string& message)
{
    SETUP_LISTENER listener;
    if (!read_xml_file(path, XML_LIMITS(), listener, message)) {
        return false;
    }
    document = listener.take_document();
    return true;
}

bool read_setup_bytes(std::span<const std::uint8_t> bytes, const std::string& name,
                      std::unique_ptr<PGM_COMMON_XML_VEK_VEK>& document, std::string& message)
{
    SETUP_LISTENER listener;
    if (!read_xml_bytes(bytes, name, XML_LIMITS(), listener, message)) {
        return false;
    }
    document = listener.take_document();
    return true;
}
