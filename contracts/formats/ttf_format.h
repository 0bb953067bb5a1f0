#ifndef TTF_FORMAT_H
#define TTF_FORMAT_H

#include "format.h"

/// TTF: the configuration stream as text, one decimal number from 0 to 255 for each byte, without leading
/// zeros. A comma stands behind every number but the last; a line feed stands behind every sixteenth number,
/// after its comma, and behind the last. An empty stream is an empty file.
class TTF_FORMAT final : public FORMAT
{
public:
    static constexpr unsigned NUMBERS_PER_LINE = 16;

    bool write(const FORMAT_REQUEST& request, BYTE_SINK& sink, std::string& message) const override;
    bool verify(const FORMAT_REQUEST& request, const BYTE_SOURCE& file, std::string& message) const override;
    /// Reads also other spellings: any white space between numbers and commas, leading zeros up to three
    /// digits, a comma behind the last number.
    bool decode(const BYTE_SOURCE& file, BYTE_SINK& sink, std::string& message) const override;
    bool inspect(const BYTE_SOURCE& file, FORMAT_FACTS& facts, std::string& message) const override;
};

#endif
