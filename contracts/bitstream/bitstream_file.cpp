#include "bitstream_file.h"

#include "little_endian.h"

#include <botan/hash.h>

#include <algorithm>
#include <set>

namespace
{

constexpr std::size_t PREAMBLE_SIZE = 32;
constexpr std::size_t ENTRY_SIZE = 16;
constexpr std::uint64_t DIGEST_SIZE = 32;

struct KIND_ROW {
    BITSTREAM_KIND kind;
    SECTION_TAG tag;
};
constexpr KIND_ROW KINDS[] = {{BITSTREAM_KIND::SOF, {'S', 'O', 'F', ' '}},
                              {BITSTREAM_KIND::PMSF, {'P', 'M', 'S', 'F'}}};

struct SECTION_ROW {
    SECTION_TAG tag;
    const char* description;
};
constexpr SECTION_ROW SECTIONS[] = {
    {SECTION_DEVICE, "device record"},   {SECTION_SCHEME, "scheme record"},
    {SECTION_OPTIONS, "options record"}, {SECTION_OPTION_BLOCK, "on-chip option block"},
    {SECTION_REGIONS, "region record"},  {SECTION_PERIPHERY, "periphery data"},
    {SECTION_CORE, "core data"},         {SECTION_FIRMWARE, "firmware"},
    {SECTION_BOOTLOADER, "bootloader"},  {SECTION_DIGEST, "digest"}};

bool is_tag_letter(char c)
{
    return c == ' ' || (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z');
}

std::string tag_text(const SECTION_TAG& tag)
{
    return std::string(tag.begin(), tag.end());
}

std::string place(const BITSTREAM_SECTION& section)
{
    return "the " + section_description(section.tag) + " (section " + tag_text(section.tag) + " at offset " +
           std::to_string(section.offset) + ")";
}

/// Reads the directory entries; every length is held against what is left of the file.
bool parse_directory(RECORD_READER& reader, unsigned count, std::uint64_t file_size, BITSTREAM_HEADER& header,
                     std::string& reason)
{
    std::uint64_t offset = PREAMBLE_SIZE + count * ENTRY_SIZE;
    std::set<SECTION_TAG> seen;
    for (unsigned i = 0; i < count; ++i) {
        BITSTREAM_SECTION section;
        const auto letters = reader.bytes(section.tag.size());
        std::copy(letters.begin(), letters.end(), section.tag.begin());
        section.crc = reader.u32();
        section.length = reader.u64();
        section.offset = offset;
        if (!std::all_of(section.tag.begin(), section.tag.end(), is_tag_letter)) {
            reason = "is damaged: the tag of section " + std::to_string(i + 1) + " is not made of letters";
            return false;
        }
        if (!seen.insert(section.tag).second) {
            reason = "is damaged: section " + tag_text(section.tag) + " occurs twice";
            return false;
        }
        if (offset > file_size || section.length > file_size - offset) {
            reason = "is damaged: " + place(section) + " is " + std::to_string(section.length) +
                     " bytes long and leaves the file, which has " + std::to_string(file_size) + " bytes";
            return false;
        }
        offset += section.length;
        header.sections.push_back(section);
    }
    if (offset != file_size) {
        reason = "is damaged: its sections end at offset " + std::to_string(offset) + ", but the file has " +
                 std::to_string(file_size) + " bytes";
        return false;
    }
    return true;
}

const BITSTREAM_SECTION* find_section(const BITSTREAM_HEADER& header, const SECTION_TAG& tag)
{
    const auto it = std::find_if(header.sections.begin(), header.sections.end(),
                                 [&](const BITSTREAM_SECTION& section) { return section.tag == tag; });
    return it == header.sections.end() ? nullptr : &*it;
}

bool check_sections(const BITSTREAM_HEADER& header, std::string& reason)
{
    if (header.sections.empty() || header.sections.front().tag != SECTION_DEVICE) {
        reason = "is damaged: its first section is not the device record";
        return false;
    }
    const BITSTREAM_SECTION& digest = header.sections.back();
    if (digest.tag != SECTION_DIGEST || digest.length != DIGEST_SIZE || digest.crc != 0) {
        reason = "is damaged: its last section is not the digest";
        return false;
    }
    const BITSTREAM_SECTION* const core = find_section(header, SECTION_CORE);
    if (core == nullptr || core->length == 0) {
        reason = "is damaged: it holds no core data";
        return false;
    }
    for (const SECTION_TAG& tag : {SECTION_SCHEME, SECTION_OPTIONS, SECTION_OPTION_BLOCK, SECTION_REGIONS}) {
        const BITSTREAM_SECTION* const section = find_section(header, tag);
        if (section != nullptr && section->length > BITSTREAM_RECORD_LIMIT) {
            reason = "is damaged: " + place(*section) + " is " + std::to_string(section->length) +
                     " bytes long, the limit is " + std::to_string(BITSTREAM_RECORD_LIMIT);
            return false;
        }
    }
    if ((header.kind == BITSTREAM_KIND::PMSF) != (find_section(header, SECTION_REGIONS) != nullptr)) {
        reason = header.kind == BITSTREAM_KIND::PMSF
                     ? "is damaged: it is a partial bitstream without regions"
                     : "is damaged: it has regions but is no partial bitstream";
        return false;
    }
    return true;
}

} // namespace

std::string section_description(const SECTION_TAG& tag)
{
    for (const SECTION_ROW& row : SECTIONS)
        if (row.tag == tag)
            return row.description;
    return "unknown data";
}

bool parse_bitstream_header(std::span<const std::uint8_t> first_bytes, std::uint64_t file_size,
                            BITSTREAM_HEADER& header, std::string& reason)
{
    header = {};
    if (first_bytes.size() < BITSTREAM_MAGIC.size() ||
        !std::equal(BITSTREAM_MAGIC.begin(), BITSTREAM_MAGIC.end(), first_bytes.begin())) {
        reason = "is not a bitstream file";
        return false;
    }
    if (first_bytes.size() < PREAMBLE_SIZE) {
        reason = "is cut off: it ends within its header";
        return false;
    }
    RECORD_READER reader(first_bytes.first(PREAMBLE_SIZE));
    reader.bytes(BITSTREAM_MAGIC.size());
    SECTION_TAG kind;
    const auto letters = reader.bytes(kind.size());
    std::copy(letters.begin(), letters.end(), kind.begin());
    header.version = reader.u16();
    const unsigned count = reader.u16();
    const std::uint64_t stated_size = reader.u64();
    const std::uint32_t reserved = reader.u32();
    const std::uint32_t stated_crc = reader.u32();

    // A later version may lay out anything behind its number in another way, so that comes first.
    if (header.version != BITSTREAM_VERSION) {
        reason = "has version " + std::to_string(header.version) +
                 " of the bitstream format; this program reads version " + std::to_string(BITSTREAM_VERSION);
        return false;
    }
    if (count > BITSTREAM_SECTION_LIMIT) {
        reason = "is damaged: it claims " + std::to_string(count) + " sections, the limit is " +
                 std::to_string(BITSTREAM_SECTION_LIMIT);
        return false;
    }
    const std::size_t directory_size = count * ENTRY_SIZE;
    if (first_bytes.size() < PREAMBLE_SIZE + directory_size) {
        reason = "is cut off: it ends within its section directory";
        return false;
    }
    const auto directory = first_bytes.subspan(PREAMBLE_SIZE, directory_size);
    if (crc32(directory, crc32(first_bytes.first(PREAMBLE_SIZE - 4))) != stated_crc) {
        reason = "is damaged: the checksum of its header does not fit";
        return false;
    }
    if (stated_size != file_size) {
        reason = stated_size > file_size ? "is cut off: it has " : "is damaged: it has ";
        reason += std::to_string(file_size) + " bytes instead of " + std::to_string(stated_size);
        return false;
    }
    const auto known = std::find_if(std::begin(KINDS), std::end(KINDS),
                                    [&](const KIND_ROW& row) { return row.tag == kind; });
    if (known == std::end(KINDS) || reserved != 0) {
        reason = "is damaged: its header names no kind of bitstream file that this program knows";
        return false;
    }
    header.kind = known->kind;
    RECORD_READER entries(directory);
    if (!parse_directory(entries, count, file_size, header, reason) || !check_sections(header, reason))
        return false;

    const BITSTREAM_SECTION& device = header.sections.front();
    if (device.offset + device.length > first_bytes.size()) {
        reason = "is damaged: its device record is " + std::to_string(device.length) + " bytes long";
        return false;
    }
    const auto record =
        first_bytes.subspan(static_cast<std::size_t>(device.offset), static_cast<std::size_t>(device.length));
    if (crc32(record) != device.crc) {
        reason = "is damaged: the checksum of " + place(device) + " does not fit";
        return false;
    }
    if (!decode_device(record, header.device, reason)) {
        reason = "is damaged: " + reason;
        return false;
    }
    return true;
}

std::shared_ptr<const BITSTREAM_FILE> BITSTREAM_FILE::open(const std::string& path, std::string& message)
{
    std::shared_ptr<const BYTE_SOURCE> bytes = FILE_SOURCE::open(path, message);
    return bytes ? open(std::move(bytes), path, message) : nullptr;
}

std::shared_ptr<const BITSTREAM_FILE> BITSTREAM_FILE::open(std::shared_ptr<const BYTE_SOURCE> bytes,
                                                           const std::string& name, std::string& message)
{
    const std::shared_ptr<BITSTREAM_FILE> file(new BITSTREAM_FILE);
    file->m_bytes = std::move(bytes);
    file->m_name = name;
    std::vector<std::uint8_t> first(
        static_cast<std::size_t>(std::min<std::uint64_t>(file->m_bytes->size(), BITSTREAM_HEADER_LIMIT)));
    if (!file->m_bytes->read(0, first, message))
        return nullptr;
    std::string reason;
    if (!parse_bitstream_header(first, file->m_bytes->size(), file->m_header, reason) ||
        !file->read_records(reason)) {
        message = name + " " + reason + ".";
        return nullptr;
    }
    return file;
}

bool BITSTREAM_FILE::read_record(const SECTION_TAG& tag, std::vector<std::uint8_t>& bytes,
                                 std::string& reason) const
{
    const BITSTREAM_SECTION& section = *find(tag);
    bytes.resize(static_cast<std::size_t>(section.length));
    if (!m_bytes->read(section.offset, bytes, reason)) {
        reason = "cannot be read to the end of " + place(section);
        return false;
    }
    if (crc32(bytes) != section.crc) {
        reason = "is damaged: the checksum of " + place(section) + " does not fit";
        return false;
    }
    return true;
}

bool BITSTREAM_FILE::read_records(std::string& reason)
{
    std::vector<std::uint8_t> bytes;
    std::string fault;
    const auto read = [&](const SECTION_TAG& tag, const auto& decode) {
        if (find(tag) == nullptr)
            return true;
        if (!read_record(tag, bytes, reason))
            return false;
        if (!decode()) {
            reason = "is damaged: " + fault;
            return false;
        }
        return true;
    };
    std::uint32_t scheme = 0;
    if (!read(SECTION_SCHEME, [&] { return decode_scheme(bytes, scheme, fault); }) ||
        !read(SECTION_OPTIONS, [&] { return decode_options(bytes, m_options, fault); }) ||
        !read(SECTION_OPTION_BLOCK,
              [&] { return decode_option_block(bytes, m_option_block, m_option_word, fault); }) ||
        !read(SECTION_REGIONS, [&] { return decode_regions(bytes, m_regions, fault); }))
        return false;
    if (find(SECTION_SCHEME) != nullptr)
        m_scheme = scheme;
    if (m_regions.empty())
        return true;
    // Regions do not overlap and end within 64 bits, so the sum of their lengths cannot overflow.
    std::uint64_t total = 0;
    for (const BITSTREAM_REGION& region : m_regions)
        total += region.length;
    const std::uint64_t core_length = find(SECTION_CORE)->length;
    if (total != core_length) {
        reason = "is damaged: its regions take " + std::to_string(total) + " bytes, but its core data has " +
                 std::to_string(core_length);
        return false;
    }
    return true;
}

const BITSTREAM_SECTION* BITSTREAM_FILE::find(const SECTION_TAG& tag) const
{
    return find_section(m_header, tag);
}

std::shared_ptr<const BYTE_SOURCE> BITSTREAM_FILE::section(const SECTION_TAG& tag) const
{
    const BITSTREAM_SECTION* const section = find(tag);
    return section == nullptr ? nullptr
                              : std::make_shared<RANGE_SOURCE>(m_bytes, section->offset, section->length);
}

std::shared_ptr<const BYTE_SOURCE> BITSTREAM_FILE::configuration_data() const
{
    const auto data = std::make_shared<CONCATENATED_SOURCE>();
    for (const SECTION_TAG& tag : {SECTION_PERIPHERY, SECTION_CORE})
        if (find(tag) != nullptr)
            data->append(section(tag));
    return data;
}

bool BITSTREAM_FILE::verify(std::string& message) const
{
    const auto hash = Botan::HashFunction::create_or_throw("SHA-256");
    const BITSTREAM_SECTION& digest = m_header.sections.back();
    std::vector<std::uint8_t> block;
    const auto read = [&](std::uint64_t offset, std::uint64_t length) {
        block.resize(static_cast<std::size_t>(length));
        return m_bytes->read(offset, block, message);
    };
    if (!read(0, m_header.sections.front().offset))
        return false;
    hash->update(block);
    for (const BITSTREAM_SECTION& section : m_header.sections) {
        std::uint32_t crc = 0;
        for (std::uint64_t done = 0; done < section.length; done += block.size()) {
            if (!read(section.offset + done, std::min<std::uint64_t>(IO_BLOCK_SIZE, section.length - done)))
                return false;
            crc = crc32(block, crc);
            if (section.tag != SECTION_DIGEST)
                hash->update(block);
        }
        if (section.tag != SECTION_DIGEST && crc != section.crc) {
            message = m_name + " is damaged: the checksum of " + place(section) + " does not fit.";
            return false;
        }
    }
    // The last block that was read is the digest section.
    const auto computed = hash->final_stdvec();
    if (computed != block) {
        message = m_name + " is damaged: the digest at offset " + std::to_string(digest.offset) +
                  " does not fit the content.";
        return false;
    }
    return true;
}
