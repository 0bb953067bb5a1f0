#include "pgm_device.h"

#include "device_store.h"
#include "family_table.h"
#include "msg_internal_error.h"

std::string PGM_DEVICE::user_name() const
{
    std::string shown = name;
    if (family == DEV_FAMILY_CFI_FLASH && !shown.empty()) {
        shown.back() = 'b';
    }
    return shown;
}

std::vector<const PGM_DEVICE*> PGM_DEVICE_INDEX::get_device_list()
{
    return DEVICE_STORE::instance().list();
}

const PGM_DEVICE* PGM_DEVICE_INDEX::find_by_name(const std::string& name)
{
    return DEVICE_STORE::instance().find_by_name(name);
}

const PGM_DEVICE* PGM_DEVICE_INDEX::find_by_enum(DEV_DEVICE_ENUM device)
{
    return DEVICE_STORE::instance().find_by_enum(device);
}

bool PGM_DEVICE_INDEX::enable_asc_device(const PGM_DEVICE* device, bool for_programming, bool through_fpga)
{
    VEK_ASSERT_TEXT(device != nullptr, "device");
    return device->family == DEV_FAMILY_ASC_SERIAL &&
           (!for_programming || device->release == DEV_RELEASE::PRODUCTION) &&
           (!through_fpga || device->flash_loader);
}

bool PGM_DEVICE_INDEX::is_tsu_tessel_device(const std::string& name)
{
    return is_tsu_tessel_device(find_by_name(name));
}

bool PGM_DEVICE_INDEX::is_tsu_tessel_device(const PGM_DEVICE* device)
{
    return device != nullptr && device->tsu_tessel;
}

void PGM_DEVICE_INDEX::override_device_list(std::optional<std::vector<const PGM_DEVICE*>> list)
{
    DEVICE_STORE::instance().override_list(std::move(list));
}

DEV_FAMILY_MANAGER::DEV_FAMILY_MANAGER()
{
    for (const FAMILY_ROW& row : FAMILY_TABLE) {
        m_families.push_back(row.family);
    }
}
