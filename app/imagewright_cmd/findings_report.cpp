#include "findings_report.h"

JSON findings_json(const std::string& setup, const FINDINGS& findings)
{
    JSON list = JSON::array();
    for (const FINDING& finding : findings.all()) {
        list.push_back({{"kind", finding.row().name},
                        {"severity", finding_severity_name(finding.row().severity)},
                        {"element", finding.element},
                        {"text", finding.text}});
    }
    return JSON{{"setup", setup},
                {"can_save", findings.can_save()},
                {"can_generate", findings.can_generate()},
                {"findings", std::move(list)}};
}

std::string findings_text(const std::string& setup, const FINDINGS& findings)
{
    std::string text;
    for (const FINDING& finding : findings.all()) {
        text +=
            (finding.row().severity == FINDING_WARNING ? "Warning: " : "Error: ") + finding.sentence() + '\n';
    }
    return text + setup + (findings.can_generate() ? " can be generated.\n" : " cannot be generated.\n");
}
