#include "intel_hex_record.h"

#include "format_text.h"
#include "hex_digits.h"

#include <cstring>

namespace
{
constexpr std::size_t HEADER_LENGTH = 9; // colon, length, address, type
constexpr std::size_t LONGEST_LINE = HEADER_LENGTH + 2 * 255 + 2 + 2;

std::string quoted(std::uint8_t character)
{
    if (character > 0x20 && character < 0x7F)
        return std::string("'") + static_cast<char>(character) + "'";
    return "the byte " + hex_text(character, 2);
}

/// The data length that a record type asks for, or -1 when any will do.
int wanted_length(INTEL_HEX_RECORD::TYPE type)
{
    switch (type) {
    case INTEL_HEX_RECORD::DATA:
        return -1;
    case INTEL_HEX_RECORD::END_OF_FILE:
        return 0;
    case INTEL_HEX_RECORD::EXTENDED_SEGMENT_ADDRESS:
    case INTEL_HEX_RECORD::EXTENDED_LINEAR_ADDRESS:
        return 2;
    case INTEL_HEX_RECORD::START_SEGMENT_ADDRESS:
    case INTEL_HEX_RECORD::START_LINEAR_ADDRESS:
        return 4;
    }
    return -1;
}
constexpr std::size_t PLAIN_LENGTH = 16;
constexpr std::size_t PLAIN_LINE = HEADER_LENGTH + 2 * PLAIN_LENGTH + 3;

/// Reads the line that nearly every file is made of: 16 bytes of data in upper-case digits, ended by a line
/// feed. False for any other, which parse() then reads digit by digit.
inline bool plain_data(const std::uint8_t* text, std::uint8_t* data, std::uint16_t& address)
{
    const unsigned high = hex_digits::get(text + 3, hex_digits::UPPER_CASE_VALUES);
    const unsigned low = hex_digits::get(text + 5, hex_digits::UPPER_CASE_VALUES);
    const unsigned checksum = hex_digits::get(text + PLAIN_LINE - 3, hex_digits::UPPER_CASE_VALUES);
    unsigned sum = 0;
    const bool digits = hex_digits::decode_16(text + HEADER_LENGTH, data, sum);
    address = static_cast<std::uint16_t>(high << 8 | low);
    return digits && (high | low | checksum) <= 0xFF &&
           (PLAIN_LENGTH + high + low + sum + checksum) % 256 == 0 && std::memcmp(text, ":10", 3) == 0 &&
           std::memcmp(text + 7, "00", 2) == 0 && text[PLAIN_LINE - 1] == '\n';
}
} // namespace

bool INTEL_HEX_PARSER::refuse(const std::string& reason, std::string& message) const
{
    message = "Line " + std::to_string(m_line) + ": " + reason;
    return false;
}

bool INTEL_HEX_PARSER::step_over_blank_lines(std::string& message)
{
    while (m_reader.available() != 0 && *m_reader.data() != ':') {
        const std::uint8_t character = *m_reader.data();
        if (character == '\n')
            ++m_line;
        else if (character != '\r' && character != ' ' && character != '\t')
            return refuse("a record begins with a colon, but there is " + quoted(character) +
                              "; the file is no Intel HEX file or is damaged.",
                          message);
        m_reader.skip(1);
        if (!m_reader.need(1, message))
            return false;
    }
    return true;
}

bool INTEL_HEX_PARSER::next(INTEL_HEX_RECORD& record, bool& found, std::string& message)
{
    found = false;
    if (!m_reader.need(LONGEST_LINE, message))
        return false;
    if (m_reader.available() == 0)
        return true;
    if (*m_reader.data() != ':') {
        if (!step_over_blank_lines(message) || !m_reader.need(LONGEST_LINE, message))
            return false;
        if (m_reader.available() == 0)
            return true;
    }
    m_record_line = m_line;
    m_record_offset = m_reader.offset();
    found = true;
    return parse(record, message);
}

bool INTEL_HEX_PARSER::plain_run(std::uint16_t address, std::span<std::uint8_t> into, std::size_t& count,
                                 std::string& message)
{
    count = 0;
    for (std::uint16_t read = 0; into.size() - count >= PLAIN_LENGTH; count += PLAIN_LENGTH) {
        if (!m_reader.need(PLAIN_LINE, message))
            return false;
        if (m_reader.available() < PLAIN_LINE || !plain_data(m_reader.data(), into.data() + count, read) ||
            read != static_cast<std::uint16_t>(address + count))
            break;
        m_reader.skip(PLAIN_LINE);
    }
    m_line += count / PLAIN_LENGTH;
    return true;
}

bool INTEL_HEX_PARSER::parse(INTEL_HEX_RECORD& record, std::string& message)
{
    const std::uint8_t* const text = m_reader.data();
    const std::size_t available = m_reader.available();

    std::uint16_t address = 0;
    if (available >= PLAIN_LINE && plain_data(text, record.data.data(), address)) {
        record.length = PLAIN_LENGTH;
        record.address = address;
        record.type = INTEL_HEX_RECORD::DATA;
        record.plain = true;
        ++m_line;
        m_reader.skip(PLAIN_LINE);
        return true;
    }

    const std::uint8_t* const end = text + available;
    const std::uint8_t* at = text + 1;
    unsigned sum = 0;
    bool upper = true;
    const auto byte = [&](std::uint8_t& value) {
        if (end - at < 2 || at[0] == '\n' || at[0] == '\r' || at[1] == '\n' || at[1] == '\r')
            return refuse("the record is cut off; the file is damaged.", message);
        const unsigned read = hex_digits::get(at);
        if (read > 0xFF)
            return refuse(quoted(hex_digits::VALUES[at[0]] > 0xF ? at[0] : at[1]) +
                              " is no hexadecimal digit; the file is damaged.",
                          message);
        upper = upper && at[0] <= 'F' && at[1] <= 'F';
        at += 2;
        value = static_cast<std::uint8_t>(read);
        sum += read;
        return true;
    };

    std::uint8_t high = 0;
    std::uint8_t low = 0;
    std::uint8_t type = 0;
    if (!byte(record.length) || !byte(high) || !byte(low) || !byte(type))
        return false;
    for (unsigned i = 0; i != record.length; ++i)
        if (!byte(record.data[i]))
            return false;
    const unsigned wanted = (0x100 - sum % 256) % 256;
    std::uint8_t checksum = 0;
    if (!byte(checksum))
        return false;
    if (checksum != wanted)
        return refuse("the checksum is " + hex_text(checksum, 2) + ", but the record asks for " +
                          hex_text(wanted, 2) + "; the file is damaged.",
                      message);
    if (type > INTEL_HEX_RECORD::START_LINEAR_ADDRESS)
        return refuse("the record type " + hex_text(type, 2) + " is not one of 00 to 05.", message);
    record.type = static_cast<INTEL_HEX_RECORD::TYPE>(type);
    record.address = static_cast<std::uint16_t>(high << 8 | low);
    const int type_length = wanted_length(record.type);
    if (type_length >= 0 && record.length != type_length)
        return refuse("a record of type " + hex_text(type, 2) + " has " +
                          bytes_text(static_cast<unsigned>(type_length)) + " of data, this one has " +
                          std::to_string(record.length) + ".",
                      message);

    record.plain = upper && at != end && *at == '\n';
    while (at != end && (*at == ' ' || *at == '\t' || *at == '\r'))
        ++at;
    if (at != end && *at != '\n')
        return refuse("there is " + quoted(*at) + " behind the checksum of the record.", message);
    if (at != end)
        ++at;
    ++m_line;
    m_reader.skip(static_cast<std::size_t>(at - text));
    return true;
}
