#ifndef IMAGEWRIGHT_TESTS_REFERENCE_LOADER_H
#define IMAGEWRIGHT_TESTS_REFERENCE_LOADER_H

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <vector>

/// One image of a configuration stream, as a device of the chain would have it after loading.
struct LOADED_IMAGE {
    struct REGION {
        std::string name;
        std::uint64_t offset = 0;
        std::uint64_t length = 0;
    };
    std::string device;
    std::uint32_t idcode = 0;
    bool partial = false;
    bool decompression_during_pr = false;
    bool replaces_factory = false;
    bool application = false;
    std::vector<std::uint8_t> update_record; ///< version, flags, zeros; empty for none
    bool prepared_for_encryption = false;
    std::optional<std::uint32_t> scheme;
    std::map<std::string, bool> options;
    std::vector<std::uint8_t> option_block; ///< the record as it stands; empty for none
    std::vector<REGION> regions;
    std::vector<std::uint8_t> periphery;
    std::vector<std::uint8_t> core;
    std::vector<std::uint8_t> firmware;
    std::vector<std::uint8_t> bootloader;
    std::size_t plain_packets = 0;
    std::size_t lz4_packets = 0;
    std::size_t zstd_packets = 0;
    std::size_t encrypted_packets = 0;
    std::vector<std::uint8_t> key_info;        ///< the record as it stands; empty for an image in the clear
    std::vector<std::uint8_t> firmware_record; ///< of co-signed firmware, whose signature has been verified
    std::string signature_curve;               ///< empty for an unsigned image
    std::vector<std::uint8_t> public_key;      ///< X, Y
    std::vector<std::uint8_t> root_key;  ///< of the key chain that ends with the public key; empty for none
    std::vector<std::uint8_t> signature; ///< r, s, verified
    std::size_t signed_begin = 0;        ///< the bytes of the stream that are signed
    std::size_t signed_end = 0;

    /// Periphery followed by core.
    std::vector<std::uint8_t> configuration() const;
};

/// What a device makes of a configuration stream.
struct LOADED_STREAM {
    std::vector<LOADED_IMAGE> images; ///< in chain order
    std::size_t used = 0;             ///< bytes up to the end packet, included
};

/// Decodes the stream at the beginning of `bytes` by docs/formats/configuration-stream.md alone, with no code
/// of the writer and another crypto library. Bytes behind the end packet are not looked at. `device_key`: the
/// key of the device, which encrypted images need. False with what is wrong in `error`.
bool load_configuration_stream(std::span<const std::uint8_t> bytes, LOADED_STREAM& stream, std::string& error,
                               std::span<const std::uint8_t> device_key = {});

/// The CRC-32 of the formats, from a table of its own.
std::uint32_t reference_crc32(std::span<const std::uint8_t> bytes);

#endif
