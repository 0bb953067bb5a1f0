#ifndef ATOMIC_FILE_H
#define ATOMIC_FILE_H

#include "byte_source.h"

#include <cstdint>
#include <memory>
#include <string>

/// A file that appears under its name only when it is complete.
///
/// The bytes go to an unnamed file (O_TMPFILE) in the target's directory, or, where the file system has none,
/// to a hidden one named ".<name>.imagewright-<random>.tmp", which sweep_stale_files recognises. commit()
/// flushes the data to the disk, gives the file its name with rename(2), and flushes the directory. An object
/// destroyed before commit() leaves nothing behind, and a process killed before it leaves the old file as it
/// was. (An unnamed file cannot take the place of another, so commit() links it to a hidden name first.)
///
/// A path that is a symbolic link is followed: the link stays, and what it leads to is replaced. Of a file
/// with several hard links only this name gets the new contents; the others keep the old.
class ATOMIC_FILE final : public BYTE_SINK
{
public:
    /// Starts a file that is to become `path` with the given permission bits (the umask applies). Null with a
    /// whole sentence in `message` when the directory is missing or not writable, or `path` is there and no
    /// regular file or write-protected.
    static std::unique_ptr<ATOMIC_FILE> create(const std::string& path, unsigned permissions,
                                               std::string& message);

    ~ATOMIC_FILE() override;
    ATOMIC_FILE(const ATOMIC_FILE&) = delete;
    ATOMIC_FILE& operator=(const ATOMIC_FILE&) = delete;

    bool write(std::span<const std::uint8_t> bytes, std::string& message) override;

    /// Overwrites bytes already written, for a header whose values are known last. What lies behind size() is
    /// an internal error "offset + bytes.size() <= size()".
    bool write_at(std::uint64_t offset, std::span<const std::uint8_t> bytes, std::string& message);

    std::uint64_t size() const { return m_size; }

    /// What has been written so far, for the check before the commit.
    std::shared_ptr<const BYTE_SOURCE> read_back(std::string& message) const;

    /// Gives the file its name. False with a whole sentence in `message` when that fails, or when any write
    /// has failed before; the file that had the name is then still there as it was. To be called once, last.
    bool commit(std::string& message);

    /// Removes the left-overs of killed processes from `directory`: hidden temporary files of this class and
    /// of the same user for which no living process holds a lock.
    static void sweep_stale_files(const std::string& directory);

private:
    ATOMIC_FILE() = default;
    bool open_temporary(unsigned permissions, std::string& message);
    bool link_to_hidden_name();
    bool fail(std::string& message);

    int m_descriptor = -1;
    std::uint64_t m_size = 0;
    bool m_failed = false;
    std::string m_path;      ///< as the caller gave it, for messages
    std::string m_target;    ///< behind symbolic links
    std::string m_temporary; ///< empty while the file is unnamed
};

/// An unlinked scratch file in `directory` for data that is too large for memory. Nothing of it survives the
/// process.
class SPOOL_FILE final : public BYTE_SINK
{
public:
    static std::unique_ptr<SPOOL_FILE> create(const std::string& directory, std::string& message);
    ~SPOOL_FILE() override;
    SPOOL_FILE(const SPOOL_FILE&) = delete;
    SPOOL_FILE& operator=(const SPOOL_FILE&) = delete;
    bool write(std::span<const std::uint8_t> bytes, std::string& message) override;
    std::uint64_t size() const { return m_size; }
    /// The bytes written so far as a source, which stays valid when the spool itself goes.
    std::shared_ptr<const BYTE_SOURCE> source(std::string& message) const;

private:
    SPOOL_FILE() = default;
    int m_descriptor = -1;
    std::uint64_t m_size = 0;
    std::string m_directory; ///< for messages
};

#endif
