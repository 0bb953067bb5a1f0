#ifndef STREAM_KEY_H
#define STREAM_KEY_H

#include "key_info.h"
#include "secret_bytes.h"

#include <memory>

/// The keys that encrypt a stream, derived from the key of a device by HKDF (RFC 5869) with SHA-256. The way
/// back does not exist: who has these keys can encrypt and decrypt streams and cannot program a device.
/// Labels and lengths: docs/formats/configuration-stream.md.
class STREAM_KEY
{
public:
    /// `device_key` has 16 or 32 bytes.
    static std::shared_ptr<const STREAM_KEY> derive(const SECRET_BYTES& device_key);
    /// From keys that were derived before; `cipher_key` has 16 or 32 bytes, `nonce_key` 32.
    static std::shared_ptr<const STREAM_KEY> from_parts(SECRET_BYTES cipher_key, SECRET_BYTES nonce_key,
                                                        const KEY_ID& id);

    unsigned bits() const { return static_cast<unsigned>(m_cipher_key.size()) * 8; }
    const SECRET_BYTES& cipher_key() const { return m_cipher_key; }
    const SECRET_BYTES& nonce_key() const { return m_nonce_key; }
    const KEY_ID& id() const { return m_id; }

private:
    STREAM_KEY() = default;
    SECRET_BYTES m_cipher_key;
    SECRET_BYTES m_nonce_key;
    KEY_ID m_id{};
};

/// How an image is encrypted.
struct STREAM_ENCRYPTION {
    std::shared_ptr<const STREAM_KEY> key; ///< null for an image that is prepared for it
    KEY_INFO info;                         ///< length and id are those of the key
};

/// The key that a device gets from two keys of equal length, which two people may keep: HKDF (RFC 5869) with
/// SHA-256 over the first and then the second key.
SECRET_BYTES mix_device_keys(const SECRET_BYTES& first, const SECRET_BYTES& second);

/// The digits of a key as bytes; false when they are not pairs of hexadecimal digits.
bool parse_key_digits(const std::string& digits, SECRET_BYTES& key);

#endif
