#ifndef JBC_LAYOUT_H
#define JBC_LAYOUT_H

#include "chunk_file.h"

/// The numbers that the writer and the reader of a JBC agree on, beyond the frame of chunk_file.h.
namespace jbc
{
inline constexpr CHUNK_SIGNATURE SIGNATURE = {0x89, 'J', 'B', 'C', '\r', '\n', 0x1A, '\n'};

inline constexpr std::uint16_t MAJOR_VERSION = 1; ///< a reader refuses files with a higher one
inline constexpr std::uint16_t MINOR_VERSION = 0;

/// First chunk: major version (2), minor version (2), IDCODE (4), instruction length in bits (1), bytes of a
/// scan of the stream (4), bytes of the stream (8), length of the device's name (2), name.
inline constexpr CHUNK_TAG HEAD = {'H', 'E', 'A', 'D'};
/// A procedure, numbered from 0 in the order of the file: its byte code to the end of the chunk.
inline constexpr CHUNK_TAG PROC = {'P', 'R', 'O', 'C'};
/// An action: length of the name (2), name, then the number of each procedure (1).
inline constexpr CHUNK_TAG ACTN = {'A', 'C', 'T', 'N'};
/// Bytes of the stream: offset (8), bytes. Ascending and without gaps.
inline constexpr CHUNK_TAG DATA = {'D', 'A', 'T', 'A'};
/// Last chunk: CRC-32 of the stream (4).
inline constexpr CHUNK_TAG DONE = {'D', 'O', 'N', 'E'};

inline constexpr std::size_t MOST_DATA = 64 * 1024; ///< bytes of the stream in one DATA chunk

/// Codes of the byte code, with what follows them.
enum CODE : std::uint8_t {
    RESET = 0x00,         ///< through Test-Logic-Reset to Run-Test/Idle
    INSTRUCTION = 0x01,   ///< instruction (4)
    WAIT = 0x02,          ///< microseconds (4)
    CHECK_IDCODE = 0x03,  ///< exit code on failure (1)
    CHECK_STATUS = 0x04,  ///< value (1), mask (1), exit code on failure (1)
    SEND_STREAM = 0x05,   ///< nothing
    COMPARE_STREAM = 0x06 ///< exit code on failure (1)
};
} // namespace jbc

#endif
