#include "stream_assembly.h"

#include "image_parts.h"
#include "little_endian.h"
#include "stream_packets.h"

#include <botan/hash.h>

#include <algorithm>

STREAM_ASSEMBLY::STREAM_ASSEMBLY(const std::string& spool_directory)
    : m_spool_directory(spool_directory), m_hash(Botan::HashFunction::create_or_throw("SHA-256"))
{
}

STREAM_ASSEMBLY::~STREAM_ASSEMBLY() = default;

void STREAM_ASSEMBLY::begin(std::size_t images)
{
    memory(STREAM_SYNC_WORD);
    RECORD_WRITER begin;
    begin.u16(STREAM_VERSION);
    begin.u16(static_cast<std::uint16_t>(images));
    packet(OPCODE_BEGIN, begin.content());
}

void STREAM_ASSEMBLY::packet(std::uint8_t opcode, std::span<const std::uint8_t> payload)
{
    memory(encode_packet(opcode, payload));
}

void STREAM_ASSEMBLY::begin_image(bool is_signed)
{
    m_start_hash = Botan::HashFunction::create_or_throw("SHA-256");
    m_signed_hash = is_signed ? Botan::HashFunction::create_or_throw("SHA-384") : nullptr;
}

FRAME_SEALER::CHAIN STREAM_ASSEMBLY::chain_start()
{
    const auto digest = m_start_hash->final_stdvec();
    m_start_hash.reset();
    FRAME_SEALER::CHAIN chain;
    std::copy_n(digest.begin(), chain.size(), chain.begin());
    return chain;
}

bool STREAM_ASSEMBLY::sign(const STREAM_SIGNER& signer, std::string& message)
{
    SHA384_DIGEST digest;
    m_signed_hash->final(digest.data());
    m_signed_hash.reset();
    std::vector<std::uint8_t> signature;
    if (!signer.sign(digest, signature, message))
        return false;
    packet(OPCODE_SIGNATURE, encode_signature(signer.public_key(), signature));
    return true;
}

void STREAM_ASSEMBLY::memory(std::span<const std::uint8_t> bytes)
{
    hash(bytes);
    m_memory.insert(m_memory.end(), bytes.begin(), bytes.end());
}

void STREAM_ASSEMBLY::reference(std::shared_ptr<const BYTE_SOURCE> source,
                                std::span<const std::uint8_t> bytes)
{
    hash(bytes);
    flush_memory();
    m_pieces.push_back({std::move(source), 0, 0});
}

bool STREAM_ASSEMBLY::spool(std::span<const std::uint8_t> bytes, std::string& message)
{
    hash(bytes);
    if (!m_spool)
        m_spool = SPOOL_FILE::create(m_spool_directory, message);
    if (!m_spool)
        return false;
    const bool goes_on = m_memory.empty() && !m_pieces.empty() && !m_pieces.back().source;
    flush_memory();
    if (!goes_on)
        m_pieces.push_back({nullptr, m_spool->size(), 0});
    if (!m_spool->write(bytes, message))
        return false;
    m_pieces.back().length += bytes.size();
    return true;
}

std::shared_ptr<const BYTE_SOURCE> STREAM_ASSEMBLY::finish(std::string& message)
{
    packet(OPCODE_END, m_hash->copy_state()->final_stdvec());
    flush_memory();
    std::shared_ptr<const BYTE_SOURCE> spooled;
    if (m_spool && !(spooled = m_spool->source(message)))
        return nullptr;
    const auto stream = std::make_shared<CONCATENATED_SOURCE>();
    for (PIECE& piece : m_pieces)
        stream->append(piece.source ? piece.source
                                    : std::make_shared<RANGE_SOURCE>(spooled, piece.offset, piece.length));
    return stream;
}

void STREAM_ASSEMBLY::hash(std::span<const std::uint8_t> bytes)
{
    m_hash->update(bytes.data(), bytes.size());
    if (m_start_hash)
        m_start_hash->update(bytes.data(), bytes.size());
    if (m_signed_hash)
        m_signed_hash->update(bytes.data(), bytes.size());
}

void STREAM_ASSEMBLY::flush_memory()
{
    if (!m_memory.empty())
        m_pieces.push_back({std::make_shared<MEMORY_SOURCE>(std::move(m_memory)), 0, 0});
    m_memory.clear();
}
