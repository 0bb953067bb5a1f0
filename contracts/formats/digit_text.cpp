#include "digit_text.h"

#include "format_text.h"
#include "hex_digits.h"

#include <algorithm>
#include <cstring>

namespace
{
constexpr std::size_t BUFFER = 256 * 1024;

/// Copies bytes in the opposite order.
void copy_reversed(const std::uint8_t* from, std::size_t count, std::uint8_t* into)
{
    const std::uint8_t* end = from + count;
    for (; count >= 8; count -= 8) {
        std::uint64_t word;
        end -= 8;
        std::memcpy(&word, end, 8);
        word = __builtin_bswap64(word);
        std::memcpy(into, &word, 8);
        into += 8;
    }
    while (count-- != 0)
        *into++ = *--end;
}
} // namespace

bool DIGIT_TEXT::load_reversed(std::uint64_t begin, std::uint64_t end, std::span<const std::uint8_t>& bytes,
                               std::string& message)
{
    // The window ends at a multiple of its size, so that ascending and descending pieces both fit in.
    const std::uint64_t first = std::max(begin, (end - 1) / BLOCK * BLOCK);
    if (first < m_window_begin || end > m_window_begin + m_window.size()) {
        m_window_begin = (end - 1) / BLOCK * BLOCK;
        const std::uint64_t count = std::min<std::uint64_t>(BLOCK, m_image.size() - m_window_begin);
        m_window.resize(static_cast<std::size_t>(count));
        if (!m_image.read(m_window_begin, m_window, message)) {
            m_window.clear();
            return false;
        }
    }
    const std::size_t count = static_cast<std::size_t>(end - first);
    m_reversed.resize(BLOCK);
    copy_reversed(m_window.data() + (first - m_window_begin), count, m_reversed.data());
    bytes = {m_reversed.data(), count};
    return true;
}

std::string DIGIT_TEXT::with_sum(std::string_view introduction, unsigned digit_count) const
{
    return std::string(introduction) + hex_text(m_value, digit_count).substr(2);
}

DIGIT_TEXT_WRITER::DIGIT_TEXT_WRITER(const BYTE_SOURCE& image, CHECKSUM sum, BYTE_SINK& sink)
    : DIGIT_TEXT(image, sum), m_sink(sink), m_buffer(BUFFER)
{
}

bool DIGIT_TEXT_WRITER::flush(std::string& message)
{
    const std::span<const std::uint8_t> filled(m_buffer.data(), m_filled);
    m_filled = 0;
    add_to_sum(filled);
    return filled.empty() || m_sink.write(filled, message);
}

bool DIGIT_TEXT_WRITER::text(std::string_view characters, std::string& message)
{
    while (!characters.empty()) {
        if (!reserve(1, message))
            return false;
        const std::size_t count = std::min(characters.size(), m_buffer.size() - m_filled);
        std::memcpy(m_buffer.data() + m_filled, characters.data(), count);
        m_filled += count;
        characters.remove_prefix(count);
    }
    return true;
}

bool DIGIT_TEXT_WRITER::digits(std::uint64_t offset, std::uint64_t length, std::string& message)
{
    for (std::uint64_t end = offset + length; end != offset;) {
        std::span<const std::uint8_t> bytes;
        if (!load_reversed(offset, end, bytes, message) ||
            !reserve(2 * bytes.size() + bytes.size() / LINE_BYTES + 1, message))
            return false;
        end -= bytes.size();
        char* at = reinterpret_cast<char*>(m_buffer.data() + m_filled);
        const char* const begin = at;
        while (!bytes.empty()) {
            const std::size_t odd = bytes.size() % LINE_BYTES;
            std::size_t line = odd != 0 ? odd : LINE_BYTES;
            const std::uint8_t* byte = bytes.data();
            bytes = bytes.subspan(line);
            for (; line >= 16; line -= 16, byte += 16, at += 32)
                hex_digits::encode_16(byte, at);
            for (; line != 0; --line, at += 2)
                hex_digits::put(at, *byte++);
            *at++ = '\n';
        }
        m_filled += static_cast<std::size_t>(at - begin);
    }
    return true;
}

bool DIGIT_TEXT_WRITER::checksum(std::string_view introduction, unsigned digit_count, std::string& message)
{
    return flush(message) && text(with_sum(introduction, digit_count), message);
}

DIGIT_TEXT_CHECK::DIGIT_TEXT_CHECK(const BYTE_SOURCE& image, CHECKSUM sum, const BYTE_SOURCE& file)
    : DIGIT_TEXT(image, sum), m_reader(file)
{
}

