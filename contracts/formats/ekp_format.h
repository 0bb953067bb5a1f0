#ifndef EKP_FORMAT_H
#define EKP_FORMAT_H

#include "format.h"

/// EKP: the keys of encrypted bitstreams, with which their devices are programmed, and how the devices are to
/// protect themselves. docs/formats/ekp.md tells the file to the byte. The file is a secret; inspection tells
/// the id of a key and never the key.
class EKP_FORMAT final : public FORMAT
{
public:
    bool write(const FORMAT_REQUEST& request, BYTE_SINK& sink, std::string& message) const override;
    bool verify(const FORMAT_REQUEST& request, const BYTE_SOURCE& file, std::string& message) const override;
    bool decode(const BYTE_SOURCE& file, BYTE_SINK& sink, std::string& message) const override;
    bool inspect(const BYTE_SOURCE& file, FORMAT_FACTS& facts, std::string& message) const override;
};

#endif
