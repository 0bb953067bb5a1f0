#include "stapl_crc.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace
{
constexpr std::size_t SLICES = 8;

/// TABLES[n][byte]: what a byte with n bytes of zeros behind it leaves in the register.
constexpr auto TABLES = [] {
    std::array<std::array<std::uint16_t, 256>, SLICES> tables{};
    for (unsigned byte = 0; byte != 256; ++byte) {
        unsigned value = byte;
        for (int bit = 0; bit != 8; ++bit)
            value = value >> 1 ^ ((value & 1) != 0 ? 0x8408u : 0u);
        tables[0][byte] = static_cast<std::uint16_t>(value);
    }
    for (std::size_t slice = 1; slice != SLICES; ++slice)
        for (std::size_t byte = 0; byte != 256; ++byte) {
            const unsigned value = tables[slice - 1][byte];
            tables[slice][byte] = static_cast<std::uint16_t>(value >> 8 ^ tables[0][value & 0xFF]);
        }
    return tables;
}();

unsigned continue_register(std::span<const std::uint8_t> bytes, unsigned value)
{
    std::size_t at = 0;
    for (; bytes.size() - at >= SLICES; at += SLICES) {
        const std::uint8_t* const next = bytes.data() + at;
        value = TABLES[7][(value ^ next[0]) & 0xFF] ^ TABLES[6][(value >> 8 ^ next[1]) & 0xFF] ^
                TABLES[5][next[2]] ^ TABLES[4][next[3]] ^ TABLES[3][next[4]] ^ TABLES[2][next[5]] ^
                TABLES[1][next[6]] ^ TABLES[0][next[7]];
    }
    for (; at != bytes.size(); ++at)
        value = value >> 8 ^ TABLES[0][(value ^ bytes[at]) & 0xFF];
    return value;
}
} // namespace

std::uint32_t stapl_crc(std::span<const std::uint8_t> characters, std::uint32_t crc)
{
    unsigned value = crc ^ 0xFFFF;
    while (!characters.empty()) {
        const void* const found = std::memchr(characters.data(), '\r', characters.size());
        const std::size_t count =
            found != nullptr
                ? static_cast<std::size_t>(static_cast<const std::uint8_t*>(found) - characters.data())
                : characters.size();
        value = continue_register(characters.first(count), value);
        characters = characters.subspan(std::min(count + 1, characters.size()));
    }
    return value ^ 0xFFFF;
}
