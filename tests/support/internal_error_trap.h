#ifndef IMAGEWRIGHT_TESTS_INTERNAL_ERROR_TRAP_H
#define IMAGEWRIGHT_TESTS_INTERNAL_ERROR_TRAP_H

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

/// What an internal error becomes in a test: the process lives on and the condition can be asserted.
struct INTERNAL_ERROR_RAISED : std::runtime_error {
    INTERNAL_ERROR_RAISED(const std::string& condition_text, const std::string& subsystem_name,
                          const std::string& source_file, int source_line)
        : std::runtime_error(condition_text), condition(condition_text), subsystem(subsystem_name),
          source(source_file), line(source_line)
    {
    }
    std::string condition;
    std::string subsystem;
    std::string source;
    int line;
};

/// Makes every internal error of this process throw INTERNAL_ERROR_RAISED. Called by the test mains.
void install_internal_error_trap();

/// Asserts that `statement` raises the internal error whose condition reads `text`.
#define EXPECT_INTERNAL_ERROR(statement, text)                                                               \
    do {                                                                                                     \
        std::string raised_condition;                                                                        \
        try {                                                                                                \
            statement;                                                                                       \
            ADD_FAILURE() << "no internal error, expected: " << (text);                                      \
        } catch (const INTERNAL_ERROR_RAISED& raised) {                                                      \
            raised_condition = raised.condition;                                                             \
            EXPECT_EQ(raised_condition, (text));                                                             \
        }                                                                                                    \
    } while (false)

#endif
