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

std::vector<std::string> output_bitstreams(const SETUP_VIEW& setup,
                                           const PGM_COMMON_XML_VEK_OUTPUT_FILE& output)
{
    std::vector<std::string> ids;
    if (!takes_flash_device(output_type_of(output.type))) {
        for (const PGM_COMMON_XML_VEK_BITSTREAM_ID* id : output.bitstream_id) {
            ids.push_back(id->text);
        }
        return ids;
    }
    for (const PGM_COMMON_XML_VEK_FLASH_DEVICE_ID* id : output.flash_device_id) {
        const PGM_COMMON_XML_VEK_FLASH_DEVICE* device = setup.flash_devices().find(id->text);
        for (const PGM_COMMON_XML_VEK_PARTITION* partition :
             device != nullptr ? device->partition : std::vector<PGM_COMMON_XML_VEK_PARTITION*>()) {
            const PGM_COMMON_XML_VEK_ASSIGNMENT* assignment = setup.assignments().find(partition->id);
            if (assignment != nullptr && !assignment->bitstream_id.empty() && partition->id != "BOOT_INFO" &&
                std::find(ids.begin(), ids.end(), assignment->bitstream_id.front()->text) == ids.end()) {
                ids.push_back(assignment->bitstream_id.front()->text);
            }
        }
    }
    return ids;
}

std::vector<STREAM_INPUT> stream_inputs(const PGM_COMMON_XML_VEK_BITSTREAM& bitstream,
                                        const std::optional<DSET_OTI_DEV_OPTIONS_INFO>& option_block)
{
    std::vector<STREAM_INPUT> inputs;
    for (const PGM_COMMON_XML_VEK_PATH* file : bitstream.path) {
        STREAM_INPUT input;
        input.path = absolute_path(file->text);
        input.compression = VEK_FILE_ASSISTANT::convert_string_to_bool(file->compression);
        input.enhanced_compression = VEK_FILE_ASSISTANT::convert_string_to_bool(file->enhanced_compression);
        input.decompression_during_pr =
            VEK_FILE_ASSISTANT::convert_string_to_bool(file->decompression_during_pr);
        input.replaces_factory = VEK_FILE_ASSISTANT::convert_string_to_bool(file->rsu_upgrade);
        input.hps_path = file->hps_path.empty() ? "" : absolute_path(file->hps_path);
        input.option_block = option_block;
        input.firmware_path = firmware_source(*file);
        inputs.push_back(input);
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
