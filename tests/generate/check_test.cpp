#include "check.h"
#include "setup_builder.h"
#include "vek_util.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

using testing::ElementsAre;

FINDINGS check(const SETUP_BUILDER& setup, bool include_files = true)
{
    FINDINGS findings;
    check_setup(setup.document(), include_files, "", findings);
    return findings;
}

/// The findings of a kind, as sentences.
std::vector<std::string> sentences(const FINDINGS& findings, FINDING_KIND kind)
{
    std::vector<std::string> result;
    for (const FINDING& finding : findings.all()) {
        if (finding.kind == kind) {
            result.push_back(finding.sentence());
        }
    }
    return result;
}

void expect_only(const SETUP_BUILDER& setup, FINDING_KIND kind, const std::string& sentence)
{
    const FINDINGS findings = check(setup);
    EXPECT_EQ(findings.message(), sentence);
    ASSERT_EQ(findings.all().size(), 1U);
    EXPECT_EQ(findings.all()[0].kind, kind) << findings.all()[0].row().name;
    EXPECT_EQ(findings.can_save(), findings.all()[0].row().severity != FINDING_FORBIDS_SAVE);
    EXPECT_EQ(findings.can_generate(), findings.all()[0].row().severity == FINDING_WARNING);
    EXPECT_EQ(findings.has_warning(), findings.all()[0].row().severity == FINDING_WARNING);
}

/// A setup without any finding, one bitstream to RBF.
struct PASSIVE : SETUP_BUILDER {
    PASSIVE() : SETUP_BUILDER("PS")
    {
        bitstream("Bitstream_1");
        output("RBF", {"Bitstream_1"});
    }
    PGM_COMMON_XML_VEK_PATH& file() { return *document().bitstreams[0]->bitstream[0]->path[0]; }
    PGM_COMMON_XML_VEK_OUTPUT_FILE& first_output() { return *document().output_files[0]->output_file[0]; }
};

/// The same with a flash device.
struct ACTIVE : SETUP_BUILDER {
    explicit ACTIVE(const std::string& start = "auto", const std::string& end = "auto")
        : SETUP_BUILDER("ASX1")
    {
        bitstream("Bitstream_1");
        flash("F", "W25Q16JV");
        partition("F", "P1", start, end);
        assign("P1", "Bitstream_1", "0");
        output("RPD", {}, "F");
    }
    PGM_COMMON_XML_VEK_FLASH_DEVICE& device() { return *document().flash_devices[0]->flash_device[0]; }
    PGM_COMMON_XML_VEK_ASSIGNMENT& assignment() { return *document().assignments[0]->assignment[0]; }
};

const std::string P1 = "FLASH_DEVICE \"F\" / PARTITION \"P1\": ";
const std::string FILE_LABEL = "BITSTREAM \"Bitstream_1\" / PATH \"Bitstream_1.sof\": ";

} // namespace

TEST(check, sound_setups_have_no_findings)
{
    EXPECT_EQ(check(PASSIVE()).message(), "");
    EXPECT_EQ(check(ACTIVE()).message(), "");
    EXPECT_TRUE(check(ACTIVE()).can_generate());
}

TEST(check, an_empty_setup_has_neither_mode_nor_output)
{
    const PGM_COMMON_XML_VEK_VEK document(PGM_COMMON_XML_ENUM_VEK);
    bool can_save = true;
    bool can_generate = true;
    bool has_warning = true;
    std::string message;
    EXPECT_TRUE(VEK_UTIL::check(&document, can_save, can_generate, message, has_warning, true));
    EXPECT_FALSE(can_save);
    EXPECT_FALSE(can_generate);
    EXPECT_FALSE(has_warning);
    EXPECT_EQ(message, "SETTINGS: No configuration mode is set; choose ASX1, ASX4, PS, FPP, LNKSX8, LNKSX16, "
                       "LNKSX32 or INTERNAL.\n"
                       "OUTPUT_FILES: The setup has no output file; choose at least one output file type.");
}

