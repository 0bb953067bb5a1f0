#include "vek_db.h"

#include "file_type_table.h"
#include "mode_table.h"
#include "msg_internal_error.h"
#include "param_table.h"

namespace
{

const FILE_TYPE_ROW& row_of(VEK_FILE_TYPE type)
{
    const FILE_TYPE_ROW* row = find_file_type_row(type);
    VEK_ASSERT_TEXT(row != nullptr, "key is in table");
    return *row;
}

const MODE_ROW& row_of(PGMIO_CONFIG_SCHEME mode)
{
    const MODE_ROW* row = find_mode_row(mode);
    VEK_ASSERT_TEXT(row != nullptr, "key is in table");
    return *row;
}

const PARAM_ROW& row_of(PGM_COMMON_XML_VEK_CMD_PARAM_ENUM param)
{
    const PARAM_ROW* row = find_param_row(param);
    VEK_ASSERT_TEXT(row != nullptr, "key is in table");
    return *row;
}

} // namespace

std::vector<VEK_FILE_TYPE> VEK_DB::get_all_output_file_type_keys()
{
    FILE_TYPE_SET types;
    for (const FILE_TYPE_ROW& row : FILE_TYPE_TABLE) {
        types.insert(row.type);
    }
    return types.members();
}

PGM_COMMON_XML_ENUM VEK_DB::get_xml_enum(VEK_FILE_TYPE type)
{
    return row_of(type).word;
}

std::string VEK_DB::get_description(VEK_FILE_TYPE type)
{
    return row_of(type).description;
}

std::string VEK_DB::get_tooltip(VEK_FILE_TYPE type)
{
    return row_of(type).tooltip;
}

bool VEK_DB::get_enabled(VEK_FILE_TYPE type)
{
    return row_of(type).enabled;
}

bool VEK_DB::get_cmd_only(VEK_FILE_TYPE type)
{
    return row_of(type).cmd_only;
}

bool VEK_DB::get_secondary(VEK_FILE_TYPE type)
{
    return row_of(type).secondary;
}

bool VEK_DB::get_virtual_type(VEK_FILE_TYPE type)
{
    return row_of(type).virtual_type;
}

bool VEK_DB::get_has_option(VEK_FILE_TYPE type)
{
    return row_of(type).has_option;
}

FIO_EXTENSION_TYPE VEK_DB::get_fio_ext_enum(VEK_FILE_TYPE type)
{
    return row_of(type).extension;
}

std::string VEK_DB::get_file_name_suffix(VEK_FILE_TYPE type)
{
    return row_of(type).suffix;
}

std::string VEK_DB::get_child_file_name_suffix(VEK_FILE_TYPE type)
{
    return row_of(type).child_suffix;
}

std::vector<VEK_FILE_TYPE> VEK_DB::get_secondary_file_type(VEK_FILE_TYPE type)
{
    return row_of(type).secondary_types.members();
}

bool VEK_DB::get_require_flash_loader(VEK_FILE_TYPE type)
{
    return row_of(type).flash_loader;
}

bool VEK_DB::get_default_checked_state(VEK_FILE_TYPE type)
{
    return row_of(type).default_checked;
}

bool VEK_DB::supports_excluded_family(VEK_FILE_TYPE type, DEV_FAMILY_ENUM family)
{
    return row_of(type).excluded_families.contains(family);
}

PGM_COMMON_XML_ENUM VEK_DB::get_xml_enum(PGMIO_CONFIG_SCHEME mode)
{
    const PGM_COMMON_XML_ENUM word = row_of(mode).word;
    VEK_ASSERT_TEXT(word != PGM_COMMON_XML_ENUM__INVALID__, "mode has a document word");
    return word;
}

std::vector<DEV_FAMILY_ENUM> VEK_DB::get_config_device_family(PGMIO_CONFIG_SCHEME mode)
{
    return row_of(mode).flash_families.members();
}

bool VEK_DB::supports_output_file_type(PGMIO_CONFIG_SCHEME mode, VEK_FILE_TYPE type)
{
    return row_of(mode).outputs.contains(type);
}

std::string VEK_DB::get_description(PGM_COMMON_XML_VEK_CMD_PARAM_ENUM param)
{
    return row_of(param).description;
}

bool VEK_DB::get_enabled(PGM_COMMON_XML_VEK_CMD_PARAM_ENUM param)
{
    return row_of(param).enabled;
}

std::vector<DEV_FAMILY_ENUM> VEK_DB::get_supported_family(PGM_COMMON_XML_VEK_CMD_PARAM_ENUM param)
{
    return row_of(param).families.members();
}

bool VEK_DB::supports_supported_family(PGM_COMMON_XML_VEK_CMD_PARAM_ENUM param, DEV_FAMILY_ENUM family)
{
    return row_of(param).families.contains(family);
}

std::vector<DEV_FAMILY_ENUM> VEK_DB::get_excluded_family(PGM_COMMON_XML_VEK_CMD_PARAM_ENUM param)
{
    return row_of(param).excluded_families.members();
}

bool VEK_DB::supports_excluded_family(PGM_COMMON_XML_VEK_CMD_PARAM_ENUM param, DEV_FAMILY_ENUM family)
{
    return row_of(param).excluded_families.contains(family);
}

std::vector<DEV_FAMILY_ENUM> VEK_DB::get_hidden_supported_family(PGM_COMMON_XML_VEK_CMD_PARAM_ENUM param)
{
    return row_of(param).hidden_families.members();
}

bool VEK_DB::supports_hidden_supported_family(PGM_COMMON_XML_VEK_CMD_PARAM_ENUM param, DEV_FAMILY_ENUM family)
{
    return row_of(param).hidden_families.contains(family);
}

std::vector<FIO_FILE_TYPE> VEK_DB::get_supported_input_file_type(PGM_COMMON_XML_VEK_CMD_PARAM_ENUM param)
{
    return row_of(param).inputs.members();
}

bool VEK_DB::supports_supported_input_file_type(PGM_COMMON_XML_VEK_CMD_PARAM_ENUM param,
                                                FIO_FILE_TYPE file_type)
{
    return row_of(param).inputs.contains(file_type);
}

std::vector<VEK_FILE_TYPE> VEK_DB::get_supported_output_file_type(PGM_COMMON_XML_VEK_CMD_PARAM_ENUM param)
{
    return row_of(param).outputs.members();
}

bool VEK_DB::supports_supported_output_file_type(PGM_COMMON_XML_VEK_CMD_PARAM_ENUM param, VEK_FILE_TYPE type)
{
    return row_of(param).outputs.contains(type);
}

std::vector<PGM_COMMON_XML_VEK_CMD_PARAM_ENUM>
VEK_DB::get_dependent_param(PGM_COMMON_XML_VEK_CMD_PARAM_ENUM param)
{
    return row_of(param).parents.members();
}

bool VEK_DB::supports_dependent_param(PGM_COMMON_XML_VEK_CMD_PARAM_ENUM param,
                                      PGM_COMMON_XML_VEK_CMD_PARAM_ENUM other)
{
    return row_of(param).parents.contains(other);
}

std::vector<PGM_COMMON_XML_ENUM>
VEK_DB::get_dependent_param_enum_value(PGM_COMMON_XML_VEK_CMD_PARAM_ENUM param)
{
    return row_of(param).parent_values.members();
}

bool VEK_DB::supports_exclusive_param(PGM_COMMON_XML_VEK_CMD_PARAM_ENUM param,
                                      PGM_COMMON_XML_VEK_CMD_PARAM_ENUM other)
{
    return row_of(param).excludes.contains(other);
}
