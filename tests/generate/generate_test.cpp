#include "generate_job.h"
#include "intel_hex_decoder.h"
#include "map_decoder.h"
#include "msg_service.h"
#include "pof_decoder.h"
#include "reference_loader.h"
#include "setup_builder.h"
#include "ttf_decoder.h"
#include "vek_util.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

using BYTES = std::vector<std::uint8_t>;
using testing::ElementsAre;
using testing::HasSubstr;

/// What generation says and writes.
struct RUN {
    bool success = false;
    std::vector<WRITTEN_FILE> written;
    std::vector<std::string> errors;
};

RUN generate(const SETUP_BUILDER& setup, const GENERATE_OPTIONS& options = {})
{
    RUN run;
    const MSG_SINK_SCOPE sink([&run](const MSG_RECORD& record) {
        if (record.severity == MSG_SEVERITY::ERROR) {
            run.errors.push_back(record.text);
        }
    });
    run.success = generate_document(setup.document(), options, run.written);
    return run;
}

void expect_generates(const SETUP_BUILDER& setup)
{
    bool can_save = false;
    bool can_generate = false;
    bool has_warning = false;
    std::string message;
    EXPECT_TRUE(VEK_UTIL::check(&setup.document(), can_save, can_generate, message, has_warning, true));
    EXPECT_TRUE(can_generate) << message;
    const RUN run = generate(setup);
    EXPECT_TRUE(run.success);
    EXPECT_THAT(run.errors, testing::IsEmpty());
    for (const WRITTEN_FILE& file : run.written) {
        EXPECT_EQ(std::filesystem::file_size(file.path), file.size);
    }
}

LOADED_STREAM load(const BYTES& bytes, std::uint64_t offset = 0)
{
    LOADED_STREAM stream;
    std::string error;
    EXPECT_TRUE(load_configuration_stream(std::span(bytes).subspan(offset), stream, error)) << error;
    return stream;
}

std::uint64_t number(const BYTES& bytes, std::uint64_t offset, std::size_t size)
{
    std::uint64_t value = 0;
    for (std::size_t i = size; i != 0; --i) {
        value = value * 256 + bytes.at(offset + i - 1);
    }
    return value;
}

SMALL_BITSTREAM small(const std::string& device, unsigned seed, std::size_t core = 100000)
{
    SMALL_BITSTREAM bitstream;
    bitstream.device = device;
    bitstream.seed = seed;
    bitstream.core = core;
    return bitstream;
}

std::string hex_line(std::uint16_t address, const std::string& data)
{
    unsigned sum = static_cast<unsigned>(data.size()) + (address >> 8) + (address & 0xFF);
    char text[32];
    std::snprintf(text, sizeof text, ":%02zX%04X00", data.size(), address);
    std::string line = text;
    for (const char byte : data) {
        std::snprintf(text, sizeof text, "%02X", static_cast<unsigned char>(byte));
        line += text;
        sum += static_cast<unsigned char>(byte);
    }
    std::snprintf(text, sizeof text, "%02X\n", (0x100 - (sum & 0xFF)) & 0xFF);
    return line + text;
}

constexpr const char* HEX_END = ":00000001FF\n";

SETUP_BUILDER& passive_setup(SETUP_BUILDER& setup)
{
    setup.bitstream("Bitstream_1", small("BS1L15", 1));
    for (const char* type : {"RBF", "HEX", "TTF"}) {
        setup.output(type, {"Bitstream_1"});
    }
    return setup;
}

/// Three pages and a raw Intel HEX file.
SETUP_BUILDER& active_setup(SETUP_BUILDER& setup)
{
    setup.flash("Flash_Device_1", "W25Q32JV");
    for (unsigned page = 0; page < 3; ++page) {
        const std::string id = std::to_string(page + 1);
        setup.bitstream("Bitstream_" + id, small("BS1L15", page + 1));
        setup.partition("Flash_Device_1", "P" + id);
        setup.assign("P" + id, "Bitstream_" + id, std::to_string(page));
    }
    setup.raw_file("Raw_File_1", "HEX", "data.hex",
                   hex_line(0x10, "hello") + hex_line(0x20, "world") + HEX_END);
    setup.partition("Flash_Device_1", "DATA", "0x00200000", "auto");
    setup.assign("DATA", "Raw_File_1");
    setup.output("RPD", {}, "Flash_Device_1", {"MAP"});
    setup.output("POF", {}, "Flash_Device_1", {"SEC_RPD"});
    return setup;
}

