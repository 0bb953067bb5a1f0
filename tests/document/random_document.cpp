#include "random_document.h"

#include "pgm_common_xml_descriptor.h"

#include <random>
#include <string>

namespace
{

class MAKER
{
public:
    explicit MAKER(unsigned seed) : m_random(seed) {}

    void fill(PGM_COMMON_XML_ELEMENT& element)
    {
        const PGM_COMMON_XML_ELEMENT_DESCRIPTOR& descriptor =
            *pgm_common_xml_vek_find_element(element.m_class_type);
        for (std::size_t index = 0; index < descriptor.attributes.size(); ++index) {
            if (descriptor.kind != PGM_COMMON_XML_ENUM_VEK) {
                pgm_common_xml_write(element, static_cast<int>(index), value(descriptor.attributes[index]));
            }
        }
        if (descriptor.text_type != PGM_XML_TYPE_NONE) {
            element.write_string(text() + std::to_string(m_next_id++));
        }
        for (const PGM_COMMON_XML_CHILD_DESCRIPTOR& child : descriptor.children) {
            const unsigned count = child.count == PGM_COMMON_XML_COUNT_ANY ? 1 + pick(3) : 1;
            for (unsigned number = 0; number < count; ++number) {
                fill(pgm_common_xml_add_child(element, child.kind));
            }
        }
    }

private:
    unsigned pick(unsigned count) { return static_cast<unsigned>(m_random() % count); }

    std::string value(const PGM_COMMON_XML_ATTRIBUTE_DESCRIPTOR& attribute)
    {
        switch (attribute.type) {
        case PGM_XML_TYPE_BOOL:
            return pick(2) == 0 ? "0" : "1";
        case PGM_XML_TYPE_WORD:
            return PGM_COMMON_XML_ENUM_STRING[attribute.words[pick(
                static_cast<unsigned>(attribute.words.size()))]];
        case PGM_XML_TYPE_ID:
            return text() + std::to_string(m_next_id++);
        case PGM_XML_TYPE_SECRET:
            return "secret words";
        case PGM_XML_TYPE_NONE:
        case PGM_XML_TYPE_TEXT:
        case PGM_XML_TYPE_PATH:
        case PGM_XML_TYPE_DECIMAL:
        case PGM_XML_TYPE_RESERVED:
        case PGM_XML_TYPE_ADDRESS:
        case PGM_XML_TYPE_KEY_NAME:
        case PGM_XML_TYPE_INVALID:
            break;
        }
        return pick(8) == 0 ? "" : text();
    }

    std::string text()
    {
        static const char* const PIECES[] = {" ",      "\t",         "\n", "\r",  "<",      ">",
                                             "&",      "\"",         "'",  "]]>", "\u00e4", "\u4e2d",
                                             "a",      "\U0001F680", "Z",  "0",   "&amp;",  "\u0085",
                                             "\u2028", "<!--",       "%s", "\\",  "/",      "\x7f"};
        std::string result;
        for (unsigned length = pick(12); length > 0; --length) {
            result += PIECES[pick(std::size(PIECES))];
        }
        return result;
    }

    std::mt19937 m_random;
    unsigned m_next_id = 1;
};

} // namespace

std::unique_ptr<PGM_COMMON_XML_VEK_VEK> make_random_document(unsigned seed)
{
    auto document = std::make_unique<PGM_COMMON_XML_VEK_VEK>(PGM_COMMON_XML_ENUM_VEK);
    MAKER(seed).fill(*document);
    return document;
}
