#include "core_dump_guard.h"

#ifdef NDEBUG

#include <mutex>
#include <sys/prctl.h>
#include <sys/resource.h>

namespace
{

std::mutex guards_mutex;
int guards = 0;
int old_dumpable = 1;
rlimit old_limit{};
bool is_limit_known = false;

} // namespace

CORE_DUMP_GUARD::CORE_DUMP_GUARD()
{
    const std::lock_guard<std::mutex> lock(guards_mutex);
    if (++guards != 1) {
        return;
    }
    old_dumpable = prctl(PR_GET_DUMPABLE);
    prctl(PR_SET_DUMPABLE, 0);
    is_limit_known = getrlimit(RLIMIT_CORE, &old_limit) == 0;
    if (is_limit_known) {
        // The hard limit stays, so that the old one can come back.
        const rlimit none{0, old_limit.rlim_max};
        setrlimit(RLIMIT_CORE, &none);
    }
}

CORE_DUMP_GUARD::~CORE_DUMP_GUARD()
{
    const std::lock_guard<std::mutex> lock(guards_mutex);
    if (--guards != 0) {
        return;
    }
    if (old_dumpable == 1) {
        prctl(PR_SET_DUMPABLE, 1);
    }
    if (is_limit_known) {
        setrlimit(RLIMIT_CORE, &old_limit);
    }
}

#else

CORE_DUMP_GUARD::CORE_DUMP_GUARD() = default;
CORE_DUMP_GUARD::~CORE_DUMP_GUARD() = default;

#endif
