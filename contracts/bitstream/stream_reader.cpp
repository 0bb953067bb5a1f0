#include "stream_reader.h"

#include "firmware_archive.h"
#include "frame_decoder.h"
#include "key_chain.h"
#include "little_endian.h"
#include "stream_packets.h"

#include <botan/hash.h>

#include <algorithm>
#include <memory>

namespace
{

/// The walk over one stream. Every step returns false with the reason of a fault at m_offset.
class STREAM_WALK
{
public:
    STREAM_WALK(const BYTE_SOURCE& bytes, STREAM_FACTS& facts, STREAM_DATA_SINK* data)
        : m_bytes(bytes), m_facts(facts), m_data(data),
          m_hash(Botan::HashFunction::create_or_throw("SHA-256"))
    {
    }

    bool run(bool whole, std::string& reason)
    {
        if (!is_configuration_stream(m_bytes)) {
            reason = "there is no sync word";
            return false;
        }
        m_hash->update(STREAM_SYNC_WORD.data(), STREAM_SYNC_WORD.size());
        m_end = STREAM_SYNC_WORD.size();
        bool ended = false;
        while (!ended) {
            m_offset = m_end;
            if (!read_packet(reason) || !take_packet(ended, reason))
                return false;
            if (m_signed_hash)
                m_signed_hash->update(m_packet.data(), m_packet.size());
            ++m_facts.packets;
        }
        m_facts.size = m_end;
        m_offset = m_end;
        if (whole && m_end != m_bytes.size()) {
            reason = std::to_string(m_bytes.size() - m_end) + " bytes follow the end packet";
            return false;
        }
        return true;
    }

    std::uint64_t offset() const { return m_offset; }
    /// Whether the fault lies with the source or the sink, not with the stream.
    bool failed_outside() const { return m_failed_outside; }

private:
    bool read_bytes(std::span<std::uint8_t> into, std::string& reason)
    {
        m_failed_outside = !m_bytes.read(m_offset, into, reason);
        return !m_failed_outside;
    }
    bool read_packet(std::string& reason);
    bool take_packet(bool& ended, std::string& reason);
    bool take_begin(std::string& reason);
    bool take_device(std::string& reason);
    bool take_record(std::string& reason);
    bool take_frames(std::string& reason);
    bool take_plain_frames(STREAM_METHOD method, std::size_t part, std::span<const std::uint8_t> stored,
                           std::size_t length, std::string& reason);
    bool take_update_info(std::string& reason);
    bool take_key_chain(std::string& reason);
    bool take_firmware_info(std::string& reason);
    bool take_signature(std::string& reason);
    bool take_end(std::string& reason);
    bool finish_image(std::string& reason);

    std::span<const std::uint8_t> payload() const
    {
        return std::span<const std::uint8_t>(m_packet).subspan(PACKET_HEADER_SIZE, m_length);
    }

