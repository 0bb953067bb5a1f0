#include "memory_file.h"
#include "vek_key_file_assistant.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    std::map<std::string, std::string> keys;
    if (VEK_KEY_FILE_ASSISTANT::parse_key_file(memory_file({data, size}), 64, keys))
        for (const auto& [name, key] : keys)
            if (key.size() != 16 || name.empty())
                std::abort();
    return 0;
}
