#include "measurement.h"

#include "image_parts.h"
#include "stream_packets.h"

#include <botan/hash.h>

#include <algorithm>

namespace
{

std::unique_ptr<Botan::HashFunction> new_hash()
{
    return Botan::HashFunction::create_or_throw("SHA-384");
}

bool hash_part(const PART_INPUT& part, const std::string& name, Botan::HashFunction& hash,
               std::string& message)
{
    std::vector<std::uint8_t> block;
    std::uint32_t crc = 0;
    for (std::uint64_t at = 0; at < part.bytes->size(); at += block.size()) {
        block.resize(
            static_cast<std::size_t>(std::min<std::uint64_t>(IO_BLOCK_SIZE, part.bytes->size() - at)));
        if (!part.bytes->read(at, block, message))
            return false;
        hash.update(block);
        crc = crc32(block, crc);
    }
    if (part.section == nullptr || crc == part.section->crc)
        return true;
    message = name + " is damaged: the checksum of the " + section_description(part.section->tag) +
              " (at offset " + std::to_string(part.section->offset) + ") does not fit.";
    return false;
}

} // namespace

bool measure_image(const STREAM_INPUT& input, IMAGE_MEASUREMENTS& measurements, std::string& message)
{
    const auto file = BITSTREAM_FILE::open(input.path, message);
    IMAGE_PARTS image;
    if (!file || !collect_parts(input, *file, STREAM_SELECTION::ALL, image, message))
        return false;
    measurements = {};
    measurements.device = file->device().name;
    measurements.idcode = file->device().idcode;
    measurements.partial = file->kind() == BITSTREAM_KIND::PMSF;
    const auto design = new_hash();
    for (const PART_INPUT& part : image.parts) {
        const bool is_design = part.part == STREAM_PART::PERIPHERY || part.part == STREAM_PART::CORE;
        const auto own = new_hash();
        if (!hash_part(part, input.path, is_design ? *design : *own, message))
            return false;
        if (part.part == STREAM_PART::FIRMWARE)
            own->final(measurements.firmware.emplace().data());
        if (part.part == STREAM_PART::BOOTLOADER)
            own->final(measurements.bootloader.emplace().data());
    }
    design->final(measurements.design.data());
    const auto options = new_hash();
    for (const STREAM_RECORD& record : image_records(input, *file, image))
        if (record.opcode != OPCODE_DEVICE && record.opcode != OPCODE_FIRMWARE_INFO)
            options->update(encode_packet(record.opcode, record.payload));
    options->final(measurements.options.data());
    return true;
}
