#include "ttf_format.h"

#include "block_reader.h"
#include "checksum_sink.h"
#include "format_text.h"
#include "ttf_numbers.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace
{
constexpr std::size_t BLOCK = 64 * 1024;
constexpr unsigned PER_LINE = TTF_FORMAT::NUMBERS_PER_LINE;
constexpr std::size_t LONGEST_LINE = PER_LINE * 4 + 1;
static_assert(BLOCK % PER_LINE == 0);

struct ENTRY {
    char text[4]; ///< the number and a comma
};

constexpr unsigned digit_count(unsigned value)
{
    return 1 + (value >= 10) + (value >= 100);
}

constexpr auto NUMBERS = [] {
    std::array<ENTRY, 256> entries{};
    for (unsigned value = 0; value != entries.size(); ++value) {
        unsigned rest = value;
        for (unsigned i = digit_count(value); i-- != 0; rest /= 10)
            entries[value].text[i] = static_cast<char>('0' + rest % 10);
        entries[value].text[digit_count(value)] = ',';
    }
    return entries;
}();

constexpr auto LENGTHS = [] {
    std::array<std::uint8_t, 256> lengths{};
    for (unsigned value = 0; value != lengths.size(); ++value)
        lengths[value] = static_cast<std::uint8_t>(digit_count(value) + 1);
    return lengths;
}();

/// Puts each number in one step of four characters, of which the next one overwrites what is too much.
char* put_numbers(const std::uint8_t* bytes, std::size_t count, char* text)
{
    for (std::size_t i = 0; i != count; ++i) {
        std::memcpy(text, NUMBERS[bytes[i]].text, 4);
        text += LENGTHS[bytes[i]];
    }
    return text;
}

bool wrong_number(std::uint64_t index, std::uint8_t wanted, std::string& message)
{
    message = "Line " + std::to_string(index / PER_LINE + 1) + ", number " +
              std::to_string(index % PER_LINE + 1) + " is not \"" + std::to_string(wanted) +
              "\" as in the stream; the file was not written correctly, generate it again.";
    return false;
}
} // namespace

bool TTF_FORMAT::write(const FORMAT_REQUEST& request, BYTE_SINK& sink, std::string& message) const
{
    const std::uint64_t size = request.image->size();
    IO_BLOCK block(static_cast<std::size_t>(std::min<std::uint64_t>(size, BLOCK)));
    std::vector<char> text((block.size() / PER_LINE + 2) * LONGEST_LINE);
    for (std::uint64_t done = 0; done != size;) {
        const std::size_t count =
            static_cast<std::size_t>(std::min<std::uint64_t>(size - done, block.size()));
        if (!request.image->read(done, {block.data(), count}, message))
            return false;
        done += count;
        char* end = text.data();
        std::size_t i = 0;
        for (; count - i >= PER_LINE; i += PER_LINE) {
            end = put_numbers(block.data() + i, PER_LINE, end);
            *end++ = '\n';
        }
        end = put_numbers(block.data() + i, count - i, end);
        if (done == size) {
            end -= end[-1] == '\n' ? 2 : 1; // the last comma
            *end++ = '\n';
        }
        if (!sink.write({reinterpret_cast<const std::uint8_t*>(text.data()),
                         static_cast<std::size_t>(end - text.data())},
                        message))
            return false;
    }
    return true;
}

