#include "child_process.h"
#include "format_test_support.h"
#include "hex_format.h"
#include "intel_hex_decoder.h"
#include "temporary_directory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

namespace
{
const HEX_FORMAT HEX;

struct HEX_CASE {
    HEX_CASE(BYTES content, std::uint32_t start = 0, bool down = false)
        : bytes(std::move(content)), source(bytes)
    {
        request.image = &source;
        request.start_address = start;
        request.count_down = down;
    }
    BYTES bytes;
    MEMORY_SOURCE source;
    FORMAT_REQUEST request;
};

/// Writes, reads back with the independent decoder, and verifies.
void expect_round_trip(const BYTES& bytes, std::uint32_t start, bool down)
{
    SCOPED_TRACE(std::to_string(bytes.size()) + " bytes at " + std::to_string(start) +
                 (down ? " down" : " up"));
    const HEX_CASE hex(bytes, start, down);
    const BYTES file = write_format(HEX, hex.request);
    const DECODED_INTEL_HEX decoded = decode_intel_hex(file);
    EXPECT_EQ(decoded.fault, "");
    ASSERT_EQ(decoded.bytes.size(), bytes.size());
    bool same = true;
    for (std::size_t i = 0; i != bytes.size(); ++i) {
        const auto found = decoded.bytes.find(down ? start - i : start + i);
        same = same && found != decoded.bytes.end() && found->second == bytes[i];
    }
    EXPECT_TRUE(same);
    EXPECT_TRUE(std::is_sorted(decoded.addresses.begin(), decoded.addresses.end()));
    EXPECT_EQ(verify_format(HEX, hex.request, file), "");
    BYTES wanted = bytes;
    if (down)
        std::reverse(wanted.begin(), wanted.end());
    EXPECT_TRUE(decode_format(HEX, file) == wanted);
}

const std::size_t EDGE_SIZES[] = {0, 1, 15, 16, 17, 255, 4096, 65535, 65536, 65537, 131072 + 5};
} // namespace

TEST(hex_format, the_file_is_spelled_to_the_letter)
{
    EXPECT_EQ(text_of(write_format(HEX, HEX_CASE(BYTES{}).request)), ":00000001FF\n");
    EXPECT_EQ(text_of(write_format(HEX, HEX_CASE(BYTES{0x00, 0x9A, 0xFF}).request)), ":020000040000FA\n"
                                                                                     ":03000000009AFF64\n"
                                                                                     ":00000001FF\n");
    BYTES twenty(20);
    for (std::size_t i = 0; i != twenty.size(); ++i)
        twenty[i] = static_cast<std::uint8_t>(i);
    EXPECT_EQ(text_of(write_format(HEX, HEX_CASE(twenty, 0xABCDFFF8).request)),
              ":02000004ABCD82\n"
              ":08FFF8000001020304050607E5\n"
              ":02000004ABCE81\n"
              ":0C00000008090A0B0C0D0E0F1011121352\n"
              ":00000001FF\n");
}

TEST(hex_format, counting_down_puts_the_first_byte_at_the_start_address_and_the_file_in_ascending_order)
{
    EXPECT_EQ(text_of(write_format(HEX, HEX_CASE(BYTES{0x11, 0x22, 0x33, 0x44}, 0x10001, true).request)),
              ":020000040000FA\n"
              ":02FFFE0044338A\n"
              ":020000040001F9\n"
              ":020000002211CB\n"
              ":00000001FF\n");
}

TEST(hex_format, edge_sizes_are_read_back_at_even_and_odd_addresses_in_both_directions)
{
    for (const std::size_t size : EDGE_SIZES) {
        const BYTES bytes = make_bytes(size, static_cast<std::uint32_t>(size));
        for (const std::uint32_t start : {0u, 1u, 7u, 0xFFF1u, 0xFFFFu, 0x12345679u})
            expect_round_trip(bytes, start, false);
        for (const std::uint32_t start : {0x00020004u, 0x0002FFFFu, 0x12345679u, 0xFFFFFFFFu})
            expect_round_trip(bytes, start, true);
    }
}

