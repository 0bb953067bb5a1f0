#include "flash_plan.h"

#include <algorithm>

namespace
{

/// Fills the image of one plan.
class CONTENT_BUILDER
{
public:
    CONTENT_BUILDER(const FLASH_PLAN& plan, FLASH_CONTENT& content) : m_plan(plan), m_content(content)
    {
        for (const PARTITION_PLAN& partition : plan.partitions) {
            m_sorted.push_back(&partition);
        }
        std::sort(m_sorted.begin(), m_sorted.end(),
                  [](const auto* a, const auto* b) { return a->place.start < b->place.start; });
    }

    bool run(std::string& message)
    {
        m_content.image = std::make_unique<FLASH_IMAGE>(m_plan.size);
        m_content.regions.clear();
        if (!lay_inputs(message)) {
            return false;
        }
        describe_regions();
        m_content.checksums = std::make_unique<REGION_CHECKSUMS>(*m_content.image, m_content.regions);
        return lay_tables(message);
    }

private:
    bool lay_inputs(std::string& message)
    {
        for (const PARTITION_PLAN* partition : m_sorted) {
            for (const PARTITION_PLAN::PIECE& piece : partition->pieces) {
                if (!m_content.image->add(partition->place.start + piece.offset, piece.bytes, message)) {
                    return false;
                }
            }
        }
        return true;
    }

    void describe_regions()
    {
        for (const PARTITION_PLAN* partition : m_sorted) {
            IMAGE_REGION region;
            region.name = partition->element->id;
            region.start = partition->place.start;
            region.length = partition->content_size;
            region.block_end = partition->place.end;
            region.has_page = partition->page.has_value();
            region.page = partition->page.value_or(0);
            region.input = partition->input_names;
            m_content.regions.push_back(region);
        }
    }

    bool lay_tables(std::string& message)
    {
        for (const PARTITION_PLAN* partition : m_sorted) {
            std::vector<std::uint8_t> table;
            if (partition->is_generated() &&
                !(make_table(*partition, table, message) &&
                  m_content.image->add(partition->place.start,
                                       std::make_shared<MEMORY_SOURCE>(std::move(table)), message))) {
                return false;
            }
        }
        return true;
    }

    bool make_table(const PARTITION_PLAN& partition, std::vector<std::uint8_t>& table,
                    std::string& message) const
    {
        switch (partition.content()) {
        case PARTITION_CONTENT_PAGE_TABLE:
            table = make_options();
            return true;
        case PARTITION_CONTENT_PARTITIONS:
            return make_sub_partitions(table, message);
        case PARTITION_CONTENT_POINTERS:
            table = make_pointers();
            return true;
        case PARTITION_CONTENT_BOOT_INFO:
            return make_boot_info(partition, table, message);
        case PARTITION_CONTENT_INPUT:
        case PARTITION_CONTENT_USER_FLASH:
            break;
        }
        return true;
    }

    std::vector<std::uint8_t> make_options() const
    {
        std::vector<PAGE_ENTRY> pages;
        for (const PARTITION_PLAN* partition : m_sorted) {
            if (partition->page) {
                pages.push_back({*partition->page, static_cast<std::uint32_t>(partition->place.start),
                                 static_cast<std::uint32_t>(partition->content_size)});
            }
        }
        return build_options_table(pages);
    }

    bool make_sub_partitions(std::vector<std::uint8_t>& table, std::string& message) const
    {
        std::vector<SUB_PARTITION_ENTRY> entries;
        for (std::size_t i = 0; i < m_sorted.size(); ++i) {
            const PARTITION_PLAN& partition = *m_sorted[i];
            std::uint32_t crc = 0;
            if (!partition.is_generated() && !m_content.checksums->get(i, crc, message)) {
                return false;
            }
            const std::uint32_t flags = (partition.rule != nullptr ? SUB_PARTITION_RESERVED : 0U) |
                                        (partition.is_generated() ? SUB_PARTITION_GENERATED : 0U);
            entries.push_back({partition.element->id, partition.place.start,
                               partition.place.end - partition.place.start + 1, partition.content_size, crc,
                               flags});
        }
        table = build_sub_partition_table(entries);
        return true;
    }

