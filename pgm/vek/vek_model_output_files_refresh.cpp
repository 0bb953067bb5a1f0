#include "msg_internal_error.h"
#include "vek_db.h"
#include "vek_file_assistant.h"
#include "vek_file_type_tree_node.h"
#include "vek_frame_wnd_cache.h"
#include "vek_model_output_files.h"

#include <algorithm>

namespace
{

std::vector<VEK_FILE_TYPE> sort_by_description(std::vector<VEK_FILE_TYPE> types)
{
    std::sort(types.begin(), types.end(), [](VEK_FILE_TYPE left, VEK_FILE_TYPE right) {
        return VEK_DB::get_description(left) < VEK_DB::get_description(right);
    });
    return types;
}

} // namespace

VEK_FILE_TYPE VEK_MODEL_OUTPUT_FILES::get_vek_file_type(const std::string& word)
{
    return VEK_DB_UTIL::get_vek_file_type_enum(VEK_FILE_ASSISTANT::convert_string_to_xml_enum(word));
}

void VEK_MODEL_OUTPUT_FILES::replace_tree()
{
    m_root_owner = std::make_shared<NODE>(VEK_INVALID_FILE_TYPE);
    m_root_node = m_root_owner.get();
}

void VEK_MODEL_OUTPUT_FILES::clear()
{
    // Views and selections hold indexes into the old tree until the reset is over.
    const std::shared_ptr<NODE> old_tree = m_root_owner;
    beginResetModel();
    replace_tree();
    endResetModel();
}

void VEK_MODEL_OUTPUT_FILES::refresh()
{
    // As in clear, and here the ticks that are announced during the reset make listeners ask.
    const std::shared_ptr<NODE> old_tree = m_root_owner;
    beginResetModel();
    replace_tree();
    for (const VEK_FILE_TYPE type : sort_by_description(VEK_DB::get_all_output_file_type_keys())) {
        if (!VEK_DB_UTIL::has_parent(type) && !VEK_DB::get_cmd_only(type)) {
            recursive_add_file_type(type, VEK_INVALID_FILE_TYPE, VEK_INVALID_FILE_TYPE);
        }
    }
    refresh_tree_nodes();
    update_tree_enabled_state();
    endResetModel();
}

void VEK_MODEL_OUTPUT_FILES::recursive_add_file_type(VEK_FILE_TYPE file_type, VEK_FILE_TYPE parent,
                                                     VEK_FILE_TYPE grandparent)
{
    VEK_ASSERT(m_cache != nullptr);
    bool offered =
        VEK_DB::supports_output_file_type(m_cache->current_mode, file_type) && VEK_DB::get_enabled(file_type);
    if (m_cache->output_file_mask != 0) {
        offered = offered && ((m_cache->output_file_mask >> file_type) & 1u) != 0;
    }
    if (m_cache->family != DEV_FAMILY_NONE) {
        offered = offered && !VEK_DB::supports_excluded_family(file_type, m_cache->family);
    }
    if (!offered) {
        return;
    }
    add_file_type(file_type, parent, grandparent);
    for (const VEK_FILE_TYPE secondary : sort_by_description(VEK_DB::get_secondary_file_type(file_type))) {
        recursive_add_file_type(secondary, file_type, parent);
    }
}

void VEK_MODEL_OUTPUT_FILES::add_file_type(VEK_FILE_TYPE file_type, VEK_FILE_TYPE parent,
                                           VEK_FILE_TYPE grandparent)
{
    if (parent == VEK_INVALID_FILE_TYPE) {
        m_root_node->add_child(new NODE(file_type));
        return;
    }
    // The root has the invalid type, by which the children of top-level rows find their grandparent.
    for (const NODE* const node : m_root_node->search(grandparent)) {
        for (NODE* const child : node->get_children()) {
            if (child->get_file_type() == parent) {
                child->add_child(new NODE(file_type));
            }
        }
    }
}

VEK_FILE_TYPE_TREE_NODE*
VEK_MODEL_OUTPUT_FILES::find_node(const PGM_COMMON_XML_VEK_OUTPUT_FILE& output_file) const
{
    const NODE* group = m_root_node;
    if (VEK_FILE_ASSISTANT::convert_string_to_bool(output_file.cvp)) {
        group = m_root_node->get_child(VEK_CVP_GROUP_FILE_TYPE);
    } else if (VEK_FILE_ASSISTANT::convert_string_to_bool(output_file.hps)) {
        group = m_root_node->get_child(VEK_HPS_GROUP_FILE_TYPE);
    }
    return group == nullptr ? nullptr : group->get_child(get_vek_file_type(output_file.type));
}

void VEK_MODEL_OUTPUT_FILES::refresh_tree_nodes()
{
    for (const auto* const output_file : VEK_FILE_ASSISTANT::get_output_file_elements(m_vek.get())) {
        NODE* const node = find_node(*output_file);
        if (node == nullptr) {
            const bool status = VEK_FILE_ASSISTANT::remove(
                m_vek.get(), VEK_CMD_OPT_OUTPUT_FILE, {{VEK_CMD_PARAM_OUTPUT_FILE_TYPE, output_file->type}});
            VEK_ASSERT(status);
            continue;
        }
        NODE* const parent = node->get_parent();
        if (parent != m_root_node && VEK_DB::get_virtual_type(parent->get_file_type())) {
            const bool status =
                set_file_description_column_data(get_index(parent), Qt::Checked, Qt::CheckStateRole);
            VEK_ASSERT(status);
        }
        const bool status =
            set_file_description_column_data(get_index(node), Qt::Checked, Qt::CheckStateRole);
        VEK_ASSERT(status);
        refresh_secondary_nodes(*output_file, *node);
    }
}

void VEK_MODEL_OUTPUT_FILES::refresh_secondary_nodes(const PGM_COMMON_XML_VEK_OUTPUT_FILE& output_file,
                                                     const NODE& node)
{
    for (const auto* const secondary_file : VEK_FILE_ASSISTANT::get_secondary_file_elements(&output_file)) {
        NODE* const secondary = node.get_child(get_vek_file_type(secondary_file->type));
        const bool status =
            secondary != nullptr
                ? set_file_description_column_data(get_index(secondary), Qt::Checked, Qt::CheckStateRole)
                : VEK_FILE_ASSISTANT::remove(
                      m_vek.get(), VEK_CMD_OPT_OUTPUT_FILE,
                      {{VEK_CMD_PARAM_OUTPUT_FILE_TYPE, output_file.type},
                       {VEK_CMD_PARAM_OUTPUT_FILE_SECONDARY_FILE_TYPE, secondary_file->type}});
        VEK_ASSERT(status);
    }
}
