#include "setup_view.h"

#include "fio_path.h"
#include "vek_db.h"
#include "vek_file_assistant.h"

#include <charconv>

SETUP_VIEW::SETUP_VIEW(const PGM_COMMON_XML_VEK_VEK& document)
    : m_document(document), m_mode(PGMIO_CONFIG_SCHEME_ILLEGAL)
{
    VEK_FILE_ASSISTANT::get_config_mode(&document, m_mode);
    for (const PGM_COMMON_XML_VEK_BITSTREAMS* group : document.bitstreams) {
        m_bitstreams.reserve(group->bitstream.size());
        for (const PGM_COMMON_XML_VEK_BITSTREAM* bitstream : group->bitstream) {
            m_bitstreams.add(bitstream->id, bitstream);
        }
    }
    for (const PGM_COMMON_XML_VEK_RAW_FILES* group : document.raw_files) {
        m_raw_files.reserve(group->raw_file.size());
        for (const PGM_COMMON_XML_VEK_RAW_FILE* raw_file : group->raw_file) {
            m_raw_files.add(raw_file->id, raw_file);
        }
    }
    for (const PGM_COMMON_XML_VEK_FLASH_DEVICES* group : document.flash_devices) {
        for (const PGM_COMMON_XML_VEK_FLASH_LOADER* loader : group->flash_loader) {
            m_flash_loader = loader->text;
        }
        for (const PGM_COMMON_XML_VEK_FLASH_DEVICE* device : group->flash_device) {
            m_flash_devices.add(device->id, device);
            m_partitions.reserve(device->partition.size());
            for (const PGM_COMMON_XML_VEK_PARTITION* partition : device->partition) {
                m_partitions.add(partition->id, partition);
            }
        }
    }
    for (const PGM_COMMON_XML_VEK_ASSIGNMENTS* group : document.assignments) {
        m_assignments.reserve(group->assignment.size());
        for (const PGM_COMMON_XML_VEK_ASSIGNMENT* assignment : group->assignment) {
            m_assignments.add(assignment->partition_id, assignment);
        }
    }
    for (const PGM_COMMON_XML_VEK_OUTPUT_FILES* group : document.output_files) {
        m_output_files.insert(m_output_files.end(), group->output_file.begin(), group->output_file.end());
    }
}

VEK_FILE_TYPE output_type_of(const std::string& word)
{
    const PGM_COMMON_XML_ENUM row = VEK_FILE_ASSISTANT::convert_string_to_xml_enum(word);
    return row == PGM_COMMON_XML_ENUM__INVALID__ ? VEK_INVALID_FILE_TYPE
                                                 : VEK_DB_UTIL::get_vek_file_type_enum(row);
}

bool takes_bitstreams(VEK_FILE_TYPE type)
{
    return VEK_DB_UTIL::is_supported_file_category(type, VEK_FILE_CATEGORY_BITSTREAM);
}

bool takes_flash_device(VEK_FILE_TYPE type)
{
    return VEK_DB_UTIL::is_supported_file_category(type, VEK_FILE_CATEGORY_FLASH) ||
           VEK_DB_UTIL::is_supported_file_category(type, VEK_FILE_CATEGORY_RAW_FLASH) ||
           VEK_DB_UTIL::is_supported_file_category(type, VEK_FILE_CATEGORY_PERIPHERY);
}

bool parse_decimal(const std::string& text, std::uint64_t& value)
{
    const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc() && stop == text.data() + text.size();
}

std::string absolute_path(const std::string& path)
{
    FIO_PATH result(path);
    result.become_absolute("");
    return result.fullpath();
}
