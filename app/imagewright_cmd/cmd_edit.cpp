#include "check.h"
#include "command.h"
#include "commands.h"
#include "findings_report.h"
#include "parameter_text.h"
#include "setup_argument.h"
#include "setup_inputs.h"
#include "setup_reader.h"
#include "setup_writer.h"

#include <algorithm>

namespace
{

using PARAMS = VEK_FILE_ASSISTANT::PARAMS;

enum class VERB { SET, GET, REMOVE };

/// One step of an edit.
struct STEP {
    VERB verb = VERB::SET;
    PGM_COMMON_XML_VEK_CMD_OPT_ENUM option = VEK_CMD_OPT_INVALID;
    PARAMS params;
};

bool verb_from_word(const std::string& word, VERB& verb)
{
    if (word == "set") {
        verb = VERB::SET;
    } else if (word == "get") {
        verb = VERB::GET;
    } else if (word == "remove") {
        verb = VERB::REMOVE;
    } else {
        return false;
    }
    return true;
}

std::string joined(const PARAMS& params)
{
    std::string text;
    for (const auto& [param, value] : params) {
        text += std::string(PGM_COMMON_XML_VEK_CMD_PARAM[param]) + "=" + value + '\n';
    }
    return text;
}

JSON values_json(const STEP& step, const PARAMS& values)
{
    JSON list = JSON::array();
    for (const auto& [param, value] : values) {
        list.push_back({{"parameter", PGM_COMMON_XML_VEK_CMD_PARAM[param]}, {"value", value}});
    }
    return JSON{{"option", PGM_COMMON_XML_VEK_CMD_OPT[step.option]}, {"values", std::move(list)}};
}

/// edit: reads and changes values of a setup.
class CMD_EDIT final : public COMMAND
{
public:
    CLI::App* declare(CLI::App& application) override
    {
        CLI::App* command = application.add_subcommand("edit", "Read and change the values of a setup");
        command->add_option("setup", m_setup, "Setup file (.vek)")->type_name("SETUP")->required();
        command
            ->add_option("steps", m_words,
                         "Steps, done in order: [set|get|remove] OPTION PARAM=VALUE...; OPTION is one of "
                         "raw_file, assignment, settings, output_file, flash_loader, flash_device and "
                         "bitstream (see list params)")
            ->type_name("STEP")
            ->required();
        command->add_flag("--new", m_new, "Begin with an empty setup instead of reading SETUP");
        command->add_option("-o,--output", m_output, "Write the changed setup here and leave SETUP as it is")
            ->type_name("FILE");
        command->footer("Examples:\n"
                        "  imagewright-cmd edit board.vek bitstream path=top.sof path_compression=1\n"
                        "  imagewright-cmd edit board.vek get output_file type=RBF\n"
                        "  imagewright-cmd edit board.vek remove raw_file id=Raw_File_1 -o smaller.vek\n"
                        "  imagewright-cmd edit board.vek --new settings mode=PS bitstream path=top.sof \\\n"
                        "      output_file type=RBF name=board directory=out bitstream_id=Bitstream_1");
        return command;
    }

    EXIT_CODE execute(const COMMAND_CONTEXT& context) override
    {
        std::vector<STEP> steps;
        std::string message;
        if (!parse_steps(steps, message)) {
            context.fail(message);
            return EXIT_CODE_USAGE;
        }
        std::unique_ptr<PGM_COMMON_XML_VEK_VEK> document;
        if (m_new) {
            document = std::make_unique<PGM_COMMON_XML_VEK_VEK>(PGM_COMMON_XML_ENUM_VEK);
        } else if (!read_setup_file(m_setup, document, message)) {
            context.fail(message);
            return EXIT_CODE_INPUT_UNREADABLE;
        }
        JSON values = JSON::array();
        std::string text;
        for (STEP& step : steps) {
            if (!perform(*document, step, values, text, message)) {
                context.fail(message);
                return EXIT_CODE_USAGE;
            }
        }
        const bool changes =
            std::any_of(steps.begin(), steps.end(), [](const STEP& step) { return step.verb != VERB::GET; });
        const EXIT_CODE code = changes ? write(context, *document) : EXIT_CODE_DONE;
        if (code == EXIT_CODE_DONE) {
            if (changes) {
                text += "Wrote " + target() + ".\n";
            }
            context.print(JSON{{"setup", m_setup},
                               {"written", changes ? JSON(target()) : JSON()},
                               {"values", std::move(values)}},
                          text);
        }
        return code;
    }

private:
    const std::string& target() const { return m_output.empty() ? m_setup : m_output; }

