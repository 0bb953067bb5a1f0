#ifndef HEX_FORMAT_H
#define HEX_FORMAT_H

#include "format.h"

/// HEX: the configuration stream as Intel HEX (I32HEX), 16 bytes a record, in ascending addresses.
///
/// Counting up, byte i of the stream stands at start address + i. Counting down, byte i stands at start
/// address - i: a device programmer that reads downwards from the start address gets the stream in order. The
/// file is in ascending addresses either way, within a record and from record to record, as Intel HEX wants
/// it. docs/formats/hex.md tells the file to the byte.
class HEX_FORMAT final : public FORMAT
{
public:
    static constexpr unsigned RECORD_LENGTH = 16;

    bool write(const FORMAT_REQUEST& request, BYTE_SINK& sink, std::string& message) const override;
    bool verify(const FORMAT_REQUEST& request, const BYTE_SOURCE& file, std::string& message) const override;
    bool decode(const BYTE_SOURCE& file, BYTE_SINK& sink, std::string& message) const override;
    bool inspect(const BYTE_SOURCE& file, FORMAT_FACTS& facts, std::string& message) const override;
};

#endif