TEST(check, ids_must_be_there_and_be_unique)
{
    PASSIVE setup;
    setup.raw_file("Raw_File_1", "RBF", "a.rbf", "x");
    setup.raw_file("Raw_File_2", "RBF", "b.rbf", "x");
    setup.document().raw_files[0]->raw_file[1]->id = "Raw_File_1";
    EXPECT_THAT(sentences(check(setup), FINDING_ID_DUPLICATE),
                ElementsAre("RAW_FILE \"Raw_File_1\": Two elements have this id; rename one raw file."));
    setup.document().raw_files[0]->raw_file[1]->id = "Bitstream_1";
    EXPECT_THAT(sentences(check(setup), FINDING_ID_DUPLICATE),
                ElementsAre("RAW_FILE \"Bitstream_1\": A bitstream has this id too; rename one of them."));
    setup.document().raw_files[0]->raw_file[1]->id = "";
    EXPECT_THAT(sentences(check(setup), FINDING_ID_MISSING),
                ElementsAre("RAW_FILE: A raw file has no id; give it one."));
    EXPECT_FALSE(check(setup).can_save());
}

TEST(check, references_must_resolve)
{
    PASSIVE setup;
    setup.first_output().bitstream_id[0]->text = "Bitstream_9";
    EXPECT_THAT(
        sentences(check(setup), FINDING_REFERENCE_UNRESOLVED),
        ElementsAre(
            "OUTPUT_FILE \"RBF\": The setup has no bitstream \"Bitstream_9\"; correct the id or remove "
            "the reference."));
    ACTIVE flash;
    flash.assignment().partition_id = "P9";
    flash.assignment().bitstream_id[0]->text = "B9";
    EXPECT_THAT(
        sentences(check(flash), FINDING_REFERENCE_UNRESOLVED),
        ElementsAre("ASSIGNMENT \"P9\": The setup has no partition \"P9\"; correct the id or remove the "
                    "reference.",
                    "ASSIGNMENT \"P9\": The setup has no bitstream \"B9\"; correct the id or remove the "
                    "reference."));
    EXPECT_FALSE(check(flash).can_save());
}

TEST(check, two_outputs_or_assignments_of_one_kind_are_refused)
{
    PASSIVE setup;
    setup.output("HEX", {"Bitstream_1"});
    setup.document().output_files[0]->output_file[1]->type = "RBF";
    EXPECT_THAT(sentences(check(setup), FINDING_OUTPUT_DUPLICATE),
                ElementsAre("OUTPUT_FILE \"RBF\": The setup has two output files of this type; remove one."));
    ACTIVE flash;
    flash.partition("F", "P2");
    flash.assign("P2", "Bitstream_1", "1");
    flash.document().assignments[0]->assignment[1]->partition_id = "P1";
    EXPECT_THAT(sentences(check(flash), FINDING_ASSIGNMENT_DUPLICATE),
                ElementsAre("ASSIGNMENT \"P1\": Two assignments are for this partition; remove one."));
}

TEST(check, values_must_be_of_their_kind)
{
    ACTIVE setup;
    setup.assignment().page = "one";
    setup.device().partition[0]->reserved = "maybe";
    setup.document().output_files[0]->output_file[0]->flash_device_id[0]->text = "F";
    EXPECT_THAT(
        sentences(check(setup), FINDING_VALUE_ILLEGAL),
        ElementsAre(P1 + "The attribute \"reserved\" is \"maybe\"; it must be 1, 0, ON, OFF, true or false.",
                    "ASSIGNMENT \"P1\": The attribute \"page\" is \"one\"; it must be a decimal number below "
                    "4294967296."));
    PASSIVE passive;
    passive.file().signing = "LATER";
    EXPECT_FALSE(check(passive).can_save());
    EXPECT_THAT(sentences(check(passive), FINDING_VALUE_ILLEGAL)[0],
                testing::HasSubstr("The attribute \"signing\" is \"LATER\"; it must be OFF or ON."));
}

TEST(check, an_output_needs_its_input)
{
    PASSIVE setup;
    setup.output("HEX", {});
    expect_only(setup, FINDING_OUTPUT_WITHOUT_INPUT,
                "OUTPUT_FILE \"HEX\": No bitstream goes into this output file; add one.");
    SETUP_BUILDER no_flash("ASX1");
    no_flash.output("RPD", {});
    expect_only(no_flash, FINDING_OUTPUT_WITHOUT_INPUT,
                "OUTPUT_FILE \"RPD\": No flash device goes into this output file; add one.");
    SETUP_BUILDER empty("ASX1");
    empty.flash("F", "W25Q16JV");
    empty.output("RPD", {}, "F");
    expect_only(empty, FINDING_OUTPUT_WITHOUT_INPUT,
                "OUTPUT_FILE \"RPD\": No partition of the flash device \"F\" holds an input; add a partition "
                "and assign "
                "a bitstream or a raw file to it.");
}

