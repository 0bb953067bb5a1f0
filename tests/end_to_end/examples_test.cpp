#include "intel_hex_decoder.h"
#include "map_decoder.h"
#include "pof_decoder.h"
#include "reference_loader.h"
#include "temporary_directory.h"
#include "tool.h"
#include "ttf_decoder.h"

#include <gmock/gmock.h>

namespace
{

/// The examples with their bitstreams, generated once for all tests of this file.
class EXAMPLES : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        s_directory = std::make_unique<TEMPORARY_DIRECTORY>();
        make_examples(*s_directory / "examples");
    }
    static void TearDownTestSuite() { s_directory.reset(); }

    static std::string examples() { return *s_directory / "examples"; }
    static std::vector<std::uint8_t> output(const std::string& name)
    {
        return read_file(examples() + "/output/" + name);
    }
    static std::vector<std::uint8_t> image(const std::string& name)
    {
        return read_file(examples() + "/images/" + name);
    }

    static void generate(const std::string& setup)
    {
        const CHILD_RESULT result = tool({"generate", setup}, examples());
        ASSERT_EQ(result.exit_code, 0) << result.out << result.err;
    }

    static LOADED_IMAGE load(std::span<const std::uint8_t> bytes)
    {
        LOADED_STREAM stream;
        std::string error;
        EXPECT_TRUE(load_configuration_stream(bytes, stream, error)) << error;
        EXPECT_EQ(stream.images.size(), 1U);
        return stream.images.empty() ? LOADED_IMAGE{} : stream.images.front();
    }

private:
    static std::unique_ptr<TEMPORARY_DIRECTORY> s_directory;
};

std::unique_ptr<TEMPORARY_DIRECTORY> EXAMPLES::s_directory;

std::vector<std::uint8_t> part(const std::vector<std::uint8_t>& bytes, std::uint64_t offset,
                               std::uint64_t length)
{
    EXPECT_LE(offset + length, bytes.size());
    return {bytes.begin() + static_cast<std::ptrdiff_t>(offset),
            bytes.begin() + static_cast<std::ptrdiff_t>(offset + length)};
}

/// Where the map says that a partition starts.
std::uint64_t start_in_map(const DECODED_MAP& map, const std::string& name)
{
    for (const std::map<std::string, std::string>& row : map.rows) {
        if (row.at("Partition") == name) {
            return std::stoull(row.at("Start"), nullptr, 16);
        }
    }
    ADD_FAILURE() << "no partition " << name;
    return 0;
}

TEST_F(EXAMPLES, passive_serial_gives_one_stream_in_three_formats)
{
    generate("passive_serial.vek");

    const std::vector<std::uint8_t> rbf = output("blinky.rbf");
    const LOADED_IMAGE loaded = load(rbf);
    EXPECT_EQ(loaded.device, "BS1L40");
    EXPECT_EQ(loaded.core, image("25k-blinky.bit"));
    EXPECT_GT(loaded.lz4_packets, 0U);
    EXPECT_LT(rbf.size(), image("25k-blinky.bit").size());

    const DECODED_INTEL_HEX hex = decode_intel_hex(output("blinky.hex"));
    EXPECT_EQ(hex.fault, "");
    EXPECT_EQ(hex.bytes.begin()->first, 0x00100000U);
    EXPECT_EQ(hex.contiguous(), rbf);
    EXPECT_EQ(decode_ttf(output("blinky.ttf")), rbf);
}

TEST_F(EXAMPLES, objcopy_turns_the_hex_file_back_into_the_rbf_file)
{
    generate("passive_serial.vek");
    const CHILD_RESULT result = run_program(
        {"objcopy", "-I", "ihex", "-O", "binary", "output/blinky.hex", "output/objcopy.bin"}, examples());
    ASSERT_EQ(result.exit_code, 0) << result.err;
    EXPECT_EQ(output("objcopy.bin"), output("blinky.rbf"));
}