TEST(hex_format, random_sizes_and_addresses_are_read_back)
{
    DICE random(20240229);
    for (int round = 0; round != 25; ++round) {
        const std::size_t size = random() % 120000;
        const std::uint32_t start = random();
        const bool down = random() % 2 != 0;
        if (size != 0 && (down ? start < size - 1 : 0xFFFFFFFF - start < size - 1))
            continue;
        expect_round_trip(make_bytes(size, random()), start, down);
    }
}

TEST(hex_format, records_have_sixteen_bytes_and_no_record_crosses_64_kib)
{
    const HEX_CASE hex(make_bytes(65536 * 2 + 40), 0x0000FFE3);
    const DECODED_INTEL_HEX decoded = decode_intel_hex(write_format(HEX, hex.request));
    ASSERT_EQ(decoded.fault, "");
    EXPECT_EQ(decoded.lengths.front(), 13u); // up to the next multiple of 16
    EXPECT_TRUE(std::all_of(decoded.lengths.begin() + 1, decoded.lengths.end() - 1,
                            [](std::size_t length) { return length == 16; }));
    EXPECT_EQ(std::count(decoded.types.begin(), decoded.types.end(), 4u), 4);
}

TEST(hex_format, the_stream_may_end_at_the_last_address)
{
    expect_round_trip(make_bytes(16), 0xFFFFFFF0, false);
    expect_round_trip(make_bytes(65537), 0xFFFEFFFF, false);
    expect_round_trip(make_bytes(1), 0xFFFFFFFF, false);
    expect_round_trip(make_bytes(1), 0, true);
    expect_round_trip(make_bytes(65537), 65536, true);
}

TEST(hex_format, a_stream_that_leaves_the_32_bit_addresses_is_refused)
{
    MEMORY_SINK sink;
    std::string message;
    EXPECT_FALSE(HEX.write(HEX_CASE(make_bytes(17), 0xFFFFFFF0).request, sink, message));
    EXPECT_EQ(message,
              "The 17 bytes of the stream, counted up from start address 0xFFFFFFF0, would leave the "
              "32 bit addresses; choose a start address of at most 0xFFFFFFEF.");
    EXPECT_FALSE(HEX.write(HEX_CASE(make_bytes(17), 15, true).request, sink, message));
    EXPECT_EQ(message,
              "The 17 bytes of the stream, counted down from start address 0x0000000F, would fall below "
              "address 0; choose a start address of at least 0x00000010.");
    EXPECT_TRUE(sink.bytes().empty());
    const PATTERN_SOURCE huge((std::uint64_t(1) << 32) + 1);
    FORMAT_REQUEST request;
    request.image = &huge;
    EXPECT_FALSE(HEX.write(request, sink, message));
    EXPECT_EQ(message,
              "An Intel HEX file reaches 32 bit addresses and cannot hold the 4294967297 bytes of the "
              "stream.");
    EXPECT_TRUE(sink.bytes().empty());
}

TEST(hex_format, objcopy_reads_the_same_bytes)
{
    const TEMPORARY_DIRECTORY directory;
    for (const std::size_t size :
         {std::size_t(1), std::size_t(17), std::size_t(65537), std::size_t(300001)}) {
        const HEX_CASE hex(make_bytes(size, 7), 0x0801FFF3);
        write_file(directory / "a.hex", write_format(HEX, hex.request));
        const CHILD_RESULT result =
            run_program({"objcopy", "-I", "ihex", "-O", "binary", directory / "a.hex", directory / "a.bin"});
        ASSERT_EQ(result.exit_code, 0) << result.err;
        EXPECT_TRUE(read_file(directory / "a.bin") == hex.bytes);
    }
}

