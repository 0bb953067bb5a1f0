#include "progress_bar.h"

#include "message_printer.h"
#include "progress.h"

#include <chrono>
#include <cstdio>
#include <system_error>
#include <unistd.h>

namespace
{

constexpr std::chrono::milliseconds REDRAW_INTERVAL{100};
constexpr unsigned CELLS = 30;
constexpr const char* CLEAR_LINE = "\r\x1b[K";

/// Guarded by message_stream_mutex().
bool line_is_drawn = false;

std::string line_of_back_end()
{
    const PROGRESS_SNAPSHOT progress = PROGRESS::instance().snapshot();
    return progress.active ? progress_line(progress.percent, progress.file) : "";
}

} // namespace

std::string progress_line(unsigned percent, const std::string& words)
{
    const unsigned filled = percent * CELLS / 100;
    const std::string number = std::to_string(percent);
    return "[" + std::string(filled, '#') + std::string(CELLS - filled, ' ') + "] " +
           std::string(3 - number.size(), ' ') + number + "% " + words;
}

void clear_progress_line()
{
    if (line_is_drawn) {
        std::fputs(CLEAR_LINE, stderr);
        line_is_drawn = false;
    }
}

PROGRESS_BAR::PROGRESS_BAR(bool wanted) : PROGRESS_BAR(wanted, line_of_back_end) {}

PROGRESS_BAR::PROGRESS_BAR(bool wanted, LINE line) : m_line(std::move(line))
{
    if (wanted && ::isatty(STDERR_FILENO) != 0) {
        try {
            m_thread = std::thread(&PROGRESS_BAR::draw_until_done, this);
            draw();
        } catch (const std::system_error&) {
            // The machine has no more threads to give: the work is done without a bar.
        }
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
    const std::lock_guard<std::mutex> lock(message_stream_mutex());
    clear_progress_line();
}

void PROGRESS_BAR::draw_until_done()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    while (!m_wake.wait_for(lock, REDRAW_INTERVAL, [this] { return m_done; })) {
        draw();
    }
}

void PROGRESS_BAR::draw()
{
    const std::string line = m_line();
    const std::lock_guard<std::mutex> lock(message_stream_mutex());
    if (line.empty() || (line_is_drawn && line == m_drawn)) {
        return;
    }
    std::fputs((CLEAR_LINE + line).c_str(), stderr);
    line_is_drawn = true;
    m_drawn = line;
}
