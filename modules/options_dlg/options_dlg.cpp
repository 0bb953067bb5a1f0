#include "options_dlg.h"

#include "fio_types.h"
#include "nivo_dialog_modules.h"
#include "nivo_help.h"
#include "nivo_hex_edit.h"
#include "nivo_icon.h"
#include "nivo_native_file_dlg.h"
#include "nivo_safe_connect.h"
#include "pgm_common_ini.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>
#include <array>

namespace
{

constexpr unsigned UFM_FROM_FILE = 2;
constexpr int NUMBER_DIGITS = 8;

/// The power-on schemes by number.
constexpr std::array<const char*, 3> POWER_ON_SCHEMES{QT_TRANSLATE_NOOP("OPTIONS_DLG", "Instant-on"),
                                                      QT_TRANSLATE_NOOP("OPTIONS_DLG", "Fast delay"),
                                                      QT_TRANSLATE_NOOP("OPTIONS_DLG", "Standard delay")};

void connect_to(const QObject* sender, const char* signal, const QObject* receiver, const char* slot)
{
    nivo_safe_connect(sender, signal, receiver, slot, Qt::AutoConnection, __FILE__, __LINE__);
}

NIVO_HEX_EDIT* make_number_edit(const char* name, std::uint32_t value)
{
    auto* const edit = new NIVO_HEX_EDIT(NUMBER_DIGITS);
    edit->setObjectName(QLatin1String(name));
    edit->set_value(value);
    return edit;
}

std::uint32_t get_number(const NIVO_HEX_EDIT& edit, std::uint32_t otherwise)
{
    std::uint64_t value = 0;
    return edit.get_value(value) ? static_cast<std::uint32_t>(value) : otherwise;
}

void read(bool& option, const QCheckBox* check_box)
{
    if (check_box != nullptr) {
        option = check_box->isChecked();
    }
}

} // namespace

OPTIONS_DLG::OPTIONS_DLG(const DSET_OTI_DEV_OPTIONS_INFO& options, const CONTENT& content, QWidget* parent)
    : NIVO_DIALOG(parent), m_options(options), m_content(content)
{
    setWindowTitle(tr("Device Options"));
    nivo_set_help_topic(*this, NIVO_HELP_DEVICE_OPTIONS);
    setWindowIcon(nivo_get_icon(NIVO_ICON_IMAGEWRIGHT));
    setSizeGripEnabled(false);
    auto* const layout = new QVBoxLayout(this);
    create_configuration_group(*layout);
    create_security_group(*layout);
    if (content.spi) {
        create_spi_group(*layout);
    }
    if (content.timing) {
        create_test_group(*layout);
    }
    if (content.with_ufm) {
        create_ufm_group(*layout);
    }
    auto* const buttons = new QDialogButtonBox(
        content.is_editable ? QDialogButtonBox::Ok | QDialogButtonBox::Cancel : QDialogButtonBox::Cancel);
    m_ok_button = buttons->button(QDialogButtonBox::Ok);
    layout->addWidget(buttons);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    connect_to(buttons, SIGNAL(accepted()), this, SLOT(accept()));
    connect_to(buttons, SIGNAL(rejected()), this, SLOT(reject()));
    update_enabled();
    if (!content.is_editable) {
        for (QGroupBox* const group : findChildren<QGroupBox*>()) {
            group->setEnabled(false);
        }
    }
}

QFormLayout* OPTIONS_DLG::add_group(QVBoxLayout& layout, const QString& title)
{
    auto* const group = new QGroupBox(title);
    layout.addWidget(group);
    return new QFormLayout(group);
}

QCheckBox* OPTIONS_DLG::add_check_box(QFormLayout& form, const QString& text, const char* name, bool checked)
{
    auto* const check_box = new QCheckBox(text);
    check_box->setObjectName(QLatin1String(name));
    check_box->setChecked(checked);
    form.addRow(check_box);
    connect_to(check_box, SIGNAL(toggled(bool)), this, SLOT(update_enabled()));
    return check_box;
}

void OPTIONS_DLG::create_configuration_group(QVBoxLayout& layout)
{
    QFormLayout& form = *add_group(layout, tr("Configuration"));
    m_power_on_combo = new QComboBox;
    m_power_on_combo->setObjectName(QStringLiteral("m_power_on_combo"));
    for (const char* const scheme : POWER_ON_SCHEMES) {
        m_power_on_combo->addItem(tr(scheme), m_power_on_combo->count());
    }
    if (m_options.power_on_scheme >= POWER_ON_SCHEMES.size()) {
        // A file may hold a number that has no name here. It is kept.
        m_power_on_combo->addItem(tr("Scheme %1").arg(m_options.power_on_scheme), m_options.power_on_scheme);
    }
    m_power_on_combo->setCurrentIndex(m_power_on_combo->findData(m_options.power_on_scheme));
    form.addRow(tr("Power-on scheme:"), m_power_on_combo);
    m_weak_pullup_check = add_check_box(form, tr("Weak pull-ups on user I/O during configuration"),
                                        "m_weak_pullup_check", m_options.user_ios_weak_pullup);
    if (m_content.dual) {
        m_cfm0_only_check = add_check_box(form, tr("Configure from CFM0 only"), "m_cfm0_only_check",
                                          !m_options.not_cfm0_only);
    }
    m_isp_source_check = add_check_box(form, tr("Configure from in-system programming data"),
                                       "m_isp_source_check", m_options.isp_source);
    m_watchdog_check =
        add_check_box(form, tr("User watchdog"), "m_watchdog_check", m_options.watchdog_enabled);
    m_watchdog_edit = make_number_edit("m_watchdog_edit", m_options.watchdog_value);
    form.addRow(tr("Watchdog value:"), m_watchdog_edit);
    connect_to(m_watchdog_edit, SIGNAL(textChanged(const QString&)), this, SLOT(update_enabled()));
}

