#include "fio_path.h"
#include "msg_internal_error.h"
#include "pgm_common_ini.h"
#include "pgmio_device_file_reader.h"
#include "vek_db.h"
#include "vek_frame_wnd_cache.h"
#include "vek_model_config_device.h"
#include "vek_msgs.h"
#include "vek_util.h"

#include <algorithm>
#include <memory>

namespace
{

constexpr char FLASH_DEVICE_ID_PREFIX[] = "Flash_Device_";

std::string to_text(bool value)
{
    return VEK_FILE_ASSISTANT::convert_bool_to_string(value);
}

std::string to_text(unsigned value)
{
    return VEK_FILE_ASSISTANT::convert_dword_to_string(value);
}

bool shows_test_options()
{
    return PGM_COMMON_INI::get_encrypted_timing_boolean(PGM_COMMON_INI::TEST_OPTIONS, false, false, false,
                                                        nullptr, nullptr);
}

/// What a bitstream file decides about its device; the other options are the user's alone.
template <typename FUNCTION>
void for_each_file_option(FUNCTION function)
{
    using INFO = DSET_OTI_DEV_OPTIONS_INFO;
    function(&INFO::power_on_scheme);
    function(&INFO::user_ios_weak_pullup);
    function(&INFO::option_flag_a);
    function(&INFO::verify_protect);
    function(&INFO::spi_mode);
    function(&INFO::fallback_enabled);
    function(&INFO::fallback_address);
    function(&INFO::force_ssmclk_to_use_ismclk);
}

} // namespace

int VEK_MODEL_CONFIG_DEVICE::add_device(const std::string& device_name, bool /*unused*/)
{
    PGM_COMMON_XML_VEK_VEK* const document = m_vek.get();
    const auto row = static_cast<int>(VEK_FILE_ASSISTANT::get_flash_device_elements(document).size());
    std::string id;
    unsigned number = 1;
    do {
        id = FLASH_DEVICE_ID_PREFIX + std::to_string(number++);
    } while (VEK_FILE_ASSISTANT::get_flash_device_element(document, id) != nullptr);

    beginInsertRows(QModelIndex(), row, row);
    set_params(VEK_CMD_OPT_FLASH_DEVICE,
               {{VEK_CMD_PARAM_FLASH_DEVICE_ID, id}, {VEK_CMD_PARAM_FLASH_DEVICE_TYPE, device_name}});
    endInsertRows();

    for (const VEK_FILE_TYPE type : VEK_FILE_ASSISTANT::get_output_file_types(document, true)) {
        // An output that cannot take the device goes without it.
        VEK_FILE_ASSISTANT::set(document, VEK_CMD_OPT_OUTPUT_FILE,
                                {{VEK_CMD_PARAM_OUTPUT_FILE_TYPE,
                                  VEK_FILE_ASSISTANT::convert_xml_enum_to_string(VEK_DB::get_xml_enum(type))},
                                 {VEK_CMD_PARAM_OUTPUT_FILE_FLASH_DEVICE_ID, id}});
    }
    emit config_device_changed();
    add_reserved_partitions(id);
    return row;
}

void VEK_MODEL_CONFIG_DEVICE::add_reserved_partitions(const std::string& device_id)
{
    const bool two_bitstreams = VEK_FILE_ASSISTANT::get_bitstream_elements(m_vek.get()).size() >= 2;
    const auto raw_files = VEK_FILE_ASSISTANT::get_raw_file_elements(m_vek.get());
    const bool has_puf = std::any_of(raw_files.begin(), raw_files.end(), [](const auto* raw_file) {
        return VEK_FILE_ASSISTANT::convert_string_to_xml_enum(raw_file->type) == PGM_COMMON_XML_ENUM_PUF;
    });
    const auto partitions =
        VEK_UTIL::get_reserved_partitions(m_cache->config_mode, m_cache->family, m_cache->device,
                                          two_bitstreams && m_cache->partition_rule_flag_a,
                                          has_puf && m_cache->partition_rule_flag_b, FIO_INVALID_FILE);
    for (const VEK_UTIL_PARTITION_INFO& partition : partitions) {
        add_partition(partition.name, true, partition.start, partition.end, std::string(), device_id,
                      partition.size, partition.extra_space, partition.fixed_start, partition.fixed_end,
                      partition.has_page, partition.page);
    }
}

