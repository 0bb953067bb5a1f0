#ifndef IMAGEWRIGHT_TESTS_FAILING_THREADS_H
#define IMAGEWRIGHT_TESTS_FAILING_THREADS_H

#include <atomic>

/// How many threads the test program may still start; each try beyond fails as on a machine that has no more.
extern std::atomic<int> threads_left;

/// What `threads_left` says where nothing is to fail.
constexpr int THREADS_ENOUGH = 1 << 30;

#endif
