#include "flash_plan.h"

#include "bitstream_file.h"
#include "fio_path.h"
#include "firmware_archive.h"
#include "input_security.h"
#include "pgm_device.h"
#include "raw_file_content.h"
#include "vek_file_assistant.h"

#include <algorithm>

namespace
{

FINDING_KIND finding_of(LAYOUT_PROBLEM_KIND kind)
{
    switch (kind) {
    case LAYOUT_PROBLEM_BAD_ADDRESS:
        return FINDING_LAYOUT_ADDRESS;
    case LAYOUT_PROBLEM_START_ABOVE_END:
        return FINDING_LAYOUT_START_ABOVE_END;
    case LAYOUT_PROBLEM_BEYOND_DEVICE:
        return FINDING_LAYOUT_BEYOND_DEVICE;
    case LAYOUT_PROBLEM_CONTENT_TOO_LARGE:
        return FINDING_LAYOUT_CONTENT;
    case LAYOUT_PROBLEM_OVERLAP:
        return FINDING_LAYOUT_OVERLAP;
    case LAYOUT_PROBLEM_NO_ROOM:
        return FINDING_LAYOUT_NO_ROOM;
    case LAYOUT_PROBLEM_SHARED_PAGE:
        return FINDING_PAGE_SHARED;
    case LAYOUT_PROBLEM_UNALIGNED:
        break;
    }
    return FINDING_LAYOUT_UNALIGNED;
}

std::uint64_t onchip_size(const PGM_DEVICE& device)
{
    std::uint64_t size = 0;
    for (const DEV_FLASH_SECTOR& sector : {device.cfm0, device.cfm1, device.ufm}) {
        size = std::max(size, std::uint64_t{sector.start} + sector.size);
    }
    return size;
}

/// Lays out one device; the findings say all that is wrong with it.
class PLANNER
{
public:
    PLANNER(const SETUP_VIEW& setup, const SETUP_FACTS& facts, const PGM_COMMON_XML_VEK_FLASH_DEVICE& element,
            const STREAM_PROVIDER& streams, FLASH_PLAN& plan, FINDINGS& findings)
        : m_setup(setup), m_facts(facts), m_element(element), m_streams(streams), m_plan(plan),
          m_findings(findings)
    {
    }

    bool run()
    {
        m_plan.device = PGM_DEVICE_INDEX::find_by_name(m_element.type);
        if (m_plan.device == nullptr) {
            return refuse(FINDING_FLASH_UNKNOWN, flash_device_label(m_element),
                          "The flash device \"" + m_element.type +
                              "\" is not in the flash database; choose a device of the database or name the "
                              "directory of your own.");
        }
        const bool onchip = m_plan.device->family == DEV_FAMILY_ONCHIP_FLASH;
        m_plan.size = onchip ? onchip_size(*m_plan.device) : m_plan.device->flash_bytes;
        for (const PGM_COMMON_XML_VEK_PARTITION* partition : m_element.partition) {
            start_partition(*partition);
        }
        for (PARTITION_PLAN& partition : m_plan.partitions) {
            fill(partition);
        }
        place(onchip ? 1 : std::max(m_plan.device->sector_bytes, 1U));
        return m_usable;
    }

private:
    bool refuse(FINDING_KIND kind, const std::string& label, const std::string& text)
    {
        m_findings.add(kind, label, text);
        m_usable = m_usable && finding_table()[kind].severity == FINDING_WARNING;
        return false;
    }

    void start_partition(const PGM_COMMON_XML_VEK_PARTITION& element)
    {
        PARTITION_PLAN partition;
        partition.element = &element;
        partition.label = flash_device_label(m_element) + " / " + element_label("PARTITION", element.id);
        partition.rule = find_partition_rule(element.id, m_facts.mode, m_facts.family);
        const PGM_COMMON_XML_VEK_ASSIGNMENT* assignment = m_setup.assignments().find(element.id);
        if (assignment != nullptr && !assignment->bitstream_id.empty()) {
            partition.pick = pick_of(*assignment->bitstream_id.front());
            partition.bitstream = m_setup.bitstreams().find(partition.pick.id);
        }
        m_plan.partitions.push_back(partition);
        read_page(m_plan.partitions.back(), assignment);
    }

