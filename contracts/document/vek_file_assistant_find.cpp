#include "msg_internal_error.h"
#include "vek_db.h"
#include "vek_file_assistant.h"

#include <algorithm>

namespace
{

/// The entries of the one group element of a kind, nothing when there is no group.
template <typename ELEMENT, typename GROUP>
std::vector<ELEMENT*> entries(const std::vector<GROUP*>& group, std::vector<ELEMENT*> GROUP::*member)
{
    return group.empty() ? std::vector<ELEMENT*>() : group.front()->*member;
}

template <typename ELEMENT, typename GROUP>
ELEMENT* find_entry(const std::vector<GROUP*>& group, std::vector<ELEMENT*> GROUP::*member,
                    std::string ELEMENT::*key, const std::string& value)
{
    if (group.empty()) {
        return nullptr;
    }
    for (ELEMENT* element : group.front()->*member) {
        if (element->*key == value) {
            return element;
        }
    }
    return nullptr;
}

template <typename ELEMENT>
std::vector<std::string> ids(const std::vector<ELEMENT*>& elements)
{
    std::vector<std::string> result;
    result.reserve(elements.size());
    for (const ELEMENT* element : elements) {
        result.push_back(element->id);
    }
    return result;
}

template <typename ELEMENT>
ELEMENT* first(const std::vector<ELEMENT*>& elements)
{
    return elements.empty() ? nullptr : elements.front();
}

template <typename ELEMENT>
bool names(const std::vector<ELEMENT*>& links, const std::string& id)
{
    return std::any_of(links.begin(), links.end(), [&id](const ELEMENT* link) { return link->text == id; });
}

PGM_COMMON_XML_VEK_PARTITION* find_partition(const std::vector<PGM_COMMON_XML_VEK_PARTITION*>& partitions,
                                             const std::string& id)
{
    const auto found = std::find_if(partitions.begin(), partitions.end(),
                                    [&id](const auto* partition) { return partition->id == id; });
    return found == partitions.end() ? nullptr : *found;
}

PGM_COMMON_XML_VEK_PARTITION* find_partition(const PGM_COMMON_XML_VEK_FLASH_DEVICE& device,
                                             const std::string& id)
{
    PGM_COMMON_XML_VEK_PARTITION* found = find_partition(device.partition, id);
    for (auto mbr = device.mbr.begin(); !found && mbr != device.mbr.end(); ++mbr) {
        found = find_partition((*mbr)->partition, id);
    }
    return found;
}

} // namespace

bool VEK_FILE_ASSISTANT::get_config_mode(const PGM_COMMON_XML_VEK_VEK* document, PGMIO_CONFIG_SCHEME& mode)
{
    VEK_ASSERT(document != nullptr);
    const PGM_COMMON_XML_VEK_SETTINGS* settings = first(document->settings);
    if (!settings || settings->mode.empty()) {
        return false;
    }
    const PGMIO_CONFIG_SCHEME found =
        VEK_DB_UTIL::get_config_scheme_enum(convert_string_to_xml_enum(settings->mode));
    if (found == PGMIO_CONFIG_SCHEME_ILLEGAL) {
        return false;
    }
    mode = found;
    return true;
}

bool VEK_FILE_ASSISTANT::get_custom_db_dir(const PGM_COMMON_XML_VEK_VEK* document, std::string& directory)
{
    VEK_ASSERT(document != nullptr);
    const PGM_COMMON_XML_VEK_SETTINGS* settings = first(document->settings);
    if (!settings) {
        return false;
    }
    directory = settings->custom_db_dir;
    return true;
}

std::vector<VEK_FILE_TYPE> VEK_FILE_ASSISTANT::get_output_file_types(const PGM_COMMON_XML_VEK_VEK* document)
{
    std::vector<VEK_FILE_TYPE> types;
    for (const PGM_COMMON_XML_VEK_OUTPUT_FILE* output : get_output_file_elements(document)) {
        const VEK_FILE_TYPE type =
            VEK_DB_UTIL::get_vek_file_type_enum(convert_string_to_xml_enum(output->type));
        if (type != VEK_INVALID_FILE_TYPE) {
            types.push_back(type);
        }
    }
    return VEK_DB_UTIL::get_primary_file_types(types);
}

