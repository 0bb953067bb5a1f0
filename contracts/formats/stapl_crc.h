#ifndef STAPL_CRC_H
#define STAPL_CRC_H

#include <cstdint>
#include <span>

/// The CRC of the CRC statement of STAPL (JEDEC JESD71): 16 bits, CCITT polynomial x^16 + x^12 + x^5 + 1,
/// least significant bit first, register preset to ones, result complemented; carriage returns do not count.
/// Continues `crc`, as crc32() does; a CRC of nothing is 0.
std::uint32_t stapl_crc(std::span<const std::uint8_t> characters, std::uint32_t crc = 0);

#endif
