#include "format_test_support.h"
#include "svf_format.h"
#include "svf_player.h"

#include <gtest/gtest.h>

namespace
{
const SVF_FORMAT SVF;
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

JTAG_DEVICE device(std::size_t size)
{
    JTAG_DEVICE result(IDCODE, 10);
    result.expected_size = size;
    return result;
}

SVF_RUN play(const STREAM& stream, JTAG_DEVICE& target)
{
    const SVF_RUN run = play_svf(text_of(write_format(SVF, stream.request)), target);
    EXPECT_EQ(target.complaints, std::vector<std::string>());
    return run;
}

/// The file with another last line, so that what was changed above is not found by its checksum alone.
BYTES sealed(std::string text)
{
    text.resize(text.rfind("! CRC-32"));
    text += "! CRC-32 of all lines above: ";
    const BYTES bytes = bytes_of(text);
    char digits[16];
    std::snprintf(digits, sizeof digits, "%08X\n", crc32(bytes));
    return bytes_of(text + digits);
}

std::string refusal(const BYTES& file)
{
    std::string message;
    decode_format(SVF, file, &message);
    return message;
}
} // namespace

TEST(svf_format, a_device_that_plays_the_file_receives_the_stream)
{
    for (const std::size_t size : {1u, 63u, 64u, 65u, 1023u, 1024u, 1025u, 5000u, 70000u, 131072u + 77u}) {
        const STREAM stream(size);
        JTAG_DEVICE target = device(size);
        const SVF_RUN run = play(stream, target);
        EXPECT_EQ(run.fault, "") << size;
        EXPECT_EQ(target.stream, stream.bytes);
        EXPECT_TRUE(target.in_operation);
        EXPECT_EQ(target.erasures, 1u);
        EXPECT_LE(target.longest_scan, 8192u);
        EXPECT_LE(run.longest_line, 256u);
        const BYTES file = write_format(SVF, stream.request);
        EXPECT_EQ(verify_format(SVF, stream.request, file), "");
        EXPECT_EQ(decode_format(SVF, file), stream.bytes);
    }
}

TEST(svf_format, a_device_of_another_kind_stops_the_player)
{
    const STREAM stream(100);
    JTAG_DEVICE target(IDCODE ^ 0x10000000, 10);
    EXPECT_EQ(play(stream, target).fault, "TDO differs in statement 11");
    EXPECT_TRUE(target.stream.empty());
}

TEST(svf_format, a_device_that_refuses_the_stream_stops_the_player)
{
    const STREAM stream(3000);
    JTAG_DEVICE target = device(3000);
    target.refuses_streams = true;
    EXPECT_NE(play(stream, target).fault, "");
    EXPECT_FALSE(target.in_operation);
}

TEST(svf_format, a_configured_device_is_erased_before_it_is_programmed)
{
    const STREAM stream(2500);
    JTAG_DEVICE target = device(2500);
    target.stream = make_bytes(40, 9);
    EXPECT_EQ(play(stream, target).fault, "");
    EXPECT_EQ(target.stream, stream.bytes);
}

TEST(svf_format, blank_check_and_program_refuses_a_device_that_is_not_blank)
{
    STREAM stream(2500);
    stream.request.operation = JTAG_OPERATION::BLANK_CHECK_AND_PROGRAM;
    JTAG_DEVICE used = device(2500);
    used.stream = BYTES{1};
    EXPECT_NE(play(stream, used).fault, "");
    EXPECT_EQ(used.stream, BYTES{1});
    JTAG_DEVICE blank = device(2500);
    EXPECT_EQ(play(stream, blank).fault, "");
    EXPECT_EQ(blank.stream, stream.bytes);
    EXPECT_EQ(blank.erasures, 0u);
}

TEST(svf_format, verification_finds_a_single_different_bit)
{
    for (const std::size_t size : {1u, 4u, 1024u, 2048u, 4097u}) {
        STREAM stream(size);
        stream.request.operation = JTAG_OPERATION::VERIFY;
        JTAG_DEVICE target = device(size);
        target.stream = stream.bytes;
        EXPECT_EQ(play(stream, target).fault, "") << size;
        EXPECT_EQ(target.stream, stream.bytes);
        for (const std::size_t at : {std::size_t{0}, size / 2, size - 1}) {
            target.stream[at] ^= 0x80;
            EXPECT_NE(play(stream, target).fault, "") << size << " " << at;
            target.stream[at] ^= 0x80;
        }
        const BYTES file = write_format(SVF, stream.request);
        EXPECT_EQ(decode_format(SVF, file), stream.bytes);
        EXPECT_EQ(fact(inspect_format(SVF, file), "operation"), "Verify");
    }
}

