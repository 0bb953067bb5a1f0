#ifndef GEN_LEGAL_TEXT_H
#define GEN_LEGAL_TEXT_H

#include <string>

/// The disclaimer that stands beside the settings of bitstream encryption.
std::string gen_get_bitstream_encryption_legal_text();

#endif
