#ifndef IMAGE_PARTS_H
#define IMAGE_PARTS_H

#include "bitstream_file.h"
#include "configuration_stream.h"
#include "firmware_archive.h"
#include "stream_reader.h"

#include <memory>
#include <string>
#include <vector>

/// One part of the configuration data of an input.
struct PART_INPUT {
    STREAM_PART part;
    std::shared_ptr<const BYTE_SOURCE> bytes;
    const BITSTREAM_SECTION* section; ///< states the checksum; null for a file of its own
};

/// What goes into the stream of an input, in order.
struct IMAGE_PARTS {
    std::vector<PART_INPUT> parts;
    FIRMWARE_ARCHIVE archive; ///< without firmware unless the firmware comes from one
};

/// False with a whole sentence in `message` when a file cannot be read or the input has nothing of what is
/// selected. The sections stay those of `file`.
bool collect_parts(const STREAM_INPUT& input, const BITSTREAM_FILE& file, STREAM_SELECTION selection,
                   IMAGE_PARTS& image, std::string& message);

/// A packet before the frames.
struct STREAM_RECORD {
    std::uint8_t opcode;
    std::vector<std::uint8_t> payload;
};

/// The records of an image, in the order of the stream.
std::vector<STREAM_RECORD> image_records(const STREAM_INPUT& input, const BITSTREAM_FILE& file,
                                         const IMAGE_PARTS& image);

/// Opcode, length, payload and checksum.
std::vector<std::uint8_t> encode_packet(std::uint8_t opcode, std::span<const std::uint8_t> payload);

#endif
