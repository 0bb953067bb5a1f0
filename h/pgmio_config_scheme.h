#ifndef PGMIO_CONFIG_SCHEME_H
#define PGMIO_CONFIG_SCHEME_H

#include <array>
#include <cstdint>

/// Configuration modes. Bit (mode modulo 32) stands for a mode in a mask.
enum PGMIO_CONFIG_SCHEME : std::uint32_t {
    PGMIO_CONFIG_SCHEME_PS = 0,
    PGMIO_CONFIG_SCHEME_PS_X2 = 1,
    PGMIO_CONFIG_SCHEME_PS_X4 = 2,
    PGMIO_CONFIG_SCHEME_PS_X8 = 3,
    PGMIO_CONFIG_SCHEME_PPA = 4,
    PGMIO_CONFIG_SCHEME_PPS = 5,
    PGMIO_CONFIG_SCHEME_FPP = 6,
    PGMIO_CONFIG_SCHEME_AS = 7,
    PGMIO_CONFIG_SCHEME_AP = 8,
    PGMIO_CONFIG_SCHEME_AP_CASCADE = 9,
    PGMIO_CONFIG_SCHEME_PP_X8 = 10,
    PGMIO_CONFIG_SCHEME_PP_X16 = 11,
    PGMIO_CONFIG_SCHEME_PP_X32 = 12,
    PGMIO_CONFIG_SCHEME_AS_X4 = 13,
    PGMIO_CONFIG_SCHEME_INTERNAL = 14,
    PGMIO_CONFIG_SCHEME_SINGLE_IMAGE = 15, ///< 15 to 19: what a file of the on-chip flash family holds
    PGMIO_CONFIG_SCHEME_SINGLE_IMAGE_ERAM = 16,
    PGMIO_CONFIG_SCHEME_SINGLE_COMPRESSED_IMAGE = 17,
    PGMIO_CONFIG_SCHEME_SINGLE_COMPRESSED_IMAGE_ERAM = 18,
    PGMIO_CONFIG_SCHEME_DUAL_COMPRESSED_IMAGES = 19,
    PGMIO_CONFIG_SCHEME_LNKS_X8 = 20,
    PGMIO_CONFIG_SCHEME_LNKS_X16 = 21,
    PGMIO_CONFIG_SCHEME_LNKS_X32 = 22,
    PGMIO_CONFIG_SCHEME_SDMMC_X4 = 23,
    PGMIO_CONFIG_SCHEME_SDMMC_X8 = 24,
    PGMIO_CONFIG_SCHEME_ILLEGAL = 25,
};

/// Labels of the modes, by their value; shown as they stand.
inline constexpr std::array<const char*, 26> PGMIO_CONFIG_SCHEME_STR{
    "1-bit Passive Serial",
    "2-bit Passive Serial",
    "4-bit Passive Serial",
    "8-bit Passive Serial",
    "Passive Parallel Asynchronous",
    "Passive Parallel Synchronous",
    "Fast Passive Parallel",
    "Active Serial",
    "Active Parallel",
    "Active Parallel Cascade",
    "Passive Parallel x8",
    "Passive Parallel x16",
    "Passive Parallel x32",
    "Active Serial x4",
    "Internal Configuration",
    "Single Internal Image",
    "Single Internal Image With ERAM",
    "Single Internal Compressed Image",
    "Single Internal Compressed Image with ERAM",
    "Dual Compressed Internal Images",
    "LNKS x8",
    "LNKS x16",
    "LNKS x32",
    "SDMMC x4",
    "SDMMC x8",
    "Illegal Configuration Scheme",
};

#endif
