#ifndef FRAME_SEALER_H
#define FRAME_SEALER_H

#include "stream_key.h"

#include <array>
#include <memory>
#include <span>
#include <vector>

namespace Botan
{
class AEAD_Mode;
class MessageAuthenticationCode;
} // namespace Botan

/// Encrypts the frames of one image, packet after packet, by AES-GCM (NIST SP 800-38D) under a nonce made of
/// what it encrypts: the first 12 bytes of HMAC-SHA-256 over the associated data and the content. Equal
/// images give equal bytes, and a nonce comes back only with the same content. The associated data holds the
/// tag of the packet before, so that a packet counts only at its place in its image.
class FRAME_SEALER
{
public:
    static constexpr std::size_t NONCE_SIZE = 12;
    static constexpr std::size_t TAG_SIZE = 16;
    using CHAIN = std::array<std::uint8_t, TAG_SIZE>;

    /// `start` stands for the tag before the first packet.
    FRAME_SEALER(const STREAM_KEY& key, const CHAIN& start);
    ~FRAME_SEALER();
    FRAME_SEALER(const FRAME_SEALER&) = delete;
    FRAME_SEALER& operator=(const FRAME_SEALER&) = delete;

    /// Nonce, encrypted content and tag into `sealed`. `header`: opcode and frames header of the packet.
    void seal(std::span<const std::uint8_t> header, std::span<const std::uint8_t> content,
              SECRET_BYTES& sealed);

private:
    std::unique_ptr<Botan::AEAD_Mode> m_cipher;
    std::unique_ptr<Botan::MessageAuthenticationCode> m_nonces;
    CHAIN m_chain;
};

#endif
