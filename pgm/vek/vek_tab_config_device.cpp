#include "vek_tab_config_device.h"

#include "config_device.h"
#include "msg_internal_error.h"
#include "nivo_dialog_modules.h"
#include "nivo_safe_connect.h"
#include "pgm_device.h"
#include "thr_drl.h"
#include "vek_db.h"
#include "vek_dlg_add_device.h"
#include "vek_file_assistant.h"
#include "vek_frame_wnd_cache.h"
#include "vek_gui_util.h"
#include "vek_msgs.h"
#include "vek_tree_config_device.h"
#include "vek_util.h"

#include <QFormLayout>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>

#include <algorithm>

namespace
{

QPushButton* make_button(const QString& text, const char* name, bool enabled)
{
    auto* const button = new QPushButton(text);
    button->setObjectName(QLatin1String(name));
    button->setEnabled(enabled);
    return button;
}

bool is_kind(const PGM_COMMON_XML_ELEMENT* element, PGM_COMMON_XML_ENUM kind)
{
    return element != nullptr && element->m_class_type == kind;
}

void trace(const char* when, const CONFIG_DEVICE& config_device)
{
    msg_vdebug_impl(MSG_D_LEVEL_2, "%s calling MOD_FLASH_DLG: config_device.family = %d", when,
                    static_cast<int>(config_device.family));
    msg_vdebug_impl(MSG_D_LEVEL_2, "%s calling MOD_FLASH_DLG: config_device.config_mode = %d", when,
                    static_cast<int>(config_device.config_mode));
    msg_vdebug_impl(MSG_D_LEVEL_2, "%s calling MOD_FLASH_DLG: config_device.device_name = %s", when,
                    config_device.device_name.c_str());
}

} // namespace

VEK_TAB_CONFIG_DEVICE::VEK_TAB_CONFIG_DEVICE(std::shared_ptr<PGM_COMMON_XML_VEK_VEK> vek,
                                             std::shared_ptr<VEK_FRAME_WND_CACHE> cache, QWidget* parent,
                                             Qt::WindowFlags flags)
    : QWidget(parent, flags), m_vek(std::move(vek)), m_cache(std::move(cache))
{
    VEK_ASSERT(m_vek != nullptr);
    VEK_ASSERT(m_cache != nullptr);
    create_widgets();
    create_connections();
}

void VEK_TAB_CONFIG_DEVICE::create_widgets()
{
    m_config_device_tree = new VEK_TREE_CONFIG_DEVICE(m_vek, m_cache, nullptr);
    m_config_device_tree->setObjectName(QStringLiteral("m_config_device_tree"));
    m_config_device_tree->setAccessibleName(tr("Flash devices and their partitions"));
    m_add_device_button = make_button(tr("Add Device..."), "m_add_device_button", true);
    m_add_partition_button = make_button(tr("Add Partition..."), "m_add_partition_button", false);
    m_edit_button = make_button(tr("Edit..."), "m_edit_button", false);
    m_remove_button = make_button(tr("Remove"), "m_remove_button", false);
    m_select_button = make_button(tr("Select..."), "m_select_button", false);
    m_flash_loader_edit = new QLineEdit;
    m_flash_loader_edit->setObjectName(QStringLiteral("m_flash_loader_edit"));
    m_flash_loader_edit->setReadOnly(true);

    auto* const label = new QLabel(
        tr("Specify the partition layout of the flash image. Specify the flash loader if required."));
    label->setWordWrap(true);
    auto* const line = new QFrame;
    line->setFrameShape(QFrame::HLine);
    line->setFrameShadow(QFrame::Sunken);
    auto* const buttons = new QVBoxLayout;
    buttons->setAlignment(Qt::AlignTop);
    buttons->addWidget(m_add_device_button);
    buttons->addWidget(m_add_partition_button);
    buttons->addWidget(m_edit_button);
    buttons->addWidget(m_remove_button);
    auto* const form = new QFormLayout;
    form->addRow(tr("Flash loader:"), m_flash_loader_edit);
    auto* const grid = new QGridLayout(this);
    grid->addWidget(label, 0, 0, 1, 2);
    grid->addWidget(line, 1, 0, 1, 2);
    grid->addWidget(m_config_device_tree, 2, 0);
    grid->addLayout(buttons, 2, 1, Qt::AlignTop);
    grid->addLayout(form, 3, 0);
    grid->addWidget(m_select_button, 3, 1);
}

