#include "pgm_common_ini.h"

#include "cfg.h"
#include "user_settings.h"

#include <span>

namespace
{

struct ENTRY {
    unsigned number;
    const char* key;
};

constexpr ENTRY PGM_COMMON_INI_BOOLEAN[] = {
    {PGM_COMMON_INI::SECURITY_OPTIONS, "PGM_SECURITY_OPTIONS"},
    {PGM_COMMON_INI::SPI_OPTIONS, "PGM_SPI_OPTIONS"},
};

constexpr ENTRY PGM_COMMON_INI_ENCRYPTED_BOOLEAN[] = {
    {PGM_COMMON_INI::HIDDEN_PARAMETERS, "PGM_HIDDEN_PARAMETERS"},
    {PGM_COMMON_INI::HIDDEN_HEMATITE_PARAMETERS, "PGM_HIDDEN_HEMATITE_PARAMETERS"},
};

constexpr ENTRY PGM_COMMON_INI_ENCRYPTED_TIMING_BOOLEAN[] = {
    {PGM_COMMON_INI::TEST_OPTIONS, "PGM_TEST_OPTIONS"},
};

std::string key_of(std::span<const ENTRY> table, unsigned number)
{
    for (const ENTRY& entry : table) {
        if (entry.number == number) {
            return entry.key;
        }
    }
    return {};
}

bool text_of(const std::string& key, bool settings_file_only, std::string& text)
{
    if (key.empty()) {
        return false;
    }
    return settings_file_only ? USER_SETTINGS::get(key, text) : cfg_get_text(key, text);
}

} // namespace

bool PGM_COMMON_INI::get_boolean(unsigned entry, bool default_value)
{
    const std::string key = boolean_key(entry);
    return key.empty() ? default_value : cfg_is_on(key, default_value);
}

bool PGM_COMMON_INI::get_encrypted_boolean(unsigned entry, bool default_value, bool settings_file_only)
{
    std::string text;
    bool on = default_value;
    if (text_of(encrypted_boolean_key(entry), settings_file_only, text)) {
        cfg_parse_switch(text, on);
    }
    return on;
}

bool PGM_COMMON_INI::get_encrypted_timing_boolean(unsigned entry, bool default_value, bool settings_file_only,
                                                  bool ignore_value, bool* is_set, std::string* text)
{
    std::string found;
    bool on = default_value;
    const bool there = text_of(encrypted_timing_boolean_key(entry), settings_file_only, found);
    if (there && !ignore_value) {
        cfg_parse_switch(found, on);
    }
    if (is_set != nullptr) {
        *is_set = there;
    }
    if (text != nullptr) {
        *text = found;
    }
    return on;
}

std::string PGM_COMMON_INI::boolean_key(unsigned entry)
{
    return key_of(PGM_COMMON_INI_BOOLEAN, entry);
}

std::string PGM_COMMON_INI::encrypted_boolean_key(unsigned entry)
{
    return key_of(PGM_COMMON_INI_ENCRYPTED_BOOLEAN, entry);
}

std::string PGM_COMMON_INI::encrypted_timing_boolean_key(unsigned entry)
{
    return key_of(PGM_COMMON_INI_ENCRYPTED_TIMING_BOOLEAN, entry);
}
