#include "msg_internal_error.h"
#include "nivo_hex_edit.h"
#include "vek_db.h"
#include "vek_dlg_output_file_properties.h"
#include "vek_gui_util.h"
#include "vek_property_browser.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>

#include <algorithm>

namespace
{

using PARAMS = VEK_FILE_ASSISTANT::PARAMS;

constexpr std::uint32_t OPERATION = VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_OPERATION;
constexpr std::uint32_t FREQUENCY = VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_FREQUENCY;
constexpr std::uint32_t VOLTAGE = VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_VOLTAGE;
constexpr std::uint32_t USE_RELATIVE = VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_USE_RELATIVE;
constexpr std::uint32_t START_ADDRESS = VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_S_ADDR;
constexpr std::uint32_t DIRECTION = VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_DIRECTION;
constexpr std::uint32_t BITSWAP = VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_BITSWAP;
constexpr std::uint32_t SEC_BITSWAP = VEK_CMD_PARAM_OUTPUT_FILE_SECONDARY_FILE_FILE_OPTIONS_BITSWAP;

using VALUES = std::vector<PGM_COMMON_XML_ENUM>;
using LABELS = std::vector<const char*>;

// A label for each value, at the same place.
const VALUES OPERATIONS = {PGM_COMMON_XML_ENUM_P, PGM_COMMON_XML_ENUM_V, PGM_COMMON_XML_ENUM_PB};
const LABELS OPERATION_LABELS = {
    QT_TRANSLATE_NOOP("VEK_DLG_OUTPUT_FILE_PROPERTIES", "Program"),
    QT_TRANSLATE_NOOP("VEK_DLG_OUTPUT_FILE_PROPERTIES", "Verify"),
    QT_TRANSLATE_NOOP("VEK_DLG_OUTPUT_FILE_PROPERTIES", "Blank-check and program"),
};
const VALUES VOLTAGES = {PGM_COMMON_XML_ENUM_1_5V, PGM_COMMON_XML_ENUM_1_8V, PGM_COMMON_XML_ENUM_2_5V,
                         PGM_COMMON_XML_ENUM_3_3V, PGM_COMMON_XML_ENUM_5_0V};
const LABELS VOLTAGE_LABELS = {
    QT_TRANSLATE_NOOP("VEK_DLG_OUTPUT_FILE_PROPERTIES", "1.5 volts"),
    QT_TRANSLATE_NOOP("VEK_DLG_OUTPUT_FILE_PROPERTIES", "1.8 volts"),
    QT_TRANSLATE_NOOP("VEK_DLG_OUTPUT_FILE_PROPERTIES", "2.5 volts"),
    QT_TRANSLATE_NOOP("VEK_DLG_OUTPUT_FILE_PROPERTIES", "3.3 volts"),
    QT_TRANSLATE_NOOP("VEK_DLG_OUTPUT_FILE_PROPERTIES", "5.0 volts"),
};
const VALUES DIRECTIONS = {PGM_COMMON_XML_ENUM_UP, PGM_COMMON_XML_ENUM_DOWN};
const LABELS DIRECTION_LABELS = {
    QT_TRANSLATE_NOOP("VEK_DLG_OUTPUT_FILE_PROPERTIES", "Up"),
    QT_TRANSLATE_NOOP("VEK_DLG_OUTPUT_FILE_PROPERTIES", "Down"),
};
const LABELS BITSWAP_LABELS = {
    QT_TRANSLATE_NOOP("VEK_DLG_OUTPUT_FILE_PROPERTIES", "Off"),
    QT_TRANSLATE_NOOP("VEK_DLG_OUTPUT_FILE_PROPERTIES", "On"),
};

template <typename EDITOR>
EDITOR& get_editor(const VEK_PROPERTY_BROWSER& properties, std::uint32_t id)
{
    auto* const editor = qobject_cast<EDITOR*>(properties.get_widget(id));
    VEK_ASSERT(editor != nullptr);
    return *editor;
}

void populate_combo(QComboBox& combo, const VALUES& values, const LABELS& labels)
{
    for (std::size_t row = 0; row < values.size(); ++row) {
        combo.addItem(VEK_DLG_OUTPUT_FILE_PROPERTIES::tr(labels[row]), static_cast<int>(values[row]));
    }
}

void populate_off_on_combo(QComboBox& combo)
{
    VEK_ASSERT(BITSWAP_LABELS.size() == 2);
    for (std::size_t row = 0; row < BITSWAP_LABELS.size(); ++row) {
        combo.addItem(VEK_DLG_OUTPUT_FILE_PROPERTIES::tr(BITSWAP_LABELS[row]), static_cast<int>(row));
    }
}

/// The size of the table for a word that is not in it: an index that takes the selection of a combo away.
int get_position(const VALUES& values, const std::string& word)
{
    const auto it =
        std::find(values.begin(), values.end(), VEK_FILE_ASSISTANT::convert_string_to_xml_enum(word));
    return static_cast<int>(it - values.begin());
}

std::string get_selected_operation(const QComboBox& combo)
{
    const int operation_index = combo.currentIndex();
    VEK_ASSERT(operation_index != -1);
    const QVariant operation_data = combo.itemData(operation_index);
    VEK_ASSERT(operation_data.isValid());
    VEK_ASSERT(operation_data.canConvert<int>());
    return VEK_FILE_ASSISTANT::convert_xml_enum_to_string(
        static_cast<PGM_COMMON_XML_ENUM>(operation_data.toInt()));
}

std::string get_selected_voltage(const QComboBox& combo)
{
    const int voltage_index = combo.currentIndex();
    VEK_ASSERT(voltage_index != -1);
    const QVariant voltage_data = combo.itemData(voltage_index);
    VEK_ASSERT(voltage_data.isValid());
    VEK_ASSERT(voltage_data.canConvert<int>());
    return VEK_FILE_ASSISTANT::convert_xml_enum_to_string(
        static_cast<PGM_COMMON_XML_ENUM>(voltage_data.toInt()));
}

std::string get_selected_direction(const QComboBox& combo)
{
    const int direction_index = combo.currentIndex();
    VEK_ASSERT(direction_index != -1);
    const QVariant direction_data = combo.itemData(direction_index);
    VEK_ASSERT(direction_data.isValid());
    VEK_ASSERT(direction_data.canConvert<int>());
    return VEK_FILE_ASSISTANT::convert_xml_enum_to_string(
        static_cast<PGM_COMMON_XML_ENUM>(direction_data.toInt()));
}

std::string get_selected_bitswap(const QComboBox& combo)
{
    const int bitswap_index = combo.currentIndex();
    VEK_ASSERT(bitswap_index != -1);
    const QVariant bitswap_data = combo.itemData(bitswap_index);
    VEK_ASSERT(bitswap_data.isValid());
    VEK_ASSERT(bitswap_data.canConvert<bool>());
    return VEK_FILE_ASSISTANT::convert_bool_to_string(bitswap_data.toBool());
}

std::string get_type_string(VEK_FILE_TYPE type)
{
    return VEK_FILE_ASSISTANT::convert_xml_enum_to_string(VEK_DB::get_xml_enum(type));
}

} // namespace

