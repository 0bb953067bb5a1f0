#include "completion.h"

#include <vector>

namespace
{

/// An option or a positional argument, as completion sees it.
struct ARGUMENT {
    std::vector<std::string> flags; ///< "-o", "--output"; empty for a positional argument
    std::string help;
    std::string value;              ///< FILE, DIR, N...; empty for a flag
    std::vector<std::string> words; ///< what the value may be, when that is a fixed list
    bool many = false;
};

/// The words of "{a,b,c}" within the text that describes a value.
std::vector<std::string> fixed_words(const std::string& text)
{
    std::vector<std::string> words;
    std::size_t begin = text.find('{');
    const std::size_t end = text.find('}');
    while (begin < end && end != std::string::npos) {
        const std::size_t comma = std::min(text.find(',', begin + 1), end);
        words.push_back(text.substr(begin + 1, comma - begin - 1));
        begin = comma;
    }
    return words;
}

std::vector<ARGUMENT> arguments_of(const CLI::App& command)
{
    std::vector<ARGUMENT> arguments;
    for (const CLI::Option* option : command.get_options()) {
        ARGUMENT argument;
        for (const std::string& name : option->get_snames()) {
            argument.flags.push_back("-" + name);
        }
        for (const std::string& name : option->get_lnames()) {
            argument.flags.push_back("--" + name);
        }
        argument.help = option->get_description();
        argument.help.resize(std::min(argument.help.size(), argument.help.find('\n')));
        if (option->get_expected_max() != 0 && option->get_type_size_max() != 0) {
            const std::string type = option->get_type_name();
            argument.value = type.substr(0, type.find_first_of(":{ "));
            argument.words = fixed_words(type);
        }
        argument.many = option->get_expected_max() > 1;
        arguments.push_back(argument);
    }
    return arguments;
}

std::vector<const CLI::App*> commands_of(const CLI::App& application)
{
    return application.get_subcommands([](const CLI::App*) { return true; });
}

std::string joined(const std::vector<std::string>& words, const char* separator)
{
    std::string text;
    for (const std::string& word : words) {
        text += (text.empty() ? "" : separator) + word;
    }
    return text;
}

std::string flags_of(const std::vector<ARGUMENT>& arguments)
{
    std::vector<std::string> flags;
    for (const ARGUMENT& argument : arguments) {
        flags.insert(flags.end(), argument.flags.begin(), argument.flags.end());
    }
    return joined(flags, " ");
}

enum class VALUE_KIND { FILE, DIRECTORY, OTHER };

VALUE_KIND value_kind(const std::string& value)
{
    if (value == "DIR") {
        return VALUE_KIND::DIRECTORY;
    }
    const bool is_file = value == "FILE" || value == "SETUP" || value == "INPUT" || value == "SETUP|FILE" ||
                         value == "[ID=]FILE";
    return is_file ? VALUE_KIND::FILE : VALUE_KIND::OTHER;
}

/// What bash offers for the value of an option.
std::string bash_value(const ARGUMENT& argument)
{
    if (!argument.words.empty()) {
        return "_imagewright_cmd_offer -W \"" + joined(argument.words, " ") + "\"";
    }
    switch (value_kind(argument.value)) {
    case VALUE_KIND::FILE:
        return "_imagewright_cmd_offer -f";
    case VALUE_KIND::DIRECTORY:
        return "_imagewright_cmd_offer -d";
    case VALUE_KIND::OTHER:
        break;
    }
    return "COMPREPLY=()";
}

std::string bash_value_cases(const std::vector<ARGUMENT>& arguments, const std::string& command)
{
    std::string text;
    for (const ARGUMENT& argument : arguments) {
        if (argument.flags.empty() || argument.value.empty()) {
            continue;
        }
        std::vector<std::string> patterns;
        for (const std::string& flag : argument.flags) {
            patterns.push_back(command + flag);
        }
        text += "    " + joined(patterns, "|") + ") " + bash_value(argument) + "; return ;;\n";
    }
    return text;
}

/// Text within a description of an argument for zsh, in single quotes.
std::string zsh_text(const std::string& text)
{
    std::string result;
    for (const char c : text) {
        if (c == '\'') {
            result += "'\\''";
            continue;
        }
        if (c == '[' || c == ']' || c == ':' || c == '\\') {
            result += '\\';
        }
        result += c;
    }
    return result;
}

std::string zsh_value(const ARGUMENT& argument)
{
    const std::string name = ":" + zsh_text(argument.value) + ":";
    if (!argument.words.empty()) {
        return name + "(" + joined(argument.words, " ") + ")";
    }
    switch (value_kind(argument.value)) {
    case VALUE_KIND::FILE:
        return name + "_files";
    case VALUE_KIND::DIRECTORY:
        return name + "_files -/";
    case VALUE_KIND::OTHER:
        break;
    }
    return name;
}

std::string zsh_arguments(const std::vector<ARGUMENT>& arguments, const std::string& indent)
{
    std::string text;
    for (const ARGUMENT& argument : arguments) {
        if (argument.flags.empty()) {
            text += " \\\n" + indent + "'" + (argument.many ? "*" : "") + zsh_value(argument) + "'";
        }
        for (const std::string& flag : argument.flags) {
            text += " \\\n" + indent + "'" + (argument.many ? "*" : "") + flag + "[" +
                    zsh_text(argument.help) + "]" + (argument.value.empty() ? "" : zsh_value(argument)) + "'";
        }
    }
    return text;
}

} // namespace