    const BYTE_SOURCE& m_bytes;
    STREAM_FACTS& m_facts;
    STREAM_DATA_SINK* m_data;
    std::unique_ptr<Botan::HashFunction> m_hash;
    FRAME_DECODER m_decoder;
    std::uint64_t m_offset = 0; ///< of the packet in work
    bool m_failed_outside = false;
    std::uint64_t m_end = 0; ///< of what has been read
    std::vector<std::uint8_t> m_packet;
    std::vector<std::uint8_t> m_plain;
    std::uint8_t m_opcode = 0;
    std::uint32_t m_length = 0;
    unsigned m_image_count = 0;
    std::uint8_t m_last_record = 0; ///< records come in ascending order of opcodes, then the frames
    std::size_t m_part = 0;         ///< of the last frames, so are the parts
    std::uint64_t m_part_position = 0;
    std::array<std::uint64_t, STREAM_PART_COUNT> m_received{};
    bool m_signature_due = false;
    std::unique_ptr<Botan::HashFunction> m_signed_hash;   ///< of an image that is signed
    std::unique_ptr<Botan::HashFunction> m_firmware_hash; ///< of co-signed firmware that can be read
    std::vector<std::uint8_t> m_maker_signature;
    std::optional<ECDSA_PUBLIC_KEY> m_chain_end; ///< who must sign the image
};

bool STREAM_WALK::read_packet(std::string& reason)
{
    std::array<std::uint8_t, PACKET_HEADER_SIZE> header;
    const std::uint64_t left = m_bytes.size() - m_offset;
    if (left < header.size()) {
        reason = "the stream ends without an end packet";
        return false;
    }
    if (!read_bytes(header, reason))
        return false;
    RECORD_READER reader(header);
    m_opcode = reader.u8();
    m_length = reader.u24();
    if (m_length > FRAMES_HEADER_SIZE + SEAL_SIZE + FRAMES_LIMIT) {
        reason = "the packet claims a length of " + std::to_string(m_length) + " bytes";
        return false;
    }
    const std::size_t size = PACKET_HEADER_SIZE + m_length + PACKET_CRC_SIZE;
    if (left < size) {
        reason = "the stream ends within the packet";
        return false;
    }
    m_packet.resize(size);
    if (!read_bytes(m_packet, reason))
        return false;
    const auto checked = std::span<const std::uint8_t>(m_packet).first(size - PACKET_CRC_SIZE);
    RECORD_READER stated(std::span<const std::uint8_t>(m_packet).last(PACKET_CRC_SIZE));
    if (crc32(checked) != stated.u32()) {
        reason = "the checksum of the packet does not fit";
        return false;
    }
    if (m_opcode != OPCODE_END)
        m_hash->update(m_packet.data(), m_packet.size());
    m_end = m_offset + size;
    return true;
}

bool STREAM_WALK::take_packet(bool& ended, std::string& reason)
{
    if (m_facts.packets == 0)
        return take_begin(reason);
    switch (m_opcode) {
    case OPCODE_DEVICE:
        return take_device(reason);
    case OPCODE_SCHEME:
    case OPCODE_OPTIONS:
    case OPCODE_OPTION_BLOCK:
    case OPCODE_REGIONS:
    case OPCODE_KEY_INFO:
    case OPCODE_FIRMWARE_INFO:
    case OPCODE_UPDATE_INFO:
    case OPCODE_KEY_CHAIN:
        return take_record(reason);
    case OPCODE_FRAMES + static_cast<std::uint8_t>(STREAM_METHOD::PLAIN):
    case OPCODE_FRAMES + static_cast<std::uint8_t>(STREAM_METHOD::LZ4):
    case OPCODE_FRAMES + static_cast<std::uint8_t>(STREAM_METHOD::ZSTD):
    case OPCODE_ENCRYPTED_FRAMES + static_cast<std::uint8_t>(STREAM_METHOD::PLAIN):
    case OPCODE_ENCRYPTED_FRAMES + static_cast<std::uint8_t>(STREAM_METHOD::LZ4):
    case OPCODE_ENCRYPTED_FRAMES + static_cast<std::uint8_t>(STREAM_METHOD::ZSTD):
        return take_frames(reason);
    case OPCODE_SIGNATURE:
        return take_signature(reason);
    case OPCODE_END:
        ended = true;
        return take_end(reason);
    default:
        reason = "the packet has the unknown opcode " + std::to_string(m_opcode);
        return false;
    }
}

bool STREAM_WALK::take_begin(std::string& reason)
{
    RECORD_READER reader(payload());
    m_facts.version = reader.u16();
    m_image_count = reader.u16();
    if (m_opcode != OPCODE_BEGIN || !reader.used_up() || m_image_count == 0) {
        reason = "the stream does not start with a begin packet";
        return false;
    }
    if (m_facts.version != STREAM_VERSION) {
        reason = "the stream has version " + std::to_string(m_facts.version) +
                 "; this program reads version " + std::to_string(STREAM_VERSION);
        return false;
    }
    return true;
}

bool STREAM_WALK::take_device(std::string& reason)
{
    if (!m_facts.images.empty() && !finish_image(reason))
        return false;
    if (m_facts.images.size() == m_image_count) {
        reason = "there are more images than the " + std::to_string(m_image_count) + " announced";
        return false;
    }
    RECORD_READER reader(payload());
    STREAM_IMAGE_FACTS image;
    const std::uint8_t flags = reader.u8();
    for (std::uint64_t& length : image.part_length)
        length = reader.u64();
    const std::size_t record = reader.left();
    if (!reader.good() || (flags & ~(DEVICE_FLAG_PARTIAL | DEVICE_FLAG_SIGNED | DEVICE_FLAG_DECOMPRESSION |
                                     DEVICE_FLAG_FACTORY | DEVICE_FLAG_APPLICATION)) != 0) {
        reason = "the device packet is malformed";
        return false;
    }
    if (!decode_device(reader.bytes(record), image.device, reason))
        return false;
    image.partial = (flags & DEVICE_FLAG_PARTIAL) != 0;
    image.decompression_during_pr = (flags & DEVICE_FLAG_DECOMPRESSION) != 0;
    image.replaces_factory = (flags & DEVICE_FLAG_FACTORY) != 0;
    image.application = (flags & DEVICE_FLAG_APPLICATION) != 0;
    image.offset = m_offset;
    m_facts.images.push_back(image);
    m_last_record = OPCODE_DEVICE;
    m_part = 0;
    m_part_position = 0;
    m_received = {};
    m_signature_due = (flags & DEVICE_FLAG_SIGNED) != 0;
    m_signed_hash = m_signature_due ? Botan::HashFunction::create_or_throw("SHA-384") : nullptr;
    m_firmware_hash.reset();
    m_chain_end.reset();
    return true;
}

bool STREAM_WALK::take_record(std::string& reason)
{
    if (m_facts.images.empty() || m_opcode <= m_last_record) {
        reason = "the packet with opcode " + std::to_string(m_opcode) + " is out of place";
        return false;
    }
    m_last_record = m_opcode;
    STREAM_IMAGE_FACTS& image = m_facts.images.back();
    if (m_opcode == OPCODE_OPTIONS)
        return decode_options(payload(), image.options, reason);
    if (m_opcode == OPCODE_OPTION_BLOCK)
        return decode_option_block(payload(), image.option_block, image.option_word, reason);
    if (m_opcode == OPCODE_REGIONS)
        return decode_regions(payload(), image.regions, reason);
    if (m_opcode == OPCODE_KEY_INFO)
        return decode_key_info(payload(), image.key.emplace(), reason);
    if (m_opcode == OPCODE_FIRMWARE_INFO)
        return take_firmware_info(reason);
    if (m_opcode == OPCODE_UPDATE_INFO)
        return take_update_info(reason);
    if (m_opcode == OPCODE_KEY_CHAIN)
        return take_key_chain(reason);
    std::uint32_t scheme = 0;
    if (!decode_scheme(payload(), scheme, reason))
        return false;
    image.scheme = scheme;
    return true;
}

bool STREAM_WALK::take_update_info(std::string& reason)
{
    RECORD_READER reader(payload());
    UPDATE_INFO& update = m_facts.images.back().update.emplace();
    update.version = reader.u32();
    const std::uint8_t flags = reader.u8();
    const std::uint32_t zeros = reader.u24();
    if (!reader.used_up() || (flags & ~UPDATE_FLAG_BOOT_INFO) != 0 || zeros != 0) {
        reason = "the update packet is malformed";
        return false;
    }
    update.replaces_boot_info = flags != 0;
    return true;
}

bool STREAM_WALK::take_key_chain(std::string& reason)
{
    KEY_CHAIN chain;
    if (!decode_key_chain(payload(), chain, reason))
        return false;
    m_chain_end = chain.back().key;
    m_facts.images.back().root = chain.front().signer;
    return true;
}

bool STREAM_WALK::take_firmware_info(std::string& reason)
{
    const auto record = payload();
    if (record.size() < FIRMWARE_HEADER_SIZE) {
        reason = "the firmware packet is malformed";
        return false;
    }
    STREAM_IMAGE_FACTS& image = m_facts.images.back();
    STREAM_FIRMWARE_FACTS& firmware = image.firmware.emplace();
    RECORD_READER reader(record.subspan(12));
    firmware.family = reader.u32();
    const std::uint64_t length = reader.u64();
    firmware.release = reader.u32();
    if (length != image.part_length[static_cast<std::size_t>(STREAM_PART::FIRMWARE)]) {
        reason = "the firmware packet is for firmware of another length";
        return false;
    }
    if (!image.is_encrypted()) {
        m_firmware_hash = Botan::HashFunction::create_or_throw("SHA-384");
        m_firmware_hash->update(record.data(), FIRMWARE_HEADER_SIZE);
    }
    return decode_signature(record.subspan(FIRMWARE_HEADER_SIZE), firmware.key, m_maker_signature, reason);
}

bool STREAM_WALK::take_signature(std::string& reason)
{
    const bool prepared =
        !m_facts.images.empty() && m_facts.images.back().key && !m_facts.images.back().is_encrypted();
    if (prepared) {
        reason = "an image whose encryption is to be completed is signed already";
        return false;
    }
    if (!m_signature_due || m_last_record != OPCODE_FRAMES) {
        reason = "the signature is out of place";
        return false;
    }
    SHA384_DIGEST digest;
    m_signed_hash->final(digest.data());
    m_signed_hash.reset();
    m_signature_due = false;
    m_last_record = OPCODE_SIGNATURE;
    ECDSA_PUBLIC_KEY key;
    std::vector<std::uint8_t> signature;
    if (!decode_signature(payload(), key, signature, reason))
        return false;
    if (!ecdsa_verify(key, digest, signature)) {
        reason = "the signature does not fit the image";
        return false;
    }
    if (m_chain_end && *m_chain_end != key) {
        reason = "the signature is not by the last key of the key chain";
        return false;
    }
    m_facts.images.back().signer = key;
    return true;
}

bool STREAM_WALK::take_frames(std::string& reason)
{
    RECORD_READER reader(payload());
    const std::size_t part = reader.u8();
    const std::uint32_t zeros = reader.u24();
    const std::uint32_t length = reader.u32();
    const std::uint64_t offset = reader.u64();
    if (m_facts.images.empty()) {
        reason = "frames come before the device packet";
        return false;
    }
    const bool encrypted = m_opcode >= OPCODE_ENCRYPTED_FRAMES;
    if (m_last_record == OPCODE_SIGNATURE || encrypted != m_facts.images.back().is_encrypted()) {
        reason = m_last_record == OPCODE_SIGNATURE ? "frames come behind the signature"
                 : encrypted                       ? "encrypted frames come without a key info packet"
                                                   : "frames in the clear come in an encrypted image";
        return false;
    }
    if (!reader.good() || zeros != 0 || part >= STREAM_PART_COUNT || length == 0 || length > FRAMES_LIMIT) {
        reason = "the frames packet is malformed";
        return false;
    }
    STREAM_IMAGE_FACTS& image = m_facts.images.back();
    if (part != m_part)
        m_part_position = 0;
    const std::string name = stream_part_name(static_cast<STREAM_PART>(part));
    if (part < m_part || offset != m_part_position) {
        reason =
            "the frames of the " + name + " are for offset " + std::to_string(offset) + " and out of order";
        return false;
    }
    if (length > image.part_length[part] - m_received[part]) {
        reason = "the frames exceed the " + std::to_string(image.part_length[part]) +
                 " bytes announced for the " + name;
        return false;
    }
    const auto method =
        static_cast<STREAM_METHOD>(m_opcode - (encrypted ? OPCODE_ENCRYPTED_FRAMES : OPCODE_FRAMES));
    const std::size_t stored = reader.left();
    if (encrypted && (stored <= SEAL_SIZE || stored > SEAL_SIZE + length ||
                      (method == STREAM_METHOD::PLAIN && stored != SEAL_SIZE + length))) {
        reason = "the encrypted frames have a wrong length";
        return false;
    }
    if (encrypted && m_data != nullptr) {
        m_failed_outside = true;
        reason = "The configuration data is encrypted and cannot be taken out.";
        return false;
    }
    if (!encrypted && !take_plain_frames(method, part, reader.bytes(stored), length, reason))
        return false;
    m_last_record = OPCODE_FRAMES;
    m_part = part;
    m_part_position += length;
    m_received[part] += length;
    image.stored_length[part] += stored;
    ++image.packets_by_method[static_cast<std::size_t>(method)];
    return true;
}

bool STREAM_WALK::take_plain_frames(STREAM_METHOD method, std::size_t part,
                                    std::span<const std::uint8_t> stored, std::size_t length,
                                    std::string& reason)
{
    if (!m_decoder.decode(method, stored, length, m_plain, reason))
        return false;
    if (m_firmware_hash && static_cast<STREAM_PART>(part) == STREAM_PART::FIRMWARE)
        m_firmware_hash->update(m_plain.data(), m_plain.size());
    m_failed_outside = m_data != nullptr && !m_data->write(m_facts.images.size() - 1,
                                                           static_cast<STREAM_PART>(part), m_plain, reason);
    return !m_failed_outside;
}

bool STREAM_WALK::finish_image(std::string& reason)
{
    const STREAM_IMAGE_FACTS& image = m_facts.images.back();
    for (std::size_t part = 0; part < STREAM_PART_COUNT; ++part) {
        if (m_received[part] == image.part_length[part])
            continue;
        reason = "image " + std::to_string(m_facts.images.size()) + " has " +
                 std::to_string(m_received[part]) + " of the " + std::to_string(image.part_length[part]) +
                 " bytes announced for the " + stream_part_name(static_cast<STREAM_PART>(part));
        return false;
    }
    if (image.root && !image.signer) {
        reason = "image " + std::to_string(m_facts.images.size()) + " has a key chain and no signature";
        return false;
    }
    if (m_signature_due) {
        reason = "image " + std::to_string(m_facts.images.size()) + " has no signature, which it announces";
        return false;
    }
    if (m_firmware_hash) {
        SHA384_DIGEST digest;
        m_firmware_hash->final(digest.data());
        if (!ecdsa_verify(image.firmware->key, digest, m_maker_signature)) {
            reason = "the signature of the maker does not fit the firmware";
            return false;
        }
    }
    return true;
}

bool STREAM_WALK::take_end(std::string& reason)
{
    if (m_facts.images.size() != m_image_count) {
        reason = "the stream ends after " + std::to_string(m_facts.images.size()) + " of " +
                 std::to_string(m_image_count) + " images";
        return false;
    }
    if (!finish_image(reason))
        return false;
    const auto stated = payload();
    const auto computed = m_hash->final_stdvec();
    if (stated.size() != computed.size() || !std::equal(stated.begin(), stated.end(), computed.begin())) {
        reason = "the digest does not fit the stream";
        return false;
    }
    std::copy(stated.begin(), stated.end(), m_facts.digest.begin());
    return true;
}

} // namespace

bool is_configuration_stream(const BYTE_SOURCE& bytes)
{
    std::array<std::uint8_t, STREAM_SYNC_WORD.size()> first;
    std::string ignored;
    return bytes.size() >= first.size() && bytes.read(0, first, ignored) && first == STREAM_SYNC_WORD;
}

bool read_configuration_stream(const BYTE_SOURCE& bytes, bool whole, STREAM_FACTS& facts,
                               STREAM_DATA_SINK* data, std::string& message)
{
    facts = {};
    STREAM_WALK walk(bytes, facts, data);
    std::string reason;
    if (walk.run(whole, reason))
        return true;
    message = walk.failed_outside() ? reason
                                    : "The configuration stream is damaged at offset " +
                                          std::to_string(walk.offset()) + ": " + reason + ".";
    return false;
}
