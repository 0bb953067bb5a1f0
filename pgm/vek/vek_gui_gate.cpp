#include "vek_gui_gate.h"

#include <QThread>

void VEK_GUI_GATE::run(const std::function<void()>& step)
{
    if (QThread::currentThread() == thread()) {
        step();
        return;
    }
    std::unique_lock lock(m_mutex);
    if (!m_is_closed) {
        m_waiting_step = &step;
        // A call that Qt itself blocks would wait for ever when the window goes, or the event loop ends.
        QMetaObject::invokeMethod(this, "run_waiting_step", Qt::QueuedConnection);
        m_changed.wait(lock, [this] { return !m_is_running && (m_waiting_step == nullptr || m_is_closed); });
        if (m_waiting_step == nullptr) {
            return;
        }
        m_waiting_step = nullptr;
    }
    lock.unlock();
    step();
}

void VEK_GUI_GATE::close()
{
    const std::lock_guard lock(m_mutex);
    m_is_closed = true;
    m_changed.notify_all();
}

void VEK_GUI_GATE::run_waiting_step()
{
    {
        const std::lock_guard lock(m_mutex);
        if (m_waiting_step == nullptr || m_is_running || m_is_closed) {
            return;
        }
        m_is_running = true;
    }
    // The task sits in run() until this is done, so its step stays where it is.
    (*m_waiting_step)();
    const std::lock_guard lock(m_mutex);
    m_waiting_step = nullptr;
    m_is_running = false;
    m_changed.notify_all();
}