void OPTIONS_DLG::create_security_group(QVBoxLayout& layout)
{
    QFormLayout& form = *add_group(layout, tr("Security"));
    m_verify_protect_check =
        add_check_box(form, tr("Verify protect"), "m_verify_protect_check", m_options.verify_protect);
    m_encrypted_only_check = add_check_box(form, tr("Accept encrypted programming files only"),
                                           "m_encrypted_only_check", m_options.encrypted_pof_only);
    if (m_content.security) {
        m_jtag_security_check =
            add_check_box(form, tr("JTAG security"), "m_jtag_security_check", m_options.jtag_security);
    }
}

void OPTIONS_DLG::create_spi_group(QVBoxLayout& layout)
{
    QFormLayout& form = *add_group(layout, tr("SPI"));
    m_spi_mode_check = add_check_box(form, tr("SPI mode"), "m_spi_mode_check", m_options.spi_mode);
    m_fallback_check =
        add_check_box(form, tr("Fall back to another image"), "m_fallback_check", m_options.fallback_enabled);
    m_fallback_edit = make_number_edit("m_fallback_edit", m_options.fallback_address);
    form.addRow(tr("Fallback address:"), m_fallback_edit);
    connect_to(m_fallback_edit, SIGNAL(textChanged(const QString&)), this, SLOT(update_enabled()));
    m_ssmclk_check = add_check_box(form, tr("Drive SSMCLK from ISMCLK"), "m_ssmclk_check",
                                   m_options.force_ssmclk_to_use_ismclk);
}

void OPTIONS_DLG::create_test_group(QVBoxLayout& layout)
{
    QFormLayout& form = *add_group(layout, tr("Test"));
    m_enable_test_check =
        add_check_box(form, tr("Enable test"), "m_enable_test_check", m_options.enable_test);
    m_disable_test_check =
        add_check_box(form, tr("Disable test"), "m_disable_test_check", m_options.disable_test);
}

void OPTIONS_DLG::create_ufm_group(QVBoxLayout& layout)
{
    QFormLayout& form = *add_group(layout, tr("User flash"));
    m_ufm_source_combo = new QComboBox;
    m_ufm_source_combo->setObjectName(QStringLiteral("m_ufm_source_combo"));
    for (int sector = 0; sector < m_content.sectors.size(); ++sector) {
        m_ufm_source_combo->addItem(m_content.sectors[sector], sector);
    }
    m_ufm_source_combo->addItem(tr("File"), UFM_FROM_FILE);
    m_ufm_source_combo->setCurrentIndex(std::max(m_ufm_source_combo->findData(m_options.ufm_source), 0));
    form.addRow(tr("Source:"), m_ufm_source_combo);
    m_ufm_file_edit = new QLineEdit(QString::fromLocal8Bit(m_options.ufm_source_file.c_str()));
    m_ufm_file_edit->setObjectName(QStringLiteral("m_ufm_file_edit"));
    m_ufm_browse_button = new QPushButton(tr("Browse..."));
    m_ufm_browse_button->setObjectName(QStringLiteral("m_ufm_browse_button"));
    auto* const row = new QHBoxLayout;
    row->addWidget(m_ufm_file_edit, 1);
    row->addWidget(m_ufm_browse_button);
    form.addRow(tr("File:"), row);
    connect_to(m_ufm_source_combo, SIGNAL(currentIndexChanged(int)), this, SLOT(update_enabled()));
    connect_to(m_ufm_file_edit, SIGNAL(textChanged(const QString&)), this, SLOT(update_enabled()));
    connect_to(m_ufm_browse_button, SIGNAL(clicked()), this, SLOT(browse_ufm_file()));
}

bool OPTIONS_DLG::reads_ufm_file() const
{
    return m_ufm_source_combo != nullptr && m_ufm_source_combo->currentData().toUInt() == UFM_FROM_FILE;
}

