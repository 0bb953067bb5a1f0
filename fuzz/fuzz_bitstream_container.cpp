#include "bitstream_file.h"
#include "stream_reader.h"

#include <cstddef>
#include <cstdint>

/// Both binary readers: a file is one or the other by its first bytes. Checksums are mended, so that the
/// mutations reach what lies behind them.
namespace
{

void put32(std::vector<std::uint8_t>& bytes, std::size_t offset, std::uint32_t value)
{
    for (std::size_t i = 0; i < 4; ++i)
        bytes[offset + i] = static_cast<std::uint8_t>(value >> (8 * i));
}

void mend_header(std::vector<std::uint8_t>& bytes)
{
    if (bytes.size() < 32)
        return;
    const std::size_t directory = 16 * (bytes[14] + 256U * bytes[15]);
    if (bytes.size() < 32 + directory)
        return;
    const std::span<const std::uint8_t> all(bytes);
    put32(bytes, 28, crc32(all.subspan(32, directory), crc32(all.first(28))));
}

void mend_packets(std::vector<std::uint8_t>& bytes)
{
    for (std::size_t offset = 4; offset + 4 <= bytes.size();) {
        const std::size_t length = bytes[offset + 1] + 256U * bytes[offset + 2] + 65536U * bytes[offset + 3];
        if (bytes.size() - offset < length + 8)
            return;
        const std::span<const std::uint8_t> packet = std::span(bytes).subspan(offset, length + 4);
        put32(bytes, offset + length + 4, crc32(packet));
        offset += length + 8;
    }
}

void read_all(const std::vector<std::uint8_t>& bytes)
{
    std::string message;
    const auto source = std::make_shared<MEMORY_SOURCE>(bytes);
    if (const auto file = BITSTREAM_FILE::open(source, "input", message))
        file->verify(message);
    STREAM_FACTS facts;
    read_configuration_stream(*source, false, facts, nullptr, message);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    std::vector<std::uint8_t> bytes(data, data + size);
    read_all(bytes);
    mend_header(bytes);
    read_all(bytes);
    bytes.assign(data, data + size);
    mend_packets(bytes);
    read_all(bytes);
    return 0;
}
