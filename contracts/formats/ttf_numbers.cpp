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

bool ttf_line_says_portable(const std::uint8_t* text, const std::uint8_t* bytes, const std::uint8_t*& end)
{
    for (unsigned i = 0; i != 16; ++i)
        if (!ttf_number_says(text, bytes[i], ','))
            return false;
    if (*text != '\n')
        return false;
    end = text + 1;
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

__attribute__((target("ssse3"))) bool line_says_ssse3(const std::uint8_t* text, const std::uint8_t* bytes,
                                                      const std::uint8_t*& end)
{
    const auto all = [](std::uint32_t value) { return _mm_set1_epi32(static_cast<int>(value)); };
    const __m128i zero = _mm_setzero_si128();
    const __m128i source = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes));

    // Digits less one of each number, and from them the index of the spread of each four.
    const __m128i ten = _mm_cmpeq_epi8(_mm_max_epu8(source, _mm_set1_epi8(10)), source);
    const __m128i hundred = _mm_cmpeq_epi8(_mm_max_epu8(source, _mm_set1_epi8(100)), source);
    const __m128i longer = _mm_sub_epi8(zero, _mm_add_epi8(ten, hundred));
    alignas(16) std::array<std::int32_t, 4> index;
    _mm_store_si128(reinterpret_cast<__m128i*>(index.data()),
                    _mm_madd_epi16(_mm_maddubs_epi16(longer, _mm_set1_epi16(0x0301)), all(0x00090001)));

    const __m128i low = _mm_unpacklo_epi8(source, zero);
    const __m128i high = _mm_unpackhi_epi8(source, zero);
    const __m128i wanted[4] = {_mm_unpacklo_epi16(low, zero), _mm_unpackhi_epi16(low, zero),
                               _mm_unpacklo_epi16(high, zero), _mm_unpackhi_epi16(high, zero)};
    constexpr std::uint32_t COMMA = std::uint32_t(',' ^ '0') << 24;
    __m128i same = _mm_set1_epi8(-1);
    for (unsigned i = 0; i != 4; ++i) {
        const SPREAD& spread = SPREADS[static_cast<std::size_t>(index[i])];
        const __m128i characters =
            _mm_xor_si128(_mm_loadu_si128(reinterpret_cast<const __m128i*>(text)), _mm_set1_epi8('0'));
        const __m128i digits = _mm_shuffle_epi8(
            characters, _mm_load_si128(reinterpret_cast<const __m128i*>(spread.shuffle.data())));
        const __m128i values = _mm_madd_epi16(_mm_maddubs_epi16(digits, all(0x00010A64)), _mm_set1_epi16(1));
        same = _mm_and_si128(same, _mm_cmpeq_epi32(values, wanted[i]));
        same = _mm_and_si128(same, _mm_cmpeq_epi8(_mm_min_epu8(digits, all(COMMA | 0x090909)), digits));
        same = _mm_and_si128(same, _mm_cmpeq_epi8(_mm_and_si128(digits, all(0xFF000000)), all(COMMA)));
        text += spread.length;
    }
    if (_mm_movemask_epi8(same) != 0xFFFF || *text != '\n')
        return false;
    end = text + 1;
    return true;
}
} // namespace

bool ttf_line_says(const std::uint8_t* text, const std::uint8_t* bytes, const std::uint8_t*& end)
{
    static const bool vectors = __builtin_cpu_supports("ssse3");
    return vectors ? line_says_ssse3(text, bytes, end) : ttf_line_says_portable(text, bytes, end);
}

#else

bool ttf_line_says(const std::uint8_t* text, const std::uint8_t* bytes, const std::uint8_t*& end)
{
    return ttf_line_says_portable(text, bytes, end);
}

#endif
