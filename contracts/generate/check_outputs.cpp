#include "check.h"
#include "dev_family_enum.h"
#include "family_traits.h"
#include "format_registry.h"
#include "partition_layout.h"
#include "same_file.h"
#include "vek_db.h"

#include <algorithm>
#include <map>
#include <sys/stat.h>
#include <unistd.h>
#include <unordered_map>

namespace
{

/// Longest file name of the file systems in use.
constexpr std::size_t NAME_LIMIT = 255;

class OUTPUT_CHECK
{
public:
    OUTPUT_CHECK(const SETUP_VIEW& setup, const SETUP_FACTS& facts, FINDINGS& findings)
        : m_setup(setup), m_facts(facts), m_findings(findings)
    {
        if (facts.family != DEV_FAMILY_NONE) {
            unsigned mode_mask_a = 0;
            unsigned mode_mask_b = 0;
            get_family_pcf_info(facts.family, DEV_DEVICE_NONE, mode_mask_a, mode_mask_b, m_type_mask);
        }
    }

    void run()
    {
        if (m_setup.output_files().empty()) {
            m_findings.add(FINDING_OUTPUT_NONE, "OUTPUT_FILES",
                           "The setup has no output file; choose at least one output file type.");
        }
        for (const OUTPUT_PLAN& plan : plan_outputs(m_setup, "")) {
            if (find_format(plan.type) != nullptr || VEK_DB::get_virtual_type(plan.type)) {
                check_offered(plan);
                check_options(plan);
            } else {
                m_findings.add(FINDING_OUTPUT_WITHOUT_WRITER, plan.label,
                               "This version cannot write files of the type \"" +
                                   VEK_DB::get_description(plan.type) + "\"; remove the output file.");
            }
            if (plan.secondary == nullptr) {
                check_sources(plan);
            }
        }
    }

private:
    void not_offered(const OUTPUT_PLAN& plan, const std::string& reason)
    {
        m_findings.add(FINDING_OUTPUT_NOT_OFFERED, plan.label,
                       "The type \"" + VEK_DB::get_description(plan.type) + "\" " + reason);
    }

    void check_offered(const OUTPUT_PLAN& plan)
    {
        if (plan.secondary != nullptr) {
            const VEK_FILE_TYPE parent = output_type_of(plan.output->type);
            const auto types = VEK_DB::get_secondary_file_type(parent);
            if (std::find(types.begin(), types.end(), plan.type) == types.end()) {
                not_offered(plan, "does not go with the output file " + plan.output->type + "; remove it.");
            }
            return;
        }
        if (VEK_DB::get_secondary(plan.type) || VEK_DB::get_virtual_type(plan.type)) {
            not_offered(plan,
                        "is no output file of its own; put it under the output file that it belongs to.");
        } else if (m_setup.mode() != PGMIO_CONFIG_SCHEME_ILLEGAL &&
                   !VEK_DB::supports_output_file_type(m_setup.mode(), plan.type)) {
            not_offered(plan, "is not made in the mode \"" +
                                  std::string(PGMIO_CONFIG_SCHEME_STR[m_setup.mode()]) +
                                  "\"; choose another type or another mode.");
        }
        const bool masked = m_type_mask != 0 && (m_type_mask >> plan.type & 1U) == 0;
        if (m_facts.family != DEV_FAMILY_NONE &&
            (masked || VEK_DB::supports_excluded_family(plan.type, m_facts.family))) {
            not_offered(plan, "is not made for the family " + dstr_get_user_string(m_facts.family) +
                                  "; choose another type.");
        }
    }

