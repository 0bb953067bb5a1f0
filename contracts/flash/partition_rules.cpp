#include "partition_rules.h"

#include "boot_tables.h"
#include "msg_internal_error.h"
#include "partition_layout.h"
#include "pgm_device.h"

#include <algorithm>
#include <iterator>

namespace
{

constexpr const char* AT_AUTO = AUTO_ADDRESS;

// clang-format off
constexpr PARTITION_RULE RULES[] = {
    // name          scope                          content                        place                  start         end           fixed start, end  page   editable
    {"BOOT_INFO",    PARTITION_SCOPE_BOOT_LAYOUT,   PARTITION_CONTENT_BOOT_INFO,   PARTITION_PLACE_GIVEN, "0x00000000", "0x001FFFFF", true,  true,      false, true},
    {"FACTORY_IMAGE",PARTITION_SCOPE_BOOT_LAYOUT,   PARTITION_CONTENT_INPUT,       PARTITION_PLACE_GIVEN, "0x00240000", AT_AUTO,      true,  false,     true,  true},
    {"SPT0",         PARTITION_SCOPE_BOOT_LAYOUT,   PARTITION_CONTENT_PARTITIONS,  PARTITION_PLACE_GIVEN, "0x00200000", "0x0020FFFF", true,  true,      false, false},
    {"SPT1",         PARTITION_SCOPE_BOOT_LAYOUT,   PARTITION_CONTENT_PARTITIONS,  PARTITION_PLACE_GIVEN, "0x00210000", "0x0021FFFF", true,  true,      false, false},
    {"CPB0",         PARTITION_SCOPE_BOOT_LAYOUT,   PARTITION_CONTENT_POINTERS,    PARTITION_PLACE_GIVEN, "0x00220000", "0x0022FFFF", true,  true,      false, false},
    {"CPB1",         PARTITION_SCOPE_BOOT_LAYOUT,   PARTITION_CONTENT_POINTERS,    PARTITION_PLACE_GIVEN, "0x00230000", "0x0023FFFF", true,  true,      false, false},
    {"PUF",          PARTITION_SCOPE_PUF,           PARTITION_CONTENT_INPUT,       PARTITION_PLACE_GIVEN, AT_AUTO,      AT_AUTO,      false, false,     false, true},
    {"OPTIONS",      PARTITION_SCOPE_PARALLEL,      PARTITION_CONTENT_PAGE_TABLE,  PARTITION_PLACE_GIVEN, "0x00000000", AT_AUTO,      false, false,     false, true},
    {"CFM0",         PARTITION_SCOPE_ONCHIP_SINGLE, PARTITION_CONTENT_INPUT,       PARTITION_PLACE_CFM0,  "",           "",           true,  true,      false, true},
    {"CFM0",         PARTITION_SCOPE_ONCHIP_DUAL,   PARTITION_CONTENT_INPUT,       PARTITION_PLACE_CFM0,  "",           "",           true,  true,      true,  true},
    {"CFM1",         PARTITION_SCOPE_ONCHIP_DUAL,   PARTITION_CONTENT_INPUT,       PARTITION_PLACE_CFM1,  "",           "",           true,  true,      true,  true},
    {"UFM",          PARTITION_SCOPE_ONCHIP,        PARTITION_CONTENT_USER_FLASH,  PARTITION_PLACE_UFM,   "",           "",           true,  true,      false, true},
};
// clang-format on

bool is_active_serial(PGMIO_CONFIG_SCHEME mode)
{
    return mode == PGMIO_CONFIG_SCHEME_AS || mode == PGMIO_CONFIG_SCHEME_AS_X4;
}

bool reads_parallel_flash(PGMIO_CONFIG_SCHEME mode)
{
    constexpr PGMIO_CONFIG_SCHEME MODES[] = {PGMIO_CONFIG_SCHEME_PS, PGMIO_CONFIG_SCHEME_FPP,
                                             PGMIO_CONFIG_SCHEME_LNKS_X8, PGMIO_CONFIG_SCHEME_LNKS_X16,
                                             PGMIO_CONFIG_SCHEME_LNKS_X32};
    return std::find(std::begin(MODES), std::end(MODES), mode) != std::end(MODES);
}

bool is_onchip(PGMIO_CONFIG_SCHEME mode, DEV_FAMILY_ENUM family)
{
    return family == DEV_FAMILY_ONCHIP_FLASH && mode >= PGMIO_CONFIG_SCHEME_INTERNAL &&
           mode <= PGMIO_CONFIG_SCHEME_DUAL_COMPRESSED_IMAGES;
}

bool in_scope(PARTITION_SCOPE scope, PGMIO_CONFIG_SCHEME mode, DEV_FAMILY_ENUM family)
{
    switch (scope) {
    case PARTITION_SCOPE_BOOT_LAYOUT:
    case PARTITION_SCOPE_PUF:
        return dev_family_is_secure(family) && is_active_serial(mode);
    case PARTITION_SCOPE_PARALLEL:
        return family != DEV_FAMILY_ONCHIP_FLASH && reads_parallel_flash(mode);
    case PARTITION_SCOPE_ONCHIP:
        return is_onchip(mode, family);
    case PARTITION_SCOPE_ONCHIP_SINGLE:
        return is_onchip(mode, family) && mode != PGMIO_CONFIG_SCHEME_DUAL_COMPRESSED_IMAGES;
    case PARTITION_SCOPE_ONCHIP_DUAL:
        return is_onchip(mode, family) && mode == PGMIO_CONFIG_SCHEME_DUAL_COMPRESSED_IMAGES;
    }
    VEK_ASSERT_TEXT(false, "scope <= PARTITION_SCOPE_ONCHIP_DUAL");
    return false;
}

/// False when the device has no such sector.
bool find_place(const PARTITION_RULE& rule, const PGM_DEVICE* device, std::string& start, std::string& end)
{
    DEV_FLASH_SECTOR sector;
    switch (rule.place) {
    case PARTITION_PLACE_GIVEN:
        start = rule.start;
        end = rule.end;
        return true;
    case PARTITION_PLACE_CFM0:
        sector = device != nullptr ? device->cfm0 : DEV_FLASH_SECTOR{};
        break;
    case PARTITION_PLACE_CFM1:
        sector = device != nullptr ? device->cfm1 : DEV_FLASH_SECTOR{};
        break;
    case PARTITION_PLACE_UFM:
        sector = device != nullptr ? device->ufm : DEV_FLASH_SECTOR{};
        break;
    }
    if (sector.size == 0) {
        return false;
    }
    start = format_address(sector.start);
    end = format_address(std::uint64_t{sector.start} + sector.size - 1);
    return true;
}

} // namespace

