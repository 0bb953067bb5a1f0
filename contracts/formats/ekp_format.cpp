#include "ekp_format.h"

#include "bitstream_records.h"
#include "format_text.h"
#include "little_endian.h"
#include "stream_key.h"

#include <algorithm>

namespace
{

constexpr std::array<std::uint8_t, 8> MAGIC = {0x89, 'I', 'W', 'K', 0x0D, 0x0A, 0x1A, 0x0A};
constexpr std::uint16_t VERSION = 1;
constexpr std::size_t KEY_INFO_SIZE = 24;
constexpr std::uint64_t FILE_LIMIT = 16 * 1024 * 1024;

void append(SECRET_BYTES& bytes, std::span<const std::uint8_t> more)
{
    bytes.insert(bytes.end(), more.begin(), more.end());
}

SECRET_BYTES encode(const std::vector<KEY_PROGRAM>& keys)
{
    SECRET_BYTES bytes(MAGIC.begin(), MAGIC.end());
    RECORD_WRITER head;
    head.u16(VERSION);
    head.u16(static_cast<std::uint16_t>(keys.size()));
    append(bytes, head.content());
    for (const KEY_PROGRAM& key : keys) {
        append(bytes, encode_device({key.device, key.idcode}));
        append(bytes, encode_key_info(key.info));
        append(bytes, key.key);
    }
    RECORD_WRITER crc;
    crc.u32(crc32(bytes));
    append(bytes, crc.content());
    return bytes;
}

/// A file taken apart; the keys lie in `bytes`.
struct DECODED {
    SECRET_BYTES bytes;
    std::vector<KEY_PROGRAM> keys;
};

bool take_key(RECORD_READER& reader, KEY_PROGRAM& key, std::string& reason)
{
    BITSTREAM_DEVICE device;
    const std::uint32_t idcode = reader.u32();
    const std::uint8_t name_size = reader.u8();
    RECORD_WRITER record;
    record.u32(idcode);
    record.u8(name_size);
    record.bytes(reader.bytes(name_size));
    if (!reader.good() || !decode_device(record.content(), device, reason) ||
        !decode_key_info(reader.bytes(KEY_INFO_SIZE), key.info, reason))
        return false;
    key.device = device.name;
    key.idcode = device.idcode;
    key.key = reader.bytes(key.info.key_bits / 8);
    if (!reader.good()) {
        reason = "the key of " + key.device + " is not whole";
        return false;
    }
    if (STREAM_KEY::derive(SECRET_BYTES(key.key.begin(), key.key.end()))->id() != key.info.id) {
        reason = "the id of the key of " + key.device + " does not fit the key";
        return false;
    }
    return true;
}

bool decode_file(const BYTE_SOURCE& file, DECODED& decoded, std::string& message)
{
    const auto damaged = [&message](const std::string& reason) {
        message = "The key programming file is damaged: " + reason + ".";
        return false;
    };
    if (file.size() > FILE_LIMIT)
        return damaged("it is larger than such a file can be");
    decoded.bytes.resize(static_cast<std::size_t>(file.size()));
    if (!file.read(0, decoded.bytes, message))
        return false;
    const std::span<const std::uint8_t> all(decoded.bytes);
    if (all.size() < MAGIC.size() + 8 || !std::equal(MAGIC.begin(), MAGIC.end(), all.begin()))
        return damaged("it does not begin as one");
    RECORD_READER stated(all.last(4));
    if (crc32(all.first(all.size() - 4)) != stated.u32())
        return damaged("its checksum does not fit");
    RECORD_READER reader(all.subspan(MAGIC.size(), all.size() - MAGIC.size() - 4));
    const std::uint16_t version = reader.u16();
    if (version != VERSION) {
        message = "The key programming file has version " + std::to_string(version) +
                  "; this program reads version " + std::to_string(VERSION) + ".";
        return false;
    }
    std::string reason = "it holds no key";
    const std::uint16_t count = reader.u16();
    for (std::uint16_t i = 0; i < count; ++i) {
        reason = "it ends within a key";
        if (!take_key(reader, decoded.keys.emplace_back(), reason))
            return damaged(reason);
    }
    return count != 0 && reader.used_up() ? true : damaged(count == 0 ? reason : "bytes follow the last key");
}

} // namespace

bool EKP_FORMAT::write(const FORMAT_REQUEST& request, BYTE_SINK& sink, std::string& message) const
{
    return sink.write(encode(request.keys), message);
}

bool EKP_FORMAT::verify(const FORMAT_REQUEST& request, const BYTE_SOURCE& file, std::string& message) const
{
    DECODED decoded;
    if (!decode_file(file, decoded, message))
        return false;
    if (decoded.bytes == encode(request.keys))
        return true;
    message = "The key programming file holds other keys than those of the bitstreams.";
    return false;
}

bool EKP_FORMAT::decode(const BYTE_SOURCE&, BYTE_SINK&, std::string& message) const
{
    message = "A key programming file carries keys and no image.";
    return false;
}

bool EKP_FORMAT::inspect(const BYTE_SOURCE& file, FORMAT_FACTS& facts, std::string& message) const
{
    DECODED decoded;
    if (!decode_file(file, decoded, message))
        return false;
    facts.facts.push_back({"format", "key programming data"});
    facts.facts.push_back({"keys", std::to_string(decoded.keys.size())});
    for (std::size_t number = 0; number < decoded.keys.size(); ++number) {
        const KEY_PROGRAM& key = decoded.keys[number];
        const std::string suffix = number == 0 ? "" : " " + std::to_string(number + 1);
        const auto add = [&](const std::string& name, const std::string& value) {
            facts.facts.push_back({name + suffix, value});
        };
        add("device", key.device);
        add("IDCODE", hex_text(key.idcode));
        add("key length", std::to_string(key.info.key_bits) + " bits");
        add("key id", key_id_text(key.info.id));
        add("key place", key_place_name(key.info.place));
        for (std::size_t i = 0; i < FUSE_OPTION_COUNT; ++i)
            if (key.info.fuse_options[i] != 0)
                add(std::string("fuse option ") + fuse_option_name(static_cast<FUSE_OPTION>(i)),
                    std::to_string(key.info.fuse_options[i]));
    }
    return true;
}
