#include "check.h"
#include "fio_path.h"
#include "pgm_common_xml_descriptor.h"
#include "vek_file_assistant.h"

#include <algorithm>
#include <iterator>

namespace
{

/// An attribute that asks for something this version does not do, unless it has one of the neutral texts.
struct UNHONOURED_OPTION {
    const char* attribute;
    const char* neutral; ///< beside the empty text; null when there is none
    const char* words;
};

constexpr UNHONOURED_OPTION PATH_OPTIONS[] = {
    {"smsf_file", nullptr, "a sensitivity map file"},
    {"seu_recovery", "0", "recovery from upsets"},
};

constexpr UNHONOURED_OPTION OUTPUT_OPTIONS[] = {
    {"allow_device_state", nullptr, "a device state"},
    {"subtype", nullptr, "a subtype"},
};

constexpr UNHONOURED_OPTION FLASH_OPTIONS[] = {
    {"chip_select", "0", "a chip select"},
};

class OPTION_CHECK
{
public:
    OPTION_CHECK(const SETUP_VIEW& setup, FINDINGS& findings) : m_setup(setup), m_findings(findings) {}

    void run()
    {
        for (const PGM_COMMON_XML_VEK_BITSTREAM* bitstream : m_setup.bitstreams().all()) {
            for (const PGM_COMMON_XML_VEK_PATH* path : bitstream->path) {
                check(*path,
                      element_label("BITSTREAM", bitstream->id) + " / " +
                          element_label("PATH", FIO_PATH(path->text).filename()),
                      PATH_OPTIONS);
            }
        }
        for (const PGM_COMMON_XML_VEK_OUTPUT_FILE* output : m_setup.output_files()) {
            check(*output, output_label(*output), OUTPUT_OPTIONS);
        }
        for (const PGM_COMMON_XML_VEK_FLASH_DEVICE* device : m_setup.flash_devices().all()) {
            const std::string label = element_label("FLASH_DEVICE", device->id);
            check(*device, label, FLASH_OPTIONS);
            for (const PGM_COMMON_XML_VEK_MBR* mbr : device->mbr) {
                m_findings.add(FINDING_MBR_NOT_SUPPORTED, label + " / " + element_label("MBR", mbr->id),
                               "This version cannot write a master boot record; remove it.");
            }
        }
    }

private:
    void check(const PGM_COMMON_XML_ELEMENT& element, const std::string& label,
               std::span<const UNHONOURED_OPTION> options)
    {
        for (const UNHONOURED_OPTION& option : options) {
            const std::string& value = element.read_attribute_string(option.attribute);
            const bool is_bool = option.neutral != nullptr && option.neutral == std::string("0");
            if (value.empty() || (option.neutral != nullptr && value == option.neutral) ||
                (is_bool && is_switched_off(value))) {
                continue;
            }
            m_findings.add(FINDING_OPTION_NOT_HONOURED, label,
                           "The attribute \"" + std::string(option.attribute) + "\" asks for " +
                               option.words + ", which this version does not do yet; switch the option off.");
        }
    }

    static bool is_switched_off(const std::string& value)
    {
        constexpr const char* WORDS[] = {"off", "Off", "OFF", "false", "False", "FALSE"};
        return std::find(std::begin(WORDS), std::end(WORDS), value) != std::end(WORDS);
    }

    const SETUP_VIEW& m_setup;
    FINDINGS& m_findings;
};

} // namespace

void check_options(const SETUP_VIEW& setup, FINDINGS& findings)
{
    OPTION_CHECK(setup, findings).run();
}
