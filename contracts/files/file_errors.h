#ifndef FILE_ERRORS_H
#define FILE_ERRORS_H

#include <string>

/// The words for an errno value as they stand behind "the file cannot be read: ", in English whatever the
/// locale: "no such file", "the disk is full".
std::string error_words(int error_number);

/// "<path> cannot be <deed>: <words>.", for example with the deed "opened".
std::string file_failure(const std::string& path, const std::string& deed, int error_number);

/// The directory part of a path as a system call takes it: "." for a bare file name.
std::string directory_of(const std::string& path);

/// Where a path leads when it is a symbolic link, or a chain of them, to a file that need not be there; the
/// path itself when it is none.
std::string link_target(const std::string& path);

#endif
