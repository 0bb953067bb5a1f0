#include "ekp_format.h"
#include "memory_file.h"

namespace
{

void read(std::vector<std::uint8_t> bytes)
{
    const MEMORY_SOURCE file(std::move(bytes));
    FORMAT_FACTS facts;
    std::string message;
    if (EKP_FORMAT().inspect(file, facts, message) != message.empty())
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    read({bytes, bytes + size});
    read(with_checksum({bytes, size}));
    return 0;
}
