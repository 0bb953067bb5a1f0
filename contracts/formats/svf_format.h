#ifndef SVF_FORMAT_H
#define SVF_FORMAT_H

#include "format.h"

/// SVF: Serial Vector Format, revision E (ASSET InterTech, 1999), that does with the device what the
/// operation says: check its IDCODE, send the configuration stream or compare it, check the status. The last
/// line is a comment with the CRC-32 of the lines before it, so that a changed file is found without its
/// source; players pass over it. docs/formats/svf.md tells the file, docs/formats/jtag-programming.md what
/// the vectors do.
class SVF_FORMAT final : public FORMAT
{
public:
    bool write(const FORMAT_REQUEST& request, BYTE_SINK& sink, std::string& message) const override;
    bool verify(const FORMAT_REQUEST& request, const BYTE_SOURCE& file, std::string& message) const override;
    /// Gives the stream that is sent or compared.
    bool decode(const BYTE_SOURCE& file, BYTE_SINK& sink, std::string& message) const override;
    bool inspect(const BYTE_SOURCE& file, FORMAT_FACTS& facts, std::string& message) const override;
};

#endif
