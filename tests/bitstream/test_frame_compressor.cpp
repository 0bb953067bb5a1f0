#include "failing_allocation.h"
#include "frame_compressor.h"
#include "stream_packets.h"

#include <gtest/gtest.h>

#include <limits>
#include <new>

namespace
{

constexpr std::size_t BLOCKS = 9;

/// Zeros, which every method makes small.
class ZEROS final : public BYTE_SOURCE
{
public:
    std::uint64_t size() const override { return BLOCKS * FRAMES_LIMIT; }
    bool read(std::uint64_t /*offset*/, std::span<std::uint8_t> into, std::string& /*message*/) const override
    {
        std::fill(into.begin(), into.end(), std::uint8_t(0));
        return true;
    }
};

/// How many blocks there are before the end or a shortage of memory.
std::size_t blocks_of(STREAM_METHOD method)
{
    const ZEROS source;
    std::size_t blocks = 0;
    try {
        FRAME_COMPRESSOR compressor(source, method);
        FRAME_BLOCK block;
        std::string message;
        while (compressor.next(block, message)) {
            EXPECT_EQ(block.offset, blocks * FRAMES_LIMIT);
            EXPECT_EQ(block.method, method);
            ++blocks;
        }
        EXPECT_TRUE(compressor.at_end());
        EXPECT_EQ(blocks, BLOCKS);
    } catch (const std::bad_alloc&) {
        EXPECT_LT(blocks, BLOCKS);
    }
    return blocks;
}

TEST(frame_compressor, hands_a_shortage_of_memory_to_the_thread_that_waits)
{
    for (const STREAM_METHOD method : {STREAM_METHOD::LZ4, STREAM_METHOD::ZSTD}) {
        constexpr long MANY = std::numeric_limits<long>::max();
        allocations_left = MANY;
        EXPECT_EQ(blocks_of(method), BLOCKS);
        const long all = MANY - allocations_left.exchange(-1);
        int short_of_memory = 0;
        for (long number = 0; number < all; ++number) {
            allocations_left = number;
            short_of_memory += blocks_of(method) == BLOCKS ? 0 : 1;
            allocations_left = -1;
        }
        EXPECT_GT(short_of_memory, 0);
    }
}

} // namespace
