#include "security_test_support.h"

#include "reference_crypto.h"
#include "test_keys.h"

#include <algorithm>

std::string SECURITY_TEST::add_file(const std::string& name, const TEST_CONTENT& content)
{
    write_file(m_directory / name, make_file(content));
    return m_directory / name;
}

BYTES SECURITY_TEST::build(const std::vector<STREAM_INPUT>& inputs)
{
    std::string message;
    const auto stream = build_configuration_stream(inputs, m_directory.path(), message);
    EXPECT_NE(stream, nullptr) << message;
    return stream ? bytes_of(*stream) : BYTES{};
}

std::string SECURITY_TEST::refusal(const std::vector<STREAM_INPUT>& inputs)
{
    std::string message;
    EXPECT_EQ(build_configuration_stream(inputs, m_directory.path(), message), nullptr);
    return message;
}

LOADED_STREAM SECURITY_TEST::load(const BYTES& stream, const BYTES& key)
{
    LOADED_STREAM loaded;
    std::string error;
    EXPECT_TRUE(load_configuration_stream(stream, loaded, error, key)) << error;
    if (loaded.images.empty())
        loaded.images.emplace_back();
    return loaded;
}

std::string SECURITY_TEST::load_error(const BYTES& stream, const BYTES& key)
{
    LOADED_STREAM loaded;
    std::string error;
    EXPECT_FALSE(load_configuration_stream(stream, loaded, error, key));
    return error;
}

std::shared_ptr<const STREAM_SIGNER> SECURITY_TEST::signer(const std::string& curve)
{
    const std::string path = m_directory / ("key-" + curve + ".pem");
    make_private_pem(path, curve);
    PEM_KEY key;
    std::string message;
    EXPECT_TRUE(load_pem_key(path, nullptr, key, message)) << message;
    return key.signer;
}

BYTES counted_key(std::size_t size, std::uint8_t first)
{
    BYTES key(size);
    for (std::uint8_t& byte : key)
        byte = first++;
    return key;
}

std::shared_ptr<const STREAM_ENCRYPTION> encryption_with(const BYTES& key)
{
    const auto encryption = std::make_shared<STREAM_ENCRYPTION>();
    encryption->key = STREAM_KEY::derive(SECRET_BYTES(key.begin(), key.end()));
    encryption->info.key_bits = encryption->key->bits();
    encryption->info.id = encryption->key->id();
    return encryption;
}

std::vector<PACKET_PLACE> packets_of(const BYTES& stream)
{
    std::vector<PACKET_PLACE> packets;
    for (std::size_t at = 4; at + 8 <= stream.size();) {
        const std::size_t length = stream[at + 1] + stream[at + 2] * 256U + stream[at + 3] * 65536U;
        packets.push_back({stream[at], at, length + 8});
        at += length + 8;
    }
    return packets;
}

void mend_stream(BYTES& stream)
{
    for (const PACKET_PLACE& packet : packets_of(stream)) {
        if (packet.opcode == 0x7F) {
            const auto digest = reference_digest("SHA256", std::span(stream).first(packet.offset));
            std::copy(digest.begin(), digest.end(),
                      stream.begin() + static_cast<std::ptrdiff_t>(packet.offset + 4));
        }
        const auto checked = std::span<const std::uint8_t>(stream).subspan(packet.offset, packet.size - 4);
        put_number(stream, packet.offset + packet.size - 4, 4, reference_crc32(checked));
    }
}

void for_each_mutation(const BYTES& good, std::size_t bits_in, const std::function<void(const BYTES&)>& read)
{
    for (std::size_t bit = 0; bit < 8 * std::min(bits_in, good.size()); ++bit) {
        BYTES bad = good;
        bad[bit / 8] ^= static_cast<std::uint8_t>(1U << (bit % 8));
        read(bad);
    }
    for (std::size_t size = 0; size < good.size(); size += 1 + good.size() / 64)
        read(BYTES(good.begin(), good.begin() + static_cast<std::ptrdiff_t>(size)));
    for (std::size_t at = 0; at < good.size(); at += 1 + good.size() / 64) {
        BYTES bad = good;
        bad.insert(bad.begin() + static_cast<std::ptrdiff_t>(at), bad[at]);
        read(bad);
    }
}
