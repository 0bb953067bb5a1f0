#include "arguments.h"
#include "byte_source.h"
#include "command.h"
#include "commands.h"
#include "pack.h"
#include "same_file.h"

namespace
{

/// pack: makes a bitstream file from a raw configuration image.
class CMD_PACK final : public COMMAND
{
public:
    CLI::App* declare(CLI::App& application) override
    {
        CLI::App* command =
            application.add_subcommand("pack", "Make a bitstream file from raw configuration data");
        command->add_option("--device", m_request.device, "Device that the data is for (see list devices)")
            ->type_name("NAME")
            ->required();
        command->add_option("--core", m_request.core_path, "Raw image of the core")
            ->type_name("FILE")
            ->required();
        command->add_option("--periphery", m_request.periphery_path, "Raw image of the periphery")
            ->type_name("FILE");
        command->add_option("--firmware", m_request.firmware_path, "Firmware of the device's own processor")
            ->type_name("FILE");
        command
            ->add_option("--bootloader", m_request.bootloader_path, "First program of the processor system")
            ->type_name("FILE");
        command->add_option("--scheme", m_request.scheme, scheme_help())->type_name("WORD");
        command->add_option("-o,--output", m_request.output_path, "Bitstream file to write (.sof)")
            ->type_name("FILE")
            ->required();
        command->footer(
            "Example:\n  imagewright-cmd pack --device BS1L40 --core image.bin --scheme PS -o top.sof");
        return command;
    }

    EXIT_CODE execute(const COMMAND_CONTEXT& context) override
    {
        std::string message;
        if (!is_scheme_argument(m_request.scheme, message)) {
            context.fail(message);
            return EXIT_CODE_USAGE;
        }
        // Told apart here, because the exit code says which side is at fault.
        for (const std::string& path : {m_request.core_path, m_request.periphery_path,
                                        m_request.firmware_path, m_request.bootloader_path}) {
            if (!path.empty() && FILE_SOURCE::open(path, message) == nullptr) {
                context.fail(message);
                return EXIT_CODE_INPUT_UNREADABLE;
            }
            if (!path.empty() && same_file(path, m_request.output_path)) {
                context.fail("The output " + m_request.output_path +
                             " is also an input; choose another name behind -o.");
                return EXIT_CODE_USAGE;
            }
        }
        if (!pack_bitstream(m_request, message)) {
            context.fail(message);
            return failure_code(message, m_request.output_path);
        }
        report_written_file(context, m_request.output_path);
        return EXIT_CODE_DONE;
    }

private:
    PACK_REQUEST m_request;
};

} // namespace

std::unique_ptr<COMMAND> make_cmd_pack()
{
    return std::make_unique<CMD_PACK>();
}
