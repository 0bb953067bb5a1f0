#include "bit_swap.h"

#include "msg_internal_error.h"

#include <cstring>
#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace
{

std::uint8_t swapped(std::uint8_t byte)
{
    unsigned value = byte;
    value = (value & 0xF0U) >> 4 | (value & 0x0FU) << 4;
    value = (value & 0xCCU) >> 2 | (value & 0x33U) << 2;
    value = (value & 0xAAU) >> 1 | (value & 0x55U) << 1;
    return static_cast<std::uint8_t>(value);
}

void swap_rest(const std::uint8_t* from, std::uint8_t* to, std::size_t start, std::size_t size)
{
    for (std::size_t i = start; i < size; ++i) {
        to[i] = swapped(from[i]);
    }
}

/// Eight bytes at a time in a plain register: halves, then quarters, then single bits change places.
void swap_portable(const std::uint8_t* from, std::uint8_t* to, std::size_t size)
{
    std::size_t i = 0;
    for (; i + 8 <= size; i += 8) {
        std::uint64_t value = 0;
        std::memcpy(&value, from + i, 8);
        value = (value & 0xF0F0F0F0F0F0F0F0U) >> 4 | (value & 0x0F0F0F0F0F0F0F0FU) << 4;
        value = (value & 0xCCCCCCCCCCCCCCCCU) >> 2 | (value & 0x3333333333333333U) << 2;
        value = (value & 0xAAAAAAAAAAAAAAAAU) >> 1 | (value & 0x5555555555555555U) << 1;
        std::memcpy(to + i, &value, 8);
    }
    swap_rest(from, to, i, size);
}

#if defined(__x86_64__)

// A byte shuffle looks up sixteen nibbles at once: LOW_NIBBLE gives the reversed low nibble in the upper half
// of the byte, HIGH_NIBBLE the reversed high nibble in the lower half.
alignas(16) constexpr std::uint8_t LOW_NIBBLE[16] = {0x00, 0x80, 0x40, 0xC0, 0x20, 0xA0, 0x60, 0xE0,
                                                     0x10, 0x90, 0x50, 0xD0, 0x30, 0xB0, 0x70, 0xF0};
alignas(16) constexpr std::uint8_t HIGH_NIBBLE[16] = {0x00, 0x08, 0x04, 0x0C, 0x02, 0x0A, 0x06, 0x0E,
                                                      0x01, 0x09, 0x05, 0x0D, 0x03, 0x0B, 0x07, 0x0F};

/// From this size on a copy goes past the caches, as memcpy does: the result will not be in them anyway, and
/// the lines written need not be read first.
constexpr std::size_t STREAMING_SIZE = 4 * 1024 * 1024;

__attribute__((target("ssse3"))) void swap_ssse3(const std::uint8_t* from, std::uint8_t* to, std::size_t size)
{
    const __m128i low_table = _mm_load_si128(reinterpret_cast<const __m128i*>(LOW_NIBBLE));
    const __m128i high_table = _mm_load_si128(reinterpret_cast<const __m128i*>(HIGH_NIBBLE));
    const __m128i nibble = _mm_set1_epi8(0x0F);
    std::size_t i = 0;
    for (; i + 16 <= size; i += 16) {
        const __m128i value = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from + i));
        const __m128i low = _mm_shuffle_epi8(low_table, _mm_and_si128(value, nibble));
        const __m128i high = _mm_shuffle_epi8(high_table, _mm_and_si128(_mm_srli_epi16(value, 4), nibble));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to + i), _mm_or_si128(low, high));
    }
    swap_rest(from, to, i, size);
}

__attribute__((target("avx2"))) inline __m256i swapped_avx2(const std::uint8_t* from, __m256i low_table,
                                                            __m256i high_table)
{
    const __m256i nibble = _mm256_set1_epi8(0x0F);
    const __m256i value = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(from));
    const __m256i low = _mm256_shuffle_epi8(low_table, _mm256_and_si256(value, nibble));
    const __m256i high =
        _mm256_shuffle_epi8(high_table, _mm256_and_si256(_mm256_srli_epi16(value, 4), nibble));
    return _mm256_or_si256(low, high);
}

