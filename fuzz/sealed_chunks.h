#ifndef SEALED_CHUNKS_H
#define SEALED_CHUNKS_H

#include "chunk_file.h"

#include <algorithm>

/// A file of chunks whose lengths and checksums are right, so that what is in them is read. The input is, for
/// each chunk, its tag, the length of its payload in two bytes, and the payload.
inline std::vector<std::uint8_t> sealed_chunks(const CHUNK_SIGNATURE& signature,
                                               std::span<const std::uint8_t> input)
{
    MEMORY_SINK sink;
    CHUNK_WRITER writer(sink);
    std::string message;
    writer.raw(signature, message);
    while (input.size() >= 6) {
        CHUNK_TAG tag;
        std::copy_n(input.begin(), tag.size(), tag.begin());
        const std::size_t length =
            std::min<std::size_t>(input[4] | std::size_t{input[5]} << 8, input.size() - 6);
        writer.chunk(tag, {}, input.subspan(6, length), message);
        input = input.subspan(6 + length);
    }
    writer.flush(message);
    return sink.take();
}

#endif
