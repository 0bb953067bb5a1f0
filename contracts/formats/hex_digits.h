#ifndef HEX_DIGITS_H
#define HEX_DIGITS_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

/// Hexadecimal digits of 16 bytes at a time. The vector forms use SSE2 alone, which every x86-64 processor
/// has, so that nothing is chosen at run time; elsewhere the portable forms serve.
namespace hex_digits
{
/// The two upper-case digits of each byte.
inline constexpr auto PAIRS = [] {
    std::array<std::array<char, 2>, 256> pairs{};
    for (std::size_t value = 0; value != pairs.size(); ++value)
        pairs[value] = {"0123456789ABCDEF"[value >> 4], "0123456789ABCDEF"[value & 0xF]};
    return pairs;
}();

/// The value of each character as a hexadecimal digit, 0xFF for others.
constexpr std::array<std::uint8_t, 256> make_values(bool lower_case)
{
    std::array<std::uint8_t, 256> values{};
    values.fill(0xFF);
    for (std::uint8_t value = 0; value != 16; ++value) {
        values[static_cast<std::uint8_t>("0123456789ABCDEF"[value])] = value;
        if (lower_case)
            values[static_cast<std::uint8_t>("0123456789abcdef"[value])] = value;
    }
    return values;
}
inline constexpr auto VALUES = make_values(true);
inline constexpr auto UPPER_CASE_VALUES = make_values(false);

/// Writes the two digits of `value`.
inline void put(char* text, std::uint8_t value)
{
    std::memcpy(text, PAIRS[value].data(), 2);
}

/// Reads two digits of either case, or of upper case alone; a value above 255 when one of them is no digit.
inline unsigned get(const std::uint8_t* text, const std::array<std::uint8_t, 256>& values = VALUES)
{
    const unsigned high = values[text[0]];
    const unsigned low = values[text[1]];
    return (high | low) > 0xF ? 0x100 : high << 4 | low;
}

namespace portable
{
/// Writes the 32 upper-case digits of 16 bytes and returns the sum of the bytes.
inline unsigned encode_16(const std::uint8_t* bytes, char* text)
{
    unsigned sum = 0;
    for (unsigned i = 0; i != 16; ++i) {
        put(text + 2 * i, bytes[i]);
        sum += bytes[i];
    }
    return sum;
}

/// Reads 32 upper-case digits into 16 bytes and gives the sum of the bytes; false, with the bytes undefined,
/// when a character is no such digit.
inline bool decode_16(const std::uint8_t* text, std::uint8_t* bytes, unsigned& sum)
{
    sum = 0;
    for (unsigned i = 0; i != 16; ++i) {
        const unsigned value = get(text + 2 * i, UPPER_CASE_VALUES);
        if (value > 0xFF)
            return false;
        bytes[i] = static_cast<std::uint8_t>(value);
        sum += value;
    }
    return true;
}
} // namespace portable

#if defined(__SSE2__)

inline unsigned sum_16(__m128i bytes)
{
    const __m128i sums = _mm_sad_epu8(bytes, _mm_setzero_si128());
    return static_cast<unsigned>(_mm_cvtsi128_si32(sums) + _mm_extract_epi16(sums, 4));
}

inline unsigned encode_16(const std::uint8_t* bytes, char* text)
{
    const auto digits = [](__m128i nibbles) {
        const __m128i letters = _mm_cmpgt_epi8(nibbles, _mm_set1_epi8(9));
        return _mm_add_epi8(_mm_add_epi8(nibbles, _mm_set1_epi8('0')),
                            _mm_and_si128(letters, _mm_set1_epi8('A' - '0' - 10)));
    };
    const __m128i mask = _mm_set1_epi8(0xF);
    const __m128i value = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes));
    const __m128i high = digits(_mm_and_si128(_mm_srli_epi16(value, 4), mask));
    const __m128i low = digits(_mm_and_si128(value, mask));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(text), _mm_unpacklo_epi8(high, low));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(text + 16), _mm_unpackhi_epi8(high, low));
    return sum_16(value);
}

inline bool decode_16(const std::uint8_t* text, std::uint8_t* bytes, unsigned& sum)
{
    __m128i valid = _mm_set1_epi8(-1);
    const auto pairs = [&valid](const std::uint8_t* at) {
        const __m128i characters = _mm_loadu_si128(reinterpret_cast<const __m128i*>(at));
        const __m128i digits = _mm_sub_epi8(characters, _mm_set1_epi8('0'));
        const __m128i letters = _mm_sub_epi8(characters, _mm_set1_epi8('A'));
        const auto below = [](__m128i values, char limit) {
            return _mm_cmpeq_epi8(_mm_min_epu8(values, _mm_set1_epi8(static_cast<char>(limit - 1))), values);
        };
        const __m128i is_digit = below(digits, 10);
        const __m128i is_letter = below(letters, 6);
        valid = _mm_and_si128(valid, _mm_or_si128(is_digit, is_letter));
        const __m128i nibbles =
            _mm_or_si128(_mm_and_si128(is_digit, digits),
                         _mm_and_si128(is_letter, _mm_add_epi8(letters, _mm_set1_epi8(10))));
        // Each pair is a 16 bit lane with the upper nibble in its lower half.
        return _mm_and_si128(_mm_or_si128(_mm_slli_epi16(nibbles, 4), _mm_srli_epi16(nibbles, 8)),
                             _mm_set1_epi16(0xFF));
    };
    const __m128i first = pairs(text);
    const __m128i value = _mm_packus_epi16(first, pairs(text + 16));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(bytes), value);
    sum = sum_16(value);
    return _mm_movemask_epi8(valid) == 0xFFFF;
}

#else

using portable::decode_16;
using portable::encode_16;

#endif
} // namespace hex_digits

#endif
