#ifndef USER_SETTINGS_H
#define USER_SETTINGS_H

#include <string>

/// The settings of a user that outlive a run, texts by key, in one file:
/// $XDG_CONFIG_HOME/imagewright/imagewright.ini, or ~/.config/imagewright/imagewright.ini. A line is
/// "key = value"; a line that begins with # is a comment and stays when the file is written. Keys are
/// case-sensitive and hold no "=", no control character and no blank at an end. In a value, a backslash
/// stands as "\\", a line feed as "\n", a carriage return as "\r" and a blank or tab at an end as "\s" or
/// "\t". Any thread, any number of processes.
class USER_SETTINGS
{
public:
    /// The file's path, or an empty text when the user has no home directory; then nothing is found or kept.
    static std::string file_path();

    /// The value of `key`; false, with `value` untouched, when the file does not have it.
    static bool get(const std::string& key, std::string& value);

    /// Stores a value: the whole file is replaced in one step, so that it is never seen half written. False
    /// with a sentence in `message` when that fails.
    static bool set(const std::string& key, const std::string& value, std::string& message);

    /// Takes `key` out of the file. True when it is not there afterwards.
    static bool remove(const std::string& key, std::string& message);
};

#endif
