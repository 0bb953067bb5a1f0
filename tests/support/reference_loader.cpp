#include "reference_loader.h"

#include "reference_crypto.h"

#include <lz4.h>
#include <zstd.h>

#include <algorithm>
#include <array>
#include <stdexcept>

namespace
{

using BYTES = std::span<const std::uint8_t>;

constexpr std::array<std::uint32_t, 256> make_crc_table()
{
    std::array<std::uint32_t, 256> table{};
    for (std::uint32_t i = 0; i < table.size(); ++i) {
        std::uint32_t value = i;
        for (int bit = 0; bit < 8; ++bit)
            value = (value & 1U) != 0 ? 0xEDB88320U ^ (value >> 1) : value >> 1;
        table[i] = value;
    }
    return table;
}

void require(bool holds, const std::string& what)
{
    if (!holds)
        throw std::runtime_error(what);
}

/// Takes numbers and texts off the front of some bytes.
class CURSOR
{
public:
    explicit CURSOR(BYTES bytes) : m_left(bytes) {}

    BYTES take(std::size_t count)
    {
        require(count <= m_left.size(), "the bytes end too early");
        const BYTES taken = m_left.subspan(0, count);
        m_left = m_left.subspan(count);
        return taken;
    }
    std::uint64_t number(std::size_t count)
    {
        std::uint64_t value = 0;
        const BYTES taken = take(count);
        for (std::size_t i = count; i-- > 0;)
            value = value * 256 + taken[i];
        return value;
    }
    std::string text()
    {
        const BYTES taken = take(static_cast<std::size_t>(number(1)));
        return {taken.begin(), taken.end()};
    }
    BYTES rest() { return take(m_left.size()); }
    bool empty() const { return m_left.empty(); }
    std::size_t left() const { return m_left.size(); }

private:
    BYTES m_left;
};

/// The device's side of the stream.
class DEVICE_CHAIN
{
public:
    DEVICE_CHAIN(LOADED_STREAM& stream, BYTES device_key) : m_stream(stream), m_device_key(device_key) {}

    void load(BYTES bytes)
    {
        CURSOR cursor(bytes);
        require(cursor.number(4) == 0x5E3C9AF1, "no sync word");
        bool done = false;
        while (!done) {
            const std::size_t start = bytes.size() - cursor.left();
            const auto opcode = static_cast<unsigned>(cursor.number(1));
            const auto length = static_cast<std::size_t>(cursor.number(3));
            const BYTES payload = cursor.take(length);
            const std::size_t end = bytes.size() - cursor.left();
            require(cursor.number(4) == reference_crc32(bytes.subspan(start, end - start)),
                    "wrong packet checksum at " + std::to_string(start));
            m_all = bytes;
            m_packet_start = start;
            done = opcode == 0x7F;
            if (done)
                finish(payload, bytes.subspan(0, start));
            else
                packet(opcode, payload);
        }
        m_stream.used = bytes.size() - cursor.left();
    }

private:
    void packet(unsigned opcode, BYTES payload)
    {
        CURSOR cursor(payload);
        require((opcode == 0x01) == (m_announced == 0),
                "the begin packet is not the first or not the only one");
        if (opcode == 0x01) {
            require(cursor.number(2) == 1, "unknown version");
            m_announced = static_cast<std::size_t>(cursor.number(2));
            require(m_announced > 0, "no images announced");
        } else if (opcode == 0x02) {
            begin_image(cursor);
        } else {
            require(!m_stream.images.empty(), "a packet before the first device");
            image_packet(opcode, cursor);
        }
        require(cursor.empty(), "a packet is too long");
    }