void VEK_MODEL_CONFIG_DEVICE::update_device(const std::string& device_id,
                                            const DSET_OTI_DEV_OPTIONS_INFO& options)
{
    VEK_FILE_ASSISTANT::PARAMS params{
        {VEK_CMD_PARAM_FLASH_DEVICE_ID, device_id},
        {VEK_CMD_PARAM_FLASH_DEVICE_POWER_ON_SCHEME, to_text(options.power_on_scheme)},
        {VEK_CMD_PARAM_FLASH_DEVICE_ENABLE_USER_IOS_WEAK_PULLUP, to_text(options.user_ios_weak_pullup)},
        {VEK_CMD_PARAM_FLASH_DEVICE_CONFIG_FROM_CFM0_ONLY, to_text(!options.not_cfm0_only)},
        {VEK_CMD_PARAM_FLASH_DEVICE_ISP_SOURCE, to_text(options.isp_source)},
        {VEK_CMD_PARAM_FLASH_DEVICE_ENABLE_VERIFY_PROTECT, to_text(options.verify_protect)},
        {VEK_CMD_PARAM_FLASH_DEVICE_ENABLE_ENCRYPTED_POF_ONLY, to_text(options.encrypted_pof_only)},
        {VEK_CMD_PARAM_FLASH_DEVICE_WATCHDOG_VALUE,
         options.watchdog_enabled ? to_text(options.watchdog_value) : std::string()},
        {VEK_CMD_PARAM_FLASH_DEVICE_UFM_SOURCE, to_text(options.ufm_source)},
        {VEK_CMD_PARAM_FLASH_DEVICE_UFM_SOURCE_FILE,
         options.ufm_source == 2 ? options.ufm_source_file : std::string()}};
    if (PGM_COMMON_INI::get_boolean(PGM_COMMON_INI::SECURITY_OPTIONS, false)) {
        params.emplace_back(VEK_CMD_PARAM_FLASH_DEVICE_ENABLE_JTAG_SECURITY, to_text(options.jtag_security));
    }
    if (PGM_COMMON_INI::get_boolean(PGM_COMMON_INI::SPI_OPTIONS, false)) {
        params.emplace_back(VEK_CMD_PARAM_FLASH_DEVICE_ENABLE_SPI_MODE, to_text(options.spi_mode));
        params.emplace_back(VEK_CMD_PARAM_FLASH_DEVICE_FALLBACK_ADDRESS,
                            options.fallback_enabled ? to_text(options.fallback_address) : std::string());
        params.emplace_back(VEK_CMD_PARAM_FLASH_DEVICE_FORCE_SSMCLK_TO_USE_ISMCLK,
                            to_text(options.force_ssmclk_to_use_ismclk));
    }
    if (shows_test_options()) {
        params.emplace_back(VEK_CMD_PARAM_FLASH_DEVICE_ENABLE_TEST, to_text(options.enable_test));
        params.emplace_back(VEK_CMD_PARAM_FLASH_DEVICE_DISABLE_TEST, to_text(options.disable_test));
    }
    set_params(VEK_CMD_OPT_FLASH_DEVICE, params);
}

