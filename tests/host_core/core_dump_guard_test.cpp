#include "core_dump_guard.h"

#include <gtest/gtest.h>

#include <csignal>
#include <optional>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

#ifdef NDEBUG
constexpr bool IS_GUARDING = true;
#else
constexpr bool IS_GUARDING = false;
#endif

bool is_dumpable()
{
    return prctl(PR_GET_DUMPABLE) == 1;
}

rlim_t core_limit()
{
    rlimit limit{};
    EXPECT_EQ(getrlimit(RLIMIT_CORE, &limit), 0);
    return limit.rlim_cur;
}

/// What becomes of the work in a process of its own, whose limits and flags go with it.
int run_in_child(void (*work)())
{
    const pid_t child = fork();
    if (child == 0) {
        work();
        _exit(testing::Test::HasFailure() ? 1 : 0);
    }
    int status = -1;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    return status;
}

} // namespace

TEST(CORE_DUMP_GUARD, the_first_closes_the_process_and_the_last_opens_it_again)
{
    const int status = run_in_child([] {
        prctl(PR_SET_DUMPABLE, 1);
        rlimit limit{};
        getrlimit(RLIMIT_CORE, &limit);
        limit.rlim_cur = limit.rlim_max < 4096 ? limit.rlim_max : 4096;
        setrlimit(RLIMIT_CORE, &limit);
        std::optional<CORE_DUMP_GUARD> first(std::in_place);
        EXPECT_EQ(is_dumpable(), !IS_GUARDING);
        EXPECT_EQ(core_limit(), IS_GUARDING ? 0 : limit.rlim_cur);
        {
            const CORE_DUMP_GUARD second;
            first.reset();
            EXPECT_EQ(is_dumpable(), !IS_GUARDING) << "one still lives";
            EXPECT_EQ(core_limit(), IS_GUARDING ? 0 : limit.rlim_cur);
        }
        EXPECT_TRUE(is_dumpable());
        EXPECT_EQ(core_limit(), limit.rlim_cur);
        const CORE_DUMP_GUARD again;
        EXPECT_EQ(is_dumpable(), !IS_GUARDING);
    });
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
}

TEST(CORE_DUMP_GUARD, a_process_that_was_closed_before_stays_so)
{
    const int status = run_in_child([] {
        prctl(PR_SET_DUMPABLE, 0);
        {
            const CORE_DUMP_GUARD guard;
            EXPECT_FALSE(is_dumpable());
        }
        EXPECT_FALSE(is_dumpable());
    });
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
}

TEST(CORE_DUMP_GUARD, a_crash_leaves_no_core_while_one_lives)
{
    const int status = run_in_child([] {
        if (chdir("/tmp") != 0) {
            _exit(1);
        }
        std::signal(SIGSEGV, SIG_DFL);
        const CORE_DUMP_GUARD guard;
        if (!IS_GUARDING) {
            const rlimit none{0, 0};
            setrlimit(RLIMIT_CORE, &none);
        }
        std::raise(SIGSEGV);
    });
    ASSERT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(WTERMSIG(status), SIGSEGV);
    EXPECT_FALSE(WCOREDUMP(status));
}
