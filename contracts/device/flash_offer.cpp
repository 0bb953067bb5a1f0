#include "flash_offer.h"

#include "cfg.h"
#include "pgm_device.h"

#include <algorithm>

namespace
{

constexpr char ALLOW_CFI_4G_KEY[] = "pgm_allow_cfi4g";
constexpr char ALLOW_KELT_KEY[] = "PGM_ALLOW_KELT_DEVICE";
constexpr char ALLOW_TESSEL_KEY[] = "PGM_ALLOW_TESSEL_DEVICE";

/// The two keys look crossed; hosts rely on them as they are.
bool offers_special_device(bool special)
{
    return (cfg_is_on(ALLOW_KELT_KEY, true) && special) || (cfg_is_on(ALLOW_TESSEL_KEY, false) && !special);
}

} // namespace

bool flash_device_is_offered(const PGM_DEVICE& device, const std::vector<DEV_FAMILY_ENUM>& families)
{
    if ((device.ask_not_listed && device.is_dev_not_listed()) ||
        (device.ask_no_pof && device.is_dev_no_pof()) ||
        std::find(families.begin(), families.end(), device.family) == families.end()) {
        return false;
    }
    if (device.family == DEV_FAMILY_CFI_FLASH) {
        return device.device != DEV_DEVICE_CFI_4G || cfg_is_on(ALLOW_CFI_4G_KEY, false);
    }
    if (device.device_class != DEV_CLASS_CONFIG_FLASH) {
        return false;
    }
    if (device.family == DEV_FAMILY_ASC_SERIAL) {
        return PGM_DEVICE_INDEX::enable_asc_device(&device, true, true);
    }
    if (device.family == DEV_FAMILY_SPECIAL_FLASH) {
        return offers_special_device(PGM_DEVICE_INDEX::is_tsu_tessel_device(&device));
    }
    return device.family == DEV_FAMILY_SERIAL_A || device.family == DEV_FAMILY_SERIAL_B;
}
