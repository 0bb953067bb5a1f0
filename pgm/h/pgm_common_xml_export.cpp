#include "pgm_common_xml_export.h"

#include "msg_internal_error.h"

#include <algorithm>
#include <atomic>
#include <cstring>

namespace
{

constexpr std::string_view RESERVED[] = {"__if_continue__", "__if_skip__", "__hidden__"};

bool is_reserved(std::string_view name)
{
    return std::find(std::begin(RESERVED), std::end(RESERVED), name) != std::end(RESERVED);
}

const char* word(PGM_COMMON_XML_ENUM kind)
{
    return PGM_COMMON_XML_ENUM_STRING[std::min<std::size_t>(kind, PGM_COMMON_XML_ENUM__MAX__)];
}

std::string element_text(PGM_COMMON_XML_ENUM kind)
{
    return std::string("Element \"") + word(kind) + "\"";
}

} // namespace

PGM_COMMON_XML_ATTRIBUTE_INFO::PGM_COMMON_XML_ATTRIBUTE_INFO(std::string_view name, std::uint8_t type,
                                                             std::uint8_t exist,
                                                             std::string_view default_value,
                                                             std::string_view second_text, void* ptr)
    : m_name(name), m_default_value(default_value), m_second_text(second_text), m_type(type), m_exist(exist),
      m_ptr(ptr)
{
    VEK_ASSERT_TEXT(!name.empty(), "name.size()");
    VEK_ASSERT(type < PGM_XML_TYPE_INVALID);
    VEK_ASSERT(exist < PGM_XML_EXIST_INVALID);
    if (is_reserved(name)) {
        VEK_ASSERT_TEXT(ptr == nullptr, "ptr == NULL");
    } else {
        VEK_ASSERT_TEXT(ptr != nullptr, "ptr != NULL");
    }
}

void pgm_common_xml_wipe(std::string& secret)
{
    secret.resize(secret.capacity());
    explicit_bzero(secret.data(), secret.size());
    secret.clear();
}

PGM_COMMON_XML_ELEMENT::PGM_COMMON_XML_ELEMENT(PGM_COMMON_XML_ENUM class_type,
                                               PGM_COMMON_XML_ENUM sub_class_type, std::uint8_t type,
                                               std::uint8_t exist, std::string_view default_value,
                                               std::string_view second_text, void* ptr)
    : m_class_type(class_type), m_sub_class_type(sub_class_type), m_default_value(default_value),
      m_second_text(second_text), m_type(type), m_exist(exist), m_ptr(ptr)
{
    VEK_ASSERT(class_type != PGM_COMMON_XML_ENUM__INVALID__ && class_type <= PGM_COMMON_XML_ENUM__MAX__);
    VEK_ASSERT(type < PGM_XML_TYPE_INVALID);
    VEK_ASSERT(exist < PGM_XML_EXIST_INVALID);
}

PGM_COMMON_XML_ELEMENT::~PGM_COMMON_XML_ELEMENT()
{
    for (PGM_COMMON_XML_ELEMENT* child : m_childs) {
        delete child;
    }
}

void PGM_COMMON_XML_ELEMENT::check_child_count() {}

void PGM_COMMON_XML_ELEMENT::clear_childs()
{
    for (PGM_COMMON_XML_ELEMENT* child : m_childs) {
        delete child;
    }
    m_childs.clear();
}

void PGM_COMMON_XML_ELEMENT::group_child(PGM_COMMON_XML_ELEMENT* child, bool remove, bool at_end)
{
    VEK_ASSERT(child != nullptr);
    if (!remove) {
        m_childs.insert(at_end ? m_childs.end() : m_childs.begin(), child);
        child->m_parent = this;
        return;
    }
    if (at_end) {
        const auto found = std::find(m_childs.rbegin(), m_childs.rend(), child);
        if (found == m_childs.rend()) {
            return;
        }
        m_childs.erase(std::next(found).base());
    } else {
        const auto found = std::find(m_childs.begin(), m_childs.end(), child);
        if (found == m_childs.end()) {
            return;
        }
        m_childs.erase(found);
    }
    child->m_parent = nullptr;
}

void PGM_COMMON_XML_ELEMENT::collect(PGM_COMMON_XML_ENUM kind, bool own,
                                     std::vector<PGM_COMMON_XML_ELEMENT*>& found) const
{
    for (PGM_COMMON_XML_ELEMENT* child : m_childs) {
        if (kind == PGM_COMMON_XML_ENUM__INVALID__ || child->m_class_type == kind) {
            found.push_back(child);
        }
        if (!own) {
            child->collect(kind, own, found);
        }
    }
}

std::vector<PGM_COMMON_XML_ELEMENT*> PGM_COMMON_XML_ELEMENT::get_childs(PGM_COMMON_XML_ENUM kind,
                                                                        bool own) const
{
    std::vector<PGM_COMMON_XML_ELEMENT*> found;
    collect(kind, own, found);
    return found;
}

unsigned PGM_COMMON_XML_ELEMENT::get_child_count(PGM_COMMON_XML_ENUM kind, bool own) const
{
    unsigned count = 0;
    for (const PGM_COMMON_XML_ELEMENT* child : m_childs) {
        count += kind == PGM_COMMON_XML_ENUM__INVALID__ || child->m_class_type == kind ? 1U : 0U;
        count += own ? 0U : child->get_child_count(kind, own);
    }
    return count;
}

PGM_COMMON_XML_ELEMENT* PGM_COMMON_XML_ELEMENT::get_element(PGM_COMMON_XML_ENUM kind, unsigned index,
                                                            bool own) const
{
    const std::vector<PGM_COMMON_XML_ELEMENT*> found = get_childs(kind, own);
    return index < found.size() ? found[index] : nullptr;
}

