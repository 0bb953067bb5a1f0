#ifndef STALE_FILE_NAMES_H
#define STALE_FILE_NAMES_H

#include <string>

/// A fresh name ".<name>.imagewright-<16 hexadecimal digits>.tmp" for a file that is to become `name`, which
/// is cut where the whole would be too long for a directory.
std::string hidden_temporary_name(const std::string& name);

/// Whether a file name is one of those.
bool is_hidden_temporary_name(const std::string& name);

#endif
