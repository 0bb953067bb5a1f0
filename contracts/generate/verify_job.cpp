#include "check.h"
#include "fio_path.h"
#include "format_registry.h"
#include "generate_job.h"
#include "ingredients.h"
#include "job_reports.h"
#include "parallel.h"
#include "progress.h"
#include "same_file.h"

#include <algorithm>
#include <filesystem>
#include <new>

namespace
{

class VERIFICATION
{
public:
    VERIFICATION(const PGM_COMMON_XML_VEK_VEK& document, const GENERATE_OPTIONS& options)
        : m_setup(document), m_options(options), m_plans(plan_files(m_setup, options.output_directory)),
          m_ingredients(m_setup, m_options, m_plans)
    {
    }

    /// Verifies what stands at the places of the outputs, or `file` in the place of one of them.
    bool run(const std::string& file, std::vector<OUTPUT_VERDICT>& verdicts)
    {
        FINDINGS findings;
        check_setup(m_setup.document(), false, m_options.output_directory, findings);
        if (!report_findings(findings)) {
            return false;
        }
        if (!file.empty() && !keep_output_of(file)) {
            return true;
        }
        if (!m_ingredients.load_keys()) {
            return false;
        }
        std::error_code error;
        m_ingredients.collect(std::filesystem::temp_directory_path(error).string());
        const PROGRESS_SCOPE scope(m_ingredients.input_bytes());
        m_ingredients.build_streams();
        if (!m_ingredients.build_flash_contents()) {
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
        if (!m_ingredients.make_request(plan, request, message) ||
            !m_ingredients.add_checksums(plan, request, message)) {
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

    const SETUP_VIEW m_setup;
    const GENERATE_OPTIONS& m_options;
    std::vector<OUTPUT_PLAN> m_plans;
    INGREDIENTS m_ingredients;
};

} // namespace

bool verify_outputs(const PGM_COMMON_XML_VEK_VEK& document, const VERIFY_OPTIONS& options,
                    std::vector<OUTPUT_VERDICT>& verdicts)
{
    const GENERATE_OPTIONS places{options.output_directory, options.threads, options.desk};
    try {
        return VERIFICATION(document, places).run(options.file, verdicts);
    } catch (const std::bad_alloc&) {
        verdicts.clear();
        report_memory_shortage(plan_files(SETUP_VIEW(document), options.output_directory));
        return false;
    }
}
