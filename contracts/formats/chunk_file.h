#ifndef CHUNK_FILE_H
#define CHUNK_FILE_H

#include "block_reader.h"
#include "byte_source.h"

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

/// The frame that this tool's own binary formats share: a signature, then chunks: tag of four letters, length
/// of the payload (4 bytes), payload, CRC-32 of tag, length and payload (4 bytes). Numbers are little endian.
/// Chunks whose tag begins with a small letter may be passed over.
using CHUNK_TAG = std::array<char, 4>;
using CHUNK_SIGNATURE = std::array<std::uint8_t, 8>;

inline constexpr std::size_t CHUNK_HEADER = 8;
inline constexpr std::size_t CHUNK_TRAILER = 4;
inline constexpr std::size_t MOST_CHUNK_PAYLOAD = 1024 * 1024 + 8;
inline constexpr std::size_t MOST_CHUNK_TEXT = 0xFFFF;

/// Appends the `size` lower bytes of a number.
void put_number(std::vector<std::uint8_t>& bytes, std::uint64_t value, std::size_t size);

/// Appends a text behind its length of 2 bytes; false with a sentence when it is too long.
bool put_text(std::vector<std::uint8_t>& bytes, const std::string& text, std::string& message);

/// Frames chunks and sends them on in large pieces.
class CHUNK_WRITER
{
public:
    explicit CHUNK_WRITER(BYTE_SINK& sink) : m_sink(sink) {}

    bool raw(std::span<const std::uint8_t> bytes, std::string& message);
    /// A chunk whose payload is `head` and then `body`.
    bool chunk(const CHUNK_TAG& tag, std::span<const std::uint8_t> head, std::span<const std::uint8_t> body,
               std::string& message);
    /// To be called at the end.
    bool flush(std::string& message);

private:
    BYTE_SINK& m_sink;
    std::vector<std::uint8_t> m_pending;
};

/// Takes numbers and texts from a payload, and remembers when it was too short for one.
class FIELDS
{
public:
    explicit FIELDS(std::span<const std::uint8_t> bytes) : m_rest(bytes) {}

    std::uint64_t number(std::size_t size)
    {
        std::uint64_t value = 0;
        const std::span<const std::uint8_t> bytes = take(size);
        for (std::size_t i = bytes.size(); i-- != 0;)
            value = value << 8 | bytes[i];
        return value;
    }

    std::string text()
    {
        const std::span<const std::uint8_t> bytes = take(static_cast<std::size_t>(number(2)));
        return {bytes.begin(), bytes.end()};
    }

    std::span<const std::uint8_t> rest() const { return m_rest; }
    bool complete() const { return !m_short; }
    bool complete_and_empty() const { return !m_short && m_rest.empty(); }

private:
    std::span<const std::uint8_t> take(std::size_t size)
    {
        m_short = m_short || size > m_rest.size();
        if (m_short)
            return {};
        const std::span<const std::uint8_t> taken = m_rest.first(size);
        m_rest = m_rest.subspan(size);
        return taken;
    }

    std::span<const std::uint8_t> m_rest;
    bool m_short = false;
};

struct CHUNK {
    CHUNK_TAG tag;
    std::span<const std::uint8_t> payload; ///< valid until the next chunk is read
};

/// Reads a file of chunks from front to back, and holds it to the frame.
class CHUNK_READER
{
public:
    /// `name` is that of the format, for messages.
    CHUNK_READER(const BYTE_SOURCE& file, const CHUNK_SIGNATURE& signature, const char* name);

    bool begin(std::string& message);
    bool next(CHUNK& chunk, std::string& message);
    /// That nothing follows the chunk that next() gave last.
    bool end(std::string& message);
    /// Says something about that chunk; false.
    bool refuse(const std::string& reason, std::string& message) const;

private:
    const BYTE_SOURCE& m_file;
    const CHUNK_SIGNATURE& m_signature;
    const char* const m_name;
    BLOCK_READER m_reader;
    std::size_t m_to_skip = 0;  ///< the chunk that next() gave last
    std::uint64_t m_offset = 0; ///< where it starts
};

/// Whether the file begins with the signature.
bool begins_with(const BYTE_SOURCE& file, const CHUNK_SIGNATURE& signature);

#endif
