#include "format_test_support.h"

#include <gtest/gtest.h>

#include <random>

BYTES make_bytes(std::size_t size, std::uint32_t seed)
{
    std::mt19937 random(seed);
    BYTES bytes(size);
    for (std::uint8_t& byte : bytes)
        byte = static_cast<std::uint8_t>(random());
    return bytes;
}

BYTES bytes_of(const std::string& text)
{
    return {text.begin(), text.end()};
}

std::string text_of(const BYTES& bytes)
{
    return {bytes.begin(), bytes.end()};
}

BYTES write_format(const FORMAT& format, const FORMAT_REQUEST& request)
{
    MEMORY_SINK sink;
    std::string message;
    EXPECT_TRUE(format.write(request, sink, message)) << message;
    return sink.take();
}

std::string verify_format(const FORMAT& format, const FORMAT_REQUEST& request, const BYTES& file)
{
    std::string message;
    const bool verified = format.verify(request, MEMORY_SOURCE(file), message);
    EXPECT_EQ(verified, message.empty());
    return message;
}

BYTES decode_format(const FORMAT& format, const BYTES& file, std::string* message)
{
    MEMORY_SINK sink;
    std::string said;
    const bool decoded = format.decode(MEMORY_SOURCE(file), sink, said);
    if (message) {
        *message = said;
    } else {
        EXPECT_TRUE(decoded) << said;
    }
    EXPECT_EQ(decoded, said.empty());
    return sink.take();
}

FORMAT_FACTS inspect_format(const FORMAT& format, const BYTES& file)
{
    FORMAT_FACTS facts;
    std::string message;
    EXPECT_TRUE(format.inspect(MEMORY_SOURCE(file), facts, message)) << message;
    return facts;
}

std::string fact(const FORMAT_FACTS& facts, const std::string& name)
{
    for (const FORMAT_FACTS::FACT& candidate : facts.facts)
        if (candidate.name == name)
            return candidate.value;
    return "(none)";
}

bool BROKEN_SOURCE::read(std::uint64_t offset, std::span<std::uint8_t> into, std::string& message) const
{
    if (offset + into.size() > m_limit) {
        message = "in.bin cannot be read: input/output error.";
        return false;
    }
    return m_bytes.read(offset, into, message);
}

bool PATTERN_SOURCE::read(std::uint64_t offset, std::span<std::uint8_t> into, std::string&) const
{
    for (std::size_t i = 0; i != into.size(); ++i)
        into[i] = static_cast<std::uint8_t>((offset + i) * 2654435761u >> 13);
    return true;
}
