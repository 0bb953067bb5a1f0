#include "memory_file.h"
#include "stream_signer.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    PEM_KEY key;
    std::string message;
    if (load_pem_key(memory_file({bytes, size}), nullptr, key, message) != message.empty())
        std::abort();
    return 0;
}
