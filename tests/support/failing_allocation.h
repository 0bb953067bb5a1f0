#ifndef IMAGEWRIGHT_TESTS_FAILING_ALLOCATION_H
#define IMAGEWRIGHT_TESTS_FAILING_ALLOCATION_H

#include <atomic>
#include <cstddef>

/// How many allocations of the test program are still to succeed before one fails; negative: none fails.
extern std::atomic<long> allocations_left;

/// Larger ones fail all.
extern std::atomic<std::size_t> largest_allocation;

#endif
