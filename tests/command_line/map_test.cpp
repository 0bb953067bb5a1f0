#include "child_process.h"
#include "command_run.h"

#include <gmock/gmock.h>

#include <charconv>
#include <cmath>
#include <filesystem>
#include <map>

namespace
{

using testing::HasSubstr;

/// One element of a picture with its attributes; for text elements also the text.
struct SHAPE {
    std::string name;
    std::map<std::string, std::string> attributes;
    std::string text;

    double number(const std::string& attribute) const
    {
        const std::string& value = attributes.at(attribute);
        double result = std::nan("");
        std::from_chars(value.data(), value.data() + value.size(), result);
        return result;
    }
    std::uint64_t address(const std::string& attribute) const
    {
        return std::stoull(attributes.at(attribute), nullptr, 16);
    }
    bool is(const std::string& kind, const std::string& style) const
    {
        const auto found = attributes.find("class");
        return name == kind && found != attributes.end() && found->second == style;
    }
};

/// Reads the flat list of opening tags of a picture.
std::vector<SHAPE> shapes_of(const std::string& svg)
{
    std::vector<SHAPE> shapes;
    for (std::size_t at = svg.find('<'); at != std::string::npos; at = svg.find('<', at + 1)) {
        if (svg[at + 1] == '/' || svg[at + 1] == '?') {
            continue;
        }
        const std::size_t end = svg.find('>', at);
        const std::string tag = svg.substr(at + 1, end - at - 1);
        SHAPE shape;
        shape.name = tag.substr(0, tag.find_first_of(" /"));
        for (std::size_t quote = tag.find("=\""); quote != std::string::npos;
             quote = tag.find("=\"", quote + 2)) {
            const std::size_t begin = tag.rfind(' ', quote) + 1;
            const std::size_t close = tag.find('"', quote + 2);
            shape.attributes[tag.substr(begin, quote - begin)] = tag.substr(quote + 2, close - quote - 2);
        }
        shape.text = svg.substr(end + 1, svg.find('<', end) - end - 1);
        shapes.push_back(shape);
    }
    return shapes;
}

std::vector<SHAPE> shapes_of_file(const std::string& path)
{
    return shapes_of(read_text_file(path));
}

class MAP : public testing::Test
{
protected:
    std::string draw(const std::string& setup) const
    {
        const ANSWER answer = run({"map", setup, "--svg", "-o", m_board.path("map.svg")});
        EXPECT_EQ(answer.exit_code, EXIT_CODE_DONE) << answer.err;
        return m_board.path("map.svg");
    }

    /// A device full of 64 KiB partitions, each with a gap behind it.
    std::string many_partitions(unsigned count) const
    {
        std::string partitions;
        for (unsigned i = 0; i < count; ++i) {
            std::ostringstream start;
            start << std::hex << i * 0x20000U;
            std::ostringstream end;
            end << std::hex << i * 0x20000U + 0xFFFFU;
            partitions += "<PARTITION id=\"Partition_with_a_long_name_" + std::to_string(i) + "\" s_addr=\"" +
                          start.str() + "\" e_addr=\"" + end.str() + "\"/>";
        }
        return m_board.setup("many.vek", "ASX4",
                             element("FLASH_DEVICES", "<FLASH_DEVICE type=\"MT25QL512\" id=\"F\">" +
                                                          partitions + "</FLASH_DEVICE>"));
    }

