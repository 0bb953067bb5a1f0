#include "generate_job.h"

#include "atomic_file.h"
#include "check.h"
#include "configuration_stream.h"
#include "core_dump_guard.h"
#include "fio_path.h"
#include "flash_plan.h"
#include "format_registry.h"
#include "parallel.h"
#include "pgm_device.h"
#include "progress.h"
#include "same_file.h"
#include "setup_security.h"
#include "vek_msgs.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <mutex>
#include <new>
#include <set>

namespace
{

/// A source that tells the progress what has been read of it.
class PROGRESS_SOURCE final : public BYTE_SOURCE
{
public:
    PROGRESS_SOURCE(const BYTE_SOURCE& base, std::string file) : m_base(base), m_file(std::move(file)) {}
    std::uint64_t size() const override { return m_base.size(); }
    bool read(std::uint64_t offset, std::span<std::uint8_t> into, std::string& message) const override
    {
        PROGRESS::instance().advance(into.size(), m_file);
        return m_base.read(offset, into, message);
    }

private:
    const BYTE_SOURCE& m_base;
    std::string m_file;
};

/// Takes what is written only to be signed.
class NO_SINK final : public BYTE_SINK
{
public:
    bool write(std::span<const std::uint8_t>, std::string&) override { return true; }
};

/// The message factories put a full stop behind the reason.
std::string without_full_stop(std::string sentence)
{
    if (sentence.ends_with('.')) {
        sentence.pop_back();
    }
    return sentence;
}

/// Something made once for several outputs.
template <class CONTENT>
struct INGREDIENT {
    CONTENT content;
    std::string failure; ///< empty when the content is there
};

using STREAM = INGREDIENT<std::shared_ptr<const BYTE_SOURCE>>;

class JOB
{
public:
    JOB(const PGM_COMMON_XML_VEK_VEK& document, const GENERATE_OPTIONS& options)
        : m_setup(document), m_options(options), m_plans(plan_files(m_setup, options.output_directory))
    {
    }

    /// Verifies what stands at the places of the outputs, or `file` in the place of one of them.
    bool verify(const std::string& file, std::vector<OUTPUT_VERDICT>& verdicts)
    {
        FINDINGS findings;
        check_setup(m_setup.document(), false, m_options.output_directory, findings);
        if (!report(findings)) {
            return false;
        }
        if (!file.empty() && !keep_output_of(file)) {
            return true;
        }
        if (!load_keys()) {
            return false;
        }
        m_facts = find_setup_facts(m_setup);
        collect();
        std::error_code error;
        m_directories = {std::filesystem::temp_directory_path(error).string()};
        const PROGRESS_SCOPE scope(m_input_bytes);
        build_streams();
        measure();
        if (!build_flash_contents()) {
            return false;
        }
        verdicts.resize(m_plans.size());
        run_parallel(m_plans.size(), m_options.threads, [&](std::size_t i) {
            verdicts[i].path = m_plans[i].path;
            verdicts[i].type = m_plans[i].type;
            verify_one(m_plans[i], verdicts[i]);
        });
        return true;
    }

    bool run(std::vector<WRITTEN_FILE>& written)
    {
        if (!may_begin() || !load_keys()) {
            return false;
        }
        m_facts = find_setup_facts(m_setup);
        collect();
        const PROGRESS_SCOPE scope(m_input_bytes);
        for (const std::string& directory : m_directories) {
            ATOMIC_FILE::sweep_stale_files(directory);
        }
        build_streams();
        measure();
        if (!m_options.desk.digest_directory.empty()) {
            return report_digests();
        }
        if (!build_flash_contents()) {
            return false;
        }
        write_all();
        bool all = true;
        for (const std::optional<WRITTEN_FILE>& file : m_written) {
            all = all && file.has_value();
            if (file) {
                written.push_back(*file);
            }
        }
        return all;
    }

private:
    /// The output with the path of the file, or else with its name, is left, with that path.
    bool keep_output_of(const std::string& file)
    {
        auto found = std::find_if(m_plans.begin(), m_plans.end(),
                                  [&](const OUTPUT_PLAN& plan) { return same_file(plan.path, file); });
        if (found == m_plans.end()) {
            found = std::find_if(m_plans.begin(), m_plans.end(), [&](const OUTPUT_PLAN& plan) {
                return plan.file_name == FIO_PATH(file).filename();
            });
        }
        if (found == m_plans.end()) {
            return false;
        }
        const OUTPUT_PLAN kept = *found;
        m_plans = {kept};
        m_plans.front().path = absolute_path(file);
        return true;
    }

