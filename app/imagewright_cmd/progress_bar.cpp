#include "progress_bar.h"

#include "progress.h"

#include <chrono>
#include <cstdio>
#include <string>
#include <unistd.h>

namespace
{

constexpr std::chrono::milliseconds REDRAW_INTERVAL{100};
constexpr unsigned CELLS = 30;
constexpr const char* CLEAR_LINE = "\r\x1b[K";

std::string bar_text(const PROGRESS_SNAPSHOT& progress)
{
    const unsigned filled = progress.percent * CELLS / 100;
    const std::string percent = std::to_string(progress.percent);
    return CLEAR_LINE + std::string("[") + std::string(filled, '#') + std::string(CELLS - filled, ' ') +
           "] " + std::string(3 - percent.size(), ' ') + percent + "% " + progress.file;
}

} // namespace

PROGRESS_BAR::PROGRESS_BAR(bool wanted)
{
    if (wanted && ::isatty(STDERR_FILENO) != 0) {
        m_thread = std::thread(&PROGRESS_BAR::draw_until_done, this);
    }
}

PROGRESS_BAR::~PROGRESS_BAR()
{
    if (!m_thread.joinable()) {
        return;
    }
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_done = true;
    }
    m_wake.notify_one();
    m_thread.join();
    std::fputs(CLEAR_LINE, stderr);
}

void PROGRESS_BAR::draw_until_done()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    while (!m_wake.wait_for(lock, REDRAW_INTERVAL, [this] { return m_done; })) {
        const PROGRESS_SNAPSHOT progress = PROGRESS::instance().snapshot();
        if (progress.active) {
            std::fputs(bar_text(progress).c_str(), stderr);
        }
    }
}
