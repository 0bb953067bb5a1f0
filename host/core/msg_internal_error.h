#ifndef MSG_INTERNAL_ERROR_H
#define MSG_INTERNAL_ERROR_H

#include <functional>
#include <string>

/// The end of a run that has met a programming fault. Faults of the user or of the surroundings never come
/// here: those are messages (msg_base.h).
class MSG_INTERNAL_ERROR
{
public:
    struct FAULT {
        std::string condition; ///< the words of the condition that did not hold
        std::string subsystem;
        std::string source; ///< relative to the root of the sources, "pgm/vek/vek_tab_input_files.cpp"
        int line = 0;
    };
    using HANDLER = std::function<void(const FAULT&)>;

    /// Replaces what happens with a fault; an empty handler restores the default, which prints to stderr. A
    /// handler may leave by an exception (tests do); when it returns, the process aborts all the same.
    static void set_handler(HANDLER handler);

    /// Ends the run. Callable from any thread.
    [[noreturn]] static void report(const std::string& condition, const char* subsystem, const char* source,
                                    int line);

    /// The same with a condition formatted as by printf.
    [[noreturn]] static void report_varg(const char* subsystem, const char* source, int line,
                                         const char* format, ...) __attribute__((format(printf, 4, 5)));
};

/// Ends the run with the words of the condition unless it holds. Active in every kind of build.
#define VEK_ASSERT(condition) VEK_ASSERT_TEXT(condition, #condition)

/// The same with a text of its own.
#define VEK_ASSERT_TEXT(condition, text)                                                                     \
    do {                                                                                                     \
        if (!(condition)) [[unlikely]] {                                                                     \
            MSG_INTERNAL_ERROR::report((text), "VEK", __FILE__, __LINE__);                                   \
        }                                                                                                    \
    } while (false)

#endif
