#include "flash_dlg.h"

#include "custom_device_dlg.h"
#include "custom_devices.h"
#include "flash_offer.h"
#include "nivo_dialog_modules.h"
#include "nivo_help.h"
#include "nivo_icon.h"
#include "nivo_native_file_dlg.h"
#include "nivo_safe_connect.h"
#include "pgm_device.h"
#include "vek_db.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <algorithm>

namespace
{

constexpr int POSITION_ROLE = Qt::UserRole; ///< of the device in the list of those that suit
constexpr int LIST_WIDTH = 720;
constexpr int LIST_HEIGHT = 280;
constexpr std::uint64_t MEBIBYTE = 1024 * 1024;
constexpr DEV_FAMILY_ENUM FLASH_FAMILIES[] = {DEV_FAMILY_ASC_SERIAL, DEV_FAMILY_SERIAL_A, DEV_FAMILY_SERIAL_B,
                                              DEV_FAMILY_CFI_FLASH, DEV_FAMILY_SPECIAL_FLASH};

QString to_text(const std::string& text)
{
    return QString::fromLocal8Bit(text.c_str());
}

QString jedec_text(const PGM_DEVICE& device)
{
    QStringList bytes;
    for (const std::uint8_t byte : device.jedec_id) {
        bytes << QString::number(byte, 16).toUpper().rightJustified(2, QLatin1Char('0'));
    }
    const bool has_id = std::any_of(device.jedec_id.begin(), device.jedec_id.end(),
                                    [](std::uint8_t byte) { return byte != 0; });
    return has_id ? bytes.join(QLatin1Char(' ')) : QString();
}

QString size_text(std::uint64_t bytes)
{
    const struct {
        std::uint64_t size;
        const char* name;
    } units[] = {{MEBIBYTE * 1024, "GiB"}, {MEBIBYTE, "MiB"}, {1024, "KiB"}};
    for (const auto& unit : units) {
        if (bytes >= unit.size && bytes % unit.size == 0) {
            return QStringLiteral("%1 %2").arg(bytes / unit.size).arg(QLatin1String(unit.name));
        }
    }
    return FLASH_DLG::tr("%1 bytes").arg(bytes);
}

/// "ef4018" finds "EF 40 18" as well.
bool matches(const PGM_DEVICE& device, const QString& search)
{
    const QString id = jedec_text(device);
    return to_text(device.user_name()).contains(search, Qt::CaseInsensitive) ||
           id.contains(search, Qt::CaseInsensitive) ||
           (!search.isEmpty() && QString(id).remove(QLatin1Char(' ')).contains(search, Qt::CaseInsensitive));
}

} // namespace

FLASH_DLG::FLASH_DLG(const CONFIG_DEVICE& wanted, bool start_with_custom, bool show_all, bool can_choose,
                     QWidget* parent)
    : NIVO_DIALOG(parent), m_search_edit(new QLineEdit), m_capacity_combo(new QComboBox),
      m_custom_check(new QCheckBox(tr("My own devices only"))), m_device_list(new QTreeWidget),
      m_directory_label(new QLabel), m_directory_button(new QPushButton(tr("Directory..."))),
      m_add_button(new QPushButton(tr("Add..."))), m_remove_button(new QPushButton(tr("Remove")))
{
    populate_families(wanted, show_all);
    create_widgets(can_choose);
    m_custom_check->setChecked(start_with_custom);
    create_connections();
    read_devices();
    show_directory();
    select(to_text(wanted.device_name));
}

void FLASH_DLG::populate_families(const CONFIG_DEVICE& wanted, bool show_all)
{
    if (show_all || wanted.config_mode == PGMIO_CONFIG_SCHEME_ILLEGAL) {
        m_families.assign(std::begin(FLASH_FAMILIES), std::end(FLASH_FAMILIES));
    } else if (wanted.modes_by_family.empty()) {
        m_families = VEK_DB::get_config_device_family(wanted.config_mode);
    } else {
        for (const auto& [family, modes] : wanted.modes_by_family) {
            if (std::find(modes.begin(), modes.end(), wanted.config_mode) != modes.end()) {
                m_families.push_back(family);
            }
        }
    }
}