    void check_options(const OUTPUT_PLAN& plan)
    {
        std::uint64_t address = 0;
        if (plan.options != nullptr && !plan.options->s_addr.empty() &&
            plan.options->s_addr != AUTO_ADDRESS &&
            (!parse_address(plan.options->s_addr, address) || address > 0xFFFFFFFF)) {
            m_findings.add(
                FINDING_LAYOUT_ADDRESS, plan.label,
                "The start address \"" + plan.options->s_addr +
                    "\" is no hexadecimal number of at most 32 bits; write one such as 0x00010000.");
        }
        std::uint64_t frequency = 0;
        if (plan.type == VEK_SVF_FILE_TYPE && plan.options != nullptr && !plan.options->frequency.empty() &&
            !parse_frequency(plan.options->frequency, frequency)) {
            m_findings.add(FINDING_FREQUENCY, plan.label,
                           "The TCK frequency \"" + plan.options->frequency +
                               "\" is no number with its unit, Hz, kHz or MHz, of at least 1 Hz; write one "
                               "such as 10 MHz.");
        }
    }

    void check_sources(const OUTPUT_PLAN& plan)
    {
        const PGM_COMMON_XML_VEK_OUTPUT_FILE& output = *plan.output;
        if (takes_flash_device(plan.type)) {
            if (output.flash_device_id.empty()) {
                m_findings.add(FINDING_OUTPUT_WITHOUT_INPUT, plan.label,
                               "No flash device goes into this output file; add one.");
            } else if (output.flash_device_id.size() > 1) {
                m_findings.add(
                    FINDING_FLASH_TOO_MANY, plan.label,
                    std::to_string(output.flash_device_id.size()) +
                        " flash devices go into this output file, and it can hold one; remove the others.");
            } else {
                check_flash_device(plan, output.flash_device_id.front()->text);
            }
        } else if (takes_bitstreams(plan.type) && output.bitstream_id.empty()) {
            m_findings.add(FINDING_OUTPUT_WITHOUT_INPUT, plan.label,
                           "No bitstream goes into this output file; add one.");
        }
    }

    void check_flash_device(const OUTPUT_PLAN& plan, const std::string& id)
    {
        const PGM_COMMON_XML_VEK_FLASH_DEVICE* device = m_setup.flash_devices().find(id);
        if (device == nullptr) {
            return; // an unresolved reference, which the structure check names
        }
        const bool filled = std::any_of(device->partition.begin(), device->partition.end(),
                                        [this](const PGM_COMMON_XML_VEK_PARTITION* partition) {
                                            return m_setup.assignments().find(partition->id) != nullptr;
                                        });
        if (!filled) {
            m_findings.add(
                FINDING_OUTPUT_WITHOUT_INPUT, plan.label,
                "No partition of the flash device \"" + id +
                    "\" holds an input; add a partition and assign a bitstream or a raw file to it.");
        }
    }

    const SETUP_VIEW& m_setup;
    const SETUP_FACTS& m_facts;
    FINDINGS& m_findings;
    unsigned m_type_mask = 0;
};

/// Where the outputs go.
class TARGET_CHECK
{
public:
    TARGET_CHECK(const SETUP_VIEW& setup, const std::vector<OUTPUT_PLAN>& outputs, FINDINGS& findings)
        : m_setup(setup), m_outputs(outputs), m_findings(findings)
    {
    }

    void run()
    {
        collect_inputs();
        for (std::size_t i = 0; i < m_outputs.size(); ++i) {
            const OUTPUT_PLAN& plan = m_outputs[i];
            if (check_name(plan) && check_directory(plan)) {
                check_target(plan, i);
            }
        }
    }

private:
    bool check_name(const OUTPUT_PLAN& plan)
    {
        std::string reason;
        if (plan.name.empty()) {
            reason = "is empty";
        } else if (plan.name.find('/') != std::string::npos) {
            reason = "contains a \"/\"; the directory has a place of its own";
        } else if (std::any_of(plan.name.begin(), plan.name.end(),
                               [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; })) {
            reason = "contains a control character";
        } else if (plan.file_name.size() > NAME_LIMIT) {
            reason = "makes a file name of " + std::to_string(plan.file_name.size()) + " bytes, and " +
                     std::to_string(NAME_LIMIT) + " are allowed";
        }
        if (!reason.empty()) {
            m_findings.add(FINDING_NAME_ILLEGAL, plan.label,
                           "The name of the output file " + reason + "; choose another name.");
        }
        return reason.empty();
    }

