#include "command_run.h"
#include "fleet.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <set>
#include <sstream>

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

} // namespace