PGM_COMMON_XML_ELEMENT* PGM_COMMON_XML_ELEMENT::get_parent(const PGM_COMMON_XML_ELEMENT* element) const
{
    return element ? element->m_parent : m_parent;
}

std::vector<PGM_COMMON_XML_ATTRIBUTE_INFO> PGM_COMMON_XML_ELEMENT::attribute_infos() const
{
    std::vector<PGM_COMMON_XML_ATTRIBUTE_INFO> infos;
    infos.reserve(std::size(RESERVED) + m_attributes.size());
    for (std::size_t index = 0; index < std::size(RESERVED); ++index) {
        infos.emplace_back(RESERVED[index], PGM_XML_TYPE_RESERVED, PGM_XML_EXIST_HIDDEN, std::string_view(),
                           std::string_view(), nullptr);
        infos.back().m_value = m_reserved ? (*m_reserved)[index] : std::string();
    }
    for (const PGM_COMMON_XML_ATTRIBUTE_DESCRIPTOR& row : m_attributes) {
        // The record is a way to the member, which the element does not guard.
        infos.emplace_back(row.name, row.type, row.exist, row.default_value, std::string_view(),
                           &row.member(const_cast<PGM_COMMON_XML_ELEMENT&>(*this)));
    }
    return infos;
}

/// The text of an attribute; null for a reserved one that has never been written.
std::string* PGM_COMMON_XML_ELEMENT::find_text(std::string_view name, bool& is_secret) const
{
    for (const PGM_COMMON_XML_ATTRIBUTE_DESCRIPTOR& row : m_attributes) {
        if (row.name == name) {
            is_secret = row.type == PGM_XML_TYPE_SECRET;
            return &row.member(const_cast<PGM_COMMON_XML_ELEMENT&>(*this));
        }
    }
    is_secret = false;
    const auto reserved = std::find(std::begin(RESERVED), std::end(RESERVED), name);
    VEK_ASSERT_TEXT(reserved != std::end(RESERVED),
                    element_text(m_sub_class_type) + " has no attribute \"" + std::string(name) + "\"");
    return m_reserved ? &(*m_reserved)[static_cast<std::size_t>(reserved - std::begin(RESERVED))] : nullptr;
}

const std::string& PGM_COMMON_XML_ELEMENT::read_attribute_string(std::string_view name) const
{
    static const std::string empty;
    bool is_secret = false;
    const std::string* text = find_text(name, is_secret);
    return text ? *text : empty;
}

void PGM_COMMON_XML_ELEMENT::write_attribute_string(std::string_view name, std::string_view text)
{
    if (is_reserved(name) && !m_reserved) {
        m_reserved = std::make_unique<std::array<std::string, std::size(RESERVED)>>();
    }
    bool is_secret = false;
    std::string& target = *find_text(name, is_secret);
    if (is_secret) {
        pgm_common_xml_wipe(target);
    }
    target.assign(text);
}

bool PGM_COMMON_XML_ELEMENT::is_attribute_empty(std::string_view name) const
{
    return read_attribute_string(name).empty();
}

const std::string& PGM_COMMON_XML_ELEMENT::read_string() const
{
    return m_ptr ? *static_cast<const std::string*>(m_ptr) : m_value;
}

void PGM_COMMON_XML_ELEMENT::write_string(std::string_view text)
{
    (m_ptr ? *static_cast<std::string*>(m_ptr) : m_value).assign(text);
}

void PGM_COMMON_XML_ELEMENT::append_string(std::string_view text)
{
    (m_ptr ? *static_cast<std::string*>(m_ptr) : m_value).append(text);
}

void PGM_COMMON_XML_ELEMENT::init_check() const
{
    // One slot for each class; the elements of a class share their table.
    static std::array<std::atomic<const void*>, PGM_COMMON_XML_ENUM__MAX__ + 1> passed{};
    std::atomic<const void*>& slot = passed[m_class_type];
    if (!m_attributes.empty() && slot.load(std::memory_order_relaxed) == m_attributes.data()) {
        return;
    }
    const std::vector<PGM_COMMON_XML_ATTRIBUTE_INFO> infos = attribute_infos();
    for (auto info = infos.begin(); info != infos.end(); ++info) {
        const auto twin = std::find_if(infos.begin(), info,
                                       [info](const auto& other) { return other.m_name == info->m_name; });
        VEK_ASSERT_TEXT(twin == info, element_text(m_sub_class_type) + " has two attributes \"" +
                                          std::string(info->m_name) + "\"");
    }
    slot.store(m_attributes.data(), std::memory_order_relaxed);
}

void PGM_COMMON_XML_ELEMENT::check_count(PGM_COMMON_XML_ENUM kind,
                                         const std::vector<std::vector<unsigned>>& allowed) const
{
    const unsigned count = get_child_count(kind, true);
    const bool is_allowed = std::any_of(allowed.begin(), allowed.end(), [count](const auto& range) {
        return !range.empty() && count >= range.front() && count <= range.back();
    });
    VEK_ASSERT_TEXT(is_allowed, element_text(m_sub_class_type) + " has " + std::to_string(count) +
                                    " child elements \"" + word(kind) + "\"");
}

void PGM_COMMON_XML_ELEMENT::report_unsupported_child(const PGM_COMMON_XML_ELEMENT& child) const
{
    MSG_INTERNAL_ERROR::report(element_text(m_sub_class_type) + " does not support child element \"" +
                                   word(child.m_sub_class_type) + "\"",
                               "VEK", __FILE__, __LINE__);
}

void PGM_COMMON_XML_ELEMENT::require_entry(bool has_entry, const char* condition)
{
    VEK_ASSERT_TEXT(has_entry, condition);
}
