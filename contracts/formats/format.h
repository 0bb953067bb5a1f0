#ifndef FORMAT_H
#define FORMAT_H

#include "byte_source.h"
#include "key_info.h"
#include "measurement.h"

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

/// A used range of an image: what the formats with sections (POF) and the map table need to know beyond the
/// bytes.
struct IMAGE_REGION {
    std::string name;            ///< partition name
    std::uint64_t start = 0;     ///< offset in the image, bytes
    std::uint64_t length = 0;    ///< bytes used by content
    std::uint64_t block_end = 0; ///< last byte of the partition, included
    bool has_page = false;
    unsigned page = 0;
    std::string input;     ///< file names of the inputs, without directories; empty for generated content
    std::uint32_t crc = 0; ///< CRC-32 of the content; for formats that tell it

    bool operator==(const IMAGE_REGION&) const = default;
};

/// The FPGA that JTAG reaches: the one to be configured, or the one through which a flash device is written.
struct JTAG_TARGET {
    std::string name;
    std::uint32_t idcode = 0;        ///< IEEE 1149.1
    unsigned instruction_length = 0; ///< bits of the instruction register

    bool operator==(const JTAG_TARGET&) const = default;
};

/// How a serial flash device is written by commands.
struct SERIAL_FLASH {
    std::array<std::uint8_t, 3> jedec_id{}; ///< all zero when the device cannot be asked
    unsigned address_bytes = 0;             ///< 3 or 4
    std::uint32_t sector_bytes = 0;         ///< smallest block that is erased by itself
    std::uint32_t page_bytes = 0;           ///< largest block that is written at once

    bool operator==(const SERIAL_FLASH&) const = default;
};

/// What the vectors of a JTAG file do with the device.
enum class JTAG_OPERATION : std::uint8_t {
    PROGRAM,                ///< erase and program
    VERIFY,                 ///< compare what the device holds
    BLANK_CHECK_AND_PROGRAM ///< program, provided that the device is blank
};

/// The key of a device, for the file that programs it.
struct KEY_PROGRAM {
    std::string device;
    std::uint32_t idcode = 0;
    KEY_INFO info;
    std::span<const std::uint8_t> key; ///< in memory of the caller's, who overwrites it
};

class STREAM_SIGNER;

/// What a file is made of and how it is to be written. Every format takes what concerns it.
struct FORMAT_REQUEST {
    const BYTE_SOURCE* image = nullptr; ///< the configuration stream or the flash image
    std::vector<IMAGE_REGION> regions;  ///< flash images only, ascending by start
    std::string device;                 ///< name of the FPGA or flash device
    std::uint32_t start_address = 0;    ///< HEX: address of the first byte; RPD: image offset it begins at
    bool count_down = false;            ///< HEX: addresses count down from the start address
    bool bitswap = false;               ///< RPD: reverse the bits of each byte
    bool use_relative = false;          ///< RPD: from the first used byte to the last, start_address unread
    JTAG_TARGET target;                 ///< JTAG formats: the device; JIC: the flash loader
    SERIAL_FLASH flash;                 ///< JIC
    JTAG_OPERATION operation = JTAG_OPERATION::PROGRAM; ///< SVF
    std::uint64_t frequency = 0;                        ///< SVF: highest TCK frequency in Hz, 0 for any
    std::string voltage;                                ///< SVF: supply voltage, "3.3"; empty to leave it out
    std::vector<KEY_PROGRAM> keys;                      ///< EKP
    std::vector<IMAGE_MEASUREMENTS> measurements;       ///< RIM
    const STREAM_SIGNER* signer = nullptr;              ///< RIM: null for no signature
};

/// A range of addresses with content, as inspection finds it.
struct ADDRESS_RANGE {
    std::uint64_t start = 0;
    std::uint64_t length = 0;

    bool operator==(const ADDRESS_RANGE&) const = default;
};

/// What inspection finds in a file.
struct FORMAT_FACTS {
    struct FACT {
        std::string name; ///< lower-case words, as in "image size"
        std::string value;
    };
    std::vector<FACT> facts;           ///< in the order in which a person wants to read them
    std::vector<ADDRESS_RANGE> ranges; ///< where content lies, ascending; adjacent ranges are joined
    std::vector<IMAGE_REGION> regions; ///< the partitions that the file names
};

/// One programming file format: writes an image, and reads a written file back. Formats have no state; an
/// object may be used by several threads at once. Messages of verify(), decode() and inspect() do not name
/// the file: the caller, who knows its path, puts it in front.
class FORMAT
{
public:
    virtual ~FORMAT() = default;

    /// Writes the whole file to `sink`. False with a whole sentence in `message`; what has reached the sink
    /// by then is no valid file.
    virtual bool write(const FORMAT_REQUEST& request, BYTE_SINK& sink, std::string& message) const = 0;

    /// Reads `file` (bytes that write() has produced for `request`) and compares what it decodes with the
    /// source: structure, checksums, content. Only the spelling that write() uses passes, so that no changed
    /// byte goes unseen. False with the reason and the place in `message`.
    virtual bool verify(const FORMAT_REQUEST& request, const BYTE_SOURCE& file,
                        std::string& message) const = 0;

    /// Writes the image that `file` holds to `sink`: for a sparse file from its first address to its last,
    /// with 0xFF where it has no content (POF: the whole device). False with the reason and the place in
    /// `message` when the file is damaged, when the format carries no image, or when the sink fails.
    virtual bool decode(const BYTE_SOURCE& file, BYTE_SINK& sink, std::string& message) const = 0;

    /// Whether the file tells the checksums of the regions, so that a request needs them.
    virtual bool tells_checksums() const { return false; }

    /// Collects what there is to tell about `file`. Fails as decode() does.
    virtual bool inspect(const BYTE_SOURCE& file, FORMAT_FACTS& facts, std::string& message) const = 0;
};

#endif
