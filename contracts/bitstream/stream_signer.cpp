#include "stream_signer.h"

#include "atomic_file.h"
#include "byte_source.h"

#include <botan/auto_rng.h>
#include <botan/ber_dec.h>
#include <botan/data_src.h>
#include <botan/ecdsa.h>
#include <botan/oids.h>
#include <botan/pem.h>
#include <botan/pkcs8.h>
#include <botan/pubkey.h>
#include <botan/x509_key.h>

#include <algorithm>
#include <string_view>

namespace
{

constexpr std::size_t PEM_LIMIT = 1024 * 1024;
constexpr std::size_t SIGNATURE_LIMIT = 1024;

class KEY_SIGNER final : public STREAM_SIGNER
{
public:
    KEY_SIGNER(std::unique_ptr<Botan::Private_Key> key, ECDSA_PUBLIC_KEY public_key)
        : m_key(std::move(key)), m_public_key(std::move(public_key))
    {
    }
    const ECDSA_PUBLIC_KEY& public_key() const override { return m_public_key; }
    bool sign(const SHA384_DIGEST& digest, std::vector<std::uint8_t>& signature,
              std::string& message) const override
    {
        // The generator blinds the computation; the signature itself does not depend on it.
        Botan::AutoSeeded_RNG blinding;
        Botan::PK_Signer signer(*m_key, blinding, "Raw(SHA-384)");
        signature = signer.sign_message(digest.data(), digest.size(), blinding);
        if (ecdsa_verify(m_public_key, digest, signature))
            return true;
        message = "A signature that was just made does not verify; the private key is damaged.";
        return false;
    }

private:
    std::unique_ptr<Botan::Private_Key> m_key;
    ECDSA_PUBLIC_KEY m_public_key;
};

class DESK_SIGNER final : public STREAM_SIGNER
{
public:
    DESK_SIGNER(ECDSA_PUBLIC_KEY key, std::string name, SIGNING_DESK desk)
        : m_public_key(std::move(key)), m_name(std::move(name)), m_desk(std::move(desk))
    {
    }
    const ECDSA_PUBLIC_KEY& public_key() const override { return m_public_key; }
    bool sign(const SHA384_DIGEST& digest, std::vector<std::uint8_t>& signature,
              std::string& message) const override
    {
        const std::string name = m_name + "-" + hexadecimal_text(digest).substr(0, 16);
        if (!m_desk.digest_directory.empty()) {
            signature.assign(2 * ecdsa_size(m_public_key.curve), 0);
            const auto file =
                ATOMIC_FILE::create(m_desk.digest_directory + "/" + name + ".sha384", 0666, message);
            return file && file->write(digest, message) && file->commit(message);
        }
        return take_in(m_desk.signature_directory + "/" + name + ".sig", digest, signature, message);
    }

private:
    bool take_in(const std::string& path, const SHA384_DIGEST& digest, std::vector<std::uint8_t>& signature,
                 std::string& message) const
    {
        const auto file = FILE_SOURCE::open(path, message);
        if (!file) {
            message += " Sign the digest of that name and put the signature there.";
            return false;
        }
        std::vector<std::uint8_t> bytes(
            static_cast<std::size_t>(std::min<std::uint64_t>(file->size(), SIGNATURE_LIMIT)));
        if (!file->read(0, bytes, message))
            return false;
        if (file->size() > SIGNATURE_LIMIT || !plain_signature(m_public_key.curve, bytes, signature)) {
            message = path + " holds no " + ecdsa_curve_name(m_public_key.curve) +
                      " signature, neither in DER nor as two numbers; sign the digest of that name again.";
            return false;
        }
        if (!ecdsa_verify(m_public_key, digest, signature)) {
            message = path +
                      " is not a signature of the digest of that name by the key that the setup names; "
                      "sign the digest again with that key.";
            return false;
        }
        return true;
    }

