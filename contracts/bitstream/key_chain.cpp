#include "key_chain.h"

#include "atomic_file.h"
#include "little_endian.h"

#include <botan/hash.h>

#include <algorithm>

namespace
{

constexpr std::array<std::uint8_t, 8> MAGIC = {0x89, 'I', 'W', 'C', 0x0D, 0x0A, 0x1A, 0x0A};
constexpr std::uint16_t VERSION = 1;
constexpr std::string_view CONTEXT = "imagewright key chain 1";
constexpr std::size_t FILE_LIMIT = 4096;

std::vector<std::uint8_t> key_record(const ECDSA_PUBLIC_KEY& key)
{
    return encode_signature(key, {});
}

/// What the signer of the link has signed: the key and its place in the chain.
SHA384_DIGEST digest_of(std::size_t index, const ECDSA_PUBLIC_KEY& key)
{
    const auto hash = Botan::HashFunction::create_or_throw("SHA-384");
    hash->update(std::string(CONTEXT));
    hash->update(static_cast<std::uint8_t>(index + 1));
    hash->update(key_record(key));
    SHA384_DIGEST digest{};
    hash->final(digest.data());
    return digest;
}

/// Curve, zeros, X, Y.
bool read_key(RECORD_READER& reader, ECDSA_PUBLIC_KEY& key)
{
    const std::uint8_t curve = reader.u8();
    const bool zeros = reader.u24() == 0;
    if (!reader.good() || !zeros || curve < 1 || curve > 2)
        return false;
    key.curve = static_cast<ECDSA_CURVE>(curve);
    const auto point = reader.bytes(2 * ecdsa_size(key.curve));
    key.point.assign(point.begin(), point.end());
    return reader.good();
}

} // namespace

std::vector<std::uint8_t> encode_key_chain(const KEY_CHAIN& chain)
{
    RECORD_WRITER writer;
    writer.u8(static_cast<std::uint8_t>(chain.size()));
    writer.u24(0);
    for (const KEY_CHAIN_LINK& link : chain) {
        writer.bytes(key_record(link.key));
        writer.bytes(encode_signature(link.signer, link.signature));
    }
    return writer.take();
}

bool decode_key_chain(std::span<const std::uint8_t> bytes, KEY_CHAIN& chain, std::string& reason)
{
    chain.clear();
    RECORD_READER reader(bytes);
    const std::size_t count = reader.u8();
    reason = "the key chain is malformed";
    if (reader.u24() != 0 || !reader.good() || count == 0 || count > KEY_CHAIN_LIMIT)
        return false;
    for (std::size_t i = 0; i < count; ++i) {
        KEY_CHAIN_LINK link;
        if (!read_key(reader, link.key) || !read_key(reader, link.signer))
            return false;
        const auto numbers = reader.bytes(2 * ecdsa_size(link.signer.curve));
        if (!reader.good())
            return false;
        link.signature.assign(numbers.begin(), numbers.end());
        chain.push_back(link);
    }
    if (!reader.used_up())
        return false;
    for (std::size_t i = 0; i < count; ++i) {
        if ((i != 0 && chain[i].signer != chain[i - 1].key) ||
            !ecdsa_verify(chain[i].signer, digest_of(i, chain[i].key), chain[i].signature)) {
            reason = "link " + std::to_string(i + 1) + " of the key chain is not signed by the key before it";
            return false;
        }
    }
    return true;
}

bool read_key_chain(const std::string& path, KEY_CHAIN& chain, std::string& message)
{
    const auto file = FILE_SOURCE::open(path, message);
    if (!file)
        return false;
    std::vector<std::uint8_t> bytes(
        static_cast<std::size_t>(std::min<std::uint64_t>(file->size(), FILE_LIMIT + 1)));
    if (!file->read(0, bytes, message))
        return false;
    RECORD_READER reader(bytes);
    const auto magic = reader.bytes(MAGIC.size());
    const std::uint16_t version = reader.u16();
    const std::uint16_t zero = reader.u16();
    if (!reader.good() || !std::equal(magic.begin(), magic.end(), MAGIC.begin())) {
        message = path + " is no key chain; name one.";
        return false;
    }
    if (version != VERSION) {
        message = path + " has version " + std::to_string(version) + "; this program reads version " +
                  std::to_string(VERSION) + ".";
        return false;
    }
    std::string reason = "the key chain is malformed";
    const std::span<const std::uint8_t> record = std::span(bytes).subspan(MAGIC.size() + 4);
    if (bytes.size() > FILE_LIMIT || zero != 0 || !decode_key_chain(record, chain, reason)) {
        message = path + " is damaged: " + reason + "; take a good copy of it.";
        return false;
    }
    return true;
}

bool extend_key_chain(KEY_CHAIN chain, const ECDSA_PUBLIC_KEY& key, const STREAM_SIGNER& signer,
                      const std::string& output, std::string& message)
{
    if (chain.size() == KEY_CHAIN_LIMIT) {
        message = "The key chain has " + std::to_string(KEY_CHAIN_LIMIT) +
                  " keys already, which is the most that there can be.";
        return false;
    }
    if (!chain.empty() && chain.back().key != signer.public_key()) {
        message = "The key chain ends with another key than the one that is to sign; name the private key of "
                  "its last link.";
        return false;
    }
    KEY_CHAIN_LINK link{key, signer.public_key(), {}};
    if (!signer.sign(digest_of(chain.size(), key), link.signature, message))
        return false;
    chain.push_back(link);
    RECORD_WRITER content;
    content.bytes(MAGIC);
    content.u16(VERSION);
    content.u16(0);
    content.bytes(encode_key_chain(chain));
    const auto file = ATOMIC_FILE::create(output, 0666, message);
    return file && file->write(content.content(), message) && file->commit(message);
}
