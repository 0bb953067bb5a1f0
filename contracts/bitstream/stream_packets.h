#ifndef STREAM_PACKETS_H
#define STREAM_PACKETS_H

#include <array>
#include <cstddef>
#include <cstdint>

/// The numbers of the configuration stream, for its writer and its reader. Layout and meaning:
/// docs/formats/configuration-stream.md.

inline constexpr std::array<std::uint8_t, 4> STREAM_SYNC_WORD = {0xF1, 0x9A, 0x3C, 0x5E};
inline constexpr std::uint16_t STREAM_VERSION = 1;

/// Opcodes; a frames packet adds its STREAM_METHOD.
inline constexpr std::uint8_t OPCODE_BEGIN = 0x01;
inline constexpr std::uint8_t OPCODE_DEVICE = 0x02;
inline constexpr std::uint8_t OPCODE_SCHEME = 0x03;
inline constexpr std::uint8_t OPCODE_OPTIONS = 0x04;
inline constexpr std::uint8_t OPCODE_OPTION_BLOCK = 0x05;
inline constexpr std::uint8_t OPCODE_REGIONS = 0x06;
inline constexpr std::uint8_t OPCODE_KEY_INFO = 0x07;
inline constexpr std::uint8_t OPCODE_FIRMWARE_INFO = 0x08;
inline constexpr std::uint8_t OPCODE_UPDATE_INFO = 0x09;
inline constexpr std::uint8_t OPCODE_KEY_CHAIN = 0x0A;
inline constexpr std::uint8_t OPCODE_FRAMES = 0x10;
inline constexpr std::uint8_t OPCODE_ENCRYPTED_FRAMES = 0x18;
inline constexpr std::uint8_t OPCODE_SIGNATURE = 0x20;
inline constexpr std::uint8_t OPCODE_END = 0x7F;

inline constexpr std::size_t PACKET_HEADER_SIZE = 4; ///< opcode, 24-bit length
inline constexpr std::size_t PACKET_CRC_SIZE = 4;
inline constexpr std::size_t FRAMES_HEADER_SIZE = 16; ///< part, three zeros, plain length, offset
/// Plain bytes in one frames packet. One packet is the unit that a reader holds in memory.
inline constexpr std::size_t FRAMES_LIMIT = 1024 * 1024;
/// What encryption adds to a frames packet: nonce and tag.
inline constexpr std::size_t SEAL_SIZE = 12 + 16;
inline constexpr std::uint8_t DEVICE_FLAG_PARTIAL = 0x01;
inline constexpr std::uint8_t DEVICE_FLAG_SIGNED = 0x02;
inline constexpr std::uint8_t DEVICE_FLAG_DECOMPRESSION = 0x04; ///< while the device reconfigures
inline constexpr std::uint8_t DEVICE_FLAG_FACTORY = 0x08;       ///< the image replaces the factory image
inline constexpr std::uint8_t DEVICE_FLAG_APPLICATION = 0x10;   ///< of the factory image before it
inline constexpr std::uint8_t UPDATE_FLAG_BOOT_INFO = 0x01;     ///< of the packet UPDATE INFO

#endif
