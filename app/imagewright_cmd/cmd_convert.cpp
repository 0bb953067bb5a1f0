#include "command.h"
#include "commands.h"
#include "conversion.h"
#include "generate_run.h"
#include "same_file.h"
#include "setup_argument.h"
#include "setup_writer.h"

namespace
{

/// convert: makes one output from inputs, without a setup.
class CMD_CONVERT final : public COMMAND
{
public:
    CLI::App* declare(CLI::App& application) override
    {
        CLI::App* command =
            application.add_subcommand("convert", "Make one output file of inputs, without a setup");
        command
            ->add_option("inputs", m_request.inputs,
                         "Bitstreams, and for flash images raw files (.hex, .bin, .rbf, .puf, .wkey)")
            ->type_name("INPUT")
            ->required();
        command->add_option("-o,--output", m_request.output, "File to write; its extension tells the type")
            ->type_name("FILE")
            ->required();
        command
            ->add_option("--type", m_request.type,
                         "Output type, where the extension does not tell it (see list outputs)")
            ->type_name("WORD");
        command
            ->add_option("--mode", m_request.mode,
                         "Configuration mode, where no bitstream tells it (see list modes)")
            ->type_name("WORD");
        command
            ->add_option("--device", m_request.flash_device,
                         "Flash device that the output is made for (see list flash)")
            ->type_name("NAME");
        command
            ->add_option("--flash-loader", m_request.flash_loader,
                         "FPGA through which JTAG reaches the flash; else that of the bitstream")
            ->type_name("NAME");
        command
            ->add_option(
                "--option", m_request.options,
                "Value of the setup, as in path_compression=1 or output_file.hps=1 (see list params)")
            ->type_name("PARAM=VALUE")
            ->expected(1)
            ->take_all();
        command->add_option("--save", m_save, "Keep the setup that does the same (.vek)")->type_name("SETUP");
        m_passwords.declare(*command);
        command->footer(
            "Examples:\n"
            "  imagewright-cmd convert top.sof -o top.rbf --option path_compression=1\n"
            "  imagewright-cmd convert top.sof -o top.hex --option file_options_s_addr=0x100000\n"
            "  imagewright-cmd -c a.sof b.sof data.hex -o board.pof --device W25Q128JV --save board.vek");
        return command;
    }

    EXIT_CODE execute(const COMMAND_CONTEXT& context) override
    {
        std::string message;
        auto failure = CONVERSION_FAILURE::USAGE;
        use_own_flash_database();
        const std::unique_ptr<PGM_COMMON_XML_VEK_VEK> document = make_conversion(m_request, message, failure);
        if (!document) {
            context.fail(message);
            return failure == CONVERSION_FAILURE::USAGE ? EXIT_CODE_USAGE : EXIT_CODE_INPUT_UNREADABLE;
        }
        if (!m_passwords.apply(*document, message)) {
            context.fail(message);
            return EXIT_CODE_INPUT_UNREADABLE;
        }
        const std::string name = m_save.empty() ? m_request.output : m_save;
        GENERATE_RUN run(*document, name, GENERATE_OPTIONS());
        if (run.check() && !m_save.empty() && !save(*document, message)) {
            context.fail(message);
            return m_is_own_input ? EXIT_CODE_USAGE : EXIT_CODE_OUTPUT_NOT_WRITTEN;
        }
        run.generate(!context.quiet && !context.json);
        run.print(context);
        return run.exit_code();
    }

private:
    bool save(const PGM_COMMON_XML_VEK_VEK& document, std::string& message)
    {
        for (const std::string& input : m_request.inputs) {
            m_is_own_input = m_is_own_input || same_file(input, m_save);
        }
        m_is_own_input = m_is_own_input || same_file(m_request.output, m_save);
        if (m_is_own_input) {
            message =
                "The setup " + m_save + " is also an input or the output; choose another name behind --save.";
            return false;
        }
        return write_setup_file(document, m_save, message);
    }

    CONVERSION_REQUEST m_request;
    PASSWORD_OPTION m_passwords;
    std::string m_save;
    bool m_is_own_input = false;
};

} // namespace

std::unique_ptr<COMMAND> make_cmd_convert()
{
    return std::make_unique<CMD_CONVERT>();
}
