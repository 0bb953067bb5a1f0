#include "svf_reader.h"

#include "format_text.h"
#include "hex_digits.h"
#include "jtag_program.h"

#include <algorithm>
#include <charconv>
#include <cstring>

namespace
{
constexpr std::size_t MOST_STATEMENT = 256 * 1024;
constexpr std::size_t SEAL_LENGTH = sizeof svf::SEAL - 1;
constexpr std::size_t SEAL_LINE = SEAL_LENGTH + 8 + 1;

bool is_space(char c)
{
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

/// The digits as a number with the least significant byte first, as many bytes as `bits` need. False for what
/// is no digit, or does not fit.
bool read_digits(const std::string& digits, std::uint64_t bits, std::vector<std::uint8_t>& bytes)
{
    bytes.assign(static_cast<std::size_t>((bits + 7) / 8), 0);
    std::size_t at = digits.size();
    for (std::uint8_t& byte : bytes) {
        for (unsigned shift = 0; shift != 8 && at != 0; shift += 4) {
            const std::uint8_t value = hex_digits::VALUES[static_cast<std::uint8_t>(digits[--at])];
            if (value > 15)
                return false;
            byte = static_cast<std::uint8_t>(byte | value << shift);
        }
    }
    return std::all_of(digits.begin(), digits.begin() + static_cast<std::ptrdiff_t>(at),
                       [](char c) { return c == '0'; }) &&
           (bits % 8 == 0 || bytes.back() >> bits % 8 == 0);
}

std::uint64_t number_of(const std::vector<std::uint8_t>& bytes)
{
    std::uint64_t value = 0;
    for (std::size_t i = std::min<std::size_t>(bytes.size(), 8); i-- != 0;)
        value = value << 8 | bytes[i];
    return value;
}
} // namespace

std::string SVF_READER::operation() const
{
    if (!m_programs)
        return jtag::action_of(JTAG_OPERATION::VERIFY).words;
    return jtag::action_of(m_erases ? JTAG_OPERATION::PROGRAM : JTAG_OPERATION::BLANK_CHECK_AND_PROGRAM)
        .words;
}

bool SVF_READER::refuse(const std::string& reason, std::string& message) const
{
    message = "The statement in line " + std::to_string(m_statement_line) + " " + reason;
    return false;
}

bool SVF_READER::read(SVF_VISITOR& visitor, std::string& message)
{
    if (!check_seal(message))
        return false;
    for (bool found = true; found;) {
        if (!next(found, message) || (found && !interpret(visitor, message)))
            return false;
    }
    if (!m_programs && !m_verifies) {
        message = "The file holds no vectors that configure a device.";
        return false;
    }
    return true;
}

bool SVF_READER::check_seal(std::string& message)
{
    std::array<std::uint8_t, SEAL_LINE> line{};
    const bool long_enough = m_file.size() > line.size();
    if (long_enough && !m_file.read(m_file.size() - line.size(), line, message))
        return false;
    std::uint32_t stored = 0;
    const char* const digits = reinterpret_cast<const char*>(line.data()) + SEAL_LENGTH;
    const auto number = std::from_chars(digits, digits + 8, stored, 16);
    if (!long_enough || std::memcmp(line.data(), svf::SEAL, SEAL_LENGTH) != 0 || number.ec != std::errc() ||
        number.ptr != digits + 8 || line.back() != '\n') {
        message =
            "The file does not end with the line of its checksum; it is not complete, or no SVF file of "
            "this tool.";
        return false;
    }
    std::uint32_t crc = 0;
    std::uint64_t left = m_file.size() - 9; // the digits and the line feed
    for (BLOCK_READER reader(m_file); left != 0;) {
        if (!reader.need(1, message))
            return false;
        const std::size_t count = static_cast<std::size_t>(std::min<std::uint64_t>(left, reader.available()));
        crc = crc32({reader.data(), count}, crc);
        reader.skip(count);
        left -= count;
    }
    if (crc != stored) {
        message = "The file has the checksum " + hex_text(crc) + " instead of " + hex_text(stored) +
                  "; it was changed or damaged.";
        return false;
    }
    return true;
}

/// Puts the words of the next statement together.
bool SVF_READER::next(bool& found, std::string& message)
{
    found = false;
    m_words.clear();
    m_statement_size = 0;
    m_word_open = m_in_parentheses = false;
    for (bool complete = false; !complete;) {
        if (!m_reader.need(1, message))
            return false;
        if (m_reader.available() == 0) {
            if (m_words.empty() && !m_in_parentheses)
                return true;
            return refuse("has no end; the file is not complete.", message);
        }
        const std::uint8_t* const begin = m_reader.data();
        const std::uint8_t* const end = begin + m_reader.available();
        const std::uint8_t* at = begin;
        bool taken = true;
        while (taken && !complete && at != end)
            taken = take(static_cast<char>(*at++), complete, message);
        m_reader.skip(static_cast<std::size_t>(at - begin));
        if (!taken)
            return false;
    }
    found = true;
    return true;
}

bool SVF_READER::take(char character, bool& complete, std::string& message)
{
    if (character == '\n') {
        ++m_line;
        m_in_comment = false;
    }
    if (m_in_comment)
        return true;
    if (character == '!') {
        m_in_comment = true;
        m_word_open = false;
        return true;
    }
    if (is_space(character)) {
        m_word_open = m_word_open && m_in_parentheses;
        return true;
    }
    if (m_words.empty() && !m_in_parentheses)
        m_statement_line = m_line;
    if (++m_statement_size > MOST_STATEMENT)
        return refuse("is longer than any that this tool writes.", message);
    if (character == '(') {
        if (m_in_parentheses)
            return refuse("has a parenthesis within parentheses.", message);
        m_in_parentheses = true;
        m_words.push_back({{}, true});
        return true;
    }
    if (character == ')') {
        if (!m_in_parentheses)
            return refuse("has a closing parenthesis without an opening one.", message);
        m_in_parentheses = m_word_open = false;
        return true;
    }
    if (character == ';') {
        if (m_in_parentheses)
            return refuse("ends within parentheses.", message);
        complete = true;
        return true;
    }
    if (!m_in_parentheses && !m_word_open)
        m_words.emplace_back();
    m_word_open = !m_in_parentheses;
    m_words.back().text += character >= 'a' && character <= 'z' && !m_in_parentheses
                               ? static_cast<char>(character - 'a' + 'A')
                               : character;
    return true;
}

bool SVF_READER::interpret(SVF_VISITOR& visitor, std::string& message)
{
    constexpr const char* WITHOUT_EFFECT[] = {"TRST", "ENDIR", "ENDDR", "STATE", "RUNTEST"};
    constexpr const char* PADDING[] = {"HIR", "HDR", "TIR", "TDR"};
    if (m_words.empty())
        return refuse("is empty.", message);
    const std::string& command = m_words.front().text;
    if (std::find(std::begin(WITHOUT_EFFECT), std::end(WITHOUT_EFFECT), command) != std::end(WITHOUT_EFFECT))
        return true;
    if (std::find(std::begin(PADDING), std::end(PADDING), command) != std::end(PADDING))
        return (m_words.size() == 2 && m_words[1].text == "0") ||
               refuse("is for a chain of several devices.", message);
    if (command == "FREQUENCY") {
        m_frequency = m_words.size() > 1 ? m_words[1].text : "";
        return true;
    }
    if (command == "SIR" || command == "SDR")
        return scan(visitor, message);
    return refuse("begins with \"" + printable_text(command) + "\", which this tool does not read.", message);
}

bool SVF_READER::scan(SVF_VISITOR& visitor, std::string& message)
{
    std::uint64_t bits = 0;
    if (m_words.size() > 1) {
        const std::string& text = m_words[1].text;
        const auto number = std::from_chars(text.data(), text.data() + text.size(), bits);
        if (number.ec != std::errc() || number.ptr != text.data() + text.size())
            bits = 0;
    }
    if (bits == 0 || bits > MOST_STATEMENT * 4)
        return refuse("has no length that this tool reads.", message);
    const std::string* tdi = nullptr;
    const std::string* tdo = nullptr;
    for (std::size_t i = 2; i < m_words.size(); i += 2) {
        const std::string& name = m_words[i].text;
        if (i + 1 == m_words.size() || m_words[i].in_parentheses || !m_words[i + 1].in_parentheses ||
            (name != "TDI" && name != "TDO" && name != "MASK" && name != "SMASK"))
            return refuse("has no list of TDI, TDO, MASK and SMASK, each with a value in parentheses.",
                          message);
        if (!read_digits(m_words[i + 1].text, bits, m_bytes))
            return refuse("has a value for " + name + " that is no hexadecimal number of " +
                              std::to_string(bits) + " bits.",
                          message);
        tdi = name == "TDI" ? &m_words[i + 1].text : tdi;
        tdo = name == "TDO" ? &m_words[i + 1].text : tdo;
    }
    if (m_words.front().text == "SIR") {
        if (tdi == nullptr || bits > jtag::MOST_INSTRUCTION_LENGTH)
            return refuse("loads no instruction.", message);
        read_digits(*tdi, bits, m_bytes);
        m_instruction = number_of(m_bytes);
        m_programs = m_programs || m_instruction == jtag::PROGRAM;
        m_verifies = m_verifies || m_instruction == jtag::READ;
        m_erases = m_erases || m_instruction == jtag::ERASE;
        return true;
    }
    return scan_data(visitor, bits, tdi, tdo, message);
}

bool SVF_READER::scan_data(SVF_VISITOR& visitor, std::uint64_t bits, const std::string* tdi,
                           const std::string* tdo, std::string& message)
{
    if (m_instruction == jtag::IDCODE && tdo != nullptr && bits == jtag::IDCODE_BITS) {
        read_digits(*tdo, bits, m_bytes);
        m_idcode = static_cast<std::uint32_t>(number_of(m_bytes));
        return true;
    }
    const std::string* const stream = m_instruction == jtag::PROGRAM ? tdi
                                      : m_instruction == jtag::READ  ? tdo
                                                                     : nullptr;
    if (stream == nullptr)
        return (m_instruction != jtag::PROGRAM && m_instruction != jtag::READ) ||
               refuse("scans the stream without its bytes.", message);
    if (bits % 8 != 0)
        return refuse("scans a part of a byte.", message);
    read_digits(*stream, bits, m_bytes);
    return visitor.stream(m_bytes, message);
}