void VEK_MODEL_CONFIG_DEVICE::add_partition(const std::string& name, bool reserved, const std::string& start,
                                            const std::string& end, const std::string& input_id,
                                            const std::string& device_id, unsigned size, unsigned extra_space,
                                            bool fixed_start, bool fixed_end, bool has_page, unsigned page)
{
    const auto* const device = VEK_FILE_ASSISTANT::get_flash_device_element(m_vek.get(), device_id);
    if (device == nullptr) {
        return;
    }
    const auto row = static_cast<int>(device->partition.size());
    const PGM_COMMON_XML_ENUM kind = get_input_kind(input_id);

    beginInsertRows(get_device_index(device_id), row, row);
    VEK_FILE_ASSISTANT::PARAMS params{
        {VEK_CMD_PARAM_FLASH_DEVICE_ID, device_id},
        {VEK_CMD_PARAM_FLASH_DEVICE_PARTITION_ID, name},
        {VEK_CMD_PARAM_FLASH_DEVICE_PARTITION_RESERVED, to_text(reserved)},
        {VEK_CMD_PARAM_FLASH_DEVICE_PARTITION_FIXED_S_ADDR, to_text(fixed_start)},
        {VEK_CMD_PARAM_FLASH_DEVICE_PARTITION_FIXED_E_ADDR, to_text(fixed_end)},
        {VEK_CMD_PARAM_FLASH_DEVICE_PARTITION_S_ADDR, start},
        {VEK_CMD_PARAM_FLASH_DEVICE_PARTITION_E_ADDR, end},
        {VEK_CMD_PARAM_FLASH_DEVICE_PARTITION_SIZE, to_text(size)}};
    if (extra_space != 0) {
        params.emplace_back(VEK_CMD_PARAM_FLASH_DEVICE_PARTITION_EXTRA_SPACE, to_text(extra_space));
    }
    set_params(VEK_CMD_OPT_FLASH_DEVICE, params);

    if (kind != PGM_COMMON_XML_ENUM__INVALID__) {
        params = {{VEK_CMD_PARAM_ASSIGNMENT_PARTITION_ID, name}};
        if (has_page) {
            params.emplace_back(VEK_CMD_PARAM_ASSIGNMENT_PAGE, to_text(page));
        }
        if (kind == PGM_COMMON_XML_ENUM_BITSTREAM) {
            params.emplace_back(VEK_CMD_PARAM_ASSIGNMENT_BITSTREAM_ID, input_id);
        } else if (kind == PGM_COMMON_XML_ENUM_RAW_FILE) {
            params.emplace_back(VEK_CMD_PARAM_ASSIGNMENT_RAW_FILE_ID, input_id);
        } else {
            VEK_ASSERT_TEXT(false, "Unrecognized input file type");
        }
        set_params(VEK_CMD_OPT_ASSIGNMENT, params);
    }
    endInsertRows();
    emit partition_changed();
}

void VEK_MODEL_CONFIG_DEVICE::update_partition(const std::string& new_name, const std::string& start,
                                               const std::string& end, const std::string& input_id,
                                               const std::string& old_name, const std::string& device_id,
                                               bool fixed_start, bool fixed_end, bool has_page, unsigned page)
{
    PGM_COMMON_XML_VEK_VEK* const document = m_vek.get();
    if (VEK_FILE_ASSISTANT::get_flash_device_element(document, device_id) == nullptr) {
        return;
    }
    if (new_name != old_name) {
        const bool success = VEK_FILE_ASSISTANT::modify_partition_id(document, new_name, old_name, device_id);
        VEK_ASSERT(success);
    }
    const PGM_COMMON_XML_ENUM kind = get_input_kind(input_id);
    VEK_FILE_ASSISTANT::PARAMS params{{VEK_CMD_PARAM_FLASH_DEVICE_ID, device_id},
                                      {VEK_CMD_PARAM_FLASH_DEVICE_PARTITION_ID, new_name}};
    if (!fixed_start) {
        params.emplace_back(VEK_CMD_PARAM_FLASH_DEVICE_PARTITION_S_ADDR, start);
    }
    if (!fixed_end) {
        params.emplace_back(VEK_CMD_PARAM_FLASH_DEVICE_PARTITION_E_ADDR, end);
    }
    set_params(VEK_CMD_OPT_FLASH_DEVICE, params);

    if (kind == PGM_COMMON_XML_ENUM__INVALID__) {
        if (VEK_FILE_ASSISTANT::get_assignment_element(document, new_name) != nullptr) {
            remove_params(VEK_CMD_OPT_ASSIGNMENT, {{VEK_CMD_PARAM_ASSIGNMENT_PARTITION_ID, new_name}});
        }
    } else {
        const auto* const bitstream_id = VEK_FILE_ASSISTANT::get_bitstream_id_element(document, old_name);
        const auto* const raw_id = VEK_FILE_ASSISTANT::get_raw_file_id_element(document, old_name);
        if (bitstream_id != nullptr || raw_id != nullptr) {
            params = {{VEK_CMD_PARAM_ASSIGNMENT_PARTITION_ID, old_name}};
            if (bitstream_id != nullptr) {
                params.emplace_back(VEK_CMD_PARAM_ASSIGNMENT_BITSTREAM_ID, bitstream_id->text);
            } else {
                params.emplace_back(VEK_CMD_PARAM_ASSIGNMENT_RAW_FILE_ID, raw_id->text);
            }
            remove_params(VEK_CMD_OPT_ASSIGNMENT, params);
        }
        params = {{VEK_CMD_PARAM_ASSIGNMENT_PARTITION_ID, new_name}};
        if (kind == PGM_COMMON_XML_ENUM_BITSTREAM) {
            params.emplace_back(VEK_CMD_PARAM_ASSIGNMENT_BITSTREAM_ID, input_id);
            if (has_page) {
                params.emplace_back(VEK_CMD_PARAM_ASSIGNMENT_PAGE, to_text(page));
            }
        } else if (kind == PGM_COMMON_XML_ENUM_RAW_FILE) {
            params.emplace_back(VEK_CMD_PARAM_ASSIGNMENT_RAW_FILE_ID, input_id);
        }
        set_params(VEK_CMD_OPT_ASSIGNMENT, params);
    }
    check_options(new_name, device_id);
    announce_partition(new_name, device_id);
}

