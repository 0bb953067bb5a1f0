#ifndef SMALL_TEXT_FILE_H
#define SMALL_TEXT_FILE_H

#include <string>

/// Reads a text file of the host's own, which is never large. False with a sentence in `message`, which
/// begins with the path, when it is no regular file, cannot be read, or is larger than 4 MiB. Never blocks.
/// `missing` tells whether the reason is that there is no such file.
bool read_small_text_file(const std::string& path, std::string& text, std::string& message, bool& missing);

/// `text` without blanks, tabs and carriage returns at its ends.
std::string trimmed(const std::string& text);

#endif
