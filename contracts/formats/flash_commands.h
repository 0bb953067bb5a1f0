#ifndef FLASH_COMMANDS_H
#define FLASH_COMMANDS_H

#include <array>
#include <cstdint>

/// Command codes of a serial flash device: identification, status, write enable, read, page program, sector
/// erase. These are the ones that practically all serial NOR flash devices have in common; JEDEC JESD216
/// lists them.
using FLASH_COMMANDS = std::array<std::uint8_t, 6>;

/// The commands for addresses of 3 or 4 bytes; null for any other number.
inline const FLASH_COMMANDS* find_flash_commands(unsigned address_bytes)
{
    static constexpr FLASH_COMMANDS OF_3_BYTES = {0x9F, 0x05, 0x06, 0x03, 0x02, 0xD8};
    static constexpr FLASH_COMMANDS OF_4_BYTES = {0x9F, 0x05, 0x06, 0x13, 0x12, 0xDC};
    return address_bytes == 3 ? &OF_3_BYTES : address_bytes == 4 ? &OF_4_BYTES : nullptr;
}

#endif
