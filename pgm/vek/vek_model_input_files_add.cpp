// How input files enter the document.

#include "fio_types.h"
#include "msg_internal_error.h"
#include "msgs/vek_msgs.h"
#include "vek_db.h"
#include "vek_frame_wnd_cache.h"
#include "vek_gui_util.h"
#include "vek_model_input_files.h"
#include "vek_util.h"

#include <algorithm>

namespace
{

constexpr char BITSTREAM_ID_PREFIX[] = "Bitstream_";
constexpr char RAW_FILE_ID_PREFIX[] = "Raw_File_";

struct RAW_FILE_TYPE_ROW {
    FIO_EXTENSION_TYPE extension;
    PGM_COMMON_XML_ENUM word;
};
constexpr RAW_FILE_TYPE_ROW RAW_FILE_TYPES[] = {{FIO_EXT_HEX, PGM_COMMON_XML_ENUM_HEX},
                                                {FIO_EXT_RBF, PGM_COMMON_XML_ENUM_RBF},
                                                {FIO_EXT_BIN, PGM_COMMON_XML_ENUM_RBF},
                                                {FIO_EXT_PUF, PGM_COMMON_XML_ENUM_PUF},
                                                {FIO_EXT_WKEY, PGM_COMMON_XML_ENUM_WKEY}};

/// PGM_COMMON_XML_ENUM__INVALID__ for a path that is not one of raw data.
PGM_COMMON_XML_ENUM get_raw_file_type(const FIO_PATH& path)
{
    const FIO_EXTENSION_TYPE extension = fio_get_extension_type(path.extension());
    for (const RAW_FILE_TYPE_ROW& row : RAW_FILE_TYPES) {
        if (row.extension == extension) {
            return row.word;
        }
    }
    return PGM_COMMON_XML_ENUM__INVALID__;
}

/// The prefix with the lowest number that nobody has.
std::string find_free_id(const std::string& prefix, const std::vector<std::string>& ids)
{
    for (unsigned number = 1;; ++number) {
        const std::string id = prefix + std::to_string(number);
        if (std::find(ids.begin(), ids.end(), id) == ids.end()) {
            return id;
        }
    }
}

bool is_compressed_image(PGMIO_CONFIG_SCHEME scheme)
{
    return scheme == PGMIO_CONFIG_SCHEME_SINGLE_COMPRESSED_IMAGE ||
           scheme == PGMIO_CONFIG_SCHEME_SINGLE_COMPRESSED_IMAGE_ERAM ||
           scheme == PGMIO_CONFIG_SCHEME_DUAL_COMPRESSED_IMAGES;
}

} // namespace

int VEK_MODEL_INPUT_FILES::add_bitstream(const FIO_PATH& path)
{
    VEK_ASSERT(m_vek != nullptr);
    const std::string id =
        find_free_id(BITSTREAM_ID_PREFIX, VEK_FILE_ASSISTANT::get_bitstream_ids(document()));
    const int row = static_cast<int>(VEK_FILE_ASSISTANT::get_bitstream_elements(document()).size());
    m_gate.run([&] {
        for (const VEK_FILE_TYPE type : VEK_FILE_ASSISTANT::get_output_file_types(document(), false)) {
            VEK_FILE_ASSISTANT::set(
                document(), VEK_CMD_OPT_OUTPUT_FILE,
                {{VEK_CMD_PARAM_OUTPUT_FILE_TYPE,
                  VEK_FILE_ASSISTANT::convert_xml_enum_to_string(VEK_DB::get_xml_enum(type))},
                 {VEK_CMD_PARAM_OUTPUT_FILE_BITSTREAM_ID, id}});
        }
        beginInsertRows(QModelIndex(), row, row);
        VEK_FILE_ASSISTANT::set(document(), VEK_CMD_OPT_BITSTREAM, {{VEK_CMD_PARAM_BITSTREAM_ID, id}});
        endInsertRows();
    });
    if (!add_sof_file(path, id)) {
        m_gate.run([&] { remove_bitstream(id); });
        return -1;
    }
    return row;
}

