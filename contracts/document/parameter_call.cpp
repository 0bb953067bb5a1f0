#include "parameter_call.h"

#include "msg_internal_error.h"

#include <algorithm>
#include <array>
#include <span>

namespace
{

constexpr std::size_t DEEPEST_PATH = 4;
using KEY_ROW = std::array<PGM_COMMON_XML_VEK_CMD_PARAM_ENUM, DEEPEST_PATH>;

const PGM_COMMON_XML_ELEMENT_DESCRIPTOR& describe(PGM_COMMON_XML_ENUM kind)
{
    const PGM_COMMON_XML_ELEMENT_DESCRIPTOR* descriptor = pgm_common_xml_vek_find_element(kind);
    VEK_ASSERT(descriptor != nullptr);
    return *descriptor;
}

/// The parameter that is the key of the last element of a path, INVALID where that element has no key.
PGM_COMMON_XML_VEK_CMD_PARAM_ENUM find_key_param(std::span<const PGM_COMMON_XML_ENUM> path)
{
    const int key = describe(path.back()).key;
    for (std::uint32_t number = VEK_CMD_PARAM_INVALID + 1; number < VEK_CMD_PARAM_MAX; ++number) {
        const auto param = static_cast<PGM_COMMON_XML_VEK_CMD_PARAM_ENUM>(number);
        const PGM_COMMON_XML_VEK_CMD_PARAM_DESCRIPTOR& row = pgm_common_xml_vek_param(param);
        if (row.attribute == key && std::ranges::equal(row.elements, path)) {
            return param;
        }
    }
    return VEK_CMD_PARAM_INVALID;
}

std::array<KEY_ROW, VEK_CMD_PARAM_MAX> find_all_keys()
{
    std::array<KEY_ROW, VEK_CMD_PARAM_MAX> keys{};
    std::span<const PGM_COMMON_XML_ENUM> path;
    for (std::uint32_t number = VEK_CMD_PARAM_INVALID + 1; number < VEK_CMD_PARAM_MAX; ++number) {
        const auto& row = pgm_common_xml_vek_param(static_cast<PGM_COMMON_XML_VEK_CMD_PARAM_ENUM>(number));
        // The parameters of an element stand together.
        if (std::ranges::equal(row.elements, path)) {
            keys[number] = keys[number - 1];
            continue;
        }
        path = row.elements;
        VEK_ASSERT(row.elements.size() <= DEEPEST_PATH);
        for (std::size_t level = 0; level < row.elements.size(); ++level) {
            keys[number][level] = find_key_param(row.elements.first(level + 1));
        }
    }
    return keys;
}

const KEY_ROW& keys_of(PGM_COMMON_XML_VEK_CMD_PARAM_ENUM param)
{
    static const auto keys = find_all_keys();
    return keys[param];
}

/// The ids of a list are as a rule asked for in the order in which they stand, so that a search begins behind
/// the last one found. A place that is out of date costs time and nothing else.
struct LAST_REFERENCE {
    const PGM_COMMON_XML_ELEMENT* parent = nullptr;
    std::size_t next = 0;
};

/// The child of a kind with a key, or the one child of a kind that has none. A kind of which there is one at
/// most is found whatever its key.
PGM_COMMON_XML_ELEMENT* find_child(const PGM_COMMON_XML_ELEMENT& parent, PGM_COMMON_XML_ENUM kind,
                                   const std::string* key)
{
    thread_local LAST_REFERENCE last;
    const bool is_reference = key && is_reference_kind(kind);
    const int attribute = describe(kind).key;
    const std::size_t count = parent.m_childs.size();
    const std::size_t start = is_reference && last.parent == &parent && last.next < count ? last.next : 0;
    for (std::size_t step = 0; step < count; ++step) {
        const std::size_t place = start + step < count ? start + step : start + step - count;
        PGM_COMMON_XML_ELEMENT* child = parent.m_childs[place];
        if (child->m_class_type == kind && (!key || pgm_common_xml_read(*child, attribute) == *key)) {
            if (is_reference) {
                last = {&parent, place + 1};
            }
            return child;
        }
    }
    return nullptr;
}

PGM_COMMON_XML_ELEMENT* find_or_add(PGM_COMMON_XML_ELEMENT& parent, PGM_COMMON_XML_ENUM kind,
                                    const std::string* key, bool create)
{
    PGM_COMMON_XML_ELEMENT* child = find_child(parent, kind, key);
    if (child || !create) {
        return child;
    }
    child = &pgm_common_xml_add_child(parent, kind);
    if (key) {
        pgm_common_xml_write(*child, describe(kind).key, *key);
    }
    pgm_common_xml_complete(*child);
    return child;
}

} // namespace

bool is_reference_kind(PGM_COMMON_XML_ENUM kind)
{
    const PGM_COMMON_XML_ELEMENT_DESCRIPTOR& element = describe(kind);
    return element.key == PGM_COMMON_XML_TEXT && element.text_type == PGM_XML_TYPE_ID;
}

bool PARAMETER_CALL::has_known_parameters() const
{
    return m_option > VEK_CMD_OPT_INVALID && m_option < VEK_CMD_OPT_MAX &&
           std::all_of(m_params.begin(), m_params.end(), [this](const auto& pair) {
               return pgm_common_xml_vek_cmd_opt_of(pair.first) == m_option;
           });
}

const PGM_COMMON_XML_VEK_CMD_PARAM_DESCRIPTOR& PARAMETER_CALL::parameter(std::size_t pair) const
{
    return pgm_common_xml_vek_param(m_params[pair].first);
}

