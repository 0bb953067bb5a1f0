#include "svf_format.h"
#include "svf_reader.h"

#include <cstdio>
#include <cstdlib>

// The checksum is put right, so that what stands before it is read.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    std::vector<std::uint8_t> text(bytes, bytes + size);
    text.insert(text.end(), svf::SEAL, svf::SEAL + sizeof svf::SEAL - 1);
    char digits[16];
    std::snprintf(digits, sizeof digits, "%08X\n", crc32(text));
    text.insert(text.end(), digits, digits + 9);
    const MEMORY_SOURCE file(std::move(text));
    MEMORY_SINK decoded;
    FORMAT_FACTS facts;
    std::string message;
    std::string of_inspection;
    const bool read = SVF_FORMAT().decode(file, decoded, message);
    if (read != message.empty() || SVF_FORMAT().inspect(file, facts, of_inspection) != read)
        std::abort();
    return 0;
}
