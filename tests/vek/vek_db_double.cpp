#include "vek_db_double.h"

#include <algorithm>
#include <dlfcn.h>
#include <stdexcept>
#include <string>

VEK_DB_DOUBLE& vek_db_double()
{
    static VEK_DB_DOUBLE instance;
    return instance;
}

namespace
{

using PARAM = PGM_COMMON_XML_VEK_CMD_PARAM_ENUM;

const VEK_DB_DOUBLE::ROW* row_of(PARAM param)
{
    const auto found = vek_db_double().rows.find(param);
    return found == vek_db_double().rows.end() ? nullptr : &found->second;
}

template <class LIST, class MEMBER>
bool has(const LIST& list, MEMBER member)
{
    return std::ranges::find(list, member) != list.end();
}

/// The operation that this program hides.
template <class FUNCTION>
FUNCTION* database(const char* symbol)
{
    void* const function = dlsym(RTLD_NEXT, symbol);
    if (function == nullptr) {
        throw std::runtime_error(std::string("the database has no ") + symbol);
    }
    return reinterpret_cast<FUNCTION*>(function);
}

using QUERY = bool(PARAM);
using PAIR_QUERY = bool(PARAM, PARAM);
using FAMILY_QUERY = bool(PARAM, DEV_FAMILY_ENUM);
using FAMILIES = std::vector<DEV_FAMILY_ENUM>;
using PARAMS = std::vector<PARAM>;
using WORDS = std::vector<PGM_COMMON_XML_ENUM>;

#define PARAM_NAME "33PGM_COMMON_XML_VEK_CMD_PARAM_ENUM"

} // namespace

bool VEK_DB::get_enabled(PARAM param)
{
    const auto* const row = row_of(param);
    return row != nullptr ? row->enabled : database<QUERY>("_ZN6VEK_DB11get_enabledE" PARAM_NAME)(param);
}

FAMILIES VEK_DB::get_supported_family(PARAM param)
{
    const auto* const row = row_of(param);
    return row != nullptr ? row->families
                          : database<FAMILIES(PARAM)>("_ZN6VEK_DB20get_supported_familyE" PARAM_NAME)(param);
}

bool VEK_DB::supports_supported_family(PARAM param, DEV_FAMILY_ENUM family)
{
    const auto* const row = row_of(param);
    return row != nullptr ? has(row->families, family)
                          : database<FAMILY_QUERY>("_ZN6VEK_DB25supports_supported_familyE" PARAM_NAME
                                                   "15DEV_FAMILY_ENUM")(param, family);
}

FAMILIES VEK_DB::get_excluded_family(PARAM param)
{
    const auto* const row = row_of(param);
    return row != nullptr ? row->excluded_families
                          : database<FAMILIES(PARAM)>("_ZN6VEK_DB19get_excluded_familyE" PARAM_NAME)(param);
}

bool VEK_DB::supports_excluded_family(PARAM param, DEV_FAMILY_ENUM family)
{
    const auto* const row = row_of(param);
    return row != nullptr ? has(row->excluded_families, family)
                          : database<FAMILY_QUERY>("_ZN6VEK_DB24supports_excluded_familyE" PARAM_NAME
                                                   "15DEV_FAMILY_ENUM")(param, family);
}

FAMILIES VEK_DB::get_hidden_supported_family(PARAM param)
{
    const auto* const row = row_of(param);
    return row != nullptr
               ? row->hidden_families
               : database<FAMILIES(PARAM)>("_ZN6VEK_DB27get_hidden_supported_familyE" PARAM_NAME)(param);
}

bool VEK_DB::supports_hidden_supported_family(PARAM param, DEV_FAMILY_ENUM family)
{
    const auto* const row = row_of(param);
    return row != nullptr ? has(row->hidden_families, family)
                          : database<FAMILY_QUERY>("_ZN6VEK_DB32supports_hidden_supported_familyE" PARAM_NAME
                                                   "15DEV_FAMILY_ENUM")(param, family);
}

PARAMS VEK_DB::get_dependent_param(PARAM param)
{
    const auto* const row = row_of(param);
    return row != nullptr ? row->parents
                          : database<PARAMS(PARAM)>("_ZN6VEK_DB19get_dependent_paramE" PARAM_NAME)(param);
}

bool VEK_DB::supports_dependent_param(PARAM param, PARAM other)
{
    const auto* const row = row_of(param);
    return row != nullptr
               ? has(row->parents, other)
               : database<PAIR_QUERY>("_ZN6VEK_DB24supports_dependent_paramE" PARAM_NAME "S0_")(param, other);
}

WORDS VEK_DB::get_dependent_param_enum_value(PARAM param)
{
    const auto* const row = row_of(param);
    return row != nullptr
               ? row->parent_values
               : database<WORDS(PARAM)>("_ZN6VEK_DB30get_dependent_param_enum_valueE" PARAM_NAME)(param);
}

bool VEK_DB::supports_exclusive_param(PARAM param, PARAM other)
{
    const auto* const row = row_of(param);
    return row != nullptr
               ? has(row->excludes, other)
               : database<PAIR_QUERY>("_ZN6VEK_DB24supports_exclusive_paramE" PARAM_NAME "S0_")(param, other);
}

std::vector<FIO_FILE_TYPE> VEK_DB_UTIL::get_common_input_file_types(const std::vector<VEK_FILE_TYPE>& types)
{
    const auto& own = vek_db_double().common_input_file_types;
    return own ? *own
               : database<std::vector<FIO_FILE_TYPE>(const std::vector<VEK_FILE_TYPE>&)>(
                     "_ZN11VEK_DB_UTIL27get_common_input_file_typesERKSt6vectorI13VEK_FILE_TYPESaIS1_EE")(
                     types);
}
