#ifndef IMAGE_COMPARE_H
#define IMAGE_COMPARE_H

#include "byte_source.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

/// Compares decoded bytes with a range of the source that a file was made from.
class IMAGE_COMPARE
{
public:
    explicit IMAGE_COMPARE(const BYTE_SOURCE& image) : m_image(image) {}

    /// Compares `decoded` with the image at `offset`. False with the place and both values in `message`.
    bool equal(std::uint64_t offset, std::span<const std::uint8_t> decoded, std::string& message);

    /// As equal(), where the file holds the image from its end: the last decoded byte belongs to `offset`,
    /// the one before it to `offset` + 1, and so on.
    bool equal_reversed(std::uint64_t offset, std::span<const std::uint8_t> decoded, std::string& message);

    /// Compares the image from `offset` on, `length` bytes, with 0xFF.
    bool is_fill(std::uint64_t offset, std::uint64_t length, std::string& message);

private:
    bool load(std::uint64_t offset, std::size_t length, std::string& message);

    const BYTE_SOURCE& m_image;
    IO_BLOCK m_buffer;
};

/// The first position from `begin` on whose byte is not 0xFF (`fill` true) or is 0xFF (`fill` false);
/// bytes.size() when there is none.
std::size_t find_end_of_run(std::span<const std::uint8_t> bytes, std::size_t begin, bool fill);

/// Compares the whole of `file` with `length` bytes of `image` from `begin` on.
bool equal_to_image(const BYTE_SOURCE& file, const BYTE_SOURCE& image, std::uint64_t begin,
                    std::uint64_t length, bool bitswap, std::string& message);

/// Sends `length` bytes of `image` from `begin` on to the sink, with the bits of each byte reversed when
/// `bitswap` is set.
bool send_image(const BYTE_SOURCE& image, std::uint64_t begin, std::uint64_t length, bool bitswap,
                BYTE_SINK& sink, std::string& message);

#endif