    void read_page(PARTITION_PLAN& partition, const PGM_COMMON_XML_VEK_ASSIGNMENT* assignment)
    {
        std::uint64_t page = 0;
        if (partition.bitstream == nullptr || assignment == nullptr ||
            !parse_decimal(assignment->page, page) ||
            !partition_rule_has_page(partition.element->id, m_facts.mode, m_facts.family)) {
            return;
        }
        const std::size_t limit = m_has_page_table ? OPTIONS_PAGE_COUNT : POINTER_SLOT_COUNT;
        if (page >= limit) {
            refuse(FINDING_PAGE_OUT_OF_RANGE, partition.label,
                   "The page is " + std::to_string(page) + ", and the highest that there is is " +
                       std::to_string(limit - 1) + "; choose a lower one.");
        } else {
            partition.page = static_cast<unsigned>(page);
        }
    }

    bool has_page_table() const
    {
        return std::any_of(m_element.partition.begin(), m_element.partition.end(),
                           [this](const PGM_COMMON_XML_VEK_PARTITION* partition) {
                               const PARTITION_RULE* rule =
                                   find_partition_rule(partition->id, m_facts.mode, m_facts.family);
                               return rule != nullptr && rule->content == PARTITION_CONTENT_PAGE_TABLE;
                           });
    }

    void fill(PARTITION_PLAN& partition)
    {
        switch (partition.content()) {
        case PARTITION_CONTENT_INPUT:
            fill_from_input(partition);
            break;
        case PARTITION_CONTENT_PAGE_TABLE:
            fill_with_table(partition, OPTIONS_TABLE_SIZE);
            break;
        case PARTITION_CONTENT_PARTITIONS:
            fill_with_table(partition, sub_partition_table_size(m_plan.partitions.size()));
            check_names();
            break;
        case PARTITION_CONTENT_POINTERS:
            fill_with_table(partition, POINTER_BLOCK_SIZE);
            check_image_count(partition);
            break;
        case PARTITION_CONTENT_BOOT_INFO:
            fill_boot_info(partition);
            break;
        case PARTITION_CONTENT_USER_FLASH:
            fill_user_flash(partition);
            break;
        }
        for (const PARTITION_PLAN::PIECE& piece : partition.pieces) {
            partition.content_size = std::max(partition.content_size, piece.offset + piece.bytes->size());
        }
    }

    void fill_with_table(PARTITION_PLAN& partition, std::size_t size)
    {
        partition.content_size = size;
        if (m_setup.assignments().find(partition.element->id) != nullptr) {
            refuse(FINDING_OPTION_CONFLICT, partition.label,
                   "An input is assigned to this partition, which the tool fills itself; remove the "
                   "assignment.");
        }
    }

    void check_names()
    {
        if (m_names_checked) {
            return;
        }
        m_names_checked = true;
        for (const PARTITION_PLAN& partition : m_plan.partitions) {
            const std::string& name = partition.element->id;
            if (name.size() > SUB_PARTITION_NAME_SIZE) {
                refuse(FINDING_PARTITION_NAME_TOO_LONG, partition.label,
                       "The name has " + std::to_string(name.size()) +
                           " bytes, and the sub-partition table takes " +
                           std::to_string(SUB_PARTITION_NAME_SIZE) + "; choose a shorter one.");
            }
        }
    }

    void check_image_count(const PARTITION_PLAN& pointers)
    {
        const auto images =
            std::count_if(m_plan.partitions.begin(), m_plan.partitions.end(), [](const PARTITION_PLAN& one) {
                return one.bitstream != nullptr && one.rule == nullptr;
            });
        if (images > static_cast<std::ptrdiff_t>(POINTER_SLOT_COUNT)) {
            refuse(FINDING_BITSTREAMS_TOO_MANY, pointers.label,
                   "The device holds " + std::to_string(images) +
                       " application images, and this block has room for " +
                       std::to_string(POINTER_SLOT_COUNT) + "; remove some.");
        }
    }

