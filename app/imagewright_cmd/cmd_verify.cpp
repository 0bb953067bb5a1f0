#include "check.h"
#include "command.h"
#include "commands.h"
#include "findings_report.h"
#include "fio_types.h"
#include "generate_job.h"
#include "programming_file.h"
#include "progress_bar.h"
#include "setup_argument.h"
#include "vek_db.h"
#include "vek_file_assistant.h"

#include <algorithm>

namespace
{

/// verify: compares output files with what the setup would generate, or a file with its own check sums.
class CMD_VERIFY final : public COMMAND
{
public:
    CLI::App* declare(CLI::App& application) override
    {
        CLI::App* command =
            application.add_subcommand("verify", "Read output files again and say whether they are right");
        command
            ->add_option("file", m_file,
                         "Setup (.vek), to compare all its outputs with what it generates; or one output or "
                         "bitstream file")
            ->type_name("SETUP|FILE")
            ->required();
        CLI::Option* against =
            command
                ->add_option("--against", m_against,
                             "Compare FILE with what this setup generates; without it FILE is held against "
                             "its own check sums")
                ->type_name("SETUP");
        command
            ->add_option("--output-directory", m_directory,
                         "Look for all outputs here instead of where the setup says")
            ->type_name("DIR")
            ->excludes(against);
        command
            ->add_option("--signatures", m_desk.signature_directory,
                         "Take the signatures of digests that were signed elsewhere from DIR")
            ->type_name("DIR")
            ->check(CLI::ExistingDirectory);
        m_passwords.declare(*command);
        command->footer("Examples:\n"
                        "  imagewright-cmd verify board.vek\n"
                        "  imagewright-cmd verify board.pof\n"
                        "  imagewright-cmd verify /media/card/board.rpd --against board.vek");
        return command;
    }

    EXIT_CODE execute(const COMMAND_CONTEXT& context) override
    {
        if (!m_against.empty()) {
            return verify_against(context, m_against, m_file);
        }
        return fio_get_file_type(m_file) == FIO_VEK_SETUP_FILE ? verify_against(context, m_file, "")
                                                               : verify_alone(context);
    }

private:
    EXIT_CODE verify_alone(const COMMAND_CONTEXT& context) const
    {
        std::string message;
        switch (check_file(m_file, message)) {
        case SELF_CHECK::SOUND:
            context.print(JSON{{"sound", true}, {"files", JSON::array({file_json(m_file, "")})}},
                          m_file + " is sound.\n");
            return EXIT_CODE_DONE;
        case SELF_CHECK::DAMAGED:
            context.fail_with(JSON{{"sound", false}, {"files", JSON::array({file_json(m_file, message)})}},
                              message + '\n');
            return EXIT_CODE_REFUSED;
        case SELF_CHECK::UNREADABLE:
            context.fail(message);
            return EXIT_CODE_INPUT_UNREADABLE;
        case SELF_CHECK::IMPOSSIBLE:
            break;
        }
        context.fail(message);
        return EXIT_CODE_USAGE;
    }

    EXIT_CODE verify_against(const COMMAND_CONTEXT& context, const std::string& setup,
                             const std::string& file) const
    {
        std::unique_ptr<PGM_COMMON_XML_VEK_VEK> document;
        std::string message;
        if (!open_setup(setup, document, message) || !m_passwords.apply(*document, message) ||
            (!file.empty() && FILE_SOURCE::open(file, message) == nullptr)) {
            context.fail(message);
            return EXIT_CODE_INPUT_UNREADABLE;
        }
        std::vector<OUTPUT_VERDICT> verdicts;
        if (!compare(context, *document, setup, file, verdicts)) {
            return EXIT_CODE_REFUSED;
        }
        if (verdicts.empty()) {
            context.fail(file + " is none of the output files of " + setup +
                         "; give it the name that the setup gives it.");
            return EXIT_CODE_USAGE;
        }
        return report(context, setup, verdicts);
    }

    /// False when the setup cannot be generated from, which has been told.
    bool compare(const COMMAND_CONTEXT& context, const PGM_COMMON_XML_VEK_VEK& document,
                 const std::string& setup, const std::string& file,
                 std::vector<OUTPUT_VERDICT>& verdicts) const
    {
        FINDINGS findings;
        check_setup(document, true, m_directory, findings, m_desk);
        const auto forbids = [](const FINDING& finding) {
            // Where outputs could be written does not matter to one who only reads them.
            return finding.row().severity != FINDING_WARNING && finding.kind != FINDING_DIRECTORY_MISSING &&
                   finding.kind != FINDING_DIRECTORY_NOT_WRITABLE && finding.kind != FINDING_OUTPUT_BLOCKED;
        };
        if (std::any_of(findings.all().begin(), findings.all().end(), forbids)) {
            context.fail_with(findings_json(setup, findings), findings_text(setup, findings));
            return false;
        }
        VERIFY_OPTIONS options;
        options.output_directory = m_directory;
        options.file = file;
        options.desk = m_desk;
        const PROGRESS_BAR bar(!context.quiet && !context.json);
        if (!verify_outputs(document, options, verdicts)) {
            context.fail(setup + " cannot be generated, so that there is nothing to compare with.");
            return false;
        }
        return true;
    }

    static JSON file_json(const std::string& file, const std::string& problem)
    {
        return JSON{{"file", file},
                    {"sound", problem.empty()},
                    {"problem", problem.empty() ? JSON() : JSON(problem)}};
    }

    static EXIT_CODE report(const COMMAND_CONTEXT& context, const std::string& setup,
                            const std::vector<OUTPUT_VERDICT>& verdicts)
    {
        JSON files = JSON::array();
        std::string good;
        std::string bad;
        for (const OUTPUT_VERDICT& verdict : verdicts) {
            JSON entry = file_json(verdict.path, verdict.problem);
            entry["type"] =
                VEK_FILE_ASSISTANT::convert_xml_enum_to_string(VEK_DB::get_xml_enum(verdict.type));
            entry["bytes"] = verdict.size;
            files.push_back(std::move(entry));
            if (verdict.problem.empty()) {
                good += verdict.path + " is what " + setup + " generates.\n";
            } else {
                bad += verdict.problem + '\n';
            }
        }
        const JSON document{{"setup", setup}, {"sound", bad.empty()}, {"files", std::move(files)}};
        if (!bad.empty()) {
            context.fail_with(document, bad);
            return EXIT_CODE_REFUSED;
        }
        context.print(document, good);
        return EXIT_CODE_DONE;
    }

    std::string m_file;
    PASSWORD_OPTION m_passwords;
    SIGNING_DESK m_desk;
    std::string m_against;
    std::string m_directory;
};

} // namespace

std::unique_ptr<COMMAND> make_cmd_verify()
{
    return std::make_unique<CMD_VERIFY>();
}
