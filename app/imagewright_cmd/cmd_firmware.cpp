#include "arguments.h"
#include "command.h"
#include "commands.h"
#include "core_dump_guard.h"
#include "key_making.h"

namespace
{

/// firmware: signs firmware as its maker, for bitstreams that are to be co-signed.
class CMD_FIRMWARE final : public COMMAND
{
public:
    CLI::App* declare(CLI::App& application) override
    {
        CLI::App* command =
            application.add_subcommand("firmware", "Sign firmware and make an archive for co-signing");
        command->add_option("--image", m_request.image_path, "Firmware of the device's own processor")
            ->type_name("FILE")
            ->required();
        command->add_option("--family", m_request.family, "Family that it is for (see list families)")
            ->type_name("NAME")
            ->required();
        command->add_option("--release", m_request.release, "Number of the release")
            ->type_name("N")
            ->capture_default_str();
        command->add_option("--pem", m_request.pem_path, "Private key of the maker (.pem)")
            ->type_name("FILE")
            ->required();
        command
            ->add_option("--password-file", m_request.password_file,
                         "File whose first line is the password of the private key")
            ->type_name("FILE");
        command->add_option("-o,--output", m_request.output_path, "Archive to write (.fw)")
            ->type_name("FILE")
            ->required();
        command->footer(
            "Example:\n  imagewright-cmd firmware --image boot.bin --family Zircon --release 7 --pem "
            "maker.pem -o boot.fw");
        return command;
    }

    EXIT_CODE execute(const COMMAND_CONTEXT& context) override
    {
        std::string message;
        const CORE_DUMP_GUARD guard;
        if (!make_firmware_archive(m_request, message)) {
            context.fail(message);
            return failure_code(message, m_request.output_path);
        }
        report_written_file(context, m_request.output_path);
        return EXIT_CODE_DONE;
    }

private:
    FIRMWARE_REQUEST m_request;
};

} // namespace

std::unique_ptr<COMMAND> make_cmd_firmware()
{
    return std::make_unique<CMD_FIRMWARE>();
}
