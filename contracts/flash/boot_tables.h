#ifndef BOOT_TABLES_H
#define BOOT_TABLES_H

#include <cstdint>
#include <string>
#include <vector>

/// The tables that generation writes into a flash image for the device or its boot ROM: where the pages lie
/// in a parallel flash device, and what a secure device boots from. Every number is little endian, every
/// table ends with the CRC-32 (crc32 of byte_source.h) of all bytes before it. docs/flash-layout.md gives the
/// layouts byte for byte.

inline constexpr std::uint16_t BOOT_TABLE_VERSION = 1;
inline constexpr std::size_t OPTIONS_PAGE_COUNT = 8;       ///< pages 0 to 7
inline constexpr std::size_t OPTIONS_TABLE_SIZE = 76;      ///< bytes
inline constexpr std::size_t POINTER_SLOT_COUNT = 32;      ///< images in a configuration pointer block
inline constexpr std::size_t POINTER_BLOCK_SIZE = 276;     ///< bytes
inline constexpr std::size_t SUB_PARTITION_NAME_SIZE = 31; ///< bytes of a name, without the ending zero
inline constexpr std::size_t BOOT_INFO_HEADER_SIZE = 128;  ///< bytes in front of the firmware

/// Where an image lies that the page number selects.
struct PAGE_ENTRY {
    unsigned page;        ///< below OPTIONS_PAGE_COUNT
    std::uint32_t start;  ///< byte address of the image
    std::uint32_t length; ///< bytes
};

/// The content of OPTIONS. A page outside the table is the internal error "page.page < OPTIONS_PAGE_COUNT".
std::vector<std::uint8_t> build_options_table(const std::vector<PAGE_ENTRY>& pages);

enum SUB_PARTITION_FLAG : std::uint32_t {
    SUB_PARTITION_RESERVED = 1,  ///< belongs to the boot layout
    SUB_PARTITION_GENERATED = 2, ///< a table of this page, which carries its own checksum; the CRC field is 0
};

struct SUB_PARTITION_ENTRY {
    std::string name;             ///< at most SUB_PARTITION_NAME_SIZE bytes
    std::uint64_t start;          ///< byte address
    std::uint64_t block_size;     ///< bytes from the start to the end of the partition
    std::uint64_t content_length; ///< bytes in use from the start
    std::uint32_t content_crc;    ///< CRC-32 of those bytes
    std::uint32_t flags;          ///< SUB_PARTITION_FLAG bits
};

/// Bytes of a table of `count` entries.
std::size_t sub_partition_table_size(std::size_t count);

/// The content of SPT0 and SPT1. A longer name is the internal error
/// "entry.name.size() <= SUB_PARTITION_NAME_SIZE".
std::vector<std::uint8_t> build_sub_partition_table(const std::vector<SUB_PARTITION_ENTRY>& entries);

/// The content of CPB0 and CPB1: addresses of the application images, the first to try first. More than the
/// block has slots for is the internal error "images.size() <= POINTER_SLOT_COUNT".
std::vector<std::uint8_t> build_pointer_block(const std::vector<std::uint64_t>& images);

/// What the boot ROM reads first. An address that does not exist is UNUSED_BOOT_ADDRESS.
struct BOOT_INFO_HEADER {
    std::uint32_t idcode = 0; ///< JTAG IDCODE of the device
    std::uint32_t firmware_length = 0;
    std::uint32_t firmware_crc = 0;
    std::uint64_t factory_image = ~std::uint64_t{0};
    std::uint64_t sub_partition_tables[2] = {~std::uint64_t{0}, ~std::uint64_t{0}};
    std::uint64_t pointer_blocks[2] = {~std::uint64_t{0}, ~std::uint64_t{0}};
};

inline constexpr std::uint64_t UNUSED_BOOT_ADDRESS = ~std::uint64_t{0};

/// The head of BOOT_INFO; the firmware follows it.
std::vector<std::uint8_t> build_boot_info_header(const BOOT_INFO_HEADER& header);

#endif
