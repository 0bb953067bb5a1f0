#include "flash_table.h"
#include "pgm_device.h"

#include <gtest/gtest.h>

#include <bit>
#include <map>
#include <set>

namespace
{

std::vector<const PGM_DEVICE*> flash_devices()
{
    std::vector<const PGM_DEVICE*> devices = PGM_DEVICE_INDEX::get_device_list();
    std::erase_if(devices, [](const PGM_DEVICE* device) { return device->device_class == DEV_CLASS_FPGA; });
    return devices;
}

TEST(flash_table, every_family_of_flash_devices_has_some)
{
    std::map<unsigned, unsigned> count;
    for (const PGM_DEVICE* device : flash_devices()) {
        ++count[device->family];
    }
    const std::map<unsigned, unsigned> expected{{10, 6}, {25, 28}, {26, 22}, {40, 9}, {68, 4}};
    EXPECT_EQ(count, expected);
}

TEST(flash_table, sizes_are_powers_of_two_that_hold_whole_sectors_and_pages)
{
    for (const PGM_DEVICE* device : flash_devices()) {
        EXPECT_TRUE(std::has_single_bit(device->flash_bytes)) << device->name;
        EXPECT_TRUE(std::has_single_bit(device->sector_bytes)) << device->name;
        EXPECT_TRUE(std::has_single_bit(device->page_bytes)) << device->name;
        EXPECT_GE(device->flash_bytes, 128U * 1024) << device->name;
        EXPECT_LE(device->flash_bytes, 512U * 1024 * 1024) << device->name;
        EXPECT_LT(device->sector_bytes, device->flash_bytes) << device->name;
        EXPECT_LT(device->page_bytes, device->sector_bytes) << device->name;
    }
}

TEST(flash_table, the_address_width_reaches_the_whole_device)
{
    for (const PGM_DEVICE* device : flash_devices()) {
        if (device->family == DEV_FAMILY_CFI_FLASH) {
            EXPECT_EQ(std::uint64_t{2} << device->address_width, device->flash_bytes) << device->name;
        } else {
            EXPECT_EQ(device->address_width, device->flash_bytes > 16U * MIB ? 32U : 24U) << device->name;
        }
    }
}

TEST(flash_table, the_serial_parts_that_people_buy_have_distinct_identifications)
{
    std::map<std::array<std::uint8_t, 3>, std::string> names;
    for (const PGM_DEVICE* device : flash_devices()) {
        if (device->family == DEV_FAMILY_SERIAL_A || device->family == DEV_FAMILY_SERIAL_B) {
            const auto [place, is_new] = names.emplace(device->jedec_id, device->name);
            EXPECT_TRUE(is_new) << device->name << " has the identification of " << place->second;
            // A manufacturer code of JEP106 has an odd number of ones.
            EXPECT_EQ(std::popcount(device->jedec_id[0]) % 2, 1) << device->name;
        } else {
            EXPECT_EQ(device->jedec_id, (std::array<std::uint8_t, 3>{})) << device->name;
        }
    }
}

/// The capacity in bytes that the third byte of an identification stands for, by the maker's rule.
std::uint64_t capacity_of(const std::array<std::uint8_t, 3>& id)
{
    const unsigned code = id[2];
    if (id[0] == 0x1F) {
        return 8 * MIB; // the maker counts density in the second byte
    }
    if (id[0] == 0xC2 && id[1] == 0x25) {
        return std::uint64_t{1} << (code - 0x20); // 1.8 V parts add 0x20
    }
    // The code is the logarithm of the capacity, written in decimal digits from 512 Mbit on by two makers.
    if ((id[0] == 0xEF || id[0] == 0x20) && code >= 0x20) {
        return std::uint64_t{1} << (code - 0x20 + 26);
    }
    return std::uint64_t{1} << code;
}

TEST(flash_table, identifications_and_capacities_agree)
{
    for (const PGM_DEVICE* device : flash_devices()) {
        if (device->jedec_id[0] != 0) {
            EXPECT_EQ(capacity_of(device->jedec_id), device->flash_bytes) << device->name;
        }
    }
}

TEST(flash_table, known_parts_stand_as_their_data_sheets_say)
{
    struct PART {
        const char* name;
        DEV_FAMILY_ENUM family;
        std::uint64_t mebibytes;
        std::array<std::uint8_t, 3> id;
    };
    for (const PART& part : {PART{"W25Q128JV", DEV_FAMILY_SERIAL_A, 16, {0xEF, 0x40, 0x18}},
                             PART{"MX25L25645G", DEV_FAMILY_SERIAL_A, 32, {0xC2, 0x20, 0x19}},
                             PART{"MT25QL512", DEV_FAMILY_SERIAL_A, 64, {0x20, 0xBA, 0x20}},
                             PART{"IS25LP128", DEV_FAMILY_SERIAL_A, 16, {0x9D, 0x60, 0x18}},
                             PART{"GD25Q127C", DEV_FAMILY_SERIAL_A, 16, {0xC8, 0x40, 0x18}},
                             PART{"MX25U51245G", DEV_FAMILY_SERIAL_B, 64, {0xC2, 0x25, 0x3A}},
                             PART{"MT25QU01G", DEV_FAMILY_SERIAL_B, 128, {0x20, 0xBB, 0x21}},
                             PART{"W25Q256JW", DEV_FAMILY_SERIAL_B, 32, {0xEF, 0x60, 0x19}}}) {
        const PGM_DEVICE* device = PGM_DEVICE_INDEX::find_by_name(part.name);
        ASSERT_NE(device, nullptr) << part.name;
        EXPECT_EQ(device->family, part.family) << part.name;
        EXPECT_EQ(device->flash_bytes, part.mebibytes * MIB) << part.name;
        EXPECT_EQ(device->jedec_id, part.id) << part.name;
        EXPECT_EQ(device->device_class, DEV_CLASS_CONFIG_FLASH) << part.name;
    }
}

TEST(flash_table, the_name_of_a_parallel_device_gives_its_size_in_bits)
{
    std::uint64_t megabits = 16;
    for (const char* name : {"CFI_16MB", "CFI_32MB", "CFI_64MB", "CFI_128MB", "CFI_256MB", "CFI_512MB",
                             "CFI_1GB", "CFI_2GB", "CFI_4GB"}) {
        const PGM_DEVICE* device = PGM_DEVICE_INDEX::find_by_name(name);
        ASSERT_NE(device, nullptr) << name;
        EXPECT_TRUE(device->sized_in_bits) << name;
        EXPECT_EQ(device->flash_bytes, megabits * 1024 * 1024 / 8) << name;
        EXPECT_EQ(device->family, DEV_FAMILY_CFI_FLASH) << name;
        megabits *= 2;
    }
    EXPECT_EQ(PGM_DEVICE_INDEX::find_by_name("CFI_4GB")->device, 498U);
    EXPECT_EQ(DEV_DEVICE_CFI_4G, 498U);
}

} // namespace
