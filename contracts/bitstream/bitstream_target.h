#ifndef BITSTREAM_TARGET_H
#define BITSTREAM_TARGET_H

#include "bitstream_writer.h"

#include <optional>
#include <string>

struct PGM_DEVICE;

/// Finds the FPGA of that name; null with a sentence when there is none.
const PGM_DEVICE* find_fpga(const std::string& name, std::string& message);

/// Turns the word of a scheme into its number; nothing for an empty word. False with a sentence for a word
/// that names none.
bool parse_scheme_word(const std::string& word, std::optional<std::uint32_t>& scheme, std::string& message);

/// Writes the file atomically.
bool write_bitstream_file(const BITSTREAM_WRITER& writer, const std::string& path, std::string& message);

#endif
