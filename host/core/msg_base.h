#ifndef MSG_BASE_H
#define MSG_BASE_H

#include <chrono>
#include <cstdarg>
#include <cstdint>
#include <string>
#include <thread>

/// The kind of a message.
enum class MSG_SEVERITY : std::uint8_t { OUTPUT, QUESTION, ERROR, INFORMATION, WARNING, DEBUG };

/// The letters that name a kind in a message definition: O, YN, E, I, W, D.
const char* msg_kind_letters(MSG_SEVERITY severity);

/// The word that people read: "", "Question", "Error", "Info", "Warning", "Debug".
const char* msg_severity_word(MSG_SEVERITY severity);

/// A message as it was reported.
struct MSG_RECORD {
    MSG_SEVERITY severity = MSG_SEVERITY::OUTPUT;
    std::uint32_t id = 0; ///< 0 for debug output
    std::string symbolic_id;
    std::string text;
    std::chrono::system_clock::time_point time;
    std::thread::id thread;
    std::uint64_t sequence = 0; ///< counts all records of the process, from 1
};

/// The two answers to a question.
inline constexpr int MSG_ANSWER_YES = 6;
inline constexpr int MSG_ANSWER_NO = 7;

/// A destination for single messages, for callers that want them elsewhere than with the message service.
class MSG_REPORT
{
public:
    virtual ~MSG_REPORT() = default;
    virtual void post(const MSG_RECORD& record) = 0;
    /// Answers a question; no unless overridden.
    virtual int ask(const MSG_RECORD&) { return MSG_ANSWER_NO; }
};

/// A message: built by a factory, reported once, deleted by the caller.
///
/// A definition is one string, "text with %1!s! placeholders/EVEK_SYMBOLIC_ID": the text, then behind the
/// last "/" the letters of the kind joined to the symbolic id. Arguments are zero-terminated strings, one for
/// each number up to the highest placeholder, and go in as they are: a placeholder within an argument is
/// plain text. A null argument is an empty one.
class MSG_BASE
{
public:
    /// `report` is where report() sends the message when it is given no destination; null for the service.
    MSG_BASE(MSG_SEVERITY severity, MSG_REPORT* report) : m_severity(severity), m_report(report) {}
    virtual ~MSG_BASE() = default;
    MSG_BASE(const MSG_BASE&) = delete;
    MSG_BASE& operator=(const MSG_BASE&) = delete;

    void fill_args(const char* definition, ...);
    /// Internal error "definition names its kind" when the letters behind the last "/" are of another kind.
    virtual void fill_args(const char* definition, va_list arguments);

    virtual void set_id(std::uint32_t id) { m_id = id; }
    virtual std::uint32_t get_id() const { return m_id; }

    /// Sends the message to `destination`, or to that of the constructor, or to the message service. The
    /// result is the answer for a question (MSG_ANSWER_YES, MSG_ANSWER_NO) and 0 for all others. Any thread.
    virtual int report(MSG_REPORT* destination);

    MSG_SEVERITY severity() const { return m_severity; }
    const std::string& text() const { return m_text; }
    const std::string& symbolic_id() const { return m_symbolic_id; }

protected:
    MSG_RECORD record() const;
    MSG_REPORT* destination_or_own(MSG_REPORT* destination) const
    {
        return destination != nullptr ? destination : m_report;
    }
    void set_text(std::string text) { m_text = std::move(text); }
    void set_symbolic_id(std::string symbolic_id) { m_symbolic_id = std::move(symbolic_id); }

private:
    MSG_SEVERITY m_severity;
    MSG_REPORT* m_report;
    std::uint32_t m_id = 0;
    std::string m_text;
    std::string m_symbolic_id;
};

/// The text of a definition with its placeholders %1!s!, %2!s!, ... replaced by `arguments` (the caller gives
/// as many as msg_placeholder_count says).
std::string msg_expand(const std::string& text, const char* const* arguments, std::size_t count);

/// The highest placeholder number in `text`.
std::size_t msg_placeholder_count(const std::string& text);

#endif
