#include "conversion.h"

#include "bitstream_file.h"
#include "conversion_flash.h"
#include "fio_path.h"
#include "inspect.h"
#include "output_plan.h"
#include "parameter_text.h"
#include "pgm_device.h"
#include "precheck.h"
#include "scheme_words.h"
#include "setup_inputs.h"
#include "setup_view.h"
#include "value_rules.h"
#include "vek_db.h"
#include "vek_file_assistant.h"
#include "vek_util.h"

#include <algorithm>

namespace
{

using PARAMS = VEK_FILE_ASSISTANT::PARAMS;

std::string word_of(VEK_FILE_TYPE type)
{
    return VEK_FILE_ASSISTANT::convert_xml_enum_to_string(VEK_DB::get_xml_enum(type));
}

/// Whether a file of the type can be asked for by itself.
bool is_offered(VEK_FILE_TYPE type)
{
    return VEK_DB::get_enabled(type) && !VEK_DB::get_virtual_type(type) && !VEK_DB::get_secondary(type);
}

class CONVERTER
{
public:
    CONVERTER(const CONVERSION_REQUEST& request, std::string& message, CONVERSION_FAILURE& failure)
        : m_request(request), m_message(message), m_failure(failure),
          m_document(std::make_unique<PGM_COMMON_XML_VEK_VEK>(PGM_COMMON_XML_ENUM_VEK))
    {
    }

    std::unique_ptr<PGM_COMMON_XML_VEK_VEK> run()
    {
        const bool made = find_type() && read_inputs() && find_mode() && add_output() && add_flash() &&
                          add_options() && is_named_right();
        return made ? std::move(m_document) : nullptr;
    }

private:
    bool fail(CONVERSION_FAILURE failure, const std::string& sentence)
    {
        m_failure = failure;
        m_message = sentence;
        return false;
    }

    bool usage(const std::string& sentence) { return fail(CONVERSION_FAILURE::USAGE, sentence); }

    bool set(PGM_COMMON_XML_VEK_CMD_OPT_ENUM option, const PARAMS& params)
    {
        return set_values(*m_document, option, params, m_message) || usage(m_message);
    }

    bool find_type()
    {
        std::vector<std::string> words;
        const FIO_EXTENSION_TYPE extension = fio_get_extension_type(FIO_PATH(m_request.output).extension());
        for (const VEK_FILE_TYPE type : VEK_DB::get_all_output_file_type_keys()) {
            if (!is_offered(type)) {
                continue;
            }
            words.push_back(word_of(type));
            if (m_type == VEK_INVALID_FILE_TYPE &&
                (m_request.type.empty()
                     ? extension != FIO_INVALID_EXTENSION && VEK_DB::get_fio_ext_enum(type) == extension
                     : m_request.type == words.back())) {
                m_type = type;
            }
        }
        if (m_type == VEK_INVALID_FILE_TYPE) {
            return usage((m_request.type.empty()
                              ? "The extension of " + m_request.output + " stands for no output type"
                              : "\"" + m_request.type + "\" is no output type") +
                         "; name one behind --type: " + join_words(words) + ".");
        }
        const std::string wanted = fio_get_extension_string(VEK_DB::get_fio_ext_enum(m_type));
        if (!FIO_PATH(m_request.output).filename().ends_with(wanted)) {
            return usage("Files of the type " + word_of(m_type) + " end in " + wanted + "; give " +
                         m_request.output + " that ending.");
        }
        return true;
    }

    bool read_inputs()
    {
        for (const std::string& path : m_request.inputs) {
            INSPECTED_KIND kind = INSPECTED_KIND::OTHER;
            if (!identify_file(path, kind, m_message)) {
                return fail(CONVERSION_FAILURE::INPUT, m_message);
            }
            const std::string raw_word = raw_file_word(path);
            const bool is_read = kind == INSPECTED_KIND::BITSTREAM || raw_word.empty()
                                     ? add_bitstream(path)
                                     : add_raw_file(path, raw_word);
            if (!is_read) {
                return false;
            }
        }
        if (takes_flash_device(m_type) || m_raw_files.empty()) {
            return true;
        }
        return usage("Files of the type " + word_of(m_type) + " are made from bitstreams, and " +
                     VEK_FILE_ASSISTANT::get_raw_file_elements(m_document.get()).front()->text +
                     " is a raw file; imagewright-cmd pack makes a bitstream of it.");
    }