    bool add_stream(PARTITION_PLAN& partition)
    {
        std::string message;
        const auto stream = m_streams(partition.pick, message);
        if (!stream) {
            return refuse(FINDING_INPUT_REFUSED, element_label("BITSTREAM", partition.bitstream->id),
                          message);
        }
        partition.pieces.push_back({0, stream, partition.bitstream->id});
        partition.input_names = input_names(*partition.bitstream);
        return true;
    }

    void fill_from_input(PARTITION_PLAN& partition)
    {
        if (partition.bitstream != nullptr) {
            add_stream(partition);
        } else if (!add_raw_files(partition)) {
            report_missing_input(partition);
        }
        if (partition.bitstream != nullptr && !partition.page && m_has_page_table) {
            refuse(FINDING_PAGE_MISSING, partition.label,
                   "The bitstream \"" + partition.bitstream->id +
                       "\" has no page here, so that the device cannot select it; give it a page from 0 to " +
                       std::to_string(OPTIONS_PAGE_COUNT - 1) + ".");
        }
    }

    void report_missing_input(PARTITION_PLAN& partition)
    {
        const std::string name = partition.element->id;
        if (name == "FACTORY_IMAGE" || (name == "CFM0" && partition.rule != nullptr)) {
            refuse(FINDING_PARTITION_WITHOUT_INPUT, partition.label,
                   "No bitstream is assigned to this partition, from which the device boots; assign one.");
        } else {
            refuse(FINDING_PARTITION_EMPTY, partition.label,
                   "No input is assigned, so that the partition stays erased; assign one or remove the "
                   "partition.");
        }
    }

    /// False when no raw file is assigned.
    bool add_raw_files(PARTITION_PLAN& partition)
    {
        const PGM_COMMON_XML_VEK_ASSIGNMENT* assignment = m_setup.assignments().find(partition.element->id);
        if (assignment == nullptr || assignment->raw_file_id.empty()) {
            return false;
        }
        std::uint64_t next = 0;
        for (const PGM_COMMON_XML_VEK_RAW_FILE_ID* id : assignment->raw_file_id) {
            const PGM_COMMON_XML_VEK_RAW_FILE* raw_file = m_setup.raw_files().find(id->text);
            RAW_FILE_CONTENT content;
            std::string message;
            if (raw_file == nullptr) {
                continue; // the structure check names it
            }
            if (!open_raw_file(*raw_file, content, message)) {
                refuse(FINDING_INPUT_REFUSED, element_label("RAW_FILE", id->text), message);
                continue;
            }
            add_raw_file(partition, *id, content, next);
            partition.input_names +=
                (partition.input_names.empty() ? "" : ", ") + FIO_PATH(raw_file->text).filename();
        }
        report_meeting_pieces(partition);
        return true;
    }

    void add_raw_file(PARTITION_PLAN& partition, const PGM_COMMON_XML_VEK_RAW_FILE_ID& id,
                      const RAW_FILE_CONTENT& content, std::uint64_t& next)
    {
        const std::string label = partition.label + " / " + element_label("RAW_FILE_ID", id.text);
        const bool absolute =
            VEK_FILE_ASSISTANT::convert_string_to_xml_enum(id.addr_mode) == PGM_COMMON_XML_ENUM_ABS;
        std::uint64_t offset = 0;
        if (!id.addr_offset.empty() && (!parse_address(id.addr_offset, offset) || offset > m_plan.size)) {
            refuse(FINDING_LAYOUT_ADDRESS, label,
                   "The address offset \"" + id.addr_offset +
                       "\" is no hexadecimal number within the flash device; write one such as 0x00010000.");
            return;
        }
        if (id.addr_mode.empty() && id.addr_offset.empty() && !content.has_addresses) {
            offset = next;
        } else {
            offset += content.address;
        }
        if (absolute && !make_relative(partition, label, offset)) {
            return;
        }
        partition.pieces.push_back({offset, content.bytes, id.text});
        next = offset + content.bytes->size();
    }

