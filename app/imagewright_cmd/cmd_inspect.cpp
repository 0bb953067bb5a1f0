#include "arguments.h"
#include "command.h"
#include "commands.h"
#include "inspect.h"
#include "inspect_facts.h"
#include "programming_file.h"
#include "same_file.h"

namespace
{

/// inspect: says what a file is and holds, and takes a part out of it.
class CMD_INSPECT final : public COMMAND
{
public:
    CLI::App* declare(CLI::App& application) override
    {
        CLI::App* command = application.add_subcommand("inspect", "Say what a file is and what it holds");
        command
            ->add_option("file", m_file,
                         "Bitstream, configuration stream or any file that this program writes")
            ->type_name("FILE")
            ->required();
        CLI::Option* extract =
            command
                ->add_option("--extract", m_part,
                             "Write this part: core, periphery, or image for both in order")
                ->type_name("PART")
                ->check(CLI::IsMember({"core", "periphery", "image"}));
        CLI::Option* output =
            command->add_option("-o,--output", m_output, "File for the extracted part")->type_name("FILE");
        extract->needs(output);
        output->needs(extract);
        command->footer("Examples:\n"
                        "  imagewright-cmd inspect top.sof\n"
                        "  imagewright-cmd inspect board.pof --json\n"
                        "  imagewright-cmd inspect top.rbf --extract core -o core.bin");
        return command;
    }

    EXIT_CODE execute(const COMMAND_CONTEXT& context) override
    {
        return m_part.empty() ? inspect(context) : extract(context);
    }

private:
    EXIT_CODE inspect(const COMMAND_CONTEXT& context) const
    {
        std::string message;
        JSON facts;
        if (!read_facts(facts, message)) {
            context.fail(message);
            return EXIT_CODE_INPUT_UNREADABLE;
        }
        context.print(facts, facts_text(facts));
        return EXIT_CODE_DONE;
    }

    bool read_facts(JSON& facts, std::string& message) const
    {
        INSPECTED_KIND kind = INSPECTED_KIND::OTHER;
        const FORMAT_ROW* row = nullptr;
        if (!identify_programming_file(m_file, kind, row, message)) {
            return false;
        }
        switch (kind) {
        case INSPECTED_KIND::BITSTREAM: {
            BITSTREAM_FACTS bitstream;
            if (!inspect_bitstream(m_file, bitstream, message)) {
                return false;
            }
            facts = bitstream_facts_json(m_file, bitstream);
            return true;
        }
        case INSPECTED_KIND::STREAM: {
            STREAM_FACTS stream;
            if (!inspect_stream(m_file, stream, message)) {
                return false;
            }
            facts = stream_facts_json(m_file, stream);
            return true;
        }
        case INSPECTED_KIND::OTHER:
            break;
        }
        if (row == nullptr) {
            message = m_file + " is neither a bitstream nor a configuration stream, nor has it the extension "
                               "of another file that this program writes.";
            return false;
        }
        return inspect_programming_file(m_file, *row, facts, message);
    }

    EXIT_CODE extract(const COMMAND_CONTEXT& context) const
    {
        if (same_file(m_file, m_output)) {
            context.fail("The output " + m_output +
                         " is the inspected file itself; choose another name behind -o.");
            return EXIT_CODE_USAGE;
        }
        const EXTRACTED_PART part = m_part == "core"        ? EXTRACTED_PART::CORE
                                    : m_part == "periphery" ? EXTRACTED_PART::PERIPHERY
                                                            : EXTRACTED_PART::IMAGE;
        std::string message;
        if (!extract_from_file(m_file, part, m_output, message)) {
            context.fail(message);
            return failure_code(message, m_output);
        }
        report_written_file(context, m_output);
        return EXIT_CODE_DONE;
    }

    std::string m_file;
    std::string m_part;
    std::string m_output;
};

} // namespace

std::unique_ptr<COMMAND> make_cmd_inspect()
{
    return std::make_unique<CMD_INSPECT>();
}
