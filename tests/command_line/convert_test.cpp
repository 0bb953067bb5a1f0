#include "command_run.h"

#include <gmock/gmock.h>

#include <filesystem>

namespace
{

using testing::HasSubstr;

class CONVERT : public testing::Test
{
protected:
    /// Converts, then generates from the saved setup into another place: both must give the same bytes.
    void expect_same_from_setup(std::vector<std::string> arguments, const std::string& output)
    {
        const std::string setup = m_board.path("saved.vek");
        arguments.insert(arguments.begin(), "convert");
        arguments.insert(arguments.end(), {"-o", m_board.path(output), "--save", setup});
        const ANSWER answer = run(arguments);
        ASSERT_EQ(answer.exit_code, EXIT_CODE_DONE) << answer.err;
        EXPECT_THAT(answer.out, HasSubstr("Wrote " + m_board.path(output) + ", "));
        std::filesystem::create_directories(m_board.path("again"));
        const ANSWER again = run({"generate", setup, "--output-directory", m_board.path("again"), "--quiet"});
        ASSERT_EQ(again.exit_code, EXIT_CODE_DONE) << again.err;
        EXPECT_EQ(read_file(m_board.path(output)), read_file(m_board.path("again/" + output)));
        EXPECT_EQ(run({"verify", setup}).exit_code, EXIT_CODE_DONE);
    }

