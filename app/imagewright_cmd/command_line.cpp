#include "command.h"
#include "fio_file_system.h"
#include "imagewright_version.h"
#include "message_printer.h"

#include <charconv>
#include <new>
#include <ostream>

namespace
{

constexpr const char* DESCRIPTION =
    "Turns compiled FPGA configuration data into programming files for boards and configuration flash.\n"
    "Files inside a setup are relative to the directory that the program runs in (see --directory).";

constexpr const char* FOOTER =
    "Examples:\n"
    "  imagewright-cmd list devices --json\n"
    "  imagewright-cmd sample --device BS1L40 --seed 1 -o top.sof\n"
    "  imagewright-cmd generate board.vek\n"
    "  imagewright-cmd -c top.sof -o top.rbf\n"
    "\n"
    "-c, --convert in the place of a command is convert.\n"
    "\n"
    "Exit codes: 0 done, 1 refused by check or verify, 2 wrong usage, 3 input unreadable,\n"
    "4 output not written.";

/// The options that stand before or behind every subcommand.
struct COMMON_OPTIONS {
    bool json = false;
    bool quiet = false;
    bool verbose = false;
    std::string directory;

    void declare(CLI::App& application)
    {
        application.add_flag("--json", json, "Print the result as one JSON document on the standard output");
        CLI::Option* quiet_flag = application.add_flag("-q,--quiet", quiet, "Print errors only");
        application.add_flag("-v,--verbose", verbose, "Print each step")->excludes(quiet_flag);
        application.add_option("-C,--directory", directory, "Run in this directory")->type_name("DIR");
    }
};

std::string json_text(const JSON& document)
{
    // A path that is no valid UTF-8 must not end the program.
    return document.dump(2, ' ', false, JSON::error_handler_t::replace) + '\n';
}

/// Runs the command that the parsed command line has chosen.
EXIT_CODE execute_chosen(const std::vector<std::pair<CLI::App*, COMMAND*>>& commands,
                         const COMMON_OPTIONS& options, std::ostream& out, std::ostream& err)
{
    const COMMAND_CONTEXT context{out, err, options.json, options.quiet, options.verbose};
    if (!options.directory.empty() && !FIO_FILE_SYSTEM::set_current_directory(options.directory)) {
        context.fail("The directory " + options.directory +
                     " cannot be entered; name an existing directory behind --directory.");
        return EXIT_CODE_USAGE;
    }
    for (const auto& [subcommand, command] : commands) {
        if (subcommand->parsed()) {
            const MESSAGE_PRINTER printer(err, options.quiet, options.verbose);
            return command->execute(context);
        }
    }
    return EXIT_CODE_USAGE;
}

/// -c and --convert in the place of a command stand for it.
std::vector<std::string> with_convert_spelled_out(std::vector<std::string> arguments)
{
    for (auto argument = arguments.begin(); argument != arguments.end(); ++argument) {
        if (*argument == "-c" || *argument == "--convert") {
            *argument = "convert";
            break;
        }
        const bool takes_value = *argument == "-C" || *argument == "--directory";
        if (!argument->starts_with('-') || (takes_value && ++argument == arguments.end())) {
            break;
        }
    }
    return arguments;
}

EXIT_CODE parse_and_execute(const std::vector<std::string>& arguments, COMMON_OPTIONS& options,
                            std::ostream& out, std::ostream& err)
{
    CLI::App application(DESCRIPTION, "imagewright-cmd");
    application.footer(FOOTER);
    application.set_version_flag("--version", std::string("imagewright-cmd ") + IMAGEWRIGHT_VERSION);
    application.require_subcommand(1);
    application.fallthrough();
    application.get_formatter()->column_width(34);
    options.declare(application);

    const std::vector<std::unique_ptr<COMMAND>> commands = make_commands();
    std::vector<std::pair<CLI::App*, COMMAND*>> subcommands;
    for (const std::unique_ptr<COMMAND>& command : commands) {
        subcommands.emplace_back(command->declare(application), command.get());
    }

    try {
        // The library wants the arguments last first.
        const std::vector<std::string> words = with_convert_spelled_out(arguments);
        application.parse(std::vector<std::string>(words.rbegin(), words.rend()));
    } catch (const CLI::ParseError& error) {
        return application.exit(error, out, err) == 0 ? EXIT_CODE_DONE : EXIT_CODE_USAGE;
    }
    return execute_chosen(subcommands, options, out, err);
}

} // namespace

void COMMAND_CONTEXT::fail(const std::string& sentence) const
{
    fail_with(JSON{{"error", sentence}}, "imagewright-cmd: " + sentence + '\n');
}

void COMMAND_CONTEXT::fail_with(const JSON& document, const std::string& text) const
{
    err << printable(text);
    if (json) {
        out << json_text(document);
    }
}

void COMMAND_CONTEXT::print(const JSON& document, const std::string& text) const
{
    if (json) {
        out << json_text(document);
    } else if (!quiet) {
        out << printable(text);
    }
}

std::string bytes_text(std::uint64_t count)
{
    return std::to_string(count) + (count == 1 ? " byte" : " bytes");
}

std::string printable(const std::string& text)
{
    std::string result;
    result.reserve(text.size());
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if ((byte < 0x20 && c != '\n' && c != '\t') || byte == 0x7F) {
            result += "\\x" + hex_text(byte).substr(8);
        } else {
            result += c;
        }
    }
    return result;
}

std::string hex_text(std::uint64_t value)
{
    char digits[16];
    const std::to_chars_result end = std::to_chars(digits, digits + sizeof digits, value, 16);
    std::string text(digits, end.ptr);
    for (char& digit : text) {
        if (digit >= 'a') {
            digit = static_cast<char>(digit - 'a' + 'A');
        }
    }
    return "0x" + std::string(text.size() < 8 ? 8 - text.size() : 0, '0') + text;
}

EXIT_CODE run_command_line(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& err)
{
    COMMON_OPTIONS options;
    EXIT_CODE result = EXIT_CODE_USAGE;
    try {
        result = parse_and_execute(arguments, options, out, err);
    } catch (const std::bad_alloc&) {
        // What the work held is free again, so that this can be told.
        COMMAND_CONTEXT{out, err, options.json, options.quiet, options.verbose}.fail(
            "There is not enough memory; end other programs, or run it on a machine with more.");
        result = EXIT_CODE_INPUT_UNREADABLE;
    }
    if (!out.flush()) {
        err << "imagewright-cmd: The standard output could not be written; make room where it goes to.\n";
        return result == EXIT_CODE_DONE ? EXIT_CODE_OUTPUT_NOT_WRITTEN : result;
    }
    return result;
}
