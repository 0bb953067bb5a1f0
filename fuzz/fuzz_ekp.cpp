#include "ekp_format.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    const MEMORY_SOURCE file(std::vector<std::uint8_t>(bytes, bytes + size));
    FORMAT_FACTS facts;
    std::string message;
    if (EKP_FORMAT().inspect(file, facts, message) != message.empty())
        std::abort();
    return 0;
}
