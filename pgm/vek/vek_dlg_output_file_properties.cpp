#include "vek_dlg_output_file_properties.h"

#include "fio_types.h"
#include "msg_internal_error.h"
#include "nivo_help.h"
#include "nivo_hex_edit.h"
#include "nivo_icon.h"
#include "nivo_safe_connect.h"
#include "vek_db.h"
#include "vek_gui_util.h"
#include "vek_property_browser.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace
{

std::string get_type_string(VEK_FILE_TYPE type)
{
    return VEK_FILE_ASSISTANT::convert_xml_enum_to_string(VEK_DB::get_xml_enum(type));
}

QString get_param_description(std::uint32_t id)
{
    return VEK_GUI_UTIL::from_local(
        VEK_DB::get_description(static_cast<PGM_COMMON_XML_VEK_CMD_PARAM_ENUM>(id)));
}

} // namespace

VEK_DLG_OUTPUT_FILE_PROPERTIES::VEK_DLG_OUTPUT_FILE_PROPERTIES(std::shared_ptr<PGM_COMMON_XML_VEK_VEK> vek,
                                                               VEK_FILE_TYPE file_type, VEK_FILE_TYPE parent,
                                                               VEK_FILE_TYPE grandparent,
                                                               QWidget* parent_widget, Qt::WindowFlags flags)
    : NIVO_DIALOG(parent_widget, flags), m_vek(std::move(vek)), m_grandparent(grandparent), m_parent(parent),
      m_file_type(file_type)
{
    const QString extension =
        VEK_GUI_UTIL::from_local(fio_get_extension_string(VEK_DB::get_fio_ext_enum(file_type)));
    setWindowTitle(tr("%1 Properties").arg(extension.mid(1).toUpper()));
    nivo_set_help_topic(*this, NIVO_HELP_OUTPUT_FILE_PROPERTIES);
    setWindowIcon(nivo_get_icon(NIVO_ICON_IMAGEWRIGHT));
    setSizeGripEnabled(false);
    m_properties = new VEK_PROPERTY_BROWSER(this);
    create_properties();
    filter_properties();
    m_button_box = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    auto* const box = new QVBoxLayout(this);
    box->addWidget(m_properties);
    box->addWidget(m_button_box);
    box->setSizeConstraint(QLayout::SetFixedSize);
    create_set();

    // Made last: the initial values above do not ask for it.
    nivo_safe_connect(m_properties->get_widget(VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_USE_RELATIVE),
                      SIGNAL(stateChanged(int)), this, SLOT(update_start_address_edit(int)),
                      Qt::AutoConnection, __FILE__, __LINE__);
    nivo_safe_connect(m_button_box, SIGNAL(accepted()), this, SLOT(accept()), Qt::AutoConnection, __FILE__,
                      __LINE__);
    nivo_safe_connect(m_button_box, SIGNAL(rejected()), this, SLOT(reject()), Qt::AutoConnection, __FILE__,
                      __LINE__);
}

void VEK_DLG_OUTPUT_FILE_PROPERTIES::create_properties()
{
    using BROWSER = VEK_PROPERTY_BROWSER;
    // The tooltip of the check box is that of the voltage, which everyone is used to.
    auto* const relative_check = new QCheckBox(tr("Use relative address"));
    relative_check->setToolTip(get_param_description(VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_VOLTAGE));
    const struct {
        const char* label;
        QWidget* widget;
        const char* name;
        std::uint32_t id;
        BROWSER::TYPE type;
    } rows[] = {
        {QT_TR_NOOP("Operation:"), new QComboBox, "operation_combo",
         VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_OPERATION, BROWSER::TYPE_COMBO},
        {QT_TR_NOOP("TCK frequency:"), new QLineEdit, "frequency_edit",
         VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_FREQUENCY, BROWSER::TYPE_LINE},
        {QT_TR_NOOP("Supply voltage:"), new QComboBox, "voltage_combo",
         VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_VOLTAGE, BROWSER::TYPE_COMBO},
        {nullptr, relative_check, "relative_check", VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_USE_RELATIVE,
         BROWSER::TYPE_CHECK},
        // Not a file, but never read or written through the browser.
        {QT_TR_NOOP("Start address:"), new NIVO_HEX_EDIT(8), "start_edit",
         VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_S_ADDR, BROWSER::TYPE_FILE},
        {QT_TR_NOOP("Direction:"), new QComboBox, "direction_combo",
         VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_DIRECTION, BROWSER::TYPE_COMBO},
        {QT_TR_NOOP("Bit swap:"), new QComboBox, "bitswap_combo",
         VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_BITSWAP, BROWSER::TYPE_BOOL_COMBO},
        {QT_TR_NOOP("Bit swap:"), new QComboBox, "sec_bitswap_combo",
         VEK_CMD_PARAM_OUTPUT_FILE_SECONDARY_FILE_FILE_OPTIONS_BITSWAP, BROWSER::TYPE_BOOL_COMBO},
    };
    for (const auto& row : rows) {
        row.widget->setObjectName(QString::fromLatin1(row.name));
        QLabel* label = nullptr;
        if (row.label != nullptr) {
            label = new QLabel(tr(row.label));
            label->setToolTip(get_param_description(row.id));
        }
        const bool success = m_properties->add_property({label, row.widget, row.id, row.type});
        VEK_ASSERT(success);
    }
}

