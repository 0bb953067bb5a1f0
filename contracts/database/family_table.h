#ifndef FAMILY_TABLE_H
#define FAMILY_TABLE_H

#include "dev_family_enum.h"
#include "enum_set.h"
#include "pgmio_config_scheme.h"

#include <array>
#include <cstdint>

using FAMILY_SET = ENUM_SET<DEV_FAMILY_ENUM, 72>;

enum class FAMILY_KIND : std::uint8_t { FPGA, FLASH };

/// What a family of FPGAs can do. Rows of the other tables take their family lists from these.
enum FAMILY_TRAIT : std::uint32_t {
    TRAIT_COMPRESSION = 1U << 0,
    TRAIT_ENHANCED_COMPRESSION = 1U << 1,
    TRAIT_ENCRYPTION = 1U << 2,       ///< a key in the device, volatile or not
    TRAIT_NON_VOLATILE_KEY = 1U << 3, ///< fuses that keep the key
    TRAIT_FUSE_OPTIONS = 1U << 4,     ///< security options that fuses can make lasting
    TRAIT_PARTIAL_RECONFIGURATION = 1U << 5,
    TRAIT_CVP_GROUP = 1U << 6,      ///< the core can follow over the bus, after the periphery
    TRAIT_HPS_GROUP = 1U << 7,      ///< the core can follow from the processor, after the periphery
    TRAIT_HPS_BOOTLOADER = 1U << 8, ///< a bitstream carries a first boot loader for the processor
    TRAIT_SIGNING = 1U << 9,
    TRAIT_MULTI_FILE = 1U << 10,   ///< several files in one bitstream
    TRAIT_ONCHIP_FLASH = 1U << 11, ///< the images lie in the device itself
};

struct FAMILY_ROW {
    DEV_FAMILY_ENUM family;
    const char* name; ///< display name
    FAMILY_KIND kind;
    std::uint32_t modes = 0; ///< bit n for PGMIO_CONFIG_SCHEME n
    std::uint32_t traits = 0;
};

template <class... MODES>
constexpr std::uint32_t mode_bits(MODES... modes)
{
    return (0U | ... | (1U << (static_cast<unsigned>(modes) % 32U)));
}

inline constexpr std::uint32_t MODES_PASSIVE = mode_bits(PGMIO_CONFIG_SCHEME_PS, PGMIO_CONFIG_SCHEME_FPP);
inline constexpr std::uint32_t MODES_ACTIVE_SERIAL =
    mode_bits(PGMIO_CONFIG_SCHEME_AS, PGMIO_CONFIG_SCHEME_AS_X4);
inline constexpr std::uint32_t MODES_LNKS =
    mode_bits(PGMIO_CONFIG_SCHEME_LNKS_X8, PGMIO_CONFIG_SCHEME_LNKS_X16, PGMIO_CONFIG_SCHEME_LNKS_X32);
inline constexpr std::uint32_t MODES_ONCHIP =
    mode_bits(PGMIO_CONFIG_SCHEME_INTERNAL, PGMIO_CONFIG_SCHEME_SINGLE_IMAGE,
              PGMIO_CONFIG_SCHEME_SINGLE_IMAGE_ERAM, PGMIO_CONFIG_SCHEME_SINGLE_COMPRESSED_IMAGE,
              PGMIO_CONFIG_SCHEME_SINGLE_COMPRESSED_IMAGE_ERAM, PGMIO_CONFIG_SCHEME_DUAL_COMPRESSED_IMAGES);

inline constexpr std::uint32_t TRAITS_SECURE_GROUP = TRAIT_SIGNING | TRAIT_PARTIAL_RECONFIGURATION;

