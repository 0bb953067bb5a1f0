#include "intel_hex_reader.h"

#include "format_text.h"
#include "intel_hex_record.h"

#include <algorithm>
#include <cstring>

namespace
{
constexpr std::uint64_t ADDRESS_SPACE = std::uint64_t(1) << 32;

/// Builds the index from the records as they come.
class INDEXER
{
public:
    INDEXER(const BYTE_SOURCE& file, INTEL_HEX_FILE& result) : m_file(file), m_parser(file), m_result(result)
    {
    }

    bool run(std::string& message)
    {
        for (;;) {
            bool found = false;
            if (!m_parser.next(m_record, found, message))
                return false;
            if (!found)
                return refuse_end(message);
            ++m_result.records;
            if (m_record.type == INTEL_HEX_RECORD::END_OF_FILE)
                return check_rest(message) && sort(message);
            if (!take(message))
                return false;
        }
    }

private:
    bool refuse(const std::string& reason, std::string& message) const
    {
        message = "Line " + std::to_string(m_parser.line()) + ": " + reason;
        return false;
    }

    bool refuse_end(std::string& message) const
    {
        message = m_file.size() == 0 ? "The file is empty."
                                     : "The file ends in line " + std::to_string(m_parser.line()) +
                                           " without an end record (:00000001FF); it is not complete.";
        return false;
    }

    bool check_rest(std::string& message)
    {
        const std::uint64_t line = m_parser.line();
        bool found = false;
        if (m_parser.next(m_record, found, message) && !found)
            return true;
        message = "There is text behind the end record in line " + std::to_string(line) +
                  "; remove it, or the records that it cuts off.";
        return false;
    }

    bool take(std::string& message)
    {
        switch (m_record.type) {
        case INTEL_HEX_RECORD::DATA:
            return take_data(message);
        case INTEL_HEX_RECORD::EXTENDED_SEGMENT_ADDRESS:
            m_base = std::uint64_t(m_record.word()) << 4;
            m_linear = false;
            break;
        case INTEL_HEX_RECORD::EXTENDED_LINEAR_ADDRESS:
            m_base = std::uint64_t(m_record.word()) << 16;
            m_linear = true;
            break;
        case INTEL_HEX_RECORD::START_SEGMENT_ADDRESS:
        case INTEL_HEX_RECORD::START_LINEAR_ADDRESS:
            m_result.has_entry = true;
            m_result.entry =
                m_record.word() << 16 | static_cast<unsigned>(m_record.data[2] << 8 | m_record.data[3]);
            break;
        case INTEL_HEX_RECORD::END_OF_FILE:
            break;
        }
        return true;
    }

    bool take_data(std::string& message)
    {
        if (m_record.length == 0)
            return true;
        const std::uint64_t address = m_base + m_record.address;
        if (!m_linear && m_record.address + m_record.length > 0x10000)
            return refuse("the data at " + hex_text(address) +
                              " wraps around at the end of its 64 KiB segment; split the record.",
                          message);
        if (address + m_record.length > ADDRESS_SPACE)
            return refuse("the data at " + hex_text(address) + " leaves the 32 bit addresses.", message);

        std::vector<INTEL_HEX_SEGMENT>& segments = m_result.segments;
        if (segments.empty() || segments.back().address + segments.back().length != address) {
            if (segments.size() == INTEL_HEX_FILE::MOST_SEGMENTS)
                return refuse("the addresses break more than " + std::to_string(segments.size()) +
                                  " times; sort the records by address.",
                              message);
            segments.push_back({address, 0, m_parser.line(), m_result.checkpoints.size(), 0});
        }
        INTEL_HEX_SEGMENT& segment = segments.back();
        const std::uint64_t place = m_parser.line_offset();
        if (segment.checkpoint_count == 0 ||
            place - m_result.checkpoints.back().file_offset >= INTEL_HEX_FILE::CHECKPOINT_DISTANCE) {
            m_result.checkpoints.push_back({segment.length, place});
            ++segment.checkpoint_count;
        }
        segment.length += m_record.length;
        m_result.data_size += m_record.length;
        return true;
    }

    bool sort(std::string& message)
    {
        std::vector<INTEL_HEX_SEGMENT>& segments = m_result.segments;
        std::stable_sort(segments.begin(), segments.end(),
                         [](const auto& a, const auto& b) { return a.address < b.address; });
        const auto clash =
            std::adjacent_find(segments.begin(), segments.end(),
                               [](const auto& a, const auto& b) { return a.address + a.length > b.address; });
        if (clash == segments.end())
            return true;
        std::uint64_t lines[2];
        if (!find_line(clash[0], clash[1].address, lines[0], message))
            return false;
        lines[1] = clash[1].line;
        std::sort(std::begin(lines), std::end(lines));
        message = "Line " + std::to_string(lines[1]) + ": the byte at address " + hex_text(clash[1].address) +
                  " is given a second time, first in line " + std::to_string(lines[0]) + ".";
        return false;
    }