    void begin_image(CURSOR& cursor)
    {
        check_image();
        LOADED_IMAGE image;
        const std::uint64_t flags = cursor.number(1);
        require(flags < 32, "unknown flags");
        image.partial = (flags & 1U) != 0;
        m_signature_due = (flags & 2U) != 0;
        image.decompression_during_pr = (flags & 4U) != 0;
        image.replaces_factory = (flags & 8U) != 0;
        image.application = (flags & 16U) != 0;
        m_chain.clear();
        m_chain_end.clear();
        image.signed_begin = m_packet_start;
        for (std::uint64_t& length : m_lengths)
            length = cursor.number(8);
        image.idcode = static_cast<std::uint32_t>(cursor.number(4));
        image.device = cursor.text();
        m_stream.images.push_back(image);
    }

    void image_packet(unsigned opcode, CURSOR& cursor)
    {
        LOADED_IMAGE& image = m_stream.images.back();
        switch (opcode) {
        case 0x03:
            image.scheme = static_cast<std::uint32_t>(cursor.number(4));
            break;
        case 0x04:
            for (std::uint64_t count = cursor.number(2); count > 0; --count) {
                const bool value = cursor.number(1) != 0;
                image.options[cursor.text()] = value;
            }
            break;
        case 0x05: {
            const BYTES record = cursor.rest();
            image.option_block.assign(record.begin(), record.end());
            break;
        }
        case 0x06:
            for (std::uint64_t count = cursor.number(2); count > 0; --count) {
                LOADED_IMAGE::REGION region;
                region.offset = cursor.number(8);
                region.length = cursor.number(8);
                region.name = cursor.text();
                image.regions.push_back(region);
            }
            break;
        case 0x07: {
            const BYTES record = cursor.rest();
            require(record.size() == 24 && record[0] == 1, "unknown encryption");
            image.key_info.assign(record.begin(), record.end());
            image.prepared_for_encryption = (record[3] & 2U) != 0;
            require(!image.prepared_for_encryption || !m_signature_due, "a prepared image is signed");
            break;
        }
        case 0x08: {
            const BYTES record = cursor.rest();
            image.firmware_record.assign(record.begin(), record.end());
            break;
        }
        case 0x09: {
            const BYTES record = cursor.rest();
            require(record.size() == 8 && record[4] < 2 && record[5] == 0 && record[6] == 0 && record[7] == 0,
                    "a malformed update record");
            image.update_record.assign(record.begin(), record.end());
            break;
        }
        case 0x0A:
            key_chain(cursor);
            break;
        case 0x10:
        case 0x11:
        case 0x12:
        case 0x18:
        case 0x19:
        case 0x1A:
            frames(opcode, cursor);
            break;
        case 0x20:
            signature(cursor);
            break;
        default:
            throw std::runtime_error("unknown opcode " + std::to_string(opcode));
        }
    }

    void frames(unsigned opcode, CURSOR& cursor)
    {
        LOADED_IMAGE& image = m_stream.images.back();
        std::array<std::vector<std::uint8_t>*, 4> parts = {&image.periphery, &image.core, &image.firmware,
                                                           &image.bootloader};
        const auto part = static_cast<std::size_t>(cursor.number(1));
        require(part < parts.size() && cursor.number(3) == 0, "unknown part");
        const auto length = static_cast<std::size_t>(cursor.number(4));
        std::vector<std::uint8_t>& target = *parts[part];
        require(cursor.number(8) == target.size(), "frames out of order");
        require(length > 0 && length <= 1048576, "frames of a wrong length");
        BYTES stored = cursor.rest();
        std::vector<std::uint8_t> decrypted;
        require((opcode >= 0x18) == (!image.key_info.empty() && !image.prepared_for_encryption),
                "frames in the clear and encrypted ones are mixed");
        if (opcode >= 0x18) {
            decrypted = decrypt(image, stored);
            stored = decrypted;
            opcode -= 8;
            ++image.encrypted_packets;
        }
        std::vector<std::uint8_t> plain(length);
        std::size_t got = 0;
        if (opcode == 0x10) {
            plain.assign(stored.begin(), stored.end());
            got = plain.size();
            ++image.plain_packets;
        } else if (opcode == 0x11) {
            const int result = LZ4_decompress_safe(reinterpret_cast<const char*>(stored.data()),
                                                   reinterpret_cast<char*>(plain.data()),
                                                   static_cast<int>(stored.size()), static_cast<int>(length));
            got = result < 0 ? 0 : static_cast<std::size_t>(result);
            ++image.lz4_packets;
        } else {
            got = ZSTD_decompress(plain.data(), plain.size(), stored.data(), stored.size());
            ++image.zstd_packets;
        }
        require(got == length, "frames do not decode to their length");
        target.insert(target.end(), plain.begin(), plain.end());
    }

