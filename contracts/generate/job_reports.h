#ifndef JOB_REPORTS_H
#define JOB_REPORTS_H

#include "finding.h"
#include "output_plan.h"

#include <string>
#include <vector>

/// Reports what forbids generation and says whether there was nothing of that kind.
bool report_findings(const FINDINGS& findings);

/// Reports that an output could not be written, and why: a whole sentence.
void report_failure(const OUTPUT_PLAN& plan, const std::string& reason);

/// Reports of each of them that memory did not suffice for it.
void report_memory_shortage(const std::vector<OUTPUT_PLAN>& plans);

#endif
