#include "command_run.h"
#include "fleet.h"
#include "reference_loader.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <map>
#include <set>
#include <sstream>
#include <sys/stat.h>

namespace
{

using testing::HasSubstr;

/// A folder of setups, unit_0.vek and on, each with an output of its own.
class FLEET : public testing::Test
{
protected:
    void SetUp() override
    {
        m_input = m_board.bitstream("top.sof");
        std::filesystem::create_directories(m_board.path("units"));
        std::filesystem::create_directories(m_board.path("out"));
    }

    std::string unit(const std::string& name, const std::string& output, const std::string& input) const
    {
        return m_board.setup(
            "units/" + name + ".vek", "PS",
            element("BITSTREAMS", "<BITSTREAM id=\"B\">" + element("PATH", input) + "</BITSTREAM>") +
                element("OUTPUT_FILES", "<OUTPUT_FILE type=\"RBF\" name=\"" + output + "\" directory=\"" +
                                            m_board.path("out") + "\">" + element("BITSTREAM_ID", "B") +
                                            "</OUTPUT_FILE>"));
    }

    void make_units(unsigned count) const
    {
        for (unsigned i = 0; i < count; ++i) {
            unit("unit_" + std::to_string(i), "unit_" + std::to_string(i), m_input);
        }
    }

    std::vector<std::string> outputs() const
    {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(m_board.path("out"))) {
            names.push_back(entry.path().filename());
        }
        std::sort(names.begin(), names.end());
        return names;
    }

    BOARD m_board;
    std::string m_input;
};

TEST_F(FLEET, shards_take_every_setup_of_a_folder_once)
{
    make_units(11);
    std::multiset<std::string> taken;
    for (const std::string shard : {"1/3", "2/3", "3/3"}) {
        const std::size_t before = outputs().size();
        const ANSWER answer =
            run({"generate", m_board.path("units"), "--shard", shard, "--jobs", "2", "--json"});
        ASSERT_EQ(answer.exit_code, EXIT_CODE_DONE) << answer.err;
        const JSON json = answer.json();
        for (const JSON& entry : json) {
            taken.insert(entry.at("setup").get<std::string>());
        }
        EXPECT_EQ(outputs().size(), before + json.size());
        EXPECT_GE(json.size(), 3U);
    }
    const std::vector<std::string> in_shards = outputs();
    std::filesystem::remove_all(m_board.path("out"));
    std::filesystem::create_directories(m_board.path("out"));
    const JSON whole = run({"generate", m_board.path("units"), "--json"}).json();
    std::multiset<std::string> all;
    for (const JSON& entry : whole) {
        all.insert(entry.at("setup").get<std::string>());
    }
    EXPECT_EQ(taken, all);
    EXPECT_EQ(std::set<std::string>(all.begin(), all.end()).size(), 11U);
    EXPECT_EQ(outputs(), in_shards);
}

TEST_F(FLEET, the_split_depends_on_the_list_alone)
{
    const std::vector<std::string> list{"a", "b", "c", "d", "e"};
    EXPECT_THAT(shard_of(list, {1, 2}), testing::ElementsAre("a", "c", "e"));
    EXPECT_THAT(shard_of(list, {2, 2}), testing::ElementsAre("b", "d"));
    EXPECT_THAT(shard_of(list, {7, 9}), testing::IsEmpty());
    std::vector<std::string> sorted;
    std::string message;
    ASSERT_TRUE(list_setups({"c.vek", "a.vek", "b.vek", "a.vek"}, sorted, message));
    EXPECT_THAT(sorted, testing::ElementsAre("a.vek", "b.vek", "c.vek"));
}

TEST_F(FLEET, a_shard_without_setups_is_done_at_once)
{
    make_units(2);
    const ANSWER answer = run({"generate", m_board.path("units"), "--shard", "5/5"});
    EXPECT_EQ(answer.exit_code, EXIT_CODE_DONE);
    EXPECT_EQ(answer.out, "Generated 0 of 0 setups.\n");
}

