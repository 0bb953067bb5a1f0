#include "boot_tables.h"

#include "byte_source.h"
#include "msg_internal_error.h"

#include <algorithm>

namespace
{

constexpr std::size_t CRC_SIZE = 4;
constexpr std::size_t SUB_PARTITION_HEADER_SIZE = 16;
constexpr std::size_t SUB_PARTITION_ENTRY_SIZE = 64;

class TABLE_WRITER
{
public:
    explicit TABLE_WRITER(const char (&magic)[5]) : m_bytes(magic, magic + 4) { number(BOOT_TABLE_VERSION); }

    template <typename NUMBER>
    void number(NUMBER value)
    {
        for (std::size_t i = 0; i < sizeof value; ++i) {
            m_bytes.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
        }
    }

    void text(const std::string& value, std::size_t field_size)
    {
        const std::size_t end = m_bytes.size() + field_size;
        m_bytes.insert(m_bytes.end(), value.begin(), value.end());
        m_bytes.resize(end, 0);
    }

    void fill_to(std::size_t size) { m_bytes.resize(size, 0xFF); }

    std::vector<std::uint8_t> finish()
    {
        number(crc32(m_bytes));
        return std::move(m_bytes);
    }

private:
    std::vector<std::uint8_t> m_bytes;
};

} // namespace

std::vector<std::uint8_t> build_options_table(const std::vector<PAGE_ENTRY>& pages)
{
    PAGE_ENTRY slots[OPTIONS_PAGE_COUNT];
    std::fill(std::begin(slots), std::end(slots), PAGE_ENTRY{0, 0xFFFFFFFF, 0xFFFFFFFF});
    for (const PAGE_ENTRY& page : pages) {
        VEK_ASSERT(page.page < OPTIONS_PAGE_COUNT);
        slots[page.page] = page;
    }
    TABLE_WRITER table("IWOP");
    table.number(static_cast<std::uint16_t>(OPTIONS_PAGE_COUNT));
    for (const PAGE_ENTRY& slot : slots) {
        table.number(slot.start);
        table.number(slot.length);
    }
    return table.finish();
}

std::size_t sub_partition_table_size(std::size_t count)
{
    return SUB_PARTITION_HEADER_SIZE + count * SUB_PARTITION_ENTRY_SIZE + CRC_SIZE;
}

std::vector<std::uint8_t> build_sub_partition_table(const std::vector<SUB_PARTITION_ENTRY>& entries)
{
    TABLE_WRITER table("IWSP");
    table.number(static_cast<std::uint16_t>(SUB_PARTITION_ENTRY_SIZE));
    table.number(static_cast<std::uint32_t>(entries.size()));
    table.number(static_cast<std::uint32_t>(sub_partition_table_size(entries.size())));
    for (const SUB_PARTITION_ENTRY& entry : entries) {
        VEK_ASSERT(entry.name.size() <= SUB_PARTITION_NAME_SIZE);
        table.text(entry.name, SUB_PARTITION_NAME_SIZE + 1);
        table.number(entry.start);
        table.number(entry.block_size);
        table.number(entry.content_length);
        table.number(entry.content_crc);
        table.number(entry.flags);
    }
    return table.finish();
}

std::vector<std::uint8_t> build_pointer_block(const std::vector<std::uint64_t>& images)
{
    VEK_ASSERT(images.size() <= POINTER_SLOT_COUNT);
    TABLE_WRITER table("IWCP");
    table.number(static_cast<std::uint16_t>(POINTER_SLOT_COUNT));
    table.number(static_cast<std::uint32_t>(images.size()));
    table.number(static_cast<std::uint32_t>(POINTER_BLOCK_SIZE));
    for (const std::uint64_t image : images) {
        table.number(image);
    }
    table.fill_to(POINTER_BLOCK_SIZE - CRC_SIZE);
    return table.finish();
}

std::vector<std::uint8_t> build_boot_info_header(const BOOT_INFO_HEADER& header)
{
    TABLE_WRITER table("IWBI");
    table.number(static_cast<std::uint16_t>(BOOT_INFO_HEADER_SIZE));
    table.number(header.idcode);
    table.number(header.firmware_length);
    table.number(header.firmware_crc);
    table.fill_to(24);
    table.number(header.factory_image);
    for (const std::uint64_t address : header.sub_partition_tables) {
        table.number(address);
    }
    for (const std::uint64_t address : header.pointer_blocks) {
        table.number(address);
    }
    table.fill_to(BOOT_INFO_HEADER_SIZE - CRC_SIZE);
    return table.finish();
}
