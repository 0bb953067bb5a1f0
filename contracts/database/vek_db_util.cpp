#include "cfg.h"
#include "mode_table.h"
#include "msg_internal_error.h"
#include "vek_db.h"

#include <algorithm>

namespace
{

/// The members that all types have of the set that `field` names; empty for no type.
template <class SET>
SET common_members(const std::vector<VEK_FILE_TYPE>& types, SET FILE_TYPE_ROW::*field)
{
    SET common;
    bool first = true;
    for (const VEK_FILE_TYPE type : types) {
        const FILE_TYPE_ROW* row = find_file_type_row(type);
        VEK_ASSERT_TEXT(row != nullptr, "key is in table");
        common = first ? row->*field : common & row->*field;
        first = false;
    }
    return common;
}

} // namespace

bool VEK_DB_UTIL::is_supported_family(DEV_FAMILY_ENUM family)
{
    const FAMILY_ROW* row = find_family_row(family);
    return row != nullptr && row->kind == FAMILY_KIND::FPGA;
}

bool VEK_DB_UTIL::is_configuration_family(DEV_FAMILY_ENUM family)
{
    const FAMILY_ROW* row = find_family_row(family);
    return row != nullptr && row->kind == FAMILY_KIND::FLASH;
}

std::vector<PGMIO_CONFIG_SCHEME> VEK_DB_UTIL::get_enabled_config_modes()
{
    std::vector<const MODE_ROW*> rows;
    for (const MODE_ROW& row : MODE_TABLE) {
        if (row.combo_position != 0) {
            rows.push_back(&row);
        }
    }
    std::ranges::sort(rows, {}, &MODE_ROW::combo_position);
    std::vector<PGMIO_CONFIG_SCHEME> modes;
    std::ranges::transform(rows, std::back_inserter(modes), &MODE_ROW::mode);
    return modes;
}

VEK_FILE_TYPE VEK_DB_UTIL::get_vek_file_type_enum(PGM_COMMON_XML_ENUM word)
{
    const auto row = std::ranges::find(FILE_TYPE_TABLE, word, &FILE_TYPE_ROW::word);
    return row != FILE_TYPE_TABLE.end() ? row->type : VEK_INVALID_FILE_TYPE;
}

PGMIO_CONFIG_SCHEME VEK_DB_UTIL::get_config_scheme_enum(PGM_COMMON_XML_ENUM word)
{
    const auto row = std::ranges::find_if(
        MODE_TABLE, [word](const MODE_ROW& mode) { return mode.combo_position != 0 && mode.word == word; });
    return row != MODE_TABLE.end() ? row->mode : PGMIO_CONFIG_SCHEME_ILLEGAL;
}

bool VEK_DB_UTIL::has_parent(VEK_FILE_TYPE type)
{
    return std::ranges::any_of(
        FILE_TYPE_TABLE, [type](const FILE_TYPE_ROW& row) { return row.secondary_types.contains(type); });
}

bool VEK_DB_UTIL::is_supported_file_category(VEK_FILE_TYPE type, VEK_FILE_CATEGORY category)
{
    return common_members({type}, &FILE_TYPE_ROW::categories).contains(category);
}

std::vector<VEK_FILE_TYPE> VEK_DB_UTIL::get_primary_file_types(const std::vector<VEK_FILE_TYPE>& types)
{
    std::vector<VEK_FILE_TYPE> primary;
    std::ranges::copy_if(types, std::back_inserter(primary), [](VEK_FILE_TYPE type) {
        return !VEK_DB::get_secondary(type) && !VEK_DB::get_virtual_type(type);
    });
    return primary;
}

std::vector<VEK_FILE_CATEGORY>
VEK_DB_UTIL::get_common_file_categories(const std::vector<VEK_FILE_TYPE>& types)
{
    return common_members(types, &FILE_TYPE_ROW::categories).members();
}

std::vector<FIO_FILE_TYPE> VEK_DB_UTIL::get_common_input_file_types(const std::vector<VEK_FILE_TYPE>& types)
{
    return common_members(types, &FILE_TYPE_ROW::inputs).members();
}

std::vector<DEV_FAMILY_ENUM>
VEK_DB_UTIL::get_common_config_device_families(const std::vector<VEK_FILE_TYPE>& types)
{
    return common_members(types, &FILE_TYPE_ROW::flash_families).members();
}

bool VEK_DB_UTIL::param_enabled_by_ini(PGM_COMMON_XML_VEK_CMD_PARAM_ENUM param)
{
    VEK_ASSERT_TEXT(param < VEK_CMD_PARAM_MAX, "key is in table");
    const std::string option = PGM_COMMON_XML_VEK_CMD_OPT[pgm_common_xml_vek_cmd_opt_of(param)];
    return cfg_is_on("vek_param_" + option + "_" + PGM_COMMON_XML_VEK_CMD_PARAM[param], true);
}
