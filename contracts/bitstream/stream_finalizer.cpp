#include "stream_finalizer.h"

#include "frame_sealer.h"
#include "little_endian.h"
#include "stream_assembly.h"
#include "stream_packets.h"
#include "stream_reader.h"

#include <algorithm>
#include <array>
#include <optional>

namespace
{

/// Goes through the packets of a stream that has been verified.
class FINALIZER
{
public:
    FINALIZER(const BYTE_SOURCE& prepared, const STREAM_FACTS& facts, const STREAM_KEY& key,
              const STREAM_SIGNER& signer, const std::string& spool_directory)
        : m_prepared(prepared), m_facts(facts), m_key(key), m_signer(signer), m_stream(spool_directory)
    {
    }

    std::shared_ptr<const BYTE_SOURCE> run(std::string& message)
    {
        m_stream.begin(m_facts.images.size());
        std::uint64_t at = STREAM_SYNC_WORD.size();
        while (read_packet(at, message)) {
            const std::uint8_t opcode = m_packet.front();
            at += m_packet.size();
            if (opcode == OPCODE_BEGIN)
                continue;
            if ((opcode == OPCODE_DEVICE || opcode == OPCODE_END) && !finish_image(message))
                return nullptr;
            if (opcode == OPCODE_END)
                return m_stream.finish(message);
            if (opcode == OPCODE_DEVICE)
                begin_image();
            if (!take(opcode, message))
                return nullptr;
        }
        return nullptr;
    }

private:
    bool read_packet(std::uint64_t at, std::string& message)
    {
        std::array<std::uint8_t, PACKET_HEADER_SIZE> header;
        if (!m_prepared.read(at, header, message))
            return false;
        RECORD_READER reader(header);
        reader.u8();
        m_packet.resize(PACKET_HEADER_SIZE + reader.u24() + PACKET_CRC_SIZE);
        return m_prepared.read(at, m_packet, message);
    }

    std::span<std::uint8_t> payload()
    {
        return std::span(m_packet).subspan(PACKET_HEADER_SIZE,
                                           m_packet.size() - PACKET_HEADER_SIZE - PACKET_CRC_SIZE);
    }

    void begin_image()
    {
        const STREAM_IMAGE_FACTS& image = m_facts.images[m_image++];
        m_completes = image.key && image.key->prepared;
        m_stream.begin_image(m_completes);
    }

    bool finish_image(std::string& message)
    {
        const bool signs = m_image != 0 && m_completes;
        m_sealer.reset();
        return !signs || m_stream.sign(m_signer, message);
    }

    bool take(std::uint8_t opcode, std::string& message)
    {
        if (!m_completes)
            return m_stream.spool(m_packet, message);
        if (opcode >= OPCODE_FRAMES)
            return seal(opcode, message);
        if (opcode == OPCODE_DEVICE)
            payload().front() |= DEVICE_FLAG_SIGNED;
        if (opcode == OPCODE_KEY_INFO) {
            KEY_INFO info = *m_facts.images[m_image - 1].key;
            info.prepared = false;
            info.key_bits = m_key.bits();
            info.id = m_key.id();
            m_stream.packet(opcode, encode_key_info(info));
        } else {
            m_stream.packet(opcode, payload());
        }
        return true;
    }

    bool seal(std::uint8_t opcode, std::string& message)
    {
        if (!m_sealer)
            m_sealer.emplace(m_key, m_stream.chain_start());
        const auto sealed_opcode =
            static_cast<std::uint8_t>(opcode - OPCODE_FRAMES + OPCODE_ENCRYPTED_FRAMES);
        const auto frames_header = payload().first(FRAMES_HEADER_SIZE);
        std::vector<std::uint8_t> bound = {sealed_opcode};
        bound.insert(bound.end(), frames_header.begin(), frames_header.end());
        SECRET_BYTES sealed;
        m_sealer->seal(bound, payload().subspan(FRAMES_HEADER_SIZE), sealed);
        RECORD_WRITER packet;
        packet.u8(sealed_opcode);
        packet.u24(static_cast<std::uint32_t>(FRAMES_HEADER_SIZE + sealed.size()));
        packet.bytes(frames_header);
        packet.bytes(sealed);
        packet.u32(crc32(packet.content()));
        return m_stream.spool(packet.content(), message);
    }

    const BYTE_SOURCE& m_prepared;
    const STREAM_FACTS& m_facts;
    const STREAM_KEY& m_key;
    const STREAM_SIGNER& m_signer;
    STREAM_ASSEMBLY m_stream;
    std::vector<std::uint8_t> m_packet;
    std::size_t m_image = 0;
    bool m_completes = false; ///< the image in work
    std::optional<FRAME_SEALER> m_sealer;
};

} // namespace

std::shared_ptr<const BYTE_SOURCE> finalize_stream(const BYTE_SOURCE& prepared, const STREAM_KEY& key,
                                                   const STREAM_SIGNER& signer,
                                                   const std::string& spool_directory, std::string& message)
{
    STREAM_FACTS facts;
    if (!read_configuration_stream(prepared, true, facts, nullptr, message))
        return nullptr;
    if (std::none_of(facts.images.begin(), facts.images.end(),
                     [](const STREAM_IMAGE_FACTS& image) { return image.key && image.key->prepared; })) {
        message = "The stream has no image whose encryption is to be completed.";
        return nullptr;
    }
    return FINALIZER(prepared, facts, key, signer, spool_directory).run(message);
}
