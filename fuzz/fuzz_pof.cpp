#include "pof_format.h"
#include "pof_layout.h"
#include "sealed_chunks.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    const std::vector<std::uint8_t> input(bytes, bytes + size);
    for (const MEMORY_SOURCE& file :
         {MEMORY_SOURCE(input), MEMORY_SOURCE(sealed_chunks(pof::POF.signature, input))}) {
        FORMAT_FACTS facts;
        std::string message;
        if (POF_FORMAT().inspect(file, facts, message) != message.empty())
            std::abort();
    }
    return 0;
}
