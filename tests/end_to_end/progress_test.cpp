// The progress bar, on a terminal and nowhere else. script(1) gives the program a terminal of its own.

#include "temporary_directory.h"
#include "tool.h"

#include <gmock/gmock.h>

#include <filesystem>

namespace
{

using testing::HasSubstr;
using testing::Not;

/// A folder of setups, each with an RBF file of its own.
class PROGRESS_ON_A_TERMINAL : public testing::Test
{
protected:
    static constexpr unsigned UNITS = 20;

    void SetUp() override
    {
        ASSERT_EQ(tool({"sample", "--device", "BS1L15", "-o", "top.sof"}, m_directory.path()).exit_code, 0);
        std::filesystem::create_directory(m_directory / "units");
        std::filesystem::create_directory(m_directory / "out");
        for (unsigned i = 0; i < UNITS; ++i) {
            unit(i, "top.sof");
        }
    }

    void unit(unsigned number, const std::string& input) const
    {
        const std::string name = "unit_" + std::to_string(number);
        write_file(
            m_directory / ("units/" + name + ".vek"),
            "<VEK version=\"1\"><SETTINGS mode=\"PS\"/><BITSTREAMS><BITSTREAM id=\"B\"><PATH>" + input +
                "</PATH></BITSTREAM></BITSTREAMS><OUTPUT_FILES><OUTPUT_FILE type=\"RBF\" name=\"" + name +
                "\" directory=\"out\"><BITSTREAM_ID>B</BITSTREAM_ID></OUTPUT_FILE></OUTPUT_FILES></VEK>");
    }

    /// What a terminal gets to see, both streams.
    CHILD_RESULT on_terminal(const std::string& arguments) const
    {
        return run_program(
            {"script", "-qec", built_program("imagewright-cmd") + " " + arguments, "/dev/null"},
            m_directory.path());
    }

    TEMPORARY_DIRECTORY m_directory;
};

constexpr const char* CLEAR = "\r\x1b[K";
constexpr const char* EMPTY_BAR = "[                              ]   0% 0 of 20 setups";

TEST_F(PROGRESS_ON_A_TERMINAL, counts_the_setups_and_leaves_nothing_behind)
{
    const CHILD_RESULT result = on_terminal("generate units");
    EXPECT_EQ(result.exit_code, 0);
    EXPECT_THAT(result.out, testing::StartsWith(std::string(CLEAR).append(EMPTY_BAR)));
    EXPECT_THAT(result.out, testing::EndsWith("Generated 20 of 20 setups.\r\n"));
    // Whatever is drawn last is cleared before the summary.
    const std::size_t summary = result.out.rfind("Generated");
    const std::size_t last_bar = result.out.rfind("setups", summary);
    ASSERT_NE(last_bar, std::string::npos);
    EXPECT_NE(result.out.find(CLEAR, last_bar), std::string::npos);
    // Each line of a setup stands alone in its row.
    std::size_t lines = 0;
    for (std::size_t at = result.out.find("Wrote "); at != std::string::npos;
         at = result.out.find("Wrote ", at + 1)) {
        ++lines;
        const std::string before = result.out.substr(at - 1, 1);
        EXPECT_TRUE(before == "\n" || before == "K") << result.out.substr(at - 20, 40);
    }
    EXPECT_EQ(lines, UNITS);
}

TEST_F(PROGRESS_ON_A_TERMINAL, messages_of_a_setup_that_fails_stand_alone_in_their_row)
{
    unit(7, "missing.sof");
    const CHILD_RESULT result = on_terminal("generate units --jobs 4");
    EXPECT_EQ(result.exit_code, 1);
    const std::size_t at = result.out.find("units/unit_7.vek");
    ASSERT_NE(at, std::string::npos) << result.out;
    const std::size_t row = result.out.rfind('\n', at);
    const std::string before = result.out.substr(row + 1, at - row - 1);
    EXPECT_TRUE(before.empty() || before.ends_with(CLEAR)) << before;
    EXPECT_THAT(result.out, testing::EndsWith("Generated 19 of 20 setups.\r\n"));
}

TEST_F(PROGRESS_ON_A_TERMINAL, is_not_drawn_when_it_is_not_wanted_or_there_is_no_terminal)
{
    EXPECT_EQ(on_terminal("generate units --quiet").out, "");
    EXPECT_THAT(on_terminal("generate units --json").out, Not(HasSubstr(CLEAR)));
    const CHILD_RESULT piped = tool({"generate", "units"}, m_directory.path());
    EXPECT_EQ(piped.err, "");
    EXPECT_THAT(piped.out, Not(HasSubstr(CLEAR)));
    EXPECT_THAT(on_terminal("generate units 2>/dev/null").out, Not(HasSubstr(CLEAR)));
}

} // namespace