TEST(check, an_output_must_be_on_offer_and_have_a_writer)
{
    PASSIVE setup;
    setup.first_output().type = "CCERT";
    const auto refused = sentences(check(setup), FINDING_OUTPUT_WITHOUT_WRITER);
    ASSERT_EQ(refused.size(), 1U) << check(setup).message();
    EXPECT_THAT(refused[0],
                testing::StartsWith("OUTPUT_FILE \"CCERT\": This version cannot write files of the type \""));
    EXPECT_THAT(refused[0], testing::EndsWith("\"; remove the output file."));
    ACTIVE flash;
    flash.output("RBF", {"Bitstream_1"});
    expect_only(
        flash, FINDING_OUTPUT_NOT_OFFERED,
        "OUTPUT_FILE \"RBF\": The type \"Raw Binary File (.rbf)\" is not made in the mode \"Active Serial\"; "
        "choose another type or another mode.");
}

TEST(check, a_vector_file_needs_a_frequency_with_its_unit)
{
    PASSIVE setup;
    setup.output("SVF", {"Bitstream_1"});
    setup.set(VEK_CMD_OPT_OUTPUT_FILE, {{VEK_CMD_PARAM_OUTPUT_FILE_TYPE, "SVF"},
                                        {VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_FREQUENCY, "fast"}});
    expect_only(
        setup, FINDING_FREQUENCY,
        "OUTPUT_FILE \"SVF\": The TCK frequency \"fast\" is no number with its unit, Hz, kHz or MHz, of at "
        "least 1 Hz; write one such as 10 MHz.");
}

TEST(check, an_output_file_holds_one_flash_device)
{
    ACTIVE setup;
    setup.flash("G", "W25Q16JV");
    setup.output("RPD", {}, "G");
    expect_only(setup, FINDING_FLASH_TOO_MANY,
                "OUTPUT_FILE \"RPD\": 2 flash devices go into this output file, and it can hold one; remove "
                "the others.");
}

TEST(check, a_master_boot_record_is_refused)
{
    ACTIVE setup;
    auto* record = new PGM_COMMON_XML_VEK_MBR;
    record->id = "MBR1";
    setup.device().group_child(record, false, true);
    expect_only(
        setup, FINDING_MBR_NOT_SUPPORTED,
        "FLASH_DEVICE \"F\" / MBR \"MBR1\": This version cannot write a master boot record; remove it.");
}

TEST(check, a_bitstream_without_a_page_in_a_device_with_pages_cannot_be_selected)
{
    SETUP_BUILDER setup("PS");
    setup.bitstream("Bitstream_1");
    setup.flash("F", "CFI_16MB");
    setup.reserved("F", false, false);
    setup.partition("F", "P1");
    setup.assign("P1", "Bitstream_1", "0");
    setup.output("POF", {}, "F");
    EXPECT_EQ(check(setup).message(), "");
    setup.document().assignments[0]->assignment[0]->page = "";
    const FINDINGS findings = check(setup);
    EXPECT_THAT(sentences(findings, FINDING_PAGE_MISSING),
                ElementsAre(testing::StartsWith("FLASH_DEVICE \"F\" / PARTITION \"P1\": ")));
    EXPECT_TRUE(findings.can_generate());
}

