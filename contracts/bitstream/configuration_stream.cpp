#include "configuration_stream.h"

#include "atomic_file.h"
#include "bitstream_file.h"
#include "frame_compressor.h"
#include "little_endian.h"
#include "stream_packets.h"
#include "stream_reader.h"

#include <botan/hash.h>

#include <algorithm>
#include <array>

namespace
{

/// One part of the configuration data of an input.
struct PART_INPUT {
    STREAM_PART part;
    std::shared_ptr<const BYTE_SOURCE> bytes;
    const BITSTREAM_SECTION* section; ///< states the checksum; null for a file of its own
};

struct SECTION_OF_PART {
    STREAM_PART part;
    SECTION_TAG tag;
};
constexpr SECTION_OF_PART SECTIONS_OF_PARTS[] = {{STREAM_PART::PERIPHERY, SECTION_PERIPHERY},
                                                 {STREAM_PART::CORE, SECTION_CORE},
                                                 {STREAM_PART::FIRMWARE, SECTION_FIRMWARE},
                                                 {STREAM_PART::BOOTLOADER, SECTION_BOOTLOADER}};

bool is_selected(STREAM_PART part, STREAM_SELECTION selection)
{
    switch (selection) {
    case STREAM_SELECTION::ALL:
        return true;
    case STREAM_SELECTION::PERIPHERY:
        return part != STREAM_PART::CORE;
    case STREAM_SELECTION::CORE:
        return part == STREAM_PART::CORE;
    }
    return false;
}

/// Collects the stream: small things and compressed frames as bytes, plain frames as references to the input.
class STREAM_ASSEMBLY
{
public:
    explicit STREAM_ASSEMBLY(const std::string& spool_directory)
        : m_spool_directory(spool_directory), m_hash(Botan::HashFunction::create_or_throw("SHA-256"))
    {
    }

    void packet(std::uint8_t opcode, std::span<const std::uint8_t> payload)
    {
        RECORD_WRITER writer;
        writer.u8(opcode);
        writer.u24(static_cast<std::uint32_t>(payload.size()));
        writer.bytes(payload);
        writer.u32(crc32(writer.content()));
        memory(writer.content());
    }

    void memory(std::span<const std::uint8_t> bytes)
    {
        m_hash->update(bytes.data(), bytes.size());
        m_memory.insert(m_memory.end(), bytes.begin(), bytes.end());
    }

    /// `bytes` are what `source` holds.
    void reference(std::shared_ptr<const BYTE_SOURCE> source, std::span<const std::uint8_t> bytes)
    {
        m_hash->update(bytes.data(), bytes.size());
        flush_memory();
        m_pieces.push_back({std::move(source), 0, 0});
    }

