#ifndef PARAM_ROWS_INPUT_H
#define PARAM_ROWS_INPUT_H

#include "param_row.h"

#include <array>

// The parameters of input files: raw files, assignments, settings, and the files of a bitstream.
// A parameter that partial reconfiguration alone knows goes with partial bitstreams and their output.

inline constexpr FAMILY_SET FAMILIES_SECURE = families_with(TRAIT_SIGNING);
inline constexpr FAMILY_SET FAMILIES_ENCRYPTION = families_with(TRAIT_ENCRYPTION);
inline constexpr FAMILY_SET FAMILIES_FUSE_OPTIONS = families_with(TRAIT_FUSE_OPTIONS);
/// The fuse options are there in these devices too, though nobody supports their use.
inline constexpr FAMILY_SET FAMILIES_FUSE_OPTIONS_HIDDEN =
    families_with(TRAIT_NON_VOLATILE_KEY) - FAMILIES_FUSE_OPTIONS;

// clang-format off
inline constexpr std::array PARAM_ROWS_INPUT{
    PARAM_ROW{.param = VEK_CMD_PARAM_INVALID, .description = "No parameter."},

    // raw_file
    PARAM_ROW{.param = VEK_CMD_PARAM_RAW_FILE_RAW_FILE, .description = "Path of the raw data file."},
    PARAM_ROW{.param = VEK_CMD_PARAM_RAW_FILE_BITSWAP, .description = "Reverses the order of the bits in each byte of the raw data.",
              .enabled = true, .inputs = INPUTS_RAW},
    PARAM_ROW{.param = VEK_CMD_PARAM_RAW_FILE_TYPE, .description = "Format of the raw data file: HEX, RBF, PUF or WKEY."},
    PARAM_ROW{.param = VEK_CMD_PARAM_RAW_FILE_ID, .description = "Identifier by which assignments name the raw data file."},

    // assignment
    PARAM_ROW{.param = VEK_CMD_PARAM_ASSIGNMENT_RAW_FILE_ID, .description = "Identifier of a raw data file that the partition holds."},
    PARAM_ROW{.param = VEK_CMD_PARAM_ASSIGNMENT_RAW_FILE_ID_ADDR_MODE, .description = "How the addresses of a HEX file are read: absolute or relative to the partition."},
    PARAM_ROW{.param = VEK_CMD_PARAM_ASSIGNMENT_RAW_FILE_ID_ADDR_OFFSET, .description = "Offset that is added to the addresses of the raw data file."},
    PARAM_ROW{.param = VEK_CMD_PARAM_ASSIGNMENT_BITSTREAM_ID, .description = "Identifier of the bitstream that the partition holds."},
    PARAM_ROW{.param = VEK_CMD_PARAM_ASSIGNMENT_BITSTREAM_ID_SECTION, .description = "Section of the bitstream that the partition holds."},
    PARAM_ROW{.param = VEK_CMD_PARAM_ASSIGNMENT_PAGE, .description = "Page through which the device finds the image of the partition."},
    PARAM_ROW{.param = VEK_CMD_PARAM_ASSIGNMENT_PARTITION_ID, .description = "Name of the partition to which inputs are assigned."},

    // settings
    PARAM_ROW{.param = VEK_CMD_PARAM_SETTINGS_CUSTOM_DB_DIR, .description = "Directory with flash devices of your own."},
    PARAM_ROW{.param = VEK_CMD_PARAM_SETTINGS_MODE, .description = "Configuration mode of the device."},

    // bitstream: general
    PARAM_ROW{.param = VEK_CMD_PARAM_BITSTREAM_ID, .description = "Identifier by which outputs and assignments name the bitstream."},
    PARAM_ROW{.param = VEK_CMD_PARAM_BITSTREAM_PATH, .description = "Path of a file of the bitstream."},
    PARAM_ROW{.param = VEK_CMD_PARAM_BITSTREAM_PATH_COMPRESSION, .description = "Compresses the configuration data, which the device expands while it loads.",
              .enabled = true, .families = families_with(TRAIT_COMPRESSION), .inputs = INPUTS_BITSTREAM,
              .excludes = {VEK_CMD_PARAM_BITSTREAM_PATH_ENHANCED_COMPRESSION}},
    PARAM_ROW{.param = VEK_CMD_PARAM_BITSTREAM_PATH_ENHANCED_COMPRESSION, .description = "Compresses the configuration data further than the plain compression, at a slower start.",
              .enabled = true, .families = families_with(TRAIT_ENHANCED_COMPRESSION), .inputs = INPUTS_BITSTREAM,
              .excludes = {VEK_CMD_PARAM_BITSTREAM_PATH_COMPRESSION}},
    PARAM_ROW{.param = VEK_CMD_PARAM_BITSTREAM_PATH_DECOMPRESSION_DURING_PR, .description = "Lets the device expand compressed data while it reconfigures a region.",
              .enabled = true, .families = families_with(TRAIT_PARTIAL_RECONFIGURATION | TRAIT_COMPRESSION),
              .inputs = INPUTS_PARTIAL, .outputs = {VEK_PRRBF_FILE_TYPE},
              .parents = {VEK_CMD_PARAM_BITSTREAM_PATH_ENHANCED_COMPRESSION, VEK_CMD_PARAM_BITSTREAM_PATH_COMPRESSION}},
    PARAM_ROW{.param = VEK_CMD_PARAM_BITSTREAM_PATH_RSU_UPGRADE, .description = "Makes an image that replaces the factory image of a device in the field.",
              .enabled = true, .families = {DEV_FAMILY_HEMATITE, DEV_FAMILY_ZIRCON}, .hidden_families = {DEV_FAMILY_FELDSPAR},
              .inputs = INPUTS_COMPILED, .outputs = {VEK_RPD_FILE_TYPE}},

    // bitstream: processor
    PARAM_ROW{.param = VEK_CMD_PARAM_BITSTREAM_PATH_HPS_PATH, .description = "First boot loader of the processor, which becomes part of the bitstream.",
              .enabled = true, .families = families_with(TRAIT_HPS_BOOTLOADER), .hidden_families = {DEV_FAMILY_HEMATITE},
              .inputs = INPUTS_COMPILED},

    // bitstream: signing
    PARAM_ROW{.param = VEK_CMD_PARAM_BITSTREAM_PATH_SIGNING, .description = "Signs the bitstream, so that the device loads it only with the right public key.",
              .enabled = true, .families = FAMILIES_SECURE, .inputs = INPUTS_BITSTREAM},
    PARAM_ROW{.param = VEK_CMD_PARAM_BITSTREAM_PATH_SIGNING_PEM_FILE, .description = "Private key in PEM format with which the bitstream is signed.",
              .enabled = true, .families = FAMILIES_SECURE, .inputs = INPUTS_BITSTREAM,
              .parents = {VEK_CMD_PARAM_BITSTREAM_PATH_SIGNING}, .parent_values = {PGM_COMMON_XML_ENUM_ON}},
    PARAM_ROW{.param = VEK_CMD_PARAM_BITSTREAM_PATH_FW_SOURCE, .description = "Firmware that the maker of the device and you have both signed.",
              .enabled = true, .families = FAMILIES_SECURE, .inputs = INPUTS_COMPILED,
              .parents = {VEK_CMD_PARAM_BITSTREAM_PATH_SIGNING}, .parent_values = {PGM_COMMON_XML_ENUM_ON}},

    // bitstream: security
    PARAM_ROW{.param = VEK_CMD_PARAM_BITSTREAM_PATH_ENCRYPTION, .description = "Encrypts the configuration data with the key of the device.",
              .enabled = true, .families = FAMILIES_ENCRYPTION, .inputs = INPUTS_BITSTREAM},
    PARAM_ROW{.param = VEK_CMD_PARAM_BITSTREAM_PATH_DECRYPTION_DURING_PR, .description = "Lets the device decrypt data while it reconfigures a region.",
              .enabled = true, .families = families_with(TRAIT_ENCRYPTION | TRAIT_PARTIAL_RECONFIGURATION),
              .inputs = INPUTS_PARTIAL, .outputs = {VEK_PRRBF_FILE_TYPE},
              .parents = {VEK_CMD_PARAM_BITSTREAM_PATH_ENCRYPTION}},
    PARAM_ROW{.param = VEK_CMD_PARAM_BITSTREAM_PATH_NON_VOLATILE_KEY, .description = "Uses the key that fuses keep for good, not the one that a battery keeps.",
              .enabled = true, .families = families_with(TRAIT_NON_VOLATILE_KEY), .inputs = INPUTS_BITSTREAM,
              .parents = {VEK_CMD_PARAM_BITSTREAM_PATH_ENCRYPTION}},
    PARAM_ROW{.param = VEK_CMD_PARAM_BITSTREAM_PATH_EKP_FILE, .description = "File to be written with the data that programs the key into the device.",
              .enabled = true, .families = FAMILIES_ENCRYPTION, .inputs = INPUTS_COMPILED,
              .parents = {VEK_CMD_PARAM_BITSTREAM_PATH_ENCRYPTION}},
    PARAM_ROW{.param = VEK_CMD_PARAM_BITSTREAM_PATH_ELK_FILE, .description = "Encryption lock file, which encrypts without showing you the key.",
              .enabled = true, .families = FAMILIES_ENCRYPTION, .inputs = INPUTS_BITSTREAM,
              .parents = {VEK_CMD_PARAM_BITSTREAM_PATH_ENCRYPTION}, .excludes = {VEK_CMD_PARAM_BITSTREAM_PATH_KEY_FILE1}},
    PARAM_ROW{.param = VEK_CMD_PARAM_BITSTREAM_PATH_KEY_FILE1, .description = "Text file with named encryption keys.",
              .enabled = true, .families = FAMILIES_ENCRYPTION, .inputs = INPUTS_BITSTREAM,
              .parents = {VEK_CMD_PARAM_BITSTREAM_PATH_ENCRYPTION}, .excludes = {VEK_CMD_PARAM_BITSTREAM_PATH_ELK_FILE}},
    PARAM_ROW{.param = VEK_CMD_PARAM_BITSTREAM_PATH_KEY1, .description = "Name of the key that encrypts, from the key file or typed in.",
              .enabled = true, .families = FAMILIES_ENCRYPTION, .inputs = INPUTS_BITSTREAM,
              .parents = {VEK_CMD_PARAM_BITSTREAM_PATH_ENCRYPTION}},
    PARAM_ROW{.param = VEK_CMD_PARAM_BITSTREAM_PATH_SECURITY_OPT_EPOF_ONLY, .description = "The device loads encrypted and authenticated images only.",
              .enabled = true, .families = FAMILIES_FUSE_OPTIONS, .hidden_families = FAMILIES_FUSE_OPTIONS_HIDDEN,
              .inputs = INPUTS_COMPILED, .parents = {VEK_CMD_PARAM_BITSTREAM_PATH_ENCRYPTION}},
    PARAM_ROW{.param = VEK_CMD_PARAM_BITSTREAM_PATH_SECURITY_OPT_NO_CONFIG, .description = "The device refuses a full configuration from outside.",
              .enabled = true, .families = FAMILIES_FUSE_OPTIONS, .hidden_families = FAMILIES_FUSE_OPTIONS_HIDDEN,
              .inputs = INPUTS_COMPILED, .parents = {VEK_CMD_PARAM_BITSTREAM_PATH_ENCRYPTION}},
    PARAM_ROW{.param = VEK_CMD_PARAM_BITSTREAM_PATH_SECURITY_OPT_NO_PR, .description = "The device refuses a partial reconfiguration from outside.",
              .enabled = true, .families = FAMILIES_FUSE_OPTIONS, .hidden_families = FAMILIES_FUSE_OPTIONS_HIDDEN,
              .inputs = INPUTS_COMPILED, .parents = {VEK_CMD_PARAM_BITSTREAM_PATH_ENCRYPTION}},
    PARAM_ROW{.param = VEK_CMD_PARAM_BITSTREAM_PATH_SECURITY_OPT_NO_JTAG_KEY, .description = "JTAG instructions that write or test a key are switched off.",
              .enabled = true, .families = FAMILIES_FUSE_OPTIONS, .hidden_families = FAMILIES_FUSE_OPTIONS_HIDDEN,
              .inputs = INPUTS_COMPILED, .parents = {VEK_CMD_PARAM_BITSTREAM_PATH_ENCRYPTION}},
    PARAM_ROW{.param = VEK_CMD_PARAM_BITSTREAM_PATH_SECURITY_OPT_NO_JTAG_EXT, .description = "JTAG instructions beyond the standard ones are switched off.",
              .enabled = true, .families = FAMILIES_FUSE_OPTIONS, .hidden_families = FAMILIES_FUSE_OPTIONS_HIDDEN,
              .inputs = INPUTS_COMPILED, .parents = {VEK_CMD_PARAM_BITSTREAM_PATH_ENCRYPTION}},
    PARAM_ROW{.param = VEK_CMD_PARAM_BITSTREAM_PATH_SECURITY_OPT_NO_JTAG, .description = "The JTAG pins of the device answer with BYPASS only.",
              .enabled = true, .families = FAMILIES_FUSE_OPTIONS, .hidden_families = FAMILIES_FUSE_OPTIONS_HIDDEN,
              .inputs = INPUTS_COMPILED, .parents = {VEK_CMD_PARAM_BITSTREAM_PATH_ENCRYPTION}},
    PARAM_ROW{.param = VEK_CMD_PARAM_BITSTREAM_PATH_SECURITY_OPT_NO_HPS_JTAG, .description = "The JTAG chain of the processor inside the device answers with BYPASS only.",
              .enabled = true, .families = families_with(TRAIT_FUSE_OPTIONS | TRAIT_HPS_BOOTLOADER),
              .inputs = INPUTS_COMPILED, .parents = {VEK_CMD_PARAM_BITSTREAM_PATH_ENCRYPTION}},
    PARAM_ROW{.param = VEK_CMD_PARAM_BITSTREAM_PATH_SECURITY_OPT_NO_OTP_KEY, .description = "The device no longer uses the key in its fuses.",
              .enabled = true, .families = FAMILIES_FUSE_OPTIONS, .hidden_families = FAMILIES_FUSE_OPTIONS_HIDDEN,
              .inputs = INPUTS_COMPILED, .parents = {VEK_CMD_PARAM_BITSTREAM_PATH_ENCRYPTION}},
    PARAM_ROW{.param = VEK_CMD_PARAM_BITSTREAM_PATH_SECURITY_OPT_NO_BATTERY_KEY, .description = "The device no longer uses the key that the battery keeps.",
              .enabled = true, .families = FAMILIES_FUSE_OPTIONS, .hidden_families = FAMILIES_FUSE_OPTIONS_HIDDEN,
              .inputs = INPUTS_COMPILED, .parents = {VEK_CMD_PARAM_BITSTREAM_PATH_ENCRYPTION}},
    PARAM_ROW{.param = VEK_CMD_PARAM_BITSTREAM_PATH_SECURITY_OPT_LOCK_BATTERY_KEY, .description = "The key that the battery keeps can no longer be changed.",
              .enabled = true, .families = FAMILIES_FUSE_OPTIONS, .hidden_families = FAMILIES_FUSE_OPTIONS_HIDDEN,
              .inputs = INPUTS_COMPILED, .parents = {VEK_CMD_PARAM_BITSTREAM_PATH_ENCRYPTION}},
    PARAM_ROW{.param = VEK_CMD_PARAM_BITSTREAM_PATH_SECURITY_OPT_SECURE, .description = "The device applies its remaining protections against probing.",
              .enabled = true, .families = FAMILIES_FUSE_OPTIONS, .hidden_families = FAMILIES_FUSE_OPTIONS_HIDDEN,
              .inputs = INPUTS_COMPILED, .parents = {VEK_CMD_PARAM_BITSTREAM_PATH_ENCRYPTION}},

    // bitstream: encryption of the signing families
    PARAM_ROW{.param = VEK_CMD_PARAM_BITSTREAM_PATH_FINALIZE_ENCRYPTION, .description = "Completes the encryption that the compiler has prepared in the bitstream.",
              .enabled = true, .families = FAMILIES_SECURE, .inputs = INPUTS_BITSTREAM,
              .parents = {VEK_CMD_PARAM_BITSTREAM_PATH_SIGNING}, .parent_values = {PGM_COMMON_XML_ENUM_ON}},
    PARAM_ROW{.param = VEK_CMD_PARAM_BITSTREAM_PATH_AEK_FILE, .description = "File with the AES key that completes the encryption.",
              .enabled = true, .families = FAMILIES_SECURE, .inputs = INPUTS_BITSTREAM,
              .parents = {VEK_CMD_PARAM_BITSTREAM_PATH_FINALIZE_ENCRYPTION}},

    // bitstream: for the command line only
    PARAM_ROW{.param = VEK_CMD_PARAM_BITSTREAM_PATH_KEY_STORAGE, .description = "Where the device keeps the key that decrypts the bitstream.", .families = FAMILIES_SECURE, .inputs = INPUTS_BITSTREAM},
    PARAM_ROW{.param = VEK_CMD_PARAM_BITSTREAM_PATH_KEY2, .description = "Name of a second key; the key of the device is mixed from both.", .families = FAMILIES_ENCRYPTION, .inputs = INPUTS_BITSTREAM,
              .parents = {VEK_CMD_PARAM_BITSTREAM_PATH_ENCRYPTION}},
    PARAM_ROW{.param = VEK_CMD_PARAM_BITSTREAM_PATH_KEY_FILE2, .description = "Text file with the second key, when it is not in the first one.", .families = FAMILIES_ENCRYPTION, .inputs = INPUTS_BITSTREAM,
              .parents = {VEK_CMD_PARAM_BITSTREAM_PATH_ENCRYPTION}},
    PARAM_ROW{.param = VEK_CMD_PARAM_BITSTREAM_PATH_SIGN_LATER, .description = "Leaves the bitstream unsigned and writes what is to be signed elsewhere.", .families = FAMILIES_SECURE, .inputs = INPUTS_BITSTREAM},
    PARAM_ROW{.param = VEK_CMD_PARAM_BITSTREAM_PATH_FINALIZE_ENCRYPTION_LATER, .description = "Leaves the encryption to be completed in a later run.", .families = FAMILIES_SECURE, .inputs = INPUTS_BITSTREAM},
    PARAM_ROW{.param = VEK_CMD_PARAM_BITSTREAM_PATH_SMSF_FILE, .description = "Sensitivity map file that goes with the bitstream.", .inputs = INPUTS_COMPILED},
    PARAM_ROW{.param = VEK_CMD_PARAM_BITSTREAM_PATH_PASSWORD, .description = "File whose first line is the password of the key files.", .families = FAMILIES_SECURE, .inputs = INPUTS_BITSTREAM},
    PARAM_ROW{.param = VEK_CMD_PARAM_BITSTREAM_PATH_RSU_VERSION, .description = "Version number of the update image.", .families = FAMILIES_SECURE, .inputs = INPUTS_COMPILED},
    PARAM_ROW{.param = VEK_CMD_PARAM_BITSTREAM_PATH_RSU_BOOT_INFO, .description = "Lets the firmware of the update image take the place of that in the boot information.", .families = FAMILIES_SECURE, .inputs = INPUTS_COMPILED},
    PARAM_ROW{.param = VEK_CMD_PARAM_BITSTREAM_PATH_APP_IMAGE, .description = "Application image that follows the factory image.", .families = FAMILIES_SECURE, .inputs = INPUTS_COMPILED},
    PARAM_ROW{.param = VEK_CMD_PARAM_BITSTREAM_PATH_APP_IMAGE_HPS_PATH, .description = "Boot loader that belongs to the application image.", .families = families_with(TRAIT_SIGNING | TRAIT_HPS_BOOTLOADER), .inputs = INPUTS_COMPILED},
    PARAM_ROW{.param = VEK_CMD_PARAM_BITSTREAM_PATH_APP_IMAGE_ONLY, .description = "Writes the application image without the factory image.", .families = FAMILIES_SECURE, .inputs = INPUTS_COMPILED},
    PARAM_ROW{.param = VEK_CMD_PARAM_BITSTREAM_PATH_FIRMWARE_ONLY, .description = "Writes the firmware of the bitstream without its design.", .families = FAMILIES_SECURE, .inputs = INPUTS_COMPILED},
    PARAM_ROW{.param = VEK_CMD_PARAM_BITSTREAM_PATH_SKC_FILE, .description = "Signature chain with which the bitstream is signed.", .families = FAMILIES_SECURE, .inputs = INPUTS_BITSTREAM},
    PARAM_ROW{.param = VEK_CMD_PARAM_BITSTREAM_PATH_SEU_RECOVERY, .description = "Adds the data from which the device repairs bits that radiation has flipped.", .families = FAMILIES_SECURE, .inputs = INPUTS_COMPILED},
};
// clang-format on

#endif
