#ifndef POF_FORMAT_H
#define POF_FORMAT_H

#include "format.h"

/// POF: a flash image for a device programmer, as the parts of it that are not 0xFF, with the name and the
/// size of the device, the partitions, and checksums over every byte. docs/formats/pof.md tells the file to
/// the byte. It grows with what the device holds, not with the device.
class POF_FORMAT final : public FORMAT
{
public:
    bool write(const FORMAT_REQUEST& request, BYTE_SINK& sink, std::string& message) const override;
    bool verify(const FORMAT_REQUEST& request, const BYTE_SOURCE& file, std::string& message) const override;
    /// Gives the whole device.
    bool decode(const BYTE_SOURCE& file, BYTE_SINK& sink, std::string& message) const override;
    bool inspect(const BYTE_SOURCE& file, FORMAT_FACTS& facts, std::string& message) const override;

    /// Whether the file begins as a POF does.
    static bool recognise(const BYTE_SOURCE& file);
};

#endif
