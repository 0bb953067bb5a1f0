#include "vek_dlg_partition_properties.h"

#include "fio_path.h"
#include "msg_internal_error.h"
#include "nivo_help.h"
#include "nivo_hex_edit.h"
#include "nivo_icon.h"
#include "nivo_safe_connect.h"
#include "vek_element_combo.h"
#include "vek_file_assistant.h"
#include "vek_frame_wnd_cache.h"
#include "vek_gui_util.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>
#include <array>
#include <charconv>

namespace
{

constexpr std::array<const char*, 3> ADDRESS_MODE_LABELS{"Auto", "Block", "Start"};
constexpr char DEFAULT_START_ADDRESS[] = "auto";
constexpr char DEFAULT_END_ADDRESS[] = "auto";
constexpr char AUTO_ADDRESS[] = "auto";
constexpr char FIRST_ADDRESS[] = "0x00000000";
constexpr char LAST_ADDRESS[] = "0xFFFFFFFF";
constexpr char CFM_PREFIX[] = "CFM";
constexpr char OPTIONS_NAME[] = "OPTIONS";
constexpr int ADDRESS_DIGITS = 8;

enum ADDRESS_MODE { ADDRESS_MODE_AUTO, ADDRESS_MODE_BLOCK, ADDRESS_MODE_START };

bool is_reserved_name(const std::string& name)
{
    for (const char* const reserved : {"BOOT_INFO", "FACTORY_IMAGE", OPTIONS_NAME, "UFM", "PUF"}) {
        if (name == reserved) {
            return true;
        }
    }
    return name.starts_with("SPT") || name.starts_with("CPB") || name.starts_with(CFM_PREFIX);
}

bool is_raw_data(const PGM_COMMON_XML_VEK_RAW_FILE& raw_file)
{
    const PGM_COMMON_XML_ENUM type = VEK_FILE_ASSISTANT::convert_string_to_xml_enum(raw_file.type);
    return type == PGM_COMMON_XML_ENUM_HEX || type == PGM_COMMON_XML_ENUM_RBF;
}

void disable_row(const QFormLayout& form, QWidget& field)
{
    field.setEnabled(false);
    form.labelForField(&field)->setEnabled(false);
}

void enable_row(const QFormLayout& form, QWidget& field, bool enabled)
{
    field.setEnabled(enabled);
    form.labelForField(&field)->setEnabled(enabled);
}

} // namespace

VEK_DLG_PARTITION_PROPERTIES::VEK_DLG_PARTITION_PROPERTIES(
    DLG_TYPE type, std::shared_ptr<PGM_COMMON_XML_VEK_VEK> vek, std::shared_ptr<VEK_FRAME_WND_CACHE> cache,
    const std::string& name, const std::string& device_id, QWidget* parent, Qt::WindowFlags flags)
    : NIVO_DIALOG(parent, flags), m_type(type), m_vek(std::move(vek)), m_cache(std::move(cache)),
      m_name(name), m_device_id(device_id)
{
    setWindowTitle(type == DLG_TYPE_ADD ? tr("Add Partition") : tr("Edit Partition"));
    nivo_set_help_topic(*this, NIVO_HELP_PARTITION);
    setWindowIcon(nivo_get_icon(NIVO_ICON_IMAGEWRIGHT));
    setSizeGripEnabled(false);
    create_widgets();
    create_connections();
    populate_address_combo();
    populate_input_file_combo();
    populate_page_combo();
    m_name_edit->setText(VEK_GUI_UTIL::from_local(name));
    set_initial_address();
    filter_options();
    if (type == DLG_TYPE_UFM || type == DLG_TYPE_CFM) {
        disable_row(*m_form, *m_name_edit);
        disable_row(*m_form, *m_page_combo);
        m_address_group->setEnabled(false);
    }
}

