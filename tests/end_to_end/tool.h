#ifndef IMAGEWRIGHT_TESTS_TOOL_H
#define IMAGEWRIGHT_TESTS_TOOL_H

#include "child_process.h"

#include <string>
#include <vector>

/// Path of a built program.
std::string built_program(const std::string& name);

/// Runs imagewright-cmd with the arguments in a directory.
CHILD_RESULT tool(const std::vector<std::string>& arguments, const std::string& directory = {});

/// The same with a limit on the size of every file that it writes, in blocks of 1024 bytes, so that writing
/// fails in the middle as on a full disk.
CHILD_RESULT tool_with_file_limit(unsigned blocks, const std::vector<std::string>& arguments,
                                  const std::string& directory);

/// Runs imagewright-cmd as a user who owns nothing.
CHILD_RESULT tool_as_nobody(const std::vector<std::string>& arguments, const std::string& directory);

/// Copies the examples into `directory` and makes their bitstreams there.
void make_examples(const std::string& directory);

#endif
