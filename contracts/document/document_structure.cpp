#include "document_structure.h"

#include "id_register.h"

#include <string_view>
#include <unordered_set>

namespace
{

using ELEMENT = PGM_COMMON_XML_ELEMENT;
using IDS = std::unordered_set<std::string>;

class STRUCTURE_CHECK
{
public:
    explicit STRUCTURE_CHECK(const PGM_COMMON_XML_VEK_VEK& document) : m_document(document) {}

    std::vector<std::string> run()
    {
        if (m_document.settings.empty() || m_document.settings.front()->mode.empty()) {
            add("The setup has no configuration mode; select one");
        }
        collect(m_document);
        for (const auto* outputs : m_document.output_files) {
            for (const auto* output : outputs->output_file) {
                const std::string place = "The output " + output->type;
                check_links(place, "bitstream", output->bitstream_id, m_bitstreams);
                check_links(place, "flash device", output->flash_device_id, m_flash_devices);
            }
        }
        for (const auto* assignments : m_document.assignments) {
            for (const auto* assignment : assignments->assignment) {
                check_assignment(*assignment);
            }
        }
        return std::move(m_findings);
    }

private:
    void add(const std::string& finding) { m_findings.push_back(finding + "."); }

    /// Meets every element once and keeps the ids that references may name.
    void collect(const ELEMENT& element)
    {
        const PGM_COMMON_XML_ELEMENT_DESCRIPTOR& descriptor =
            *pgm_common_xml_vek_find_element(element.m_class_type);
        std::string problem;
        if (!m_register.add(descriptor, element, problem)) {
            add("The " + problem);
        }
        if (IDS* ids = ids_of(descriptor.kind)) {
            ids->insert(pgm_common_xml_read(element, descriptor.key));
        }
        for (const ELEMENT* child : element.m_childs) {
            collect(*child);
        }
    }

    IDS* ids_of(PGM_COMMON_XML_ENUM kind)
    {
        switch (static_cast<std::uint32_t>(kind)) {
        case PGM_COMMON_XML_ENUM_BITSTREAM:
            return &m_bitstreams;
        case PGM_COMMON_XML_ENUM_RAW_FILE:
            return &m_raw_files;
        case PGM_COMMON_XML_ENUM_FLASH_DEVICE:
            return &m_flash_devices;
        case PGM_COMMON_XML_ENUM_PARTITION:
            return &m_partitions;
        default:
            return nullptr;
        }
    }

    void check_assignment(const PGM_COMMON_XML_VEK_ASSIGNMENT& assignment)
    {
        const std::string place = "The assignment of the partition " + assignment.partition_id;
        if (!m_partitions.contains(assignment.partition_id)) {
            add(place +
                " names a partition that no flash device has; add the partition or remove the assignment");
        }
        check_links(place, "bitstream", assignment.bitstream_id, m_bitstreams);
        check_links(place, "raw file", assignment.raw_file_id, m_raw_files);
        if (!assignment.bitstream_id.empty() && !assignment.raw_file_id.empty()) {
            add(place + " names a bitstream and raw files; remove one kind");
        }
    }

    template <typename LINK>
    void check_links(const std::string& place, const char* what, const std::vector<LINK*>& links,
                     const IDS& ids)
    {
        std::unordered_set<std::string_view> met;
        for (const LINK* link : links) {
            if (!ids.contains(link->text)) {
                add(place + " refers to the " + what + " " + link->text +
                    ", which the setup does not have; add it or remove the reference");
            }
            if (!met.insert(link->text).second) {
                add(place + " refers to the " + what + " " + link->text + " twice; remove one");
            }
        }
    }

    const PGM_COMMON_XML_VEK_VEK& m_document;
    ID_REGISTER m_register;
    IDS m_bitstreams;
    IDS m_raw_files;
    IDS m_flash_devices;
    IDS m_partitions;
    std::vector<std::string> m_findings;
};

} // namespace

std::vector<std::string> check_document_structure(const PGM_COMMON_XML_VEK_VEK& document)
{
    return STRUCTURE_CHECK(document).run();
}
