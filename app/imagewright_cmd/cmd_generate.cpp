#include "command.h"
#include "commands.h"
#include "fleet.h"
#include "generate_run.h"
#include "setup_argument.h"

#include <filesystem>

namespace
{

/// generate: writes the output files of setups.
class CMD_GENERATE final : public COMMAND
{
public:
    CLI::App* declare(CLI::App& application) override
    {
        CLI::App* command = application.add_subcommand("generate", "Write the output files of setups");
        command->add_option("setups", m_setups, "Setup files (.vek); a directory stands for all setups in it")
            ->type_name("SETUP")
            ->required();
        command
            ->add_option("--output-directory", m_fleet.output_directory,
                         "Write all files here instead of where the setups say")
            ->type_name("DIR");
        command
            ->add_option(
                "-j,--jobs", m_fleet.jobs,
                "Work on so many setups and files at once; without it on as many as the machine runs")
            ->type_name("N")
            ->check(CLI::Range(1U, 1024U));
        command
            ->add_option("--shard", m_shard,
                         "Take the Ith of N equal parts of the sorted list of setups, for runs on several "
                         "machines")
            ->type_name("I/N");
        CLI::Option* digests =
            command
                ->add_option("--write-digests", m_fleet.desk.digest_directory,
                             "Write the digests that are to be signed elsewhere to DIR, and no output file")
                ->type_name("DIR")
                ->check(CLI::ExistingDirectory);
        command
            ->add_option("--signatures", m_fleet.desk.signature_directory,
                         "Take the signatures of these digests from DIR")
            ->type_name("DIR")
            ->check(CLI::ExistingDirectory)
            ->excludes(digests);
        m_passwords.declare(*command);
        command->footer("Examples:\n"
                        "  imagewright-cmd generate board.vek --output-directory /srv/line-3\n"
                        "  imagewright-cmd generate units/ --jobs 8 --json\n"
                        "  imagewright-cmd generate units/ --shard 2/5");
        return command;
    }

    EXIT_CODE execute(const COMMAND_CONTEXT& context) override
    {
        std::error_code error;
        if (m_shard.empty() && m_setups.size() == 1 &&
            !std::filesystem::is_directory(m_setups.front(), error)) {
            return generate_one(context, m_setups.front());
        }
        SHARD shard;
        std::string message;
        if (!m_shard.empty() && !parse_shard(m_shard, shard, message)) {
            context.fail(message);
            return EXIT_CODE_USAGE;
        }
        std::vector<std::string> setups;
        if (!list_setups(m_setups, setups, message)) {
            context.fail(message);
            return EXIT_CODE_INPUT_UNREADABLE;
        }
        m_fleet.passwords = m_passwords;
        return generate_fleet(context, shard_of(setups, shard), m_fleet);
    }

private:
    EXIT_CODE generate_one(const COMMAND_CONTEXT& context, const std::string& setup) const
    {
        std::unique_ptr<PGM_COMMON_XML_VEK_VEK> document;
        std::string message;
        if (!open_setup(setup, document, message) || !m_passwords.apply(*document, message)) {
            context.fail(message);
            return EXIT_CODE_INPUT_UNREADABLE;
        }
        GENERATE_OPTIONS options;
        options.output_directory = m_fleet.output_directory;
        options.threads = m_fleet.jobs;
        options.desk = m_fleet.desk;
        GENERATE_RUN run(*document, setup, options);
        run.check();
        run.generate(!context.quiet && !context.json);
        run.print(context);
        return run.exit_code();
    }

    std::vector<std::string> m_setups;
    FLEET_OPTIONS m_fleet;
    PASSWORD_OPTION m_passwords;
    std::string m_shard;
};

} // namespace

std::unique_ptr<COMMAND> make_cmd_generate()
{
    return std::make_unique<CMD_GENERATE>();
}
