#ifndef FAULT_INJECTION_H
#define FAULT_INJECTION_H

#include <cstddef>
#include <cstdint>

/// What goes wrong in the system calls of the code under test, from construction to destruction.
struct FAULT_INJECTION {
    FAULT_INJECTION();
    ~FAULT_INJECTION();
    FAULT_INJECTION(const FAULT_INJECTION&) = delete;
    FAULT_INJECTION& operator=(const FAULT_INJECTION&) = delete;

    int write_error = 0; ///< errno of pwrite once `writable_bytes` are written
    std::uint64_t writable_bytes = UINT64_MAX;
    std::size_t longest_write = SIZE_MAX; ///< pwrite takes no more than this at once
    unsigned interrupts = 0;              ///< how many calls of pwrite end with EINTR first
    bool swallow_writes = false;          ///< pwrite says yes and writes nothing
    int file_sync_error = 0;
    int directory_sync_error = 0;
    int link_error = 0;
    int rename_error = 0;
    bool no_unnamed_files = false; ///< the file system knows no O_TMPFILE
};

#endif