void VEK_DLG_PARTITION_PROPERTIES::create_widgets()
{
    m_name_edit = new QLineEdit;
    m_name_edit->setObjectName(QStringLiteral("m_name_edit"));
    m_input_file_combo = new QComboBox;
    m_input_file_combo->setObjectName(QStringLiteral("m_input_file_combo"));
    m_page_combo = new QComboBox;
    m_page_combo->setObjectName(QStringLiteral("m_page_combo"));
    m_form = new QFormLayout;
    m_form->addRow(tr("Name:"), m_name_edit);
    m_form->addRow(tr("Input file:"), m_input_file_combo);
    m_form->addRow(tr("Page:"), m_page_combo);

    m_address_mode_combo = new QComboBox;
    m_address_mode_combo->setObjectName(QStringLiteral("m_address_mode_combo"));
    m_start_addr_edit = new NIVO_HEX_EDIT(ADDRESS_DIGITS);
    m_start_addr_edit->setObjectName(QStringLiteral("m_start_addr_edit"));
    m_end_addr_edit = new NIVO_HEX_EDIT(ADDRESS_DIGITS);
    m_end_addr_edit->setObjectName(QStringLiteral("m_end_addr_edit"));
    m_address_group = new QGroupBox(tr("Address"));
    m_address_form = new QFormLayout(m_address_group);
    m_address_form->addRow(tr("Address Mode:"), m_address_mode_combo);
    m_address_form->addRow(tr("Start address:"), m_start_addr_edit);
    m_address_form->addRow(tr("End address:"), m_end_addr_edit);

    auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    m_ok_button = buttons->button(QDialogButtonBox::Ok);
    auto* const layout = new QVBoxLayout(this);
    layout->addLayout(m_form);
    layout->addWidget(m_address_group);
    layout->addWidget(buttons);
    layout->setSizeConstraint(QLayout::SetFixedSize);
}

void VEK_DLG_PARTITION_PROPERTIES::create_connections()
{
    const struct {
        const QObject* sender;
        const char* signal;
        const char* slot;
    } connections[] = {
        {m_input_file_combo, SIGNAL(currentIndexChanged(int)), SLOT(update_page_combo(int))},
        {m_address_mode_combo, SIGNAL(currentIndexChanged(int)), SLOT(update_address_edits(int))},
        {m_address_mode_combo, SIGNAL(currentIndexChanged(int)), SLOT(update_ok_button())},
        {m_name_edit, SIGNAL(textChanged(const QString&)), SLOT(update_ok_button())},
        {m_start_addr_edit, SIGNAL(textChanged(const QString&)), SLOT(update_ok_button())},
        {m_end_addr_edit, SIGNAL(textChanged(const QString&)), SLOT(update_ok_button())},
        {m_ok_button->parent(), SIGNAL(accepted()), SLOT(validate_and_close())},
        {m_ok_button->parent(), SIGNAL(rejected()), SLOT(reject())},
    };
    for (const auto& connection : connections) {
        nivo_safe_connect(connection.sender, connection.signal, this, connection.slot, Qt::AutoConnection,
                          __FILE__, __LINE__);
    }
}

std::string VEK_DLG_PARTITION_PROPERTIES::get_name() const
{
    return VEK_GUI_UTIL::to_local(m_name_edit->text());
}

std::string VEK_DLG_PARTITION_PROPERTIES::get_start_address() const
{
    return !m_start_addr_edit->isEnabled() && !m_fixed_start
               ? AUTO_ADDRESS
               : VEK_GUI_UTIL::to_local(m_start_addr_edit->text());
}

std::string VEK_DLG_PARTITION_PROPERTIES::get_end_address() const
{
    // A fixed end is never written, so its own text is not needed.
    return !m_end_addr_edit->isEnabled() ? AUTO_ADDRESS : VEK_GUI_UTIL::to_local(m_end_addr_edit->text());
}

unsigned VEK_DLG_PARTITION_PROPERTIES::get_page() const
{
    return static_cast<unsigned>(std::max(m_page_combo->currentIndex(), 0));
}

void VEK_DLG_PARTITION_PROPERTIES::set_input_file(const PGM_COMMON_XML_ELEMENT* element)
{
    VEK_ELEMENT_COMBO::set_current(*m_input_file_combo, element);
}

const PGM_COMMON_XML_ELEMENT* VEK_DLG_PARTITION_PROPERTIES::get_input_file() const
{
    return VEK_ELEMENT_COMBO::get(*m_input_file_combo, m_input_file_combo->currentIndex());
}

