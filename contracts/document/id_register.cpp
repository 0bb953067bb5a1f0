#include "id_register.h"

#include <functional>

namespace
{

constexpr std::size_t FIRST_SLOTS = 64;

} // namespace

/// The slot of the id, or the free one where it belongs.
ID_REGISTER::SLOT& ID_REGISTER::find_slot(std::vector<SLOT>& slots, const SLOT& wanted)
{
    const std::size_t mask = slots.size() - 1;
    std::size_t slot = wanted.hash & mask;
    while (slots[slot].id != nullptr && (slots[slot].hash != wanted.hash || *slots[slot].id != *wanted.id)) {
        slot = (slot + 1) & mask;
    }
    return slots[slot];
}

void ID_REGISTER::TABLE::grow()
{
    std::vector<SLOT> wider(slots.empty() ? FIRST_SLOTS : 4 * slots.size());
    const std::size_t mask = wider.size() - 1;
    for (const SLOT& slot : slots) {
        if (slot.id != nullptr) {
            std::size_t place = slot.hash & mask;
            while (wider[place].id != nullptr) {
                place = (place + 1) & mask;
            }
            wider[place] = slot;
        }
    }
    slots = std::move(wider);
}

bool ID_REGISTER::TABLE::insert(const std::string& id)
{
    if (2 * used >= slots.size()) {
        grow();
    }
    const SLOT wanted{&id, std::hash<std::string_view>()(id)};
    SLOT& slot = find_slot(slots, wanted);
    if (slot.id != nullptr) {
        return false;
    }
    slot = wanted;
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
    if (id.empty()) {
        return true;
    }
    if (m_last == nullptr || m_last->first != descriptor.unique) {
        m_last = &*m_ids.try_emplace(descriptor.unique).first;
    }
    if (m_last->second.insert(id)) {
        return true;
    }
    problem = std::string(descriptor.attributes[static_cast<std::size_t>(descriptor.key)].name) + " \"" + id +
              "\" of " + PGM_COMMON_XML_ENUM_STRING[descriptor.kind] + " stands in another " +
              std::string(descriptor.unique) + " already; each needs its own";
    return false;
}
