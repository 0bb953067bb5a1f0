#include "jbc_format.h"

#include "format_text.h"
#include "image_compare.h"
#include "jbc_layout.h"
#include "jtag_program.h"

#include <algorithm>
#include <cstring>

namespace
{
using BYTES = std::vector<std::uint8_t>;

void put_step(const jtag::STEP& step, BYTES& code)
{
    switch (step.kind) {
    case jtag::STEP_KIND::INSTRUCTION:
        code.push_back(jbc::INSTRUCTION);
        put_number(code, step.value, 4);
        return;
    case jtag::STEP_KIND::WAIT:
        code.push_back(jbc::WAIT);
        put_number(code, step.value, 4);
        return;
    case jtag::STEP_KIND::CHECK_IDCODE:
        code.insert(code.end(), {jbc::CHECK_IDCODE, step.failure});
        return;
    case jtag::STEP_KIND::CHECK_STATUS:
        code.insert(code.end(),
                    {jbc::CHECK_STATUS, static_cast<std::uint8_t>(step.value), step.mask, step.failure});
        return;
    case jtag::STEP_KIND::SEND_STREAM:
        code.push_back(jbc::SEND_STREAM);
        return;
    case jtag::STEP_KIND::COMPARE_STREAM:
        break;
    }
    code.insert(code.end(), {jbc::COMPARE_STREAM, step.failure});
}

/// A chunk that follows from the request alone.
struct PART {
    CHUNK_TAG tag;
    BYTES payload;
};

/// All chunks before the data; false with a sentence when the device cannot be reached.
bool make_program(const FORMAT_REQUEST& request, std::vector<PART>& parts, std::string& message)
{
    BYTES head;
    put_number(head, jbc::MAJOR_VERSION, 2);
    put_number(head, jbc::MINOR_VERSION, 2);
    put_number(head, request.target.idcode, 4);
    put_number(head, request.target.instruction_length, 1);
    put_number(head, jtag::SCAN_BYTES, 4);
    put_number(head, request.image->size(), 8);
    if (!jtag::fits(request.target, message) || !put_text(head, request.target.name, message))
        return false;
    parts.push_back({jbc::HEAD, head});
    for (const jtag::PROCEDURE& procedure : jtag::procedures()) {
        BYTES code;
        if (&procedure == &jtag::procedures()[jtag::CHECK_DEVICE])
            code.push_back(jbc::RESET);
        for (const jtag::STEP& step : procedure.steps)
            put_step(step, code);
        if (&procedure == &jtag::procedures()[jtag::LEAVE])
            code.push_back(jbc::RESET);
        parts.push_back({jbc::PROC, code});
    }
    for (const jtag::ACTION& action : jtag::actions()) {
        BYTES payload;
        if (!put_text(payload, action.name, message))
            return false;
        payload.insert(payload.end(), action.steps.begin(), action.steps.end());
        parts.push_back({jbc::ACTN, payload});
    }
    return true;
}

/// What inspection tells about the program.
struct PROGRAM_FACTS {
    std::string device;
    std::uint32_t idcode = 0;
    std::string actions;
    std::uint64_t size = 0;
    std::uint32_t crc = 0;
};

/// Reads a JBC and holds it to all of its rules, except the meaning of the byte code, of which it checks the
/// form.
class READER
{
public:
    READER(const BYTE_SOURCE& file, BYTE_SINK* sink) : m_chunks(file, jbc::SIGNATURE, "JBC"), m_sink(sink) {}

    bool run(std::string& message)
    {
        CHUNK chunk;
        if (!m_chunks.begin(message) || !m_chunks.next(chunk, message))
            return false;
        if (chunk.tag != jbc::HEAD)
            return m_chunks.refuse("is not the head of a JBC, which comes first.", message);
        if (!head(chunk, message))
            return false;
        for (;;) {
            if (!m_chunks.next(chunk, message))
                return false;
            if (chunk.tag == jbc::DONE)
                return done(chunk, message);
            const bool taken = chunk.tag == jbc::PROC   ? procedure(chunk, message)
                               : chunk.tag == jbc::ACTN ? action(chunk, message)
                               : chunk.tag == jbc::DATA ? data(chunk, message)
                                                        : pass_over(chunk, message);
            if (!taken)
                return false;
        }
    }

