#ifndef FILE_TYPE_TABLE_H
#define FILE_TYPE_TABLE_H

#include "enum_set.h"
#include "family_table.h"
#include "fio_types.h"
#include "pgm_common_xml_enum.h"
#include "vek_file_type.h"

#include <array>

using FILE_TYPE_SET = ENUM_SET<VEK_FILE_TYPE, 32>;
using CATEGORY_SET = ENUM_SET<VEK_FILE_CATEGORY, 32>;
using INPUT_SET = ENUM_SET<FIO_FILE_TYPE, 256>;

/// One output file type. What a row leaves out is false or empty.
struct FILE_TYPE_ROW {
    VEK_FILE_TYPE type;
    PGM_COMMON_XML_ENUM word; ///< name in the document
    const char* description;  ///< text of the row in the tree, and its sort key
    const char* tooltip;
    bool enabled = false;
    bool cmd_only = false;
    bool secondary = false;
    bool virtual_type = false;
    bool has_option = false;
    FIO_EXTENSION_TYPE extension = FIO_INVALID_EXTENSION;
    const char* suffix = "";
    const char* child_suffix = "";
    FILE_TYPE_SET secondary_types{};
    bool flash_loader = false;    ///< a flash loader device must be chosen
    bool default_checked = false; ///< follows the tick of its parent
    FAMILY_SET excluded_families{};
    CATEGORY_SET categories{};
    INPUT_SET inputs{};
    FAMILY_SET flash_families{}; ///< where the file can go; empty when it goes to no flash device
};

inline constexpr INPUT_SET INPUTS_COMPILED{FIO_SOF_FILE};
inline constexpr INPUT_SET INPUTS_PARTIAL{FIO_PMSF_FILE};
inline constexpr INPUT_SET INPUTS_BITSTREAM{FIO_SOF_FILE, FIO_PMSF_FILE};
inline constexpr INPUT_SET INPUTS_RAW{FIO_HEX_FILE, FIO_RBF_FILE, FIO_BIN_FILE};
inline constexpr INPUT_SET INPUTS_FLASH =
    INPUTS_COMPILED | INPUTS_RAW | INPUT_SET{FIO_PUF_FILE, FIO_WKEY_FILE};

inline constexpr FAMILY_SET FLASH_SERIAL{DEV_FAMILY_ASC_SERIAL, DEV_FAMILY_SERIAL_A, DEV_FAMILY_SERIAL_B,
                                         DEV_FAMILY_SPECIAL_FLASH};
inline constexpr FAMILY_SET FLASH_EXTERNAL = FLASH_SERIAL | FAMILY_SET{DEV_FAMILY_CFI_FLASH};
inline constexpr FAMILY_SET FLASH_ANY = FLASH_EXTERNAL | FAMILY_SET{DEV_FAMILY_ONCHIP_FLASH};

inline constexpr FILE_TYPE_SET PERIPHERY_TYPES{VEK_PERIPH_JIC_FILE_TYPE, VEK_PERIPH_POF_FILE_TYPE,
                                               VEK_PERIPH_RBF_FILE_TYPE, VEK_PERIPH_RPD_FILE_TYPE};

