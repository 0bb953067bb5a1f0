#include "firmware_archive.h"
#include "memory_file.h"

/// No mutation has a signature that fits, so the structure is read alone too.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    const std::string path = memory_file({bytes, size});
    for (const bool verify : {false, true}) {
        FIRMWARE_ARCHIVE archive;
        std::string message;
        if (open_firmware_archive(path, verify, archive, message) != message.empty())
            std::abort();
    }
    return 0;
}
