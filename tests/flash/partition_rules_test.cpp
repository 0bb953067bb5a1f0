#include "boot_tables.h"
#include "partition_layout.h"
#include "partition_rules.h"
#include "pgm_device.h"

#include <algorithm>
#include <set>

namespace
{

constexpr DEV_FAMILY_ENUM FAMILIES[] = {DEV_FAMILY_BASALT,        DEV_FAMILY_ASC_SERIAL, DEV_FAMILY_CALCITE,
                                        DEV_FAMILY_DOLOMITE,      DEV_FAMILY_FELDSPAR,   DEV_FAMILY_SERIAL_A,
                                        DEV_FAMILY_SERIAL_B,      DEV_FAMILY_HEMATITE,   DEV_FAMILY_GRANITE,
                                        DEV_FAMILY_CFI_FLASH,     DEV_FAMILY_ONYX,       DEV_FAMILY_ZIRCON,
                                        DEV_FAMILY_SPECIAL_FLASH, DEV_FAMILY_GYPSUM,     DEV_FAMILY_NONE};

constexpr const char* NAMES[] = {"BOOT_INFO", "FACTORY_IMAGE", "SPT0", "SPT1", "CPB0", "CPB1",
                                 "PUF",       "OPTIONS",       "CFM0", "CFM1", "UFM",  "P1",
                                 "UFM2",      "SPT2",          "cfm0", ""};

bool is_active_serial(unsigned mode)
{
    return mode == 7 || mode == 13;
}

/// Which rule a name falls under, told here a second time as the user's manual has it.
enum class KIND { OWN, TABLE, INPUT, PAGED_INPUT };

KIND expected_kind(const std::string& name, unsigned mode, DEV_FAMILY_ENUM family)
{
    const bool secure = family == 23 || family == 28 || family == 48;
    const bool onchip = family == 71 && mode >= 14 && mode <= 19;
    const bool parallel = family != 71 && (mode == 0 || mode == 6 || (mode >= 20 && mode <= 22));
    if (secure && is_active_serial(mode)) {
        if (name == "SPT0" || name == "SPT1" || name == "CPB0" || name == "CPB1") {
            return KIND::TABLE;
        }
        if (name == "BOOT_INFO" || name == "PUF") {
            return KIND::INPUT;
        }
        if (name == "FACTORY_IMAGE") {
            return KIND::PAGED_INPUT;
        }
    }
    if (parallel && name == "OPTIONS") {
        return KIND::INPUT;
    }
    if (onchip) {
        if (name == "UFM") {
            return KIND::INPUT;
        }
        if (name == "CFM0") {
            return mode == 19 ? KIND::PAGED_INPUT : KIND::INPUT;
        }
        if (name == "CFM1" && mode == 19) {
            return KIND::PAGED_INPUT;
        }
    }
    return KIND::OWN;
}

std::vector<std::string> names(const std::vector<VEK_UTIL_PARTITION_INFO>& partitions)
{
    std::vector<std::string> result;
    for (const VEK_UTIL_PARTITION_INFO& partition : partitions) {
        result.push_back(partition.name);
    }
    return result;
}

const PGM_DEVICE* onchip_device()
{
    for (const PGM_DEVICE* device : PGM_DEVICE_INDEX::get_device_list()) {
        if (device->family == DEV_FAMILY_ONCHIP_FLASH && device->cfm1.size != 0 && device->ufm.size != 0) {
            return device;
        }
    }
    return nullptr;
}

using testing::ElementsAre;
using testing::IsEmpty;

} // namespace

