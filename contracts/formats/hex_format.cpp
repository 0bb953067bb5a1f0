#include "hex_format.h"

#include "format_text.h"
#include "hex_digits.h"
#include "image_compare.h"
#include "intel_hex_reader.h"
#include "intel_hex_record.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace
{
constexpr std::uint64_t ADDRESS_SPACE = std::uint64_t(1) << 32;
constexpr std::size_t WINDOW = 0x10000; // what an extended linear address record selects
constexpr std::size_t LINE_LENGTH = 1 + 2 * (4 + HEX_FORMAT::RECORD_LENGTH + 1) + 1;
constexpr std::uint8_t END_LINE[] = {':', '0', '0', '0', '0', '0', '0', '0', '1', 'F', 'F', '\n'};

/// The address of the byte that stands first in the file; refuses streams that leave the 32 bit address
/// space.
bool first_address(const FORMAT_REQUEST& request, std::uint64_t& first, std::string& message)
{
    const std::uint64_t size = request.image->size();
    const std::uint64_t start = request.start_address;
    first = start;
    if (size == 0)
        return true;
    if (size > ADDRESS_SPACE) {
        message = "An Intel HEX file reaches 32 bit addresses and cannot hold the " + bytes_text(size) +
                  " of the stream.";
        return false;
    }
    if (request.count_down) {
        if (size - 1 > start) {
            message = "The " + bytes_text(size) + " of the stream, counted down from start address " +
                      hex_text(start) + ", would fall below address 0; choose a start address of at least " +
                      hex_text(size - 1) + ".";
            return false;
        }
        first = start - (size - 1);
        return true;
    }
    if (size > ADDRESS_SPACE - start) {
        message = "The " + bytes_text(size) + " of the stream, counted up from start address " +
                  hex_text(start) + ", would leave the 32 bit addresses; choose a start address of at most " +
                  hex_text(ADDRESS_SPACE - size) + ".";
        return false;
    }
    return true;
}

/// Writes the line of one record and returns its end.
char* put_record(char* text, std::uint8_t type, std::uint16_t address, std::span<const std::uint8_t> data)
{
    const std::uint8_t header[] = {static_cast<std::uint8_t>(data.size()),
                                   static_cast<std::uint8_t>(address >> 8),
                                   static_cast<std::uint8_t>(address), type};
    unsigned sum = 0;
    *text++ = ':';
    const auto put = [&](std::uint8_t value) {
        hex_digits::put(text, value);
        text += 2;
        sum += value;
    };
    std::for_each(std::begin(header), std::end(header), put);
    if (data.size() == HEX_FORMAT::RECORD_LENGTH) {
        sum += hex_digits::encode_16(data.data(), text);
        text += 2 * HEX_FORMAT::RECORD_LENGTH;
    } else {
        std::for_each(data.begin(), data.end(), put);
    }
    hex_digits::put(text, static_cast<std::uint8_t>(0 - sum));
    text[2] = '\n';
    return text + 3;
}
} // namespace

bool HEX_FORMAT::write(const FORMAT_REQUEST& request, BYTE_SINK& sink, std::string& message) const
{
    std::uint64_t address = 0;
    if (!first_address(request, address, message))
        return false;
    const std::uint64_t first = address;
    const std::uint64_t size = request.image->size();
    std::vector<std::uint8_t> data(static_cast<std::size_t>(std::min<std::uint64_t>(size, WINDOW)));
    std::vector<char> text((WINDOW / RECORD_LENGTH + 2) * LINE_LENGTH);

    while (address != first + size) {
        const std::size_t count = static_cast<std::size_t>(
            std::min<std::uint64_t>(WINDOW - address % WINDOW, first + size - address));
        const std::uint64_t done = address - first;
        if (!request.image->read(request.count_down ? size - done - count : done, {data.data(), count},
                                 message))
            return false;
        if (request.count_down)
            std::reverse(data.begin(), data.begin() + static_cast<std::ptrdiff_t>(count));

        const std::uint8_t upper[] = {static_cast<std::uint8_t>(address >> 24),
                                      static_cast<std::uint8_t>(address >> 16)};
        char* end = put_record(text.data(), INTEL_HEX_RECORD::EXTENDED_LINEAR_ADDRESS, 0, upper);
        // Records end at multiples of their length, so that none of them crosses a window.
        for (std::size_t i = 0; i != count;) {
            const std::uint64_t at = address + i;
            const std::size_t length = std::min<std::size_t>(RECORD_LENGTH - at % RECORD_LENGTH, count - i);
            end = put_record(end, INTEL_HEX_RECORD::DATA, static_cast<std::uint16_t>(at),
                             {data.data() + i, length});
            i += length;
        }
        if (!sink.write({reinterpret_cast<const std::uint8_t*>(text.data()),
                         static_cast<std::size_t>(end - text.data())},
                        message))
            return false;
        address += count;
    }
    return sink.write(END_LINE, message);
}

