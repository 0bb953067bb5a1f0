#include "check.h"
#include "partition_layout.h"
#include "pgm_common_xml_descriptor.h"
#include "value_rules.h"
#include "vek_db.h"

#include <algorithm>
#include <string_view>
#include <unordered_set>

namespace
{

/// The attribute by which findings name an element, as its descriptor says.
std::string id_of(const PGM_COMMON_XML_ELEMENT& element, const PGM_COMMON_XML_ELEMENT_DESCRIPTOR& descriptor)
{
    return descriptor.key == PGM_COMMON_XML_NO_KEY ? "" : pgm_common_xml_read(element, descriptor.key);
}

/// Whether values of the type can be wrong by themselves. Addresses are the business of the layout.
constexpr bool is_judged_alone(PGM_XML_TYPE type)
{
    return type == PGM_XML_TYPE_DECIMAL || is_of_listed_words(type);
}

/// Empty when the value is legal, else what is wanted.
std::string wanted_value(const PGM_COMMON_XML_ATTRIBUTE_DESCRIPTOR& attribute, const std::string& value)
{
    if (value.empty()) {
        return "";
    }
    if (attribute.type == PGM_XML_TYPE_DECIMAL) {
        std::uint64_t number = 0;
        return parse_decimal(value, number) && number <= 0xFFFFFFFF ? ""
                                                                    : "a decimal number below 4294967296";
    }
    std::string normal = value;
    std::string expected;
    normalise_value(attribute, normal, expected);
    return expected;
}

class STRUCTURE_CHECK
{
public:
    STRUCTURE_CHECK(const SETUP_VIEW& setup, FINDINGS& findings) : m_setup(setup), m_findings(findings) {}

    void run()
    {
        check_mode();
        check_element(m_setup.document(), nullptr);
        check_ids("BITSTREAM", m_setup.bitstreams(), "bitstream");
        check_ids("RAW_FILE", m_setup.raw_files(), "raw file");
        check_ids("FLASH_DEVICE", m_setup.flash_devices(), "flash device");
        check_ids("PARTITION", m_setup.partitions(), "partition");
        check_input_ids();
        check_output_types();
        check_assignments();
        check_output_references();
    }

private:
    void check_mode()
    {
        const auto modes = VEK_DB_UTIL::get_enabled_config_modes();
        if (std::find(modes.begin(), modes.end(), m_setup.mode()) == modes.end()) {
            m_findings.add(FINDING_MODE_MISSING, "SETTINGS",
                           "No configuration mode is set; choose " + modes_text(modes) + ".");
        }
    }

    static std::string modes_text(const std::vector<PGMIO_CONFIG_SCHEME>& modes)
    {
        std::vector<std::string> words;
        for (const PGMIO_CONFIG_SCHEME mode : modes) {
            words.emplace_back(PGM_COMMON_XML_ENUM_STRING[VEK_DB::get_xml_enum(mode)]);
        }
        return join_words(words);
    }

    /// An element on the way down the document; its label is made only for a finding.
    struct PLACE {
        const PLACE* parent;
        const PGM_COMMON_XML_ELEMENT& element;
        const PGM_COMMON_XML_ELEMENT_DESCRIPTOR& descriptor;

        std::string label() const
        {
            const std::string own =
                element_label(PGM_COMMON_XML_ENUM_STRING[element.m_class_type], id_of(element, descriptor));
            // The root and the groups say nothing that their children do not say.
            return parent == nullptr || parent->is_group() ? own : parent->label() + " / " + own;
        }
        bool is_group() const
        {
            return descriptor.kind == PGM_COMMON_XML_ENUM_VEK ||
                   (descriptor.attributes.empty() && descriptor.text_type == PGM_XML_TYPE_NONE);
        }
    };

    void check_element(const PGM_COMMON_XML_ELEMENT& element, const PLACE* parent)
    {
        const PGM_COMMON_XML_ELEMENT_DESCRIPTOR* descriptor =
            pgm_common_xml_vek_find_element(element.m_class_type);
        if (descriptor == nullptr) {
            return;
        }
        const PLACE place{parent, element, *descriptor};
        int index = -1;
        for (const PGM_COMMON_XML_ATTRIBUTE_DESCRIPTOR& attribute : descriptor->attributes) {
            ++index;
            if (!is_judged_alone(attribute.type)) {
                continue;
            }
            const std::string& value = pgm_common_xml_read(element, index);
            const std::string wanted = wanted_value(attribute, value);
            if (!wanted.empty()) {
                m_findings.add(FINDING_VALUE_ILLEGAL, place.label(),
                               "The attribute \"" + std::string(attribute.name) + "\" is \"" + value +
                                   "\"; it must be " + wanted + ".");
            }
        }
        for (const PGM_COMMON_XML_ELEMENT* child : element.m_childs) {
            check_element(*child, &place);
        }
    }

