#include "msg_internal_error.h"
#include "vek_db.h"
#include "vek_file_assistant.h"
#include "vek_file_type_tree_node.h"
#include "vek_frame_wnd_cache.h"
#include "vek_model_output_files.h"

#include <algorithm>

namespace
{

using PARAMS = VEK_FILE_ASSISTANT::PARAMS;

std::string get_type_string(VEK_FILE_TYPE type)
{
    return VEK_FILE_ASSISTANT::convert_xml_enum_to_string(VEK_DB::get_xml_enum(type));
}

/// The types that stand under a group and are marked in the document with the group they were chosen through.
bool is_group_child(VEK_FILE_TYPE type)
{
    return type == VEK_PERIPH_JIC_FILE_TYPE || type == VEK_PERIPH_POF_FILE_TYPE ||
           type == VEK_PERIPH_RBF_FILE_TYPE || type == VEK_PERIPH_RPD_FILE_TYPE;
}

bool takes_flash_devices(VEK_FILE_TYPE type)
{
    return VEK_DB_UTIL::is_supported_file_category(type, VEK_FILE_CATEGORY_FLASH) ||
           VEK_DB_UTIL::is_supported_file_category(type, VEK_FILE_CATEGORY_RAW_FLASH) ||
           VEK_DB_UTIL::is_supported_file_category(type, VEK_FILE_CATEGORY_PERIPHERY);
}

std::vector<VEK_FILE_TYPE> get_ticked_types(const std::vector<VEK_FILE_TYPE_TREE_NODE*>& nodes)
{
    std::vector<VEK_FILE_TYPE> types;
    for (const VEK_FILE_TYPE_TREE_NODE* const node : nodes) {
        if (node->get_check_state() == Qt::Checked) {
            types.push_back(node->get_file_type());
        }
    }
    return types;
}

bool can_be_combined(std::vector<VEK_FILE_TYPE> types, VEK_FILE_TYPE type)
{
    types.push_back(type);
    return !VEK_DB_UTIL::get_common_file_categories(types).empty();
}

} // namespace

bool VEK_MODEL_OUTPUT_FILES::setData(const QModelIndex& index, const QVariant& value, int role)
{
    if (!index.isValid() || !value.isValid() || index.column() != COLUMN_FILE_DESCRIPTION ||
        !set_file_description_column_data(index, value, role)) {
        return false;
    }
    emit dataChanged(index, index);
    return true;
}

bool VEK_MODEL_OUTPUT_FILES::set_file_description_column_data(const QModelIndex& index, const QVariant& value,
                                                              int role)
{
    VEK_ASSERT(index.isValid());
    VEK_ASSERT(index.column() == COLUMN_FILE_DESCRIPTION);
    VEK_ASSERT(value.isValid());
    bool is_integer = false;
    const int check_state = value.toInt(&is_integer);
    if (role != Qt::CheckStateRole || !is_integer) {
        return false;
    }
    const bool changed =
        recursive_set_check_state(get_node(index), static_cast<Qt::CheckState>(check_state), false);
    update_tree_enabled_state();
    if (changed) {
        emit check_state_changed(index);
    }
    return changed;
}

bool VEK_MODEL_OUTPUT_FILES::recursive_set_check_state(NODE* node, Qt::CheckState check_state,
                                                       bool use_default)
{
    VEK_ASSERT(node != nullptr);
    VEK_ASSERT(check_state == Qt::Checked || check_state == Qt::Unchecked);
    const VEK_FILE_TYPE file_type = node->get_file_type();
    VEK_ASSERT(file_type != VEK_INVALID_FILE_TYPE);
    if (check_state == Qt::Checked && use_default && !VEK_DB::get_default_checked_state(file_type)) {
        return false;
    }
    const bool success = VEK_DB::get_virtual_type(file_type) ||
                         (VEK_DB::get_secondary(file_type) ? write_secondary(*node, check_state)
                                                           : write_primary(*node, check_state));
    if (!success) {
        return false;
    }
    node->set_check_state(check_state);
    const std::vector<NODE*> children = node->get_children();
    for (NODE* const child : children) {
        recursive_set_check_state(child, check_state, true);
    }
    return true;
}

bool VEK_MODEL_OUTPUT_FILES::write_secondary(const NODE& node, Qt::CheckState check_state)
{
    const NODE* const parent = node.get_parent();
    VEK_ASSERT(parent != nullptr);
    PARAMS params = {{VEK_CMD_PARAM_OUTPUT_FILE_TYPE, get_type_string(parent->get_file_type())},
                     {VEK_CMD_PARAM_OUTPUT_FILE_SECONDARY_FILE_TYPE, get_type_string(node.get_file_type())}};
    if (check_state == Qt::Unchecked) {
        return VEK_FILE_ASSISTANT::remove(m_vek.get(), VEK_CMD_OPT_OUTPUT_FILE, params);
    }
    params.emplace_back(VEK_CMD_PARAM_OUTPUT_FILE_SECONDARY_FILE_NAME, get_full_file_name(&node));
    return VEK_FILE_ASSISTANT::set(m_vek.get(), VEK_CMD_OPT_OUTPUT_FILE, params);
}

