#ifndef MODE_TABLE_H
#define MODE_TABLE_H

#include "file_type_table.h"
#include "pgmio_config_scheme.h"

#include <array>

/// One configuration mode. A mode that offers nothing is known by its label alone.
struct MODE_ROW {
    PGMIO_CONFIG_SCHEME mode;
    PGM_COMMON_XML_ENUM word = PGM_COMMON_XML_ENUM__INVALID__; ///< name in the document
    unsigned combo_position = 0; ///< place in the mode combo from 1, 0 when it is not enabled
    FAMILY_SET flash_families{};
    FILE_TYPE_SET outputs{};
};

inline constexpr FILE_TYPE_SET OUTPUTS_UNDER_FLASH{VEK_MAP_FILE_TYPE, VEK_SEC_RPD_FILE_TYPE};
inline constexpr FILE_TYPE_SET OUTPUTS_JTAG{VEK_JAM_FILE_TYPE, VEK_JBC_FILE_TYPE, VEK_SVF_FILE_TYPE};
inline constexpr FILE_TYPE_SET OUTPUTS_CVP{VEK_CVP_GROUP_FILE_TYPE, VEK_CVP_CORE_RBF_FILE_TYPE};
inline constexpr FILE_TYPE_SET OUTPUTS_HPS{VEK_HPS_GROUP_FILE_TYPE, VEK_HPS_CORE_RBF_FILE_TYPE};

inline constexpr FILE_TYPE_SET OUTPUTS_PASSIVE =
    FILE_TYPE_SET{VEK_RBF_FILE_TYPE, VEK_TTF_FILE_TYPE, VEK_HEX_FILE_TYPE,        VEK_PRRBF_FILE_TYPE,
                  VEK_POF_FILE_TYPE, VEK_EKP_FILE_TYPE, VEK_PERIPH_POF_FILE_TYPE, VEK_PERIPH_RBF_FILE_TYPE} |
    OUTPUTS_JTAG | OUTPUTS_UNDER_FLASH | OUTPUTS_CVP;
inline constexpr FILE_TYPE_SET OUTPUTS_ACTIVE_SERIAL =
    FILE_TYPE_SET{VEK_JIC_FILE_TYPE,        VEK_POF_FILE_TYPE,       VEK_RPD_FILE_TYPE,
                  VEK_PRRBF_FILE_TYPE,      VEK_EKP_FILE_TYPE,       VEK_PERIPH_JIC_FILE_TYPE,
                  VEK_PERIPH_POF_FILE_TYPE, VEK_PERIPH_RPD_FILE_TYPE} |
    OUTPUTS_JTAG | OUTPUTS_UNDER_FLASH | OUTPUTS_CVP | OUTPUTS_HPS;
inline constexpr FILE_TYPE_SET OUTPUTS_LNKS =
    FILE_TYPE_SET{VEK_RBF_FILE_TYPE,        VEK_HEX_FILE_TYPE,       VEK_POF_FILE_TYPE,
                  VEK_RPD_FILE_TYPE,        VEK_RIM_FILE_TYPE,       VEK_PERIPH_POF_FILE_TYPE,
                  VEK_PERIPH_RBF_FILE_TYPE, VEK_PERIPH_RPD_FILE_TYPE} |
    OUTPUTS_JTAG | OUTPUTS_UNDER_FLASH | OUTPUTS_HPS;
inline constexpr FILE_TYPE_SET OUTPUTS_INTERNAL =
    FILE_TYPE_SET{VEK_POF_FILE_TYPE, VEK_RPD_FILE_TYPE} | OUTPUTS_JTAG | OUTPUTS_UNDER_FLASH;

inline constexpr FAMILY_SET FLASH_PARALLEL{DEV_FAMILY_CFI_FLASH};
inline constexpr FAMILY_SET FLASH_LNKS{DEV_FAMILY_CFI_FLASH, DEV_FAMILY_SPECIAL_FLASH};
inline constexpr FAMILY_SET FLASH_INTERNAL{DEV_FAMILY_ONCHIP_FLASH};