// clang-format off
inline constexpr std::array FAMILY_TABLE{
    FAMILY_ROW{.family = DEV_FAMILY_BASALT, .name = "Basalt", .kind = FAMILY_KIND::FPGA,
               .modes = MODES_ACTIVE_SERIAL | MODES_PASSIVE,
               .traits = TRAIT_COMPRESSION},
    FAMILY_ROW{.family = DEV_FAMILY_ASC_SERIAL, .name = "Serial Configuration Device", .kind = FAMILY_KIND::FLASH},
    FAMILY_ROW{.family = DEV_FAMILY_CALCITE, .name = "Calcite", .kind = FAMILY_KIND::FPGA,
               .modes = MODES_ACTIVE_SERIAL | MODES_PASSIVE,
               .traits = TRAIT_COMPRESSION | TRAIT_ENCRYPTION | TRAIT_NON_VOLATILE_KEY | TRAIT_PARTIAL_RECONFIGURATION},
    FAMILY_ROW{.family = DEV_FAMILY_DOLOMITE, .name = "Dolomite", .kind = FAMILY_KIND::FPGA,
               .modes = mode_bits(PGMIO_CONFIG_SCHEME_AS) | MODES_PASSIVE,
               .traits = TRAIT_MULTI_FILE},
    FAMILY_ROW{.family = DEV_FAMILY_FELDSPAR, .name = "Feldspar", .kind = FAMILY_KIND::FPGA,
               .modes = MODES_ACTIVE_SERIAL | MODES_LNKS,
               .traits = TRAITS_SECURE_GROUP},
    FAMILY_ROW{.family = DEV_FAMILY_SERIAL_A, .name = "Serial Flash 3 V", .kind = FAMILY_KIND::FLASH},
    FAMILY_ROW{.family = DEV_FAMILY_SERIAL_B, .name = "Serial Flash 1.8 V", .kind = FAMILY_KIND::FLASH},
    FAMILY_ROW{.family = DEV_FAMILY_HEMATITE, .name = "Hematite", .kind = FAMILY_KIND::FPGA,
               .modes = MODES_ACTIVE_SERIAL | MODES_LNKS,
               .traits = TRAITS_SECURE_GROUP},
    FAMILY_ROW{.family = DEV_FAMILY_GRANITE, .name = "Granite", .kind = FAMILY_KIND::FPGA,
               .modes = MODES_ACTIVE_SERIAL | MODES_PASSIVE,
               .traits = TRAIT_COMPRESSION | TRAIT_ENHANCED_COMPRESSION | TRAIT_ENCRYPTION | TRAIT_NON_VOLATILE_KEY |
                         TRAIT_FUSE_OPTIONS | TRAIT_PARTIAL_RECONFIGURATION | TRAIT_CVP_GROUP | TRAIT_HPS_BOOTLOADER},
    FAMILY_ROW{.family = DEV_FAMILY_CFI_FLASH, .name = "Parallel Flash", .kind = FAMILY_KIND::FLASH},
    FAMILY_ROW{.family = DEV_FAMILY_ONYX, .name = "Onyx", .kind = FAMILY_KIND::FPGA,
               .modes = MODES_ACTIVE_SERIAL | MODES_PASSIVE,
               .traits = TRAIT_COMPRESSION},
    FAMILY_ROW{.family = DEV_FAMILY_ZIRCON, .name = "Zircon", .kind = FAMILY_KIND::FPGA,
               .modes = MODES_ACTIVE_SERIAL | MODES_LNKS,
               .traits = TRAITS_SECURE_GROUP | TRAIT_HPS_GROUP | TRAIT_HPS_BOOTLOADER},
    FAMILY_ROW{.family = DEV_FAMILY_SPECIAL_FLASH, .name = "Special Flash", .kind = FAMILY_KIND::FLASH},
    FAMILY_ROW{.family = DEV_FAMILY_GYPSUM, .name = "Gypsum", .kind = FAMILY_KIND::FPGA,
               .modes = MODES_ONCHIP,
               .traits = TRAIT_ONCHIP_FLASH},
};
// clang-format on

/// The row of a family; null for DEV_FAMILY_NONE and for a number that is no family.
constexpr const FAMILY_ROW* find_family_row(DEV_FAMILY_ENUM family)
{
    for (const FAMILY_ROW& row : FAMILY_TABLE) {
        if (row.family == family) {
            return &row;
        }
    }
    return nullptr;
}

/// All families of FPGAs.
constexpr FAMILY_SET fpga_families()
{
    FAMILY_SET families;
    for (const FAMILY_ROW& row : FAMILY_TABLE) {
        if (row.kind == FAMILY_KIND::FPGA) {
            families.insert(row.family);
        }
    }
    return families;
}

/// The families that have all the traits.
constexpr FAMILY_SET families_with(std::uint32_t traits)
{
    FAMILY_SET families;
    for (const FAMILY_ROW& row : FAMILY_TABLE) {
        if (row.kind == FAMILY_KIND::FPGA && (row.traits & traits) == traits) {
            families.insert(row.family);
        }
    }
    return families;
}

/// The families of FPGAs that lack one of the traits.
constexpr FAMILY_SET families_without(std::uint32_t traits)
{
    return fpga_families() - families_with(traits);
}

#endif
