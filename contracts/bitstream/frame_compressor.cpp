#include "frame_compressor.h"

#include "stream_packets.h"

#include <lz4.h>
#include <zstd.h>
#include <zstd_errors.h>

#include <algorithm>
#include <new>
#include <system_error>

namespace
{

/// A good trade for data that is compressed once and loaded often.
constexpr int ZSTD_LEVEL = 9;

/// What evens out that one block takes longer than another.
constexpr std::size_t BLOCKS_AHEAD = 2;
/// One more is in the works, and one in use.
constexpr std::size_t BLOCKS_ALL = BLOCKS_AHEAD + 2;

struct FREE_ZSTD {
    void operator()(ZSTD_CCtx* context) const { ZSTD_freeCCtx(context); }
};

} // namespace

class FRAME_COMPRESSOR::CODER
{
public:
    explicit CODER(STREAM_METHOD method) : m_method(method)
    {
        if (method == STREAM_METHOD::ZSTD) {
            m_zstd.reset(ZSTD_createCCtx());
            if (!m_zstd)
                throw std::bad_alloc();
        }
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
            if (ZSTD_isError(size) == 0)
                return size;
            // The stream must not depend on how much memory the machine has left.
            if (ZSTD_getErrorCode(size) == ZSTD_error_memory_allocation)
                throw std::bad_alloc();
            return 0;
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
    // The other thread is to need no memory for what it hands over.
    m_ready.reserve(BLOCKS_AHEAD);
    m_spares.reserve(BLOCKS_ALL);
    // Reading alone is not worth another thread.
    if (m_method != STREAM_METHOD::PLAIN || m_last_step)
        try {
            m_worker = std::thread([this] { work_ahead(); });
        } catch (const std::system_error&) {
            // The machine has no more threads to give: take() makes the blocks itself.
        }
}

FRAME_COMPRESSOR::~FRAME_COMPRESSOR()
{
    {
        const std::scoped_lock lock(m_mutex);
        m_stop = true;
    }
    m_changed.notify_all();
    if (m_worker.joinable())
        m_worker.join();
}

/// Into the buffers of result.block.
void FRAME_COMPRESSOR::make_block(RESULT& result, std::uint64_t offset) const
{
    FRAME_BLOCK& block = result.block;
    block.offset = offset;
    block.method = STREAM_METHOD::PLAIN;
    block.plain.resize(
        static_cast<std::size_t>(std::min<std::uint64_t>(FRAMES_LIMIT, m_source.size() - offset)));
    result.good = m_source.read(offset, block.plain, result.message);
    if (result.good && m_method != STREAM_METHOD::PLAIN) {
        const std::size_t size = m_coder->compress(block.plain, block.compressed);
        if (size != 0)
            block.method = m_method;
        block.compressed.resize(size);
    }
    if (result.good && m_last_step)
        m_last_step(block);
}

void FRAME_COMPRESSOR::work_ahead()
{
    bool good = true;
    for (std::uint64_t offset = 0; good && offset != m_source.size();) {
        RESULT result;
        {
            std::unique_lock lock(m_mutex);
            m_changed.wait(lock, [this] { return m_stop || m_ready.size() < BLOCKS_AHEAD; });
            if (m_stop)
                return;
            if (!m_spares.empty()) {
                result.block = std::move(m_spares.back());
                m_spares.pop_back();
            }
        }
        try {
            make_block(result, offset);
        } catch (...) {
            result.good = false;
            result.failure = std::current_exception();
        }
        offset += result.block.plain.size();
        good = result.good;
        {
            const std::scoped_lock lock(m_mutex);
            m_ready.push_back(std::move(result));
        }
        m_changed.notify_all();
    }
}

FRAME_COMPRESSOR::RESULT FRAME_COMPRESSOR::take(FRAME_BLOCK spare)
{
    RESULT result;
    if (!m_worker.joinable()) {
        result.block = std::move(spare);
        make_block(result, m_given);
        return result;
    }
    {
        std::unique_lock lock(m_mutex);
        m_changed.wait(lock, [this] { return !m_ready.empty(); });
        result = std::move(m_ready.front());
        m_ready.erase(m_ready.begin());
        m_spares.push_back(std::move(spare));
    }
    m_changed.notify_all();
    return result;
}

bool FRAME_COMPRESSOR::next(FRAME_BLOCK& block, std::string& message)
{
    if (m_given == m_source.size()) {
        m_at_end = true;
        return false;
    }
    RESULT result = take(std::move(block));
    block = std::move(result.block);
    if (result.failure) {
        std::rethrow_exception(result.failure);
    }
    if (!result.good) {
        message = result.message;
        return false;
    }
    m_given += block.plain.size();
    return true;
}
