#ifndef LITTLE_ENDIAN_H
#define LITTLE_ENDIAN_H

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

/// Puts a record together; integers are written with the least significant byte first.
class RECORD_WRITER
{
public:
    void u8(std::uint8_t value) { m_bytes.push_back(value); }
    void u16(std::uint16_t value) { integer(value, 2); }
    void u24(std::uint32_t value) { integer(value, 3); }
    void u32(std::uint32_t value) { integer(value, 4); }
    void u64(std::uint64_t value) { integer(value, 8); }
    void bytes(std::span<const std::uint8_t> bytes)
    {
        m_bytes.insert(m_bytes.end(), bytes.begin(), bytes.end());
    }
    void text(const std::string& text) { m_bytes.insert(m_bytes.end(), text.begin(), text.end()); }

    const std::vector<std::uint8_t>& content() const { return m_bytes; }
    std::vector<std::uint8_t> take() { return std::move(m_bytes); }

private:
    void integer(std::uint64_t value, unsigned size)
    {
        for (unsigned i = 0; i < size; ++i)
            m_bytes.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
    }
    std::vector<std::uint8_t> m_bytes;
};

/// Takes a record apart. A read beyond the end gives zero and makes good() false for ever, so that a record
/// is read in one go and asked once.
class RECORD_READER
{
public:
    explicit RECORD_READER(std::span<const std::uint8_t> bytes) : m_bytes(bytes) {}

    std::uint8_t u8() { return static_cast<std::uint8_t>(integer(1)); }
    std::uint16_t u16() { return static_cast<std::uint16_t>(integer(2)); }
    std::uint32_t u24() { return static_cast<std::uint32_t>(integer(3)); }
    std::uint32_t u32() { return static_cast<std::uint32_t>(integer(4)); }
    std::uint64_t u64() { return integer(8); }
    std::span<const std::uint8_t> bytes(std::size_t size)
    {
        if (size > m_bytes.size()) {
            m_good = false;
            m_bytes = {};
            return {};
        }
        const auto taken = m_bytes.first(size);
        m_bytes = m_bytes.subspan(size);
        return taken;
    }
    std::string text(std::size_t size)
    {
        const auto taken = bytes(size);
        return std::string(taken.begin(), taken.end());
    }

    bool good() const { return m_good; }
    /// Whether everything was read and nothing more than that.
    bool used_up() const { return m_good && m_bytes.empty(); }
    std::size_t left() const { return m_bytes.size(); }

private:
    std::uint64_t integer(std::size_t size)
    {
        std::uint64_t value = 0;
        unsigned shift = 0;
        for (const std::uint8_t byte : bytes(size)) {
            value |= static_cast<std::uint64_t>(byte) << shift;
            shift += 8;
        }
        return value;
    }
    std::span<const std::uint8_t> m_bytes;
    bool m_good = true;
};

#endif
