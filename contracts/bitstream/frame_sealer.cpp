#include "frame_sealer.h"

#include <botan/aead.h>
#include <botan/mac.h>

#include <algorithm>

FRAME_SEALER::FRAME_SEALER(const STREAM_KEY& key, const CHAIN& start)
    : m_cipher(Botan::AEAD_Mode::create_or_throw(key.bits() == 128 ? "AES-128/GCM" : "AES-256/GCM",
                                                 Botan::ENCRYPTION)),
      m_nonces(Botan::MessageAuthenticationCode::create_or_throw("HMAC(SHA-256)")), m_chain(start)
{
    m_cipher->set_key(key.cipher_key());
    m_nonces->set_key(key.nonce_key());
}

FRAME_SEALER::~FRAME_SEALER() = default;

void FRAME_SEALER::seal(std::span<const std::uint8_t> header, std::span<const std::uint8_t> content,
                        SECRET_BYTES& sealed)
{
    std::vector<std::uint8_t> associated(m_chain.begin(), m_chain.end());
    associated.insert(associated.end(), header.begin(), header.end());
    m_nonces->update(associated.data(), associated.size());
    m_nonces->update(content.data(), content.size());
    SECRET_BYTES nonce = m_nonces->final();
    nonce.resize(NONCE_SIZE);

    sealed.reserve(NONCE_SIZE + content.size() + TAG_SIZE);
    // Copied over what is there: an insertion into such memory goes byte by byte.
    sealed.resize(NONCE_SIZE + content.size());
    std::copy(nonce.begin(), nonce.end(), sealed.begin());
    std::copy(content.begin(), content.end(), sealed.begin() + NONCE_SIZE);
    m_cipher->set_associated_data(associated.data(), associated.size());
    m_cipher->start(nonce);
    m_cipher->finish(sealed, NONCE_SIZE);
    std::copy(sealed.end() - TAG_SIZE, sealed.end(), m_chain.begin());
}
