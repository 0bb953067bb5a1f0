#include "bitstream_file.h"
#include "check.h"
#include "fio_path.h"
#include "flash_plan.h"
#include "format_registry.h"
#include "input_security.h"
#include "pgm_device.h"
#include "precheck.h"
#include "vek_db.h"
#include "vek_file_assistant.h"

#include <algorithm>

namespace
{

using PATH = PGM_COMMON_XML_VEK_PATH;

/// An option that only some families have.
struct FAMILY_OPTION {
    const char* attribute;
    PGM_COMMON_XML_VEK_CMD_PARAM_ENUM param;
    bool is_switch; ///< a bool, not a text
};

constexpr FAMILY_OPTION FAMILY_OPTIONS[] = {
    {"key2", VEK_CMD_PARAM_BITSTREAM_PATH_KEY2, false},
    {"key_file2", VEK_CMD_PARAM_BITSTREAM_PATH_KEY_FILE2, false},
    {"finalize_encryption_later", VEK_CMD_PARAM_BITSTREAM_PATH_FINALIZE_ENCRYPTION_LATER, true},
    {"rsu_version", VEK_CMD_PARAM_BITSTREAM_PATH_RSU_VERSION, false},
    {"rsu_boot_info", VEK_CMD_PARAM_BITSTREAM_PATH_RSU_BOOT_INFO, true},
    {"app_image", VEK_CMD_PARAM_BITSTREAM_PATH_APP_IMAGE, false},
    {"app_image_hps_path", VEK_CMD_PARAM_BITSTREAM_PATH_APP_IMAGE_HPS_PATH, false},
    {"app_image_only", VEK_CMD_PARAM_BITSTREAM_PATH_APP_IMAGE_ONLY, true},
    {"firmware_only", VEK_CMD_PARAM_BITSTREAM_PATH_FIRMWARE_ONLY, true},
};

bool is_on(const std::string& word)
{
    return VEK_FILE_ASSISTANT::convert_string_to_bool(word);
}

class IMAGE_OPTION_CHECK
{
public:
    IMAGE_OPTION_CHECK(const SETUP_VIEW& setup, const SETUP_FACTS& facts, FINDINGS& findings)
        : m_setup(setup), m_facts(facts), m_findings(findings)
    {
    }

    void run(bool include_files)
    {
        for (const PGM_COMMON_XML_VEK_BITSTREAM* bitstream : m_setup.bitstreams().all()) {
            for (const PATH* path : bitstream->path) {
                m_label = path_label(*bitstream, *path);
                check_families(*path);
                check_update(*path);
                check_application(*path);
                check_later(*bitstream, *path);
                if (include_files) {
                    check_firmware(*path);
                    check_application_file(*path);
                }
            }
        }
        for (const PGM_COMMON_XML_VEK_OUTPUT_FILE* output : m_setup.output_files()) {
            if (include_files && is_on(output->rsu_boot)) {
                check_boot_data(*output);
            }
            for (const PGM_COMMON_XML_VEK_BITSTREAM_ID* link : output->bitstream_id) {
                if (include_files) {
                    check_section(output_label(*output), *link);
                }
            }
        }
        for (const PGM_COMMON_XML_VEK_ASSIGNMENT* assignment : m_setup.assignments().all()) {
            for (const PGM_COMMON_XML_VEK_BITSTREAM_ID* link : assignment->bitstream_id) {
                if (include_files) {
                    check_section(element_label("ASSIGNMENT", assignment->partition_id), *link);
                }
            }
        }
    }

private:
    void conflict(const std::string& text) { m_findings.add(FINDING_OPTION_CONFLICT, m_label, text); }

    void check_families(const PATH& path)
    {
        for (const FAMILY_OPTION& option : FAMILY_OPTIONS) {
            const std::string& value = path.read_attribute_string(option.attribute);
            const bool is_set = option.is_switch ? is_on(value) : !value.empty();
            if (m_facts.family != DEV_FAMILY_NONE && is_set &&
                !VEK_DB::supports_supported_family(option.param, m_facts.family)) {
                conflict("The family " + dstr_get_user_string(m_facts.family) + " has no option \"" +
                         option.attribute + "\"; take it away.");
            }
        }
    }

    void check_update(const PATH& path)
    {
        if (is_on(path.rsu_upgrade) || (path.rsu_version.empty() && !is_on(path.rsu_boot_info))) {
            return;
        }
        conflict("The attribute \"" +
                 std::string(path.rsu_version.empty() ? "rsu_boot_info" : "rsu_version") +
                 "\" describes an update image, and the image is none; switch \"rsu_upgrade\" on or take the "
                 "attribute away.");
    }

    void check_application(const PATH& path)
    {
        if (path.app_image.empty() && (!path.app_image_hps_path.empty() || is_on(path.app_image_only))) {
            conflict("The attribute \"" +
                     std::string(path.app_image_hps_path.empty() ? "app_image_only" : "app_image_hps_path") +
                     "\" is for an application image, and \"app_image\" names none; name one or take the "
                     "attribute away.");
        }
        if (!path.app_image.empty() && is_on(path.firmware_only)) {
            conflict("Firmware alone and an application image exclude each other; switch \"firmware_only\" "
                     "off or take \"app_image\" away.");
        }
    }

