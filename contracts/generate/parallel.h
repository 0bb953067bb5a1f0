#ifndef PARALLEL_H
#define PARALLEL_H

#include <cstddef>
#include <functional>

/// Calls `work` with 0 to count - 1, on the calling thread and others beside it, never on more than `threads`
/// (0: as many as the machine runs) at a time. Returns when all calls have. After a call that
/// throws no other begins, and the first of what was thrown is passed on to the caller.
void run_parallel(std::size_t count, unsigned threads, const std::function<void(std::size_t)>& work);

#endif
