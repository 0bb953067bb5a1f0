#include "failing_threads.h"

#include <cerrno>
#include <dlfcn.h>
#include <pthread.h>

std::atomic<int> threads_left{THREADS_ENOUGH};

// Takes the place of the library's in the whole program, and hands on to it.
extern "C" int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*start)(void*),
                              void* argument) noexcept
{
    using CREATE = int (*)(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*);
    static const auto next = reinterpret_cast<CREATE>(::dlsym(RTLD_NEXT, "pthread_create"));
    return threads_left.fetch_sub(1) > 0 ? next(thread, attributes, start, argument) : EAGAIN;
}