SETUP_BUILDER& boot_setup(SETUP_BUILDER& setup)
{
    for (unsigned i = 1; i <= 3; ++i) {
        SMALL_BITSTREAM bitstream = small("ZR9A012", i);
        bitstream.firmware = 5000;
        setup.bitstream("Bitstream_" + std::to_string(i), bitstream);
    }
    setup.flash("Flash_Device_1", "W25Q128JV");
    setup.reserved("Flash_Device_1", true, false);
    setup.partition("Flash_Device_1", "P1");
    setup.partition("Flash_Device_1", "P2");
    setup.assign("FACTORY_IMAGE", "Bitstream_1", "0");
    setup.assign("P1", "Bitstream_2", "2");
    setup.assign("P2", "Bitstream_3", "1");
    setup.output("POF", {}, "Flash_Device_1", {"MAP"});
    return setup;
}

/// Runs `work` in a process of its own; its exit code, or 128 + signal.
int in_child(const std::function<int()>& work, rusage* usage = nullptr)
{
    const pid_t child = fork();
    if (child == 0) {
        _exit(work());
    }
    int status = 0;
    rusage used{};
    EXPECT_EQ(wait4(child, &status, 0, &used), child);
    if (usage != nullptr) {
        *usage = used;
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

} // namespace

TEST(generate, passive_serial_gives_raw_hexadecimal_and_tabular_files_of_one_stream)
{
    SETUP_BUILDER setup("PS");
    expect_generates(passive_setup(setup));
    const BYTES stream = read_file(setup.path("out.rbf"));
    const LOADED_STREAM loaded = load(stream);
    ASSERT_EQ(loaded.images.size(), 1U);
    EXPECT_EQ(loaded.images[0].device, "BS1L15");
    EXPECT_EQ(loaded.images[0].configuration(), configuration_of(small("BS1L15", 1)));
    EXPECT_EQ(loaded.used, stream.size());
    const DECODED_INTEL_HEX hex = decode_intel_hex(read_file(setup.path("out.hex")));
    EXPECT_EQ(hex.fault, "");
    EXPECT_EQ(hex.bytes.begin()->first, 0U);
    EXPECT_EQ(hex.contiguous(), stream);
    EXPECT_EQ(decode_ttf(read_file(setup.path("out.ttf"))), stream);
}

TEST(generate, the_start_address_and_direction_of_a_hex_file_are_honoured)
{
    SETUP_BUILDER setup("PS");
    setup.bitstream("Bitstream_1");
    setup.output("HEX", {"Bitstream_1"});
    setup.output("RBF", {"Bitstream_1"});
    setup.set(VEK_CMD_OPT_OUTPUT_FILE, {{VEK_CMD_PARAM_OUTPUT_FILE_TYPE, "HEX"},
                                        {VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_S_ADDR, "0x00100000"},
                                        {VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_DIRECTION, "DOWN"}});
    expect_generates(setup);
    const BYTES stream = read_file(setup.path("out.rbf"));
    const DECODED_INTEL_HEX hex = decode_intel_hex(read_file(setup.path("out.hex")));
    EXPECT_EQ(hex.bytes.at(0x100000), stream.front());
    EXPECT_EQ(hex.bytes.at(0x100000 - stream.size() + 1), stream.back());
}

TEST(generate, several_bitstreams_are_chained_in_the_order_of_the_output)
{
    SETUP_BUILDER setup("PS");
    setup.bitstream("Bitstream_1", small("BS1L15", 1));
    setup.bitstream("Bitstream_2", small("BS1L40", 2));
    setup.output("RBF", {"Bitstream_2", "Bitstream_1"});
    expect_generates(setup);
    const LOADED_STREAM loaded = load(read_file(setup.path("out.rbf")));
    ASSERT_EQ(loaded.images.size(), 2U);
    EXPECT_EQ(loaded.images[0].configuration(), configuration_of(small("BS1L40", 2)));
    EXPECT_EQ(loaded.images[1].configuration(), configuration_of(small("BS1L15", 1)));
}

TEST(generate, active_serial_places_three_pages_and_a_raw_file_in_the_flash_device)
{
    SETUP_BUILDER setup("ASX1");
    expect_generates(active_setup(setup));
    const BYTES image = read_file(setup.path("out.rpd"));
    EXPECT_EQ(image.size(), 4U << 20);
    EXPECT_EQ(read_file(setup.path("out_secondary.rpd")), image);
    const DECODED_POF pof = decode_pof(read_file(setup.path("out.pof")));
    EXPECT_EQ(pof.fault, "");
    EXPECT_EQ(pof.image, image);
    EXPECT_EQ(pof.device, "W25Q32JV");
    ASSERT_EQ(pof.partitions.size(), 4U);
    for (unsigned i = 0; i < 3; ++i) {
        EXPECT_EQ(pof.partitions[i].name, "P" + std::to_string(i + 1));
        EXPECT_EQ(pof.partitions[i].start, i * 0x20000U);
        EXPECT_EQ(pof.partitions[i].last, i * 0x20000U + 0x1FFFF);
        EXPECT_TRUE(pof.partitions[i].has_page);
        EXPECT_EQ(pof.partitions[i].page, i);
        EXPECT_EQ(pof.partitions[i].input, "Bitstream_" + std::to_string(i + 1) + ".sof");
        EXPECT_EQ(pof.partitions[i].crc,
                  plain_crc32(image.data() + pof.partitions[i].start, pof.partitions[i].used));
        EXPECT_EQ(load(image, i * 0x20000U).images.at(0).configuration(),
                  configuration_of(small("BS1L15", i + 1)));
    }
    EXPECT_EQ(pof.partitions[3].input, "data.hex");
    EXPECT_FALSE(pof.partitions[3].has_page);
    EXPECT_EQ(std::string(image.begin() + 0x200010, image.begin() + 0x200015), "hello");
    EXPECT_EQ(std::string(image.begin() + 0x200020, image.begin() + 0x200025), "world");
    EXPECT_EQ(image[0x20000F], 0xFF);
    const DECODED_MAP map = decode_map(read_file(setup.path("out_secondary.map")));
    ASSERT_EQ(map.rows.size(), 4U);
    EXPECT_EQ(map.rows[3].at("Partition"), "DATA");
    EXPECT_EQ(map.rows[3].at("Start"), "0x00200000");
    EXPECT_EQ(map.rows[1].at("Page"), "1");
}

TEST(generate, raw_files_follow_each_other_unless_their_addresses_say_otherwise)
{
    SETUP_BUILDER setup("ASX1");
    setup.bitstream("Bitstream_1");
    setup.flash("Flash_Device_1", "W25Q16JV");
    setup.partition("Flash_Device_1", "P1", "0x00010000", "0x0001FFFF");
    setup.raw_file("Raw_File_1", "RBF", "a.rbf", "one");
    setup.raw_file("Raw_File_2", "RBF", "b.rbf", "two");
    setup.raw_file("Raw_File_3", "RBF", "c.rbf", "\x01\x80");
    setup.raw_file("Raw_File_4", "HEX", "d.hex", hex_line(0x8000, "abs") + HEX_END);
    setup.set(VEK_CMD_OPT_RAW_FILE,
              {{VEK_CMD_PARAM_RAW_FILE_ID, "Raw_File_3"}, {VEK_CMD_PARAM_RAW_FILE_BITSWAP, "1"}});
    setup.set(VEK_CMD_OPT_ASSIGNMENT, {{VEK_CMD_PARAM_ASSIGNMENT_PARTITION_ID, "P1"},
                                       {VEK_CMD_PARAM_ASSIGNMENT_RAW_FILE_ID, "Raw_File_1"},
                                       {VEK_CMD_PARAM_ASSIGNMENT_RAW_FILE_ID, "Raw_File_2"},
                                       {VEK_CMD_PARAM_ASSIGNMENT_RAW_FILE_ID, "Raw_File_3"},
                                       {VEK_CMD_PARAM_ASSIGNMENT_RAW_FILE_ID_ADDR_MODE, "REL"},
                                       {VEK_CMD_PARAM_ASSIGNMENT_RAW_FILE_ID_ADDR_OFFSET, "0x100"},
                                       {VEK_CMD_PARAM_ASSIGNMENT_RAW_FILE_ID, "Raw_File_4"},
                                       {VEK_CMD_PARAM_ASSIGNMENT_RAW_FILE_ID_ADDR_MODE, "ABS"},
                                       {VEK_CMD_PARAM_ASSIGNMENT_RAW_FILE_ID_ADDR_OFFSET, "0x9000"}});
    setup.output("RPD", {}, "Flash_Device_1");
    expect_generates(setup);
    const BYTES image = read_file(setup.path("out.rpd"));
    EXPECT_EQ(std::string(image.begin() + 0x10000, image.begin() + 0x10006), "onetwo");
    EXPECT_EQ(image[0x10100], 0x80);
    EXPECT_EQ(image[0x10101], 0x01);
    EXPECT_EQ(std::string(image.begin() + 0x11000, image.begin() + 0x11003), "abs");
}

TEST(generate, a_secure_family_gets_its_boot_layout)
{
    SETUP_BUILDER setup("ASX4");
    expect_generates(boot_setup(setup));
    const DECODED_POF pof = decode_pof(read_file(setup.path("out.pof")));
    EXPECT_EQ(pof.fault, "");
    const BYTES& image = pof.image;
    ASSERT_EQ(image.size(), 16U << 20);
    EXPECT_EQ(std::memcmp(image.data(), "IWBI", 4), 0);
    EXPECT_EQ(number(image, 8, 4), 0x11212BC7U);
    EXPECT_EQ(number(image, 12, 4), 5000U);
    const BYTES firmware(image.begin() + 128, image.begin() + 128 + 5000);
    EXPECT_EQ(firmware, noise(5000, 1001));
    EXPECT_EQ(number(image, 16, 4), plain_crc32(firmware.data(), firmware.size()));
    EXPECT_EQ(number(image, 124, 4), plain_crc32(image.data(), 124));
    const std::uint64_t factory = number(image, 24, 8);
    EXPECT_EQ(load(image, factory).images.at(0).configuration(), configuration_of(small("ZR9A012", 1)));
    // Both copies of each table are the same; the images are tried by page, so that of page 1 comes first.
    const std::uint64_t pointers = number(image, 48, 8);
    EXPECT_EQ(std::memcmp(&image[pointers], &image[number(image, 56, 8)], 276), 0);
    EXPECT_EQ(number(image, pointers + 8, 4), 2U);
    EXPECT_EQ(load(image, number(image, pointers + 16, 8)).images.at(0).configuration(),
              configuration_of(small("ZR9A012", 3)));
    EXPECT_EQ(load(image, number(image, pointers + 24, 8)).images.at(0).configuration(),
              configuration_of(small("ZR9A012", 2)));
    const std::uint64_t table = number(image, 32, 8);
    const std::uint64_t entries = number(image, table + 8, 4);
    EXPECT_EQ(entries, 8U);
    EXPECT_EQ(std::memcmp(&image[table], &image[number(image, 40, 8)], number(image, table + 12, 4)), 0);
    for (std::uint64_t i = 0; i < entries; ++i) {
        const std::uint64_t entry = table + 16 + 64 * i;
        const std::uint64_t start = number(image, entry + 32, 8);
        const std::uint64_t used = number(image, entry + 48, 8);
        if ((number(image, entry + 60, 4) & 2) == 0) {
            EXPECT_EQ(number(image, entry + 56, 4), plain_crc32(&image[start], used));
        }
    }
    EXPECT_EQ(decode_map(read_file(setup.path("out_secondary.map"))).rows.size(), 8U);
}

TEST(generate, the_key_partition_of_a_secure_family_holds_its_raw_files_as_they_are)
{
    SETUP_BUILDER setup("ASX4");
    setup.bitstream("Bitstream_1", small("ZR9A012", 1));
    setup.raw_file("Raw_File_1", "PUF", "helper.puf", "puf helper data");
    setup.raw_file("Raw_File_2", "WKEY", "wrapped.wkey", "wrapped key");
    setup.flash("Flash_Device_1", "W25Q128JV");
    setup.reserved("Flash_Device_1", false, true);
    setup.partition("Flash_Device_1", "P1");
    setup.assign("P1", "Bitstream_1", "0");
    setup.set(VEK_CMD_OPT_ASSIGNMENT, {{VEK_CMD_PARAM_ASSIGNMENT_PARTITION_ID, "PUF"},
                                       {VEK_CMD_PARAM_ASSIGNMENT_RAW_FILE_ID, "Raw_File_1"},
                                       {VEK_CMD_PARAM_ASSIGNMENT_RAW_FILE_ID, "Raw_File_2"}});
    setup.output("RPD", {}, "Flash_Device_1", {"MAP"});
    expect_generates(setup);
    const DECODED_MAP map = decode_map(read_file(setup.path("out_secondary.map")));
    const auto row = std::find_if(map.rows.begin(), map.rows.end(),
                                  [](const auto& candidate) { return candidate.at("Partition") == "PUF"; });
    ASSERT_NE(row, map.rows.end());
    const BYTES image = read_file(setup.path("out.rpd"));
    const auto start =
        image.begin() + static_cast<std::ptrdiff_t>(std::stoull(row->at("Start"), nullptr, 16));
    EXPECT_EQ(std::string(start, start + 26), "puf helper datawrapped key");
}

TEST(generate, parallel_flash_gets_a_page_table)
{
    SETUP_BUILDER setup("PS");
    setup.bitstream("Bitstream_1", small("BS1L15", 1));
    setup.bitstream("Bitstream_2", small("BS1L15", 2));
    setup.flash("Flash_Device_1", "CFI_16MB");
    setup.reserved("Flash_Device_1", false, false);
    setup.partition("Flash_Device_1", "P1");
    setup.partition("Flash_Device_1", "P2");
    setup.assign("P1", "Bitstream_1", "0");
    setup.assign("P2", "Bitstream_2", "5");
    setup.output("POF", {}, "Flash_Device_1");
    expect_generates(setup);
    const BYTES image = decode_pof(read_file(setup.path("out.pof"))).image;
    EXPECT_EQ(std::memcmp(image.data(), "IWOP", 4), 0);
    EXPECT_EQ(number(image, 72, 4), plain_crc32(image.data(), 72));
    const std::uint64_t page5 = number(image, 8 + 5 * 8, 4);
    EXPECT_EQ(load(image, page5).used, number(image, 12 + 5 * 8, 4));
    EXPECT_EQ(load(image, page5).images.at(0).configuration(), configuration_of(small("BS1L15", 2)));
    EXPECT_EQ(number(image, 8 + 8, 8), ~std::uint64_t{0});
}

TEST(generate, on_chip_flash_gets_both_images_and_the_user_flash)
{
    SETUP_BUILDER setup("INTERNAL");
    for (unsigned i = 1; i <= 2; ++i) {
        SMALL_BITSTREAM bitstream = small("GY1M08", i);
        bitstream.scheme = 19;
        setup.bitstream("Bitstream_" + std::to_string(i), bitstream);
    }
    setup.raw_file("Raw_File_1", "RBF", "user.rbf", "user data");
    setup.flash("Flash_Device_1", "GY1M08");
    setup.reserved("Flash_Device_1", true, false);
    setup.assign("CFM0", "Bitstream_1", "0");
    setup.assign("CFM1", "Bitstream_2", "1");
    setup.set(VEK_CMD_OPT_FLASH_DEVICE,
              {{VEK_CMD_PARAM_FLASH_DEVICE_ID, "Flash_Device_1"},
               {VEK_CMD_PARAM_FLASH_DEVICE_UFM_SOURCE, "2"},
               {VEK_CMD_PARAM_FLASH_DEVICE_UFM_SOURCE_FILE, setup.path("user.rbf")}});
    setup.output("POF", {}, "Flash_Device_1");
    setup.output("RPD", {}, "Flash_Device_1");
    expect_generates(setup);
    const BYTES image = read_file(setup.path("out.rpd"));
    EXPECT_EQ(image.size(), 0x78000U);
    EXPECT_EQ(std::string(image.begin(), image.begin() + 9), "user data");
    EXPECT_EQ(load(image, 0x8000).images.at(0).configuration(), configuration_of(small("GY1M08", 1)));
    EXPECT_EQ(load(image, 0x40000).images.at(0).configuration(), configuration_of(small("GY1M08", 2)));
    EXPECT_EQ(decode_pof(read_file(setup.path("out.pof"))).image, image);
}

TEST(generate, the_options_of_an_on_chip_device_go_into_its_image)
{
    SETUP_BUILDER setup("INTERNAL");
    SMALL_BITSTREAM bitstream = small("GY1M08", 1);
    bitstream.scheme = 15;
    setup.bitstream("Bitstream_1", bitstream);
    setup.flash("Flash_Device_1", "GY1M08");
    setup.reserved("Flash_Device_1", false, false);
    setup.assign("CFM0", "Bitstream_1");
    setup.set(VEK_CMD_OPT_FLASH_DEVICE, {{VEK_CMD_PARAM_FLASH_DEVICE_ID, "Flash_Device_1"},
                                         {VEK_CMD_PARAM_FLASH_DEVICE_WATCHDOG_VALUE, "4660"},
                                         {VEK_CMD_PARAM_FLASH_DEVICE_POWER_ON_SCHEME, "2"}});
    setup.output("RPD", {}, "Flash_Device_1");
    expect_generates(setup);
    const BYTES record = load(read_file(setup.path("out.rpd")), 0x8000).images.at(0).option_block;
    ASSERT_EQ(record.size(), 22U);
    EXPECT_EQ(number(record, 4, 4), 2U);
    EXPECT_EQ(number(record, 8, 4), 4660U);
}

TEST(generate, the_options_of_a_raw_programming_file_are_honoured)
{
    SETUP_BUILDER setup("ASX1");
    active_setup(setup);
    setup.set(VEK_CMD_OPT_OUTPUT_FILE,
              {{VEK_CMD_PARAM_OUTPUT_FILE_TYPE, "POF"},
               {VEK_CMD_PARAM_OUTPUT_FILE_SECONDARY_FILE_TYPE, "SEC_RPD"},
               {VEK_CMD_PARAM_OUTPUT_FILE_SECONDARY_FILE_FILE_OPTIONS_BITSWAP, "1"},
               {VEK_CMD_PARAM_OUTPUT_FILE_SECONDARY_FILE_FILE_OPTIONS_USE_RELATIVE, "1"}});
    expect_generates(setup);
    const BYTES image = read_file(setup.path("out.rpd"));
    const BYTES swapped = read_file(setup.path("out_secondary.rpd"));
    ASSERT_EQ(swapped.size(), 0x200025U);
    for (std::size_t i = 0; i < swapped.size(); i += 977) {
        unsigned reversed = 0;
        for (unsigned bit = 0; bit < 8; ++bit) {
            reversed |= (image[i] >> bit & 1U) << (7 - bit);
        }
        ASSERT_EQ(swapped[i], reversed) << i;
    }
}

TEST(generate, a_second_run_and_any_number_of_threads_give_the_same_bytes)
{
    SETUP_BUILDER setup("ASX1");
    active_setup(setup);
    ASSERT_TRUE(generate(setup).success);
    const BYTES image = read_file(setup.path("out.rpd"));
    const BYTES pof = read_file(setup.path("out.pof"));
    for (const unsigned threads : {1U, 8U}) {
        ASSERT_TRUE(generate(setup, {"", threads}).success);
        EXPECT_EQ(read_file(setup.path("out.rpd")), image);
        EXPECT_EQ(read_file(setup.path("out.pof")), pof);
    }
}

TEST(generate, compressed_bitstreams_fill_less_of_the_flash_device)
{
    SETUP_BUILDER setup("ASX1");
    const std::string file = setup.path("Bitstream_1.sof");
    SMALL_BITSTREAM content;
    setup.bitstream("Bitstream_1", content);
    setup.set(VEK_CMD_OPT_BITSTREAM, {{VEK_CMD_PARAM_BITSTREAM_ID, "Bitstream_1"},
                                      {VEK_CMD_PARAM_BITSTREAM_PATH, file},
                                      {VEK_CMD_PARAM_BITSTREAM_PATH_COMPRESSION, "1"}});
    setup.flash("Flash_Device_1", "W25Q16JV");
    setup.partition("Flash_Device_1", "P1", "0x00000000", "0x0001FFFF");
    setup.assign("P1", "Bitstream_1", "0");
    setup.output("RPD", {}, "Flash_Device_1");
    expect_generates(setup); // although the bound that the check begins with does not fit the partition
    EXPECT_EQ(load(read_file(setup.path("out.rpd"))).images.at(0).configuration(), configuration_of(content));
}

TEST(generate, the_written_files_are_listed_in_document_order_and_under_another_directory_if_asked)
{
    SETUP_BUILDER setup("PS");
    passive_setup(setup);
    const TEMPORARY_DIRECTORY other;
    const RUN run = generate(setup, {other.path(), 0});
    EXPECT_TRUE(run.success);
    ASSERT_EQ(run.written.size(), 3U);
    EXPECT_EQ(run.written[0].path, other / "out.rbf");
    EXPECT_EQ(run.written[1].type, VEK_HEX_FILE_TYPE);
    EXPECT_THAT(other.entries(), ElementsAre("out.hex", "out.rbf", "out.ttf"));
    EXPECT_THAT(setup.directory().entries(), ElementsAre("Bitstream_1.sof"));
}

TEST(generate, a_missing_output_directory_is_named)
{
    SETUP_BUILDER setup("PS");
    passive_setup(setup);
    const RUN run = generate(setup, {setup.path("none"), 0});
    EXPECT_FALSE(run.success);
    EXPECT_THAT(run.errors, ElementsAre("Output directory \"" + setup.path("none") +
                                        "\" doesn't exists. Please specify a valid output directory."));
    EXPECT_THAT(setup.directory().entries(), ElementsAre("Bitstream_1.sof"));
}

TEST(generate, an_output_that_is_an_input_is_refused_before_anything_is_written)
{
    SETUP_BUILDER setup("ASX1");
    active_setup(setup);
    std::filesystem::create_hard_link(setup.path("Bitstream_1.sof"), setup.path("out.pof"));
    const BYTES before = read_file(setup.path("Bitstream_1.sof"));
    const RUN run = generate(setup);
    EXPECT_FALSE(run.success);
    ASSERT_EQ(run.errors.size(), 1U);
    EXPECT_THAT(run.errors[0], HasSubstr("would overwrite the input"));
    EXPECT_EQ(read_file(setup.path("Bitstream_1.sof")), before);
    EXPECT_FALSE(std::filesystem::exists(setup.path("out.rpd")));
}

TEST(generate, a_setup_that_asks_for_encryption_without_a_key_is_not_written_in_the_clear)
{
    SETUP_BUILDER setup("PS");
    passive_setup(setup);
    setup.set(VEK_CMD_OPT_BITSTREAM, {{VEK_CMD_PARAM_BITSTREAM_ID, "Bitstream_1"},
                                      {VEK_CMD_PARAM_BITSTREAM_PATH, setup.path("Bitstream_1.sof")},
                                      {VEK_CMD_PARAM_BITSTREAM_PATH_ENCRYPTION, "1"}});
    const RUN run = generate(setup);
    EXPECT_FALSE(run.success);
    ASSERT_EQ(run.errors.size(), 1U);
    EXPECT_THAT(run.errors[0],
                HasSubstr("Encryption is on, and the device BS1L15 has no key; switch it off."));
    EXPECT_THAT(setup.directory().entries(), ElementsAre("Bitstream_1.sof"));
}

TEST(generate, an_input_that_is_damaged_fails_its_outputs_and_keeps_the_old_ones)
{
    SETUP_BUILDER setup("PS");
    passive_setup(setup);
    ASSERT_TRUE(generate(setup).success);
    const BYTES before = read_file(setup.path("out.rbf"));
    BYTES damaged = read_file(setup.path("Bitstream_1.sof"));
    damaged[damaged.size() / 2] ^= 1;
    write_file(setup.path("Bitstream_1.sof"), damaged);
    const RUN run = generate(setup);
    EXPECT_FALSE(run.success);
    EXPECT_TRUE(run.written.empty());
    ASSERT_EQ(run.errors.size(), 3U);
    EXPECT_THAT(run.errors[0], HasSubstr("Can't generate programming file"));
    EXPECT_THAT(run.errors[0], HasSubstr("is damaged"));
    EXPECT_EQ(read_file(setup.path("out.rbf")), before);
}

TEST(generate, a_failing_write_leaves_nothing_and_keeps_the_earlier_output)
{
    SETUP_BUILDER setup("ASX1");
    active_setup(setup);
    write_file(setup.path("out.rpd"), "earlier");
    const int code = in_child([&] {
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{1 << 20, 1 << 20};
        setrlimit(RLIMIT_FSIZE, &limit);
        const RUN run = generate(setup);
        return run.success ? 1 : run.errors.empty() ? 2 : 0;
    });
    EXPECT_EQ(code, 0);
    EXPECT_EQ(read_text_file(setup.path("out.rpd")), "earlier");
    for (const std::string& name : setup.directory().entries()) {
        EXPECT_FALSE(name.starts_with(".")) << name;
    }
}

TEST(generate, failures_are_told_in_the_order_of_the_outputs)
{
    SETUP_BUILDER setup("ASX1");
    active_setup(setup);
    // The map is written last of all, for its checksums.
    const std::vector<std::string> files = {"out.rpd", "out_secondary.map", "out.pof", "out_secondary.rpd"};
    for (const unsigned threads : {1U, 4U}) {
        const int code = in_child([&] {
            std::signal(SIGXFSZ, SIG_IGN);
            const rlimit limit{100, 100};
            setrlimit(RLIMIT_FSIZE, &limit);
            const std::vector<std::string> errors = generate(setup, GENERATE_OPTIONS{"", threads}).errors;
            const bool in_order =
                std::equal(files.begin(), files.end(), errors.begin(), errors.end(),
                           [&setup](const std::string& file, const std::string& error) {
                               return error.find(" " + setup.path(file) + " - ") != std::string::npos;
                           });
            return in_order ? 0 : 1 + static_cast<int>(errors.size());
        });
        EXPECT_EQ(code, 0) << threads;
    }
}

TEST(generate, a_kill_in_the_middle_leaves_no_file_under_a_final_name)
{
    SETUP_BUILDER setup("ASX1");
    setup.flash("Flash_Device_1", "MT25QL02G");
    setup.bitstream("Bitstream_1");
    setup.partition("Flash_Device_1", "P1");
    setup.assign("P1", "Bitstream_1", "0");
    setup.output("RPD", {}, "Flash_Device_1");
    // The limit kills the child in the middle of the file.
    const int code = in_child([&] {
        std::signal(SIGXFSZ, SIG_DFL);
        const rlimit limit{64 << 20, 64 << 20};
        setrlimit(RLIMIT_FSIZE, &limit);
        const rlimit no_core{0, 0};
        setrlimit(RLIMIT_CORE, &no_core);
        generate(setup);
        return 0;
    });
    EXPECT_EQ(code, 128 + SIGXFSZ);
    EXPECT_FALSE(std::filesystem::exists(setup.path("out.rpd")));
    ASSERT_TRUE(generate(setup).success);
    EXPECT_THAT(setup.directory().entries(), ElementsAre("Bitstream_1.sof", "out.rpd"));
}

TEST(generate, a_flash_image_of_256_mib_takes_little_memory)
{
    SETUP_BUILDER setup("ASX4");
    setup.flash("Flash_Device_1", "MT25QL02G");
    SMALL_BITSTREAM content = small("GR5S027", 1, 11'010'048);
    setup.bitstream("Bitstream_1", content);
    for (int i = 1; i <= 8; ++i) {
        setup.partition("Flash_Device_1", "P" + std::to_string(i));
        setup.assign("P" + std::to_string(i), "Bitstream_1", std::to_string(i));
    }
    setup.output("RPD", {}, "Flash_Device_1", {"MAP"});
    setup.output("POF", {}, "Flash_Device_1");
    rusage usage{};
    EXPECT_EQ(in_child([&] { return generate(setup).success ? 0 : 1; }, &usage), 0);
    EXPECT_EQ(std::filesystem::file_size(setup.path("out.rpd")), 256U << 20);
    RecordProperty("peak_kib", static_cast<int>(usage.ru_maxrss));
    std::printf("peak memory %ld KiB\n", usage.ru_maxrss);
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
    EXPECT_LT(usage.ru_maxrss, 64 * 1024 + 11 * 1024);
#endif
}