    /// Application images by page; those without a page behind the others, by address.
    std::vector<std::uint8_t> make_pointers() const
    {
        std::vector<const PARTITION_PLAN*> images;
        std::copy_if(
            m_sorted.begin(), m_sorted.end(), std::back_inserter(images),
            [](const PARTITION_PLAN* one) { return one->bitstream != nullptr && one->rule == nullptr; });
        std::stable_sort(images.begin(), images.end(), [](const auto* a, const auto* b) {
            return a->page.value_or(~0U) < b->page.value_or(~0U);
        });
        std::vector<std::uint64_t> addresses;
        for (const PARTITION_PLAN* image : images) {
            addresses.push_back(image->place.start);
        }
        return build_pointer_block(addresses);
    }

    std::uint64_t address_of(const char* name) const
    {
        const auto found = std::find_if(m_sorted.begin(), m_sorted.end(), [name](const PARTITION_PLAN* one) {
            return one->rule != nullptr && one->element->id == name;
        });
        return found == m_sorted.end() ? UNUSED_BOOT_ADDRESS : (*found)->place.start;
    }

    bool make_boot_info(const PARTITION_PLAN& partition, std::vector<std::uint8_t>& table,
                        std::string& message) const
    {
        BOOT_INFO_HEADER header = m_plan.boot_info;
        for (const PARTITION_PLAN::PIECE& firmware : partition.pieces) {
            header.firmware_length = static_cast<std::uint32_t>(firmware.bytes->size());
            if (!crc32_of_source(*firmware.bytes, header.firmware_crc, message)) {
                return false;
            }
        }
        header.factory_image = address_of("FACTORY_IMAGE");
        header.sub_partition_tables[0] = address_of("SPT0");
        header.sub_partition_tables[1] = address_of("SPT1");
        header.pointer_blocks[0] = address_of("CPB0");
        header.pointer_blocks[1] = address_of("CPB1");
        table = build_boot_info_header(header);
        return true;
    }

    const FLASH_PLAN& m_plan;
    FLASH_CONTENT& m_content;
    std::vector<const PARTITION_PLAN*> m_sorted;
};

} // namespace

bool is_boot_data(PARTITION_CONTENT content)
{
    switch (content) {
    case PARTITION_CONTENT_PARTITIONS:
    case PARTITION_CONTENT_POINTERS:
    case PARTITION_CONTENT_BOOT_INFO:
        return true;
    case PARTITION_CONTENT_PAGE_TABLE:
    case PARTITION_CONTENT_INPUT:
    case PARTITION_CONTENT_USER_FLASH:
        break;
    }
    return false;
}

bool PARTITION_PLAN::is_generated() const
{
    switch (content()) {
    case PARTITION_CONTENT_PAGE_TABLE:
    case PARTITION_CONTENT_PARTITIONS:
    case PARTITION_CONTENT_POINTERS:
    case PARTITION_CONTENT_BOOT_INFO:
        return true;
    case PARTITION_CONTENT_INPUT:
    case PARTITION_CONTENT_USER_FLASH:
        break;
    }
    return false;
}

bool build_flash_content(const FLASH_PLAN& plan, FLASH_CONTENT& content, std::string& message)
{
    return CONTENT_BUILDER(plan, content).run(message);
}

bool build_boot_data(const FLASH_PLAN& plan, const FLASH_CONTENT& whole, FLASH_CONTENT& boot,
                     std::string& message)
{
    boot.image = std::make_unique<FLASH_IMAGE>(plan.size);
    boot.regions.clear();
    const std::shared_ptr<const BYTE_SOURCE> image(std::shared_ptr<void>(), whole.image.get());
    for (const IMAGE_REGION& region : whole.regions) {
        const auto partition =
            std::find_if(plan.partitions.begin(), plan.partitions.end(),
                         [&](const PARTITION_PLAN& one) { return one.element->id == region.name; });
        if (!is_boot_data(partition->content())) {
            continue;
        }
        boot.regions.push_back(region);
        if (!boot.image->add(region.start, std::make_shared<RANGE_SOURCE>(image, region.start, region.length),
                             message)) {
            return false;
        }
    }
    boot.checksums = std::make_unique<REGION_CHECKSUMS>(*boot.image, boot.regions);
    if (boot.regions.empty()) {
        message = "There is no boot data in the flash device.";
        return false;
    }
    return true;
}
