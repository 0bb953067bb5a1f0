#include "atomic_file.h"

#include "file_errors.h"
#include "fio_path.h"
#include "msg_internal_error.h"
#include "stale_file_names.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

/// How the file system says that it has no unnamed files.
bool lacks_unnamed_files(int error_number)
{
    return error_number == EOPNOTSUPP || error_number == EISDIR || error_number == EINVAL;
}

bool write_all(int descriptor, std::span<const std::uint8_t> bytes, std::uint64_t offset)
{
    for (std::size_t done = 0; done < bytes.size();) {
        const ssize_t count =
            pwrite(descriptor, bytes.data() + done, bytes.size() - done, static_cast<off_t>(offset + done));
        if (count < 0 && errno != EINTR) {
            return false;
        }
        done += count > 0 ? static_cast<std::size_t>(count) : 0;
    }
    return true;
}

/// Creates a file under a hidden name in `directory` and locks it. A sweep may take the file away between
/// the two, since nobody holds its lock yet; then another name is tried. -1 with errno on failure.
int create_hidden(const std::string& directory, const std::string& name, unsigned permissions,
                  std::string& path)
{
    for (;;) {
        path = directory + "/" + hidden_temporary_name(name);
        const int descriptor =
            open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, permissions);
        if (descriptor < 0) {
            if (errno == EEXIST) {
                continue;
            }
            return -1;
        }
        struct stat status = {};
        if (flock(descriptor, LOCK_EX) == 0 && fstat(descriptor, &status) == 0 && status.st_nlink != 0) {
            return descriptor;
        }
        close(descriptor);
    }
}

/// Whether a file may come to stand under `target`; what is there now must be a regular file.
bool may_replace(const std::string& path, const std::string& target, std::string& message)
{
    struct stat status = {};
    if (lstat(target.c_str(), &status) != 0) {
        if (errno == ENOENT) {
            return true;
        }
        message = file_failure(path, "written", errno);
        return false;
    }
    if (!S_ISREG(status.st_mode)) {
        message = path + " cannot be written: there is " +
                  (S_ISDIR(status.st_mode) ? "a directory" : "a pipe, socket, device or endless link") +
                  " with this name. Choose another name.";
        return false;
    }
    if (faccessat(AT_FDCWD, target.c_str(), W_OK, AT_EACCESS) != 0) {
        message = path + " cannot be written: it is write-protected.";
        return false;
    }
    return true;
}

bool flush_directory(const std::string& directory)
{
    const int descriptor = open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0) {
        // A directory that may be written but not listed cannot be flushed; its file system will do it.
        return errno == EACCES;
    }
    // Some file systems know no such thing as flushing a directory.
    const bool flushed = fsync(descriptor) == 0 || errno == EINVAL;
    const int error_number = errno;
    close(descriptor);
    errno = error_number;
    return flushed;
}

std::shared_ptr<const BYTE_SOURCE> duplicate_as_source(int descriptor, const std::string& name,
                                                       std::string& message)
{
    const int duplicate = fcntl(descriptor, F_DUPFD_CLOEXEC, 0);
    if (duplicate < 0) {
        message = file_failure(name, "read", errno);
        return nullptr;
    }
    return FILE_SOURCE::adopt(duplicate, name, message);
}

} // namespace

std::unique_ptr<ATOMIC_FILE> ATOMIC_FILE::create(const std::string& path, unsigned permissions,
                                                 std::string& message)
{
    if (FIO_PATH(path).filename().empty()) {
        message = "\"" + path + "\" is no name for a file.";
        return nullptr;
    }
    const std::string target = link_target(path);
    if (!may_replace(path, target, message)) {
        return nullptr;
    }
    std::unique_ptr<ATOMIC_FILE> file(new ATOMIC_FILE);
    file->m_path = path;
    file->m_target = target;
    if (!file->open_temporary(permissions, message)) {
        return nullptr;
    }
    return file;
}

bool ATOMIC_FILE::open_temporary(unsigned permissions, std::string& message)
{
    const std::string directory = directory_of(m_target);
    // Without /proc an unnamed file could not be given a name later.
    if (access("/proc/self/fd", X_OK) == 0) {
        m_descriptor = open(directory.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, permissions);
    } else {
        errno = EOPNOTSUPP;
    }
    if (m_descriptor < 0 && lacks_unnamed_files(errno)) {
        m_descriptor = create_hidden(directory, FIO_PATH(m_target).filename(), permissions, m_temporary);
    }
    if (m_descriptor >= 0) {
        return true;
    }
    m_temporary.clear();
    if (errno == ENOENT || errno == ENOTDIR) {
        message = m_path + " cannot be written: the directory " + directory + " does not exist.";
    } else {
        message = m_path + " cannot be written: nothing can be created in the directory " + directory + ", " +
                  error_words(errno) + ".";
    }
    return false;
}

