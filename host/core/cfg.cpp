#include "cfg.h"

#include "user_settings.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <map>
#include <mutex>
#include <string_view>

namespace
{

struct OVERRIDES {
    std::mutex mutex;
    std::map<std::string, std::string> texts;
};

OVERRIDES& overrides()
{
    static auto* const instance = new OVERRIDES;
    return *instance;
}

struct SWITCH_WORD {
    std::string_view word;
    bool on;
};

constexpr std::array<SWITCH_WORD, 8> SWITCH_WORDS = {{
    {"on", true},
    {"1", true},
    {"true", true},
    {"yes", true},
    {"off", false},
    {"0", false},
    {"false", false},
    {"no", false},
}};

std::string lower_case(std::string text)
{
    for (char& letter : text) {
        if (letter >= 'A' && letter <= 'Z') {
            letter = static_cast<char>(letter - 'A' + 'a');
        }
    }
    return text;
}

} // namespace

bool cfg_parse_switch(const std::string& text, bool& on)
{
    const std::string word = lower_case(text);
    const auto found = std::find_if(SWITCH_WORDS.begin(), SWITCH_WORDS.end(),
                                    [&word](const SWITCH_WORD& row) { return row.word == word; });
    if (found == SWITCH_WORDS.end()) {
        return false;
    }
    on = found->on;
    return true;
}

bool cfg_get_text(const std::string& key, std::string& text)
{
    {
        const std::lock_guard lock(overrides().mutex);
        if (const auto found = overrides().texts.find(key); found != overrides().texts.end()) {
            text = found->second;
            return true;
        }
    }
    if (const char* const variable = std::getenv(("IMAGEWRIGHT_CFG_" + key).c_str()); variable != nullptr) {
        text = variable;
        return true;
    }
    return USER_SETTINGS::get(key, text);
}

bool cfg_is_on(const std::string& key, bool default_value)
{
    std::string text;
    bool on = default_value;
    if (cfg_get_text(key, text)) {
        cfg_parse_switch(text, on);
    }
    return on;
}

void cfg_override(const std::string& key, const std::string& text)
{
    const std::lock_guard lock(overrides().mutex);
    overrides().texts[key] = text;
}

void cfg_clear_overrides()
{
    const std::lock_guard lock(overrides().mutex);
    overrides().texts.clear();
}