TEST(partition_rules, every_name_in_every_family_and_mode_follows_its_rule)
{
    std::size_t reserved = 0;
    for (const DEV_FAMILY_ENUM family : FAMILIES) {
        for (unsigned number = 0; number <= 25; ++number) {
            const auto mode = static_cast<PGMIO_CONFIG_SCHEME>(number);
            for (const std::string name : NAMES) {
                SCOPED_TRACE(name + " in mode " + std::to_string(number) + " of family " +
                             std::to_string(family));
                const KIND kind = expected_kind(name, number, family);
                EXPECT_EQ(partition_rule_is_removable(name, mode, family), kind == KIND::OWN);
                EXPECT_EQ(partition_rule_is_editable(name, mode, family), kind != KIND::TABLE);
                EXPECT_EQ(partition_rule_has_page(name, mode, family),
                          kind == KIND::OWN || kind == KIND::PAGED_INPUT);
                EXPECT_EQ(find_partition_rule(name, mode, family) == nullptr, kind == KIND::OWN);
                reserved += kind != KIND::OWN ? 1 : 0;
            }
        }
    }
    EXPECT_EQ(reserved, 3U * 2 * 7 + 14U * 5 + 5U * 2 + 3U);
}

TEST(partition_rules, the_boot_layout_comes_with_the_first_flag_and_the_puf_with_the_second)
{
    for (const DEV_FAMILY_ENUM family : DEV_FAMILY_SECURE_GROUP) {
        for (const PGMIO_CONFIG_SCHEME mode : {PGMIO_CONFIG_SCHEME_AS, PGMIO_CONFIG_SCHEME_AS_X4}) {
            EXPECT_THAT(names(reserved_partitions(mode, family, DEV_DEVICE_NONE, false, false)), IsEmpty());
            EXPECT_THAT(names(reserved_partitions(mode, family, DEV_DEVICE_NONE, true, false)),
                        ElementsAre("BOOT_INFO", "FACTORY_IMAGE", "SPT0", "SPT1", "CPB0", "CPB1"));
            EXPECT_THAT(names(reserved_partitions(mode, family, DEV_DEVICE_NONE, false, true)),
                        ElementsAre("PUF"));
            EXPECT_THAT(names(reserved_partitions(mode, family, DEV_DEVICE_NONE, true, true)),
                        ElementsAre("BOOT_INFO", "FACTORY_IMAGE", "SPT0", "SPT1", "CPB0", "CPB1", "PUF"));
        }
    }
    EXPECT_THAT(reserved_partitions(PGMIO_CONFIG_SCHEME_AS, DEV_FAMILY_BASALT, DEV_DEVICE_NONE, true, true),
                IsEmpty());
}

TEST(partition_rules, the_boot_layout_stands_at_fixed_addresses_except_for_the_end_of_the_factory_image)
{
    const auto partitions =
        reserved_partitions(PGMIO_CONFIG_SCHEME_AS_X4, DEV_FAMILY_ZIRCON, DEV_DEVICE_NONE, true, true);
    ASSERT_EQ(partitions.size(), 7U);
    for (std::size_t i = 0; i < 6; ++i) {
        const bool factory = partitions[i].name == "FACTORY_IMAGE";
        EXPECT_TRUE(partitions[i].fixed_start);
        EXPECT_EQ(partitions[i].fixed_end, !factory);
        EXPECT_EQ(partitions[i].has_page, factory);
        EXPECT_EQ(partitions[i].page, 0U);
    }
    EXPECT_EQ(partitions[0].start, "0x00000000");
    EXPECT_EQ(partitions[0].end, "0x001FFFFF");
    EXPECT_EQ(partitions[1].start, "0x00240000");
    EXPECT_EQ(partitions[1].end, "auto");
    EXPECT_EQ(partitions[6].start, "auto");
    EXPECT_EQ(partitions[6].end, "auto");
    EXPECT_FALSE(partitions[6].fixed_start || partitions[6].fixed_end);
}

TEST(partition_rules, the_reserved_partitions_can_be_placed)
{
    std::vector<PARTITION_REQUEST> requests;
    for (const VEK_UTIL_PARTITION_INFO& info :
         reserved_partitions(PGMIO_CONFIG_SCHEME_AS, DEV_FAMILY_ZIRCON, DEV_DEVICE_NONE, true, true)) {
        PARTITION_REQUEST request;
        request.name = info.name;
        request.start = info.start;
        request.end = info.end;
        requests.push_back(request);
    }
    std::vector<PLACED_PARTITION> placed;
    std::vector<LAYOUT_PROBLEM> problems;
    EXPECT_TRUE(place_partitions(requests, 16 << 20, 64 << 10, placed, problems));
    EXPECT_TRUE(problems.empty());
}

