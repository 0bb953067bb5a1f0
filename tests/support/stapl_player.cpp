#include "stapl_player.h"

#include <algorithm>
#include <cctype>
#include <stdexcept>

unsigned plain_stapl_crc(const std::string& text)
{
    unsigned crc = 0xFFFF;
    for (const char character : text) {
        if (character == '\r')
            continue;
        for (int bit = 0; bit != 8; ++bit) {
            const bool feedback = ((static_cast<unsigned char>(character) >> bit ^ crc) & 1) != 0;
            crc = crc >> 1 ^ (feedback ? 0x8408u : 0u);
        }
    }
    return ~crc & 0xFFFF;
}

namespace
{
[[noreturn]] void fail(const std::string& what)
{
    throw std::runtime_error(what);
}

/// The tokens of a statement: words, numbers, literals with $ or #, texts, two dots, and single characters.
class TOKENS
{
public:
    explicit TOKENS(const std::string& text)
    {
        for (std::size_t i = 0; i != text.size();) {
            const char c = text[i];
            if (std::isspace(static_cast<unsigned char>(c)) != 0) {
                ++i;
                continue;
            }
            std::size_t end = i + 1;
            if (c == '"') {
                end = text.find('"', i + 1);
                if (end == std::string::npos)
                    fail("text without end");
                ++end;
            } else if (c == '$' || c == '#') {
                // White space may stand within a literal.
                while (end != text.size() && (std::isxdigit(static_cast<unsigned char>(text[end])) != 0 ||
                                              std::isspace(static_cast<unsigned char>(text[end])) != 0))
                    ++end;
            } else if (std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_') {
                while (end != text.size() &&
                       (std::isalnum(static_cast<unsigned char>(text[end])) != 0 || text[end] == '_'))
                    ++end;
            } else if (text.compare(i, 2, "..") == 0) {
                end = i + 2;
            }
            std::string token = text.substr(i, end - i);
            if (c == '$' || c == '#')
                token.erase(
                    std::remove_if(token.begin(), token.end(),
                                   [](char d) { return std::isspace(static_cast<unsigned char>(d)) != 0; }),
                    token.end());
            m_tokens.push_back(token);
            i = end;
        }
    }

    bool done() const { return m_at == m_tokens.size(); }
    const std::string& peek() const
    {
        static const std::string none;
        return done() ? none : m_tokens[m_at];
    }
    std::string take()
    {
        if (done())
            fail("statement too short");
        return m_tokens[m_at++];
    }
    void expect(const std::string& token)
    {
        if (const std::string got = take(); got != token)
            fail("\"" + got + "\" instead of \"" + token + "\"");
    }
    bool accept(const std::string& token)
    {
        const bool there = peek() == token;
        m_at += there ? 1 : 0;
        return there;
    }
    void end() const
    {
        if (!done())
            fail("\"" + peek() + "\" is too much");
    }

private:
    std::vector<std::string> m_tokens;
    std::size_t m_at = 0;
};

std::string unquoted(const std::string& token)
{
    if (token.size() < 2 || token.front() != '"')
        fail("text expected");
    return token.substr(1, token.size() - 2);
}

/// A literal; the last digit holds element 0.
BITS literal_bits(const std::string& token)
{
    const unsigned width = token[0] == '$' ? 4 : 1;
    BITS bits;
    bits.reserve(width * token.size());
    for (std::size_t i = token.size() - 1; i != 0; --i) {
        const unsigned digit = static_cast<unsigned>(std::stoul(std::string(1, token[i]), nullptr, 16));
        if (digit >> width != 0)
            fail("digit of a literal");
        for (unsigned bit = 0; bit != width; ++bit)
            bits.push_back((digit >> bit & 1) != 0);
    }
    return bits;
}
} // namespace

/// One procedure as it runs.
class STAPL_RUN
{
public:
    STAPL_RUN(STAPL_PROGRAM& program, JTAG_DEVICE& device) : m_program(program), m_port(device) {}

