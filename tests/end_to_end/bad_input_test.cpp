#include "reference_loader.h"
#include "temporary_directory.h"
#include "tool.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <sys/stat.h>

namespace
{

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

enum EXIT : int { DONE = 0, REFUSED = 1, USAGE = 2, INPUT_UNREADABLE = 3, OUTPUT_NOT_WRITTEN = 4 };

/// A directory with one small good setup in it: top.sof and board.vek, which makes out/board.rbf.
class BAD_INPUT : public testing::Test
{
protected:
    void SetUp() override
    {
        fs::create_directory(m_directory / "out");
        write_file(m_directory / "core.bin", std::string(20000, 'c'));
        const CHILD_RESULT packed =
            run({"pack", "--device", "BS1L15", "--core", "core.bin", "--scheme", "PS", "-o", "top.sof"});
        ASSERT_EQ(packed.exit_code, DONE) << packed.err;
        write_setup("");
    }

    CHILD_RESULT run(const std::vector<std::string>& arguments) const
    {
        return tool(arguments, m_directory.path());
    }

    /// `attributes` go to the output file, behind its type and name.
    void write_setup(const std::string& attributes, const std::string& input = "top.sof",
                     const std::string& linked = "Bitstream_1") const
    {
        write_file(
            m_directory / "board.vek",
            "<VEK version=\"1\"><SETTINGS mode=\"PS\"/><BITSTREAMS><BITSTREAM id=\"Bitstream_1\"><PATH>" +
                input +
                "</PATH></BITSTREAM></BITSTREAMS><OUTPUT_FILES><OUTPUT_FILE type=\"RBF\" name=\"board\" " +
                (attributes.empty() ? std::string("directory=\"out\"") : attributes) + "><BITSTREAM_ID>" +
                linked + "</BITSTREAM_ID></OUTPUT_FILE></OUTPUT_FILES></VEK>");
    }

    /// Generation ends with `exit_code`, says `sentence`, and leaves nothing in the output directory.
    void expect_no_output(int exit_code, const std::string& sentence) const
    {
        const CHILD_RESULT result = run({"generate", "board.vek"});
        EXPECT_EQ(result.exit_code, exit_code) << result.out << result.err;
        EXPECT_THAT(result.out + result.err, HasSubstr(sentence));
        EXPECT_TRUE(fs::is_empty(m_directory / "out"));
    }

    /// board.vek becomes a setup with a raw file in the partition DATA behind the bitstream, for
    /// out/board.rpd.
    void write_flash_setup(const std::string& raw_file, const std::string& type, const std::string& start,
                           const std::string& end) const
    {
        write_file(
            m_directory / "board.vek",
            "<VEK version=\"1\"><SETTINGS mode=\"ASX1\"/><RAW_FILES><RAW_FILE id=\"Raw_File_1\" type=\"" +
                type + "\">" + raw_file +
                "</RAW_FILE></RAW_FILES><ASSIGNMENTS><ASSIGNMENT partition_id=\"P1\" page=\"0\">"
                "<BITSTREAM_ID>Bitstream_1</BITSTREAM_ID></ASSIGNMENT><ASSIGNMENT partition_id=\"DATA\">"
                "<RAW_FILE_ID>Raw_File_1</RAW_FILE_ID></ASSIGNMENT></ASSIGNMENTS><BITSTREAMS>"
                "<BITSTREAM id=\"Bitstream_1\"><PATH>top.sof</PATH></BITSTREAM></BITSTREAMS>"
                "<FLASH_DEVICES><FLASH_DEVICE type=\"W25Q16JV\" id=\"Flash_Device_1\">"
                "<PARTITION id=\"P1\" s_addr=\"0x00000000\" e_addr=\"0x0001FFFF\"/>"
                "<PARTITION id=\"DATA\" s_addr=\"" +
                start + "\" e_addr=\"" + end +
                "\"/></FLASH_DEVICE></FLASH_DEVICES><OUTPUT_FILES><OUTPUT_FILE type=\"RPD\" "
                "name=\"board\" directory=\"out\"><FLASH_DEVICE_ID>Flash_Device_1</FLASH_DEVICE_ID>"
                "</OUTPUT_FILE></OUTPUT_FILES></VEK>");
    }

