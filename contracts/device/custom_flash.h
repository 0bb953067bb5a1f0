#ifndef CUSTOM_FLASH_H
#define CUSTOM_FLASH_H

#include "pgm_device.h"

#include <cstdint>
#include <span>
#include <string>
#include <vector>

/// The reader of flash device files (docs/formats/flash-device-file.md).

/// Reads one file. False with the reason in `message`, a whole sentence with the place in the file.
bool read_flash_device_file(const std::string& path, PGM_DEVICE& device, std::string& message);

/// The same from memory; `name` stands for the file in messages.
bool read_flash_device_bytes(std::span<const std::uint8_t> bytes, const std::string& name, PGM_DEVICE& device,
                             std::string& message);

struct CUSTOM_FLASH_PROBLEM {
    std::string path; ///< of the device file, or of the directory when that cannot be read
    std::string reason;
};

/// The sound devices of the files "*.xml" in a directory, in the order of the file names, and what is wrong
/// with the others. Devices that have the name of a built-in one or of an earlier file count as wrong.
std::vector<PGM_DEVICE> read_flash_device_directory(const std::string& directory,
                                                    std::vector<CUSTOM_FLASH_PROBLEM>& problems);

#endif