bool DIGIT_TEXT_CHECK::refuse(const std::string& reason, std::string& message) const
{
    message = "Line " + std::to_string(m_line) + " " + reason +
              "; the file was not written correctly, generate "
              "it again.";
    return false;
}

/// Makes so many characters visible, fewer only at the end of the file.
bool DIGIT_TEXT_CHECK::need(std::size_t count, std::string& message)
{
    if (m_reader.available() >= count)
        return true;
    sum_up(); // what was taken goes out of sight
    return m_reader.need(count, message);
}

void DIGIT_TEXT_CHECK::take(std::size_t count, std::uint64_t lines)
{
    m_line += lines;
    m_reader.skip(count);
    m_unsummed += count;
}

void DIGIT_TEXT_CHECK::sum_up()
{
    add_to_sum({m_reader.data() - m_unsummed, m_unsummed});
    m_unsummed = 0;
}

bool DIGIT_TEXT_CHECK::text(std::string_view characters, std::string& message)
{
    while (!characters.empty()) {
        // By lines, so that the place is told.
        const std::size_t count = std::min(characters.find('\n'), characters.size() - 1) + 1;
        if (!need(count, message))
            return false;
        if (m_reader.available() < count)
            return refuse("is not complete", message);
        if (std::memcmp(m_reader.data(), characters.data(), count) != 0)
            return refuse("does not say what the setup asks for", message);
        take(count, characters[count - 1] == '\n' ? 1 : 0);
        characters.remove_prefix(count);
    }
    return true;
}

/// One line, digit by digit.
bool DIGIT_TEXT_CHECK::line_says(std::span<const std::uint8_t> bytes, std::uint64_t image_end,
                                 std::string& message)
{
    const std::size_t characters = 2 * bytes.size() + 1;
    if (!need(characters, message))
        return false;
    if (m_reader.available() < characters)
        return refuse("is not complete", message);
    const std::uint8_t* at = m_reader.data();
    const bool says = std::all_of(bytes.begin(), bytes.end(), [&at](std::uint8_t byte) {
        at += 2;
        return hex_digits::get(at - 2, hex_digits::UPPER_CASE_VALUES) == byte;
    });
    if (!says || *at != '\n')
        return refuse("does not hold the image bytes " + hex_text(image_end - bytes.size()) + " to " +
                          hex_text(image_end - 1),
                      message);
    take(characters, 1);
    return true;
}

bool DIGIT_TEXT_CHECK::digits(std::uint64_t offset, std::uint64_t length, std::string& message)
{
    constexpr std::size_t LINES_AT_ONCE = CACHED_BLOCK_SIZE / 2 / DIGIT_LINE_LENGTH;
    for (std::uint64_t end = offset + length; end != offset;) {
        std::span<const std::uint8_t> bytes;
        if (!load_reversed(offset, end, bytes, message))
            return false;
        while (!bytes.empty()) {
            const std::size_t odd = bytes.size() % LINE_BYTES;
            const std::size_t lines = odd != 0 ? 1 : std::min(LINES_AT_ONCE, bytes.size() / LINE_BYTES);
            std::size_t done = odd != 0 ? odd : LINE_BYTES;
            if (!need(lines * DIGIT_LINE_LENGTH, message))
                return false;
            if (odd == 0 && m_reader.available() >= lines * DIGIT_LINE_LENGTH &&
                digit_lines_say(m_reader.data(), bytes.first(lines * LINE_BYTES))) {
                done = lines * LINE_BYTES;
                take(lines * DIGIT_LINE_LENGTH, lines);
            } else if (!line_says(bytes.first(done), end, message)) {
                return false;
            }
            bytes = bytes.subspan(done);
            end -= done;
        }
    }
    return true;
}

bool DIGIT_TEXT_CHECK::checksum(std::string_view introduction, unsigned digit_count, std::string& message)
{
    sum_up();
    const std::string wanted = with_sum(introduction, digit_count);
    if (!need(wanted.size(), message))
        return false;
    if (m_reader.available() < wanted.size() ||
        std::memcmp(m_reader.data(), wanted.data(), wanted.size()) != 0)
        return refuse("does not have the checksum " + wanted.substr(introduction.size()), message);
    take(wanted.size(), 0);
    return true;
}

bool DIGIT_TEXT_CHECK::end(std::string& message)
{
    return m_reader.at_end() || refuse("stands behind the end", message);
}
