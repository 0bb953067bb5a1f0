#ifndef PARAMETER_TEXT_H
#define PARAMETER_TEXT_H

#include "vek_file_assistant.h"

#include <string>
#include <vector>

/// The parameters of a setup as they stand on a command line: an option name, and pairs PARAM=VALUE.

/// The option of a word; false with a sentence that suggests the nearest name.
bool option_from_word(const std::string& word, PGM_COMMON_XML_VEK_CMD_OPT_ENUM& option, std::string& message);

/// The parameter and value of "PARAM=VALUE" within an option; PARAM may stand alone where `value_needed` is
/// false. False with a sentence that suggests the nearest name.
bool param_from_word(PGM_COMMON_XML_VEK_CMD_OPT_ENUM option, const std::string& word, bool value_needed,
                     VEK_FILE_ASSISTANT::PARAMS::value_type& pair, std::string& message);

/// The same without an option: "OPTION.PARAM=VALUE", or "PARAM=VALUE" for a name that one option has alone.
bool param_from_qualified_word(const std::string& word, VEK_FILE_ASSISTANT::PARAMS::value_type& pair,
                               std::string& message);

/// Why VEK_FILE_ASSISTANT would refuse the list, as a sentence; empty when it would not. A password is
/// refused here too: it would be kept nowhere, and a command line is seen by others.
std::string explain_refusal(PGM_COMMON_XML_VEK_CMD_OPT_ENUM option, const VEK_FILE_ASSISTANT::PARAMS& params,
                            bool stores);

/// Stores the values. False with a whole sentence in `message` when that is refused.
bool set_values(PGM_COMMON_XML_VEK_VEK& document, PGM_COMMON_XML_VEK_CMD_OPT_ENUM option,
                const VEK_FILE_ASSISTANT::PARAMS& params, std::string& message);

/// The names nearest to a word, at most three; those that end like it count as near.
std::vector<std::string> nearest_names(const std::string& word, const std::vector<std::string>& names);

/// `Did you mean "a" or "b"?`, empty for no names.
std::string suggestion(const std::vector<std::string>& names);

#endif
