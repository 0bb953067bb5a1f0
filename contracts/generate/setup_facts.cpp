#include "setup_facts.h"

#include "bitstream_file.h"
#include "fio_path.h"
#include "input_security.h"
#include "pgm_device.h"
#include "precheck.h"
#include "vek_file_assistant.h"

#include <algorithm>

namespace
{

const PGM_DEVICE* first_device_of(const PGM_COMMON_XML_VEK_BITSTREAM& bitstream, std::string& path)
{
    for (const PGM_COMMON_XML_VEK_PATH* file : bitstream.path) {
        const PGM_DEVICE* device = nullptr;
        std::string name;
        std::string message;
        path = absolute_path(file->text);
        if (precheck_bitstream_file(path, true, &device, name, message)) {
            return device;
        }
    }
    return nullptr;
}

const PGM_DEVICE* first_device(const SETUP_VIEW& setup, std::string& path)
{
    for (const PGM_COMMON_XML_VEK_BITSTREAM* bitstream : setup.bitstreams().all()) {
        const PGM_DEVICE* device = first_device_of(*bitstream, path);
        if (device != nullptr) {
            return device;
        }
    }
    return nullptr;
}

DEV_FAMILY_ENUM implied_family(const SETUP_VIEW& setup)
{
    for (const PGM_COMMON_XML_VEK_FLASH_DEVICE* element : setup.flash_devices().all()) {
        const PGM_DEVICE* device = PGM_DEVICE_INDEX::find_by_name(element->type);
        if (device != nullptr && device->family == DEV_FAMILY_ONCHIP_FLASH) {
            return device->family;
        }
    }
    const PGM_DEVICE* loader =
        setup.flash_loader().empty() ? nullptr : PGM_DEVICE_INDEX::find_by_name(setup.flash_loader());
    if (loader != nullptr && loader->device_class == DEV_CLASS_FPGA) {
        return loader->family;
    }
    return setup.mode() == PGMIO_CONFIG_SCHEME_INTERNAL ? DEV_FAMILY_ONCHIP_FLASH : DEV_FAMILY_NONE;
}

bool is_on(const std::string& word)
{
    return VEK_FILE_ASSISTANT::convert_string_to_bool(word);
}

std::optional<UPDATE_INFO> update_of(const PGM_COMMON_XML_VEK_PATH& file)
{
    if (file.rsu_version.empty() && !is_on(file.rsu_boot_info)) {
        return std::nullopt;
    }
    std::uint64_t version = 0;
    parse_decimal(file.rsu_version, version);
    return UPDATE_INFO{static_cast<std::uint32_t>(version), is_on(file.rsu_boot_info)};
}

bool is_onchip_scheme(std::uint32_t scheme)
{
    return scheme >= PGMIO_CONFIG_SCHEME_SINGLE_IMAGE && scheme <= PGMIO_CONFIG_SCHEME_DUAL_COMPRESSED_IMAGES;
}

} // namespace

SETUP_FACTS find_setup_facts(const SETUP_VIEW& setup)
{
    SETUP_FACTS facts;
    facts.mode = setup.mode();
    std::string path;
    facts.device = first_device(setup, path);
    facts.family = facts.device != nullptr ? facts.device->family : implied_family(setup);
    if (facts.device != nullptr && facts.family == DEV_FAMILY_ONCHIP_FLASH &&
        facts.mode == PGMIO_CONFIG_SCHEME_INTERNAL) {
        std::string message;
        const auto file = BITSTREAM_FILE::open(path, message);
        if (file && file->scheme() && is_onchip_scheme(*file->scheme())) {
            facts.mode = static_cast<PGMIO_CONFIG_SCHEME>(*file->scheme());
        }
    }
    return facts;
}

const PGM_DEVICE* bitstream_device(const PGM_COMMON_XML_VEK_BITSTREAM& bitstream)
{
    std::string path;
    return first_device_of(bitstream, path);
}

const PGM_DEVICE* path_device(const PGM_COMMON_XML_VEK_PATH& path)
{
    const PGM_DEVICE* device = nullptr;
    std::string name;
    std::string message;
    return precheck_bitstream_file(absolute_path(path.text), true, &device, name, message) ? device : nullptr;
}

BITSTREAM_PICK pick_of(const PGM_COMMON_XML_VEK_BITSTREAM_ID& link)
{
    return {link.text,
            VEK_FILE_ASSISTANT::convert_string_to_xml_enum(link.section) == PGM_COMMON_XML_ENUM_HPS};
}

