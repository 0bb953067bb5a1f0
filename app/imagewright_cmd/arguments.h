#ifndef ARGUMENTS_H
#define ARGUMENTS_H

#include "command.h"

#include <string>

/// Help text of the option --scheme.
std::string scheme_help();

/// Whether the word behind --scheme is one, or empty. False with a sentence that lists the words.
bool is_scheme_argument(const std::string& word, std::string& message);

/// Whose fault a failure is: messages about a file begin with its path, so one that begins with the output's
/// path means that the output could not be written, and any other that an input could not be used.
EXIT_CODE failure_code(const std::string& message, const std::string& output_path);

/// Says that a file has been written, and how long it is.
void report_written_file(const COMMAND_CONTEXT& context, const std::string& path);

#endif
