#include "hex_format.h"

#include "checksum_sink.h"
#include "fill_crc.h"
#include "format_text.h"
#include "hex_digits.h"
#include "image_compare.h"
#include "intel_hex_compare.h"
#include "intel_hex_reader.h"
#include "intel_hex_record.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace
{
constexpr std::uint64_t ADDRESS_SPACE = std::uint64_t(1) << 32;
constexpr std::size_t WINDOW = 0x10000; // what an extended linear address record selects
constexpr std::size_t LINE_LENGTH = hex_line_length(HEX_FORMAT::RECORD_LENGTH);
static_assert(HEX_FORMAT::RECORD_LENGTH == HEX_LINE_BYTES);
constexpr std::size_t MOST_WINDOW_TEXT = (WINDOW / HEX_FORMAT::RECORD_LENGTH + 2) * LINE_LENGTH;
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

/// Walks through the image as the file holds it: window by window, each with its bytes in the order of the
/// file.
class WINDOWS
{
public:
    WINDOWS(const FORMAT_REQUEST& request, std::uint64_t first)
        : m_request(request), m_size(request.image->size()), m_first(first),
          m_data(static_cast<std::size_t>(std::min<std::uint64_t>(m_size, WINDOW)))
    {
    }

    bool at_end() const { return m_done == m_size; }
    std::uint64_t address() const { return m_first + m_done; } ///< of the next window

    bool next(std::span<const std::uint8_t>& bytes, std::string& message)
    {
        const std::size_t count =
            static_cast<std::size_t>(std::min<std::uint64_t>(WINDOW - address() % WINDOW, m_size - m_done));
        const std::span<std::uint8_t> data(m_data.data(), count);
        if (!m_request.image->read(m_request.count_down ? m_size - m_done - count : m_done, data, message))
            return false;
        if (m_request.count_down)
            std::reverse(data.begin(), data.end());
        m_done += count;
        bytes = data;
        return true;
    }

private:
    const FORMAT_REQUEST& m_request;
    const std::uint64_t m_size;
    const std::uint64_t m_first;
    std::uint64_t m_done = 0;
    IO_BLOCK m_data;
};

/// Hands the bytes of a window over as records, of which none crosses a multiple of its length; a false from
/// `take` ends it.
template <class TAKE>
bool for_each_record(std::uint64_t address, std::span<const std::uint8_t> bytes, TAKE take)
{
    while (!bytes.empty()) {
        const std::size_t length = std::min<std::size_t>(
            HEX_FORMAT::RECORD_LENGTH - address % HEX_FORMAT::RECORD_LENGTH, bytes.size());
        if (!take(static_cast<std::uint16_t>(address), bytes.first(length)))
            return false;
        bytes = bytes.subspan(length);
        address += length;
    }
    return true;
}

/// The address record of a window.
std::array<std::uint8_t, 2> upper_half(std::uint64_t address)
{
    return {static_cast<std::uint8_t>(address >> 24), static_cast<std::uint8_t>(address >> 16)};
}

/// Whether the text of a window, which has the right length, says what it must.
bool window_says(const std::uint8_t* text, std::uint64_t address, std::span<const std::uint8_t> bytes)
{
    const auto upper = upper_half(address);
    if (!hex_line_says(text, INTEL_HEX_RECORD::EXTENDED_LINEAR_ADDRESS, 0, upper))
        return false;
    text += hex_line_length(upper.size());
    const auto says = [&text](std::uint16_t at, std::span<const std::uint8_t> data) {
        const std::uint8_t* const line = text;
        text += hex_line_length(data.size());
        return hex_line_says(line, INTEL_HEX_RECORD::DATA, at, data);
    };
    // Full records in one go, with what may stand before the first and behind the last.
    const std::size_t before =
        static_cast<std::size_t>(std::min<std::uint64_t>(-address % HEX_FORMAT::RECORD_LENGTH, bytes.size()));
    const std::size_t full = (bytes.size() - before) / HEX_FORMAT::RECORD_LENGTH * HEX_FORMAT::RECORD_LENGTH;
    if (!for_each_record(address, bytes.first(before), says) ||
        !hex_lines_say(text, (address + before) % WINDOW, bytes.subspan(before, full)))
        return false;
    text += full / HEX_FORMAT::RECORD_LENGTH * LINE_LENGTH;
    return for_each_record(address + before + full, bytes.subspan(before + full), says);
}

/// Characters of the text of a window.
std::size_t window_length(std::uint64_t address, std::size_t count)
{
    constexpr std::size_t LENGTH = HEX_FORMAT::RECORD_LENGTH;
    const std::size_t records = (static_cast<std::size_t>(address % LENGTH) + count + LENGTH - 1) / LENGTH;
    return hex_line_length(2) + records * hex_line_length(0) + 2 * count;
}

/// Whether the file is, character by character, what it must be. False without a message when it is not;
/// where and why is then to be found by decoding it.
bool reads_as_written(const FORMAT_REQUEST& request, std::uint64_t first, const BYTE_SOURCE& file,
                      std::string& message)
{
    constexpr std::size_t CACHE_LINE = 64;
    IO_BLOCK block(MOST_WINDOW_TEXT + CACHE_LINE);
    const std::uint8_t* text = nullptr;
    std::uint64_t offset = 0;
    const auto read = [&](std::size_t length) {
        // Within its cache line as in the file, which is the fastest to read.
        const std::span<std::uint8_t> into(block.data() + offset % CACHE_LINE, length);
        const bool there = length <= file.size() - offset && file.read(offset, into, message);
        text = into.data();
        offset += length;
        return there;
    };
    for (WINDOWS windows(request, first); !windows.at_end();) {
        const std::uint64_t address = windows.address();
        std::span<const std::uint8_t> bytes;
        if (!windows.next(bytes, message) || !read(window_length(address, bytes.size())) ||
            !window_says(text, address, bytes))
            return false;
    }
    return read(sizeof END_LINE) && offset == file.size() &&
           std::memcmp(text, END_LINE, sizeof END_LINE) == 0;
}
} // namespace

