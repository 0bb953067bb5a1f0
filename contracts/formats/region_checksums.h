#ifndef REGION_CHECKSUMS_H
#define REGION_CHECKSUMS_H

#include "format.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

/// CRC-32 (as crc32() has it) of the regions of a flash image, each found out once: by the way, from what
/// somebody reads of the image in order, or by reading the region when it is asked for before. May be used by
/// several threads at once.
class REGION_CHECKSUMS
{
public:
    /// `regions`: ascending by start, without overlap, within the image. `image` must outlive this object.
    REGION_CHECKSUMS(const BYTE_SOURCE& image, const std::vector<IMAGE_REGION>& regions);

    /// The checksum of a region by its number. False with a whole sentence in `message` when the image cannot
    /// be read.
    bool get(std::size_t region, std::uint32_t& crc, std::string& message);

    /// The image once more, for one that reads it in order: the checksums of regions that pass by whole are
    /// kept. Must not outlive this object.
    std::unique_ptr<const BYTE_SOURCE> listen();

private:
    friend class LISTENING_SOURCE;
    struct ENTRY {
        std::uint64_t start;
        std::uint64_t end;
        std::optional<std::uint32_t> crc;
    };

    void put(std::size_t region, std::uint32_t crc);
    bool is_complete() const { return m_unknown == 0; }

    const BYTE_SOURCE& m_image;
    std::vector<ENTRY> m_entries;
    std::mutex m_mutex; ///< for the checksums of the entries
    std::atomic<std::size_t> m_unknown;
};

#endif
