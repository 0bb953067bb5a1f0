#ifndef PROGRESS_BAR_H
#define PROGRESS_BAR_H

#include <condition_variable>
#include <mutex>
#include <thread>

/// While it lives, draws the progress of the back end on the error stream, when that is a terminal; anywhere
/// else it draws nothing, so that logs stay clean.
class PROGRESS_BAR
{
public:
    explicit PROGRESS_BAR(bool wanted);
    ~PROGRESS_BAR();
    PROGRESS_BAR(const PROGRESS_BAR&) = delete;
    PROGRESS_BAR& operator=(const PROGRESS_BAR&) = delete;

private:
    void draw_until_done();

    std::mutex m_mutex;
    std::condition_variable m_wake;
    bool m_done = false;
    std::thread m_thread;
};

#endif