bool HEX_FORMAT::write(const FORMAT_REQUEST& request, BYTE_SINK& sink, std::string& message) const
{
    std::uint64_t first = 0;
    if (!first_address(request, first, message))
        return false;
    std::vector<char> text(MOST_WINDOW_TEXT);
    for (WINDOWS windows(request, first); !windows.at_end();) {
        const std::uint64_t address = windows.address();
        std::span<const std::uint8_t> bytes;
        if (!windows.next(bytes, message))
            return false;
        char* end =
            put_record(text.data(), INTEL_HEX_RECORD::EXTENDED_LINEAR_ADDRESS, 0, upper_half(address));
        for_each_record(address, bytes, [&end](std::uint16_t at, std::span<const std::uint8_t> data) {
            end = put_record(end, INTEL_HEX_RECORD::DATA, at, data);
            return true;
        });
        if (!sink.write({reinterpret_cast<const std::uint8_t*>(text.data()),
                         static_cast<std::size_t>(end - text.data())},
                        message))
            return false;
    }
    return sink.write(END_LINE, message);
}

namespace
{
/// Decodes the file record by record and tells the first thing that is wrong with it.
bool decodes_to_image(const FORMAT_REQUEST& request, std::uint64_t first, const BYTE_SOURCE& file,
                      std::string& message)
{
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
} // namespace

bool HEX_FORMAT::verify(const FORMAT_REQUEST& request, const BYTE_SOURCE& file, std::string& message) const
{
    std::uint64_t first = 0;
    if (!first_address(request, first, message))
        return false;
    return reads_as_written(request, first, file, message) || decodes_to_image(request, first, file, message);
}

bool HEX_FORMAT::decode(const BYTE_SOURCE& file, BYTE_SINK& sink, std::string& message) const
{
    INTEL_HEX_FILE hex;
    if (!INTEL_HEX_FILE::read(file, hex, message))
        return false;
    const INTEL_HEX_IMAGE image(file, std::move(hex));
    return send_image(image, 0, image.size(), false, sink, message);
}

namespace
{
/// The checksum of the image with its fill, of which a few records may ask for gigabytes.
bool crc32_of_image(const BYTE_SOURCE& file, const INTEL_HEX_FILE& hex, std::uint32_t& crc,
                    std::string& message)
{
    const INTEL_HEX_IMAGE image(file, hex);
    CHECKSUM_SINK sink;
    std::uint64_t end = hex.begin();
    for (const INTEL_HEX_SEGMENT& segment : hex.segments) {
        sink.crc = crc32_of_fill(sink.crc, segment.address - end);
        if (!send_image(image, segment.address - hex.begin(), segment.length, false, sink, message))
            return false;
        end = segment.address + segment.length;
    }
    crc = sink.crc;
    return true;
}
} // namespace

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
        if (!crc32_of_image(file, hex, crc, message))
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
