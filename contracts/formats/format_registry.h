#ifndef FORMAT_REGISTRY_H
#define FORMAT_REGISTRY_H

#include "format.h"
#include "vek_file_type.h"

#include <span>

/// What an output file type is written from, as the generation sees it.
enum class FORMAT_SUBJECT : std::uint8_t {
    STREAM,      ///< the configuration stream of a bitstream
    FLASH_IMAGE, ///< the image of a flash device, with its regions
    KEYS,        ///< the keys of encrypted bitstreams
    MEASUREMENTS ///< what devices measure of bitstreams
};

/// Which part of the configuration goes into a file.
enum class FORMAT_PART : std::uint8_t {
    ALL, ///< for a secondary file: what the output that it belongs to has
    PERIPHERY,
    CORE,
};

/// One output file type that this program writes.
struct FORMAT_ROW {
    VEK_FILE_TYPE type;
    const FORMAT* format;
    FORMAT_SUBJECT subject;
    FORMAT_PART part = FORMAT_PART::ALL;
    bool is_secret = false; ///< for its owner alone
};

/// All rows, ascending by type. A new type is a new row.
std::span<const FORMAT_ROW> get_format_rows();

/// The row of a type, null when it has none.
const FORMAT_ROW* find_format_row(VEK_FILE_TYPE type);

/// The format of a type, null when it has none.
const FORMAT* find_format(VEK_FILE_TYPE type);

#endif