void VEK_DLG_PARTITION_PROPERTIES::populate_address_combo()
{
    for (const char* const label : ADDRESS_MODE_LABELS) {
        m_address_mode_combo->addItem(QString::fromLatin1(label));
    }
}

void VEK_DLG_PARTITION_PROPERTIES::populate_input_file_combo()
{
    const PGM_COMMON_XML_VEK_VEK* const document = m_vek.get();
    if (m_type == DLG_TYPE_UFM) {
        for (auto* const partition : VEK_FILE_ASSISTANT::get_partition_elements(document, m_device_id)) {
            if (partition->id.starts_with(CFM_PREFIX)) {
                VEK_ELEMENT_COMBO::add(*m_input_file_combo, VEK_GUI_UTIL::from_local(partition->id),
                                       partition);
            }
        }
    } else {
        VEK_ELEMENT_COMBO::add(*m_input_file_combo, tr("None"), nullptr);
        for (auto* const bitstream : VEK_FILE_ASSISTANT::get_bitstream_elements(document)) {
            QStringList names;
            for (const auto* const path : bitstream->path) {
                names << VEK_GUI_UTIL::from_local(FIO_PATH(path->text).filename());
            }
            VEK_ELEMENT_COMBO::add(*m_input_file_combo,
                                   QStringLiteral("%1 (%2)").arg(VEK_GUI_UTIL::from_local(bitstream->id),
                                                                 names.join(QStringLiteral(", "))),
                                   bitstream);
        }
    }
    if (m_type == DLG_TYPE_CFM) {
        return;
    }
    for (auto* const raw_file : VEK_FILE_ASSISTANT::get_raw_file_elements(document)) {
        if (is_raw_data(*raw_file)) {
            VEK_ELEMENT_COMBO::add(*m_input_file_combo,
                                   VEK_GUI_UTIL::from_local(FIO_PATH(raw_file->text).filename()), raw_file);
        }
    }
}

void VEK_DLG_PARTITION_PROPERTIES::populate_page_combo()
{
    const unsigned pages = m_cache->max_bitstreams;
    for (unsigned page = 0; page < pages; ++page) {
        m_page_combo->addItem(QString::number(page));
    }
    if (pages == 1) {
        m_page_combo->setEnabled(false);
    }
    if (m_type != DLG_TYPE_EDIT && m_type != DLG_TYPE_CFM) {
        return;
    }
    const auto* const assignment = VEK_FILE_ASSISTANT::get_assignment_element(m_vek.get(), m_name);
    if (assignment != nullptr) {
        int page = 0;
        std::from_chars(assignment->page.data(), assignment->page.data() + assignment->page.size(), page);
        m_page_combo->setCurrentIndex(page);
    }
}

void VEK_DLG_PARTITION_PROPERTIES::update_page_combo(int index)
{
    if (index == -1) {
        return;
    }
    const PGM_COMMON_XML_ELEMENT* const element = VEK_ELEMENT_COMBO::get(*m_input_file_combo, index);
    m_page_combo->setEnabled(element != nullptr && element->m_class_type == PGM_COMMON_XML_ENUM_BITSTREAM);
}

void VEK_DLG_PARTITION_PROPERTIES::set_initial_address()
{
    std::string start = DEFAULT_START_ADDRESS;
    std::string end = DEFAULT_END_ADDRESS;
    if (m_type == DLG_TYPE_EDIT) {
        const PGM_COMMON_XML_VEK_PARTITION& partition = get_partition();
        start = partition.s_addr;
        end = partition.e_addr;
        m_fixed_start = VEK_FILE_ASSISTANT::convert_string_to_bool(partition.fixed_s_addr);
        m_fixed_end = VEK_FILE_ASSISTANT::convert_string_to_bool(partition.fixed_e_addr);
    }
    const bool auto_start = start == AUTO_ADDRESS;
    const bool auto_end = end == AUTO_ADDRESS;
    if (auto_end && (auto_start || m_fixed_start)) {
        m_address_mode_combo->setCurrentIndex(ADDRESS_MODE_AUTO);
        m_start_addr_edit->setText(m_fixed_start ? VEK_GUI_UTIL::from_local(start)
                                                 : QString::fromLatin1(FIRST_ADDRESS));
        m_end_addr_edit->setText(QString::fromLatin1(LAST_ADDRESS));
    } else if (!auto_start && !auto_end) {
        m_address_mode_combo->setCurrentIndex(ADDRESS_MODE_BLOCK);
        m_start_addr_edit->setText(VEK_GUI_UTIL::from_local(start));
        m_end_addr_edit->setText(VEK_GUI_UTIL::from_local(end));
    } else if (!auto_start) {
        m_address_mode_combo->setCurrentIndex(ADDRESS_MODE_START);
        m_start_addr_edit->setText(VEK_GUI_UTIL::from_local(start));
        m_end_addr_edit->setText(QString::fromLatin1(LAST_ADDRESS));
    }
}

