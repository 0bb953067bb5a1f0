#include "bitstream_writer.h"

#include "little_endian.h"
#include "msg_internal_error.h"

#include <botan/hash.h>

#include <algorithm>

namespace
{

constexpr std::uint64_t PREAMBLE_SIZE = 32;
constexpr std::uint64_t ENTRY_SIZE = 16;
constexpr std::size_t DIGEST_SIZE = 32;

std::shared_ptr<const BYTE_SOURCE> in_memory(std::vector<std::uint8_t> bytes)
{
    return std::make_shared<MEMORY_SOURCE>(std::move(bytes));
}

/// Passes on what it gets and hashes it.
class HASHING_SINK final : public BYTE_SINK
{
public:
    HASHING_SINK(BYTE_SINK& target, Botan::HashFunction& hash) : m_target(target), m_hash(hash) {}
    bool write(std::span<const std::uint8_t> bytes, std::string& message) override
    {
        m_hash.update(bytes.data(), bytes.size());
        return m_target.write(bytes, message);
    }

private:
    BYTE_SINK& m_target;
    Botan::HashFunction& m_hash;
};

} // namespace

BITSTREAM_WRITER::BITSTREAM_WRITER(BITSTREAM_KIND kind, const BITSTREAM_DEVICE& device) : m_kind(kind)
{
    add_section(SECTION_DEVICE, in_memory(encode_device(device)));
}

void BITSTREAM_WRITER::set_scheme(std::uint32_t scheme)
{
    add_section(SECTION_SCHEME, in_memory(encode_scheme(scheme)));
}

void BITSTREAM_WRITER::set_options(const BITSTREAM_OPTIONS& options)
{
    add_section(SECTION_OPTIONS, in_memory(encode_options(options)));
}

void BITSTREAM_WRITER::set_option_block(const DSET_OTI_DEV_OPTIONS_INFO& options)
{
    add_section(SECTION_OPTION_BLOCK, in_memory(encode_option_block(options, true)));
}

void BITSTREAM_WRITER::set_regions(const std::vector<BITSTREAM_REGION>& regions)
{
    add_section(SECTION_REGIONS, in_memory(encode_regions(regions)));
}

void BITSTREAM_WRITER::add_section(const SECTION_TAG& tag, std::shared_ptr<const BYTE_SOURCE> content)
{
    const bool is_new = std::none_of(m_sections.begin(), m_sections.end(),
                                     [&](const SECTION& section) { return section.tag == tag; });
    VEK_ASSERT_TEXT(is_new, "no section has this tag yet");
    m_sections.push_back({tag, std::move(content)});
}

bool BITSTREAM_WRITER::write(BYTE_SINK& sink, std::string& message) const
{
    const std::size_t count = m_sections.size() + 1;
    std::uint64_t size = PREAMBLE_SIZE + count * ENTRY_SIZE + DIGEST_SIZE;
    RECORD_WRITER directory;
    const auto add_entry = [&](const SECTION_TAG& tag, std::uint32_t crc, std::uint64_t length) {
        directory.text(std::string(tag.begin(), tag.end()));
        directory.u32(crc);
        directory.u64(length);
    };
    for (const SECTION& section : m_sections) {
        std::uint32_t crc = 0;
        if (!crc32_of_source(*section.content, crc, message))
            return false;
        add_entry(section.tag, crc, section.content->size());
        size += section.content->size();
    }
    // The digest covers the directory, so the directory cannot state a checksum of the digest.
    add_entry(SECTION_DIGEST, 0, DIGEST_SIZE);

    RECORD_WRITER header;
    header.bytes(BITSTREAM_MAGIC);
    header.text(m_kind == BITSTREAM_KIND::SOF ? "SOF " : "PMSF");
    header.u16(BITSTREAM_VERSION);
    header.u16(static_cast<std::uint16_t>(count));
    header.u64(size);
    header.u32(0);
    header.u32(crc32(directory.content(), crc32(header.content())));
    header.bytes(directory.content());
    if (!check(header.content(), size, message))
        return false;

    const auto hash = Botan::HashFunction::create_or_throw("SHA-256");
    HASHING_SINK hashed(sink, *hash);
    if (!hashed.write(header.content(), message))
        return false;
    for (const SECTION& section : m_sections)
        if (!copy_source(*section.content, hashed, message))
            return false;
    return sink.write(hash->final_stdvec(), message);
}

bool BITSTREAM_WRITER::check(std::vector<std::uint8_t> first_bytes, std::uint64_t size,
                             std::string& message) const
{
    std::vector<std::uint8_t> device(static_cast<std::size_t>(m_sections.front().content->size()));
    if (!m_sections.front().content->read(0, device, message))
        return false;
    first_bytes.insert(first_bytes.end(), device.begin(), device.end());
    BITSTREAM_HEADER header;
    std::string reason;
    if (!parse_bitstream_header(first_bytes, size, header, reason)) {
        message = "The bitstream file would be unreadable: it " + reason + ".";
        return false;
    }
    return true;
}
