#ifndef VEK_FILE_TYPE_H
#define VEK_FILE_TYPE_H

#include <cstdint>

/// Output file types. Masks have one bit for each, so no value may exceed 31.
enum VEK_FILE_TYPE : std::uint32_t {
    VEK_RBF_FILE_TYPE = 0,
    VEK_TTF_FILE_TYPE = 1,
    VEK_HEX_FILE_TYPE = 2,
    VEK_JIC_FILE_TYPE = 3,
    VEK_POF_FILE_TYPE = 4,
    VEK_PRRBF_FILE_TYPE = 5,
    VEK_CVP_CORE_RBF_FILE_TYPE = 6,
    VEK_HPS_CORE_RBF_FILE_TYPE = 7,
    VEK_RPD_FILE_TYPE = 8,
    VEK_MAP_FILE_TYPE = 9,
    VEK_JAM_FILE_TYPE = 10,
    VEK_JBC_FILE_TYPE = 11,
    VEK_EKP_FILE_TYPE = 12,
    VEK_QSPI_HELPER_RBF_FILE_TYPE = 13,
    VEK_CVP_GROUP_FILE_TYPE = 14,
    VEK_HPS_GROUP_FILE_TYPE = 15,
    VEK_PERIPH_JIC_FILE_TYPE = 16,
    VEK_PERIPH_POF_FILE_TYPE = 17,
    VEK_PERIPH_RBF_FILE_TYPE = 18,
    VEK_HELPER_RBF_FILE_TYPE = 19,
    VEK_HELPER_RBF_CMD_FILE_TYPE = 20,
    VEK_SEC_RPD_FILE_TYPE = 21,
    VEK_SOF_FILE_TYPE = 22,
    VEK_PUF_FILE_TYPE = 23,
    VEK_SVF_FILE_TYPE = 24,
    VEK_WKEY_FILE_TYPE = 25,
    VEK_PERIPH_RPD_FILE_TYPE = 26,
    VEK_CCERT_FILE_TYPE = 27,
    VEK_NON_JTAG_PROVISION_RBF_FILE_TYPE = 28,
    VEK_RIM_FILE_TYPE = 29,
    VEK_INVALID_FILE_TYPE = 32,
};

/// Kinds of input that an output type takes. Types can be made in one setup when they have one in common.
enum VEK_FILE_CATEGORY : std::uint32_t {
    VEK_FILE_CATEGORY_BITSTREAM = 0, ///< made from bitstreams
    VEK_FILE_CATEGORY_FLASH = 1,     ///< made from a flash device
    VEK_FILE_CATEGORY_SIGNED_SOF = 2,
    VEK_FILE_CATEGORY_PUF = 3,
    VEK_FILE_CATEGORY_WRAPPED_KEY = 4,
    VEK_FILE_CATEGORY_CERTIFICATE = 5,
    VEK_FILE_CATEGORY_QSPI_HELPER = 6,
    VEK_FILE_CATEGORY_HELPER = 7,
    VEK_FILE_CATEGORY_HELPER_COMMAND = 8,
    VEK_FILE_CATEGORY_PROVISIONING = 9,
    VEK_FILE_CATEGORY_RAW_FLASH = 13, ///< made from a flash device, as plain bytes
    VEK_FILE_CATEGORY_PERIPHERY = 14, ///< the group of a split configuration, made from a flash device
};

#endif
