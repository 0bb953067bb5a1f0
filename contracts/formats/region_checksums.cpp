#include "region_checksums.h"

#include <algorithm>

/// Follows a reader through the image. One that jumps loses what is half summed and nothing else.
class LISTENING_SOURCE final : public BYTE_SOURCE
{
public:
    explicit LISTENING_SOURCE(REGION_CHECKSUMS& checksums) : m_checksums(checksums) {}

    std::uint64_t size() const override { return m_checksums.m_image.size(); }

    bool read(std::uint64_t offset, std::span<std::uint8_t> into, std::string& message) const override
    {
        if (!m_checksums.m_image.read(offset, into, message)) {
            return false;
        }
        if (!m_checksums.is_complete()) {
            const std::scoped_lock lock(m_mutex);
            listen(offset, into);
        }
        return true;
    }

private:
    void listen(std::uint64_t offset, std::span<const std::uint8_t> bytes) const
    {
        const std::vector<REGION_CHECKSUMS::ENTRY>& entries = m_checksums.m_entries;
        if (offset != m_offset) {
            m_region = static_cast<std::size_t>(
                std::lower_bound(entries.begin(), entries.end(), offset,
                                 [](const auto& entry, std::uint64_t at) { return entry.start < at; }) -
                entries.begin());
            m_crc = 0;
        }
        m_offset = offset + bytes.size();
        for (; m_region != entries.size() && entries[m_region].start < m_offset; ++m_region) {
            const std::uint64_t begin = std::max(entries[m_region].start, offset);
            const std::uint64_t end = std::min(entries[m_region].end, m_offset);
            m_crc = crc32(bytes.subspan(static_cast<std::size_t>(begin - offset),
                                        static_cast<std::size_t>(end - begin)),
                          m_crc);
            if (end != entries[m_region].end) {
                return;
            }
            m_checksums.put(m_region, m_crc);
            m_crc = 0;
        }
    }

    REGION_CHECKSUMS& m_checksums;
    mutable std::mutex m_mutex;         ///< for what follows
    mutable std::uint64_t m_offset = 0; ///< behind the last byte read
    mutable std::size_t m_region = 0;   ///< the first that is not summed whole
    mutable std::uint32_t m_crc = 0;    ///< of its bytes before m_offset
};

REGION_CHECKSUMS::REGION_CHECKSUMS(const BYTE_SOURCE& image, const std::vector<IMAGE_REGION>& regions)
    : m_image(image), m_unknown(regions.size())
{
    for (const IMAGE_REGION& region : regions) {
        m_entries.push_back({region.start, region.start + region.length, std::nullopt});
    }
}

bool REGION_CHECKSUMS::get(std::size_t region, std::uint32_t& crc, std::string& message)
{
    const ENTRY& entry = m_entries[region];
    {
        const std::scoped_lock lock(m_mutex);
        if (entry.crc) {
            crc = *entry.crc;
            return true;
        }
    }
    const std::shared_ptr<const BYTE_SOURCE> image(std::shared_ptr<void>(), &m_image);
    if (!crc32_of_source(RANGE_SOURCE(image, entry.start, entry.end - entry.start), crc, message)) {
        return false;
    }
    put(region, crc);
    return true;
}

std::unique_ptr<const BYTE_SOURCE> REGION_CHECKSUMS::listen()
{
    return std::make_unique<LISTENING_SOURCE>(*this);
}

void REGION_CHECKSUMS::put(std::size_t region, std::uint32_t crc)
{
    const std::scoped_lock lock(m_mutex);
    m_unknown -= m_entries[region].crc ? 0 : 1;
    m_entries[region].crc = crc;
}
