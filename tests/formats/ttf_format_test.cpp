#include "format_test_support.h"
#include "ttf_decoder.h"
#include "ttf_format.h"
#include "ttf_numbers.h"

#include <gtest/gtest.h>

namespace
{
const TTF_FORMAT TTF;

BYTES write_ttf(const BYTES& bytes)
{
    const MEMORY_SOURCE source(bytes);
    FORMAT_REQUEST request;
    request.image = &source;
    return write_format(TTF, request);
}

std::string verify_ttf(const BYTES& bytes, const std::string& file)
{
    const MEMORY_SOURCE source(bytes);
    FORMAT_REQUEST request;
    request.image = &source;
    return verify_format(TTF, request, bytes_of(file));
}
} // namespace

TEST(ttf_format, the_file_is_spelled_to_the_letter)
{
    EXPECT_EQ(text_of(write_ttf({})), "");
    EXPECT_EQ(text_of(write_ttf({7})), "7\n");
    EXPECT_EQ(text_of(write_ttf({0, 9, 10, 99, 100, 255})), "0,9,10,99,100,255\n");
    EXPECT_EQ(text_of(write_ttf(BYTES(16, 1))), "1,1,1,1,1,1,1,1,1,1,1,1,1,1,1,1\n");
    EXPECT_EQ(text_of(write_ttf(BYTES(17, 200))),
              "200,200,200,200,200,200,200,200,200,200,200,200,200,200,200,200,\n"
              "200\n");
}

TEST(ttf_format, edge_and_random_sizes_are_read_back)
{
    DICE random(5);
    std::vector<std::size_t> sizes = {0,  1,   2,     15,    16,    17,    31,     32,
                                      33, 255, 65535, 65536, 65537, 65552, 131072, 131073};
    for (int i = 0; i != 30; ++i)
        sizes.push_back(random() % 150000);
    for (const std::size_t size : sizes) {
        const BYTES bytes = make_bytes(size, static_cast<std::uint32_t>(size));
        const BYTES file = write_ttf(bytes);
        ASSERT_TRUE(decode_ttf(file) == bytes) << size;
        ASSERT_EQ(verify_ttf(bytes, text_of(file)), "") << size;
        ASSERT_TRUE(decode_format(TTF, file) == bytes) << size;
    }
}

TEST(ttf_format, every_byte_value_next_to_every_other_is_read_back)
{
    BYTES bytes;
    for (unsigned a = 0; a != 256; ++a)
        for (unsigned b = 0; b != 256; ++b) {
            bytes.push_back(static_cast<std::uint8_t>(a));
            bytes.push_back(static_cast<std::uint8_t>(b));
        }
    const BYTES file = write_ttf(bytes);
    EXPECT_TRUE(decode_ttf(file) == bytes);
    EXPECT_EQ(verify_ttf(bytes, text_of(file)), "");
}

TEST(ttf_format, verify_tells_the_number_that_is_wrong)
{
    BYTES bytes(40);
    for (std::size_t i = 0; i != bytes.size(); ++i)
        bytes[i] = static_cast<std::uint8_t>(i * 7);
    const std::string good = text_of(write_ttf(bytes));
    ASSERT_EQ(verify_ttf(bytes, good), "");
    const std::size_t second = good.find('\n') + 1;
    const auto changed = [&](std::size_t at, const std::string& with) {
        std::string file = good;
        file.replace(at, with.size(), with);
        return verify_ttf(bytes, file);
    };
    EXPECT_EQ(changed(second, "9"),
              "Line 2, number 1 is not \"112\" as in the stream; the file was not written "
              "correctly, generate it again.");
    EXPECT_EQ(changed(second + 3, ";"),
              "Line 2, number 1 is not \"112\" as in the stream; the file was not written "
              "correctly, generate it again.");
    EXPECT_EQ(changed(0, ","),
              "Line 1, number 1 is not \"0\" as in the stream; the file was not written correctly, "
              "generate it again.");
    EXPECT_EQ(changed(second - 1, " "),
              "Line 1 does not end behind its sixteenth number; generate the file again.");
    EXPECT_EQ(verify_ttf(bytes, good + "\n"),
              "There is something behind the last number of the stream; the file was "
              "not written correctly, generate it again.");
    EXPECT_EQ(
        verify_ttf(bytes, good.substr(0, good.size() - 1)),
        "Line 3, number 8 is not \"17\" as in the stream; the file was not written correctly, generate it "
        "again.");
    EXPECT_EQ(verify_ttf({7}, "007\n"),
              "Line 1, number 1 is not \"7\" as in the stream; the file was not written "
              "correctly, generate it again.");
}

