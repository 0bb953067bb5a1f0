#include "msg_internal_error.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <string_view>

namespace
{

struct HANDLER_HOLDER {
    std::mutex mutex;
    MSG_INTERNAL_ERROR::HANDLER handler;
};

HANDLER_HOLDER& holder()
{
    // Never destroyed: a fault may be raised while the process ends.
    static auto* const instance = new HANDLER_HOLDER;
    return *instance;
}

/// The source path from the root of the repository on. This very file tells where the root is.
std::string cut_to_repository(std::string_view source)
{
    constexpr std::string_view own_place = "host/core/msg_internal_error.cpp";
    constexpr std::string_view own_path = __FILE__;
    constexpr std::string_view root = own_path.substr(0, own_path.size() - own_place.size());
    if (source.starts_with(root)) {
        source.remove_prefix(root.size());
    } else if (const auto module = source.rfind("pgm/vek/"); module != std::string_view::npos) {
        source.remove_prefix(module);
    }
    return std::string(source);
}

} // namespace

void MSG_INTERNAL_ERROR::set_handler(HANDLER handler)
{
    const std::lock_guard lock(holder().mutex);
    holder().handler = std::move(handler);
}

void MSG_INTERNAL_ERROR::report(const std::string& condition, const char* subsystem, const char* source,
                                int line)
{
    const FAULT fault{condition, subsystem, cut_to_repository(source), line};
    HANDLER handler;
    {
        const std::lock_guard lock(holder().mutex);
        handler = holder().handler;
    }
    if (handler) {
        handler(fault);
    } else {
        std::fprintf(stderr, "Internal error: %s\nSubsystem: %s\nSource: %s, line %d\n",
                     fault.condition.c_str(), fault.subsystem.c_str(), fault.source.c_str(), fault.line);
    }
    std::abort();
}

void MSG_INTERNAL_ERROR::report_varg(const char* subsystem, const char* source, int line, const char* format,
                                     ...)
{
    va_list arguments;
    va_start(arguments, format);
    char condition[2048];
    std::vsnprintf(condition, sizeof condition, format, arguments);
    va_end(arguments);
    report(condition, subsystem, source, line);
}
