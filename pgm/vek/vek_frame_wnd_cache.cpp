// The session cache of the frame, and what a change of family or mode does.

#include "vek_frame_wnd_cache.h"

#include "brim_manager.h"
#include "gfpdb_mgr.h"
#include "msg_internal_error.h"
#include "pgm_common_xml_vek_auto_export.h"
#include "pgm_device.h"
#include "vek_db.h"
#include "vek_file_assistant.h"
#include "vek_frame_wnd.h"
#include "vek_gui_util.h"
#include "vek_tab_config_device.h"
#include "vek_tab_input_files.h"
#include "vek_tab_output_files.h"
#include "vek_util.h"

#include <QComboBox>
#include <QMessageBox>
#include <QTabWidget>

#include <set>

namespace
{

enum TAB : int { TAB_OUTPUT_FILES = 0, TAB_INPUT_FILES = 1, TAB_CONFIG_DEVICE = 2 };

/// Moving within this group changes the width of the bus alone, which is no reason to lose a setup.
bool is_lnks_mode(PGMIO_CONFIG_SCHEME mode)
{
    return mode >= PGMIO_CONFIG_SCHEME_LNKS_X8 && mode <= PGMIO_CONFIG_SCHEME_LNKS_X32;
}

/// The integer that a combo keeps with an entry; false where there is no entry.
bool read_item_data(const QVariant& data, int& value)
{
    if (!data.isValid()) {
        return false;
    }
    VEK_ASSERT(data.canConvert<int>());
    value = data.toInt();
    return true;
}

bool is_offered(const PGM_DEVICE& device)
{
    if ((device.ask_not_listed && device.is_dev_not_listed()) ||
        (device.ask_no_pof && device.is_dev_no_pof()) || device.name.empty()) {
        return false;
    }
    return !VEK_DB_UTIL::is_configuration_family(device.family) &&
           VEK_DB_UTIL::is_supported_family(device.family) && device.family != DEV_FAMILY_NOT_OFFERED;
}

} // namespace

std::shared_ptr<PGM_COMMON_XML_VEK_VEK> VEK_FRAME_WND::create_document()
{
    return std::make_shared<PGM_COMMON_XML_VEK_VEK>(PGM_COMMON_XML_ENUM_VEK);
}

/// An empty document, which must not be saved over the file that was in the window before.
void VEK_FRAME_WND::start_new_setup()
{
    m_vek = create_document();
    forget_file();
}

void VEK_FRAME_WND::reset_cache()
{
    VEK_FRAME_WND_CACHE fresh;
    fresh.sof_encryption_by_path = std::move(m_cache->sof_encryption_by_path);
    fresh.partition_rule_flag_b = m_cache->partition_rule_flag_b;
    *m_cache = std::move(fresh);
}

void VEK_FRAME_WND::reset_cache_family_device(bool repopulate)
{
    VEK_ASSERT(m_cache != nullptr);
    int value = 0;
    if (!read_item_data(m_family_combo->currentData(), value)) {
        return;
    }
    const auto family = static_cast<DEV_FAMILY_ENUM>(value);
    if (family == m_cache->family) {
        return;
    }
    m_cache->family = family;
    m_cache->device = DEV_DEVICE_NONE;
    m_cache->device_name.clear();
    m_cache->config_mode = PGMIO_CONFIG_SCHEME_ILLEGAL;
    if (family != DEV_FAMILY_NONE) {
        VEK_UTIL::get_family_pcf_info(family, DEV_DEVICE_NONE, m_cache->mode_mask_a, m_cache->mode_mask_b,
                                      m_cache->output_file_mask);
    } else {
        m_cache->mode_mask_a = ~std::uint32_t{0};
        m_cache->mode_mask_b = ~std::uint32_t{0};
        m_cache->output_file_mask = 0;
    }
    if (repopulate) {
        repopulate_mode_combo();
    }
}

