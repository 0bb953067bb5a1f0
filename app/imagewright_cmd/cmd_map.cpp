#include "arguments.h"
#include "atomic_file.h"
#include "command.h"
#include "commands.h"
#include "findings_report.h"
#include "flash_layouts.h"
#include "map_picture.h"
#include "same_file.h"
#include "setup_argument.h"
#include "text_table.h"

namespace
{

JSON range_json(const FLASH_RANGE& range)
{
    return JSON{{"start", hex_text(range.start)}, {"end", hex_text(range.end)}, {"bytes", range.size()}};
}

JSON partition_json(const FLASH_LAYOUT_PARTITION& partition)
{
    JSON inputs = JSON::array();
    for (const FLASH_LAYOUT_PARTITION::INPUT& input : partition.inputs) {
        JSON entry{{"id", input.id}};
        entry.update(range_json(input.range));
        inputs.push_back(std::move(entry));
    }
    JSON entry{{"name", partition.name}};
    entry.update(range_json(partition.range));
    entry["used_bytes"] = partition.used;
    entry["page"] = partition.page ? JSON(*partition.page) : JSON();
    entry["reserved"] = partition.is_reserved;
    entry["generated"] = partition.is_generated;
    entry["files"] = partition.files;
    entry["inputs"] = std::move(inputs);
    return entry;
}

JSON layouts_json(const std::string& setup, const std::vector<FLASH_LAYOUT>& layouts)
{
    JSON devices = JSON::array();
    for (const FLASH_LAYOUT& layout : layouts) {
        JSON partitions = JSON::array();
        for (const FLASH_LAYOUT_PARTITION& partition : layout.partitions) {
            partitions.push_back(partition_json(partition));
        }
        JSON gaps = JSON::array();
        for (const FLASH_RANGE& gap : layout.gaps) {
            gaps.push_back(range_json(gap));
        }
        devices.push_back({{"id", layout.id},
                           {"device", layout.device},
                           {"bytes", layout.size},
                           {"sector_bytes", layout.sector_size},
                           {"partitions", std::move(partitions)},
                           {"gaps", std::move(gaps)}});
    }
    return JSON{{"setup", setup}, {"devices", std::move(devices)}};
}

/// Rows of the table, partitions and gaps in the order of their addresses.
std::string layout_text(const FLASH_LAYOUT& layout)
{
    TEXT_TABLE table({"partition", "start", "end", "bytes", "used", "page", "input"});
    auto gap = layout.gaps.begin();
    const auto add_gaps_below = [&](std::uint64_t address) {
        for (; gap != layout.gaps.end() && gap->start < address; ++gap) {
            table.add_row({"(free)", hex_text(gap->start), hex_text(gap->end), std::to_string(gap->size()),
                           "-", "-", "-"});
        }
    };
    for (const FLASH_LAYOUT_PARTITION& partition : layout.partitions) {
        add_gaps_below(partition.range.start);
        table.add_row({partition.name, hex_text(partition.range.start), hex_text(partition.range.end),
                       std::to_string(partition.range.size()), std::to_string(partition.used),
                       partition.page ? std::to_string(*partition.page) : "-",
                       !partition.files.empty() ? partition.files
                       : partition.is_generated ? "(made by the tool)"
                                                : "-"});
    }
    add_gaps_below(layout.size);
    return layout.id + ": " + layout.device + ", " + bytes_text(layout.size) + '\n' + table.text();
}

/// map: shows the flash layout of a setup as a table or a picture.
class CMD_MAP final : public COMMAND
{
public:
    CLI::App* declare(CLI::App& application) override
    {
        CLI::App* command = application.add_subcommand("map", "Show the flash layout of a setup");
        command->add_option("setup", m_setup, "Setup file (.vek)")->type_name("SETUP")->required();
        command->add_option("--device", m_device, "Show this flash device alone, by its id")->type_name("ID");
        CLI::Option* picture = command->add_flag("--svg", m_picture, "Draw a picture to scale");
        CLI::Option* output =
            command->add_option("-o,--output", m_output, "File for the picture (.svg)")->type_name("FILE");
        picture->needs(output);
        output->needs(picture);
        m_passwords.declare(*command);
        command->footer("Examples:\n"
                        "  imagewright-cmd map board.vek\n"
                        "  imagewright-cmd map board.vek --svg -o board.svg");
        return command;
    }

    EXIT_CODE execute(const COMMAND_CONTEXT& context) override
    {
        std::unique_ptr<PGM_COMMON_XML_VEK_VEK> document;
        std::string message;
        if (!open_setup(m_setup, document, message) || !m_passwords.apply(*document, message)) {
            context.fail(message);
            return EXIT_CODE_INPUT_UNREADABLE;
        }
        FINDINGS findings;
        std::vector<FLASH_LAYOUT> layouts;
        find_flash_layouts(*document, layouts, findings);
        if (!findings.can_generate()) {
            context.fail_with(findings_json(m_setup, findings), findings_text(m_setup, findings));
            return EXIT_CODE_REFUSED;
        }
        return choose(context, layouts) ? show(context, layouts) : EXIT_CODE_USAGE;
    }

private:
    /// Leaves the device that was asked for; false when there is nothing to show.
    bool choose(const COMMAND_CONTEXT& context, std::vector<FLASH_LAYOUT>& layouts) const
    {
        if (m_device.empty() && (!layouts.empty() || !m_picture)) {
            return true;
        }
        std::string ids;
        for (const FLASH_LAYOUT& layout : layouts) {
            ids += (ids.empty() ? "" : ", ") + layout.id;
        }
        std::erase_if(layouts, [this](const FLASH_LAYOUT& layout) { return layout.id != m_device; });
        if (layouts.empty()) {
            context.fail(ids.empty()
                             ? m_setup + " has no flash device; add one to the setup to see its layout."
                             : m_setup + " has no flash device \"" + m_device + "\"; it has " + ids + ".");
        }
        return !layouts.empty();
    }

    EXIT_CODE show(const COMMAND_CONTEXT& context, const std::vector<FLASH_LAYOUT>& layouts) const
    {
        if (m_picture) {
            return draw(context, layouts);
        }
        std::string text;
        for (const FLASH_LAYOUT& layout : layouts) {
            text += (text.empty() ? "" : "\n") + layout_text(layout);
        }
        if (layouts.empty()) {
            text = m_setup + " has no flash device.\n";
        }
        context.print(layouts_json(m_setup, layouts), text);
        return EXIT_CODE_DONE;
    }

    EXIT_CODE draw(const COMMAND_CONTEXT& context, const std::vector<FLASH_LAYOUT>& layouts) const
    {
        if (same_file(m_setup, m_output)) {
            context.fail("The picture " + m_output +
                         " would replace the setup itself; choose another name behind -o.");
            return EXIT_CODE_USAGE;
        }
        const std::string svg = map_picture(layouts);
        std::string message;
        const auto file = ATOMIC_FILE::create(m_output, 0666, message);
        if (!file || !file->write({reinterpret_cast<const std::uint8_t*>(svg.data()), svg.size()}, message) ||
            !file->commit(message)) {
            context.fail(message);
            return EXIT_CODE_OUTPUT_NOT_WRITTEN;
        }
        report_written_file(context, m_output);
        return EXIT_CODE_DONE;
    }

    std::string m_setup;
    PASSWORD_OPTION m_passwords;
    std::string m_device;
    std::string m_output;
    bool m_picture = false;
};

} // namespace

std::unique_ptr<COMMAND> make_cmd_map()
{
    return std::make_unique<CMD_MAP>();
}
