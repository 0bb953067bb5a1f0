#include "fio_path.h"
#include "msg_internal_error.h"
#include "nivo_dialog_modules.h"
#include "pgm_common_ini.h"
#include "thr_drl.h"
#include "vek_dlg_partition_properties.h"
#include "vek_dlg_puf_partition_properties.h"
#include "vek_file_assistant.h"
#include "vek_frame_wnd_cache.h"
#include "vek_gui_util.h"
#include "vek_tab_config_device.h"
#include "vek_tree_config_device.h"
#include "vek_util.h"

#include <QMessageBox>

namespace
{

constexpr char PARTITION_ID_PREFIX[] = "P";
constexpr char BOOT_INFO_NAME[] = "BOOT_INFO";
constexpr char CFM0_NAME[] = "CFM0";
constexpr char CFM1_NAME[] = "CFM1";

using DLG = VEK_DLG_PARTITION_PROPERTIES;

bool is_kind(const PGM_COMMON_XML_ELEMENT* element, PGM_COMMON_XML_ENUM kind)
{
    return element != nullptr && element->m_class_type == kind;
}

/// The id of a bitstream or a raw file, empty for no input.
std::string get_input_id(const PGM_COMMON_XML_ELEMENT* input)
{
    if (is_kind(input, PGM_COMMON_XML_ENUM_BITSTREAM)) {
        return static_cast<const PGM_COMMON_XML_VEK_BITSTREAM*>(input)->id;
    }
    if (is_kind(input, PGM_COMMON_XML_ENUM_RAW_FILE)) {
        return static_cast<const PGM_COMMON_XML_VEK_RAW_FILE*>(input)->id;
    }
    return {};
}

const PGM_COMMON_XML_VEK_FLASH_DEVICE& get_flash_device(const PGM_COMMON_XML_VEK_PARTITION& partition)
{
    const PGM_COMMON_XML_ELEMENT* const flash_device = partition.get_parent();
    VEK_ASSERT(flash_device != nullptr);
    return *static_cast<const PGM_COMMON_XML_VEK_FLASH_DEVICE*>(flash_device);
}

DSET_OTI_DEV_OPTIONS_INFO get_options(const PGM_COMMON_XML_VEK_VEK* document, const std::string& device_id)
{
    DSET_OTI_DEV_OPTIONS_INFO options;
    const bool success = VEK_FILE_ASSISTANT::get_internal_configuration_options(document, options, device_id);
    VEK_ASSERT(success);
    return options;
}

} // namespace

void VEK_TAB_CONFIG_DEVICE::add_partition()
{
    const PGM_COMMON_XML_ELEMENT* const current = get_current_element();
    const bool is_owner =
        is_kind(current, PGM_COMMON_XML_ENUM_FLASH_DEVICE) || is_kind(current, PGM_COMMON_XML_ENUM_MBR);
    const PGM_COMMON_XML_ELEMENT* const parent =
        is_owner || current == nullptr ? current : current->get_parent();
    VEK_ASSERT(parent != nullptr);
    std::string prefix;
    std::string device_id;
    if (is_kind(parent, PGM_COMMON_XML_ENUM_FLASH_DEVICE)) {
        prefix = PARTITION_ID_PREFIX;
        device_id = static_cast<const PGM_COMMON_XML_VEK_FLASH_DEVICE*>(parent)->id;
    }
    VEK_ASSERT(!prefix.empty());

    std::string name;
    unsigned number = 1;
    do {
        name = prefix + std::to_string(number++);
    } while (VEK_FILE_ASSISTANT::get_partition_element(m_vek.get(), device_id, name) != nullptr);
    DLG dialog(DLG::DLG_TYPE_ADD, m_vek, m_cache, name, device_id, nullptr);
    if (dialog.exec() == QDialog::Accepted) {
        m_config_device_tree->add_partition(dialog.get_name(), false, dialog.get_start_address(),
                                            dialog.get_end_address(), get_input_id(dialog.get_input_file()),
                                            device_id, false, false, true, dialog.get_page());
    }
}

void VEK_TAB_CONFIG_DEVICE::edit()
{
    const PGM_COMMON_XML_ELEMENT* const current_element = get_current_element();
    VEK_ASSERT(current_element != nullptr);
    if (is_kind(current_element, PGM_COMMON_XML_ENUM_FLASH_DEVICE)) {
        edit_flash_device(*static_cast<const PGM_COMMON_XML_VEK_FLASH_DEVICE*>(current_element));
    } else if (is_kind(current_element, PGM_COMMON_XML_ENUM_PARTITION)) {
        edit_partition(static_cast<const PGM_COMMON_XML_VEK_PARTITION*>(current_element));
    }
}

