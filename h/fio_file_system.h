#ifndef FIO_FILE_SYSTEM_H
#define FIO_FILE_SYSTEM_H

#include <string>

/// The current directory of the process, which all threads share.
class FIO_FILE_SYSTEM
{
public:
    /// The absolute path, or an empty text when the directory has been deleted.
    static std::string get_current_directory();
    /// False, with the directory as it was, when `directory` is empty or cannot be entered.
    static bool set_current_directory(const std::string& directory);
};

#endif
