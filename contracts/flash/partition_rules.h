#ifndef PARTITION_RULES_H
#define PARTITION_RULES_H

#include "dev_family_enum.h"
#include "pgmio_config_scheme.h"
#include "vek_util.h"

#include <span>
#include <string>
#include <vector>

/// What a setup must have so that its flash device brings a partition along.
enum PARTITION_SCOPE {
    PARTITION_SCOPE_BOOT_LAYOUT,   ///< secure family in active serial, two bitstreams
    PARTITION_SCOPE_PUF,           ///< secure family in active serial, PUF data
    PARTITION_SCOPE_PARALLEL,      ///< mode that reads parallel flash
    PARTITION_SCOPE_ONCHIP,        ///< on-chip flash
    PARTITION_SCOPE_ONCHIP_SINGLE, ///< the same with one image
    PARTITION_SCOPE_ONCHIP_DUAL,   ///< the same with two images
};

/// Who gives a partition its content.
enum PARTITION_CONTENT {
    PARTITION_CONTENT_INPUT,      ///< the assigned bitstream or raw files
    PARTITION_CONTENT_PAGE_TABLE, ///< generation: OPTIONS
    PARTITION_CONTENT_PARTITIONS, ///< generation: SPT
    PARTITION_CONTENT_POINTERS,   ///< generation: CPB
    PARTITION_CONTENT_BOOT_INFO,  ///< generation, with the firmware of the assigned bitstream
    PARTITION_CONTENT_USER_FLASH, ///< the raw file that the device options name
};

/// Where a partition stands on its device.
enum PARTITION_PLACE {
    PARTITION_PLACE_GIVEN, ///< at the addresses of the row
    PARTITION_PLACE_CFM0,  ///< in that sector of the on-chip flash
    PARTITION_PLACE_CFM1,
    PARTITION_PLACE_UFM,
};

/// One partition that the tool knows by name.
struct PARTITION_RULE {
    const char* name;
    PARTITION_SCOPE scope;
    PARTITION_CONTENT content;
    PARTITION_PLACE place;
    const char* start;
    const char* end;
    bool fixed_start;
    bool fixed_end;
    bool has_page;
    bool is_editable;
};

/// All of them, in the order in which a device brings them along.
std::span<const PARTITION_RULE> partition_rule_table();

/// The rule of a partition in a setup; null for a partition of the user's own. Names of a scope that the
/// family and mode do not have are the user's own.
const PARTITION_RULE* find_partition_rule(const std::string& name, PGMIO_CONFIG_SCHEME mode,
                                          DEV_FAMILY_ENUM family);

/// Whether the partition takes a page number: those of the user, and where the rule says so.
bool partition_rule_has_page(const std::string& name, PGMIO_CONFIG_SCHEME mode, DEV_FAMILY_ENUM family);

/// Whether the user may edit the partition: not when generation fills it alone.
bool partition_rule_is_editable(const std::string& name, PGMIO_CONFIG_SCHEME mode, DEV_FAMILY_ENUM family);

/// Whether the user may remove the partition: not when the device brings it along.
bool partition_rule_is_removable(const std::string& name, PGMIO_CONFIG_SCHEME mode, DEV_FAMILY_ENUM family);

/// The partitions that a flash device brings along, in the order of the table. For on-chip flash `device` is
/// the FPGA; sectors that it does not have are left out, and a device that is not in the index has none.
std::vector<VEK_UTIL_PARTITION_INFO> reserved_partitions(PGMIO_CONFIG_SCHEME mode, DEV_FAMILY_ENUM family,
                                                         DEV_DEVICE_ENUM device, bool boot_layout,
                                                         bool has_puf);

#endif