    int procedure(const std::string& name)
    {
        const auto found = m_program.m_procedures.find(name);
        if (found == m_program.m_procedures.end())
            fail("no procedure " + name);
        m_integers.clear();
        m_arrays.clear();
        for (const std::string& used : found->second.uses) {
            const auto data = m_program.m_data.find(used);
            if (data == m_program.m_data.end())
                fail("no data " + used);
            for (const std::string& statement : data->second.statements)
                declare(TOKENS(statement));
        }
        const std::vector<std::string>& statements = found->second.statements;
        for (std::size_t at = 0; at != statements.size();) {
            m_next = at + 1;
            const int code = execute(TOKENS(statements[at]), at);
            if (code >= 0)
                return code;
            at = m_next;
        }
        return 0;
    }

private:
    void declare(TOKENS tokens)
    {
        const std::string kind = tokens.take();
        const std::string name = tokens.take();
        if (kind == "INTEGER") {
            m_integers[name] = tokens.accept("=") ? integer(tokens) : 0;
        } else if (kind == "BOOLEAN") {
            std::size_t size = 1;
            if (tokens.accept("[")) {
                size = static_cast<std::size_t>(integer(tokens));
                tokens.expect("]");
            }
            BITS bits(size);
            if (tokens.accept("=")) {
                bits = literal_bits(tokens.take());
                if (bits.size() < size || std::find(bits.begin() + static_cast<std::ptrdiff_t>(size),
                                                    bits.end(), true) != bits.end())
                    fail("literal of another size than " + name);
                bits.resize(size);
            }
            m_arrays[name] = bits;
        } else {
            fail("no declaration: " + kind);
        }
        tokens.end();
    }

    long integer(TOKENS& tokens)
    {
        long value = product(tokens);
        while (tokens.peek() == "+" || tokens.peek() == "-")
            value = tokens.take() == "+" ? value + product(tokens) : value - product(tokens);
        if (value > 2147483647 || value < -2147483648)
            fail("integer of more than 32 bits");
        return value;
    }
    long product(TOKENS& tokens)
    {
        long value = factor(tokens);
        while (tokens.accept("*"))
            value *= factor(tokens);
        return value;
    }
    long factor(TOKENS& tokens)
    {
        if (tokens.accept("(")) {
            const long value = integer(tokens);
            tokens.expect(")");
            return value;
        }
        const std::string token = tokens.take();
        if (std::isdigit(static_cast<unsigned char>(token[0])) != 0)
            return std::stol(token);
        if (!m_integers.contains(token))
            fail("no integer " + token);
        return m_integers[token];
    }

    /// An array as an expression, of which the first `length` elements are used.
    BITS array(TOKENS& tokens, std::size_t length)
    {
        const std::string token = tokens.take();
        BITS bits;
        if (token[0] == '$' || token[0] == '#') {
            bits = literal_bits(token);
        } else {
            const auto found = m_arrays.find(token);
            if (found == m_arrays.end())
                fail("no array " + token);
            std::size_t high = found->second.size() - 1;
            std::size_t low = 0;
            if (tokens.accept("[")) {
                high = static_cast<std::size_t>(integer(tokens));
                tokens.expect("..");
                low = static_cast<std::size_t>(integer(tokens));
                tokens.expect("]");
            }
            if (low > high || high >= found->second.size())
                fail("slice of " + token);
            bits.assign(found->second.begin() + static_cast<std::ptrdiff_t>(low),
                        found->second.begin() + static_cast<std::ptrdiff_t>(high) + 1);
        }
        if (bits.size() < length)
            fail("array shorter than its scan");
        bits.resize(length);
        return bits;
    }

    /// An exit code, or -1 to go on.
    int execute(TOKENS tokens, std::size_t at)
    {
        const std::string command = tokens.peek();
        if (command == "BOOLEAN" || command == "INTEGER") {
            declare(tokens);
            return -1;
        }
        tokens.take();
        if (command == "IRSCAN" || command == "DRSCAN")
            scan(tokens, command == "IRSCAN");
        else if (command == "IRSTOP" || command == "DRSTOP")
            tokens.expect("IDLE");
        else if (command == "STATE")
            state(tokens.take());
        else if (command == "WAIT")
            wait(tokens);
        else if (command == "FOR")
            loop(tokens, at);
        else if (command == "NEXT")
            next(tokens.take());
        else if (command == "IF")
            return condition(tokens);
        else if (command == "EXIT")
            return static_cast<int>(integer(tokens));
        else
            fail("unknown statement " + command);
        tokens.end();
        return -1;
    }

    void state(const std::string& name)
    {
        if (name == "RESET")
            m_port.reset();
        else if (name != "IDLE")
            fail("STATE " + name);
    }

    void wait(TOKENS& tokens)
    {
        tokens.expect("IDLE");
        tokens.expect(",");
        const long cycles = integer(tokens);
        tokens.expect("CYCLES");
        tokens.expect(",");
        const long microseconds = integer(tokens);
        tokens.expect("USEC");
        m_port.idle(static_cast<unsigned>(cycles), static_cast<double>(microseconds) * 1e-6);
    }

