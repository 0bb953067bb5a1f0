#ifndef FPGA_TABLE_H
#define FPGA_TABLE_H

#include "family_table.h"
#include "pgm_device.h"

#include <array>

/// One FPGA. Sizes are in bytes.
struct FPGA_ROW {
    std::uint32_t number; ///< DEV_DEVICE_ENUM
    DEV_FAMILY_ENUM family;
    const char* name;
    const char* code;
    std::uint32_t idcode;
    std::uint32_t instruction_length;
    std::uint32_t periphery_bytes;
    std::uint32_t core_bytes;
    std::uint32_t key_bits = 0;
    DEV_RELEASE release = DEV_RELEASE::PRODUCTION;
    bool jtag_only = false;
    std::uint32_t missing_modes = 0;
    DEV_FLASH_SECTOR cfm0{};
    DEV_FLASH_SECTOR cfm1{};
    DEV_FLASH_SECTOR ufm{};
};

inline constexpr std::uint32_t NO_FPP = mode_bits(PGMIO_CONFIG_SCHEME_FPP);
inline constexpr std::uint32_t NO_LNKS_X32 = mode_bits(PGMIO_CONFIG_SCHEME_LNKS_X32);
inline constexpr std::uint32_t NO_DUAL_IMAGE = mode_bits(PGMIO_CONFIG_SCHEME_DUAL_COMPRESSED_IMAGES);

