#include "key_info.h"

#include "ecdsa.h"
#include "little_endian.h"

#include <algorithm>

namespace
{
constexpr std::uint8_t ALGORITHM_GCM = 1;
constexpr std::uint8_t FLAG_DURING_RECONFIGURATION = 0x01;
constexpr std::uint8_t FLAG_PREPARED = 0x02;
} // namespace

const char* fuse_option_name(FUSE_OPTION option)
{
    switch (option) {
    case FUSE_OPTION::ENCRYPTED_ONLY:
        return "encrypted-only";
    case FUSE_OPTION::NO_CONFIGURATION:
        return "no-configuration";
    case FUSE_OPTION::NO_PARTIAL_RECONFIGURATION:
        return "no-partial-reconfiguration";
    case FUSE_OPTION::NO_JTAG_KEY:
        return "no-jtag-key";
    case FUSE_OPTION::NO_JTAG_EXTENSION:
        return "no-jtag-extension";
    case FUSE_OPTION::NO_JTAG:
        return "no-jtag";
    case FUSE_OPTION::NO_PROCESSOR_JTAG:
        return "no-processor-jtag";
    case FUSE_OPTION::NO_FUSE_KEY:
        return "no-fuse-key";
    case FUSE_OPTION::NO_BATTERY_KEY:
        return "no-battery-key";
    case FUSE_OPTION::LOCK_BATTERY_KEY:
        return "lock-battery-key";
    case FUSE_OPTION::SECURE:
        return "secure";
    }
    return "";
}

const char* key_place_name(KEY_PLACE place)
{
    switch (place) {
    case KEY_PLACE::BATTERY:
        return "battery";
    case KEY_PLACE::FUSES:
        return "fuses";
    case KEY_PLACE::FLASH:
        return "flash";
    }
    return "";
}

std::string key_id_text(const KEY_ID& id)
{
    return hexadecimal_text(id);
}

std::vector<std::uint8_t> encode_key_info(const KEY_INFO& info)
{
    RECORD_WRITER writer;
    writer.u8(ALGORITHM_GCM);
    writer.u8(static_cast<std::uint8_t>(info.key_bits / 8));
    writer.u8(static_cast<std::uint8_t>(info.place));
    writer.u8(static_cast<std::uint8_t>((info.during_reconfiguration ? FLAG_DURING_RECONFIGURATION : 0) |
                                        (info.prepared ? FLAG_PREPARED : 0)));
    writer.bytes(info.fuse_options);
    writer.u8(0);
    writer.bytes(info.id);
    return writer.take();
}

bool decode_key_info(std::span<const std::uint8_t> bytes, KEY_INFO& info, std::string& reason)
{
    RECORD_READER reader(bytes);
    const std::uint8_t algorithm = reader.u8();
    info.key_bits = reader.u8() * 8U;
    const std::uint8_t place = reader.u8();
    const std::uint8_t flags = reader.u8();
    const auto fuses = reader.bytes(FUSE_OPTION_COUNT);
    const std::uint8_t zero = reader.u8();
    const auto id = reader.bytes(info.id.size());
    if (!reader.used_up() || (info.key_bits != 128 && info.key_bits != 256) || place > 2 ||
        (flags & ~(FLAG_DURING_RECONFIGURATION | FLAG_PREPARED)) != 0 || zero != 0 ||
        std::any_of(fuses.begin(), fuses.end(), [](std::uint8_t value) { return value > FUSE_VALUE_MAX; })) {
        reason = "the key info packet is malformed";
        return false;
    }
    if (algorithm != ALGORITHM_GCM) {
        reason = "the encryption has the unknown algorithm " + std::to_string(algorithm);
        return false;
    }
    info.place = static_cast<KEY_PLACE>(place);
    info.during_reconfiguration = (flags & FLAG_DURING_RECONFIGURATION) != 0;
    info.prepared = (flags & FLAG_PREPARED) != 0;
    std::copy(fuses.begin(), fuses.end(), info.fuse_options.begin());
    std::copy(id.begin(), id.end(), info.id.begin());
    return true;
}