TEST(ttf_format, vector_and_portable_reading_agree)
{
    DICE random(11);
    for (int round = 0; round != 20000; ++round) {
        const BYTES bytes = make_bytes(32, random());
        std::string text;
        for (std::size_t i = 0; i != bytes.size(); ++i)
            text += std::to_string(bytes[i]) + (i % 16 == 15 ? ",\n" : ",");
        BYTES line = bytes_of(text);
        const std::size_t length = line.size();
        line.resize(TTF_LINES_READABLE, '7');
        if (round % 2 != 0)
            line[random() % length] ^= static_cast<std::uint8_t>(1u << random() % 8);
        const std::uint8_t* fast = nullptr;
        const std::uint8_t* plain = nullptr;
        const bool said = ttf_lines_say(line.data(), bytes.data(), fast);
        ASSERT_EQ(said, ttf_lines_say_portable(line.data(), bytes.data(), plain));
        ASSERT_EQ(said, round % 2 == 0);
        ASSERT_EQ(fast, plain);
        ASSERT_EQ(fast, said ? line.data() + length : nullptr);
    }
}

TEST(ttf_format, decoding_reads_other_spellings)
{
    EXPECT_EQ(decode_format(TTF, bytes_of("001, 02\t,\r\n255 ,\r\n")), (BYTES{1, 2, 255}));
    EXPECT_EQ(decode_format(TTF, bytes_of("8")), (BYTES{8}));
    EXPECT_EQ(decode_format(TTF, bytes_of(" \n")), BYTES{});
}

TEST(ttf_format, decoding_refuses_what_is_no_list_of_bytes)
{
    const auto refusal = [](const std::string& text) {
        std::string message;
        decode_format(TTF, bytes_of(text), &message);
        return message;
    };
    EXPECT_EQ(refusal("1,\n256"), "Line 2: a number is above 255; the numbers of a TTF file are bytes.");
    EXPECT_EQ(refusal("0001"), "Line 1: a number is above 255; the numbers of a TTF file are bytes.");
    EXPECT_EQ(refusal("1 2"), "Line 1: a comma is missing between two numbers.");
    EXPECT_EQ(refusal("1\n2"), "Line 2: a comma is missing between two numbers.");
    EXPECT_EQ(refusal("1,,2"), "Line 1: a number is missing before a comma.");
    EXPECT_EQ(refusal(",2"), "Line 1: a number is missing before a comma.");
    EXPECT_EQ(refusal("1,-2"),
              "Line 1: the byte 0x2D is neither a digit, a comma nor white space; this is no TTF "
              "file.");
}

TEST(ttf_format, inspection_tells_size_and_checksum)
{
    const FORMAT_FACTS facts = inspect_format(TTF, write_ttf(bytes_of("123456789")));
    EXPECT_EQ(fact(facts, "format"), "tabular text");
    EXPECT_EQ(fact(facts, "data"), "9 bytes");
    EXPECT_EQ(fact(facts, "image CRC-32"), "0xCBF43926");
    ASSERT_EQ(facts.ranges.size(), 1u);
    EXPECT_EQ(facts.ranges[0], (ADDRESS_RANGE{0, 9}));
}