    bool add_bitstream(const std::string& path)
    {
        std::string name;
        const PGM_DEVICE* device = nullptr;
        if (!precheck_bitstream_file(absolute_path(path), true, &device, name, m_message)) {
            return fail(CONVERSION_FAILURE::INPUT, m_message);
        }
        if (m_device == nullptr) {
            m_device = device;
            const auto file = BITSTREAM_FILE::open(absolute_path(path), m_message);
            if (file && file->scheme()) {
                m_scheme = static_cast<PGMIO_CONFIG_SCHEME>(*file->scheme());
            }
        }
        m_bitstreams.push_back(free_id(BITSTREAM_ID_PREFIX, m_bitstreams));
        return set(VEK_CMD_OPT_BITSTREAM,
                   {{VEK_CMD_PARAM_BITSTREAM_ID, m_bitstreams.back()}, {VEK_CMD_PARAM_BITSTREAM_PATH, path}});
    }

    bool add_raw_file(const std::string& path, const std::string& word)
    {
        m_raw_files.push_back({RAW_FILE_ID_PREFIX + std::to_string(m_raw_files.size() + 1), word});
        return set(VEK_CMD_OPT_RAW_FILE, {{VEK_CMD_PARAM_RAW_FILE_ID, m_raw_files.back().id},
                                          {VEK_CMD_PARAM_RAW_FILE_TYPE, word},
                                          {VEK_CMD_PARAM_RAW_FILE_RAW_FILE, path}});
    }

    /// The mode that was asked for, that of the bitstream, or the first that goes with family and type.
    bool find_mode()
    {
        if (!m_request.mode.empty() && !scheme_from_word(m_request.mode, m_mode)) {
            return usage("\"" + m_request.mode + "\" is no configuration mode; use one of " +
                         join_words(mode_words()) + ".");
        }
        if (m_mode == PGMIO_CONFIG_SCHEME_ILLEGAL && m_scheme != PGMIO_CONFIG_SCHEME_ILLEGAL) {
            m_mode = m_scheme;
        }
        const bool is_onchip =
            m_mode >= PGMIO_CONFIG_SCHEME_INTERNAL && m_mode <= PGMIO_CONFIG_SCHEME_DUAL_COMPRESSED_IMAGES;
        m_mode = is_onchip ? PGMIO_CONFIG_SCHEME_INTERNAL : m_mode;
        if (m_mode == PGMIO_CONFIG_SCHEME_ILLEGAL) {
            m_mode = first_mode();
        }
        const auto modes = VEK_DB_UTIL::get_enabled_config_modes();
        if (std::find(modes.begin(), modes.end(), m_mode) == modes.end()) {
            return usage("The mode cannot be found out from the inputs; name one behind --mode: " +
                         join_words(mode_words()) + ".");
        }
        return set(VEK_CMD_OPT_SETTINGS,
                   {{VEK_CMD_PARAM_SETTINGS_MODE,
                     VEK_FILE_ASSISTANT::convert_xml_enum_to_string(VEK_DB::get_xml_enum(m_mode))}});
    }

    static std::vector<std::string> mode_words()
    {
        std::vector<std::string> words;
        for (const PGMIO_CONFIG_SCHEME mode : VEK_DB_UTIL::get_enabled_config_modes()) {
            words.push_back(VEK_FILE_ASSISTANT::convert_xml_enum_to_string(VEK_DB::get_xml_enum(mode)));
        }
        return words;
    }

    PGMIO_CONFIG_SCHEME first_mode() const
    {
        unsigned mask_a = 0;
        unsigned mask_b = 0;
        unsigned outputs = 0;
        if (m_device != nullptr) {
            VEK_UTIL::get_family_pcf_info(m_device->family, m_device->device, mask_a, mask_b, outputs);
        } else {
            mask_a = ~0U;
        }
        const PGM_DEVICE* flash = PGM_DEVICE_INDEX::find_by_name(m_request.flash_device);
        for (const PGMIO_CONFIG_SCHEME mode : VEK_DB_UTIL::get_enabled_config_modes()) {
            const auto families = VEK_DB::get_config_device_family(mode);
            const bool reads_flash = flash == nullptr || std::find(families.begin(), families.end(),
                                                                   flash->family) != families.end();
            if (((mask_a | mask_b) >> (mode % 32) & 1U) != 0 && reads_flash &&
                VEK_DB::supports_output_file_type(mode, m_type)) {
                return mode;
            }
        }
        return PGMIO_CONFIG_SCHEME_ILLEGAL;
    }

