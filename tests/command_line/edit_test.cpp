#include "command_run.h"
#include "pgm_common_xml_vek_cmd_enum.h"

#include <gmock/gmock.h>

#include <filesystem>

namespace
{

using testing::HasSubstr;

class EDIT : public testing::Test
{
protected:
    ANSWER edit(std::vector<std::string> words) const
    {
        words.insert(words.begin(), {"edit", setup()});
        return run(words);
    }
    std::string setup() const { return m_board.path("board.vek"); }
    void begin() const
    {
        ASSERT_EQ(edit({"--new", "settings", "mode=PS", "bitstream", "path=top.sof"}).exit_code,
                  EXIT_CODE_DONE);
    }

    BOARD m_board;
};

TEST_F(EDIT, builds_a_setup_that_generates)
{
    const std::string input = m_board.bitstream("top.sof");
    const ANSWER answer = edit({"--new", "settings", "mode=PS", "bitstream", "path=" + input,
                                "path_compression=ON", "output_file", "type=RBF", "name=board",
                                "directory=" + m_board.directory().path(), "bitstream_id=" + input});
    EXPECT_EQ(answer.exit_code, EXIT_CODE_DONE) << answer.err;
    EXPECT_EQ(answer.out, "Wrote " + setup() + ".\n");
    EXPECT_EQ(run({"generate", setup(), "--quiet"}).exit_code, EXIT_CODE_DONE);
    EXPECT_TRUE(std::filesystem::exists(m_board.path("board.rbf")));
    const JSON json = run({"show", setup(), "--json"}).json();
    EXPECT_EQ(json.at("bitstreams").at("bitstream").at(0).at("id"), "Bitstream_1");
    EXPECT_EQ(json.at("output_files").at("output_file").at(0).at("bitstream_id").at(0).at("text"),
              "Bitstream_1");
}

TEST_F(EDIT, steps_are_done_in_order_in_one_call)
{
    begin();
    const ANSWER answer =
        edit({"set",      "raw_file",      "raw_file=data.hex", "get",         "raw_file",  "id=data.hex",
              "type",     "set",           "raw_file",          "id=data.hex", "bitswap=1", "get",
              "raw_file", "id=Raw_File_1", "bitswap",           "remove",      "raw_file",  "id=data.hex",
              "get",      "raw_file",      "id=Raw_File_1",     "--json"});
    EXPECT_EQ(answer.exit_code, EXIT_CODE_DONE) << answer.err;
    const JSON json = answer.json();
    const JSON& values = json.at("values");
    ASSERT_EQ(values.size(), 3U);
    EXPECT_EQ(values.at(0).at("values").at(1), (JSON{{"parameter", "type"}, {"value", "HEX"}}));
    EXPECT_EQ(values.at(1).at("values").at(1), (JSON{{"parameter", "bitswap"}, {"value", "1"}}));
    EXPECT_EQ(values.at(2), (JSON{{"option", "raw_file"}, {"values", JSON::array()}}));
}

TEST_F(EDIT, knows_each_option_and_reads_back_what_it_has_set)
{
    begin();
    struct CASE {
        std::string option;
        std::vector<std::string> keys;
        std::string value;
    };
    const CASE cases[] = {
        {"settings", {}, "custom_db_dir=flash"},
        {"raw_file", {"id=Raw_File_7"}, "raw_file=data.bin"},
        {"assignment", {"partition_id=P1"}, "page=3"},
        {"output_file", {"type=HEX"}, "file_options_s_addr=0x00000100"},
        {"flash_loader", {}, "flash_loader=CA3M050"},
        {"flash_device", {"id=F", "partition_id=P1"}, "partition_s_addr=0x00010000"},
        {"bitstream", {"id=Bitstream_1", "path=top.sof"}, "path_compression=1"},
    };
    ASSERT_EQ(std::size(cases), static_cast<std::size_t>(VEK_CMD_OPT_MAX - 1));
    for (const CASE& one : cases) {
        std::vector<std::string> set{"set", one.option};
        std::vector<std::string> get{"get", one.option};
        set.insert(set.end(), one.keys.begin(), one.keys.end());
        get.insert(get.end(), one.keys.begin(), one.keys.end());
        if (one.option == "assignment") {
            set.insert(set.end(), {"bitstream_id=Bitstream_1"});
        }
        set.push_back(one.value);
        get.push_back(one.value.substr(0, one.value.find('=')));
        // Kept in a file of its own, so that the cases do not lean on each other.
        set.insert(set.end(), {"-o", m_board.path("next.vek")});
        if (one.option == "assignment") {
            set.insert(set.begin(), {"flash_device", "id=F", "type=W25Q128JV", "partition_id=P1"});
        }
        ASSERT_EQ(edit(set).exit_code, EXIT_CODE_DONE) << one.option << edit(set).err;
        get.insert(get.begin(), {"edit", m_board.path("next.vek")});
        EXPECT_THAT(run(get).out, HasSubstr(one.value + "\n")) << one.option;
    }
}

TEST_F(EDIT, writes_elsewhere_and_leaves_the_setup_alone)
{
    begin();
    const std::string before = read_text_file(setup());
    ASSERT_EQ(edit({"settings", "mode=FPP", "-o", m_board.path("other.vek")}).exit_code, EXIT_CODE_DONE);
    EXPECT_EQ(read_text_file(setup()), before);
    EXPECT_THAT(read_text_file(m_board.path("other.vek")), HasSubstr("mode=\"FPP\""));
}

TEST_F(EDIT, only_reading_writes_nothing)
{
    begin();
    const auto time = std::filesystem::last_write_time(setup());
    const ANSWER answer = edit({"get", "settings"});
    EXPECT_EQ(answer.exit_code, EXIT_CODE_DONE);
    EXPECT_EQ(answer.out, "custom_db_dir=\nmode=PS\n");
    EXPECT_EQ(std::filesystem::last_write_time(setup()), time);
    EXPECT_EQ(edit({"get", "settings", "--json"}).json().at("written"), JSON());
}

TEST_F(EDIT, links_go_out_of_every_output)
{
    begin();
    ASSERT_EQ(edit({"output_file", "type=RBF", "bitstream_id=Bitstream_1", "output_file", "type=TTF",
                    "bitstream_id=Bitstream_1"})
                  .exit_code,
              EXIT_CODE_DONE);
    ASSERT_EQ(edit({"remove", "output_file", "bitstream_id=top.sof"}).exit_code, EXIT_CODE_DONE);
    EXPECT_THAT(read_text_file(setup()), testing::Not(HasSubstr("BITSTREAM_ID")));
}

TEST_F(EDIT, wrong_words_get_the_nearest_right_ones_and_change_nothing)
{
    begin();
    struct CASE {
        std::vector<std::string> words;
        std::string sentence;
    };
    const CASE cases[] = {
        {{"bitsream", "id=x"}, "\"bitsream\" is no option of a setup; use raw_file, assignment, settings, "},
        {{"bitsream", "id=x"}, "Did you mean \"bitstream\"?"},
        {{"bitstream", "compresion=1"},
         "Did you mean \"path_compression\" or \"path_enhanced_compression\"?"},
        {{"output_file", "s_addr=1"}, "Did you mean \"file_options_s_addr\""},
        {{"settings", "mode=XX"}, "The value \"XX\" of mode is not possible; expected is "},
        {{"settings"}, "No PARAM=VALUE stands behind settings; name what is to be set."},
        {{"settings", "=PS"}, "\"=PS\" is no parameter with a value; write PARAM=VALUE."},
        {{"get"}, "An option is missing behind \"get\""},
        {{"output_file", "name=board"}, "output_file needs type=VALUE to say which one is meant."},
        {{"flash_device", "id=F", "partition_s_addr=0"}, "flash_device needs partition_id=VALUE"},
        {{"bitstream", "path=top.sof", "path_password=hush"}, "path_password is a secret"},
        {{"assignment", "partition_id=P1", "bitstream_id=Bitstream_1", "raw_file_id=R"},
         "An assignment takes a bitstream or raw files, not both; name one kind."},
        {{"raw_file", "id=Bitstream_1", "raw_file=x.hex"}, "the id belongs to another element."},
        {{"remove", "settings", "mode=PS"}, "The setup cannot be changed in that way: "},
    };
    const std::string before = read_text_file(setup());
    for (const CASE& one : cases) {
        const ANSWER answer = edit(one.words);
        EXPECT_EQ(answer.exit_code, EXIT_CODE_USAGE) << one.sentence;
        EXPECT_THAT(answer.err, HasSubstr(one.sentence));
        EXPECT_THAT(answer.err, testing::Not(HasSubstr("hush")));
        EXPECT_EQ(read_text_file(setup()), before);
    }
}

TEST_F(EDIT, a_path_that_belongs_to_several_inputs_asks_for_the_id)
{
    begin();
    ASSERT_EQ(edit({"bitstream", "id=Other", "path=top.sof"}).exit_code, EXIT_CODE_DONE);
    const ANSWER answer = edit({"bitstream", "path=top.sof", "path_compression=1"});
    EXPECT_EQ(answer.exit_code, EXIT_CODE_USAGE);
    EXPECT_THAT(answer.err, HasSubstr("top.sof belongs to 2 inputs; name the id, Bitstream_1 or Other."));
}

TEST_F(EDIT, refuses_to_save_what_no_reader_would_take)
{
    begin();
    const std::string before = read_text_file(setup());
    const ANSWER answer = edit({"output_file", "type=RBF", "bitstream_id=Bitstream_9"});
    EXPECT_EQ(answer.exit_code, EXIT_CODE_REFUSED);
    EXPECT_THAT(answer.err, HasSubstr("Bitstream_9"));
    EXPECT_EQ(read_text_file(setup()), before);
}

TEST_F(EDIT, failures_have_their_exit_codes)
{
    EXPECT_EQ(edit({"settings", "mode=PS"}).exit_code, EXIT_CODE_INPUT_UNREADABLE);
    begin();
    EXPECT_EQ(edit({"settings", "mode=FPP", "-o", m_board.path("missing/a.vek")}).exit_code,
              EXIT_CODE_OUTPUT_NOT_WRITTEN);
    write_file(m_board.path("bad.vek"), std::string("<VEK>"));
    EXPECT_EQ(run({"edit", m_board.path("bad.vek"), "settings", "mode=PS"}).exit_code,
              EXIT_CODE_INPUT_UNREADABLE);
    EXPECT_EQ(read_text_file(m_board.path("bad.vek")), "<VEK>");
}

} // namespace
