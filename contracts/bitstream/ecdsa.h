#ifndef ECDSA_H
#define ECDSA_H

#include <array>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace Botan
{
class Public_Key;
}

/// Signatures by ECDSA (FIPS 186-4) over the SHA-384 digest of what is signed, with the curves P-256 and
/// P-384. Numbers stand in big-endian order, as wide as the curve's order.

enum class ECDSA_CURVE : std::uint8_t { P256 = 1, P384 = 2 };

using SHA384_DIGEST = std::array<std::uint8_t, 48>;

struct ECDSA_PUBLIC_KEY {
    ECDSA_CURVE curve = ECDSA_CURVE::P256;
    std::vector<std::uint8_t> point; ///< X, Y
    bool operator==(const ECDSA_PUBLIC_KEY&) const = default;
};

/// Bytes of a number on the curve: 32 or 48.
std::size_t ecdsa_size(ECDSA_CURVE curve);
/// "P-256", "P-384".
const char* ecdsa_curve_name(ECDSA_CURVE curve);

/// The public half of a key of the crypto library; false when it is no EC key of one of the two curves.
bool ecdsa_public_key(const Botan::Public_Key& key, ECDSA_PUBLIC_KEY& result);

/// Whether `signature` (r, s) is one of `digest` by that key. False too for a point that is not on the curve.
bool ecdsa_verify(const ECDSA_PUBLIC_KEY& key, const SHA384_DIGEST& digest,
                  std::span<const std::uint8_t> signature);

/// A public key and a signature as they stand in streams and files: curve, three zeros, X, Y, r, s.
std::vector<std::uint8_t> encode_signature(const ECDSA_PUBLIC_KEY& key,
                                           std::span<const std::uint8_t> signature);
/// Accepts the record only when it is used up to its last byte; false with the end of a sentence in `reason`.
bool decode_signature(std::span<const std::uint8_t> bytes, ECDSA_PUBLIC_KEY& key,
                      std::vector<std::uint8_t>& signature, std::string& reason);
/// Length of such a record.
std::size_t signature_record_size(ECDSA_CURVE curve);

/// A signature in the DER form that other tools write (SEQUENCE of r and s) as r, s of the curve's width, and
/// one that has this form already as it is. False when it is neither.
bool plain_signature(ECDSA_CURVE curve, std::span<const std::uint8_t> bytes,
                     std::vector<std::uint8_t>& signature);

/// Lower-case hexadecimal digits.
std::string hexadecimal_text(std::span<const std::uint8_t> bytes);

#endif
