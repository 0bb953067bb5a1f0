#include "arguments.h"
#include "command.h"
#include "commands.h"
#include "core_dump_guard.h"
#include "key_making.h"

namespace
{

/// chain: signs a public key with another key, so that it can sign bitstreams in its place.
class CMD_CHAIN final : public COMMAND
{
public:
    CLI::App* declare(CLI::App& application) override
    {
        CLI::App* command =
            application.add_subcommand("chain", "Sign a key with which bitstreams are to be signed");
        command
            ->add_option("--pem", m_request.signer_path,
                         "Private key that signs: the root key, or that of the last link (.pem)")
            ->type_name("FILE")
            ->required();
        command->add_option("--key", m_request.key_path, "Public key to be signed (.pem)")
            ->type_name("FILE")
            ->required();
        command->add_option("--extend", m_request.chain_path, "Key chain to which the key is added (.skc)")
            ->type_name("FILE");
        command
            ->add_option("--password-file", m_request.password_file,
                         "File whose first line is the password of the private key")
            ->type_name("FILE");
        command->add_option("-o,--output", m_request.output_path, "Key chain to write (.skc)")
            ->type_name("FILE")
            ->required();
        command->footer(
            "Examples:\n"
            "  imagewright-cmd chain --pem root.pem --key line.pub.pem -o line.skc\n"
            "  imagewright-cmd chain --pem line.pem --key shift.pub.pem --extend line.skc -o shift.skc");
        return command;
    }

    EXIT_CODE execute(const COMMAND_CONTEXT& context) override
    {
        std::string message;
        const CORE_DUMP_GUARD guard;
        if (!make_key_chain(m_request, message)) {
            context.fail(message);
            return failure_code(message, m_request.output_path);
        }
        report_written_file(context, m_request.output_path);
        return EXIT_CODE_DONE;
    }

private:
    KEY_CHAIN_REQUEST m_request;
};

} // namespace

std::unique_ptr<COMMAND> make_cmd_chain()
{
    return std::make_unique<CMD_CHAIN>();
}