void VEK_MODEL_CONFIG_DEVICE::update_partition(const std::string& name, const std::string& device_id,
                                               const std::vector<std::string>& raw_ids)
{
    PGM_COMMON_XML_VEK_VEK* const document = m_vek.get();
    if (VEK_FILE_ASSISTANT::get_flash_device_element(document, device_id) == nullptr) {
        return;
    }
    if (raw_ids.empty()) {
        if (VEK_FILE_ASSISTANT::get_assignment_element(document, name) != nullptr) {
            remove_params(VEK_CMD_OPT_ASSIGNMENT, {{VEK_CMD_PARAM_ASSIGNMENT_PARTITION_ID, name}});
        }
    } else {
        VEK_FILE_ASSISTANT::PARAMS params{{VEK_CMD_PARAM_ASSIGNMENT_PARTITION_ID, name}};
        for (const auto* const raw_id : VEK_FILE_ASSISTANT::get_raw_file_id_elements(document, name)) {
            params.emplace_back(VEK_CMD_PARAM_ASSIGNMENT_RAW_FILE_ID, raw_id->text);
        }
        if (params.size() > 1) {
            remove_params(VEK_CMD_OPT_ASSIGNMENT, params);
        }
        params.resize(1);
        for (const std::string& raw_id : raw_ids) {
            if (VEK_FILE_ASSISTANT::get_input_file_type(document, raw_id) == PGM_COMMON_XML_ENUM_RAW_FILE) {
                params.emplace_back(VEK_CMD_PARAM_ASSIGNMENT_RAW_FILE_ID, raw_id);
            }
        }
        set_params(VEK_CMD_OPT_ASSIGNMENT, params);
    }
    announce_partition(name, device_id);
}

void VEK_MODEL_CONFIG_DEVICE::remove_partition(const std::string& name, const std::string& device_id)
{
    const int row = get_partition_row(name, device_id);
    beginRemoveRows(get_device_index(device_id), row, row);
    remove_params(VEK_CMD_OPT_FLASH_DEVICE, {{VEK_CMD_PARAM_FLASH_DEVICE_ID, device_id},
                                             {VEK_CMD_PARAM_FLASH_DEVICE_PARTITION_ID, name}});
    remove_params(VEK_CMD_OPT_ASSIGNMENT, {{VEK_CMD_PARAM_ASSIGNMENT_PARTITION_ID, name}});
    endRemoveRows();
    emit partition_changed();
}

void VEK_MODEL_CONFIG_DEVICE::remove_device(const std::string& device_id)
{
    std::vector<std::string> names;
    for (const auto* const partition : VEK_FILE_ASSISTANT::get_partition_elements(m_vek.get(), device_id)) {
        names.push_back(partition->id);
    }
    for (const auto* const mbr : VEK_FILE_ASSISTANT::get_mbr_elements(m_vek.get(), device_id)) {
        names.push_back(mbr->id);
    }
    for (const std::string& name : names) {
        remove_partition(name, device_id);
    }
    const int row = get_device_index(device_id).row();
    beginRemoveRows(QModelIndex(), row, row);
    remove_params(VEK_CMD_OPT_FLASH_DEVICE, {{VEK_CMD_PARAM_FLASH_DEVICE_ID, device_id}});
    endRemoveRows();
    emit config_device_changed();
}

