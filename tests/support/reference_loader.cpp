#include "reference_loader.h"

#include <botan/hash.h>
#include <lz4.h>
#include <zstd.h>

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
    explicit DEVICE_CHAIN(LOADED_STREAM& stream) : m_stream(stream) {}

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
        check_lengths();
        LOADED_IMAGE image;
        image.partial = cursor.number(1) == 1;
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
        case 0x10:
        case 0x11:
        case 0x12:
            frames(opcode, cursor);
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
        const BYTES stored = cursor.rest();
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
        check_lengths();
        require(m_stream.images.size() == m_announced && m_announced > 0, "wrong number of images");
        const auto hash = Botan::HashFunction::create_or_throw("SHA-256");
        hash->update(before.data(), before.size());
        require(hash->final_stdvec() == std::vector<std::uint8_t>(digest.begin(), digest.end()),
                "wrong digest");
    }

    LOADED_STREAM& m_stream;
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

bool load_configuration_stream(std::span<const std::uint8_t> bytes, LOADED_STREAM& stream, std::string& error)
{
    stream = {};
    try {
        DEVICE_CHAIN(stream).load(bytes);
    } catch (const std::runtime_error& problem) {
        error = problem.what();
        return false;
    }
    return true;
}
