#ifndef NIVO_BACKGROUND_H
#define NIVO_BACKGROUND_H

#include <QtConcurrent>

#include <atomic>
#include <memory>
#include <utility>

/// A point at which data goes from one thread to another. Qt orders the two threads itself, but Debian's Qt
/// is built without the thread sanitizer, which therefore sees no order and takes every hand-over for a race.
/// What passes here is ordered in its sight too, so that what it reports about our data is real.
inline void nivo_pass_hand_over_point()
{
    static std::atomic<unsigned> passes{0};
    passes.fetch_add(1, std::memory_order_acq_rel);
}

/// Whether the machine has a thread left to start. The pool does not look, and would keep a task for ever.
bool nivo_has_thread();

/// Runs the task on a thread of the pool; where there is none left here and now, while the window waits.
/// Whoever takes the result, in the slot of a watcher, calls nivo_pass_hand_over_point() first.
template <class TASK>
auto nivo_run_in_background(TASK task)
{
    if (!nivo_has_thread()) {
        QFutureInterface<decltype(task())> promise;
        promise.reportStarted();
        const auto result = task();
        promise.reportFinished(&result);
        return promise.future();
    }
    // The task stands outside what Qt copies, so that it is complete before the point is passed. The pool
    // runs all that it takes.
    TASK* const held = new TASK(std::move(task));
    nivo_pass_hand_over_point();
    return QtConcurrent::run([held] {
        nivo_pass_hand_over_point();
        const std::unique_ptr<TASK> owner(held);
        const auto result = (*owner)();
        nivo_pass_hand_over_point();
        return result;
    });
}

#endif
