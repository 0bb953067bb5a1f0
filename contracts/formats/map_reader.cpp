#include "map_reader.h"

#include "format_text.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <string_view>

namespace
{
constexpr std::string_view TITLES[] = {"Partition", "Start",      "End",     "Size",
                                       "Page",      "Input file", "Content", "Checksum"};
constexpr std::size_t COLUMNS = std::size(TITLES);

std::optional<std::uint64_t> number(std::string_view text, int base)
{
    std::uint64_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, base);
    if (text.empty() || error != std::errc() || end != text.data() + text.size())
        return std::nullopt;
    return value;
}

/// A hexadecimal number; only its usual spelling counts, so that no two maps say the same in other letters.
std::optional<std::uint64_t> address(std::string_view text)
{
    if (!text.starts_with("0x"))
        return std::nullopt;
    const std::optional<std::uint64_t> value = number(text.substr(2), 16);
    return value && hex_text(*value) == text ? value : std::nullopt;
}

std::optional<unsigned> page_number(std::string_view text)
{
    const std::optional<std::uint64_t> value = number(text, 10);
    if (!value || *value > 0xFFFFFFFF || std::to_string(*value) != text)
        return std::nullopt;
    return static_cast<unsigned>(*value);
}

/// Undoes the writer's escapes; nothing for a text that it would have spelled otherwise.
std::optional<std::string> unescaped(std::string_view text)
{
    if (text == "-")
        return std::string();
    std::string result;
    std::vector<bool> was_escaped;
    for (std::size_t i = 0; i != text.size(); ++i) {
        const bool escape = text[i] == '\\';
        was_escaped.push_back(escape);
        if (!escape) {
            if (static_cast<std::uint8_t>(text[i]) < 0x20 || text[i] == 0x7F)
                return std::nullopt;
            result.push_back(text[i]);
            continue;
        }
        if (text.size() - i < 4 || text[i + 1] != 'x')
            return std::nullopt;
        const std::string_view digits = text.substr(i + 2, 2);
        const std::optional<std::uint64_t> value = number(digits, 16);
        if (!value || hex_text(*value, 2).substr(2) != digits)
            return std::nullopt;
        result.push_back(static_cast<char>(*value));
        i += 3;
    }
    if (result.empty())
        return std::nullopt;
    for (std::size_t i = 0; i != result.size(); ++i) {
        const auto byte = static_cast<std::uint8_t>(result[i]);
        const bool edge = i == 0 || i + 1 == result.size();
        const bool needed =
            byte < 0x20 || byte == 0x7F || byte == '\\' || (byte == ' ' && edge) || result == "-";
        if (needed != was_escaped[i])
            return std::nullopt;
    }
    return result;
}

class READER
{
public:
    READER(std::string_view text, FLASH_MAP& map, std::string& message)
        : m_rest(text), m_map(map), m_message(message)
    {
    }

    bool run()
    {
        if (!head() || !rulers())
            return false;
        while (!m_rest.empty())
            if (!region())
                return false;
        if (m_used == m_widths)
            return true;
        m_message = "The columns of the table are wider than what stands in them.";
        return false;
    }

private:
    bool refuse(const std::string& reason)
    {
        m_message = "Line " + std::to_string(m_number) + ": " + reason;
        return false;
    }

    bool next_line()
    {
        ++m_number;
        const std::size_t end = m_rest.find('\n');
        if (end == std::string_view::npos)
            return refuse(m_rest.empty() ? "the map ends too early." : "the line is cut off.");
        m_line = m_rest.substr(0, end);
        m_rest.remove_prefix(end + 1);
        return true;
    }

    bool head()
    {
        if (!next_line())
            return false;
        if (!m_line.starts_with("Flash map, version "))
            return refuse("the file is no flash map.");
        if (m_line != "Flash map, version 1")
            return refuse("this program reads version 1 of the flash map.");
        if (!next_line())
            return false;
        const std::optional<std::string> device =
            m_line.starts_with("Device: ") ? unescaped(m_line.substr(8)) : std::nullopt;
        if (!device)
            return refuse("the name of the device is expected.");
        m_map.device = *device;
        if (!next_line())
            return false;
        const std::size_t blank = m_line.find(" (");
        const std::optional<std::uint64_t> size =
            m_line.starts_with("Size: ") && blank != std::string_view::npos
                ? address(m_line.substr(6, blank - 6))
                : std::nullopt;
        if (!size || m_line.substr(blank) != " (" + bytes_text(*size) + ")")
            return refuse("the size of the device is expected.");
        m_map.image_size = *size;
        return next_line() && (m_line.empty() || refuse("an empty line is expected."));
    }

