#include "vek_key_file_assistant.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <sys/mman.h>
#include <unistd.h>

/// The reader takes a path, so the bytes go into a file in memory.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const int file = memfd_create("keys", MFD_CLOEXEC);
    if (file < 0 || ftruncate(file, 0) != 0 || pwrite(file, data, size, 0) != static_cast<ssize_t>(size))
        std::abort();
    std::map<std::string, std::string> keys;
    if (VEK_KEY_FILE_ASSISTANT::parse_key_file("/proc/self/fd/" + std::to_string(file), 64, keys))
        for (const auto& [name, key] : keys)
            if (key.size() != 16 || name.empty())
                std::abort();
    return 0;
}