TEST_F(EXAMPLES, active_serial_has_each_bitstream_at_its_page)
{
    generate("active_serial.vek");

    const std::vector<std::uint8_t> rpd = output("board.rpd");
    EXPECT_EQ(rpd.size(), 16U * 1024 * 1024);
    const DECODED_MAP map = decode_map(output("board_rpd.map"));

    const std::vector<std::pair<std::string, std::string>> expected{{"P1", "hx8k-counter.bin"},
                                                                    {"P2", "45k-counter-compress.bit"}};
    for (const auto& [partition, input] : expected) {
        EXPECT_EQ(load(std::span(rpd).subspan(start_in_map(map, partition))).core, image(input)) << partition;
    }
    const std::uint64_t sample = start_in_map(map, "P3");
    EXPECT_EQ(sample % (64 * 1024), 0U);
    const CHILD_RESULT extracted = tool(
        {"inspect", "inputs/self_test.sof", "--extract", "image", "-o", "output/self_test.bin"}, examples());
    ASSERT_EQ(extracted.exit_code, 0) << extracted.err;
    EXPECT_EQ(load(std::span(rpd).subspan(sample)).configuration(), output("self_test.bin"));

    const DECODED_INTEL_HEX board_data = decode_intel_hex(image("board-data.hex"));
    EXPECT_EQ(part(rpd, 0x00FF0000, board_data.bytes.size()), board_data.contiguous());
}

TEST_F(EXAMPLES, secure_boot_has_both_images_in_its_flash)
{
    generate("secure_boot.vek");

    const DECODED_POF pof = decode_pof(output("secure_board.pof"));
    ASSERT_EQ(pof.fault, "");
    EXPECT_EQ(pof.device, "MT25QL512");
    EXPECT_EQ(pof.image.size(), 64U * 1024 * 1024);

    std::vector<std::string> names;
    for (const DECODED_POF::PARTITION& partition : pof.partitions) {
        names.push_back(partition.name);
        if (partition.name == "FACTORY_IMAGE" || partition.name == "P1") {
            const LOADED_IMAGE loaded = load(std::span(pof.image).subspan(partition.start));
            EXPECT_EQ(loaded.device, "ZR9A012");
            EXPECT_EQ(loaded.periphery, image("hx8k-counter.bin"));
            EXPECT_EQ(loaded.core,
                      image(partition.name == "P1" ? "45k-counter-compress.bit" : "25k-blinky.bit"));
        }
    }
    EXPECT_THAT(names, testing::UnorderedElementsAre("BOOT_INFO", "FACTORY_IMAGE", "SPT0", "SPT1", "CPB0",
                                                     "CPB1", "P1"));
}

TEST_F(EXAMPLES, a_second_run_gives_identical_bytes)
{
    for (const std::string setup : {"passive_serial.vek", "active_serial.vek", "secure_boot.vek"}) {
        generate(setup);
    }
    TEMPORARY_DIRECTORY again;
    for (const std::string setup : {"passive_serial.vek", "active_serial.vek", "secure_boot.vek"}) {
        const CHILD_RESULT result = tool({"generate", setup, "--output-directory", again.path()}, examples());
        ASSERT_EQ(result.exit_code, 0) << result.err;
    }
    const std::vector<std::string> written{"blinky.hex",          "blinky.rbf",    "blinky.ttf",
                                           "board.rpd",           "board_rpd.map", "secure_board.pof",
                                           "secure_board_pof.map"};
    EXPECT_EQ(again.entries(), written);
    for (const std::string& name : written) {
        EXPECT_EQ(read_file(again / name), output(name)) << name;
    }
}

TEST_F(EXAMPLES, nothing_but_the_outputs_is_left_in_the_directory)
{
    TEMPORARY_DIRECTORY directory;
    const CHILD_RESULT result =
        tool({"generate", "active_serial.vek", "--output-directory", directory.path()}, examples());
    ASSERT_EQ(result.exit_code, 0) << result.err;
    EXPECT_EQ(directory.entries(), (std::vector<std::string>{"board.rpd", "board_rpd.map"}));
}

TEST_F(EXAMPLES, the_environment_does_not_reach_the_output)
{
    generate("passive_serial.vek");
    TEMPORARY_DIRECTORY directory;
    const CHILD_RESULT result = run_program(
        {built_program("imagewright-cmd"), "generate", "passive_serial.vek", "--output-directory",
         directory.path()},
        examples(), {"TZ=Asia/Tokyo", "LANG=de_DE.UTF-8", "LC_ALL=C", "USER=somebody", "HOME=/nonexistent"});
    ASSERT_EQ(result.exit_code, 0) << result.err;
    for (const std::string name : {"blinky.hex", "blinky.rbf", "blinky.ttf"}) {
        EXPECT_EQ(read_file(directory / name), output(name)) << name;
    }
}

} // namespace
