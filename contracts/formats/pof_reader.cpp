#include "pof_reader.h"

#include "fill_crc.h"
#include "flash_commands.h"
#include "format_text.h"
#include "jtag_program.h"

#include <algorithm>

POF_READER::POF_READER(const pof::KIND& kind, const BYTE_SOURCE& file)
    : m_kind(kind), m_chunks(file, kind.signature, kind.name)
{
}

bool POF_READER::refuse(const std::string& reason, std::string& message) const
{
    return m_chunks.refuse(reason, message);
}

bool POF_READER::read(POF_VISITOR& visitor, std::string& message)
{
    CHUNK chunk;
    if (!m_chunks.begin(message) || !m_chunks.next(chunk, message))
        return false;
    if (chunk.tag != pof::HEAD)
        return refuse(std::string("is not the head of a ") + m_kind.name + ", which comes first.", message);
    if (!head(chunk, visitor, message))
        return false;
    if (m_kind.has_loader) {
        if (!m_chunks.next(chunk, message))
            return false;
        if (chunk.tag != pof::LOAD)
            return refuse("is not the flash loader, which comes behind the head.", message);
        if (!load(chunk, visitor, message))
            return false;
    }
    for (;;) {
        if (!m_chunks.next(chunk, message))
            return false;
        if (chunk.tag == pof::DONE)
            return done(chunk, visitor, message);
        if (chunk.tag == pof::PART) {
            if (!part(chunk, visitor, message))
                return false;
        } else if (chunk.tag == pof::DATA) {
            if (!data(chunk, visitor, message))
                return false;
        } else if (chunk.tag == pof::HEAD) {
            return refuse("is a second head.", message);
        } else if (chunk.tag[0] < 'a' || chunk.tag[0] > 'z') {
            // Chunks that may be passed over begin with a small letter.
            return refuse("is of a kind that this version does not know.", message);
        }
    }
}

bool POF_READER::head(const CHUNK& chunk, POF_VISITOR& visitor, std::string& message)
{
    FIELDS fields(chunk.payload);
    const std::uint64_t major = fields.number(2);
    fields.number(2);
    if (fields.complete() && major != pof::MAJOR_VERSION) {
        message = "The file has version " + std::to_string(major) +
                  " of the format, which this program cannot "
                  "read; it reads version " +
                  std::to_string(pof::MAJOR_VERSION) + ".";
        return false;
    }
    m_image_size = fields.number(8);
    const std::string device = fields.text();
    if (!fields.complete_and_empty())
        return refuse("has a wrong length for a head.", message);
    if (m_image_size > pof::MOST_IMAGE)
        return refuse("is the head of a device with " + bytes_text(m_image_size) + "; the format reaches " +
                          bytes_text(pof::MOST_IMAGE) + ".",
                      message);
    return visitor.head(device, m_image_size, message);
}

bool POF_READER::load(const CHUNK& chunk, POF_VISITOR& visitor, std::string& message)
{
    FIELDS fields(chunk.payload);
    JTAG_TARGET target;
    SERIAL_FLASH flash;
    target.name = fields.text();
    target.idcode = static_cast<std::uint32_t>(fields.number(4));
    target.instruction_length = static_cast<unsigned>(fields.number(1));
    const std::uint64_t bridge = fields.number(4);
    for (std::uint8_t& byte : flash.jedec_id)
        byte = static_cast<std::uint8_t>(fields.number(1));
    flash.address_bytes = static_cast<unsigned>(fields.number(1));
    flash.sector_bytes = static_cast<std::uint32_t>(fields.number(4));
    flash.page_bytes = static_cast<std::uint32_t>(fields.number(4));
    const FLASH_COMMANDS* const commands = find_flash_commands(flash.address_bytes);
    bool known = bridge == jtag::FLASH_BRIDGE && commands != nullptr;
    for (std::size_t i = 0; i != FLASH_COMMANDS().size(); ++i)
        known = fields.number(1) == (commands != nullptr ? (*commands)[i] : 0) && known;
    if (!fields.complete_and_empty() || !known)
        return refuse("has a wrong length or value for a flash loader.", message);
    return visitor.loader(target, flash, message);
}

bool POF_READER::part(const CHUNK& chunk, POF_VISITOR& visitor, std::string& message)
{
    FIELDS fields(chunk.payload);
    IMAGE_REGION region;
    region.start = fields.number(8);
    region.length = fields.number(8);
    region.block_end = fields.number(8);
    region.crc = static_cast<std::uint32_t>(fields.number(4));
    const std::uint64_t has_page = fields.number(1);
    region.has_page = has_page == 1;
    region.page = static_cast<unsigned>(fields.number(4));
    region.name = fields.text();
    region.input = fields.text();
    if (!fields.complete_and_empty() || has_page > 1)
        return refuse("has a wrong length or value for a partition.", message);
    if (region.start > region.block_end || region.block_end >= m_image_size ||
        region.length > region.block_end - region.start + 1)
        return refuse("places partition " + region.name + " (" + hex_text(region.start) + " to " +
                          hex_text(region.block_end) + ") where it does not fit.",
                      message);
    return visitor.region(region, message);
}

bool POF_READER::fill_to(std::uint64_t address, POF_VISITOR& visitor, std::string& message)
{
    if (address == m_address)
        return true;
    m_crc = crc32_of_fill(m_crc, address - m_address);
    const std::uint64_t begin = m_address;
    m_address = address;
    return visitor.fill(begin, address - begin, message);
}

bool POF_READER::data(const CHUNK& chunk, POF_VISITOR& visitor, std::string& message)
{
    FIELDS fields(chunk.payload);
    const std::uint64_t address = fields.number(8);
    const std::span<const std::uint8_t> bytes = fields.rest();
    if (!fields.complete() || bytes.empty())
        return refuse("is data without bytes.", message);
    if (address < m_address)
        return refuse("has data for " + hex_text(address) + ", which other chunks hold or lie behind.",
                      message);
    if (address > m_image_size || bytes.size() > m_image_size - address)
        return refuse("has data for " + hex_text(address) + ", which is not within the device.", message);
    if (!fill_to(address, visitor, message))
        return false;
    m_crc = crc32(bytes, m_crc);
    m_address += bytes.size();
    m_data_size += bytes.size();
    return visitor.data(address, bytes, message);
}

bool POF_READER::done(const CHUNK& chunk, POF_VISITOR& visitor, std::string& message)
{
    FIELDS fields(chunk.payload);
    const std::uint64_t data_size = fields.number(8);
    const std::uint64_t image_crc = fields.number(4);
    if (!fields.complete_and_empty())
        return refuse("has a wrong length for the last one.", message);
    if (data_size != m_data_size) {
        message = "The file holds " + bytes_text(m_data_size) + " of data instead of " +
                  bytes_text(data_size) + "; chunks are missing.";
        return false;
    }
    if (!fill_to(m_image_size, visitor, message))
        return false;
    if (image_crc != m_crc) {
        message = "The image has the checksum " + hex_text(m_crc) + " instead of " + hex_text(image_crc) +
                  "; the file is damaged.";
        return false;
    }
    return m_chunks.end(message) && visitor.done(m_crc, message);
}