    void verify_one(const OUTPUT_PLAN& plan, OUTPUT_VERDICT& verdict) const
    {
        FORMAT_REQUEST request;
        std::string message;
        const FORMAT* format = find_format(plan.type);
        if (format == nullptr) {
            verdict.problem = plan.path + ": this type of file cannot be verified.";
            return;
        }
        if (!make_request(plan, request, message)) {
            verdict.problem = message;
            return;
        }
        const auto file = FILE_SOURCE::open(plan.path, message);
        if (!file) {
            verdict.problem = message;
            return;
        }
        verdict.size = file->size();
        if (!format->verify(request, *file, message)) {
            verdict.problem = plan.path + ": " + message;
        }
    }

    /// Reports what forbids generation and says whether there was nothing of that kind.
    static bool report(const FINDINGS& findings)
    {
        for (const FINDING& finding : findings.all()) {
            if (finding.row().severity != FINDING_WARNING) {
                vek_report(MSG_VEK::E::SETTINGS_CHECK_ERROR(finding.sentence()));
            }
        }
        return findings.can_generate();
    }

    bool may_begin()
    {
        FINDINGS findings;
        check_setup(m_setup.document(), false, m_options.output_directory, findings);
        if (!report(findings)) {
            return false;
        }
        bool directories_exist = true;
        FINDINGS targets;
        FINDINGS of_targets;
        check_targets(m_setup, m_plans, of_targets);
        for (const FINDING& finding : of_targets.all()) {
            if (finding.kind != FINDING_DIRECTORY_MISSING) {
                targets.add(finding.kind, finding.element, finding.text);
                continue;
            }
            directories_exist = false;
            for (const OUTPUT_PLAN& plan : m_plans) {
                if (plan.label == finding.element) {
                    vek_report(MSG_VEK::E::OUTPUT_DIRECTORY_DOES_NOT_EXISTS(plan.directory));
                }
            }
        }
        return report(targets) && directories_exist;
    }

    bool load_keys()
    {
        if (holds_secrets(m_setup)) {
            m_guard.emplace();
        }
        FINDINGS findings;
        m_security.load(m_setup, m_options.desk, findings);
        return report(findings);
    }

    static STREAM_SELECTION selection_of(FORMAT_PART part)
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
    static std::string stream_key(FORMAT_PART part, const std::vector<std::string>& ids,
                                  const std::string& options_of = "")
    {
        std::string key = std::to_string(static_cast<unsigned>(part)) + ' ' +
                          std::to_string(options_of.size()) + ":" + options_of;
        for (const std::string& id : ids) {
            key += std::to_string(id.size()) + ":" + id;
        }
        return key;
    }

    std::vector<std::string> stream_ids(const OUTPUT_PLAN& plan) const
    {
        return output_bitstreams(m_setup, *plan.output);
    }

    static FORMAT_SUBJECT subject_of(const OUTPUT_PLAN& plan)
    {
        const FORMAT_ROW* row = find_format_row(plan.type);
        return row != nullptr ? row->subject : FORMAT_SUBJECT::STREAM;
    }

    static bool is_from_flash(const OUTPUT_PLAN& plan)
    {
        return subject_of(plan) == FORMAT_SUBJECT::FLASH_IMAGE;
    }

    using FLASH_KEY = std::pair<FORMAT_PART, std::string>;

    /// Empty where a device has no options of its own, so that its streams are shared with other outputs.
    std::string options_of(const FLASH_KEY& key) const
    {
        return onchip_options(m_setup, *m_setup.flash_devices().find(key.second)) ? key.second : "";
    }

    static FLASH_KEY flash_key(const OUTPUT_PLAN& plan)
    {
        return {plan.part, plan.output->flash_device_id.front()->text};
    }

    /// `options_of`: the flash device whose options the stream takes, empty for those of the files.
    void want_stream(FORMAT_PART part, const std::vector<std::string>& ids,
                     const std::string& options_of = "")
    {
        const auto [entry, is_new] = m_streams.emplace(stream_key(part, ids, options_of), STREAM());
        if (is_new) {
            m_stream_jobs.push_back({part, inputs_of(ids, options_of), &entry->second});
        }
    }

