#include "id_table.h"

#include <bit>
#include <functional>
#include <string_view>

namespace
{

constexpr std::size_t FIRST_SLOTS = 64;

std::uint32_t hash_of(const std::string& id)
{
    return static_cast<std::uint32_t>(std::hash<std::string_view>()(id));
}

} // namespace

/// The slot of the id, or the free one where it belongs.
std::size_t ID_TABLE::find_slot(const std::string& id, std::uint32_t hash) const
{
    const std::size_t mask = m_slots.size() - 1;
    std::size_t place = hash & mask;
    while (m_slots[place].number != 0 &&
           (m_slots[place].hash != hash || *m_ids[m_slots[place].number - 1] != id)) {
        place = (place + 1) & mask;
    }
    return place;
}

void ID_TABLE::spread(std::size_t slots)
{
    std::vector<SLOT> wider(slots);
    const std::size_t mask = slots - 1;
    for (const SLOT& slot : m_slots) {
        if (slot.number != 0) {
            std::size_t place = slot.hash & mask;
            while (wider[place].number != 0) {
                place = (place + 1) & mask;
            }
            wider[place] = slot;
        }
    }
    m_slots = std::move(wider);
}

void ID_TABLE::reserve(std::size_t count)
{
    m_ids.reserve(count);
    const std::size_t slots = std::bit_ceil(count + count / 3 + 1);
    if (slots > m_slots.size()) {
        spread(slots);
    }
}

bool ID_TABLE::insert(const std::string& id)
{
    if (4 * (m_ids.size() + 1) > 3 * m_slots.size()) {
        spread(m_slots.empty() ? FIRST_SLOTS : 4 * m_slots.size());
    }
    const std::uint32_t hash = hash_of(id);
    SLOT& slot = m_slots[find_slot(id, hash)];
    if (slot.number != 0) {
        return false;
    }
    m_ids.push_back(&id);
    slot = {static_cast<std::uint32_t>(m_ids.size()), hash};
    return true;
}

std::optional<std::size_t> ID_TABLE::find(const std::string& id) const
{
    std::size_t number = m_next.load(std::memory_order_relaxed);
    if (number >= m_ids.size() || *m_ids[number] != id) {
        if (m_slots.empty()) {
            return std::nullopt;
        }
        const SLOT& slot = m_slots[find_slot(id, hash_of(id))];
        if (slot.number == 0) {
            return std::nullopt;
        }
        number = slot.number - 1;
    }
    m_next.store(number + 1, std::memory_order_relaxed);
    return number;
}
