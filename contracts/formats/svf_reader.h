#ifndef SVF_READER_H
#define SVF_READER_H

#include "block_reader.h"

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace svf
{
/// What stands before the checksum in the last line.
inline constexpr char SEAL[] = "! CRC-32 of all lines above: ";
} // namespace svf

/// Takes the configuration stream as an SVF file sends or compares it.
class SVF_VISITOR
{
public:
    virtual ~SVF_VISITOR() = default;
    virtual bool stream(std::span<const std::uint8_t> bytes, std::string& message) = 0;
};

/// Reads the vectors of an SVF file: its checksum, then statement by statement. White space, comments with
/// an exclamation mark and line ends may stand where the language allows them.
class SVF_READER
{
public:
    explicit SVF_READER(const BYTE_SOURCE& file) : m_file(file), m_reader(file) {}

    bool read(SVF_VISITOR& visitor, std::string& message);

    std::uint32_t idcode() const { return m_idcode; }
    /// "Program", "Verify", "Blank-check and program".
    std::string operation() const;
    /// As the file has it, without its unit; empty for none.
    const std::string& frequency() const { return m_frequency; }

private:
    /// One statement: words, and what stands in parentheses as a word of its own without the parentheses.
    struct WORD {
        std::string text;
        bool in_parentheses = false;
    };

    bool check_seal(std::string& message);
    bool next(bool& found, std::string& message);
    bool take(char character, bool& complete, std::string& message);
    bool interpret(SVF_VISITOR& visitor, std::string& message);
    bool scan(SVF_VISITOR& visitor, std::string& message);
    bool scan_data(SVF_VISITOR& visitor, std::uint64_t bits, const std::string* tdi, const std::string* tdo,
                   std::string& message);
    bool refuse(const std::string& reason, std::string& message) const;

    const BYTE_SOURCE& m_file;
    BLOCK_READER m_reader;
    std::vector<WORD> m_words;
    std::size_t m_statement_size = 0;
    bool m_in_parentheses = false;
    bool m_in_comment = false;
    bool m_word_open = false;
    std::uint64_t m_line = 1;
    std::uint64_t m_statement_line = 1;
    std::uint64_t m_instruction = 0;
    std::uint32_t m_idcode = 0;
    bool m_programs = false;
    bool m_verifies = false;
    bool m_erases = false;
    std::string m_frequency;
    std::vector<std::uint8_t> m_bytes;
};

#endif
