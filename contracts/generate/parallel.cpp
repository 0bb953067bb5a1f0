#include "parallel.h"

#include <algorithm>
#include <atomic>
#include <thread>
#include <vector>

void run_parallel(std::size_t count, unsigned threads, const std::function<void(std::size_t)>& work)
{
    std::atomic<std::size_t> next{0};
    const auto run = [&] {
        for (std::size_t i = next++; i < count; i = next++) {
            work(i);
        }
    };
    const unsigned machine = std::max(std::thread::hardware_concurrency(), 1U);
    const std::size_t workers = std::min<std::size_t>(count, threads == 0 ? machine : threads);
    std::vector<std::jthread> others;
    for (std::size_t i = 1; i < workers; ++i) {
        others.emplace_back(run);
    }
    run();
}