    void scan(TOKENS& tokens, bool instruction)
    {
        const std::size_t length = static_cast<std::size_t>(integer(tokens));
        tokens.expect(",");
        const BITS in = array(tokens, length);
        const BITS out = instruction ? m_port.shift_instruction(in) : m_port.shift_data(in);
        if (!tokens.accept(","))
            return;
        tokens.expect("COMPARE");
        const BITS wanted = array(tokens, length);
        tokens.expect(",");
        const BITS mask = array(tokens, length);
        tokens.expect(",");
        const std::string result = tokens.take();
        if (!m_arrays.contains(result))
            fail("no variable " + result);
        bool same = true;
        for (std::size_t i = 0; i != length; ++i)
            same = same && (!mask[i] || out[i] == wanted[i]);
        m_arrays[result] = BITS{same};
    }

    void loop(TOKENS& tokens, std::size_t at)
    {
        const std::string name = tokens.take();
        if (!m_integers.contains(name))
            fail("no integer " + name);
        tokens.expect("=");
        m_integers[name] = integer(tokens);
        tokens.expect("TO");
        m_loop = {name, integer(tokens), at + 1};
    }

    void next(const std::string& name)
    {
        if (name != m_loop.name)
            fail("NEXT without FOR");
        if (++m_integers[name] <= m_loop.last)
            m_next = m_loop.begin;
    }

    int condition(TOKENS& tokens)
    {
        tokens.expect("(");
        const bool negative = tokens.accept("!");
        const std::string name = tokens.take();
        tokens.expect(")");
        tokens.expect("THEN");
        tokens.expect("EXIT");
        const int code = static_cast<int>(integer(tokens));
        tokens.end();
        if (!m_arrays.contains(name) || m_arrays[name].size() != 1)
            fail("no variable " + name);
        return m_arrays[name][0] != negative ? code : -1;
    }

    struct LOOP {
        std::string name;
        long last = 0;
        std::size_t begin = 0;
    };
    STAPL_PROGRAM& m_program;
    JTAG_PORT m_port;
    std::map<std::string, long> m_integers;
    std::map<std::string, BITS> m_arrays;
    LOOP m_loop;
    std::size_t m_next = 0;
};

STAPL_PROGRAM STAPL_PROGRAM::parse(const std::string& text)
{
    STAPL_PROGRAM program;
    try {
        std::string statement;
        bool in_quotes = false;
        bool in_comment = false;
        bool ended = false;
        BLOCK* block = nullptr;
        std::string terminator;
        std::size_t begin = 0;
        for (std::size_t at = 0; at != text.size(); ++at) {
            const char c = text[at];
            in_comment = in_comment ? c != '\n' : c == '\'' && !in_quotes;
            if (in_comment)
                continue;
            if (c != ';' || in_quotes) {
                if (statement.empty()) {
                    if (std::isspace(static_cast<unsigned char>(c)) != 0)
                        continue;
                    begin = at;
                }
                in_quotes = in_quotes != (c == '"');
                statement += c;
                continue;
            }
            if (ended)
                fail("statement behind the CRC");
            const std::string whole = statement;
            statement.clear();
            if (block != nullptr) {
                if (whole == terminator)
                    block = nullptr;
                else
                    block->statements.push_back(whole);
                continue;
            }
            TOKENS tokens(whole);
            const std::string command = tokens.take();
            if (command == "NOTE") {
                const std::string key = unquoted(tokens.take());
                program.notes[key] = unquoted(tokens.take());
                tokens.end();
            } else if (command == "ACTION") {
                std::vector<std::string>& steps = program.actions[tokens.take()];
                if (tokens.peek().starts_with("\""))
                    tokens.take();
                tokens.expect("=");
                do
                    steps.push_back(tokens.take());
                while (tokens.accept(","));
                tokens.end();
            } else if (command == "DATA") {
                block = &program.m_data[tokens.take()];
                terminator = "ENDDATA";
                tokens.end();
            } else if (command == "PROCEDURE") {
                block = &program.m_procedures[tokens.take()];
                terminator = "ENDPROC";
                if (tokens.accept("USES"))
                    do
                        block->uses.push_back(tokens.take());
                    while (tokens.accept(","));
                tokens.end();
            } else if (command == "CRC") {
                if (std::stoul(tokens.take(), nullptr, 16) != plain_stapl_crc(text.substr(0, begin)))
                    fail("CRC");
                tokens.end();
                ended = true;
            } else {
                fail("unknown statement " + command);
            }
        }
        if (!ended || !statement.empty())
            fail("no CRC statement at the end");
    } catch (const std::exception& error) {
        program.fault = error.what();
    }
    return program;
}

int STAPL_PROGRAM::run(const std::string& action, JTAG_DEVICE& device)
{
    try {
        for (const std::string& procedure : actions.at(action)) {
            const int code = STAPL_RUN(*this, device).procedure(procedure);
            if (code != 0)
                return code;
        }
        return 0;
    } catch (const std::exception& error) {
        fault = error.what();
        return -1;
    }
}
