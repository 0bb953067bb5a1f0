#ifndef JBC_FORMAT_H
#define JBC_FORMAT_H

#include "format.h"

/// JBC: the program of a JAM file as byte code of this tool, for players on small processors, which need one
/// pass over the file for each action and no memory beyond a scan. docs/formats/jbc.md tells the file to the
/// byte, docs/formats/jtag-programming.md what the actions do.
class JBC_FORMAT final : public FORMAT
{
public:
    bool write(const FORMAT_REQUEST& request, BYTE_SINK& sink, std::string& message) const override;
    bool verify(const FORMAT_REQUEST& request, const BYTE_SOURCE& file, std::string& message) const override;
    bool decode(const BYTE_SOURCE& file, BYTE_SINK& sink, std::string& message) const override;
    bool inspect(const BYTE_SOURCE& file, FORMAT_FACTS& facts, std::string& message) const override;

    /// Whether the file begins as a JBC does.
    static bool recognise(const BYTE_SOURCE& file);
};

#endif
