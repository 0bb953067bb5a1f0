#ifndef IMAGEWRIGHT_TESTS_MAP_DECODER_H
#define IMAGEWRIGHT_TESTS_MAP_DECODER_H

#include <cstdint>
#include <map>
#include <string>
#include <vector>

/// A flash map cut at its columns: the lines before the table, and for each row its values by column title.
struct DECODED_MAP {
    std::vector<std::string> head;
    std::vector<std::map<std::string, std::string>> rows;
};

/// Reads a map of ASCII names by the positions that its underlines give; a map that is not aligned fails the
/// test.
DECODED_MAP decode_map(const std::vector<std::uint8_t>& file);

#endif