// clang-format off
inline constexpr std::array FILE_TYPE_TABLE{
    // Made from bitstreams.
    FILE_TYPE_ROW{
        .type = VEK_RBF_FILE_TYPE, .word = PGM_COMMON_XML_ENUM_RBF,
        .description = "Raw Binary File (.rbf)",
        .tooltip = "The configuration stream as plain bytes, for a processor that configures the device.",
        .enabled = true, .extension = FIO_EXT_RBF,
        .categories = {VEK_FILE_CATEGORY_BITSTREAM}, .inputs = INPUTS_COMPILED},
    FILE_TYPE_ROW{
        .type = VEK_TTF_FILE_TYPE, .word = PGM_COMMON_XML_ENUM_TTF,
        .description = "Tabular Text File (.ttf)",
        .tooltip = "The configuration stream as decimal numbers separated by commas, to be built into a program.",
        .enabled = true, .extension = FIO_EXT_TTF,
        .categories = {VEK_FILE_CATEGORY_BITSTREAM}, .inputs = INPUTS_COMPILED},
    FILE_TYPE_ROW{
        .type = VEK_HEX_FILE_TYPE, .word = PGM_COMMON_XML_ENUM_HEX,
        .description = "Hexadecimal File (.hex)",
        .tooltip = "The configuration stream in Intel HEX format, from a start address that you choose.",
        .enabled = true, .has_option = true, .extension = FIO_EXT_HEX,
        .categories = {VEK_FILE_CATEGORY_BITSTREAM}, .inputs = INPUTS_COMPILED},
    FILE_TYPE_ROW{
        .type = VEK_PRRBF_FILE_TYPE, .word = PGM_COMMON_XML_ENUM_PRRBF,
        .description = "Partial Reconfiguration Raw Binary File (.prrbf)",
        .tooltip = "The stream that replaces one region of a running device, made from a partial bitstream.",
        .enabled = true, .extension = FIO_EXT_PRRBF,
        .excluded_families = families_without(TRAIT_PARTIAL_RECONFIGURATION),
        .categories = {VEK_FILE_CATEGORY_BITSTREAM}, .inputs = INPUTS_PARTIAL},
    FILE_TYPE_ROW{
        .type = VEK_SVF_FILE_TYPE, .word = PGM_COMMON_XML_ENUM_SVF,
        .description = "Serial Vector Format File (.svf)",
        .tooltip = "JTAG vectors that any test system can play to program or verify the device.",
        .enabled = true, .has_option = true, .extension = FIO_EXT_SVF,
        .categories = {VEK_FILE_CATEGORY_BITSTREAM}, .inputs = INPUTS_COMPILED},
    FILE_TYPE_ROW{
        .type = VEK_JAM_FILE_TYPE, .word = PGM_COMMON_XML_ENUM_JAM,
        .description = "JEDEC STAPL Format File (.jam)",
        .tooltip = "A readable JTAG program that a STAPL player runs to program or verify the device.",
        .enabled = true, .extension = FIO_EXT_JAM,
        .categories = {VEK_FILE_CATEGORY_BITSTREAM}, .inputs = INPUTS_COMPILED},
    FILE_TYPE_ROW{
        .type = VEK_JBC_FILE_TYPE, .word = PGM_COMMON_XML_ENUM_JBC,
        .description = "JTAG Byte Code File (.jbc)",
        .tooltip = "The JTAG program in a compact binary form, for players on small processors.",
        .enabled = true, .extension = FIO_EXT_JBC,
        .categories = {VEK_FILE_CATEGORY_BITSTREAM}, .inputs = INPUTS_COMPILED},
    FILE_TYPE_ROW{
        .type = VEK_EKP_FILE_TYPE, .word = PGM_COMMON_XML_ENUM_EKP,
        .description = "Encryption Key Programming File (.ekp)",
        .tooltip = "The data that programs the key of an encrypted bitstream into the device; keep it secret.",
        .enabled = true, .extension = FIO_EXT_EKP,
        .excluded_families = families_without(TRAIT_ENCRYPTION),
        .categories = {VEK_FILE_CATEGORY_BITSTREAM}, .inputs = INPUTS_COMPILED},
    FILE_TYPE_ROW{
        .type = VEK_RIM_FILE_TYPE, .word = PGM_COMMON_XML_ENUM_RIM,
        .description = "Reference Integrity Manifest (.rim)",
        .tooltip = "The measurements that a device reports for this configuration, for remote attestation.",
        .enabled = true, .extension = FIO_EXT_RIM,
        .excluded_families = families_without(TRAIT_SIGNING),
        .categories = {VEK_FILE_CATEGORY_BITSTREAM}, .inputs = INPUTS_COMPILED},

    // Made from a flash device.
    FILE_TYPE_ROW{
        .type = VEK_POF_FILE_TYPE, .word = PGM_COMMON_XML_ENUM_POF,
        .description = "Programmer Object File (.pof)",
        .tooltip = "The content of the flash device with its name and checksums, for a device programmer.",
        .enabled = true, .extension = FIO_EXT_POF,
        .secondary_types = {VEK_MAP_FILE_TYPE, VEK_SEC_RPD_FILE_TYPE},
        .categories = {VEK_FILE_CATEGORY_FLASH}, .inputs = INPUTS_FLASH, .flash_families = FLASH_ANY},
    FILE_TYPE_ROW{
        .type = VEK_JIC_FILE_TYPE, .word = PGM_COMMON_XML_ENUM_JIC,
        .description = "JTAG Indirect Configuration File (.jic)",
        .tooltip = "The content of the flash device with the flash loader through which JTAG reaches it.",
        .enabled = true, .extension = FIO_EXT_JIC,
        .secondary_types = {VEK_MAP_FILE_TYPE, VEK_SEC_RPD_FILE_TYPE}, .flash_loader = true,
        .categories = {VEK_FILE_CATEGORY_FLASH}, .inputs = INPUTS_FLASH, .flash_families = FLASH_SERIAL},
    FILE_TYPE_ROW{
        .type = VEK_RPD_FILE_TYPE, .word = PGM_COMMON_XML_ENUM_RPD,
        .description = "Raw Programming Data File (.rpd)",
        .tooltip = "The content of the flash device as plain bytes, for a third-party programmer.",
        .enabled = true, .has_option = true, .extension = FIO_EXT_RPD,
        .secondary_types = {VEK_MAP_FILE_TYPE},
        .categories = {VEK_FILE_CATEGORY_FLASH, VEK_FILE_CATEGORY_RAW_FLASH}, .inputs = INPUTS_FLASH,
        .flash_families = FLASH_ANY},

    // The two groups of a split configuration, and what stands under them.
    FILE_TYPE_ROW{
        .type = VEK_CVP_GROUP_FILE_TYPE, .word = PGM_COMMON_XML_ENUM_CVP_GROUP,
        .description = "Configuration via Protocol",
        .tooltip = "Files that configure the periphery first, while the core follows over the bus.",
        .enabled = true, .virtual_type = true, .child_suffix = ".periph", .secondary_types = PERIPHERY_TYPES,
        .excluded_families = families_without(TRAIT_CVP_GROUP), .categories = {VEK_FILE_CATEGORY_PERIPHERY},
        .inputs = INPUTS_FLASH, .flash_families = FLASH_EXTERNAL},
    FILE_TYPE_ROW{
        .type = VEK_HPS_GROUP_FILE_TYPE, .word = PGM_COMMON_XML_ENUM_HPS_GROUP,
        .description = "Processor First Configuration",
        .tooltip = "Files that start the processor first, which then loads the core.",
        .enabled = true, .virtual_type = true, .child_suffix = ".hps", .secondary_types = PERIPHERY_TYPES,
        .excluded_families = families_without(TRAIT_HPS_GROUP), .categories = {VEK_FILE_CATEGORY_PERIPHERY},
        .inputs = INPUTS_FLASH, .flash_families = FLASH_EXTERNAL},
    FILE_TYPE_ROW{
        .type = VEK_PERIPH_JIC_FILE_TYPE, .word = PGM_COMMON_XML_ENUM_PERIPH_JIC,
        .description = "Periphery JTAG Indirect Configuration File (.jic)",
        .tooltip = "The periphery image in a flash device, with the flash loader through which JTAG reaches it.",
        .enabled = true, .extension = FIO_EXT_JIC,
        .secondary_types = {VEK_MAP_FILE_TYPE, VEK_SEC_RPD_FILE_TYPE, VEK_CVP_CORE_RBF_FILE_TYPE, VEK_HPS_CORE_RBF_FILE_TYPE},
        .flash_loader = true,
        .categories = {VEK_FILE_CATEGORY_PERIPHERY}, .inputs = INPUTS_FLASH, .flash_families = FLASH_SERIAL},
    FILE_TYPE_ROW{
        .type = VEK_PERIPH_POF_FILE_TYPE, .word = PGM_COMMON_XML_ENUM_PERIPH_POF,
        .description = "Periphery Programmer Object File (.pof)",
        .tooltip = "The periphery image in a flash device, for a device programmer.",
        .enabled = true, .extension = FIO_EXT_POF,
        .secondary_types = {VEK_MAP_FILE_TYPE, VEK_SEC_RPD_FILE_TYPE, VEK_CVP_CORE_RBF_FILE_TYPE, VEK_HPS_CORE_RBF_FILE_TYPE},
        .default_checked = true,
        .categories = {VEK_FILE_CATEGORY_PERIPHERY}, .inputs = INPUTS_FLASH, .flash_families = FLASH_EXTERNAL},
    // Its inputs are bitstreams, so it does not go together with its siblings that take a flash device.
    FILE_TYPE_ROW{
        .type = VEK_PERIPH_RBF_FILE_TYPE, .word = PGM_COMMON_XML_ENUM_PERIPH_RBF,
        .description = "Periphery Raw Binary File (.rbf)",
        .tooltip = "The periphery image as plain bytes, for a processor that configures the device.",
        .enabled = true, .extension = FIO_EXT_RBF,
        .secondary_types = {VEK_CVP_CORE_RBF_FILE_TYPE, VEK_HPS_CORE_RBF_FILE_TYPE},
        .categories = {VEK_FILE_CATEGORY_BITSTREAM}, .inputs = INPUTS_COMPILED},
    FILE_TYPE_ROW{
        .type = VEK_PERIPH_RPD_FILE_TYPE, .word = PGM_COMMON_XML_ENUM_PERIPH_RPD,
        .description = "Periphery Raw Programming Data File (.rpd)",
        .tooltip = "The periphery image in a flash device as plain bytes, for a third-party programmer.",
        .enabled = true, .has_option = true, .extension = FIO_EXT_RPD,
        .secondary_types = {VEK_MAP_FILE_TYPE, VEK_CVP_CORE_RBF_FILE_TYPE, VEK_HPS_CORE_RBF_FILE_TYPE},
        .categories = {VEK_FILE_CATEGORY_PERIPHERY}, .inputs = INPUTS_FLASH, .flash_families = FLASH_EXTERNAL},

    // Secondary files.
    FILE_TYPE_ROW{
        .type = VEK_MAP_FILE_TYPE, .word = PGM_COMMON_XML_ENUM_MAP,
        .description = "Memory Map File (.map)",
        .tooltip = "A table of the flash layout: partitions with their addresses, sizes, files and checksums.",
        .enabled = true, .secondary = true, .extension = FIO_EXT_MAP, .default_checked = true,
        .categories = {VEK_FILE_CATEGORY_FLASH, VEK_FILE_CATEGORY_RAW_FLASH, VEK_FILE_CATEGORY_PERIPHERY},
        .inputs = INPUTS_FLASH, .flash_families = FLASH_ANY},
    FILE_TYPE_ROW{
        .type = VEK_SEC_RPD_FILE_TYPE, .word = PGM_COMMON_XML_ENUM_SEC_RPD,
        .description = "Secondary Raw Programming Data File (.rpd)",
        .tooltip = "The same flash content as plain bytes, beside the file above.",
        .enabled = true, .secondary = true, .has_option = true, .extension = FIO_EXT_RPD,
        .categories = {VEK_FILE_CATEGORY_FLASH, VEK_FILE_CATEGORY_PERIPHERY},
        .inputs = INPUTS_FLASH, .flash_families = FLASH_ANY},
    FILE_TYPE_ROW{
        .type = VEK_CVP_CORE_RBF_FILE_TYPE, .word = PGM_COMMON_XML_ENUM_CVP_CORE_RBF,
        .description = "Core Raw Binary File for Protocol (.rbf)",
        .tooltip = "The core image that follows the periphery over the bus.",
        .enabled = true, .secondary = true, .extension = FIO_EXT_RBF, .default_checked = true,
        .excluded_families = families_without(TRAIT_CVP_GROUP),
        .categories = {VEK_FILE_CATEGORY_BITSTREAM, VEK_FILE_CATEGORY_PERIPHERY},
        .inputs = INPUTS_COMPILED, .flash_families = FLASH_EXTERNAL},
    FILE_TYPE_ROW{
        .type = VEK_HPS_CORE_RBF_FILE_TYPE, .word = PGM_COMMON_XML_ENUM_HPS_CORE_RBF,
        .description = "Core Raw Binary File for Processor (.rbf)",
        .tooltip = "The core image that the processor loads after its own start.",
        .enabled = true, .secondary = true, .extension = FIO_EXT_RBF, .default_checked = true,
        .excluded_families = families_without(TRAIT_HPS_GROUP),
        .categories = {VEK_FILE_CATEGORY_BITSTREAM, VEK_FILE_CATEGORY_PERIPHERY},
        .inputs = INPUTS_COMPILED, .flash_families = FLASH_EXTERNAL},

    // For the command line only, and switched off until their writers exist.
    FILE_TYPE_ROW{
        .type = VEK_QSPI_HELPER_RBF_FILE_TYPE, .word = PGM_COMMON_XML_ENUM_QSPI_HELPER_RBF,
        .description = "Flash Programming Helper File (.rbf)",
        .tooltip = "The helper image through which a programmer reaches the serial flash of a secure device.",
        .cmd_only = true, .extension = FIO_EXT_RBF,
        .excluded_families = families_without(TRAIT_SIGNING), .categories = {VEK_FILE_CATEGORY_QSPI_HELPER},
        .inputs = INPUTS_COMPILED},
    FILE_TYPE_ROW{
        .type = VEK_HELPER_RBF_FILE_TYPE, .word = PGM_COMMON_XML_ENUM_HELPER_RBF,
        .description = "Device Helper File (.rbf)",
        .tooltip = "The helper image that prepares a secure device for commands over JTAG.",
        .cmd_only = true, .extension = FIO_EXT_RBF,
        .excluded_families = families_without(TRAIT_SIGNING), .categories = {VEK_FILE_CATEGORY_HELPER},
        .inputs = INPUTS_COMPILED},
    FILE_TYPE_ROW{
        .type = VEK_HELPER_RBF_CMD_FILE_TYPE, .word = PGM_COMMON_XML_ENUM_HELPER_RBF_CMD,
        .description = "Device Helper Command File (.rbf)",
        .tooltip = "The helper image of a secure device with one command for it built in.",
        .cmd_only = true, .extension = FIO_EXT_RBF,
        .excluded_families = families_without(TRAIT_SIGNING), .categories = {VEK_FILE_CATEGORY_HELPER_COMMAND},
        .inputs = INPUTS_COMPILED},
    FILE_TYPE_ROW{
        .type = VEK_SOF_FILE_TYPE, .word = PGM_COMMON_XML_ENUM_SOF,
        .description = "Signed Bitstream File (.sof)",
        .tooltip = "The bitstream again, with the signature and the boot loader that its properties name.",
        .cmd_only = true, .extension = FIO_EXT_SOF,
        .excluded_families = families_without(TRAIT_SIGNING), .categories = {VEK_FILE_CATEGORY_SIGNED_SOF},
        .inputs = INPUTS_COMPILED},
    FILE_TYPE_ROW{
        .type = VEK_PUF_FILE_TYPE, .word = PGM_COMMON_XML_ENUM_PUF,
        .description = "Helper Data File (.puf)",
        .tooltip = "The helper data from which a secure device rebuilds the key of its own silicon.",
        .cmd_only = true, .extension = FIO_EXT_PUF,
        .excluded_families = families_without(TRAIT_SIGNING), .categories = {VEK_FILE_CATEGORY_PUF},
        .inputs = {FIO_PUF_FILE}},
    FILE_TYPE_ROW{
        .type = VEK_WKEY_FILE_TYPE, .word = PGM_COMMON_XML_ENUM_WKEY,
        .description = "Wrapped Key File (.wkey)",
        .tooltip = "The encryption key of a secure device, wrapped so that this device alone can open it.",
        .cmd_only = true, .extension = FIO_EXT_WKEY,
        .excluded_families = families_without(TRAIT_SIGNING), .categories = {VEK_FILE_CATEGORY_WRAPPED_KEY},
        .inputs = {FIO_WKEY_FILE}},
    FILE_TYPE_ROW{
        .type = VEK_CCERT_FILE_TYPE, .word = PGM_COMMON_XML_ENUM_CCERT,
        .description = "Compact Certificate (.ccert)",
        .tooltip = "A signed order to a secure device: program a key, cancel one, or raise a counter.",
        .cmd_only = true, .extension = FIO_EXT_CCERT,
        .excluded_families = families_without(TRAIT_SIGNING), .categories = {VEK_FILE_CATEGORY_CERTIFICATE},
        .inputs = {FIO_AEK_FILE}},
    FILE_TYPE_ROW{
        .type = VEK_NON_JTAG_PROVISION_RBF_FILE_TYPE, .word = PGM_COMMON_XML_ENUM_NON_JTAG_PROVISION_RBF,
        .description = "Provisioning File (.rbf)",
        .tooltip = "The stream that provisions a secure device with keys and fuses where JTAG is out of reach.",
        .cmd_only = true, .extension = FIO_EXT_RBF,
        .excluded_families = families_without(TRAIT_SIGNING), .categories = {VEK_FILE_CATEGORY_PROVISIONING},
        .inputs = INPUTS_COMPILED},
};
// clang-format on

/// The row of a type; null for a key that is not in the table.
const FILE_TYPE_ROW* find_file_type_row(VEK_FILE_TYPE type);

#endif
