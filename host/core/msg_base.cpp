#include "msg_base.h"

#include "msg_internal_error.h"
#include "msg_service.h"

#include <algorithm>
#include <charconv>
#include <string_view>
#include <vector>

namespace
{

/// The placeholder that begins at `start` of `text`: its number and where it ends; number 0 when none begins
/// there.
std::size_t placeholder_at(std::string_view text, std::size_t start, std::size_t& end)
{
    std::size_t number = 0;
    const char* const last = text.data() + text.size();
    const auto [behind, error] = std::from_chars(text.data() + start + 1, last, number);
    constexpr std::string_view format = "!s!";
    if (error != std::errc() || !std::string_view(behind, last).starts_with(format)) {
        return 0;
    }
    end = static_cast<std::size_t>(behind - text.data()) + format.size();
    return number;
}

} // namespace

const char* msg_kind_letters(MSG_SEVERITY severity)
{
    switch (severity) {
    case MSG_SEVERITY::OUTPUT:
        return "O";
    case MSG_SEVERITY::QUESTION:
        return "YN";
    case MSG_SEVERITY::ERROR:
        return "E";
    case MSG_SEVERITY::INFORMATION:
        return "I";
    case MSG_SEVERITY::WARNING:
        return "W";
    case MSG_SEVERITY::DEBUG:
        return "D";
    }
    MSG_INTERNAL_ERROR::report("severity", "MSG", __FILE__, __LINE__);
}

const char* msg_severity_word(MSG_SEVERITY severity)
{
    switch (severity) {
    case MSG_SEVERITY::OUTPUT:
        return "";
    case MSG_SEVERITY::QUESTION:
        return "Question";
    case MSG_SEVERITY::ERROR:
        return "Error";
    case MSG_SEVERITY::INFORMATION:
        return "Info";
    case MSG_SEVERITY::WARNING:
        return "Warning";
    case MSG_SEVERITY::DEBUG:
        return "Debug";
    }
    MSG_INTERNAL_ERROR::report("severity", "MSG", __FILE__, __LINE__);
}

std::size_t msg_placeholder_count(const std::string& text)
{
    std::size_t highest = 0;
    for (std::size_t at = text.find('%'); at != std::string::npos; at = text.find('%', at + 1)) {
        std::size_t end = 0;
        highest = std::max(highest, placeholder_at(text, at, end));
    }
    return highest;
}

std::string msg_expand(const std::string& text, const char* const* arguments, std::size_t count)
{
    std::string expanded;
    std::size_t copied = 0;
    for (std::size_t at = text.find('%'); at != std::string::npos; at = text.find('%', at + 1)) {
        std::size_t end = 0;
        const std::size_t number = placeholder_at(text, at, end);
        if (number == 0 || number > count) {
            continue;
        }
        expanded.append(text, copied, at - copied);
        if (const char* const argument = arguments[number - 1]; argument != nullptr) {
            expanded += argument;
        }
        copied = end;
        at = end - 1;
    }
    return expanded.append(text, copied);
}

void MSG_BASE::fill_args(const char* definition, ...)
{
    va_list arguments;
    va_start(arguments, definition);
    fill_args(definition, arguments);
    va_end(arguments);
}

void MSG_BASE::fill_args(const char* definition, va_list arguments)
{
    const std::string_view whole = definition;
    const std::string_view letters = msg_kind_letters(m_severity);
    const std::size_t divider = whole.rfind('/');
    if (divider == std::string_view::npos || !whole.substr(divider + 1).starts_with(letters)) {
        MSG_INTERNAL_ERROR::report("definition names its kind", "MSG", __FILE__, __LINE__);
    }
    m_symbolic_id = whole.substr(divider + 1 + letters.size());
    const std::string text(whole.substr(0, divider));
    std::vector<const char*> values(msg_placeholder_count(text));
    for (const char*& value : values) {
        value = va_arg(arguments, const char*);
    }
    m_text = msg_expand(text, values.data(), values.size());
}

MSG_RECORD MSG_BASE::record() const
{
    MSG_RECORD record;
    record.severity = m_severity;
    record.id = get_id();
    record.symbolic_id = m_symbolic_id;
    record.text = m_text;
    record.time = std::chrono::system_clock::now();
    record.thread = std::this_thread::get_id();
    return record;
}

int MSG_BASE::report(MSG_REPORT* destination)
{
    if (MSG_REPORT* const chosen = destination_or_own(destination); chosen != nullptr) {
        chosen->post(record());
    } else {
        MSG_SERVICE::instance().post(record());
    }
    return 0;
}
