#include "firmware_archive.h"

#include "atomic_file.h"
#include "little_endian.h"

#include <botan/hash.h>

#include <algorithm>

namespace
{

constexpr std::array<std::uint8_t, 8> MAGIC = {0x89, 'I', 'W', 'F', 0x0D, 0x0A, 0x1A, 0x0A};
constexpr std::uint16_t VERSION = 1;

class HASH_SINK final : public BYTE_SINK
{
public:
    explicit HASH_SINK(Botan::HashFunction& hash) : m_hash(hash) {}
    bool write(std::span<const std::uint8_t> bytes, std::string&) override
    {
        m_hash.update(bytes.data(), bytes.size());
        return true;
    }

private:
    Botan::HashFunction& m_hash;
};

bool digest_of(const std::vector<std::uint8_t>& header, const BYTE_SOURCE& firmware, SHA384_DIGEST& digest,
               std::string& message)
{
    const auto hash = Botan::HashFunction::create_or_throw("SHA-384");
    HASH_SINK sink(*hash);
    hash->update(header);
    if (!copy_source(firmware, sink, message))
        return false;
    hash->final(digest.data());
    return true;
}

} // namespace

bool open_firmware_archive(const std::string& path, bool verify, FIRMWARE_ARCHIVE& archive,
                           std::string& message)
{
    const auto file = FILE_SOURCE::open(path, message);
    if (!file)
        return false;
    archive.header.resize(
        static_cast<std::size_t>(std::min<std::uint64_t>(file->size(), FIRMWARE_HEADER_SIZE)));
    if (!file->read(0, archive.header, message))
        return false;
    RECORD_READER reader(archive.header);
    const auto magic = reader.bytes(MAGIC.size());
    if (!reader.good() || !std::equal(magic.begin(), magic.end(), MAGIC.begin())) {
        message = path + " is no firmware archive; name one.";
        return false;
    }
    const std::uint16_t version = reader.u16();
    const std::uint8_t curve = reader.u8();
    const std::uint8_t zero = reader.u8();
    archive.family = reader.u32();
    const std::uint64_t length = reader.u64();
    archive.release = reader.u32();
    const std::uint32_t zeros = reader.u32();
    if (reader.good() && version != VERSION) {
        message = path + " has version " + std::to_string(version) + "; this program reads version " +
                  std::to_string(VERSION) + ".";
        return false;
    }
    const std::uint64_t rest = file->size() - archive.header.size();
    const std::size_t record =
        curve == 1 || curve == 2 ? signature_record_size(static_cast<ECDSA_CURVE>(curve)) : 0;
    if (!reader.used_up() || zero != 0 || zeros != 0 || record == 0 || length == 0 || rest < record ||
        length != rest - record) {
        message = path + " is damaged: its header does not fit the file; take a good copy of it.";
        return false;
    }
    archive.firmware = std::make_shared<RANGE_SOURCE>(file, FIRMWARE_HEADER_SIZE, length);
    std::vector<std::uint8_t> bytes(record);
    std::string reason;
    if (!file->read(FIRMWARE_HEADER_SIZE + length, bytes, message))
        return false;
    if (!decode_signature(bytes, archive.key, archive.signature, reason) ||
        archive.key.curve != static_cast<ECDSA_CURVE>(curve)) {
        message = path + " is damaged: the signature is malformed; take a good copy of it.";
        return false;
    }
    SHA384_DIGEST digest{};
    if (!verify)
        return true;
    if (!digest_of(archive.header, *archive.firmware, digest, message))
        return false;
    if (!ecdsa_verify(archive.key, digest, archive.signature)) {
        message = path + " is damaged: the signature of its maker does not fit; take a good copy of it.";
        return false;
    }
    return true;
}

bool write_firmware_archive(const std::string& path, std::uint32_t family, std::uint32_t release,
                            const BYTE_SOURCE& firmware, const STREAM_SIGNER& maker, std::string& message)
{
    RECORD_WRITER header;
    header.bytes(MAGIC);
    header.u16(VERSION);
    header.u8(static_cast<std::uint8_t>(maker.public_key().curve));
    header.u8(0);
    header.u32(family);
    header.u64(firmware.size());
    header.u32(release);
    header.u32(0);
    SHA384_DIGEST digest{};
    std::vector<std::uint8_t> signature;
    if (!digest_of(header.content(), firmware, digest, message) || !maker.sign(digest, signature, message))
        return false;
    const auto file = ATOMIC_FILE::create(path, 0666, message);
    return file && file->write(header.content(), message) && copy_source(firmware, *file, message) &&
           file->write(encode_signature(maker.public_key(), signature), message) && file->commit(message);
}
