#include "arguments.h"
#include "command.h"
#include "commands.h"
#include "core_dump_guard.h"
#include "key_making.h"

namespace
{

/// finalize: completes the encryption of a stream that was generated without the key, and signs it.
class CMD_FINALIZE final : public COMMAND
{
public:
    CLI::App* declare(CLI::App& application) override
    {
        CLI::App* command = application.add_subcommand(
            "finalize", "Encrypt and sign an RBF file whose encryption was left for later");
        command->add_option("input", m_request.input_path, "File that generate has prepared (.rbf)")
            ->type_name("FILE")
            ->required();
        command->add_option("--aek", m_request.aek_path, "AES key file (.aek)")
            ->type_name("FILE")
            ->required();
        command->add_option("--pem", m_request.pem_path, "Private key that signs the stream (.pem)")
            ->type_name("FILE")
            ->required();
        command
            ->add_option("--password-file", m_request.password_file,
                         "File whose first line is the password of the key files")
            ->type_name("FILE");
        command->add_option("-o,--output", m_request.output_path, "File to write (.rbf)")
            ->type_name("FILE")
            ->required();
        command->footer("Example:\n  imagewright-cmd finalize prepared.rbf --aek field.aek --pem owner.pem "
                        "--password-file pass.txt -o top.rbf");
        return command;
    }

    EXIT_CODE execute(const COMMAND_CONTEXT& context) override
    {
        std::string message;
        const CORE_DUMP_GUARD guard;
        if (!finalize_stream_file(m_request, message)) {
            context.fail(message);
            return failure_code(message, m_request.output_path);
        }
        report_written_file(context, m_request.output_path);
        return EXIT_CODE_DONE;
    }

private:
    FINALIZATION_REQUEST m_request;
};

} // namespace

std::unique_ptr<COMMAND> make_cmd_finalize()
{
    return std::make_unique<CMD_FINALIZE>();
}