    bool add_output()
    {
        const FIO_PATH path(m_request.output);
        const std::string name = path.filename();
        const std::string extension = fio_get_extension_string(VEK_DB::get_fio_ext_enum(m_type));
        const std::string directory = path.full_directory();
        PARAMS params{{VEK_CMD_PARAM_OUTPUT_FILE_TYPE, word_of(m_type)},
                      {VEK_CMD_PARAM_OUTPUT_FILE_NAME, name.substr(0, name.size() - extension.size())},
                      {VEK_CMD_PARAM_OUTPUT_FILE_DIRECTORY, directory.empty() ? "." : directory}};
        if (!takes_flash_device(m_type)) {
            if (m_bitstreams.empty()) {
                return usage("No input is a bitstream; name one.");
            }
            for (const std::string& id : m_bitstreams) {
                params.emplace_back(VEK_CMD_PARAM_OUTPUT_FILE_BITSTREAM_ID, id);
            }
        } else {
            params.emplace_back(VEK_CMD_PARAM_OUTPUT_FILE_FLASH_DEVICE_ID, flash_id());
        }
        return set(VEK_CMD_OPT_OUTPUT_FILE, params);
    }

    static std::string flash_id() { return free_id(FLASH_DEVICE_ID_PREFIX, {}); }

    bool add_flash()
    {
        if (!takes_flash_device(m_type)) {
            return m_request.flash_device.empty() ||
                   usage("Files of the type " + word_of(m_type) +
                         " are made without a flash device; leave --device out.");
        }
        const bool is_onchip = m_device != nullptr && m_device->family == DEV_FAMILY_ONCHIP_FLASH;
        const std::string device = !m_request.flash_device.empty() ? m_request.flash_device
                                   : is_onchip                     ? m_device->user_name()
                                                                   : "";
        if (PGM_DEVICE_INDEX::find_by_name(device) == nullptr) {
            return usage(device.empty() ? "Files of the type " + word_of(m_type) +
                                              " are made from a flash device; name "
                                              "it behind --device."
                                        : "\"" + device +
                                              "\" is not in the device database; imagewright-cmd list flash "
                                              "shows what is.");
        }
        return set(VEK_CMD_OPT_FLASH_DEVICE, {{VEK_CMD_PARAM_FLASH_DEVICE_ID, flash_id()},
                                              {VEK_CMD_PARAM_FLASH_DEVICE_TYPE, device}}) &&
               add_loader() && lay_out();
    }

    bool add_loader()
    {
        std::string loader = m_request.flash_loader;
        if (loader.empty() && VEK_DB::get_require_flash_loader(m_type) && m_device != nullptr) {
            loader = m_device->user_name();
        }
        return loader.empty() ||
               set(VEK_CMD_OPT_FLASH_LOADER, {{VEK_CMD_PARAM_FLASH_LOADER_FLASH_LOADER, loader}});
    }

    /// On-chip flash is laid out by what the bitstream holds.
    PGMIO_CONFIG_SCHEME layout_mode() const
    {
        return m_mode == PGMIO_CONFIG_SCHEME_INTERNAL && m_scheme != PGMIO_CONFIG_SCHEME_ILLEGAL ? m_scheme
                                                                                                 : m_mode;
    }

    bool lay_out()
    {
        const FLASH_INPUTS inputs{m_device, layout_mode(), m_bitstreams, m_raw_files};
        return lay_out_inputs(*m_document, flash_id(), inputs, m_message) || usage(m_message);
    }

    bool add_options()
    {
        for (const std::string& word : m_request.options) {
            PARAMS::value_type pair;
            if (!param_from_qualified_word(word, pair, m_message)) {
                return usage(m_message);
            }
            if (!add_option(pair)) {
                return false;
            }
        }
        return true;
    }