TEST_F(FLEET, a_directory_without_setups_is_an_error)
{
    write_file(m_board.path("units/notes.txt"), std::string("x"));
    const ANSWER answer = run({"generate", m_board.path("units")});
    EXPECT_EQ(answer.exit_code, EXIT_CODE_INPUT_UNREADABLE);
    EXPECT_EQ(answer.err, "imagewright-cmd: " + m_board.path("units") +
                              " is a directory without a setup file (.vek); name another or a setup.\n");
}

TEST_F(FLEET, a_shard_that_is_none_is_refused)
{
    for (const std::string shard : {"0/3", "4/3", "3", "1/0", "1/3x", "-1/3", "a/b"}) {
        const ANSWER answer = run({"generate", m_board.path("units"), "--shard=" + shard});
        EXPECT_EQ(answer.exit_code, EXIT_CODE_USAGE) << shard;
        EXPECT_THAT(answer.err,
                    HasSubstr("\"" + shard + "\" is no shard; write I/N with I from 1 to N, as in 2/5."));
    }
    EXPECT_EQ(run({"generate", m_board.path("units"), "--jobs", "0"}).exit_code, EXIT_CODE_USAGE);
}

TEST_F(FLEET, goes_on_behind_failures_and_ends_with_the_worst_code)
{
    make_units(3);
    unit("refused", "refused", m_board.path("missing.sof"));
    EXPECT_EQ(run({"generate", m_board.path("units")}).exit_code, EXIT_CODE_REFUSED);
    write_file(m_board.path("units/unreadable.vek"), std::string("<VEK>"));
    const ANSWER answer = run({"generate", m_board.path("units"), "--json", "--jobs", "3"});
    EXPECT_EQ(answer.exit_code, EXIT_CODE_INPUT_UNREADABLE);
    const JSON json = answer.json();
    ASSERT_EQ(json.size(), 5U);
    EXPECT_EQ(json.at(0).at("can_generate"), false);
    EXPECT_EQ(json.at(1).at("complete"), true);
    EXPECT_THAT(json.at(4).at("error").get<std::string>(), HasSubstr("unreadable.vek"));
    EXPECT_THAT(outputs(), testing::ElementsAre("unit_0.rbf", "unit_1.rbf", "unit_2.rbf"));
    EXPECT_THAT(run({"generate", m_board.path("units")}).out, HasSubstr("Generated 3 of 5 setups.\n"));
}

TEST_F(FLEET, messages_of_setups_that_fail_at_once_keep_their_lines)
{
    for (unsigned i = 0; i < 20; ++i) {
        const std::string name = "unit_" + std::to_string(i);
        unit(name, name, m_input);
        // A link that leads nowhere passes the check and cannot be written.
        std::filesystem::create_symlink(m_board.path("nowhere/" + name),
                                        m_board.path("out/" + name + ".rbf"));
    }
    const ANSWER answer = run({"generate", m_board.path("units"), "--jobs", "8"});
    EXPECT_EQ(answer.exit_code, EXIT_CODE_OUTPUT_NOT_WRITTEN);
    std::istringstream lines(answer.err);
    unsigned count = 0;
    for (std::string line; std::getline(lines, line); ++count) {
        EXPECT_THAT(line, testing::StartsWith("Error"));
        EXPECT_THAT(line, HasSubstr(".rbf"));
    }
    EXPECT_EQ(count, 20U) << answer.err;
    EXPECT_EQ(answer.out, "Generated 0 of 20 setups.\n");
}

TEST_F(FLEET, of_two_setups_that_want_one_file_one_is_refused)
{
    unit("first", "same", m_input);
    unit("second", "same", m_input);
    const ANSWER answer = run({"generate", m_board.path("units"), "--jobs", "1"});
    EXPECT_EQ(answer.exit_code, EXIT_CODE_REFUSED);
    EXPECT_THAT(answer.err, HasSubstr("units/second.vek: the output file " + m_board.path("out/same.rbf") +
                                      " is also that of "));
}

