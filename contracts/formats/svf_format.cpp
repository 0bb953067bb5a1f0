#include "svf_format.h"

#include "digit_text.h"
#include "format_text.h"
#include "jtag_program.h"
#include "svf_reader.h"

#include <algorithm>

namespace
{
std::string digits_of(std::uint64_t value, unsigned bits)
{
    return hex_text(value, (bits + 3) / 4).substr(2);
}

/// Microseconds as the seconds of a RUNTEST statement.
std::string seconds(std::uint32_t microseconds)
{
    return std::to_string(microseconds) + ".0E-6 SEC";
}

/// Describes the file once, for the writer and for the check.
class DESCRIPTION
{
public:
    DESCRIPTION(const FORMAT_REQUEST& request, DIGIT_TEXT& out, std::string& message)
        : m_request(request), m_out(out), m_message(message)
    {
    }

    bool run()
    {
        if (!jtag::fits(m_request.target, m_message) || !head())
            return false;
        for (const jtag::PROCEDURE_NUMBER number : jtag::action_of(m_request.operation).steps) {
            const jtag::PROCEDURE& procedure = jtag::procedures()[number];
            if (!text(std::string("! ") + procedure.words + "\n"))
                return false;
            for (const jtag::STEP& step : procedure.steps)
                if (!write(step))
                    return false;
        }
        return text(std::string("STATE RESET;\n") + svf::SEAL) && m_out.checksum("", 8, m_message) &&
               text("\n");
    }

private:
    bool text(const std::string& characters) { return m_out.text(characters, m_message); }

    bool head()
    {
        const std::string device = printable_text(m_request.target.name);
        return text("! Serial Vector Format, revision E\n! Device: " + device + ", IDCODE " +
                    hex_text(m_request.target.idcode) +
                    "\n! Operation: " + jtag::action_of(m_request.operation).words + "\n" +
                    (m_request.voltage.empty() ? "" : "! Supply voltage: " + m_request.voltage + " V\n") +
                    "! Configuration stream: " + bytes_text(m_request.image->size()) +
                    "\nTRST OFF;\nENDIR IDLE;\nENDDR IDLE;\nHIR 0;\nTIR 0;\nHDR 0;\nTDR 0;\n" +
                    (m_request.frequency == 0
                         ? ""
                         : "FREQUENCY " + std::to_string(m_request.frequency) + ".0 HZ;\n") +
                    "STATE RESET;\nSTATE IDLE;\n");
    }

    bool write(const jtag::STEP& step)
    {
        switch (step.kind) {
        case jtag::STEP_KIND::INSTRUCTION: {
            const unsigned bits = m_request.target.instruction_length;
            return text("SIR " + std::to_string(bits) + " TDI (" + digits_of(step.value, bits) + ");\n");
        }
        case jtag::STEP_KIND::WAIT:
            return text("RUNTEST IDLE 16 TCK " + seconds(step.value) + ";\n");
        case jtag::STEP_KIND::CHECK_IDCODE:
            return text("SDR 32 TDI (00000000) TDO (" + digits_of(m_request.target.idcode, 32) +
                        ") MASK (FFFFFFFF);\n");
        case jtag::STEP_KIND::CHECK_STATUS:
            return text("SDR 8 TDI (00) TDO (" + digits_of(step.value, 8) + ") MASK (" +
                        digits_of(step.mask, 8) + ");\n");
        case jtag::STEP_KIND::SEND_STREAM:
            return scans([this](std::uint64_t offset, std::uint64_t length, bool) {
                return text(sdr(length) + " TDI (\n") && m_out.digits(offset, length, m_message) &&
                       text(");\n");
            });
        case jtag::STEP_KIND::COMPARE_STREAM:
            break;
        }
        // What is scanned in and the mask hold until the length changes.
        return scans([this](std::uint64_t offset, std::uint64_t length, bool new_length) {
            return text(sdr(length) +
                        (new_length
                             ? " TDI (\n" + filled('0', length) + ") MASK (\n" + filled('F', length) + ")"
                             : std::string()) +
                        " TDO (\n") &&
                   m_out.digits(offset, length, m_message) && text(");\n");
        });
    }

