#ifndef SIGNING_DESK_H
#define SIGNING_DESK_H

#include <string>

/// Where the digests of a key that is kept elsewhere go to and its signatures come from. Digest and signature
/// are a pair of files: "<name>-<first 16 digits of the digest>.sha384", 48 bytes, and the same with ".sig",
/// r and s in DER or as they are.
struct SIGNING_DESK {
    std::string digest_directory{};    ///< digests are written here, and nothing is signed; empty for not
    std::string signature_directory{}; ///< signatures are taken from here; empty for not
};

#endif
