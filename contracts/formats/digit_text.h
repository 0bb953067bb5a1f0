#ifndef DIGIT_TEXT_H
#define DIGIT_TEXT_H

#include "block_reader.h"
#include "byte_source.h"
#include "digit_compare.h"

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// A text file that carries an image as hexadecimal digits, as a sequence of pieces. A format describes its
/// file once; writing and checking are two takers of the same description, of which the second one reads the
/// digits and compares the bytes that they say.
class DIGIT_TEXT
{
public:
    /// Bytes in a full line of digits. Lines stay below the 256 characters that SVF allows.
    static constexpr std::size_t LINE_BYTES = DIGIT_LINE_BYTES;

    /// A checksum in the continuing form of crc32().
    using CHECKSUM = std::uint32_t (*)(std::span<const std::uint8_t>, std::uint32_t);

    virtual ~DIGIT_TEXT() = default;

    /// These characters.
    virtual bool text(std::string_view characters, std::string& message) = 0;

    /// `length` bytes of the image from `offset` on as one large number, of which the byte at `offset` is the
    /// least significant: upper-case digits in lines of LINE_BYTES bytes, the first line taking what is
    /// over, each line with a line feed. `offset` is a multiple of LINE_BYTES.
    virtual bool digits(std::uint64_t offset, std::uint64_t length, std::string& message) = 0;

    /// The characters `introduction`, which do not count, and the checksum of all before them in so many
    /// upper-case digits.
    virtual bool checksum(std::string_view introduction, unsigned digit_count, std::string& message) = 0;

protected:
    DIGIT_TEXT(const BYTE_SOURCE& image, CHECKSUM sum) : m_image(image), m_sum(sum) {}

    /// Bytes of the image that end at `end`, at most BLOCK and not below `begin`, whole lines from there on,
    /// the last byte first.
    bool load_reversed(std::uint64_t begin, std::uint64_t end, std::span<const std::uint8_t>& bytes,
                       std::string& message);
    void add_to_sum(std::span<const std::uint8_t> characters) { m_value = m_sum(characters, m_value); }
    std::string with_sum(std::string_view introduction, unsigned digit_count) const;

private:
    static constexpr std::size_t BLOCK = 64 * 1024;
    static_assert(BLOCK % LINE_BYTES == 0);

    const BYTE_SOURCE& m_image;
    const CHECKSUM m_sum;
    std::uint32_t m_value = 0;
    IO_BLOCK m_window; ///< what was read last, so that short pieces cost no read each
    std::uint64_t m_window_begin = 0;
    std::vector<std::uint8_t> m_reversed;
};

/// Writes the pieces to a sink, in large blocks.
class DIGIT_TEXT_WRITER final : public DIGIT_TEXT
{
public:
    DIGIT_TEXT_WRITER(const BYTE_SOURCE& image, CHECKSUM sum, BYTE_SINK& sink);

    bool text(std::string_view characters, std::string& message) override;
    bool digits(std::uint64_t offset, std::uint64_t length, std::string& message) override;
    bool checksum(std::string_view introduction, unsigned digit_count, std::string& message) override;
    /// Sends what is left; to be called at the end.
    bool flush(std::string& message);

private:
    /// Makes room for so many characters.
    bool reserve(std::size_t count, std::string& message)
    {
        return m_buffer.size() - m_filled >= count || flush(message);
    }

    BYTE_SINK& m_sink;
    std::vector<std::uint8_t> m_buffer;
    std::size_t m_filled = 0;
};

/// Compares a file with the pieces.
class DIGIT_TEXT_CHECK final : public DIGIT_TEXT
{
public:
    DIGIT_TEXT_CHECK(const BYTE_SOURCE& image, CHECKSUM sum, const BYTE_SOURCE& file);

    bool text(std::string_view characters, std::string& message) override;
    bool digits(std::uint64_t offset, std::uint64_t length, std::string& message) override;
    bool checksum(std::string_view introduction, unsigned digit_count, std::string& message) override;
    /// That nothing is left; to be called at the end.
    bool end(std::string& message);

private:
    bool refuse(const std::string& reason, std::string& message) const;
    bool need(std::size_t count, std::string& message);
    bool line_says(std::span<const std::uint8_t> bytes, std::uint64_t image_end, std::string& message);
    void take(std::size_t count, std::uint64_t lines);
    void sum_up();

    BLOCK_READER m_reader;
    std::size_t m_unsummed = 0; ///< characters taken that the checksum does not have yet
    std::uint64_t m_line = 1;
};

#endif
