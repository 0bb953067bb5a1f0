#ifndef INSPECT_H
#define INSPECT_H

#include "bitstream_file.h"
#include "stream_reader.h"

#include <optional>
#include <string>

/// What a file is, by its first bytes.
enum class INSPECTED_KIND {
    BITSTREAM, ///< SOF or PMSF container
    STREAM,    ///< configuration stream, as RBF holds it
    OTHER      ///< neither; other rooms may know it
};

/// What a bitstream file holds, for printing.
struct BITSTREAM_FACTS {
    BITSTREAM_KIND kind = BITSTREAM_KIND::SOF;
    std::uint16_t version = 0;
    std::uint64_t size = 0;
    BITSTREAM_DEVICE device;
    bool device_known = false; ///< in the device database
    std::optional<std::uint32_t> scheme;
    BITSTREAM_OPTIONS options;
    std::uint32_t option_word = 0; ///< 0 without on-chip option block
    DSET_OTI_DEV_OPTIONS_INFO option_block;
    std::vector<BITSTREAM_REGION> regions;
    std::vector<BITSTREAM_SECTION> sections;
    std::string digest; ///< lower case hexadecimal digits of the SHA-256 that the file states
};

/// What can be taken out of a bitstream or a stream.
enum class EXTRACTED_PART {
    CORE,
    PERIPHERY,
    IMAGE ///< periphery followed by core; of a chained stream, image after image
};

/// Looks at the first bytes only. False with a sentence when the file cannot be read.
bool identify_file(const std::string& path, INSPECTED_KIND& kind, std::string& message);

bool inspect_bitstream(const std::string& path, BITSTREAM_FACTS& facts, std::string& message);
/// Reads the whole stream and so verifies it.
bool inspect_stream(const std::string& path, STREAM_FACTS& facts, std::string& message);

/// Verifies the whole file (checksums and digest), of either kind.
bool verify_file(const std::string& path, std::string& message);

/// Writes one part of a bitstream or a stream to `output_path`, atomically. The source is verified on the
/// way. False with a whole sentence in `message`, also when the file has no such part.
bool extract_from_file(const std::string& path, EXTRACTED_PART part, const std::string& output_path,
                       std::string& message);

#endif
