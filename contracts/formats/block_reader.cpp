#include "block_reader.h"

#include <algorithm>
#include <cstring>

BLOCK_READER::BLOCK_READER(const BYTE_SOURCE& source, std::uint64_t begin, std::size_t block_size)
    : m_source(source),
      m_buffer(static_cast<std::size_t>(std::min<std::uint64_t>(block_size, source.size()))), m_next(begin)
{
}

bool BLOCK_READER::fill(std::string& message)
{
    const std::size_t rest = available();
    if (rest != 0)
        std::memmove(m_buffer.data(), data(), rest);
    m_position = 0;
    m_end = rest;
    const std::uint64_t left = m_source.size() - std::min(m_next, m_source.size());
    const std::size_t count = static_cast<std::size_t>(std::min<std::uint64_t>(left, m_buffer.size() - rest));
    if (count == 0)
        return true;
    if (!m_source.read(m_next, {m_buffer.data() + rest, count}, message))
        return false;
    m_end += count;
    m_next += count;
    return true;
}
