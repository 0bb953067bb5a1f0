#include "jam_format.h"

#include "checksum_sink.h"
#include "digit_text.h"
#include "format_text.h"
#include "jam_reader.h"
#include "jtag_program.h"
#include "stapl_crc.h"

namespace
{
/// Bits of an array are counted by integers of 32 bits with a sign.
constexpr std::uint64_t MOST_BYTES = 0x7FFFFFFF / 8;
constexpr std::size_t SCAN_BITS = 8 * jtag::SCAN_BYTES;

std::string literal(std::uint64_t value, unsigned bits)
{
    return "$" + hex_text(value, (bits + 3) / 4).substr(2);
}

/// Describes the file once, for the writer and for the check.
class DESCRIPTION
{
public:
    DESCRIPTION(const FORMAT_REQUEST& request, DIGIT_TEXT& out, std::string& message)
        : m_request(request), m_out(out), m_message(message), m_size(request.image->size())
    {
    }

    bool run()
    {
        if (!jtag::fits(m_request.target, m_message) || !fits() || !head() || !data())
            return false;
        for (const jtag::PROCEDURE& procedure : jtag::procedures())
            if (!write(procedure))
                return false;
        return m_out.checksum("CRC ", 4, m_message) && text(";\n");
    }

private:
    bool text(const std::string& characters) { return m_out.text(characters, m_message); }

    bool fits()
    {
        if (m_size != 0 && m_size <= MOST_BYTES)
            return true;
        m_message = "The configuration stream has " + bytes_text(m_size) + ", and a STAPL file holds 1 to " +
                    std::to_string(MOST_BYTES) + "; choose another output type.";
        return false;
    }

    static std::string note(const std::string& key, const std::string& value)
    {
        return "NOTE \"" + key + "\" \"" + printable_text(value) + "\";\n";
    }

    bool head()
    {
        std::string lines = note("CREATOR", "Imagewright") + note("DEVICE", m_request.target.name) +
                            note("IDCODE", hex_text(m_request.target.idcode)) +
                            note("STAPL_VERSION", "JESD71") + note("ALG_VERSION", "1");
        for (const jtag::ACTION& action : jtag::actions()) {
            lines += std::string("ACTION ") + action.name + " \"" + action.words + "\" = ";
            for (const jtag::PROCEDURE_NUMBER& number : action.steps)
                lines += (&number == action.steps.data() ? "" : ", ") +
                         std::string(jtag::procedures()[number].name);
            lines += ";\n";
        }
        return text(lines);
    }

    bool data()
    {
        const std::string digits = std::to_string(SCAN_BITS);
        return text("DATA SCANS;\nBOOLEAN ZEROS[" + digits + "] = $\n" + filled('0') + ";\nBOOLEAN ONES[" +
                    digits + "] = $\n" + filled('F') + ";\nENDDATA;\nDATA CONFIGURATION;\n" + jam::ARRAY +
                    "[" + std::to_string(8 * m_size) + "] = $\n") &&
               m_out.digits(0, m_size, m_message) && text(";\nENDDATA;\n");
    }

    static std::string filled(char digit)
    {
        std::string lines;
        for (std::size_t i = 0; i != jtag::SCAN_BYTES; i += DIGIT_TEXT::LINE_BYTES)
            lines += std::string(2 * DIGIT_TEXT::LINE_BYTES, digit) + "\n";
        return lines;
    }

    bool write(const jtag::PROCEDURE& procedure)
    {
        std::string body;
        bool uses_data = false;
        bool compares = false;
        bool loops = false;
        for (const jtag::STEP& step : procedure.steps) {
            body += statements(step);
            const bool stream =
                step.kind == jtag::STEP_KIND::SEND_STREAM || step.kind == jtag::STEP_KIND::COMPARE_STREAM;
            uses_data = uses_data || stream;
            loops = loops || (stream && m_size >= jtag::SCAN_BYTES);
            compares = compares || step.failure != 0;
        }
        const std::string name = procedure.name;
        return text("PROCEDURE " + name + (uses_data ? " USES SCANS, CONFIGURATION" : "") + ";\n" +
                    (compares ? "BOOLEAN OK;\n" : "") + (loops ? "INTEGER I;\n" : "") +
                    (&procedure == &jtag::procedures()[jtag::CHECK_DEVICE]
                         ? "IRSTOP IDLE;\nDRSTOP IDLE;\nSTATE RESET;\nSTATE IDLE;\n"
                         : "") +
                    body + (&procedure == &jtag::procedures()[jtag::LEAVE] ? "STATE RESET;\n" : "") +
                    "ENDPROC;\n");
    }

