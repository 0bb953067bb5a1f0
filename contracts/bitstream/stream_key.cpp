#include "stream_key.h"

#include <botan/kdf.h>

#include <algorithm>

namespace
{

constexpr std::size_t NONCE_KEY_SIZE = 32;
constexpr const char* MIXING_SALT = "imagewright two keys 1";
constexpr const char* SALT = "imagewright configuration stream 1";

int digit_value(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    return c >= 'A' && c <= 'F' ? c - 'A' + 10 : -1;
}

} // namespace

std::shared_ptr<const STREAM_KEY> STREAM_KEY::derive(const SECRET_BYTES& device_key)
{
    const auto kdf = Botan::KDF::create_or_throw("HKDF(SHA-256)");
    const auto derived = [&](std::size_t size, const std::string& label) {
        return kdf->derive_key(size, device_key, SALT, label);
    };
    const SECRET_BYTES id = derived(std::tuple_size_v<KEY_ID>, "key id");
    KEY_ID key_id{};
    std::copy(id.begin(), id.end(), key_id.begin());
    return from_parts(derived(device_key.size(), "cipher"), derived(NONCE_KEY_SIZE, "nonce"), key_id);
}

std::shared_ptr<const STREAM_KEY> STREAM_KEY::from_parts(SECRET_BYTES cipher_key, SECRET_BYTES nonce_key,
                                                         const KEY_ID& id)
{
    const std::shared_ptr<STREAM_KEY> key(new STREAM_KEY);
    key->m_cipher_key = std::move(cipher_key);
    key->m_nonce_key = std::move(nonce_key);
    key->m_id = id;
    return key;
}

SECRET_BYTES mix_device_keys(const SECRET_BYTES& first, const SECRET_BYTES& second)
{
    SECRET_BYTES both = first;
    both.insert(both.end(), second.begin(), second.end());
    return Botan::KDF::create_or_throw("HKDF(SHA-256)")
        ->derive_key(first.size(), both, MIXING_SALT, "device key");
}

bool parse_key_digits(const std::string& digits, SECRET_BYTES& key)
{
    if (digits.size() % 2 != 0)
        return false;
    key.resize(digits.size() / 2);
    for (std::size_t i = 0; i < key.size(); ++i) {
        const int high = digit_value(digits[2 * i]);
        const int low = digit_value(digits[2 * i + 1]);
        if (high < 0 || low < 0)
            return false;
        key[i] = static_cast<std::uint8_t>(high * 16 + low);
    }
    return true;
}
