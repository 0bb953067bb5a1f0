#include "reference_crypto.h"

#include <algorithm>
#include <memory>
#include <openssl/bio.h>
#include <openssl/core_names.h>
#include <openssl/ecdsa.h>
#include <openssl/evp.h>
#include <openssl/kdf.h>
#include <openssl/params.h>
#include <openssl/pem.h>

namespace
{

template <auto FREE>
struct FREED_BY {
    template <class T>
    void operator()(T* object) const
    {
        FREE(object);
    }
};
using KEY = std::unique_ptr<EVP_PKEY, FREED_BY<EVP_PKEY_free>>;

KEY public_key(const std::string& curve, std::span<const std::uint8_t> point)
{
    std::vector<std::uint8_t> encoded = {0x04};
    encoded.insert(encoded.end(), point.begin(), point.end());
    std::string group = curve;
    const OSSL_PARAM parameters[] = {
        OSSL_PARAM_construct_utf8_string(OSSL_PKEY_PARAM_GROUP_NAME, group.data(), 0),
        OSSL_PARAM_construct_octet_string(OSSL_PKEY_PARAM_PUB_KEY, encoded.data(), encoded.size()),
        OSSL_PARAM_construct_end()};
    const std::unique_ptr<EVP_PKEY_CTX, FREED_BY<EVP_PKEY_CTX_free>> context(
        EVP_PKEY_CTX_new_from_name(nullptr, "EC", nullptr));
    EVP_PKEY* key = nullptr;
    if (EVP_PKEY_fromdata_init(context.get()) != 1 ||
        EVP_PKEY_fromdata(context.get(), &key, EVP_PKEY_PUBLIC_KEY, const_cast<OSSL_PARAM*>(parameters)) != 1)
        return nullptr;
    return KEY(key);
}

} // namespace

std::vector<std::uint8_t> reference_digest(const char* name, std::span<const std::uint8_t> bytes)
{
    std::vector<std::uint8_t> digest(EVP_MAX_MD_SIZE);
    std::size_t size = 0;
    if (EVP_Q_digest(nullptr, name, nullptr, bytes.data(), bytes.size(), digest.data(), &size) != 1)
        size = 0;
    digest.resize(size);
    return digest;
}

std::vector<std::uint8_t> reference_hkdf_sha256(std::span<const std::uint8_t> secret, const std::string& salt,
                                                const std::string& label, std::size_t size)
{
    std::vector<std::uint8_t> key(size);
    const std::unique_ptr<EVP_KDF, FREED_BY<EVP_KDF_free>> kdf(EVP_KDF_fetch(nullptr, "HKDF", nullptr));
    const std::unique_ptr<EVP_KDF_CTX, FREED_BY<EVP_KDF_CTX_free>> context(EVP_KDF_CTX_new(kdf.get()));
    std::string hash = "SHA256";
    std::vector<std::uint8_t> ikm(secret.begin(), secret.end());
    std::string salt_copy = salt;
    std::string info = label;
    const OSSL_PARAM parameters[] = {
        OSSL_PARAM_construct_utf8_string(OSSL_KDF_PARAM_DIGEST, hash.data(), 0),
        OSSL_PARAM_construct_octet_string(OSSL_KDF_PARAM_KEY, ikm.data(), ikm.size()),
        OSSL_PARAM_construct_octet_string(OSSL_KDF_PARAM_SALT, salt_copy.data(), salt_copy.size()),
        OSSL_PARAM_construct_octet_string(OSSL_KDF_PARAM_INFO, info.data(), info.size()),
        OSSL_PARAM_construct_end()};
    if (EVP_KDF_derive(context.get(), key.data(), key.size(), parameters) != 1)
        key.clear();
    return key;
}

bool reference_gcm_open(std::span<const std::uint8_t> key, std::span<const std::uint8_t> associated,
                        std::span<const std::uint8_t> sealed, std::vector<std::uint8_t>& plain)
{
    constexpr std::size_t NONCE = 12;
    constexpr std::size_t TAG = 16;
    if (sealed.size() < NONCE + TAG)
        return false;
    const std::unique_ptr<EVP_CIPHER_CTX, FREED_BY<EVP_CIPHER_CTX_free>> context(EVP_CIPHER_CTX_new());
    std::vector<std::uint8_t> tag(sealed.end() - TAG, sealed.end());
    const auto text = sealed.subspan(NONCE, sealed.size() - NONCE - TAG);
    plain.resize(text.size());
    int size = 0;
    return EVP_DecryptInit_ex2(context.get(), key.size() == 16 ? EVP_aes_128_gcm() : EVP_aes_256_gcm(),
                               key.data(), sealed.data(), nullptr) == 1 &&
           EVP_DecryptUpdate(context.get(), nullptr, &size, associated.data(),
                             static_cast<int>(associated.size())) == 1 &&
           EVP_DecryptUpdate(context.get(), plain.data(), &size, text.data(),
                             static_cast<int>(text.size())) == 1 &&
           EVP_CIPHER_CTX_ctrl(context.get(), EVP_CTRL_AEAD_SET_TAG, TAG, tag.data()) == 1 &&
           EVP_DecryptFinal_ex(context.get(), plain.data() + plain.size(), &size) == 1;
}

std::vector<std::uint8_t> reference_der_signature(std::span<const std::uint8_t> numbers)
{
    const int half = static_cast<int>(numbers.size() / 2);
    const std::unique_ptr<ECDSA_SIG, FREED_BY<ECDSA_SIG_free>> pair(ECDSA_SIG_new());
    ECDSA_SIG_set0(pair.get(), BN_bin2bn(numbers.data(), half, nullptr),
                   BN_bin2bn(numbers.data() + half, half, nullptr));
    std::vector<std::uint8_t> der(static_cast<std::size_t>(i2d_ECDSA_SIG(pair.get(), nullptr)));
    std::uint8_t* into = der.data();
    i2d_ECDSA_SIG(pair.get(), &into);
    return der;
}

bool reference_ecdsa_verify(const std::string& curve, std::span<const std::uint8_t> point,
                            std::span<const std::uint8_t> numbers, std::span<const std::uint8_t> text)
{
    const KEY key = public_key(curve, point);
    const std::vector<std::uint8_t> der = reference_der_signature(numbers);
    const std::unique_ptr<EVP_MD_CTX, FREED_BY<EVP_MD_CTX_free>> context(EVP_MD_CTX_new());
    return key && EVP_DigestVerifyInit(context.get(), nullptr, EVP_sha384(), nullptr, key.get()) == 1 &&
           EVP_DigestVerify(context.get(), der.data(), der.size(), text.data(), text.size()) == 1;
}

std::string reference_public_pem(const std::string& curve, std::span<const std::uint8_t> point)
{
    const KEY key = public_key(curve, point);
    const std::unique_ptr<BIO, FREED_BY<BIO_free>> memory(BIO_new(BIO_s_mem()));
    if (!key || PEM_write_bio_PUBKEY(memory.get(), key.get()) != 1)
        return {};
    char* data = nullptr;
    const long size = BIO_get_mem_data(memory.get(), &data);
    return {data, static_cast<std::size_t>(size)};
}
