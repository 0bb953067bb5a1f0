#include "devices_dlg.h"

#include "nivo_dialog_modules.h"
#include "nivo_help.h"
#include "nivo_icon.h"
#include "nivo_safe_connect.h"
#include "pgm_device.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <set>

namespace
{

constexpr int ALL_FAMILIES = -1;
constexpr int POSITION_ROLE = Qt::UserRole; ///< of the device in the list of those that may be chosen
constexpr int LIST_HEIGHT = 260;
constexpr int LIST_WIDTH = 420;

QString to_text(const std::string& text)
{
    return QString::fromLocal8Bit(text.c_str());
}

QString hex_text(quint64 number, int digits)
{
    return QStringLiteral("0x") +
           QString::number(number, 16).toUpper().rightJustified(digits, QLatin1Char('0'));
}

bool may_be_chosen(const PGM_DEVICE* device, bool loaders_only, bool all_families)
{
    if (device == nullptr || device->name.empty() || device->family == DEV_FAMILY_NOT_OFFERED ||
        (loaders_only && device->device_class != DEV_CLASS_FPGA)) {
        return false;
    }
    return all_families || !device->ask_not_listed || !device->is_dev_not_listed();
}

QString describe(const PGM_DEVICE& device)
{
    QStringList lines;
    const auto add = [&lines](const QString& what, const QString& value) {
        lines << QStringLiteral("%1: %2").arg(what, value);
    };
    add(DEVICES_DLG::tr("Device"), to_text(device.user_name()));
    add(DEVICES_DLG::tr("Family"), to_text(dstr_get_user_string(device.family)));
    if (device.idcode != 0) {
        add(DEVICES_DLG::tr("JTAG IDCODE"), hex_text(device.idcode, 8));
        add(DEVICES_DLG::tr("Instruction register"),
            DEVICES_DLG::tr("%1 bits").arg(device.instruction_length));
        add(DEVICES_DLG::tr("Configuration data"),
            DEVICES_DLG::tr("%1 bytes")
                .arg(static_cast<qulonglong>(device.periphery_bytes) + device.core_bytes));
    }
    if (device.key_bits != 0) {
        add(DEVICES_DLG::tr("Encryption key"), DEVICES_DLG::tr("%1 bits").arg(device.key_bits));
    }
    if (device.flash_bytes != 0) {
        add(DEVICES_DLG::tr("Flash"),
            DEVICES_DLG::tr("%1 bytes").arg(static_cast<qulonglong>(device.flash_bytes)));
    }
    return lines.join(QLatin1Char('\n'));
}

} // namespace

DEVICES_DLG::DEVICES_DLG(const QString& name, bool loaders_only, bool all_families, QWidget* parent)
    : NIVO_DIALOG(parent), m_family_combo(new QComboBox), m_filter_edit(new QLineEdit),
      m_device_list(new QTreeWidget), m_details_label(new QLabel)
{
    for (const PGM_DEVICE* const device : PGM_DEVICE_INDEX::get_device_list()) {
        if (may_be_chosen(device, loaders_only, all_families)) {
            m_devices.push_back(device);
        }
    }
    create_widgets();
    populate_family_combo();
    create_connections();
    update_list();
    select(name);
}

void DEVICES_DLG::create_widgets()
{
    setWindowTitle(tr("Select Device"));
    nivo_set_help_topic(*this, NIVO_HELP_CONFIG_DEVICE);
    setWindowIcon(nivo_get_icon(NIVO_ICON_IMAGEWRIGHT));
    m_family_combo->setObjectName(QStringLiteral("m_family_combo"));
    m_filter_edit->setObjectName(QStringLiteral("m_filter_edit"));
    m_filter_edit->setPlaceholderText(tr("Part of the device name"));
    m_filter_edit->setClearButtonEnabled(true);
    m_device_list->setObjectName(QStringLiteral("m_device_list"));
    m_device_list->setAccessibleName(tr("Devices"));
    m_device_list->setHeaderLabels({tr("Device"), tr("Family")});
    m_device_list->setRootIsDecorated(false);
    m_device_list->setUniformRowHeights(true);
    m_device_list->setMinimumSize(LIST_WIDTH, LIST_HEIGHT);
    m_device_list->header()->resizeSection(0, LIST_WIDTH / 2);
    m_details_label->setObjectName(QStringLiteral("m_details_label"));
    m_details_label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_details_label->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    // Room for every device, so that the list does not jump from one to the next.
    m_details_label->setMinimumHeight(m_details_label->fontMetrics().lineSpacing() * 6);

    auto* const form = new QFormLayout;
    form->addRow(tr("Device family:"), m_family_combo);
    form->addRow(tr("Name filter:"), m_filter_edit);
    auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    m_ok_button = buttons->button(QDialogButtonBox::Ok);
    auto* const layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(m_device_list, 1);
    layout->addWidget(m_details_label);
    layout->addWidget(buttons);
}

