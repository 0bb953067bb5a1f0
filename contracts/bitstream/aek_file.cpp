#include "aek_file.h"

#include "atomic_file.h"
#include "byte_source.h"
#include "little_endian.h"

#include <botan/aead.h>
#include <botan/auto_rng.h>
#include <botan/scrypt.h>

#include <algorithm>
#include <array>
#include <sys/stat.h>

namespace
{

constexpr std::array<std::uint8_t, 8> MAGIC = {0x89, 'I', 'W', 'A', 0x0D, 0x0A, 0x1A, 0x0A};
constexpr std::uint16_t VERSION = 1;
constexpr std::uint8_t PROTECTION_NONE = 0;
constexpr std::uint8_t PROTECTION_PASSWORD = 1;
constexpr std::size_t SALT_SIZE = 16;
constexpr std::size_t NONCE_SIZE = 12;
constexpr std::size_t TAG_SIZE = 16;
constexpr std::size_t HEADER_SIZE = 16;
constexpr std::size_t PLAIN_SIZE = HEADER_SIZE + AEK_KEY_SIZE + 4;
constexpr std::size_t SEALED_SIZE = HEADER_SIZE + SALT_SIZE + NONCE_SIZE + AEK_KEY_SIZE + TAG_SIZE + 4;
constexpr std::size_t FILE_LIMIT = 4096;

/// 128 * 2^15 * 8 bytes are 32 MiB for a moment.
constexpr unsigned COST_LOG2 = 15;
constexpr unsigned BLOCKS = 8;
constexpr unsigned PARALLEL = 1;
/// A file must not make its reader take more than 256 MiB or minutes.
constexpr unsigned COST_LOG2_LIMIT = 18;
constexpr unsigned BLOCKS_LIMIT = 8;
constexpr unsigned PARALLEL_LIMIT = 4;

struct HEADER {
    std::uint8_t protection = 0;
    unsigned cost_log2 = 0;
    unsigned blocks = 0;
    unsigned parallel = 0;
};

std::vector<std::uint8_t> encode_header(const HEADER& header)
{
    RECORD_WRITER writer;
    writer.bytes(MAGIC);
    writer.u16(VERSION);
    writer.u8(header.protection);
    writer.u8(static_cast<std::uint8_t>(header.cost_log2));
    writer.u8(static_cast<std::uint8_t>(header.blocks));
    writer.u8(static_cast<std::uint8_t>(header.parallel));
    writer.u16(0);
    return writer.take();
}

bool decode_header(const SECRET_BYTES& bytes, HEADER& header, std::string& reason)
{
    RECORD_READER reader(bytes);
    const auto magic = reader.bytes(MAGIC.size());
    if (!reader.good() || !std::equal(magic.begin(), magic.end(), MAGIC.begin())) {
        reason = "is no AES key file; name one";
        return false;
    }
    const std::uint16_t version = reader.u16();
    header.protection = reader.u8();
    header.cost_log2 = reader.u8();
    header.blocks = reader.u8();
    header.parallel = reader.u8();
    const bool zeros = reader.u16() == 0;
    if (reader.good() && version != VERSION) {
        reason = "has version " + std::to_string(version) + "; this program reads version " +
                 std::to_string(VERSION);
        return false;
    }
    const bool sealed = header.protection == PROTECTION_PASSWORD;
    const bool good_costs = sealed ? header.cost_log2 >= 1 && header.cost_log2 <= COST_LOG2_LIMIT &&
                                         header.blocks >= 1 && header.blocks <= BLOCKS_LIMIT &&
                                         header.parallel >= 1 && header.parallel <= PARALLEL_LIMIT
                                   : header.cost_log2 == 0 && header.blocks == 0 && header.parallel == 0;
    if (!reader.good() || !zeros || header.protection > PROTECTION_PASSWORD || !good_costs ||
        bytes.size() != (sealed ? SEALED_SIZE : PLAIN_SIZE)) {
        reason = "is damaged: its header does not fit; take a good copy of the file";
        return false;
    }
    RECORD_READER stated(std::span<const std::uint8_t>(bytes).last(4));
    if (crc32(std::span<const std::uint8_t>(bytes).first(bytes.size() - 4)) != stated.u32()) {
        reason = "is damaged: its checksum does not fit; take a good copy of the file";
        return false;
    }
    return true;
}

SECRET_BYTES password_key(const SECRET_BYTES& password, const HEADER& header,
                          std::span<const std::uint8_t> salt)
{
    SECRET_BYTES key(AEK_KEY_SIZE);
    const PASSWORD_TEXT text(password);
    Botan::scrypt(key.data(), key.size(), text.text().data(), text.text().size(), salt.data(), salt.size(),
                  std::size_t{1} << header.cost_log2, header.blocks, header.parallel);
    return key;
}

void append_crc(SECRET_BYTES& bytes)
{
    RECORD_WRITER writer;
    writer.u32(crc32(bytes));
    bytes.insert(bytes.end(), writer.content().begin(), writer.content().end());
}

bool unseal(const SECRET_BYTES& bytes, const HEADER& header, const SECRET_BYTES& password, SECRET_BYTES& key)
{
    const std::span<const std::uint8_t> all(bytes);
    const auto salt = all.subspan(HEADER_SIZE, SALT_SIZE);
    const auto nonce = all.subspan(HEADER_SIZE + SALT_SIZE, NONCE_SIZE);
    const auto sealed = all.subspan(HEADER_SIZE + SALT_SIZE + NONCE_SIZE, AEK_KEY_SIZE + TAG_SIZE);
    const auto cipher = Botan::AEAD_Mode::create_or_throw("AES-256/GCM", Botan::DECRYPTION);
    cipher->set_key(password_key(password, header, salt));
    cipher->set_associated_data(bytes.data(), HEADER_SIZE);
    cipher->start(nonce.data(), nonce.size());
    SECRET_BYTES opened(sealed.begin(), sealed.end());
    try {
        cipher->finish(opened);
    } catch (const Botan::Invalid_Authentication_Tag&) {
        return false;
    }
    key = std::move(opened);
    return true;
}

} // namespace

