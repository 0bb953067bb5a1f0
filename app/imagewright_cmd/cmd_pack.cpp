#include "arguments.h"
#include "byte_source.h"
#include "command.h"
#include "commands.h"
#include "pack.h"
#include "same_file.h"

#include <charconv>

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
        command->add_flag("--encryption", m_encryption,
                          "The data is compiled so that its encryption can be finalised");
        command
            ->add_option(
                "--region", m_regions,
                "Region of a partial bitstream, its offset in the core and its length; may be repeated")
            ->type_name("NAME:OFFSET:LENGTH")
            ->allow_extra_args(false);
        command
            ->add_option("-o,--output", m_request.output_path,
                         "Bitstream file to write (.sof, partial .pmsf)")
            ->type_name("FILE")
            ->required();
        command->footer(
            "Example:\n  imagewright-cmd pack --device BS1L40 --core image.bin --scheme PS -o top.sof");
        return command;
    }

    EXIT_CODE execute(const COMMAND_CONTEXT& context) override
    {
        std::string message;
        if (!is_scheme_argument(m_request.scheme, message) || !take_regions(message)) {
            context.fail(message);
            return EXIT_CODE_USAGE;
        }
        if (m_encryption) {
            m_request.options["sof_option_encryption"] = true;
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
    static bool parse_number(const std::string& text, std::uint64_t& number)
    {
        const bool hexadecimal = text.starts_with("0x");
        const char* const begin = text.data() + (hexadecimal ? 2 : 0);
        const char* const end = text.data() + text.size();
        const auto [stop, error] = std::from_chars(begin, end, number, hexadecimal ? 16 : 10);
        return begin != end && stop == end && error == std::errc();
    }

    bool take_regions(std::string& message)
    {
        for (const std::string& text : m_regions) {
            const std::size_t second = text.rfind(':');
            const std::size_t first =
                second == 0 || second == std::string::npos ? std::string::npos : text.rfind(':', second - 1);
            BITSTREAM_REGION region;
            if (first == std::string::npos ||
                !parse_number(text.substr(first + 1, second - first - 1), region.offset) ||
                !parse_number(text.substr(second + 1), region.length)) {
                message =
                    "\"" + text + "\" is no region; write name, offset and length, as in left:0x1000:4096.";
                return false;
            }
            region.name = text.substr(0, first);
            m_request.regions.push_back(region);
        }
        return true;
    }

    PACK_REQUEST m_request;
    bool m_encryption = false;
    std::vector<std::string> m_regions;
};

} // namespace

std::unique_ptr<COMMAND> make_cmd_pack()
{
    return std::make_unique<CMD_PACK>();
}
