#include "pack.h"

#include "bitstream_target.h"
#include "pgm_device.h"
#include "same_file.h"

namespace
{

/// Opens a raw image; `capacity` is what the device can hold, named by `holder`.
std::shared_ptr<const BYTE_SOURCE> open_image(const std::string& path, std::uint64_t capacity,
                                              const std::string& holder, const PACK_REQUEST& request,
                                              std::string& message)
{
    std::shared_ptr<const BYTE_SOURCE> image = FILE_SOURCE::open(path, message);
    if (!image)
        return nullptr;
    if (image->size() == 0) {
        message = path + " is empty; a configuration image has at least one byte.";
        return nullptr;
    }
    if (image->size() > capacity) {
        message = path + " has " + std::to_string(image->size()) + " bytes, but the " + holder + " of " +
                  request.device + " has room for " + std::to_string(capacity) + ".";
        return nullptr;
    }
    if (same_file(path, request.output_path)) {
        message = path + " is an input and cannot be the output too; choose another name.";
        return nullptr;
    }
    return image;
}

bool check_regions(const PACK_REQUEST& request, const PGM_DEVICE& device, std::string& message)
{
    for (const BITSTREAM_REGION& region : request.regions) {
        if (!is_bitstream_name(region.name)) {
            message = "\"" + region.name +
                      "\" cannot name a region; a name has 1 to 64 letters, digits, \"-\", \"_\" and \".\".";
            return false;
        }
        if (region.offset > device.core_bytes || region.length > device.core_bytes - region.offset) {
            message = "Region " + region.name + " leaves the core configuration memory of " + device.name +
                      ", which has " + std::to_string(device.core_bytes) + " bytes.";
            return false;
        }
    }
    return true;
}

} // namespace

bool pack_bitstream(const PACK_REQUEST& request, std::string& message)
{
    const PGM_DEVICE* const device = find_fpga(request.device, message);
    std::optional<std::uint32_t> scheme;
    if (device == nullptr || !parse_scheme_word(request.scheme, scheme, message) ||
        !check_regions(request, *device, message))
        return false;
    const bool partial = !request.regions.empty();
    BITSTREAM_WRITER writer(partial ? BITSTREAM_KIND::PMSF : BITSTREAM_KIND::SOF,
                            {device->name, device->idcode});
    if (scheme)
        writer.set_scheme(*scheme);
    if (!request.options.empty())
        writer.set_options(request.options);
    if (request.option_block)
        writer.set_option_block(*request.option_block);
    if (partial)
        writer.set_regions(request.regions);

    struct IMAGE_ROW {
        SECTION_TAG tag;
        const std::string& path;
        std::uint64_t capacity;
        const char* holder;
    };
    // Firmware runs in a processor beside the configuration memory; its room is not that of the FPGA.
    const IMAGE_ROW images[] = {
        {SECTION_PERIPHERY, request.periphery_path, device->periphery_bytes,
         "periphery configuration memory"},
        {SECTION_CORE, request.core_path, device->core_bytes, "core configuration memory"},
        {SECTION_FIRMWARE, request.firmware_path, UINT32_MAX, "firmware store"},
        {SECTION_BOOTLOADER, request.bootloader_path, UINT32_MAX, "bootloader store"}};
    for (const IMAGE_ROW& row : images) {
        if (row.path.empty() && row.tag != SECTION_CORE)
            continue;
        const auto image = open_image(row.path, row.capacity, row.holder, request, message);
        if (!image)
            return false;
        writer.add_section(row.tag, image);
    }
    return write_bitstream_file(writer, request.output_path, message);
}