    template <class ELEMENT>
    void check_ids(const char* name, const ELEMENT_INDEX<ELEMENT>& elements, const char* words)
    {
        for (const ELEMENT* element : elements.all()) {
            if (element->id.empty()) {
                m_findings.add(FINDING_ID_MISSING, name,
                               "A " + std::string(words) + " has no id; give it one.");
            } else if (elements.find(element->id) != element) {
                m_findings.add(FINDING_ID_DUPLICATE, element_label(name, element->id),
                               "Two elements have this id; rename one " + std::string(words) + ".");
            }
        }
    }

    /// Bitstreams and raw files share their ids: an assignment names them in one way.
    void check_input_ids()
    {
        for (const PGM_COMMON_XML_VEK_RAW_FILE* raw_file : m_setup.raw_files().all()) {
            if (!raw_file->id.empty() && m_setup.bitstreams().find(raw_file->id) != nullptr) {
                m_findings.add(FINDING_ID_DUPLICATE, element_label("RAW_FILE", raw_file->id),
                               "A bitstream has this id too; rename one of them.");
            }
        }
    }

    void check_output_types()
    {
        std::unordered_set<std::string_view> types;
        for (const PGM_COMMON_XML_VEK_OUTPUT_FILE* output : m_setup.output_files()) {
            if (!types.insert(output->type).second) {
                m_findings.add(FINDING_OUTPUT_DUPLICATE, output_label(*output),
                               "The setup has two output files of this type; remove one.");
            }
            std::unordered_set<std::string_view> secondary_types;
            for (const PGM_COMMON_XML_VEK_SECONDARY_FILE* secondary : output->secondary_file) {
                if (!secondary_types.insert(secondary->type).second) {
                    m_findings.add(FINDING_OUTPUT_DUPLICATE,
                                   output_label(*output) + " / " +
                                       element_label("SECONDARY_FILE", secondary->type),
                                   "The output has two secondary files of this type; remove one.");
                }
            }
        }
    }

    void unresolved(const std::string& label, const char* words, const std::string& id)
    {
        m_findings.add(FINDING_REFERENCE_UNRESOLVED, label,
                       "The setup has no " + std::string(words) + " \"" + id +
                           "\"; correct the id or remove the reference.");
    }

    void check_assignments()
    {
        for (const PGM_COMMON_XML_VEK_ASSIGNMENT* assignment : m_setup.assignments().all()) {
            const auto label = [assignment] { return element_label("ASSIGNMENT", assignment->partition_id); };
            if (m_setup.assignments().find(assignment->partition_id) != assignment) {
                m_findings.add(FINDING_ASSIGNMENT_DUPLICATE, label(),
                               "Two assignments are for this partition; remove one.");
            }
            if (m_setup.partitions().find(assignment->partition_id) == nullptr) {
                unresolved(label(), "partition", assignment->partition_id);
            }
            for (const PGM_COMMON_XML_VEK_BITSTREAM_ID* id : assignment->bitstream_id) {
                if (m_setup.bitstreams().find(id->text) == nullptr) {
                    unresolved(label(), "bitstream", id->text);
                }
            }
            for (const PGM_COMMON_XML_VEK_RAW_FILE_ID* id : assignment->raw_file_id) {
                if (m_setup.raw_files().find(id->text) == nullptr) {
                    unresolved(label(), "raw file", id->text);
                }
            }
        }
    }

    void check_output_references()
    {
        for (const PGM_COMMON_XML_VEK_OUTPUT_FILE* output : m_setup.output_files()) {
            for (const PGM_COMMON_XML_VEK_BITSTREAM_ID* id : output->bitstream_id) {
                if (m_setup.bitstreams().find(id->text) == nullptr) {
                    unresolved(output_label(*output), "bitstream", id->text);
                }
            }
            for (const PGM_COMMON_XML_VEK_FLASH_DEVICE_ID* id : output->flash_device_id) {
                if (m_setup.flash_devices().find(id->text) == nullptr) {
                    unresolved(output_label(*output), "flash device", id->text);
                }
            }
        }
    }

    const SETUP_VIEW& m_setup;
    FINDINGS& m_findings;
};

} // namespace

void check_structure(const SETUP_VIEW& setup, FINDINGS& findings)
{
    STRUCTURE_CHECK(setup, findings).run();
}