    /// Turns an address of the device into one of the partition.
    bool make_relative(PARTITION_PLAN& partition, const std::string& label, std::uint64_t& offset)
    {
        std::uint64_t start = 0;
        if (!parse_address(partition.element->s_addr, start)) {
            return refuse(
                FINDING_OPTION_CONFLICT, label,
                "The address mode is ABS, and the partition has no start address of its own; give the "
                "partition a start address or choose the address mode REL.");
        }
        if (offset < start) {
            return refuse(FINDING_LAYOUT_CONTENT, label,
                          "The data begins at " + format_address(offset) +
                              ", below the start of the partition at " + format_address(start) +
                              "; move the partition or correct the address offset.");
        }
        offset -= start;
        return true;
    }

    void report_meeting_pieces(const PARTITION_PLAN& partition)
    {
        std::vector<const PARTITION_PLAN::PIECE*> pieces;
        for (const PARTITION_PLAN::PIECE& piece : partition.pieces) {
            pieces.push_back(&piece);
        }
        std::stable_sort(pieces.begin(), pieces.end(),
                         [](const auto* a, const auto* b) { return a->offset < b->offset; });
        for (std::size_t i = 1; i < pieces.size(); ++i) {
            const PARTITION_PLAN::PIECE& a = *pieces[i - 1];
            const PARTITION_PLAN::PIECE& b = *pieces[i];
            if (b.offset < a.offset + a.bytes->size()) {
                refuse(FINDING_LAYOUT_OVERLAP, partition.label,
                       "The raw file \"" + b.input + "\" (" +
                           format_range(b.offset, b.offset + b.bytes->size() - 1) +
                           " from the start) overlaps \"" + a.input + "\" (" +
                           format_range(a.offset, a.offset + a.bytes->size() - 1) +
                           "); correct an address offset.");
            }
        }
    }

    /// The firmware comes from the assigned input, else from the factory image.
    void fill_boot_info(PARTITION_PLAN& partition)
    {
        std::shared_ptr<const BYTE_SOURCE> firmware;
        const PGM_COMMON_XML_VEK_BITSTREAM* bitstream = partition.bitstream;
        if (bitstream == nullptr && add_raw_files(partition)) {
            firmware = partition.pieces.size() == 1 ? partition.pieces.front().bytes : nullptr;
            partition.pieces.clear();
        } else {
            for (const PARTITION_PLAN& other : m_plan.partitions) {
                bitstream = bitstream == nullptr && other.element->id == "FACTORY_IMAGE" ? other.bitstream
                                                                                         : bitstream;
            }
            firmware = firmware_of(partition, bitstream);
            if (firmware) {
                partition.input_names = input_names(*bitstream);
            }
        }
        m_plan.boot_info.idcode = m_facts.device != nullptr ? m_facts.device->idcode : 0;
        partition.content_size = BOOT_INFO_HEADER_SIZE;
        if (firmware) {
            partition.pieces.push_back({BOOT_INFO_HEADER_SIZE, firmware, ""});
        } else {
            refuse(FINDING_FIRMWARE_MISSING, partition.label,
                   "Neither the input of this partition nor that of FACTORY_IMAGE brings firmware, so that "
                   "the boot "
                   "information has none; assign a bitstream with firmware.");
        }
    }

