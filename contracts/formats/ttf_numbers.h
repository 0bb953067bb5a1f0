#ifndef TTF_NUMBERS_H
#define TTF_NUMBERS_H

#include <cstddef>
#include <cstdint>

/// Reading decimal text against the bytes that it must stand for. Where a number ends follows from its byte;
/// what it says is then read from its digits, without any table that the writer uses.

/// Whether `at` reads as the decimal number `byte`, spelled without leading zeros, and `behind`; steps over
/// them when it does. Four characters must be readable.
bool ttf_number_says(const std::uint8_t*& at, std::uint8_t byte, char behind);

/// The most characters that are looked at for two lines.
inline constexpr std::size_t TTF_LINES_READABLE = 2 * (16 * 4 + 1) + 16;

/// Whether `text` reads as two lines, each of 16 of the 32 numbers `bytes`, each number followed by a comma,
/// and a line feed; `end` is then behind them, and untouched otherwise. TTF_LINES_READABLE characters must be
/// readable.
bool ttf_lines_say(const std::uint8_t* text, const std::uint8_t* bytes, const std::uint8_t*& end);

/// The same without vector instructions.
bool ttf_lines_say_portable(const std::uint8_t* text, const std::uint8_t* bytes, const std::uint8_t*& end);

#endif
