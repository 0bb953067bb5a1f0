#ifndef DEV_FAMILY_ENUM_H
#define DEV_FAMILY_ENUM_H

#include <array>
#include <cstdint>
#include <string>

/// Device families. The values are those of the device database and stand in saved data, so they never
/// change. A family that the tool treats in a way of its own has a second name for that role.
enum DEV_FAMILY_ENUM : std::uint32_t {
    DEV_FAMILY_BASALT = 5,
    DEV_FAMILY_ASC_SERIAL = 10, ///< small serial configuration devices, filtered by enable_asc_device
    DEV_FAMILY_CALCITE = 12,
    DEV_FAMILY_DOLOMITE = 16,
    DEV_FAMILY_MULTI_FILE = DEV_FAMILY_DOLOMITE, ///< chains several files in one bitstream
    DEV_FAMILY_FELDSPAR = 23,
    DEV_FAMILY_SERIAL_A = 25, ///< serial NOR flash, 3 V
    DEV_FAMILY_SERIAL_B = 26, ///< serial NOR flash, 1.8 V
    DEV_FAMILY_HEMATITE = 28,
    DEV_FAMILY_GRANITE = 33,
    DEV_FAMILY_CFI_FLASH = 40, ///< parallel flash; names end in a byte suffix
    DEV_FAMILY_ONYX = 47,
    DEV_FAMILY_NOT_OFFERED = DEV_FAMILY_ONYX, ///< never listed in the family combo
    DEV_FAMILY_ZIRCON = 48,
    DEV_FAMILY_DEFAULT_CHOICE = DEV_FAMILY_ZIRCON, ///< selected after a reset
    DEV_FAMILY_SPECIAL_FLASH = 68,                 ///< flash family behind two configuration keys
    DEV_FAMILY_GYPSUM = 71,
    DEV_FAMILY_ONCHIP_FLASH = DEV_FAMILY_GYPSUM, ///< configured from on-chip flash, with dual images
    DEV_FAMILY_NONE = 72,                        ///< no family selected
};

/// The families with signing and a per-file encryption option.
inline constexpr std::array<DEV_FAMILY_ENUM, 3> DEV_FAMILY_SECURE_GROUP{
    DEV_FAMILY_FELDSPAR, DEV_FAMILY_HEMATITE, DEV_FAMILY_ZIRCON};

/// Whether `family` belongs to DEV_FAMILY_SECURE_GROUP.
constexpr bool dev_family_is_secure(DEV_FAMILY_ENUM family)
{
    for (const DEV_FAMILY_ENUM member : DEV_FAMILY_SECURE_GROUP) {
        if (member == family) {
            return true;
        }
    }
    return false;
}

/// Devices by number: the FPGAs from 1, the flash devices of the database from 400, those of the custom flash
/// database from DEV_DEVICE_CUSTOM_FIRST in the order in which the process met them. Only the numbers that
/// code asks for have a name.
enum DEV_DEVICE_ENUM : std::uint32_t {
    DEV_DEVICE_NONE = 0,
    DEV_DEVICE_CFI_4G = 498, ///< the largest parallel flash, offered under a configuration key
    DEV_DEVICE_CUSTOM_FIRST = 100000,
};

/// Kinds of device. The configuration flash is told by its number.
enum DEV_CLASS_ENUM : std::uint32_t {
    DEV_CLASS_NONE = 0,
    DEV_CLASS_FPGA = 1,
    DEV_CLASS_PARALLEL_FLASH = 17,
    DEV_CLASS_DATA_FLASH = 18,   ///< serial flash that cannot hold a configuration
    DEV_CLASS_CONFIG_FLASH = 19, ///< serial flash that a device configures itself from
};

/// Display name of a family ("Granite"); "None" for DEV_FAMILY_NONE and "Unknown" for a number that is no
/// family.
std::string dstr_get_user_string(DEV_FAMILY_ENUM family);

/// The family of a display name, letter case ignored; DEV_FAMILY_NONE for any other text.
DEV_FAMILY_ENUM dstr_get_dev_family_enum_by_string(const std::string& text);

#endif