bool PARAMETER_CALL::is_key(std::size_t pair) const
{
    const PGM_COMMON_XML_VEK_CMD_PARAM_DESCRIPTOR& row = parameter(pair);
    return row.attribute == describe(row.elements.back()).key;
}

bool PARAMETER_CALL::is_reference(std::size_t pair) const
{
    return is_reference_kind(parameter(pair).elements.back());
}

const std::string* PARAMETER_CALL::last_text(PGM_COMMON_XML_VEK_CMD_PARAM_ENUM param) const
{
    const auto found = std::find_if(m_params.rbegin(), m_params.rend(),
                                    [param](const auto& pair) { return pair.first == param; });
    return found == m_params.rend() || found->second.empty() ? nullptr : &found->second;
}

const std::string* PARAMETER_CALL::nearest_text(PGM_COMMON_XML_VEK_CMD_PARAM_ENUM param,
                                                std::size_t pair) const
{
    const auto is_id = [param](const auto& other) { return other.first == param && !other.second.empty(); };
    for (std::size_t before = pair + 1; before-- > 0;) {
        if (is_id(m_params[before])) {
            return &m_params[before].second;
        }
    }
    const auto found = std::find_if(m_params.begin(), m_params.end(), is_id);
    return found == m_params.end() ? nullptr : &found->second;
}

PARAMETER_CALL::KEY PARAMETER_CALL::key_of_level(std::size_t pair, std::size_t level,
                                                 const std::string*& text) const
{
    const auto elements = parameter(pair).elements;
    const PGM_COMMON_XML_VEK_CMD_PARAM_ENUM param = keys_of(m_params[pair].first)[level];
    text = nullptr;
    if (param == VEK_CMD_PARAM_INVALID) {
        return KEY::NONE;
    }
    const bool is_list = level > 0 && is_reference_kind(elements[level]) &&
                         pgm_common_xml_find_child(describe(elements[level - 1]), elements[level])->count ==
                             PGM_COMMON_XML_COUNT_ANY;
    text = is_list ? nearest_text(param, pair) : last_text(param);
    return text ? KEY::GIVEN : KEY::MISSING;
}

PARAMETER_CALL::KEY PARAMETER_CALL::key_of_record(const std::string*& text) const
{
    const PGM_COMMON_XML_ENUM kind = pgm_common_xml_vek_option(m_option).element;
    const PGM_COMMON_XML_VEK_CMD_PARAM_ENUM param = find_key_param({&kind, 1});
    text = nullptr;
    if (param == VEK_CMD_PARAM_INVALID) {
        return KEY::NONE;
    }
    text = last_text(param);
    return text ? KEY::GIVEN : KEY::MISSING;
}

bool PARAMETER_CALL::has_keys(bool references_may_be_open) const
{
    const std::string* text = nullptr;
    if (key_of_record(text) == KEY::MISSING) {
        return false;
    }
    for (std::size_t pair = 0; pair < m_params.size(); ++pair) {
        const auto elements = parameter(pair).elements;
        for (std::size_t level = 0; level < elements.size(); ++level) {
            if (key_of_level(pair, level, text) == KEY::MISSING &&
                !(references_may_be_open && is_reference_kind(elements[level]))) {
                return false;
            }
        }
        if (!references_may_be_open && is_key(pair) && m_params[pair].second.empty()) {
            return false;
        }
    }
    return true;
}

PGM_COMMON_XML_ELEMENT* PARAMETER_CALL::group(PGM_COMMON_XML_VEK_VEK& document, bool create) const
{
    const PGM_COMMON_XML_ENUM kind = pgm_common_xml_vek_option(m_option).group;
    return kind == PGM_COMMON_XML_ENUM__INVALID__ ? &document : find_or_add(document, kind, nullptr, create);
}

PGM_COMMON_XML_ELEMENT* PARAMETER_CALL::record(PGM_COMMON_XML_VEK_VEK& document, bool create) const
{
    const std::string* key = nullptr;
    key_of_record(key);
    PGM_COMMON_XML_ELEMENT* parent = group(document, create);
    return parent ? find_or_add(*parent, pgm_common_xml_vek_option(m_option).element, key, create) : nullptr;
}

PGM_COMMON_XML_ELEMENT* PARAMETER_CALL::owner(PGM_COMMON_XML_ELEMENT& record, std::size_t pair,
                                              bool create) const
{
    PGM_COMMON_XML_ELEMENT* element = &record;
    const auto elements = parameter(pair).elements;
    for (std::size_t level = 1; element && level < elements.size(); ++level) {
        const std::string* key = nullptr;
        key_of_level(pair, level, key);
        element = find_or_add(*element, elements[level], key, create);
    }
    return element;
}

std::vector<PGM_COMMON_XML_ELEMENT*> PARAMETER_CALL::owners(PGM_COMMON_XML_ELEMENT& record,
                                                            std::size_t pair) const
{
    const auto elements = parameter(pair).elements;
    const std::string* key = nullptr;
    if (is_reference(pair) && key_of_level(pair, elements.size() - 1, key) == KEY::MISSING) {
        return record.get_childs(elements.back(), true);
    }
    PGM_COMMON_XML_ELEMENT* element = owner(record, pair, false);
    return element ? std::vector<PGM_COMMON_XML_ELEMENT*>{element} : std::vector<PGM_COMMON_XML_ELEMENT*>();
}
