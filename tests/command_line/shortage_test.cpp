#include "command_run.h"
#include "failing_allocation.h"
#include "failing_threads.h"
#include "progress_bar.h"

#include <gmock/gmock.h>

#include <array>
#include <filesystem>
#include <limits>
#include <ostream>
#include <poll.h>
#include <pty.h>
#include <sstream>
#include <streambuf>
#include <unistd.h>

namespace
{

using testing::HasSubstr;

/// Takes texts into memory that it has from the start, as the stream of a process does.
class FIXED_BUFFER final : public std::streambuf
{
public:
    FIXED_BUFFER() { setp(m_text.data(), m_text.data() + m_text.size()); }
    std::string_view text() const { return {pbase(), static_cast<std::size_t>(pptr() - pbase())}; }

private:
    std::array<char, 1 << 16> m_text;
};

/// Has no room at all, as a full disk.
class FULL_BUFFER final : public std::streambuf
{
};

/// Only while the arguments are taken apart: the destructor of a JSON document needs memory itself.
TEST(memory_shortage_of_command, is_told_from_the_first_argument_on)
{
    constexpr long MANY = std::numeric_limits<long>::max();
    const std::vector<std::string> arguments{"--version"};
    int told = 0;
    const auto run_failing = [&](long allocation) {
        FIXED_BUFFER out_buffer;
        FIXED_BUFFER err_buffer;
        std::ostream out(&out_buffer);
        std::ostream err(&err_buffer);
        allocations_left = allocation;
        const EXIT_CODE code = run_command_line(arguments, out, err);
        const long left = allocations_left.exchange(-1);
        if (code == EXIT_CODE_DONE) {
            EXPECT_THAT(std::string(out_buffer.text()), HasSubstr("imagewright-cmd "));
            EXPECT_EQ(err_buffer.text(), "");
        } else {
            EXPECT_EQ(code, EXIT_CODE_INPUT_UNREADABLE);
            EXPECT_EQ(err_buffer.text(), "imagewright-cmd: There is not enough memory; end other programs, "
                                         "or run it on a machine with more.\n");
            ++told;
        }
        return left;
    };
    const long all = MANY - run_failing(MANY);
    ASSERT_EQ(told, 0);
    // Each call declares all options anew; a call for each of them would take a minute.
    const long step = all / 400 + 1;
    for (long number = 0; number < all && !HasFailure(); number += step) {
        SCOPED_TRACE("allocation " + std::to_string(number) + " of " + std::to_string(all));
        run_failing(number);
    }
    EXPECT_GT(told, 100);
}

TEST(memory_shortage_of_command, is_told_while_the_command_runs)
{
    const BOARD board;
    const std::string bitstream = board.bitstream("top.sof", "CA3M050", "ASX4", 900000);
    for (const std::string part : {"core", "image"}) {
        SCOPED_TRACE(part);
        largest_allocation = 40000;
        const ANSWER answer = run({"inspect", bitstream, "--extract", part, "-o", board.path(part)});
        largest_allocation = std::numeric_limits<std::size_t>::max();
        EXPECT_EQ(answer.exit_code, EXIT_CODE_INPUT_UNREADABLE);
        EXPECT_THAT(answer.err, HasSubstr("not enough memory"));
        EXPECT_FALSE(std::filesystem::exists(board.path(part)));
    }
}

TEST(standard_output, that_takes_nothing_is_told)
{
    FULL_BUFFER nowhere;
    std::ostream out(&nowhere);
    std::ostringstream err;
    EXPECT_EQ(run_command_line({"list", "modes"}, out, err), EXIT_CODE_OUTPUT_NOT_WRITTEN);
    EXPECT_THAT(err.str(), HasSubstr("The standard output could not be written"));
    out.clear();
    EXPECT_EQ(run_command_line({"--version"}, out, err), EXIT_CODE_OUTPUT_NOT_WRITTEN);
    // A worse answer stays, and one that says nothing on the standard output is not concerned.
    out.clear();
    EXPECT_EQ(run_command_line({"generate", "missing.vek"}, out, err), EXIT_CODE_INPUT_UNREADABLE);
}

/// In the place of the error stream while it lives.
class TERMINAL
{
public:
    TERMINAL() : m_error_stream(::dup(STDERR_FILENO))
    {
        int program = -1;
        EXPECT_EQ(::openpty(&m_screen, &program, nullptr, nullptr, nullptr), 0);
        ::dup2(program, STDERR_FILENO);
        ::close(program);
    }
    ~TERMINAL()
    {
        ::dup2(m_error_stream, STDERR_FILENO);
        ::close(m_error_stream);
        ::close(m_screen);
    }
    TERMINAL(const TERMINAL&) = delete;
    TERMINAL& operator=(const TERMINAL&) = delete;

    bool shows_something() const
    {
        pollfd screen{m_screen, POLLIN, 0};
        return ::poll(&screen, 1, 0) == 1;
    }

private:
    int m_error_stream;
    int m_screen = -1;
};

TEST(progress_bar, stays_away_where_no_thread_can_be_started)
{
    for (const int given : {0, THREADS_ENOUGH}) {
        const TERMINAL terminal;
        threads_left = given;
        const PROGRESS_BAR bar(true, [] { return progress_line(50, "half"); });
        threads_left = THREADS_ENOUGH;
        EXPECT_EQ(terminal.shows_something(), given != 0);
    }
}

} // namespace