TEST(check, options_that_are_not_honoured_are_named)
{
    const std::vector<std::pair<std::string, std::string>> options = {
        {"smsf_file", "x"}, {"seu_recovery", "1"}};
    for (const auto& [attribute, value] : options) {
        SCOPED_TRACE(attribute);
        PASSIVE setup;
        setup.file().write_attribute_string(attribute, value);
        const FINDINGS findings = check(setup);
        ASSERT_EQ(findings.all().size(), 1U) << findings.message();
        EXPECT_EQ(findings.all()[0].kind, FINDING_OPTION_NOT_HONOURED);
        EXPECT_THAT(findings.message(),
                    testing::StartsWith(FILE_LABEL + "The attribute \"" + attribute + "\" asks for"));
        EXPECT_FALSE(findings.can_generate());
        EXPECT_TRUE(findings.can_save());
    }
    ACTIVE device;
    device.document().flash_devices[0]->flash_device[0]->chip_select = "1";
    expect_only(
        device, FINDING_OPTION_NOT_HONOURED,
        "FLASH_DEVICE \"F\": The attribute \"chip_select\" asks for a chip select, which this version "
        "does not do yet; switch the option off.");
    for (const auto& [attribute, value, words] :
         {std::array<std::string, 3>{"allow_device_state", "DEBUG", "a device state"},
          std::array<std::string, 3>{"subtype", "x", "a subtype"}}) {
        PASSIVE output;
        output.document().output_files[0]->output_file[0]->write_attribute_string(attribute, value);
        expect_only(output, FINDING_OPTION_NOT_HONOURED,
                    "OUTPUT_FILE \"RBF\": The attribute \"" + attribute + "\" asks for " + words +
                        ", which this version does not do yet; switch the option off.");
    }
}

TEST(check, options_that_exclude_each_other_are_refused)
{
    SETUP_BUILDER setup("ASX1");
    SMALL_BITSTREAM content;
    content.device = "GR5S027";
    setup.bitstream("Bitstream_1", content);
    setup.flash("F", "W25Q16JV");
    setup.partition("F", "P1");
    setup.assign("P1", "Bitstream_1", "0");
    setup.output("RPD", {}, "F");
    PGM_COMMON_XML_VEK_PATH& file = *setup.document().bitstreams[0]->bitstream[0]->path[0];
    file.compression = "1";
    file.enhanced_compression = "1";
    EXPECT_THAT(
        sentences(check(setup), FINDING_OPTION_CONFLICT),
        ElementsAre(
            "PATH \"Bitstream_1.sof\": Compression and enhanced compression exclude each other; switch "
            "one of them off."));
    PASSIVE passive;
    passive.file().enhanced_compression = "1";
    expect_only(passive, FINDING_OPTION_CONFLICT,
                "PATH \"Bitstream_1.sof\": The family Basalt has no enhanced compression; switch it off.");
}

TEST(check, inputs_must_be_sound)
{
    PASSIVE setup;
    std::filesystem::remove(setup.path("Bitstream_1.sof"));
    EXPECT_EQ(sentences(check(setup), FINDING_INPUT_REFUSED).size(), 1U);
    EXPECT_THAT(check(setup).message(), testing::HasSubstr("Bitstream_1.sof"));
    EXPECT_FALSE(check(setup).can_generate());
    EXPECT_TRUE(check(setup, false).can_generate()) << "without the files only the setup counts";
    write_file(setup.path("Bitstream_1.sof"), "no bitstream");
    EXPECT_THAT(check(setup).message(), testing::HasSubstr("is not a bitstream file"));
    ACTIVE raw;
    raw.raw_file("Raw_File_1", "HEX", "a.hex", "no hex");
    raw.partition("F", "DATA");
    raw.assign("DATA", "Raw_File_1");
    EXPECT_EQ(sentences(check(raw), FINDING_INPUT_REFUSED).size(), 1U);
}

TEST(check, a_bitstream_needs_a_file_and_a_use)
{
    PASSIVE setup;
    setup.set(VEK_CMD_OPT_BITSTREAM, {{VEK_CMD_PARAM_BITSTREAM_ID, "Bitstream_2"}});
    const FINDINGS findings = check(setup);
    EXPECT_THAT(
        sentences(findings, FINDING_BITSTREAM_EMPTY),
        ElementsAre(
            "BITSTREAM \"Bitstream_2\": The bitstream has no file; add one or remove the bitstream."));
    EXPECT_THAT(
        sentences(findings, FINDING_INPUT_UNUSED),
        ElementsAre(
            "BITSTREAM \"Bitstream_2\": The input goes into no output file; assign it to a partition, "
            "add it to an output, or remove it."));
}