std::string bash_completion(const CLI::App& application)
{
    const std::vector<ARGUMENT> common = arguments_of(application);
    std::string names;
    std::string values;
    std::string cases;
    for (const CLI::App* command : commands_of(application)) {
        const std::vector<ARGUMENT> arguments = arguments_of(*command);
        names += (names.empty() ? "" : " ") + command->get_name();
        values += bash_value_cases(arguments, command->get_name() + ":");
        cases += "    " + command->get_name() + ") options=\"" + flags_of(arguments) + "\"";
        for (const ARGUMENT& argument : arguments) {
            if (argument.flags.empty() && !argument.words.empty()) {
                cases += "; words=\"" + joined(argument.words, " ") + "\"";
            }
        }
        cases += " ;;\n";
    }
    return "# Completion of imagewright-cmd for bash, as `imagewright-cmd completion bash` prints it.\n"
           "_imagewright_cmd_offer()\n"
           "{\n"
           "    mapfile -t COMPREPLY < <(compgen \"$@\" -- \"${COMP_WORDS[COMP_CWORD]}\")\n"
           "}\n"
           "_imagewright_cmd()\n"
           "{\n"
           "    local current=\"${COMP_WORDS[COMP_CWORD]}\" previous=\"${COMP_WORDS[COMP_CWORD - 1]}\"\n"
           "    local command=\"\" options=\"\" words=\"\" i\n"
           "    for ((i = 1; i < COMP_CWORD; i++)); do\n"
           "        case \"${COMP_WORDS[i]}\" in\n"
           "        -C|--directory) ((i++)) ;;\n"
           "        -c|--convert) command=convert; break ;;\n"
           "        -*) ;;\n"
           "        *) command=\"${COMP_WORDS[i]}\"; break ;;\n"
           "        esac\n"
           "    done\n"
           "    case \"$previous\" in\n" +
           bash_value_cases(common, "") +
           "    esac\n"
           "    case \"$command:$previous\" in\n" +
           values +
           "    esac\n"
           "    case \"$command\" in\n"
           "    \"\") options=\"-c --convert --version\"; words=\"" +
           names + "\" ;;\n" + cases +
           "    esac\n"
           "    if [[ $current == -* ]]; then\n"
           "        _imagewright_cmd_offer -W \"$options " +
           flags_of(common) +
           "\"\n"
           "    elif [[ -n $words ]]; then\n"
           "        _imagewright_cmd_offer -W \"$words\"\n"
           "    else\n"
           "        _imagewright_cmd_offer -f\n"
           "    fi\n"
           "}\n"
           "complete -o filenames -F _imagewright_cmd imagewright-cmd\n";
}

std::string zsh_completion(const CLI::App& application)
{
    std::string names;
    std::string cases;
    for (const CLI::App* command : commands_of(application)) {
        names += "        '" + command->get_name() + ":" + zsh_text(command->get_description()) + "'\n";
        cases += "        " + command->get_name() + ")\n            _arguments $common" +
                 zsh_arguments(arguments_of(*command), "                ") + "\n            ;;\n";
    }
    return "#compdef imagewright-cmd\n"
           "# Completion of imagewright-cmd for zsh, as `imagewright-cmd completion zsh` prints it.\n"
           "_imagewright_cmd()\n"
           "{\n"
           "    local context state line\n"
           "    local -a common commands\n"
           "    typeset -A opt_args\n"
           "    common=(" +
           zsh_arguments(arguments_of(application), "        ") +
           ")\n"
           "    commands=(\n" +
           names +
           "    )\n"
           "    _arguments -C $common '1:command:->command' '*::argument:->argument'\n"
           "    case $state in\n"
           "    command) _describe command commands ;;\n"
           "    argument)\n"
           "        case $words[1] in\n" +
           cases +
           "        esac\n"
           "        ;;\n"
           "    esac\n"
           "}\n"
           "_imagewright_cmd \"$@\"\n";
}
