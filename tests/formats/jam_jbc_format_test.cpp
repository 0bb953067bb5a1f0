// The two formats that hold a whole program for JTAG: the same actions are played from both.

#include "format_test_support.h"
#include "jam_format.h"
#include "jbc_format.h"
#include "jbc_player.h"
#include "stapl_crc.h"
#include "stapl_player.h"

#include <gtest/gtest.h>

#include <functional>

namespace
{
const JAM_FORMAT JAM;
const JBC_FORMAT JBC;
constexpr std::uint32_t IDCODE = 0x10A15BC7;

struct STREAM {
    explicit STREAM(std::size_t size) : bytes(make_bytes(size)), source(bytes)
    {
        request.image = &source;
        request.device = "BS1L15";
        request.target = {"BS1L15", IDCODE, 10};
    }
    STREAM(const STREAM&) = delete;
    BYTES bytes;
    MEMORY_SOURCE source;
    FORMAT_REQUEST request;
};

/// Plays actions of a file.
using PLAYER = std::function<int(const std::string& action, JTAG_DEVICE& device)>;

PLAYER jam_player(const BYTES& file)
{
    const STAPL_PROGRAM program = STAPL_PROGRAM::parse(text_of(file));
    EXPECT_EQ(program.fault, "");
    EXPECT_EQ(program.actions.size(), 5u);
    return [program](const std::string& action, JTAG_DEVICE& device) {
        STAPL_PROGRAM mine = program;
        const int code = mine.run(action, device);
        EXPECT_EQ(mine.fault, "");
        return code;
    };
}

PLAYER jbc_player(const BYTES& file)
{
    const JBC_PROGRAM program = JBC_PROGRAM::parse(file);
    EXPECT_EQ(program.fault, "");
    EXPECT_EQ(program.device, "BS1L15");
    EXPECT_EQ(program.actions.size(), 5u);
    return [program](const std::string& action, JTAG_DEVICE& device) { return program.run(action, device); };
}

struct PROGRAM_FORMAT {
    const char* name;
    const FORMAT& format;
    PLAYER (*player)(const BYTES& file);

    friend void PrintTo(const PROGRAM_FORMAT& row, std::ostream* out) { *out << row.name; }
};

class jtag_program : public testing::TestWithParam<PROGRAM_FORMAT>
{
protected:
    PLAYER player(const STREAM& stream) const
    {
        return GetParam().player(write_format(GetParam().format, stream.request));
    }
    static JTAG_DEVICE device(std::size_t size)
    {
        JTAG_DEVICE result(IDCODE, 10);
        result.expected_size = size;
        return result;
    }
};

const PROGRAM_FORMAT FORMATS[] = {{"jam", JAM, jam_player}, {"jbc", JBC, jbc_player}};
INSTANTIATE_TEST_SUITE_P(formats, jtag_program, testing::ValuesIn(FORMATS),
                         [](const auto& row) { return row.param.name; });

std::string refusal(const FORMAT& format, const BYTES& file)
{
    std::string message;
    decode_format(format, file, &message);
    return message;
}

/// The text with a right CRC statement behind it.
BYTES with_crc(const std::string& text)
{
    char line[16];
    std::snprintf(line, sizeof line, "CRC %04X;\n", plain_stapl_crc(text));
    return bytes_of(text + line);
}
} // namespace

TEST_P(jtag_program, a_device_that_is_programmed_receives_the_stream)
{
    for (const std::size_t size : {1u, 64u, 65u, 1023u, 1024u, 1025u, 4096u, 70001u}) {
        const STREAM stream(size);
        JTAG_DEVICE target = device(size);
        target.stream = BYTES{1, 2, 3};
        EXPECT_EQ(player(stream)("PROGRAM", target), 0) << size;
        EXPECT_EQ(target.stream, stream.bytes);
        EXPECT_TRUE(target.in_operation);
        EXPECT_EQ(target.complaints, std::vector<std::string>());
        EXPECT_LE(target.longest_scan, 8192u);
        const BYTES file = write_format(GetParam().format, stream.request);
        EXPECT_EQ(verify_format(GetParam().format, stream.request, file), "");
        EXPECT_EQ(decode_format(GetParam().format, file), stream.bytes);
    }
}

