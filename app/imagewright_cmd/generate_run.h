#ifndef GENERATE_RUN_H
#define GENERATE_RUN_H

#include "command.h"
#include "generate_job.h"
#include "output_plan.h"

#include <string>

/// One setup on its way from the check to its files, and what there is to say about it.
class GENERATE_RUN
{
public:
    /// `document` must outlive the run; `setup`: its name in what is said.
    GENERATE_RUN(const PGM_COMMON_XML_VEK_VEK& document, std::string setup, GENERATE_OPTIONS options);

    /// The whole check, files included. True when generation may begin.
    bool check();
    /// Writes the files, unless the check has refused; `progress` draws a bar.
    void generate(bool progress);

    /// The exit code that the setup deserves, and the documents and texts for the two streams.
    EXIT_CODE exit_code() const { return m_exit_code; }
    const JSON& json() const { return m_json; }
    const std::string& out() const { return m_out; }
    const std::string& err() const { return m_err; }
    void print(const COMMAND_CONTEXT& context) const;

private:
    const PGM_COMMON_XML_VEK_VEK& m_document;
    const std::string m_setup;
    const GENERATE_OPTIONS m_options;
    EXIT_CODE m_exit_code = EXIT_CODE_DONE;
    JSON m_json;
    std::string m_out;
    std::string m_err;
};

#endif
