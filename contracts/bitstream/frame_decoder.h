#ifndef FRAME_DECODER_H
#define FRAME_DECODER_H

#include "stream_reader.h"

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

struct ZSTD_DCtx_s;

/// Gives the frames of a packet back as they were before they were compressed. The work space is kept from
/// packet to packet.
class FRAME_DECODER
{
public:
    FRAME_DECODER();
    ~FRAME_DECODER();
    FRAME_DECODER(const FRAME_DECODER&) = delete;
    FRAME_DECODER& operator=(const FRAME_DECODER&) = delete;

    /// `length` bytes into `plain`. False with the reason when `stored` are not the frames of so many.
    bool decode(STREAM_METHOD method, std::span<const std::uint8_t> stored, std::size_t length,
                std::vector<std::uint8_t>& plain, std::string& reason);

private:
    struct FREE_ZSTD {
        void operator()(ZSTD_DCtx_s* context) const;
    };
    std::unique_ptr<ZSTD_DCtx_s, FREE_ZSTD> m_zstd;
};

#endif
