#include "digit_compare.h"

#include "hex_digits.h"

#if defined(__x86_64__)
#include <immintrin.h>
#endif

bool digit_lines_say_portable(const std::uint8_t* text, std::span<const std::uint8_t> bytes)
{
    for (std::size_t i = 0; i != bytes.size(); ++i, text += 2) {
        if (hex_digits::get(text, hex_digits::UPPER_CASE_VALUES) != bytes[i])
            return false;
        if ((i + 1) % DIGIT_LINE_BYTES == 0 && *text++ != '\n')
            return false;
    }
    return true;
}

#if defined(__x86_64__)

namespace
{
__attribute__((target("avx2"))) bool lines_say_avx2(const std::uint8_t* text,
                                                    std::span<const std::uint8_t> bytes)
{
    const __m256i digits =
        _mm256_setr_epi8('0', '1', '2', '3', '4', '5', '6', '7', '8', '9', 'A', 'B', 'C', 'D', 'E', 'F', '0',
                         '1', '2', '3', '4', '5', '6', '7', '8', '9', 'A', 'B', 'C', 'D', 'E', 'F');
    const __m256i nibble = _mm256_set1_epi8(0xF);
    __m256i same = _mm256_set1_epi8(-1);
    unsigned breaks = 0;
    const std::uint8_t* const end = bytes.data() + bytes.size();
    for (const std::uint8_t* at = bytes.data(); at != end;) {
        for (unsigned i = 0; i != DIGIT_LINE_BYTES / 16; ++i, at += 16, text += 32) {
            // Each byte becomes a pair of its upper and its lower half.
            const __m256i wide = _mm256_cvtepu8_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(at)));
            const __m256i halves = _mm256_and_si256(
                _mm256_or_si256(_mm256_slli_epi16(wide, 8), _mm256_srli_epi16(wide, 4)), nibble);
            const __m256i characters = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(text));
            same = _mm256_and_si256(same, _mm256_cmpeq_epi8(_mm256_shuffle_epi8(digits, halves), characters));
        }
        breaks |= *text++ ^ unsigned('\n');
    }
    return breaks == 0 && _mm256_movemask_epi8(same) == -1;
}
} // namespace

bool digit_lines_say(const std::uint8_t* text, std::span<const std::uint8_t> bytes)
{
    static const bool vectors = __builtin_cpu_supports("avx2");
    return vectors ? lines_say_avx2(text, bytes) : digit_lines_say_portable(text, bytes);
}

#else

bool digit_lines_say(const std::uint8_t* text, std::span<const std::uint8_t> bytes)
{
    return digit_lines_say_portable(text, bytes);
}

#endif
