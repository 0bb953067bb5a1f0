#include "flash_layouts.h"

#include "check.h"
#include "flash_plan.h"
#include "pgm_device.h"
#include "stream_sizes.h"

#include <algorithm>

namespace
{

FLASH_LAYOUT_PARTITION partition_of(const PARTITION_PLAN& plan)
{
    FLASH_LAYOUT_PARTITION partition;
    partition.name = plan.element->id;
    partition.range = {plan.place.start, plan.place.end};
    partition.used = plan.content_size;
    partition.page = plan.page;
    partition.is_reserved = plan.rule != nullptr;
    partition.is_generated = plan.is_generated();
    partition.files = plan.input_names;
    for (const PARTITION_PLAN::PIECE& piece : plan.pieces) {
        if (piece.bytes->size() != 0) {
            const std::uint64_t start = plan.place.start + piece.offset;
            partition.inputs.push_back({piece.input, {start, start + piece.bytes->size() - 1}});
        }
    }
    std::sort(partition.inputs.begin(), partition.inputs.end(),
              [](const auto& a, const auto& b) { return a.range.start < b.range.start; });
    return partition;
}

std::vector<FLASH_RANGE> gaps_of(const FLASH_LAYOUT& layout)
{
    std::vector<FLASH_RANGE> gaps;
    std::uint64_t next = 0;
    for (const FLASH_LAYOUT_PARTITION& partition : layout.partitions) {
        if (partition.range.start > next) {
            gaps.push_back({next, partition.range.start - 1});
        }
        next = partition.range.end + 1;
    }
    if (next < layout.size) {
        gaps.push_back({next, layout.size - 1});
    }
    return gaps;
}

FLASH_LAYOUT layout_of(const PGM_COMMON_XML_VEK_FLASH_DEVICE& element, const FLASH_PLAN& plan)
{
    FLASH_LAYOUT layout;
    layout.id = element.id;
    layout.device = plan.device->user_name();
    layout.size = plan.size;
    layout.sector_size = plan.device->sector_bytes;
    for (const PARTITION_PLAN& partition : plan.partitions) {
        layout.partitions.push_back(partition_of(partition));
    }
    std::sort(layout.partitions.begin(), layout.partitions.end(),
              [](const auto& a, const auto& b) { return a.range.start < b.range.start; });
    layout.gaps = gaps_of(layout);
    return layout;
}

} // namespace

void find_flash_layouts(const PGM_COMMON_XML_VEK_VEK& document, std::vector<FLASH_LAYOUT>& layouts,
                        FINDINGS& findings)
{
    const SETUP_VIEW setup(document);
    check_structure(setup, findings);
    if (!findings.can_save()) {
        return;
    }
    const SETUP_FACTS facts = find_setup_facts(setup);
    for (const PGM_COMMON_XML_VEK_FLASH_DEVICE* element : setup.flash_devices().all()) {
        FLASH_PLAN plan;
        if (plan_flash(setup, facts, *element, real_stream_sizes(setup, *element), plan, findings)) {
            layouts.push_back(layout_of(*element, plan));
        }
    }
}
