#include "custom_device_dlg.h"

#include "nivo_help.h"
#include "nivo_icon.h"
#include "nivo_safe_connect.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLineEdit>
#include <QMessageBox>
#include <QVBoxLayout>

#include <cctype>
#include <charconv>

namespace
{

/// Decimal, or hexadecimal behind "0x", with K, M or G for powers of 1024.
bool parse_size(const QString& text, std::uint64_t& size)
{
    std::string digits = text.trimmed().toLatin1().toStdString();
    unsigned shift = 0;
    if (!digits.empty()) {
        const std::size_t unit = std::string("KMG").find(static_cast<char>(std::toupper(digits.back())));
        if (unit != std::string::npos) {
            shift = static_cast<unsigned>(unit + 1) * 10;
            digits.pop_back();
        }
    }
    const bool is_hex = digits.starts_with("0x") || digits.starts_with("0X");
    const char* const first = digits.data() + (is_hex ? 2 : 0);
    const char* const last = digits.data() + digits.size();
    std::uint64_t number = 0;
    const std::from_chars_result result = std::from_chars(first, last, number, is_hex ? 16 : 10);
    if (result.ec != std::errc() || result.ptr != last || number > (UINT64_MAX >> shift)) {
        return false;
    }
    size = number << shift;
    return true;
}

} // namespace

CUSTOM_DEVICE_DLG::CUSTOM_DEVICE_DLG(QWidget* parent)
    : NIVO_DIALOG(parent), m_type_combo(new QComboBox), m_address_width_combo(new QComboBox)
{
    setWindowTitle(tr("Add Flash Device"));
    nivo_set_help_topic(*this, NIVO_HELP_FLASH_DEVICES);
    setWindowIcon(nivo_get_icon(NIVO_ICON_IMAGEWRIGHT));
    setSizeGripEnabled(false);
    m_type_combo->setObjectName(QStringLiteral("m_type_combo"));
    m_type_combo->addItem(tr("Serial, 3 V"), QStringLiteral("serial-3v"));
    m_type_combo->addItem(tr("Serial, 1.8 V"), QStringLiteral("serial-1v8"));
    m_type_combo->addItem(tr("Parallel"), QStringLiteral("parallel"));
    m_address_width_combo->setObjectName(QStringLiteral("m_address_width_combo"));
    m_address_width_combo->addItem(tr("By capacity"), QString());
    m_address_width_combo->addItem(tr("24 bits"), QStringLiteral("24"));
    m_address_width_combo->addItem(tr("32 bits"), QStringLiteral("32"));

    auto* const form = new QFormLayout;
    auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    auto* const layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(buttons);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    const auto add_edit = [form](const QString& label, const char* name, const QString& placeholder) {
        auto* const edit = new QLineEdit;
        edit->setObjectName(QLatin1String(name));
        edit->setPlaceholderText(placeholder);
        form->addRow(label, edit);
        return edit;
    };
    m_name_edit = add_edit(tr("Name:"), "m_name_edit", QStringLiteral("W25Q64FV"));
    form->addRow(tr("Type:"), m_type_combo);
    m_size_edit = add_edit(tr("Capacity (bytes):"), "m_size_edit", QStringLiteral("8M"));
    m_sector_size_edit = add_edit(tr("Sector size (bytes):"), "m_sector_size_edit", QStringLiteral("64K"));
    m_page_size_edit = add_edit(tr("Page size (bytes):"), "m_page_size_edit", QStringLiteral("256"));
    form->addRow(tr("Address width:"), m_address_width_combo);
    m_jedec_id_edit = add_edit(tr("JEDEC id:"), "m_jedec_id_edit", QStringLiteral("EF 40 17"));
    nivo_safe_connect(buttons, SIGNAL(accepted()), this, SLOT(add_and_close()), Qt::AutoConnection, __FILE__,
                      __LINE__);
    nivo_safe_connect(buttons, SIGNAL(rejected()), this, SLOT(reject()), Qt::AutoConnection, __FILE__,
                      __LINE__);
}

QString CUSTOM_DEVICE_DLG::get_name() const
{
    return m_name_edit->text().trimmed();
}

bool CUSTOM_DEVICE_DLG::read(CUSTOM_DEVICE& device)
{
    device.name = get_name().toUtf8().toStdString();
    device.type = m_type_combo->currentData().toString().toStdString();
    device.address_width = m_address_width_combo->currentData().toString().toStdString();
    device.jedec_id = m_jedec_id_edit->text().trimmed().toUtf8().toStdString();
    const struct {
        QLineEdit* edit;
        std::uint64_t* size;
        QString what;
    } numbers[] = {
        {m_size_edit, &device.size, tr("capacity")},
        {m_sector_size_edit, &device.sector_size, tr("sector size")},
        {m_page_size_edit, &device.page_size, tr("page size")},
    };
    for (const auto& number : numbers) {
        if (!parse_size(number.edit->text(), *number.size)) {
            refuse(tr("The %1 \"%2\" is no number of bytes; write it as 65536, 0x10000 or 64K.")
                       .arg(number.what, number.edit->text()));
            number.edit->setFocus();
            number.edit->selectAll();
            return false;
        }
    }
    return true;
}

void CUSTOM_DEVICE_DLG::refuse(const QString& reason)
{
    QMessageBox box(QMessageBox::Warning, tr("Imagewright"), reason, QMessageBox::Ok, this);
    box.exec();
}

void CUSTOM_DEVICE_DLG::add_and_close()
{
    CUSTOM_DEVICE device;
    if (!read(device)) {
        return;
    }
    std::string message;
    if (!CUSTOM_DEVICES::add(device, message)) {
        refuse(QString::fromLocal8Bit(message.c_str()));
        return;
    }
    accept();
}
