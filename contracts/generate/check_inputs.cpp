#include "bitstream_file.h"
#include "check.h"
#include "family_traits.h"
#include "fio_path.h"
#include "fio_types.h"
#include "format_registry.h"
#include "pgm_device.h"
#include "precheck.h"
#include "vek_db.h"
#include "vek_file_assistant.h"

#include <algorithm>
#include <unordered_set>

namespace
{

/// Families whose bitstreams hold a single file and do not mix with others.
bool takes_single_files(DEV_FAMILY_ENUM family)
{
    return dev_family_is_secure(family) || family == DEV_FAMILY_ONCHIP_FLASH;
}

class INPUT_CHECK
{
public:
    INPUT_CHECK(const SETUP_VIEW& setup, const SETUP_FACTS& facts, FINDINGS& findings)
        : m_setup(setup), m_facts(facts), m_findings(findings)
    {
    }

    void run(bool include_files)
    {
        for (const PGM_COMMON_XML_VEK_BITSTREAM* bitstream : m_setup.bitstreams().all()) {
            if (bitstream->path.empty()) {
                m_findings.add(FINDING_BITSTREAM_EMPTY, element_label("BITSTREAM", bitstream->id),
                               "The bitstream has no file; add one or remove the bitstream.");
            }
            for (const PGM_COMMON_XML_VEK_PATH* path : bitstream->path) {
                check_compression(*path);
            }
        }
        check_unused();
        if (include_files) {
            check_files();
            check_device();
        }
    }

private:
    static std::string path_label(const PGM_COMMON_XML_VEK_PATH& path)
    {
        return element_label("PATH", FIO_PATH(path.text).filename());
    }

    void check_compression(const PGM_COMMON_XML_VEK_PATH& path)
    {
        const bool plain = VEK_FILE_ASSISTANT::convert_string_to_bool(path.compression);
        const bool enhanced = VEK_FILE_ASSISTANT::convert_string_to_bool(path.enhanced_compression);
        if (plain && enhanced) {
            m_findings.add(
                FINDING_OPTION_CONFLICT, path_label(path),
                "Compression and enhanced compression exclude each other; switch one of them off.");
        }
        if (plain) {
            check_family_option(path, VEK_CMD_PARAM_BITSTREAM_PATH_COMPRESSION, "compression");
        }
        if (enhanced) {
            check_family_option(path, VEK_CMD_PARAM_BITSTREAM_PATH_ENHANCED_COMPRESSION,
                                "enhanced compression");
        }
    }

    void check_family_option(const PGM_COMMON_XML_VEK_PATH& path, PGM_COMMON_XML_VEK_CMD_PARAM_ENUM param,
                             const char* option)
    {
        // The on-chip family compresses by its scheme, whatever the dialogs offer.
        const bool known = m_facts.family != DEV_FAMILY_NONE && m_facts.family != DEV_FAMILY_ONCHIP_FLASH;
        if (known && !VEK_DB::get_supported_family(param).empty() &&
            !VEK_DB::supports_supported_family(param, m_facts.family)) {
            m_findings.add(FINDING_OPTION_CONFLICT, path_label(path),
                           "The family " + dstr_get_user_string(m_facts.family) + " has no " + option +
                               "; switch it off.");
        }
    }

