#include "setup_inputs.h"

#include "fio_path.h"
#include "fio_types.h"
#include "setup_view.h"
#include "value_rules.h"

#include <algorithm>

namespace
{

using PARAMS = VEK_FILE_ASSISTANT::PARAMS;

struct RAW_FILE_ROW {
    FIO_EXTENSION_TYPE extension;
    PGM_COMMON_XML_ENUM word;
};
constexpr RAW_FILE_ROW RAW_FILES[] = {
    {FIO_EXT_HEX, PGM_COMMON_XML_ENUM_HEX}, {FIO_EXT_IHEX, PGM_COMMON_XML_ENUM_HEX},
    {FIO_EXT_RBF, PGM_COMMON_XML_ENUM_RBF}, {FIO_EXT_BIN, PGM_COMMON_XML_ENUM_RBF},
    {FIO_EXT_PUF, PGM_COMMON_XML_ENUM_PUF}, {FIO_EXT_WKEY, PGM_COMMON_XML_ENUM_WKEY}};

bool is_same_path(const std::string& a, const std::string& b)
{
    return FIO_PATH(absolute_path(a)) == FIO_PATH(absolute_path(b));
}

/// Where an id of an input is asked for, and of which kind.
struct ID_PARAM {
    PGM_COMMON_XML_VEK_CMD_PARAM_ENUM param;
    bool bitstream;
};
constexpr ID_PARAM ID_PARAMS[] = {{VEK_CMD_PARAM_BITSTREAM_ID, true},
                                  {VEK_CMD_PARAM_ASSIGNMENT_BITSTREAM_ID, true},
                                  {VEK_CMD_PARAM_OUTPUT_FILE_BITSTREAM_ID, true},
                                  {VEK_CMD_PARAM_RAW_FILE_ID, false},
                                  {VEK_CMD_PARAM_ASSIGNMENT_RAW_FILE_ID, false}};

bool is_one(const std::string& path, const std::vector<std::string>& ids, std::string& message)
{
    if (ids.size() > 1) {
        message = path + " belongs to " + std::to_string(ids.size()) + " inputs; name the id, " +
                  join_words(ids) + ".";
    }
    return ids.size() <= 1;
}

bool replace_path(const PGM_COMMON_XML_VEK_VEK& document, bool bitstream, std::string& id,
                  std::string& message)
{
    const bool known = bitstream ? VEK_FILE_ASSISTANT::get_bitstream_element(&document, id) != nullptr
                                 : VEK_FILE_ASSISTANT::get_raw_file_element(&document, id) != nullptr;
    const auto ids = known       ? std::vector<std::string>()
                     : bitstream ? bitstreams_of_path(document, id)
                                 : raw_files_of_path(document, id);
    if (!is_one(id, ids, message)) {
        return false;
    }
    id = ids.empty() ? id : ids.front();
    return true;
}

const std::string* find(const PARAMS& params, PGM_COMMON_XML_VEK_CMD_PARAM_ENUM param)
{
    const auto found =
        std::find_if(params.begin(), params.end(), [param](const auto& pair) { return pair.first == param; });
    return found == params.end() ? nullptr : &found->second;
}

/// Gives an input that is named by its path the id that it has, or else a free one.
bool add_id(const PGM_COMMON_XML_VEK_VEK& document, PARAMS& params, bool bitstream, std::string& message)
{
    const PGM_COMMON_XML_VEK_CMD_PARAM_ENUM id =
        bitstream ? VEK_CMD_PARAM_BITSTREAM_ID : VEK_CMD_PARAM_RAW_FILE_ID;
    const std::string* path =
        find(params, bitstream ? VEK_CMD_PARAM_BITSTREAM_PATH : VEK_CMD_PARAM_RAW_FILE_RAW_FILE);
    if (path == nullptr || find(params, id) != nullptr) {
        return true;
    }
    const auto ids = bitstream ? bitstreams_of_path(document, *path) : raw_files_of_path(document, *path);
    if (!is_one(*path, ids, message)) {
        return false;
    }
    std::vector<std::string> taken = VEK_FILE_ASSISTANT::get_bitstream_ids(&document);
    const auto raw_ids = VEK_FILE_ASSISTANT::get_raw_file_ids(&document);
    taken.insert(taken.end(), raw_ids.begin(), raw_ids.end());
    const std::string word = bitstream ? "" : raw_file_word(*path);
    if (ids.empty() && !word.empty() && find(params, VEK_CMD_PARAM_RAW_FILE_TYPE) == nullptr) {
        params.insert(params.begin(), {VEK_CMD_PARAM_RAW_FILE_TYPE, word});
    }
    params.insert(params.begin(),
                  {id, ids.empty() ? free_id(bitstream ? BITSTREAM_ID_PREFIX : RAW_FILE_ID_PREFIX, taken)
                                   : ids.front()});
    return true;
}

} // namespace

std::string free_id(const std::string& prefix, const std::vector<std::string>& taken)
{
    for (unsigned number = 1;; ++number) {
        std::string id = prefix + std::to_string(number);
        if (std::find(taken.begin(), taken.end(), id) == taken.end()) {
            return id;
        }
    }
}

std::string raw_file_word(const std::string& path)
{
    const FIO_EXTENSION_TYPE extension = fio_get_extension_type(FIO_PATH(path).extension());
    const auto row =
        std::find_if(std::begin(RAW_FILES), std::end(RAW_FILES),
                     [extension](const RAW_FILE_ROW& one) { return one.extension == extension; });
    return row == std::end(RAW_FILES) ? "" : VEK_FILE_ASSISTANT::convert_xml_enum_to_string(row->word);
}

std::vector<std::string> bitstreams_of_path(const PGM_COMMON_XML_VEK_VEK& document, const std::string& path)
{
    std::vector<std::string> ids;
    for (const PGM_COMMON_XML_VEK_BITSTREAM* bitstream :
         VEK_FILE_ASSISTANT::get_bitstream_elements(&document)) {
        if (std::any_of(bitstream->path.begin(), bitstream->path.end(),
                        [&path](const auto* file) { return is_same_path(file->text, path); })) {
            ids.push_back(bitstream->id);
        }
    }
    return ids;
}

std::vector<std::string> raw_files_of_path(const PGM_COMMON_XML_VEK_VEK& document, const std::string& path)
{
    std::vector<std::string> ids;
    for (const PGM_COMMON_XML_VEK_RAW_FILE* file : VEK_FILE_ASSISTANT::get_raw_file_elements(&document)) {
        if (is_same_path(file->text, path)) {
            ids.push_back(file->id);
        }
    }
    return ids;
}

bool complete_ids(const PGM_COMMON_XML_VEK_VEK& document, PGM_COMMON_XML_VEK_CMD_OPT_ENUM option,
                  PARAMS& params, std::string& message)
{
    for (auto& [param, value] : params) {
        for (const ID_PARAM& row : ID_PARAMS) {
            if (row.param == param && !replace_path(document, row.bitstream, value, message)) {
                return false;
            }
        }
    }
    switch (option) {
    case VEK_CMD_OPT_BITSTREAM:
        return add_id(document, params, true, message);
    case VEK_CMD_OPT_RAW_FILE:
        return add_id(document, params, false, message);
    case VEK_CMD_OPT_INVALID:
    case VEK_CMD_OPT_ASSIGNMENT:
    case VEK_CMD_OPT_SETTINGS:
    case VEK_CMD_OPT_OUTPUT_FILE:
    case VEK_CMD_OPT_FLASH_LOADER:
    case VEK_CMD_OPT_FLASH_DEVICE:
    case VEK_CMD_OPT_MAX:
        break;
    }
    return true;
}