    bool parse_steps(std::vector<STEP>& steps, std::string& message) const
    {
        for (auto word = m_words.begin(); word != m_words.end();) {
            STEP step;
            if (verb_from_word(*word, step.verb) && ++word == m_words.end()) {
                message =
                    "An option is missing behind \"" + m_words.back() + "\"; name one such as settings.";
                return false;
            }
            if (!option_from_word(*word, step.option, message)) {
                return false;
            }
            for (++word; word != m_words.end() && is_parameter(step, *word); ++word) {
                PARAMS::value_type pair;
                if (!param_from_word(step.option, *word, step.verb == VERB::SET, pair, message)) {
                    return false;
                }
                step.params.push_back(pair);
            }
            if (step.verb == VERB::SET && step.params.empty()) {
                message = std::string("No PARAM=VALUE stands behind ") +
                          PGM_COMMON_XML_VEK_CMD_OPT[step.option] + "; name what is to be set.";
                return false;
            }
            steps.push_back(step);
        }
        return true;
    }

    /// A word that begins no new step. Only to be read are parameters that stand without a value.
    static bool is_parameter(const STEP& step, const std::string& word)
    {
        VERB verb = VERB::SET;
        if (word.find('=') != std::string::npos) {
            return true;
        }
        return step.verb == VERB::GET && !verb_from_word(word, verb) &&
               pgm_common_xml_find_vek_cmd_param(step.option, word) != VEK_CMD_PARAM_INVALID;
    }

    static bool perform(PGM_COMMON_XML_VEK_VEK& document, STEP& step, JSON& values, std::string& text,
                        std::string& message)
    {
        if (!complete_ids(document, step.option, step.params, message)) {
            return false;
        }
        if (step.verb == VERB::SET) {
            return set_values(document, step.option, step.params, message);
        }
        message = explain_refusal(step.option, step.params, false);
        if (!message.empty()) {
            return false;
        }
        if (step.verb == VERB::GET) {
            const PARAMS found = VEK_FILE_ASSISTANT::get(&document, step.option, step.params);
            values.push_back(values_json(step, found));
            text += joined(found);
            return true;
        }
        message =
            "The setup cannot be changed in that way: remove takes the parameters that pick an element, "
            "and no values of it.";
        return VEK_FILE_ASSISTANT::remove(&document, step.option, step.params);
    }

    EXIT_CODE write(const COMMAND_CONTEXT& context, const PGM_COMMON_XML_VEK_VEK& document) const
    {
        FINDINGS findings;
        check_setup(document, false, "", findings);
        if (!findings.can_save()) {
            FINDINGS broken;
            for (const FINDING& finding : findings.all()) {
                if (finding.row().severity == FINDING_FORBIDS_SAVE) {
                    broken.add(finding.kind, finding.element, finding.text);
                }
            }
            context.fail_with(findings_json(m_setup, broken), findings_text(m_setup, broken));
            return EXIT_CODE_REFUSED;
        }
        std::string message;
        if (!write_setup_file(document, target(), message)) {
            context.fail(message);
            return EXIT_CODE_OUTPUT_NOT_WRITTEN;
        }
        return EXIT_CODE_DONE;
    }

    std::string m_setup;
    std::vector<std::string> m_words;
    std::string m_output;
    bool m_new = false;
};

} // namespace

std::unique_ptr<COMMAND> make_cmd_edit()
{
    return std::make_unique<CMD_EDIT>();
}
