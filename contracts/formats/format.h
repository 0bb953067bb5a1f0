#ifndef FORMAT_H
#define FORMAT_H

#include "byte_source.h"

#include <cstdint>
#include <string>
#include <vector>

/// A used range of an image: what the formats with sections (POF) and the map table need to know beyond the
/// bytes.
struct IMAGE_REGION {
    std::string name;        ///< partition name
    std::uint64_t start;     ///< offset in the image, bytes
    std::uint64_t length;    ///< bytes used by content
    std::uint64_t block_end; ///< last byte of the partition, included
    bool has_page = false;
    unsigned page = 0;
    std::string input;     ///< file names of the inputs, without directories; empty for generated content
    std::uint32_t crc = 0; ///< CRC-32 of the content
};

/// What a file is made of and how it is to be written. Every format takes what concerns it.
struct FORMAT_REQUEST {
    const BYTE_SOURCE* image = nullptr; ///< the configuration stream or the flash image
    std::vector<IMAGE_REGION> regions;  ///< flash images only, ascending by start
    std::string device;                 ///< name of the FPGA or flash device
    std::uint32_t start_address = 0;    ///< HEX: address of the first byte
    bool count_down = false;            ///< HEX: addresses count down from the start address
    bool bitswap = false;               ///< RPD: reverse the bits of each byte
    bool use_relative = false;          ///< RPD: from the first used byte to the last, not the whole device
};

/// One programming file format: writes an image, and reads a written file back for the integrity check.
class FORMAT
{
public:
    virtual ~FORMAT() = default;

    /// Writes the whole file to `sink`. False with a whole sentence in `message`.
    virtual bool write(const FORMAT_REQUEST& request, BYTE_SINK& sink, std::string& message) const = 0;

    /// Reads `file` (bytes that write() has produced for `request`) and compares what it decodes with the
    /// source: structure, checksums, content. False with the reason and the place in `message`.
    virtual bool verify(const FORMAT_REQUEST& request, const BYTE_SOURCE& file,
                        std::string& message) const = 0;
};

#endif