    void check_unused()
    {
        std::unordered_set<std::string> used;
        for (const PGM_COMMON_XML_VEK_ASSIGNMENT* assignment : m_setup.assignments().all()) {
            for (const PGM_COMMON_XML_VEK_BITSTREAM_ID* id : assignment->bitstream_id) {
                used.insert(id->text);
            }
            for (const PGM_COMMON_XML_VEK_RAW_FILE_ID* id : assignment->raw_file_id) {
                used.insert(id->text);
            }
        }
        for (const PGM_COMMON_XML_VEK_OUTPUT_FILE* output : m_setup.output_files()) {
            // The link of a bitstream to an output that is made from a flash device says nothing.
            const bool counts = !takes_flash_device(output_type_of_or_rbf(*output));
            for (const PGM_COMMON_XML_VEK_BITSTREAM_ID* id : output->bitstream_id) {
                if (counts) {
                    used.insert(id->text);
                }
            }
        }
        std::unordered_set<std::string> user_flash_files;
        for (const PGM_COMMON_XML_VEK_FLASH_DEVICE* device : m_setup.flash_devices().all()) {
            user_flash_files.insert(device->ufm_source_file);
        }
        for (const PGM_COMMON_XML_VEK_BITSTREAM* bitstream : m_setup.bitstreams().all()) {
            report_unused("BITSTREAM", bitstream->id, used.contains(bitstream->id));
        }
        for (const PGM_COMMON_XML_VEK_RAW_FILE* raw_file : m_setup.raw_files().all()) {
            report_unused("RAW_FILE", raw_file->id,
                          used.contains(raw_file->id) || user_flash_files.contains(raw_file->text));
        }
    }

    static VEK_FILE_TYPE output_type_of_or_rbf(const PGM_COMMON_XML_VEK_OUTPUT_FILE& output)
    {
        const VEK_FILE_TYPE type = output_type_of(output.type);
        return type == VEK_INVALID_FILE_TYPE ? VEK_RBF_FILE_TYPE : type;
    }

    void report_unused(const char* element, const std::string& id, bool is_used)
    {
        if (!is_used) {
            m_findings.add(
                FINDING_INPUT_UNUSED, element_label(element, id),
                "The input goes into no output file; assign it to a partition, add it to an output, or "
                "remove it.");
        }
    }

    void check_files()
    {
        for (const PGM_COMMON_XML_VEK_BITSTREAM* bitstream : m_setup.bitstreams().all()) {
            for (const PGM_COMMON_XML_VEK_PATH* path : bitstream->path) {
                check_file(*bitstream, *path);
            }
            if (bitstream->path.size() > 1 && takes_single_files(m_facts.family)) {
                m_findings.add(FINDING_BITSTREAMS_TOO_MANY, element_label("BITSTREAM", bitstream->id),
                               "The bitstream has " + std::to_string(bitstream->path.size()) +
                                   " files, and the family " + dstr_get_user_string(m_facts.family) +
                                   " takes one in a bitstream; remove the others.");
            }
        }
        for (const PGM_COMMON_XML_VEK_RAW_FILE* raw_file : m_setup.raw_files().all()) {
            std::string message;
            if (!FILE_SOURCE::open(absolute_path(raw_file->text), message)) {
                refuse(element_label("RAW_FILE", raw_file->id), message);
            }
        }
    }

    void refuse(const std::string& label, const std::string& message)
    {
        m_findings.add(FINDING_INPUT_REFUSED, label, message);
    }

    void check_file(const PGM_COMMON_XML_VEK_BITSTREAM& bitstream, const PGM_COMMON_XML_VEK_PATH& path)
    {
        const std::string label = element_label("BITSTREAM", bitstream.id) + " / " + path_label(path);
        const std::string name = absolute_path(path.text);
        const PGM_DEVICE* device = nullptr;
        std::string device_name;
        std::string message;
        if (!precheck_bitstream_file(name, true, &device, device_name, message)) {
            refuse(label, message);
            return;
        }
        const auto file = BITSTREAM_FILE::open(name, message);
        if (!file) {
            refuse(label, message);
            return;
        }
        if (device->family != m_facts.family && takes_single_files(m_facts.family)) {
            m_findings.add(FINDING_FAMILY_MIXED, label,
                           "The file is for the family " + dstr_get_user_string(device->family) +
                               ", and the first bitstream is for " + dstr_get_user_string(m_facts.family) +
                               "; keep the files of one family.");
        }
        check_scheme(label, *file);
        check_outputs_of(bitstream, label, *file);
        if (!path.hps_path.empty() && !FILE_SOURCE::open(absolute_path(path.hps_path), message)) {
            refuse(label + " / HPS_PATH", message);
        }
    }

