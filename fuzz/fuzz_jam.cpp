#include "jam_format.h"
#include "stapl_crc.h"

#include <cstdio>
#include <cstdlib>

// The CRC is put right, so that what stands before it is read.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    std::vector<std::uint8_t> text(bytes, bytes + size);
    char line[16];
    const int length = std::snprintf(line, sizeof line, "CRC %04X;\n", stapl_crc(text));
    text.insert(text.end(), line, line + length);
    const MEMORY_SOURCE file(std::move(text));
    MEMORY_SINK decoded;
    FORMAT_FACTS facts;
    std::string message;
    std::string of_inspection;
    const bool read = JAM_FORMAT().decode(file, decoded, message);
    if (read != message.empty() || JAM_FORMAT().inspect(file, facts, of_inspection) != read)
        std::abort();
    return 0;
}
