// What of the properties a file has, and what of them the user may touch. No rule stands here: all are rows
// of VEK_DB, and this only asks for them.

#include "msg_internal_error.h"
#include "nivo_safe_connect.h"
#include "pgm_common_ini.h"
#include "pgm_device.h"
#include "vek_db.h"
#include "vek_dlg_sof_properties.h"
#include "vek_file_assistant.h"
#include "vek_gui_util.h"
#include "vek_key_entry_edit.h"

#include <algorithm>

namespace
{

using PARAM = PGM_COMMON_XML_VEK_CMD_PARAM_ENUM;

PARAM to_param(unsigned int id)
{
    return static_cast<PARAM>(id);
}

PGM_COMMON_XML_ENUM to_word(const QString& value)
{
    return VEK_FILE_ASSISTANT::convert_string_to_xml_enum(VEK_GUI_UTIL::to_local(value));
}

bool is_in_parent_values(PARAM param, PGM_COMMON_XML_ENUM value)
{
    const std::vector<PGM_COMMON_XML_ENUM> values = VEK_DB::get_dependent_param_enum_value(param);
    return std::ranges::find(values, value) != values.end();
}

} // namespace

void VEK_DLG_SOF_PROPERTIES::filter_property()
{
    for (const std::uint32_t id : m_properties->get_ids(true)) {
        if (!is_offered(to_param(id))) {
            m_properties->hide_property(id);
        }
    }
}

void VEK_DLG_SOF_PROPERTIES::filter_property_group()
{
    m_properties->hide_property_group();
}

bool VEK_DLG_SOF_PROPERTIES::is_offered(PARAM param) const
{
    if (!VEK_DB::get_enabled(param) || !VEK_DB_UTIL::param_enabled_by_ini(param)) {
        return false;
    }
    if (m_device != nullptr && !is_offered_in_family(param)) {
        return false;
    }
    if (!VEK_DB::get_supported_input_file_type(param).empty() &&
        !VEK_DB::supports_supported_input_file_type(param, m_file_type)) {
        return false;
    }
    return std::ranges::all_of(m_output_file_types, [param](VEK_FILE_TYPE type) {
        return VEK_DB::get_supported_output_file_type(param).empty() ||
               VEK_DB::supports_supported_output_file_type(param, type);
    });
}

bool VEK_DLG_SOF_PROPERTIES::is_offered_in_family(PARAM param) const
{
    const DEV_FAMILY_ENUM family = m_device->family;
    if (!VEK_DB::get_supported_family(param).empty()) {
        if (VEK_DB::supports_supported_family(param, family)) {
            return true;
        }
    } else if (VEK_DB::get_excluded_family(param).empty() ||
               !VEK_DB::supports_excluded_family(param, family)) {
        return true;
    }
    const bool is_hidden_shown =
        PGM_COMMON_INI::get_encrypted_boolean(PGM_COMMON_INI::HIDDEN_PARAMETERS, false, false) ||
        (family == DEV_FAMILY_HEMATITE &&
         PGM_COMMON_INI::get_encrypted_boolean(PGM_COMMON_INI::HIDDEN_HEMATITE_PARAMETERS, false, false));
    return is_hidden_shown && !VEK_DB::get_hidden_supported_family(param).empty() &&
           VEK_DB::supports_hidden_supported_family(param, family);
}