    ECDSA_PUBLIC_KEY m_public_key;
    std::string m_name;
    SIGNING_DESK m_desk;
};

class SIZING_SIGNER final : public STREAM_SIGNER
{
public:
    explicit SIZING_SIGNER(ECDSA_PUBLIC_KEY key) : m_public_key(std::move(key)) {}
    const ECDSA_PUBLIC_KEY& public_key() const override { return m_public_key; }
    bool sign(const SHA384_DIGEST&, std::vector<std::uint8_t>& signature, std::string&) const override
    {
        signature.assign(2 * ecdsa_size(m_public_key.curve), 0);
        return true;
    }

private:
    ECDSA_PUBLIC_KEY m_public_key;
};

/// The label of the first PEM block that is no parameter block, and the block's text.
bool find_block(const SECRET_BYTES& bytes, std::string& label, SECRET_BYTES& block)
{
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    constexpr std::string_view BEGIN = "-----BEGIN ";
    constexpr std::string_view DASHES = "-----";
    for (std::size_t at = text.find(BEGIN); at != std::string_view::npos; at = text.find(BEGIN, at + 1)) {
        const std::size_t name = at + BEGIN.size();
        const std::size_t name_end = text.find(DASHES, name);
        if (name_end == std::string_view::npos || name_end - name > 64)
            continue;
        label = text.substr(name, name_end - name);
        const std::string end = "-----END " + label + "-----";
        const std::size_t end_at = text.find(end, name_end);
        if (label == "EC PARAMETERS" || end_at == std::string_view::npos)
            continue;
        const auto first = bytes.begin() + static_cast<std::ptrdiff_t>(at);
        block.assign(first, first + static_cast<std::ptrdiff_t>(end_at + end.size() - at));
        return true;
    }
    return false;
}

/// ECPrivateKey of RFC 5915.
std::unique_ptr<Botan::Private_Key> decode_sec1(const SECRET_BYTES& der)
{
    std::size_t version = 0;
    SECRET_BYTES number;
    Botan::OID curve;
    Botan::BER_Decoder sequence = Botan::BER_Decoder(der).start_cons(Botan::SEQUENCE);
    sequence.decode(version).decode(number, Botan::OCTET_STRING);
    sequence.start_cons(Botan::ASN1_Tag(0), Botan::ASN1_Tag(Botan::CONTEXT_SPECIFIC)).decode(curve);
    Botan::AutoSeeded_RNG blinding;
    return std::make_unique<Botan::ECDSA_PrivateKey>(blinding, Botan::EC_Group(curve),
                                                     Botan::BigInt(number.data(), number.size()));
}

std::unique_ptr<Botan::Private_Key> decode_private(const std::string& label, const SECRET_BYTES& block,
                                                   const SECRET_BYTES* password)
{
    Botan::DataSource_Memory source(block);
    if (label == "EC PRIVATE KEY") {
        std::string found;
        return decode_sec1(Botan::PEM_Code::decode(source, found));
    }
    if (label == "PRIVATE KEY")
        return Botan::PKCS8::load_key(source);
    const PASSWORD_TEXT text(*password);
    return Botan::PKCS8::load_key(source, text.text());
}

bool has_words(const SECRET_BYTES& block, std::string_view words)
{
    return std::search(block.begin(), block.end(), words.begin(), words.end()) != block.end();
}

constexpr const char* WANTED = "an EC private key with the curve P-256 or P-384";

/// Refuses by the label what is no key of the kind; empty for a label to go on with.
std::string refusal(const std::string& label, const SECRET_BYTES& block, const SECRET_BYTES* password)
{
    if (label == "CERTIFICATE" || label == "CERTIFICATE REQUEST")
        return std::string("holds a certificate and no private key; name a PEM file with ") + WANTED + ".";
    if (label == "RSA PRIVATE KEY")
        return std::string("holds an RSA key; name a PEM file with ") + WANTED + ".";
    if (label == "EC PRIVATE KEY" && has_words(block, "ENCRYPTED"))
        return "holds a private key under a password in the old form; convert it with "
               "\"openssl pkcs8 -topk8\".";
    if (label == "ENCRYPTED PRIVATE KEY")
        return password != nullptr
                   ? ""
                   : "holds a private key under a password, and no password file is named; name "
                     "a file with the password in its first line.";
    if (label == "EC PRIVATE KEY" || label == "PRIVATE KEY" || label == "PUBLIC KEY")
        return "";
    return std::string("holds no private key; name a PEM file with ") + WANTED + ".";
}

bool take_private(std::unique_ptr<Botan::Private_Key> secret, PEM_KEY& key, std::string& reason)
{
    if (!ecdsa_public_key(*secret, key.public_key)) {
        reason = "holds a key of the kind " + secret->algo_name() + " that is not " + WANTED +
                 "; name another PEM file.";
        return false;
    }
    if (secret->algo_name() != "ECDSA") {
        // Keys for other uses of the same curve sign as well.
        const auto& ec = dynamic_cast<const Botan::EC_PrivateKey&>(*secret);
        Botan::AutoSeeded_RNG blinding;
        secret = std::make_unique<Botan::ECDSA_PrivateKey>(blinding, ec.domain(), ec.private_value());
    }
    key.signer = std::make_shared<KEY_SIGNER>(std::move(secret), key.public_key);
    return true;
}

bool take_block(const std::string& label, const SECRET_BYTES& block, const SECRET_BYTES* password,
                PEM_KEY& key, std::string& reason)
{
    reason = refusal(label, block, password);
    if (!reason.empty())
        return false;
    try {
        if (label != "PUBLIC KEY")
            return take_private(decode_private(label, block, password), key, reason);
        Botan::DataSource_Memory source(block);
        const std::unique_ptr<Botan::Public_Key> open(Botan::X509::load_key(source));
        if (ecdsa_public_key(*open, key.public_key))
            return true;
        reason = "holds a public key that has neither the curve P-256 nor P-384; name another PEM file.";
    } catch (const std::exception&) {
        // The library tells no more than that it could not; what it says is not for users.
        reason = label == "ENCRYPTED PRIVATE KEY"
                     ? "holds a private key that the password does not open; correct the password."
                     : "is damaged: its key cannot be read; name another PEM file.";
    }
    return false;
}

} // namespace

bool load_pem_key(const std::string& path, const SECRET_BYTES* password, PEM_KEY& key, std::string& message)
{
    key = {};
    SECRET_BYTES bytes;
    if (!read_secret_file(path, PEM_LIMIT, "a PEM file", bytes, message))
        return false;
    std::string label;
    SECRET_BYTES block;
    if (!find_block(bytes, label, block)) {
        message = path + " is no PEM file; name one with " + WANTED + ".";
        return false;
    }
    std::string reason;
    if (take_block(label, block, password, key, reason))
        return true;
    message = path + " " + reason;
    return false;
}

std::shared_ptr<const STREAM_SIGNER> make_desk_signer(const ECDSA_PUBLIC_KEY& key, const std::string& name,
                                                      const SIGNING_DESK& desk)
{
    return std::make_shared<DESK_SIGNER>(key, name, desk);
}

std::shared_ptr<const STREAM_SIGNER> make_sizing_signer(const ECDSA_PUBLIC_KEY& key)
{
    return std::make_shared<SIZING_SIGNER>(key);
}