std::span<const PARTITION_RULE> partition_rule_table()
{
    return RULES;
}

const PARTITION_RULE* find_partition_rule(const std::string& name, PGMIO_CONFIG_SCHEME mode,
                                          DEV_FAMILY_ENUM family)
{
    const auto found = std::find_if(std::begin(RULES), std::end(RULES), [&](const PARTITION_RULE& rule) {
        return rule.name == name && in_scope(rule.scope, mode, family);
    });
    return found == std::end(RULES) ? nullptr : found;
}

bool partition_rule_has_page(const std::string& name, PGMIO_CONFIG_SCHEME mode, DEV_FAMILY_ENUM family)
{
    const PARTITION_RULE* rule = find_partition_rule(name, mode, family);
    return rule == nullptr || rule->has_page;
}

bool partition_rule_is_editable(const std::string& name, PGMIO_CONFIG_SCHEME mode, DEV_FAMILY_ENUM family)
{
    const PARTITION_RULE* rule = find_partition_rule(name, mode, family);
    return rule == nullptr || rule->is_editable;
}

bool partition_rule_is_removable(const std::string& name, PGMIO_CONFIG_SCHEME mode, DEV_FAMILY_ENUM family)
{
    return find_partition_rule(name, mode, family) == nullptr;
}

std::vector<VEK_UTIL_PARTITION_INFO> reserved_partitions(PGMIO_CONFIG_SCHEME mode, DEV_FAMILY_ENUM family,
                                                         DEV_DEVICE_ENUM device, bool boot_layout,
                                                         bool has_puf)
{
    const PGM_DEVICE* record = PGM_DEVICE_INDEX::find_by_enum(device);
    std::vector<VEK_UTIL_PARTITION_INFO> partitions;
    for (const PARTITION_RULE& rule : RULES) {
        const bool wanted = rule.scope == PARTITION_SCOPE_BOOT_LAYOUT ? boot_layout
                            : rule.scope == PARTITION_SCOPE_PUF       ? has_puf
                                                                      : true;
        VEK_UTIL_PARTITION_INFO info;
        if (!wanted || !in_scope(rule.scope, mode, family) ||
            !find_place(rule, record, info.start, info.end)) {
            continue;
        }
        info.name = rule.name;
        info.fixed_start = rule.fixed_start;
        info.fixed_end = rule.fixed_end;
        info.has_page = rule.has_page;
        info.page = rule.place == PARTITION_PLACE_CFM1 ? 1 : 0;
        partitions.push_back(info);
    }
    return partitions;
}
