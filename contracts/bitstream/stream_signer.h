#ifndef STREAM_SIGNER_H
#define STREAM_SIGNER_H

#include "ecdsa.h"
#include "secret_bytes.h"
#include "signing_desk.h"

#include <memory>
#include <string>

/// Signs digests. Objects may be used by several threads at once.
class STREAM_SIGNER
{
public:
    virtual ~STREAM_SIGNER() = default;
    virtual const ECDSA_PUBLIC_KEY& public_key() const = 0;
    /// r and s in `signature`. False with a whole sentence in `message`.
    virtual bool sign(const SHA384_DIGEST& digest, std::vector<std::uint8_t>& signature,
                      std::string& message) const = 0;
};

/// What a PEM file brings.
struct PEM_KEY {
    std::shared_ptr<const STREAM_SIGNER> signer; ///< null for a public key
    ECDSA_PUBLIC_KEY public_key;
};

/// Reads the first key of a PEM file (RFC 7468): a private EC key in PKCS #8, plain or under a password, or
/// as SEC 1 has it (RFC 5915), or a public key. The curves are P-256 and P-384. `password` may be null.
/// Signatures are deterministic (RFC 6979). False with a whole sentence in `message` that names the file and
/// never a part of the key.
bool load_pem_key(const std::string& path, const SECRET_BYTES* password, PEM_KEY& key, std::string& message);

/// A signer that writes digests, with a signature of zeros that must go nowhere, or takes signatures in and
/// verifies each. `name`: of what is signed, without directories.
std::shared_ptr<const STREAM_SIGNER> make_desk_signer(const ECDSA_PUBLIC_KEY& key, const std::string& name,
                                                      const SIGNING_DESK& desk);

/// A signer whose signatures are zeros of the right size, for streams of which only the size matters.
std::shared_ptr<const STREAM_SIGNER> make_sizing_signer(const ECDSA_PUBLIC_KEY& key);

#endif
