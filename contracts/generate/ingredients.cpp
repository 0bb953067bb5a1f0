#include "ingredients.h"

#include "fio_path.h"
#include "format_registry.h"
#include "job_reports.h"
#include "parallel.h"
#include "pgm_device.h"
#include "progress.h"
#include "vek_file_assistant.h"

namespace
{

/// Takes what is written only to be signed.
class NO_SINK final : public BYTE_SINK
{
public:
    bool write(std::span<const std::uint8_t>, std::string&) override { return true; }
};

STREAM_SELECTION selection_of(FORMAT_PART part)
{
    switch (part) {
    case FORMAT_PART::ALL:
        return STREAM_SELECTION::ALL;
    case FORMAT_PART::PERIPHERY:
        return STREAM_SELECTION::PERIPHERY;
    case FORMAT_PART::CORE:
        break;
    }
    return STREAM_SELECTION::CORE;
}

/// A part of bitstreams, with the options of a flash device or of their files, as one text that tells
/// equal lists.
std::string stream_key(FORMAT_PART part, const std::vector<BITSTREAM_PICK>& picks,
                       const std::string& options_of = "")
{
    std::string key = std::to_string(static_cast<unsigned>(part)) + ' ' + std::to_string(options_of.size()) +
                      ":" + options_of;
    for (const BITSTREAM_PICK& pick : picks) {
        key += std::to_string(pick.id.size()) + (pick.bootloader_only ? "/" : ":") + pick.id;
    }
    return key;
}

FORMAT_SUBJECT subject_of(const OUTPUT_PLAN& plan)
{
    const FORMAT_ROW* row = find_format_row(plan.type);
    return row != nullptr ? row->subject : FORMAT_SUBJECT::STREAM;
}

bool is_boot_only(const OUTPUT_PLAN& plan)
{
    return VEK_FILE_ASSISTANT::convert_string_to_bool(plan.output->rsu_boot);
}

JTAG_TARGET target_of(const PGM_DEVICE* device)
{
    return device != nullptr ? JTAG_TARGET{device->user_name(), device->idcode, device->instruction_length}
                             : JTAG_TARGET();
}

} // namespace

INGREDIENTS::INGREDIENTS(const SETUP_VIEW& setup, const GENERATE_OPTIONS& options,
                         const std::vector<OUTPUT_PLAN>& plans)
    : m_setup(setup), m_options(options), m_plans(plans)
{
}

bool INGREDIENTS::load_keys()
{
    if (holds_secrets(m_setup)) {
        m_guard.emplace();
    }
    FINDINGS findings;
    m_security.load(m_setup, m_options.desk, findings);
    return report_findings(findings);
}

std::vector<BITSTREAM_PICK> INGREDIENTS::picks_of(const OUTPUT_PLAN& plan) const
{
    return output_picks(m_setup, *plan.output);
}

INGREDIENTS::FLASH_KEY INGREDIENTS::flash_key(const OUTPUT_PLAN& plan)
{
    return {plan.part, plan.output->flash_device_id.front()->text};
}

/// Empty where a device has no options of its own, so that its streams are shared with other outputs.
std::string INGREDIENTS::options_of(const FLASH_KEY& key) const
{
    return onchip_options(m_setup, *m_setup.flash_devices().find(key.second)) ? key.second : "";
}

/// `options_of`: the flash device whose options the stream takes, empty for those of the files.
void INGREDIENTS::want_stream(FORMAT_PART part, const std::vector<BITSTREAM_PICK>& picks,
                              const std::string& options_of)
{
    const auto [entry, is_new] = m_streams.emplace(stream_key(part, picks, options_of), STREAM());
    if (is_new) {
        m_stream_jobs.push_back({part, inputs_of(picks, options_of), &entry->second});
    }
}

