#include "boot_tables.h"
#include "internal_error_trap.h"

#include <cstring>

namespace
{

using BYTES = std::vector<std::uint8_t>;

// The decoding here is written from docs/flash-layout.md and shares nothing with the writer.
std::uint64_t number(const BYTES& bytes, std::size_t offset, std::size_t size)
{
    std::uint64_t value = 0;
    for (std::size_t i = size; i != 0; --i) {
        value = value * 256 + bytes.at(offset + i - 1);
    }
    return value;
}

std::uint32_t plain_crc(const BYTES& bytes, std::size_t size)
{
    std::uint32_t crc = 0xFFFFFFFF;
    for (std::size_t i = 0; i < size; ++i) {
        crc ^= bytes[i];
        for (int bit = 0; bit < 8; ++bit) {
            crc = crc >> 1 ^ ((crc & 1) != 0 ? 0xEDB88320U : 0U);
        }
    }
    return ~crc;
}

void expect_head_and_crc(const BYTES& bytes, const char* mark, std::size_t size)
{
    ASSERT_EQ(bytes.size(), size);
    EXPECT_EQ(std::memcmp(bytes.data(), mark, 4), 0);
    EXPECT_EQ(number(bytes, 4, 2), 1U);
    EXPECT_EQ(number(bytes, size - 4, 4), plain_crc(bytes, size - 4));
}

} // namespace

TEST(boot_tables, the_page_table_gives_address_and_length_of_each_page)
{
    const BYTES table = build_options_table({{2, 0x40000, 1000}, {0, 0x20000, 77}});
    expect_head_and_crc(table, "IWOP", 76);
    EXPECT_EQ(number(table, 6, 2), 8U);
    EXPECT_EQ(number(table, 8, 4), 0x20000U);
    EXPECT_EQ(number(table, 12, 4), 77U);
    EXPECT_EQ(number(table, 16, 8), ~std::uint64_t{0});
    EXPECT_EQ(number(table, 24, 4), 0x40000U);
    EXPECT_EQ(number(table, 28, 4), 1000U);
    for (std::size_t page = 3; page < 8; ++page) {
        EXPECT_EQ(number(table, 8 + 8 * page, 8), ~std::uint64_t{0});
    }
}

TEST(boot_tables, a_page_outside_the_table_is_an_internal_error)
{
    EXPECT_INTERNAL_ERROR(build_options_table({{8, 0, 0}}), "page.page < OPTIONS_PAGE_COUNT");
}

TEST(boot_tables, the_sub_partition_table_lists_the_partitions)
{
    const std::string longest(31, 'N');
    const BYTES table =
        build_sub_partition_table({{"BOOT_INFO", 0, 0x200000, 0x123, 0xCAFEBABE, SUB_PARTITION_RESERVED},
                                   {longest, 0x123456789A, 0x10000, 0x10, 7, 0}});
    expect_head_and_crc(table, "IWSP", 20 + 2 * 64);
    EXPECT_EQ(table.size(), sub_partition_table_size(2));
    EXPECT_EQ(number(table, 6, 2), 64U);
    EXPECT_EQ(number(table, 8, 4), 2U);
    EXPECT_EQ(number(table, 12, 4), table.size());
    EXPECT_STREQ(reinterpret_cast<const char*>(table.data() + 16), "BOOT_INFO");
    EXPECT_EQ(number(table, 16 + 32, 8), 0U);
    EXPECT_EQ(number(table, 16 + 40, 8), 0x200000U);
    EXPECT_EQ(number(table, 16 + 48, 8), 0x123U);
    EXPECT_EQ(number(table, 16 + 56, 4), 0xCAFEBABEU);
    EXPECT_EQ(number(table, 16 + 60, 4), 1U);
    EXPECT_EQ(reinterpret_cast<const char*>(table.data() + 80), longest);
    EXPECT_EQ(number(table, 80 + 32, 8), 0x123456789AU);
    EXPECT_EQ(number(table, 80 + 60, 4), 0U);
}

TEST(boot_tables, a_name_that_does_not_fit_its_field_is_an_internal_error)
{
    EXPECT_INTERNAL_ERROR(build_sub_partition_table({{std::string(32, 'N'), 0, 0, 0, 0, 0}}),
                          "entry.name.size() <= SUB_PARTITION_NAME_SIZE");
}

TEST(boot_tables, the_pointer_block_keeps_the_order_of_the_images)
{
    const BYTES block = build_pointer_block({0x300000, 0x240000});
    expect_head_and_crc(block, "IWCP", 276);
    EXPECT_EQ(number(block, 6, 2), 32U);
    EXPECT_EQ(number(block, 8, 4), 2U);
    EXPECT_EQ(number(block, 12, 4), 276U);
    EXPECT_EQ(number(block, 16, 8), 0x300000U);
    EXPECT_EQ(number(block, 24, 8), 0x240000U);
    for (std::size_t slot = 2; slot < 32; ++slot) {
        EXPECT_EQ(number(block, 16 + 8 * slot, 8), ~std::uint64_t{0});
    }
    expect_head_and_crc(build_pointer_block(std::vector<std::uint64_t>(32, 5)), "IWCP", 276);
}

TEST(boot_tables, too_many_images_are_an_internal_error)
{
    EXPECT_INTERNAL_ERROR(build_pointer_block(std::vector<std::uint64_t>(33, 5)),
                          "images.size() <= POINTER_SLOT_COUNT");
}

TEST(boot_tables, the_boot_information_names_tables_factory_image_and_firmware)
{
    BOOT_INFO_HEADER header;
    header.idcode = 0x12345678;
    header.firmware_length = 0x1000;
    header.firmware_crc = 0xDEADBEEF;
    header.factory_image = 0x240000;
    header.sub_partition_tables[0] = 0x200000;
    header.sub_partition_tables[1] = 0x210000;
    header.pointer_blocks[0] = 0x220000;
    const BYTES head = build_boot_info_header(header);
    expect_head_and_crc(head, "IWBI", 128);
    EXPECT_EQ(number(head, 6, 2), 128U);
    EXPECT_EQ(number(head, 8, 4), 0x12345678U);
    EXPECT_EQ(number(head, 12, 4), 0x1000U);
    EXPECT_EQ(number(head, 16, 4), 0xDEADBEEFU);
    EXPECT_EQ(number(head, 20, 4), 0xFFFFFFFFU);
    EXPECT_EQ(number(head, 24, 8), 0x240000U);
    EXPECT_EQ(number(head, 32, 8), 0x200000U);
    EXPECT_EQ(number(head, 40, 8), 0x210000U);
    EXPECT_EQ(number(head, 48, 8), 0x220000U);
    EXPECT_EQ(number(head, 56, 8), UNUSED_BOOT_ADDRESS);
    for (std::size_t i = 64; i < 124; ++i) {
        EXPECT_EQ(head[i], 0xFF);
    }
}
