#ifndef BITSTREAM_RECORDS_H
#define BITSTREAM_RECORDS_H

#include "dset_oti_dev_options_info.h"

#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <vector>

/// The small records of a bitstream file, which the configuration stream carries as well, and their bytes.
/// Layouts: docs/formats/bitstream-container.md. Decoding never trusts a count or a length, accepts a record
/// only when it is used up to its last byte, and explains a refusal in `reason` (the end of a sentence).

/// The FPGA that a bitstream is for.
struct BITSTREAM_DEVICE {
    std::string name;         ///< 1 to 64 letters, digits, '-', '_' or '.'
    std::uint32_t idcode = 0; ///< JTAG IDCODE
    bool operator==(const BITSTREAM_DEVICE&) const = default;
};

/// Compiler options by name; a name has 1 to 64 letters, digits or underscores.
using BITSTREAM_OPTIONS = std::map<std::string, bool>;

/// A part of the device that a partial bitstream rewrites.
struct BITSTREAM_REGION {
    std::string name;         ///< 1 to 64 letters, digits, '-', '_' or '.'
    std::uint64_t offset = 0; ///< in the device's core configuration memory, bytes
    std::uint64_t length = 0; ///< bytes, above 0; the core data holds the regions one behind the other
    bool operator==(const BITSTREAM_REGION&) const = default;
};

std::vector<std::uint8_t> encode_device(const BITSTREAM_DEVICE& device);
bool decode_device(std::span<const std::uint8_t> bytes, BITSTREAM_DEVICE& device, std::string& reason);

/// The scheme is the number of a PGMIO_CONFIG_SCHEME, 0 to 24.
std::vector<std::uint8_t> encode_scheme(std::uint32_t scheme);
bool decode_scheme(std::span<const std::uint8_t> bytes, std::uint32_t& scheme, std::string& reason);

std::vector<std::uint8_t> encode_options(const BITSTREAM_OPTIONS& options);
bool decode_options(std::span<const std::uint8_t> bytes, BITSTREAM_OPTIONS& options, std::string& reason);

/// `with_file_name` false leaves out the name of the user flash memory file, which is of no use to a device.
std::vector<std::uint8_t> encode_option_block(const DSET_OTI_DEV_OPTIONS_INFO& options, bool with_file_name);
/// Fills `options` and the option word, which is never 0 in a block that is there.
bool decode_option_block(std::span<const std::uint8_t> bytes, DSET_OTI_DEV_OPTIONS_INFO& options,
                         std::uint32_t& option_word, std::string& reason);

std::vector<std::uint8_t> encode_regions(const std::vector<BITSTREAM_REGION>& regions);
bool decode_regions(std::span<const std::uint8_t> bytes, std::vector<BITSTREAM_REGION>& regions,
                    std::string& reason);

/// Whether `name` may stand for a device or a region.
bool is_bitstream_name(const std::string& name);

#endif
