#ifndef IMAGEWRIGHT_TESTS_FORMAT_TEST_SUPPORT_H
#define IMAGEWRIGHT_TESTS_FORMAT_TEST_SUPPORT_H

#include "format.h"

#include <cstdint>
#include <random>
#include <string>
#include <vector>

using BYTES = std::vector<std::uint8_t>;

/// Random numbers of 32 bits, the same for the same seed.
class DICE
{
public:
    using result_type = std::uint32_t;
    explicit DICE(std::uint32_t seed) : m_engine(seed) {}
    result_type operator()() { return static_cast<result_type>(m_engine()); }
    static constexpr result_type min() { return 0; }
    static constexpr result_type max() { return 0xFFFFFFFF; }

private:
    std::mt19937 m_engine;
};

/// Bytes that look random and are the same for the same seed.
BYTES make_bytes(std::size_t size, std::uint32_t seed = 1);

BYTES bytes_of(const std::string& text);
std::string text_of(const BYTES& bytes);

/// What the format writes for the request; a failure fails the test.
BYTES write_format(const FORMAT& format, const FORMAT_REQUEST& request);

/// What verify() says about the file: empty when it holds.
std::string verify_format(const FORMAT& format, const FORMAT_REQUEST& request, const BYTES& file);

/// What decode() gives; its message in `*message` (or a failed test when that is null).
BYTES decode_format(const FORMAT& format, const BYTES& file, std::string* message = nullptr);

/// What inspect() finds; a failure fails the test.
FORMAT_FACTS inspect_format(const FORMAT& format, const BYTES& file);

/// The value of a fact, "(none)" when it is not there.
std::string fact(const FORMAT_FACTS& facts, const std::string& name);

/// A disk that is full after `capacity` bytes.
class FULL_SINK final : public BYTE_SINK
{
public:
    explicit FULL_SINK(std::uint64_t capacity) : m_left(capacity) {}
    bool write(std::span<const std::uint8_t> bytes, std::string& message) override
    {
        if (bytes.size() > m_left) {
            message = "out.bin cannot be written: no space left on device.";
            return false;
        }
        m_left -= bytes.size();
        return true;
    }

private:
    std::uint64_t m_left;
};

/// A source whose bytes from `limit` on cannot be read.
class BROKEN_SOURCE final : public BYTE_SOURCE
{
public:
    BROKEN_SOURCE(BYTES bytes, std::uint64_t limit) : m_bytes(std::move(bytes)), m_limit(limit) {}
    std::uint64_t size() const override { return m_bytes.size(); }
    bool read(std::uint64_t offset, std::span<std::uint8_t> into, std::string& message) const override;

private:
    MEMORY_SOURCE m_bytes;
    std::uint64_t m_limit;
};

/// A source of any size that takes no memory: a pattern of the offset.
class PATTERN_SOURCE final : public BYTE_SOURCE
{
public:
    explicit PATTERN_SOURCE(std::uint64_t size) : m_size(size) {}
    std::uint64_t size() const override { return m_size; }
    bool read(std::uint64_t offset, std::span<std::uint8_t> into, std::string& message) const override;

private:
    std::uint64_t m_size;
};

#endif
