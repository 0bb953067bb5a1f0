#include "frame_decoder.h"

#include <lz4.h>
#include <zstd.h>

#include <algorithm>
#include <new>

FRAME_DECODER::FRAME_DECODER() : m_zstd(ZSTD_createDCtx())
{
    if (!m_zstd)
        throw std::bad_alloc();
}

FRAME_DECODER::~FRAME_DECODER() = default;

void FRAME_DECODER::FREE_ZSTD::operator()(ZSTD_DCtx* context) const
{
    ZSTD_freeDCtx(context);
}

bool FRAME_DECODER::decode(STREAM_METHOD method, std::span<const std::uint8_t> stored, std::size_t length,
                           std::vector<std::uint8_t>& plain, std::string& reason)
{
    plain.resize(length);
    bool good = false;
    switch (method) {
    case STREAM_METHOD::PLAIN:
        good = stored.size() == length;
        if (good)
            std::copy(stored.begin(), stored.end(), plain.begin());
        break;
    case STREAM_METHOD::LZ4:
        good = LZ4_decompress_safe(reinterpret_cast<const char*>(stored.data()),
                                   reinterpret_cast<char*>(plain.data()), static_cast<int>(stored.size()),
                                   static_cast<int>(length)) == static_cast<int>(length);
        break;
    case STREAM_METHOD::ZSTD:
        good =
            ZSTD_decompressDCtx(m_zstd.get(), plain.data(), length, stored.data(), stored.size()) == length;
        break;
    }
    if (!good)
        reason = "the " + stream_method_name(method) + " frames do not decode to " + std::to_string(length) +
                 " bytes";
    return good;
}

std::string stream_part_name(STREAM_PART part)
{
    switch (part) {
    case STREAM_PART::PERIPHERY:
        return "periphery data";
    case STREAM_PART::CORE:
        return "core data";
    case STREAM_PART::FIRMWARE:
        return "firmware";
    case STREAM_PART::BOOTLOADER:
        return "bootloader";
    }
    return {};
}

std::string stream_method_name(STREAM_METHOD method)
{
    switch (method) {
    case STREAM_METHOD::PLAIN:
        return "plain";
    case STREAM_METHOD::LZ4:
        return "LZ4";
    case STREAM_METHOD::ZSTD:
        return "Zstandard";
    }
    return {};
}