    std::vector<std::uint8_t> decrypt(const LOADED_IMAGE& image, BYTES sealed)
    {
        const std::size_t key_size = image.key_info[1];
        require(m_device_key.size() == key_size, "the device has no key of that length");
        const std::string salt = "imagewright configuration stream 1";
        const auto id = reference_hkdf_sha256(m_device_key, salt, "key id", 8);
        require(std::equal(id.begin(), id.end(), image.key_info.begin() + 16), "the device has another key");
        const auto key = reference_hkdf_sha256(m_device_key, salt, "cipher", key_size);
        if (m_chain.empty()) {
            const auto digest = reference_digest(
                "SHA256", m_all.subspan(image.signed_begin, m_packet_start - image.signed_begin));
            m_chain.assign(digest.begin(), digest.begin() + 16);
        }
        std::vector<std::uint8_t> associated = m_chain;
        associated.push_back(m_all[m_packet_start]);
        const BYTES header = m_all.subspan(m_packet_start + 4, 16);
        associated.insert(associated.end(), header.begin(), header.end());
        std::vector<std::uint8_t> plain;
        require(reference_gcm_open(key, associated, sealed, plain), "frames that do not authenticate");
        m_chain.assign(sealed.end() - 16, sealed.end());
        return plain;
    }

    void signature(CURSOR& cursor)
    {
        LOADED_IMAGE& image = m_stream.images.back();
        require(m_signature_due, "a signature that is not announced");
        m_signature_due = false;
        const BYTES record = cursor.rest();
        image.signed_end = m_packet_start;
        image.signature_curve = take_signature(record, image.public_key, image.signature);
        require(m_chain_end.empty() || m_chain_end == image.public_key,
                "signed by another key than the chain's");
        require(
            reference_ecdsa_verify(image.signature_curve, image.public_key, image.signature,
                                   m_all.subspan(image.signed_begin, image.signed_end - image.signed_begin)),
            "the signature does not fit");
    }

    /// Curve, zeros, X, Y.
    static std::string take_key(CURSOR& cursor, BYTES& key)
    {
        const std::uint64_t curve = cursor.number(1);
        require(cursor.number(3) == 0 && (curve == 1 || curve == 2), "a malformed key");
        key = cursor.take(curve == 1 ? 64 : 96);
        return curve == 1 ? "P-256" : "P-384";
    }

    void key_chain(CURSOR& cursor)
    {
        LOADED_IMAGE& image = m_stream.images.back();
        require(m_signature_due, "a key chain without a signature");
        const std::uint64_t count = cursor.number(1);
        require(count >= 1 && count <= 3 && cursor.number(3) == 0, "a malformed key chain");
        for (std::uint64_t i = 1; i <= count; ++i) {
            BYTES key;
            BYTES signer;
            const std::size_t size = cursor.left();
            CURSOR before = cursor;
            take_key(cursor, key);
            const BYTES record = before.take(size - cursor.left());
            const std::string curve = take_key(cursor, signer);
            const BYTES numbers = cursor.take(signer.size());
            if (i == 1)
                image.root_key.assign(signer.begin(), signer.end());
            else
                require(std::equal(signer.begin(), signer.end(), m_chain_end.begin(), m_chain_end.end()),
                        "a broken key chain");
            const std::string context = "imagewright key chain 1";
            std::vector<std::uint8_t> text(context.begin(), context.end());
            text.push_back(static_cast<std::uint8_t>(i));
            text.insert(text.end(), record.begin(), record.end());
            require(reference_ecdsa_verify(curve, signer, numbers, text),
                    "a key that its signer did not sign");
            m_chain_end.assign(key.begin(), key.end());
        }
    }