void VEK_FRAME_WND::update_cache()
{
    VEK_ASSERT(m_vek != nullptr);
    if (VEK_FILE_ASSISTANT::get_bitstream_elements(m_vek.get()).empty()) {
        reset_cache_family_device(false);
    }
}

void VEK_FRAME_WND::set_family(DEV_FAMILY_ENUM family)
{
    if (family == DEV_FAMILY_NONE) {
        family = DEV_FAMILY_DEFAULT_CHOICE;
    }
    m_family_combo->setCurrentIndex(m_family_combo->findData(static_cast<int>(family)));
}

void VEK_FRAME_WND::set_family(int /*index*/)
{
    reset_cache_family_device(true);
}

void VEK_FRAME_WND::load_project_device_family()
{
    BRIM_MANAGER* const manager = BRIM_MANAGER::get_brim_manager();
    if (manager == nullptr || !manager->is_project_open()) {
        return;
    }
    if (!manager->is_read_locked()) {
        manager->read_lock(true);
    }
    if (manager->is_read_locked()) {
        const std::string name =
            brim_get_value(BRIM_VARIABLE_FAMILY_NAME, manager, "", nullptr, nullptr, nullptr);
        const DEV_FAMILY_ENUM family = dstr_get_dev_family_enum_by_string(name);
        if (VEK_DB_UTIL::is_supported_family(family)) {
            set_family(family);
        }
    }
    manager->read_unlock();
}

void VEK_FRAME_WND::populate_family_combo()
{
    std::set<std::string> names;
    for (const PGM_DEVICE* const device : PGM_DEVICE_INDEX::get_device_list()) {
        if (device != nullptr && is_offered(*device)) {
            names.insert(dstr_get_user_string(device->family));
        }
    }
    m_family_combo->clear();
    for (const std::string& name : names) {
        m_family_combo->addItem(VEK_GUI_UTIL::from_local(name),
                                static_cast<int>(dstr_get_dev_family_enum_by_string(name)));
    }
    set_family(DEV_FAMILY_NONE);
}

void VEK_FRAME_WND::repopulate_mode_combo()
{
    m_mode_combo->clear();
    for (const PGMIO_CONFIG_SCHEME mode : VEK_DB_UTIL::get_enabled_config_modes()) {
        const std::uint32_t bit = std::uint32_t{1} << (mode % 32);
        if ((m_cache->mode_mask_a & bit) != 0 || (m_cache->mode_mask_b & bit) != 0) {
            m_mode_combo->addItem(QString::fromLatin1(PGMIO_CONFIG_SCHEME_STR.at(mode)),
                                  static_cast<int>(mode));
        }
    }
}

void VEK_FRAME_WND::set_mode(int index)
{
    VEK_ASSERT(m_vek != nullptr);
    int value = 0;
    if (!read_item_data(m_mode_combo->itemData(index), value)) {
        return;
    }
    const auto mode = static_cast<PGMIO_CONFIG_SCHEME>(value);
    const bool is_new_setup = is_config_mode_changed(true);
    if (is_new_setup) {
        start_new_setup();
    }
    const bool success = VEK_FILE_ASSISTANT::set(
        m_vek.get(), VEK_CMD_OPT_SETTINGS,
        {{VEK_CMD_PARAM_SETTINGS_MODE,
          VEK_FILE_ASSISTANT::convert_xml_enum_to_string(VEK_DB::get_xml_enum(mode))}});
    VEK_ASSERT(success);
    refresh();
    if (is_new_setup) {
        close_tabs();
    }
}

bool VEK_FRAME_WND::is_config_mode_changed(bool value) const
{
    VEK_ASSERT(m_cache != nullptr);
    const auto mode = static_cast<PGMIO_CONFIG_SCHEME>(m_mode_combo->currentData().toInt());
    return is_lnks_mode(mode) && is_lnks_mode(m_cache->current_mode) ? false : value;
}

