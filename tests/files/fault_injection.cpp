#include "fault_injection.h"

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

FAULT_INJECTION* faults = nullptr;

int fail_with(int error_number)
{
    errno = error_number;
    return -1;
}

} // namespace

FAULT_INJECTION::FAULT_INJECTION()
{
    faults = this;
}

FAULT_INJECTION::~FAULT_INJECTION()
{
    faults = nullptr;
}

extern "C" {

int __real_open(const char* path, int flags, ...);
ssize_t __real_pwrite(int descriptor, const void* bytes, size_t count, off_t offset);
int __real_fsync(int descriptor);
int __real_linkat(int from, const char* old_path, int to, const char* new_path, int flags);
int __real_rename(const char* old_path, const char* new_path);

int __wrap_open(const char* path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const bool unnamed = (flags & O_TMPFILE) == O_TMPFILE;
    const unsigned mode = unnamed || (flags & O_CREAT) != 0 ? va_arg(arguments, unsigned) : 0;
    va_end(arguments);
    if (faults != nullptr && faults->no_unnamed_files && unnamed) {
        return fail_with(EOPNOTSUPP);
    }
    return __real_open(path, flags, mode);
}

ssize_t __wrap_pwrite(int descriptor, const void* bytes, size_t count, off_t offset)
{
    if (faults == nullptr) {
        return __real_pwrite(descriptor, bytes, count, offset);
    }
    if (faults->interrupts != 0) {
        --faults->interrupts;
        return fail_with(EINTR);
    }
    if (faults->swallow_writes) {
        return static_cast<ssize_t>(count);
    }
    const size_t allowed =
        static_cast<size_t>(std::min<std::uint64_t>({count, faults->longest_write, faults->writable_bytes}));
    if (allowed == 0 && count != 0) {
        return fail_with(faults->write_error);
    }
    const ssize_t written = __real_pwrite(descriptor, bytes, allowed, offset);
    if (written > 0) {
        faults->writable_bytes -= static_cast<std::uint64_t>(written);
    }
    return written;
}

int __wrap_fsync(int descriptor)
{
    if (faults != nullptr) {
        struct stat status = {};
        fstat(descriptor, &status);
        const int error_number =
            S_ISDIR(status.st_mode) ? faults->directory_sync_error : faults->file_sync_error;
        if (error_number != 0) {
            return fail_with(error_number);
        }
    }
    return __real_fsync(descriptor);
}

int __wrap_linkat(int from, const char* old_path, int to, const char* new_path, int flags)
{
    if (faults != nullptr && faults->link_error != 0) {
        return fail_with(faults->link_error);
    }
    return __real_linkat(from, old_path, to, new_path, flags);
}

int __wrap_rename(const char* old_path, const char* new_path)
{
    if (faults != nullptr && faults->rename_error != 0) {
        return fail_with(faults->rename_error);
    }
    return __real_rename(old_path, new_path);
}
}
