#ifndef PGM_COMMON_INI_H
#define PGM_COMMON_INI_H

#include <string>

/// Internal settings: boolean entries of the suite that are not for users. They are told by number, and each
/// table has numbers of its own; the keys behind them are looked up as in cfg.h. A number without a key has
/// its default.
class PGM_COMMON_INI
{
public:
    enum BOOLEAN_ENTRY : unsigned { SECURITY_OPTIONS = 3, SPI_OPTIONS = 6 };
    enum ENCRYPTED_BOOLEAN_ENTRY : unsigned { HIDDEN_PARAMETERS = 4, HIDDEN_HEMATITE_PARAMETERS = 19 };
    enum ENCRYPTED_TIMING_BOOLEAN_ENTRY : unsigned { TEST_OPTIONS = 1 };

    static bool get_boolean(unsigned entry, bool default_value);

    /// `settings_file_only`: overrides and the environment do not count.
    static bool get_encrypted_boolean(unsigned entry, bool default_value, bool settings_file_only);

    /// `ignore_value`: gives the default, and only the outputs tell what is set. `is_set`, when not null,
    /// gets whether the entry is set; `text`, when not null, its text.
    static bool get_encrypted_timing_boolean(unsigned entry, bool default_value, bool settings_file_only,
                                             bool ignore_value, bool* is_set, std::string* text);

    /// The key of an entry in its table; empty when the number has none.
    static std::string boolean_key(unsigned entry);
    static std::string encrypted_boolean_key(unsigned entry);
    static std::string encrypted_timing_boolean_key(unsigned entry);
};

#endif