void VEK_DLG_OUTPUT_FILE_PROPERTIES::populate_operation_combo()
{
    VEK_ASSERT(OPERATIONS.size() == OPERATION_LABELS.size());
    populate_combo(get_editor<QComboBox>(*m_properties, OPERATION), OPERATIONS, OPERATION_LABELS);
}

void VEK_DLG_OUTPUT_FILE_PROPERTIES::populate_voltage_combo()
{
    VEK_ASSERT(VOLTAGES.size() == VOLTAGE_LABELS.size());
    populate_combo(get_editor<QComboBox>(*m_properties, VOLTAGE), VOLTAGES, VOLTAGE_LABELS);
}

void VEK_DLG_OUTPUT_FILE_PROPERTIES::populate_direction_combo()
{
    VEK_ASSERT(DIRECTIONS.size() == DIRECTION_LABELS.size());
    populate_combo(get_editor<QComboBox>(*m_properties, DIRECTION), DIRECTIONS, DIRECTION_LABELS);
}

void VEK_DLG_OUTPUT_FILE_PROPERTIES::populate_bitswap_combo()
{
    populate_off_on_combo(get_editor<QComboBox>(*m_properties, BITSWAP));
}

void VEK_DLG_OUTPUT_FILE_PROPERTIES::populate_sec_bitswap_combo()
{
    populate_off_on_combo(get_editor<QComboBox>(*m_properties, SEC_BITSWAP));
}

void VEK_DLG_OUTPUT_FILE_PROPERTIES::set_svf_initial_values()
{
    const auto* const file_options = get_file_options_element();
    VEK_ASSERT(file_options != nullptr);
    get_editor<QComboBox>(*m_properties, OPERATION)
        .setCurrentIndex(get_position(OPERATIONS, file_options->operation));
    get_editor<QLineEdit>(*m_properties, FREQUENCY)
        .setText(VEK_GUI_UTIL::from_local(file_options->frequency));
    get_editor<QComboBox>(*m_properties, VOLTAGE)
        .setCurrentIndex(get_position(VOLTAGES, file_options->voltage));
}

void VEK_DLG_OUTPUT_FILE_PROPERTIES::set_hex_initial_values()
{
    const auto* const file_options = get_file_options_element();
    VEK_ASSERT(file_options != nullptr);
    get_editor<NIVO_HEX_EDIT>(*m_properties, START_ADDRESS)
        .setText(VEK_GUI_UTIL::from_local(file_options->s_addr));
    const auto direction_it =
        std::find(DIRECTIONS.begin(), DIRECTIONS.end(),
                  VEK_FILE_ASSISTANT::convert_string_to_xml_enum(file_options->direction));
    VEK_ASSERT(direction_it != DIRECTIONS.end());
    get_editor<QComboBox>(*m_properties, DIRECTION)
        .setCurrentIndex(static_cast<int>(direction_it - DIRECTIONS.begin()));
}

