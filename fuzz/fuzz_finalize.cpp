#include "stream_finalizer.h"
#include "stream_reader.h"

#include <botan/hash.h>

#include <cstdlib>

/// What is completed must be a sound stream; everything else must be refused with a sentence. The checksums
/// of the packets and the digest are mended, so that the mutations reach what lies behind them.
namespace
{

void put32(std::vector<std::uint8_t>& bytes, std::size_t offset, std::uint32_t value)
{
    for (std::size_t i = 0; i < 4; ++i)
        bytes[offset + i] = static_cast<std::uint8_t>(value >> (8 * i));
}

void mend_packets(std::vector<std::uint8_t>& bytes)
{
    for (std::size_t at = 4; at + 8 <= bytes.size();) {
        const std::size_t length = bytes[at + 1] + 256U * bytes[at + 2] + 65536U * bytes[at + 3];
        if (length + 8 > bytes.size() - at)
            return;
        if (bytes[at] == 0x7F && length == 32) {
            const auto hash = Botan::HashFunction::create_or_throw("SHA-256");
            hash->update(bytes.data(), at);
            hash->final(bytes.data() + at + 4);
        }
        put32(bytes, at + 4 + length, crc32(std::span<const std::uint8_t>(bytes).subspan(at, 4 + length)));
        at += 8 + length;
    }
}

/// Signs nothing in particular: what counts here is the walk.
class SOME_SIGNER final : public STREAM_SIGNER
{
public:
    SOME_SIGNER() { m_key.point.resize(64); }
    const ECDSA_PUBLIC_KEY& public_key() const override { return m_key; }
    bool sign(const SHA384_DIGEST&, std::vector<std::uint8_t>& signature, std::string&) const override
    {
        signature.assign(64, 1);
        return true;
    }

private:
    ECDSA_PUBLIC_KEY m_key;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    std::vector<std::uint8_t> bytes(data, data + size);
    mend_packets(bytes);
    static const auto key = STREAM_KEY::derive(SECRET_BYTES(32, 0x5A));
    std::string message;
    const auto stream = finalize_stream(MEMORY_SOURCE(bytes), *key, SOME_SIGNER(), "/tmp", message);
    if ((stream == nullptr) == message.empty())
        std::abort();
    return 0;
}
