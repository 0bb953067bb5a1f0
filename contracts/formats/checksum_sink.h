#ifndef CHECKSUM_SINK_H
#define CHECKSUM_SINK_H

#include "byte_source.h"

/// Takes what decoding gives and keeps its size and checksum.
class CHECKSUM_SINK final : public BYTE_SINK
{
public:
    bool write(std::span<const std::uint8_t> bytes, std::string&) override
    {
        size += bytes.size();
        crc = crc32(bytes, crc);
        return true;
    }
    std::uint64_t size = 0;
    std::uint32_t crc = 0;
};

#endif