    BOARD m_board;
};

TEST_F(CONVERT, a_bitstream_becomes_each_output_that_needs_no_flash)
{
    const std::string input = m_board.bitstream("top.sof");
    for (const std::string output : {"top.rbf", "top.ttf", "top.hex", "top.svf", "top.jam", "top.jbc"}) {
        expect_same_from_setup({input}, output);
    }
}

TEST_F(CONVERT, bitstreams_and_raw_files_become_flash_images)
{
    const std::string first = m_board.bitstream("a.sof", "CA3M050", "ASX4", 70000);
    const std::string second = m_board.bitstream("b.sof", "CA3M050", "ASX4", 80000);
    write_file(m_board.path("data.bin"), std::string(100, 'd'));
    for (const std::string output : {"board.pof", "board.jic", "board.rpd"}) {
        expect_same_from_setup({first, second, m_board.path("data.bin"), "--device", "W25Q128JV"}, output);
    }
    const JSON map = run({"map", m_board.path("saved.vek"), "--json"}).json();
    const JSON& partitions = map.at("devices").at(0).at("partitions");
    ASSERT_EQ(partitions.size(), 3U);
    EXPECT_EQ(partitions.at(0).at("files"), "a.sof");
    EXPECT_EQ(partitions.at(0).at("page"), 0);
    EXPECT_EQ(partitions.at(1).at("files"), "b.sof");
    EXPECT_EQ(partitions.at(1).at("page"), 1);
    EXPECT_EQ(partitions.at(2).at("files"), "data.bin");
}

TEST_F(CONVERT, the_flash_loader_is_the_device_of_the_bitstream_unless_named)
{
    const std::string input = m_board.bitstream("a.sof", "CA3M050", "ASX4", 70000);
    expect_same_from_setup({input, "--device", "W25Q128JV"}, "board.jic");
    EXPECT_EQ(run({"edit", m_board.path("saved.vek"), "get", "flash_loader"}).out, "flash_loader=CA3M050\n");
    expect_same_from_setup({input, "--device", "W25Q128JV", "--flash-loader", "BS1L40"}, "board.jic");
    EXPECT_EQ(run({"edit", m_board.path("saved.vek"), "get", "flash_loader"}).out, "flash_loader=BS1L40\n");
}

TEST_F(CONVERT, on_chip_flash_is_found_in_the_bitstream)
{
    const std::string input = m_board.bitstream("top.sof", "GY1M08", "SINGLE_IMAGE", 60000);
    expect_same_from_setup({input}, "top.pof");
    const JSON map = run({"map", m_board.path("saved.vek"), "--json"}).json();
    EXPECT_EQ(map.at("devices").at(0).at("device"), "GY1M08");
    for (const JSON& partition : map.at("devices").at(0).at("partitions")) {
        EXPECT_EQ(partition.at("files"), partition.at("name") == "CFM0" ? "top.sof" : "");
        EXPECT_EQ(partition.at("reserved"), true);
    }
    const JSON setup = run({"show", m_board.path("saved.vek"), "--json"}).json();
    EXPECT_EQ(setup.at("settings").at("mode"), "INTERNAL");
}

TEST_F(CONVERT, two_bitstreams_of_a_secure_family_get_the_boot_layout)
{
    write_file(m_board.path("firmware.bin"), std::string(5000, 'f'));
    const std::vector<std::string> firmware{"--firmware", m_board.path("firmware.bin")};
    const std::string first = m_board.bitstream("a.sof", "ZR9A012", "ASX4", 70000, firmware);
    const std::string second = m_board.bitstream("b.sof", "ZR9A012", "ASX4", 80000, firmware);
    expect_same_from_setup({first, second, "--device", "MT25QL512"}, "board.pof");
    const JSON map = run({"map", m_board.path("saved.vek"), "--json"}).json();
    std::vector<std::string> names;
    for (const JSON& partition : map.at("devices").at(0).at("partitions")) {
        names.push_back(partition.at("name"));
    }
    EXPECT_THAT(names,
                testing::ElementsAre("BOOT_INFO", "SPT0", "SPT1", "CPB0", "CPB1", "FACTORY_IMAGE", "P1"));
}

TEST_F(CONVERT, key_data_of_a_secure_device_goes_into_its_own_partition)
{
    const std::string input = m_board.bitstream("a.sof", "ZR9A012", "ASX4", 70000);
    write_file(m_board.path("a.puf"), std::string(4096, 'p'));
    write_file(m_board.path("a.wkey"), std::string(512, 'w'));
    write_file(m_board.path("a.bin"), std::string(100, 'd'));
    expect_same_from_setup({input, m_board.path("a.bin"), m_board.path("a.puf"), m_board.path("a.wkey"),
                            "--device", "MT25QL512"},
                           "board.pof");
    const JSON map = run({"map", m_board.path("saved.vek"), "--json"}).json();
    std::vector<std::string> rows;
    for (const JSON& partition : map.at("devices").at(0).at("partitions")) {
        rows.push_back(partition.at("name").get<std::string>() + ": " +
                       partition.at("files").get<std::string>());
    }
    EXPECT_THAT(rows, testing::UnorderedElementsAre("PUF: a.puf, a.wkey", "P1: a.sof", "D1: a.bin"));
}

TEST_F(CONVERT, the_mode_comes_from_the_bitstream_or_fits_the_output)
{
    expect_same_from_setup({m_board.bitstream("fpp.sof", "BS1L15", "FPP")}, "top.rbf");
    EXPECT_EQ(run({"edit", m_board.path("saved.vek"), "get", "settings", "mode"}).out, "mode=FPP\n");
    const std::string input = m_board.path("any.sof");
    ASSERT_EQ(
        run({"pack", "--device", "BS1L15", "--core", m_board.path("fpp.sof.core"), "-o", input}).exit_code,
        EXIT_CODE_DONE);
    expect_same_from_setup({input}, "top.rbf");
    EXPECT_EQ(run({"edit", m_board.path("saved.vek"), "get", "settings", "mode"}).out, "mode=PS\n");
    expect_same_from_setup({input, "--mode", "FPP"}, "top.rbf");
    EXPECT_EQ(run({"edit", m_board.path("saved.vek"), "get", "settings", "mode"}).out, "mode=FPP\n");
}

TEST_F(CONVERT, options_reach_the_output_and_every_bitstream)
{
    const std::string input = m_board.bitstream("top.sof", "BS1L15", "PS", 50000);
    expect_same_from_setup({input, "--option", "file_options_s_addr=0x00100000"}, "top.hex");
    EXPECT_THAT(read_text_file(m_board.path("top.hex")), testing::StartsWith(":020000040010EA"));
    expect_same_from_setup({input, "--option", "path_compression=ON", "--option", "output_file.name=top"},
                           "top.rbf");
    const JSON setup = run({"show", m_board.path("saved.vek"), "--json"}).json();
    EXPECT_EQ(setup.at("bitstreams").at("bitstream").at(0).at("path").at(0).at("compression"), "1");
}

TEST_F(CONVERT, stands_behind_the_short_and_the_long_flag_too)
{
    const std::string input = m_board.bitstream("top.sof");
    ASSERT_EQ(run({"convert", input, "-o", m_board.path("a.rbf")}).exit_code, EXIT_CODE_DONE);
    ASSERT_EQ(run({"-c", input, "-o", m_board.path("b.rbf")}).exit_code, EXIT_CODE_DONE);
    ASSERT_EQ(run({"--quiet", "--convert", input, "-o", m_board.path("c.rbf")}).exit_code, EXIT_CODE_DONE);
    EXPECT_EQ(read_file(m_board.path("a.rbf")), read_file(m_board.path("b.rbf")));
    EXPECT_EQ(read_file(m_board.path("a.rbf")), read_file(m_board.path("c.rbf")));
    EXPECT_EQ(run({"check", "-c", input}).exit_code, EXIT_CODE_USAGE);
}

TEST_F(CONVERT, wrong_requests_are_answered_with_what_would_be_right)
{
    struct CASE {
        std::vector<std::string> arguments;
        std::string sentence;
    };
    const std::string input = m_board.bitstream("top.sof");
    write_file(m_board.path("data.bin"), std::string(100, 'd'));
    const std::string rbf = m_board.path("top.rbf");
    const CASE cases[] = {
        {{input, "-o", m_board.path("top.xyz")}, "stands for no output type; name one behind --type: "},
        {{input, "-o", rbf, "--type", "NONE"}, "\"NONE\" is no output type; name one behind --type: "},
        {{input, "-o", m_board.path("top.bin"), "--type", "RBF"},
         "Files of the type RBF end in .rbf; give " + m_board.path("top.bin") + " that ending."},
        {{m_board.path("data.bin"), "-o", rbf},
         "is a raw file; imagewright-cmd pack makes a bitstream of it."},
        {{input, "-o", m_board.path("top.pof")}, "made from a flash device; name it behind --device."},
        {{input, "-o", m_board.path("top.pof"), "--device", "XX1"}, "\"XX1\" is not in the device database"},
        {{input, "-o", rbf, "--device", "W25Q128JV"}, "made without a flash device; leave --device out."},
        {{input, "-o", rbf, "--mode", "QQ"}, "\"QQ\" is no configuration mode; use one of "},
        {{input, "-o", rbf, "--option", "path_compresion=1"}, "Did you mean \"path_compression\""},
        {{input, "-o", rbf, "--option", "id=1"}, "is a parameter of several options; write raw_file.id, "},
        {{input, "-o", rbf, "--option", "path_compression"}, "write PARAM=VALUE."},
        {{input, "-o", rbf, "--option", "output_file.name=other"},
         "With these options the file is named " + m_board.path("other.rbf") + "; name it so behind -o."},
        {{input, "-o", rbf, "--option", "page=1"}, "belongs to one assignment; keep the setup with --save"},
        {{input, "-o", rbf, "--option", "path_password=secret"}, "is a secret, which no setup keeps"},
        {{input, "-o", rbf, "--option", "watchdog_value=1"}, "and this conversion has none."},
        {{input, "-o", rbf, "--save", input}, "is also an input or the output; choose another name"},
    };
    for (const CASE& one : cases) {
        std::vector<std::string> arguments = one.arguments;
        arguments.insert(arguments.begin(), "convert");
        const ANSWER answer = run(arguments);
        EXPECT_EQ(answer.exit_code, EXIT_CODE_USAGE) << one.sentence;
        EXPECT_THAT(answer.err, HasSubstr(one.sentence));
        EXPECT_THAT(answer.err, testing::Not(HasSubstr("secret\"")));
        EXPECT_FALSE(std::filesystem::exists(rbf));
    }
}

TEST_F(CONVERT, failures_have_their_exit_codes)
{
    const std::string input = m_board.bitstream("top.sof");
    EXPECT_EQ(run({"convert", m_board.path("missing.sof"), "-o", m_board.path("a.rbf")}).exit_code,
              EXIT_CODE_INPUT_UNREADABLE);
    write_file(m_board.path("bad.sof"), std::string("no bitstream"));
    EXPECT_EQ(run({"convert", m_board.path("bad.sof"), "-o", m_board.path("a.rbf")}).exit_code,
              EXIT_CODE_INPUT_UNREADABLE);
    // A mode that does not make the type is what the check refuses.
    const ANSWER refused = run({"convert", input, "-o", m_board.path("a.rbf"), "--mode", "ASX4", "--json"});
    EXPECT_EQ(refused.exit_code, EXIT_CODE_REFUSED);
    EXPECT_EQ(refused.json().at("can_generate"), false);
    EXPECT_EQ(
        run({"convert", input, "-o", m_board.path("a.rbf"), "--save", m_board.path("no/a.vek")}).exit_code,
        EXIT_CODE_OUTPUT_NOT_WRITTEN);
    EXPECT_FALSE(std::filesystem::exists(m_board.path("a.rbf")));
}

} // namespace