TEST_F(FLEET, writes_the_same_bytes_however_many_work_at_once)
{
    make_units(4);
    ASSERT_EQ(run({"generate", m_board.path("units"), "--jobs", "1", "--quiet"}).exit_code, EXIT_CODE_DONE);
    const std::vector<std::uint8_t> alone = read_file(m_board.path("out/unit_3.rbf"));
    ASSERT_EQ(run({"generate", m_board.path("units"), "--jobs", "8", "--quiet"}).exit_code, EXIT_CODE_DONE);
    EXPECT_EQ(read_file(m_board.path("out/unit_3.rbf")), alone);
}

TEST_F(FLEET, setups_with_different_flash_databases_do_not_disturb_each_other)
{
    // The device of each setup is in its own database only.
    for (const std::string name : {"one", "two"}) {
        std::filesystem::create_directories(m_board.path("db_" + name));
        write_file(m_board.path("db_" + name + "/device.xml"),
                   "<FLASH_DEVICE version=\"1\" name=\"OWN_" + name +
                       "\" type=\"serial-3v\" size=\"8388608\" sector_size=\"0x10000\" page_size=\"256\"/>");
    }
    const std::string input = m_board.bitstream("a.sof", "CA3M050", "ASX4", 70000);
    for (unsigned i = 0; i < 12; ++i) {
        const std::string name = i % 2 == 0 ? "one" : "two";
        const std::string output = "unit_" + std::to_string(i);
        write_file(
            m_board.path("units/" + output + ".vek"),
            "<VEK version=\"1\"><SETTINGS mode=\"ASX4\" custom_db_dir=\"" + m_board.path("db_" + name) +
                "\"/>" +
                element("ASSIGNMENTS", "<ASSIGNMENT page=\"0\" partition_id=\"P1\">" +
                                           element("BITSTREAM_ID", "B") + "</ASSIGNMENT>") +
                element("BITSTREAMS", "<BITSTREAM id=\"B\">" + element("PATH", input) + "</BITSTREAM>") +
                element("FLASH_DEVICES", "<FLASH_DEVICE type=\"OWN_" + name +
                                             "\" id=\"F\"><PARTITION id=\"P1\"/></FLASH_DEVICE>") +
                element("OUTPUT_FILES", "<OUTPUT_FILE type=\"RPD\" name=\"" + output + "\" directory=\"" +
                                            m_board.path("out") + "\">" + element("FLASH_DEVICE_ID", "F") +
                                            "</OUTPUT_FILE>") +
                "</VEK>");
    }
    const ANSWER answer = run({"generate", m_board.path("units"), "--jobs", "4", "--quiet"});
    EXPECT_EQ(answer.exit_code, EXIT_CODE_DONE) << answer.err;
    EXPECT_EQ(outputs().size(), 12U);
}

/// Units with keys of their own, made by the commands that the page about fleets shows.
class FLEET_OF_KEYS : public FLEET
{
protected:
    static constexpr unsigned UNITS = 9;

    void SetUp() override
    {
        FLEET::SetUp();
        std::filesystem::create_directories(m_board.path("keys"));
        const std::string top = m_board.bitstream("encrypted.sof", "CA3M050", "PS", 70000);
        const std::string base = m_board.setup(
            "base.vek", "PS",
            element("BITSTREAMS", "<BITSTREAM id=\"B\">" + element("PATH", top) + "</BITSTREAM>") +
                element("OUTPUT_FILES", "<OUTPUT_FILE type=\"RBF\" name=\"base\" directory=\"" +
                                            m_board.path("out") + "\">" + element("BITSTREAM_ID", "B") +
                                            "</OUTPUT_FILE>"));
        for (unsigned i = 0; i < UNITS; ++i) {
            const std::string name = "unit_" + std::to_string(i);
            const std::string keys = m_board.path("keys/" + name + ".key");
            write_file(keys, "unit " + digits(i) + "\n");
            ASSERT_EQ(::chmod(keys.c_str(), 0600), 0);
            const ANSWER answer =
                run({"--quiet", "edit", base, "bitstream", "id=B", "path=" + top, "path_encryption=1",
                     "path_key_file1=" + keys, "path_key1=unit", "output_file", "type=RBF", "name=" + name,
                     "-o", m_board.path("units/" + name + ".vek")});
            ASSERT_EQ(answer.exit_code, EXIT_CODE_DONE) << answer.err;
        }
    }

