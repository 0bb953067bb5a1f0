#ifndef DIGIT_COMPARE_H
#define DIGIT_COMPARE_H

#include <cstddef>
#include <cstdint>
#include <span>

/// Bytes in each line of digit_lines_say(), and the characters that stand for them with the line feed.
inline constexpr std::size_t DIGIT_LINE_BYTES = 64;
inline constexpr std::size_t DIGIT_LINE_LENGTH = 2 * DIGIT_LINE_BYTES + 1;

/// Whether `text` reads as the bytes, a multiple of DIGIT_LINE_BYTES, in upper-case digits, each line ended
/// by a line feed. The lines must be readable whole.
bool digit_lines_say(const std::uint8_t* text, std::span<const std::uint8_t> bytes);

/// The same without vector instructions.
bool digit_lines_say_portable(const std::uint8_t* text, std::span<const std::uint8_t> bytes);

#endif