void OPTIONS_DLG::update_enabled()
{
    if (m_ok_button == nullptr) {
        return;
    }
    std::uint64_t number = 0;
    bool complete = true;
    m_watchdog_edit->setEnabled(m_watchdog_check->isChecked());
    complete = complete && (!m_watchdog_check->isChecked() || m_watchdog_edit->get_value(number));
    if (m_fallback_check != nullptr) {
        m_fallback_edit->setEnabled(m_fallback_check->isChecked());
        complete = complete && (!m_fallback_check->isChecked() || m_fallback_edit->get_value(number));
    }
    if (m_ufm_source_combo != nullptr) {
        m_ufm_file_edit->setEnabled(reads_ufm_file());
        m_ufm_browse_button->setEnabled(reads_ufm_file());
        complete = complete && (!reads_ufm_file() || !m_ufm_file_edit->text().isEmpty());
    }
    m_ok_button->setEnabled(complete);
}

void OPTIONS_DLG::browse_ufm_file()
{
    NIVO_NATIVE_FILE_DLG dialog(this);
    dialog.setWindowTitle(tr("Select User Flash File"));
    dialog.setFileMode(QFileDialog::ExistingFile);
    dialog.setNameFilters({QString::fromLocal8Bit(fio_get_file_type_filter(FIO_HEX_FILE, false).c_str()),
                           QString::fromLocal8Bit(fio_get_file_type_filter(FIO_ANY_FILE, false).c_str())});
    if (dialog.exec() == QDialog::Accepted && !dialog.selectedFiles().isEmpty()) {
        m_ufm_file_edit->setText(dialog.selectedFiles().front());
    }
}

DSET_OTI_DEV_OPTIONS_INFO OPTIONS_DLG::get_options() const
{
    DSET_OTI_DEV_OPTIONS_INFO options = m_options;
    options.power_on_scheme = m_power_on_combo->currentData().toUInt();
    read(options.user_ios_weak_pullup, m_weak_pullup_check);
    if (m_cfm0_only_check != nullptr) {
        options.not_cfm0_only = !m_cfm0_only_check->isChecked();
    }
    read(options.isp_source, m_isp_source_check);
    read(options.watchdog_enabled, m_watchdog_check);
    options.watchdog_value = get_number(*m_watchdog_edit, options.watchdog_value);
    read(options.verify_protect, m_verify_protect_check);
    read(options.encrypted_pof_only, m_encrypted_only_check);
    read(options.jtag_security, m_jtag_security_check);
    read(options.spi_mode, m_spi_mode_check);
    read(options.fallback_enabled, m_fallback_check);
    if (m_fallback_edit != nullptr) {
        options.fallback_address = get_number(*m_fallback_edit, options.fallback_address);
    }
    read(options.force_ssmclk_to_use_ismclk, m_ssmclk_check);
    read(options.enable_test, m_enable_test_check);
    read(options.disable_test, m_disable_test_check);
    if (m_ufm_source_combo != nullptr) {
        options.ufm_source = m_ufm_source_combo->currentData().toUInt();
        options.ufm_source_file =
            reads_ufm_file() ? m_ufm_file_edit->text().toLocal8Bit().toStdString() : std::string();
    }
    return options;
}

QString OPTIONS_DLG::summarise(const DSET_OTI_DEV_OPTIONS_INFO& options)
{
    const DSET_OTI_DEV_OPTIONS_INFO initial;
    QStringList lines;
    const auto note = [&lines](bool differs, const QString& text) {
        if (differs) {
            lines << text;
        }
    };
    note(options.power_on_scheme != initial.power_on_scheme,
         tr("Power-on scheme %1").arg(options.power_on_scheme));
    note(!options.user_ios_weak_pullup, tr("No weak pull-ups on user I/O during configuration"));
    note(!options.not_cfm0_only, tr("Configure from CFM0 only"));
    note(options.isp_source, tr("Configure from in-system programming data"));
    note(options.watchdog_enabled, tr("User watchdog"));
    note(options.verify_protect, tr("Verify protect"));
    note(options.encrypted_pof_only, tr("Accept encrypted programming files only"));
    note(options.jtag_security, tr("JTAG security"));
    note(options.spi_mode, tr("SPI mode"));
    note(options.fallback_enabled, tr("Fall back to another image"));
    note(options.enable_test, tr("Enable test"));
    note(options.ufm_source == UFM_FROM_FILE, tr("User flash from a file"));
    return lines.join(QLatin1Char('\n'));
}

extern "C" Q_DECL_EXPORT void options_dlg_show(QWidget* parent, DSET_OTI_DEV_OPTIONS_INFO* options,
                                               bool is_editable, bool dual, bool timing, bool security,
                                               QList<QString> sectors, QString* summary, bool with_ufm)
{
    const bool spi = PGM_COMMON_INI::get_boolean(PGM_COMMON_INI::SPI_OPTIONS, false);
    OPTIONS_DLG dialog(*options, {is_editable, dual, timing, security, spi, with_ufm, sectors}, parent);
    if (dialog.exec() == QDialog::Accepted && is_editable) {
        *options = dialog.get_options();
    }
    if (summary != nullptr) {
        *summary = OPTIONS_DLG::summarise(*options);
    }
}

static_assert(std::is_same_v<decltype(&options_dlg_show), NIVO_OPTIONS_DLG_SHOW>);