void VEK_DLG_PARTITION_PROPERTIES::update_address_edits(int index)
{
    if (index == -1) {
        return;
    }
    const bool auto_mode = index == ADDRESS_MODE_AUTO;
    if (!m_fixed_start) {
        enable_row(*m_address_form, *m_start_addr_edit, !auto_mode);
    }
    if (!auto_mode || !m_fixed_end) {
        enable_row(*m_address_form, *m_end_addr_edit, index == ADDRESS_MODE_BLOCK);
    }
}

void VEK_DLG_PARTITION_PROPERTIES::update_ok_button()
{
    const int mode = m_address_mode_combo->currentIndex();
    const bool has_start = !m_start_addr_edit->text().isEmpty();
    const bool has_end = !m_end_addr_edit->text().isEmpty();
    m_ok_button->setEnabled(!m_name_edit->text().isEmpty() &&
                            (mode != ADDRESS_MODE_BLOCK || (has_start && has_end)) &&
                            (mode != ADDRESS_MODE_START || has_start));
}

void VEK_DLG_PARTITION_PROPERTIES::filter_options()
{
    if (m_type != DLG_TYPE_EDIT) {
        return;
    }
    const PGM_COMMON_XML_VEK_PARTITION& partition = get_partition();
    if (!VEK_FILE_ASSISTANT::convert_string_to_bool(partition.reserved)) {
        return;
    }
    disable_row(*m_form, *m_name_edit);
    disable_row(*m_form, *m_page_combo);
    if (partition.id == OPTIONS_NAME) {
        disable_row(*m_form, *m_input_file_combo);
    }
    if (!m_fixed_start) {
        return;
    }
    disable_row(*m_address_form, *m_start_addr_edit);
    if (m_fixed_end) {
        disable_row(*m_address_form, *m_address_mode_combo);
        disable_row(*m_address_form, *m_end_addr_edit);
    }
}

const PGM_COMMON_XML_VEK_PARTITION& VEK_DLG_PARTITION_PROPERTIES::get_partition() const
{
    const auto* const partition = VEK_FILE_ASSISTANT::get_partition_element(m_vek.get(), m_device_id, m_name);
    VEK_ASSERT(partition != nullptr);
    return *partition;
}

void VEK_DLG_PARTITION_PROPERTIES::validate_and_close()
{
    const std::string name = get_name();
    // All devices are searched: a partition is known by its name alone.
    const bool exists = VEK_FILE_ASSISTANT::get_partition_element(m_vek.get(), name) != nullptr;
    const bool same = name == m_name;
    switch (m_type) {
    case DLG_TYPE_ADD:
    case DLG_TYPE_EDIT:
        if (m_type == DLG_TYPE_EDIT && same) {
            accept();
        } else if (exists) {
            refuse_name(QStringLiteral("Partition name already exists."));
        } else if (is_reserved_name(name)) {
            refuse_name(QStringLiteral("Partition name is reserved."));
        } else {
            accept();
        }
        break;
    case DLG_TYPE_UFM:
    case DLG_TYPE_CFM:
        if (same || !exists) {
            accept();
        }
        break;
    }
}

void VEK_DLG_PARTITION_PROPERTIES::refuse_name(const QString& reason)
{
    QMessageBox box(QMessageBox::Warning, QStringLiteral("Imagewright"), reason);
    box.setInformativeText(QStringLiteral("Choose a different name."));
    box.exec();
    m_name_edit->setFocus();
    m_name_edit->selectAll();
}
