#include "map_format.h"
#include "map_reader.h"

#include <cstdlib>

namespace
{
/// An image of any size of which nothing can be read.
class SIZE_ALONE final : public BYTE_SOURCE
{
public:
    explicit SIZE_ALONE(std::uint64_t size) : m_size(size) {}
    std::uint64_t size() const override { return m_size; }
    bool read(std::uint64_t, std::span<std::uint8_t>, std::string& message) const override
    {
        message = "There is nothing to read.";
        return false;
    }

private:
    std::uint64_t m_size;
};
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    const MEMORY_SOURCE file(std::vector<std::uint8_t>(bytes, bytes + size));
    FLASH_MAP map;
    std::string message;
    if (!FLASH_MAP::read(file, map, message)) {
        if (message.empty())
            std::abort();
        return 0;
    }
    // A map has one spelling.
    const SIZE_ALONE image(map.image_size);
    FORMAT_REQUEST request;
    request.image = &image;
    request.device = map.device;
    request.regions = map.regions;
    MEMORY_SINK again;
    if (!MAP_FORMAT().write(request, again, message) ||
        again.bytes() != std::vector<std::uint8_t>(bytes, bytes + size))
        std::abort();
    return 0;
}
