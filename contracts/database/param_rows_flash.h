#ifndef PARAM_ROWS_FLASH_H
#define PARAM_ROWS_FLASH_H

#include "param_row.h"

#include <array>

// The parameters of the flash loader, of flash devices and of their partitions. The options of the on-chip
// flash have a dialog of their own.

inline constexpr FAMILY_SET FAMILIES_ONCHIP = families_with(TRAIT_ONCHIP_FLASH);

// clang-format off
inline constexpr std::array PARAM_ROWS_FLASH{
    PARAM_ROW{.param = VEK_CMD_PARAM_FLASH_LOADER_FLASH_LOADER, .description = "FPGA through which JTAG reaches the flash device."},

    // flash_device
    PARAM_ROW{.param = VEK_CMD_PARAM_FLASH_DEVICE_ID, .description = "Identifier by which output files name the flash device."},
    PARAM_ROW{.param = VEK_CMD_PARAM_FLASH_DEVICE_TYPE, .description = "Name of the flash device in the device database."},
    PARAM_ROW{.param = VEK_CMD_PARAM_FLASH_DEVICE_CHIP_SELECT, .description = "Chip select line to which the flash device is wired."},

    // flash_device: on-chip flash
    PARAM_ROW{.param = VEK_CMD_PARAM_FLASH_DEVICE_POWER_ON_SCHEME, .description = "How the on-chip flash starts the device after power-on.", .families = FAMILIES_ONCHIP},
    PARAM_ROW{.param = VEK_CMD_PARAM_FLASH_DEVICE_ENABLE_USER_IOS_WEAK_PULLUP, .description = "Weak pull-ups hold the user pins during configuration.", .families = FAMILIES_ONCHIP},
    PARAM_ROW{.param = VEK_CMD_PARAM_FLASH_DEVICE_CONFIG_FROM_CFM0_ONLY, .description = "The device always starts from the first image.", .families = FAMILIES_ONCHIP},
    PARAM_ROW{.param = VEK_CMD_PARAM_FLASH_DEVICE_ISP_SOURCE, .description = "Image that the device keeps running while it is programmed.", .families = FAMILIES_ONCHIP},
    PARAM_ROW{.param = VEK_CMD_PARAM_FLASH_DEVICE_ENABLE_JTAG_SECURITY, .description = "JTAG access is closed after configuration.", .families = FAMILIES_ONCHIP},
    PARAM_ROW{.param = VEK_CMD_PARAM_FLASH_DEVICE_ENABLE_VERIFY_PROTECT, .description = "The content of the on-chip flash cannot be read back.", .families = FAMILIES_ONCHIP},
    PARAM_ROW{.param = VEK_CMD_PARAM_FLASH_DEVICE_ENABLE_ENCRYPTED_POF_ONLY, .description = "The on-chip flash accepts encrypted files only.", .families = FAMILIES_ONCHIP},
    PARAM_ROW{.param = VEK_CMD_PARAM_FLASH_DEVICE_WATCHDOG_VALUE, .description = "Time after which the watchdog returns to the other image.", .families = FAMILIES_ONCHIP},
    PARAM_ROW{.param = VEK_CMD_PARAM_FLASH_DEVICE_FALLBACK_ADDRESS, .description = "Address of the image that is used when the first one fails.", .families = FAMILIES_ONCHIP},
    PARAM_ROW{.param = VEK_CMD_PARAM_FLASH_DEVICE_ENABLE_SPI_MODE, .description = "The on-chip flash answers on a serial interface too.", .families = FAMILIES_ONCHIP},
    PARAM_ROW{.param = VEK_CMD_PARAM_FLASH_DEVICE_FORCE_SSMCLK_TO_USE_ISMCLK, .description = "The system clock of the flash follows its internal clock.", .families = FAMILIES_ONCHIP},
    PARAM_ROW{.param = VEK_CMD_PARAM_FLASH_DEVICE_UFM_SOURCE, .description = "Where the content of the user flash memory comes from.", .families = FAMILIES_ONCHIP},
    PARAM_ROW{.param = VEK_CMD_PARAM_FLASH_DEVICE_UFM_SOURCE_FILE, .description = "File with the content of the user flash memory.", .families = FAMILIES_ONCHIP},
    PARAM_ROW{.param = VEK_CMD_PARAM_FLASH_DEVICE_ENABLE_TEST, .description = "Test modes of the on-chip flash are switched on.", .families = FAMILIES_ONCHIP},
    PARAM_ROW{.param = VEK_CMD_PARAM_FLASH_DEVICE_DISABLE_TEST, .description = "Test modes of the on-chip flash are switched off for good.", .families = FAMILIES_ONCHIP},

    // flash_device: partitions
    PARAM_ROW{.param = VEK_CMD_PARAM_FLASH_DEVICE_PARTITION_ID, .description = "Name of the partition."},
    PARAM_ROW{.param = VEK_CMD_PARAM_FLASH_DEVICE_PARTITION_RESERVED, .description = "The partition belongs to the device and cannot be removed."},
    PARAM_ROW{.param = VEK_CMD_PARAM_FLASH_DEVICE_PARTITION_S_ADDR, .description = "Start address of the partition: auto or hexadecimal."},
    PARAM_ROW{.param = VEK_CMD_PARAM_FLASH_DEVICE_PARTITION_E_ADDR, .description = "End address of the partition: auto or hexadecimal, its last byte included."},
    PARAM_ROW{.param = VEK_CMD_PARAM_FLASH_DEVICE_PARTITION_FIXED_S_ADDR, .description = "The start address of the partition cannot be changed."},
    PARAM_ROW{.param = VEK_CMD_PARAM_FLASH_DEVICE_PARTITION_FIXED_E_ADDR, .description = "The end address of the partition cannot be changed."},
    PARAM_ROW{.param = VEK_CMD_PARAM_FLASH_DEVICE_PARTITION_SIZE, .description = "Size of the partition in bytes, 0 when its content decides."},
    PARAM_ROW{.param = VEK_CMD_PARAM_FLASH_DEVICE_PARTITION_EXTRA_SPACE, .description = "Bytes kept free behind the content of the partition."},

    // flash_device: partition tables of block devices
    PARAM_ROW{.param = VEK_CMD_PARAM_FLASH_DEVICE_MBR_ID, .description = "Name of the partition table."},
    PARAM_ROW{.param = VEK_CMD_PARAM_FLASH_DEVICE_MBR_TYPE, .description = "Kind of the partition table."},
    PARAM_ROW{.param = VEK_CMD_PARAM_FLASH_DEVICE_MBR_S_ADDR, .description = "Start address of what the partition table covers."},
    PARAM_ROW{.param = VEK_CMD_PARAM_FLASH_DEVICE_MBR_E_ADDR, .description = "End address of what the partition table covers."},
    PARAM_ROW{.param = VEK_CMD_PARAM_FLASH_DEVICE_MBR_PARTITION_ID, .description = "Name of an entry of the partition table."},
    PARAM_ROW{.param = VEK_CMD_PARAM_FLASH_DEVICE_MBR_PARTITION_RESERVED, .description = "The entry of the partition table cannot be removed."},
    PARAM_ROW{.param = VEK_CMD_PARAM_FLASH_DEVICE_MBR_PARTITION_S_ADDR, .description = "Start address of the entry: auto or hexadecimal."},
    PARAM_ROW{.param = VEK_CMD_PARAM_FLASH_DEVICE_MBR_PARTITION_E_ADDR, .description = "End address of the entry: auto or hexadecimal, its last byte included."},
    PARAM_ROW{.param = VEK_CMD_PARAM_FLASH_DEVICE_MBR_PARTITION_FIXED_S_ADDR, .description = "The start address of the entry cannot be changed."},
    PARAM_ROW{.param = VEK_CMD_PARAM_FLASH_DEVICE_MBR_PARTITION_FIXED_E_ADDR, .description = "The end address of the entry cannot be changed."},
    PARAM_ROW{.param = VEK_CMD_PARAM_FLASH_DEVICE_MBR_PARTITION_SIZE, .description = "Size of the entry in bytes, 0 when its content decides."},
    PARAM_ROW{.param = VEK_CMD_PARAM_FLASH_DEVICE_MBR_PARTITION_EXTRA_SPACE, .description = "Bytes kept free behind the content of the entry."},
};
// clang-format on

#endif
