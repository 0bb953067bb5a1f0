#ifndef CONFIG_DEVICE_H
#define CONFIG_DEVICE_H

#include "dev_family_enum.h"
#include "pgmio_config_scheme.h"

#include <map>
#include <string>
#include <vector>

/// What the flash database dialog is asked, and what it answers.
struct CONFIG_DEVICE {
    /// Of the device that configures itself from the flash; 0 when that is not known.
    DEV_FAMILY_ENUM family = static_cast<DEV_FAMILY_ENUM>(0);
    /// The flash device has to serve this mode; the illegal scheme asks for any.
    PGMIO_CONFIG_SCHEME config_mode = PGMIO_CONFIG_SCHEME_ILLEGAL;
    /// In: the device to begin with, may be empty. Out: the device chosen, empty when the user gave up.
    std::string device_name;
    /// Flash families with the modes for which each is wanted, in place of what the mode allows; empty for
    /// the families of `config_mode`.
    std::map<DEV_FAMILY_ENUM, std::vector<PGMIO_CONFIG_SCHEME>> modes_by_family;
};

#endif
