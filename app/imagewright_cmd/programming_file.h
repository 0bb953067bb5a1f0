#ifndef PROGRAMMING_FILE_H
#define PROGRAMMING_FILE_H

#include "command.h"
#include "format_registry.h"
#include "inspect.h"

#include <string>

/// What a file is: by its first bytes a bitstream or a stream, or else by its extension the format of `row`,
/// which is null otherwise. A flash image may begin with a stream and is still a flash image. False with a
/// sentence when the file cannot be read.
bool identify_programming_file(const std::string& path, INSPECTED_KIND& kind, const FORMAT_ROW*& row,
                               std::string& message);

/// What a programming file holds, as the JSON document that `inspect --json` prints; false with a whole
/// sentence that names the file.
bool inspect_programming_file(const std::string& path, const FORMAT_ROW& row, JSON& facts,
                              std::string& message);

/// What a file says about itself.
enum class SELF_CHECK {
    SOUND,
    DAMAGED, ///< or no file of its kind; the message says what and where
    UNREADABLE,
    IMPOSSIBLE ///< the format has no check sums; the message says what to do
};

/// Reads a bitstream, a configuration stream or a programming file whole and checks all that it carries for
/// that: structure, check sums, digests.
SELF_CHECK check_file(const std::string& path, std::string& message);

#endif
