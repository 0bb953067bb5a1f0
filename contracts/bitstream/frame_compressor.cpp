#include "frame_compressor.h"

#include "stream_packets.h"

#include <lz4.h>
#include <zstd.h>

#include <algorithm>

namespace
{

/// A good trade for data that is compressed once and loaded often.
constexpr int ZSTD_LEVEL = 9;

struct FREE_ZSTD {
    void operator()(ZSTD_CCtx* context) const { ZSTD_freeCCtx(context); }
};

} // namespace

class FRAME_COMPRESSOR::CODER
{
public:
    explicit CODER(STREAM_METHOD method) : m_method(method)
    {
        if (method == STREAM_METHOD::ZSTD)
            m_zstd.reset(ZSTD_createCCtx());
    }

    /// Length of the compressed form, 0 when it would not be smaller than the plain one.
    std::size_t compress(std::span<const std::uint8_t> plain, std::vector<std::uint8_t>& compressed)
    {
        // Room for one byte less than the plain form: what does not fit is of no use.
        compressed.resize(plain.size() - 1);
        switch (m_method) {
        case STREAM_METHOD::PLAIN:
            return 0;
        case STREAM_METHOD::LZ4: {
            const int size = LZ4_compress_default(
                reinterpret_cast<const char*>(plain.data()), reinterpret_cast<char*>(compressed.data()),
                static_cast<int>(plain.size()), static_cast<int>(compressed.size()));
            return static_cast<std::size_t>(std::max(size, 0));
        }
        case STREAM_METHOD::ZSTD: {
            const std::size_t size = ZSTD_compressCCtx(m_zstd.get(), compressed.data(), compressed.size(),
                                                       plain.data(), plain.size(), ZSTD_LEVEL);
            return ZSTD_isError(size) != 0 ? 0 : size;
        }
        }
        return 0;
    }

private:
    STREAM_METHOD m_method;
    std::unique_ptr<ZSTD_CCtx, FREE_ZSTD> m_zstd;
};

FRAME_COMPRESSOR::FRAME_COMPRESSOR(const BYTE_SOURCE& source, STREAM_METHOD method, LAST_STEP last_step)
    : m_source(source), m_method(method), m_last_step(std::move(last_step)),
      m_coder(std::make_unique<CODER>(method))
{
}

FRAME_COMPRESSOR::~FRAME_COMPRESSOR()
{
    if (m_ahead.valid())
        m_ahead.wait();
}

FRAME_COMPRESSOR::RESULT FRAME_COMPRESSOR::make_block(FRAME_BLOCK block) const
{
    RESULT result;
    block.method = STREAM_METHOD::PLAIN;
    block.plain.resize(
        static_cast<std::size_t>(std::min<std::uint64_t>(FRAMES_LIMIT, m_source.size() - block.offset)));
    result.good = m_source.read(block.offset, block.plain, result.message);
    if (result.good && m_method != STREAM_METHOD::PLAIN) {
        const std::size_t size = m_coder->compress(block.plain, block.compressed);
        if (size != 0)
            block.method = m_method;
        block.compressed.resize(size);
    }
    if (result.good && m_last_step)
        m_last_step(block);
    result.block = std::move(block);
    return result;
}

void FRAME_COMPRESSOR::start(FRAME_BLOCK buffers)
{
    buffers.offset = m_position;
    m_position += std::min<std::uint64_t>(FRAMES_LIMIT, m_source.size() - m_position);
    // Reading alone is not worth another thread.
    const bool is_work = m_method != STREAM_METHOD::PLAIN || m_last_step;
    const auto policy = is_work ? std::launch::async : std::launch::deferred;
    m_ahead = std::async(
        policy, [this, taken = std::move(buffers)]() mutable { return make_block(std::move(taken)); });
}

bool FRAME_COMPRESSOR::next(FRAME_BLOCK& block, std::string& message)
{
    if (!m_ahead.valid()) {
        if (m_position == m_source.size()) {
            m_at_end = true;
            return false;
        }
        start(std::move(m_spare));
    }
    RESULT result = m_ahead.get();
    if (!result.good) {
        message = result.message;
        return false;
    }
    std::swap(block, result.block);
    m_spare = std::move(result.block);
    if (m_position != m_source.size())
        start(std::move(m_spare));
    return true;
}
