#ifndef STREAM_READER_H
#define STREAM_READER_H

#include "bitstream_records.h"
#include "byte_source.h"
#include "ecdsa.h"
#include "key_info.h"
#include "stream_input.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// A part of the configuration data of one image in a stream; the numbers stand in the frames packets.
enum class STREAM_PART : std::uint8_t { PERIPHERY = 0, CORE = 1, FIRMWARE = 2, BOOTLOADER = 3 };
inline constexpr std::size_t STREAM_PART_COUNT = 4;

/// How the frames of a packet are held; the low bits of the opcode.
enum class STREAM_METHOD : std::uint8_t { PLAIN = 0, LZ4 = 1, ZSTD = 2 };
inline constexpr std::size_t STREAM_METHOD_COUNT = 3;

/// "periphery data", "core data", "firmware", "bootloader".
std::string stream_part_name(STREAM_PART part);
/// "plain", "LZ4", "Zstandard".
std::string stream_method_name(STREAM_METHOD method);

/// Co-signed firmware: what the signature of its maker says.
struct STREAM_FIRMWARE_FACTS {
    std::uint32_t family = 0;
    std::uint32_t release = 0;
    ECDSA_PUBLIC_KEY key;
};

/// What one image of a stream holds.
struct STREAM_IMAGE_FACTS {
    BITSTREAM_DEVICE device;
    bool partial = false;
    bool decompression_during_pr = false; ///< the device decompresses while it reconfigures a region
    bool replaces_factory = false;        ///< the image is an update of the factory image
    bool application = false;             ///< the image is the application image of a factory image
    std::optional<UPDATE_INFO> update;
    std::optional<std::uint32_t> scheme;
    BITSTREAM_OPTIONS options;
    std::uint32_t option_word = 0; ///< 0 without on-chip option block
    DSET_OTI_DEV_OPTIONS_INFO option_block;
    std::vector<BITSTREAM_REGION> regions;
    std::array<std::uint64_t, STREAM_PART_COUNT> part_length{};   ///< plain bytes
    std::array<std::uint64_t, STREAM_PART_COUNT> stored_length{}; ///< bytes in the stream
    std::array<std::uint64_t, STREAM_METHOD_COUNT> packets_by_method{};
    std::uint64_t offset = 0;               ///< of the image's first packet, bytes
    std::optional<KEY_INFO> key;            ///< of an image that is encrypted or prepared for that
    std::optional<ECDSA_PUBLIC_KEY> signer; ///< of a signed image, whose signature fits
    std::optional<ECDSA_PUBLIC_KEY> root;   ///< of the key chain by which the signer is trusted
    std::optional<STREAM_FIRMWARE_FACTS> firmware;

    bool is_encrypted() const { return key && !key->prepared; }
};

/// What a whole stream holds.
struct STREAM_FACTS {
    std::uint16_t version = 0;
    std::uint64_t size = 0; ///< bytes up to the end packet, included
    std::uint64_t packets = 0;
    std::array<std::uint8_t, 32> digest{}; ///< SHA-256 as the end packet states it
    std::vector<STREAM_IMAGE_FACTS> images;
};

/// Takes the configuration data that read_configuration_stream decodes, in order.
class STREAM_DATA_SINK
{
public:
    virtual ~STREAM_DATA_SINK() = default;
    virtual bool write(std::size_t image, STREAM_PART part, std::span<const std::uint8_t> bytes,
                       std::string& message) = 0;
};

/// Whether the bytes begin with the sync word of a configuration stream.
bool is_configuration_stream(const BYTE_SOURCE& bytes);

/// Walks a stream from its sync word to its end packet: structure, the checksum of every packet, the frames
/// decoded and contiguous, the lengths announced, signatures, the digest. Frames that are encrypted are not
/// decoded, and there is no data of them for the sink, which is refused then. With `whole`, nothing may
/// follow the end packet. Memory is a few MiB whatever the size. False with the reason in `message`, which
/// names the offset of the first fault; `facts` then hold what was read before it. `data` may be null.
bool read_configuration_stream(const BYTE_SOURCE& bytes, bool whole, STREAM_FACTS& facts,
                               STREAM_DATA_SINK* data, std::string& message);

#endif