bool VEK_MODEL_OUTPUT_FILES::write_primary(const NODE& node, Qt::CheckState check_state)
{
    const VEK_FILE_TYPE file_type = node.get_file_type();
    const std::string type_string = get_type_string(file_type);
    if (check_state == Qt::Unchecked) {
        return VEK_FILE_ASSISTANT::remove(m_vek.get(), VEK_CMD_OPT_OUTPUT_FILE,
                                          {{VEK_CMD_PARAM_OUTPUT_FILE_TYPE, type_string}});
    }
    VEK_ASSERT(m_cache != nullptr);
    PARAMS params = {{VEK_CMD_PARAM_OUTPUT_FILE_DIRECTORY, m_cache->output_directory},
                     {VEK_CMD_PARAM_OUTPUT_FILE_NAME, get_full_file_name(&node)},
                     {VEK_CMD_PARAM_OUTPUT_FILE_TYPE, type_string}};
    if (is_group_child(file_type)) {
        const NODE* const parent = node.get_parent();
        VEK_ASSERT(parent != nullptr);
        if (parent->get_file_type() == VEK_CVP_GROUP_FILE_TYPE) {
            params.emplace_back(VEK_CMD_PARAM_OUTPUT_FILE_CVP,
                                VEK_FILE_ASSISTANT::convert_bool_to_string(true));
        } else if (parent->get_file_type() == VEK_HPS_GROUP_FILE_TYPE) {
            params.emplace_back(VEK_CMD_PARAM_OUTPUT_FILE_HPS,
                                VEK_FILE_ASSISTANT::convert_bool_to_string(true));
        }
    }
    VEK_ASSERT(m_vek != nullptr);
    if (!VEK_FILE_ASSISTANT::set(m_vek.get(), VEK_CMD_OPT_OUTPUT_FILE, params)) {
        return false;
    }
    // The links do not decide whether the row is ticked.
    const auto link = [this, &type_string](PGM_COMMON_XML_VEK_CMD_PARAM_ENUM param,
                                           const std::vector<std::string>& ids) {
        for (const std::string& id : ids) {
            VEK_FILE_ASSISTANT::set(m_vek.get(), VEK_CMD_OPT_OUTPUT_FILE,
                                    {{VEK_CMD_PARAM_OUTPUT_FILE_TYPE, type_string}, {param, id}});
        }
    };
    if (VEK_DB_UTIL::is_supported_file_category(file_type, VEK_FILE_CATEGORY_BITSTREAM)) {
        link(VEK_CMD_PARAM_OUTPUT_FILE_BITSTREAM_ID, VEK_FILE_ASSISTANT::get_bitstream_ids(m_vek.get()));
    }
    if (takes_flash_devices(file_type)) {
        link(VEK_CMD_PARAM_OUTPUT_FILE_FLASH_DEVICE_ID,
             VEK_FILE_ASSISTANT::get_flash_device_ids(m_vek.get()));
    }
    return true;
}

void VEK_MODEL_OUTPUT_FILES::update_tree_enabled_state()
{
    const std::vector<VEK_FILE_TYPE> ticked_types = get_ticked_types(m_root_node->get_children());
    for (NODE* const node : m_root_node->get_children()) {
        const VEK_FILE_TYPE file_type = node->get_file_type();
        if (!can_be_combined(ticked_types, file_type)) {
            recursive_set_enabled(node, false);
        } else if (VEK_DB::get_virtual_type(file_type) && node->get_check_state() == Qt::Checked) {
            node->set_enabled(true);
            update_group_enabled_state(*node);
        } else {
            recursive_set_enabled(node, true);
        }
    }
}

void VEK_MODEL_OUTPUT_FILES::update_group_enabled_state(const NODE& group)
{
    const std::vector<VEK_FILE_TYPE> ticked_types = get_ticked_types(group.get_children());
    for (NODE* const child : group.get_children()) {
        recursive_set_enabled(child, can_be_combined(ticked_types, child->get_file_type()));
    }
}

void VEK_MODEL_OUTPUT_FILES::recursive_set_enabled(NODE* node, bool enabled)
{
    node->set_enabled(enabled);
    // Children follow the tick of their parent and not its own flag: those of a ticked row can be changed
    // even where the row itself no longer can.
    const std::vector<NODE*> children = node->get_children();
    for (NODE* const child : children) {
        recursive_set_enabled(child, node->get_check_state() == Qt::Checked);
    }
}
