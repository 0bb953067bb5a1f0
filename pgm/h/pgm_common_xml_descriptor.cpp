#include "pgm_common_xml_descriptor.h"

#include "msg_internal_error.h"

#include <array>
#include <cstdint>

namespace
{

constexpr std::int8_t NO_ELEMENT = -1;

std::array<std::int8_t, PGM_COMMON_XML_ENUM__MAX__ + 1> number_elements()
{
    std::array<std::int8_t, PGM_COMMON_XML_ENUM__MAX__ + 1> numbers{};
    numbers.fill(NO_ELEMENT);
    std::int8_t number = 0;
    for (const PGM_COMMON_XML_ELEMENT_DESCRIPTOR& element : pgm_common_xml_vek_elements()) {
        numbers[element.kind] = number++;
    }
    return numbers;
}

} // namespace

const PGM_COMMON_XML_ELEMENT_DESCRIPTOR* pgm_common_xml_vek_find_element(PGM_COMMON_XML_ENUM kind)
{
    static const auto numbers = number_elements();
    if (kind >= numbers.size() || numbers[kind] == NO_ELEMENT) {
        return nullptr;
    }
    return &pgm_common_xml_vek_elements()[static_cast<std::size_t>(numbers[kind])];
}

const PGM_COMMON_XML_ELEMENT_DESCRIPTOR* pgm_common_xml_vek_find_element(std::string_view tag)
{
    for (const PGM_COMMON_XML_ELEMENT_DESCRIPTOR& element : pgm_common_xml_vek_elements()) {
        if (tag == element.tag) {
            return &element;
        }
    }
    return nullptr;
}

const PGM_COMMON_XML_CHILD_DESCRIPTOR*
pgm_common_xml_find_child(const PGM_COMMON_XML_ELEMENT_DESCRIPTOR& element, PGM_COMMON_XML_ENUM kind)
{
    const auto found = std::find_if(element.children.begin(), element.children.end(),
                                    [kind](const auto& child) { return child.kind == kind; });
    return found == element.children.end() ? nullptr : &*found;
}

const std::string& pgm_common_xml_read(const PGM_COMMON_XML_ELEMENT& element, int attribute)
{
    if (attribute == PGM_COMMON_XML_TEXT) {
        return element.read_string();
    }
    return element.m_attributes[static_cast<std::size_t>(attribute)].member(
        const_cast<PGM_COMMON_XML_ELEMENT&>(element));
}

void pgm_common_xml_write(PGM_COMMON_XML_ELEMENT& element, int attribute, std::string_view text)
{
    if (attribute == PGM_COMMON_XML_TEXT) {
        element.write_string(text);
        return;
    }
    const PGM_COMMON_XML_ATTRIBUTE_DESCRIPTOR& row =
        element.m_attributes[static_cast<std::size_t>(attribute)];
    std::string& target = row.member(element);
    if (row.type == PGM_XML_TYPE_SECRET) {
        pgm_common_xml_wipe(target);
    }
    target.assign(text);
}

PGM_COMMON_XML_ELEMENT& pgm_common_xml_add_child(PGM_COMMON_XML_ELEMENT& parent, PGM_COMMON_XML_ENUM kind)
{
    const PGM_COMMON_XML_ELEMENT_DESCRIPTOR* descriptor = pgm_common_xml_vek_find_element(kind);
    VEK_ASSERT(descriptor != nullptr);
    std::unique_ptr<PGM_COMMON_XML_ELEMENT> child = descriptor->create();
    parent.group_child(child.get(), false, true);
    return *child.release();
}

void pgm_common_xml_complete(PGM_COMMON_XML_ELEMENT& element)
{
    const PGM_COMMON_XML_ELEMENT_DESCRIPTOR* descriptor =
        pgm_common_xml_vek_find_element(element.m_class_type);
    VEK_ASSERT(descriptor != nullptr);
    for (const PGM_COMMON_XML_CHILD_DESCRIPTOR& child : descriptor->children) {
        if (child.count == PGM_COMMON_XML_COUNT_ALWAYS && element.get_child_count(child.kind, true) == 0) {
            pgm_common_xml_add_child(element, child.kind);
        }
    }
}

std::unique_ptr<PGM_COMMON_XML_ELEMENT> pgm_common_xml_take_child(PGM_COMMON_XML_ELEMENT& parent,
                                                                  PGM_COMMON_XML_ELEMENT& child)
{
    VEK_ASSERT(child.get_parent() == &parent);
    const PGM_COMMON_XML_ELEMENT_DESCRIPTOR* descriptor =
        pgm_common_xml_vek_find_element(parent.m_class_type);
    VEK_ASSERT(descriptor != nullptr);
    const PGM_COMMON_XML_CHILD_DESCRIPTOR* row = pgm_common_xml_find_child(*descriptor, child.m_class_type);
    VEK_ASSERT(row != nullptr);
    row->bring_to_end(parent, child);
    parent.group_child(&child, true, true);
    return std::unique_ptr<PGM_COMMON_XML_ELEMENT>(&child);
}

PGM_COMMON_XML_VEK_CMD_OPT_ENUM pgm_common_xml_find_vek_cmd_opt(std::string_view name)
{
    for (std::uint32_t option = VEK_CMD_OPT_INVALID + 1; option < VEK_CMD_OPT_MAX; ++option) {
        if (name == PGM_COMMON_XML_VEK_CMD_OPT[option]) {
            return static_cast<PGM_COMMON_XML_VEK_CMD_OPT_ENUM>(option);
        }
    }
    return VEK_CMD_OPT_INVALID;
}

PGM_COMMON_XML_VEK_CMD_PARAM_ENUM
pgm_common_xml_find_vek_cmd_param(PGM_COMMON_XML_VEK_CMD_OPT_ENUM option, std::string_view name)
{
    for (std::uint32_t number = VEK_CMD_PARAM_INVALID + 1; number < VEK_CMD_PARAM_MAX; ++number) {
        const auto param = static_cast<PGM_COMMON_XML_VEK_CMD_PARAM_ENUM>(number);
        if (name == PGM_COMMON_XML_VEK_CMD_PARAM[number] &&
            pgm_common_xml_vek_param(param).option == option) {
            return param;
        }
    }
    return VEK_CMD_PARAM_INVALID;
}

PGM_COMMON_XML_VEK_CMD_OPT_ENUM pgm_common_xml_vek_cmd_opt_of(PGM_COMMON_XML_VEK_CMD_PARAM_ENUM param)
{
    if (param == VEK_CMD_PARAM_INVALID || param >= VEK_CMD_PARAM_MAX) {
        return VEK_CMD_OPT_INVALID;
    }
    return pgm_common_xml_vek_param(param).option;
}
