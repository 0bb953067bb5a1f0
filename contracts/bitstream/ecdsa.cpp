#include "ecdsa.h"

#include "little_endian.h"

#include <botan/ber_dec.h>
#include <botan/bigint.h>
#include <botan/ecdsa.h>
#include <botan/pubkey.h>

#include <algorithm>

namespace
{

Botan::EC_Group group_of(ECDSA_CURVE curve)
{
    return Botan::EC_Group(curve == ECDSA_CURVE::P256 ? "secp256r1" : "secp384r1");
}

} // namespace

std::size_t ecdsa_size(ECDSA_CURVE curve)
{
    return curve == ECDSA_CURVE::P256 ? 32 : 48;
}

const char* ecdsa_curve_name(ECDSA_CURVE curve)
{
    return curve == ECDSA_CURVE::P256 ? "P-256" : "P-384";
}

std::size_t signature_record_size(ECDSA_CURVE curve)
{
    return 4 + 4 * ecdsa_size(curve);
}

bool ecdsa_public_key(const Botan::Public_Key& key, ECDSA_PUBLIC_KEY& result)
{
    const auto* const ec = dynamic_cast<const Botan::EC_PublicKey*>(&key);
    if (ec == nullptr)
        return false;
    for (const ECDSA_CURVE curve : {ECDSA_CURVE::P256, ECDSA_CURVE::P384}) {
        if (ec->domain() != group_of(curve))
            continue;
        const std::vector<std::uint8_t> point = ec->public_point().encode(Botan::PointGFp::UNCOMPRESSED);
        result.curve = curve;
        result.point.assign(point.begin() + 1, point.end());
        return true;
    }
    return false;
}

bool ecdsa_verify(const ECDSA_PUBLIC_KEY& key, const SHA384_DIGEST& digest,
                  std::span<const std::uint8_t> signature)
{
    const std::size_t size = ecdsa_size(key.curve);
    if (key.point.size() != 2 * size || signature.size() != 2 * size)
        return false;
    const Botan::EC_Group group = group_of(key.curve);
    std::vector<std::uint8_t> encoded = {0x04};
    encoded.insert(encoded.end(), key.point.begin(), key.point.end());
    try {
        const Botan::PointGFp point = group.OS2ECP(encoded);
        if (!group.verify_public_element(point))
            return false;
        Botan::PK_Verifier verifier(Botan::ECDSA_PublicKey(group, point), "Raw(SHA-384)");
        verifier.update(digest.data(), digest.size());
        return verifier.check_signature(signature.data(), signature.size());
    } catch (const Botan::Exception&) {
        return false; // the library's answer to a point that is not on the curve
    }
}

std::vector<std::uint8_t> encode_signature(const ECDSA_PUBLIC_KEY& key,
                                           std::span<const std::uint8_t> signature)
{
    RECORD_WRITER writer;
    writer.u8(static_cast<std::uint8_t>(key.curve));
    writer.u24(0);
    writer.bytes(key.point);
    writer.bytes(signature);
    return writer.take();
}

bool decode_signature(std::span<const std::uint8_t> bytes, ECDSA_PUBLIC_KEY& key,
                      std::vector<std::uint8_t>& signature, std::string& reason)
{
    RECORD_READER reader(bytes);
    const std::uint8_t curve = reader.u8();
    const bool zeros = reader.u24() == 0;
    reason = "the signature is malformed";
    if (!reader.good() || !zeros || curve < 1 || curve > 2)
        return false;
    key.curve = static_cast<ECDSA_CURVE>(curve);
    const auto point = reader.bytes(2 * ecdsa_size(key.curve));
    const auto numbers = reader.bytes(2 * ecdsa_size(key.curve));
    if (!reader.used_up())
        return false;
    key.point.assign(point.begin(), point.end());
    signature.assign(numbers.begin(), numbers.end());
    return true;
}

bool plain_signature(ECDSA_CURVE curve, std::span<const std::uint8_t> bytes,
                     std::vector<std::uint8_t>& signature)
{
    const std::size_t size = ecdsa_size(curve);
    if (bytes.size() == 2 * size) {
        signature.assign(bytes.begin(), bytes.end());
        return true;
    }
    try {
        Botan::BigInt r;
        Botan::BigInt s;
        Botan::BER_Decoder(bytes.data(), bytes.size())
            .start_cons(Botan::SEQUENCE)
            .decode(r)
            .decode(s)
            .end_cons()
            .verify_end();
        if (r.is_negative() || s.is_negative() || r.bytes() > size || s.bytes() > size)
            return false;
        const auto numbers = Botan::BigInt::encode_fixed_length_int_pair(r, s, size);
        signature.assign(numbers.begin(), numbers.end());
        return true;
    } catch (const Botan::Exception&) {
        return false;
    }
}

std::string hexadecimal_text(std::span<const std::uint8_t> bytes)
{
    constexpr char DIGITS[] = "0123456789abcdef";
    std::string text;
    for (const std::uint8_t byte : bytes) {
        text += DIGITS[byte >> 4];
        text += DIGITS[byte & 0x0F];
    }
    return text;
}
