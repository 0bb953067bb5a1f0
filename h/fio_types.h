#ifndef FIO_TYPES_H
#define FIO_TYPES_H

#include <cstdint>
#include <string>
#include <vector>

/// Kinds of files. The numbers are part of the interface to the host and never change.
enum FIO_FILE_TYPE : std::uint16_t {
    FIO_INVALID_FILE = 0,
    FIO_RBF_FILE = 10,
    FIO_TTF_FILE = 11,
    FIO_HEX_FILE = 12,
    FIO_BIN_FILE = 13,
    FIO_PRRBF_FILE = 14,
    FIO_SVF_FILE = 15,
    FIO_JAM_FILE = 16,
    FIO_JBC_FILE = 17,
    FIO_JIC_FILE = 18,
    FIO_POF_FILE = 19,
    FIO_RPD_FILE = 20,
    FIO_MAP_FILE = 21,
    FIO_RIM_FILE = 22,
    FIO_CCERT_FILE = 23,
    FIO_PUF_FILE = 24,
    FIO_WKEY_FILE = 25,
    FIO_PEM_FILE = 26,
    FIO_AEK_FILE = 27,
    FIO_FW_FILE = 28,
    FIO_BRIM_FILE = 29,
    FIO_HPS_BOOTLOADER_FILE = 40,
    FIO_SOF_FILE = 75,
    FIO_CSOF_FILE = 76, ///< the bitstreams of several chained devices in one file
    FIO_RSOF_FILE = 82, ///< a bitstream whose regions are to be replaced while the device runs
    FIO_PMSF_FILE = 85,
    FIO_ELK_FILE = 89,
    FIO_EKP_FILE = 103,
    FIO_KEY_FILE = 185,
    FIO_VEK_SETUP_FILE = 211,
    FIO_ANY_FILE = 65535,
};

/// File extensions.
enum FIO_EXTENSION_TYPE : std::int16_t {
    FIO_INVALID_EXTENSION = -1,
    FIO_EXT_IHEX = 50,
    FIO_EXT_HEX = 49,
    FIO_EXT_BIN = 63,
    FIO_EXT_SOF = 84,
    FIO_EXT_CSOF = 85,
    FIO_EXT_RSOF = 86,
    FIO_EXT_RBF = 91,
    FIO_EXT_PRRBF = 92,
    FIO_EXT_PMSF = 94,
    FIO_EXT_TTF = 100,
    FIO_EXT_SVF = 101,
    FIO_EXT_JAM = 102,
    FIO_EXT_JBC = 103,
    FIO_EXT_JIC = 104,
    FIO_EXT_POF = 105,
    FIO_EXT_RPD = 106,
    FIO_EXT_MAP = 107,
    FIO_EXT_RIM = 108,
    FIO_EXT_CCERT = 109,
    FIO_EXT_EKP = 110,
    FIO_EXT_ELK = 111,
    FIO_EXT_KEY = 112,
    FIO_EXT_VEK = 113,
    FIO_EXT_BRIM = 114,
    FIO_EXT_PEM = 243,
    FIO_EXT_AEK = 245,
    FIO_EXT_FW = 247, ///< an archive of co-signed firmware
    FIO_EXT_PUF = 250,
    FIO_EXT_WKEY = 251,
};

/// The extension of an extension's text, in any case, with or without its dot; FIO_INVALID_EXTENSION when
/// there is none such.
FIO_EXTENSION_TYPE fio_get_extension_type(const std::string& extension);

/// The text with its dot, in lower case; empty for an invalid extension.
std::string fio_get_extension_string(FIO_EXTENSION_TYPE extension);

/// The kind of file that carries the extension; FIO_INVALID_FILE when the extension is invalid.
FIO_FILE_TYPE fio_get_file_type(FIO_EXTENSION_TYPE extension);

/// The kind of file by the extension of a path or file name, or by an extension with its dot.
FIO_FILE_TYPE fio_get_file_type(const std::string& path);

/// The entry of a file dialog for a kind of file: "Imagewright Setup Files (*.vek)"; "All Files (*)" for
/// FIO_ANY_FILE. With `default_extension_only` the entry accepts only the default extension, for callers that
/// give the chosen file that extension. Empty for an invalid kind. No two kinds have the same text.
std::string fio_get_file_type_filter(FIO_FILE_TYPE file_type, bool default_extension_only);

/// The same for an extension: the filter of its kind of file, with this extension alone. The flag changes
/// nothing here.
std::string fio_get_extension_type_filter(FIO_EXTENSION_TYPE extension, bool default_extension_only);

/// The extension, with its dot, that a new file of the kind gets; empty for FIO_ANY_FILE and invalid kinds.
std::string fio_get_default_extension_string(FIO_FILE_TYPE file_type);

/// All kinds of files and all extensions of the tables, FIO_ANY_FILE included, invalid ones not.
std::vector<FIO_FILE_TYPE> fio_get_all_file_types();
std::vector<FIO_EXTENSION_TYPE> fio_get_all_extension_types();

#endif