std::vector<VEK_FILE_TYPE> VEK_FILE_ASSISTANT::get_output_file_types(const PGM_COMMON_XML_VEK_VEK* document,
                                                                     bool take_flash_devices)
{
    const auto takes = [take_flash_devices](VEK_FILE_TYPE type) {
        if (!take_flash_devices) {
            return VEK_DB_UTIL::is_supported_file_category(type, VEK_FILE_CATEGORY_BITSTREAM);
        }
        return VEK_DB_UTIL::is_supported_file_category(type, VEK_FILE_CATEGORY_FLASH) ||
               VEK_DB_UTIL::is_supported_file_category(type, VEK_FILE_CATEGORY_RAW_FLASH) ||
               VEK_DB_UTIL::is_supported_file_category(type, VEK_FILE_CATEGORY_PERIPHERY);
    };
    std::vector<VEK_FILE_TYPE> types = get_output_file_types(document);
    std::erase_if(types, [&takes](VEK_FILE_TYPE type) { return !takes(type); });
    return types;
}

std::vector<PGM_COMMON_XML_VEK_OUTPUT_FILE*>
VEK_FILE_ASSISTANT::get_output_file_elements(const PGM_COMMON_XML_VEK_VEK* document)
{
    VEK_ASSERT(document != nullptr);
    return entries(document->output_files, &PGM_COMMON_XML_VEK_OUTPUT_FILES::output_file);
}

PGM_COMMON_XML_VEK_FILE_OPTIONS*
VEK_FILE_ASSISTANT::get_file_options_element(const PGM_COMMON_XML_VEK_OUTPUT_FILE* output_file)
{
    VEK_ASSERT(output_file != nullptr);
    return first(output_file->file_options);
}

PGM_COMMON_XML_VEK_FILE_OPTIONS*
VEK_FILE_ASSISTANT::get_file_options_element(const PGM_COMMON_XML_VEK_SECONDARY_FILE* secondary_file)
{
    VEK_ASSERT(secondary_file != nullptr);
    return first(secondary_file->file_options);
}

std::vector<PGM_COMMON_XML_VEK_SECONDARY_FILE*>
VEK_FILE_ASSISTANT::get_secondary_file_elements(const PGM_COMMON_XML_VEK_OUTPUT_FILE* output_file)
{
    VEK_ASSERT(output_file != nullptr);
    return output_file->secondary_file;
}

std::vector<PGM_COMMON_XML_VEK_BITSTREAM*>
VEK_FILE_ASSISTANT::get_bitstream_elements(const PGM_COMMON_XML_VEK_VEK* document)
{
    VEK_ASSERT(document != nullptr);
    return entries(document->bitstreams, &PGM_COMMON_XML_VEK_BITSTREAMS::bitstream);
}

PGM_COMMON_XML_VEK_BITSTREAM*
VEK_FILE_ASSISTANT::get_bitstream_element(const PGM_COMMON_XML_VEK_VEK* document,
                                          const std::string& bitstream_id)
{
    VEK_ASSERT(document != nullptr);
    return find_entry(document->bitstreams, &PGM_COMMON_XML_VEK_BITSTREAMS::bitstream,
                      &PGM_COMMON_XML_VEK_BITSTREAM::id, bitstream_id);
}

std::vector<std::string> VEK_FILE_ASSISTANT::get_bitstream_ids(const PGM_COMMON_XML_VEK_VEK* document)
{
    return ids(get_bitstream_elements(document));
}

std::vector<PGM_COMMON_XML_VEK_PATH*>
VEK_FILE_ASSISTANT::get_path_elements(const PGM_COMMON_XML_VEK_VEK* document, const std::string& bitstream_id)
{
    const PGM_COMMON_XML_VEK_BITSTREAM* bitstream = get_bitstream_element(document, bitstream_id);
    return bitstream ? bitstream->path : std::vector<PGM_COMMON_XML_VEK_PATH*>();
}