void VEK_DLG_SOF_PROPERTIES::connect_property_signal()
{
    const auto connect_to = [this](const PROPERTY& property, const char* signal, const char* slot) {
        nivo_safe_connect(property.widget, signal, this, slot, Qt::AutoConnection, __FILE__, __LINE__);
    };
    for (const PROPERTY& property : m_properties->get_properties(false)) {
        switch (property.type) {
        case VEK_PROPERTY_BROWSER::TYPE_BOOL_COMBO:
            connect_to(property, SIGNAL(currentIndexChanged(int)), SLOT(on_change_bool_property(int)));
            continue;
        case VEK_PROPERTY_BROWSER::TYPE_COMBO:
            connect_to(property, SIGNAL(currentIndexChanged(int)), SLOT(on_change_combo_property(int)));
            continue;
        case VEK_PROPERTY_BROWSER::TYPE_FILE:
            connect_to(property, SIGNAL(fileEditTextChanged(const QString&)),
                       SLOT(on_change_file_edit_property(const QString&)));
            continue;
        case VEK_PROPERTY_BROWSER::TYPE_LINE:
            connect_to(property, SIGNAL(textChanged(const QString&)),
                       SLOT(on_change_line_edit_property(const QString&)));
            continue;
        case VEK_PROPERTY_BROWSER::TYPE_KEY:
            connect_to(property, SIGNAL(keyEntryEditChanged(const QString&)),
                       SLOT(on_change_key_edit_property(const QString&)));
            continue;
        case VEK_PROPERTY_BROWSER::TYPE_CHECK:
        case VEK_PROPERTY_BROWSER::TYPE_INVALID:
            break;
        }
        MSG_INTERNAL_ERROR::report("Unrecogized property type in connect signal function", "VEK", __FILE__,
                                   __LINE__);
    }
}

void VEK_DLG_SOF_PROPERTIES::check_dependent_property(unsigned int id, bool enabled)
{
    for (const PROPERTY& property : m_properties->get_properties(false)) {
        if (property.id == id || !VEK_DB::supports_dependent_param(to_param(property.id), to_param(id))) {
            continue;
        }
        property.widget->setEnabled(enabled);
        if (!enabled) {
            check_dependent_property(property.id, false);
        }
    }
}

void VEK_DLG_SOF_PROPERTIES::check_combo_dependent_property(unsigned int id, PGM_COMMON_XML_ENUM value)
{
    for (const PROPERTY& property : m_properties->get_properties(false)) {
        if (property.id == id || !VEK_DB::supports_dependent_param(to_param(property.id), to_param(id))) {
            continue;
        }
        const bool enabled = is_in_parent_values(to_param(property.id), value);
        property.widget->setEnabled(enabled);
        if (!enabled) {
            check_dependent_property(property.id, false);
        }
    }
}

void VEK_DLG_SOF_PROPERTIES::check_exclusive_property(unsigned int id, bool enabled)
{
    const std::vector<PROPERTY> visible = m_properties->get_properties(false);
    for (const PROPERTY& property : visible) {
        const PARAM param = to_param(property.id);
        if (property.id == id || !VEK_DB::supports_exclusive_param(param, to_param(id))) {
            continue;
        }
        // It comes back only when all that excludes it is off.
        const bool is_excluded =
            enabled || std::ranges::any_of(visible, [this, id, param](const PROPERTY& other) {
                return other.id != id && other.id != param &&
                       other.type == VEK_PROPERTY_BROWSER::TYPE_BOOL_COMBO &&
                       VEK_DB::supports_exclusive_param(param, to_param(other.id)) &&
                       m_properties->get_widget_value(other.id) == QLatin1String("1");
            });
        property.widget->setEnabled(!is_excluded);
    }
}

bool VEK_DLG_SOF_PROPERTIES::is_parent_set(const PROPERTY& parent, PARAM child)
{
    switch (parent.type) {
    case VEK_PROPERTY_BROWSER::TYPE_BOOL_COMBO:
        return VEK_FILE_ASSISTANT::convert_string_to_bool(
            VEK_GUI_UTIL::to_local(m_properties->get_widget_value(parent.id)));
    case VEK_PROPERTY_BROWSER::TYPE_COMBO:
        if (VEK_DB::get_dependent_param_enum_value(child).empty()) {
            MSG_INTERNAL_ERROR::report_varg(
                "VEK", __FILE__, __LINE__,
                "Missing dependent_param_enum_value of parent_param=%s in cmd param db",
                PGM_COMMON_XML_VEK_CMD_PARAM.at(child));
        }
        return is_in_parent_values(child, to_word(m_properties->get_widget_value(parent.id)));
    case VEK_PROPERTY_BROWSER::TYPE_FILE:
    case VEK_PROPERTY_BROWSER::TYPE_LINE:
    case VEK_PROPERTY_BROWSER::TYPE_KEY:
        return !m_properties->get_widget_value(parent.id).isEmpty();
    case VEK_PROPERTY_BROWSER::TYPE_CHECK:
    case VEK_PROPERTY_BROWSER::TYPE_INVALID:
        break;
    }
    MSG_INTERNAL_ERROR::report_varg("VEK", __FILE__, __LINE__,
                                    "Unsupported property type (%d) in check_dependent_properties",
                                    static_cast<int>(parent.type));
}

