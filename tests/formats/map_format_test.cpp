#include "format_test_support.h"
#include "map_decoder.h"
#include "map_format.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace
{
const MAP_FORMAT MAP;

struct LAYOUT {
    explicit LAYOUT(std::uint64_t size = 0x1000000) : source(size)
    {
        request.image = &source;
        request.device = "W25Q128JV";
    }
    LAYOUT(const LAYOUT&) = delete;
    PATTERN_SOURCE source;
    FORMAT_REQUEST request;
};

std::vector<IMAGE_REGION> three_regions()
{
    return {{"BOOT_INFO", 0, 0x40, 0xFFFF, false, 0, "", 0xDEADBEEF},
            {"P1", 0x10000, 0x12345, 0x2FFFF, true, 0, "top.sof", 0x00000001},
            {"application_two", 0x800000, 0x7FFFFF, 0xFFFFFF, true, 12, "a b.sof, second.sof", 0xCBF43926}};
}
} // namespace

TEST(map_format, the_table_is_spelled_to_the_letter)
{
    LAYOUT layout;
    layout.request.regions = three_regions();
    EXPECT_EQ(text_of(write_format(MAP, layout.request)),
              "Flash map, version 1\n"
              "Device: W25Q128JV\n"
              "Size: 0x01000000 (16777216 bytes)\n"
              "\n"
              "Partition        Start       End         Size        Page  Input file           Content     "
              "Checksum\n"
              "---------------  ----------  ----------  ----------  ----  -------------------  ----------  "
              "----------\n"
              "BOOT_INFO        0x00000000  0x0000FFFF  0x00010000  -     -                    0x00000040  "
              "0xDEADBEEF\n"
              "P1               0x00010000  0x0002FFFF  0x00020000  0     top.sof              0x00012345  "
              "0x00000001\n"
              "application_two  0x00800000  0x00FFFFFF  0x00800000  12    a b.sof, second.sof  0x007FFFFF  "
              "0xCBF43926\n");
}

TEST(map_format, a_map_without_partitions_keeps_its_titles)
{
    LAYOUT layout(16);
    const BYTES file = write_format(MAP, layout.request);
    EXPECT_EQ(text_of(file), "Flash map, version 1\n"
                             "Device: W25Q128JV\n"
                             "Size: 0x00000010 (16 bytes)\n"
                             "\n"
                             "Partition  Start  End  Size  Page  Input file  Content  Checksum\n"
                             "---------  -----  ---  ----  ----  ----------  -------  --------\n");
    EXPECT_EQ(verify_format(MAP, layout.request, file), "");
}

TEST(map_format, the_independent_reader_finds_every_value)
{
    LAYOUT layout;
    layout.request.regions = three_regions();
    const DECODED_MAP map = decode_map(write_format(MAP, layout.request));
    ASSERT_EQ(map.head.size(), 3u);
    ASSERT_EQ(map.rows.size(), 3u);
    for (std::size_t i = 0; i != map.rows.size(); ++i) {
        const IMAGE_REGION& region = layout.request.regions[i];
        EXPECT_EQ(map.rows[i].at("Partition"), region.name);
        EXPECT_EQ(std::stoull(map.rows[i].at("Start"), nullptr, 16), region.start);
        EXPECT_EQ(std::stoull(map.rows[i].at("End"), nullptr, 16), region.block_end);
        EXPECT_EQ(std::stoull(map.rows[i].at("Size"), nullptr, 16), region.block_end - region.start + 1);
        EXPECT_EQ(map.rows[i].at("Page"), region.has_page ? std::to_string(region.page) : "-");
        EXPECT_EQ(map.rows[i].at("Input file"), region.input.empty() ? "-" : region.input);
        EXPECT_EQ(std::stoull(map.rows[i].at("Content"), nullptr, 16), region.length);
        EXPECT_EQ(std::stoull(map.rows[i].at("Checksum"), nullptr, 16), region.crc);
    }
}

TEST(map_format, what_was_written_is_verified_and_inspected)
{
    LAYOUT layout;
    layout.request.regions = three_regions();
    const BYTES file = write_format(MAP, layout.request);
    EXPECT_EQ(verify_format(MAP, layout.request, file), "");
    const FORMAT_FACTS facts = inspect_format(MAP, file);
    EXPECT_EQ(fact(facts, "format"), "flash map");
    EXPECT_EQ(fact(facts, "device"), "W25Q128JV");
    EXPECT_EQ(fact(facts, "image size"), "16777216 bytes");
    EXPECT_EQ(facts.regions, layout.request.regions);
    EXPECT_EQ(facts.ranges,
              (std::vector<ADDRESS_RANGE>{{0, 0x40}, {0x10000, 0x12345}, {0x800000, 0x7FFFFF}}));
}

TEST(map_format, names_cannot_break_the_table)
{
    LAYOUT layout;
    for (const std::string& name :
         {std::string("-"), std::string("a\nb"), std::string(" edge "), std::string("two  blanks"),
          std::string("back\\slash"), std::string("\\x41"), std::string("\t"), std::string("caf\xC3\xA9"),
          std::string("\xFF\x80\xC3"), std::string("zero\0", 5), std::string("\x7F"), std::string()}) {
        layout.request.device = name;
        layout.request.regions = {{name, 0, 1, 9, true, 1, name, 5},
                                  {"plain name", 10, 1, 19, false, 0, "x", 6}};
        const BYTES file = write_format(MAP, layout.request);
        EXPECT_EQ(verify_format(MAP, layout.request, file), "") << text_of(file);
        EXPECT_EQ(inspect_format(MAP, file).regions, layout.request.regions);
        EXPECT_EQ(std::count(file.begin(), file.end(), '\n'), 8);
    }
}