TEST(partition_rules, parallel_flash_brings_an_options_partition_that_may_be_moved)
{
    for (const PGMIO_CONFIG_SCHEME mode : {PGMIO_CONFIG_SCHEME_PS, PGMIO_CONFIG_SCHEME_FPP,
                                           PGMIO_CONFIG_SCHEME_LNKS_X8, PGMIO_CONFIG_SCHEME_LNKS_X32}) {
        const auto partitions = reserved_partitions(mode, DEV_FAMILY_CALCITE, DEV_DEVICE_NONE, true, true);
        ASSERT_EQ(partitions.size(), 1U);
        EXPECT_EQ(partitions[0].name, "OPTIONS");
        EXPECT_EQ(partitions[0].start, "0x00000000");
        EXPECT_EQ(partitions[0].end, "auto");
        EXPECT_FALSE(partitions[0].fixed_start);
        EXPECT_FALSE(partitions[0].has_page);
    }
}

TEST(partition_rules, on_chip_flash_brings_its_sectors_at_the_addresses_of_the_device)
{
    const PGM_DEVICE* device = onchip_device();
    ASSERT_NE(device, nullptr);
    const auto single =
        reserved_partitions(PGMIO_CONFIG_SCHEME_SINGLE_IMAGE, DEV_FAMILY_GYPSUM, device->device, true, true);
    EXPECT_THAT(names(single), ElementsAre("CFM0", "UFM"));
    const auto dual = reserved_partitions(PGMIO_CONFIG_SCHEME_DUAL_COMPRESSED_IMAGES, DEV_FAMILY_GYPSUM,
                                          device->device, false, false);
    EXPECT_THAT(names(dual), ElementsAre("CFM0", "CFM1", "UFM"));
    EXPECT_EQ(dual[1].start, format_address(device->cfm1.start));
    EXPECT_EQ(dual[1].end, format_address(device->cfm1.start + device->cfm1.size - 1));
    EXPECT_EQ(dual[2].start, format_address(device->ufm.start));
    EXPECT_FALSE(single[0].has_page);
    EXPECT_TRUE(dual[0].has_page);
    EXPECT_EQ(dual[0].page, 0U);
    EXPECT_EQ(dual[1].page, 1U);
    for (const VEK_UTIL_PARTITION_INFO& partition : dual) {
        EXPECT_TRUE(partition.fixed_start && partition.fixed_end);
    }
    EXPECT_THAT(reserved_partitions(PGMIO_CONFIG_SCHEME_SINGLE_IMAGE, DEV_FAMILY_GYPSUM, DEV_DEVICE_NONE,
                                    false, false),
                IsEmpty());
}

TEST(partition_rules, the_rows_are_sound)
{
    for (const PARTITION_RULE& rule : partition_rule_table()) {
        SCOPED_TRACE(rule.name);
        const bool generated =
            rule.content == PARTITION_CONTENT_PARTITIONS || rule.content == PARTITION_CONTENT_POINTERS;
        EXPECT_EQ(rule.is_editable, !generated);
        EXPECT_LE(std::string(rule.name).size(), SUB_PARTITION_NAME_SIZE);
        if (rule.place == PARTITION_PLACE_GIVEN) {
            std::uint64_t address = 0;
            EXPECT_TRUE(rule.start == std::string(AUTO_ADDRESS) || parse_address(rule.start, address));
            EXPECT_TRUE(rule.end == std::string(AUTO_ADDRESS) || parse_address(rule.end, address));
            EXPECT_FALSE(rule.fixed_start && rule.start == std::string(AUTO_ADDRESS));
            EXPECT_FALSE(rule.fixed_end && rule.end == std::string(AUTO_ADDRESS));
        }
    }
}
