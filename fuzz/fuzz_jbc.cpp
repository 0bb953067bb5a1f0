#include "jbc_format.h"
#include "jbc_layout.h"
#include "sealed_chunks.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    const std::vector<std::uint8_t> input(bytes, bytes + size);
    for (const MEMORY_SOURCE& file :
         {MEMORY_SOURCE(input), MEMORY_SOURCE(sealed_chunks(jbc::SIGNATURE, input))}) {
        FORMAT_FACTS facts;
        MEMORY_SINK decoded;
        std::string message;
        std::string of_decoding;
        const bool read = JBC_FORMAT().inspect(file, facts, message);
        if (read != message.empty() || JBC_FORMAT().decode(file, decoded, of_decoding) != read)
            std::abort();
    }
    return 0;
}
