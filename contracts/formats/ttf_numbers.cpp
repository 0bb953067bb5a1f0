#include "ttf_numbers.h"

#include <array>

#if defined(__x86_64__)
#include <immintrin.h>
#endif

bool ttf_number_says(const std::uint8_t*& at, std::uint8_t byte, char behind)
{
    const unsigned digits = 1u + (byte >= 10) + (byte >= 100);
    unsigned value = 0;
    for (unsigned i = 0; i != digits; ++i) {
        const unsigned digit = at[i] - unsigned('0');
        if (digit > 9)
            return false;
        value = value * 10 + digit;
    }
    if (value != byte || at[digits] != static_cast<std::uint8_t>(behind))
        return false;
    at += digits + 1;
    return true;
}

bool ttf_lines_say_portable(const std::uint8_t* text, const std::uint8_t* bytes, const std::uint8_t*& end)
{
    for (unsigned line = 0; line != 2; ++line) {
        for (unsigned i = 0; i != 16; ++i)
            if (!ttf_number_says(text, *bytes++, ','))
                return false;
        if (*text++ != '\n')
            return false;
    }
    end = text;
    return true;
}

#if defined(__x86_64__)

namespace
{
/// Where the characters of four numbers stand, for each combination of their lengths (1 to 3 digits, the
/// first number's in the lowest base 3 digit): a shuffle that puts each number right-aligned in four bytes,
/// hundreds, tens, ones and the comma, with 0 for digits that it does not have.
struct SPREAD {
    alignas(16) std::array<std::uint8_t, 16> shuffle;
    std::uint8_t length;
};

constexpr auto SPREADS = [] {
    std::array<SPREAD, 81> spreads{};
    for (unsigned index = 0; index != spreads.size(); ++index) {
        unsigned at = 0;
        unsigned rest = index;
        for (unsigned number = 0; number != 4; ++number, rest /= 3) {
            const unsigned characters = rest % 3 + 2;
            for (unsigned i = 0; i != 4; ++i)
                spreads[index].shuffle[4 * number + i] =
                    i + characters < 4 ? 0x80 : static_cast<std::uint8_t>(at + i + characters - 4);
            at += characters;
        }
        spreads[index].length = static_cast<std::uint8_t>(at);
    }
    return spreads;
}();

#define WITH_AVX2 __attribute__((target("avx2")))

WITH_AVX2 __m256i all(char value)
{
    return _mm256_set1_epi8(value);
}

/// Ones in the bytes that are not below the limit.
WITH_AVX2 __m256i from(__m256i bytes, unsigned limit)
{
    return _mm256_cmpeq_epi8(_mm256_max_epu8(bytes, all(static_cast<char>(limit))), bytes);
}

WITH_AVX2 __m256i both(const std::uint8_t* lower, const std::uint8_t* upper)
{
    return _mm256_inserti128_si256(
        _mm256_castsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(lower))),
        _mm_loadu_si128(reinterpret_cast<const __m128i*>(upper)), 1);
}

/// One line in each half of the registers.
WITH_AVX2 bool lines_say_avx2(const std::uint8_t* text, const std::uint8_t* bytes, const std::uint8_t*& end)
{
    const __m256i source = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(bytes));
    const __m256i ten = from(source, 10);
    const __m256i hundred = from(source, 100);
    const __m256i two_hundred = from(source, 200);

    // Digits less one of each number, and from them the index of the spread of each four.
    const __m256i longer = _mm256_sub_epi8(_mm256_setzero_si256(), _mm256_add_epi8(ten, hundred));
    alignas(32) std::array<std::uint32_t, 8> index;
    _mm256_store_si256(reinterpret_cast<__m256i*>(index.data()),
                       _mm256_madd_epi16(_mm256_maddubs_epi16(longer, _mm256_set1_epi16(0x0301)),
                                         _mm256_set1_epi32(0x00090001)));

    // The digits of all numbers; 103 / 1024 is close enough to a tenth for numbers below 100.
    const __m256i hundreds = _mm256_sub_epi8(all('0'), _mm256_add_epi8(hundred, two_hundred));
    const __m256i below_hundred =
        _mm256_sub_epi8(source, _mm256_add_epi8(_mm256_and_si256(hundred, all(100)),
                                                _mm256_and_si256(two_hundred, all(100))));
    const __m256i tenth = _mm256_set1_epi16(103);
    const __m256i even = _mm256_srli_epi16(
        _mm256_mullo_epi16(_mm256_and_si256(below_hundred, _mm256_set1_epi16(0xFF)), tenth), 10);
    const __m256i odd = _mm256_srli_epi16(_mm256_mullo_epi16(_mm256_srli_epi16(below_hundred, 8), tenth), 10);
    const __m256i tens = _mm256_or_si256(even, _mm256_slli_epi16(odd, 8));
    const __m256i twice = _mm256_add_epi8(tens, tens);
    const __m256i eightfold = _mm256_slli_epi16(twice, 2); // no carry leaves a byte, tens are below 10
    const __m256i ones =
        _mm256_add_epi8(_mm256_sub_epi8(below_hundred, _mm256_add_epi8(twice, eightfold)), all('0'));

    const __m256i first = _mm256_and_si256(hundreds, hundred);
    const __m256i second = _mm256_and_si256(_mm256_add_epi8(tens, all('0')), ten);
    const __m256i low_begin = _mm256_unpacklo_epi8(first, second);
    const __m256i high_begin = _mm256_unpackhi_epi8(first, second);
    const __m256i low_end = _mm256_unpacklo_epi8(ones, all(','));
    const __m256i high_end = _mm256_unpackhi_epi8(ones, all(','));
    const __m256i wanted[4] = {
        _mm256_unpacklo_epi16(low_begin, low_end), _mm256_unpackhi_epi16(low_begin, low_end),
        _mm256_unpacklo_epi16(high_begin, high_end), _mm256_unpackhi_epi16(high_begin, high_end)};

    const std::uint8_t* one = text;
    const std::uint8_t* other = text + 1;
    for (unsigned i = 0; i != 4; ++i)
        other += SPREADS[index[i]].length;
    const std::uint8_t* const break_of_one = other - 1;
    __m256i same = all(-1);
    for (unsigned i = 0; i != 4; ++i) {
        const SPREAD& of_one = SPREADS[index[i]];
        const SPREAD& of_other = SPREADS[index[i + 4]];
        const __m256i characters =
            _mm256_shuffle_epi8(both(one, other), both(of_one.shuffle.data(), of_other.shuffle.data()));
        same = _mm256_and_si256(same, _mm256_cmpeq_epi8(characters, wanted[i]));
        one += of_one.length;
        other += of_other.length;
    }
    if (_mm256_movemask_epi8(same) != -1 || *break_of_one != '\n' || *other != '\n')
        return false;
    end = other + 1;
    return true;
}
} // namespace

bool ttf_lines_say(const std::uint8_t* text, const std::uint8_t* bytes, const std::uint8_t*& end)
{
    static const bool vectors = __builtin_cpu_supports("avx2");
    return vectors ? lines_say_avx2(text, bytes, end) : ttf_lines_say_portable(text, bytes, end);
}

#else

bool ttf_lines_say(const std::uint8_t* text, const std::uint8_t* bytes, const std::uint8_t*& end)
{
    return ttf_lines_say_portable(text, bytes, end);
}

#endif
