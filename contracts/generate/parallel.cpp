#include "parallel.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <mutex>
#include <thread>
#include <vector>

void run_parallel(std::size_t count, unsigned threads, const std::function<void(std::size_t)>& work)
{
    std::atomic<std::size_t> next{0};
    std::mutex mutex;
    std::exception_ptr first_failure;
    const auto run = [&]() noexcept {
        try {
            for (std::size_t i = next++; i < count; i = next++) {
                work(i);
            }
        } catch (...) {
            next = count;
            const std::scoped_lock lock(mutex);
            if (!first_failure) {
                first_failure = std::current_exception();
            }
        }
    };
    const unsigned machine = std::max(std::thread::hardware_concurrency(), 1U);
    const std::size_t workers = std::min<std::size_t>(count, threads == 0 ? machine : threads);
    {
        std::vector<std::jthread> others;
        others.reserve(workers);
        try {
            while (others.size() + 1 < workers) {
                others.emplace_back(run);
            }
        } catch (const std::exception&) {
            // The machine has no thread or no memory for one more; those that there are do the work.
        }
        run();
    }
    if (first_failure) {
        std::rethrow_exception(first_failure);
    }
}