TEST_P(jtag_program, each_failure_has_its_exit_code)
{
    const STREAM stream(3000);
    const PLAYER play = player(stream);
    JTAG_DEVICE other(IDCODE ^ 1u << 31, 10);
    EXPECT_EQ(play("PROGRAM", other), 6);
    EXPECT_TRUE(other.stream.empty());
    JTAG_DEVICE used = device(3000);
    used.stream = BYTES{1};
    EXPECT_EQ(play("BLANKCHECK", used), 9);
    EXPECT_EQ(play("BLANKCHECK_PROGRAM", used), 9);
    EXPECT_EQ(used.stream, BYTES{1});
    EXPECT_EQ(play("ERASE", used), 0);
    EXPECT_EQ(play("BLANKCHECK", used), 0);
    EXPECT_EQ(play("BLANKCHECK_PROGRAM", used), 0);
    EXPECT_EQ(used.stream, stream.bytes);
    JTAG_DEVICE refusing = device(3000);
    refusing.refuses_streams = true;
    EXPECT_EQ(play("PROGRAM", refusing), 10);
}

TEST_P(jtag_program, verification_finds_a_single_different_bit)
{
    for (const std::size_t size : {1u, 1024u, 2500u}) {
        const STREAM stream(size);
        const PLAYER play = player(stream);
        JTAG_DEVICE target = device(size);
        target.stream = stream.bytes;
        EXPECT_EQ(play("VERIFY", target), 0);
        for (const std::size_t at : {std::size_t{0}, size / 2, size - 1}) {
            target.stream[at] ^= 1;
            EXPECT_EQ(play("VERIFY", target), 11);
            target.stream[at] ^= 1;
        }
    }
}

TEST_P(jtag_program, every_flipped_bit_is_found_without_the_source)
{
    const STREAM stream(20);
    BYTES file = write_format(GetParam().format, stream.request);
    for (std::size_t i = 0; i != file.size(); ++i)
        for (unsigned bit = 0; bit != 8; ++bit) {
            file[i] ^= static_cast<std::uint8_t>(1u << bit);
            // A digit of the CRC in the other case says the same.
            const bool only_case = &GetParam().format == &JAM && i + 6 >= file.size() && bit == 5 &&
                                   file[i] >= 'a' && file[i] <= 'f';
            ASSERT_EQ(refusal(GetParam().format, file).empty(), only_case) << i << " " << bit;
            file[i] ^= static_cast<std::uint8_t>(1u << bit);
        }
}

TEST_P(jtag_program, inspection_tells_device_actions_and_data)
{
    const STREAM stream(1234);
    const FORMAT_FACTS facts =
        inspect_format(GetParam().format, write_format(GetParam().format, stream.request));
    EXPECT_EQ(fact(facts, "device"), "BS1L15");
    EXPECT_EQ(fact(facts, "IDCODE"), "0x10A15BC7");
    EXPECT_EQ(fact(facts, "actions"), "PROGRAM, VERIFY, BLANKCHECK_PROGRAM, BLANKCHECK, ERASE");
    EXPECT_EQ(fact(facts, "data"), "1234 bytes");
    EXPECT_EQ(facts.ranges, (std::vector<ADDRESS_RANGE>{{0, 1234}}));
}

TEST_P(jtag_program, a_device_without_jtag_is_refused)
{
    STREAM stream(10);
    stream.request.target = {"NO1", 0x1234, 33};
    MEMORY_SINK sink;
    std::string message;
    EXPECT_FALSE(GetParam().format.write(stream.request, sink, message));
    EXPECT_EQ(message,
              "The device \"NO1\" cannot be reached over JTAG: its instruction register has 33 bits and "
              "the tool needs 8 to 32, and an IDCODE; choose another device.");
}

