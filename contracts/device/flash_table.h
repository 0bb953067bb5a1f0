#ifndef FLASH_TABLE_H
#define FLASH_TABLE_H

#include "pgm_device.h"

#include <array>

/// One flash device. Sizes are in bytes.
struct FLASH_ROW {
    std::uint32_t number; ///< DEV_DEVICE_ENUM
    DEV_FAMILY_ENUM family;
    DEV_CLASS_ENUM device_class;
    const char* name;
    std::uint64_t bytes;
    std::uint32_t sector_bytes;
    std::uint32_t page_bytes;
    std::array<std::uint8_t, 3> jedec_id{};
    std::uint32_t address_width;
    bool sized_in_bits = false;
    bool flash_loader = false;
    bool tsu_tessel = false;
    DEV_RELEASE release = DEV_RELEASE::PRODUCTION;
    bool jtag_only = false;
};

inline constexpr std::uint32_t KIB = 1024;
inline constexpr std::uint32_t MIB = 1024 * KIB;

// clang-format off
inline constexpr std::array FLASH_TABLE{
    // Small serial configuration devices. The first is too old for any flash loader.
    FLASH_ROW{.number = 400, .family = DEV_FAMILY_ASC_SERIAL, .device_class = DEV_CLASS_CONFIG_FLASH, .name = "ASC1", .bytes = 128 * KIB, .sector_bytes = 32 * KIB, .page_bytes = 256, .address_width = 24},
    FLASH_ROW{.number = 401, .family = DEV_FAMILY_ASC_SERIAL, .device_class = DEV_CLASS_CONFIG_FLASH, .name = "ASC4", .bytes = 512 * KIB, .sector_bytes = 64 * KIB, .page_bytes = 256, .address_width = 24, .flash_loader = true, .release = DEV_RELEASE::WITHDRAWN},
    FLASH_ROW{.number = 402, .family = DEV_FAMILY_ASC_SERIAL, .device_class = DEV_CLASS_CONFIG_FLASH, .name = "ASC16", .bytes = 2 * MIB, .sector_bytes = 64 * KIB, .page_bytes = 256, .address_width = 24, .flash_loader = true},
    FLASH_ROW{.number = 403, .family = DEV_FAMILY_ASC_SERIAL, .device_class = DEV_CLASS_CONFIG_FLASH, .name = "ASC64", .bytes = 8 * MIB, .sector_bytes = 64 * KIB, .page_bytes = 256, .address_width = 24, .flash_loader = true},
    FLASH_ROW{.number = 404, .family = DEV_FAMILY_ASC_SERIAL, .device_class = DEV_CLASS_CONFIG_FLASH, .name = "ASC128", .bytes = 16 * MIB, .sector_bytes = 256 * KIB, .page_bytes = 256, .address_width = 24, .flash_loader = true},
    FLASH_ROW{.number = 405, .family = DEV_FAMILY_ASC_SERIAL, .device_class = DEV_CLASS_CONFIG_FLASH, .name = "ASC256J", .bytes = 32 * MIB, .sector_bytes = 64 * KIB, .page_bytes = 256, .address_width = 32, .flash_loader = true, .jtag_only = true},

    // Serial NOR flash, 3 V. Identifications as the makers' data sheets give them, JEDEC JEP106 first.
    FLASH_ROW{.number = 410, .family = DEV_FAMILY_SERIAL_A, .device_class = DEV_CLASS_CONFIG_FLASH, .name = "W25Q16JV", .bytes = 2 * MIB, .sector_bytes = 64 * KIB, .page_bytes = 256, .jedec_id = {0xEF, 0x40, 0x15}, .address_width = 24, .flash_loader = true},
    FLASH_ROW{.number = 411, .family = DEV_FAMILY_SERIAL_A, .device_class = DEV_CLASS_CONFIG_FLASH, .name = "W25Q32JV", .bytes = 4 * MIB, .sector_bytes = 64 * KIB, .page_bytes = 256, .jedec_id = {0xEF, 0x40, 0x16}, .address_width = 24, .flash_loader = true},
    FLASH_ROW{.number = 412, .family = DEV_FAMILY_SERIAL_A, .device_class = DEV_CLASS_CONFIG_FLASH, .name = "W25Q64JV", .bytes = 8 * MIB, .sector_bytes = 64 * KIB, .page_bytes = 256, .jedec_id = {0xEF, 0x40, 0x17}, .address_width = 24, .flash_loader = true},
    FLASH_ROW{.number = 413, .family = DEV_FAMILY_SERIAL_A, .device_class = DEV_CLASS_CONFIG_FLASH, .name = "W25Q128JV", .bytes = 16 * MIB, .sector_bytes = 64 * KIB, .page_bytes = 256, .jedec_id = {0xEF, 0x40, 0x18}, .address_width = 24, .flash_loader = true},
    FLASH_ROW{.number = 414, .family = DEV_FAMILY_SERIAL_A, .device_class = DEV_CLASS_CONFIG_FLASH, .name = "W25Q256JV", .bytes = 32 * MIB, .sector_bytes = 64 * KIB, .page_bytes = 256, .jedec_id = {0xEF, 0x40, 0x19}, .address_width = 32, .flash_loader = true},
    FLASH_ROW{.number = 415, .family = DEV_FAMILY_SERIAL_A, .device_class = DEV_CLASS_CONFIG_FLASH, .name = "W25Q512JV", .bytes = 64 * MIB, .sector_bytes = 64 * KIB, .page_bytes = 256, .jedec_id = {0xEF, 0x40, 0x20}, .address_width = 32, .flash_loader = true},
    FLASH_ROW{.number = 416, .family = DEV_FAMILY_SERIAL_A, .device_class = DEV_CLASS_CONFIG_FLASH, .name = "MX25L6433F", .bytes = 8 * MIB, .sector_bytes = 64 * KIB, .page_bytes = 256, .jedec_id = {0xC2, 0x20, 0x17}, .address_width = 24, .flash_loader = true},
    FLASH_ROW{.number = 417, .family = DEV_FAMILY_SERIAL_A, .device_class = DEV_CLASS_CONFIG_FLASH, .name = "MX25L12833F", .bytes = 16 * MIB, .sector_bytes = 64 * KIB, .page_bytes = 256, .jedec_id = {0xC2, 0x20, 0x18}, .address_width = 24, .flash_loader = true},
    FLASH_ROW{.number = 418, .family = DEV_FAMILY_SERIAL_A, .device_class = DEV_CLASS_CONFIG_FLASH, .name = "MX25L25645G", .bytes = 32 * MIB, .sector_bytes = 64 * KIB, .page_bytes = 256, .jedec_id = {0xC2, 0x20, 0x19}, .address_width = 32, .flash_loader = true},
    FLASH_ROW{.number = 419, .family = DEV_FAMILY_SERIAL_A, .device_class = DEV_CLASS_CONFIG_FLASH, .name = "MX25L51245G", .bytes = 64 * MIB, .sector_bytes = 64 * KIB, .page_bytes = 256, .jedec_id = {0xC2, 0x20, 0x1A}, .address_width = 32, .flash_loader = true},
    FLASH_ROW{.number = 420, .family = DEV_FAMILY_SERIAL_A, .device_class = DEV_CLASS_CONFIG_FLASH, .name = "MX66L1G45G", .bytes = 128 * MIB, .sector_bytes = 64 * KIB, .page_bytes = 256, .jedec_id = {0xC2, 0x20, 0x1B}, .address_width = 32, .flash_loader = true},
    FLASH_ROW{.number = 421, .family = DEV_FAMILY_SERIAL_A, .device_class = DEV_CLASS_CONFIG_FLASH, .name = "MX66L2G45G", .bytes = 256 * MIB, .sector_bytes = 64 * KIB, .page_bytes = 256, .jedec_id = {0xC2, 0x20, 0x1C}, .address_width = 32, .flash_loader = true},
    FLASH_ROW{.number = 422, .family = DEV_FAMILY_SERIAL_A, .device_class = DEV_CLASS_CONFIG_FLASH, .name = "MT25QL128", .bytes = 16 * MIB, .sector_bytes = 64 * KIB, .page_bytes = 256, .jedec_id = {0x20, 0xBA, 0x18}, .address_width = 24, .flash_loader = true},
    FLASH_ROW{.number = 423, .family = DEV_FAMILY_SERIAL_A, .device_class = DEV_CLASS_CONFIG_FLASH, .name = "MT25QL256", .bytes = 32 * MIB, .sector_bytes = 64 * KIB, .page_bytes = 256, .jedec_id = {0x20, 0xBA, 0x19}, .address_width = 32, .flash_loader = true},
    FLASH_ROW{.number = 424, .family = DEV_FAMILY_SERIAL_A, .device_class = DEV_CLASS_CONFIG_FLASH, .name = "MT25QL512", .bytes = 64 * MIB, .sector_bytes = 64 * KIB, .page_bytes = 256, .jedec_id = {0x20, 0xBA, 0x20}, .address_width = 32, .flash_loader = true},
    FLASH_ROW{.number = 425, .family = DEV_FAMILY_SERIAL_A, .device_class = DEV_CLASS_CONFIG_FLASH, .name = "MT25QL01G", .bytes = 128 * MIB, .sector_bytes = 64 * KIB, .page_bytes = 256, .jedec_id = {0x20, 0xBA, 0x21}, .address_width = 32, .flash_loader = true},
    FLASH_ROW{.number = 426, .family = DEV_FAMILY_SERIAL_A, .device_class = DEV_CLASS_CONFIG_FLASH, .name = "MT25QL02G", .bytes = 256 * MIB, .sector_bytes = 64 * KIB, .page_bytes = 256, .jedec_id = {0x20, 0xBA, 0x22}, .address_width = 32, .flash_loader = true},
    FLASH_ROW{.number = 427, .family = DEV_FAMILY_SERIAL_A, .device_class = DEV_CLASS_CONFIG_FLASH, .name = "IS25LP064", .bytes = 8 * MIB, .sector_bytes = 64 * KIB, .page_bytes = 256, .jedec_id = {0x9D, 0x60, 0x17}, .address_width = 24, .flash_loader = true},
    FLASH_ROW{.number = 428, .family = DEV_FAMILY_SERIAL_A, .device_class = DEV_CLASS_CONFIG_FLASH, .name = "IS25LP128", .bytes = 16 * MIB, .sector_bytes = 64 * KIB, .page_bytes = 256, .jedec_id = {0x9D, 0x60, 0x18}, .address_width = 24, .flash_loader = true},
    FLASH_ROW{.number = 429, .family = DEV_FAMILY_SERIAL_A, .device_class = DEV_CLASS_CONFIG_FLASH, .name = "IS25LP256", .bytes = 32 * MIB, .sector_bytes = 64 * KIB, .page_bytes = 256, .jedec_id = {0x9D, 0x60, 0x19}, .address_width = 32, .flash_loader = true},
    FLASH_ROW{.number = 430, .family = DEV_FAMILY_SERIAL_A, .device_class = DEV_CLASS_CONFIG_FLASH, .name = "IS25LP512M", .bytes = 64 * MIB, .sector_bytes = 64 * KIB, .page_bytes = 256, .jedec_id = {0x9D, 0x60, 0x1A}, .address_width = 32, .flash_loader = true},
    FLASH_ROW{.number = 431, .family = DEV_FAMILY_SERIAL_A, .device_class = DEV_CLASS_CONFIG_FLASH, .name = "GD25Q64C", .bytes = 8 * MIB, .sector_bytes = 64 * KIB, .page_bytes = 256, .jedec_id = {0xC8, 0x40, 0x17}, .address_width = 24, .flash_loader = true},
    FLASH_ROW{.number = 432, .family = DEV_FAMILY_SERIAL_A, .device_class = DEV_CLASS_CONFIG_FLASH, .name = "GD25Q127C", .bytes = 16 * MIB, .sector_bytes = 64 * KIB, .page_bytes = 256, .jedec_id = {0xC8, 0x40, 0x18}, .address_width = 24, .flash_loader = true},
    FLASH_ROW{.number = 433, .family = DEV_FAMILY_SERIAL_A, .device_class = DEV_CLASS_CONFIG_FLASH, .name = "GD25Q256D", .bytes = 32 * MIB, .sector_bytes = 64 * KIB, .page_bytes = 256, .jedec_id = {0xC8, 0x40, 0x19}, .address_width = 32, .flash_loader = true},
    FLASH_ROW{.number = 434, .family = DEV_FAMILY_SERIAL_A, .device_class = DEV_CLASS_CONFIG_FLASH, .name = "S25FL064L", .bytes = 8 * MIB, .sector_bytes = 64 * KIB, .page_bytes = 256, .jedec_id = {0x01, 0x60, 0x17}, .address_width = 24, .flash_loader = true},
    FLASH_ROW{.number = 435, .family = DEV_FAMILY_SERIAL_A, .device_class = DEV_CLASS_CONFIG_FLASH, .name = "S25FL128L", .bytes = 16 * MIB, .sector_bytes = 64 * KIB, .page_bytes = 256, .jedec_id = {0x01, 0x60, 0x18}, .address_width = 24, .flash_loader = true},
    FLASH_ROW{.number = 436, .family = DEV_FAMILY_SERIAL_A, .device_class = DEV_CLASS_CONFIG_FLASH, .name = "S25FL256L", .bytes = 32 * MIB, .sector_bytes = 64 * KIB, .page_bytes = 256, .jedec_id = {0x01, 0x60, 0x19}, .address_width = 32, .flash_loader = true},
    // A data flash, which no device configures itself from.
    FLASH_ROW{.number = 437, .family = DEV_FAMILY_SERIAL_A, .device_class = DEV_CLASS_DATA_FLASH, .name = "AT45DB641E", .bytes = 8 * MIB, .sector_bytes = 256 * KIB, .page_bytes = 256, .jedec_id = {0x1F, 0x28, 0x00}, .address_width = 24},

    // Serial NOR flash, 1.8 V.
    FLASH_ROW{.number = 445, .family = DEV_FAMILY_SERIAL_B, .device_class = DEV_CLASS_CONFIG_FLASH, .name = "W25Q64JW", .bytes = 8 * MIB, .sector_bytes = 64 * KIB, .page_bytes = 256, .jedec_id = {0xEF, 0x60, 0x17}, .address_width = 24, .flash_loader = true},
    FLASH_ROW{.number = 446, .family = DEV_FAMILY_SERIAL_B, .device_class = DEV_CLASS_CONFIG_FLASH, .name = "W25Q128JW", .bytes = 16 * MIB, .sector_bytes = 64 * KIB, .page_bytes = 256, .jedec_id = {0xEF, 0x60, 0x18}, .address_width = 24, .flash_loader = true},
    FLASH_ROW{.number = 447, .family = DEV_FAMILY_SERIAL_B, .device_class = DEV_CLASS_CONFIG_FLASH, .name = "W25Q256JW", .bytes = 32 * MIB, .sector_bytes = 64 * KIB, .page_bytes = 256, .jedec_id = {0xEF, 0x60, 0x19}, .address_width = 32, .flash_loader = true},
    FLASH_ROW{.number = 448, .family = DEV_FAMILY_SERIAL_B, .device_class = DEV_CLASS_CONFIG_FLASH, .name = "W25Q512NW", .bytes = 64 * MIB, .sector_bytes = 64 * KIB, .page_bytes = 256, .jedec_id = {0xEF, 0x60, 0x20}, .address_width = 32, .flash_loader = true},
    FLASH_ROW{.number = 449, .family = DEV_FAMILY_SERIAL_B, .device_class = DEV_CLASS_CONFIG_FLASH, .name = "MX25U6435F", .bytes = 8 * MIB, .sector_bytes = 64 * KIB, .page_bytes = 256, .jedec_id = {0xC2, 0x25, 0x37}, .address_width = 24, .flash_loader = true},
    FLASH_ROW{.number = 450, .family = DEV_FAMILY_SERIAL_B, .device_class = DEV_CLASS_CONFIG_FLASH, .name = "MX25U12835F", .bytes = 16 * MIB, .sector_bytes = 64 * KIB, .page_bytes = 256, .jedec_id = {0xC2, 0x25, 0x38}, .address_width = 24, .flash_loader = true},
    FLASH_ROW{.number = 451, .family = DEV_FAMILY_SERIAL_B, .device_class = DEV_CLASS_CONFIG_FLASH, .name = "MX25U25645G", .bytes = 32 * MIB, .sector_bytes = 64 * KIB, .page_bytes = 256, .jedec_id = {0xC2, 0x25, 0x39}, .address_width = 32, .flash_loader = true},
    FLASH_ROW{.number = 452, .family = DEV_FAMILY_SERIAL_B, .device_class = DEV_CLASS_CONFIG_FLASH, .name = "MX25U51245G", .bytes = 64 * MIB, .sector_bytes = 64 * KIB, .page_bytes = 256, .jedec_id = {0xC2, 0x25, 0x3A}, .address_width = 32, .flash_loader = true},
    FLASH_ROW{.number = 453, .family = DEV_FAMILY_SERIAL_B, .device_class = DEV_CLASS_CONFIG_FLASH, .name = "MX66U1G45G", .bytes = 128 * MIB, .sector_bytes = 64 * KIB, .page_bytes = 256, .jedec_id = {0xC2, 0x25, 0x3B}, .address_width = 32, .flash_loader = true},
    FLASH_ROW{.number = 454, .family = DEV_FAMILY_SERIAL_B, .device_class = DEV_CLASS_CONFIG_FLASH, .name = "MX66U2G45G", .bytes = 256 * MIB, .sector_bytes = 64 * KIB, .page_bytes = 256, .jedec_id = {0xC2, 0x25, 0x3C}, .address_width = 32, .flash_loader = true},
    FLASH_ROW{.number = 455, .family = DEV_FAMILY_SERIAL_B, .device_class = DEV_CLASS_CONFIG_FLASH, .name = "MT25QU128", .bytes = 16 * MIB, .sector_bytes = 64 * KIB, .page_bytes = 256, .jedec_id = {0x20, 0xBB, 0x18}, .address_width = 24, .flash_loader = true},
    FLASH_ROW{.number = 456, .family = DEV_FAMILY_SERIAL_B, .device_class = DEV_CLASS_CONFIG_FLASH, .name = "MT25QU256", .bytes = 32 * MIB, .sector_bytes = 64 * KIB, .page_bytes = 256, .jedec_id = {0x20, 0xBB, 0x19}, .address_width = 32, .flash_loader = true},
    FLASH_ROW{.number = 457, .family = DEV_FAMILY_SERIAL_B, .device_class = DEV_CLASS_CONFIG_FLASH, .name = "MT25QU512", .bytes = 64 * MIB, .sector_bytes = 64 * KIB, .page_bytes = 256, .jedec_id = {0x20, 0xBB, 0x20}, .address_width = 32, .flash_loader = true},
    FLASH_ROW{.number = 458, .family = DEV_FAMILY_SERIAL_B, .device_class = DEV_CLASS_CONFIG_FLASH, .name = "MT25QU01G", .bytes = 128 * MIB, .sector_bytes = 64 * KIB, .page_bytes = 256, .jedec_id = {0x20, 0xBB, 0x21}, .address_width = 32, .flash_loader = true},
    FLASH_ROW{.number = 459, .family = DEV_FAMILY_SERIAL_B, .device_class = DEV_CLASS_CONFIG_FLASH, .name = "MT25QU02G", .bytes = 256 * MIB, .sector_bytes = 64 * KIB, .page_bytes = 256, .jedec_id = {0x20, 0xBB, 0x22}, .address_width = 32, .flash_loader = true},
    FLASH_ROW{.number = 460, .family = DEV_FAMILY_SERIAL_B, .device_class = DEV_CLASS_CONFIG_FLASH, .name = "IS25WP064", .bytes = 8 * MIB, .sector_bytes = 64 * KIB, .page_bytes = 256, .jedec_id = {0x9D, 0x70, 0x17}, .address_width = 24, .flash_loader = true},
    FLASH_ROW{.number = 461, .family = DEV_FAMILY_SERIAL_B, .device_class = DEV_CLASS_CONFIG_FLASH, .name = "IS25WP128", .bytes = 16 * MIB, .sector_bytes = 64 * KIB, .page_bytes = 256, .jedec_id = {0x9D, 0x70, 0x18}, .address_width = 24, .flash_loader = true},
    FLASH_ROW{.number = 462, .family = DEV_FAMILY_SERIAL_B, .device_class = DEV_CLASS_CONFIG_FLASH, .name = "IS25WP256", .bytes = 32 * MIB, .sector_bytes = 64 * KIB, .page_bytes = 256, .jedec_id = {0x9D, 0x70, 0x19}, .address_width = 32, .flash_loader = true},
    FLASH_ROW{.number = 463, .family = DEV_FAMILY_SERIAL_B, .device_class = DEV_CLASS_CONFIG_FLASH, .name = "IS25WP512M", .bytes = 64 * MIB, .sector_bytes = 64 * KIB, .page_bytes = 256, .jedec_id = {0x9D, 0x70, 0x1A}, .address_width = 32, .flash_loader = true},
    FLASH_ROW{.number = 464, .family = DEV_FAMILY_SERIAL_B, .device_class = DEV_CLASS_CONFIG_FLASH, .name = "GD25LQ64C", .bytes = 8 * MIB, .sector_bytes = 64 * KIB, .page_bytes = 256, .jedec_id = {0xC8, 0x60, 0x17}, .address_width = 24, .flash_loader = true},
    FLASH_ROW{.number = 465, .family = DEV_FAMILY_SERIAL_B, .device_class = DEV_CLASS_CONFIG_FLASH, .name = "GD25LQ128D", .bytes = 16 * MIB, .sector_bytes = 64 * KIB, .page_bytes = 256, .jedec_id = {0xC8, 0x60, 0x18}, .address_width = 24, .flash_loader = true},
    FLASH_ROW{.number = 466, .family = DEV_FAMILY_SERIAL_B, .device_class = DEV_CLASS_CONFIG_FLASH, .name = "GD25LQ256D", .bytes = 32 * MIB, .sector_bytes = 64 * KIB, .page_bytes = 256, .jedec_id = {0xC8, 0x60, 0x19}, .address_width = 32, .flash_loader = true},

    // Special flash. Those of the TSU line are told apart by a flag of their own.
    FLASH_ROW{.number = 480, .family = DEV_FAMILY_SPECIAL_FLASH, .device_class = DEV_CLASS_CONFIG_FLASH, .name = "TSU128", .bytes = 16 * MIB, .sector_bytes = 64 * KIB, .page_bytes = 256, .address_width = 24, .flash_loader = true, .tsu_tessel = true},
    FLASH_ROW{.number = 481, .family = DEV_FAMILY_SPECIAL_FLASH, .device_class = DEV_CLASS_CONFIG_FLASH, .name = "TSU512", .bytes = 64 * MIB, .sector_bytes = 64 * KIB, .page_bytes = 256, .address_width = 32, .flash_loader = true, .tsu_tessel = true},
    FLASH_ROW{.number = 482, .family = DEV_FAMILY_SPECIAL_FLASH, .device_class = DEV_CLASS_CONFIG_FLASH, .name = "KELT64", .bytes = 8 * MIB, .sector_bytes = 64 * KIB, .page_bytes = 256, .address_width = 24, .flash_loader = true},
    FLASH_ROW{.number = 483, .family = DEV_FAMILY_SPECIAL_FLASH, .device_class = DEV_CLASS_CONFIG_FLASH, .name = "KELT256", .bytes = 32 * MIB, .sector_bytes = 64 * KIB, .page_bytes = 256, .address_width = 32, .flash_loader = true},

    // Parallel flash with the Common Flash Interface (JESD68), 16 data lines. Sizes are named in bits.
    FLASH_ROW{.number = 490, .family = DEV_FAMILY_CFI_FLASH, .device_class = DEV_CLASS_PARALLEL_FLASH, .name = "CFI_16MB", .bytes = 2 * MIB, .sector_bytes = 64 * KIB, .page_bytes = 32, .address_width = 20, .sized_in_bits = true},
    FLASH_ROW{.number = 491, .family = DEV_FAMILY_CFI_FLASH, .device_class = DEV_CLASS_PARALLEL_FLASH, .name = "CFI_32MB", .bytes = 4 * MIB, .sector_bytes = 64 * KIB, .page_bytes = 32, .address_width = 21, .sized_in_bits = true},
    FLASH_ROW{.number = 492, .family = DEV_FAMILY_CFI_FLASH, .device_class = DEV_CLASS_PARALLEL_FLASH, .name = "CFI_64MB", .bytes = 8 * MIB, .sector_bytes = 64 * KIB, .page_bytes = 32, .address_width = 22, .sized_in_bits = true},
    FLASH_ROW{.number = 493, .family = DEV_FAMILY_CFI_FLASH, .device_class = DEV_CLASS_PARALLEL_FLASH, .name = "CFI_128MB", .bytes = 16 * MIB, .sector_bytes = 128 * KIB, .page_bytes = 64, .address_width = 23, .sized_in_bits = true},
    FLASH_ROW{.number = 494, .family = DEV_FAMILY_CFI_FLASH, .device_class = DEV_CLASS_PARALLEL_FLASH, .name = "CFI_256MB", .bytes = 32 * MIB, .sector_bytes = 128 * KIB, .page_bytes = 64, .address_width = 24, .sized_in_bits = true},
    FLASH_ROW{.number = 495, .family = DEV_FAMILY_CFI_FLASH, .device_class = DEV_CLASS_PARALLEL_FLASH, .name = "CFI_512MB", .bytes = 64 * MIB, .sector_bytes = 128 * KIB, .page_bytes = 64, .address_width = 25, .sized_in_bits = true},
    FLASH_ROW{.number = 496, .family = DEV_FAMILY_CFI_FLASH, .device_class = DEV_CLASS_PARALLEL_FLASH, .name = "CFI_1GB", .bytes = 128 * MIB, .sector_bytes = 128 * KIB, .page_bytes = 512, .address_width = 26, .sized_in_bits = true},
    FLASH_ROW{.number = 497, .family = DEV_FAMILY_CFI_FLASH, .device_class = DEV_CLASS_PARALLEL_FLASH, .name = "CFI_2GB", .bytes = 256 * MIB, .sector_bytes = 128 * KIB, .page_bytes = 512, .address_width = 27, .sized_in_bits = true},
    FLASH_ROW{.number = 498, .family = DEV_FAMILY_CFI_FLASH, .device_class = DEV_CLASS_PARALLEL_FLASH, .name = "CFI_4GB", .bytes = 512 * MIB, .sector_bytes = 128 * KIB, .page_bytes = 512, .address_width = 28, .sized_in_bits = true},
};
// clang-format on

static_assert(FLASH_TABLE.back().number == DEV_DEVICE_CFI_4G);

#endif
