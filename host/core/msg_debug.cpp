#include "msg_debug.h"

#include "cfg.h"

#include <algorithm>
#include <atomic>
#include <charconv>
#include <cstdio>

namespace
{

constexpr int LEVEL_UNREAD = -1;
std::atomic<int> level_in_force{LEVEL_UNREAD};

std::string format_text(const char* format, va_list arguments)
{
    va_list again;
    va_copy(again, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, arguments);
    std::string text;
    if (length > 0) {
        text.resize(static_cast<std::size_t>(length));
        std::vsnprintf(text.data(), text.size() + 1, format, again);
    }
    va_end(again);
    return text;
}

} // namespace

unsigned msg_debug_level()
{
    int level = level_in_force.load();
    if (level == LEVEL_UNREAD) {
        unsigned wanted = 0;
        std::string text;
        if (cfg_get_text(MSG_DEBUG_LEVEL_KEY, text)) {
            std::from_chars(text.data(), text.data() + text.size(), wanted);
        }
        level = static_cast<int>(std::min(wanted, unsigned{MSG_D_LEVEL_3}));
        int unread = LEVEL_UNREAD;
        if (!level_in_force.compare_exchange_strong(unread, level)) {
            level = unread;
        }
    }
    return static_cast<unsigned>(level);
}

void msg_set_debug_level(unsigned level)
{
    level_in_force = static_cast<int>(std::min(level, unsigned{MSG_D_LEVEL_3}));
}

void MSG_D::fill_args(const char* format, va_list arguments)
{
    set_text(format_text(format, arguments));
}

int MSG_D::report(MSG_REPORT* destination)
{
    return m_level <= msg_debug_level() ? MSG_BASE::report(destination) : 0;
}

void msg_local_vdebug(const char* subject, MSG_D_LEVEL level, const char* format, va_list arguments)
{
    if (level > msg_debug_level()) {
        return;
    }
    MSG_D message(nullptr);
    message.fill_args(format, arguments);
    message.set_subject(subject);
    message.set_level(level);
    message.report(nullptr);
}
