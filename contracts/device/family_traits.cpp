#include "family_traits.h"

#include "family_table.h"
#include "msg_internal_error.h"
#include "pgm_device.h"
#include "vek_db.h"

namespace
{

bool is_offered(VEK_FILE_TYPE type, DEV_FAMILY_ENUM family, unsigned modes)
{
    if (!VEK_DB::get_enabled(type) || VEK_DB::supports_excluded_family(type, family)) {
        return false;
    }
    for (const PGMIO_CONFIG_SCHEME mode : VEK_DB_UTIL::get_enabled_config_modes()) {
        if ((modes & mode_bits(mode)) != 0 && VEK_DB::supports_output_file_type(mode, type)) {
            return true;
        }
    }
    return false;
}

/// Enters the type and all below it that the family offers; nothing below a type that it does not.
void enter_offered(VEK_FILE_TYPE type, DEV_FAMILY_ENUM family, unsigned modes, unsigned& mask)
{
    if (!is_offered(type, family, modes)) {
        return;
    }
    mask |= 1U << type;
    for (const VEK_FILE_TYPE child : VEK_DB::get_secondary_file_type(type)) {
        enter_offered(child, family, modes, mask);
    }
}

} // namespace

void get_family_pcf_info(DEV_FAMILY_ENUM family, DEV_DEVICE_ENUM device, unsigned& mode_mask_a,
                         unsigned& mode_mask_b, unsigned& output_file_mask)
{
    const FAMILY_ROW* row = find_family_row(family);
    VEK_ASSERT_TEXT(row != nullptr, "family is in table");
    unsigned modes = row->modes;
    const PGM_DEVICE* record = PGM_DEVICE_INDEX::find_by_enum(device);
    if (record != nullptr && record->family == family) {
        modes &= ~record->missing_modes;
    }
    mode_mask_a = modes & (MODES_ACTIVE_SERIAL | MODES_PASSIVE);
    mode_mask_b = modes & (MODES_LNKS | MODES_ONCHIP);
    output_file_mask = 0;
    for (const VEK_FILE_TYPE type : VEK_DB::get_all_output_file_type_keys()) {
        if (!VEK_DB_UTIL::has_parent(type)) {
            enter_offered(type, family, modes, output_file_mask);
        }
    }
}