    void collect()
    {
        for (const OUTPUT_PLAN& plan : m_plans) {
            m_directories.insert(plan.directory);
            switch (subject_of(plan)) {
            case FORMAT_SUBJECT::FLASH_IMAGE:
                if (m_flash.emplace(flash_key(plan), FLASH()).second) {
                    for (const std::string& id : stream_ids(plan)) {
                        want_stream(plan.part, {id}, options_of(flash_key(plan)));
                    }
                }
                break;
            case FORMAT_SUBJECT::STREAM:
                want_stream(plan.part, stream_ids(plan));
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

    std::vector<STREAM_INPUT> inputs_of(const std::vector<std::string>& ids,
                                        const std::string& options_of) const
    {
        const PGM_COMMON_XML_VEK_FLASH_DEVICE* device = m_setup.flash_devices().find(options_of);
        const auto options = device == nullptr ? std::nullopt : onchip_options(m_setup, *device);
        std::vector<STREAM_INPUT> inputs;
        for (const std::string& id : ids) {
            const PGM_COMMON_XML_VEK_BITSTREAM& bitstream = *m_setup.bitstreams().find(id);
            auto of_one = stream_inputs(bitstream, options);
            m_security.apply(bitstream, of_one);
            inputs.insert(inputs.end(), of_one.begin(), of_one.end());
        }
        return inputs;
    }

    void build_streams()
    {
        run_parallel(m_stream_jobs.size(), m_options.threads, [this](std::size_t i) {
            const auto& [part, inputs, stream] = m_stream_jobs[i];
            stream->content = build_configuration_stream(inputs, *m_directories.begin(), stream->failure,
                                                         selection_of(part));
            for (const STREAM_INPUT& input : inputs) {
                std::string message;
                const auto file = FILE_SOURCE::open(input.path, message);
                PROGRESS::instance().advance(file ? file->size() : 0, input.path);
            }
        });
    }

    /// Measures the images of all manifests.
    void measure()
    {
        for (auto& [plan, measured] : m_measurements) {
            for (const STREAM_INPUT& input : inputs_of(stream_ids(*plan), "")) {
                if (measured.failure.empty()) {
                    measure_image(input, measured.content.emplace_back(), measured.failure);
                }
            }
        }
    }

    /// The streams have left their digests at the desk; those of the manifests follow.
    bool report_digests() const
    {
        bool all = true;
        const auto tell = [&all](const OUTPUT_PLAN& plan, const std::string& failure) {
            if (!failure.empty()) {
                fail(plan, failure);
                all = false;
            }
        };
        for (const OUTPUT_PLAN& plan : m_plans) {
            switch (subject_of(plan)) {
            case FORMAT_SUBJECT::FLASH_IMAGE:
                for (const std::string& id : stream_ids(plan)) {
                    tell(plan,
                         m_streams.at(stream_key(plan.part, {id}, options_of(flash_key(plan)))).failure);
                }
                break;
            case FORMAT_SUBJECT::STREAM:
                tell(plan, m_streams.at(stream_key(plan.part, stream_ids(plan))).failure);
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

    STREAM_PROVIDER provider(FORMAT_PART part, const std::string& options_of) const
    {
        return [this, part, options_of](const PGM_COMMON_XML_VEK_BITSTREAM& bitstream,
                                        std::string& message) -> std::shared_ptr<const BYTE_SOURCE> {
            const auto stream = m_streams.find(stream_key(part, {bitstream.id}, options_of));
            message = stream->second.failure;
            return stream->second.content;
        };
    }

    /// False when a layout cannot be used, which has been reported.
    bool build_flash_contents()
    {
        bool usable = true;
        std::vector<std::pair<FLASH_PLAN, FLASH*>> jobs;
        for (auto& [key, flash] : m_flash) {
            FINDINGS findings;
            jobs.emplace_back(FLASH_PLAN(), &flash);
            plan_flash(m_setup, m_facts, *m_setup.flash_devices().find(key.second),
                       provider(key.first, options_of(key)), jobs.back().first, findings);
            usable = report(findings) && usable;
        }
        if (!usable) {
            return false;
        }
        run_parallel(jobs.size(), m_options.threads, [&](std::size_t i) {
            auto& [plan, flash] = jobs[i];
            flash->device = plan.device;
            build_flash_content(plan, flash->content, flash->failure);
        });
        return true;
    }

    static JTAG_TARGET target_of(const PGM_DEVICE* device)
    {
        return device != nullptr
                   ? JTAG_TARGET{device->user_name(), device->idcode, device->instruction_length}
                   : JTAG_TARGET();
    }

    /// The request of an output; false with the reason when what it is made from is not there.
    bool make_request(const OUTPUT_PLAN& plan, FORMAT_REQUEST& request, std::string& failure) const
    {
        const FORMAT_SUBJECT subject = subject_of(plan);
        if (subject == FORMAT_SUBJECT::KEYS) {
            return m_security.key_programs(m_setup, plan, request.keys, failure);
        }
        if (subject == FORMAT_SUBJECT::MEASUREMENTS) {
            const MEASUREMENTS& measured = m_measurements.at(&plan);
            failure = measured.failure;
            request.measurements = measured.content;
            request.signer = m_security.signer_of(m_setup, stream_ids(plan));
            return failure.empty();
        }
        if (subject == FORMAT_SUBJECT::FLASH_IMAGE) {
            const FLASH& flash = m_flash.at(flash_key(plan));
            failure = flash.failure;
            request.image = flash.content.image.get();
            request.regions = flash.content.regions;
            request.device = flash.device->user_name();
            request.flash = {flash.device->jedec_id, flash.device->address_width / 8,
                             flash.device->sector_bytes, flash.device->page_bytes};
            if (!m_setup.flash_loader().empty()) {
                request.target = target_of(PGM_DEVICE_INDEX::find_by_name(m_setup.flash_loader()));
            }
        } else {
            const std::vector<std::string> ids = stream_ids(plan);
            const STREAM& stream = m_streams.at(stream_key(plan.part, ids));
            failure = stream.failure;
            request.image = stream.content.get();
            if (!ids.empty()) {
                request.target = target_of(bitstream_device(*m_setup.bitstreams().find(ids.front())));
            }
            request.device = request.target.name;
        }
        apply_file_options(plan, request);
        return failure.empty();
    }

    void write_all()
    {
        m_written.resize(m_plans.size());
        std::uint64_t total = 0;
        for (const OUTPUT_PLAN& plan : m_plans) {
            FORMAT_REQUEST request;
            std::string failure;
            if (make_request(plan, request, failure) && request.image != nullptr) {
                total += 2 * request.image->size();
            }
        }
        const PROGRESS_SCOPE scope(total);
        run_parallel(m_plans.size(), m_options.threads, [this](std::size_t i) {
            try {
                write_one(m_plans[i], m_written[i]);
            } catch (const std::bad_alloc&) {
                vek_report(MSG_VEK::E::GENERIC_ERROR(m_plans[i].path, "there is not enough memory"));
            }
        });
    }

    static void fail(const OUTPUT_PLAN& plan, const std::string& reason)
    {
        vek_report(MSG_VEK::E::GENERIC_ERROR(plan.path, without_full_stop(reason)));
    }

    void write_one(const OUTPUT_PLAN& plan, std::optional<WRITTEN_FILE>& written) const
    {
        FORMAT_REQUEST request;
        std::string message;
        const FORMAT* format = find_format(plan.type);
        if (format == nullptr) {
            vek_report(MSG_VEK::E::CAN_NOT_GENERATE(plan.path));
            return;
        }
        if (!make_request(plan, request, message)) {
            fail(plan, message);
            return;
        }
        std::optional<PROGRESS_SOURCE> watched;
        if (request.image != nullptr) {
            request.image = &watched.emplace(*request.image, plan.path);
        }
        const auto file =
            ATOMIC_FILE::create(plan.path, find_format_row(plan.type)->is_secret ? 0600 : 0666, message);
        if (!file || !format->write(request, *file, message)) {
            fail(plan, message);
            return;
        }
        const auto back = file->read_back(message);
        if (!back) {
            fail(plan, message);
        } else if (!format->verify(request, *back, message)) {
            vek_report(MSG_VEK::E::INTEGRITY_CHECK_ERROR(plan.path + ": " + message));
        } else if (!file->commit(message)) {
            fail(plan, message);
        } else {
            written = WRITTEN_FILE{plan.path, plan.type, file->size()};
            vek_report(MSG_VEK::DEBUG_MSG("Wrote %s, %llu bytes", plan.path.c_str(),
                                          static_cast<unsigned long long>(file->size())));
        }
    }

    using MEASUREMENTS = INGREDIENT<std::vector<IMAGE_MEASUREMENTS>>;

    struct FLASH {
        FLASH_CONTENT content;
        const PGM_DEVICE* device = nullptr;
        std::string failure;
    };

    struct STREAM_JOB {
        FORMAT_PART part;
        std::vector<STREAM_INPUT> inputs;
        STREAM* stream;
    };

    const SETUP_VIEW m_setup;
    const GENERATE_OPTIONS& m_options;
    std::vector<OUTPUT_PLAN> m_plans;
    SETUP_FACTS m_facts;
    std::set<std::string> m_directories;
    std::uint64_t m_input_bytes = 0;
    std::map<std::string, STREAM> m_streams;
    std::vector<STREAM_JOB> m_stream_jobs;
    std::map<FLASH_KEY, FLASH> m_flash;
    std::map<const OUTPUT_PLAN*, MEASUREMENTS> m_measurements;
    std::optional<CORE_DUMP_GUARD> m_guard; ///< before the keys, so that it outlives them
    SETUP_SECURITY m_security;
    std::vector<std::optional<WRITTEN_FILE>> m_written;
};

} // namespace

bool generate_document(const PGM_COMMON_XML_VEK_VEK& document, const GENERATE_OPTIONS& options,
                       std::vector<WRITTEN_FILE>& written)
{
    return JOB(document, options).run(written);
}

bool verify_outputs(const PGM_COMMON_XML_VEK_VEK& document, const VERIFY_OPTIONS& options,
                    std::vector<OUTPUT_VERDICT>& verdicts)
{
    const GENERATE_OPTIONS places{options.output_directory, options.threads, options.desk};
    return JOB(document, places).verify(options.file, verdicts);
}
