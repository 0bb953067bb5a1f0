#include "byte_source.h"
#include "in_child.h"
#include "internal_error_trap.h"
#include "same_file.h"
#include "temporary_directory.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace
{

namespace fs = std::filesystem;

std::vector<std::uint8_t> pattern(std::size_t size)
{
    std::vector<std::uint8_t> bytes(size);
    std::uint32_t state = 1;
    for (std::uint8_t& byte : bytes) {
        state = state * 1664525U + 1013904223U;
        byte = static_cast<std::uint8_t>(state >> 24);
    }
    return bytes;
}

std::vector<std::uint8_t> all_of(const BYTE_SOURCE& source)
{
    MEMORY_SINK sink;
    std::string message;
    EXPECT_TRUE(copy_source(source, sink, message)) << message;
    return sink.take();
}

TEST(file_source, reads_at_any_offset_from_several_threads)
{
    const TEMPORARY_DIRECTORY directory;
    const auto bytes = pattern(3 * IO_BLOCK_SIZE + 17);
    write_file(directory / "top.rbf", bytes);
    std::string message;
    const auto source = FILE_SOURCE::open(directory / "top.rbf", message);
    ASSERT_NE(source, nullptr) << message;
    EXPECT_EQ(source->size(), bytes.size());
    EXPECT_EQ(source->path(), directory / "top.rbf");
    EXPECT_EQ(all_of(*source), bytes);
    std::vector<std::thread> threads;
    std::array<bool, 4> equal{};
    for (std::size_t number = 0; number < equal.size(); ++number) {
        threads.emplace_back([&, number] {
            std::vector<std::uint8_t> part(1000);
            std::string reason;
            const std::uint64_t offset = number * 700001;
            equal.at(number) =
                source->read(offset, part, reason) &&
                std::equal(part.begin(), part.end(), bytes.begin() + static_cast<std::ptrdiff_t>(offset));
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(equal, (std::array<bool, 4>{true, true, true, true}));
}

TEST(file_source, reads_the_same_into_memory_of_any_alignment)
{
    const TEMPORARY_DIRECTORY directory;
    std::vector<std::uint8_t> bytes(200'000);
    for (std::size_t i = 0; i != bytes.size(); ++i) {
        bytes[i] = static_cast<std::uint8_t>(i * 2654435761U >> 16);
    }
    write_file(directory / "data.bin", bytes);
    std::string message;
    const auto source = FILE_SOURCE::open(directory / "data.bin", message);
    ASSERT_NE(source, nullptr) << message;
    IO_BLOCK block(bytes.size() + 64);
    for (std::size_t shift = 0; shift != 64; ++shift) {
        for (const std::size_t offset :
             {std::size_t{0}, std::size_t{1}, std::size_t{4096}, std::size_t{99'999}}) {
            for (const std::size_t length : {8191, 8192, 32'768, 32'769, 100'001}) {
                const std::span<std::uint8_t> into(block.data() + shift, length);
                std::fill(block.begin(), block.end(), std::uint8_t{0});
                ASSERT_TRUE(source->read(offset, into, message)) << message;
                ASSERT_TRUE(
                    std::equal(into.begin(), into.end(), bytes.begin() + static_cast<std::ptrdiff_t>(offset)))
                    << shift << " " << offset << " " << length;
                ASSERT_EQ(block[shift + length], 0);
            }
        }
    }
}

TEST(file_source, refuses_what_is_no_regular_file_without_waiting)
{
    const TEMPORARY_DIRECTORY directory;
    ASSERT_EQ(mkfifo((directory / "pipe").c_str(), 0600), 0);
    const std::pair<std::string, std::string> rows[] = {
        {directory.path(), "it is a directory"},
        {directory / "pipe", "it is a pipe"},
        {"/dev/zero", "it is a device"},
        {directory / "absent.sof", "no such file"},
        {"", "no such file"},
        {directory / std::string(300, 'n'), "the name is too long"},
    };
    for (const auto& [path, reason] : rows) {
        std::string message;
        EXPECT_EQ(FILE_SOURCE::open(path, message), nullptr);
        EXPECT_EQ(message, path + " cannot be opened: " + reason + ".");
    }
}

TEST(file_source, names_a_file_that_may_not_be_read)
{
    const TEMPORARY_DIRECTORY directory;
    fs::permissions(directory.path(), fs::perms(0755));
    const std::string path = directory / "top.sof";
    write_file(path, std::string("x"));
    fs::permissions(path, fs::perms(0));
    EXPECT_EQ(in_child_without_privileges([&path] {
                  std::string message;
                  EXPECT_EQ(FILE_SOURCE::open(path, message), nullptr);
                  return message;
              }),
              path + " cannot be opened: permission denied.");
}

TEST(file_source, notices_a_file_that_shrinks)
{
    const TEMPORARY_DIRECTORY directory;
    write_file(directory / "top.rbf", std::string("abcdef"));
    std::string message;
    const auto source = FILE_SOURCE::open(directory / "top.rbf", message);
    ASSERT_NE(source, nullptr) << message;
    fs::resize_file(directory / "top.rbf", 3);
    std::vector<std::uint8_t> bytes(6);
    EXPECT_FALSE(source->read(0, bytes, message));
    EXPECT_EQ(message, directory / "top.rbf" + " was shortened while it was being read.");
}

TEST(file_source, refuses_ranges_beyond_its_end_however_large)
{
    const TEMPORARY_DIRECTORY directory;
    write_file(directory / "top.rbf", std::string("abc"));
    std::string message;
    const auto source = FILE_SOURCE::open(directory / "top.rbf", message);
    ASSERT_NE(source, nullptr) << message;
    std::vector<std::uint8_t> bytes(2);
    EXPECT_FALSE(source->read(2, bytes, message));
    EXPECT_EQ(message, directory / "top.rbf" + " has 3 bytes, but 2 bytes are wanted from offset 2 on.");
    EXPECT_FALSE(source->read(UINT64_MAX, bytes, message));
    EXPECT_FALSE(source->read(UINT64_MAX - 1, bytes, message));
    EXPECT_TRUE(source->read(3, {}, message));
}

TEST(file_source, opens_a_file_of_many_gigabytes_without_reading_it)
{
    const TEMPORARY_DIRECTORY directory;
    write_file(directory / "huge.sof", std::string("x"));
    constexpr std::uint64_t size = 5ULL << 30;
    fs::resize_file(directory / "huge.sof", size);
    std::string message;
    const auto source = FILE_SOURCE::open(directory / "huge.sof", message);
    ASSERT_NE(source, nullptr) << message;
    EXPECT_EQ(source->size(), size);
    std::vector<std::uint8_t> bytes(2, 7);
    EXPECT_TRUE(source->read(size - 2, bytes, message)) << message;
    EXPECT_EQ(bytes, (std::vector<std::uint8_t>{0, 0}));
}

TEST(file_source, adopts_only_regular_files)
{
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    std::string message;
    EXPECT_EQ(FILE_SOURCE::adopt(ends[0], "spool", message), nullptr);
    EXPECT_EQ(message, "spool cannot be opened: it is a pipe.");
    EXPECT_EQ(fcntl(ends[0], F_GETFD), -1) << "the descriptor is closed";
    close(ends[1]);
    EXPECT_EQ(FILE_SOURCE::adopt(-1, "spool", message), nullptr);
    EXPECT_EQ(message, "spool cannot be opened: bad file descriptor.");
}

TEST(memory_source, reads_within_its_bytes_alone)
{
    const MEMORY_SOURCE source({1, 2, 3});
    std::vector<std::uint8_t> bytes(2);
    std::string message;
    EXPECT_TRUE(source.read(1, bytes, message));
    EXPECT_EQ(bytes, (std::vector<std::uint8_t>{2, 3}));
    EXPECT_FALSE(source.read(2, bytes, message));
    EXPECT_EQ(message, "The data has 3 bytes, but 2 bytes are wanted from offset 2 on.");
}

TEST(range_source, is_a_window_on_its_base)
{
    const auto base = std::make_shared<MEMORY_SOURCE>(std::vector<std::uint8_t>{1, 2, 3, 4, 5});
    const RANGE_SOURCE range(base, 1, 3);
    EXPECT_EQ(all_of(range), (std::vector<std::uint8_t>{2, 3, 4}));
    std::vector<std::uint8_t> bytes(2);
    std::string message;
    EXPECT_FALSE(range.read(2, bytes, message));
    EXPECT_EQ(all_of(RANGE_SOURCE(base, 5, 0)), std::vector<std::uint8_t>{});
    EXPECT_INTERNAL_ERROR(RANGE_SOURCE(base, 3, 3), "offset + length <= base->size()");
    EXPECT_INTERNAL_ERROR(RANGE_SOURCE(base, UINT64_MAX, 2), "offset + length <= base->size()");
}

TEST(concatenated_source, reads_across_its_parts)
{
    CONCATENATED_SOURCE source;
    EXPECT_EQ(all_of(source), std::vector<std::uint8_t>{});
    std::vector<std::uint8_t> expected;
    for (std::size_t length : {0U, 1U, 5U, 0U, 1000U, 3U, 0U}) {
        const auto part = pattern(length);
        source.append(std::make_shared<MEMORY_SOURCE>(part));
        expected.insert(expected.end(), part.begin(), part.end());
    }
    ASSERT_EQ(source.size(), expected.size());
    EXPECT_EQ(all_of(source), expected);
    std::string message;
    for (std::size_t offset = 0; offset <= expected.size(); offset += 3) {
        std::vector<std::uint8_t> bytes(std::min<std::size_t>(8, expected.size() - offset));
        ASSERT_TRUE(source.read(offset, bytes, message)) << message;
        EXPECT_TRUE(
            std::equal(bytes.begin(), bytes.end(), expected.begin() + static_cast<std::ptrdiff_t>(offset)));
    }
    std::vector<std::uint8_t> beyond(1);
    EXPECT_FALSE(source.read(expected.size(), beyond, message));
}

TEST(concatenated_source, passes_on_why_a_part_cannot_be_read)
{
    const TEMPORARY_DIRECTORY directory;
    write_file(directory / "part", std::string("abc"));
    std::string message;
    CONCATENATED_SOURCE source;
    source.append(std::make_shared<MEMORY_SOURCE>(std::vector<std::uint8_t>{1}));
    source.append(FILE_SOURCE::open(directory / "part", message));
    fs::resize_file(directory / "part", 0);
    MEMORY_SINK sink;
    EXPECT_FALSE(copy_source(source, sink, message));
    EXPECT_EQ(message, directory / "part" + " was shortened while it was being read.");
}

class FULL_SINK final : public BYTE_SINK
{
public:
    bool write(std::span<const std::uint8_t>, std::string& message) override
    {
        message = "full";
        return ++calls < 2;
    }
    int calls = 0;
};

TEST(copy_source, stops_at_the_first_block_that_is_not_taken)
{
    const MEMORY_SOURCE source(pattern(4 * IO_BLOCK_SIZE));
    FULL_SINK sink;
    std::string message;
    EXPECT_FALSE(copy_source(source, sink, message));
    EXPECT_EQ(sink.calls, 2);
    EXPECT_EQ(message, "full");
}

TEST(crc32, gives_the_published_check_value)
{
    const std::string digits = "123456789";
    const std::span<const std::uint8_t> bytes(reinterpret_cast<const std::uint8_t*>(digits.data()), 9);
    EXPECT_EQ(crc32(bytes), 0xCBF43926U);
    EXPECT_EQ(crc32(bytes.subspan(4), crc32(bytes.first(4))), 0xCBF43926U);
    EXPECT_EQ(crc32({}), 0U);
    EXPECT_EQ(crc32({}, 0x1234U), 0x1234U);
}

TEST(crc32, of_a_source_equals_that_of_its_bytes)
{
    const auto bytes = pattern(2 * IO_BLOCK_SIZE + 5);
    std::uint32_t crc = 0;
    std::string message;
    ASSERT_TRUE(crc32_of_source(MEMORY_SOURCE(bytes), crc, message)) << message;
    EXPECT_EQ(crc, crc32(bytes));
}

TEST(same_file, goes_by_the_file_and_not_by_the_text)
{
    const TEMPORARY_DIRECTORY directory;
    write_file(directory / "top.rbf", std::string("x"));
    write_file(directory / "other.rbf", std::string("x"));
    fs::create_directory(directory / "sub");
    fs::create_symlink("top.rbf", directory / "link.rbf");
    fs::create_hard_link(directory / "top.rbf", directory / "hard.rbf");
    fs::create_symlink("../sub", directory / "sub/again");
    EXPECT_TRUE(same_file(directory / "top.rbf", directory / "sub/../top.rbf"));
    EXPECT_TRUE(same_file(directory / "top.rbf", directory / "link.rbf"));
    EXPECT_TRUE(same_file(directory / "top.rbf", directory / "hard.rbf"));
    EXPECT_FALSE(same_file(directory / "top.rbf", directory / "other.rbf"));
    EXPECT_FALSE(same_file(directory / "top.rbf", directory / "absent.rbf"));
}

TEST(same_file, finds_two_names_of_a_file_to_come)
{
    const TEMPORARY_DIRECTORY directory;
    fs::create_directory(directory / "sub");
    fs::create_symlink("sub", directory / "linked");
    fs::create_symlink("sub/new.rbf", directory / "dangling");
    EXPECT_TRUE(same_file(directory / "sub/new.rbf", directory / "linked/new.rbf"));
    EXPECT_TRUE(same_file(directory / "sub/new.rbf", directory / "dangling"));
    EXPECT_FALSE(same_file(directory / "sub/new.rbf", directory / "sub/New.rbf"));
    EXPECT_FALSE(same_file(directory / "sub/new.rbf", directory / "new.rbf"));
    EXPECT_FALSE(same_file(directory / "absent/new.rbf", directory / "absent/new.rbf/../new.rbf"));
}

} // namespace
