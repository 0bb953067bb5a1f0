// Files for JTAG, partial reconfiguration, and configurations whose periphery and core come separately.

#include "check.h"
#include "generate_job.h"
#include "jbc_player.h"
#include "map_decoder.h"
#include "msg_service.h"
#include "output_plan.h"
#include "pof_decoder.h"
#include "reference_loader.h"
#include "setup_builder.h"
#include "stapl_player.h"
#include "svf_player.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

namespace
{

using BYTES = std::vector<std::uint8_t>;
using testing::HasSubstr;

std::vector<std::string> generate(const SETUP_BUILDER& setup)
{
    std::vector<std::string> errors;
    const MSG_SINK_SCOPE sink([&errors](const MSG_RECORD& record) {
        if (record.severity == MSG_SEVERITY::ERROR) {
            errors.push_back(record.text);
        }
    });
    std::vector<WRITTEN_FILE> written;
    const bool success = generate_document(setup.document(), {}, written);
    EXPECT_EQ(success, errors.empty());
    return errors;
}

void expect_generates(const SETUP_BUILDER& setup)
{
    EXPECT_THAT(generate(setup), testing::IsEmpty());
}

std::vector<std::string> findings(const SETUP_BUILDER& setup)
{
    FINDINGS found;
    check_setup(setup.document(), true, "", found);
    std::vector<std::string> sentences;
    for (const FINDING& finding : found.all()) {
        sentences.push_back(finding.sentence());
    }
    return sentences;
}

LOADED_STREAM load(const BYTES& bytes, std::uint64_t offset = 0)
{
    LOADED_STREAM stream;
    std::string error;
    EXPECT_TRUE(load_configuration_stream(std::span(bytes).subspan(offset), stream, error)) << error;
    return stream;
}

SMALL_BITSTREAM content_for(const std::string& device, unsigned seed)
{
    SMALL_BITSTREAM content;
    content.device = device;
    content.seed = seed;
    content.periphery = 3000;
    content.core = 50000;
    return content;
}

BYTES periphery_of(const SMALL_BITSTREAM& content)
{
    return noise(content.periphery, content.seed * 2);
}

BYTES core_of(const SMALL_BITSTREAM& content)
{
    return noise(content.core, content.seed * 2 + 1);
}

SETUP_BUILDER& with_loader(SETUP_BUILDER& setup, const std::string& device)
{
    setup.set(VEK_CMD_OPT_FLASH_LOADER, {{VEK_CMD_PARAM_FLASH_LOADER_FLASH_LOADER, device}});
    return setup;
}

void set_group(SETUP_BUILDER& setup, const std::string& type, PGM_COMMON_XML_VEK_CMD_PARAM_ENUM flag)
{
    setup.set(VEK_CMD_OPT_OUTPUT_FILE, {{VEK_CMD_PARAM_OUTPUT_FILE_TYPE, type}, {flag, "1"}});
}

void set_svf_options(SETUP_BUILDER& setup, const std::string& operation, const std::string& frequency)
{
    setup.set(VEK_CMD_OPT_OUTPUT_FILE, {{VEK_CMD_PARAM_OUTPUT_FILE_TYPE, "SVF"},
                                        {VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_OPERATION, operation},
                                        {VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_FREQUENCY, frequency},
                                        {VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_VOLTAGE, "2_5V"}});
}

/// Each action of the program files of a setup with RBF, JAM and JBC, played into a device.
void expect_programs_configure(const SETUP_BUILDER& setup, std::uint32_t idcode)
{
    const BYTES stream = read_file(setup.path("out.rbf"));
    STAPL_PROGRAM jam = STAPL_PROGRAM::parse(read_text_file(setup.path("out.jam")));
    const JBC_PROGRAM jbc = JBC_PROGRAM::parse(read_file(setup.path("out.jbc")));
    EXPECT_EQ(jam.fault, "");
    EXPECT_EQ(jbc.fault, "");
    const auto play_both = [&](const std::string& action, const BYTES& before, const BYTES& after, int code) {
        for (const bool text : {true, false}) {
            JTAG_DEVICE device(idcode, 10);
            device.expected_size = stream.size();
            device.stream = before;
            EXPECT_EQ(text ? jam.run(action, device) : jbc.run(action, device), code) << action << text;
            EXPECT_EQ(jam.fault, "");
            EXPECT_TRUE(device.stream == after) << action << text;
            EXPECT_THAT(device.complaints, testing::IsEmpty());
        }
    };
    BYTES other = stream;
    other.back() ^= 0x80;
    play_both("PROGRAM", other, stream, 0);
    play_both("VERIFY", stream, stream, 0);
    play_both("VERIFY", other, other, 11);
    play_both("BLANKCHECK_PROGRAM", {}, stream, 0);
    play_both("BLANKCHECK", other, other, 9);
    play_both("ERASE", other, {}, 0);
}

} // namespace