    const PROGRAM_FACTS& facts() const { return m_facts; }

private:
    bool pass_over(const CHUNK& chunk, std::string& message) const
    {
        return (chunk.tag[0] >= 'a' && chunk.tag[0] <= 'z') ||
               m_chunks.refuse("is of a kind that this version does not know.", message);
    }

    bool head(const CHUNK& chunk, std::string& message)
    {
        FIELDS fields(chunk.payload);
        const std::uint64_t major = fields.number(2);
        fields.number(2);
        if (fields.complete() && major != jbc::MAJOR_VERSION) {
            message = "The file has version " + std::to_string(major) +
                      " of the format, which this program cannot read; it reads version " +
                      std::to_string(jbc::MAJOR_VERSION) + ".";
            return false;
        }
        m_facts.idcode = static_cast<std::uint32_t>(fields.number(4));
        const std::uint64_t length = fields.number(1);
        const std::uint64_t scan = fields.number(4);
        m_facts.size = fields.number(8);
        m_facts.device = printable_text(fields.text());
        return (fields.complete_and_empty() && length >= jtag::LEAST_INSTRUCTION_LENGTH &&
                length <= jtag::MOST_INSTRUCTION_LENGTH && scan != 0) ||
               m_chunks.refuse("has a wrong length or value for a head.", message);
    }

    bool procedure(const CHUNK& chunk, std::string& message)
    {
        constexpr std::size_t LENGTHS[] = {0, 4, 4, 1, 3, 0, 1};
        ++m_procedures;
        std::span<const std::uint8_t> code = chunk.payload;
        while (!code.empty()) {
            if (code[0] >= std::size(LENGTHS) || code.size() <= LENGTHS[code[0]])
                return m_chunks.refuse("holds byte code that this version does not know.", message);
            code = code.subspan(1 + LENGTHS[code[0]]);
        }
        return true;
    }

    bool action(const CHUNK& chunk, std::string& message)
    {
        FIELDS fields(chunk.payload);
        const std::string name = fields.text();
        const std::span<const std::uint8_t> steps = fields.rest();
        if (!fields.complete() || std::any_of(steps.begin(), steps.end(),
                                              [this](std::uint8_t step) { return step >= m_procedures; }))
            return m_chunks.refuse("names a procedure that is not there.", message);
        m_facts.actions += (m_facts.actions.empty() ? "" : ", ") + printable_text(name);
        return true;
    }

    bool data(const CHUNK& chunk, std::string& message)
    {
        FIELDS fields(chunk.payload);
        const std::uint64_t offset = fields.number(8);
        const std::span<const std::uint8_t> bytes = fields.rest();
        if (!fields.complete() || bytes.empty() || offset != m_done || bytes.size() > m_facts.size - m_done)
            return m_chunks.refuse("does not hold the next bytes of the stream.", message);
        m_done += bytes.size();
        m_facts.crc = crc32(bytes, m_facts.crc);
        return m_sink == nullptr || m_sink->write(bytes, message);
    }

    bool done(const CHUNK& chunk, std::string& message)
    {
        FIELDS fields(chunk.payload);
        const std::uint64_t crc = fields.number(4);
        if (!fields.complete_and_empty())
            return m_chunks.refuse("has a wrong length for the last one.", message);
        if (m_done != m_facts.size || crc != m_facts.crc) {
            message = "The file holds " + bytes_text(m_done) + " of the stream with the checksum " +
                      hex_text(m_facts.crc) + " instead of " + bytes_text(m_facts.size) + " with " +
                      hex_text(crc) + "; the file is damaged.";
            return false;
        }
        return m_chunks.end(message);
    }

    CHUNK_READER m_chunks;
    BYTE_SINK* m_sink;
    PROGRAM_FACTS m_facts;
    std::size_t m_procedures = 0;
    std::uint64_t m_done = 0;
};
} // namespace

