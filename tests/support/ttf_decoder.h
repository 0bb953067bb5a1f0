#ifndef IMAGEWRIGHT_TESTS_TTF_DECODER_H
#define IMAGEWRIGHT_TESTS_TTF_DECODER_H

#include <cstdint>
#include <vector>

/// Reads a file of comma-separated decimal numbers in the plainest way, and fails the test when it is not in
/// lines of sixteen.
std::vector<std::uint8_t> decode_ttf(const std::vector<std::uint8_t>& file);

#endif
