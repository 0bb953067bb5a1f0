#include "check.h"
#include "command.h"
#include "commands.h"
#include "findings_report.h"
#include "setup_argument.h"

namespace
{

/// check: says what keeps a setup from being generated.
class CMD_CHECK final : public COMMAND
{
public:
    CLI::App* declare(CLI::App& application) override
    {
        CLI::App* command =
            application.add_subcommand("check", "Say what keeps a setup from being generated");
        command->add_option("setup", m_setup, "Setup file (.vek)")->type_name("SETUP")->required();
        m_passwords.declare(*command);
        command->footer("Example:\n  imagewright-cmd check board.vek");
        return command;
    }

    EXIT_CODE execute(const COMMAND_CONTEXT& context) override
    {
        std::unique_ptr<PGM_COMMON_XML_VEK_VEK> document;
        std::string message;
        if (!open_setup(m_setup, document, message) || !m_passwords.apply(*document, message)) {
            context.fail(message);
            return EXIT_CODE_INPUT_UNREADABLE;
        }
        FINDINGS findings;
        check_setup(*document, true, "", findings);
        context.print(findings_json(m_setup, findings), findings_text(m_setup, findings));
        return findings.can_generate() ? EXIT_CODE_DONE : EXIT_CODE_REFUSED;
    }

private:
    std::string m_setup;
    PASSWORD_OPTION m_passwords;
};

} // namespace

std::unique_ptr<COMMAND> make_cmd_check()
{
    return std::make_unique<CMD_CHECK>();
}
