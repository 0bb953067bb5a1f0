#include "jbc_player.h"

#include "pof_decoder.h"

#include <cstring>
#include <stdexcept>

namespace
{
std::uint64_t number(const std::vector<std::uint8_t>& bytes, std::size_t& at, std::size_t size)
{
    std::uint64_t value = 0;
    for (std::size_t i = 0; i != size; ++i)
        value |= std::uint64_t(bytes.at(at + i)) << 8 * i;
    at += size;
    return value;
}

std::string text(const std::vector<std::uint8_t>& bytes, std::size_t& at)
{
    std::string result(number(bytes, at, 2), ' ');
    for (char& c : result)
        c = static_cast<char>(bytes.at(at++));
    return result;
}

/// Runs the byte code of one procedure.
class RUN
{
public:
    RUN(const JBC_PROGRAM& program, JTAG_DEVICE& target) : m_program(program), m_port(target) {}

    int procedure(const std::vector<std::uint8_t>& code)
    {
        for (std::size_t at = 0; at != code.size();) {
            const int failure = step(code, at);
            if (failure != 0)
                return failure;
        }
        return 0;
    }

private:
    int step(const std::vector<std::uint8_t>& code, std::size_t& at)
    {
        switch (number(code, at, 1)) {
        case 0:
            m_port.reset();
            return 0;
        case 1:
            m_port.shift_instruction(bits_of(number(code, at, 4), m_program.instruction_length));
            return 0;
        case 2:
            m_port.idle(16, static_cast<double>(number(code, at, 4)) * 1e-6);
            return 0;
        case 3: {
            const int failure = static_cast<int>(number(code, at, 1));
            return value_of(m_port.shift_data(BITS(32))) == m_program.idcode ? 0 : failure;
        }
        case 4: {
            const std::uint64_t value = number(code, at, 1);
            const std::uint64_t mask = number(code, at, 1);
            const int failure = static_cast<int>(number(code, at, 1));
            return (value_of(m_port.shift_data(BITS(8))) & mask) == (value & mask) ? 0 : failure;
        }
        case 5:
            scan(true);
            return 0;
        case 6: {
            const int failure = static_cast<int>(number(code, at, 1));
            return scan(false) ? 0 : failure;
        }
        default:
            return -1;
        }
    }

    bool scan(bool send)
    {
        const std::vector<std::uint8_t>& stream = m_program.stream;
        bool same = true;
        for (std::size_t at = 0; at < stream.size(); at += m_program.scan_bytes) {
            BITS bits;
            for (std::size_t i = at; i != stream.size() && i != at + m_program.scan_bytes; ++i)
                for (unsigned bit = 0; bit != 8; ++bit)
                    bits.push_back((stream[i] >> bit & 1) != 0);
            const BITS out = m_port.shift_data(send ? bits : BITS(bits.size()));
            same = same && (send || out == bits);
        }
        return same;
    }

    const JBC_PROGRAM& m_program;
    JTAG_PORT m_port;
};
} // namespace

JBC_PROGRAM JBC_PROGRAM::parse(const std::vector<std::uint8_t>& file)
{
    JBC_PROGRAM program;
    const auto fail = [&](const char* reason) {
        program.fault = reason;
        return program;
    };
    try {
        if (file.size() < 8 || std::memcmp(file.data(), "\x89JBC\r\n\x1A\n", 8) != 0)
            return fail("signature");
        std::uint64_t size = 0;
        for (std::size_t at = 8; at != file.size();) {
            const std::string tag(file.begin() + static_cast<std::ptrdiff_t>(at),
                                  file.begin() + static_cast<std::ptrdiff_t>(at) + 4);
            std::size_t place = at + 4;
            const std::size_t length = number(file, place, 4);
            const std::size_t end = place + length;
            std::size_t trailer = end;
            if (number(file, trailer, 4) != plain_crc32(file.data() + at, 8 + length))
                return fail("chunk checksum");
            const auto rest = [&] {
                std::vector<std::uint8_t> bytes;
                while (place != end)
                    bytes.push_back(file.at(place++));
                return bytes;
            };
            if ((tag == "HEAD") != (at == 8))
                return fail("head");
            if (tag == "HEAD") {
                if (number(file, place, 2) != 1)
                    return fail("version");
                place += 2;
                program.idcode = number(file, place, 4);
                program.instruction_length = number(file, place, 1);
                program.scan_bytes = number(file, place, 4);
                size = number(file, place, 8);
                program.device = text(file, place);
            } else if (tag == "PROC") {
                program.procedures.push_back(rest());
            } else if (tag == "ACTN") {
                const std::string name = text(file, place);
                program.actions[name] = rest();
            } else if (tag == "DATA") {
                if (number(file, place, 8) != program.stream.size())
                    return fail("data offset");
                const std::vector<std::uint8_t> bytes = rest();
                program.stream.insert(program.stream.end(), bytes.begin(), bytes.end());
            } else if (tag == "DONE") {
                if (number(file, place, 4) != plain_crc32(program.stream.data(), program.stream.size()) ||
                    program.stream.size() != size)
                    return fail("stream");
                return trailer == file.size() && place == end ? program : fail("end");
            } else {
                return fail("tag");
            }
            if (place != end)
                return fail("chunk length");
            at = trailer;
        }
        return fail("no last chunk");
    } catch (const std::exception& error) {
        return fail(error.what());
    }
}

int JBC_PROGRAM::run(const std::string& action, JTAG_DEVICE& target) const
{
    for (const std::uint8_t step : actions.at(action)) {
        const int failure = RUN(*this, target).procedure(procedures.at(step));
        if (failure != 0)
            return failure;
    }
    return 0;
}