void VEK_MODEL_CONFIG_DEVICE::clear()
{
    for (const std::string& id : VEK_FILE_ASSISTANT::get_flash_device_ids(m_vek.get())) {
        remove_device(id);
    }
}

void VEK_MODEL_CONFIG_DEVICE::add_mbr_partition(const std::string& /*name*/, bool /*reserved*/,
                                                const std::string& /*start*/, const std::string& /*end*/,
                                                const std::string& /*input_id*/,
                                                const std::string& /*mbr_id*/, const std::string& device_id,
                                                bool /*fixed_start*/, bool /*fixed_end*/)
{
    if (VEK_FILE_ASSISTANT::get_flash_device_element(m_vek.get(), device_id) != nullptr) {
        emit partition_changed();
    }
}

void VEK_MODEL_CONFIG_DEVICE::remove_mbr_partition(const std::string& /*name*/, const std::string& /*mbr_id*/,
                                                   const std::string& /*device_id*/)
{
    emit partition_changed();
}

/// BITSTREAM or RAW_FILE, invalid for no input at all.
PGM_COMMON_XML_ENUM VEK_MODEL_CONFIG_DEVICE::get_input_kind(const std::string& input_id) const
{
    if (input_id.empty()) {
        return PGM_COMMON_XML_ENUM__INVALID__;
    }
    const PGM_COMMON_XML_ENUM input_file_type =
        VEK_FILE_ASSISTANT::get_input_file_type(m_vek.get(), input_id);
    VEK_ASSERT(input_file_type != PGM_COMMON_XML_ENUM__INVALID__);
    return input_file_type;
}

void VEK_MODEL_CONFIG_DEVICE::set_params(PGM_COMMON_XML_VEK_CMD_OPT_ENUM option,
                                         const VEK_FILE_ASSISTANT::PARAMS& params)
{
    const bool success = VEK_FILE_ASSISTANT::set(m_vek.get(), option, params);
    VEK_ASSERT(success);
}

void VEK_MODEL_CONFIG_DEVICE::remove_params(PGM_COMMON_XML_VEK_CMD_OPT_ENUM option,
                                            const VEK_FILE_ASSISTANT::PARAMS& params)
{
    const bool success = VEK_FILE_ASSISTANT::remove(m_vek.get(), option, params);
    VEK_ASSERT(success);
}

void VEK_MODEL_CONFIG_DEVICE::announce_partition(const std::string& name, const std::string& device_id)
{
    emit partition_changed();
    const QModelIndex changed = index(get_partition_row(name, device_id), 0, get_device_index(device_id));
    emit dataChanged(changed, changed);
}

void VEK_MODEL_CONFIG_DEVICE::check_options(const std::string& partition_id, const std::string& device_id)
{
    PGM_COMMON_XML_VEK_VEK* const document = m_vek.get();
    const auto* const bitstream_id = VEK_FILE_ASSISTANT::get_bitstream_id_element(document, partition_id);
    if (m_cache->family != DEV_FAMILY_ONCHIP_FLASH || bitstream_id == nullptr) {
        return;
    }
    const auto path_elements = VEK_FILE_ASSISTANT::get_path_elements(document, bitstream_id->text);
    VEK_ASSERT(path_elements.size() == 1);
    PGMIO_BITFIELD* read_bitfield = nullptr;
    bool success = PGMIO_DEVICE_FILE_READER::read_file(FIO_PATH(path_elements.front()->text), nullptr,
                                                       &read_bitfield, nullptr);
    const std::unique_ptr<PGMIO_BITFIELD> bitfield(read_bitfield);
    VEK_ASSERT(success);
    if (bitfield == nullptr || !bitfield->has_option_block()) {
        return;
    }
    DSET_OTI_DEV_OPTIONS_INFO from_file;
    bitfield->read_oti_icb_data_for_sof(&from_file);
    DSET_OTI_DEV_OPTIONS_INFO current;
    success = VEK_FILE_ASSISTANT::get_internal_configuration_options(document, current, device_id);
    VEK_ASSERT(success);

    bool differs = false;
    for_each_file_option([&](auto option) { differs = differs || from_file.*option != current.*option; });
    if (!differs || vek_report(MSG_VEK::YN::OVERWRITE_OPTIONS()) != MSG_ANSWER_YES) {
        return;
    }
    for_each_file_option([&](auto option) { current.*option = from_file.*option; });
    update_device(device_id, current);
}
