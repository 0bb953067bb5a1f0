#include "document_compare.h"

#include "msg_internal_error.h"
#include "pgm_common_xml_descriptor.h"

#include <map>

namespace
{

std::string tag_of(const PGM_COMMON_XML_ELEMENT& element)
{
    return PGM_COMMON_XML_ENUM_STRING[element.m_class_type];
}

bool compare_value(const std::string& place, const std::string& name, const std::string& left,
                   const std::string& right, std::string& difference)
{
    if (left == right) {
        return true;
    }
    difference = place + ": " + name + " is \"" + left + "\" and \"" + right + "\"";
    return false;
}

bool compare(const std::string& place, const PGM_COMMON_XML_ELEMENT& left,
             const PGM_COMMON_XML_ELEMENT& right, std::string& difference);

bool compare_children(const std::string& place, const PGM_COMMON_XML_ELEMENT& left,
                      const PGM_COMMON_XML_ELEMENT& right, std::string& difference)
{
    std::map<PGM_COMMON_XML_ENUM, unsigned> numbers;
    for (std::size_t index = 0; index < left.m_childs.size() || index < right.m_childs.size(); ++index) {
        if (index >= left.m_childs.size() || index >= right.m_childs.size() ||
            left.m_childs[index]->m_class_type != right.m_childs[index]->m_class_type) {
            const auto name = [index](const PGM_COMMON_XML_ELEMENT& element) {
                return index < element.m_childs.size() ? tag_of(*element.m_childs[index]) : "nothing";
            };
            difference =
                place + ": child " + std::to_string(index + 1) + " is " + name(left) + " and " + name(right);
            return false;
        }
        const PGM_COMMON_XML_ELEMENT& child = *left.m_childs[index];
        const std::string number = std::to_string(++numbers[child.m_class_type]);
        if (!compare(place + "/" + tag_of(child) + "[" + number + "]", child, *right.m_childs[index],
                     difference)) {
            return false;
        }
    }
    return true;
}

bool compare(const std::string& place, const PGM_COMMON_XML_ELEMENT& left,
             const PGM_COMMON_XML_ELEMENT& right, std::string& difference)
{
    const PGM_COMMON_XML_ELEMENT_DESCRIPTOR* descriptor = pgm_common_xml_vek_find_element(left.m_class_type);
    VEK_ASSERT(descriptor != nullptr);
    for (std::size_t index = 0; index < descriptor->attributes.size(); ++index) {
        const PGM_COMMON_XML_ATTRIBUTE_DESCRIPTOR& attribute = descriptor->attributes[index];
        if (attribute.type == PGM_XML_TYPE_SECRET || left.m_class_type == PGM_COMMON_XML_ENUM_VEK) {
            continue;
        }
        const int number = static_cast<int>(index);
        if (!compare_value(place, std::string(attribute.name), pgm_common_xml_read(left, number),
                           pgm_common_xml_read(right, number), difference)) {
            return false;
        }
    }
    return compare_value(place, "text", left.read_string(), right.read_string(), difference) &&
           compare_children(place, left, right, difference);
}

} // namespace

bool documents_equal(const PGM_COMMON_XML_ELEMENT& left, const PGM_COMMON_XML_ELEMENT& right,
                     std::string& difference)
{
    if (left.m_class_type != right.m_class_type) {
        difference = tag_of(left) + " and " + tag_of(right);
        return false;
    }
    return compare(tag_of(left), left, right, difference);
}
