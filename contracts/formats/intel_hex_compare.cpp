#include "intel_hex_compare.h"

#include "hex_digits.h"

#include <cstring>

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace
{
/// The two upper-case digits of a byte as a number that is compared with two characters at once.
constexpr auto WORDS = [] {
    std::array<std::uint16_t, 256> words{};
    for (unsigned value = 0; value != words.size(); ++value) {
        const auto digit = [](unsigned nibble) { return nibble + (nibble < 10 ? '0' : 'A' - 10); };
        words[value] = static_cast<std::uint16_t>(digit(value >> 4) | digit(value & 0xF) << 8);
    }
    return words;
}();

constexpr std::size_t HEADER = 9; // colon, length, address, type
constexpr std::size_t LINE = hex_line_length(HEX_LINE_BYTES);
} // namespace

bool hex_line_says(const std::uint8_t* text, INTEL_HEX_RECORD::TYPE type, std::uint16_t address,
                   std::span<const std::uint8_t> data)
{
    if (*text++ != ':')
        return false;
    unsigned sum = 0;
    const auto says = [&](unsigned value) {
        sum += value;
        text += 2;
        return hex_digits::get(text - 2, hex_digits::UPPER_CASE_VALUES) == value;
    };
    if (!says(static_cast<unsigned>(data.size())) || !says(address >> 8) || !says(address & 0xFFu) ||
        !says(type))
        return false;
    for (const std::uint8_t byte : data)
        if (!says(byte))
            return false;
    return says((0x100 - sum % 0x100) % 0x100) && *text == '\n';
}

bool hex_lines_say_portable(const std::uint8_t* text, std::size_t address, std::span<const std::uint8_t> data)
{
    for (; !data.empty(); data = data.subspan(HEX_LINE_BYTES)) {
        if (!hex_line_says(text, INTEL_HEX_RECORD::DATA, static_cast<std::uint16_t>(address),
                           data.first(HEX_LINE_BYTES)))
            return false;
        text += LINE;
        address += HEX_LINE_BYTES;
    }
    return true;
}

#if defined(__x86_64__)

namespace
{
__attribute__((target("avx2"))) bool lines_say_avx2(const std::uint8_t* text, std::size_t address,
                                                    std::span<const std::uint8_t> data)
{
    const __m256i digits =
        _mm256_setr_epi8('0', '1', '2', '3', '4', '5', '6', '7', '8', '9', 'A', 'B', 'C', 'D', 'E', 'F', '0',
                         '1', '2', '3', '4', '5', '6', '7', '8', '9', 'A', 'B', 'C', 'D', 'E', 'F');
    const __m256i nibble = _mm256_set1_epi8(0xF);
    __m256i same = _mm256_set1_epi8(-1);
    std::uint64_t difference = 0;
    const std::uint8_t* const end = data.data() + data.size();
    for (const std::uint8_t* bytes = data.data(); bytes != end; bytes += HEX_LINE_BYTES) {
        const __m128i value = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes));
        // Each byte becomes a pair of its upper and its lower half.
        const __m256i wide = _mm256_cvtepu8_epi16(value);
        const __m256i halves =
            _mm256_and_si256(_mm256_or_si256(_mm256_slli_epi16(wide, 8), _mm256_srli_epi16(wide, 4)), nibble);
        const __m256i characters = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(text + HEADER));
        same = _mm256_and_si256(same, _mm256_cmpeq_epi8(_mm256_shuffle_epi8(digits, halves), characters));

        const __m128i sums = _mm_sad_epu8(value, _mm_setzero_si128());
        const unsigned sum = static_cast<unsigned>(_mm_cvtsi128_si32(sums) + _mm_extract_epi16(sums, 4));
        const std::size_t high = address >> 8;
        const std::size_t low = address & 0xFF;
        constexpr std::uint64_t FIXED = std::uint64_t(':') | std::uint64_t('1') << 8 |
                                        std::uint64_t('0') << 16 | std::uint64_t('0') << 56;
        std::uint64_t head;
        std::memcpy(&head, text, sizeof head);
        std::uint16_t checksum;
        std::memcpy(&checksum, text + LINE - 3, sizeof checksum);
        difference |= head ^ (FIXED | std::uint64_t(WORDS[high]) << 24 | std::uint64_t(WORDS[low]) << 40);
        difference |= static_cast<unsigned>(checksum) ^ WORDS[(0 - HEX_LINE_BYTES - high - low - sum) & 0xFF];
        difference |= (text[HEADER - 1] ^ unsigned('0')) | (text[LINE - 1] ^ unsigned('\n'));
        text += LINE;
        address += HEX_LINE_BYTES;
    }
    return difference == 0 && _mm256_movemask_epi8(same) == -1;
}
} // namespace

bool hex_lines_say(const std::uint8_t* text, std::size_t address, std::span<const std::uint8_t> data)
{
    static const bool vectors = __builtin_cpu_supports("avx2");
    return vectors ? lines_say_avx2(text, address, data) : hex_lines_say_portable(text, address, data);
}

#else

bool hex_lines_say(const std::uint8_t* text, std::size_t address, std::span<const std::uint8_t> data)
{
    return hex_lines_say_portable(text, address, data);
}

#endif