    TEMPORARY_DIRECTORY m_directory;
};

TEST_F(BAD_INPUT, the_good_setup_generates)
{
    const CHILD_RESULT result = run({"generate", "board.vek"});
    EXPECT_EQ(result.exit_code, DONE) << result.err;
    EXPECT_TRUE(fs::exists(m_directory / "out/board.rbf"));
}

/// The container with another length in the row of its core data, and the checksum of the table to match.
std::vector<std::uint8_t> with_core_length(std::vector<std::uint8_t> bytes, std::uint64_t length)
{
    constexpr std::size_t CORE_LENGTH = 0x48;
    EXPECT_EQ(std::string(bytes.begin() + 0x40, bytes.begin() + 0x44), "CORE");
    for (unsigned byte = 0; byte < 8; ++byte) {
        bytes[CORE_LENGTH + byte] = static_cast<std::uint8_t>(length >> 8 * byte);
    }
    constexpr std::size_t CHECKSUM = 28;
    constexpr std::size_t TABLE = 32;
    constexpr std::size_t TABLE_END = 0x60;
    std::vector<std::uint8_t> checked(bytes.begin(), bytes.begin() + CHECKSUM);
    checked.insert(checked.end(), bytes.begin() + TABLE, bytes.begin() + TABLE_END);
    const std::uint32_t checksum = reference_crc32(checked);
    for (unsigned byte = 0; byte < 4; ++byte) {
        bytes[CHECKSUM + byte] = static_cast<std::uint8_t>(checksum >> 8 * byte);
    }
    return bytes;
}

// Setup files.

struct BAD_SETUP {
    const char* name;
    std::string content;
    const char* sentence;

