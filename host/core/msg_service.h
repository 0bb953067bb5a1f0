#ifndef MSG_SERVICE_H
#define MSG_SERVICE_H

#include "msg_base.h"

#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <vector>

/// Where all messages of the process meet: a bounded history, any number of sinks that are told of each
/// message, and one answerer of questions. Every operation may be called from any thread, from within a sink
/// too.
class MSG_SERVICE
{
public:
    using SINK = std::function<void(const MSG_RECORD&)>;
    using ANSWERER = std::function<int(const MSG_RECORD&)>;
    using SINK_ID = std::uint64_t;

    static MSG_SERVICE& instance();

    /// Starts telling `sink` of messages, on the thread that reports them, one call at a time. With
    /// `with_history` it first gets the messages kept so far. A sink must not wait for another thread.
    SINK_ID add_sink(SINK sink, bool with_history = false);

    /// When this returns, the sink is not running (unless the caller is the sink itself) and is never called
    /// again. An unknown id is passed over.
    void remove_sink(SINK_ID id);

    /// Who answers questions: the window or the command line. An empty answerer says no. It is called on the
    /// thread that asks; a window's answerer carries the question to its own thread.
    void set_answerer(ANSWERER answerer);

    /// Keeps the record, giving it its time, thread and sequence number, and tells the sinks.
    void post(MSG_RECORD record);

    /// post(), then the answer: MSG_ANSWER_YES or MSG_ANSWER_NO.
    int ask(MSG_RECORD record);

    /// The messages kept, oldest first.
    std::vector<MSG_RECORD> history() const;
    void clear_history();
    /// How many messages are kept, 10,000 at first; the oldest go first.
    void set_history_limit(std::size_t limit);

private:
    struct SINK_ENTRY;

    MSG_SERVICE() = default;
    void trim_history();

    mutable std::mutex m_mutex;
    std::deque<MSG_RECORD> m_history;
    std::size_t m_history_limit = 10000;
    std::uint64_t m_sequence = 0;
    std::vector<std::shared_ptr<SINK_ENTRY>> m_sinks;
    SINK_ID m_last_sink = 0;
    ANSWERER m_answerer;
};

/// A sink for the life of an object.
class MSG_SINK_SCOPE
{
public:
    explicit MSG_SINK_SCOPE(MSG_SERVICE::SINK sink) : m_id(MSG_SERVICE::instance().add_sink(std::move(sink)))
    {
    }
    ~MSG_SINK_SCOPE() { MSG_SERVICE::instance().remove_sink(m_id); }
    MSG_SINK_SCOPE(const MSG_SINK_SCOPE&) = delete;
    MSG_SINK_SCOPE& operator=(const MSG_SINK_SCOPE&) = delete;

private:
    MSG_SERVICE::SINK_ID m_id;
};

#endif