void FLASH_DLG::create_widgets(bool can_choose)
{
    setWindowTitle(tr("Flash Database"));
    nivo_set_help_topic(*this, NIVO_HELP_FLASH_DEVICES);
    setWindowIcon(nivo_get_icon(NIVO_ICON_IMAGEWRIGHT));
    m_search_edit->setObjectName(QStringLiteral("m_search_edit"));
    m_search_edit->setPlaceholderText(tr("Part of the name or of the JEDEC id"));
    m_search_edit->setClearButtonEnabled(true);
    m_capacity_combo->setObjectName(QStringLiteral("m_capacity_combo"));
    m_capacity_combo->addItem(tr("Any"), 0);
    for (const unsigned size : {1U, 4U, 16U, 32U, 64U, 128U, 256U}) {
        m_capacity_combo->addItem(tr("%1 MiB or more").arg(size), size);
    }
    m_custom_check->setObjectName(QStringLiteral("m_custom_check"));
    m_device_list->setObjectName(QStringLiteral("m_device_list"));
    m_device_list->setAccessibleName(tr("Flash devices"));
    m_device_list->setHeaderLabels(
        {tr("Device"), tr("Family"), tr("Capacity"), tr("JEDEC id"), tr("Sector"), tr("Source")});
    m_device_list->setRootIsDecorated(false);
    m_device_list->setUniformRowHeights(true);
    m_device_list->setMinimumSize(LIST_WIDTH, LIST_HEIGHT);
    m_directory_label->setObjectName(QStringLiteral("m_directory_label"));
    m_directory_label->setWordWrap(true);
    m_directory_button->setObjectName(QStringLiteral("m_directory_button"));
    m_add_button->setObjectName(QStringLiteral("m_add_button"));
    m_remove_button->setObjectName(QStringLiteral("m_remove_button"));
    for (QPushButton* const button : {m_directory_button, m_add_button, m_remove_button}) {
        button->setAutoDefault(false);
    }

    auto* const form = new QFormLayout;
    form->addRow(tr("Search:"), m_search_edit);
    form->addRow(tr("Capacity:"), m_capacity_combo);
    form->addRow(m_custom_check);
    auto* const custom = new QHBoxLayout;
    custom->addWidget(m_directory_label, 1);
    custom->addWidget(m_directory_button);
    custom->addWidget(m_add_button);
    custom->addWidget(m_remove_button);
    auto* const buttons = new QDialogButtonBox(can_choose ? QDialogButtonBox::Ok | QDialogButtonBox::Cancel
                                                          : QDialogButtonBox::Cancel);
    buttons->setObjectName(QStringLiteral("m_button_box"));
    m_ok_button = buttons->button(QDialogButtonBox::Ok);
    auto* const layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(m_device_list, 1);
    layout->addLayout(custom);
    layout->addWidget(buttons);
}

void FLASH_DLG::create_connections()
{
    const QObject* const buttons = findChild<QDialogButtonBox*>(QStringLiteral("m_button_box"));
    const struct {
        const QObject* sender;
        const char* signal;
        const char* slot;
    } connections[] = {
        {m_search_edit, SIGNAL(textChanged(const QString&)), SLOT(update_list())},
        {m_capacity_combo, SIGNAL(currentIndexChanged(int)), SLOT(update_list())},
        {m_custom_check, SIGNAL(toggled(bool)), SLOT(update_list())},
        {m_device_list, SIGNAL(currentItemChanged(QTreeWidgetItem*, QTreeWidgetItem*)),
         SLOT(update_buttons())},
        {m_directory_button, SIGNAL(clicked()), SLOT(choose_directory())},
        {m_add_button, SIGNAL(clicked()), SLOT(add_custom_device())},
        {m_remove_button, SIGNAL(clicked()), SLOT(remove_custom_device())},
        {buttons, SIGNAL(accepted()), SLOT(accept())},
        {buttons, SIGNAL(rejected()), SLOT(reject())},
    };
    for (const auto& connection : connections) {
        nivo_safe_connect(connection.sender, connection.signal, this, connection.slot, Qt::AutoConnection,
                          __FILE__, __LINE__);
    }
    if (m_ok_button != nullptr) {
        nivo_safe_connect(m_device_list, SIGNAL(itemDoubleClicked(QTreeWidgetItem*, int)), this,
                          SLOT(accept()), Qt::AutoConnection, __FILE__, __LINE__);
    }
}

void FLASH_DLG::read_devices()
{
    m_device_list->clear();
    m_devices.clear();
    for (const PGM_DEVICE* const device : PGM_DEVICE_INDEX::get_device_list()) {
        if (device != nullptr && flash_device_is_offered(*device, m_families)) {
            m_devices.push_back(device);
        }
    }
    update_list();
    for (int column = 0; column < m_device_list->columnCount(); ++column) {
        m_device_list->resizeColumnToContents(column);
    }
}

const PGM_DEVICE* FLASH_DLG::get_device() const
{
    const QTreeWidgetItem* const item = m_device_list->currentItem();
    return item == nullptr ? nullptr : m_devices[item->data(0, POSITION_ROLE).toUInt()];
}