    static std::string sdr(std::uint64_t length) { return "SDR " + std::to_string(length * 8); }

    static std::string filled(char digit, std::uint64_t length)
    {
        std::string lines;
        for (std::size_t left = static_cast<std::size_t>(length); left != 0;) {
            const std::size_t odd = left % DIGIT_TEXT::LINE_BYTES;
            const std::size_t line = odd != 0 ? odd : DIGIT_TEXT::LINE_BYTES;
            lines.append(2 * line, digit);
            lines += '\n';
            left -= line;
        }
        return lines;
    }

    template <class SCAN>
    bool scans(SCAN scan)
    {
        const std::uint64_t size = m_request.image->size();
        std::uint64_t before = 0;
        for (std::uint64_t offset = 0; offset != size;) {
            const std::uint64_t length = std::min<std::uint64_t>(jtag::SCAN_BYTES, size - offset);
            if (!scan(offset, length, length != before))
                return false;
            before = length;
            offset += length;
        }
        return true;
    }

    const FORMAT_REQUEST& m_request;
    DIGIT_TEXT& m_out;
    std::string& m_message;
};

/// Passes the stream on and counts it.
class SENDING final : public SVF_VISITOR
{
public:
    explicit SENDING(BYTE_SINK* sink) : m_sink(sink) { m_pending.reserve(CACHED_BLOCK_SIZE); }

    bool stream(std::span<const std::uint8_t> bytes, std::string& message) override
    {
        m_pending.insert(m_pending.end(), bytes.begin(), bytes.end());
        return m_pending.size() < CACHED_BLOCK_SIZE || flush(message);
    }

    bool flush(std::string& message)
    {
        size += m_pending.size();
        crc = crc32(m_pending, crc);
        const bool sent = m_sink == nullptr || m_pending.empty() || m_sink->write(m_pending, message);
        m_pending.clear();
        return sent;
    }

    std::uint64_t size = 0;
    std::uint32_t crc = 0;

private:
    BYTE_SINK* m_sink;
    std::vector<std::uint8_t> m_pending;
};
} // namespace

bool SVF_FORMAT::write(const FORMAT_REQUEST& request, BYTE_SINK& sink, std::string& message) const
{
    DIGIT_TEXT_WRITER writer(*request.image, crc32, sink);
    return DESCRIPTION(request, writer, message).run() && writer.flush(message);
}

bool SVF_FORMAT::verify(const FORMAT_REQUEST& request, const BYTE_SOURCE& file, std::string& message) const
{
    DIGIT_TEXT_CHECK check(*request.image, crc32, file);
    return DESCRIPTION(request, check, message).run() && check.end(message);
}

bool SVF_FORMAT::decode(const BYTE_SOURCE& file, BYTE_SINK& sink, std::string& message) const
{
    SENDING visitor(&sink);
    SVF_READER reader(file);
    return reader.read(visitor, message) && visitor.flush(message);
}

bool SVF_FORMAT::inspect(const BYTE_SOURCE& file, FORMAT_FACTS& facts, std::string& message) const
{
    SENDING visitor(nullptr);
    SVF_READER reader(file);
    if (!reader.read(visitor, message) || !visitor.flush(message))
        return false;
    facts.facts.push_back({"format", "Serial Vector Format"});
    facts.facts.push_back({"IDCODE", hex_text(reader.idcode())});
    facts.facts.push_back({"operation", reader.operation()});
    if (!reader.frequency().empty())
        facts.facts.push_back({"frequency", reader.frequency() + " Hz"});
    facts.facts.push_back({"data", bytes_text(visitor.size)});
    facts.facts.push_back({"image CRC-32", hex_text(visitor.crc)});
    if (visitor.size != 0)
        facts.ranges.push_back({0, visitor.size});
    return true;
}
