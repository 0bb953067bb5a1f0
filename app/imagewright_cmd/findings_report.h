#ifndef FINDINGS_REPORT_H
#define FINDINGS_REPORT_H

#include "command.h"
#include "finding.h"

/// The findings of a check as a JSON document, and as lines for people with a verdict at the end.
JSON findings_json(const std::string& setup, const FINDINGS& findings);
std::string findings_text(const std::string& setup, const FINDINGS& findings);

#endif
