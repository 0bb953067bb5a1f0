#ifndef TTF_NUMBERS_H
#define TTF_NUMBERS_H

#include <cstddef>
#include <cstdint>

/// Reading decimal text against the bytes that it must stand for. Where a number ends follows from its byte;
/// what it says is then read from its digits, without any table that the writer uses.

/// Whether `at` reads as the decimal number `byte`, spelled without leading zeros, and `behind`; steps over
/// them when it does. Four characters must be readable.
bool ttf_number_says(const std::uint8_t*& at, std::uint8_t byte, char behind);

/// The most characters that are looked at for a line.
inline constexpr std::size_t TTF_LINE_READABLE = 16 * 4 + 1 + 16;

/// Whether `text` reads as a line of the 16 numbers `bytes`, each followed by a comma, and a line feed; `end`
/// is then behind it, and untouched otherwise. TTF_LINE_READABLE characters must be readable.
bool ttf_line_says(const std::uint8_t* text, const std::uint8_t* bytes, const std::uint8_t*& end);

/// The same without vector instructions.
bool ttf_line_says_portable(const std::uint8_t* text, const std::uint8_t* bytes, const std::uint8_t*& end);

#endif
