#ifndef POF_LAYOUT_H
#define POF_LAYOUT_H

#include "chunk_file.h"

#include <cstddef>
#include <cstdint>

/// The numbers that the writer and the reader of flash files (POF and JIC) agree on. Numbers in the file are
/// little endian.
///
/// The file is the signature and then chunks: tag of four letters, length of the payload (4 bytes), payload,
/// CRC-32 of tag, length and payload (4 bytes).
namespace pof
{
/// One of the two kinds of file.
struct KIND {
    /// The bytes above 127 and the line ends show a transfer that was no binary one.
    CHUNK_SIGNATURE signature;
    const char* name;
    const char* description;
    bool has_loader; ///< a LOAD chunk stands behind the head
};
inline constexpr KIND POF = {
    {0x89, 'P', 'O', 'F', '\r', '\n', 0x1A, '\n'}, "POF", "flash image for a device programmer", false};
inline constexpr KIND JIC = {
    {0x89, 'J', 'I', 'C', '\r', '\n', 0x1A, '\n'}, "JIC", "flash image to be written over JTAG", true};

inline constexpr std::uint16_t MAJOR_VERSION = 1; ///< a reader refuses files with a higher one
inline constexpr std::uint16_t MINOR_VERSION = 0;

using TAG = CHUNK_TAG;
/// First chunk: major version (2), minor version (2), size of the device (8), length of its name (2), name.
inline constexpr TAG HEAD = {'H', 'E', 'A', 'D'};
/// JIC alone, second chunk: the FPGA through which JTAG reaches the flash and how it does: length of its name
/// (2), name, IDCODE (4), instruction length in bits (1), instruction that connects the data register to the
/// flash (4); then the flash: JEDEC identification (3), bytes of an address (1), sector size (4), page size
/// (4), and its commands for identification, status, write enable, read, page program, sector erase (6).
inline constexpr TAG LOAD = {'L', 'O', 'A', 'D'};
/// A partition: start (8), bytes used (8), last byte (8), CRC-32 of the content (4), whether it has a page
/// (1), page (4), length of the name (2), name, length of the input file names (2), input file names.
inline constexpr TAG PART = {'P', 'A', 'R', 'T'};
/// Bytes of the image: address (8), bytes. Ascending by address, never overlapping.
inline constexpr TAG DATA = {'D', 'A', 'T', 'A'};
/// Last chunk: number of bytes in all DATA chunks (8), CRC-32 of the whole image with its fill (4).
inline constexpr TAG DONE = {'D', 'O', 'N', 'E'};

inline constexpr std::uint64_t MOST_IMAGE = std::uint64_t(1) << 32; ///< bytes of a device
inline constexpr std::size_t MOST_DATA = 1024 * 1024;               ///< bytes of the image in one DATA chunk
static_assert(MOST_DATA + 8 <= MOST_CHUNK_PAYLOAD);
/// Runs of fill shorter than this stay in the chunk: a new one would cost about as much.
inline constexpr std::size_t SHORTEST_GAP = 4096;
} // namespace pof

#endif