void DEVICES_DLG::create_connections()
{
    const QObject* const buttons = m_ok_button->parent();
    const struct {
        const QObject* sender;
        const char* signal;
        const char* slot;
    } connections[] = {
        {m_family_combo, SIGNAL(currentIndexChanged(int)), SLOT(update_list())},
        {m_filter_edit, SIGNAL(textChanged(const QString&)), SLOT(update_list())},
        {m_device_list, SIGNAL(currentItemChanged(QTreeWidgetItem*, QTreeWidgetItem*)),
         SLOT(update_details())},
        {m_device_list, SIGNAL(itemDoubleClicked(QTreeWidgetItem*, int)), SLOT(accept())},
        {buttons, SIGNAL(accepted()), SLOT(accept())},
        {buttons, SIGNAL(rejected()), SLOT(reject())},
    };
    for (const auto& connection : connections) {
        nivo_safe_connect(connection.sender, connection.signal, this, connection.slot, Qt::AutoConnection,
                          __FILE__, __LINE__);
    }
}

void DEVICES_DLG::populate_family_combo()
{
    std::set<QString> names;
    for (const PGM_DEVICE* const device : m_devices) {
        names.insert(to_text(dstr_get_user_string(device->family)));
    }
    m_family_combo->addItem(tr("All families"), ALL_FAMILIES);
    for (const QString& name : names) {
        m_family_combo->addItem(
            name, static_cast<int>(dstr_get_dev_family_enum_by_string(name.toLocal8Bit().toStdString())));
    }
}

const PGM_DEVICE* DEVICES_DLG::get_device() const
{
    const QTreeWidgetItem* const item = m_device_list->currentItem();
    return item == nullptr ? nullptr : m_devices[item->data(0, POSITION_ROLE).toUInt()];
}

/// Keeps the current device when it is still in the list, and else takes the first.
void DEVICES_DLG::update_list()
{
    const PGM_DEVICE* const present = get_device();
    const int family = m_family_combo->currentData().toInt();
    const QString filter = m_filter_edit->text().trimmed();
    m_device_list->clear();
    for (std::size_t position = 0; position < m_devices.size(); ++position) {
        const PGM_DEVICE& device = *m_devices[position];
        const QString name = to_text(device.user_name());
        if ((family != ALL_FAMILIES && family != static_cast<int>(device.family)) ||
            !name.contains(filter, Qt::CaseInsensitive)) {
            continue;
        }
        auto* const item =
            new QTreeWidgetItem(m_device_list, {name, to_text(dstr_get_user_string(device.family))});
        item->setData(0, POSITION_ROLE, static_cast<unsigned>(position));
    }
    m_device_list->setCurrentItem(m_device_list->topLevelItem(0));
    if (present != nullptr) {
        select(to_text(present->user_name()));
    }
    update_details();
}

void DEVICES_DLG::select(const QString& name)
{
    const auto found = m_device_list->findItems(name, Qt::MatchFixedString);
    if (!found.isEmpty()) {
        m_device_list->setCurrentItem(found.front());
    }
}

void DEVICES_DLG::update_details()
{
    const PGM_DEVICE* const device = get_device();
    m_ok_button->setEnabled(device != nullptr);
    m_details_label->setText(device == nullptr ? tr("No device has this name in this family.")
                                               : describe(*device));
}

extern "C" Q_DECL_EXPORT void devices_dlg_show(QString name, const PGM_DEVICE** device, bool loaders_only,
                                               bool all_families, bool* accepted)
{
    *device = nullptr;
    *accepted = false;
    DEVICES_DLG dialog(name, loaders_only, all_families, nullptr);
    if (dialog.exec() == QDialog::Accepted) {
        *device = dialog.get_device();
        *accepted = *device != nullptr;
    }
}

static_assert(std::is_same_v<decltype(&devices_dlg_show), NIVO_DEVICES_DLG_SHOW>);
