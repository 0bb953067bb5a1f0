#include "progress.h"

#include <algorithm>

PROGRESS& PROGRESS::instance()
{
    static auto* const progress = new PROGRESS;
    return *progress;
}

void PROGRESS::begin(std::uint64_t total)
{
    const std::lock_guard lock(m_mutex);
    if (m_depth++ == 0) {
        m_done = 0;
        m_total = 0;
        m_percent = 0;
        m_file.clear();
        m_started = std::chrono::steady_clock::now();
    }
    m_total += total;
}

void PROGRESS::advance(std::uint64_t bytes, const std::string& file)
{
    const std::lock_guard lock(m_mutex);
    if (m_depth == 0) {
        return;
    }
    m_done += bytes;
    if (m_file != file) {
        m_file = file;
    }
    if (m_total != 0) {
        const double share = static_cast<double>(m_done) / static_cast<double>(m_total);
        m_percent = std::max(m_percent, static_cast<unsigned>(std::min(share, 1.0) * 100.0));
    }
}

void PROGRESS::finish()
{
    const std::lock_guard lock(m_mutex);
    if (m_depth != 0 && --m_depth == 0) {
        m_finished = std::chrono::steady_clock::now();
    }
}

PROGRESS_SNAPSHOT PROGRESS::snapshot() const
{
    const std::lock_guard lock(m_mutex);
    PROGRESS_SNAPSHOT snapshot;
    snapshot.active = m_depth != 0;
    snapshot.percent = m_percent;
    snapshot.file = m_file;
    snapshot.done = m_done;
    snapshot.total = m_total;
    const auto until = snapshot.active ? std::chrono::steady_clock::now() : m_finished;
    snapshot.elapsed = std::chrono::duration_cast<std::chrono::milliseconds>(until - m_started);
    return snapshot;
}
