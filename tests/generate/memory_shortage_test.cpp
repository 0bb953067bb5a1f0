#include "failing_allocation.h"
#include "generate_job.h"
#include "msg_service.h"
#include "parallel.h"
#include "setup_builder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <functional>
#include <limits>
#include <stdexcept>

namespace
{

using testing::Each;
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

/// Runs `work` with every `step`th of its allocations failing, one a run; `look` looks at what came of it.
void with_allocations_failing(long step, const std::function<void()>& work, const std::function<void()>& look)
{
    allocations_left = std::numeric_limits<long>::max();
    work();
    const long all = std::numeric_limits<long>::max() - allocations_left.exchange(-1);
    look();
    ASSERT_GT(all, 0);
    for (long number = 0; number < all && !testing::Test::HasFailure(); number += step) {
        allocations_left = number;
        work();
        allocations_left = -1;
        SCOPED_TRACE("allocation " + std::to_string(number) + " of " + std::to_string(all));
        look();
    }
}

void fill(SETUP_BUILDER& setup)
{
    setup.flash("Flash_Device_1", "W25Q16JV");
    setup.bitstream("Bitstream_1");
    setup.partition("Flash_Device_1", "P1");
    setup.assign("P1", "Bitstream_1", "0");
    setup.raw_file("Raw_File_1", "RBF", "data.rbf", "some data");
    setup.partition("Flash_Device_1", "DATA", "0x00100000", "auto");
    setup.assign("DATA", "Raw_File_1");
    setup.output("RPD", {}, "Flash_Device_1", {"MAP"});
}

TEST(memory_shortage, at_any_moment_of_a_generation_is_told_and_leaves_no_half_file)
{
    SETUP_BUILDER setup("ASX1");
    fill(setup);
    const std::vector<std::string> inputs = file_names(setup);
    bool success = false;
    std::vector<WRITTEN_FILE> written;
    std::vector<std::string> errors;
    const MSG_SINK_SCOPE sink([&errors](const MSG_RECORD& record) {
        if (record.severity == MSG_SEVERITY::ERROR) {
            errors.push_back(record.text);
        }
    });
    with_allocations_failing(
        1,
        [&] {
            success = generate_document(setup.document(), GENERATE_OPTIONS{"", 2}, written);
        },
        [&] {
            EXPECT_EQ(success, errors.empty());
            EXPECT_THAT(errors, Each(HasSubstr("not enough memory")));
            std::vector<std::string> expected = inputs;
            for (const WRITTEN_FILE& file : written) {
                expected.push_back(std::filesystem::path(file.path).filename().string());
                EXPECT_EQ(std::filesystem::file_size(file.path), file.size);
            }
            std::sort(expected.begin(), expected.end());
            EXPECT_EQ(file_names(setup), expected);
            for (const WRITTEN_FILE& file : written) {
                std::filesystem::remove(file.path);
            }
            written.clear();
            errors.clear();
        });
}

TEST(memory_shortage, at_any_moment_of_a_verification_is_told)
{
    SETUP_BUILDER setup("ASX1");
    fill(setup);
    std::vector<WRITTEN_FILE> written;
    ASSERT_TRUE(generate_document(setup.document(), GENERATE_OPTIONS(), written));
    bool success = false;
    std::vector<OUTPUT_VERDICT> verdicts;
    std::vector<std::string> errors;
    const MSG_SINK_SCOPE sink([&errors](const MSG_RECORD& record) {
        if (record.severity == MSG_SEVERITY::ERROR) {
            errors.push_back(record.text);
        }
    });
    with_allocations_failing(
        1,
        [&] {
            VERIFY_OPTIONS options;
            options.threads = 2;
            success = verify_outputs(setup.document(), options, verdicts);
        },
        [&] {
            EXPECT_EQ(success, errors.empty());
            EXPECT_THAT(errors, Each(HasSubstr("not enough memory")));
            for (const OUTPUT_VERDICT& verdict : verdicts) {
                EXPECT_TRUE(verdict.problem.empty() || verdict.problem.find("memory") != std::string::npos)
                    << verdict.problem;
            }
            verdicts.clear();
            errors.clear();
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

} // namespace
