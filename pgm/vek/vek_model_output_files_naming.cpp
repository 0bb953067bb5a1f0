#include "msg_internal_error.h"
#include "vek_db.h"
#include "vek_file_assistant.h"
#include "vek_file_type_tree_node.h"
#include "vek_frame_wnd_cache.h"
#include "vek_gui_util.h"
#include "vek_model_output_files.h"

namespace
{

std::string get_extension(VEK_FILE_TYPE type)
{
    return fio_get_extension_string(VEK_DB::get_fio_ext_enum(type));
}

} // namespace

std::string VEK_MODEL_OUTPUT_FILES::get_full_file_name(VEK_FILE_TYPE /*file_type*/,
                                                       VEK_FILE_TYPE parent) const
{
    if (parent == VEK_INVALID_FILE_TYPE) {
        return m_cache->output_name;
    }
    std::string extension = get_extension(parent);
    if (!extension.empty()) {
        extension.erase(0, 1);
    }
    return m_cache->output_name + "_" + extension;
}

std::string VEK_MODEL_OUTPUT_FILES::get_full_file_name(const NODE* node) const
{
    VEK_ASSERT(node != nullptr);
    const VEK_FILE_TYPE file_type = node->get_file_type();
    VEK_ASSERT(file_type != VEK_INVALID_FILE_TYPE);
    if (!VEK_DB::get_secondary(file_type)) {
        return get_full_file_name(file_type, VEK_INVALID_FILE_TYPE);
    }
    const NODE* const parent_node = node->get_parent();
    VEK_ASSERT(parent_node != nullptr);
    const VEK_FILE_TYPE parent = parent_node->get_file_type();
    VEK_ASSERT(parent != VEK_INVALID_FILE_TYPE);
    return get_full_file_name(file_type, parent);
}

QVariant VEK_MODEL_OUTPUT_FILES::get_file_name_column_data(const QModelIndex& index, int role) const
{
    VEK_ASSERT(index.isValid());
    VEK_ASSERT(index.column() == COLUMN_FILE_NAME);
    const NODE* const node = get_node(index);
    VEK_ASSERT(node != nullptr);
    if (role != Qt::DisplayRole) {
        return {};
    }
    const VEK_FILE_TYPE file_type = node->get_file_type();
    const NODE* const parent_node = node->get_parent();
    std::string name = get_full_file_name(node);
    if (VEK_DB::get_secondary(file_type)) {
        VEK_ASSERT(parent_node != nullptr);
        const VEK_FILE_TYPE parent = parent_node->get_file_type();
        VEK_ASSERT(parent != VEK_INVALID_FILE_TYPE);
        name += VEK_DB::get_file_name_suffix(parent);
    } else {
        name += VEK_DB::get_file_name_suffix(file_type);
    }
    if (parent_node != nullptr && parent_node->get_file_type() != VEK_INVALID_FILE_TYPE) {
        name += VEK_DB::get_child_file_name_suffix(parent_node->get_file_type());
    }
    return VEK_GUI_UTIL::from_local(name + get_extension(file_type));
}

void VEK_MODEL_OUTPUT_FILES::update_file_name(const QString& name)
{
    m_cache->output_name = VEK_GUI_UTIL::to_local(name);
    for (const auto* const output_file : VEK_FILE_ASSISTANT::get_output_file_elements(m_vek.get())) {
        bool success = VEK_FILE_ASSISTANT::set(m_vek.get(), VEK_CMD_OPT_OUTPUT_FILE,
                                               {{VEK_CMD_PARAM_OUTPUT_FILE_TYPE, output_file->type},
                                                {VEK_CMD_PARAM_OUTPUT_FILE_NAME, m_cache->output_name}});
        VEK_ASSERT(success);
        for (const auto* const secondary : VEK_FILE_ASSISTANT::get_secondary_file_elements(output_file)) {
            success =
                VEK_FILE_ASSISTANT::set(m_vek.get(), VEK_CMD_OPT_OUTPUT_FILE,
                                        {{VEK_CMD_PARAM_OUTPUT_FILE_TYPE, output_file->type},
                                         {VEK_CMD_PARAM_OUTPUT_FILE_SECONDARY_FILE_TYPE, secondary->type},
                                         {VEK_CMD_PARAM_OUTPUT_FILE_SECONDARY_FILE_NAME,
                                          get_full_file_name(get_vek_file_type(secondary->type),
                                                             get_vek_file_type(output_file->type))}});
            VEK_ASSERT(success);
        }
    }
    // All names have changed, wherever they are shown.
    emit dataChanged(QModelIndex(), QModelIndex());
}