void INGREDIENTS::collect(const std::string& temporary_directory)
{
    m_temporary_directory = temporary_directory;
    m_facts = find_setup_facts(m_setup);
    for (const OUTPUT_PLAN& plan : m_plans) {
        switch (subject_of(plan)) {
        case FORMAT_SUBJECT::FLASH_IMAGE:
            if (m_flash.emplace(flash_key(plan), FLASH()).second) {
                for (const BITSTREAM_PICK& pick : picks_of(plan)) {
                    want_stream(plan.part, {pick}, options_of(flash_key(plan)));
                }
            }
            break;
        case FORMAT_SUBJECT::STREAM:
            want_stream(plan.part, picks_of(plan));
            break;
        case FORMAT_SUBJECT::MEASUREMENTS:
            m_measurements.emplace(&plan, MEASUREMENTS());
            break;
        case FORMAT_SUBJECT::KEYS:
            break;
        }
    }
    for (const STREAM_JOB& job : m_stream_jobs) {
        for (const STREAM_INPUT& input : job.inputs) {
            std::string message;
            const auto file = FILE_SOURCE::open(input.path, message);
            m_input_bytes += file ? file->size() : 0;
        }
    }
}

std::vector<STREAM_INPUT> INGREDIENTS::inputs_of(const std::vector<BITSTREAM_PICK>& picks,
                                                 const std::string& options_of) const
{
    const PGM_COMMON_XML_VEK_FLASH_DEVICE* device = m_setup.flash_devices().find(options_of);
    const auto options = device == nullptr ? std::nullopt : onchip_options(m_setup, *device);
    std::vector<STREAM_INPUT> inputs;
    for (const BITSTREAM_PICK& pick : picks) {
        const PGM_COMMON_XML_VEK_BITSTREAM& bitstream = *m_setup.bitstreams().find(pick.id);
        auto of_one = stream_inputs(bitstream, options);
        m_security.apply(bitstream, of_one);
        apply_pick(pick, of_one);
        inputs.insert(inputs.end(), of_one.begin(), of_one.end());
    }
    return inputs;
}

void INGREDIENTS::build_streams()
{
    run_parallel(m_stream_jobs.size(), m_options.threads, [this](std::size_t i) {
        const auto& [part, inputs, stream] = m_stream_jobs[i];
        stream->content =
            build_configuration_stream(inputs, m_temporary_directory, stream->failure, selection_of(part));
        for (const STREAM_INPUT& input : inputs) {
            std::string message;
            const auto file = FILE_SOURCE::open(input.path, message);
            PROGRESS::instance().advance(file ? file->size() : 0, input.path);
        }
    });
    measure();
}

void INGREDIENTS::measure()
{
    for (auto& [plan, measured] : m_measurements) {
        for (const STREAM_INPUT& input : inputs_of(picks_of(*plan), "")) {
            if (measured.failure.empty()) {
                measure_image(input, measured.content.emplace_back(), measured.failure);
            }
        }
    }
}

bool INGREDIENTS::report_digests() const
{
    bool all = true;
    const auto tell = [&all](const OUTPUT_PLAN& plan, const std::string& failure) {
        if (!failure.empty()) {
            report_failure(plan, failure);
            all = false;
        }
    };
    for (const OUTPUT_PLAN& plan : m_plans) {
        switch (subject_of(plan)) {
        case FORMAT_SUBJECT::FLASH_IMAGE:
            for (const BITSTREAM_PICK& pick : picks_of(plan)) {
                tell(plan, m_streams.at(stream_key(plan.part, {pick}, options_of(flash_key(plan)))).failure);
            }
            break;
        case FORMAT_SUBJECT::STREAM:
            tell(plan, m_streams.at(stream_key(plan.part, picks_of(plan))).failure);
            break;
        case FORMAT_SUBJECT::MEASUREMENTS: {
            FORMAT_REQUEST request;
            std::string failure;
            NO_SINK sink;
            if (make_request(plan, request, failure)) {
                find_format(plan.type)->write(request, sink, failure);
            }
            tell(plan, failure);
            break;
        }
        case FORMAT_SUBJECT::KEYS:
            break;
        }
    }
    return all;
}

STREAM_PROVIDER INGREDIENTS::provider(FORMAT_PART part, const std::string& options_of) const
{
    return [this, part, options_of](const BITSTREAM_PICK& pick,
                                    std::string& message) -> std::shared_ptr<const BYTE_SOURCE> {
        const auto stream = m_streams.find(stream_key(part, {pick}, options_of));
        message = stream->second.failure;
        return stream->second.content;
    };
}

