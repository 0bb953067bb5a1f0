#include "arguments.h"
#include "command.h"
#include "commands.h"
#include "pgm_device.h"
#include "sample.h"

namespace
{

/// sample: makes a bitstream file of realistic size and redundancy for trials, tests and benchmarks.
class CMD_SAMPLE final : public COMMAND
{
public:
    CLI::App* declare(CLI::App& application) override
    {
        CLI::App* command = application.add_subcommand("sample", "Make a bitstream file of invented data");
        command->add_option("--device", m_device, "Device that the data is for (see list devices)")
            ->type_name("NAME")
            ->required();
        command->add_option("--seed", m_seed, "Number that chooses the data; equal numbers give equal files")
            ->type_name("N")
            ->capture_default_str();
        command->add_option("--scheme", m_scheme, scheme_help())->type_name("WORD");
        command->add_option("-o,--output", m_output, "Bitstream file to write (.sof)")
            ->type_name("FILE")
            ->required();
        command->footer("Example:\n  imagewright-cmd sample --device BS1L40 --seed 7 -o top.sof");
        return command;
    }

    EXIT_CODE execute(const COMMAND_CONTEXT& context) override
    {
        std::string message;
        if (!is_scheme_argument(m_scheme, message)) {
            context.fail(message);
            return EXIT_CODE_USAGE;
        }
        if (PGM_DEVICE_INDEX::find_by_name(m_device) == nullptr) {
            context.fail("\"" + m_device +
                         "\" is not in the device database; imagewright-cmd list devices shows what is.");
            return EXIT_CODE_USAGE;
        }
        if (!write_sample_bitstream(m_device, m_seed, m_scheme, m_output, message)) {
            context.fail(message);
            return failure_code(message, m_output);
        }
        report_written_file(context, m_output);
        return EXIT_CODE_DONE;
    }

private:
    std::string m_device;
    std::uint64_t m_seed = 1;
    std::string m_scheme;
    std::string m_output;
};

} // namespace

std::unique_ptr<COMMAND> make_cmd_sample()
{
    return std::make_unique<CMD_SAMPLE>();
}