TEST(check, devices_must_agree_with_family_mode_and_limits)
{
    SETUP_BUILDER single("ASX4");
    for (const char* id : {"B1", "B2"}) {
        SMALL_BITSTREAM content;
        content.device = "FD7X120";
        single.bitstream(id, content);
    }
    EXPECT_THAT(
        sentences(check(single), FINDING_BITSTREAMS_TOO_MANY),
        ElementsAre("BITSTREAMS: The setup has 2 bitstreams, and the device FD7X120 takes 1; remove the "
                    "others."));
    SMALL_BITSTREAM other;
    other.device = "ZR9A012";
    write_bitstream(single.path("B2.sof"), other);
    EXPECT_THAT(
        sentences(check(single), FINDING_FAMILY_MIXED),
        ElementsAre("BITSTREAM \"B2\" / PATH \"B2.sof\": The file is for the family Zircon, and the first "
                    "bitstream is for Feldspar; keep the files of one family."));
    SETUP_BUILDER lnks("LNKSX8");
    lnks.bitstream("Bitstream_1");
    lnks.output("RBF", {"Bitstream_1"});
    EXPECT_THAT(
        sentences(check(lnks), FINDING_FAMILY_WITHOUT_MODE),
        ElementsAre("SETTINGS: The family Basalt does not have the mode \"LNKS x8\"; choose another mode."));
    PASSIVE scheme;
    SMALL_BITSTREAM tied;
    tied.scheme = 7;
    write_bitstream(scheme.path("Bitstream_1.sof"), tied);
    expect_only(
        scheme, FINDING_SCHEME_DIFFERENT,
        FILE_LABEL +
            "The file was compiled for \"Active Serial\", and the mode of the setup is \"1-bit Passive "
            "Serial\"; compile it for that mode or choose the other one.");
}

TEST(check, the_flash_device_must_be_known_and_fit_the_mode)
{
    ACTIVE setup;
    setup.device().type = "NOFLASH";
    expect_only(setup, FINDING_FLASH_UNKNOWN,
                "FLASH_DEVICE \"F\": The flash device \"NOFLASH\" is not in the flash database; choose a "
                "device of the "
                "database or name the directory of your own.");
    setup.device().type = "CFI_16MB";
    EXPECT_EQ(sentences(check(setup), FINDING_FLASH_NOT_FOR_MODE).size(), 1U);
    EXPECT_THAT(
        check(setup).message(),
        testing::HasSubstr("of the family Parallel Flash cannot be used in the mode \"Active Serial\""));
}

TEST(check, a_flash_loader_is_needed_where_the_type_says_so_and_must_be_known)
{
    ACTIVE setup;
    setup.output("JIC", {}, "F");
    EXPECT_THAT(
        sentences(check(setup), FINDING_FLASH_LOADER_MISSING),
        ElementsAre(
            "OUTPUT_FILE \"JIC\": This output needs a flash loader and none is chosen; choose the device "
            "through which JTAG reaches the flash."));
    ACTIVE unknown;
    unknown.set(VEK_CMD_OPT_FLASH_LOADER, {{VEK_CMD_PARAM_FLASH_LOADER_FLASH_LOADER, "NOFPGA"}});
    expect_only(
        unknown, FINDING_FLASH_LOADER_UNKNOWN,
        "FLASH_LOADER: The flash loader \"NOFPGA\" is no FPGA of the device database; choose another.");
}

TEST(check, each_problem_of_the_layout_is_a_finding_of_its_partition)
{
    expect_only(
        ACTIVE("here"), FINDING_LAYOUT_ADDRESS,
        P1 + "The start address \"here\" of partition \"P1\" is no hexadecimal number; write \"auto\" or an "
             "address such as 0x00010000.");
    expect_only(ACTIVE("0x20000", "0x10000"), FINDING_LAYOUT_START_ABOVE_END,
                P1 + "The start address 0x00020000 of partition \"P1\" lies above its end address "
                     "0x00010000; exchange "
                     "or correct them.");
    expect_only(ACTIVE("0x00100000", "0x00200000"), FINDING_LAYOUT_BEYOND_DEVICE,
                P1 + "The partition \"P1\" (0x00100000 to 0x00200000) leaves the flash device (0x00000000 to "
                     "0x001FFFFF); move it down, make it smaller, or choose a larger device.");
    EXPECT_EQ(sentences(check(ACTIVE("0x0", "0xFFFF")), FINDING_LAYOUT_CONTENT).size(), 1U);
    ACTIVE overlap("0x0", "0x1FFFF");
    overlap.partition("F", "P2", "0x10000", "0x1FFFF");
    EXPECT_THAT(
        sentences(check(overlap), FINDING_LAYOUT_OVERLAP),
        ElementsAre("FLASH_DEVICE \"F\" / PARTITION \"P2\": The partition \"P2\" (0x00010000 to 0x0001FFFF) "
                    "overlaps partition \"P1\" (0x00000000 to 0x0001FFFF); move one of them, or let the tool "
                    "place it with \"auto\"."));
    EXPECT_THAT(sentences(check(overlap), FINDING_PARTITION_EMPTY).size(), 1U);
    ACTIVE full;
    full.device().partition[0]->extra_space = "2097152";
    EXPECT_EQ(sentences(check(full), FINDING_LAYOUT_NO_ROOM).size(), 1U);
    EXPECT_EQ(sentences(check(ACTIVE("0x100", "0x3FFFF")), FINDING_LAYOUT_UNALIGNED).size(), 1U);
    EXPECT_TRUE(check(ACTIVE("0x100", "0x3FFFF")).can_generate());
    ACTIVE pages;
    pages.partition("F", "P2");
    pages.assign("P2", "Bitstream_1", "0");
    EXPECT_EQ(sentences(check(pages), FINDING_PAGE_SHARED).size(), 1U);
    ACTIVE high;
    high.assignment().page = "32";
    expect_only(high, FINDING_PAGE_OUT_OF_RANGE,
                P1 + "The page is 32, and the highest that there is is 31; choose a lower one.");
}

