#include "chunk_file.h"

#include "format_text.h"

#include <algorithm>
#include <cstring>

void put_number(std::vector<std::uint8_t>& bytes, std::uint64_t value, std::size_t size)
{
    for (; size != 0; --size, value >>= 8)
        bytes.push_back(static_cast<std::uint8_t>(value));
}

bool put_text(std::vector<std::uint8_t>& bytes, const std::string& text, std::string& message)
{
    if (text.size() > MOST_CHUNK_TEXT) {
        message = "The name \"" + text.substr(0, 40) + "...\" has " + bytes_text(text.size()) +
                  "; the file holds " + std::to_string(MOST_CHUNK_TEXT) + " at most, choose a shorter one.";
        return false;
    }
    put_number(bytes, text.size(), 2);
    bytes.insert(bytes.end(), text.begin(), text.end());
    return true;
}

bool CHUNK_WRITER::raw(std::span<const std::uint8_t> bytes, std::string& message)
{
    m_pending.insert(m_pending.end(), bytes.begin(), bytes.end());
    return m_pending.size() < IO_BLOCK_SIZE || flush(message);
}

bool CHUNK_WRITER::chunk(const CHUNK_TAG& tag, std::span<const std::uint8_t> head,
                         std::span<const std::uint8_t> body, std::string& message)
{
    const std::size_t begin = m_pending.size();
    m_pending.insert(m_pending.end(), tag.begin(), tag.end());
    put_number(m_pending, head.size() + body.size(), 4);
    m_pending.insert(m_pending.end(), head.begin(), head.end());
    m_pending.insert(m_pending.end(), body.begin(), body.end());
    put_number(m_pending, crc32({m_pending.data() + begin, m_pending.size() - begin}), 4);
    return m_pending.size() < IO_BLOCK_SIZE || flush(message);
}

bool CHUNK_WRITER::flush(std::string& message)
{
    const bool written = m_pending.empty() || m_sink.write(m_pending, message);
    m_pending.clear();
    return written;
}

CHUNK_READER::CHUNK_READER(const BYTE_SOURCE& file, const CHUNK_SIGNATURE& signature, const char* name)
    : m_file(file), m_signature(signature), m_name(name),
      m_reader(file, 0, CHUNK_HEADER + MOST_CHUNK_PAYLOAD + CHUNK_TRAILER)
{
}

bool CHUNK_READER::refuse(const std::string& reason, std::string& message) const
{
    message = "The chunk at offset " + hex_text(m_offset) + " " + reason;
    return false;
}

bool CHUNK_READER::begin(std::string& message)
{
    if (!m_reader.need(m_signature.size(), message))
        return false;
    if (m_reader.available() < m_signature.size() ||
        !std::equal(m_signature.begin(), m_signature.end(), m_reader.data())) {
        message = std::string("The file does not begin with the signature of a ") + m_name + ".";
        return false;
    }
    m_to_skip = m_signature.size();
    return true;
}

bool CHUNK_READER::next(CHUNK& chunk, std::string& message)
{
    m_reader.skip(m_to_skip);
    m_to_skip = 0;
    m_offset = m_reader.offset();
    if (!m_reader.need(CHUNK_HEADER, message))
        return false;
    if (m_reader.available() < CHUNK_HEADER) {
        message = "The file ends at offset " + hex_text(m_file.size()) +
                  " without its last chunk; it is not complete.";
        return false;
    }
    std::memcpy(chunk.tag.data(), m_reader.data(), chunk.tag.size());
    const std::size_t length =
        static_cast<std::size_t>(FIELDS({m_reader.data() + chunk.tag.size(), 4}).number(4));
    if (length > MOST_CHUNK_PAYLOAD)
        return refuse("claims " + bytes_text(length) + ", more than any chunk has; the file is damaged.",
                      message);
    const std::size_t whole = CHUNK_HEADER + length + CHUNK_TRAILER;
    if (!m_reader.need(whole, message))
        return false;
    if (m_reader.available() < whole)
        return refuse("goes beyond the end of the file; the file is not complete.", message);
    const std::uint8_t* const bytes = m_reader.data();
    const std::uint32_t wanted = crc32({bytes, CHUNK_HEADER + length});
    const std::uint64_t stored = FIELDS({bytes + CHUNK_HEADER + length, CHUNK_TRAILER}).number(4);
    if (stored != wanted)
        return refuse("has the checksum " + hex_text(stored) + " instead of " + hex_text(wanted) +
                          "; the file is damaged.",
                      message);
    chunk.payload = {bytes + CHUNK_HEADER, length};
    m_to_skip = whole;
    return true;
}

bool CHUNK_READER::end(std::string& message)
{
    m_reader.skip(m_to_skip);
    m_to_skip = 0;
    if (m_reader.at_end())
        return true;
    message = "There is something behind the last chunk at offset " + hex_text(m_reader.offset()) + ".";
    return false;
}

bool begins_with(const BYTE_SOURCE& file, const CHUNK_SIGNATURE& signature)
{
    CHUNK_SIGNATURE begin;
    std::string message;
    return file.size() >= begin.size() && file.read(0, begin, message) && begin == signature;
}