    void check_scheme(const std::string& label, const BITSTREAM_FILE& file)
    {
        if (!file.scheme() || *file.scheme() >= PGMIO_CONFIG_SCHEME_ILLEGAL ||
            m_facts.mode == PGMIO_CONFIG_SCHEME_ILLEGAL || *file.scheme() == m_facts.mode) {
            return;
        }
        m_findings.add(FINDING_SCHEME_DIFFERENT, label,
                       "The file was compiled for \"" + std::string(PGMIO_CONFIG_SCHEME_STR[*file.scheme()]) +
                           "\", and the mode of the setup is \"" + PGMIO_CONFIG_SCHEME_STR[m_facts.mode] +
                           "\"; compile it for that mode or choose the other one.");
    }

    void check_outputs_of(const PGM_COMMON_XML_VEK_BITSTREAM& bitstream, const std::string& label,
                          const BITSTREAM_FILE& file)
    {
        const FIO_FILE_TYPE kind = file.kind() == BITSTREAM_KIND::PMSF ? FIO_PMSF_FILE : FIO_SOF_FILE;
        for (const PGM_COMMON_XML_VEK_OUTPUT_FILE* output : m_setup.output_files()) {
            const VEK_FILE_TYPE type = output_type_of(output->type);
            const bool linked = std::any_of(output->bitstream_id.begin(), output->bitstream_id.end(),
                                            [&](const auto* id) { return id->text == bitstream.id; });
            if (!linked || type == VEK_INVALID_FILE_TYPE) {
                continue;
            }
            const auto kinds = VEK_DB_UTIL::get_common_input_file_types({type});
            if (std::find(kinds.begin(), kinds.end(), kind) == kinds.end()) {
                refuse(label, "The output file " + output->type + " cannot be made from a " +
                                  (kind == FIO_PMSF_FILE ? "partial" : "complete") +
                                  " bitstream; remove the bitstream from it.");
            }
        }
    }

    void check_device()
    {
        if (m_facts.family != DEV_FAMILY_NONE && m_setup.mode() != PGMIO_CONFIG_SCHEME_ILLEGAL) {
            unsigned mask_a = 0;
            unsigned mask_b = 0;
            unsigned types = 0;
            get_family_pcf_info(m_facts.family, DEV_DEVICE_NONE, mask_a, mask_b, types);
            if (((mask_a | mask_b) >> (m_setup.mode() % 32) & 1U) == 0) {
                m_findings.add(FINDING_FAMILY_WITHOUT_MODE, "SETTINGS",
                               "The family " + dstr_get_user_string(m_facts.family) +
                                   " does not have the mode \"" + PGMIO_CONFIG_SCHEME_STR[m_setup.mode()] +
                                   "\"; choose another mode.");
            }
        }
        const std::size_t count = m_setup.bitstreams().all().size();
        if (m_facts.device != nullptr && count > bitstream_limit()) {
            m_findings.add(FINDING_BITSTREAMS_TOO_MANY, "BITSTREAMS",
                           "The setup has " + std::to_string(count) + " bitstreams, and the device " +
                               m_facts.device->name + " takes " + std::to_string(bitstream_limit()) +
                               "; remove the others.");
        }
    }

    std::size_t bitstream_limit() const
    {
        if (m_facts.device->code == "kv3") {
            return 1;
        }
        if (m_facts.family == DEV_FAMILY_ONCHIP_FLASH) {
            return m_facts.mode == PGMIO_CONFIG_SCHEME_DUAL_COMPRESSED_IMAGES ? 2 : 1;
        }
        return ~std::size_t{0};
    }

    const SETUP_VIEW& m_setup;
    const SETUP_FACTS& m_facts;
    FINDINGS& m_findings;
};

} // namespace

void check_inputs(const SETUP_VIEW& setup, const SETUP_FACTS& facts, bool include_files, FINDINGS& findings)
{
    INPUT_CHECK(setup, facts, findings).run(include_files);
}
