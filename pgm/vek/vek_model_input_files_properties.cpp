// The properties of the files of bitstreams, and those that the files of a setup share.

#include "fio_types.h"
#include "msg_internal_error.h"
#include "msgs/vek_msgs.h"
#include "vek_frame_wnd_cache.h"
#include "vek_model_input_files.h"

#include <algorithm>
#include <array>

namespace
{

constexpr std::array SHARED_PARAMS = {
    VEK_CMD_PARAM_BITSTREAM_PATH_FW_SOURCE, VEK_CMD_PARAM_BITSTREAM_PATH_SIGNING,
    VEK_CMD_PARAM_BITSTREAM_PATH_SIGNING_PEM_FILE, VEK_CMD_PARAM_BITSTREAM_PATH_FINALIZE_ENCRYPTION,
    VEK_CMD_PARAM_BITSTREAM_PATH_AEK_FILE};

bool is_sof(const PGM_COMMON_XML_VEK_PATH& element)
{
    return fio_get_extension_type(FIO_PATH(element.text).extension()) == FIO_EXT_SOF;
}

} // namespace

void VEK_MODEL_INPUT_FILES::inherit_bitstream_properties(const std::string& id, const FIO_PATH& path,
                                                         PARAMS& params) const
{
    if (VEK_FILE_ASSISTANT::get_bitstream_element(document(), id) == nullptr ||
        !m_cache->shares_signing_properties) {
        return;
    }
    for (const std::string& bitstream_id : VEK_FILE_ASSISTANT::get_bitstream_ids(document())) {
        for (const auto* const element : VEK_FILE_ASSISTANT::get_path_elements(document(), bitstream_id)) {
            if ((bitstream_id == id && element->text == path.fullpath()) || !is_sof(*element)) {
                continue;
            }
            // Of several, the last one counts: that of the source, or else of the last file.
            params.emplace_back(VEK_CMD_PARAM_BITSTREAM_PATH_FW_SOURCE, element->fw_source);
            const PGM_COMMON_XML_ENUM signing =
                VEK_FILE_ASSISTANT::convert_string_to_xml_enum(element->signing);
            if (signing == PGM_COMMON_XML_ENUM_OFF) {
                continue;
            }
            params.emplace_back(VEK_CMD_PARAM_BITSTREAM_PATH_SIGNING,
                                VEK_FILE_ASSISTANT::convert_xml_enum_to_string(signing));
            params.emplace_back(VEK_CMD_PARAM_BITSTREAM_PATH_SIGNING_PEM_FILE, element->signing_pem_file);
            params.emplace_back(
                VEK_CMD_PARAM_BITSTREAM_PATH_FINALIZE_ENCRYPTION,
                VEK_FILE_ASSISTANT::convert_bool_to_string(
                    VEK_FILE_ASSISTANT::convert_string_to_bool(element->finalize_encryption)));
            params.emplace_back(VEK_CMD_PARAM_BITSTREAM_PATH_AEK_FILE, element->aek_file);
            vek_report(MSG_VEK::I::AUTO_INHERIT_SHARED_PROPERTIES(element->text, path.fullpath()));
            return;
        }
    }
}

void VEK_MODEL_INPUT_FILES::populate_bitstream_properties(const std::string& id, const FIO_PATH& path,
                                                          const PARAMS& params)
{
    if (VEK_FILE_ASSISTANT::get_bitstream_element(document(), id) == nullptr ||
        !m_cache->shares_signing_properties) {
        return;
    }
    PARAMS shared;
    std::copy_if(params.begin(), params.end(), std::back_inserter(shared), [](const auto& param) {
        return std::find(SHARED_PARAMS.begin(), SHARED_PARAMS.end(), param.first) != SHARED_PARAMS.end();
    });
    for (const std::string& bitstream_id : VEK_FILE_ASSISTANT::get_bitstream_ids(document())) {
        for (const auto* const element : VEK_FILE_ASSISTANT::get_path_elements(document(), bitstream_id)) {
            if ((bitstream_id == id && element->text == path.fullpath()) || !is_sof(*element)) {
                continue;
            }
            PARAMS values = {{VEK_CMD_PARAM_BITSTREAM_ID, bitstream_id},
                             {VEK_CMD_PARAM_BITSTREAM_PATH, element->text}};
            values.insert(values.end(), shared.begin(), shared.end());
            const bool success = VEK_FILE_ASSISTANT::set(document(), VEK_CMD_OPT_BITSTREAM, values);
            VEK_ASSERT(success);
            vek_report(MSG_VEK::I::AUTO_POPULATE_SHARED_PROPERTIES(path.fullpath(), element->text));
        }
    }
}

void VEK_MODEL_INPUT_FILES::update_bitstream_properties(const std::string& id, const FIO_PATH& path,
                                                        const PARAMS& params)
{
    if (VEK_FILE_ASSISTANT::get_bitstream_element(document(), id) == nullptr) {
        return;
    }
    auto* const element = VEK_FILE_ASSISTANT::get_path_element(document(), id, path.fullpath());
    const auto path_elements = VEK_FILE_ASSISTANT::get_path_elements(document(), id);
    const auto it = std::find(path_elements.begin(), path_elements.end(), element);
    VEK_ASSERT(it != path_elements.end());
    PARAMS values = {{VEK_CMD_PARAM_BITSTREAM_ID, id}, {VEK_CMD_PARAM_BITSTREAM_PATH, path.fullpath()}};
    std::copy_if(params.begin(), params.end(), std::back_inserter(values), [](const auto& param) {
        return param.first != VEK_CMD_PARAM_BITSTREAM_ID && param.first != VEK_CMD_PARAM_BITSTREAM_PATH;
    });
    const bool success = VEK_FILE_ASSISTANT::set(document(), VEK_CMD_OPT_BITSTREAM, values);
    VEK_ASSERT(success);
    const QModelIndex changed =
        createIndex(static_cast<int>(it - path_elements.begin()), COLUMN_FILE_PATH, element);
    emit dataChanged(changed, changed);
    populate_bitstream_properties(id, path, params);
}
