#include "failing_threads.h"
#include "generate_job.h"
#include "parallel.h"
#include "setup_builder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>

namespace
{

/// While it lives, the machine gives this many threads and no more.
class THREADS_SCOPE
{
public:
    explicit THREADS_SCOPE(int count) { threads_left = count; }
    ~THREADS_SCOPE() { threads_left = THREADS_ENOUGH; }
    THREADS_SCOPE(const THREADS_SCOPE&) = delete;
    THREADS_SCOPE& operator=(const THREADS_SCOPE&) = delete;
    /// How many were wanted and not given.
    int refused() const { return std::max(-threads_left.load(), 0); }
};

TEST(thread_shortage, leaves_the_work_to_those_that_there_are)
{
    for (const int given : {0, 1, 2}) {
        SCOPED_TRACE(given);
        std::vector<std::atomic<int>> calls(100);
        {
            const THREADS_SCOPE machine(given);
            run_parallel(calls.size(), 4, [&](std::size_t i) { ++calls[i]; });
            EXPECT_EQ(machine.refused(), 1);
        }
        for (const std::atomic<int>& of_one : calls) {
            EXPECT_EQ(of_one, 1);
        }
    }
}

TEST(thread_shortage, changes_no_byte_of_a_generation)
{
    SETUP_BUILDER setup{"ASX1"};
    setup.flash("Flash_Device_1", "W25Q16JV");
    setup.bitstream("Bitstream_1", {.device = "GR5S027", .core = 400000});
    setup.document().bitstreams[0]->bitstream[0]->path[0]->compression = "1";
    setup.partition("Flash_Device_1", "P1");
    setup.assign("P1", "Bitstream_1", "0");
    setup.output("RPD", {}, "Flash_Device_1", {"MAP"});
    setup.output("POF", {}, "Flash_Device_1");

    std::vector<std::vector<std::vector<std::uint8_t>>> contents;
    for (const int given : {THREADS_ENOUGH, 1, 0}) {
        SCOPED_TRACE(given);
        const THREADS_SCOPE machine(given);
        std::vector<WRITTEN_FILE> written;
        ASSERT_TRUE(generate_document(setup.document(), GENERATE_OPTIONS{"", 4}, written));
        EXPECT_EQ(machine.refused() > 0, given != THREADS_ENOUGH);
        std::vector<std::vector<std::uint8_t>>& of_run = contents.emplace_back();
        for (const WRITTEN_FILE& file : written) {
            of_run.push_back(read_file(file.path));
        }
        ASSERT_EQ(of_run.size(), 3U);
    }
    EXPECT_EQ(contents[1], contents[0]);
    EXPECT_EQ(contents[2], contents[0]);
}

} // namespace