TEST(jtag_outputs, a_device_that_plays_the_vectors_gets_what_the_raw_file_holds)
{
    SETUP_BUILDER setup("PS");
    setup.bitstream("Bitstream_1", content_for("BS1L15", 1));
    setup.output("RBF", {"Bitstream_1"});
    setup.output("SVF", {"Bitstream_1"});
    for (const std::string operation : {"P", "PB", "V"}) {
        set_svf_options(setup, operation, "2.5 MHz");
        expect_generates(setup);
        const BYTES stream = read_file(setup.path("out.rbf"));
        JTAG_DEVICE device(0x10A15BC7, 10);
        device.expected_size = stream.size();
        if (operation == "V") {
            device.stream = stream;
        }
        const std::string text = read_text_file(setup.path("out.svf"));
        const SVF_RUN run = play_svf(text, device);
        EXPECT_EQ(run.fault, "") << operation;
        EXPECT_EQ(device.stream, stream);
        EXPECT_TRUE(device.complaints.empty());
        EXPECT_EQ(run.frequency, 2.5e6);
        EXPECT_THAT(text, HasSubstr("! Supply voltage: 2.5 V\n"));
        EXPECT_EQ(device.erasures, operation == "P" ? 1U : 0U);
    }
}

TEST(jtag_outputs, the_programs_put_into_a_device_what_the_raw_file_holds)
{
    SETUP_BUILDER setup("PS");
    setup.bitstream("Bitstream_1", content_for("BS1L15", 1));
    for (const std::string type : {"RBF", "JAM", "JBC"}) {
        setup.output(type, {"Bitstream_1"});
    }
    EXPECT_THAT(findings(setup), testing::IsEmpty());
    expect_generates(setup);
    expect_programs_configure(setup, 0x10A15BC7);
    EXPECT_THAT(read_text_file(setup.path("out.jam")), HasSubstr("NOTE \"DEVICE\" \"BS1L15\";\n"));
    EXPECT_EQ(JBC_PROGRAM::parse(read_file(setup.path("out.jbc"))).device, "BS1L15");
}

TEST(jtag_outputs, the_programs_serve_the_secure_devices_too)
{
    SETUP_BUILDER setup("LNKSX8");
    setup.bitstream("Bitstream_1", content_for("ZR9A012", 3));
    for (const std::string type : {"RBF", "JAM", "JBC"}) {
        setup.output(type, {"Bitstream_1"});
    }
    expect_generates(setup);
    expect_programs_configure(setup, 0x11212BC7);
}

TEST(jtag_outputs, the_vectors_are_for_the_device_of_their_own_bitstream)
{
    SETUP_BUILDER setup("PS");
    setup.bitstream("Bitstream_1", content_for("BS1L15", 1));
    setup.bitstream("Bitstream_2", content_for("BS1L40", 2));
    setup.output("RBF", {"Bitstream_1"});
    setup.output("SVF", {"Bitstream_2"});
    expect_generates(setup);
    JTAG_DEVICE device(0x10A40BC7, 10);
    device.expected_size = 1;
    play_svf(read_text_file(setup.path("out.svf")), device);
    EXPECT_EQ(load(device.stream).images.at(0).device, "BS1L40");
}