    bool check_directory(const OUTPUT_PLAN& plan)
    {
        const auto [known, is_new] = m_directories.emplace(plan.directory, true);
        if (!is_new) {
            return known->second;
        }
        struct stat facts {
        };
        if (stat(plan.directory.c_str(), &facts) != 0 || !S_ISDIR(facts.st_mode)) {
            m_findings.add(FINDING_DIRECTORY_MISSING, plan.label,
                           "The output directory \"" + plan.directory +
                               "\" does not exist; create it or choose another.");
            known->second = false;
        } else if (access(plan.directory.c_str(), W_OK | X_OK) != 0) {
            m_findings.add(FINDING_DIRECTORY_NOT_WRITABLE, plan.label,
                           "The output directory \"" + plan.directory +
                               "\" cannot be written to; change its permissions or choose another.");
            known->second = false;
        }
        return known->second;
    }

    void collect_inputs()
    {
        for (const PGM_COMMON_XML_VEK_BITSTREAM* bitstream : m_setup.bitstreams().all()) {
            for (const PGM_COMMON_XML_VEK_PATH* path : bitstream->path) {
                for (const std::string* file :
                     {&path->text, &path->hps_path, &path->key_file1, &path->key_file2, &path->elk_file,
                      &path->aek_file, &path->signing_pem_file, &path->password, &path->fw_source,
                      &path->app_image, &path->app_image_hps_path, &path->skc_file}) {
                    add_input(*file);
                }
            }
        }
        for (const PGM_COMMON_XML_VEK_RAW_FILE* raw_file : m_setup.raw_files().all()) {
            add_input(raw_file->text);
        }
        for (const PGM_COMMON_XML_VEK_FLASH_DEVICE* device : m_setup.flash_devices().all()) {
            add_input(device->ufm_source_file);
        }
    }

    void add_input(const std::string& path)
    {
        struct stat facts {
        };
        const std::string absolute = path.empty() ? path : absolute_path(path);
        if (!absolute.empty() && stat(absolute.c_str(), &facts) == 0) {
            m_inputs.emplace(std::make_pair(facts.st_dev, facts.st_ino), absolute);
        }
    }

    void check_target(const OUTPUT_PLAN& plan, std::size_t index)
    {
        struct stat facts {
        };
        if (stat(plan.path.c_str(), &facts) == 0) {
            const auto input = m_inputs.find({facts.st_dev, facts.st_ino});
            if (input != m_inputs.end()) {
                m_findings.add(FINDING_OUTPUT_IS_INPUT, plan.label,
                               "The output file \"" + plan.path + "\" would overwrite the input \"" +
                                   input->second + "\"; choose another name or directory.");
            } else if (!S_ISREG(facts.st_mode)) {
                m_findings.add(FINDING_OUTPUT_BLOCKED, plan.label,
                               "\"" + plan.path +
                                   "\" is there and is no regular file; remove it or choose another name.");
            }
        }
        for (std::size_t i = 0; i < index; ++i) {
            if (same_file(m_outputs[i].path, plan.path)) {
                m_findings.add(FINDING_OUTPUT_COLLISION, plan.label,
                               "The output file \"" + plan.path + "\" is also that of " + m_outputs[i].label +
                                   "; choose another name or directory for one of them.");
                break;
            }
        }
    }

    const SETUP_VIEW& m_setup;
    const std::vector<OUTPUT_PLAN>& m_outputs;
    FINDINGS& m_findings;
    std::unordered_map<std::string, bool> m_directories; ///< whether a directory can be used
    std::map<std::pair<dev_t, ino_t>, std::string> m_inputs;
};

} // namespace

void check_outputs(const SETUP_VIEW& setup, const SETUP_FACTS& facts, FINDINGS& findings)
{
    OUTPUT_CHECK(setup, facts, findings).run();
}

void check_targets(const SETUP_VIEW& setup, const std::vector<OUTPUT_PLAN>& outputs, FINDINGS& findings)
{
    TARGET_CHECK(setup, outputs, findings).run();
}
