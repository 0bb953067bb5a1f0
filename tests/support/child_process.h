#ifndef IMAGEWRIGHT_TESTS_CHILD_PROCESS_H
#define IMAGEWRIGHT_TESTS_CHILD_PROCESS_H

#include <string>
#include <vector>

/// How a program ended and what it said.
struct CHILD_RESULT {
    int exit_code = -1; ///< 128 + signal when a signal ended it
    std::string out;
    std::string err;
    long peak_memory_kib = 0; ///< largest resident set
};

/// Runs a program to its end. `command`: path or name, then the arguments. `directory`: where it runs; empty
/// for the test's own. `environment`: "NAME=value" entries on top of the test's own.
CHILD_RESULT run_program(const std::vector<std::string>& command, const std::string& directory = {},
                         const std::vector<std::string>& environment = {});

#endif