bool FLASH_DLG::is_shown(const PGM_DEVICE& device) const
{
    return device.flash_bytes >= m_capacity_combo->currentData().toUInt() * MEBIBYTE &&
           (!m_custom_check->isChecked() || CUSTOM_DEVICES::is_custom(device)) &&
           matches(device, m_search_edit->text().trimmed());
}

/// Keeps the current device when it is still in the list, and else takes the first.
void FLASH_DLG::update_list()
{
    const PGM_DEVICE* const present = get_device();
    m_device_list->clear();
    for (std::size_t position = 0; position < m_devices.size(); ++position) {
        const PGM_DEVICE& device = *m_devices[position];
        if (!is_shown(device)) {
            continue;
        }
        auto* const item = new QTreeWidgetItem(
            m_device_list, {to_text(device.user_name()), to_text(dstr_get_user_string(device.family)),
                            size_text(device.flash_bytes), jedec_text(device), size_text(device.sector_bytes),
                            CUSTOM_DEVICES::is_custom(device) ? tr("My own") : tr("Built in")});
        item->setData(0, POSITION_ROLE, static_cast<unsigned>(position));
    }
    m_device_list->setCurrentItem(m_device_list->topLevelItem(0));
    for (int column = 0; column + 1 < m_device_list->columnCount(); ++column) {
        m_device_list->resizeColumnToContents(column);
    }
    if (present != nullptr) {
        select(to_text(present->user_name()));
    }
    update_buttons();
}

void FLASH_DLG::update_buttons()
{
    const PGM_DEVICE* const device = get_device();
    if (m_ok_button != nullptr) {
        m_ok_button->setEnabled(device != nullptr);
    }
    m_add_button->setEnabled(!CUSTOM_DEVICES::directory().empty());
    m_remove_button->setEnabled(device != nullptr && CUSTOM_DEVICES::is_custom(*device));
}

void FLASH_DLG::select(const QString& name)
{
    const auto found = m_device_list->findItems(name, Qt::MatchFixedString);
    if (!found.isEmpty()) {
        m_device_list->setCurrentItem(found.front());
    }
}

void FLASH_DLG::show_directory()
{
    const QString directory = to_text(CUSTOM_DEVICES::directory());
    m_directory_label->setText(directory.isEmpty() ? tr("Choose a directory for devices of your own.")
                                                   : tr("My own devices: %1").arg(directory));
}

void FLASH_DLG::choose_directory()
{
    NIVO_NATIVE_FILE_DLG dialog(this);
    dialog.setWindowTitle(tr("Select Directory of Flash Devices"));
    dialog.setFileMode(QFileDialog::Directory);
    dialog.setOption(QFileDialog::ShowDirsOnly);
    if (!CUSTOM_DEVICES::directory().empty()) {
        dialog.setDirectory(to_text(CUSTOM_DEVICES::directory()));
    }
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) {
        return;
    }
    CUSTOM_DEVICES::choose_directory(dialog.selectedFiles().front().toLocal8Bit().toStdString());
    read_devices();
    show_directory();
}

void FLASH_DLG::add_custom_device()
{
    CUSTOM_DEVICE_DLG dialog(this);
    if (dialog.exec() == QDialog::Accepted) {
        read_devices();
        select(dialog.get_name());
    }
}

void FLASH_DLG::remove_custom_device()
{
    const PGM_DEVICE* const device = get_device();
    if (device == nullptr) {
        return;
    }
    QMessageBox box(QMessageBox::Warning, tr("Imagewright"),
                    tr("Removing \"%1\" deletes its file.").arg(to_text(device->user_name())),
                    QMessageBox::Yes | QMessageBox::No, this);
    box.setInformativeText(tr("Do you want to continue?"));
    box.setDefaultButton(QMessageBox::No);
    if (box.exec() != QMessageBox::Yes) {
        return;
    }
    std::string message;
    if (!CUSTOM_DEVICES::remove(*device, message)) {
        refuse(to_text(message));
    }
    read_devices();
}

void FLASH_DLG::refuse(const QString& reason)
{
    QMessageBox box(QMessageBox::Critical, tr("Imagewright"), reason, QMessageBox::Ok, this);
    box.exec();
}

extern "C" Q_DECL_EXPORT void flash_dlg_show(QWidget* parent, CONFIG_DEVICE* config_device, int page,
                                             int view, int can_choose)
{
    FLASH_DLG dialog(*config_device, page == 1, view == 1, can_choose != 0, parent);
    const bool accepted = dialog.exec() == QDialog::Accepted && can_choose != 0;
    const PGM_DEVICE* const device = accepted ? dialog.get_device() : nullptr;
    config_device->device_name = device != nullptr ? device->user_name() : std::string();
}

static_assert(std::is_same_v<decltype(&flash_dlg_show), NIVO_FLASH_DLG_SHOW>);
