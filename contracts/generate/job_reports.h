#ifndef JOB_REPORTS_H
#define JOB_REPORTS_H

#include "finding.h"
#include "msg_base.h"
#include "output_plan.h"

#include <memory>
#include <string>
#include <vector>

/// Reports what forbids generation and says whether there was nothing of that kind.
bool report_findings(const FINDINGS& findings);

/// The message that an output could not be written, and why: a whole sentence.
std::unique_ptr<MSG_BASE> failure_of(const OUTPUT_PLAN& plan, const std::string& reason);

/// Reports it at once.
void report_failure(const OUTPUT_PLAN& plan, const std::string& reason);

/// Reports of each of them that memory did not suffice for it.
void report_memory_shortage(const std::vector<OUTPUT_PLAN>& plans);

#endif
