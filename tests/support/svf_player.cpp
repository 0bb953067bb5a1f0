#include "svf_player.h"

#include <algorithm>
#include <cctype>
#include <map>
#include <optional>
#include <sstream>
#include <stdexcept>

namespace
{
/// What a scan statement has said last. TDI, MASK and SMASK hold while the length stays the same.
struct SCAN_MEMORY {
    std::size_t length = 0;
    std::optional<BITS> tdi;
    std::optional<BITS> mask;
};

BITS hex_bits(const std::string& digits, std::size_t length)
{
    BITS bits(length);
    std::size_t bit = 0;
    for (auto digit = digits.rbegin(); digit != digits.rend(); ++digit) {
        if (std::isxdigit(static_cast<unsigned char>(*digit)) == 0)
            throw std::runtime_error("no hexadecimal digit");
        const unsigned value = static_cast<unsigned>(std::stoul(std::string(1, *digit), nullptr, 16));
        for (unsigned i = 0; i != 4; ++i, ++bit) {
            const bool set = (value >> i & 1) != 0;
            if (bit < length)
                bits[bit] = set;
            else if (set)
                throw std::runtime_error("value longer than its scan");
        }
    }
    return bits;
}

class PLAYER
{
public:
    PLAYER(JTAG_DEVICE& device, SVF_RUN& run) : m_port(device), m_run(run) {}

    void statement(const std::string& text)
    {
        std::istringstream in(text);
        std::string command;
        in >> command;
        ++m_run.statements;
        if (command == "SIR" || command == "SDR") {
            scan(command, in);
        } else if (command == "HIR" || command == "HDR" || command == "TIR" || command == "TDR") {
            std::size_t length = 1;
            if (!(in >> length) || length != 0)
                throw std::runtime_error("padding");
        } else if (command == "ENDIR" || command == "ENDDR") {
            if (word(in) != "IDLE")
                throw std::runtime_error("end state");
        } else if (command == "TRST") {
            const std::string mode = word(in);
            if (mode != "ON" && mode != "OFF" && mode != "Z" && mode != "ABSENT")
                throw std::runtime_error("TRST");
        } else if (command == "FREQUENCY") {
            if (!(in >> m_run.frequency) || word(in) != "HZ")
                throw std::runtime_error("FREQUENCY");
        } else if (command == "STATE") {
            state(word(in));
        } else if (command == "RUNTEST") {
            run_test(in);
        } else {
            throw std::runtime_error("unknown command " + command);
        }
        std::string rest;
        if (in >> rest)
            throw std::runtime_error("too much in " + command);
    }

private:
    static std::string word(std::istream& in)
    {
        std::string text;
        in >> text;
        return text;
    }

    void state(const std::string& name)
    {
        if (name == "RESET")
            m_port.reset();
        else if (name != "IDLE")
            throw std::runtime_error("STATE");
    }

    void run_test(std::istream& in)
    {
        unsigned cycles = 0;
        double seconds = 0;
        if (word(in) != "IDLE" || !(in >> cycles) || word(in) != "TCK" || !(in >> seconds) ||
            word(in) != "SEC")
            throw std::runtime_error("RUNTEST");
        m_port.idle(cycles, seconds);
    }

    void scan(const std::string& command, std::istream& in)
    {
        SCAN_MEMORY& memory = m_memory[command];
        std::size_t length = 0;
        if (!(in >> length) || length == 0)
            throw std::runtime_error("scan length");
        if (length != memory.length)
            memory = {length, {}, {}};
        std::optional<BITS> tdo;
        for (std::string name; in >> name;) {
            std::string digits;
            std::getline(in, digits, ')');
            digits.erase(
                std::remove_if(digits.begin(), digits.end(), [](char c) { return std::isspace(c) != 0; }),
                digits.end());
            if (digits.empty() || digits.front() != '(')
                throw std::runtime_error("value without parentheses");
            const BITS bits = hex_bits(digits.substr(1), length);
            if (name == "TDI")
                memory.tdi = bits;
            else if (name == "MASK")
                memory.mask = bits;
            else if (name == "TDO")
                tdo = bits;
            else
                throw std::runtime_error("unknown value " + name);
        }
        if (!memory.tdi)
            throw std::runtime_error("no TDI for this length");
        const BITS got =
            command == "SIR" ? m_port.shift_instruction(*memory.tdi) : m_port.shift_data(*memory.tdi);
        for (std::size_t i = 0; tdo && i != length; ++i)
            if ((!memory.mask || (*memory.mask)[i]) && got[i] != (*tdo)[i])
                throw std::runtime_error("TDO differs in statement " + std::to_string(m_run.statements));
    }

    JTAG_PORT m_port;
    SVF_RUN& m_run;
    std::map<std::string, SCAN_MEMORY> m_memory;
};
} // namespace

SVF_RUN play_svf(const std::string& text, JTAG_DEVICE& device)
{
    SVF_RUN run;
    std::istringstream lines(text);
    std::string stripped;
    for (std::string line; std::getline(lines, line);) {
        run.longest_line = std::max(run.longest_line, line.size());
        const std::size_t comment = std::min(line.find('!'), line.find("//"));
        stripped += line.substr(0, comment) + '\n';
    }
    try {
        PLAYER player(device, run);
        std::size_t at = 0;
        for (std::size_t end = stripped.find(';'); end != std::string::npos;
             at = end + 1, end = stripped.find(';', at))
            player.statement(stripped.substr(at, end - at));
        if (stripped.find_first_not_of(" \t\r\n", at) != std::string::npos)
            run.fault = "the last statement has no end";
    } catch (const std::exception& error) {
        run.fault = error.what();
    }
    return run;
}
