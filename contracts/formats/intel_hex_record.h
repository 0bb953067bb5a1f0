#ifndef INTEL_HEX_RECORD_H
#define INTEL_HEX_RECORD_H

#include "block_reader.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

/// One line of an Intel HEX file ("Hexadecimal Object File Format Specification", Intel, revision A, 1988):
/// a colon, then in hexadecimal digits the length of the data, a 16 bit address, the type, the data, and a
/// checksum that makes all bytes add up to 0 modulo 256.
struct INTEL_HEX_RECORD {
    enum TYPE : std::uint8_t {
        DATA = 0,
        END_OF_FILE = 1,
        EXTENDED_SEGMENT_ADDRESS = 2,
        START_SEGMENT_ADDRESS = 3,
        EXTENDED_LINEAR_ADDRESS = 4,
        START_LINEAR_ADDRESS = 5
    };

    std::uint8_t length = 0;
    std::uint16_t address = 0;
    TYPE type = DATA;
    std::array<std::uint8_t, 256> data; ///< `length` bytes of it are set
    bool plain = false; ///< spelled in upper-case digits and ended by a line feed alone, as HEX_FORMAT does

    /// The two data bytes as a number, most significant first (types 2 and 4).
    unsigned word() const { return static_cast<unsigned>(data[0] << 8 | data[1]); }
};

/// Reads records one by one and holds each to the rules that it can be held to alone: spelling, known type,
/// the length that its type asks for, checksum.
class INTEL_HEX_PARSER
{
public:
    /// Starts at `begin`, which must be the start of line number `line`.
    explicit INTEL_HEX_PARSER(const BYTE_SOURCE& file, std::uint64_t begin = 0, std::uint64_t line = 1)
        : m_reader(file, begin), m_line(line)
    {
    }

    /// Reads the next record; blank lines before it are stepped over. `found` is false at the end of the
    /// file. False with a sentence that begins "Line 12: " when the line is no record.
    bool next(INTEL_HEX_RECORD& record, bool& found, std::string& message);

    /// Reads records on as long as they are plain ones of 16 bytes of data for `address` and what follows it,
    /// straight into `into`; `count` is how many bytes that gave. Where it stops, for whatever reason, next()
    /// goes on. False only when the file cannot be read.
    bool plain_run(std::uint16_t address, std::span<std::uint8_t> into, std::size_t& count,
                   std::string& message);

    /// Number of the line that next() gave last, and where in the file it starts.
    std::uint64_t line() const { return m_record_line; }
    std::uint64_t line_offset() const { return m_record_offset; }

    /// Offset behind the line that next() gave last.
    std::uint64_t offset() const { return m_reader.offset(); }

private:
    bool step_over_blank_lines(std::string& message);
    bool parse(INTEL_HEX_RECORD& record, std::string& message);
    bool refuse(const std::string& reason, std::string& message) const;

    BLOCK_READER m_reader;
    std::uint64_t m_line; ///< of what the reader stands at
    std::uint64_t m_record_line = 0;
    std::uint64_t m_record_offset = 0;
};

#endif
