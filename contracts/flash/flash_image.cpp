#include "flash_image.h"

#include <algorithm>
#include <cstring>

namespace
{
std::string hex(std::uint64_t value)
{
    std::string text;
    for (; value != 0 || text.size() < 8; value >>= 4)
        text.insert(text.begin(), "0123456789ABCDEF"[value & 0xF]);
    return "0x" + text;
}

std::string range(std::uint64_t begin, std::uint64_t end)
{
    return hex(begin) + " to " + hex(end - 1);
}
} // namespace

bool FLASH_IMAGE::add(std::uint64_t offset, std::shared_ptr<const BYTE_SOURCE> content, std::string& message)
{
    const std::uint64_t length = content->size();
    if (length == 0)
        return true;
    if (offset >= m_size || length > m_size - offset) {
        // The end may lie beyond what 64 bits can say.
        const std::uint64_t end = length > ~offset ? ~std::uint64_t(0) : offset + length;
        message = "The content at " + range(offset, end) + " leaves the flash device, which has " +
                  (m_size == 0 ? std::string("no bytes") : range(0, m_size)) +
                  "; move it or choose a larger device.";
        return false;
    }
    const auto next = m_extents.lower_bound(offset);
    auto met = m_extents.end();
    if (next != m_extents.end() && next->first - offset < length)
        met = next;
    if (next != m_extents.begin()) {
        const auto before = std::prev(next);
        if (offset - before->first < before->second->size())
            met = before;
    }
    if (met != m_extents.end()) {
        message = "The content at " + range(offset, offset + length) + " overlaps the content at " +
                  range(met->first, met->first + met->second->size()) + "; move one of them.";
        return false;
    }
    m_extents.emplace_hint(next, offset, std::move(content));
    return true;
}

bool FLASH_IMAGE::read(std::uint64_t offset, std::span<std::uint8_t> into, std::string& message) const
{
    if (offset > m_size || into.size() > m_size - offset) {
        message = "The " + std::to_string(into.size()) + " bytes at " + hex(offset) +
                  " do not lie within the flash image.";
        return false;
    }
    auto extent = m_extents.upper_bound(offset);
    if (extent != m_extents.begin() && offset - std::prev(extent)->first < std::prev(extent)->second->size())
        --extent;
    while (!into.empty()) {
        std::size_t count = into.size();
        if (extent == m_extents.end() || extent->first > offset) {
            if (extent != m_extents.end())
                count = static_cast<std::size_t>(std::min<std::uint64_t>(count, extent->first - offset));
            std::memset(into.data(), FILL, count);
        } else {
            const std::uint64_t within = offset - extent->first;
            count = static_cast<std::size_t>(std::min<std::uint64_t>(count, extent->second->size() - within));
            if (!extent->second->read(within, into.first(count), message))
                return false;
            ++extent;
        }
        into = into.subspan(count);
        offset += count;
    }
    return true;
}

void FLASH_IMAGE::used_range(std::uint64_t& begin, std::uint64_t& end) const
{
    begin = end = 0;
    if (m_extents.empty())
        return;
    begin = m_extents.begin()->first;
    end = m_extents.rbegin()->first + m_extents.rbegin()->second->size();
}