void VEK_FRAME_WND::emit_mode_changed_signal(int /*index*/)
{
    // Without a current item this is mode 0, which the listeners take in their stride.
    const auto mode = static_cast<PGMIO_CONFIG_SCHEME>(m_mode_combo->currentData().toInt());
    const bool changed = is_config_mode_changed(m_cache->current_mode != mode);
    m_cache->current_mode = mode;
    emit mode_changed(mode, changed);
}

void VEK_FRAME_WND::update_input_files_tab()
{
    VEK_ASSERT(m_cache != nullptr);
    VEK_ASSERT(m_vek != nullptr);
    VEK_ASSERT(m_tab_widget != nullptr);
    const bool enabled =
        !VEK_FILE_ASSISTANT::get_output_file_types(m_vek.get()).empty() && !m_cache->output_name.empty();
    if (!enabled) {
        m_input_files->reset();
        reset_cache_family_device(true);
    }
    m_tab_widget->setTabEnabled(TAB_INPUT_FILES, enabled);
}

void VEK_FRAME_WND::update_config_device_tab()
{
    VEK_ASSERT(m_vek != nullptr);
    VEK_ASSERT(m_tab_widget != nullptr);
    PGMIO_CONFIG_SCHEME mode = PGMIO_CONFIG_SCHEME_ILLEGAL;
    VEK_FILE_ASSISTANT::get_config_mode(m_vek.get(), mode);
    const std::size_t input_count = VEK_FILE_ASSISTANT::get_bitstream_elements(m_vek.get()).size() +
                                    VEK_FILE_ASSISTANT::get_raw_file_elements(m_vek.get()).size();
    const bool enabled = !VEK_DB::get_config_device_family(mode).empty() && input_count >= 1 &&
                         !VEK_DB_UTIL::get_common_config_device_families(
                              VEK_FILE_ASSISTANT::get_output_file_types(m_vek.get()))
                              .empty();
    if (!enabled) {
        VEK_ASSERT(m_config_device != nullptr);
        m_config_device->reset();
    }
    m_tab_widget->setTabEnabled(TAB_CONFIG_DEVICE, enabled);
}

void VEK_FRAME_WND::reset_config_device_tab(PGMIO_CONFIG_SCHEME /*mode*/, bool changed)
{
    if (!changed) {
        return;
    }
    VEK_ASSERT(m_config_device != nullptr);
    m_config_device->reset();
    m_tab_widget->setTabEnabled(TAB_CONFIG_DEVICE, false);
}

void VEK_FRAME_WND::refresh()
{
    m_output_files->set_vek(m_vek);
    m_input_files->set_vek(m_vek);
    m_config_device->set_vek(m_vek);
    m_output_files->refresh();
    m_input_files->refresh();
    m_config_device->refresh();
}

void VEK_FRAME_WND::reset()
{
    start_new_setup();
    populate_family_combo();
    repopulate_mode_combo();
    refresh();
    close_tabs();
}

void VEK_FRAME_WND::close_tabs()
{
    m_tab_widget->setTabEnabled(TAB_INPUT_FILES, false);
    m_tab_widget->setTabEnabled(TAB_CONFIG_DEVICE, false);
    m_tab_widget->setCurrentIndex(TAB_OUTPUT_FILES);
}

void VEK_FRAME_WND::user_reset()
{
    QMessageBox question(QMessageBox::Question, tr("Imagewright"), tr("Are you sure you want to reset?"),
                         QMessageBox::Yes | QMessageBox::No, this);
    question.setDefaultButton(QMessageBox::Yes);
    if (question.exec() == QMessageBox::Yes) {
        reset_cache();
        reset();
    }
}

void VEK_FRAME_WND::set_custom_db_dir()
{
    VEK_ASSERT(m_vek != nullptr);
    const bool status =
        VEK_FILE_ASSISTANT::set(m_vek.get(), VEK_CMD_OPT_SETTINGS,
                                {{VEK_CMD_PARAM_SETTINGS_CUSTOM_DB_DIR, GFPDB_MGR::get_db_custom_dir()}});
    VEK_ASSERT(status);
}