PGM_COMMON_XML_VEK_PATH* VEK_FILE_ASSISTANT::get_path_element(const PGM_COMMON_XML_VEK_VEK* document,
                                                              const std::string& bitstream_id,
                                                              const std::string& file_path)
{
    for (PGM_COMMON_XML_VEK_PATH* path : get_path_elements(document, bitstream_id)) {
        if (path->text == file_path) {
            return path;
        }
    }
    return nullptr;
}

std::vector<PGM_COMMON_XML_VEK_RAW_FILE*>
VEK_FILE_ASSISTANT::get_raw_file_elements(const PGM_COMMON_XML_VEK_VEK* document)
{
    VEK_ASSERT(document != nullptr);
    return entries(document->raw_files, &PGM_COMMON_XML_VEK_RAW_FILES::raw_file);
}

PGM_COMMON_XML_VEK_RAW_FILE* VEK_FILE_ASSISTANT::get_raw_file_element(const PGM_COMMON_XML_VEK_VEK* document,
                                                                      const std::string& raw_file_id)
{
    VEK_ASSERT(document != nullptr);
    return find_entry(document->raw_files, &PGM_COMMON_XML_VEK_RAW_FILES::raw_file,
                      &PGM_COMMON_XML_VEK_RAW_FILE::id, raw_file_id);
}

std::vector<std::string> VEK_FILE_ASSISTANT::get_raw_file_ids(const PGM_COMMON_XML_VEK_VEK* document)
{
    return ids(get_raw_file_elements(document));
}

PGM_COMMON_XML_ENUM VEK_FILE_ASSISTANT::get_input_file_type(const PGM_COMMON_XML_VEK_VEK* document,
                                                            const std::string& input_id)
{
    if (get_bitstream_element(document, input_id)) {
        return PGM_COMMON_XML_ENUM_BITSTREAM;
    }
    return get_raw_file_element(document, input_id) ? PGM_COMMON_XML_ENUM_RAW_FILE
                                                    : PGM_COMMON_XML_ENUM__INVALID__;
}

PGM_COMMON_XML_VEK_ASSIGNMENT*
VEK_FILE_ASSISTANT::get_assignment_element(const PGM_COMMON_XML_VEK_VEK* document,
                                           const std::string& partition_id)
{
    VEK_ASSERT(document != nullptr);
    return find_entry(document->assignments, &PGM_COMMON_XML_VEK_ASSIGNMENTS::assignment,
                      &PGM_COMMON_XML_VEK_ASSIGNMENT::partition_id, partition_id);
}

PGM_COMMON_XML_VEK_BITSTREAM_ID*
VEK_FILE_ASSISTANT::get_bitstream_id_element(const PGM_COMMON_XML_VEK_VEK* document,
                                             const std::string& partition_id)
{
    const PGM_COMMON_XML_VEK_ASSIGNMENT* assignment = get_assignment_element(document, partition_id);
    return assignment ? first(assignment->bitstream_id) : nullptr;
}

PGM_COMMON_XML_VEK_RAW_FILE_ID*
VEK_FILE_ASSISTANT::get_raw_file_id_element(const PGM_COMMON_XML_VEK_VEK* document,
                                            const std::string& partition_id)
{
    return first(get_raw_file_id_elements(document, partition_id));
}

std::vector<PGM_COMMON_XML_VEK_RAW_FILE_ID*>
VEK_FILE_ASSISTANT::get_raw_file_id_elements(const PGM_COMMON_XML_VEK_VEK* document,
                                             const std::string& partition_id)
{
    const PGM_COMMON_XML_VEK_ASSIGNMENT* assignment = get_assignment_element(document, partition_id);
    return assignment ? assignment->raw_file_id : std::vector<PGM_COMMON_XML_VEK_RAW_FILE_ID*>();
}

