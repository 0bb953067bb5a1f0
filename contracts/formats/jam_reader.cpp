#include "jam_reader.h"

#include "format_text.h"
#include "hex_digits.h"
#include "stapl_crc.h"

#include <algorithm>
#include <charconv>
#include <cstring>

namespace
{
constexpr std::size_t MOST_STATEMENT = 8192;
constexpr char CRC_WORD[] = "CRC ";
constexpr std::size_t CRC_LINE = sizeof CRC_WORD - 1 + 4 + 2; // digits, semicolon, line feed

bool is_space(char c)
{
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

/// The texts in quotation marks of a statement.
std::vector<std::string> quoted(const std::string& statement)
{
    std::vector<std::string> texts;
    for (std::size_t begin = statement.find('"'); begin != std::string::npos;) {
        const std::size_t end = statement.find('"', begin + 1);
        if (end == std::string::npos)
            break;
        texts.push_back(statement.substr(begin + 1, end - begin - 1));
        begin = statement.find('"', end + 1);
    }
    return texts;
}
} // namespace

bool JAM_READER::refuse(const std::string& reason, std::string& message) const
{
    message = "The statement in line " + std::to_string(m_statement_line) + " " + reason;
    return false;
}

bool JAM_READER::read(std::string& message)
{
    if (!check_crc(message))
        return false;
    for (bool found = true; found;)
        if (!next(found, message) || (found && !interpret(message)))
            return false;
    if (m_stream_size == 0) {
        message = "The file holds no configuration stream.";
        return false;
    }
    return true;
}

bool JAM_READER::check_crc(std::string& message)
{
    std::array<char, CRC_LINE> line{};
    const bool long_enough = m_file.size() > line.size();
    if (long_enough && !m_file.read(m_file.size() - line.size(),
                                    {reinterpret_cast<std::uint8_t*>(line.data()), line.size()}, message))
        return false;
    std::uint32_t stored = 0;
    const char* const digits = line.data() + sizeof CRC_WORD - 1;
    const auto number = std::from_chars(digits, digits + 4, stored, 16);
    if (!long_enough || std::memcmp(line.data(), CRC_WORD, sizeof CRC_WORD - 1) != 0 ||
        number.ec != std::errc() || number.ptr != digits + 4 || line[CRC_LINE - 2] != ';' ||
        line[CRC_LINE - 1] != '\n') {
        message =
            "The file does not end with its CRC statement; it is not complete, or no STAPL file of this "
            "tool.";
        return false;
    }
    std::uint32_t crc = 0;
    std::uint64_t left = m_file.size() - CRC_LINE;
    for (BLOCK_READER reader(m_file); left != 0;) {
        if (!reader.need(1, message))
            return false;
        const std::size_t count = static_cast<std::size_t>(std::min<std::uint64_t>(left, reader.available()));
        crc = stapl_crc({reader.data(), count}, crc);
        reader.skip(count);
        left -= count;
    }
    if (crc != stored) {
        message = "The file has the CRC " + hex_text(crc, 4) + " instead of " + hex_text(stored, 4) +
                  "; it was changed or damaged.";
        return false;
    }
    return true;
}

/// Puts the next statement together, of an array with hexadecimal digits what stands before them.
bool JAM_READER::next(bool& found, std::string& message)
{
    found = false;
    m_statement.clear();
    bool in_comment = false;
    bool in_quotes = false;
    for (;;) {
        if (!m_reader.need(1, message))
            return false;
        if (m_reader.available() == 0) {
            m_statement_line = m_line;
            return m_statement.empty() || refuse("has no end; the file is not complete.", message);
        }
        const char character = static_cast<char>(*m_reader.data());
        m_reader.skip(1);
        if (character == '\n') {
            ++m_line;
            in_comment = false;
        }
        if (in_comment || (character == '\'' && !in_quotes)) {
            in_comment = character != '\n';
            continue;
        }
        if (!in_quotes && is_space(character)) {
            if (!m_statement.empty() && m_statement.back() != ' ')
                m_statement += ' ';
            continue;
        }
        if (m_statement.empty())
            m_statement_line = m_line;
        if (!in_quotes && character == ';') {
            found = true;
            return true;
        }
        in_quotes = in_quotes != (character == '"');
        m_statement += character;
        if (m_statement.size() > MOST_STATEMENT)
            return refuse("is longer than the language allows.", message);
        if (character == '$' && !in_quotes && m_statement.starts_with("BOOLEAN ")) {
            found = true;
            return true;
        }
    }
}

bool JAM_READER::interpret(std::string& message)
{
    if (m_statement.ends_with('$'))
        return read_array(message);
    if (m_statement.starts_with("NOTE ")) {
        const std::vector<std::string> texts = quoted(m_statement);
        if (texts.size() != 2)
            return refuse("is a note without key and value.", message);
        m_notes[texts[0]] = printable_text(texts[1]);
    } else if (m_statement.starts_with("ACTION ")) {
        const std::string name = m_statement.substr(7, m_statement.find_first_of(" =\"", 7) - 7);
        m_actions += (m_actions.empty() ? "" : ", ") + printable_text(name);
    }
    return true;
}

bool JAM_READER::read_array(std::string& message)
{
    const bool is_stream = m_statement.starts_with(std::string(jam::ARRAY) + "[");
    const std::uint64_t begin = m_reader.offset();
    std::uint64_t digits = 0;
    for (bool ended = false; !ended;) {
        if (!m_reader.need(1, message))
            return false;
        if (m_reader.available() == 0)
            return refuse("has no end; the file is not complete.", message);
        const std::uint8_t* const first = m_reader.data();
        const std::uint8_t* const last = first + m_reader.available();
        const std::uint8_t* at = first;
        for (; at != last && !ended; ++at) {
            if (hex_digits::VALUES[*at] < 16)
                ++digits;
            else if (*at == ';')
                ended = true;
            else if (!is_space(static_cast<char>(*at)))
                return refuse("has a character in its digits that is none.", message);
            m_line += *at == '\n';
        }
        m_reader.skip(static_cast<std::size_t>(at - first));
    }
    if (!is_stream)
        return true;
    std::uint64_t bits = 0;
    const char* const size = m_statement.data() + sizeof jam::ARRAY; // behind the bracket
    const auto number = std::from_chars(size, m_statement.data() + m_statement.size(), bits);
    if (number.ec != std::errc() || *number.ptr != ']' || bits == 0 || bits % 8 != 0 || digits != bits / 4)
        return refuse("declares a stream of another size than its digits have.", message);
    if (m_stream_size != 0)
        return refuse("declares a second stream.", message);
    m_stream_size = bits / 8;
    m_digits_begin = begin;
    m_digits_end = m_reader.offset() - 1;
    return true;
}

bool JAM_READER::send_stream(BYTE_SINK& sink, std::string& message) const
{
    IO_BLOCK block(
        static_cast<std::size_t>(std::min<std::uint64_t>(m_digits_end - m_digits_begin, CACHED_BLOCK_SIZE)));
    std::vector<std::uint8_t> bytes;
    bytes.reserve(block.size() / 2 + 1);
    unsigned low = 0x10; // the lower half of a byte, 0x10 for none
    for (std::uint64_t end = m_digits_end; end != m_digits_begin;) {
        const std::size_t count =
            static_cast<std::size_t>(std::min<std::uint64_t>(end - m_digits_begin, block.size()));
        end -= count;
        if (!m_file.read(end, {block.data(), count}, message))
            return false;
        for (std::size_t i = count; i-- != 0;) {
            const unsigned value = hex_digits::VALUES[block[i]];
            if (value > 15)
                continue;
            if (low > 15) {
                low = value;
                continue;
            }
            bytes.push_back(static_cast<std::uint8_t>(value << 4 | low));
            low = 0x10;
        }
        if (!bytes.empty() && !sink.write(bytes, message))
            return false;
        bytes.clear();
    }
    return true;
}
