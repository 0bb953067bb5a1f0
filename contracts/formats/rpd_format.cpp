#include "rpd_format.h"

#include "block_reader.h"
#include "format_text.h"
#include "image_compare.h"

#include <algorithm>

namespace
{
/// The part of the image that the file holds.
bool find_range(const FORMAT_REQUEST& request, std::uint64_t& begin, std::uint64_t& length,
                std::string& message)
{
    const std::uint64_t size = request.image->size();
    if (!request.use_relative) {
        begin = request.start_address;
        if (begin != 0 && begin >= size) {
            message = "The start address " + hex_text(begin) + " lies behind the end of " + request.device +
                      ", which has " + bytes_text(size) + "; choose a lower one.";
            return false;
        }
        for (const IMAGE_REGION& region : request.regions) {
            if (begin > region.start && begin - region.start < region.length) {
                message = "The start address " + hex_text(begin) + " cuts partition " + region.name + " (" +
                          hex_text(region.start) + " to " + hex_text(region.start + region.length - 1) +
                          "); choose an address outside of it.";
                return false;
            }
        }
        length = size - begin;
        return true;
    }

    begin = size;
    std::uint64_t end = 0;
    for (const IMAGE_REGION& region : request.regions) {
        if (region.length == 0)
            continue;
        begin = std::min(begin, region.start);
        end = std::max(end, region.start + region.length);
    }
    if (end == 0) {
        begin = 0;
        end = size;
    }
    length = end - begin;
    return true;
}
} // namespace

bool RPD_FORMAT::write(const FORMAT_REQUEST& request, BYTE_SINK& sink, std::string& message) const
{
    std::uint64_t begin = 0;
    std::uint64_t length = 0;
    return find_range(request, begin, length, message) &&
           send_image(*request.image, begin, length, request.bitswap, sink, message);
}

bool RPD_FORMAT::verify(const FORMAT_REQUEST& request, const BYTE_SOURCE& file, std::string& message) const
{
    std::uint64_t begin = 0;
    std::uint64_t length = 0;
    return find_range(request, begin, length, message) &&
           equal_to_image(file, *request.image, begin, length, request.bitswap, message);
}

bool RPD_FORMAT::decode(const BYTE_SOURCE& file, BYTE_SINK& sink, std::string& message) const
{
    return send_image(file, 0, file.size(), false, sink, message);
}

bool RPD_FORMAT::inspect(const BYTE_SOURCE& file, FORMAT_FACTS& facts, std::string& message) const
{
    std::uint32_t crc = 0;
    std::uint64_t first = file.size();
    std::uint64_t last = 0;
    for (BLOCK_READER reader(file); !reader.at_end(); reader.skip(reader.available())) {
        if (!reader.need(1, message))
            return false;
        const std::span<const std::uint8_t> block(reader.data(), reader.available());
        crc = crc32(block, crc);
        const std::size_t used = find_end_of_run(block, 0, true);
        if (used == block.size())
            continue;
        first = std::min(first, reader.offset() + used);
        const auto end =
            std::find_if(block.rbegin(), block.rend(), [](std::uint8_t byte) { return byte != 0xFF; });
        last = reader.offset() + static_cast<std::uint64_t>(block.rend() - end) - 1;
    }
    facts.facts.push_back({"format", "raw flash image"});
    facts.facts.push_back({"image size", bytes_text(file.size())});
    facts.facts.push_back({"image CRC-32", hex_text(crc)});
    if (first != file.size()) {
        facts.facts.push_back({"first used byte", hex_text(first)});
        facts.facts.push_back({"last used byte", hex_text(last)});
        facts.ranges.push_back({first, last - first + 1});
    }
    return true;
}
