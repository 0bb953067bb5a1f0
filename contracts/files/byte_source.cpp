#include "byte_source.h"

#include "file_errors.h"
#include "msg_internal_error.h"

#include <libdeflate.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

/// Whether `length` bytes at `offset` lie within a source of `size` bytes; no sum can overflow here.
bool lies_within(std::uint64_t offset, std::uint64_t length, std::uint64_t size)
{
    return offset <= size && length <= size - offset;
}

bool refuse_range(const std::string& what, std::uint64_t offset, std::uint64_t length, std::uint64_t size,
                  std::string& message)
{
    message = what + " has " + std::to_string(size) + " bytes, but " + std::to_string(length) +
              " bytes are wanted from offset " + std::to_string(offset) + " on.";
    return false;
}

/// What a path leads to, in words, when that is no regular file.
const char* kind_of_file(mode_t mode)
{
    switch (mode & S_IFMT) {
    case S_IFDIR:
        return "it is a directory";
    case S_IFIFO:
        return "it is a pipe";
    case S_IFSOCK:
        return "it is a socket";
    default:
        return "it is a device";
    }
}

std::shared_ptr<FILE_SOURCE> refuse_file(const std::string& path, const std::string& reason,
                                         std::string& message)
{
    message = path + " cannot be opened: " + reason + ".";
    return nullptr;
}

} // namespace

bool MEMORY_SOURCE::read(std::uint64_t offset, std::span<std::uint8_t> into, std::string& message) const
{
    if (!lies_within(offset, into.size(), m_bytes.size())) {
        return refuse_range("The data", offset, into.size(), m_bytes.size(), message);
    }
    std::copy_n(m_bytes.begin() + static_cast<std::ptrdiff_t>(offset), into.size(), into.begin());
    return true;
}

std::shared_ptr<FILE_SOURCE> FILE_SOURCE::open(const std::string& path, std::string& message)
{
    // Opening alone can do harm to a device, so the kind is asked first; asked again behind the open, it
    // holds for what is really open.
    struct stat status = {};
    if (stat(path.c_str(), &status) != 0) {
        return refuse_file(path, error_words(errno), message);
    }
    if (!S_ISREG(status.st_mode)) {
        return refuse_file(path, kind_of_file(status.st_mode), message);
    }
    const int descriptor = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (descriptor < 0) {
        return refuse_file(path, error_words(errno), message);
    }
    return adopt(descriptor, path, message);
}

std::shared_ptr<FILE_SOURCE> FILE_SOURCE::adopt(int descriptor, const std::string& name, std::string& message)
{
    struct stat status = {};
    const bool known = fstat(descriptor, &status) == 0;
    if (!known || !S_ISREG(status.st_mode)) {
        const std::string reason = known ? kind_of_file(status.st_mode) : error_words(errno);
        if (descriptor >= 0) {
            close(descriptor);
        }
        return refuse_file(name, reason, message);
    }
    return std::shared_ptr<FILE_SOURCE>(
        new FILE_SOURCE(descriptor, static_cast<std::uint64_t>(status.st_size), name));
}

FILE_SOURCE::~FILE_SOURCE()
{
    close(m_descriptor);
}

bool FILE_SOURCE::read(std::uint64_t offset, std::span<std::uint8_t> into, std::string& message) const
{
    if (!lies_within(offset, into.size(), m_size)) {
        return refuse_range(m_path, offset, into.size(), m_size, message);
    }
    // Kernels copy out of their pages at a third of the speed when source and target lie differently within
    // cache lines; going through a small buffer that lies as the file does costs less.
    constexpr std::size_t CACHE_LINE = 64;
    constexpr std::size_t DETOUR = 32 * 1024;
    const bool aligned = (reinterpret_cast<std::uintptr_t>(into.data()) - offset) % CACHE_LINE == 0;
    if (aligned || into.size() < DETOUR / 4) {
        return read_directly(offset, into, message);
    }
    alignas(CACHE_LINE) std::array<std::uint8_t, DETOUR + CACHE_LINE> buffer;
    while (!into.empty()) {
        const std::size_t within_line = static_cast<std::size_t>(offset % CACHE_LINE);
        const std::span<std::uint8_t> block(buffer.data() + within_line, std::min(into.size(), DETOUR));
        if (!read_directly(offset, block, message)) {
            return false;
        }
        std::memcpy(into.data(), block.data(), block.size());
        into = into.subspan(block.size());
        offset += block.size();
    }
    return true;
}

