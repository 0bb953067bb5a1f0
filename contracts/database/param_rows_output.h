#ifndef PARAM_ROWS_OUTPUT_H
#define PARAM_ROWS_OUTPUT_H

#include "param_row.h"

#include <array>

// The parameters of output files and of their secondary files.

inline constexpr FILE_TYPE_SET OUTPUTS_PROVISION{VEK_NON_JTAG_PROVISION_RBF_FILE_TYPE};
inline constexpr FILE_TYPE_SET OUTPUTS_CERTIFICATE{VEK_CCERT_FILE_TYPE};
inline constexpr FILE_TYPE_SET OUTPUTS_RAW_FLASH{VEK_RPD_FILE_TYPE, VEK_PERIPH_RPD_FILE_TYPE};
inline constexpr FILE_TYPE_SET OUTPUTS_SECONDARY_RAW{VEK_SEC_RPD_FILE_TYPE};

// clang-format off
inline constexpr std::array PARAM_ROWS_OUTPUT{
    PARAM_ROW{.param = VEK_CMD_PARAM_OUTPUT_FILE_TYPE, .description = "Type of the output file."},
    PARAM_ROW{.param = VEK_CMD_PARAM_OUTPUT_FILE_NAME, .description = "Name of the output file without suffix and extension."},
    PARAM_ROW{.param = VEK_CMD_PARAM_OUTPUT_FILE_DIRECTORY, .description = "Directory into which the output file is written."},
    PARAM_ROW{.param = VEK_CMD_PARAM_OUTPUT_FILE_DEVICE, .description = "Identifier of the flash device for which the output file is made."},
    PARAM_ROW{.param = VEK_CMD_PARAM_OUTPUT_FILE_SUBTYPE, .description = "Variant of the output file, for types that have variants."},
    PARAM_ROW{.param = VEK_CMD_PARAM_OUTPUT_FILE_CVP, .description = "The output file belongs to a configuration over the bus."},
    PARAM_ROW{.param = VEK_CMD_PARAM_OUTPUT_FILE_HPS, .description = "The output file belongs to a configuration that starts the processor first."},
    PARAM_ROW{.param = VEK_CMD_PARAM_OUTPUT_FILE_RSU_BOOT, .description = "The output file holds the boot data of a system that is updated in the field."},
    PARAM_ROW{.param = VEK_CMD_PARAM_OUTPUT_FILE_ALLOW_DEVICE_STATE, .description = "State of the device in which the output file may be used."},
    PARAM_ROW{.param = VEK_CMD_PARAM_OUTPUT_FILE_FLASH_DEVICE_ID, .description = "Identifier of a flash device whose content the output file holds."},
    PARAM_ROW{.param = VEK_CMD_PARAM_OUTPUT_FILE_BITSTREAM_ID, .description = "Identifier of a bitstream that the output file holds."},
    PARAM_ROW{.param = VEK_CMD_PARAM_OUTPUT_FILE_BITSTREAM_ID_SECTION, .description = "Section of the bitstream that the output file holds."},

    // Options of an output file.
    PARAM_ROW{.param = VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_OPERATION, .description = "What the vectors do: program, verify, or blank-check and program.",
              .enabled = true, .outputs = {VEK_SVF_FILE_TYPE}},
    PARAM_ROW{.param = VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_FREQUENCY, .description = "Frequency of the test clock TCK, a number with its unit.",
              .enabled = true, .outputs = {VEK_SVF_FILE_TYPE}},
    PARAM_ROW{.param = VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_VOLTAGE, .description = "Supply voltage of the board on which the vectors are played.",
              .enabled = true, .outputs = {VEK_SVF_FILE_TYPE}},
    PARAM_ROW{.param = VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_USE_RELATIVE, .description = "Writes from the first used byte to the last one, not the whole flash device.",
              .enabled = true, .outputs = OUTPUTS_RAW_FLASH},
    PARAM_ROW{.param = VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_S_ADDR, .description = "Address of the first byte of the file, hexadecimal.",
              .enabled = true, .outputs = OUTPUTS_RAW_FLASH | FILE_TYPE_SET{VEK_HEX_FILE_TYPE}},
    PARAM_ROW{.param = VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_DIRECTION, .description = "Whether the addresses count up or down from the start address.",
              .enabled = true, .outputs = {VEK_HEX_FILE_TYPE}},
    PARAM_ROW{.param = VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_BITSWAP, .description = "Reverses the order of the bits in each byte of the file.",
              .enabled = true, .outputs = OUTPUTS_RAW_FLASH},

    // Secondary files and their options.
    PARAM_ROW{.param = VEK_CMD_PARAM_OUTPUT_FILE_SECONDARY_FILE_TYPE, .description = "Type of the secondary file."},
    PARAM_ROW{.param = VEK_CMD_PARAM_OUTPUT_FILE_SECONDARY_FILE_NAME, .description = "Name of the secondary file without suffix and extension."},
    PARAM_ROW{.param = VEK_CMD_PARAM_OUTPUT_FILE_SECONDARY_FILE_FILE_OPTIONS_BITSWAP, .description = "Reverses the order of the bits in each byte of the secondary file.",
              .enabled = true, .outputs = OUTPUTS_SECONDARY_RAW},
    PARAM_ROW{.param = VEK_CMD_PARAM_OUTPUT_FILE_SECONDARY_FILE_FILE_OPTIONS_USE_RELATIVE, .description = "Writes the secondary file from the first used byte to the last one.", .outputs = OUTPUTS_SECONDARY_RAW},
    PARAM_ROW{.param = VEK_CMD_PARAM_OUTPUT_FILE_SECONDARY_FILE_FILE_OPTIONS_S_ADDR, .description = "Address of the first byte of the secondary file, hexadecimal.", .outputs = OUTPUTS_SECONDARY_RAW},
    PARAM_ROW{.param = VEK_CMD_PARAM_OUTPUT_FILE_SECONDARY_FILE_FILE_OPTIONS_DIRECTION, .description = "Whether the addresses of a secondary HEX file count up or down.", .outputs = {VEK_HEX_FILE_TYPE}},
    PARAM_ROW{.param = VEK_CMD_PARAM_OUTPUT_FILE_SECONDARY_FILE_FILE_OPTIONS_FREQUENCY, .description = "Frequency of the test clock for a secondary vector file.", .outputs = {VEK_SVF_FILE_TYPE}},
    PARAM_ROW{.param = VEK_CMD_PARAM_OUTPUT_FILE_SECONDARY_FILE_FILE_OPTIONS_VOLTAGE, .description = "Supply voltage for a secondary vector file.", .outputs = {VEK_SVF_FILE_TYPE}},
    PARAM_ROW{.param = VEK_CMD_PARAM_OUTPUT_FILE_SECONDARY_FILE_FILE_OPTIONS_OPERATION, .description = "What a secondary vector file does with the device.", .outputs = {VEK_SVF_FILE_TYPE}},

    // Provisioning files.
    PARAM_ROW{.param = VEK_CMD_PARAM_OUTPUT_FILE_PROVISION_OPTIONS_KEY_STORAGE, .description = "Where provisioning puts the encryption key.", .outputs = OUTPUTS_PROVISION},
    PARAM_ROW{.param = VEK_CMD_PARAM_OUTPUT_FILE_PROVISION_OPTIONS_SKC_FILE, .description = "Signature chain whose root key is provisioned.", .outputs = OUTPUTS_PROVISION},
    PARAM_ROW{.param = VEK_CMD_PARAM_OUTPUT_FILE_PROVISION_OPTIONS_CCERT_FILE, .description = "Compact certificate that is carried out while provisioning.", .outputs = OUTPUTS_PROVISION},
    PARAM_ROW{.param = VEK_CMD_PARAM_OUTPUT_FILE_PROVISION_OPTIONS_FUSE_FILE, .description = "File that says which fuses to blow.", .outputs = OUTPUTS_PROVISION},
    PARAM_ROW{.param = VEK_CMD_PARAM_OUTPUT_FILE_PROVISION_OPTIONS_NON_VOLATILE_KEY, .description = "Provisions for good, by fuses, and not until the next loss of power.", .outputs = OUTPUTS_PROVISION},
    PARAM_ROW{.param = VEK_CMD_PARAM_OUTPUT_FILE_PROVISION_OPTIONS_FW_SOURCE, .description = "Firmware with which the device is provisioned.", .outputs = OUTPUTS_PROVISION},
    PARAM_ROW{.param = VEK_CMD_PARAM_OUTPUT_FILE_PROVISION_OPTIONS_AEK_FILE, .description = "File with the AES key to be provisioned.", .outputs = OUTPUTS_PROVISION},
    PARAM_ROW{.param = VEK_CMD_PARAM_OUTPUT_FILE_PROVISION_OPTIONS_SERVICE_ROOT_KEY, .description = "Root key of the provisioning service.", .outputs = OUTPUTS_PROVISION},
    PARAM_ROW{.param = VEK_CMD_PARAM_OUTPUT_FILE_PROVISION_OPTIONS_PASSWORD, .description = "File whose first line is the password of the provisioned key.", .outputs = OUTPUTS_PROVISION},

    // Compact certificates.
    PARAM_ROW{.param = VEK_CMD_PARAM_OUTPUT_FILE_CCERT_OPTIONS_CCERT_TYPE, .description = "What the certificate orders the device to do.", .outputs = OUTPUTS_CERTIFICATE},
    PARAM_ROW{.param = VEK_CMD_PARAM_OUTPUT_FILE_CCERT_OPTIONS_COUNTER_VALUE, .description = "Value to which the certificate raises a counter.", .outputs = OUTPUTS_CERTIFICATE},
    PARAM_ROW{.param = VEK_CMD_PARAM_OUTPUT_FILE_CCERT_OPTIONS_CANCEL_KEY, .description = "Number of the key that the certificate cancels.", .outputs = OUTPUTS_CERTIFICATE},
    PARAM_ROW{.param = VEK_CMD_PARAM_OUTPUT_FILE_CCERT_OPTIONS_SIGNING_SKC_FILE, .description = "Signature chain with which the certificate is signed.", .outputs = OUTPUTS_CERTIFICATE},
    PARAM_ROW{.param = VEK_CMD_PARAM_OUTPUT_FILE_CCERT_OPTIONS_SIGNING_PEM_FILE, .description = "Private key with which the certificate is signed.", .outputs = OUTPUTS_CERTIFICATE},
    PARAM_ROW{.param = VEK_CMD_PARAM_OUTPUT_FILE_CCERT_OPTIONS_IV, .description = "File with the initial vector of the wrapped key.", .outputs = OUTPUTS_CERTIFICATE},
    PARAM_ROW{.param = VEK_CMD_PARAM_OUTPUT_FILE_CCERT_OPTIONS_AEK_FILE, .description = "File with the AES key that the certificate carries.", .outputs = OUTPUTS_CERTIFICATE},
    PARAM_ROW{.param = VEK_CMD_PARAM_OUTPUT_FILE_CCERT_OPTIONS_PASSWORD, .description = "File whose first line is the password of the certificate's key.", .outputs = OUTPUTS_CERTIFICATE},
};
// clang-format on

#endif