    /// Some options add to the name of the file, and the user is to find it where it was asked for.
    bool is_named_right()
    {
        const std::vector<OUTPUT_PLAN> plans = plan_outputs(SETUP_VIEW(*m_document), "");
        return same_path(plans.front().path, m_request.output) ||
               usage("With these options the file is named " + plans.front().path +
                     "; name it so behind -o.");
    }

    static bool same_path(const std::string& a, const std::string& b)
    {
        return FIO_PATH(absolute_path(a)) == FIO_PATH(absolute_path(b));
    }

    /// An option holds for all elements of its kind that the conversion has.
    bool add_option(const PARAMS::value_type& pair)
    {
        switch (pgm_common_xml_vek_cmd_opt_of(pair.first)) {
        case VEK_CMD_OPT_SETTINGS:
            return set(VEK_CMD_OPT_SETTINGS, {pair});
        case VEK_CMD_OPT_OUTPUT_FILE:
            return set(VEK_CMD_OPT_OUTPUT_FILE, {{VEK_CMD_PARAM_OUTPUT_FILE_TYPE, word_of(m_type)}, pair});
        case VEK_CMD_OPT_BITSTREAM:
            for (const PGM_COMMON_XML_VEK_BITSTREAM* bitstream :
                 VEK_FILE_ASSISTANT::get_bitstream_elements(m_document.get())) {
                if (!set(VEK_CMD_OPT_BITSTREAM,
                         {{VEK_CMD_PARAM_BITSTREAM_ID, bitstream->id},
                          {VEK_CMD_PARAM_BITSTREAM_PATH, bitstream->path.front()->text},
                          pair})) {
                    return false;
                }
            }
            return true;
        case VEK_CMD_OPT_RAW_FILE:
            for (const std::string& id : VEK_FILE_ASSISTANT::get_raw_file_ids(m_document.get())) {
                if (!set(VEK_CMD_OPT_RAW_FILE, {{VEK_CMD_PARAM_RAW_FILE_ID, id}, pair})) {
                    return false;
                }
            }
            return true;
        case VEK_CMD_OPT_FLASH_DEVICE:
            return takes_flash_device(m_type)
                       ? set(VEK_CMD_OPT_FLASH_DEVICE, {{VEK_CMD_PARAM_FLASH_DEVICE_ID, flash_id()}, pair})
                       : usage(std::string(PGM_COMMON_XML_VEK_CMD_PARAM[pair.first]) +
                               " belongs to a flash device, and this conversion has none.");
        case VEK_CMD_OPT_FLASH_LOADER:
            return set(VEK_CMD_OPT_FLASH_LOADER, {pair});
        case VEK_CMD_OPT_ASSIGNMENT:
        case VEK_CMD_OPT_INVALID:
        case VEK_CMD_OPT_MAX:
            break;
        }
        return usage(std::string(PGM_COMMON_XML_VEK_CMD_PARAM[pair.first]) +
                     " belongs to one assignment; keep the setup with --save and use imagewright-cmd edit.");
    }

    const CONVERSION_REQUEST& m_request;
    std::string& m_message;
    CONVERSION_FAILURE& m_failure;
    std::unique_ptr<PGM_COMMON_XML_VEK_VEK> m_document;
    VEK_FILE_TYPE m_type = VEK_INVALID_FILE_TYPE;
    PGMIO_CONFIG_SCHEME m_mode = PGMIO_CONFIG_SCHEME_ILLEGAL;
    PGMIO_CONFIG_SCHEME m_scheme = PGMIO_CONFIG_SCHEME_ILLEGAL; ///< of the first bitstream
    const PGM_DEVICE* m_device = nullptr;                       ///< of the first bitstream
    std::vector<std::string> m_bitstreams;
    std::vector<FLASH_INPUTS::RAW_FILE> m_raw_files;
};

} // namespace

std::unique_ptr<PGM_COMMON_XML_VEK_VEK> make_conversion(const CONVERSION_REQUEST& request,
                                                        std::string& message, CONVERSION_FAILURE& failure)
{
    return CONVERTER(request, message, failure).run();
}
