#ifndef STREAM_ASSEMBLY_H
#define STREAM_ASSEMBLY_H

#include "atomic_file.h"
#include "byte_source.h"
#include "frame_sealer.h"
#include "stream_signer.h"

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace Botan
{
class HashFunction;
}

/// Collects a configuration stream: small things as bytes, transformed frames in a spool file, plain frames
/// as references to the input.
class STREAM_ASSEMBLY
{
public:
    explicit STREAM_ASSEMBLY(const std::string& spool_directory);
    ~STREAM_ASSEMBLY();
    STREAM_ASSEMBLY(const STREAM_ASSEMBLY&) = delete;
    STREAM_ASSEMBLY& operator=(const STREAM_ASSEMBLY&) = delete;

    /// Sync word and begin packet.
    void begin(std::size_t images);
    /// A packet that is kept in memory.
    void packet(std::uint8_t opcode, std::span<const std::uint8_t> payload);
    /// What follows, up to the next, is one image.
    void begin_image(bool is_signed);
    /// What the encryption of the image's first frames is bound to: all that stands before them.
    FRAME_SEALER::CHAIN chain_start();
    /// Signs the image up to here.
    bool sign(const STREAM_SIGNER& signer, std::string& message);

    void memory(std::span<const std::uint8_t> bytes);
    /// `bytes` are what `source` holds.
    void reference(std::shared_ptr<const BYTE_SOURCE> source, std::span<const std::uint8_t> bytes);
    bool spool(std::span<const std::uint8_t> bytes, std::string& message);

    /// Ends the stream, which is null with a sentence in `message` when its spool cannot be read.
    std::shared_ptr<const BYTE_SOURCE> finish(std::string& message);

private:
    struct PIECE {
        std::shared_ptr<const BYTE_SOURCE> source; ///< null: a range of the spool
        std::uint64_t offset;
        std::uint64_t length;
    };

    void hash(std::span<const std::uint8_t> bytes);
    void flush_memory();

    std::string m_spool_directory;
    std::unique_ptr<SPOOL_FILE> m_spool;
    std::vector<std::uint8_t> m_memory;
    std::vector<PIECE> m_pieces;
    std::unique_ptr<Botan::HashFunction> m_hash;
    std::unique_ptr<Botan::HashFunction> m_start_hash;  ///< up to the image's first frames
    std::unique_ptr<Botan::HashFunction> m_signed_hash; ///< of an image that is signed
};

#endif