// clang-format off
inline constexpr std::array FPGA_TABLE{
    // Basalt. The smallest package has no pins for the parallel mode.
    FPGA_ROW{.number = 1, .family = DEV_FAMILY_BASALT, .name = "BS1L03", .code = "bs03", .idcode = 0x10A03BC7, .instruction_length = 10, .periphery_bytes = 18'432, .core_bytes = 201'728, .release = DEV_RELEASE::WITHDRAWN, .missing_modes = NO_FPP},
    FPGA_ROW{.number = 2, .family = DEV_FAMILY_BASALT, .name = "BS1L06", .code = "bs06", .idcode = 0x10A06BC7, .instruction_length = 10, .periphery_bytes = 22'528, .core_bytes = 346'112, .missing_modes = NO_FPP},
    FPGA_ROW{.number = 3, .family = DEV_FAMILY_BASALT, .name = "BS1L15", .code = "bs15", .idcode = 0x10A15BC7, .instruction_length = 10, .periphery_bytes = 26'624, .core_bytes = 493'568},
    FPGA_ROW{.number = 4, .family = DEV_FAMILY_BASALT, .name = "BS1L40", .code = "bs40", .idcode = 0x10A40BC7, .instruction_length = 10, .periphery_bytes = 36'864, .core_bytes = 1'183'744},
    FPGA_ROW{.number = 5, .family = DEV_FAMILY_BASALT, .name = "BS1L75", .code = "bs75", .idcode = 0x10A75BC7, .instruction_length = 10, .periphery_bytes = 49'152, .core_bytes = 2'490'368},

    // Calcite
    FPGA_ROW{.number = 21, .family = DEV_FAMILY_CALCITE, .name = "CA3M050", .code = "ca050", .idcode = 0x20B05BC7, .instruction_length = 10, .periphery_bytes = 98'304, .core_bytes = 2'629'632, .key_bits = 256},
    FPGA_ROW{.number = 22, .family = DEV_FAMILY_CALCITE, .name = "CA3M110", .code = "ca110", .idcode = 0x20B11BC7, .instruction_length = 10, .periphery_bytes = 131'072, .core_bytes = 5'898'240, .key_bits = 256},
    FPGA_ROW{.number = 23, .family = DEV_FAMILY_CALCITE, .name = "CA3M210", .code = "ca210", .idcode = 0x20B21BC7, .instruction_length = 10, .periphery_bytes = 163'840, .core_bytes = 11'796'480, .key_bits = 256},
    FPGA_ROW{.number = 24, .family = DEV_FAMILY_CALCITE, .name = "CA3M210ES", .code = "ca210es", .idcode = 0x00B21BC7, .instruction_length = 10, .periphery_bytes = 163'840, .core_bytes = 11'796'480, .key_bits = 256, .release = DEV_RELEASE::SAMPLE},

    // Dolomite
    FPGA_ROW{.number = 41, .family = DEV_FAMILY_DOLOMITE, .name = "DL2E20", .code = "dl20", .idcode = 0x10C20BC7, .instruction_length = 10, .periphery_bytes = 20'480, .core_bytes = 611'328},
    FPGA_ROW{.number = 42, .family = DEV_FAMILY_DOLOMITE, .name = "DL2E35", .code = "dl35", .idcode = 0x10C35BC7, .instruction_length = 10, .periphery_bytes = 28'672, .core_bytes = 1'048'576},
    FPGA_ROW{.number = 43, .family = DEV_FAMILY_DOLOMITE, .name = "DL2E90", .code = "dl90", .idcode = 0x10C90BC7, .instruction_length = 10, .periphery_bytes = 45'056, .core_bytes = 2'883'584},
    FPGA_ROW{.number = 44, .family = DEV_FAMILY_DOLOMITE, .name = "DL2E20J", .code = "dl20j", .idcode = 0x10C2ABC7, .instruction_length = 10, .periphery_bytes = 20'480, .core_bytes = 611'328, .jtag_only = true},

    // Feldspar. The smallest was the first of the secure devices and takes a single bitstream.
    FPGA_ROW{.number = 61, .family = DEV_FAMILY_FELDSPAR, .name = "FD7X120", .code = "kv3", .idcode = 0x10D12BC7, .instruction_length = 10, .periphery_bytes = 524'288, .core_bytes = 11'534'336, .key_bits = 256, .missing_modes = NO_LNKS_X32},
    FPGA_ROW{.number = 62, .family = DEV_FAMILY_FELDSPAR, .name = "FD7X280", .code = "fd280", .idcode = 0x10D28BC7, .instruction_length = 10, .periphery_bytes = 786'432, .core_bytes = 26'214'400, .key_bits = 256},
    FPGA_ROW{.number = 63, .family = DEV_FAMILY_FELDSPAR, .name = "FD7X400", .code = "fd400", .idcode = 0x10D40BC7, .instruction_length = 10, .periphery_bytes = 1'048'576, .core_bytes = 41'943'040, .key_bits = 256},

    // Hematite
    FPGA_ROW{.number = 81, .family = DEV_FAMILY_HEMATITE, .name = "HM8F060", .code = "hm060", .idcode = 0x10E06BC7, .instruction_length = 10, .periphery_bytes = 655'360, .core_bytes = 14'680'064, .key_bits = 256},
    FPGA_ROW{.number = 82, .family = DEV_FAMILY_HEMATITE, .name = "HM8F140", .code = "hm140", .idcode = 0x10E14BC7, .instruction_length = 10, .periphery_bytes = 917'504, .core_bytes = 35'651'584, .key_bits = 256},
    FPGA_ROW{.number = 83, .family = DEV_FAMILY_HEMATITE, .name = "HM8F270", .code = "hm270", .idcode = 0x10E27BC7, .instruction_length = 10, .periphery_bytes = 1'310'720, .core_bytes = 67'108'864, .key_bits = 256},

    // Granite
    FPGA_ROW{.number = 101, .family = DEV_FAMILY_GRANITE, .name = "GR5S027", .code = "gr027", .idcode = 0x20F27BC7, .instruction_length = 10, .periphery_bytes = 262'144, .core_bytes = 11'010'048, .key_bits = 256},
    FPGA_ROW{.number = 102, .family = DEV_FAMILY_GRANITE, .name = "GR5S066", .code = "gr066", .idcode = 0x20F66BC7, .instruction_length = 10, .periphery_bytes = 327'680, .core_bytes = 22'020'096, .key_bits = 256},
    FPGA_ROW{.number = 103, .family = DEV_FAMILY_GRANITE, .name = "GR5S115", .code = "gr115", .idcode = 0x20FB5BC7, .instruction_length = 10, .periphery_bytes = 393'216, .core_bytes = 34'603'008, .key_bits = 256},

    // Onyx
    FPGA_ROW{.number = 121, .family = DEV_FAMILY_ONYX, .name = "OX4R10", .code = "ox10", .idcode = 0x11010BC7, .instruction_length = 10, .periphery_bytes = 65'536, .core_bytes = 1'572'864},
    FPGA_ROW{.number = 122, .family = DEV_FAMILY_ONYX, .name = "OX4R25", .code = "ox25", .idcode = 0x11025BC7, .instruction_length = 10, .periphery_bytes = 65'536, .core_bytes = 3'145'728},
    FPGA_ROW{.number = 123, .family = DEV_FAMILY_ONYX, .name = "OX4R60", .code = "ox60", .idcode = 0x11060BC7, .instruction_length = 10, .periphery_bytes = 98'304, .core_bytes = 7'340'032},

    // Zircon
    FPGA_ROW{.number = 141, .family = DEV_FAMILY_ZIRCON, .name = "ZR9A012", .code = "zr012", .idcode = 0x11212BC7, .instruction_length = 10, .periphery_bytes = 786'432, .core_bytes = 18'874'368, .key_bits = 256},
    FPGA_ROW{.number = 142, .family = DEV_FAMILY_ZIRCON, .name = "ZR9A028", .code = "zr028", .idcode = 0x11228BC7, .instruction_length = 10, .periphery_bytes = 1'048'576, .core_bytes = 45'088'768, .key_bits = 256},
    FPGA_ROW{.number = 143, .family = DEV_FAMILY_ZIRCON, .name = "ZR9A041", .code = "zr041", .idcode = 0x11241BC7, .instruction_length = 10, .periphery_bytes = 1'572'864, .core_bytes = 83'886'080, .key_bits = 256},
    FPGA_ROW{.number = 144, .family = DEV_FAMILY_ZIRCON, .name = "ZR9A012ES", .code = "zr012es", .idcode = 0x01212BC7, .instruction_length = 10, .periphery_bytes = 786'432, .core_bytes = 18'874'368, .key_bits = 256, .release = DEV_RELEASE::SAMPLE},

    // Gypsum: user flash first, then the two configuration sectors, each large enough for a plain image.
    FPGA_ROW{.number = 161, .family = DEV_FAMILY_GYPSUM, .name = "GY1M02", .code = "gy02", .idcode = 0x11302BC7, .instruction_length = 10, .periphery_bytes = 8'192, .core_bytes = 77'824, .missing_modes = NO_DUAL_IMAGE,
             .cfm0 = {.start = 0x0000'4000, .size = 0x0001'C000}, .ufm = {.start = 0x0000'0000, .size = 0x0000'4000}},
    FPGA_ROW{.number = 162, .family = DEV_FAMILY_GYPSUM, .name = "GY1M08", .code = "gy08", .idcode = 0x11308BC7, .instruction_length = 10, .periphery_bytes = 12'288, .core_bytes = 172'032,
             .cfm0 = {.start = 0x0000'8000, .size = 0x0003'8000}, .cfm1 = {.start = 0x0004'0000, .size = 0x0003'8000}, .ufm = {.start = 0x0000'0000, .size = 0x0000'8000}},
    FPGA_ROW{.number = 163, .family = DEV_FAMILY_GYPSUM, .name = "GY1M16", .code = "gy16", .idcode = 0x11316BC7, .instruction_length = 10, .periphery_bytes = 16'384, .core_bytes = 303'104,
             .cfm0 = {.start = 0x0001'0000, .size = 0x0006'0000}, .cfm1 = {.start = 0x0007'0000, .size = 0x0006'0000}, .ufm = {.start = 0x0000'0000, .size = 0x0001'0000}},
    FPGA_ROW{.number = 164, .family = DEV_FAMILY_GYPSUM, .name = "GY1M50", .code = "gy50", .idcode = 0x11350BC7, .instruction_length = 10, .periphery_bytes = 24'576, .core_bytes = 1'036'288,
             .cfm0 = {.start = 0x0002'0000, .size = 0x0013'0000}, .cfm1 = {.start = 0x0015'0000, .size = 0x0013'0000}, .ufm = {.start = 0x0000'0000, .size = 0x0002'0000}},
};
// clang-format on

/// Erase block and write block of the on-chip flash, in bytes.
inline constexpr std::uint32_t ONCHIP_SECTOR_BYTES = 8192;
inline constexpr std::uint32_t ONCHIP_PAGE_BYTES = 4;

#endif
