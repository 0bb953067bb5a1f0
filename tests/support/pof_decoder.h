#ifndef IMAGEWRIGHT_TESTS_POF_DECODER_H
#define IMAGEWRIGHT_TESTS_POF_DECODER_H

#include <cstdint>
#include <string>
#include <vector>

/// What another program makes of a POF when it follows docs/formats/pof.md.
struct DECODED_POF {
    struct PARTITION {
        std::string name;
        std::uint64_t start = 0;
        std::uint64_t used = 0;
        std::uint64_t last = 0;
        std::uint64_t crc = 0;
        bool has_page = false;
        std::uint64_t page = 0;
        std::string input;
    };
    std::string device;
    std::vector<PARTITION> partitions;
    std::vector<std::uint8_t> image; ///< the whole device
    std::size_t data_chunks = 0;
    /// JIC alone.
    struct LOADER {
        std::string name;
        std::uint64_t idcode = 0;
        std::uint64_t instruction_length = 0;
        std::uint64_t bridge = 0;
        std::uint64_t jedec_id = 0; ///< manufacturer first
        std::uint64_t address_bytes = 0;
        std::uint64_t sector = 0;
        std::uint64_t page = 0;
        std::vector<unsigned> commands;
    } loader;
    std::string fault; ///< empty when the file is right
};

DECODED_POF decode_pof(const std::vector<std::uint8_t>& file);

/// The same for a JIC and docs/formats/jic.md.
DECODED_POF decode_jic(const std::vector<std::uint8_t>& file);

/// CRC-32 of ISO 3309, one bit at a time.
std::uint32_t plain_crc32(const std::uint8_t* bytes, std::size_t size);

#endif