bool INGREDIENTS::build_flash_contents()
{
    bool usable = true;
    std::vector<std::pair<FLASH_PLAN, FLASH*>> jobs;
    for (auto& [key, flash] : m_flash) {
        FINDINGS findings;
        jobs.emplace_back(FLASH_PLAN(), &flash);
        plan_flash(m_setup, m_facts, *m_setup.flash_devices().find(key.second),
                   provider(key.first, options_of(key)), jobs.back().first, findings);
        usable = report_findings(findings) && usable;
    }
    if (!usable) {
        return false;
    }
    run_parallel(jobs.size(), m_options.threads, [&](std::size_t i) {
        auto& [plan, flash] = jobs[i];
        flash->device = plan.device;
        if (build_flash_content(plan, flash->content, flash->failure)) {
            build_boot_data(plan, flash->content, flash->boot, flash->boot_failure);
        }
    });
    return true;
}

const FLASH_CONTENT& INGREDIENTS::content_of(const OUTPUT_PLAN& plan) const
{
    const FLASH& flash = m_flash.at(flash_key(plan));
    return is_boot_only(plan) ? flash.boot : flash.content;
}

bool INGREDIENTS::request_flash(const OUTPUT_PLAN& plan, FORMAT_REQUEST& request, std::string& failure) const
{
    const FLASH& flash = m_flash.at(flash_key(plan));
    failure = flash.failure;
    if (failure.empty() && is_boot_only(plan)) {
        failure = flash.boot_failure;
    }
    request.image = content_of(plan).image.get();
    request.regions = content_of(plan).regions;
    request.device = flash.device->user_name();
    request.flash = {flash.device->jedec_id, flash.device->address_width / 8, flash.device->sector_bytes,
                     flash.device->page_bytes};
    if (!m_setup.flash_loader().empty()) {
        request.target = target_of(PGM_DEVICE_INDEX::find_by_name(m_setup.flash_loader()));
    }
    apply_file_options(plan, request);
    return failure.empty();
}

bool INGREDIENTS::add_checksums(const OUTPUT_PLAN& plan, FORMAT_REQUEST& request, std::string& failure) const
{
    if (subject_of(plan) != FORMAT_SUBJECT::FLASH_IMAGE || !find_format(plan.type)->tells_checksums()) {
        return true;
    }
    const FLASH_CONTENT& content = content_of(plan);
    for (std::size_t i = 0; i < request.regions.size(); ++i) {
        if (!content.checksums->get(i, request.regions[i].crc, failure)) {
            return false;
        }
    }
    return true;
}

std::unique_ptr<const BYTE_SOURCE> INGREDIENTS::listening_image(const OUTPUT_PLAN& plan) const
{
    return subject_of(plan) == FORMAT_SUBJECT::FLASH_IMAGE ? content_of(plan).checksums->listen() : nullptr;
}

bool INGREDIENTS::request_stream(const OUTPUT_PLAN& plan, FORMAT_REQUEST& request, std::string& failure) const
{
    const std::vector<BITSTREAM_PICK> picks = picks_of(plan);
    const STREAM& stream = m_streams.at(stream_key(plan.part, picks));
    failure = stream.failure;
    request.image = stream.content.get();
    if (!picks.empty()) {
        request.target = target_of(bitstream_device(*m_setup.bitstreams().find(picks.front().id)));
    }
    request.device = request.target.name;
    apply_file_options(plan, request);
    return failure.empty();
}

bool INGREDIENTS::request_measurements(const OUTPUT_PLAN& plan, FORMAT_REQUEST& request,
                                       std::string& failure) const
{
    const MEASUREMENTS& measured = m_measurements.at(&plan);
    failure = measured.failure;
    request.measurements = measured.content;
    request.signer = m_security.signer_of(m_setup, output_bitstreams(m_setup, *plan.output));
    return failure.empty();
}

bool INGREDIENTS::make_request(const OUTPUT_PLAN& plan, FORMAT_REQUEST& request, std::string& failure) const
{
    switch (subject_of(plan)) {
    case FORMAT_SUBJECT::FLASH_IMAGE:
        return request_flash(plan, request, failure);
    case FORMAT_SUBJECT::STREAM:
        return request_stream(plan, request, failure);
    case FORMAT_SUBJECT::MEASUREMENTS:
        return request_measurements(plan, request, failure);
    case FORMAT_SUBJECT::KEYS:
        break;
    }
    return m_security.key_programs(m_setup, plan, request.keys, failure);
}
