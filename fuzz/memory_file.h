#ifndef MEMORY_FILE_H
#define MEMORY_FILE_H

#include "byte_source.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <span>
#include <string>
#include <sys/mman.h>
#include <unistd.h>
#include <vector>

/// A file in memory with these bytes, for readers that take a path. One file, written over by each call.
inline std::string memory_file(std::span<const std::uint8_t> bytes)
{
    static const int file = memfd_create("input", MFD_CLOEXEC);
    if (file < 0 || ftruncate(file, 0) != 0 ||
        pwrite(file, bytes.data(), bytes.size(), 0) != static_cast<ssize_t>(bytes.size()))
        std::abort();
    return "/proc/self/fd/" + std::to_string(file);
}

/// The bytes with their CRC-32 behind them, as the small binary files of this program end.
inline std::vector<std::uint8_t> with_checksum(std::span<const std::uint8_t> bytes)
{
    std::vector<std::uint8_t> all(bytes.begin(), bytes.end());
    const std::uint32_t crc = crc32(bytes);
    for (unsigned i = 0; i < 4; ++i)
        all.push_back(static_cast<std::uint8_t>(crc >> (8 * i)));
    return all;
}

#endif
