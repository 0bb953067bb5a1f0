#include "command.h"
#include "commands.h"
#include "completion.h"

namespace
{

/// completion: prints the script that completes command lines in a shell.
class CMD_COMPLETION final : public COMMAND
{
public:
    CLI::App* declare(CLI::App& application) override
    {
        m_application = &application;
        CLI::App* command =
            application.add_subcommand("completion", "Print the completion script of a shell");
        command->add_option("shell", m_shell, "Shell that the script is for")
            ->type_name("SHELL")
            ->check(CLI::IsMember({"bash", "zsh"}))
            ->required();
        command->footer("Examples:\n"
                        "  source <(imagewright-cmd completion bash)\n"
                        "  imagewright-cmd completion zsh > ~/.zfunc/_imagewright-cmd");
        return command;
    }

    EXIT_CODE execute(const COMMAND_CONTEXT& context) override
    {
        const std::string script =
            m_shell == "bash" ? bash_completion(*m_application) : zsh_completion(*m_application);
        context.print(JSON{{"shell", m_shell}, {"script", script}}, script);
        return EXIT_CODE_DONE;
    }

private:
    const CLI::App* m_application = nullptr;
    std::string m_shell;
};

} // namespace

std::unique_ptr<COMMAND> make_cmd_completion()
{
    return std::make_unique<CMD_COMPLETION>();
}