bool JBC_FORMAT::write(const FORMAT_REQUEST& request, BYTE_SINK& sink, std::string& message) const
{
    std::vector<PART> parts;
    if (!make_program(request, parts, message))
        return false;
    CHUNK_WRITER writer(sink);
    if (!writer.raw(jbc::SIGNATURE, message))
        return false;
    for (const PART& part : parts)
        if (!writer.chunk(part.tag, part.payload, {}, message))
            return false;
    const std::uint64_t size = request.image->size();
    BYTES block(static_cast<std::size_t>(std::min<std::uint64_t>(size, jbc::MOST_DATA)));
    std::uint32_t crc = 0;
    for (std::uint64_t offset = 0; offset != size;) {
        const std::span<std::uint8_t> bytes(
            block.data(), static_cast<std::size_t>(std::min<std::uint64_t>(size - offset, block.size())));
        if (!request.image->read(offset, bytes, message))
            return false;
        crc = crc32(bytes, crc);
        BYTES head;
        put_number(head, offset, 8);
        if (!writer.chunk(jbc::DATA, head, bytes, message))
            return false;
        offset += bytes.size();
    }
    BYTES last;
    put_number(last, crc, 4);
    return writer.chunk(jbc::DONE, last, {}, message) && writer.flush(message);
}

bool JBC_FORMAT::verify(const FORMAT_REQUEST& request, const BYTE_SOURCE& file, std::string& message) const
{
    std::vector<PART> parts;
    if (!make_program(request, parts, message))
        return false;
    CHUNK_READER chunks(file, jbc::SIGNATURE, "JBC");
    CHUNK chunk;
    if (!chunks.begin(message))
        return false;
    for (const PART& part : parts) {
        if (!chunks.next(chunk, message))
            return false;
        if (chunk.tag != part.tag ||
            !std::equal(chunk.payload.begin(), chunk.payload.end(), part.payload.begin(), part.payload.end()))
            return chunks.refuse("is not as the setup asks for.", message);
    }
    IMAGE_COMPARE compare(*request.image);
    const std::uint64_t size = request.image->size();
    std::uint32_t crc = 0;
    for (std::uint64_t offset = 0; offset != size;) {
        if (!chunks.next(chunk, message))
            return false;
        FIELDS fields(chunk.payload);
        const std::uint64_t place = fields.number(8);
        const std::span<const std::uint8_t> bytes = fields.rest();
        if (chunk.tag != jbc::DATA || !fields.complete() || place != offset ||
            bytes.size() != std::min<std::uint64_t>(size - offset, jbc::MOST_DATA))
            return chunks.refuse("does not hold the next bytes of the stream.", message);
        if (!compare.equal(offset, bytes, message))
            return false;
        crc = crc32(bytes, crc);
        offset += bytes.size();
    }
    BYTES last;
    put_number(last, crc, 4);
    if (!chunks.next(chunk, message))
        return false;
    if (chunk.tag != jbc::DONE ||
        !std::equal(chunk.payload.begin(), chunk.payload.end(), last.begin(), last.end()))
        return chunks.refuse("is not the end of the stream.", message);
    return chunks.end(message);
}

bool JBC_FORMAT::decode(const BYTE_SOURCE& file, BYTE_SINK& sink, std::string& message) const
{
    return READER(file, &sink).run(message);
}

bool JBC_FORMAT::inspect(const BYTE_SOURCE& file, FORMAT_FACTS& facts, std::string& message) const
{
    READER reader(file, nullptr);
    if (!reader.run(message))
        return false;
    const PROGRAM_FACTS& found = reader.facts();
    facts.facts.push_back({"format", "JTAG byte code"});
    facts.facts.push_back({"device", found.device});
    facts.facts.push_back({"IDCODE", hex_text(found.idcode)});
    facts.facts.push_back({"actions", found.actions});
    facts.facts.push_back({"data", bytes_text(found.size)});
    facts.facts.push_back({"image CRC-32", hex_text(found.crc)});
    if (found.size != 0)
        facts.ranges.push_back({0, found.size});
    return true;
}

bool JBC_FORMAT::recognise(const BYTE_SOURCE& file)
{
    return begins_with(file, jbc::SIGNATURE);
}
