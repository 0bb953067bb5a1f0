#include "key_chain.h"
#include "memory_file.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    KEY_CHAIN chain;
    std::string message;
    if (read_key_chain(memory_file({data, size}), chain, message) != message.empty())
        std::abort();
    return 0;
}
