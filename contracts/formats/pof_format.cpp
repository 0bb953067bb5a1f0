#include "pof_format.h"

#include "chunk_file.h"
#include "flash_commands.h"
#include "format_text.h"
#include "image_compare.h"
#include "jtag_program.h"
#include "pof_reader.h"

#include <algorithm>

namespace
{
bool write_head(const pof::KIND& kind, const FORMAT_REQUEST& request, CHUNK_WRITER& writer,
                std::string& message)
{
    const std::uint64_t size = request.image->size();
    if (size > pof::MOST_IMAGE) {
        message = "The device " + request.device + " has " + bytes_text(size) + ", and a " + kind.name +
                  " reaches " + bytes_text(pof::MOST_IMAGE) + "; choose another output type.";
        return false;
    }
    std::vector<std::uint8_t> payload;
    put_number(payload, pof::MAJOR_VERSION, 2);
    put_number(payload, pof::MINOR_VERSION, 2);
    put_number(payload, size, 8);
    return put_text(payload, request.device, message) && writer.raw(kind.signature, message) &&
           writer.chunk(pof::HEAD, payload, {}, message);
}

bool write_loader(const FORMAT_REQUEST& request, CHUNK_WRITER& writer, std::string& message)
{
    const FLASH_COMMANDS* const commands = find_flash_commands(request.flash.address_bytes);
    if (commands == nullptr || !jtag::fits(request.target, message)) {
        if (message.empty())
            message = request.device +
                      " is no serial flash device with addresses of 3 or 4 bytes; choose one "
                      "that a flash loader can write.";
        return false;
    }
    std::vector<std::uint8_t> payload;
    if (!put_text(payload, request.target.name, message))
        return false;
    put_number(payload, request.target.idcode, 4);
    put_number(payload, request.target.instruction_length, 1);
    put_number(payload, jtag::FLASH_BRIDGE, 4);
    payload.insert(payload.end(), request.flash.jedec_id.begin(), request.flash.jedec_id.end());
    put_number(payload, request.flash.address_bytes, 1);
    put_number(payload, request.flash.sector_bytes, 4);
    put_number(payload, request.flash.page_bytes, 4);
    payload.insert(payload.end(), commands->begin(), commands->end());
    return writer.chunk(pof::LOAD, payload, {}, message);
}

bool write_region(const IMAGE_REGION& region, CHUNK_WRITER& writer, std::string& message)
{
    std::vector<std::uint8_t> payload;
    put_number(payload, region.start, 8);
    put_number(payload, region.length, 8);
    put_number(payload, region.block_end, 8);
    put_number(payload, region.crc, 4);
    put_number(payload, region.has_page, 1);
    put_number(payload, region.page, 4);
    return put_text(payload, region.name, message) && put_text(payload, region.input, message) &&
           writer.chunk(pof::PART, payload, {}, message);
}

/// Writes what is not fill in one block of the image.
bool write_block(std::uint64_t address, std::span<const std::uint8_t> block, CHUNK_WRITER& writer,
                 std::uint64_t& data_size, std::string& message)
{
    std::size_t begin = find_end_of_run(block, 0, true);
    while (begin != block.size()) {
        std::size_t end = begin;
        std::size_t next = begin;
        do {
            end = find_end_of_run(block, next, false);
            next = find_end_of_run(block, end, true);
        } while (next != block.size() && next - end < pof::SHORTEST_GAP);
        std::vector<std::uint8_t> payload;
        put_number(payload, address + begin, 8);
        if (!writer.chunk(pof::DATA, payload, block.subspan(begin, end - begin), message))
            return false;
        data_size += end - begin;
        begin = next;
    }
    return true;
}

class VERIFYING final : public POF_VISITOR
{
public:
    explicit VERIFYING(const FORMAT_REQUEST& request) : m_request(request), m_compare(*request.image) {}

    bool head(const std::string& device, std::uint64_t image_size, std::string& message) override
    {
        if (device == m_request.device && image_size == m_request.image->size())
            return true;
        message = "The file is for " + device + " with " + bytes_text(image_size) + " instead of " +
                  m_request.device + " with " + bytes_text(m_request.image->size()) + ".";
        return false;
    }
    bool loader(const JTAG_TARGET& target, const SERIAL_FLASH& flash, std::string& message) override
    {
        if (target == m_request.target && flash == m_request.flash)
            return true;
        message = "The flash loader " + target.name + " is not as the setup has it, which names " +
                  m_request.target.name + ".";
        return false;
    }
    bool region(const IMAGE_REGION& region, std::string& message) override
    {
        if (m_regions < m_request.regions.size() && region == m_request.regions[m_regions]) {
            ++m_regions;
            return true;
        }
        message = "The partition " + region.name + " is not as the layout has it.";
        return false;
    }
    bool fill(std::uint64_t address, std::uint64_t length, std::string& message) override
    {
        return m_compare.is_fill(address, length, message);
    }
    bool data(std::uint64_t address, std::span<const std::uint8_t> bytes, std::string& message) override
    {
        return m_compare.equal(address, bytes, message);
    }
    bool done(std::uint32_t, std::string& message) override
    {
        if (m_regions == m_request.regions.size())
            return true;
        message = "The partition " + m_request.regions[m_regions].name + " is missing in the file.";
        return false;
    }

private:
    const FORMAT_REQUEST& m_request;
    IMAGE_COMPARE m_compare;
    std::size_t m_regions = 0;
};

class DECODING final : public POF_VISITOR
{
public:
    explicit DECODING(BYTE_SINK& sink) : m_sink(sink), m_fill(64 * 1024, 0xFF) {}

