#include "job_reports.h"

#include "vek_msgs.h"

namespace
{

/// The message factories put a full stop behind the reason.
std::string without_full_stop(std::string sentence)
{
    if (sentence.ends_with('.')) {
        sentence.pop_back();
    }
    return sentence;
}

} // namespace

bool report_findings(const FINDINGS& findings)
{
    for (const FINDING& finding : findings.all()) {
        if (finding.row().severity != FINDING_WARNING) {
            vek_report(MSG_VEK::E::SETTINGS_CHECK_ERROR(finding.sentence()));
        }
    }
    return findings.can_generate();
}

std::unique_ptr<MSG_BASE> failure_of(const OUTPUT_PLAN& plan, const std::string& reason)
{
    return std::unique_ptr<MSG_BASE>(MSG_VEK::E::GENERIC_ERROR(plan.path, without_full_stop(reason)));
}

void report_failure(const OUTPUT_PLAN& plan, const std::string& reason)
{
    vek_report(failure_of(plan, reason).release());
}

void report_memory_shortage(const std::vector<OUTPUT_PLAN>& plans)
{
    for (const OUTPUT_PLAN& plan : plans) {
        report_failure(plan, "there is not enough memory");
    }
}
