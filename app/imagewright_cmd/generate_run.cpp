#include "generate_run.h"

#include "check.h"
#include "findings_report.h"
#include "progress_bar.h"
#include "vek_db.h"
#include "vek_file_assistant.h"

GENERATE_RUN::GENERATE_RUN(const PGM_COMMON_XML_VEK_VEK& document, std::string setup,
                           GENERATE_OPTIONS options)
    : m_document(document), m_setup(std::move(setup)), m_options(std::move(options))
{
}

bool GENERATE_RUN::check()
{
    FINDINGS findings;
    check_setup(m_document, true, m_options.output_directory, findings, m_options.desk);
    if (!findings.can_generate()) {
        m_exit_code = EXIT_CODE_REFUSED;
        m_json = findings_json(m_setup, findings);
        m_err = findings_text(m_setup, findings);
    }
    return m_exit_code == EXIT_CODE_DONE;
}

void GENERATE_RUN::generate(bool progress)
{
    if (m_exit_code != EXIT_CODE_DONE) {
        return;
    }
    std::vector<WRITTEN_FILE> written;
    bool complete = false;
    {
        const PROGRESS_BAR bar(progress);
        complete = generate_document(m_document, m_options, written);
    }
    JSON files = JSON::array();
    for (const WRITTEN_FILE& file : written) {
        files.push_back(
            {{"file", file.path},
             {"type", VEK_FILE_ASSISTANT::convert_xml_enum_to_string(VEK_DB::get_xml_enum(file.type))},
             {"bytes", file.size}});
        m_out += "Wrote " + file.path + ", " + bytes_text(file.size) + ".\n";
    }
    if (complete && !m_options.desk.digest_directory.empty()) {
        m_out += "Wrote the digests of " + m_setup + " to " + m_options.desk.digest_directory + ".\n";
    }
    m_json = JSON{{"setup", m_setup}, {"complete", complete}, {"files", std::move(files)}};
    m_exit_code = complete ? EXIT_CODE_DONE : EXIT_CODE_OUTPUT_NOT_WRITTEN;
}

void GENERATE_RUN::print(const COMMAND_CONTEXT& context) const
{
    if (m_err.empty()) {
        context.print(m_json, m_out);
    } else {
        context.fail_with(m_json, m_err);
    }
}