TEST(check, a_boot_layout_needs_its_factory_image_and_wants_firmware)
{
    SETUP_BUILDER setup("ASX4");
    SMALL_BITSTREAM content;
    content.device = "ZR9A012";
    setup.bitstream("B1", content);
    setup.flash("F", "W25Q128JV");
    setup.reserved("F", true, false);
    setup.partition("F", std::string(32, 'N'));
    setup.assign(std::string(32, 'N'), "B1", "1");
    setup.output("RPD", {}, "F");
    const FINDINGS findings = check(setup);
    EXPECT_THAT(
        sentences(findings, FINDING_PARTITION_WITHOUT_INPUT),
        ElementsAre("FLASH_DEVICE \"F\" / PARTITION \"FACTORY_IMAGE\": No bitstream is assigned to this "
                    "partition, from which the device boots; assign one."));
    EXPECT_EQ(sentences(findings, FINDING_FIRMWARE_MISSING).size(), 1U);
    EXPECT_EQ(sentences(findings, FINDING_PARTITION_NAME_TOO_LONG).size(), 1U);
    setup.assign("SPT0", "B1", "");
    EXPECT_THAT(
        sentences(check(setup), FINDING_OPTION_CONFLICT),
        ElementsAre(
            "FLASH_DEVICE \"F\" / PARTITION \"SPT0\": An input is assigned to this partition, which the "
            "tool fills itself; remove the assignment."));
}

TEST(check, the_target_must_be_a_file_that_can_be_written)
{
    PASSIVE name;
    name.first_output().name = "";
    expect_only(name, FINDING_NAME_ILLEGAL,
                "OUTPUT_FILE \"RBF\": The name of the output file is empty; choose another name.");
    name.first_output().name = "../out";
    EXPECT_EQ(sentences(check(name), FINDING_NAME_ILLEGAL).size(), 1U);
    name.first_output().name = std::string(252, 'n');
    EXPECT_EQ(sentences(check(name), FINDING_NAME_ILLEGAL).size(), 1U);
    PASSIVE missing;
    missing.first_output().directory = missing.path("none");
    expect_only(missing, FINDING_DIRECTORY_MISSING,
                "OUTPUT_FILE \"RBF\": The output directory \"" + missing.path("none") +
                    "\" does not exist; create it or choose another.");
    PASSIVE blocked;
    std::filesystem::create_directory(blocked.path("out.rbf"));
    expect_only(blocked, FINDING_OUTPUT_BLOCKED,
                "OUTPUT_FILE \"RBF\": \"" + blocked.path("out.rbf") +
                    "\" is there and is no regular file; remove it or choose another name.");
    PASSIVE input;
    std::filesystem::create_symlink(input.path("Bitstream_1.sof"), input.path("out.rbf"));
    expect_only(input, FINDING_OUTPUT_IS_INPUT,
                "OUTPUT_FILE \"RBF\": The output file \"" + input.path("out.rbf") +
                    "\" would overwrite the input \"" + input.path("Bitstream_1.sof") +
                    "\"; choose another name or directory.");
    ACTIVE collision;
    collision.output("POF", {}, "F", {"SEC_RPD"});
    collision.document().output_files[0]->output_file[1]->secondary_file[0]->name = "out";
    expect_only(
        collision, FINDING_OUTPUT_COLLISION,
        "OUTPUT_FILE \"POF\" / SECONDARY_FILE \"SEC_RPD\": The output file \"" + collision.path("out.rpd") +
            "\" is also that of OUTPUT_FILE \"RPD\"; choose another name or directory for one of them.");
}