bool FILE_SOURCE::read_directly(std::uint64_t offset, std::span<std::uint8_t> into,
                                std::string& message) const
{
    for (std::size_t done = 0; done < into.size();) {
        const ssize_t count =
            pread(m_descriptor, into.data() + done, into.size() - done, static_cast<off_t>(offset + done));
        if (count > 0) {
            done += static_cast<std::size_t>(count);
        } else if (count == 0) {
            message = m_path + " was shortened while it was being read.";
            return false;
        } else if (errno != EINTR) {
            message = file_failure(m_path, "read", errno);
            return false;
        }
    }
    return true;
}

RANGE_SOURCE::RANGE_SOURCE(std::shared_ptr<const BYTE_SOURCE> base, std::uint64_t offset,
                           std::uint64_t length)
    : m_base(std::move(base)), m_offset(offset), m_length(length)
{
    VEK_ASSERT_TEXT(lies_within(offset, length, m_base->size()), "offset + length <= base->size()");
}

bool RANGE_SOURCE::read(std::uint64_t offset, std::span<std::uint8_t> into, std::string& message) const
{
    if (!lies_within(offset, into.size(), m_length)) {
        return refuse_range("The part of the data", offset, into.size(), m_length, message);
    }
    return m_base->read(m_offset + offset, into, message);
}

void CONCATENATED_SOURCE::append(std::shared_ptr<const BYTE_SOURCE> part)
{
    const std::uint64_t length = part->size();
    if (length == 0) {
        return;
    }
    VEK_ASSERT_TEXT(length <= UINT64_MAX - m_size, "size of the parts fits 64 bits");
    m_starts.push_back(m_size);
    m_size += length;
    m_parts.push_back(std::move(part));
}

bool CONCATENATED_SOURCE::read(std::uint64_t offset, std::span<std::uint8_t> into, std::string& message) const
{
    if (!lies_within(offset, into.size(), m_size)) {
        return refuse_range("The data", offset, into.size(), m_size, message);
    }
    const auto behind = std::upper_bound(m_starts.begin(), m_starts.end(), offset);
    auto part = static_cast<std::size_t>(behind - m_starts.begin());
    while (!into.empty()) {
        const BYTE_SOURCE& source = *m_parts[part - 1];
        const std::uint64_t within = offset - m_starts[part - 1];
        const std::size_t count =
            static_cast<std::size_t>(std::min<std::uint64_t>(into.size(), source.size() - within));
        if (!source.read(within, into.first(count), message)) {
            return false;
        }
        into = into.subspan(count);
        offset += count;
        ++part;
    }
    return true;
}

bool MEMORY_SINK::write(std::span<const std::uint8_t> bytes, std::string&)
{
    m_bytes.insert(m_bytes.end(), bytes.begin(), bytes.end());
    return true;
}

namespace
{

/// What is read stays in the second-level cache until it has been used.
constexpr std::size_t CACHED_BLOCK_SIZE = 128 * 1024;

/// Hands the whole source to `take`, block by block, until that returns false.
template <class TAKE>
bool for_each_block(const BYTE_SOURCE& source, std::string& message, TAKE take)
{
    const std::uint64_t size = source.size();
    IO_BLOCK buffer(static_cast<std::size_t>(std::min<std::uint64_t>(size, CACHED_BLOCK_SIZE)));
    for (std::uint64_t offset = 0; offset < size;) {
        const auto count = static_cast<std::size_t>(std::min<std::uint64_t>(size - offset, buffer.size()));
        const std::span<std::uint8_t> block(buffer.data(), count);
        if (!source.read(offset, block, message) || !take(block)) {
            return false;
        }
        offset += count;
    }
    return true;
}

} // namespace

bool copy_source(const BYTE_SOURCE& source, BYTE_SINK& sink, std::string& message)
{
    return for_each_block(source, message,
                          [&](std::span<const std::uint8_t> block) { return sink.write(block, message); });
}

std::uint32_t crc32(std::span<const std::uint8_t> bytes, std::uint32_t crc)
{
    // An empty span may have a null pointer, for which the library would give its initial value.
    return bytes.empty() ? crc : libdeflate_crc32(crc, bytes.data(), bytes.size());
}

bool crc32_of_source(const BYTE_SOURCE& source, std::uint32_t& crc, std::string& message)
{
    std::uint32_t sum = 0;
    const bool read = for_each_block(source, message, [&sum](std::span<const std::uint8_t> block) {
        sum = crc32(block, sum);
        return true;
    });
    if (read) {
        crc = sum;
    }
    return read;
}
