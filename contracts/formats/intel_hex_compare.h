#ifndef INTEL_HEX_COMPARE_H
#define INTEL_HEX_COMPARE_H

#include "intel_hex_record.h"

#include <cstddef>
#include <cstdint>
#include <span>

/// Reading the text of records against what they must say. Where a record ends follows from its data; every
/// character of it is looked at.

/// Characters of the line of a record with so many bytes of data.
constexpr std::size_t hex_line_length(std::size_t data_length)
{
    return 1 + 2 * (4 + data_length + 1) + 1;
}

/// Whether `text` reads as the line of a record of this type, address and data, in upper-case digits and
/// ended by a line feed. hex_line_length() characters must be readable.
bool hex_line_says(const std::uint8_t* text, INTEL_HEX_RECORD::TYPE type, std::uint16_t address,
                   std::span<const std::uint8_t> data);

/// Bytes in each record of hex_lines_say().
inline constexpr std::size_t HEX_LINE_BYTES = 16;

/// Whether `text` reads as lines of data records of 16 bytes each, for `data` from `address` on. The address
/// and the size of the data are multiples of 16 and stay within 64 KiB.
bool hex_lines_say(const std::uint8_t* text, std::size_t address, std::span<const std::uint8_t> data);

/// The same without vector instructions.
bool hex_lines_say_portable(const std::uint8_t* text, std::size_t address,
                            std::span<const std::uint8_t> data);

#endif
