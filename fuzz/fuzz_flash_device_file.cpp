#include "custom_flash.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

// A file is either refused with a reason or gives a device that keeps the promises of the format.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    PGM_DEVICE device;
    std::string message;
    if (!read_flash_device_bytes({data, size}, "fuzz.xml", device, message)) {
        if (message.empty()) {
            std::abort();
        }
        return 0;
    }
    const bool sound = !device.name.empty() && device.name.size() <= 64 && device.flash_bytes != 0 &&
                       device.flash_bytes <= (std::uint64_t{4} << 30) && device.sector_bytes != 0 &&
                       device.flash_bytes % device.sector_bytes == 0 && device.page_bytes != 0 &&
                       device.sector_bytes % device.page_bytes == 0;
    if (!sound) {
        std::abort();
    }
    return 0;
}
