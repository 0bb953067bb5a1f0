#ifndef BYTE_SOURCE_H
#define BYTE_SOURCE_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <span>
#include <string>
#include <vector>

/// The size of the blocks in which sources are read and files written: large enough to keep the cost of a
/// call out of sight, small enough to bound the memory of many sources at once.
inline constexpr std::size_t IO_BLOCK_SIZE = 1024 * 1024;

/// Memory that begins with a cache line, as the pages of files do: reading from them into memory that does
/// not takes up to three times as long.
template <class T>
struct CACHE_LINE_ALLOCATOR {
    using value_type = T;
    static constexpr std::align_val_t CACHE_LINE{64};

    CACHE_LINE_ALLOCATOR() = default;
    template <class OTHER>
    CACHE_LINE_ALLOCATOR(const CACHE_LINE_ALLOCATOR<OTHER>&)
    {
    }
    T* allocate(std::size_t count) { return static_cast<T*>(::operator new(count * sizeof(T), CACHE_LINE)); }
    void deallocate(T* memory, std::size_t) { ::operator delete(memory, CACHE_LINE); }
    bool operator==(const CACHE_LINE_ALLOCATOR&) const = default;
};

/// A block to read into.
using IO_BLOCK = std::vector<std::uint8_t, CACHE_LINE_ALLOCATOR<std::uint8_t>>;

/// A sequence of bytes of known length that can be read at any offset, from several threads at once.
/// What stands behind it (memory, a file, a flash image of extents) never needs to be in memory whole.
class BYTE_SOURCE
{
public:
    virtual ~BYTE_SOURCE() = default;

    /// Length in bytes.
    virtual std::uint64_t size() const = 0;

    /// Reads exactly into.size() bytes at `offset`. False with a sentence in `message` when the range does
    /// not lie within the source or the bytes cannot be read; `into` is then undefined.
    virtual bool read(std::uint64_t offset, std::span<std::uint8_t> into, std::string& message) const = 0;
};

/// A source over bytes that it owns.
class MEMORY_SOURCE final : public BYTE_SOURCE
{
public:
    explicit MEMORY_SOURCE(std::vector<std::uint8_t> bytes) : m_bytes(std::move(bytes)) {}
    std::uint64_t size() const override { return m_bytes.size(); }
    bool read(std::uint64_t offset, std::span<std::uint8_t> into, std::string& message) const override;

private:
    std::vector<std::uint8_t> m_bytes;
};

/// A source over a regular file, read with pread. The file is opened once and kept open.
class FILE_SOURCE final : public BYTE_SOURCE
{
public:
    /// Opens `path` (bytes in the local encoding). Null with a whole sentence in `message`, which begins with
    /// the path, when it does not exist, is no regular file (a directory, FIFO or device is never opened) or
    /// cannot be read. Never blocks.
    static std::shared_ptr<FILE_SOURCE> open(const std::string& path, std::string& message);

    ~FILE_SOURCE() override;
    FILE_SOURCE(const FILE_SOURCE&) = delete;
    FILE_SOURCE& operator=(const FILE_SOURCE&) = delete;

    std::uint64_t size() const override { return m_size; }
    bool read(std::uint64_t offset, std::span<std::uint8_t> into, std::string& message) const override;
    const std::string& path() const { return m_path; }
    /// Takes over an open file descriptor, for example of a spool file, and closes it, also when it fails.
    /// `name` is used in messages.
    static std::shared_ptr<FILE_SOURCE> adopt(int descriptor, const std::string& name, std::string& message);

private:
    FILE_SOURCE(int descriptor, std::uint64_t size, std::string path)
        : m_descriptor(descriptor), m_size(size), m_path(std::move(path))
    {
    }
    bool read_directly(std::uint64_t offset, std::span<std::uint8_t> into, std::string& message) const;

    int m_descriptor;
    std::uint64_t m_size;
    std::string m_path;
};

/// A part of another source.
class RANGE_SOURCE final : public BYTE_SOURCE
{
public:
    /// `offset` + `length` must lie within `base` (internal error "offset + length <= base->size()").
    RANGE_SOURCE(std::shared_ptr<const BYTE_SOURCE> base, std::uint64_t offset, std::uint64_t length);
    std::uint64_t size() const override { return m_length; }
    bool read(std::uint64_t offset, std::span<std::uint8_t> into, std::string& message) const override;

private:
    std::shared_ptr<const BYTE_SOURCE> m_base;
    std::uint64_t m_offset;
    std::uint64_t m_length;
};

/// Several sources one behind the other. Finding the part at an offset is logarithmic in their number.
class CONCATENATED_SOURCE final : public BYTE_SOURCE
{
public:
    void append(std::shared_ptr<const BYTE_SOURCE> part);
    std::uint64_t size() const override { return m_size; }
    bool read(std::uint64_t offset, std::span<std::uint8_t> into, std::string& message) const override;

private:
    std::vector<std::shared_ptr<const BYTE_SOURCE>> m_parts;
    std::vector<std::uint64_t> m_starts;
    std::uint64_t m_size = 0;
};

/// Where bytes go, in order.
class BYTE_SINK
{
public:
    virtual ~BYTE_SINK() = default;
    /// Takes all bytes; false with a whole sentence in `message` when that fails (the disk is full, say).
    virtual bool write(std::span<const std::uint8_t> bytes, std::string& message) = 0;
};

/// A sink that keeps what it gets.
class MEMORY_SINK final : public BYTE_SINK
{
public:
    bool write(std::span<const std::uint8_t> bytes, std::string& message) override;
    const std::vector<std::uint8_t>& bytes() const { return m_bytes; }
    std::vector<std::uint8_t> take() { return std::move(m_bytes); }

private:
    std::vector<std::uint8_t> m_bytes;
};

/// Sends the whole source to the sink, block by block.
bool copy_source(const BYTE_SOURCE& source, BYTE_SINK& sink, std::string& message);

/// CRC-32 as in ISO 3309 and ITU-T V.42 (reflected polynomial 0xEDB88320, as in zip and PNG), continuing
/// `crc`.
std::uint32_t crc32(std::span<const std::uint8_t> bytes, std::uint32_t crc = 0);

/// CRC-32 of a whole source, read block by block.
bool crc32_of_source(const BYTE_SOURCE& source, std::uint32_t& crc, std::string& message);

#endif