void VEK_TAB_CONFIG_DEVICE::create_connections()
{
    const struct {
        const QObject* sender;
        const char* signal;
        const char* method; ///< a slot of the tab, or a signal of it
    } connections[] = {
        {m_add_device_button, SIGNAL(clicked()), SLOT(add_device())},
        {m_add_partition_button, SIGNAL(clicked()), SLOT(add_partition())},
        {m_edit_button, SIGNAL(clicked()), SLOT(edit())},
        {m_remove_button, SIGNAL(clicked()), SLOT(remove())},
        {m_select_button, SIGNAL(clicked()), SLOT(select_flash_loader())},
        {m_config_device_tree, SIGNAL(current_changed(const QModelIndex&, const QModelIndex&)),
         SLOT(update_buttons())},
        {m_config_device_tree, SIGNAL(config_device_changed()), SLOT(update_buttons())},
        {m_config_device_tree, SIGNAL(config_device_changed()), SIGNAL(config_device_changed())},
        {m_config_device_tree, SIGNAL(partition_changed()), SIGNAL(partition_changed())},
    };
    for (const auto& connection : connections) {
        nivo_safe_connect(connection.sender, connection.signal, this, connection.method, Qt::AutoConnection,
                          __FILE__, __LINE__);
    }
}

void VEK_TAB_CONFIG_DEVICE::set_vek(std::shared_ptr<PGM_COMMON_XML_VEK_VEK> vek)
{
    VEK_ASSERT(vek != nullptr);
    m_vek = std::move(vek);
    m_config_device_tree->set_vek(m_vek);
}

void VEK_TAB_CONFIG_DEVICE::refresh()
{
    m_config_device_tree->refresh();
    update_flash_loader();
    // The selection has gone without a signal. A button that acts on it must not be there to be clicked.
    QMetaObject::invokeMethod(this, "update_buttons", Qt::QueuedConnection);
}

void VEK_TAB_CONFIG_DEVICE::reset()
{
    for (const std::string& id : VEK_FILE_ASSISTANT::get_flash_device_ids(m_vek.get())) {
        m_config_device_tree->remove_device(id);
    }
    const auto flash_loaders = VEK_FILE_ASSISTANT::get_flash_loader_elements(m_vek.get());
    if (!flash_loaders.empty()) {
        const bool success = VEK_FILE_ASSISTANT::remove(
            m_vek.get(), VEK_CMD_OPT_FLASH_LOADER,
            {{VEK_CMD_PARAM_FLASH_LOADER_FLASH_LOADER, flash_loaders.front()->text}});
        VEK_ASSERT(success);
    }
    update_flash_loader();
}

/// Null without a current row.
PGM_COMMON_XML_ELEMENT* VEK_TAB_CONFIG_DEVICE::get_current_element() const
{
    return static_cast<PGM_COMMON_XML_ELEMENT*>(m_config_device_tree->currentIndex().internalPointer());
}

/// The kind of the first file of the first bitstream; the partition rules go by it.
FIO_FILE_TYPE VEK_TAB_CONFIG_DEVICE::get_first_file_type() const
{
    const auto bitstreams = VEK_FILE_ASSISTANT::get_bitstream_elements(m_vek.get());
    if (bitstreams.empty()) {
        return FIO_INVALID_FILE;
    }
    const auto path_elements = VEK_FILE_ASSISTANT::get_path_elements(m_vek.get(), bitstreams.front()->id);
    VEK_ASSERT(!path_elements.empty());
    return fio_get_file_type(path_elements.front()->text);
}

void VEK_TAB_CONFIG_DEVICE::enable_buttons(bool add_partition, bool edit, bool remove)
{
    m_add_partition_button->setEnabled(add_partition);
    m_edit_button->setEnabled(edit);
    m_remove_button->setEnabled(remove);
}

