// Each finding of the check, provoked alone, with the whole sentence that the user reads.

#include "aek_file.h"
#include "lock_file.h"
#include "security_fixture.h"

#include <algorithm>
#include <filesystem>
#include <functional>
#include <unistd.h>

namespace
{

using SETUP = std::unique_ptr<SETUP_BUILDER>;

struct FINDING_CASE {
    FINDING_KIND kind;
    SETUP (*make)();
    const char* sentence; ///< with DIR for the directory of the setup
    bool as_nobody = false;
};

void PrintTo(const FINDING_CASE& one, std::ostream* stream)
{
    *stream << finding_table()[one.kind].name;
}

PGM_COMMON_XML_VEK_OUTPUT_FILE& output_of(SETUP_BUILDER& setup, std::size_t i = 0)
{
    return *setup.document().output_files[0]->output_file[i];
}

PGM_COMMON_XML_VEK_FLASH_DEVICE& device_of(SETUP_BUILDER& setup)
{
    return *setup.document().flash_devices[0]->flash_device[0];
}

PGM_COMMON_XML_VEK_ASSIGNMENT& assignment_of(SETUP_BUILDER& setup, std::size_t i = 0)
{
    return *setup.document().assignments[0]->assignment[i];
}

/// One bitstream to RBF, without any finding.
SETUP passive(const SMALL_BITSTREAM& content = {}, const std::string& mode = "PS")
{
    auto setup = std::make_unique<SETUP_BUILDER>(mode);
    setup->bitstream("Bitstream_1", content);
    setup->output("RBF", {"Bitstream_1"});
    return setup;
}

/// One bitstream in a flash device to RPD, without any finding.
SETUP active(const std::string& start = "auto", const std::string& end = "auto")
{
    auto setup = std::make_unique<SETUP_BUILDER>("ASX1");
    setup->bitstream("Bitstream_1");
    setup->flash("F", "W25Q16JV");
    setup->partition("F", "P1", start, end);
    setup->assign("P1", "Bitstream_1", "0");
    setup->output("RPD", {}, "F");
    return setup;
}

/// The same with a second partition that holds the same.
SETUP active_twice(const std::string& start = "auto", const std::string& end = "auto",
                   const std::string& page = "1")
{
    auto setup = active(start == "auto" ? "auto" : "0x00000000", start == "auto" ? "auto" : "0x0001FFFF");
    setup->partition("F", "P2", start, end);
    setup->assign("P2", "Bitstream_1", page);
    return setup;
}

/// A boot layout of a secure family with everything that it needs.
SETUP boot_layout(std::size_t firmware, const std::string& partition, bool factory = true)
{
    SMALL_BITSTREAM content;
    content.device = "ZR9A012";
    content.firmware = firmware;
    auto setup = std::make_unique<SETUP_BUILDER>("ASX4");
    setup->bitstream("B1", content);
    setup->flash("F", "W25Q128JV");
    setup->reserved("F", true, false);
    setup->partition("F", partition);
    setup->assign(partition, "B1", "1");
    if (factory) {
        setup->assign("FACTORY_IMAGE", "B1", "0");
    } else {
        setup->assign("BOOT_INFO", "B1", "");
    }
    setup->output("RPD", {}, "F");
    return setup;
}

SETUP encrypted()
{
    auto setup = std::make_unique<ENCRYPTED>();
    setup->output("RBF", {"Bitstream_1"});
    return setup;
}

SETUP signed_setup()
{
    auto setup = std::make_unique<SIGNED>();
    setup->output("RBF", {"Bitstream_1"});
    return setup;
}

/// A setup to which something is done.
template <class CHANGE>
SETUP changed(SETUP setup, CHANGE change)
{
    change(*setup);
    return setup;
}

using S = SETUP_BUILDER;

const FINDING_CASE CASES[] = {
    {FINDING_MODE_MISSING,
     [] { return changed(passive(), [](S& s) { s.document().settings[0]->mode = ""; }); },
     "SETTINGS: No configuration mode is set; choose ASX1, ASX4, PS, FPP, LNKSX8, LNKSX16, LNKSX32 or "
     "INTERNAL."},
    {FINDING_ID_MISSING,
     [] {
         return changed(passive(), [](S& s) {
             s.document().bitstreams[0]->bitstream[0]->id = "";
             output_of(s).bitstream_id[0]->text = "";
         });
     },
     "BITSTREAM: A bitstream has no id; give it one."},
    {FINDING_ID_DUPLICATE,
     [] {
         return changed(passive(), [](S& s) {
             s.bitstream("Bitstream_2");
             s.document().bitstreams[0]->bitstream[1]->id = "Bitstream_1";
         });
     },
     "BITSTREAM \"Bitstream_1\": Two elements have this id; rename one bitstream."},
    {FINDING_REFERENCE_UNRESOLVED,
     [] {
         return changed(active(), [](S& s) {
             s.output("POF", {}, "F");
             s.set(VEK_CMD_OPT_OUTPUT_FILE, {{VEK_CMD_PARAM_OUTPUT_FILE_TYPE, "POF"},
                                             {VEK_CMD_PARAM_OUTPUT_FILE_BITSTREAM_ID, "Bitstream_9"}});
         });
     },
     "OUTPUT_FILE \"POF\": The setup has no bitstream \"Bitstream_9\"; correct the id or remove the "
     "reference."},
    {FINDING_OUTPUT_DUPLICATE,
     [] {
         return changed(passive(), [](S& s) {
             s.output("HEX", {"Bitstream_1"});
             output_of(s, 1).type = "RBF";
             output_of(s, 1).name = "other";
         });
     },
     "OUTPUT_FILE \"RBF\": The setup has two output files of this type; remove one."},
    {FINDING_ASSIGNMENT_DUPLICATE,
     [] {
         return changed(active(), [](S& s) {
             s.assign("P9", "Bitstream_1", "1");
             assignment_of(s, 1).partition_id = "P1";
         });
     },
     "ASSIGNMENT \"P1\": Two assignments are for this partition; remove one."},
    {FINDING_VALUE_ILLEGAL, [] { return changed(passive(), [](S& s) { file_of(s).compression = "maybe"; }); },
     "BITSTREAM \"Bitstream_1\" / PATH \"DIR/Bitstream_1.sof\": The attribute \"compression\" is \"maybe\"; "
     "it must be 1, 0, ON, OFF, true or false."},
    {FINDING_OUTPUT_NONE, [] { return std::make_unique<SETUP_BUILDER>("PS"); },
     "OUTPUT_FILES: The setup has no output file; choose at least one output file type."},
    {FINDING_OUTPUT_WITHOUT_INPUT, [] { return changed(passive(), [](S& s) { s.output("HEX", {}); }); },
     "OUTPUT_FILE \"HEX\": No bitstream goes into this output file; add one."},
    {FINDING_OUTPUT_NOT_OFFERED,
     [] { return changed(active(), [](S& s) { s.output("RBF", {"Bitstream_1"}); }); },
     "OUTPUT_FILE \"RBF\": The type \"Raw Binary File (.rbf)\" is not made in the mode \"Active Serial\"; "
     "choose another type or another mode."},
    {FINDING_OUTPUT_WITHOUT_WRITER,
     [] {
         return changed(passive(), [](S& s) {
             s.output("HEX", {"Bitstream_1"});
             output_of(s, 1).type = "SOF";
         });
     },
     "OUTPUT_FILE \"SOF\": This version cannot write files of the type \"Signed Bitstream File (.sof)\"; "
     "remove the output file."},
    {FINDING_OPTION_NOT_HONOURED, [] { return changed(passive(), [](S& s) { output_of(s).subtype = "x"; }); },
     "OUTPUT_FILE \"RBF\": The attribute \"subtype\" asks for a subtype, which this version does not do yet; "
     "switch the option off."},
    {FINDING_OPTION_CONFLICT,
     [] {
         return changed(passive({.device = "GR5S027"}), [](S& s) {
             file_of(s).compression = "1";
             file_of(s).enhanced_compression = "1";
         });
     },
     "PATH \"Bitstream_1.sof\": Compression and enhanced compression exclude each other; switch one of them "
     "off."},
    {FINDING_BITSTREAM_EMPTY,
     [] {
         return changed(passive(), [](S& s) {
             s.set(VEK_CMD_OPT_BITSTREAM, {{VEK_CMD_PARAM_BITSTREAM_ID, "Bitstream_2"}});
             s.output("HEX", {"Bitstream_2"});
         });
     },
     "BITSTREAM \"Bitstream_2\": The bitstream has no file; add one or remove the bitstream."},
    {FINDING_BITSTREAMS_TOO_MANY,
     [] {
         return changed(std::make_unique<SETUP_BUILDER>("ASX4"), [](S& s) {
             for (const char* id : {"B1", "B2"}) {
                 s.bitstream(id, {.device = "FD7X120"});
             }
             s.flash("F", "W25Q128JV");
             for (const char* id : {"1", "2"}) {
                 s.partition("F", std::string("P") + id);
                 s.assign(std::string("P") + id, std::string("B") + id, id);
             }
             s.output("RPD", {}, "F");
         });
     },
     "BITSTREAMS: The setup has 2 bitstreams, and the device FD7X120 takes 1; remove the others."},
    {FINDING_INPUT_REFUSED,
     [] { return changed(passive(), [](S& s) { std::filesystem::remove(s.path("Bitstream_1.sof")); }); },
     "BITSTREAM \"Bitstream_1\" / PATH \"Bitstream_1.sof\": Bitstream_1.sof cannot be opened: no such file."},
    {FINDING_INPUT_UNUSED, [] { return changed(passive(), [](S& s) { s.bitstream("Bitstream_2"); }); },
     "BITSTREAM \"Bitstream_2\": The input goes into no output file; assign it to a partition, add it to an "
     "output, or remove it."},
    {FINDING_FAMILY_MIXED,
     [] {
         return changed(std::make_unique<SETUP_BUILDER>("LNKSX8"), [](S& s) {
             s.bitstream("B1", {.device = "HM8F060"});
             s.bitstream("B2", {.device = "ZR9A012"});
             s.output("RBF", {"B1", "B2"});
         });
     },
     "BITSTREAM \"B2\" / PATH \"B2.sof\": The file is for the family Zircon, and the first bitstream is for "
     "Hematite; keep the files of one family."},
    {FINDING_FAMILY_WITHOUT_MODE, [] { return passive({}, "LNKSX8"); },
     "SETTINGS: The family Basalt does not have the mode \"LNKS x8\"; choose another mode."},
    {FINDING_SCHEME_DIFFERENT, [] { return passive({.scheme = 7}); },
     "BITSTREAM \"Bitstream_1\" / PATH \"Bitstream_1.sof\": The file was compiled for \"Active Serial\", and "
     "the mode of the setup is \"1-bit Passive Serial\"; compile it for that mode or choose the other one."},
    {FINDING_FLASH_UNKNOWN, [] { return changed(active(), [](S& s) { device_of(s).type = "NOFLASH"; }); },
     "FLASH_DEVICE \"F\": The flash device \"NOFLASH\" is not in the flash database; choose a device of the "
     "database or name the directory of your own."},
    {FINDING_FLASH_NOT_FOR_MODE,
     [] { return changed(active(), [](S& s) { device_of(s).type = "CFI_16MB"; }); },
     "FLASH_DEVICE \"F\": The flash device \"CFI_16MB\" of the family Parallel Flash cannot be used in the "
     "mode \"Active Serial\"; choose a device of Serial Configuration Device, Serial Flash 3 V, Serial Flash "
     "1.8 V, Special Flash."},
    {FINDING_FLASH_TOO_MANY,
     [] {
         return changed(active(), [](S& s) {
             s.flash("G", "W25Q16JV");
             s.output("RPD", {}, "G");
         });
     },
     "OUTPUT_FILE \"RPD\": 2 flash devices go into this output file, and it can hold one; remove the "
     "others."},
    {FINDING_FLASH_LOADER_MISSING, [] { return changed(active(), [](S& s) { s.output("JIC", {}, "F"); }); },
     "OUTPUT_FILE \"JIC\": This output needs a flash loader and none is chosen; choose the device through "
     "which JTAG reaches the flash."},
    {FINDING_FLASH_LOADER_UNKNOWN,
     [] {
         return changed(active(), [](S& s) {
             s.set(VEK_CMD_OPT_FLASH_LOADER, {{VEK_CMD_PARAM_FLASH_LOADER_FLASH_LOADER, "NOFPGA"}});
         });
     },
     "FLASH_LOADER: The flash loader \"NOFPGA\" is no FPGA of the device database; choose another."},
    {FINDING_PARTITION_WITHOUT_INPUT, [] { return boot_layout(5000, "P1", false); },
     "FLASH_DEVICE \"F\" / PARTITION \"FACTORY_IMAGE\": No bitstream is assigned to this partition, from "
     "which the device boots; assign one."},
    {FINDING_PARTITION_EMPTY, [] { return changed(active(), [](S& s) { s.partition("F", "P2"); }); },
     "FLASH_DEVICE \"F\" / PARTITION \"P2\": No input is assigned, so that the partition stays erased; "
     "assign one or remove the partition."},
    {FINDING_PARTITION_NAME_TOO_LONG, [] { return boot_layout(5000, std::string(32, 'N')); },
     "FLASH_DEVICE \"F\" / PARTITION \"NNNNNNNNNNNNNNNNNNNNNNNNNNNNNNNN\": The name has 32 bytes, and the "
     "sub-partition table takes 31; choose a shorter one."},
    {FINDING_PAGE_OUT_OF_RANGE, [] { return changed(active(), [](S& s) { assignment_of(s).page = "32"; }); },
     "FLASH_DEVICE \"F\" / PARTITION \"P1\": The page is 32, and the highest that there is is 31; choose a "
     "lower one."},
    {FINDING_PAGE_MISSING,
     [] {
         return changed(std::make_unique<SETUP_BUILDER>("PS"), [](S& s) {
             s.bitstream("Bitstream_1");
             s.flash("F", "CFI_16MB");
             s.reserved("F", false, false);
             s.partition("F", "P1");
             s.assign("P1", "Bitstream_1", "0");
             s.output("POF", {}, "F");
             assignment_of(s).page = "";
         });
     },
     "FLASH_DEVICE \"F\" / PARTITION \"P1\": The bitstream \"Bitstream_1\" has no page here, so that the "
     "device cannot select it; give it a page from 0 to 7."},
    {FINDING_PAGE_SHARED, [] { return active_twice("auto", "auto", "0"); },
     "FLASH_DEVICE \"F\" / PARTITION \"P2\": The partition \"P2\" (0x00020000 to 0x0003FFFF) and partition "
     "\"P1\" (0x00000000 to 0x0001FFFF) both hold page 0; give each bitstream a page of its own."},
    {FINDING_MBR_NOT_SUPPORTED,
     [] {
         return changed(active(), [](S& s) {
             auto* record = new PGM_COMMON_XML_VEK_MBR;
             record->id = "MBR1";
             device_of(s).group_child(record, false, true);
         });
     },
     "FLASH_DEVICE \"F\" / MBR \"MBR1\": This version cannot write a master boot record; remove it."},
    {FINDING_FREQUENCY,
     [] {
         return changed(passive(), [](S& s) {
             s.output("SVF", {"Bitstream_1"});
             s.set(VEK_CMD_OPT_OUTPUT_FILE, {{VEK_CMD_PARAM_OUTPUT_FILE_TYPE, "SVF"},
                                             {VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_FREQUENCY, "fast"}});
         });
     },
     "OUTPUT_FILE \"SVF\": The TCK frequency \"fast\" is no number with its unit, Hz, kHz or MHz, of at "
     "least 1 Hz; write one such as 10 MHz."},
    {FINDING_LAYOUT_ADDRESS, [] { return active("here"); },
     "FLASH_DEVICE \"F\" / PARTITION \"P1\": The start address \"here\" of partition \"P1\" is no "
     "hexadecimal number; write \"auto\" or an address such as 0x00010000."},
    {FINDING_LAYOUT_START_ABOVE_END, [] { return active("0x20000", "0x10000"); },
     "FLASH_DEVICE \"F\" / PARTITION \"P1\": The start address 0x00020000 of partition \"P1\" lies above its "
     "end address 0x00010000; exchange or correct them."},
    {FINDING_LAYOUT_BEYOND_DEVICE, [] { return active("0x00100000", "0x00200000"); },
     "FLASH_DEVICE \"F\" / PARTITION \"P1\": The partition \"P1\" (0x00100000 to 0x00200000) leaves the "
     "flash device (0x00000000 to 0x001FFFFF); move it down, make it smaller, or choose a larger device."},
    {FINDING_LAYOUT_CONTENT, [] { return active("0x0", "0xFFFF"); },
     "FLASH_DEVICE \"F\" / PARTITION \"P1\": The partition \"P1\" (0x00000000 to 0x0000FFFF) has room for "
     "65536 bytes, but its content needs 101156 bytes; enlarge the partition or assign a smaller input."},
    {FINDING_LAYOUT_OVERLAP, [] { return active_twice("0x00010000", "0x0002FFFF"); },
     "FLASH_DEVICE \"F\" / PARTITION \"P2\": The partition \"P2\" (0x00010000 to 0x0002FFFF) overlaps "
     "partition \"P1\" (0x00000000 to 0x0001FFFF); move one of them, or let the tool place it with "
     "\"auto\"."},
    {FINDING_LAYOUT_NO_ROOM,
     [] { return changed(active(), [](S& s) { device_of(s).partition[0]->extra_space = "2097152"; }); },
     "FLASH_DEVICE \"F\" / PARTITION \"P1\": There is no room for partition \"P1\", which needs 2228224 "
     "bytes in whole sectors of 0x00010000 bytes, in the flash device (0x00000000 to 0x001FFFFF); the "
     "largest free block has 2097152 bytes. Make other partitions smaller or choose a larger device."},
    {FINDING_LAYOUT_UNALIGNED, [] { return active("0x100", "0x3FFFF"); },
     "FLASH_DEVICE \"F\" / PARTITION \"P1\": The partition \"P1\" (0x00000100 to 0x0003FFFF) does not start "
     "at a multiple of the sector size 0x00010000; erasing it erases bytes before it as well, so move it to "
     "a sector boundary."},
    {FINDING_FIRMWARE_MISSING, [] { return boot_layout(0, "P1"); },
     "FLASH_DEVICE \"F\" / PARTITION \"BOOT_INFO\": Neither the input of this partition nor that of "
     "FACTORY_IMAGE brings firmware, so that the boot information has none; assign a bitstream with "
     "firmware."},
    {FINDING_KEY_FILE, [] { return changed(encrypted(), [](S& s) { file_of(s).key_file1 = ""; }); },
     "BITSTREAM \"Bitstream_1\" / PATH \"Bitstream_1.sof\": No key file is named although encryption is on; "
     "name one."},
    {FINDING_KEY_NAME, [] { return changed(encrypted(), [](S& s) { file_of(s).key1 = "third"; }); },
     "BITSTREAM \"Bitstream_1\" / PATH \"Bitstream_1.sof\": The key file \"DIR/keys.key\" has no key "
     "\"third\"; choose one of its keys."},
    {FINDING_SIGNING_KEY,
     [] { return changed(signed_setup(), [](S& s) { file_of(s).signing_pem_file = ""; }); },
     "BITSTREAM \"Bitstream_1\" / PATH \"Bitstream_1.sof\": No private key file is named although signing is "
     "on; name one."},
    {FINDING_AES_KEY_FILE,
     [] { return changed(signed_setup(), [](S& s) { file_of(s).finalize_encryption = "1"; }); },
     "BITSTREAM \"Bitstream_1\" / PATH \"Bitstream_1.sof\": No AES key file is named although the encryption "
     "is to be finalised; name one."},
    {FINDING_LOCK_FILE,
     [] {
         return changed(encrypted(), [](S& s) {
             write_secret(s.path("a.elk"), "garbage");
             file_of(s).key_file1 = file_of(s).key1 = "";
             file_of(s).elk_file = s.path("a.elk");
         });
     },
     "BITSTREAM \"Bitstream_1\" / PATH \"Bitstream_1.sof\": DIR/a.elk is no encryption lock file; name one."},
    {FINDING_PASSWORD_FILE,
     [] { return changed(signed_setup(), [](S& s) { write_secret(s.path("password"), "\n"); }); },
     "BITSTREAM \"Bitstream_1\" / PATH \"Bitstream_1.sof\": DIR/password has no password in its first line; "
     "write it there."},
    {FINDING_KEY_FILE_OPEN,
     [] {
         return changed(encrypted(), [](S& s) { EXPECT_EQ(::chmod(s.path("keys.key").c_str(), 0644), 0); });
     },
     "BITSTREAM \"Bitstream_1\" / PATH \"Bitstream_1.sof\": The file \"DIR/keys.key\" holds a secret and can "
     "be read by others; take the rights from them with \"chmod 600\"."},
    {FINDING_FIRMWARE_ARCHIVE,
     [] {
         return changed(signed_setup(), [](S& s) {
             write_file(s.path("boot.fw"), "garbage");
             file_of(s).fw_source = s.path("boot.fw");
         });
     },
     "BITSTREAM \"Bitstream_1\" / PATH \"Bitstream_1.sof\": DIR/boot.fw is no firmware archive; name one."},
    {FINDING_SECURITY_NOT_OFFERED, [] { return changed(passive(), [](S& s) { file_of(s).signing = "ON"; }); },
     "BITSTREAM \"Bitstream_1\" / PATH \"Bitstream_1.sof\": Signing is on, and the family of the device "
     "BS1L15 verifies no signatures; switch it off."},
    {FINDING_FINALIZE_UNSIGNED,
     [] {
         return changed(signed_setup(), [](S& s) {
             const BYTES key = key_of(KEY_DIGITS);
             std::string message;
             EXPECT_TRUE(
                 write_aek_file(s.path("key.aek"), SECRET_BYTES(key.begin(), key.end()), nullptr, message));
             file_of(s).signing = "OFF";
             file_of(s).finalize_encryption = "1";
             file_of(s).aek_file = s.path("key.aek");
         });
     },
     "BITSTREAM \"Bitstream_1\" / PATH \"Bitstream_1.sof\": The encryption is to be finalised in a bitstream "
     "that is not signed; switch signing on."},
    {FINDING_ENCRYPTION_NOT_PREPARED,
     [] {
         return changed(signed_setup(), [](S& s) {
             write_bitstream(s.path("Bitstream_1.sof"), {.device = "ZR9A012"});
             file_of(s).finalize_encryption = file_of(s).finalize_encryption_later = "1";
         });
     },
     "BITSTREAM \"Bitstream_1\" / PATH \"Bitstream_1.sof\": The encryption is to be finalised, and the "
     "bitstream was compiled without it; compile it with the option sof_option_encryption or do not "
     "finalise."},
    {FINDING_SIGNED_ELSEWHERE,
     [] { return changed(signed_setup(), [](S& s) { file_of(s).sign_later = "1"; }); },
     "BITSTREAM \"Bitstream_1\" / PATH \"Bitstream_1.sof\": The bitstream is to be signed later; write the "
     "digests with \"imagewright-cmd generate --write-digests\", sign them, and give the signatures with "
     "--signatures."},
    {FINDING_KEY_PROGRAMMING,
     [] {
         return changed(encrypted(), [](S& s) {
             s.output("EKP", {"Bitstream_1"});
             file_of(s).encryption = "0";
         });
     },
     "OUTPUT_FILE \"EKP\": The file \"DIR/Bitstream_1.sof\" is not encrypted, so there is no key to program; "
     "switch its encryption on or remove the output file."},
    {FINDING_NAME_ILLEGAL, [] { return changed(passive(), [](S& s) { output_of(s).name = "a/b"; }); },
     "OUTPUT_FILE \"RBF\": The name of the output file contains a \"/\"; the directory has a place of its "
     "own; choose another name."},
    {FINDING_DIRECTORY_MISSING,
     [] { return changed(passive(), [](S& s) { output_of(s).directory = s.path("none"); }); },
     "OUTPUT_FILE \"RBF\": The output directory \"DIR/none\" does not exist; create it or choose another."},
    {FINDING_DIRECTORY_NOT_WRITABLE,
     [] {
         return changed(passive(), [](S& s) { EXPECT_EQ(::chmod(s.directory().path().c_str(), 0755), 0); });
     },
     "OUTPUT_FILE \"RBF\": The output directory \"DIR\" cannot be written to; change its permissions or "
     "choose another.",
     true},
    {FINDING_OUTPUT_BLOCKED,
     [] { return changed(passive(), [](S& s) { std::filesystem::create_directory(s.path("out.rbf")); }); },
     "OUTPUT_FILE \"RBF\": \"DIR/out.rbf\" is there and is no regular file; remove it or choose another "
     "name."},
    {FINDING_OUTPUT_IS_INPUT,
     [] {
         return changed(passive(), [](S& s) {
             std::filesystem::create_symlink(s.path("Bitstream_1.sof"), s.path("out.rbf"));
         });
     },
     "OUTPUT_FILE \"RBF\": The output file \"DIR/out.rbf\" would overwrite the input "
     "\"DIR/Bitstream_1.sof\"; choose another name or directory."},
    {FINDING_OUTPUT_COLLISION,
     [] {
         return changed(active(), [](S& s) {
             s.output("POF", {}, "F", {"SEC_RPD"});
             output_of(s, 1).secondary_file[0]->name = "out";
         });
     },
     "OUTPUT_FILE \"POF\" / SECONDARY_FILE \"SEC_RPD\": The output file \"DIR/out.rpd\" is also that of "
     "OUTPUT_FILE \"RPD\"; choose another name or directory for one of them."},
};

/// The rights of nobody, the real ones too, while it lives.
class AS_NOBODY
{
public:
    AS_NOBODY() { EXPECT_EQ(::setresuid(65534, 65534, 0), 0); }
    ~AS_NOBODY() { EXPECT_EQ(::setresuid(0, 0, 0), 0); }
    AS_NOBODY(const AS_NOBODY&) = delete;
    AS_NOBODY& operator=(const AS_NOBODY&) = delete;
};

std::string with_directory(std::string text, const std::string& directory)
{
    for (std::size_t at = text.find("DIR"); at != std::string::npos; at = text.find("DIR", at)) {
        text.replace(at, 3, directory);
        at += directory.size();
    }
    return text;
}

class every_finding : public testing::TestWithParam<FINDING_CASE>
{
};

} // namespace