void VEK_TAB_CONFIG_DEVICE::edit_partition(const PGM_COMMON_XML_VEK_PARTITION* partition)
{
    VEK_ASSERT_TEXT(partition != nullptr, "partition");
    if (partition->id.starts_with("UFM")) {
        edit_ufm_partition(partition);
    } else if (partition->id.starts_with("PUF")) {
        edit_puf_partition(partition);
    } else {
        edit_generic_partition(partition);
    }
}

void VEK_TAB_CONFIG_DEVICE::edit_flash_device(const PGM_COMMON_XML_VEK_FLASH_DEVICE& flash_device)
{
    if (m_cache->family != DEV_FAMILY_ONCHIP_FLASH) {
        return;
    }
    const std::string device_id = flash_device.id;
    DSET_OTI_DEV_OPTIONS_INFO options = get_options(m_vek.get(), device_id);
    const bool dual = m_cache->config_mode == PGMIO_CONFIG_SCHEME_DUAL_COMPRESSED_IMAGES;
    QList<QString> sectors{QString::fromLatin1(CFM0_NAME)};
    if (dual) {
        sectors << QString::fromLatin1(CFM1_NAME);
    }
    const THR_DRL_HANDLE module = thr_drl_load(NIVO_OPTIONS_DLG_MODULE);
    VEK_ASSERT_TEXT(module != nullptr, thr_drl_get_error());
    const auto show =
        reinterpret_cast<NIVO_OPTIONS_DLG_SHOW>(thr_drl_find_function(module, NIVO_OPTIONS_DLG_ENTRY));
    VEK_ASSERT_TEXT(show != nullptr, thr_drl_get_error());
    const bool timing = PGM_COMMON_INI::get_encrypted_timing_boolean(PGM_COMMON_INI::TEST_OPTIONS, false,
                                                                     false, false, nullptr, nullptr);
    const bool security = PGM_COMMON_INI::get_boolean(PGM_COMMON_INI::SECURITY_OPTIONS, false);
    {
        QString summary;
        show(this, &options, true, dual, timing, security, sectors, &summary, true);
    }
    thr_drl_unload(module);
    m_config_device_tree->update_device(device_id, options);
}

const PGM_COMMON_XML_ELEMENT* VEK_TAB_CONFIG_DEVICE::get_ufm_source(const DSET_OTI_DEV_OPTIONS_INFO& options,
                                                                    const std::string& device_id) const
{
    if (options.ufm_source < 2) {
        return VEK_FILE_ASSISTANT::get_partition_element(m_vek.get(), device_id,
                                                         options.ufm_source == 0 ? CFM0_NAME : CFM1_NAME);
    }
    for (const auto* const raw_file : VEK_FILE_ASSISTANT::get_raw_file_elements(m_vek.get())) {
        if (options.ufm_source == 2 && FIO_PATH(raw_file->text) == FIO_PATH(options.ufm_source_file)) {
            return raw_file;
        }
    }
    return nullptr;
}

void VEK_TAB_CONFIG_DEVICE::edit_ufm_partition(const PGM_COMMON_XML_VEK_PARTITION* ufm_partition)
{
    VEK_ASSERT_TEXT(ufm_partition != nullptr, "ufm_partition");
    const std::string device_id = get_flash_device(*ufm_partition).id;
    DLG dialog(DLG::DLG_TYPE_UFM, m_vek, m_cache, ufm_partition->id, device_id, nullptr);
    DSET_OTI_DEV_OPTIONS_INFO options = get_options(m_vek.get(), device_id);
    dialog.set_input_file(get_ufm_source(options, device_id));
    if (dialog.exec() != QDialog::Accepted) {
        return;
    }
    const PGM_COMMON_XML_ELEMENT* const input = dialog.get_input_file();
    if (is_kind(input, PGM_COMMON_XML_ENUM_PARTITION)) {
        const std::string& name = static_cast<const PGM_COMMON_XML_VEK_PARTITION*>(input)->id;
        if (name == CFM0_NAME || name == CFM1_NAME) {
            options.ufm_source = name == CFM0_NAME ? 0 : 1;
            options.ufm_source_file.clear();
        }
    } else if (is_kind(input, PGM_COMMON_XML_ENUM_RAW_FILE)) {
        options.ufm_source = 2;
        options.ufm_source_file = static_cast<const PGM_COMMON_XML_VEK_RAW_FILE*>(input)->text;
    }
    m_config_device_tree->update_device(device_id, options);
}

