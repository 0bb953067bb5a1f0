#include "map_format.h"

#include "format_text.h"
#include "map_reader.h"

#include <algorithm>
#include <array>

namespace
{
/// How a text that others chose stands in the table: nothing in it may end the line, look like padding, or
/// read as an absent value.
std::string escaped(const std::string& text, bool empty_is_dash)
{
    if (text.empty() && empty_is_dash)
        return "-";
    std::string result;
    for (std::size_t i = 0; i != text.size(); ++i) {
        const auto byte = static_cast<std::uint8_t>(text[i]);
        const bool edge = i == 0 || i + 1 == text.size();
        if (byte < 0x20 || byte == 0x7F || byte == '\\' || (byte == ' ' && edge) || text == "-")
            result += "\\" + hex_text(byte, 2).substr(1);
        else
            result += text[i];
    }
    return result;
}

/// Characters that the text takes on the screen, as far as UTF-8 tells.
std::size_t width(const std::string& text)
{
    return static_cast<std::size_t>(
        std::count_if(text.begin(), text.end(), [](char c) { return (c & 0xC0) != 0x80; }));
}

constexpr std::size_t COLUMNS = 8;
using ROW = std::array<std::string, COLUMNS>;

ROW row_of(const IMAGE_REGION& region)
{
    return {escaped(region.name, true),
            hex_text(region.start),
            hex_text(region.block_end),
            hex_text(region.block_end - region.start + 1),
            region.has_page ? std::to_string(region.page) : "-",
            escaped(region.input, true),
            hex_text(region.length),
            hex_text(region.crc)};
}
} // namespace

bool MAP_FORMAT::write(const FORMAT_REQUEST& request, BYTE_SINK& sink, std::string& message) const
{
    std::vector<ROW> rows = {
        {"Partition", "Start", "End", "Size", "Page", "Input file", "Content", "Checksum"}, {}};
    std::array<std::size_t, COLUMNS> widths{};
    for (const IMAGE_REGION& region : request.regions)
        rows.push_back(row_of(region));
    for (const ROW& row : rows)
        for (std::size_t i = 0; i != COLUMNS; ++i)
            widths[i] = std::max(widths[i], width(row[i]));
    for (std::size_t i = 0; i != COLUMNS; ++i)
        rows[1][i].assign(widths[i], '-');

    const std::uint64_t size = request.image->size();
    std::string text = "Flash map, version 1\nDevice: " + escaped(request.device, true) +
                       "\nSize: " + hex_text(size) + " (" + bytes_text(size) + ")\n\n";
    for (const ROW& row : rows) {
        for (std::size_t i = 0; i != COLUMNS; ++i) {
            text += row[i];
            if (i + 1 != COLUMNS)
                text.append(widths[i] - width(row[i]) + 2, ' ');
        }
        while (text.back() == ' ')
            text.pop_back();
        text += '\n';
    }
    return sink.write({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()}, message);
}

bool MAP_FORMAT::verify(const FORMAT_REQUEST& request, const BYTE_SOURCE& file, std::string& message) const
{
    FLASH_MAP map;
    if (!FLASH_MAP::read(file, map, message))
        return false;
    if (map.device != request.device || map.image_size != request.image->size()) {
        message = "The map is for " + map.device + " with " + bytes_text(map.image_size) + " instead of " +
                  request.device + " with " + bytes_text(request.image->size()) + ".";
        return false;
    }
    const auto [mine, wanted] = std::mismatch(map.regions.begin(), map.regions.end(), request.regions.begin(),
                                              request.regions.end(), [](IMAGE_REGION a, IMAGE_REGION b) {
                                                  // A page that a partition does not have is not written.
                                                  a.page = a.has_page ? a.page : 0;
                                                  b.page = b.has_page ? b.page : 0;
                                                  return a == b;
                                              });
    if (mine == map.regions.end() && wanted == request.regions.end())
        return true;
    message = wanted == request.regions.end()
                  ? "The map has the partition " + mine->name + ", which the layout does not have."
              : mine == map.regions.end() ? "The partition " + wanted->name + " is missing in the map."
                                          : "The partition " + wanted->name + " is not as the layout has it.";
    return false;
}

bool MAP_FORMAT::decode(const BYTE_SOURCE&, BYTE_SINK&, std::string& message) const
{
    message = "A flash map holds no image.";
    return false;
}

bool MAP_FORMAT::inspect(const BYTE_SOURCE& file, FORMAT_FACTS& facts, std::string& message) const
{
    FLASH_MAP map;
    if (!FLASH_MAP::read(file, map, message))
        return false;
    facts.facts.push_back({"format", "flash map"});
    facts.facts.push_back({"device", map.device});
    facts.facts.push_back({"image size", bytes_text(map.image_size)});
    for (const IMAGE_REGION& region : map.regions)
        if (region.length != 0)
            facts.ranges.push_back({region.start, region.length});
    facts.regions = std::move(map.regions);
    return true;
}
