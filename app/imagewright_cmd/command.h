#ifndef COMMAND_H
#define COMMAND_H

#include "exit_code.h"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

/// Keys keep the order in which they were put in, so that JSON output can be compared as text.
using JSON = nlohmann::ordered_json;

/// What every command gets: where to print, and how.
struct COMMAND_CONTEXT {
    std::ostream& out;
    std::ostream& err;
    bool json = false;
    bool quiet = false;
    bool verbose = false;

    /// One sentence about a failure, on the error stream; with --json as {"error": sentence} on the output
    /// stream too, so that a reader of the JSON is never left without an answer.
    void fail(const std::string& sentence) const;
    /// A refusal with more to say than one sentence: the text on the error stream, the document with --json.
    void fail_with(const JSON& document, const std::string& text) const;
    /// Prints `document` when --json is set; otherwise `text` unless --quiet is set.
    void print(const JSON& document, const std::string& text) const;
};

/// One subcommand.
class COMMAND
{
public:
    virtual ~COMMAND() = default;
    /// Adds the subcommand with its options and its help to the application.
    virtual CLI::App* declare(CLI::App& application) = 0;
    /// Does the work after the command line has been parsed.
    virtual EXIT_CODE execute(const COMMAND_CONTEXT& context) = 0;
};

/// All subcommands, in the order in which the help lists them.
std::vector<std::unique_ptr<COMMAND>> make_commands();

/// Parses the arguments (without the program's name) and runs the command. What `imagewright-cmd` does, for
/// tests too.
EXIT_CODE run_command_line(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& err);

/// Text of a byte count for people: "582369 bytes".
std::string bytes_text(std::uint64_t count);

/// The text with control characters, line feed and tab excepted, written as \x1B and the like: texts of
/// damaged or hostile files must not steer the terminal.
std::string printable(const std::string& text);

/// "0x00012345", eight digits at least.
std::string hex_text(std::uint64_t value);

#endif
