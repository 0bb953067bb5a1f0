// How input files leave the document.

#include "msg_internal_error.h"
#include "vek_frame_wnd_cache.h"
#include "vek_model_input_files.h"

#include <algorithm>

namespace
{

/// The partitions stay, empty.
void remove_assignments(PGM_COMMON_XML_VEK_VEK* document, const std::string& bitstream_id,
                        const std::string& raw_file_id)
{
    for (const std::string& partition :
         VEK_FILE_ASSISTANT::get_partition_ids(document, bitstream_id, raw_file_id)) {
        VEK_FILE_ASSISTANT::remove(document, VEK_CMD_OPT_ASSIGNMENT,
                                   {{VEK_CMD_PARAM_ASSIGNMENT_PARTITION_ID, partition}});
    }
}

} // namespace

void VEK_MODEL_INPUT_FILES::put_persistent_indexes_right(const PGM_COMMON_XML_ELEMENT* gone,
                                                         const std::string& bitstream_id)
{
    const auto path_elements = VEK_FILE_ASSISTANT::get_path_elements(document(), bitstream_id);
    for (const QModelIndex& index : persistentIndexList()) {
        if (get_element(index) == gone) {
            changePersistentIndex(index, QModelIndex());
            continue;
        }
        const auto it = std::find(path_elements.begin(), path_elements.end(), get_element(index));
        if (it != path_elements.end()) {
            changePersistentIndex(
                index, createIndex(static_cast<int>(it - path_elements.begin()), index.column(), *it));
        }
    }
}

void VEK_MODEL_INPUT_FILES::remove_sof_file(const std::string& path, const std::string& bitstream_id)
{
    VEK_ASSERT(m_vek != nullptr);
    const auto path_elements = VEK_FILE_ASSISTANT::get_path_elements(document(), bitstream_id);
    const PGM_COMMON_XML_VEK_PATH* const element =
        VEK_FILE_ASSISTANT::get_path_element(document(), bitstream_id, path);
    const auto it = std::find(path_elements.begin(), path_elements.end(), element);
    VEK_ASSERT(it != path_elements.end());
    const auto bitstream_elements = VEK_FILE_ASSISTANT::get_bitstream_elements(document());
    const auto parent_it = std::find(bitstream_elements.begin(), bitstream_elements.end(),
                                     VEK_FILE_ASSISTANT::get_bitstream_element(document(), bitstream_id));
    VEK_ASSERT(parent_it != bitstream_elements.end());
    const int row = static_cast<int>(it - path_elements.begin());
    const int parent_row = static_cast<int>(parent_it - bitstream_elements.begin());

    beginRemoveRows(createIndex(parent_row, 0, *parent_it), row, row);
    bool success = VEK_FILE_ASSISTANT::remove(
        document(), VEK_CMD_OPT_BITSTREAM,
        {{VEK_CMD_PARAM_BITSTREAM_ID, bitstream_id}, {VEK_CMD_PARAM_BITSTREAM_PATH, path}});
    VEK_ASSERT(success);
    // The end of this removal is never announced: the refresh that follows puts the views right. Until then
    // no index that they keep may lead to the element that is gone, or to the row of another.
    put_persistent_indexes_right(element, bitstream_id);
    if (path_elements.size() > 1) {
        emit input_files_changed();
        return;
    }

    beginRemoveRows(QModelIndex(), parent_row, parent_row);
    success = VEK_FILE_ASSISTANT::remove(document(), VEK_CMD_OPT_BITSTREAM,
                                         {{VEK_CMD_PARAM_BITSTREAM_ID, bitstream_id}});
    VEK_ASSERT(success);
    success = VEK_FILE_ASSISTANT::remove(document(), VEK_CMD_OPT_OUTPUT_FILE,
                                         {{VEK_CMD_PARAM_OUTPUT_FILE_BITSTREAM_ID, bitstream_id}});
    VEK_ASSERT(success);
    remove_assignments(document(), bitstream_id, std::string());
    endRemoveRows();
    if (VEK_FILE_ASSISTANT::get_bitstream_elements(document()).empty()) {
        // The limits and what is known of the files stay.
        m_cache->family = DEV_FAMILY_NONE;
        m_cache->device = DEV_DEVICE_NONE;
        m_cache->device_name.clear();
        m_cache->config_mode = PGMIO_CONFIG_SCHEME_ILLEGAL;
        emit device_changed(QString());
    }
    emit input_files_changed();
}

void VEK_MODEL_INPUT_FILES::remove_bitstream(const std::string& id)
{
    VEK_ASSERT(m_vek != nullptr);
    std::vector<std::string> paths;
    for (const auto* const element : VEK_FILE_ASSISTANT::get_path_elements(document(), id)) {
        paths.push_back(element->text);
    }
    for (const std::string& path : paths) {
        remove_sof_file(path, id);
    }
    const auto* const bitstream = VEK_FILE_ASSISTANT::get_bitstream_element(document(), id);
    if (bitstream == nullptr) {
        return;
    }
    // What had no file has not gone with its last one.
    const auto bitstream_elements = VEK_FILE_ASSISTANT::get_bitstream_elements(document());
    const auto it = std::find(bitstream_elements.begin(), bitstream_elements.end(), bitstream);
    VEK_ASSERT(it != bitstream_elements.end());
    const int row = static_cast<int>(it - bitstream_elements.begin());
    beginRemoveRows(QModelIndex(), row, row);
    const bool success =
        VEK_FILE_ASSISTANT::remove(document(), VEK_CMD_OPT_BITSTREAM, {{VEK_CMD_PARAM_BITSTREAM_ID, id}});
    VEK_ASSERT(success);
    VEK_FILE_ASSISTANT::remove(document(), VEK_CMD_OPT_OUTPUT_FILE,
                               {{VEK_CMD_PARAM_OUTPUT_FILE_BITSTREAM_ID, id}});
    endRemoveRows();
}

void VEK_MODEL_INPUT_FILES::remove_raw_data(const std::string& id)
{
    const auto items = get_top_level_items();
    const auto it =
        std::find(items.begin(), items.end(), VEK_FILE_ASSISTANT::get_raw_file_element(document(), id));
    if (it == items.end()) {
        return;
    }
    const int row = static_cast<int>(it - items.begin());
    beginRemoveRows(QModelIndex(), row, row);
    const bool success =
        VEK_FILE_ASSISTANT::remove(document(), VEK_CMD_OPT_RAW_FILE, {{VEK_CMD_PARAM_RAW_FILE_ID, id}});
    VEK_ASSERT(success);
    remove_assignments(document(), std::string(), id);
    endRemoveRows();
    emit input_files_changed();
}