    bool rulers()
    {
        if (!next_line())
            return false;
        const std::string_view titles = m_line;
        if (!next_line())
            return false;
        for (std::size_t at = 0; at <= m_line.size();) {
            const std::size_t end = std::min(m_line.find_first_not_of('-', at), m_line.size());
            if (end == at)
                return refuse("the columns are to be underlined.");
            m_widths.push_back(end - at);
            if (end == m_line.size())
                break;
            if (m_line.substr(end, 2) != "  ")
                return refuse("the columns are to be underlined.");
            at = end + 2;
        }
        if (m_widths.size() != COLUMNS)
            return refuse("the table has not its " + std::to_string(COLUMNS) + " columns.");
        m_line = titles;
        std::vector<std::string_view> fields;
        if (!split(fields) || !std::equal(fields.begin(), fields.end(), std::begin(TITLES))) {
            --m_number;
            return refuse("the titles of the columns are not those of a flash map.");
        }
        note_widths(fields);
        return true;
    }

    /// Cuts the line at the columns; only blanks may stand between a value and the next column.
    bool split(std::vector<std::string_view>& fields)
    {
        std::string_view rest = m_line;
        for (std::size_t i = 0; i != COLUMNS; ++i) {
            const bool last = i + 1 == COLUMNS;
            std::size_t bytes = 0;
            for (std::size_t seen = 0; bytes != rest.size(); ++bytes) {
                seen += (rest[bytes] & 0xC0) != 0x80;
                if (seen > m_widths[i])
                    break;
            }
            std::string_view field = rest.substr(0, bytes);
            rest.remove_prefix(bytes);
            const std::size_t end = field.find_last_not_of(' ');
            if (end == std::string_view::npos || (last && end + 1 != field.size()))
                return false;
            fields.push_back(field.substr(0, end + 1));
            if (!last) {
                if (!rest.starts_with("  "))
                    return false;
                rest.remove_prefix(2);
            }
        }
        return rest.empty();
    }

    void note_widths(const std::vector<std::string_view>& fields)
    {
        m_used.resize(COLUMNS);
        for (std::size_t i = 0; i != COLUMNS; ++i)
            m_used[i] =
                std::max(m_used[i],
                         static_cast<std::size_t>(std::count_if(fields[i].begin(), fields[i].end(),
                                                                [](char c) { return (c & 0xC0) != 0x80; })));
    }

    bool region()
    {
        std::vector<std::string_view> fields;
        if (!next_line())
            return false;
        if (!split(fields))
            return refuse("the values do not stand in their columns.");
        note_widths(fields);
        const std::optional<std::string> name = unescaped(fields[0]);
        const std::optional<std::uint64_t> start = address(fields[1]);
        const std::optional<std::uint64_t> end = address(fields[2]);
        const std::optional<std::uint64_t> size = address(fields[3]);
        const std::optional<unsigned> page =
            fields[4] == "-" ? std::optional<unsigned>(0) : page_number(fields[4]);
        const std::optional<std::string> input = unescaped(fields[5]);
        const std::optional<std::uint64_t> length = address(fields[6]);
        const std::optional<std::uint64_t> crc = address(fields[7]);
        if (!name || !start || !end || !size || !page || !input || !length || !crc || *crc > 0xFFFFFFFF)
            return refuse("a value is not spelled as in a flash map.");
        if (*end < *start || *end - *start != *size - 1 || *length > *size || *end >= m_map.image_size)
            return refuse("the addresses of partition " + *name + " do not fit together.");
        m_map.regions.push_back({*name, *start, *length, *end, fields[4] != "-", *page, *input,
                                 static_cast<std::uint32_t>(*crc)});
        return true;
    }

    std::string_view m_rest;
    std::string_view m_line;
    std::size_t m_number = 0;
    std::vector<std::size_t> m_widths; ///< as the underlines give them
    std::vector<std::size_t> m_used;   ///< as the values take them
    FLASH_MAP& m_map;
    std::string& m_message;
};
} // namespace

bool FLASH_MAP::read(const BYTE_SOURCE& file, FLASH_MAP& map, std::string& message)
{
    if (file.size() > LARGEST_FILE) {
        message = "The file has " + bytes_text(file.size()) + ", more than any flash map.";
        return false;
    }
    std::string text(static_cast<std::size_t>(file.size()), '\0');
    if (!file.read(0, {reinterpret_cast<std::uint8_t*>(text.data()), text.size()}, message))
        return false;
    map = {};
    return READER(text, map, message).run();
}