    static std::string digits(unsigned unit)
    {
        std::string text(64, 'A');
        text[unit] = '1';
        return text;
    }

    static std::vector<std::uint8_t> key(unsigned unit)
    {
        std::vector<std::uint8_t> bytes;
        for (std::size_t i = 0; i < 64; i += 2) {
            bytes.push_back(static_cast<std::uint8_t>(std::stoul(digits(unit).substr(i, 2), nullptr, 16)));
        }
        return bytes;
    }

    std::string file(unsigned unit) const
    {
        return m_board.path("out/unit_" + std::to_string(unit) + ".rbf");
    }

    /// The written files by name, and then none.
    std::map<std::string, std::vector<std::uint8_t>> take_outputs() const
    {
        std::map<std::string, std::vector<std::uint8_t>> taken;
        for (const std::string& name : outputs()) {
            taken[name] = read_file(m_board.path("out/" + name));
            std::filesystem::remove(m_board.path("out/" + name));
        }
        return taken;
    }

    void generate(const std::vector<std::string>& more) const
    {
        std::vector<std::string> arguments = {"generate", m_board.path("units"), "--quiet"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        const ANSWER answer = run(arguments);
        ASSERT_EQ(answer.exit_code, EXIT_CODE_DONE) << answer.err;
    }
};

TEST_F(FLEET_OF_KEYS, every_unit_is_encrypted_with_its_own_key_alone)
{
    generate({});
    ASSERT_EQ(outputs().size(), UNITS);
    for (unsigned unit = 0; unit < UNITS; ++unit) {
        const std::vector<std::uint8_t> bytes = read_file(file(unit));
        LOADED_STREAM stream;
        std::string error;
        ASSERT_TRUE(load_configuration_stream(bytes, stream, error, key(unit))) << error;
        EXPECT_GT(stream.images.at(0).encrypted_packets, 0U);
        const std::string core = read_text_file(m_board.path("encrypted.sof.core"));
        EXPECT_EQ(stream.images.at(0).core, std::vector<std::uint8_t>(core.begin(), core.end()));
        EXPECT_FALSE(load_configuration_stream(bytes, stream, error, key((unit + 1) % UNITS)));
        EXPECT_EQ(error, "the device has another key");
    }
}

TEST_F(FLEET_OF_KEYS, two_shards_write_different_files_and_together_all_with_the_same_bytes)
{
    generate({"--jobs", "1"});
    const auto whole = take_outputs();
    ASSERT_EQ(whole.size(), UNITS);
    for (const std::string jobs : {"1", "2", "8"}) {
        generate({"--shard", "1/2", "--jobs", jobs});
        auto first = take_outputs();
        generate({"--shard", "2/2", "--jobs", jobs});
        auto second = take_outputs();
        EXPECT_EQ(first.size(), 5U);
        EXPECT_EQ(second.size(), 4U);
        first.merge(second);
        EXPECT_TRUE(second.empty()) << "a file was written by both shards";
        EXPECT_TRUE(first == whole) << jobs << " jobs";
        generate({"--jobs", jobs});
        EXPECT_TRUE(take_outputs() == whole) << jobs << " jobs";
    }
}

TEST_F(FLEET_OF_KEYS, a_unit_whose_key_is_missing_fails_alone)
{
    std::filesystem::remove(m_board.path("keys/unit_4.key"));
    const ANSWER answer = run({"generate", m_board.path("units"), "--quiet"});
    EXPECT_EQ(answer.exit_code, EXIT_CODE_REFUSED);
    EXPECT_THAT(answer.err, HasSubstr(m_board.path("keys/unit_4.key") + " cannot be opened: no such file."));
    EXPECT_EQ(outputs().size(), UNITS - 1);
    EXPECT_FALSE(std::filesystem::exists(file(4)));
}

} // namespace