// clang-format off
inline constexpr std::array MODE_TABLE{
    MODE_ROW{.mode = PGMIO_CONFIG_SCHEME_PS, .word = PGM_COMMON_XML_ENUM_PS, .combo_position = 3, .flash_families = FLASH_PARALLEL, .outputs = OUTPUTS_PASSIVE},
    MODE_ROW{.mode = PGMIO_CONFIG_SCHEME_PS_X2},
    MODE_ROW{.mode = PGMIO_CONFIG_SCHEME_PS_X4},
    MODE_ROW{.mode = PGMIO_CONFIG_SCHEME_PS_X8},
    MODE_ROW{.mode = PGMIO_CONFIG_SCHEME_PPA},
    MODE_ROW{.mode = PGMIO_CONFIG_SCHEME_PPS},
    MODE_ROW{.mode = PGMIO_CONFIG_SCHEME_FPP, .word = PGM_COMMON_XML_ENUM_FPP, .combo_position = 4, .flash_families = FLASH_PARALLEL, .outputs = OUTPUTS_PASSIVE},
    MODE_ROW{.mode = PGMIO_CONFIG_SCHEME_AS, .word = PGM_COMMON_XML_ENUM_ASX1, .combo_position = 1, .flash_families = FLASH_SERIAL, .outputs = OUTPUTS_ACTIVE_SERIAL},
    MODE_ROW{.mode = PGMIO_CONFIG_SCHEME_AP},
    MODE_ROW{.mode = PGMIO_CONFIG_SCHEME_AP_CASCADE},
    MODE_ROW{.mode = PGMIO_CONFIG_SCHEME_PP_X8},
    MODE_ROW{.mode = PGMIO_CONFIG_SCHEME_PP_X16},
    MODE_ROW{.mode = PGMIO_CONFIG_SCHEME_PP_X32},
    MODE_ROW{.mode = PGMIO_CONFIG_SCHEME_AS_X4, .word = PGM_COMMON_XML_ENUM_ASX4, .combo_position = 2, .flash_families = FLASH_SERIAL, .outputs = OUTPUTS_ACTIVE_SERIAL},
    MODE_ROW{.mode = PGMIO_CONFIG_SCHEME_INTERNAL, .word = PGM_COMMON_XML_ENUM_INTERNAL, .combo_position = 8, .flash_families = FLASH_INTERNAL, .outputs = OUTPUTS_INTERNAL},
    // What a file of the on-chip family holds; the document knows the internal mode alone.
    MODE_ROW{.mode = PGMIO_CONFIG_SCHEME_SINGLE_IMAGE, .word = PGM_COMMON_XML_ENUM_INTERNAL, .flash_families = FLASH_INTERNAL, .outputs = OUTPUTS_INTERNAL},
    MODE_ROW{.mode = PGMIO_CONFIG_SCHEME_SINGLE_IMAGE_ERAM, .word = PGM_COMMON_XML_ENUM_INTERNAL, .flash_families = FLASH_INTERNAL, .outputs = OUTPUTS_INTERNAL},
    MODE_ROW{.mode = PGMIO_CONFIG_SCHEME_SINGLE_COMPRESSED_IMAGE, .word = PGM_COMMON_XML_ENUM_INTERNAL, .flash_families = FLASH_INTERNAL, .outputs = OUTPUTS_INTERNAL},
    MODE_ROW{.mode = PGMIO_CONFIG_SCHEME_SINGLE_COMPRESSED_IMAGE_ERAM, .word = PGM_COMMON_XML_ENUM_INTERNAL, .flash_families = FLASH_INTERNAL, .outputs = OUTPUTS_INTERNAL},
    MODE_ROW{.mode = PGMIO_CONFIG_SCHEME_DUAL_COMPRESSED_IMAGES, .word = PGM_COMMON_XML_ENUM_INTERNAL, .flash_families = FLASH_INTERNAL, .outputs = OUTPUTS_INTERNAL},
    MODE_ROW{.mode = PGMIO_CONFIG_SCHEME_LNKS_X8, .word = PGM_COMMON_XML_ENUM_LNKSX8, .combo_position = 5, .flash_families = FLASH_LNKS, .outputs = OUTPUTS_LNKS},
    MODE_ROW{.mode = PGMIO_CONFIG_SCHEME_LNKS_X16, .word = PGM_COMMON_XML_ENUM_LNKSX16, .combo_position = 6, .flash_families = FLASH_LNKS, .outputs = OUTPUTS_LNKS},
    MODE_ROW{.mode = PGMIO_CONFIG_SCHEME_LNKS_X32, .word = PGM_COMMON_XML_ENUM_LNKSX32, .combo_position = 7, .flash_families = FLASH_LNKS, .outputs = OUTPUTS_LNKS},
    MODE_ROW{.mode = PGMIO_CONFIG_SCHEME_SDMMC_X4},
    MODE_ROW{.mode = PGMIO_CONFIG_SCHEME_SDMMC_X8},
    MODE_ROW{.mode = PGMIO_CONFIG_SCHEME_ILLEGAL},
};
// clang-format on

static_assert(MODE_TABLE.size() == PGMIO_CONFIG_SCHEME_STR.size());

/// The row of a mode; null for a number above PGMIO_CONFIG_SCHEME_ILLEGAL.
constexpr const MODE_ROW* find_mode_row(PGMIO_CONFIG_SCHEME mode)
{
    return mode < MODE_TABLE.size() ? &MODE_TABLE[mode] : nullptr;
}

#endif
