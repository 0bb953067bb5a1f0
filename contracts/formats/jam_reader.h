#ifndef JAM_READER_H
#define JAM_READER_H

#include "block_reader.h"

#include <cstdint>
#include <map>
#include <string>

namespace jam
{
/// How the array of the stream is declared.
inline constexpr char ARRAY[] = "BOOLEAN STREAM";
} // namespace jam

/// Reads what a STAPL file carries: its CRC, notes, actions and the array of the configuration stream. It
/// runs no procedure. White space, comments and line ends may stand where the language allows them.
class JAM_READER
{
public:
    explicit JAM_READER(const BYTE_SOURCE& file) : m_file(file), m_reader(file) {}

    /// Reads the file; what it holds is known afterwards.
    bool read(std::string& message);

    const std::map<std::string, std::string>& notes() const { return m_notes; }
    /// Names, separated by comma and blank.
    const std::string& actions() const { return m_actions; }
    std::uint64_t stream_size() const { return m_stream_size; }

    /// Sends the stream, first byte first.
    bool send_stream(BYTE_SINK& sink, std::string& message) const;

private:
    bool check_crc(std::string& message);
    bool next(bool& found, std::string& message);
    bool interpret(std::string& message);
    bool read_array(std::string& message);
    bool refuse(const std::string& reason, std::string& message) const;

    const BYTE_SOURCE& m_file;
    BLOCK_READER m_reader;
    std::uint64_t m_line = 1;
    std::uint64_t m_statement_line = 1;
    std::string m_statement; ///< without comments, white space outside of quotation marks as one blank
    std::map<std::string, std::string> m_notes;
    std::string m_actions;
    std::uint64_t m_stream_size = 0;
    std::uint64_t m_digits_begin = 0; ///< offsets in the file
    std::uint64_t m_digits_end = 0;
};

#endif
