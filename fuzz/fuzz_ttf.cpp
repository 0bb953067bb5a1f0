#include "ttf_format.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    const TTF_FORMAT ttf;
    const MEMORY_SOURCE file(std::vector<std::uint8_t>(bytes, bytes + size));
    MEMORY_SINK decoded;
    std::string message;
    if (!ttf.decode(file, decoded, message)) {
        if (message.empty())
            std::abort();
        return 0;
    }
    // What was read is written in the usual spelling, which must hold and say the same.
    const MEMORY_SOURCE image(decoded.take());
    FORMAT_REQUEST request;
    request.image = &image;
    MEMORY_SINK again;
    if (!ttf.write(request, again, message) || !ttf.verify(request, MEMORY_SOURCE(again.take()), message))
        std::abort();
    return 0;
}