    static std::string stop_unless_ok(unsigned failure)
    {
        return "IF (!OK) THEN EXIT " + std::to_string(failure) + ";\n";
    }

    std::string statements(const jtag::STEP& step) const
    {
        switch (step.kind) {
        case jtag::STEP_KIND::INSTRUCTION: {
            const unsigned bits = m_request.target.instruction_length;
            return "IRSCAN " + std::to_string(bits) + ", " + literal(step.value, bits) + ";\n";
        }
        case jtag::STEP_KIND::WAIT:
            return "WAIT IDLE, 16 CYCLES, " + std::to_string(step.value) + " USEC;\n";
        case jtag::STEP_KIND::CHECK_IDCODE:
            return "DRSCAN 32, $00000000, COMPARE " + literal(m_request.target.idcode, 32) +
                   ", $FFFFFFFF, OK;\n" + stop_unless_ok(step.failure);
        case jtag::STEP_KIND::CHECK_STATUS:
            return "DRSCAN 8, $00, COMPARE " + literal(step.value, 8) + ", " + literal(step.mask, 8) +
                   ", OK;\n" + stop_unless_ok(step.failure);
        case jtag::STEP_KIND::SEND_STREAM:
            return scans("", "", "");
        case jtag::STEP_KIND::COMPARE_STREAM:
            break;
        }
        return scans("ZEROS[", "ONES[", stop_unless_ok(step.failure));
    }

    /// The scans of the whole stream: the stream itself, or with `zeros` what is compared with it.
    std::string scans(const std::string& zeros, const std::string& ones, const std::string& behind) const
    {
        const auto scan = [&](std::uint64_t bits, const std::string& slice) {
            const std::string all = std::to_string(bits - 1) + "..0]";
            return "DRSCAN " + std::to_string(bits) + ", " +
                   (zeros.empty() ? slice : zeros + all + ", COMPARE " + slice + ", " + ones + all + ", OK") +
                   ";\n" + behind;
        };
        const std::uint64_t full = m_size / jtag::SCAN_BYTES;
        const std::uint64_t rest = m_size % jtag::SCAN_BYTES;
        const std::string width = std::to_string(SCAN_BITS);
        std::string lines;
        if (full != 0)
            lines += "FOR I = 0 TO " + std::to_string(full - 1) + ";\n" +
                     scan(SCAN_BITS, "STREAM[(I * " + width + ") + " + std::to_string(SCAN_BITS - 1) +
                                         "..(I * " + width + ")]") +
                     "NEXT I;\n";
        if (rest != 0)
            lines += scan(8 * rest, "STREAM[" + std::to_string(8 * m_size - 1) + ".." +
                                        std::to_string(full * SCAN_BITS) + "]");
        return lines;
    }

    const FORMAT_REQUEST& m_request;
    DIGIT_TEXT& m_out;
    std::string& m_message;
    const std::uint64_t m_size;
};
} // namespace

bool JAM_FORMAT::write(const FORMAT_REQUEST& request, BYTE_SINK& sink, std::string& message) const
{
    DIGIT_TEXT_WRITER writer(*request.image, stapl_crc, sink);
    return DESCRIPTION(request, writer, message).run() && writer.flush(message);
}

bool JAM_FORMAT::verify(const FORMAT_REQUEST& request, const BYTE_SOURCE& file, std::string& message) const
{
    DIGIT_TEXT_CHECK check(*request.image, stapl_crc, file);
    return DESCRIPTION(request, check, message).run() && check.end(message);
}

bool JAM_FORMAT::decode(const BYTE_SOURCE& file, BYTE_SINK& sink, std::string& message) const
{
    JAM_READER reader(file);
    return reader.read(message) && reader.send_stream(sink, message);
}

bool JAM_FORMAT::inspect(const BYTE_SOURCE& file, FORMAT_FACTS& facts, std::string& message) const
{
    JAM_READER reader(file);
    CHECKSUM_SINK sink;
    if (!reader.read(message) || !reader.send_stream(sink, message))
        return false;
    facts.facts.push_back({"format", "STAPL program"});
    for (const auto& [key, name] : {std::pair("DEVICE", "device"), std::pair("IDCODE", "IDCODE")})
        if (reader.notes().contains(key))
            facts.facts.push_back({name, reader.notes().at(key)});
    facts.facts.push_back({"actions", reader.actions()});
    facts.facts.push_back({"data", bytes_text(reader.stream_size())});
    facts.facts.push_back({"image CRC-32", hex_text(sink.crc)});
    facts.ranges.push_back({0, reader.stream_size()});
    return true;
}
