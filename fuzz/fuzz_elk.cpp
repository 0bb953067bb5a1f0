#include "lock_file.h"
#include "memory_file.h"

namespace
{

void read(std::span<const std::uint8_t> bytes)
{
    ENCRYPTION_LOCK lock;
    std::string reason;
    const bool good = decode_lock(SECRET_BYTES(bytes.begin(), bytes.end()), lock, reason);
    if (good != reason.empty() || good != (lock.key != nullptr))
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    read({bytes, size});
    read(with_checksum({bytes, size}));
    return 0;
}