bool TTF_FORMAT::verify(const FORMAT_REQUEST& request, const BYTE_SOURCE& file, std::string& message) const
{
    // Where a number ends follows from the byte that it must stand for; its digits are then read and added
    // up, which says nothing that the writer's table could have made so.
    const std::uint64_t size = request.image->size();
    IO_BLOCK block(static_cast<std::size_t>(std::min<std::uint64_t>(size, BLOCK)));
    BLOCK_READER reader(file, 0, 2 * CACHED_BLOCK_SIZE);
    std::uint64_t index = 0;
    while (index != size) {
        const std::size_t count =
            static_cast<std::size_t>(std::min<std::uint64_t>(size - index, block.size()));
        if (!request.image->read(index, {block.data(), count}, message))
            return false;
        for (std::size_t i = 0; i < count;) {
            if (!reader.need(TTF_LINES_READABLE, message))
                return false;
            const std::uint8_t* text = reader.data();
            const std::uint8_t* at = text;
            if (count - i >= 2 * PER_LINE && index + i + 2 * PER_LINE != size &&
                reader.available() >= TTF_LINES_READABLE && ttf_lines_say(text, block.data() + i, at)) {
                i += 2 * PER_LINE;
                reader.skip(static_cast<std::size_t>(at - text));
                continue;
            }
            // The last line ends in its own way, and a wrong one is to be told number by number.
            std::array<std::uint8_t, LONGEST_LINE> copy; // the end of the file
            if (reader.available() < copy.size()) {
                std::fill(std::copy_n(text, reader.available(), copy.begin()), copy.end(), std::uint8_t(0));
                at = text = copy.data();
            }
            const std::size_t in_line = std::min<std::size_t>(PER_LINE, count - i);
            const bool last = index + i + in_line == size;
            for (std::size_t k = 0; k != in_line; ++k) {
                const bool end = last && k + 1 == in_line;
                if (!ttf_number_says(at, block[i + k], end ? '\n' : ','))
                    return wrong_number(index + i + k, block[i + k], message);
            }
            if (!last && *at++ != '\n') {
                message = "Line " + std::to_string((index + i) / PER_LINE + 1) +
                          " does not end behind its sixteenth number; generate the file again.";
                return false;
            }
            i += in_line;
            reader.skip(static_cast<std::size_t>(at - text));
        }
        index += count;
    }
    if (!reader.at_end()) {
        message = "There is something behind the last number of the stream; the file was not written "
                  "correctly, generate it again.";
        return false;
    }
    return true;
}

bool TTF_FORMAT::decode(const BYTE_SOURCE& file, BYTE_SINK& sink, std::string& message) const
{
    BLOCK_READER reader(file);
    std::vector<std::uint8_t> decoded;
    decoded.reserve(BLOCK);
    std::uint64_t line = 1;
    const auto refuse = [&](const std::string& reason) {
        message = "Line " + std::to_string(line) + ": " + reason;
        return false;
    };

    unsigned value = 0;
    unsigned digits = 0;
    enum class EXPECTED { NUMBER, COMMA } expected = EXPECTED::NUMBER;
    const auto finish_number = [&] {
        decoded.push_back(static_cast<std::uint8_t>(value));
        value = 0;
        digits = 0;
        expected = EXPECTED::COMMA;
        if (decoded.size() < BLOCK)
            return true;
        const bool written = sink.write(decoded, message);
        decoded.clear();
        return written;
    };

    while (!reader.at_end()) {
        if (!reader.need(1, message))
            return false;
        const std::span<const std::uint8_t> block(reader.data(), reader.available());
        for (const std::uint8_t character : block) {
            if (character >= '0' && character <= '9') {
                if (expected == EXPECTED::COMMA)
                    return refuse("a comma is missing between two numbers.");
                value = value * 10 + character - '0';
                if (++digits > 3 || value > 255)
                    return refuse("a number is above 255; the numbers of a TTF file are bytes.");
                continue;
            }
            if (digits != 0 && !finish_number())
                return false;
            switch (character) {
            case ',':
                if (expected == EXPECTED::NUMBER)
                    return refuse("a number is missing before a comma.");
                expected = EXPECTED::NUMBER;
                break;
            case '\n':
                ++line;
                break;
            case ' ':
            case '\t':
            case '\r':
                break;
            default:
                return refuse("the byte " + hex_text(character, 2) +
                              " is neither a digit, a comma nor white space; this is no TTF file.");
            }
        }
        reader.skip(block.size());
    }
    if (digits != 0 && !finish_number())
        return false;
    return decoded.empty() || sink.write(decoded, message);
}

bool TTF_FORMAT::inspect(const BYTE_SOURCE& file, FORMAT_FACTS& facts, std::string& message) const
{
    CHECKSUM_SINK sink;
    if (!decode(file, sink, message))
        return false;
    facts.facts.push_back({"format", "tabular text"});
    facts.facts.push_back({"data", bytes_text(sink.size)});
    facts.facts.push_back({"image CRC-32", hex_text(sink.crc)});
    if (sink.size != 0)
        facts.ranges.push_back({0, sink.size});
    return true;
}
