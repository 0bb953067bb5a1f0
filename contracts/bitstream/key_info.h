#ifndef KEY_INFO_H
#define KEY_INFO_H

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

/// A check value that tells keys apart and tells nothing about them.
using KEY_ID = std::array<std::uint8_t, 8>;

/// Where a device keeps the key of a stream.
enum class KEY_PLACE : std::uint8_t {
    BATTERY = 0, ///< volatile, kept by a battery
    FUSES = 1,   ///< non-volatile
    FLASH = 2,   ///< wrapped, in a partition of the flash device
};

/// Protections of a device, in the order in which records hold them.
enum class FUSE_OPTION : std::uint8_t {
    ENCRYPTED_ONLY,
    NO_CONFIGURATION,
    NO_PARTIAL_RECONFIGURATION,
    NO_JTAG_KEY,
    NO_JTAG_EXTENSION,
    NO_JTAG,
    NO_PROCESSOR_JTAG,
    NO_FUSE_KEY,
    NO_BATTERY_KEY,
    LOCK_BATTERY_KEY,
    SECURE,
};
inline constexpr std::size_t FUSE_OPTION_COUNT = 11;

/// How a fuse option is set: 0 off, 1 until the next full configuration, 2 until the next power-on reset,
/// 3 for good, by blowing fuses.
inline constexpr std::uint8_t FUSE_VALUE_MAX = 3;
using FUSE_OPTIONS = std::array<std::uint8_t, FUSE_OPTION_COUNT>;

/// "encrypted-only", "no-configuration", ...
const char* fuse_option_name(FUSE_OPTION option);
/// "battery", "fuses", "flash".
const char* key_place_name(KEY_PLACE place);

/// What a device must know to find the key of an encrypted image, and how it is to protect itself.
struct KEY_INFO {
    unsigned key_bits = 256; ///< 128 or 256
    KEY_PLACE place = KEY_PLACE::BATTERY;
    bool prepared = false;               ///< the encryption is to be completed, the frames are in the clear
    bool during_reconfiguration = false; ///< a partial image is decrypted while the device runs
    FUSE_OPTIONS fuse_options{};
    KEY_ID id{};
    bool operator==(const KEY_INFO&) const = default;
};

/// Sixteen lower-case hexadecimal digits.
std::string key_id_text(const KEY_ID& id);

/// The payload of the packet KEY INFO.
std::vector<std::uint8_t> encode_key_info(const KEY_INFO& info);
bool decode_key_info(std::span<const std::uint8_t> bytes, KEY_INFO& info, std::string& reason);

#endif