void VEK_DLG_OUTPUT_FILE_PROPERTIES::set_rpd_initial_values()
{
    const auto* const file_options = get_file_options_element();
    VEK_ASSERT(file_options != nullptr);
    auto& start_edit = get_editor<NIVO_HEX_EDIT>(*m_properties, START_ADDRESS);
    const bool use_relative = VEK_FILE_ASSISTANT::convert_string_to_bool(file_options->use_relative);
    get_editor<QCheckBox>(*m_properties, USE_RELATIVE).setChecked(use_relative);
    start_edit.setEnabled(!use_relative);
    if (use_relative) {
        start_edit.set_value(0);
    } else {
        start_edit.setText(VEK_GUI_UTIL::from_local(file_options->s_addr));
    }
    get_editor<QComboBox>(*m_properties, BITSWAP)
        .setCurrentIndex(VEK_FILE_ASSISTANT::convert_string_to_bool(file_options->bitswap) ? 1 : 0);
}

void VEK_DLG_OUTPUT_FILE_PROPERTIES::set_sec_rpd_initial_values()
{
    const auto* const file_options = get_file_options_element();
    VEK_ASSERT(file_options != nullptr);
    get_editor<QComboBox>(*m_properties, SEC_BITSWAP)
        .setCurrentIndex(VEK_FILE_ASSISTANT::convert_string_to_bool(file_options->bitswap) ? 1 : 0);
}

void VEK_DLG_OUTPUT_FILE_PROPERTIES::update_svf_ok_button()
{
    enable_ok_button(!get_editor<QLineEdit>(*m_properties, FREQUENCY).text().isEmpty());
}

void VEK_DLG_OUTPUT_FILE_PROPERTIES::update_hex_ok_button()
{
    enable_ok_button(!get_editor<NIVO_HEX_EDIT>(*m_properties, START_ADDRESS).text().isEmpty());
}

void VEK_DLG_OUTPUT_FILE_PROPERTIES::update_start_address_edit(int state)
{
    auto& start_edit = get_editor<NIVO_HEX_EDIT>(*m_properties, START_ADDRESS);
    start_edit.setEnabled(state != Qt::Checked);
    if (state == Qt::Checked) {
        start_edit.set_value(0);
    }
}

PARAMS VEK_DLG_OUTPUT_FILE_PROPERTIES::make_svf_params() const
{
    return {
        {VEK_CMD_PARAM_OUTPUT_FILE_TYPE,
         VEK_FILE_ASSISTANT::convert_xml_enum_to_string(PGM_COMMON_XML_ENUM_SVF)},
        {VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_OPERATION,
         get_selected_operation(get_editor<QComboBox>(*m_properties, OPERATION))},
        {VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_FREQUENCY,
         VEK_GUI_UTIL::to_local(get_editor<QLineEdit>(*m_properties, FREQUENCY).text())},
        {VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_VOLTAGE,
         get_selected_voltage(get_editor<QComboBox>(*m_properties, VOLTAGE))},
    };
}

PARAMS VEK_DLG_OUTPUT_FILE_PROPERTIES::make_hex_params() const
{
    return {
        {VEK_CMD_PARAM_OUTPUT_FILE_TYPE,
         VEK_FILE_ASSISTANT::convert_xml_enum_to_string(PGM_COMMON_XML_ENUM_HEX)},
        {VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_S_ADDR,
         VEK_GUI_UTIL::to_local(get_editor<NIVO_HEX_EDIT>(*m_properties, START_ADDRESS).text())},
        {VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_DIRECTION,
         get_selected_direction(get_editor<QComboBox>(*m_properties, DIRECTION))},
    };
}

PARAMS VEK_DLG_OUTPUT_FILE_PROPERTIES::make_rpd_params() const
{
    return {
        {VEK_CMD_PARAM_OUTPUT_FILE_TYPE, get_type_string(m_file_type)},
        {VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_USE_RELATIVE,
         VEK_FILE_ASSISTANT::convert_bool_to_string(
             get_editor<QCheckBox>(*m_properties, USE_RELATIVE).isChecked())},
        {VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_S_ADDR,
         VEK_GUI_UTIL::to_local(get_editor<NIVO_HEX_EDIT>(*m_properties, START_ADDRESS).text())},
        {VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_BITSWAP,
         get_selected_bitswap(get_editor<QComboBox>(*m_properties, BITSWAP))},
    };
}

PARAMS VEK_DLG_OUTPUT_FILE_PROPERTIES::make_sec_rpd_params() const
{
    return {
        {VEK_CMD_PARAM_OUTPUT_FILE_TYPE, get_type_string(m_parent)},
        {VEK_CMD_PARAM_OUTPUT_FILE_SECONDARY_FILE_TYPE,
         VEK_FILE_ASSISTANT::convert_xml_enum_to_string(PGM_COMMON_XML_ENUM_SEC_RPD)},
        {VEK_CMD_PARAM_OUTPUT_FILE_SECONDARY_FILE_FILE_OPTIONS_BITSWAP,
         get_selected_bitswap(get_editor<QComboBox>(*m_properties, SEC_BITSWAP))},
    };
}
