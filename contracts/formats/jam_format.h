#ifndef JAM_FORMAT_H
#define JAM_FORMAT_H

#include "format.h"

/// JAM: a STAPL program (JEDEC JESD71) with the actions PROGRAM, VERIFY, BLANKCHECK_PROGRAM, BLANKCHECK and
/// ERASE, the configuration stream as one array, and the CRC statement. docs/formats/jam.md tells the file,
/// docs/formats/jtag-programming.md what the actions do.
class JAM_FORMAT final : public FORMAT
{
public:
    bool write(const FORMAT_REQUEST& request, BYTE_SINK& sink, std::string& message) const override;
    bool verify(const FORMAT_REQUEST& request, const BYTE_SOURCE& file, std::string& message) const override;
    bool decode(const BYTE_SOURCE& file, BYTE_SINK& sink, std::string& message) const override;
    bool inspect(const BYTE_SOURCE& file, FORMAT_FACTS& facts, std::string& message) const override;
};

#endif
