#include "byte_source.h"
#include "fill_crc.h"
#include "format_test_support.h"

#include <gtest/gtest.h>

TEST(fill_crc, equals_the_checksum_of_the_bytes)
{
    for (const std::size_t length : {0u, 1u, 2u, 3u, 7u, 8u, 255u, 256u, 65537u, 1000003u}) {
        const BYTES fill(length, 0xFF);
        EXPECT_EQ(crc32_of_fill(0, length), crc32(fill)) << length;
        EXPECT_EQ(crc32_of_fill(0xCBF43926, length), crc32(fill, 0xCBF43926)) << length;
    }
}

TEST(fill_crc, lengths_beyond_any_memory_add_up)
{
    constexpr std::uint64_t LARGE = 0x0123456789ABCDEF;
    EXPECT_EQ(crc32_of_fill(crc32_of_fill(5, LARGE), LARGE), crc32_of_fill(5, 2 * LARGE));
    EXPECT_EQ(crc32_of_fill(crc32_of_fill(5, LARGE), 1), crc32_of_fill(5, LARGE + 1));
}
