#include "dev_family_enum.h"
#include "device_store.h"
#include "family_table.h"

std::string dstr_get_user_string(DEV_FAMILY_ENUM family)
{
    if (const FAMILY_ROW* row = find_family_row(family)) {
        return row->name;
    }
    return family == DEV_FAMILY_NONE ? "None" : "Unknown";
}

DEV_FAMILY_ENUM dstr_get_dev_family_enum_by_string(const std::string& text)
{
    const std::string folded = fold_device_name(text);
    for (const FAMILY_ROW& row : FAMILY_TABLE) {
        if (fold_device_name(row.name) == folded) {
            return row.family;
        }
    }
    return DEV_FAMILY_NONE;
}