TEST(findings, each_has_a_case_and_the_cases_have_the_order_of_the_table)
{
    std::vector<std::string> with_case;
    std::vector<std::string> all;
    for (const FINDING_CASE& one : CASES) {
        with_case.emplace_back(finding_table()[one.kind].name);
    }
    for (const FINDING_ROW& row : finding_table()) {
        all.emplace_back(row.name);
    }
    EXPECT_EQ(with_case, all);
}

TEST_P(every_finding, is_made_alone_with_its_sentence)
{
    const FINDING_CASE& one = GetParam();
    const SETUP setup = one.make();
    FINDINGS findings;
    {
        std::optional<AS_NOBODY> nobody;
        if (one.as_nobody) {
            nobody.emplace();
        }
        check_setup(setup->document(), true, "", findings);
    }
    EXPECT_EQ(findings.message(), with_directory(one.sentence, setup->directory().path()));
    ASSERT_EQ(findings.all().size(), 1U);
    EXPECT_EQ(findings.all()[0].kind, one.kind) << findings.all()[0].row().name;
    const FINDING_SEVERITY severity = finding_table()[one.kind].severity;
    EXPECT_EQ(findings.can_save(), severity != FINDING_FORBIDS_SAVE);
    EXPECT_EQ(findings.can_generate(), severity == FINDING_WARNING);
}

INSTANTIATE_TEST_SUITE_P(of_the_table, every_finding, testing::ValuesIn(CASES), [](const auto& one) {
    std::string name = finding_table()[one.param.kind].name;
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
});
