#ifndef RPD_FORMAT_H
#define RPD_FORMAT_H

#include "format.h"

/// RPD: the flash image, raw.
///
/// Without use_relative the file holds the device from start_address to its end; a start address behind the
/// device, or within the content of a partition, which would be cut, is refused. With use_relative it holds
/// the range from the first byte that a region uses to the last (the whole image when there are no regions).
/// With bitswap the bits of each byte are reversed, for programmers that shift the most significant bit
/// first.
class RPD_FORMAT final : public FORMAT
{
public:
    bool write(const FORMAT_REQUEST& request, BYTE_SINK& sink, std::string& message) const override;
    bool verify(const FORMAT_REQUEST& request, const BYTE_SOURCE& file, std::string& message) const override;
    /// The file says nothing about bit swapping or its place in the device: what it holds is given as it is.
    bool decode(const BYTE_SOURCE& file, BYTE_SINK& sink, std::string& message) const override;
    bool inspect(const BYTE_SOURCE& file, FORMAT_FACTS& facts, std::string& message) const override;
};

#endif
