#include "aek_file.h"
#include "memory_file.h"

namespace
{

/// No password: its derivation takes most of a second by design.
void read(std::span<const std::uint8_t> bytes)
{
    SECRET_BYTES key;
    std::string message;
    const bool good = read_aek_file(memory_file(bytes), nullptr, key, message);
    if (good != message.empty() || good != (key.size() == AEK_KEY_SIZE))
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    read({bytes, size});
    read(with_checksum({bytes, size}));
    return 0;
}