TEST(hex_format, srec_cat_reads_the_same_bytes_in_both_directions)
{
    const TEMPORARY_DIRECTORY directory;
    for (const bool down : {false, true}) {
        const HEX_CASE hex(make_bytes(70001, 9), 0x00123457, down);
        write_file(directory / "a.hex", write_format(HEX, hex.request));
        const std::uint32_t first = down ? 0x00123457 - 70000 : 0x00123457;
        const CHILD_RESULT result =
            run_program({"srec_cat", directory / "a.hex", "-intel", "-offset", "-" + std::to_string(first),
                         "-o", directory / "a.bin", "-binary"});
        ASSERT_EQ(result.exit_code, 0) << result.err;
        BYTES wanted = hex.bytes;
        if (down)
            std::reverse(wanted.begin(), wanted.end());
        EXPECT_TRUE(read_file(directory / "a.bin") == wanted);
    }
}

TEST(hex_format, verify_tells_what_is_wrong_and_where)
{
    const HEX_CASE hex(make_bytes(40, 3));
    const std::string good = text_of(write_format(HEX, hex.request));
    const auto said = [&](const std::string& file) {
        return verify_format(HEX, hex.request, bytes_of(file));
    };
    ASSERT_EQ(said(good), "");

    BYTES other = hex.bytes;
    other[20] ^= 0x10;
    const BYTES other_file = write_format(HEX, HEX_CASE(other).request);
    EXPECT_THAT(said(text_of(other_file)),
                testing::MatchesRegex("The file holds 0x.. for the image byte at 0x00000014, "
                                      "which is 0x..; it was not written correctly, "
                                      "generate it again\\."));
    EXPECT_EQ(said(good.substr(0, good.size() - 12)),
              "The file ends without its end record; it was not written completely, generate it again.");
    EXPECT_EQ(said(good + "\n"), "There is something behind the end record in line 5.");
    EXPECT_EQ(
        said(":00000001FF\n"),
        "The file holds 0 bytes of the 40 bytes of the stream; it was not written completely, generate it "
        "again.");
    std::string lower = good;
    lower[lower.find_last_of('F')] = 'f';
    EXPECT_EQ(said(lower), "Line 5: the record is not spelled as it was written.");
    EXPECT_EQ(said(good.substr(16)), "Line 1: an address record must come before the data.");
    const BYTES elsewhere = write_format(HEX, HEX_CASE(hex.bytes, 16).request);
    EXPECT_EQ(said(text_of(elsewhere)),
              "Line 2: the record is for address 0x00000010 instead of 0x00000000.");
    const BYTES far = write_format(HEX, HEX_CASE(hex.bytes, 0x10000).request);
    EXPECT_EQ(said(text_of(far)), "Line 1: the address record does not fit the data before it.");
    BYTES longer = hex.bytes;
    longer.push_back(1);
    EXPECT_EQ(said(text_of(write_format(HEX, HEX_CASE(longer).request))),
              "Line 5: the file holds more than the 40 bytes of the stream.");
}

TEST(hex_format, inspection_tells_addresses_and_checksum)
{
    const HEX_CASE hex(bytes_of("123456789"), 0x20000);
    const FORMAT_FACTS facts = inspect_format(HEX, write_format(HEX, hex.request));
    EXPECT_EQ(fact(facts, "format"), "Intel HEX");
    EXPECT_EQ(fact(facts, "records"), "3");
    EXPECT_EQ(fact(facts, "data"), "9 bytes");
    EXPECT_EQ(fact(facts, "first address"), "0x00020000");
    EXPECT_EQ(fact(facts, "last address"), "0x00020008");
    EXPECT_EQ(fact(facts, "image CRC-32"), "0xCBF43926"); // the check value of this CRC
    EXPECT_EQ(fact(facts, "entry address"), "(none)");
    ASSERT_EQ(facts.ranges.size(), 1u);
    EXPECT_EQ(facts.ranges[0], (ADDRESS_RANGE{0x20000, 9}));
}
