#include "mended_stream.h"
#include "stream_finalizer.h"
#include "stream_reader.h"

#include <cstdlib>

/// What is completed must be a sound stream; everything else must be refused with a sentence. The checksums
/// of the packets and the digest are mended, so that the mutations reach what lies behind them.
namespace
{

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