bool HEX_FORMAT::verify(const FORMAT_REQUEST& request, const BYTE_SOURCE& file, std::string& message) const
{
    std::uint64_t first = 0;
    if (!first_address(request, first, message))
        return false;
    const std::uint64_t size = request.image->size();
    INTEL_HEX_PARSER parser(file);
    const auto refuse = [&](const std::string& reason) {
        message = "Line " + std::to_string(parser.line()) + ": " + reason;
        return false;
    };

    IMAGE_COMPARE compare(*request.image);
    std::vector<std::uint8_t> decoded(static_cast<std::size_t>(std::clamp<std::uint64_t>(size, 256, WINDOW)));
    std::size_t filled = 0;
    std::uint64_t done = 0; // bytes compared
    const auto compare_decoded = [&] {
        const std::span<const std::uint8_t> block(decoded.data(), filled);
        if (filled > size - done)
            return refuse("the file holds more than the " + bytes_text(size) + " of the stream.");
        const bool equal = request.count_down ? compare.equal_reversed(size - done - filled, block, message)
                                              : compare.equal(done, block, message);
        done += filled;
        filled = 0;
        return equal;
    };

    std::uint64_t base = 0;
    bool any_base = false;
    for (bool ended = false; !ended;) {
        if (filled == decoded.size() && !compare_decoded())
            return false;
        // A run ends with its window, behind which an address record must come.
        const std::uint64_t next = first + done + filled;
        std::size_t run = std::min<std::size_t>(decoded.size() - filled, WINDOW - next % WINDOW);
        if (base == next / WINDOW * WINDOW && any_base) {
            if (!parser.plain_run(static_cast<std::uint16_t>(next), {decoded.data() + filled, run}, run,
                                  message))
                return false;
            filled += run;
        }
        INTEL_HEX_RECORD record;
        bool found = false;
        if (!parser.next(record, found, message))
            return false;
        if (!found) {
            message =
                "The file ends without its end record; it was not written completely, generate it again.";
            return false;
        }
        if (!record.plain)
            return refuse("the record is not spelled as it was written.");
        switch (record.type) {
        case INTEL_HEX_RECORD::DATA: {
            const std::uint64_t at = base + record.address;
            if (!any_base)
                return refuse("an address record must come before the data.");
            if (at != first + done + filled)
                return refuse("the record is for address " + hex_text(at) + " instead of " +
                              hex_text(first + done + filled) + ".");
            if (filled + record.length > decoded.size() && !compare_decoded())
                return false;
            std::memcpy(decoded.data() + filled, record.data.data(), record.length);
            filled += record.length;
            break;
        }
        case INTEL_HEX_RECORD::EXTENDED_LINEAR_ADDRESS:
            base = static_cast<std::uint64_t>(record.word()) << 16;
            any_base = true;
            if (record.address != 0 || base != (first + done + filled) / WINDOW * WINDOW)
                return refuse("the address record does not fit the data before it.");
            break;
        case INTEL_HEX_RECORD::END_OF_FILE:
            ended = true;
            if (record.address != 0)
                return refuse("the end record is not spelled as it was written.");
            break;
        case INTEL_HEX_RECORD::EXTENDED_SEGMENT_ADDRESS:
        case INTEL_HEX_RECORD::START_SEGMENT_ADDRESS:
        case INTEL_HEX_RECORD::START_LINEAR_ADDRESS:
            return refuse("a record of type " + hex_text(record.type, 2) + " has no place in this file.");
        }
    }
    if (!compare_decoded())
        return false;
    if (done != size) {
        message = "The file holds " + bytes_text(done) + " of the " + bytes_text(size) +
                  " of the stream; it was not written completely, generate it again.";
        return false;
    }
    if (parser.offset() != file.size()) {
        message = "There is something behind the end record in line " + std::to_string(parser.line()) + ".";
        return false;
    }
    return true;
}

bool HEX_FORMAT::decode(const BYTE_SOURCE& file, BYTE_SINK& sink, std::string& message) const
{
    INTEL_HEX_FILE hex;
    if (!INTEL_HEX_FILE::read(file, hex, message))
        return false;
    const INTEL_HEX_IMAGE image(file, std::move(hex));
    return send_image(image, 0, image.size(), false, sink, message);
}

bool HEX_FORMAT::inspect(const BYTE_SOURCE& file, FORMAT_FACTS& facts, std::string& message) const
{
    INTEL_HEX_FILE hex;
    if (!INTEL_HEX_FILE::read(file, hex, message))
        return false;
    facts.facts.push_back({"format", "Intel HEX"});
    facts.facts.push_back({"records", std::to_string(hex.records)});
    facts.facts.push_back({"data", bytes_text(hex.data_size)});
    if (!hex.segments.empty()) {
        std::uint32_t crc = 0;
        if (!crc32_of_source(INTEL_HEX_IMAGE(file, hex), crc, message))
            return false;
        facts.facts.push_back({"first address", hex_text(hex.begin())});
        facts.facts.push_back({"last address", hex_text(hex.end() - 1)});
        facts.facts.push_back({"image CRC-32", hex_text(crc)});
    }
    if (hex.has_entry)
        facts.facts.push_back({"entry address", hex_text(hex.entry)});
    for (const INTEL_HEX_SEGMENT& segment : hex.segments) {
        if (!facts.ranges.empty() &&
            facts.ranges.back().start + facts.ranges.back().length == segment.address)
            facts.ranges.back().length += segment.length;
        else
            facts.ranges.push_back({segment.address, segment.length});
    }
    return true;
}