    friend void PrintTo(const BAD_SETUP& setup, std::ostream* out) { *out << setup.name; }
};

class BAD_SETUP_FILE : public testing::TestWithParam<BAD_SETUP>
{
};

TEST_P(BAD_SETUP_FILE, is_refused_with_its_place)
{
    const TEMPORARY_DIRECTORY directory;
    write_file(directory / "bad.vek", GetParam().content);
    for (const std::string command : {"check", "generate", "show"}) {
        const CHILD_RESULT result = tool({command, "bad.vek"}, directory.path());
        EXPECT_EQ(result.exit_code, INPUT_UNREADABLE) << command;
        EXPECT_THAT(result.err, HasSubstr("bad.vek"));
        EXPECT_THAT(result.err, HasSubstr(GetParam().sentence));
    }
    EXPECT_EQ(directory.entries(), std::vector<std::string>{"bad.vek"});
}

std::string entity_bomb()
{
    std::string text = "<?xml version=\"1.0\"?><!DOCTYPE VEK [<!ENTITY a \"aaaaaaaaaa\">";
    for (char name = 'b'; name < 'k'; ++name) {
        text += std::string("<!ENTITY ") + name + " \"";
        for (int times = 0; times < 10; ++times) {
            text += std::string("&") + static_cast<char>(name - 1) + ";";
        }
        text += "\">";
    }
    return text + "]><VEK version=\"1\"><SETTINGS mode=\"PS\" custom_db_dir=\"&j;\"/></VEK>";
}

INSTANTIATE_TEST_SUITE_P(
    each, BAD_SETUP_FILE,
    testing::Values(
        BAD_SETUP{"empty", "", "bad.vek is empty"}, BAD_SETUP{"no_xml", "this is no setup", "line 1"},
        BAD_SETUP{"truncated", "<VEK version=\"1\"><SETTINGS mode=\"PS\"/>", "line 1, column"},
        BAD_SETUP{"bit_flipped", "<VEK version=\"1\"><SETTINGS mode=\"PS\"/></WEK>", "line 1, column"},
        BAD_SETUP{"entity_bomb", entity_bomb(), "DOCTYPE"},
        BAD_SETUP{"external_entity",
                  "<!DOCTYPE VEK [<!ENTITY x SYSTEM \"file:///etc/passwd\">]><VEK version=\"1\">&x;</VEK>",
                  "DOCTYPE"},
        BAD_SETUP{"invalid_utf8", "<VEK version=\"1\"><SETTINGS custom_db_dir=\"\xff\xfe\"/></VEK>",
                  "line 1, column"},
        BAD_SETUP{"unknown_element", "<VEK version=\"1\"><NONSENSE/></VEK>", "NONSENSE"},
        BAD_SETUP{"unknown_attribute", "<VEK version=\"1\"><SETTINGS nonsense=\"1\"/></VEK>", "nonsense"},
        BAD_SETUP{"unknown_word", "<VEK version=\"1\"><SETTINGS mode=\"XYZ\"/></VEK>", "XYZ"},
        BAD_SETUP{"newer_version", "<VEK version=\"2\"/>", "version"}),
    [](const testing::TestParamInfo<BAD_SETUP>& setup) { return std::string(setup.param.name); });

TEST_F(BAD_INPUT, a_setup_that_is_no_regular_file_is_refused_at_once)
{
    fs::create_directory(m_directory / "directory.vek");
    ASSERT_EQ(::mkfifo((m_directory / "fifo.vek").c_str(), 0600), 0);
    for (const std::string name : {"missing.vek", "directory.vek", "fifo.vek"}) {
        const CHILD_RESULT result = run({"generate", name});
        EXPECT_EQ(result.exit_code, INPUT_UNREADABLE) << name;
        EXPECT_THAT(result.err, HasSubstr(name));
    }
}

TEST_F(BAD_INPUT, an_oversized_setup_is_refused_before_it_is_read)
{
    write_file(m_directory / "huge.vek", "<VEK version=\"1\"/>");
    fs::resize_file(m_directory / "huge.vek", 1ULL << 40);
    const CHILD_RESULT result = run({"check", "huge.vek"});
    EXPECT_EQ(result.exit_code, INPUT_UNREADABLE);
    EXPECT_LT(result.peak_memory_kib, 256 * 1024);
}

TEST_F(BAD_INPUT, an_unreadable_setup_is_refused)
{
    fs::permissions(m_directory.path(), fs::perms::all);
    fs::permissions(m_directory / "board.vek", fs::perms::none);
    const CHILD_RESULT result = tool_as_nobody({"check", "board.vek"}, m_directory.path());
    EXPECT_EQ(result.exit_code, INPUT_UNREADABLE);
    EXPECT_THAT(result.err, HasSubstr("board.vek"));
}

// Bitstream files.

TEST_F(BAD_INPUT, a_missing_bitstream_is_named)
{
    fs::remove(m_directory / "top.sof");
    expect_no_output(REFUSED, "top.sof cannot be opened: no such file");
}

TEST_F(BAD_INPUT, an_empty_bitstream_is_named)
{
    write_file(m_directory / "top.sof", std::string());
    expect_no_output(REFUSED, "top.sof is not a bitstream file");
}

TEST_F(BAD_INPUT, a_bitstream_that_is_something_else_is_named)
{
    write_file(m_directory / "top.sof", std::string(5000, 'x'));
    expect_no_output(REFUSED, "top.sof is not a bitstream file");
}

TEST_F(BAD_INPUT, a_directory_or_fifo_as_bitstream_never_blocks)
{
    fs::create_directory(m_directory / "directory.sof");
    write_setup("", "directory.sof");
    expect_no_output(REFUSED, "directory.sof cannot be opened: it is a directory");
    ASSERT_EQ(::mkfifo((m_directory / "fifo.sof").c_str(), 0600), 0);
    write_setup("", "fifo.sof");
    expect_no_output(REFUSED, "fifo.sof cannot be opened: it is a pipe");
}

TEST_F(BAD_INPUT, an_unreadable_bitstream_is_named)
{
    fs::permissions(m_directory.path(), fs::perms::all);
    fs::permissions(m_directory / "out", fs::perms::all);
    fs::permissions(m_directory / "top.sof", fs::perms::none);
    const CHILD_RESULT result = tool_as_nobody({"generate", "board.vek"}, m_directory.path());
    EXPECT_EQ(result.exit_code, REFUSED) << result.out << result.err;
    EXPECT_THAT(result.out + result.err, HasSubstr("top.sof cannot be opened: permission denied"));
    EXPECT_TRUE(fs::is_empty(m_directory / "out"));
}

TEST_F(BAD_INPUT, an_oversized_bitstream_is_refused_before_it_is_read)
{
    const std::string size = std::to_string(fs::file_size(m_directory / "top.sof"));
    fs::resize_file(m_directory / "top.sof", 1ULL << 40);
    const CHILD_RESULT result = run({"generate", "board.vek"});
    EXPECT_EQ(result.exit_code, REFUSED) << result.out << result.err;
    EXPECT_THAT(result.out + result.err,
                HasSubstr("top.sof is damaged: it has 1099511627776 bytes instead of " + size));
    EXPECT_LT(result.peak_memory_kib, 256 * 1024);
    EXPECT_TRUE(fs::is_empty(m_directory / "out"));
}

TEST_F(BAD_INPUT, a_truncated_bitstream_is_refused_at_every_length)
{
    const std::vector<std::uint8_t> good = read_file(m_directory / "top.sof");
    for (const std::size_t length : {1UL, 8UL, 100UL, 1000UL, good.size() / 2, good.size() - 1}) {
        write_file(
            m_directory / "top.sof",
            std::vector<std::uint8_t>(good.begin(), good.begin() + static_cast<std::ptrdiff_t>(length)));
        expect_no_output(REFUSED, length < 8 ? "top.sof is not a bitstream file" : "top.sof is cut off: it ");
    }
}

TEST_F(BAD_INPUT, a_flipped_bit_in_the_configuration_data_is_found)
{
    std::vector<std::uint8_t> bytes = read_file(m_directory / "top.sof");
    bytes[bytes.size() - 1000] ^= 1;
    write_file(m_directory / "top.sof", bytes);
    expect_no_output(OUTPUT_NOT_WRITTEN, "top.sof is damaged: the checksum of the core data");
}

TEST_F(BAD_INPUT, a_length_that_lies_is_found_although_the_checksums_fit)
{
    // The table of sections has a checksum of its own, so the liar puts that right.
    const std::vector<std::uint8_t> good = read_file(m_directory / "top.sof");
    for (const std::uint64_t length : {0ULL, 19999ULL, 20001ULL, 0x7FFFFFFFFFFFFFFFULL, ~0ULL}) {
        write_file(m_directory / "top.sof", with_core_length(good, length));
        expect_no_output(REFUSED, "top.sof is ");
    }
    write_file(m_directory / "top.sof", with_core_length(good, 20000));
    EXPECT_EQ(run({"generate", "board.vek"}).exit_code, DONE);
}

// Raw data files and their places in a flash device.

TEST_F(BAD_INPUT, a_raw_file_that_cannot_be_used_is_named_and_never_blocks)
{
    const CHILD_RESULT packed =
        run({"pack", "--device", "BS1L15", "--core", "core.bin", "--scheme", "ASX1", "-o", "top.sof"});
    ASSERT_EQ(packed.exit_code, DONE) << packed.err;
    fs::create_directory(m_directory / "directory.rbf");
    ASSERT_EQ(::mkfifo((m_directory / "fifo.rbf").c_str(), 0600), 0);
    write_file(m_directory / "empty.rbf", std::string());
    write_file(m_directory / "huge.rbf", std::string("x"));
    fs::resize_file(m_directory / "huge.rbf", 1ULL << 40);
    write_file(m_directory / "bad.hex", std::string(":0400000061626364FF\n"));
    write_file(m_directory / "good.rbf", std::string("data"));
    const struct {
        const char* file;
        const char* type;
        const char* sentence;
    } rows[] = {
        {"missing.rbf", "RBF", "missing.rbf cannot be opened: no such file."},
        {"directory.rbf", "RBF", "directory.rbf cannot be opened: it is a directory."},
        {"fifo.rbf", "RBF", "fifo.rbf cannot be opened: it is a pipe."},
        {"/dev/zero", "RBF", "/dev/zero cannot be opened: it is a device."},
        {"empty.rbf", "RBF", "empty.rbf is empty; choose a file with data."},
        {"huge.rbf", "RBF",
         "has room for 65536 bytes, but its content needs 1099511627776 bytes; enlarge the partition or "
         "assign "
         "a smaller input."},
        {"bad.hex", "HEX",
         "bad.hex: Line 1: the checksum is 0xFF, but the record asks for 0x72; the file is damaged."},
    };
    for (const auto& row : rows) {
        write_flash_setup(row.file, row.type, "0x00100000", "0x0010FFFF");
        expect_no_output(REFUSED, row.sentence);
    }
    write_flash_setup("good.rbf", "RBF", "0x00100000", "0x0010FFFF");
    EXPECT_EQ(run({"generate", "board.vek"}).exit_code, DONE);
}

TEST_F(BAD_INPUT, a_partition_that_overlaps_or_leaves_the_device_is_named_with_its_range)
{
    const CHILD_RESULT packed =
        run({"pack", "--device", "BS1L15", "--core", "core.bin", "--scheme", "ASX1", "-o", "top.sof"});
    ASSERT_EQ(packed.exit_code, DONE) << packed.err;
    write_file(m_directory / "data.rbf", std::string("data"));
    const struct {
        const char* start;
        const char* end;
        const char* sentence;
    } rows[] = {
        {"0x00010000", "0x0003FFFF",
         "The partition \"DATA\" (0x00010000 to 0x0003FFFF) overlaps partition \"P1\" (0x00000000 to "
         "0x0001FFFF)"},
        {"0x001F0000", "0x0020FFFF",
         "The partition \"DATA\" (0x001F0000 to 0x0020FFFF) leaves the flash device (0x00000000 to "
         "0x001FFFFF)"},
        {"0x00030000", "0x00020000",
         "The start address 0x00030000 of partition \"DATA\" lies above its end address 0x00020000"},
        {"zebra", "0x00020000", "The start address \"zebra\" of partition \"DATA\" is no hexadecimal number"},
    };
    for (const auto& row : rows) {
        write_flash_setup("data.rbf", "RBF", row.start, row.end);
        expect_no_output(REFUSED, row.sentence);
    }
}

// What the setup refers to.

TEST_F(BAD_INPUT, an_id_that_refers_to_nothing_is_named)
{
    write_setup("", "top.sof", "Bitstream_9");
    expect_no_output(REFUSED, "Bitstream_9");
}

TEST_F(BAD_INPUT, a_bitstream_of_a_family_without_the_mode_is_refused)
{
    ASSERT_EQ(run({"pack", "--device", "ZR9A012", "--core", "core.bin", "-o", "top.sof"}).exit_code, DONE);
    expect_no_output(REFUSED, "Zircon");
}

// Outputs.

TEST_F(BAD_INPUT, a_missing_output_directory_is_named)
{
    write_setup("directory=\"nowhere\"");
    expect_no_output(REFUSED, "nowhere");
}

TEST_F(BAD_INPUT, a_read_only_output_directory_is_named)
{
    fs::permissions(m_directory.path(),
                    fs::perms::owner_all | fs::perms::others_read | fs::perms::others_exec);
    fs::permissions(m_directory / "out",
                    fs::perms::owner_all | fs::perms::others_read | fs::perms::others_exec);
    const CHILD_RESULT result = tool_as_nobody({"generate", "board.vek"}, m_directory.path());
    EXPECT_EQ(result.exit_code, REFUSED) << result.out << result.err;
    EXPECT_THAT(result.out + result.err, HasSubstr("out"));
    EXPECT_TRUE(fs::is_empty(m_directory / "out"));
}

TEST_F(BAD_INPUT, an_output_over_an_input_is_refused_and_the_input_stays)
{
    fs::create_hard_link(m_directory / "top.sof", m_directory / "out/board.rbf");
    const std::vector<std::uint8_t> before = read_file(m_directory / "top.sof");
    const CHILD_RESULT result = run({"generate", "board.vek"});
    EXPECT_EQ(result.exit_code, REFUSED);
    EXPECT_THAT(result.out + result.err, HasSubstr("board.rbf"));
    EXPECT_EQ(read_file(m_directory / "top.sof"), before);
}

TEST_F(BAD_INPUT, a_full_disk_leaves_the_earlier_output_as_it_was)
{
    ASSERT_EQ(run({"generate", "board.vek"}).exit_code, DONE);
    const std::vector<std::uint8_t> earlier = read_file(m_directory / "out/board.rbf");
    ASSERT_EQ(run({"sample", "--device", "BS1L15", "--seed", "5", "-o", "top.sof"}).exit_code, DONE);
    for (const unsigned blocks : {0U, 1U, 64U, 400U}) {
        const CHILD_RESULT result =
            tool_with_file_limit(blocks, {"generate", "board.vek"}, m_directory.path());
        EXPECT_EQ(result.exit_code, OUTPUT_NOT_WRITTEN) << blocks << result.err;
        EXPECT_THAT(result.err, HasSubstr("board.rbf"));
        EXPECT_EQ(read_file(m_directory / "out/board.rbf"), earlier);
        EXPECT_EQ(std::distance(fs::directory_iterator(m_directory / "out"), fs::directory_iterator()), 1);
    }
}

TEST_F(BAD_INPUT, pack_and_sample_tell_input_from_output)
{
    EXPECT_EQ(run({"pack", "--device", "BS1L15", "--core", "missing.bin", "-o", "a.sof"}).exit_code,
              INPUT_UNREADABLE);
    EXPECT_EQ(run({"pack", "--device", "BS1L15", "--core", "core.bin", "-o", "nowhere/a.sof"}).exit_code,
              OUTPUT_NOT_WRITTEN);
    EXPECT_EQ(run({"pack", "--device", "BS1L15", "--core", "core.bin", "-o", "core.bin"}).exit_code, USAGE);
    EXPECT_EQ(run({"sample", "--device", "BS1L15", "-o", "nowhere/a.sof"}).exit_code, OUTPUT_NOT_WRITTEN);
    EXPECT_EQ(run({"sample", "--device", "NONE1", "-o", "a.sof"}).exit_code, USAGE);
    EXPECT_EQ(tool_with_file_limit(100, {"sample", "--device", "BS1L15", "-o", "a.sof"}, m_directory.path())
                  .exit_code,
              OUTPUT_NOT_WRITTEN);
    EXPECT_FALSE(fs::exists(m_directory / "a.sof"));
}

TEST_F(BAD_INPUT, a_wrong_command_line_is_told_from_all_else)
{
    EXPECT_EQ(run({}).exit_code, USAGE);
    EXPECT_EQ(run({"nonsense"}).exit_code, USAGE);
    EXPECT_EQ(run({"generate"}).exit_code, USAGE);
    EXPECT_EQ(run({"generate", "board.vek", "--nonsense"}).exit_code, USAGE);
    EXPECT_EQ(run({"list", "nonsense"}).exit_code, USAGE);
    EXPECT_EQ(run({"-C", "nowhere", "list", "modes"}).exit_code, USAGE);
    EXPECT_EQ(run({"--help"}).exit_code, DONE);
    EXPECT_EQ(run({"generate", "--help"}).exit_code, DONE);
}

} // namespace