TEST(stapl_crc, equals_the_one_that_goes_bit_by_bit)
{
    EXPECT_EQ(stapl_crc(bytes_of("123456789")), 0x906Eu); // the check value of CRC-16/X-25
    DICE random(7);
    for (int round = 0; round != 200; ++round) {
        BYTES bytes = make_bytes(random() % (round % 2 == 0 ? 100 : 2000), random());
        for (std::uint8_t& byte : bytes)
            byte = random() % (round % 4 == 3 ? 800 : 8) == 0 ? '\r' : byte;
        const std::size_t cut = bytes.empty() ? 0 : random() % bytes.size();
        EXPECT_EQ(stapl_crc(bytes), plain_stapl_crc(text_of(bytes)));
        EXPECT_EQ(stapl_crc(std::span(bytes).subspan(cut), stapl_crc(std::span(bytes).first(cut))),
                  stapl_crc(bytes));
    }
}

TEST(jam_format, other_spellings_of_the_same_program_are_read)
{
    const STREAM stream(70);
    std::string text = text_of(write_format(JAM, stream.request));
    text.resize(text.rfind("CRC "));
    for (std::size_t at = 0; (at = text.find('\n', at)) != std::string::npos; at += 3)
        text.replace(at, 1, "\r\n ");
    text.insert(0, "' a comment; with \" signs\n");
    EXPECT_EQ(decode_format(JAM, with_crc(text)), stream.bytes);
}

TEST(jam_format, wrong_files_are_refused)
{
    const auto said = [](const std::string& text) { return refusal(JAM, with_crc(text)); };
    EXPECT_EQ(
        refusal(JAM, bytes_of("NOTE \"A\" \"B\";\n")),
        "The file does not end with its CRC statement; it is not complete, or no STAPL file of this tool.");
    EXPECT_EQ(refusal(JAM, bytes_of("\nNOTE \"A\" \"B\";\nCRC 0000;\n")).substr(0, 18), "The file has the C");
    EXPECT_EQ(said("NOTE \"A\" \"B\";\n"), "The file holds no configuration stream.");
    EXPECT_EQ(said("\nNOTE \"A\";\n"), "The statement in line 2 is a note without key and value.");
    EXPECT_EQ(said("BOOLEAN STREAM[16] = $123;\n"),
              "The statement in line 1 declares a stream of another size than its digits have.");
    EXPECT_EQ(said("BOOLEAN STREAM[99999999999999999999] = $12;\n"),
              "The statement in line 1 declares a stream of another size than its digits have.");
    EXPECT_EQ(said("BOOLEAN STREAM[8] = $12;\nBOOLEAN STREAM[8] = $12;\n"),
              "The statement in line 2 declares a second stream.");
    EXPECT_EQ(said("BOOLEAN STREAM[8] = $1G;\n"),
              "The statement in line 1 has a character in its digits that is none.");
    EXPECT_EQ(said("NOTE " + std::string(9000, 'x') + ";\n"),
              "The statement in line 1 is longer than the language allows.");
}

TEST(jam_format, a_stream_beyond_the_integers_of_the_language_is_refused)
{
    const PATTERN_SOURCE large(0x10000000);
    FORMAT_REQUEST request;
    request.image = &large;
    request.target = {"BS1L15", IDCODE, 10};
    MEMORY_SINK sink;
    std::string message;
    EXPECT_FALSE(JAM.write(request, sink, message));
    EXPECT_EQ(message, "The configuration stream has 268435456 bytes, and a STAPL file holds 1 to 268435455; "
                       "choose another output type.");
}

TEST(jbc_format, only_files_with_its_signature_are_recognised)
{
    const STREAM stream(5);
    EXPECT_TRUE(JBC_FORMAT::recognise(MEMORY_SOURCE(write_format(JBC, stream.request))));
    EXPECT_FALSE(JBC_FORMAT::recognise(MEMORY_SOURCE(write_format(JAM, stream.request))));
}