std::vector<std::string> VEK_FILE_ASSISTANT::get_partition_ids(const PGM_COMMON_XML_VEK_VEK* document,
                                                               const std::string& bitstream_id,
                                                               const std::string& raw_file_id)
{
    VEK_ASSERT(document != nullptr);
    std::vector<std::string> found;
    for (const auto* assignment :
         entries(document->assignments, &PGM_COMMON_XML_VEK_ASSIGNMENTS::assignment)) {
        if ((!bitstream_id.empty() && names(assignment->bitstream_id, bitstream_id)) ||
            (!raw_file_id.empty() && names(assignment->raw_file_id, raw_file_id))) {
            found.push_back(assignment->partition_id);
        }
    }
    return found;
}

std::vector<std::string> VEK_FILE_ASSISTANT::get_flash_device_ids(const PGM_COMMON_XML_VEK_VEK* document)
{
    return ids(get_flash_device_elements(document));
}

PGM_COMMON_XML_VEK_FLASH_DEVICE*
VEK_FILE_ASSISTANT::get_flash_device_element(const PGM_COMMON_XML_VEK_VEK* document,
                                             const std::string& flash_device_id)
{
    VEK_ASSERT(document != nullptr);
    return find_entry(document->flash_devices, &PGM_COMMON_XML_VEK_FLASH_DEVICES::flash_device,
                      &PGM_COMMON_XML_VEK_FLASH_DEVICE::id, flash_device_id);
}

std::vector<PGM_COMMON_XML_VEK_FLASH_DEVICE*>
VEK_FILE_ASSISTANT::get_flash_device_elements(const PGM_COMMON_XML_VEK_VEK* document)
{
    VEK_ASSERT(document != nullptr);
    return entries(document->flash_devices, &PGM_COMMON_XML_VEK_FLASH_DEVICES::flash_device);
}

std::vector<PGM_COMMON_XML_VEK_FLASH_LOADER*>
VEK_FILE_ASSISTANT::get_flash_loader_elements(const PGM_COMMON_XML_VEK_VEK* document)
{
    VEK_ASSERT(document != nullptr);
    return entries(document->flash_devices, &PGM_COMMON_XML_VEK_FLASH_DEVICES::flash_loader);
}

PGM_COMMON_XML_VEK_PARTITION*
VEK_FILE_ASSISTANT::get_partition_element(const PGM_COMMON_XML_VEK_VEK* document,
                                          const std::string& partition_id)
{
    for (const PGM_COMMON_XML_VEK_FLASH_DEVICE* device : get_flash_device_elements(document)) {
        if (PGM_COMMON_XML_VEK_PARTITION* partition = find_partition(*device, partition_id)) {
            return partition;
        }
    }
    return nullptr;
}

PGM_COMMON_XML_VEK_PARTITION*
VEK_FILE_ASSISTANT::get_partition_element(const PGM_COMMON_XML_VEK_VEK* document,
                                          const std::string& flash_device_id, const std::string& partition_id)
{
    const PGM_COMMON_XML_VEK_FLASH_DEVICE* device = get_flash_device_element(document, flash_device_id);
    return device ? find_partition(*device, partition_id) : nullptr;
}

std::vector<PGM_COMMON_XML_VEK_PARTITION*>
VEK_FILE_ASSISTANT::get_partition_elements(const PGM_COMMON_XML_VEK_VEK* document,
                                           const std::string& flash_device_id)
{
    const PGM_COMMON_XML_VEK_FLASH_DEVICE* device = get_flash_device_element(document, flash_device_id);
    return device ? device->partition : std::vector<PGM_COMMON_XML_VEK_PARTITION*>();
}

std::vector<PGM_COMMON_XML_VEK_MBR*>
VEK_FILE_ASSISTANT::get_mbr_elements(const PGM_COMMON_XML_VEK_VEK* document,
                                     const std::string& flash_device_id)
{
    const PGM_COMMON_XML_VEK_FLASH_DEVICE* device = get_flash_device_element(document, flash_device_id);
    return device ? device->mbr : std::vector<PGM_COMMON_XML_VEK_MBR*>();
}