    static std::string take_signature(BYTES record, std::vector<std::uint8_t>& key,
                                      std::vector<std::uint8_t>& numbers)
    {
        CURSOR cursor(record);
        const std::uint64_t curve = cursor.number(1);
        require(cursor.number(3) == 0 && (curve == 1 || curve == 2), "a malformed signature");
        const std::size_t size = curve == 1 ? 64 : 96;
        const BYTES point = cursor.take(size);
        key.assign(point.begin(), point.end());
        const BYTES pair = cursor.take(size);
        numbers.assign(pair.begin(), pair.end());
        require(cursor.empty(), "a malformed signature");
        return curve == 1 ? "P-256" : "P-384";
    }

    /// What must hold when all packets of an image are there.
    void check_image() const
    {
        check_lengths();
        require(!m_signature_due, "an image has no signature");
        if (m_stream.images.empty() || m_stream.images.back().firmware_record.empty())
            return;
        const LOADED_IMAGE& image = m_stream.images.back();
        std::vector<std::uint8_t> key;
        std::vector<std::uint8_t> numbers;
        const BYTES record = image.firmware_record;
        const std::string curve = take_signature(record.subspan(32), key, numbers);
        std::vector<std::uint8_t> text(record.begin(), record.begin() + 32);
        text.insert(text.end(), image.firmware.begin(), image.firmware.end());
        require(reference_ecdsa_verify(curve, key, numbers, text), "firmware that its maker did not sign");
    }

    void check_lengths() const
    {
        if (m_stream.images.empty())
            return;
        const LOADED_IMAGE& image = m_stream.images.back();
        require(image.periphery.size() == m_lengths[0] && image.core.size() == m_lengths[1] &&
                    image.firmware.size() == m_lengths[2] && image.bootloader.size() == m_lengths[3],
                "an image is not complete");
    }

    void finish(BYTES digest, BYTES before)
    {
        check_image();
        require(m_stream.images.size() == m_announced && m_announced > 0, "wrong number of images");
        require(reference_digest("SHA256", before) == std::vector<std::uint8_t>(digest.begin(), digest.end()),
                "wrong digest");
    }

    LOADED_STREAM& m_stream;
    BYTES m_device_key;
    BYTES m_all;
    std::size_t m_packet_start = 0;
    bool m_signature_due = false;
    std::vector<std::uint8_t> m_chain_end; ///< the last key of the key chain
    std::vector<std::uint8_t> m_chain;     ///< what the next encrypted packet is bound to
    std::size_t m_announced = 0;
    std::array<std::uint64_t, 4> m_lengths{};
};

} // namespace

std::vector<std::uint8_t> LOADED_IMAGE::configuration() const
{
    std::vector<std::uint8_t> all = periphery;
    all.insert(all.end(), core.begin(), core.end());
    return all;
}

std::uint32_t reference_crc32(std::span<const std::uint8_t> bytes)
{
    static constexpr auto TABLE = make_crc_table();
    std::uint32_t crc = 0xFFFFFFFFU;
    for (const std::uint8_t byte : bytes)
        crc = TABLE[(crc ^ byte) & 0xFFU] ^ (crc >> 8);
    return ~crc;
}

bool load_configuration_stream(std::span<const std::uint8_t> bytes, LOADED_STREAM& stream, std::string& error,
                               std::span<const std::uint8_t> device_key)
{
    stream = {};
    try {
        DEVICE_CHAIN(stream, device_key).load(bytes);
    } catch (const std::runtime_error& problem) {
        error = problem.what();
        return false;
    }
    return true;
}