std::vector<BITSTREAM_PICK> output_picks(const SETUP_VIEW& setup,
                                         const PGM_COMMON_XML_VEK_OUTPUT_FILE& output)
{
    std::vector<BITSTREAM_PICK> picks;
    if (!takes_flash_device(output_type_of(output.type))) {
        for (const PGM_COMMON_XML_VEK_BITSTREAM_ID* id : output.bitstream_id) {
            picks.push_back(pick_of(*id));
        }
        return picks;
    }
    for (const PGM_COMMON_XML_VEK_FLASH_DEVICE_ID* id : output.flash_device_id) {
        const PGM_COMMON_XML_VEK_FLASH_DEVICE* device = setup.flash_devices().find(id->text);
        for (const PGM_COMMON_XML_VEK_PARTITION* partition :
             device != nullptr ? device->partition : std::vector<PGM_COMMON_XML_VEK_PARTITION*>()) {
            const PGM_COMMON_XML_VEK_ASSIGNMENT* assignment = setup.assignments().find(partition->id);
            if (assignment == nullptr || assignment->bitstream_id.empty() || partition->id == "BOOT_INFO") {
                continue;
            }
            const BITSTREAM_PICK pick = pick_of(*assignment->bitstream_id.front());
            if (std::find(picks.begin(), picks.end(), pick) == picks.end()) {
                picks.push_back(pick);
            }
        }
    }
    return picks;
}

std::vector<std::string> output_bitstreams(const SETUP_VIEW& setup,
                                           const PGM_COMMON_XML_VEK_OUTPUT_FILE& output)
{
    std::vector<std::string> ids;
    const bool each_once = takes_flash_device(output_type_of(output.type));
    for (const BITSTREAM_PICK& pick : output_picks(setup, output)) {
        if (!each_once || std::find(ids.begin(), ids.end(), pick.id) == ids.end()) {
            ids.push_back(pick.id);
        }
    }
    return ids;
}

void apply_pick(const BITSTREAM_PICK& pick, std::vector<STREAM_INPUT>& inputs)
{
    for (STREAM_INPUT& input : inputs) {
        input.content = pick.bootloader_only ? IMAGE_CONTENT::BOOTLOADER : input.content;
    }
}

std::size_t image_count(const PGM_COMMON_XML_VEK_PATH& file)
{
    return file.app_image.empty() || is_on(file.app_image_only) ? 1 : 2;
}

std::vector<STREAM_INPUT> stream_inputs(const PGM_COMMON_XML_VEK_BITSTREAM& bitstream,
                                        const std::optional<DSET_OTI_DEV_OPTIONS_INFO>& option_block)
{
    std::vector<STREAM_INPUT> inputs;
    for (const PGM_COMMON_XML_VEK_PATH* file : bitstream.path) {
        STREAM_INPUT input;
        input.path = absolute_path(file->text);
        input.compression = is_on(file->compression);
        input.enhanced_compression = is_on(file->enhanced_compression);
        input.decompression_during_pr = is_on(file->decompression_during_pr);
        input.replaces_factory = is_on(file->rsu_upgrade);
        input.content = is_on(file->firmware_only) ? IMAGE_CONTENT::FIRMWARE : IMAGE_CONTENT::WHOLE;
        input.update = update_of(*file);
        input.hps_path = file->hps_path.empty() ? "" : absolute_path(file->hps_path);
        input.option_block = option_block;
        input.firmware_path = firmware_source(*file);
        if (file->app_image.empty() || !is_on(file->app_image_only)) {
            inputs.push_back(input);
        }
        if (!file->app_image.empty()) {
            input.path = absolute_path(file->app_image);
            input.hps_path = file->app_image_hps_path.empty() ? "" : absolute_path(file->app_image_hps_path);
            input.application = true;
            input.replaces_factory = false;
            input.update.reset();
            inputs.push_back(input);
        }
    }
    return inputs;
}

std::optional<DSET_OTI_DEV_OPTIONS_INFO> onchip_options(const SETUP_VIEW& setup,
                                                        const PGM_COMMON_XML_VEK_FLASH_DEVICE& device)
{
    const PGM_DEVICE* record = PGM_DEVICE_INDEX::find_by_name(device.type);
    DSET_OTI_DEV_OPTIONS_INFO options;
    if (record == nullptr || record->family != DEV_FAMILY_ONCHIP_FLASH ||
        !VEK_FILE_ASSISTANT::get_internal_configuration_options(&setup.document(), options, device.id)) {
        return std::nullopt;
    }
    return options;
}

std::string input_names(const PGM_COMMON_XML_VEK_BITSTREAM& bitstream)
{
    std::string names;
    for (const PGM_COMMON_XML_VEK_PATH* file : bitstream.path) {
        names += (names.empty() ? "" : ", ") + FIO_PATH(file->text).filename();
    }
    return names;
}
