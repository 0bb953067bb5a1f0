#include "bit_swap.h"
#include "internal_error_trap.h"

#include <gtest/gtest.h>

#include <array>
#include <vector>

static void PrintTo(BIT_SWAP_METHOD method, std::ostream* out)
{
    switch (method) {
    case BIT_SWAP_METHOD::PORTABLE:
        *out << "portable";
        return;
    case BIT_SWAP_METHOD::SSSE3:
        *out << "SSSE3";
        return;
    case BIT_SWAP_METHOD::AVX2:
        *out << "AVX2";
        return;
    }
}

namespace
{

/// Bit by bit, the way it is told.
std::uint8_t reversed(std::uint8_t byte)
{
    unsigned result = 0;
    for (unsigned bit = 0; bit < 8; ++bit) {
        result |= ((static_cast<unsigned>(byte) >> bit) & 1U) << (7 - bit);
    }
    return static_cast<std::uint8_t>(result);
}

class BIT_SWAP : public testing::TestWithParam<BIT_SWAP_METHOD>
{
};

INSTANTIATE_TEST_SUITE_P(methods, BIT_SWAP,
                         testing::Values(BIT_SWAP_METHOD::PORTABLE, BIT_SWAP_METHOD::SSSE3,
                                         BIT_SWAP_METHOD::AVX2),
                         [](const auto& row) { return testing::PrintToString(row.param); });

TEST_P(BIT_SWAP, reverses_every_byte_at_every_length_and_alignment)
{
    if (!bit_swap_available(GetParam())) {
        EXPECT_NE(GetParam(), BIT_SWAP_METHOD::PORTABLE);
        const std::uint8_t byte = 1;
        std::uint8_t result = 0;
        EXPECT_INTERNAL_ERROR(swap_bits_with(GetParam(), &byte, &result, 1), "bit_swap_available(method)");
        return;
    }
    std::vector<std::uint8_t> from(512);
    for (std::size_t i = 0; i < from.size(); ++i) {
        from[i] = static_cast<std::uint8_t>(i * 7 + i / 256);
    }
    for (std::size_t start = 0; start < 33; ++start) {
        for (std::size_t size = 0; size < 300; size += size < 140 ? 1 : 37) {
            std::vector<std::uint8_t> to(from.size() + 1, 0xEE);
            swap_bits_with(GetParam(), from.data() + start, to.data() + start, size);
            for (std::size_t i = 0; i < to.size(); ++i) {
                const bool inside = i >= start && i < start + size;
                ASSERT_EQ(to[i], inside ? reversed(from[i]) : 0xEE) << i << " of " << start << "+" << size;
            }
        }
    }
}

TEST_P(BIT_SWAP, reverses_large_data_at_odd_addresses_too)
{
    if (!bit_swap_available(GetParam())) {
        EXPECT_NE(GetParam(), BIT_SWAP_METHOD::PORTABLE);
        return;
    }
    std::vector<std::uint8_t> from(5 * 1024 * 1024 + 77);
    for (std::size_t i = 0; i < from.size(); ++i) {
        from[i] = static_cast<std::uint8_t>(i * 31 + i / 1000);
    }
    std::vector<std::uint8_t> to(from.size(), 0xEE);
    const std::size_t size = from.size() - 3;
    swap_bits_with(GetParam(), from.data() + 1, to.data() + 2, size);
    std::size_t wrong = 0;
    for (std::size_t i = 0; i < size; ++i) {
        wrong += to[i + 2] != reversed(from[i + 1]) ? 1U : 0U;
    }
    EXPECT_EQ(wrong, 0u);
    EXPECT_EQ(to[0], 0xEE);
    EXPECT_EQ(to[1], 0xEE);
    EXPECT_EQ(to.back(), 0xEE);
}

TEST(bit_swap, twice_gives_the_data_back)
{
    std::vector<std::uint8_t> bytes(100000);
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        bytes[i] = static_cast<std::uint8_t>(i * i);
    }
    const auto original = bytes;
    swap_bits(bytes);
    EXPECT_EQ(bytes[1], 0x80);
    EXPECT_NE(bytes, original);
    std::vector<std::uint8_t> back(bytes.size());
    swap_bits(bytes, back);
    EXPECT_EQ(back, original);
}

TEST(bit_swap, takes_nothing_and_refuses_unequal_lengths)
{
    swap_bits(std::span<std::uint8_t>{});
    std::array<std::uint8_t, 2> from{};
    std::array<std::uint8_t, 3> to{};
    EXPECT_INTERNAL_ERROR(swap_bits(std::span<const std::uint8_t>(from), std::span<std::uint8_t>(to)),
                          "from.size() == to.size()");
}

} // namespace
