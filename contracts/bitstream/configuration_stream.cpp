#include "configuration_stream.h"

#include "bitstream_file.h"
#include "frame_compressor.h"
#include "frame_sealer.h"
#include "image_parts.h"
#include "little_endian.h"
#include "stream_assembly.h"
#include "stream_key.h"
#include "stream_packets.h"
#include "stream_reader.h"
#include "stream_signer.h"

#include <algorithm>

namespace
{

std::vector<std::uint8_t> frames_header(std::uint8_t opcode, STREAM_PART part, const FRAME_BLOCK& block,
                                        std::size_t stored_length)
{
    RECORD_WRITER writer;
    writer.u8(static_cast<std::uint8_t>(opcode + static_cast<std::uint8_t>(block.method)));
    writer.u24(static_cast<std::uint32_t>(FRAMES_HEADER_SIZE + stored_length));
    writer.u8(static_cast<std::uint8_t>(part));
    writer.u24(0);
    writer.u32(static_cast<std::uint32_t>(block.plain.size()));
    writer.u64(block.offset);
    return writer.take();
}

/// Encrypts a block, bound to what its header says but for the length, which the content has itself.
void seal_block(FRAME_SEALER& sealer, STREAM_PART part, FRAME_BLOCK& block)
{
    std::vector<std::uint8_t> header = frames_header(OPCODE_ENCRYPTED_FRAMES, part, block, 0);
    header.erase(header.begin() + 1, header.begin() + PACKET_HEADER_SIZE);
    sealer.seal(header, block.stored(), block.sealed);
}

bool append_block(const PART_INPUT& input, const FRAME_BLOCK& block, bool sealed, STREAM_ASSEMBLY& stream,
                  std::string& message)
{
    const std::span<const std::uint8_t> stored =
        sealed ? std::span<const std::uint8_t>(block.sealed) : block.stored();
    const auto header =
        frames_header(sealed ? OPCODE_ENCRYPTED_FRAMES : OPCODE_FRAMES, input.part, block, stored.size());
    RECORD_WRITER crc;
    crc.u32(crc32(stored, crc32(header)));
    if (sealed || block.method != STREAM_METHOD::PLAIN)
        return stream.spool(header, message) && stream.spool(stored, message) &&
               stream.spool(crc.content(), message);
    stream.memory(header);
    stream.reference(std::make_shared<RANGE_SOURCE>(input.bytes, block.offset, block.plain.size()), stored);
    stream.memory(crc.content());
    return true;
}

/// `sealer` is null for an image that is not encrypted.
bool append_part(const PART_INPUT& input, STREAM_METHOD method, const std::string& name, FRAME_SEALER* sealer,
                 STREAM_ASSEMBLY& stream, std::string& message)
{
    FRAME_COMPRESSOR::LAST_STEP seal;
    if (sealer != nullptr)
        seal = [&](FRAME_BLOCK& block) { seal_block(*sealer, input.part, block); };
    FRAME_COMPRESSOR compressor(*input.bytes, method, seal);
    FRAME_BLOCK block;
    std::uint32_t section_crc = 0;
    while (compressor.next(block, message)) {
        section_crc = crc32(block.plain, section_crc);
        if (!append_block(input, block, sealer != nullptr, stream, message))
            return false;
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

bool append_image(const STREAM_INPUT& input, STREAM_SELECTION selection, STREAM_ASSEMBLY& stream,
                  std::string& message)
{
    if (input.compression && input.enhanced_compression) {
        message =
            input.path + " is to be compressed in two ways; choose compression or enhanced compression.";
        return false;
    }
    const auto file = BITSTREAM_FILE::open(input.path, message);
    IMAGE_PARTS image;
    if (!file || !collect_parts(input, *file, selection, image, message))
        return false;
    stream.begin_image(input.signer != nullptr);
    for (const STREAM_RECORD& record : image_records(input, *file, image))
        stream.packet(record.opcode, record.payload);
    std::optional<FRAME_SEALER> sealer;
    const FRAME_SEALER::CHAIN start = stream.chain_start();
    if (input.encryption && input.encryption->key)
        sealer.emplace(*input.encryption->key, start);
    const STREAM_METHOD method = input.enhanced_compression ? STREAM_METHOD::ZSTD
                                 : input.compression        ? STREAM_METHOD::LZ4
                                                            : STREAM_METHOD::PLAIN;
    const bool appended = std::all_of(image.parts.begin(), image.parts.end(), [&](const PART_INPUT& part) {
        return append_part(part, method, input.path, sealer ? &*sealer : nullptr, stream, message);
    });
    return appended && (!input.signer || stream.sign(*input.signer, message));
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
    stream.begin(inputs.size());
    for (const STREAM_INPUT& input : inputs)
        if (!append_image(input, selection, stream, message))
            return nullptr;
    return stream.finish(message);
}
