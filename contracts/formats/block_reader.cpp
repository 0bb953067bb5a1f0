#include "block_reader.h"

#include <algorithm>
#include <cstring>

BLOCK_READER::BLOCK_READER(const BYTE_SOURCE& source, std::uint64_t begin, std::size_t block_size)
    : m_source(source),
      m_block_size(static_cast<std::size_t>(std::min<std::uint64_t>(block_size, source.size()))),
      m_left_over((m_block_size + 63) / 64 * 64), m_buffer(m_left_over + m_block_size),
      m_position(m_left_over), m_end(m_left_over), m_next(begin)
{
}

bool BLOCK_READER::fill(std::string& message)
{
    const std::size_t rest = available();
    const std::uint64_t left = m_source.size() - std::min(m_next, m_source.size());
    const std::size_t count = static_cast<std::size_t>(std::min<std::uint64_t>(left, m_block_size));
    if (count == 0)
        return true;
    const std::size_t position = m_left_over - rest;
    std::memmove(m_buffer.data() + position, data(), rest);
    m_position = position;
    m_end = m_left_over;
    if (!m_source.read(m_next, {m_buffer.data() + m_left_over, count}, message))
        return false;
    m_end += count;
    m_next += count;
    return true;
}
