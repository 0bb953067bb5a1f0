#include "bitstream_file.h"
#include "mended_stream.h"
#include "stream_reader.h"

#include <cstddef>
#include <cstdint>

/// Both binary readers: a file is one or the other by its first bytes. Checksums are mended, so that the
/// mutations reach what lies behind them.
namespace
{

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