    /// That of the stream: co-signed firmware takes the place of the bitstream's own.
    std::shared_ptr<const BYTE_SOURCE> firmware_of(const PARTITION_PLAN& partition,
                                                   const PGM_COMMON_XML_VEK_BITSTREAM* bitstream)
    {
        if (bitstream == nullptr || bitstream->path.empty()) {
            return nullptr;
        }
        const PGM_COMMON_XML_VEK_PATH& path = *bitstream->path.front();
        std::string message;
        if (const std::string co_signed = firmware_source(path); !co_signed.empty()) {
            FIRMWARE_ARCHIVE archive;
            if (!open_firmware_archive(co_signed, true, archive, message)) {
                refuse(FINDING_FIRMWARE_ARCHIVE, partition.label, message);
            }
            return archive.firmware;
        }
        const auto file = BITSTREAM_FILE::open(absolute_path(path.text), message);
        return file ? file->section(SECTION_FIRMWARE) : nullptr;
    }

    void fill_user_flash(PARTITION_PLAN& partition)
    {
        DSET_OTI_DEV_OPTIONS_INFO options;
        VEK_FILE_ASSISTANT::get_internal_configuration_options(&m_setup.document(), options, m_element.id);
        if (options.ufm_source != 2) {
            return;
        }
        RAW_FILE_CONTENT content;
        std::string message;
        if (!open_user_flash_file(options.ufm_source_file, content, message)) {
            refuse(FINDING_INPUT_REFUSED, flash_device_label(m_element) + " / UFM_SOURCE_FILE", message);
            return;
        }
        partition.pieces.push_back({content.address, content.bytes, ""});
        partition.input_names = FIO_PATH(options.ufm_source_file).filename();
    }

    /// The setup names the file by its path; where it is one of the raw files, that tells how to read it.
    bool open_user_flash_file(const std::string& path, RAW_FILE_CONTENT& content, std::string& message) const
    {
        for (const PGM_COMMON_XML_VEK_RAW_FILE* raw_file : m_setup.raw_files().all()) {
            if (FIO_PATH(absolute_path(raw_file->text)) == FIO_PATH(absolute_path(path))) {
                return open_raw_file(*raw_file, content, message);
            }
        }
        return open_raw_file(path, content, message);
    }

    void place(std::uint64_t sector_size)
    {
        std::vector<PARTITION_REQUEST> requests;
        for (const PARTITION_PLAN& partition : m_plan.partitions) {
            PARTITION_REQUEST request;
            request.name = partition.element->id;
            request.start = partition.element->s_addr;
            request.end = partition.element->e_addr;
            request.content_size = partition.content_size;
            parse_decimal(partition.element->size, request.minimum_size);
            parse_decimal(partition.element->extra_space, request.extra_space);
            request.has_page = partition.page.has_value();
            request.page = partition.page.value_or(0);
            requests.push_back(request);
        }
        std::vector<PLACED_PARTITION> placed;
        std::vector<LAYOUT_PROBLEM> problems;
        place_partitions(requests, m_plan.size, sector_size, placed, problems);
        for (const LAYOUT_PROBLEM& problem : problems) {
            refuse(finding_of(problem.kind),
                   flash_device_label(m_element) + " / " + element_label("PARTITION", problem.partition),
                   problem.message);
        }
        for (std::size_t i = 0; i < placed.size(); ++i) {
            m_plan.partitions[i].place = placed[i];
        }
    }

    const SETUP_VIEW& m_setup;
    const SETUP_FACTS& m_facts;
    const PGM_COMMON_XML_VEK_FLASH_DEVICE& m_element;
    const STREAM_PROVIDER& m_streams;
    FLASH_PLAN& m_plan;
    FINDINGS& m_findings;
    const bool m_has_page_table = has_page_table();
    bool m_usable = true;
    bool m_names_checked = false;
};

} // namespace

bool plan_flash(const SETUP_VIEW& setup, const SETUP_FACTS& facts,
                const PGM_COMMON_XML_VEK_FLASH_DEVICE& element, const STREAM_PROVIDER& streams,
                FLASH_PLAN& plan, FINDINGS& findings)
{
    return PLANNER(setup, facts, element, streams, plan, findings).run();
}

std::string flash_device_label(const PGM_COMMON_XML_VEK_FLASH_DEVICE& element)
{
    return element_label("FLASH_DEVICE", element.id);
}
