#include "conversion_flash.h"

#include "parameter_text.h"
#include "partition_rules.h"
#include "pgm_device.h"
#include "vek_file_assistant.h"

#include <algorithm>

namespace
{

using PARAMS = VEK_FILE_ASSISTANT::PARAMS;

class ARRANGER
{
public:
    ARRANGER(PGM_COMMON_XML_VEK_VEK& document, const std::string& device_id, const FLASH_INPUTS& inputs,
             std::string& message)
        : m_document(document), m_device_id(device_id), m_inputs(inputs), m_message(message)
    {
    }

    bool run() { return add_reserved() && add_own(); }

private:
    bool set(PGM_COMMON_XML_VEK_CMD_OPT_ENUM option, const PARAMS& params)
    {
        return set_values(m_document, option, params, m_message);
    }

    DEV_FAMILY_ENUM family() const
    {
        return m_inputs.device != nullptr ? m_inputs.device->family : DEV_FAMILY_NONE;
    }

    bool add_reserved()
    {
        const bool has_puf = std::any_of(
            m_inputs.raw_files.begin(), m_inputs.raw_files.end(), [](const FLASH_INPUTS::RAW_FILE& file) {
                return file.word == VEK_FILE_ASSISTANT::convert_xml_enum_to_string(PGM_COMMON_XML_ENUM_PUF);
            });
        std::size_t next = 0;
        for (const VEK_UTIL_PARTITION_INFO& partition : VEK_UTIL::get_reserved_partitions(
                 m_inputs.mode, family(),
                 m_inputs.device != nullptr ? m_inputs.device->device : DEV_DEVICE_NONE,
                 m_inputs.bitstreams.size() >= 2, has_puf, FIO_INVALID_FILE)) {
            const auto flag = VEK_FILE_ASSISTANT::convert_bool_to_string;
            const PARAMS params{
                {VEK_CMD_PARAM_FLASH_DEVICE_ID, m_device_id},
                {VEK_CMD_PARAM_FLASH_DEVICE_PARTITION_ID, partition.name},
                {VEK_CMD_PARAM_FLASH_DEVICE_PARTITION_RESERVED, flag(true)},
                {VEK_CMD_PARAM_FLASH_DEVICE_PARTITION_FIXED_S_ADDR, flag(partition.fixed_start)},
                {VEK_CMD_PARAM_FLASH_DEVICE_PARTITION_FIXED_E_ADDR, flag(partition.fixed_end)},
                {VEK_CMD_PARAM_FLASH_DEVICE_PARTITION_S_ADDR, partition.start},
                {VEK_CMD_PARAM_FLASH_DEVICE_PARTITION_E_ADDR, partition.end}};
            if (!set(VEK_CMD_OPT_FLASH_DEVICE, params) || !assign_reserved(partition.name, next)) {
                return false;
            }
        }
        m_placed = next;
        return true;
    }

    /// `next`: the first bitstream that has no place yet.
    bool assign_reserved(const std::string& partition, std::size_t& next)
    {
        if (partition == "BOOT_INFO") {
            return assign(partition, VEK_CMD_PARAM_ASSIGNMENT_BITSTREAM_ID, m_inputs.bitstreams.front(), "");
        }
        if (partition == "PUF") {
            return assign_raw_files(partition, true);
        }
        const bool holds_image = partition == "FACTORY_IMAGE" || partition == "CFM0" || partition == "CFM1";
        if (!holds_image || next == m_inputs.bitstreams.size()) {
            return true;
        }
        const bool has_page = partition_rule_has_page(partition, m_inputs.mode, family());
        const std::string page = has_page ? std::to_string(next) : "";
        return assign(partition, VEK_CMD_PARAM_ASSIGNMENT_BITSTREAM_ID, m_inputs.bitstreams[next++], page);
    }

    bool assign(const std::string& partition, PGM_COMMON_XML_VEK_CMD_PARAM_ENUM kind, const std::string& id,
                const std::string& page)
    {
        PARAMS params{{VEK_CMD_PARAM_ASSIGNMENT_PARTITION_ID, partition}, {kind, id}};
        if (!page.empty()) {
            params.emplace_back(VEK_CMD_PARAM_ASSIGNMENT_PAGE, page);
        }
        return set(VEK_CMD_OPT_ASSIGNMENT, params);
    }

    static bool goes_with_puf(const FLASH_INPUTS::RAW_FILE& file)
    {
        return file.word == VEK_FILE_ASSISTANT::convert_xml_enum_to_string(PGM_COMMON_XML_ENUM_PUF) ||
               file.word == VEK_FILE_ASSISTANT::convert_xml_enum_to_string(PGM_COMMON_XML_ENUM_WKEY);
    }

    bool assign_raw_files(const std::string& partition, bool with_puf)
    {
        PARAMS params{{VEK_CMD_PARAM_ASSIGNMENT_PARTITION_ID, partition}};
        for (std::size_t i = 0; i < m_inputs.raw_files.size(); ++i) {
            if (goes_with_puf(m_inputs.raw_files[i]) == with_puf) {
                params.emplace_back(VEK_CMD_PARAM_ASSIGNMENT_RAW_FILE_ID, m_inputs.raw_files[i].id);
            }
        }
        return set(VEK_CMD_OPT_ASSIGNMENT, params);
    }

    /// A partition for each input that has no place yet.
    bool add_own()
    {
        for (; m_placed < m_inputs.bitstreams.size(); ++m_placed) {
            const std::string name = "P" + std::to_string(++m_own);
            if (!add_partition(name) || !assign(name, VEK_CMD_PARAM_ASSIGNMENT_BITSTREAM_ID,
                                                m_inputs.bitstreams[m_placed], std::to_string(m_placed))) {
                return false;
            }
        }
        for (std::size_t i = 0; i < m_inputs.raw_files.size(); ++i) {
            const bool is_placed = goes_with_puf(m_inputs.raw_files[i]) &&
                                   VEK_FILE_ASSISTANT::get_assignment_element(&m_document, "PUF") != nullptr;
            const std::string name = "D" + std::to_string(i + 1);
            if (!is_placed && (!add_partition(name) || !assign(name, VEK_CMD_PARAM_ASSIGNMENT_RAW_FILE_ID,
                                                               m_inputs.raw_files[i].id, ""))) {
                return false;
            }
        }
        return true;
    }

    bool add_partition(const std::string& name)
    {
        return set(VEK_CMD_OPT_FLASH_DEVICE, {{VEK_CMD_PARAM_FLASH_DEVICE_ID, m_device_id},
                                              {VEK_CMD_PARAM_FLASH_DEVICE_PARTITION_ID, name},
                                              {VEK_CMD_PARAM_FLASH_DEVICE_PARTITION_S_ADDR, "auto"},
                                              {VEK_CMD_PARAM_FLASH_DEVICE_PARTITION_E_ADDR, "auto"}});
    }

    PGM_COMMON_XML_VEK_VEK& m_document;
    const std::string& m_device_id;
    const FLASH_INPUTS& m_inputs;
    std::string& m_message;
    std::size_t m_placed = 0; ///< bitstreams that have a partition
    unsigned m_own = 0;       ///< partitions named P1, P2...
};

} // namespace

bool lay_out_inputs(PGM_COMMON_XML_VEK_VEK& document, const std::string& device_id,
                    const FLASH_INPUTS& inputs, std::string& message)
{
    return ARRANGER(document, device_id, inputs, message).run();
}
