#include "msg_internal_error.h"
#include "value_rules.h"
#include "vek_file_assistant.h"

#include <array>
#include <charconv>
#include <string_view>
#include <unordered_map>

namespace
{

std::unordered_map<std::string_view, PGM_COMMON_XML_ENUM> number_words()
{
    std::unordered_map<std::string_view, PGM_COMMON_XML_ENUM> words;
    for (std::uint32_t row = PGM_COMMON_XML_ENUM__INVALID__ + 1; row < PGM_COMMON_XML_ENUM__MAX__; ++row) {
        words.emplace(PGM_COMMON_XML_ENUM_STRING[row], static_cast<PGM_COMMON_XML_ENUM>(row));
    }
    return words;
}

/// A decimal number, or a hexadecimal one behind "0x". False leaves `value` alone.
bool read_number(std::string_view text, std::uint32_t& value)
{
    const bool is_hex = text.starts_with("0x") || text.starts_with("0X");
    const std::string_view digits = is_hex ? text.substr(2) : text;
    std::uint32_t number = 0;
    const auto [end, error] =
        std::from_chars(digits.data(), digits.data() + digits.size(), number, is_hex ? 16 : 10);
    if (error != std::errc() || end != digits.data() + digits.size()) {
        return false;
    }
    value = number;
    return true;
}

void read_flag(const std::string& text, bool& value)
{
    value = parse_bool(text).value_or(value);
}

/// A number whose absence switches off what it is for.
void read_optional_number(const std::string& text, bool& is_enabled, std::uint32_t& value)
{
    is_enabled = read_number(text, value);
}

} // namespace

std::string VEK_FILE_ASSISTANT::convert_bool_to_string(bool value)
{
    return value ? "1" : "0";
}

bool VEK_FILE_ASSISTANT::convert_string_to_bool(const std::string& text)
{
    return parse_bool(text).value_or(false);
}

std::string VEK_FILE_ASSISTANT::convert_dword_to_string(unsigned value)
{
    return std::to_string(value);
}

std::string VEK_FILE_ASSISTANT::convert_xml_enum_to_string(PGM_COMMON_XML_ENUM value)
{
    VEK_ASSERT(value <= PGM_COMMON_XML_ENUM__MAX__);
    return PGM_COMMON_XML_ENUM_STRING[value];
}

PGM_COMMON_XML_ENUM VEK_FILE_ASSISTANT::convert_string_to_xml_enum(const std::string& text)
{
    static const auto words = number_words();
    const auto found = words.find(text);
    return found == words.end() ? PGM_COMMON_XML_ENUM__INVALID__ : found->second;
}

bool VEK_FILE_ASSISTANT::get_internal_configuration_options(const PGM_COMMON_XML_VEK_VEK* document,
                                                            DSET_OTI_DEV_OPTIONS_INFO& options,
                                                            const std::string& flash_device_id)
{
    const PGM_COMMON_XML_VEK_FLASH_DEVICE* device = get_flash_device_element(document, flash_device_id);
    if (!device) {
        return false;
    }
    read_number(device->power_on_scheme, options.power_on_scheme);
    read_flag(device->enable_user_ios_weak_pullup, options.user_ios_weak_pullup);
    bool cfm0_only = !options.not_cfm0_only;
    read_flag(device->config_from_cfm0_only, cfm0_only);
    options.not_cfm0_only = !cfm0_only;
    read_flag(device->isp_source, options.isp_source);
    read_flag(device->enable_jtag_security, options.jtag_security);
    read_flag(device->enable_verify_protect, options.verify_protect);
    read_flag(device->enable_encrypted_pof_only, options.encrypted_pof_only);
    read_optional_number(device->watchdog_value, options.watchdog_enabled, options.watchdog_value);
    read_flag(device->enable_spi_mode, options.spi_mode);
    read_optional_number(device->fallback_address, options.fallback_enabled, options.fallback_address);
    read_flag(device->force_ssmclk_to_use_ismclk, options.force_ssmclk_to_use_ismclk);
    read_number(device->ufm_source, options.ufm_source);
    options.ufm_source_file = device->ufm_source_file;
    read_flag(device->enable_test, options.enable_test);
    read_flag(device->disable_test, options.disable_test);
    return true;
}
