#ifndef MAP_READER_H
#define MAP_READER_H

#include "format.h"

#include <cstdint>
#include <string>
#include <vector>

/// What a flash map says.
struct FLASH_MAP {
    static constexpr std::uint64_t LARGEST_FILE = 64 * 1024 * 1024;

    std::string device;
    std::uint64_t image_size = 0;
    std::vector<IMAGE_REGION> regions;

    /// Reads a map in the one spelling that it has. False with a sentence that begins "Line 3: " where a line
    /// is at fault.
    static bool read(const BYTE_SOURCE& file, FLASH_MAP& map, std::string& message);
};

#endif
