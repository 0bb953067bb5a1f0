#include "id_register.h"

#include <functional>

namespace
{

constexpr std::size_t FIRST_SLOTS = 64;

/// The slot of the id, or the free one where it belongs.
std::string_view& find_slot(std::vector<std::string_view>& slots, std::string_view id)
{
    const std::size_t mask = slots.size() - 1;
    std::size_t slot = std::hash<std::string_view>()(id) & mask;
    while (!slots[slot].empty() && slots[slot] != id) {
        slot = (slot + 1) & mask;
    }
    return slots[slot];
}

} // namespace

void ID_REGISTER::TABLE::grow()
{
    std::vector<std::string_view> wider(slots.empty() ? FIRST_SLOTS : 2 * slots.size());
    for (const std::string_view id : slots) {
        if (!id.empty()) {
            find_slot(wider, id) = id;
        }
    }
    slots = std::move(wider);
}

bool ID_REGISTER::TABLE::insert(std::string_view id)
{
    if (2 * used >= slots.size()) {
        grow();
    }
    std::string_view& slot = find_slot(slots, id);
    if (!slot.empty()) {
        return false;
    }
    slot = id;
    ++used;
    return true;
}

bool ID_REGISTER::add(const PGM_COMMON_XML_ELEMENT_DESCRIPTOR& descriptor,
                      const PGM_COMMON_XML_ELEMENT& element, std::string& problem)
{
    if (descriptor.unique.empty()) {
        return true;
    }
    const std::string& id = pgm_common_xml_read(element, descriptor.key);
    // An id that is missing is the business of whoever asks for it.
    if (id.empty() || m_ids[descriptor.unique].insert(id)) {
        return true;
    }
    problem = std::string(descriptor.attributes[static_cast<std::size_t>(descriptor.key)].name) + " \"" + id +
              "\" of " + PGM_COMMON_XML_ENUM_STRING[descriptor.kind] + " stands in another " +
              std::string(descriptor.unique) + " already; each needs its own";
    return false;
}