void VEK_TAB_CONFIG_DEVICE::update_buttons()
{
    m_add_device_button->setEnabled(VEK_FILE_ASSISTANT::get_flash_device_elements(m_vek.get()).size() <
                                    m_cache->max_flash_devices);
    if (!m_config_device_tree->currentIndex().isValid()) {
        enable_buttons(false, false, false);
        return;
    }
    const PGM_COMMON_XML_ELEMENT* const current = get_current_element();
    const bool is_onchip = m_cache->family == DEV_FAMILY_ONCHIP_FLASH;
    if (is_kind(current, PGM_COMMON_XML_ENUM_FLASH_DEVICE)) {
        enable_buttons(!is_onchip, is_onchip, !is_onchip);
    } else if (is_kind(current, PGM_COMMON_XML_ENUM_PARTITION) && is_onchip) {
        enable_buttons(false, true, false);
    } else if (is_kind(current, PGM_COMMON_XML_ENUM_PARTITION)) {
        const FIO_FILE_TYPE file_type = get_first_file_type();
        const std::string& id = static_cast<const PGM_COMMON_XML_VEK_PARTITION*>(current)->id;
        const auto ask = [&](auto rule) {
            return rule(id, m_cache->current_mode, m_cache->family, m_cache->device,
                        m_cache->partition_rule_flag_a, m_cache->partition_rule_flag_b, file_type);
        };
        enable_buttons(false, ask(VEK_UTIL::partition_is_editable), ask(VEK_UTIL::partition_is_removable));
    } else {
        const bool is_mbr = is_kind(current, PGM_COMMON_XML_ENUM_MBR);
        enable_buttons(is_mbr, is_mbr, is_mbr);
    }
}

void VEK_TAB_CONFIG_DEVICE::update_flash_loader()
{
    VEK_ASSERT(m_vek != nullptr);
    const std::vector<VEK_FILE_TYPE> types = VEK_FILE_ASSISTANT::get_output_file_types(m_vek.get());
    const bool required = std::any_of(types.begin(), types.end(), VEK_DB::get_require_flash_loader);
    m_cache->flash_loader_required = required;
    m_select_button->setEnabled(required);
    const auto flash_loaders = VEK_FILE_ASSISTANT::get_flash_loader_elements(m_vek.get());
    if (flash_loaders.empty()) {
        m_flash_loader_edit->clear();
    } else {
        m_flash_loader_edit->setText(VEK_GUI_UTIL::from_local(flash_loaders.front()->text));
    }
    emit flash_loader_changed();
}

void VEK_TAB_CONFIG_DEVICE::update_device(const QString& /*device_name*/)
{
    if (m_cache->family != DEV_FAMILY_ONCHIP_FLASH ||
        m_config_device_tree->get_device(0) == m_cache->device_name) {
        return;
    }
    m_config_device_tree->clear();
    m_config_device_tree->add_device(m_cache->device_name, false);
}

void VEK_TAB_CONFIG_DEVICE::select_flash_loader()
{
    VEK_ASSERT(m_vek != nullptr);
    const THR_DRL_HANDLE module = thr_drl_load(NIVO_DEVICES_DLG_MODULE);
    const auto show =
        module == nullptr
            ? nullptr
            : reinterpret_cast<NIVO_DEVICES_DLG_SHOW>(thr_drl_find_function(module, NIVO_DEVICES_DLG_ENTRY));
    if (show == nullptr) {
        return;
    }
    const PGM_DEVICE* device = nullptr;
    bool accepted = false;
    show(QString(), &device, true, false, &accepted);
    if (!accepted || device == nullptr) {
        return;
    }
    m_flash_loader_edit->setText(VEK_GUI_UTIL::from_local(device->name));
    const bool success = VEK_FILE_ASSISTANT::set(m_vek.get(), VEK_CMD_OPT_FLASH_LOADER,
                                                 {{VEK_CMD_PARAM_FLASH_LOADER_FLASH_LOADER, device->name}});
    VEK_ASSERT(success);
    emit flash_loader_changed();
}

