#include "arguments.h"
#include "check.h"
#include "command.h"
#include "commands.h"
#include "findings_report.h"
#include "generate_job.h"
#include "progress_bar.h"
#include "setup_argument.h"
#include "vek_db.h"
#include "vek_file_assistant.h"

namespace
{

/// generate: writes the output files of a setup.
class CMD_GENERATE final : public COMMAND
{
public:
    CLI::App* declare(CLI::App& application) override
    {
        CLI::App* command = application.add_subcommand("generate", "Write the output files of a setup");
        command->add_option("setup", m_setup, "Setup file (.vek)")->type_name("SETUP")->required();
        command
            ->add_option("--output-directory", m_directory,
                         "Write all files here instead of where the setup says")
            ->type_name("DIR");
        command->footer("Example:\n  imagewright-cmd generate board.vek --output-directory /srv/line-3");
        return command;
    }

    EXIT_CODE execute(const COMMAND_CONTEXT& context) override
    {
        std::unique_ptr<PGM_COMMON_XML_VEK_VEK> document;
        std::string message;
        if (!open_setup(m_setup, document, message)) {
            context.fail(message);
            return EXIT_CODE_INPUT_UNREADABLE;
        }
        FINDINGS findings;
        check_setup(*document, true, m_directory, findings);
        if (!findings.can_generate()) {
            context.fail_with(findings_json(m_setup, findings), findings_text(m_setup, findings));
            return EXIT_CODE_REFUSED;
        }
        return generate(context, *document);
    }

private:
    EXIT_CODE generate(const COMMAND_CONTEXT& context, const PGM_COMMON_XML_VEK_VEK& document) const
    {
        GENERATE_OPTIONS options;
        options.output_directory = m_directory;
        std::vector<WRITTEN_FILE> written;
        bool complete = false;
        {
            const PROGRESS_BAR bar(!context.quiet && !context.json);
            complete = generate_document(document, options, written);
        }
        JSON files = JSON::array();
        std::string text;
        for (const WRITTEN_FILE& file : written) {
            files.push_back(
                {{"file", file.path},
                 {"type", VEK_FILE_ASSISTANT::convert_xml_enum_to_string(VEK_DB::get_xml_enum(file.type))},
                 {"bytes", file.size}});
            text += "Wrote " + file.path + ", " + bytes_text(file.size) + ".\n";
        }
        context.print(JSON{{"setup", m_setup}, {"complete", complete}, {"files", std::move(files)}}, text);
        return complete ? EXIT_CODE_DONE : EXIT_CODE_OUTPUT_NOT_WRITTEN;
    }

    std::string m_setup;
    std::string m_directory;
};

} // namespace

std::unique_ptr<COMMAND> make_cmd_generate()
{
    return std::make_unique<CMD_GENERATE>();
}
