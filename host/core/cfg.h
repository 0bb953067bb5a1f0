#ifndef CFG_H
#define CFG_H

#include <string>

/// Configuration keys: switches that change what the tool offers, set by hand. A key's text is looked for in
/// this order: an override of this process (cfg_override), the environment variable
/// IMAGEWRIGHT_CFG_<key>, the user's settings file (user_settings.h). Keys are case-sensitive.

/// Whether a switch is on: "on", "1", "true" or "yes" in any case; off: "off", "0", "false" or "no". Any
/// other text and an absent key give `default_value`.
bool cfg_is_on(const std::string& key, bool default_value);

/// The text of a key; false, with `text` untouched, when it is nowhere set.
bool cfg_get_text(const std::string& key, std::string& text);

/// Reads the words of cfg_is_on; false when `text` is none of them.
bool cfg_parse_switch(const std::string& text, bool& on);

/// Sets a key for this process alone, for tests and for command-line options.
void cfg_override(const std::string& key, const std::string& text);
void cfg_clear_overrides();

#endif