void VEK_DLG_OUTPUT_FILE_PROPERTIES::filter_properties()
{
    for (const std::uint32_t id : m_properties->get_ids(true)) {
        if (!VEK_DB::supports_supported_output_file_type(static_cast<PGM_COMMON_XML_VEK_CMD_PARAM_ENUM>(id),
                                                         m_file_type)) {
            m_properties->hide_property(id);
        }
    }
}

void VEK_DLG_OUTPUT_FILE_PROPERTIES::create_set()
{
    const char* const text_changed = SIGNAL(textChanged(const QString&));
    if (m_file_type == VEK_SVF_FILE_TYPE) {
        nivo_safe_connect(m_properties->get_widget(VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_FREQUENCY),
                          text_changed, this, SLOT(update_svf_ok_button()), Qt::AutoConnection, __FILE__,
                          __LINE__);
        populate_operation_combo();
        populate_voltage_combo();
        set_svf_initial_values();
    } else if (m_file_type == VEK_HEX_FILE_TYPE) {
        nivo_safe_connect(m_properties->get_widget(VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_S_ADDR),
                          text_changed, this, SLOT(update_hex_ok_button()), Qt::AutoConnection, __FILE__,
                          __LINE__);
        populate_direction_combo();
        set_hex_initial_values();
    } else if (m_file_type == VEK_RPD_FILE_TYPE || m_file_type == VEK_PERIPH_RPD_FILE_TYPE) {
        populate_bitswap_combo();
        set_rpd_initial_values();
    } else if (m_file_type == VEK_SEC_RPD_FILE_TYPE) {
        populate_sec_bitswap_combo();
        set_sec_rpd_initial_values();
    }
}

std::vector<std::uint32_t> VEK_DLG_OUTPUT_FILE_PROPERTIES::get_all_properties() const
{
    return m_properties->get_ids(true);
}

PGM_COMMON_XML_VEK_OUTPUT_FILE* VEK_DLG_OUTPUT_FILE_PROPERTIES::find_output_file(VEK_FILE_TYPE type,
                                                                                 VEK_FILE_TYPE group) const
{
    const std::string type_string = get_type_string(type);
    for (auto* const output_file : VEK_FILE_ASSISTANT::get_output_file_elements(m_vek.get())) {
        if (output_file->type != type_string) {
            continue;
        }
        if (group == VEK_INVALID_FILE_TYPE ||
            VEK_FILE_ASSISTANT::convert_string_to_bool(group == VEK_CVP_GROUP_FILE_TYPE ? output_file->cvp
                                                                                        : output_file->hps)) {
            return output_file;
        }
    }
    return nullptr;
}

PGM_COMMON_XML_VEK_FILE_OPTIONS* VEK_DLG_OUTPUT_FILE_PROPERTIES::find_secondary_file_options(
    const PGM_COMMON_XML_VEK_OUTPUT_FILE* output_file) const
{
    if (output_file == nullptr) {
        return nullptr;
    }
    const std::string type_string = get_type_string(m_file_type);
    for (const auto* const secondary : VEK_FILE_ASSISTANT::get_secondary_file_elements(output_file)) {
        if (secondary->type == type_string) {
            return VEK_FILE_ASSISTANT::get_file_options_element(secondary);
        }
    }
    return nullptr;
}

PGM_COMMON_XML_VEK_FILE_OPTIONS* VEK_DLG_OUTPUT_FILE_PROPERTIES::get_file_options_element() const
{
    if (m_grandparent == VEK_CVP_GROUP_FILE_TYPE || m_grandparent == VEK_HPS_GROUP_FILE_TYPE) {
        return find_secondary_file_options(find_output_file(m_parent, m_grandparent));
    }
    if (m_parent != VEK_INVALID_FILE_TYPE && !VEK_DB::get_virtual_type(m_parent)) {
        return find_secondary_file_options(find_output_file(m_parent, VEK_INVALID_FILE_TYPE));
    }
    if (m_file_type == VEK_INVALID_FILE_TYPE) {
        return nullptr;
    }
    const auto* const output_file = find_output_file(m_file_type, VEK_INVALID_FILE_TYPE);
    return output_file == nullptr ? nullptr : VEK_FILE_ASSISTANT::get_file_options_element(output_file);
}

void VEK_DLG_OUTPUT_FILE_PROPERTIES::enable_ok_button(bool enabled)
{
    QPushButton* const ok_button = m_button_box->button(QDialogButtonBox::Ok);
    VEK_ASSERT(ok_button != nullptr);
    ok_button->setEnabled(enabled);
}

VEK_FILE_ASSISTANT::PARAMS VEK_DLG_OUTPUT_FILE_PROPERTIES::get_params() const
{
    if (m_file_type == VEK_HEX_FILE_TYPE) {
        return make_hex_params();
    }
    if (m_file_type == VEK_RPD_FILE_TYPE || m_file_type == VEK_PERIPH_RPD_FILE_TYPE) {
        return make_rpd_params();
    }
    if (m_file_type == VEK_SEC_RPD_FILE_TYPE) {
        return make_sec_rpd_params();
    }
    if (m_file_type == VEK_SVF_FILE_TYPE) {
        return make_svf_params();
    }
    MSG_INTERNAL_ERROR::report("Invalid file type.", "VEK", __FILE__, __LINE__);
}
