#include "command.h"
#include "commands.h"
#include "pgm_common_xml_descriptor.h"
#include "pgm_device.h"
#include "text_table.h"
#include "vek_db.h"
#include "vek_file_assistant.h"
#include "vek_util.h"

#include <functional>

namespace
{

/// A listing as rows of named cells: printed as an aligned table, or as a JSON array of objects.
struct LISTING {
    std::vector<std::string> columns; ///< key in the JSON; the header in the table
    std::vector<std::vector<JSON>> rows;
};

std::string family_name(DEV_FAMILY_ENUM family)
{
    return dstr_get_user_string(family);
}

std::string document_word(VEK_FILE_TYPE type)
{
    return VEK_FILE_ASSISTANT::convert_xml_enum_to_string(VEK_DB::get_xml_enum(type));
}

/// The modes that a family offers, as words.
JSON mode_words(DEV_FAMILY_ENUM family)
{
    unsigned mask_a = 0;
    unsigned mask_b = 0;
    unsigned outputs = 0;
    VEK_UTIL::get_family_pcf_info(family, DEV_DEVICE_NONE, mask_a, mask_b, outputs);
    JSON words = JSON::array();
    for (const PGMIO_CONFIG_SCHEME mode : VEK_DB_UTIL::get_enabled_config_modes()) {
        if ((((mask_a | mask_b) >> (mode % 32)) & 1U) != 0) {
            words.push_back(VEK_FILE_ASSISTANT::convert_xml_enum_to_string(VEK_DB::get_xml_enum(mode)));
        }
    }
    return words;
}

LISTING list_families()
{
    LISTING listing{{"family", "number", "modes"}, {}};
    const DEV_FAMILY_MANAGER manager;
    for (const DEV_FAMILY_ENUM family : manager.families()) {
        if (VEK_DB_UTIL::is_supported_family(family) && family != DEV_FAMILY_NOT_OFFERED) {
            listing.rows.push_back({family_name(family), static_cast<unsigned>(family), mode_words(family)});
        }
    }
    return listing;
}

LISTING list_devices()
{
    LISTING listing{{"device", "family", "idcode", "periphery_bytes", "core_bytes", "key_bits"}, {}};
    for (const PGM_DEVICE* device : PGM_DEVICE_INDEX::get_device_list()) {
        if (!VEK_DB_UTIL::is_configuration_family(device->family) && !device->is_dev_not_listed()) {
            listing.rows.push_back({device->user_name(), family_name(device->family),
                                    hex_text(device->idcode), device->periphery_bytes, device->core_bytes,
                                    device->key_bits});
        }
    }
    return listing;
}

std::string jedec_text(const PGM_DEVICE& device)
{
    std::string text;
    for (const std::uint8_t byte : device.jedec_id) {
        text += (text.empty() ? "" : " ") + hex_text(byte).substr(8);
    }
    return text == "00 00 00" ? "-" : text;
}

LISTING list_flash()
{
    LISTING listing{{"device", "family", "bytes", "sector_bytes", "page_bytes", "jedec_id", "address_bits"},
                    {}};
    for (const PGM_DEVICE* device : PGM_DEVICE_INDEX::get_device_list()) {
        if (VEK_DB_UTIL::is_configuration_family(device->family) && !device->is_dev_not_listed()) {
            listing.rows.push_back({device->user_name(), family_name(device->family), device->flash_bytes,
                                    device->sector_bytes, device->page_bytes, jedec_text(*device),
                                    device->address_width});
        }
    }
    return listing;
}

LISTING list_modes()
{
    LISTING listing{{"mode", "description", "flash_families"}, {}};
    for (const PGMIO_CONFIG_SCHEME mode : VEK_DB_UTIL::get_enabled_config_modes()) {
        JSON families = JSON::array();
        for (const DEV_FAMILY_ENUM family : VEK_DB::get_config_device_family(mode)) {
            families.push_back(family_name(family));
        }
        listing.rows.push_back({VEK_FILE_ASSISTANT::convert_xml_enum_to_string(VEK_DB::get_xml_enum(mode)),
                                PGMIO_CONFIG_SCHEME_STR[mode], families});
    }
    return listing;
}

LISTING list_outputs()
{
    LISTING listing{{"type", "description", "extension", "modes"}, {}};
    for (const VEK_FILE_TYPE type : VEK_DB::get_all_output_file_type_keys()) {
        if (!VEK_DB::get_enabled(type) || VEK_DB::get_virtual_type(type)) {
            continue;
        }
        JSON modes = JSON::array();
        for (const PGMIO_CONFIG_SCHEME mode : VEK_DB_UTIL::get_enabled_config_modes()) {
            if (VEK_DB::supports_output_file_type(mode, type)) {
                modes.push_back(VEK_FILE_ASSISTANT::convert_xml_enum_to_string(VEK_DB::get_xml_enum(mode)));
            }
        }
        listing.rows.push_back({document_word(type), VEK_DB::get_description(type),
                                fio_get_extension_string(VEK_DB::get_fio_ext_enum(type)), modes});
    }
    return listing;
}

LISTING list_params()
{
    LISTING listing{{"option", "parameter", "description"}, {}};
    for (unsigned option = VEK_CMD_OPT_INVALID + 1; option < VEK_CMD_OPT_MAX; ++option) {
        for (unsigned value = VEK_CMD_PARAM_INVALID + 1; value < VEK_CMD_PARAM_MAX; ++value) {
            const auto param = static_cast<PGM_COMMON_XML_VEK_CMD_PARAM_ENUM>(value);
            if (pgm_common_xml_vek_param(param).option ==
                static_cast<PGM_COMMON_XML_VEK_CMD_OPT_ENUM>(option)) {
                listing.rows.push_back({PGM_COMMON_XML_VEK_CMD_OPT[option],
                                        PGM_COMMON_XML_VEK_CMD_PARAM[value], VEK_DB::get_description(param)});
            }
        }
    }
    return listing;
}

struct LISTED {
    const char* name;
    const char* help;
    LISTING (*list)();
};

constexpr LISTED LISTINGS[] = {
    {"families", "Device families and their configuration modes", list_families},
    {"devices", "FPGAs", list_devices},
    {"flash", "Flash devices, those of the custom database included", list_flash},
    {"modes", "Configuration modes and the flash families they work with", list_modes},
    {"outputs", "Output file types", list_outputs},
    {"params", "Parameters of a setup, by the option they belong to", list_params},
};

JSON to_json(const LISTING& listing)
{
    JSON result = JSON::array();
    for (const std::vector<JSON>& row : listing.rows) {
        JSON entry = JSON::object();
        for (std::size_t column = 0; column < row.size(); ++column) {
            entry[listing.columns[column]] = row[column];
        }
        result.push_back(std::move(entry));
    }
    return result;
}

std::string cell_text(const JSON& cell)
{
    if (cell.is_string()) {
        return cell.get<std::string>();
    }
    if (!cell.is_array()) {
        return cell.dump();
    }
    std::string text;
    for (const JSON& word : cell) {
        text += (text.empty() ? "" : ", ") + word.get<std::string>();
    }
    return text.empty() ? "-" : text;
}

std::string to_text(const LISTING& listing)
{
    TEXT_TABLE table(listing.columns);
    for (const std::vector<JSON>& row : listing.rows) {
        std::vector<std::string> cells;
        for (const JSON& cell : row) {
            cells.push_back(cell_text(cell));
        }
        table.add_row(std::move(cells));
    }
    return table.text();
}

/// list: what the tool knows.
class CMD_LIST final : public COMMAND
{
public:
    CLI::App* declare(CLI::App& application) override
    {
        CLI::App* command = application.add_subcommand("list", "List what the tool knows");
        std::string what = "What to list:";
        std::vector<std::string> names;
        for (const LISTED& listed : LISTINGS) {
            names.emplace_back(listed.name);
            what += std::string("\n") + listed.name + ": " + listed.help;
        }
        command->add_option("what", m_what, what)->required()->check(CLI::IsMember(names))->type_name("WHAT");
        command->footer("Example:\n  imagewright-cmd list flash --json");
        return command;
    }

    EXIT_CODE execute(const COMMAND_CONTEXT& context) override
    {
        for (const LISTED& listed : LISTINGS) {
            if (m_what == listed.name) {
                const LISTING listing = listed.list();
                context.print(to_json(listing), to_text(listing));
                return EXIT_CODE_DONE;
            }
        }
        return EXIT_CODE_USAGE;
    }

private:
    std::string m_what;
};

} // namespace

std::unique_ptr<COMMAND> make_cmd_list()
{
    return std::make_unique<CMD_LIST>();
}
