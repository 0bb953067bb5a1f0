#include "format_test_support.h"
#include "rbf_format.h"
#include "rpd_format.h"

#include <gtest/gtest.h>

namespace
{
const RBF_FORMAT RBF;
const RPD_FORMAT RPD;

std::uint8_t reversed(std::uint8_t byte)
{
    std::uint8_t result = 0;
    for (int bit = 0; bit != 8; ++bit)
        result = static_cast<std::uint8_t>(result << 1 | (byte >> bit & 1));
    return result;
}

IMAGE_REGION region(const std::string& name, std::uint64_t start, std::uint64_t length, std::uint64_t end)
{
    IMAGE_REGION result;
    result.name = name;
    result.start = start;
    result.length = length;
    result.block_end = end;
    return result;
}

struct FLASH {
    explicit FLASH(BYTES content) : bytes(std::move(content)), source(bytes)
    {
        request.image = &source;
        request.device = "W25Q128JV";
    }
    BYTES bytes;
    MEMORY_SOURCE source;
    FORMAT_REQUEST request;

    BYTES part(std::size_t begin, std::size_t end) const
    {
        return {bytes.begin() + static_cast<std::ptrdiff_t>(begin),
                bytes.begin() + static_cast<std::ptrdiff_t>(end)};
    }
};
} // namespace

TEST(rbf_format, the_file_is_the_stream)
{
    for (const std::size_t size : {0u, 1u, 65536u, 131071u, 131072u, 131073u, 400000u}) {
        const FLASH stream(make_bytes(size));
        const BYTES file = write_format(RBF, stream.request);
        EXPECT_TRUE(file == stream.bytes);
        EXPECT_EQ(verify_format(RBF, stream.request, file), "");
        EXPECT_TRUE(decode_format(RBF, file) == stream.bytes);
    }
}

TEST(rbf_format, verify_tells_the_byte_that_is_wrong)
{
    FLASH stream(make_bytes(300000));
    BYTES file = stream.bytes;
    file[200001] = static_cast<std::uint8_t>(stream.bytes[200001] ^ 1);
    const std::string said = verify_format(RBF, stream.request, file);
    EXPECT_NE(said.find("for the image byte at 0x00030D41, which is 0x"), std::string::npos) << said;
    file.resize(10);
    EXPECT_EQ(verify_format(RBF, stream.request, file),
              "The file has 10 bytes instead of 300000 bytes; it was not "
              "written completely, generate it again.");
}

TEST(rbf_format, inspection_tells_size_and_checksum)
{
    const FORMAT_FACTS facts = inspect_format(RBF, bytes_of("123456789"));
    EXPECT_EQ(fact(facts, "format"), "raw configuration stream");
    EXPECT_EQ(fact(facts, "data"), "9 bytes");
    EXPECT_EQ(fact(facts, "image CRC-32"), "0xCBF43926");
}

TEST(rpd_format, without_options_the_file_is_the_whole_device)
{
    const FLASH flash(make_bytes(300000));
    const BYTES file = write_format(RPD, flash.request);
    EXPECT_TRUE(file == flash.bytes);
    EXPECT_EQ(verify_format(RPD, flash.request, file), "");
    EXPECT_TRUE(decode_format(RPD, file) == flash.bytes);
}

TEST(rpd_format, bit_swap_reverses_every_byte)
{
    FLASH flash(make_bytes(200003));
    flash.request.bitswap = true;
    const BYTES file = write_format(RPD, flash.request);
    ASSERT_EQ(file.size(), flash.bytes.size());
    for (std::size_t i = 0; i != file.size(); ++i)
        ASSERT_EQ(file[i], reversed(flash.bytes[i])) << i;
    EXPECT_EQ(verify_format(RPD, flash.request, file), "");
    EXPECT_NE(verify_format(RPD, flash.request, flash.bytes), "");
}

TEST(rpd_format, relative_runs_from_the_first_used_byte_to_the_last)
{
    FLASH flash(make_bytes(100000));
    flash.request.use_relative = true;
    flash.request.start_address = 77; // unread
    flash.request.regions = {region("EMPTY", 0, 0, 9), region("A", 1000, 500, 1999),
                             region("B", 70000, 10, 70009), region("LAST", 90000, 0, 99999)};
    EXPECT_TRUE(write_format(RPD, flash.request) == flash.part(1000, 70010));
    EXPECT_EQ(verify_format(RPD, flash.request, flash.part(1000, 70010)), "");
    EXPECT_EQ(
        verify_format(RPD, flash.request, flash.part(1000, 70009)),
        "The file has 69009 bytes instead of 69010 bytes; it was not written completely, generate it again.");
    flash.request.regions.clear();
    EXPECT_TRUE(write_format(RPD, flash.request) == flash.bytes);
}

TEST(rpd_format, a_start_address_leaves_out_what_lies_below)
{
    FLASH flash(make_bytes(0x20000));
    flash.request.regions = {region("A", 0, 0x100, 0xFFF), region("B", 0x1000, 0x80, 0x1FFF)};
    for (const std::uint32_t start : {0x100u, 0x1000u, 0x1080u, 0x1FFFFu}) {
        flash.request.start_address = start;
        const BYTES file = write_format(RPD, flash.request);
        EXPECT_TRUE(file == flash.part(start, 0x20000));
        EXPECT_EQ(verify_format(RPD, flash.request, file), "");
    }
}

TEST(rpd_format, a_start_address_that_cuts_a_partition_or_leaves_the_device_is_refused)
{
    FLASH flash(make_bytes(0x20000));
    flash.request.regions = {region("A", 0, 0x100, 0xFFF), region("B", 0x1000, 0x80, 0x1FFF)};
    MEMORY_SINK sink;
    std::string message;
    flash.request.start_address = 0x107F;
    EXPECT_FALSE(RPD.write(flash.request, sink, message));
    EXPECT_EQ(message,
              "The start address 0x0000107F cuts partition B (0x00001000 to 0x0000107F); choose an address "
              "outside of it.");
    flash.request.start_address = 0x20000;
    EXPECT_FALSE(RPD.write(flash.request, sink, message));
    EXPECT_EQ(message,
              "The start address 0x00020000 lies behind the end of W25Q128JV, which has 131072 bytes; choose "
              "a lower one.");
    EXPECT_TRUE(sink.bytes().empty());
}

TEST(rpd_format, inspection_finds_the_used_range)
{
    BYTES bytes(500000, 0xFF);
    EXPECT_EQ(fact(inspect_format(RPD, bytes), "first used byte"), "(none)");
    bytes[130000] = 1;
    bytes[131072] = 2;
    bytes[400001] = 0;
    const FORMAT_FACTS facts = inspect_format(RPD, bytes);
    EXPECT_EQ(fact(facts, "format"), "raw flash image");
    EXPECT_EQ(fact(facts, "image size"), "500000 bytes");
    EXPECT_EQ(fact(facts, "first used byte"), "0x0001FBD0");
    EXPECT_EQ(fact(facts, "last used byte"), "0x00061A81");
    ASSERT_EQ(facts.ranges.size(), 1u);
    EXPECT_EQ(facts.ranges[0], (ADDRESS_RANGE{130000, 270002}));
}
