#include "image_compare.h"

#include "bit_swap.h"
#include "block_reader.h"
#include "format_text.h"

#include <algorithm>
#include <cstring>

namespace
{
bool differs(std::uint64_t offset, std::uint8_t decoded, std::uint8_t wanted, std::string& message)
{
    message = "The file holds " + hex_text(decoded, 2) + " for the image byte at " + hex_text(offset) +
              ", which is " + hex_text(wanted, 2) + "; it was not written correctly, generate it again.";
    return false;
}

bool beyond(std::uint64_t size, std::string& message)
{
    message = "The file holds more than the " + bytes_text(size) +
              " of the image; it was not written correctly, generate it again.";
    return false;
}
} // namespace

bool IMAGE_COMPARE::load(std::uint64_t offset, std::size_t length, std::string& message)
{
    if (offset > m_image.size() || length > m_image.size() - offset)
        return beyond(m_image.size(), message);
    if (m_buffer.size() < length)
        m_buffer.resize(length);
    return m_image.read(offset, {m_buffer.data(), length}, message);
}

bool IMAGE_COMPARE::equal(std::uint64_t offset, std::span<const std::uint8_t> decoded, std::string& message)
{
    if (!load(offset, decoded.size(), message))
        return false;
    if (decoded.empty() || std::memcmp(m_buffer.data(), decoded.data(), decoded.size()) == 0)
        return true;
    const auto [mine, wanted] = std::mismatch(decoded.begin(), decoded.end(), m_buffer.begin());
    return differs(offset + static_cast<std::uint64_t>(mine - decoded.begin()), *mine, *wanted, message);
}

bool IMAGE_COMPARE::equal_reversed(std::uint64_t offset, std::span<const std::uint8_t> decoded,
                                   std::string& message)
{
    if (!load(offset, decoded.size(), message))
        return false;
    const auto [mine, wanted] = std::mismatch(decoded.rbegin(), decoded.rend(), m_buffer.begin());
    if (mine == decoded.rend())
        return true;
    return differs(offset + static_cast<std::uint64_t>(mine - decoded.rbegin()), *mine, *wanted, message);
}

bool IMAGE_COMPARE::is_fill(std::uint64_t offset, std::uint64_t length, std::string& message)
{
    while (length != 0) {
        const std::size_t count =
            static_cast<std::size_t>(std::min<std::uint64_t>(length, CACHED_BLOCK_SIZE));
        if (!load(offset, count, message))
            return false;
        const std::size_t place = find_end_of_run({m_buffer.data(), count}, 0, true);
        if (place != count)
            return differs(offset + place, 0xFF, m_buffer[place], message);
        offset += count;
        length -= count;
    }
    return true;
}

std::size_t find_end_of_run(std::span<const std::uint8_t> bytes, std::size_t begin, bool fill)
{
    std::size_t place = begin;
    if (fill) {
        std::uint64_t words[8];
        for (; bytes.size() - place >= sizeof words; place += sizeof words) {
            std::memcpy(words, bytes.data() + place, sizeof words);
            if ((words[0] & words[1] & words[2] & words[3] & words[4] & words[5] & words[6] & words[7]) !=
                ~std::uint64_t(0))
                break;
        }
        while (place != bytes.size() && bytes[place] == 0xFF)
            ++place;
        return place;
    }
    const void* found =
        place == bytes.size() ? nullptr : std::memchr(bytes.data() + place, 0xFF, bytes.size() - place);
    return found ? static_cast<std::size_t>(static_cast<const std::uint8_t*>(found) - bytes.data())
                 : bytes.size();
}

bool equal_to_image(const BYTE_SOURCE& file, const BYTE_SOURCE& image, std::uint64_t begin,
                    std::uint64_t length, bool bitswap, std::string& message)
{
    if (file.size() != length) {
        message = "The file has " + bytes_text(file.size()) + " instead of " + bytes_text(length) +
                  "; it was not written completely, generate it again.";
        return false;
    }
    IMAGE_COMPARE compare(image);
    IO_BLOCK block(static_cast<std::size_t>(std::min<std::uint64_t>(length, CACHED_BLOCK_SIZE)));
    for (std::uint64_t done = 0; done != length;) {
        const std::size_t count =
            static_cast<std::size_t>(std::min<std::uint64_t>(length - done, block.size()));
        const std::span<std::uint8_t> part(block.data(), count);
        if (!file.read(done, part, message))
            return false;
        if (bitswap)
            swap_bits(part);
        if (!compare.equal(begin + done, part, message))
            return false;
        done += count;
    }
    return true;
}

bool send_image(const BYTE_SOURCE& image, std::uint64_t begin, std::uint64_t length, bool bitswap,
                BYTE_SINK& sink, std::string& message)
{
    IO_BLOCK block(static_cast<std::size_t>(std::min<std::uint64_t>(length, CACHED_BLOCK_SIZE)));
    for (std::uint64_t done = 0; done != length;) {
        const std::size_t count =
            static_cast<std::size_t>(std::min<std::uint64_t>(length - done, block.size()));
        const std::span<std::uint8_t> part(block.data(), count);
        if (!image.read(begin + done, part, message))
            return false;
        if (bitswap)
            swap_bits(part);
        if (!sink.write(part, message))
            return false;
        done += count;
    }
    return true;
}
