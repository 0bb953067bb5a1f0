#include "hex_format.h"
#include "intel_hex_reader.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    const MEMORY_SOURCE file(std::vector<std::uint8_t>(bytes, bytes + size));
    INTEL_HEX_FILE contents;
    std::string message;
    if (!INTEL_HEX_FILE::read(file, contents, message)) {
        if (message.empty())
            std::abort();
        return 0;
    }
    // What was indexed must be readable. A few bytes may span 4 GiB, so only the segments are read.
    const INTEL_HEX_IMAGE image(file, contents);
    for (const INTEL_HEX_SEGMENT& segment : contents.segments) {
        std::vector<std::uint8_t> data(segment.length);
        if (!image.read(segment.address - contents.begin(), data, message))
            std::abort();
    }
    return 0;
}
