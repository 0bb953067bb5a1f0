#include "lock_file.h"

#include "aek_file.h"
#include "bitstream_records.h"
#include "byte_source.h"
#include "little_endian.h"

#include <algorithm>

namespace
{

constexpr std::array<std::uint8_t, 8> MAGIC = {0x89, 'I', 'W', 'L', 0x0D, 0x0A, 0x1A, 0x0A};
constexpr std::uint16_t VERSION = 1;
constexpr std::size_t NONCE_KEY_SIZE = 32;
constexpr std::size_t FILE_LIMIT = 4096;

} // namespace

bool decode_lock(const SECRET_BYTES& bytes, ENCRYPTION_LOCK& lock, std::string& reason)
{
    RECORD_READER reader(bytes);
    const auto magic = reader.bytes(MAGIC.size());
    if (!reader.good() || !std::equal(magic.begin(), magic.end(), MAGIC.begin())) {
        reason = "is no encryption lock file; name one";
        return false;
    }
    const std::uint16_t version = reader.u16();
    if (reader.good() && version != VERSION) {
        reason = "has version " + std::to_string(version) + "; this program reads version " +
                 std::to_string(VERSION);
        return false;
    }
    const std::uint8_t key_size = reader.u8();
    const std::uint8_t non_volatile = reader.u8();
    KEY_ID id{};
    const auto id_bytes = reader.bytes(id.size());
    const auto cipher_key = reader.bytes(key_size);
    const auto nonce_key = reader.bytes(NONCE_KEY_SIZE);
    lock.device = reader.text(reader.u8());
    const std::uint32_t stated = reader.u32();
    if (!reader.used_up() || (key_size != 16 && key_size != 32) || non_volatile > 1 ||
        !is_bitstream_name(lock.device) ||
        stated != crc32(std::span<const std::uint8_t>(bytes).first(bytes.size() - 4))) {
        reason = "is damaged: its checksum or a length in it does not fit; take a good copy of the file";
        return false;
    }
    std::copy(id_bytes.begin(), id_bytes.end(), id.begin());
    lock.non_volatile = non_volatile == 1;
    lock.key = STREAM_KEY::from_parts({cipher_key.begin(), cipher_key.end()},
                                      {nonce_key.begin(), nonce_key.end()}, id);
    return true;
}

bool read_lock_file(const std::string& path, ENCRYPTION_LOCK& lock, std::string& message)
{
    SECRET_BYTES bytes;
    std::string reason;
    if (!read_secret_file(path, FILE_LIMIT, "an encryption lock file", bytes, message))
        return false;
    if (decode_lock(bytes, lock, reason))
        return true;
    message = path + " " + reason + ".";
    return false;
}

bool write_lock_file(const std::string& path, const ENCRYPTION_LOCK& lock, std::string& message)
{
    SECRET_BYTES bytes(MAGIC.begin(), MAGIC.end());
    const auto append = [&bytes](std::span<const std::uint8_t> more) {
        bytes.insert(bytes.end(), more.begin(), more.end());
    };
    RECORD_WRITER head;
    head.u16(VERSION);
    head.u8(static_cast<std::uint8_t>(lock.key->bits() / 8));
    head.u8(lock.non_volatile ? 1 : 0);
    append(head.content());
    append(lock.key->id());
    append(lock.key->cipher_key());
    append(lock.key->nonce_key());
    RECORD_WRITER device;
    device.u8(static_cast<std::uint8_t>(lock.device.size()));
    device.text(lock.device);
    append(device.content());
    RECORD_WRITER crc;
    crc.u32(crc32(bytes));
    append(crc.content());
    return write_new_secret_file(path, bytes, message);
}