TEST(svf_format, frequency_and_voltage_stand_in_the_file_when_they_are_chosen)
{
    STREAM stream(10);
    EXPECT_EQ(text_of(write_format(SVF, stream.request)).find("FREQUENCY"), std::string::npos);
    stream.request.frequency = 12'500'000;
    stream.request.voltage = "1.8";
    const BYTES file = write_format(SVF, stream.request);
    JTAG_DEVICE target = device(10);
    EXPECT_EQ(play_svf(text_of(file), target).frequency, 12.5e6);
    EXPECT_NE(text_of(file).find("! Supply voltage: 1.8 V\n"), std::string::npos);
    const FORMAT_FACTS facts = inspect_format(SVF, file);
    EXPECT_EQ(fact(facts, "frequency"), "12500000.0 Hz");
    EXPECT_EQ(fact(facts, "IDCODE"), "0x10A15BC7");
    EXPECT_EQ(fact(facts, "operation"), "Program");
    EXPECT_EQ(fact(facts, "data"), "10 bytes");
    EXPECT_EQ(facts.ranges, (std::vector<ADDRESS_RANGE>{{0, 10}}));
}

TEST(svf_format, every_flipped_bit_is_found_without_the_source)
{
    const STREAM stream(90);
    BYTES file = write_format(SVF, stream.request);
    for (std::size_t i = 0; i != file.size(); ++i)
        for (unsigned bit = 0; bit != 8; ++bit) {
            file[i] ^= static_cast<std::uint8_t>(1u << bit);
            const bool only_case = i + 9 >= file.size() && bit == 5 && file[i] >= 'a' && file[i] <= 'f';
            EXPECT_EQ(refusal(file).empty(), only_case) << i << " " << bit;
            file[i] ^= static_cast<std::uint8_t>(1u << bit);
        }
}

TEST(svf_format, other_spellings_of_the_same_vectors_are_read)
{
    const STREAM stream(70);
    std::string text = text_of(write_format(SVF, stream.request));
    for (std::size_t at = 0; (at = text.find("SDR ", at)) != std::string::npos; at += 4)
        text.replace(at, 4, "sdr \n ! a comment; with ( signs\n\t");
    EXPECT_EQ(decode_format(SVF, sealed(text)), stream.bytes);
}

TEST(svf_format, wrong_statements_are_refused_with_their_line)
{
    const auto said = [](const std::string& text) { return refusal(sealed(text + "! CRC-32")); };
    EXPECT_EQ(
        refusal(bytes_of("SIR 8 TDI (A4);\n")),
        "The file does not end with the line of its checksum; it is not complete, or no SVF file of this "
        "tool.");
    EXPECT_EQ(said("STATE RESET;\n"), "The file holds no vectors that configure a device.");
    EXPECT_EQ(said("\nPIO (HL);\n"),
              "The statement in line 2 begins with \"PIO\", which this tool does not read.");
    EXPECT_EQ(said("SIR 8 TDI (1A4);\n"),
              "The statement in line 1 has a value for TDI that is no hexadecimal number of 8 bits.");
    EXPECT_EQ(said("SIR 8 TDI (G);\n"),
              "The statement in line 1 has a value for TDI that is no hexadecimal number of 8 bits.");
    EXPECT_EQ(said("SDR 999999999999 TDI (0);\n"),
              "The statement in line 1 has no length that this tool reads.");
    EXPECT_EQ(said("SIR 8;\n"), "The statement in line 1 loads no instruction.");
    EXPECT_EQ(said("SIR 8 TDI;\n"),
              "The statement in line 1 has no list of TDI, TDO, MASK and SMASK, each with a value in "
              "parentheses.");
    EXPECT_EQ(said("SIR 8 TDI (A4);\nSDR 7 TDI (1);\n"), "The statement in line 2 scans a part of a byte.");
    EXPECT_EQ(said("SIR 8 TDI (A4);\nSDR 8;\n"),
              "The statement in line 2 scans the stream without its bytes.");
    EXPECT_EQ(said("HDR 4 TDI (0);\n"), "The statement in line 1 is for a chain of several devices.");
    EXPECT_EQ(said("SIR 8 TDI ((A4));\n"), "The statement in line 1 has a parenthesis within parentheses.");
    EXPECT_EQ(said("SIR 8 TDI A4);\n"),
              "The statement in line 1 has a closing parenthesis without an opening one.");
    EXPECT_EQ(said("SIR 8 TDI (A4;\n"), "The statement in line 1 ends within parentheses.");
    EXPECT_EQ(said("SIR 8\n"), "The statement in line 1 has no end; the file is not complete.");
    EXPECT_EQ(said("SIR 8 TDI (" + std::string(300000, '0') + ");\n"),
              "The statement in line 1 is longer than any that this tool writes.");
}

TEST(svf_format, a_device_without_jtag_is_refused)
{
    STREAM stream(10);
    stream.request.target = {"NO1", 0, 0};
    MEMORY_SINK sink;
    std::string message;
    EXPECT_FALSE(SVF.write(stream.request, sink, message));
    EXPECT_EQ(message,
              "The device \"NO1\" cannot be reached over JTAG: its instruction register has 0 bits and "
              "the tool needs 8 to 32, and an IDCODE; choose another device.");
}