    bool spool(std::span<const std::uint8_t> bytes, std::string& message)
    {
        m_hash->update(bytes.data(), bytes.size());
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

    std::vector<std::uint8_t> digest() const { return m_hash->copy_state()->final_stdvec(); }

    std::shared_ptr<const BYTE_SOURCE> finish(std::string& message)
    {
        flush_memory();
        std::shared_ptr<const BYTE_SOURCE> spooled;
        if (m_spool && !(spooled = m_spool->source(message)))
            return nullptr;
        const auto stream = std::make_shared<CONCATENATED_SOURCE>();
        for (PIECE& piece : m_pieces)
            stream->append(piece.source
                               ? piece.source
                               : std::make_shared<RANGE_SOURCE>(spooled, piece.offset, piece.length));
        return stream;
    }

private:
    struct PIECE {
        std::shared_ptr<const BYTE_SOURCE> source; ///< null: a range of the spool
        std::uint64_t offset;
        std::uint64_t length;
    };

    void flush_memory()
    {
        if (!m_memory.empty())
            m_pieces.push_back({std::make_shared<MEMORY_SOURCE>(std::move(m_memory)), 0, 0});
        m_memory.clear();
    }

    std::string m_spool_directory;
    std::unique_ptr<SPOOL_FILE> m_spool;
    std::vector<std::uint8_t> m_memory;
    std::vector<PIECE> m_pieces;
    std::unique_ptr<Botan::HashFunction> m_hash;
};

std::vector<std::uint8_t> frames_header(STREAM_METHOD method, STREAM_PART part, std::uint64_t offset,
                                        std::size_t plain_length, std::size_t stored_length)
{
    RECORD_WRITER writer;
    writer.u8(static_cast<std::uint8_t>(OPCODE_FRAMES + static_cast<std::uint8_t>(method)));
    writer.u24(static_cast<std::uint32_t>(FRAMES_HEADER_SIZE + stored_length));
    writer.u8(static_cast<std::uint8_t>(part));
    writer.u24(0);
    writer.u32(static_cast<std::uint32_t>(plain_length));
    writer.u64(offset);
    return writer.take();
}

bool append_part(const PART_INPUT& input, STREAM_METHOD method, const std::string& name,
                 STREAM_ASSEMBLY& stream, std::string& message)
{
    FRAME_COMPRESSOR compressor(*input.bytes, method);
    FRAME_BLOCK block;
    std::uint32_t section_crc = 0;
    while (compressor.next(block, message)) {
        section_crc = crc32(block.plain, section_crc);
        const bool compressed = block.method != STREAM_METHOD::PLAIN;
        const std::vector<std::uint8_t>& stored = compressed ? block.compressed : block.plain;
        const auto header =
            frames_header(block.method, input.part, block.offset, block.plain.size(), stored.size());
        RECORD_WRITER crc;
        crc.u32(crc32(stored, crc32(header)));
        if (!compressed) {
            stream.memory(header);
            stream.reference(std::make_shared<RANGE_SOURCE>(input.bytes, block.offset, block.plain.size()),
                             stored);
            stream.memory(crc.content());
        } else if (!stream.spool(header, message) || !stream.spool(stored, message) ||
                   !stream.spool(crc.content(), message)) {
            return false;
        }
    }
    if (!compressor.at_end())
        return false;
    if (input.section != nullptr && section_crc != input.section->crc) {
        message = name + " is damaged: the checksum of the " + section_description(input.section->tag) +
                  " (at offset " + std::to_string(input.section->offset) + ") does not fit.";
        return false;
    }
    return true;
}

bool collect_parts(const STREAM_INPUT& input, const BITSTREAM_FILE& file, STREAM_SELECTION selection,
                   std::vector<PART_INPUT>& parts, std::string& message)
{
    for (const SECTION_OF_PART& row : SECTIONS_OF_PARTS) {
        if (!is_selected(row.part, selection))
            continue;
        if (row.part == STREAM_PART::BOOTLOADER && !input.hps_path.empty()) {
            const std::shared_ptr<const BYTE_SOURCE> bytes = FILE_SOURCE::open(input.hps_path, message);
            if (!bytes)
                return false;
            parts.push_back({row.part, bytes, nullptr});
        } else if (file.find(row.tag) != nullptr) {
            parts.push_back({row.part, file.section(row.tag), file.find(row.tag)});
        }
    }
    const bool any = std::any_of(parts.begin(), parts.end(), [](const PART_INPUT& part) {
        return part.bytes->size() != 0 &&
               (part.part == STREAM_PART::CORE || part.part == STREAM_PART::PERIPHERY);
    });
    if (!any) {
        message = input.path + " holds no " +
                  (selection == STREAM_SELECTION::PERIPHERY ? "periphery data." : "core data.");
        return false;
    }
    return true;
}

void append_records(const STREAM_INPUT& input, const BITSTREAM_FILE& file,
                    const std::vector<PART_INPUT>& parts, STREAM_ASSEMBLY& stream)
{
    std::array<std::uint64_t, STREAM_PART_COUNT> lengths{};
    for (const PART_INPUT& part : parts)
        lengths[static_cast<std::size_t>(part.part)] = part.bytes->size();
    RECORD_WRITER device;
    device.u8(file.kind() == BITSTREAM_KIND::PMSF ? DEVICE_FLAG_PARTIAL : 0);
    for (const std::uint64_t length : lengths)
        device.u64(length);
    device.bytes(encode_device(file.device()));
    stream.packet(OPCODE_DEVICE, device.content());
    if (file.scheme())
        stream.packet(OPCODE_SCHEME, encode_scheme(*file.scheme()));
    if (!file.options().empty())
        stream.packet(OPCODE_OPTIONS, encode_options(file.options()));
    // The name of a file on the user's machine has no place in a programming file.
    if (input.option_block || file.option_word() != 0)
        stream.packet(
            OPCODE_OPTION_BLOCK,
            encode_option_block(input.option_block ? *input.option_block : file.option_block(), false));
    if (!file.regions().empty())
        stream.packet(OPCODE_REGIONS, encode_regions(file.regions()));
}

bool append_image(const STREAM_INPUT& input, STREAM_SELECTION selection, STREAM_ASSEMBLY& stream,
                  std::string& message)
{
    if (input.compression && input.enhanced_compression) {
        message =
            input.path + " is to be compressed in two ways; choose compression or enhanced compression.";
        return false;
    }
    const auto file = BITSTREAM_FILE::open(input.path, message);
    std::vector<PART_INPUT> parts;
    if (!file || !collect_parts(input, *file, selection, parts, message))
        return false;
    append_records(input, *file, parts, stream);
    const STREAM_METHOD method = input.enhanced_compression ? STREAM_METHOD::ZSTD
                                 : input.compression        ? STREAM_METHOD::LZ4
                                                            : STREAM_METHOD::PLAIN;
    return std::all_of(parts.begin(), parts.end(), [&](const PART_INPUT& part) {
        return append_part(part, method, input.path, stream, message);
    });
}

} // namespace

std::shared_ptr<const BYTE_SOURCE> build_configuration_stream(const std::vector<STREAM_INPUT>& inputs,
                                                              const std::string& spool_directory,
                                                              std::string& message,
                                                              STREAM_SELECTION selection)
{
    if (inputs.empty() || inputs.size() > UINT16_MAX) {
        message = "A bitstream is made of at least one file and at most 65535; this one names " +
                  std::to_string(inputs.size()) + ".";
        return nullptr;
    }
    STREAM_ASSEMBLY stream(spool_directory);
    stream.memory(STREAM_SYNC_WORD);
    RECORD_WRITER begin;
    begin.u16(STREAM_VERSION);
    begin.u16(static_cast<std::uint16_t>(inputs.size()));
    stream.packet(OPCODE_BEGIN, begin.content());
    for (const STREAM_INPUT& input : inputs)
        if (!append_image(input, selection, stream, message))
            return nullptr;
    stream.packet(OPCODE_END, stream.digest());
    return stream.finish(message);
}