    bool head(const std::string&, std::uint64_t, std::string&) override { return true; }
    bool loader(const JTAG_TARGET&, const SERIAL_FLASH&, std::string&) override { return true; }
    bool region(const IMAGE_REGION&, std::string&) override { return true; }
    bool fill(std::uint64_t, std::uint64_t length, std::string& message) override
    {
        while (length != 0) {
            const std::size_t count =
                static_cast<std::size_t>(std::min<std::uint64_t>(length, m_fill.size()));
            if (!m_sink.write({m_fill.data(), count}, message))
                return false;
            length -= count;
        }
        return true;
    }
    bool data(std::uint64_t, std::span<const std::uint8_t> bytes, std::string& message) override
    {
        return m_sink.write(bytes, message);
    }
    bool done(std::uint32_t, std::string&) override { return true; }

private:
    BYTE_SINK& m_sink;
    std::vector<std::uint8_t> m_fill;
};

class INSPECTING final : public POF_VISITOR
{
public:
    INSPECTING(const pof::KIND& kind, FORMAT_FACTS& facts) : m_kind(kind), m_facts(facts) {}

    bool head(const std::string& device, std::uint64_t image_size, std::string&) override
    {
        m_facts.facts.push_back({"format", m_kind.description});
        m_facts.facts.push_back({"device", device});
        m_facts.facts.push_back({"image size", bytes_text(image_size)});
        return true;
    }
    bool loader(const JTAG_TARGET& target, const SERIAL_FLASH& flash, std::string&) override
    {
        std::uint64_t id = 0;
        for (const std::uint8_t byte : flash.jedec_id)
            id = id << 8 | byte;
        m_facts.facts.push_back({"flash loader", target.name});
        m_facts.facts.push_back({"flash loader IDCODE", hex_text(target.idcode)});
        if (id != 0)
            m_facts.facts.push_back({"JEDEC identification", hex_text(id, 6)});
        m_facts.facts.push_back({"sector size", bytes_text(flash.sector_bytes)});
        m_facts.facts.push_back({"page size", bytes_text(flash.page_bytes)});
        return true;
    }
    bool region(const IMAGE_REGION& region, std::string&) override
    {
        m_facts.regions.push_back(region);
        return true;
    }
    bool fill(std::uint64_t, std::uint64_t, std::string&) override { return true; }
    bool data(std::uint64_t address, std::span<const std::uint8_t> bytes, std::string&) override
    {
        m_size += bytes.size();
        std::vector<ADDRESS_RANGE>& ranges = m_facts.ranges;
        if (!ranges.empty() && ranges.back().start + ranges.back().length == address)
            ranges.back().length += bytes.size();
        else
            ranges.push_back({address, bytes.size()});
        return true;
    }
    bool done(std::uint32_t image_crc, std::string&) override
    {
        m_facts.facts.push_back({"data", bytes_text(m_size)});
        m_facts.facts.push_back({"image CRC-32", hex_text(image_crc)});
        return true;
    }

private:
    const pof::KIND& m_kind;
    FORMAT_FACTS& m_facts;
    std::uint64_t m_size = 0;
};
} // namespace

bool FLASH_FILE_FORMAT::write(const FORMAT_REQUEST& request, BYTE_SINK& sink, std::string& message) const
{
    CHUNK_WRITER writer(sink);
    if (!write_head(m_kind, request, writer, message) ||
        (m_kind.has_loader && !write_loader(request, writer, message)))
        return false;
    for (const IMAGE_REGION& region : request.regions)
        if (!write_region(region, writer, message))
            return false;

    const std::uint64_t size = request.image->size();
    IO_BLOCK block(static_cast<std::size_t>(std::min<std::uint64_t>(size, pof::MOST_DATA)));
    std::uint64_t data_size = 0;
    std::uint32_t crc = 0;
    for (std::uint64_t address = 0; address != size;) {
        const std::size_t count =
            static_cast<std::size_t>(std::min<std::uint64_t>(size - address, block.size()));
        const std::span<std::uint8_t> part(block.data(), count);
        if (!request.image->read(address, part, message))
            return false;
        crc = crc32(part, crc);
        if (!write_block(address, part, writer, data_size, message))
            return false;
        address += count;
    }

    std::vector<std::uint8_t> payload;
    put_number(payload, data_size, 8);
    put_number(payload, crc, 4);
    return writer.chunk(pof::DONE, payload, {}, message) && writer.flush(message);
}

bool FLASH_FILE_FORMAT::verify(const FORMAT_REQUEST& request, const BYTE_SOURCE& file,
                               std::string& message) const
{
    VERIFYING visitor(request);
    return POF_READER(m_kind, file).read(visitor, message);
}

bool FLASH_FILE_FORMAT::decode(const BYTE_SOURCE& file, BYTE_SINK& sink, std::string& message) const
{
    DECODING visitor(sink);
    return POF_READER(m_kind, file).read(visitor, message);
}

bool FLASH_FILE_FORMAT::inspect(const BYTE_SOURCE& file, FORMAT_FACTS& facts, std::string& message) const
{
    INSPECTING visitor(m_kind, facts);
    return POF_READER(m_kind, file).read(visitor, message);
}

bool FLASH_FILE_FORMAT::recognise(const pof::KIND& kind, const BYTE_SOURCE& file)
{
    return begins_with(file, kind.signature);
}
