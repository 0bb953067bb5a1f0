#ifndef PROGRESS_BAR_H
#define PROGRESS_BAR_H

#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>
#include <thread>

/// A bar of that many percent and what stands behind it.
std::string progress_line(unsigned percent, const std::string& words);

/// Takes the line of the bar off the terminal, so that a message can be printed there; the next drawing
/// brings it back. The caller holds message_stream_mutex().
void clear_progress_line();

/// While it lives, draws a line on the error stream, when that is a terminal, and draws it again when it has
/// changed; anywhere else it draws nothing, so that logs stay clean.
class PROGRESS_BAR
{
public:
    /// The line to draw, empty for none; called by a thread of the bar.
    using LINE = std::function<std::string()>;

    /// Draws the progress of the back end.
    explicit PROGRESS_BAR(bool wanted);
    PROGRESS_BAR(bool wanted, LINE line);
    ~PROGRESS_BAR();
    PROGRESS_BAR(const PROGRESS_BAR&) = delete;
    PROGRESS_BAR& operator=(const PROGRESS_BAR&) = delete;

private:
    void draw_until_done();
    void draw();

    std::mutex m_mutex;
    std::condition_variable m_wake;
    bool m_done = false;
    LINE m_line;
    std::string m_drawn;
    std::thread m_thread;
};

#endif
