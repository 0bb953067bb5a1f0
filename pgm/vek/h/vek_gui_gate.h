#ifndef VEK_GUI_GATE_H
#define VEK_GUI_GATE_H

#include <QObject>

#include <condition_variable>
#include <functional>
#include <mutex>

/// Lets a background task do single steps on the GUI thread, where the window reads what the step changes.
///
/// The task waits while its step runs. So the two threads never work on the data at the same time: the window
/// finds it as it was before a step or as it is after one, and the task finds what its own step has left.
/// One task at a time. The gate lives on the thread on which it was built.
class VEK_GUI_GATE : public QObject
{
    Q_OBJECT
public:
    VEK_GUI_GATE() = default;

    /// Runs the step on the thread of the gate and returns when it is done. On that thread itself, and behind
    /// a closed gate, the caller runs it.
    void run(const std::function<void()>& step);

    /// On the thread of the gate: nobody there looks at the data any more. From now on the task goes its way
    /// alone, also with the step for which it waits.
    void close();

private slots:
    void run_waiting_step();

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    const std::function<void()>* m_waiting_step = nullptr;
    bool m_is_running = false; ///< the step that was waiting has begun
    bool m_is_closed = false;
};

#endif
