#ifndef SAME_FILE_H
#define SAME_FILE_H

#include <string>

/// Whether two paths lead to one file: the same device and inode, whatever the texts say, through symbolic
/// and hard links. Where a file is not there yet, its directory is asked in that way and its name compared;
/// so two outputs that would land on one name are found before either is written.
bool same_file(const std::string& left, const std::string& right);

#endif
