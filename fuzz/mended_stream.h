#ifndef MENDED_STREAM_H
#define MENDED_STREAM_H

#include "byte_source.h"

#include <botan/hash.h>

#include <cstdint>
#include <span>
#include <vector>

/// Checksums that are right again after a mutation, so that it reaches what lies behind them.

inline void put32(std::vector<std::uint8_t>& bytes, std::size_t offset, std::uint32_t value)
{
    for (std::size_t i = 0; i < 4; ++i)
        bytes[offset + i] = static_cast<std::uint8_t>(value >> (8 * i));
}

/// Mends the checksum of each packet of a configuration stream, and the digest that ends a part of it; the
/// first packet that claims more bytes than there are stays with the rest as it is.
inline void mend_packets(std::vector<std::uint8_t>& bytes)
{
    constexpr std::uint8_t DIGEST = 0x7F;
    constexpr std::size_t DIGEST_BYTES = 32;
    for (std::size_t at = 4; at + 8 <= bytes.size();) {
        const std::size_t length = bytes[at + 1] + 256U * bytes[at + 2] + 65536U * bytes[at + 3];
        if (length + 8 > bytes.size() - at)
            return;
        if (bytes[at] == DIGEST && length == DIGEST_BYTES) {
            const auto hash = Botan::HashFunction::create_or_throw("SHA-256");
            hash->update(bytes.data(), at);
            hash->final(bytes.data() + at + 4);
        }
        put32(bytes, at + 4 + length, crc32(std::span<const std::uint8_t>(bytes).subspan(at, 4 + length)));
        at += 8 + length;
    }
}

#endif
