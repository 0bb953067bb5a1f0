#ifndef BLOCK_READER_H
#define BLOCK_READER_H

#include "byte_source.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

/// The block size in which text is formatted and files are compared: what is read, made and compared stays in
/// the second-level cache.
inline constexpr std::size_t CACHED_BLOCK_SIZE = 128 * 1024;

/// Reads a source from front to back through one buffer, and lets a parser look at a stretch of it in place.
class BLOCK_READER
{
public:
    explicit BLOCK_READER(const BYTE_SOURCE& source, std::uint64_t begin = 0,
                          std::size_t block_size = CACHED_BLOCK_SIZE);

    /// Makes at least `count` bytes visible at data(), fewer only when the source ends before. `count` must
    /// not be above the block size. False when the source cannot be read.
    bool need(std::size_t count, std::string& message)
    {
        return m_end - m_position >= count || fill(message);
    }

    const std::uint8_t* data() const { return m_buffer.data() + m_position; }
    std::size_t available() const { return m_end - m_position; }

    /// Steps over `count` visible bytes.
    void skip(std::size_t count) { m_position += count; }

    /// Offset in the source of data().
    std::uint64_t offset() const { return m_next - available(); }

    /// Whether everything has been stepped over.
    bool at_end() const { return offset() == m_source.size(); }

private:
    bool fill(std::string& message);

    const BYTE_SOURCE& m_source;
    const std::size_t m_block_size;
    const std::size_t m_left_over; ///< size of the first part of the buffer, whole cache lines
    IO_BLOCK m_buffer; ///< what is left over lies at the end of the first part, what is read behind it
    std::size_t m_position;
    std::size_t m_end;
    std::uint64_t m_next; ///< offset in the source behind the buffer
};

#endif