    BOARD m_board;
};

TEST_F(MAP, the_table_lists_partitions_and_gaps_by_address)
{
    const ANSWER answer = run({"map", m_board.flash_setup()});
    EXPECT_EQ(answer.exit_code, EXIT_CODE_DONE) << answer.err;
    EXPECT_THAT(answer.out, testing::StartsWith("Flash_Device_1: W25Q128JV, 16777216 bytes\n"
                                                "partition "));
    const std::size_t p1 = answer.out.find("\nP1 ");
    const std::size_t gap = answer.out.find("\n(free) ");
    const std::size_t p2 = answer.out.find("\nP2 ");
    EXPECT_LT(p1, gap);
    EXPECT_LT(gap, p2);
    EXPECT_THAT(answer.out, HasSubstr("0x00200000  0x003FFFFF  2097152"));
    EXPECT_THAT(answer.out, HasSubstr("  300 "));
    EXPECT_THAT(answer.out, HasSubstr("data.bin\n"));
}

TEST_F(MAP, the_document_gives_every_byte_of_the_device_to_a_partition_or_a_gap)
{
    const ANSWER answer = run({"map", m_board.flash_setup(), "--json"});
    ASSERT_EQ(answer.exit_code, EXIT_CODE_DONE) << answer.err;
    const JSON device = answer.json().at("devices").at(0);
    std::map<std::string, std::uint64_t> ranges;
    for (const std::string list : {"partitions", "gaps"}) {
        for (const JSON& range : device.at(list)) {
            ranges[range.at("start")] = range.at("bytes");
        }
    }
    std::uint64_t next = 0;
    for (const auto& [start, bytes] : ranges) {
        EXPECT_EQ(std::stoull(start, nullptr, 16), next);
        next += bytes;
    }
    EXPECT_EQ(next, device.at("bytes"));
    const JSON& application = device.at("partitions").at(1);
    EXPECT_EQ(application.at("name"), "P2");
    EXPECT_EQ(application.at("page"), 1);
    EXPECT_EQ(application.at("files"), "application.sof");
    EXPECT_EQ(application.at("inputs").at(0).at("id"), "Bitstream_2");
    EXPECT_EQ(application.at("inputs").at(0).at("bytes"), application.at("used_bytes"));
    EXPECT_EQ(device.at("partitions").at(2).at("page"), JSON());
}

TEST_F(MAP, agrees_with_the_map_file_that_generation_writes)
{
    const std::string setup = m_board.flash_setup();
    ASSERT_EQ(run({"generate", setup, "--quiet"}).exit_code, EXIT_CODE_DONE);
    const std::string table = read_text_file(m_board.path("out/board_pof.map"));
    const JSON json = run({"map", setup, "--json"}).json();
    for (const JSON& partition : json.at("devices").at(0).at("partitions")) {
        const std::string line = table.substr(table.find("\n" + partition.at("name").get<std::string>()) + 1);
        const std::string row = line.substr(0, line.find('\n'));
        EXPECT_THAT(row, HasSubstr(partition.at("start").get<std::string>()));
        EXPECT_THAT(row, HasSubstr(partition.at("end").get<std::string>()));
        EXPECT_THAT(row, HasSubstr(partition.at("files").get<std::string>()));
        EXPECT_THAT(row, HasSubstr(hex_text(partition.at("used_bytes").get<std::uint64_t>())));
    }
}

TEST_F(MAP, the_picture_is_well_formed_and_names_everything_as_it_is)
{
    const std::string picture = draw(m_board.flash_setup());
    EXPECT_EQ(run_program({"xmllint", "--noout", picture}).exit_code, 0);
    const std::string svg = read_text_file(picture);
    EXPECT_THAT(svg, HasSubstr(">DATA &amp; &lt;more&gt;<"));
    EXPECT_THAT(svg, HasSubstr(">page 1<"));
    EXPECT_THAT(svg, HasSubstr(", application.sof<"));
    for (const std::string entry :
         {"partition", "partition of the device", "table made by the tool", "filled by an input", "free"}) {
        EXPECT_THAT(svg, HasSubstr(">" + entry + "<"));
    }
}

TEST_F(MAP, every_rectangle_lies_where_its_addresses_say)
{
    const std::vector<SHAPE> shapes = shapes_of_file(draw(m_board.flash_setup()));
    const auto frame = std::find_if(shapes.begin(), shapes.end(),
                                    [](const SHAPE& shape) { return shape.is("rect", "frame"); });
    ASSERT_NE(frame, shapes.end());
    const double scale = frame->number("height") / (16 * 1024 * 1024);
    std::map<std::string, int> seen;
    for (const SHAPE& shape : shapes) {
        if (shape.attributes.count("data-start") == 0) {
            continue;
        }
        ++seen[shape.attributes.at("class")];
        const auto start = static_cast<double>(shape.address("data-start"));
        const auto end = static_cast<double>(shape.address("data-end")) + 1;
        EXPECT_NEAR(shape.number("y"), frame->number("y") + start * scale, 0.001);
        EXPECT_NEAR(shape.number("height"), (end - start) * scale, 0.002);
        EXPECT_GE(shape.number("x"), frame->number("x"));
        EXPECT_LE(shape.number("x") + shape.number("width"), frame->number("x") + frame->number("width"));
    }
    EXPECT_EQ(seen, (std::map<std::string, int>{{"gap", 2}, {"input", 3}, {"partition", 3}}));
}

TEST_F(MAP, partitions_and_gaps_fill_the_bar_without_overlap)
{
    for (const std::string& setup : {m_board.flash_setup(), many_partitions(200)}) {
        std::map<double, double> bars;
        double top = 0;
        double bottom = 0;
        for (const SHAPE& shape : shapes_of_file(draw(setup))) {
            if (shape.is("rect", "frame")) {
                top = shape.number("y");
                bottom = top + shape.number("height");
            } else if (shape.attributes.count("data-start") != 0 && !shape.is("rect", "input")) {
                bars[shape.number("y")] = shape.number("height");
            }
        }
        double next = top;
        for (const auto& [y, height] : bars) {
            EXPECT_NEAR(y, next, 0.002);
            next = y + height;
        }
        EXPECT_NEAR(next, bottom, 0.002);
    }
}

TEST_F(MAP, labels_never_overlap_however_small_the_partitions_are)
{
    for (const std::string& setup : {m_board.flash_setup(), many_partitions(200)}) {
        // The label column is what stands right of the bar; a line of it is 11 units high at least.
        std::map<double, std::vector<std::string>> lines;
        double height = 0;
        for (const SHAPE& shape : shapes_of_file(draw(setup))) {
            if (shape.name == "svg") {
                height = shape.number("height");
            }
            if (shape.is("text", "name") || (shape.is("text", "detail") && shape.number("x") == 330)) {
                lines[shape.number("y")].push_back(shape.text);
                EXPECT_LT(shape.number("y"), height);
            }
        }
        EXPECT_GE(lines.size(), 5U);
        double last = 0;
        for (const auto& [y, texts] : lines) {
            EXPECT_EQ(texts.size(), 1U);
            EXPECT_GE(y - last, 11) << texts.front();
            last = y;
        }
    }
}

TEST_F(MAP, long_names_are_cut_to_the_width_of_the_picture)
{
    const std::string name(200, 'n');
    const std::string setup = m_board.setup(
        "long.vek", "ASX4",
        element("FLASH_DEVICES", "<FLASH_DEVICE type=\"W25Q128JV\" id=\"F\"><PARTITION id=\"" + name +
                                     "\" s_addr=\"0\" e_addr=\"FFFF\"/></FLASH_DEVICE>"));
    for (const SHAPE& shape : shapes_of_file(draw(setup))) {
        if (shape.name == "text") {
            EXPECT_LE(shape.text.size(), 75U);
        }
    }
    EXPECT_THAT(read_text_file(m_board.path("map.svg")), HasSubstr("<title>" + name + "</title>"));
}

TEST_F(MAP, shows_one_device_when_asked_for_it)
{
    const std::string setup = m_board.flash_setup();
    EXPECT_EQ(run({"map", setup, "--device", "Flash_Device_1", "--json"}).json().at("devices").size(), 1U);
    const ANSWER answer = run({"map", setup, "--device", "Flash_Device_7"});
    EXPECT_EQ(answer.exit_code, EXIT_CODE_USAGE);
    EXPECT_EQ(answer.err, "imagewright-cmd: " + setup +
                              " has no flash device \"Flash_Device_7\"; it has Flash_Device_1.\n");
}

TEST_F(MAP, a_setup_without_flash_has_an_empty_map_and_no_picture)
{
    const std::string setup = m_board.passive_setup();
    const ANSWER answer = run({"map", setup});
    EXPECT_EQ(answer.exit_code, EXIT_CODE_DONE);
    EXPECT_EQ(answer.out, setup + " has no flash device.\n");
    EXPECT_EQ(run({"map", setup, "--json"}).json().at("devices"), JSON::array());
    EXPECT_EQ(run({"map", setup, "--svg", "-o", m_board.path("map.svg")}).exit_code, EXIT_CODE_USAGE);
    EXPECT_FALSE(std::filesystem::exists(m_board.path("map.svg")));
}

TEST_F(MAP, a_layout_that_does_not_hold_is_refused_with_its_findings)
{
    const std::string setup = m_board.setup(
        "overlap.vek", "ASX4",
        element("FLASH_DEVICES", "<FLASH_DEVICE type=\"W25Q128JV\" id=\"F\">"
                                 "<PARTITION id=\"A\" s_addr=\"0\" e_addr=\"1FFFF\"/>"
                                 "<PARTITION id=\"B\" s_addr=\"10000\" e_addr=\"2FFFF\"/></FLASH_DEVICE>"));
    const ANSWER answer = run({"map", setup});
    EXPECT_EQ(answer.exit_code, EXIT_CODE_REFUSED);
    EXPECT_THAT(answer.err, HasSubstr("overlap"));
    EXPECT_THAT(answer.err, HasSubstr("0x00010000"));
}

TEST_F(MAP, a_picture_that_cannot_be_written_leaves_nothing)
{
    const std::string setup = m_board.flash_setup();
    EXPECT_EQ(run({"map", setup, "--svg", "-o", m_board.path("missing/map.svg")}).exit_code,
              EXIT_CODE_OUTPUT_NOT_WRITTEN);
    EXPECT_EQ(run({"map", setup, "--svg", "-o", setup}).exit_code, EXIT_CODE_USAGE);
    EXPECT_EQ(run({"map", setup, "--svg"}).exit_code, EXIT_CODE_USAGE);
    EXPECT_THAT(read_text_file(setup), HasSubstr("<VEK"));
}

} // namespace