    void check_later(const PGM_COMMON_XML_VEK_BITSTREAM& bitstream, const PATH& path)
    {
        if (!is_on(path.finalize_encryption_later)) {
            return;
        }
        if (!is_on(path.finalize_encryption)) {
            conflict("The encryption is to be finalised later, and it is not to be finalised at all; switch "
                     "\"finalize_encryption\" on as well.");
            return;
        }
        if (!path.skc_file.empty()) {
            conflict(
                "The encryption is to be finalised later, and so is the signature, which cannot name a key "
                "chain then; take \"skc_file\" away or finalise the encryption now.");
        }
        for (const PGM_COMMON_XML_VEK_OUTPUT_FILE* output : m_setup.output_files()) {
            const std::vector<std::string> ids = output_bitstreams(m_setup, *output);
            if (output_type_of(output->type) != VEK_RBF_FILE_TYPE &&
                std::find(ids.begin(), ids.end(), bitstream.id) != ids.end()) {
                m_findings.add(FINDING_OPTION_CONFLICT, output_label(*output),
                               "The encryption of \"" + FIO_PATH(path.text).filename() +
                                   "\" is to be finalised later, which can be done to an RBF file alone; "
                                   "remove this output file or finalise the encryption now.");
            }
        }
    }

    void check_firmware(const PATH& path)
    {
        const bool wanted =
            is_on(path.firmware_only) || (is_on(path.rsu_upgrade) && is_on(path.rsu_boot_info));
        std::string message;
        const auto file = wanted && firmware_source(path).empty()
                              ? BITSTREAM_FILE::open(absolute_path(path.text), message)
                              : nullptr;
        if (file && file->find(SECTION_FIRMWARE) == nullptr) {
            m_findings.add(FINDING_OPTION_CONFLICT, m_label,
                           "The attribute \"" +
                               std::string(is_on(path.firmware_only) ? "firmware_only" : "rsu_boot_info") +
                               "\" asks for the firmware of the bitstream, which has none; compile it with "
                               "firmware or take the attribute away.");
        }
    }

    void check_application_file(const PATH& path)
    {
        if (path.app_image.empty()) {
            return;
        }
        std::string message;
        std::string name;
        const PGM_DEVICE* device = nullptr;
        const PGM_DEVICE* factory = path_device(path);
        const std::string file = absolute_path(path.app_image);
        const auto opened = BITSTREAM_FILE::open(file, message);
        if (!opened || !precheck_bitstream_file(file, true, &device, name, message)) {
            m_findings.add(FINDING_INPUT_REFUSED, m_label + " / APP_IMAGE", message);
        } else if (opened->kind() == BITSTREAM_KIND::PMSF) {
            m_findings.add(FINDING_INPUT_REFUSED, m_label + " / APP_IMAGE",
                           "The file \"" + path.app_image +
                               "\" is a partial bitstream, and an application image is a complete one; name "
                               "another file.");
        } else if (factory != nullptr && device != factory) {
            m_findings.add(FINDING_INPUT_REFUSED, m_label + " / APP_IMAGE",
                           "The file \"" + path.app_image + "\" is for the device " + device->user_name() +
                               ", and the factory image is for " + factory->user_name() +
                               "; name a file for that device.");
        }
        if (!path.app_image_hps_path.empty() &&
            !FILE_SOURCE::open(absolute_path(path.app_image_hps_path), message)) {
            m_findings.add(FINDING_INPUT_REFUSED, m_label + " / APP_IMAGE_HPS_PATH", message);
        }
    }

    /// The boot loader alone can be taken of images that all have one.
    void check_section(const std::string& label, const PGM_COMMON_XML_VEK_BITSTREAM_ID& link)
    {
        const PGM_COMMON_XML_VEK_BITSTREAM* bitstream = m_setup.bitstreams().find(link.text);
        if (bitstream == nullptr || !pick_of(link).bootloader_only) {
            return;
        }
        for (const STREAM_INPUT& input : stream_inputs(*bitstream)) {
            std::string message;
            const auto file = input.hps_path.empty() ? BITSTREAM_FILE::open(input.path, message) : nullptr;
            if (file && file->find(SECTION_BOOTLOADER) == nullptr) {
                m_findings.add(FINDING_OPTION_CONFLICT,
                               label + " / " + element_label("BITSTREAM_ID", link.text),
                               "The section HPS is the boot loader of the processor, and \"" +
                                   FIO_PATH(input.path).filename() +
                                   "\" has none; name one in \"hps_path\" or choose the section ALL.");
            }
        }
    }

    void check_boot_data(const PGM_COMMON_XML_VEK_OUTPUT_FILE& output)
    {
        for (const PGM_COMMON_XML_VEK_FLASH_DEVICE_ID* id : output.flash_device_id) {
            const PGM_COMMON_XML_VEK_FLASH_DEVICE* device = m_setup.flash_devices().find(id->text);
            for (const PGM_COMMON_XML_VEK_PARTITION* partition :
                 device != nullptr ? device->partition : std::vector<PGM_COMMON_XML_VEK_PARTITION*>()) {
                const PARTITION_RULE* rule = find_partition_rule(partition->id, m_facts.mode, m_facts.family);
                if (rule != nullptr && is_boot_data(rule->content)) {
                    return;
                }
            }
        }
        m_findings.add(FINDING_OPTION_CONFLICT, output_label(output),
                       "The output file is to hold boot data alone (\"rsu_boot\"), and there is none in it; "
                       "choose a flash device with boot partitions or take the attribute away.");
    }

    const SETUP_VIEW& m_setup;
    const SETUP_FACTS& m_facts;
    FINDINGS& m_findings;
    std::string m_label;
};

} // namespace

void check_image_options(const SETUP_VIEW& setup, const SETUP_FACTS& facts, bool include_files,
                         FINDINGS& findings)
{
    IMAGE_OPTION_CHECK(setup, facts, findings).run(include_files);
}