ATOMIC_FILE::~ATOMIC_FILE()
{
    if (!m_temporary.empty()) {
        unlink(m_temporary.c_str());
    }
    if (m_descriptor >= 0) {
        close(m_descriptor);
    }
}

bool ATOMIC_FILE::fail(std::string& message)
{
    message = file_failure(m_path, "written", errno);
    m_failed = true;
    return false;
}

bool ATOMIC_FILE::write(std::span<const std::uint8_t> bytes, std::string& message)
{
    VEK_ASSERT_TEXT(m_descriptor >= 0, "file is not committed");
    if (!write_all(m_descriptor, bytes, m_size)) {
        return fail(message);
    }
    m_size += bytes.size();
    return true;
}

bool ATOMIC_FILE::write_at(std::uint64_t offset, std::span<const std::uint8_t> bytes, std::string& message)
{
    VEK_ASSERT_TEXT(m_descriptor >= 0, "file is not committed");
    VEK_ASSERT_TEXT(offset <= m_size && bytes.size() <= m_size - offset, "offset + bytes.size() <= size()");
    return write_all(m_descriptor, bytes, offset) || fail(message);
}

std::shared_ptr<const BYTE_SOURCE> ATOMIC_FILE::read_back(std::string& message) const
{
    VEK_ASSERT_TEXT(m_descriptor >= 0, "file is not committed");
    return duplicate_as_source(m_descriptor, m_path, message);
}

bool ATOMIC_FILE::link_to_hidden_name()
{
    // The lock comes before the name, so that no sweep can take the file for a left-over.
    if (flock(m_descriptor, LOCK_EX) != 0) {
        return false;
    }
    const std::string unnamed = "/proc/self/fd/" + std::to_string(m_descriptor);
    for (;;) {
        std::string hidden =
            directory_of(m_target) + "/" + hidden_temporary_name(FIO_PATH(m_target).filename());
        if (linkat(AT_FDCWD, unnamed.c_str(), AT_FDCWD, hidden.c_str(), AT_SYMLINK_FOLLOW) == 0) {
            // Nothing that can fail stands between the file's name and its note.
            m_temporary = std::move(hidden);
            return true;
        }
        if (errno != EEXIST) {
            return false;
        }
    }
}

bool ATOMIC_FILE::commit(std::string& message)
{
    VEK_ASSERT_TEXT(m_descriptor >= 0, "file is not committed");
    if (m_failed) {
        message = m_path + " is not written, because some of its data could not be.";
        return false;
    }
    const std::string directory = directory_of(m_target);
    struct stat status = {};
    if (fsync(m_descriptor) != 0 || fstat(m_descriptor, &status) != 0) {
        return fail(message);
    }
    if (static_cast<std::uint64_t>(status.st_size) != m_size) {
        errno = EIO;
        return fail(message);
    }
    if (!may_replace(m_path, m_target, message)) {
        m_failed = true;
        return false;
    }
    if (m_temporary.empty() && !link_to_hidden_name()) {
        return fail(message);
    }
    if (rename(m_temporary.c_str(), m_target.c_str()) != 0) {
        return fail(message);
    }
    m_temporary.clear();
    close(m_descriptor);
    m_descriptor = -1;
    if (!flush_directory(directory)) {
        message =
            m_path + " is written, but may be lost when the power fails now: " + error_words(errno) + ".";
        return false;
    }
    return true;
}

std::unique_ptr<SPOOL_FILE> SPOOL_FILE::create(const std::string& directory, std::string& message)
{
    std::unique_ptr<SPOOL_FILE> spool(new SPOOL_FILE);
    spool->m_directory = directory;
    constexpr unsigned OWNER_ONLY = 0600;
    spool->m_descriptor = open(directory.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, OWNER_ONLY);
    if (spool->m_descriptor < 0 && lacks_unnamed_files(errno)) {
        std::string hidden;
        spool->m_descriptor = create_hidden(directory, "spool", OWNER_ONLY, hidden);
        if (spool->m_descriptor >= 0) {
            unlink(hidden.c_str());
        }
    }
    if (spool->m_descriptor < 0) {
        message = "No temporary file can be created in the directory " + directory + ": " +
                  error_words(errno) + ".";
        return nullptr;
    }
    return spool;
}

SPOOL_FILE::~SPOOL_FILE()
{
    if (m_descriptor >= 0) {
        close(m_descriptor);
    }
}

bool SPOOL_FILE::write(std::span<const std::uint8_t> bytes, std::string& message)
{
    if (!write_all(m_descriptor, bytes, m_size)) {
        message = "A temporary file in the directory " + m_directory +
                  " cannot be written: " + error_words(errno) + ".";
        return false;
    }
    m_size += bytes.size();
    return true;
}

std::shared_ptr<const BYTE_SOURCE> SPOOL_FILE::source(std::string& message) const
{
    return duplicate_as_source(m_descriptor, "A temporary file in " + m_directory, message);
}