bool read_aek_file(const std::string& path, const SECRET_BYTES* password, SECRET_BYTES& key,
                   std::string& message)
{
    SECRET_BYTES bytes;
    HEADER header;
    std::string reason;
    if (!read_secret_file(path, FILE_LIMIT, "an AES key file", bytes, message))
        return false;
    if (!decode_header(bytes, header, reason)) {
        message = path + " " + reason + ".";
        return false;
    }
    if (header.protection == PROTECTION_NONE) {
        const auto first = bytes.begin() + HEADER_SIZE;
        key.assign(first, first + AEK_KEY_SIZE);
        return true;
    }
    if (password == nullptr) {
        message = path + " holds a key under a password, and no password file is named; name a file with the "
                         "password in its first line.";
        return false;
    }
    if (!unseal(bytes, header, *password, key)) {
        message = path + " holds a key that the password does not open; correct the password.";
        return false;
    }
    return true;
}

bool write_aek_file(const std::string& path, const SECRET_BYTES& key, const SECRET_BYTES* password,
                    std::string& message)
{
    if (key.size() != AEK_KEY_SIZE) {
        message =
            "An AES key file takes a key of 256 bits; this one has " + std::to_string(key.size() * 8) + ".";
        return false;
    }
    HEADER header;
    if (password != nullptr)
        header = {PROTECTION_PASSWORD, COST_LOG2, BLOCKS, PARALLEL};
    const std::vector<std::uint8_t> head = encode_header(header);
    SECRET_BYTES bytes(head.begin(), head.end());
    if (password == nullptr) {
        bytes.insert(bytes.end(), key.begin(), key.end());
    } else {
        Botan::AutoSeeded_RNG random;
        const SECRET_BYTES fresh = random.random_vec(SALT_SIZE + NONCE_SIZE);
        bytes.insert(bytes.end(), fresh.begin(), fresh.end());
        const auto cipher = Botan::AEAD_Mode::create_or_throw("AES-256/GCM", Botan::ENCRYPTION);
        cipher->set_key(password_key(*password, header, std::span(fresh).first(SALT_SIZE)));
        cipher->set_associated_data(head.data(), head.size());
        cipher->start(fresh.data() + SALT_SIZE, NONCE_SIZE);
        SECRET_BYTES sealed = key;
        cipher->finish(sealed);
        bytes.insert(bytes.end(), sealed.begin(), sealed.end());
    }
    append_crc(bytes);
    return write_new_secret_file(path, bytes, message);
}

bool write_new_secret_file(const std::string& path, const SECRET_BYTES& bytes, std::string& message)
{
    struct stat facts {
    };
    if (lstat(path.c_str(), &facts) == 0) {
        message = path + " is there already; a key file is never overwritten, so choose another name.";
        return false;
    }
    const auto file = ATOMIC_FILE::create(path, 0600, message);
    return file && file->write(bytes, message) && file->commit(message);
}
