#include "generate_job.h"

#include "atomic_file.h"
#include "check.h"
#include "configuration_stream.h"
#include "flash_plan.h"
#include "format_registry.h"
#include "parallel.h"
#include "pgm_device.h"
#include "progress.h"
#include "vek_msgs.h"

#include <algorithm>
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
        : m_setup(document), m_options(options), m_plans(plan_outputs(m_setup, options.output_directory))
    {
    }

    bool run(std::vector<WRITTEN_FILE>& written)
    {
        if (!may_begin()) {
            return false;
        }
        m_facts = find_setup_facts(m_setup);
        collect();
        const PROGRESS_SCOPE scope(m_input_bytes);
        for (const std::string& directory : m_directories) {
            ATOMIC_FILE::sweep_stale_files(directory);
        }
        build_streams();
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
    /// Reports what forbids generation and says whether there was nothing of that kind.
    static bool report(const FINDINGS& findings)
    {
        std::set<std::string> directories;
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

    /// The bitstreams of an output that is made from them, as one text that tells equal lists.
    static std::string stream_key(const std::vector<std::string>& ids)
    {
        std::string key;
        for (const std::string& id : ids) {
            key += std::to_string(id.size()) + ":" + id;
        }
        return key;
    }

    static std::vector<std::string> stream_ids(const OUTPUT_PLAN& plan)
    {
        std::vector<std::string> ids;
        for (const PGM_COMMON_XML_VEK_BITSTREAM_ID* id : plan.output->bitstream_id) {
            ids.push_back(id->text);
        }
        return ids;
    }

    static bool is_from_flash(const OUTPUT_PLAN& plan)
    {
        const FORMAT_ROW* row = find_format_row(plan.type);
        return row != nullptr && row->subject == FORMAT_SUBJECT::FLASH_IMAGE;
    }

    static std::string flash_id(const OUTPUT_PLAN& plan)
    {
        return plan.output->flash_device_id.front()->text;
    }

    void want_stream(const std::vector<std::string>& ids)
    {
        const auto [entry, is_new] = m_streams.emplace(stream_key(ids), STREAM());
        if (is_new) {
            m_stream_jobs.emplace_back(ids, &entry->second);
        }
    }

    void collect()
    {
        for (const OUTPUT_PLAN& plan : m_plans) {
            m_directories.insert(plan.directory);
            if (is_from_flash(plan)) {
                if (m_flash.emplace(flash_id(plan), FLASH()).second) {
                    want_streams_of(flash_id(plan));
                }
            } else {
                want_stream(stream_ids(plan));
            }
        }
        for (const auto& job : m_stream_jobs) {
            for (const STREAM_INPUT& input : inputs_of(job.first)) {
                std::string message;
                const auto file = FILE_SOURCE::open(input.path, message);
                m_input_bytes += file ? file->size() : 0;
            }
        }
    }

    void want_streams_of(const std::string& flash_device_id)
    {
        for (const PGM_COMMON_XML_VEK_PARTITION* partition :
             m_setup.flash_devices().find(flash_device_id)->partition) {
            const PGM_COMMON_XML_VEK_ASSIGNMENT* assignment = m_setup.assignments().find(partition->id);
            const bool boots = partition->id == "BOOT_INFO";
            if (assignment != nullptr && !assignment->bitstream_id.empty() && !boots) {
                want_stream({assignment->bitstream_id.front()->text});
            }
        }
    }

    std::vector<STREAM_INPUT> inputs_of(const std::vector<std::string>& ids) const
    {
        std::vector<STREAM_INPUT> inputs;
        for (const std::string& id : ids) {
            const auto of_one = stream_inputs(*m_setup.bitstreams().find(id));
            inputs.insert(inputs.end(), of_one.begin(), of_one.end());
        }
        return inputs;
    }

    void build_streams()
    {
        run_parallel(m_stream_jobs.size(), m_options.threads, [this](std::size_t i) {
            const auto& [ids, stream] = m_stream_jobs[i];
            stream->content =
                build_configuration_stream(inputs_of(ids), *m_directories.begin(), stream->failure);
            for (const STREAM_INPUT& input : inputs_of(ids)) {
                std::string message;
                const auto file = FILE_SOURCE::open(input.path, message);
                PROGRESS::instance().advance(file ? file->size() : 0, input.path);
            }
        });
    }

    const STREAM_PROVIDER m_provider = [this](const PGM_COMMON_XML_VEK_BITSTREAM& bitstream,
                                              std::string& message) -> std::shared_ptr<const BYTE_SOURCE> {
        const auto stream = m_streams.find(stream_key({bitstream.id}));
        message = stream->second.failure;
        return stream->second.content;
    };

    /// False when a layout cannot be used, which has been reported.
    bool build_flash_contents()
    {
        bool usable = true;
        std::vector<std::pair<FLASH_PLAN, FLASH*>> jobs;
        for (auto& [id, flash] : m_flash) {
            FINDINGS findings;
            jobs.emplace_back(FLASH_PLAN(), &flash);
            plan_flash(m_setup, m_facts, *m_setup.flash_devices().find(id), m_provider, jobs.back().first,
                       findings);
            usable = report(findings) && usable;
        }
        if (!usable) {
            return false;
        }
        run_parallel(jobs.size(), m_options.threads, [&](std::size_t i) {
            auto& [plan, flash] = jobs[i];
            flash->device = plan.device->user_name();
            build_flash_content(plan, flash->content, flash->failure);
        });
        return true;
    }

    /// The request of an output; false with the reason when what it is made from is not there.
    bool make_request(const OUTPUT_PLAN& plan, FORMAT_REQUEST& request, std::string& failure) const
    {
        if (is_from_flash(plan)) {
            const FLASH& flash = m_flash.at(flash_id(plan));
            failure = flash.failure;
            request.image = flash.content.image.get();
            request.regions = flash.content.regions;
            request.device = flash.device;
        } else {
            const STREAM& stream = m_streams.at(stream_key(stream_ids(plan)));
            failure = stream.failure;
            request.image = stream.content.get();
            request.device = m_facts.device != nullptr ? m_facts.device->user_name() : "";
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
            total += make_request(plan, request, failure) ? 2 * request.image->size() : 0;
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
        const PROGRESS_SOURCE watched(*request.image, plan.path);
        request.image = &watched;
        const auto file = ATOMIC_FILE::create(plan.path, 0666, message);
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

    struct FLASH {
        FLASH_CONTENT content;
        std::string device;
        std::string failure;
    };

    const SETUP_VIEW m_setup;
    const GENERATE_OPTIONS& m_options;
    const std::vector<OUTPUT_PLAN> m_plans;
    SETUP_FACTS m_facts;
    std::set<std::string> m_directories;
    std::uint64_t m_input_bytes = 0;
    std::map<std::string, STREAM> m_streams;
    std::vector<std::pair<std::vector<std::string>, STREAM*>> m_stream_jobs;
    std::map<std::string, FLASH> m_flash;
    std::vector<std::optional<WRITTEN_FILE>> m_written;
};

} // namespace

bool generate_document(const PGM_COMMON_XML_VEK_VEK& document, const GENERATE_OPTIONS& options,
                       std::vector<WRITTEN_FILE>& written)
{
    return JOB(document, options).run(written);
}
