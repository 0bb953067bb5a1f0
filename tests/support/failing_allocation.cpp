#include "failing_allocation.h"

#include <cstdlib>
#include <limits>
#include <new>

std::atomic<long> allocations_left{-1};
std::atomic<std::size_t> largest_allocation{std::numeric_limits<std::size_t>::max()};

namespace
{

bool fails_now(std::size_t size)
{
    return size > largest_allocation.load(std::memory_order_relaxed) ||
           (allocations_left.load(std::memory_order_relaxed) >= 0 && allocations_left.fetch_sub(1) == 0);
}

} // namespace

// These take the place of the library's in the whole program. Here, where no caller sees their inside, the
// compiler does not take malloc and free for a pair that does not fit.

void* operator new(std::size_t size, const std::nothrow_t&) noexcept
{
    return fails_now(size) ? nullptr : std::malloc(size == 0 ? 1 : size);
}

void* operator new(std::size_t size)
{
    void* const memory = operator new(size, std::nothrow);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    return memory;
}

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, const std::nothrow_t&) noexcept
{
    std::free(memory);
}