void VEK_TAB_CONFIG_DEVICE::edit_generic_partition(const PGM_COMMON_XML_VEK_PARTITION* partition)
{
    VEK_ASSERT_TEXT(partition != nullptr, "partition");
    const PGM_COMMON_XML_VEK_VEK* const document = m_vek.get();
    const std::string name = partition->id;
    const std::string device_id = get_flash_device(*partition).id;
    const PGM_COMMON_XML_ELEMENT* present = nullptr;
    if (const auto* const bitstream_id = VEK_FILE_ASSISTANT::get_bitstream_id_element(document, name)) {
        present = VEK_FILE_ASSISTANT::get_bitstream_element(document, bitstream_id->text);
    } else if (const auto* const raw_id = VEK_FILE_ASSISTANT::get_raw_file_id_element(document, name)) {
        present = VEK_FILE_ASSISTANT::get_raw_file_element(document, raw_id->text);
    }
    DLG dialog(name.starts_with("CFM") ? DLG::DLG_TYPE_CFM : DLG::DLG_TYPE_EDIT, m_vek, m_cache, name,
               device_id, nullptr);
    dialog.set_input_file(present);
    if (dialog.exec() != QDialog::Accepted) {
        return;
    }
    const PGM_COMMON_XML_ELEMENT* const input = dialog.get_input_file();
    if (name == BOOT_INFO_NAME && is_kind(input, PGM_COMMON_XML_ENUM_BITSTREAM) &&
        !accepts_boot_info(get_input_id(input))) {
        return;
    }
    const bool fixed_start = VEK_FILE_ASSISTANT::convert_string_to_bool(partition->fixed_s_addr);
    const bool fixed_end = VEK_FILE_ASSISTANT::convert_string_to_bool(partition->fixed_e_addr);
    const bool has_page = VEK_UTIL::partition_has_page(name, m_cache->current_mode, m_cache->family,
                                                       m_cache->device, m_cache->partition_rule_flag_a,
                                                       m_cache->partition_rule_flag_b, get_first_file_type());
    m_config_device_tree->update_partition(dialog.get_name(), dialog.get_start_address(),
                                           dialog.get_end_address(), get_input_id(input), name, device_id,
                                           fixed_start, fixed_end, has_page, dialog.get_page());
}

bool VEK_TAB_CONFIG_DEVICE::accepts_boot_info(const std::string& bitstream_id)
{
    const auto path_elements = VEK_FILE_ASSISTANT::get_path_elements(m_vek.get(), bitstream_id);
    VEK_ASSERT(!path_elements.empty());
    const std::string& path = path_elements.front()->text;
    std::string message;
    if (path.empty() || VEK_UTIL::check_boot_info(path, message)) {
        return true;
    }
    QMessageBox box(QMessageBox::Critical, tr("Imagewright"), VEK_GUI_UTIL::from_local(message),
                    QMessageBox::Ok, this);
    box.exec();
    return false;
}

void VEK_TAB_CONFIG_DEVICE::edit_puf_partition(const PGM_COMMON_XML_VEK_PARTITION* partition)
{
    VEK_ASSERT_TEXT(partition != nullptr, "partition");
    const std::string name = partition->id;
    const std::string device_id = get_flash_device(*partition).id;
    const PGM_COMMON_XML_ELEMENT* puf_file = nullptr;
    const PGM_COMMON_XML_ELEMENT* wkey_file = nullptr;
    for (const auto* const raw_id : VEK_FILE_ASSISTANT::get_raw_file_id_elements(m_vek.get(), name)) {
        const auto* const raw_file = VEK_FILE_ASSISTANT::get_raw_file_element(m_vek.get(), raw_id->text);
        if (raw_file == nullptr) {
            continue;
        }
        const PGM_COMMON_XML_ENUM type = VEK_FILE_ASSISTANT::convert_string_to_xml_enum(raw_file->type);
        if (type == PGM_COMMON_XML_ENUM_PUF) {
            puf_file = raw_file;
        } else if (type == PGM_COMMON_XML_ENUM_WKEY) {
            wkey_file = raw_file;
        }
    }
    VEK_DLG_PUF_PARTITION_PROPERTIES dialog(m_vek, name, nullptr);
    dialog.set_puf_file(puf_file);
    dialog.set_wkey_file(wkey_file);
    if (dialog.exec() != QDialog::Accepted) {
        return;
    }
    std::vector<std::string> ids;
    for (const PGM_COMMON_XML_ELEMENT* const file : {dialog.get_puf_file(), dialog.get_wkey_file()}) {
        if (file != nullptr) {
            ids.push_back(get_input_id(file));
        }
    }
    m_config_device_tree->update_partition(name, device_id, ids);
}
