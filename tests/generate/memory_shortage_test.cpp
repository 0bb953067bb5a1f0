#include "failing_allocation.h"
#include "generate_job.h"
#include "msg_service.h"
#include "parallel.h"
#include "setup_builder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <csignal>
#include <filesystem>
#include <functional>
#include <limits>
#include <new>
#include <stdexcept>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

std::vector<std::string> file_names(const SETUP_BUILDER& setup)
{
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(setup.path(""))) {
        names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

/// A setup of a flash image, and what is said about it.
class memory_shortage : public testing::Test
{
protected:
    memory_shortage()
    {
        m_setup.flash("Flash_Device_1", "W25Q16JV");
        m_setup.bitstream("Bitstream_1");
        m_setup.partition("Flash_Device_1", "P1");
        m_setup.assign("P1", "Bitstream_1", "0");
        m_setup.raw_file("Raw_File_1", "RBF", "data.rbf", "some data");
        m_setup.partition("Flash_Device_1", "DATA", "0x00100000", "auto");
        m_setup.assign("DATA", "Raw_File_1");
        m_setup.output("RPD", {}, "Flash_Device_1", {"MAP"});
    }

    /// Runs `work` once for each of its allocations, which fails; `look` looks at what came of it.
    void with_each_allocation_failing(const std::function<bool()>& work, const std::function<void()>& look)
    {
        const auto look_at = [&](bool success) {
            EXPECT_EQ(success, m_errors.empty());
            EXPECT_THAT(m_errors, Each(HasSubstr("not enough memory")));
            look();
            m_errors.clear();
        };
        allocations_left = std::numeric_limits<long>::max();
        const bool success = work();
        const long all = std::numeric_limits<long>::max() - allocations_left.exchange(-1);
        EXPECT_TRUE(success);
        look_at(success);
        ASSERT_GT(all, 0);
        for (long number = 0; number < all && !HasFailure(); ++number) {
            allocations_left = number;
            const bool still_works = work();
            allocations_left = -1;
            SCOPED_TRACE("allocation " + std::to_string(number) + " of " + std::to_string(all));
            look_at(still_works);
        }
    }

    SETUP_BUILDER m_setup{"ASX1"};

    std::vector<std::string> m_errors;

private:
    const MSG_SINK_SCOPE m_sink{[this](const MSG_RECORD& record) {
        if (record.severity == MSG_SEVERITY::ERROR) {
            m_errors.push_back(record.text);
        }
    }};
};

TEST_F(memory_shortage, at_any_moment_of_a_generation_is_told_and_leaves_no_half_file)
{
    const std::vector<std::string> inputs = file_names(m_setup);
    std::vector<WRITTEN_FILE> written;
    with_each_allocation_failing(
        [&] {
            return generate_document(m_setup.document(), GENERATE_OPTIONS{"", 2}, written);
        },
        [&] {
            std::vector<std::string> expected = inputs;
            for (const WRITTEN_FILE& file : written) {
                expected.push_back(std::filesystem::path(file.path).filename().string());
                EXPECT_EQ(std::filesystem::file_size(file.path), file.size);
            }
            std::sort(expected.begin(), expected.end());
            EXPECT_EQ(file_names(m_setup), expected);
            for (const WRITTEN_FILE& file : written) {
                std::filesystem::remove(file.path);
            }
            written.clear();
        });
}

TEST_F(memory_shortage, is_told_of_files_that_stand_from_an_earlier_time)
{
    std::vector<WRITTEN_FILE> written;
    ASSERT_TRUE(generate_document(m_setup.document(), GENERATE_OPTIONS(), written));
    allocations_left = 10;
    EXPECT_FALSE(generate_document(m_setup.document(), GENERATE_OPTIONS(), written));
    EXPECT_THAT(m_errors, ElementsAre(HasSubstr("out.rpd"), HasSubstr("out_secondary.map")));
    EXPECT_EQ(written.size(), 2U);
}

TEST_F(memory_shortage, while_another_output_fails_hides_no_file_that_stands)
{
    const pid_t child = ::fork();
    if (child == 0) {
        // Room for the map, but not for the image.
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{1 << 20, 1 << 20};
        ::setrlimit(RLIMIT_FSIZE, &limit);
        bool hidden = false;
        long allocation = 0;
        for (bool failed = true; failed && !hidden; ++allocation) {
            std::vector<WRITTEN_FILE> written;
            allocations_left = allocation;
            generate_document(m_setup.document(), GENERATE_OPTIONS{"", 1}, written);
            failed = allocations_left.exchange(-1) < 0;
            const bool stands = std::filesystem::remove(m_setup.path("out_secondary.map"));
            hidden = written.size() != (stands ? 1U : 0U);
        }
        ::_exit(hidden ? 1 : allocation < 100 ? 2 : 0);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 0);
}

TEST_F(memory_shortage, at_any_moment_of_a_verification_is_told)
{
    std::vector<WRITTEN_FILE> written;
    ASSERT_TRUE(generate_document(m_setup.document(), GENERATE_OPTIONS(), written));
    std::vector<OUTPUT_VERDICT> verdicts;
    with_each_allocation_failing(
        [&] {
            VERIFY_OPTIONS options;
            options.threads = 2;
            return verify_outputs(m_setup.document(), options, verdicts);
        },
        [&] {
            for (const OUTPUT_VERDICT& verdict : verdicts) {
                EXPECT_TRUE(verdict.problem.empty() || verdict.problem.find("memory") != std::string::npos)
                    << verdict.problem;
            }
            verdicts.clear();
        });
}

TEST(parallel_work, passes_on_what_a_call_throws_when_all_others_have_returned)
{
    for (const unsigned threads : {1U, 2U, 4U}) {
        std::atomic<int> running{0};
        std::atomic<int> calls{0};
        EXPECT_THROW(run_parallel(1000, threads,
                                  [&](std::size_t i) {
                                      ++running;
                                      ++calls;
                                      if (i == 3) {
                                          --running;
                                          throw std::runtime_error("the fourth");
                                      }
                                      --running;
                                  }),
                     std::runtime_error);
        EXPECT_EQ(running, 0);
        EXPECT_GE(calls, 4);
        EXPECT_LT(calls, 1000);
        if (threads == 1) {
            EXPECT_EQ(calls, 4);
        }
    }
}

TEST(parallel_work, is_done_whole_or_not_begun_when_memory_for_a_thread_is_short)
{
    constexpr int ALL = 100;
    for (long number = 0; number < 20; ++number) {
        SCOPED_TRACE(number);
        std::atomic<int> calls{0};
        bool is_begun = true;
        allocations_left = number;
        try {
            run_parallel(ALL, 4, [&calls](std::size_t) { ++calls; });
        } catch (const std::bad_alloc&) {
            is_begun = false;
        }
        allocations_left = -1;
        EXPECT_EQ(calls, is_begun ? ALL : 0);
    }
}

} // namespace