TEST(jtag_outputs, a_frequency_needs_a_number_and_a_unit)
{
    struct ROW {
        const char* text;
        std::uint64_t hertz; ///< 0 for a refusal
    };
    constexpr ROW ROWS[] = {{"10 MHz", 10'000'000},
                            {"10MHZ", 10'000'000},
                            {"0.5 mhz", 500'000},
                            {"12.500 kHz", 12'500},
                            {"32768 Hz", 32768},
                            {"10", 0},
                            {"", 0},
                            {"0 Hz", 0},
                            {"0.5 Hz", 0},
                            {"-1 MHz", 0},
                            {"1,5 MHz", 0},
                            {"1e6 Hz", 0},
                            {"99999999999999999999 Hz", 0},
                            {"5 GHz", 0},
                            {"5 MHz or so", 0}};
    for (const ROW& row : ROWS) {
        std::uint64_t frequency = 0;
        EXPECT_EQ(parse_frequency(row.text, frequency), row.hertz != 0) << row.text;
        EXPECT_TRUE(row.hertz == 0 || frequency == row.hertz) << row.text;
    }
    SETUP_BUILDER setup("PS");
    setup.bitstream("Bitstream_1");
    setup.output("SVF", {"Bitstream_1"});
    set_svf_options(setup, "P", "fast");
    EXPECT_THAT(
        findings(setup),
        testing::ElementsAre("OUTPUT_FILE \"SVF\": The TCK frequency \"fast\" is no number with its unit, "
                             "Hz, kHz or MHz, of at least 1 Hz; write one such as 10 MHz."));
    EXPECT_FALSE(generate(setup).empty());
}

TEST(jtag_outputs, an_indirect_file_names_the_loader_and_holds_the_flash_image)
{
    SETUP_BUILDER setup("ASX1");
    setup.bitstream("Bitstream_1", content_for("BS1L15", 1));
    setup.flash("Flash_Device_1", "W25Q32JV");
    setup.partition("Flash_Device_1", "P1");
    setup.assign("P1", "Bitstream_1", "0");
    setup.output("JIC", {}, "Flash_Device_1", {"MAP", "SEC_RPD"});
    with_loader(setup, "BS1L40");
    EXPECT_THAT(findings(setup), testing::IsEmpty());
    expect_generates(setup);
    const DECODED_POF jic = decode_jic(read_file(setup.path("out.jic")));
    EXPECT_EQ(jic.fault, "");
    EXPECT_EQ(jic.device, "W25Q32JV");
    EXPECT_EQ(jic.loader.name, "BS1L40");
    EXPECT_EQ(jic.loader.idcode, 0x10A40BC7U);
    EXPECT_EQ(jic.loader.jedec_id, 0xEF4016U);
    EXPECT_EQ(jic.loader.address_bytes, 3U);
    EXPECT_EQ(jic.loader.sector, 65536U);
    EXPECT_EQ(jic.image, read_file(setup.path("out_secondary.rpd")));
    EXPECT_EQ(load(jic.image).images.at(0).configuration(), configuration_of(content_for("BS1L15", 1)));
    EXPECT_EQ(decode_map(read_file(setup.path("out_secondary.map"))).rows.size(), 1U);
}

TEST(jtag_outputs, a_partial_bitstream_becomes_a_partial_stream)
{
    SETUP_BUILDER setup("PS");
    SMALL_BITSTREAM content = content_for("CA3M050", 4);
    content.partial = true;
    content.periphery = 0;
    setup.bitstream("Bitstream_1", content);
    setup.output("PRRBF", {"Bitstream_1"});
    EXPECT_THAT(findings(setup), testing::IsEmpty());
    expect_generates(setup);
    const LOADED_STREAM stream = load(read_file(setup.path("out.prrbf")));
    ASSERT_EQ(stream.images.size(), 1U);
    EXPECT_TRUE(stream.images[0].partial);
    EXPECT_EQ(stream.images[0].core, core_of(content));
    ASSERT_EQ(stream.images[0].regions.size(), 1U);
    EXPECT_EQ(stream.images[0].regions[0].name, "region");
}

TEST(split_outputs, periphery_and_core_are_files_of_their_own)
{
    SETUP_BUILDER setup("PS");
    const SMALL_BITSTREAM content = content_for("GR5S027", 5);
    setup.bitstream("Bitstream_1", content);
    setup.output("PERIPH_RBF", {"Bitstream_1"}, "", {"CVP_CORE_RBF"});
    set_group(setup, "PERIPH_RBF", VEK_CMD_PARAM_OUTPUT_FILE_CVP);
    EXPECT_THAT(findings(setup), testing::IsEmpty());
    expect_generates(setup);
    const LOADED_STREAM periphery = load(read_file(setup.path("out.periph.rbf")));
    const LOADED_STREAM core = load(read_file(setup.path("out_secondary.rbf")));
    ASSERT_EQ(periphery.images.size(), 1U);
    EXPECT_EQ(periphery.images[0].periphery, periphery_of(content));
    EXPECT_TRUE(periphery.images[0].core.empty());
    ASSERT_EQ(core.images.size(), 1U);
    EXPECT_EQ(core.images[0].core, core_of(content));
    EXPECT_TRUE(core.images[0].periphery.empty());
}

TEST(split_outputs, a_flash_device_takes_the_periphery_and_its_secondary_files_follow)
{
    SETUP_BUILDER setup("ASX4");
    const SMALL_BITSTREAM content = content_for("GR5S027", 6);
    setup.bitstream("Bitstream_1", content);
    setup.flash("Flash_Device_1", "W25Q32JV");
    setup.partition("Flash_Device_1", "P1");
    setup.assign("P1", "Bitstream_1", "0");
    setup.output("PERIPH_POF", {}, "Flash_Device_1", {"CVP_CORE_RBF", "MAP", "SEC_RPD"});
    setup.output("PERIPH_JIC", {}, "Flash_Device_1");
    setup.output("POF", {}, "Flash_Device_1");
    for (const char* type : {"PERIPH_POF", "PERIPH_JIC"}) {
        set_group(setup, type, VEK_CMD_PARAM_OUTPUT_FILE_CVP);
    }
    with_loader(setup, "GR5S027");
    EXPECT_THAT(findings(setup), testing::IsEmpty());
    expect_generates(setup);
    const DECODED_POF pof = decode_pof(read_file(setup.path("out.periph.pof")));
    EXPECT_EQ(pof.fault, "");
    const LOADED_STREAM periphery = load(pof.image);
    EXPECT_EQ(periphery.images.at(0).periphery, periphery_of(content));
    EXPECT_TRUE(periphery.images.at(0).core.empty());
    EXPECT_EQ(pof.partitions.at(0).used, periphery.used);
    EXPECT_EQ(load(read_file(setup.path("out_secondary.rbf"))).images.at(0).core, core_of(content));
    EXPECT_EQ(read_file(setup.path("out_secondary.rpd")), pof.image);
    EXPECT_EQ(decode_jic(read_file(setup.path("out.periph.jic"))).image, pof.image);
    // The same flash device under a complete output holds the complete stream.
    EXPECT_EQ(load(decode_pof(read_file(setup.path("out.pof"))).image).images.at(0).configuration(),
              configuration_of(content));
}

TEST(split_outputs, the_processor_group_gets_the_core_of_every_bitstream_of_its_flash_device)
{
    SETUP_BUILDER setup("ASX4");
    setup.bitstream("Bitstream_1", content_for("ZR9A012", 7));
    setup.bitstream("Bitstream_2", content_for("ZR9A012", 8));
    setup.flash("Flash_Device_1", "W25Q32JV");
    for (const char* id : {"1", "2"}) {
        setup.partition("Flash_Device_1", std::string("P") + id);
        setup.assign(std::string("P") + id, std::string("Bitstream_") + id, id);
    }
    setup.output("PERIPH_RPD", {}, "Flash_Device_1", {"HPS_CORE_RBF"});
    set_group(setup, "PERIPH_RPD", VEK_CMD_PARAM_OUTPUT_FILE_HPS);
    expect_generates(setup);
    const LOADED_STREAM core = load(read_file(setup.path("out_secondary.rbf")));
    ASSERT_EQ(core.images.size(), 2U);
    EXPECT_EQ(core.images[0].core, core_of(content_for("ZR9A012", 7)));
    EXPECT_EQ(core.images[1].core, core_of(content_for("ZR9A012", 8)));
    EXPECT_EQ(load(read_file(setup.path("out.hps.rpd"))).images.at(0).periphery,
              periphery_of(content_for("ZR9A012", 7)));
}

TEST(split_outputs, a_partition_that_holds_the_periphery_alone_may_be_small)
{
    SETUP_BUILDER setup("ASX4");
    setup.bitstream("Bitstream_1", content_for("GR5S027", 9));
    setup.flash("Flash_Device_1", "W25Q32JV");
    setup.partition("Flash_Device_1", "P1", "0x00000000", "0x0000FFFF");
    setup.partition("Flash_Device_1", "P2", "0x00010000", "0x00013FFF");
    setup.assign("P1", "Bitstream_1", "0");
    setup.assign("P2", "Bitstream_1", "1");
    setup.output("PERIPH_RPD", {}, "Flash_Device_1");
    set_group(setup, "PERIPH_RPD", VEK_CMD_PARAM_OUTPUT_FILE_CVP);
    for (const std::string& sentence : findings(setup)) {
        EXPECT_THAT(sentence, testing::Not(HasSubstr("content"))) << sentence;
    }
    expect_generates(setup);
    EXPECT_EQ(std::filesystem::file_size(setup.path("out.periph.rpd")), 4U << 20);
}

TEST(split_outputs, a_bitstream_without_periphery_fails_the_periphery_file)
{
    SETUP_BUILDER setup("PS");
    SMALL_BITSTREAM content = content_for("GR5S027", 10);
    content.periphery = 0;
    setup.bitstream("Bitstream_1", content);
    setup.output("PERIPH_RBF", {"Bitstream_1"});
    set_group(setup, "PERIPH_RBF", VEK_CMD_PARAM_OUTPUT_FILE_CVP);
    const std::vector<std::string> errors = generate(setup);
    ASSERT_EQ(errors.size(), 1U);
    EXPECT_THAT(errors[0], HasSubstr("periphery data"));
    EXPECT_FALSE(std::filesystem::exists(setup.path("out.periph.rbf")));
}