void VEK_DLG_SOF_PROPERTIES::check_dependent_properties()
{
    for (const PROPERTY& property : m_properties->get_properties(false)) {
        const PARAM param = to_param(property.id);
        PROPERTY parent;
        bool is_set = false;
        // Any parent that is set will do; of several that are not, the last one speaks.
        for (const PARAM candidate : VEK_DB::get_dependent_param(param)) {
            parent = m_properties->get_property(candidate);
            is_set = is_parent_set(parent, param);
            if (is_set) {
                break;
            }
        }
        if (parent.type == VEK_PROPERTY_BROWSER::TYPE_COMBO) {
            check_combo_dependent_property(parent.id, to_word(m_properties->get_widget_value(parent.id)));
        } else if (parent.type != VEK_PROPERTY_BROWSER::TYPE_INVALID) {
            check_dependent_property(parent.id, is_set);
        }
    }
}

unsigned int VEK_DLG_SOF_PROPERTIES::get_sender_id() const
{
    const unsigned int id = m_properties->get_id_by_widget(qobject_cast<QWidget*>(sender()));
    VEK_ASSERT(id < VEK_CMD_PARAM_MAX);
    return id;
}

void VEK_DLG_SOF_PROPERTIES::on_change_bool_property(int index)
{
    const unsigned int id = get_sender_id();
    const bool on = index == 1;
    check_dependent_property(id, on);
    check_exclusive_property(id, on);
}

void VEK_DLG_SOF_PROPERTIES::on_change_combo_property(int)
{
    const unsigned int id = get_sender_id();
    check_combo_dependent_property(id, to_word(m_properties->get_widget_value(id)));
}

void VEK_DLG_SOF_PROPERTIES::on_change_file_edit_property(const QString& value)
{
    const unsigned int id = get_sender_id();
    check_dependent_property(id, !value.isEmpty());
    const auto populate = [this, &value](PARAM key_param) {
        auto* const key_edit = qobject_cast<VEK_KEY_ENTRY_EDIT*>(m_properties->get_widget(key_param));
        VEK_ASSERT(key_edit != nullptr);
        // The field shows the path relative to the host's working directory, which need not be the process's.
        key_edit->populate_key_combo(VEK_GUI_UTIL::from_local(
            VEK_GUI_UTIL::make_path_absolute(VEK_GUI_UTIL::to_local(value)).fullpath()));
    };
    if (id == VEK_CMD_PARAM_BITSTREAM_PATH_KEY_FILE1) {
        populate(VEK_CMD_PARAM_BITSTREAM_PATH_KEY1);
    }
    if (id == VEK_CMD_PARAM_BITSTREAM_PATH_KEY_FILE2) {
        populate(VEK_CMD_PARAM_BITSTREAM_PATH_KEY2);
    }
}

void VEK_DLG_SOF_PROPERTIES::on_change_line_edit_property(const QString& value)
{
    check_dependent_property(get_sender_id(), !value.isEmpty());
}

void VEK_DLG_SOF_PROPERTIES::on_change_key_edit_property(const QString& value)
{
    check_dependent_property(get_sender_id(), !value.isEmpty());
}