TEST(check, keys_that_the_options_ask_for_must_be_there)
{
    SETUP_BUILDER setup("ASX1");
    SMALL_BITSTREAM content;
    content.device = "CA3M050";
    setup.bitstream("Bitstream_1", content);
    PGM_COMMON_XML_VEK_PATH& file = *setup.document().bitstreams[0]->bitstream[0]->path[0];
    file.encryption = "1";
    EXPECT_THAT(sentences(check(setup), FINDING_KEY_FILE),
                ElementsAre(FILE_LABEL + "No key file is named although encryption is on; name one."));
    file.key_file1 = setup.path("keys.key");
    write_file(file.key_file1, "first " + std::string(64, 'A') + "\n");
    file.key1 = "second";
    EXPECT_THAT(sentences(check(setup), FINDING_KEY_NAME),
                ElementsAre(FILE_LABEL + "The key file \"" + file.key_file1 +
                            "\" has no key \"second\"; choose one of its keys."));
    write_file(file.key_file1, "first AAAA\n");
    EXPECT_EQ(sentences(check(setup), FINDING_KEY_FILE).size(), 1U);
    file.encryption = "0";
    file.signing = "ON";
    EXPECT_EQ(sentences(check(setup), FINDING_SECURITY_NOT_OFFERED).size(), 1U);
    SETUP_BUILDER secure("ASX4");
    content.device = "ZR9A012";
    secure.bitstream("Bitstream_1", content);
    PGM_COMMON_XML_VEK_PATH& signed_file = *secure.document().bitstreams[0]->bitstream[0]->path[0];
    signed_file.signing = "ON";
    EXPECT_THAT(sentences(check(secure), FINDING_SIGNING_KEY),
                ElementsAre(FILE_LABEL + "No private key file is named although signing is on; name one."));
    signed_file.finalize_encryption = "1";
    EXPECT_THAT(
        sentences(check(secure), FINDING_AES_KEY_FILE),
        ElementsAre(FILE_LABEL +
                    "No AES key file is named although the encryption is to be finalised; name one."));
}

TEST(check, every_finding_of_a_setup_is_told_at_once)
{
    PASSIVE setup;
    setup.first_output().name = "a/b";
    setup.file().seu_recovery = "1";
    setup.output("SVF", {});
    EXPECT_EQ(check(setup).all().size(), 3U) << check(setup).message();
}

TEST(check, the_documentation_lists_every_finding_as_the_table_has_it)
{
    std::ifstream file(std::string(IMAGEWRIGHT_SOURCE_DIR) + "/docs/check-findings.md");
    std::vector<std::string> documented;
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with("| ") && !line.starts_with("| Finding")) {
            documented.push_back(line);
        }
    }
    std::vector<std::string> rows;
    for (const FINDING_ROW& row : finding_table()) {
        EXPECT_EQ(row.kind, static_cast<FINDING_KIND>(rows.size()));
        rows.push_back("| " + std::string(row.name) + " | " + finding_severity_name(row.severity) + " | " +
                       row.meaning + " | " + row.remedy + " |");
    }
    EXPECT_EQ(documented, rows);
}

TEST(check, a_directory_that_the_user_may_not_write_to_is_refused)
{
    PASSIVE setup;
    ASSERT_EQ(chmod(setup.directory().path().c_str(), 0555), 0);
    const pid_t child = fork();
    if (child == 0) {
        if (setgid(65534) != 0 || setuid(65534) != 0) {
            _exit(2);
        }
        const auto found = sentences(check(setup), FINDING_DIRECTORY_NOT_WRITABLE);
        _exit(found ==
                      std::vector<std::string>{
                          "OUTPUT_FILE \"RBF\": The output directory \"" + setup.directory().path() +
                          "\" cannot be written to; change its permissions or choose another."}
                  ? 0
                  : 1);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    chmod(setup.directory().path().c_str(), 0755);
}