TEST(map_format, a_device_above_4_gib_keeps_its_addresses)
{
    LAYOUT layout(std::uint64_t(1) << 33);
    layout.request.regions = {{"HIGH", 0x1FFFFFFF0, 16, 0x1FFFFFFFF, false, 0, "", 1}};
    const BYTES file = write_format(MAP, layout.request);
    EXPECT_NE(text_of(file).find("HIGH       0x1FFFFFFF0  0x1FFFFFFFF  0x00000010"), std::string::npos);
    EXPECT_EQ(verify_format(MAP, layout.request, file), "");
}

TEST(map_format, verify_tells_what_differs)
{
    LAYOUT layout;
    layout.request.regions = three_regions();
    const auto said = [&](const FORMAT_REQUEST& written) {
        return verify_format(MAP, layout.request, write_format(MAP, written));
    };
    FORMAT_REQUEST other = layout.request;
    other.device = "X";
    EXPECT_EQ(said(other), "The map is for X with 16777216 bytes instead of W25Q128JV with 16777216 bytes.");
    other = layout.request;
    other.regions[1].crc = 2;
    EXPECT_EQ(said(other), "The partition P1 is not as the layout has it.");
    other.regions.resize(1);
    EXPECT_EQ(said(other), "The partition P1 is missing in the map.");
    other = layout.request;
    other.regions.push_back({"MORE", 0, 1, 1, false, 0, "", 1});
    EXPECT_EQ(said(other), "The map has the partition MORE, which the layout does not have.");
}

TEST(map_format, wrong_maps_are_refused_with_the_line)
{
    LAYOUT layout;
    layout.request.regions = three_regions();
    const std::string good = text_of(write_format(MAP, layout.request));
    const auto said = [&](const std::string& from, const std::string& to) {
        std::string file = good;
        file.replace(file.find(from), from.size(), to);
        return verify_format(MAP, layout.request, bytes_of(file));
    };
    EXPECT_EQ(said("Flash map", "Flush map"), "Line 1: the file is no flash map.");
    EXPECT_EQ(said("version 1", "version 2"), "Line 1: this program reads version 1 of the flash map.");
    EXPECT_EQ(said("Device", "Gadget"), "Line 2: the name of the device is expected.");
    EXPECT_EQ(said("16777216 bytes", "16777217 bytes"), "Line 3: the size of the device is expected.");
    EXPECT_EQ(said("\n\n", "\n \n"), "Line 4: an empty line is expected.");
    EXPECT_EQ(said("Partition ", "partition "),
              "Line 5: the titles of the columns are not those of a flash map.");
    EXPECT_EQ(said("---  -", "--- +-"), "Line 6: the columns are to be underlined.");
    EXPECT_EQ(said("-\nBOOT", "-  -\nBOOT"), "Line 6: the table has not its 8 columns.");
    EXPECT_EQ(said("P1    ", "P1   "), "Line 8: the values do not stand in their columns.");
    EXPECT_EQ(said("0xDEADBEEF", "0xDEADBEEf"), "Line 7: a value is not spelled as in a flash map.");
    EXPECT_EQ(said("0xDEADBEEF\n", "0xDEADBEEF \n"), "Line 7: the values do not stand in their columns.");
    EXPECT_EQ(said("0x00020000", "0x00020001"), "Line 8: the addresses of partition P1 do not fit together.");
    EXPECT_EQ(said("0x00FFFFFF", "0x01FFFFFF"),
              "Line 9: the addresses of partition application_two do not fit together.");
    EXPECT_EQ(said("0xCBF43926\n", "0xCBF43926"), "Line 9: the line is cut off.");
    std::string wide;
    for (std::size_t at = 0, line = 1; at < good.size(); ++line) {
        const std::size_t end = good.find('\n', at);
        std::string text = good.substr(at, end - at);
        if (line >= 5)
            text.insert(15, line == 6 ? "-" : " ");
        wide += text + "\n";
        at = end + 1;
    }
    EXPECT_EQ(verify_format(MAP, layout.request, bytes_of(wide)),
              "The columns of the table are wider than what stands in them.");
    EXPECT_EQ(verify_format(MAP, layout.request, {}), "Line 1: the map ends too early.");
}

TEST(map_format, a_map_holds_no_image)
{
    std::string message;
    decode_format(MAP, {}, &message);
    EXPECT_EQ(message, "A flash map holds no image.");
}

TEST(map_format, a_file_that_is_too_large_for_a_map_takes_no_memory)
{
    const PATTERN_SOURCE huge(std::uint64_t(1) << 40);
    FORMAT_FACTS facts;
    std::string message;
    EXPECT_FALSE(MAP.inspect(huge, facts, message));
    EXPECT_EQ(message, "The file has 1099511627776 bytes, more than any flash map.");
}
