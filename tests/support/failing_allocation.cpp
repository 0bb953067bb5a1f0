#include "failing_allocation.h"

#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <limits>
#include <new>

std::atomic<long> allocations_left{-1};
std::atomic<std::size_t> largest_allocation{std::numeric_limits<std::size_t>::max()};

namespace
{

/// Debian's crypto library gives locked memory back in destructors, and now and then needs a little for that
/// itself.
bool is_crypto_library(const void* code)
{
    Dl_info place;
    return ::dladdr(code, &place) != 0 && std::strstr(place.dli_fname, "libbotan") != nullptr;
}

/// Null where this allocation is to fail.
void* allocate(std::size_t size, const void* caller)
{
    const bool is_too_large = size > largest_allocation.load(std::memory_order_relaxed);
    const bool has_its_turn =
        allocations_left.load(std::memory_order_relaxed) >= 0 && allocations_left.fetch_sub(1) == 0;
    if ((is_too_large || has_its_turn) && !is_crypto_library(caller)) {
        return nullptr;
    }
    return std::malloc(size == 0 ? 1 : size);
}

} // namespace

// These take the place of the library's in the whole program. Here, where no caller sees their inside, the
// compiler does not take malloc and free for a pair that does not fit.

void* operator new(std::size_t size, const std::nothrow_t&) noexcept
{
    return allocate(size, __builtin_return_address(0));
}

void* operator new(std::size_t size)
{
    void* const memory = allocate(size, __builtin_return_address(0));
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
