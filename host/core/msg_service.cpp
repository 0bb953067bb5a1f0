#include "msg_service.h"

#include <algorithm>

struct MSG_SERVICE::SINK_ENTRY {
    SINK_ID id = 0;
    SINK sink;
    std::recursive_mutex mutex; ///< held while the sink runs; recursive so that a sink can remove itself
    bool alive = true;

    void deliver(const MSG_RECORD& record)
    {
        const std::lock_guard lock(mutex);
        if (alive) {
            sink(record);
        }
    }
};

namespace
{

/// The records that the sinks of this thread report while they are being told of another one. They are
/// delivered when that is done, so that no thread ever waits for one sink while it holds another.
struct DELIVERY {
    bool running = false;
    std::deque<MSG_RECORD> waiting;
};

DELIVERY& delivery_of_this_thread()
{
    static thread_local DELIVERY delivery;
    return delivery;
}

/// Leaves the thread able to deliver again, also when a sink throws.
class DELIVERY_SCOPE
{
public:
    explicit DELIVERY_SCOPE(DELIVERY& delivery) : m_delivery(delivery) { m_delivery.running = true; }
    ~DELIVERY_SCOPE()
    {
        m_delivery.running = false;
        m_delivery.waiting.clear();
    }
    DELIVERY_SCOPE(const DELIVERY_SCOPE&) = delete;
    DELIVERY_SCOPE& operator=(const DELIVERY_SCOPE&) = delete;

private:
    DELIVERY& m_delivery;
};

} // namespace

MSG_SERVICE& MSG_SERVICE::instance()
{
    // Never destroyed: threads and static objects may report until the very end.
    static auto* const service = new MSG_SERVICE;
    return *service;
}

MSG_SERVICE::SINK_ID MSG_SERVICE::add_sink(SINK sink, bool with_history)
{
    const auto entry = std::make_shared<SINK_ENTRY>();
    entry->sink = std::move(sink);
    // A message that is reported meanwhile waits here until the older ones are told.
    const std::lock_guard sink_lock(entry->mutex);
    std::vector<MSG_RECORD> older;
    {
        const std::lock_guard lock(m_mutex);
        entry->id = ++m_last_sink;
        m_sinks.push_back(entry);
        if (with_history) {
            older.assign(m_history.begin(), m_history.end());
        }
    }
    for (const MSG_RECORD& record : older) {
        entry->deliver(record);
    }
    return entry->id;
}

void MSG_SERVICE::remove_sink(SINK_ID id)
{
    std::shared_ptr<SINK_ENTRY> entry;
    {
        const std::lock_guard lock(m_mutex);
        const auto found = std::find_if(m_sinks.begin(), m_sinks.end(),
                                        [id](const auto& candidate) { return candidate->id == id; });
        if (found == m_sinks.end()) {
            return;
        }
        entry = *found;
        m_sinks.erase(found);
    }
    const std::lock_guard sink_lock(entry->mutex);
    entry->alive = false;
}

void MSG_SERVICE::set_answerer(ANSWERER answerer)
{
    const std::lock_guard lock(m_mutex);
    m_answerer = std::move(answerer);
}

void MSG_SERVICE::post(MSG_RECORD record)
{
    record.time = std::chrono::system_clock::now();
    record.thread = std::this_thread::get_id();
    DELIVERY& delivery = delivery_of_this_thread();
    delivery.waiting.push_back(std::move(record));
    if (delivery.running) {
        return;
    }
    const DELIVERY_SCOPE scope(delivery);
    while (!delivery.waiting.empty()) {
        MSG_RECORD next = std::move(delivery.waiting.front());
        delivery.waiting.pop_front();
        std::vector<std::shared_ptr<SINK_ENTRY>> sinks;
        {
            const std::lock_guard lock(m_mutex);
            next.sequence = ++m_sequence;
            m_history.push_back(next);
            trim_history();
            sinks = m_sinks;
        }
        for (const auto& sink : sinks) {
            sink->deliver(next);
        }
    }
}

int MSG_SERVICE::ask(MSG_RECORD record)
{
    post(record);
    ANSWERER answerer;
    {
        const std::lock_guard lock(m_mutex);
        answerer = m_answerer;
    }
    return answerer && answerer(record) == MSG_ANSWER_YES ? MSG_ANSWER_YES : MSG_ANSWER_NO;
}

std::vector<MSG_RECORD> MSG_SERVICE::history() const
{
    const std::lock_guard lock(m_mutex);
    return {m_history.begin(), m_history.end()};
}

void MSG_SERVICE::clear_history()
{
    const std::lock_guard lock(m_mutex);
    m_history.clear();
}

void MSG_SERVICE::set_history_limit(std::size_t limit)
{
    const std::lock_guard lock(m_mutex);
    m_history_limit = limit;
    trim_history();
}

void MSG_SERVICE::trim_history()
{
    while (m_history.size() > m_history_limit) {
        m_history.pop_front();
    }
}