bool VEK_MODEL_INPUT_FILES::add_sof_file(const FIO_PATH& path, const std::string& bitstream_id)
{
    VEK_ASSERT(m_cache != nullptr);
    if (VEK_FILE_ASSISTANT::get_bitstream_element(document(), bitstream_id) == nullptr) {
        return false;
    }
    const auto bitstream_elements = VEK_FILE_ASSISTANT::get_bitstream_elements(document());
    const PGM_DEVICE* device = nullptr;
    std::string device_name;
    std::string message;
    if (!precheck_bitstream(path, &device, device_name, message)) {
        vek_report(MSG_VEK::O::FILE_PRECHECK_FAILED(message));
        return false;
    }
    if (bitstream_elements.size() > 1 && !check_support_multiple_images(device)) {
        vek_report(MSG_VEK::O::DEVICE_DOES_NOT_SUPPORT_MULTIPLE_BITSTREAMS(path.fullpath(), device_name));
        return false;
    }
    if (!check_config_mode(path) || !update_cache(path, device)) {
        return false;
    }

    const auto it = std::find_if(bitstream_elements.begin(), bitstream_elements.end(),
                                 [&](const auto* element) { return element->id == bitstream_id; });
    VEK_ASSERT(it != bitstream_elements.end());
    const QModelIndex parent = createIndex(static_cast<int>(it - bitstream_elements.begin()), 0, *it);
    PARAMS params = {{VEK_CMD_PARAM_BITSTREAM_ID, bitstream_id},
                     {VEK_CMD_PARAM_BITSTREAM_PATH, path.fullpath()}};
    if (is_compressed_image(m_cache->config_mode)) {
        params.emplace_back(VEK_CMD_PARAM_BITSTREAM_PATH_COMPRESSION,
                            VEK_FILE_ASSISTANT::convert_bool_to_string(true));
    }
    inherit_bitstream_properties(bitstream_id, path, params);
    m_gate.run([&] {
        // A file that the bitstream has already is written once more and makes no row.
        const bool is_new =
            VEK_FILE_ASSISTANT::get_path_element(document(), bitstream_id, path.fullpath()) == nullptr;
        if (is_new) {
            const int row = rowCount(parent);
            beginInsertRows(parent, row, row);
        }
        VEK_FILE_ASSISTANT::set(document(), VEK_CMD_OPT_BITSTREAM, params);
        if (is_new) {
            endInsertRows();
        }
        emit input_files_changed();
    });
    return true;
}

bool VEK_MODEL_INPUT_FILES::is_raw_data_path(const FIO_PATH& path)
{
    return get_raw_file_type(path) != PGM_COMMON_XML_ENUM__INVALID__;
}

void VEK_MODEL_INPUT_FILES::add_raw_data(const FIO_PATH& path)
{
    VEK_ASSERT_TEXT(is_raw_data_path(path), "Unsupported raw file type");
    VEK_ASSERT(m_vek != nullptr);
    const std::string id = find_free_id(RAW_FILE_ID_PREFIX, VEK_FILE_ASSISTANT::get_raw_file_ids(document()));
    const int row = rowCount();
    beginInsertRows(QModelIndex(), row, row);
    VEK_FILE_ASSISTANT::set(document(), VEK_CMD_OPT_RAW_FILE,
                            {{VEK_CMD_PARAM_RAW_FILE_ID, id},
                             {VEK_CMD_PARAM_RAW_FILE_TYPE,
                              VEK_FILE_ASSISTANT::convert_xml_enum_to_string(get_raw_file_type(path))},
                             {VEK_CMD_PARAM_RAW_FILE_RAW_FILE, path.fullpath()}});
    endInsertRows();
    emit input_files_changed();
}

void VEK_MODEL_INPUT_FILES::update_raw_data_properties(const std::string& id, const FIO_PATH& path,
                                                       PARAMS params)
{
    const auto items = get_top_level_items();
    const auto it =
        std::find(items.begin(), items.end(), VEK_FILE_ASSISTANT::get_raw_file_element(document(), id));
    if (it == items.end()) {
        return;
    }
    std::erase_if(params, [](const auto& param) {
        return param.first == VEK_CMD_PARAM_RAW_FILE_ID || param.first == VEK_CMD_PARAM_RAW_FILE_RAW_FILE;
    });
    const PARAMS keys = {
        {VEK_CMD_PARAM_RAW_FILE_ID, id},
        {VEK_CMD_PARAM_RAW_FILE_RAW_FILE, VEK_GUI_UTIL::format_path(path).fullpath()},
    };
    params.insert(params.begin(), keys.begin(), keys.end());
    const bool success = VEK_FILE_ASSISTANT::set(document(), VEK_CMD_OPT_RAW_FILE, params);
    VEK_ASSERT(success);
    const QModelIndex changed = createIndex(static_cast<int>(it - items.begin()), COLUMN_FILE_PATH, *it);
    emit dataChanged(changed, changed);
}
