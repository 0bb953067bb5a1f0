#include "generate_job.h"

#include "atomic_file.h"
#include "check.h"
#include "format_registry.h"
#include "ingredients.h"
#include "job_reports.h"
#include "parallel.h"
#include "progress.h"
#include "vek_msgs.h"

#include <algorithm>
#include <new>
#include <numeric>

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

class GENERATION
{
public:
    GENERATION(const PGM_COMMON_XML_VEK_VEK& document, const GENERATE_OPTIONS& options)
        : m_setup(document), m_options(options), m_plans(plan_files(m_setup, options.output_directory)),
          m_ingredients(m_setup, m_options, m_plans)
    {
    }

    bool run(std::vector<WRITTEN_FILE>& written)
    {
        if (!may_begin() || !m_ingredients.load_keys()) {
            return false;
        }
        std::set<std::string> directories;
        for (const OUTPUT_PLAN& plan : m_plans) {
            directories.insert(plan.directory);
        }
        m_ingredients.collect(*directories.begin());
        const PROGRESS_SCOPE scope(m_ingredients.input_bytes());
        for (const std::string& directory : directories) {
            ATOMIC_FILE::sweep_stale_files(directory);
        }
        m_ingredients.build_streams();
        if (!m_options.desk.digest_directory.empty()) {
            return m_ingredients.report_digests();
        }
        if (!m_ingredients.build_flash_contents()) {
            return false;
        }
        // Once files stand, nothing may keep them from being told.
        written.reserve(written.size() + m_plans.size());
        write_all();
        for (std::optional<WRITTEN_FILE>& file : m_written) {
            if (file) {
                written.push_back(std::move(*file));
            }
        }
        return report_failures();
    }

private:
    bool may_begin()
    {
        FINDINGS findings;
        check_setup(m_setup.document(), false, m_options.output_directory, findings);
        if (!report_findings(findings)) {
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
        return report_findings(targets) && directories_exist;
    }

    /// Those that tell checksums come last: whoever writes the image before them finds these out by the way.
    std::vector<std::size_t> writing_order() const
    {
        std::vector<std::size_t> order(m_plans.size());
        std::iota(order.begin(), order.end(), std::size_t(0));
        std::stable_partition(order.begin(), order.end(), [this](std::size_t i) {
            const FORMAT* const format = find_format(m_plans[i].type);
            return format == nullptr || !format->tells_checksums();
        });
        return order;
    }

    void write_all()
    {
        m_written.resize(m_plans.size());
        std::uint64_t total = 0;
        for (const OUTPUT_PLAN& plan : m_plans) {
            FORMAT_REQUEST request;
            std::string failure;
            if (m_ingredients.make_request(plan, request, failure) && request.image != nullptr) {
                total += 2 * request.image->size();
            }
        }
        const PROGRESS_SCOPE scope(total);
        const std::vector<std::size_t> order = writing_order();
        m_failures.resize(m_plans.size());
        run_parallel(m_plans.size(), m_options.threads, [&](std::size_t turn) {
            const std::size_t i = order[turn];
            try {
                m_failures[i] = write_one(m_plans[i], m_written[i]);
            } catch (const std::bad_alloc&) {
                // Told later. Of a file that stands only the note of it has got lost.
            }
        });
    }

    /// In the order of the document, whichever came first; true when there are none.
    bool report_failures()
    {
        bool none = true;
        for (std::size_t i = 0; i < m_plans.size(); ++i) {
            none = none && m_written[i].has_value();
            if (m_failures[i]) {
                vek_report(m_failures[i].release());
            } else if (!m_written[i]) {
                report_memory_shortage({m_plans[i]});
            }
        }
        return none;
    }

    /// What has failed; null for a file that stands.
    std::unique_ptr<MSG_BASE> write_one(const OUTPUT_PLAN& plan, std::optional<WRITTEN_FILE>& written) const
    {
        FORMAT_REQUEST request;
        std::string message;
        const FORMAT* format = find_format(plan.type);
        if (format == nullptr) {
            return std::unique_ptr<MSG_BASE>(MSG_VEK::E::CAN_NOT_GENERATE(plan.path));
        }
        if (!m_ingredients.make_request(plan, request, message) ||
            !m_ingredients.add_checksums(plan, request, message)) {
            return failure_of(plan, message);
        }
        const std::unique_ptr<const BYTE_SOURCE> listening = m_ingredients.listening_image(plan);
        std::optional<PROGRESS_SOURCE> watched;
        if (request.image != nullptr) {
            request.image = &watched.emplace(listening ? *listening : *request.image, plan.path);
        }
        const auto file =
            ATOMIC_FILE::create(plan.path, find_format_row(plan.type)->is_secret ? 0600 : 0666, message);
        if (!file || !format->write(request, *file, message)) {
            return failure_of(plan, message);
        }
        WRITTEN_FILE result{plan.path, plan.type, file->size()};
        const auto back = file->read_back(message);
        if (!back) {
            return failure_of(plan, message);
        }
        if (!format->verify(request, *back, message)) {
            return std::unique_ptr<MSG_BASE>(MSG_VEK::E::INTEGRITY_CHECK_ERROR(plan.path + ": " + message));
        }
        if (!file->commit(message)) {
            return failure_of(plan, message);
        }
        written = std::move(result);
        vek_report(MSG_VEK::DEBUG_MSG("Wrote %s, %llu bytes", plan.path.c_str(),
                                      static_cast<unsigned long long>(written->size)));
        return nullptr;
    }

    const SETUP_VIEW m_setup;
    const GENERATE_OPTIONS& m_options;
    const std::vector<OUTPUT_PLAN> m_plans;
    INGREDIENTS m_ingredients;
    std::vector<std::optional<WRITTEN_FILE>> m_written;
    std::vector<std::unique_ptr<MSG_BASE>> m_failures;
};

} // namespace

bool generate_document(const PGM_COMMON_XML_VEK_VEK& document, const GENERATE_OPTIONS& options,
                       std::vector<WRITTEN_FILE>& written)
{
    const std::size_t of_others = written.size();
    try {
        return GENERATION(document, options).run(written);
    } catch (const std::bad_alloc&) {
        // What the work held is free again, so that the files can be named.
        std::vector<OUTPUT_PLAN> missing = plan_files(SETUP_VIEW(document), options.output_directory);
        std::erase_if(missing, [&written, of_others](const OUTPUT_PLAN& plan) {
            return std::any_of(std::next(written.begin(), static_cast<std::ptrdiff_t>(of_others)),
                               written.end(),
                               [&plan](const WRITTEN_FILE& file) { return file.path == plan.path; });
        });
        report_memory_shortage(missing);
        return false;
    }
}
