#ifndef FRAME_COMPRESSOR_H
#define FRAME_COMPRESSOR_H

#include "byte_source.h"
#include "secret_bytes.h"
#include "stream_reader.h"

#include <condition_variable>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

/// One run of configuration data, as a frames packet carries it.
struct FRAME_BLOCK {
    std::uint64_t offset = 0; ///< in the source
    std::vector<std::uint8_t> plain;
    STREAM_METHOD method = STREAM_METHOD::PLAIN;
    std::vector<std::uint8_t> compressed; ///< unless the method is PLAIN
    SECRET_BYTES sealed;                  ///< what the last step has made of it; empty without one

    /// Plain or compressed, by the method.
    const std::vector<std::uint8_t>& stored() const
    {
        return method == STREAM_METHOD::PLAIN ? plain : compressed;
    }
};

/// Cuts a source into blocks of at most FRAMES_LIMIT bytes and compresses each by itself. A block that does
/// not get smaller stays plain. The next blocks are read and compressed on another thread while the caller
/// works with the one it has; memory is that of four blocks.
class FRAME_COMPRESSOR
{
public:
    /// What is done with each block, in order, on the other thread.
    using LAST_STEP = std::function<void(FRAME_BLOCK& block)>;

    FRAME_COMPRESSOR(const BYTE_SOURCE& source, STREAM_METHOD method, LAST_STEP last_step = {});
    ~FRAME_COMPRESSOR();
    FRAME_COMPRESSOR(const FRAME_COMPRESSOR&) = delete;
    FRAME_COMPRESSOR& operator=(const FRAME_COMPRESSOR&) = delete;

    /// The next block in `block`, whose buffers are used again. False at the end of the source, and, with a
    /// sentence in `message`, when it cannot be read. What the other thread throws comes out of this call.
    bool next(FRAME_BLOCK& block, std::string& message);
    /// Whether the last block has been given out.
    bool at_end() const { return m_at_end; }

private:
    class CODER;
    struct RESULT {
        bool good = false;
        FRAME_BLOCK block;
        std::string message;
        std::exception_ptr failure;
    };
    void make_block(RESULT& result, std::uint64_t offset) const;
    void work_ahead();
    RESULT take(FRAME_BLOCK spare);

    const BYTE_SOURCE& m_source;
    STREAM_METHOD m_method;
    LAST_STEP m_last_step;
    std::unique_ptr<CODER> m_coder;
    std::uint64_t m_given = 0; ///< bytes of the source in the blocks given out
    bool m_at_end = false;
    std::mutex m_mutex; ///< for the next four
    std::condition_variable m_changed;
    std::vector<RESULT> m_ready;       ///< the oldest first
    std::vector<FRAME_BLOCK> m_spares; ///< blocks whose buffers wait for use
    bool m_stop = false;
    std::thread m_worker; ///< none where there is nothing to do but to read
};

#endif