__attribute__((target("avx2"))) void swap_avx2(const std::uint8_t* from, std::uint8_t* to, std::size_t size)
{
    const __m256i low_table =
        _mm256_broadcastsi128_si256(_mm_load_si128(reinterpret_cast<const __m128i*>(LOW_NIBBLE)));
    const __m256i high_table =
        _mm256_broadcastsi128_si256(_mm_load_si128(reinterpret_cast<const __m128i*>(HIGH_NIBBLE)));
    std::size_t i = 0;
    if (size >= STREAMING_SIZE && from != to) {
        const std::size_t to_boundary = -reinterpret_cast<std::uintptr_t>(to) & 31U;
        for (; i < to_boundary; ++i) {
            to[i] = swapped(from[i]);
        }
        for (; i + 64 <= size; i += 64) {
            auto* const place = reinterpret_cast<__m256i*>(to + i);
            const __m256i first = swapped_avx2(from + i, low_table, high_table);
            const __m256i second = swapped_avx2(from + i + 32, low_table, high_table);
            _mm256_stream_si256(place, first);
            _mm256_stream_si256(place + 1, second);
        }
        _mm_sfence();
    }
    for (; i + 64 <= size; i += 64) {
        auto* const place = reinterpret_cast<__m256i*>(to + i);
        const __m256i first = swapped_avx2(from + i, low_table, high_table);
        const __m256i second = swapped_avx2(from + i + 32, low_table, high_table);
        _mm256_storeu_si256(place, first);
        _mm256_storeu_si256(place + 1, second);
    }
    swap_rest(from, to, i, size);
}

#endif

BIT_SWAP_METHOD best_method()
{
    static const BIT_SWAP_METHOD best = [] {
        if (bit_swap_available(BIT_SWAP_METHOD::AVX2)) {
            return BIT_SWAP_METHOD::AVX2;
        }
        return bit_swap_available(BIT_SWAP_METHOD::SSSE3) ? BIT_SWAP_METHOD::SSSE3
                                                          : BIT_SWAP_METHOD::PORTABLE;
    }();
    return best;
}

} // namespace

bool bit_swap_available(BIT_SWAP_METHOD method)
{
    switch (method) {
    case BIT_SWAP_METHOD::PORTABLE:
        return true;
#if defined(__x86_64__)
    case BIT_SWAP_METHOD::SSSE3:
        return __builtin_cpu_supports("ssse3") != 0;
    case BIT_SWAP_METHOD::AVX2:
        return __builtin_cpu_supports("avx2") != 0;
#else
    case BIT_SWAP_METHOD::SSSE3:
    case BIT_SWAP_METHOD::AVX2:
        return false;
#endif
    }
    MSG_INTERNAL_ERROR::report("method", "VEK", __FILE__, __LINE__);
}

void swap_bits_with(BIT_SWAP_METHOD method, const std::uint8_t* from, std::uint8_t* to, std::size_t size)
{
    VEK_ASSERT_TEXT(bit_swap_available(method), "bit_swap_available(method)");
    switch (method) {
    case BIT_SWAP_METHOD::PORTABLE:
        return swap_portable(from, to, size);
#if defined(__x86_64__)
    case BIT_SWAP_METHOD::SSSE3:
        return swap_ssse3(from, to, size);
    case BIT_SWAP_METHOD::AVX2:
        return swap_avx2(from, to, size);
#else
    case BIT_SWAP_METHOD::SSSE3:
    case BIT_SWAP_METHOD::AVX2:
        break;
#endif
    }
}

void swap_bits(std::span<std::uint8_t> bytes)
{
    swap_bits_with(best_method(), bytes.data(), bytes.data(), bytes.size());
}

void swap_bits(std::span<const std::uint8_t> from, std::span<std::uint8_t> to)
{
    VEK_ASSERT(from.size() == to.size());
    swap_bits_with(best_method(), from.data(), to.data(), from.size());
}
