#include "fpga_table.h"
#include "pgm_device.h"

#include <gtest/gtest.h>

#include <map>
#include <set>

namespace
{

std::vector<const PGM_DEVICE*> fpgas()
{
    std::vector<const PGM_DEVICE*> devices = PGM_DEVICE_INDEX::get_device_list();
    std::erase_if(devices, [](const PGM_DEVICE* device) { return device->device_class != DEV_CLASS_FPGA; });
    return devices;
}

TEST(fpga_table, every_family_has_at_least_three_devices)
{
    std::map<unsigned, unsigned> count;
    for (const PGM_DEVICE* device : fpgas()) {
        ++count[device->family];
    }
    for (const unsigned family : {5U, 12U, 16U, 23U, 28U, 33U, 47U, 48U, 71U}) {
        EXPECT_GE(count[family], 3U) << family;
    }
    EXPECT_EQ(count.size(), 9U);
}

TEST(fpga_table, names_codes_numbers_and_idcodes_are_unique)
{
    std::set<std::string> names;
    std::set<std::string> codes;
    std::set<std::uint32_t> numbers;
    std::set<std::uint32_t> idcodes;
    for (const PGM_DEVICE* device : fpgas()) {
        EXPECT_TRUE(names.insert(device->name).second) << device->name;
        EXPECT_TRUE(codes.insert(device->code).second) << device->name;
        EXPECT_TRUE(numbers.insert(device->device).second) << device->name;
        EXPECT_TRUE(idcodes.insert(device->idcode).second) << device->name;
        EXPECT_FALSE(device->code.empty()) << device->name;
        EXPECT_NE(device->device, DEV_DEVICE_NONE) << device->name;
        EXPECT_LT(device->device, 400U) << device->name;
    }
}

TEST(fpga_table, an_idcode_is_one_of_ieee_1149_1)
{
    for (const PGM_DEVICE* device : fpgas()) {
        EXPECT_EQ(device->idcode & 1U, 1U) << device->name;
        EXPECT_NE(device->idcode >> 1 & 0x7FU, 0x7FU) << device->name;
        EXPECT_GE(device->instruction_length, 2U) << device->name;
    }
}

TEST(fpga_table, one_device_takes_a_single_bitstream)
{
    unsigned count = 0;
    for (const PGM_DEVICE* device : fpgas()) {
        if (device->code == "kv3") {
            EXPECT_EQ(device->family, DEV_FAMILY_FELDSPAR);
            ++count;
        }
    }
    EXPECT_EQ(count, 1U);
}

TEST(fpga_table, a_device_has_a_key_exactly_when_its_family_encrypts)
{
    for (const PGM_DEVICE* device : fpgas()) {
        const std::uint32_t traits = find_family_row(device->family)->traits;
        const bool encrypts = (traits & (TRAIT_ENCRYPTION | TRAIT_SIGNING)) != 0;
        EXPECT_EQ(device->key_bits, encrypts ? 256U : 0U) << device->name;
    }
}

TEST(fpga_table, the_on_chip_sectors_follow_each_other_and_hold_a_plain_image)
{
    for (const PGM_DEVICE* device : fpgas()) {
        if (device->family != DEV_FAMILY_ONCHIP_FLASH) {
            EXPECT_EQ(device->flash_bytes, 0U) << device->name;
            continue;
        }
        EXPECT_EQ(device->ufm.start, 0U) << device->name;
        EXPECT_EQ(device->cfm0.start, device->ufm.start + device->ufm.size) << device->name;
        // Room for the packets around the configuration data.
        const std::uint32_t image = device->periphery_bytes + device->core_bytes;
        EXPECT_GE(device->cfm0.size, image + image / 64 + 4096) << device->name;
        std::uint32_t end = device->cfm0.start + device->cfm0.size;
        if (device->cfm1.size != 0) {
            EXPECT_EQ(device->cfm1.start, end) << device->name;
            EXPECT_EQ(device->cfm1.size, device->cfm0.size) << device->name;
            end += device->cfm1.size;
        } else {
            EXPECT_NE(device->missing_modes & NO_DUAL_IMAGE, 0U) << device->name;
        }
        EXPECT_EQ(device->flash_bytes, end) << device->name;
        for (const DEV_FLASH_SECTOR& sector : {device->ufm, device->cfm0, device->cfm1}) {
            EXPECT_EQ(sector.start % device->sector_bytes, 0U) << device->name;
            EXPECT_EQ(sector.size % device->sector_bytes, 0U) << device->name;
        }
    }
}

TEST(fpga_table, configuration_data_has_a_plausible_size)
{
    for (const PGM_DEVICE* device : fpgas()) {
        EXPECT_GT(device->periphery_bytes, 4096U) << device->name;
        EXPECT_GT(device->core_bytes, device->periphery_bytes) << device->name;
        EXPECT_LT(device->core_bytes, 128U * 1024 * 1024) << device->name;
    }
}

TEST(fpga_table, a_device_lacks_only_modes_that_its_family_has)
{
    for (const PGM_DEVICE* device : fpgas()) {
        EXPECT_EQ(device->missing_modes & ~find_family_row(device->family)->modes, 0U) << device->name;
    }
}

} // namespace
