#ifndef RIM_FORMAT_H
#define RIM_FORMAT_H

#include "format.h"

/// RIM: a reference integrity manifest, the measurements that a device reports for its configuration, for a
/// verifier far away; signed when the bitstream is. Text, told in docs/formats/rim.md.
class RIM_FORMAT final : public FORMAT
{
public:
    bool write(const FORMAT_REQUEST& request, BYTE_SINK& sink, std::string& message) const override;
    bool verify(const FORMAT_REQUEST& request, const BYTE_SOURCE& file, std::string& message) const override;
    bool decode(const BYTE_SOURCE& file, BYTE_SINK& sink, std::string& message) const override;
    bool inspect(const BYTE_SOURCE& file, FORMAT_FACTS& facts, std::string& message) const override;
};

#endif
