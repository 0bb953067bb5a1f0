#include "image_parts.h"

#include "little_endian.h"
#include "stream_key.h"
#include "stream_packets.h"

#include <algorithm>
#include <array>

namespace
{

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

bool is_in_content(STREAM_PART part, IMAGE_CONTENT content)
{
    switch (content) {
    case IMAGE_CONTENT::WHOLE:
        return true;
    case IMAGE_CONTENT::FIRMWARE:
        return part == STREAM_PART::FIRMWARE;
    case IMAGE_CONTENT::BOOTLOADER:
        return part == STREAM_PART::BOOTLOADER;
    }
    return false;
}

/// Without a part of this kind there is nothing to make an image of.
bool is_essential(STREAM_PART part, IMAGE_CONTENT content)
{
    return content == IMAGE_CONTENT::WHOLE ? part == STREAM_PART::CORE || part == STREAM_PART::PERIPHERY
                                           : is_in_content(part, content);
}

const char* essential_words(IMAGE_CONTENT content, STREAM_SELECTION selection)
{
    switch (content) {
    case IMAGE_CONTENT::FIRMWARE:
        return "firmware.";
    case IMAGE_CONTENT::BOOTLOADER:
        return "boot loader.";
    case IMAGE_CONTENT::WHOLE:
        break;
    }
    return selection == STREAM_SELECTION::PERIPHERY ? "periphery data." : "core data.";
}

std::vector<std::uint8_t> update_payload(const UPDATE_INFO& update)
{
    RECORD_WRITER writer;
    writer.u32(update.version);
    writer.u8(update.replaces_boot_info ? UPDATE_FLAG_BOOT_INFO : 0);
    writer.u24(0);
    return writer.take();
}

std::vector<std::uint8_t> device_payload(const STREAM_INPUT& input, const BITSTREAM_FILE& file,
                                         const IMAGE_PARTS& image)
{
    std::array<std::uint64_t, STREAM_PART_COUNT> lengths{};
    for (const PART_INPUT& part : image.parts)
        lengths[static_cast<std::size_t>(part.part)] = part.bytes->size();
    RECORD_WRITER device;
    device.u8(static_cast<std::uint8_t>((file.kind() == BITSTREAM_KIND::PMSF ? DEVICE_FLAG_PARTIAL : 0) |
                                        (input.signer ? DEVICE_FLAG_SIGNED : 0) |
                                        (input.decompression_during_pr ? DEVICE_FLAG_DECOMPRESSION : 0) |
                                        (input.replaces_factory ? DEVICE_FLAG_FACTORY : 0) |
                                        (input.application ? DEVICE_FLAG_APPLICATION : 0)));
    for (const std::uint64_t length : lengths)
        device.u64(length);
    device.bytes(encode_device(file.device()));
    return device.take();
}

} // namespace

bool collect_parts(const STREAM_INPUT& input, const BITSTREAM_FILE& file, STREAM_SELECTION selection,
                   IMAGE_PARTS& image, std::string& message)
{
    for (const SECTION_OF_PART& row : SECTIONS_OF_PARTS) {
        if (!is_selected(row.part, selection) || !is_in_content(row.part, input.content))
            continue;
        if (row.part == STREAM_PART::BOOTLOADER && !input.hps_path.empty()) {
            const std::shared_ptr<const BYTE_SOURCE> bytes = FILE_SOURCE::open(input.hps_path, message);
            if (!bytes)
                return false;
            image.parts.push_back({row.part, bytes, nullptr});
        } else if (row.part == STREAM_PART::FIRMWARE && !input.firmware_path.empty()) {
            if (!open_firmware_archive(input.firmware_path, true, image.archive, message))
                return false;
            image.parts.push_back({row.part, image.archive.firmware, nullptr});
        } else if (file.find(row.tag) != nullptr) {
            image.parts.push_back({row.part, file.section(row.tag), file.find(row.tag)});
        }
    }
    const bool any = std::any_of(image.parts.begin(), image.parts.end(), [&](const PART_INPUT& part) {
        return part.bytes->size() != 0 && is_essential(part.part, input.content);
    });
    if (!any) {
        message = input.path + " holds no " + essential_words(input.content, selection);
        return false;
    }
    return true;
}

std::vector<STREAM_RECORD> image_records(const STREAM_INPUT& input, const BITSTREAM_FILE& file,
                                         const IMAGE_PARTS& image)
{
    std::vector<STREAM_RECORD> records;
    records.push_back({OPCODE_DEVICE, device_payload(input, file, image)});
    if (file.scheme())
        records.push_back({OPCODE_SCHEME, encode_scheme(*file.scheme())});
    if (!file.options().empty())
        records.push_back({OPCODE_OPTIONS, encode_options(file.options())});
    // The name of a file on the user's machine has no place in a programming file.
    if (input.option_block || file.option_word() != 0)
        records.push_back(
            {OPCODE_OPTION_BLOCK,
             encode_option_block(input.option_block ? *input.option_block : file.option_block(), false)});
    if (!file.regions().empty())
        records.push_back({OPCODE_REGIONS, encode_regions(file.regions())});
    if (input.encryption)
        records.push_back({OPCODE_KEY_INFO, encode_key_info(input.encryption->info)});
    if (image.archive.firmware) {
        RECORD_WRITER writer;
        writer.bytes(image.archive.header);
        writer.bytes(encode_signature(image.archive.key, image.archive.signature));
        records.push_back({OPCODE_FIRMWARE_INFO, writer.take()});
    }
    if (input.update)
        records.push_back({OPCODE_UPDATE_INFO, update_payload(*input.update)});
    if (input.signer && !input.key_chain.empty())
        records.push_back({OPCODE_KEY_CHAIN, input.key_chain});
    return records;
}

std::vector<std::uint8_t> encode_packet(std::uint8_t opcode, std::span<const std::uint8_t> payload)
{
    RECORD_WRITER writer;
    writer.u8(opcode);
    writer.u24(static_cast<std::uint32_t>(payload.size()));
    writer.bytes(payload);
    writer.u32(crc32(writer.content()));
    return writer.take();
}
