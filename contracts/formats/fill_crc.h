#ifndef FILL_CRC_H
#define FILL_CRC_H

#include <cstdint>

/// Continues a crc32() by `length` bytes of 0xFF, in a time that hardly depends on how many they are: the
/// empty part of a flash device costs nothing, and neither does a size that a damaged file makes up.
std::uint32_t crc32_of_fill(std::uint32_t crc, std::uint64_t length);

#endif
