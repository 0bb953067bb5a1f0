#ifndef IMAGEWRIGHT_TESTS_REFERENCE_CRYPTO_H
#define IMAGEWRIGHT_TESTS_REFERENCE_CRYPTO_H

#include <cstdint>
#include <span>
#include <string>
#include <vector>

// The primitives of the formats, from another crypto library than the program's.

/// "SHA256", "SHA384".
std::vector<std::uint8_t> reference_digest(const char* name, std::span<const std::uint8_t> bytes);

/// RFC 5869.
std::vector<std::uint8_t> reference_hkdf_sha256(std::span<const std::uint8_t> secret, const std::string& salt,
                                                const std::string& label, std::size_t size);

/// AES-GCM by the length of the key; `sealed` is nonce (12), text, tag (16). False when it does not
/// authenticate.
bool reference_gcm_open(std::span<const std::uint8_t> key, std::span<const std::uint8_t> associated,
                        std::span<const std::uint8_t> sealed, std::vector<std::uint8_t>& plain);

/// ECDSA with SHA-384 over `text`; curve "P-256" or "P-384", `point` X and Y, `numbers` r and s.
bool reference_ecdsa_verify(const std::string& curve, std::span<const std::uint8_t> point,
                            std::span<const std::uint8_t> numbers, std::span<const std::uint8_t> text);

/// The public key as a PEM file has it.
std::string reference_public_pem(const std::string& curve, std::span<const std::uint8_t> point);

/// The signature as a DER sequence.
std::vector<std::uint8_t> reference_der_signature(std::span<const std::uint8_t> numbers);

#endif
