#ifndef IMAGEWRIGHT_TESTS_INTEL_HEX_DECODER_H
#define IMAGEWRIGHT_TESTS_INTEL_HEX_DECODER_H

#include <cstdint>
#include <map>
#include <string>
#include <vector>

/// What a plain reading of an Intel HEX file gives, a line and a byte at a time; it shares nothing with the
/// program's own reader.
struct DECODED_INTEL_HEX {
    std::map<std::uint64_t, std::uint8_t> bytes; ///< by address
    std::vector<std::size_t> lengths;            ///< of the data records, in the order of the file
    std::vector<std::uint64_t> addresses;        ///< of the data records, in the order of the file
    std::vector<unsigned> types;                 ///< of all records
    std::string fault;                           ///< why the file is wrong; empty when it is right

    /// The bytes from the first address to the last; fault when there is a gap.
    std::vector<std::uint8_t> contiguous() const;
};

DECODED_INTEL_HEX decode_intel_hex(const std::vector<std::uint8_t>& file);

#endif
