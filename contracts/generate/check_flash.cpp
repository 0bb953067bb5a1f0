#include "bitstream_file.h"
#include "check.h"
#include "flash_plan.h"
#include "input_security.h"
#include "pgm_device.h"
#include "stream_sizes.h"
#include "vek_db.h"

#include <algorithm>

namespace
{

/// Bytes that a stream of plain frames takes beyond its data, at most.
constexpr std::uint64_t STREAM_OVERHEAD = 256 * 1024;
constexpr std::uint64_t STREAM_OVERHEAD_DIVISOR = 64;

/// More than the stream of the bitstream can have: frames never grow by compression.
std::shared_ptr<const BYTE_SOURCE> bound_stream(const PGM_COMMON_XML_VEK_BITSTREAM& bitstream,
                                                std::string& message)
{
    std::uint64_t size = 0;
    std::vector<const PGM_COMMON_XML_VEK_PATH*> files; // of each image
    for (const PGM_COMMON_XML_VEK_PATH* path : bitstream.path) {
        files.insert(files.end(), image_count(*path), path);
    }
    const std::vector<STREAM_INPUT> inputs = stream_inputs(bitstream);
    for (std::size_t i = 0; i < inputs.size(); ++i) {
        const STREAM_INPUT& input = inputs[i];
        const auto file = BITSTREAM_FILE::open(input.path, message);
        const auto bootloader = input.hps_path.empty() ? nullptr : FILE_SOURCE::open(input.hps_path, message);
        const auto firmware =
            input.firmware_path.empty() ? nullptr : FILE_SOURCE::open(input.firmware_path, message);
        if (!file || (!input.hps_path.empty() && !bootloader) ||
            (!input.firmware_path.empty() && !firmware)) {
            return nullptr;
        }
        const std::uint64_t plain =
            file->size() + (bootloader ? bootloader->size() : 0) + (firmware ? firmware->size() : 0);
        size +=
            plain + plain / STREAM_OVERHEAD_DIVISOR + STREAM_OVERHEAD + security_allowance(*files[i], plain);
    }
    return size_source(size);
}

class FLASH_CHECK
{
public:
    FLASH_CHECK(const SETUP_VIEW& setup, const SETUP_FACTS& facts, FINDINGS& findings)
        : m_setup(setup), m_facts(facts), m_findings(findings)
    {
    }

    void run()
    {
        check_loader();
        for (const PGM_COMMON_XML_VEK_FLASH_DEVICE* element : m_setup.flash_devices().all()) {
            check_mode(*element);
            check_layout(*element);
        }
    }

private:
    void check_loader()
    {
        for (const PGM_COMMON_XML_VEK_OUTPUT_FILE* output : m_setup.output_files()) {
            const VEK_FILE_TYPE type = output_type_of(output->type);
            if (type != VEK_INVALID_FILE_TYPE && VEK_DB::get_require_flash_loader(type) &&
                m_setup.flash_loader().empty()) {
                m_findings.add(
                    FINDING_FLASH_LOADER_MISSING, output_label(*output),
                    "This output needs a flash loader and none is chosen; choose the device through "
                    "which JTAG reaches the flash.");
            }
        }
        if (m_setup.flash_loader().empty()) {
            return;
        }
        const PGM_DEVICE* loader = PGM_DEVICE_INDEX::find_by_name(m_setup.flash_loader());
        if (loader == nullptr || loader->device_class != DEV_CLASS_FPGA) {
            m_findings.add(FINDING_FLASH_LOADER_UNKNOWN, "FLASH_LOADER",
                           "The flash loader \"" + m_setup.flash_loader() +
                               "\" is no FPGA of the device database; choose another.");
        }
    }

    void check_mode(const PGM_COMMON_XML_VEK_FLASH_DEVICE& element)
    {
        const PGM_DEVICE* device = PGM_DEVICE_INDEX::find_by_name(element.type);
        if (device == nullptr || m_setup.mode() == PGMIO_CONFIG_SCHEME_ILLEGAL) {
            return;
        }
        const auto families = VEK_DB::get_config_device_family(m_setup.mode());
        if (std::find(families.begin(), families.end(), device->family) != families.end()) {
            return;
        }
        std::string names;
        for (const DEV_FAMILY_ENUM family : families) {
            names += (names.empty() ? "" : ", ") + dstr_get_user_string(family);
        }
        m_findings.add(FINDING_FLASH_NOT_FOR_MODE, flash_device_label(element),
                       "The flash device \"" + element.type + "\" of the family " +
                           dstr_get_user_string(device->family) + " cannot be used in the mode \"" +
                           PGMIO_CONFIG_SCHEME_STR[m_setup.mode()] + "\"; choose a device of " +
                           (names.empty() ? "another mode" : names) + ".");
    }

    /// An upper bound of the sizes settles most layouts. Where it does not fit, the streams are built, so
    /// that a layout is never refused for what the bound has too much.
    void check_layout(const PGM_COMMON_XML_VEK_FLASH_DEVICE& element)
    {
        FLASH_PLAN bounded;
        FINDINGS of_bounds;
        const auto bound = [this](const BITSTREAM_PICK& pick, std::string& message) {
            return bound_stream(*m_setup.bitstreams().find(pick.id), message);
        };
        if (plan_flash(m_setup, m_facts, element, bound, bounded, of_bounds)) {
            copy(of_bounds);
            return;
        }
        FLASH_PLAN exact;
        FINDINGS of_streams;
        plan_flash(m_setup, m_facts, element, real_stream_sizes(m_setup, element), exact, of_streams);
        copy(of_streams);
    }

    /// A bitstream that the input check has refused is not refused a second time.
    void copy(const FINDINGS& findings)
    {
        for (const FINDING& finding : findings.all()) {
            const bool known =
                finding.kind == FINDING_INPUT_REFUSED &&
                std::any_of(m_findings.all().begin(), m_findings.all().end(), [&](const FINDING& other) {
                    return other.kind == FINDING_INPUT_REFUSED && other.element.starts_with(finding.element);
                });
            if (!known) {
                m_findings.add(finding.kind, finding.element, finding.text);
            }
        }
    }

    const SETUP_VIEW& m_setup;
    const SETUP_FACTS& m_facts;
    FINDINGS& m_findings;
};

} // namespace

void check_flash(const SETUP_VIEW& setup, const SETUP_FACTS& facts, FINDINGS& findings)
{
    FLASH_CHECK(setup, facts, findings).run();
}

void check_setup(const PGM_COMMON_XML_VEK_VEK& document, bool include_files,
                 const std::string& directory_override, FINDINGS& findings, const SIGNING_DESK& desk)
{
    const SETUP_VIEW setup(document);
    check_structure(setup, findings);
    SETUP_FACTS facts;
    facts.mode = setup.mode();
    if (include_files) {
        facts = find_setup_facts(setup);
    }
    check_outputs(setup, facts, findings);
    check_inputs(setup, facts, include_files, findings);
    check_options(setup, findings);
    check_image_options(setup, facts, include_files, findings);
    check_key_programming(setup, findings);
    if (include_files) {
        check_flash(setup, facts, findings);
        check_keys(setup, desk, findings);
        check_targets(setup, plan_files(setup, directory_override), findings);
    }
}
