#include "open_file_limit.h"

#include <sys/resource.h>

void raise_open_file_limit()
{
    rlimit limit{};
    if (getrlimit(RLIMIT_NOFILE, &limit) == 0 && limit.rlim_cur < limit.rlim_max) {
        limit.rlim_cur = limit.rlim_max;
        // Where even this is refused, the old limit holds, and a file that cannot be opened is told by its
        // name.
        setrlimit(RLIMIT_NOFILE, &limit);
    }
}