void VEK_TAB_CONFIG_DEVICE::add_device()
{
    PGMIO_CONFIG_SCHEME mode = PGMIO_CONFIG_SCHEME_ILLEGAL;
    VEK_FILE_ASSISTANT::get_config_mode(m_vek.get(), mode);
    const std::vector<VEK_FILE_TYPE> types = VEK_FILE_ASSISTANT::get_output_file_types(m_vek.get());
    const std::vector<DEV_FAMILY_ENUM> families = VEK_DB::get_config_device_family(mode);
    const VEK_FILE_TYPE type = types.at(0);
    const bool is_programmer_file = type == VEK_PERIPH_POF_FILE_TYPE || type == VEK_POF_FILE_TYPE;
    if (is_programmer_file && (mode == PGMIO_CONFIG_SCHEME_AS || mode == PGMIO_CONFIG_SCHEME_AS_X4)) {
        const std::string device_name = ask_flash_database(mode);
        if (!device_name.empty()) {
            m_config_device_tree->add_device(device_name, false);
        }
        return;
    }
    VEK_DLG_ADD_DEVICE dialog(families, m_cache->family, m_cache->current_mode, this);
    if (dialog.exec() == QDialog::Accepted) {
        m_config_device_tree->add_device(dialog.get_device_name(), false);
    }
}

std::string VEK_TAB_CONFIG_DEVICE::ask_flash_database(PGMIO_CONFIG_SCHEME mode)
{
    CONFIG_DEVICE config_device;
    config_device.family = m_cache->family;
    config_device.config_mode = mode;
    trace("Before", config_device);
    const THR_DRL_HANDLE module = thr_drl_load(NIVO_FLASH_DLG_MODULE);
    VEK_ASSERT_TEXT(module != nullptr, thr_drl_get_error());
    const auto show =
        reinterpret_cast<NIVO_FLASH_DLG_SHOW>(thr_drl_find_function(module, NIVO_FLASH_DLG_ENTRY));
    VEK_ASSERT_TEXT(show != nullptr, thr_drl_get_error());
    show(this, &config_device, 0, 0, 1);
    trace("After", config_device);
    return config_device.device_name;
}

void VEK_TAB_CONFIG_DEVICE::remove()
{
    const PGM_COMMON_XML_ELEMENT* const current = get_current_element();
    VEK_ASSERT_TEXT(current != nullptr, "current_element != nullptr");
    if (current->get_child_count(PGM_COMMON_XML_ENUM__INVALID__, true) != 0) {
        QMessageBox box(QMessageBox::Warning, tr("Imagewright"),
                        tr("Removing this item will remove all of its child items."),
                        QMessageBox::Yes | QMessageBox::No, this);
        box.setInformativeText(tr("Do you want to continue?"));
        box.setDefaultButton(QMessageBox::No);
        if (box.exec() != QMessageBox::Yes) {
            return;
        }
    }
    const PGM_COMMON_XML_ELEMENT* const parent = current->get_parent();
    const auto device_id = [](const PGM_COMMON_XML_ELEMENT* device) {
        return static_cast<const PGM_COMMON_XML_VEK_FLASH_DEVICE*>(device)->id;
    };
    // Copies: the operations that take them destroy the elements that they come from.
    if (is_kind(current, PGM_COMMON_XML_ENUM_FLASH_DEVICE)) {
        m_config_device_tree->remove_device(device_id(current));
    } else if (is_kind(current, PGM_COMMON_XML_ENUM_PARTITION)) {
        const std::string id = static_cast<const PGM_COMMON_XML_VEK_PARTITION*>(current)->id;
        if (is_kind(parent, PGM_COMMON_XML_ENUM_FLASH_DEVICE)) {
            m_config_device_tree->remove_partition(id, device_id(parent));
        } else if (is_kind(parent, PGM_COMMON_XML_ENUM_MBR)) {
            const std::string mbr_id = static_cast<const PGM_COMMON_XML_VEK_MBR*>(parent)->id;
            m_config_device_tree->remove_mbr_partition(id, mbr_id, device_id(parent->get_parent()));
        }
    } else if (is_kind(current, PGM_COMMON_XML_ENUM_MBR)) {
        const std::string id = static_cast<const PGM_COMMON_XML_VEK_MBR*>(current)->id;
        m_config_device_tree->remove_partition(id, device_id(parent));
    }
}
