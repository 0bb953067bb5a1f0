#include "stapl_crc.h"

#include <algorithm>
#include <array>
#include <cstring>

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace
{
constexpr std::size_t SLICES = 8;

/// TABLES[n][byte]: what a byte with n bytes of zeros behind it leaves in the register.
constexpr auto TABLES = [] {
    std::array<std::array<std::uint16_t, 256>, SLICES> tables{};
    for (unsigned byte = 0; byte != 256; ++byte) {
        unsigned value = byte;
        for (int bit = 0; bit != 8; ++bit)
            value = value >> 1 ^ ((value & 1) != 0 ? 0x8408u : 0u);
        tables[0][byte] = static_cast<std::uint16_t>(value);
    }
    for (std::size_t slice = 1; slice != SLICES; ++slice)
        for (std::size_t byte = 0; byte != 256; ++byte) {
            const unsigned value = tables[slice - 1][byte];
            tables[slice][byte] = static_cast<std::uint16_t>(value >> 8 ^ tables[0][value & 0xFF]);
        }
    return tables;
}();

unsigned continue_by_table(std::span<const std::uint8_t> bytes, unsigned value)
{
    std::size_t at = 0;
    for (; bytes.size() - at >= SLICES; at += SLICES) {
        const std::uint8_t* const next = bytes.data() + at;
        value = TABLES[7][(value ^ next[0]) & 0xFF] ^ TABLES[6][(value >> 8 ^ next[1]) & 0xFF] ^
                TABLES[5][next[2]] ^ TABLES[4][next[3]] ^ TABLES[3][next[4]] ^ TABLES[2][next[5]] ^
                TABLES[1][next[6]] ^ TABLES[0][next[7]];
    }
    for (; at != bytes.size(); ++at)
        value = value >> 8 ^ TABLES[0][(value ^ bytes[at]) & 0xFF];
    return value;
}

#if defined(__x86_64__)

/// The polynomial x^power modulo that of the CRC, as the upper coefficients of a register half; one power
/// less than asked, because the product of two reflected halves comes out one place too far.
constexpr std::uint64_t fold_constant(unsigned power)
{
    unsigned value = 0x8000; // x^0
    for (unsigned i = 1; i != power; ++i)
        value = value >> 1 ^ ((value & 1) != 0 ? 0x8408u : 0u);
    return std::uint64_t(value) << 48;
}

#define WITH_PCLMUL __attribute__((target("pclmul")))

WITH_PCLMUL __m128i load(const std::uint8_t* bytes)
{
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes));
}

/// Moves what is folded on by the distance of the constants, onto the next characters.
WITH_PCLMUL __m128i fold(__m128i folded, __m128i constants, __m128i next)
{
    return _mm_xor_si128(next, _mm_xor_si128(_mm_clmulepi64_si128(folded, constants, 0x00),
                                             _mm_clmulepi64_si128(folded, constants, 0x11)));
}

/// Four registers of 128 bits go through the characters side by side and are then folded into one, whose
/// remainder the table finds ("Fast CRC Computation for Generic Polynomials Using PCLMULQDQ Instruction",
/// Intel, 2009).
WITH_PCLMUL unsigned continue_by_folding(std::span<const std::uint8_t> bytes, unsigned value)
{
    constexpr std::size_t STEP = 64;
    const auto constants = [](unsigned bits) {
        return std::array<std::uint64_t, 2>{fold_constant(bits + 64), fold_constant(bits)};
    };
    static constexpr auto FAR = constants(8 * STEP);
    static constexpr auto NEAR = constants(128);
    const __m128i far = load(reinterpret_cast<const std::uint8_t*>(FAR.data()));
    const __m128i near = load(reinterpret_cast<const std::uint8_t*>(NEAR.data()));
    const std::uint8_t* at = bytes.data();
    const std::uint8_t* const end = at + bytes.size() / STEP * STEP;
    __m128i folded[4] = {_mm_xor_si128(load(at), _mm_cvtsi32_si128(static_cast<int>(value))), load(at + 16),
                         load(at + 32), load(at + 48)};
    for (at += STEP; at != end; at += STEP)
        for (unsigned i = 0; i != 4; ++i)
            folded[i] = fold(folded[i], far, load(at + 16 * i));
    for (unsigned i = 1; i != 4; ++i)
        folded[i] = fold(folded[i - 1], near, folded[i]);
    std::array<std::uint8_t, 16> rest;
    _mm_storeu_si128(reinterpret_cast<__m128i*>(rest.data()), folded[3]);
    return continue_by_table({end, bytes.data() + bytes.size()}, continue_by_table(rest, 0));
}

unsigned continue_register(std::span<const std::uint8_t> bytes, unsigned value)
{
    static const bool folds = __builtin_cpu_supports("pclmul");
    return folds && bytes.size() >= 128 ? continue_by_folding(bytes, value) : continue_by_table(bytes, value);
}

#else

unsigned continue_register(std::span<const std::uint8_t> bytes, unsigned value)
{
    return continue_by_table(bytes, value);
}

#endif
} // namespace

std::uint32_t stapl_crc(std::span<const std::uint8_t> characters, std::uint32_t crc)
{
    unsigned value = crc ^ 0xFFFF;
    while (!characters.empty()) {
        const void* const found = std::memchr(characters.data(), '\r', characters.size());
        const std::size_t count =
            found != nullptr
                ? static_cast<std::size_t>(static_cast<const std::uint8_t*>(found) - characters.data())
                : characters.size();
        value = continue_register(characters.first(count), value);
        characters = characters.subspan(std::min(count + 1, characters.size()));
    }
    return value ^ 0xFFFF;
}
