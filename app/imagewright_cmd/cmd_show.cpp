#include "command.h"
#include "commands.h"
#include "inspect_facts.h"
#include "pgm_common_xml_descriptor.h"
#include "pgm_common_xml_vek_auto_export.h"
#include "setup_reader.h"

#include <algorithm>
#include <cctype>

namespace
{

std::string lower_case(std::string_view text)
{
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
    return lower;
}

/// The element with all that is set in it: attributes by their names, the text as "text", children by their
/// names.
JSON element_json(const PGM_COMMON_XML_ELEMENT& element)
{
    const PGM_COMMON_XML_ELEMENT_DESCRIPTOR& descriptor =
        *pgm_common_xml_vek_find_element(element.m_class_type);
    JSON object = JSON::object();
    if (descriptor.text_type != PGM_XML_TYPE_NONE) {
        object["text"] = element.read_string();
    }
    for (const PGM_COMMON_XML_ATTRIBUTE_DESCRIPTOR& attribute : descriptor.attributes) {
        const std::string& value = element.read_attribute_string(attribute.name);
        if (value != attribute.default_value && attribute.type != PGM_XML_TYPE_SECRET) {
            object[std::string(attribute.name)] = value;
        }
    }
    for (const PGM_COMMON_XML_CHILD_DESCRIPTOR& child : descriptor.children) {
        const std::vector<PGM_COMMON_XML_ELEMENT*> found = element.get_childs(child.kind, true);
        if (found.empty()) {
            continue;
        }
        const std::string name = lower_case(PGM_COMMON_XML_ENUM_STRING[child.kind]);
        if (child.count != PGM_COMMON_XML_COUNT_ANY) {
            object[name] = element_json(*found.front());
            continue;
        }
        JSON list = JSON::array();
        for (const PGM_COMMON_XML_ELEMENT* entry : found) {
            list.push_back(element_json(*entry));
        }
        object[name] = std::move(list);
    }
    return object;
}

/// show: what a setup says, without looking at the files it names.
class CMD_SHOW final : public COMMAND
{
public:
    CLI::App* declare(CLI::App& application) override
    {
        CLI::App* command = application.add_subcommand("show", "Show what a setup says");
        command->add_option("setup", m_setup, "Setup file (.vek)")->type_name("SETUP")->required();
        command->footer("Example:\n  imagewright-cmd show board.vek --json");
        return command;
    }

    EXIT_CODE execute(const COMMAND_CONTEXT& context) override
    {
        std::unique_ptr<PGM_COMMON_XML_VEK_VEK> document;
        std::string message;
        if (!read_setup_file(m_setup, document, message)) {
            context.fail(message);
            return EXIT_CODE_INPUT_UNREADABLE;
        }
        const JSON facts = element_json(*document);
        context.print(facts, facts_text(facts));
        return EXIT_CODE_DONE;
    }

private:
    std::string m_setup;
};

} // namespace

std::unique_ptr<COMMAND> make_cmd_show()
{
    return std::make_unique<CMD_SHOW>();
}
