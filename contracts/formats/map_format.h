#ifndef MAP_FORMAT_H
#define MAP_FORMAT_H

#include "format.h"

/// MAP: the layout of a flash device as a text table, one line a partition: aligned for reading, in one
/// spelling for comparing. docs/formats/map.md tells the columns. The file carries no image: decode()
/// refuses.
class MAP_FORMAT final : public FORMAT
{
public:
    bool write(const FORMAT_REQUEST& request, BYTE_SINK& sink, std::string& message) const override;
    bool verify(const FORMAT_REQUEST& request, const BYTE_SOURCE& file, std::string& message) const override;
    bool decode(const BYTE_SOURCE& file, BYTE_SINK& sink, std::string& message) const override;
    bool inspect(const BYTE_SOURCE& file, FORMAT_FACTS& facts, std::string& message) const override;
    bool tells_checksums() const override { return true; }
};

#endif