    /// The line whose record holds `address`.
    bool find_line(const INTEL_HEX_SEGMENT& segment, std::uint64_t address, std::uint64_t& line,
                   std::string& message) const
    {
        INTEL_HEX_PARSER parser(m_file, m_result.checkpoints[segment.checkpoint_begin].file_offset,
                                segment.line);
        INTEL_HEX_RECORD record;
        bool found = true;
        for (std::uint64_t at = segment.address; at <= address;) {
            if (!parser.next(record, found, message))
                return false;
            if (!found)
                break;
            if (record.type == INTEL_HEX_RECORD::DATA)
                at += record.length;
        }
        line = parser.line();
        return true;
    }

    const BYTE_SOURCE& m_file;
    INTEL_HEX_PARSER m_parser;
    INTEL_HEX_RECORD m_record;
    INTEL_HEX_FILE& m_result;
    std::uint64_t m_base = 0;
    bool m_linear = false;
};
} // namespace

bool INTEL_HEX_FILE::read(const BYTE_SOURCE& file, INTEL_HEX_FILE& result, std::string& message)
{
    result = {};
    return INDEXER(file, result).run(message);
}

std::shared_ptr<INTEL_HEX_IMAGE> INTEL_HEX_IMAGE::open(std::shared_ptr<const BYTE_SOURCE> file,
                                                       const std::string& name, std::string& message)
{
    INTEL_HEX_FILE contents;
    if (!INTEL_HEX_FILE::read(*file, contents, message)) {
        message = name + ": " + message;
        return nullptr;
    }
    if (contents.segments.empty()) {
        message = name + ": The file holds no data records.";
        return nullptr;
    }
    return std::make_shared<INTEL_HEX_IMAGE>(std::move(file), std::move(contents));
}

bool INTEL_HEX_IMAGE::read(std::uint64_t offset, std::span<std::uint8_t> into, std::string& message) const
{
    if (offset > size() || into.size() > size() - offset) {
        message = "The range of " + bytes_text(into.size()) + " at " + hex_text(offset) +
                  " does not lie within the Intel HEX file.";
        return false;
    }
    std::uint64_t address = m_contents.begin() + offset;
    const std::vector<INTEL_HEX_SEGMENT>& segments = m_contents.segments;
    auto segment = std::upper_bound(segments.begin(), segments.end(), address,
                                    [](std::uint64_t at, const auto& other) { return at < other.address; });
    if (segment != segments.begin())
        --segment;
    while (!into.empty()) {
        if (segment != segments.end() && address >= segment->address + segment->length) {
            ++segment;
            continue;
        }
        const bool within = segment != segments.end() && address >= segment->address;
        const std::uint64_t limit = within                      ? segment->address + segment->length
                                    : segment == segments.end() ? m_contents.end()
                                                                : segment->address;
        const std::size_t count =
            static_cast<std::size_t>(std::min<std::uint64_t>(limit - address, into.size()));
        if (within) {
            if (!read_segment(*segment, address - segment->address, into.first(count), message))
                return false;
        } else {
            std::memset(into.data(), FILL, count);
        }
        into = into.subspan(count);
        address += count;
    }
    return true;
}

bool INTEL_HEX_IMAGE::read_segment(const INTEL_HEX_SEGMENT& segment, std::uint64_t offset,
                                   std::span<std::uint8_t> into, std::string& message) const
{
    const auto begin = m_contents.checkpoints.begin() + static_cast<std::ptrdiff_t>(segment.checkpoint_begin);
    const auto checkpoint =
        std::upper_bound(begin, begin + static_cast<std::ptrdiff_t>(segment.checkpoint_count), offset,
                         [](std::uint64_t at, const auto& other) { return at < other.data_offset; }) -
        1;
    INTEL_HEX_PARSER parser(m_file, checkpoint->file_offset);
    INTEL_HEX_RECORD record;
    for (std::uint64_t at = checkpoint->data_offset; !into.empty();) {
        bool found = false;
        std::string reason;
        if (at == offset) {
            std::size_t run = 0;
            if (!parser.plain_run(static_cast<std::uint16_t>(segment.address + at), into, run, message))
                return false;
            into = into.subspan(run);
            offset += run;
            at += run;
            if (into.empty())
                break;
        }
        if (!parser.next(record, found, reason) || !found || record.type == INTEL_HEX_RECORD::END_OF_FILE) {
            message = "The Intel HEX file was changed while it was being read; start again.";
            return false;
        }
        if (record.type != INTEL_HEX_RECORD::DATA)
            continue;
        if (at + record.length > offset) {
            const std::size_t from = static_cast<std::size_t>(offset - at);
            const std::size_t count = std::min<std::size_t>(record.length - from, into.size());
            std::memcpy(into.data(), record.data.data() + from, count);
            into = into.subspan(count);
            offset += count;
        }
        at += record.length;
    }
    return true;
}
