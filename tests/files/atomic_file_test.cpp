#include "atomic_file.h"
#include "fault_injection.h"
#include "in_child.h"
#include "internal_error_trap.h"
#include "temporary_directory.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

namespace fs = std::filesystem;
using NAMES = std::vector<std::string>;

constexpr std::size_t BLOCK = 4096;

/// With and without unnamed files in the file system.
class ATOMIC : public testing::TestWithParam<bool>
{
protected:
    void SetUp() override { m_faults.no_unnamed_files = GetParam(); }

    std::unique_ptr<ATOMIC_FILE> create(const std::string& path, unsigned permissions = 0644)
    {
        m_message.clear();
        return ATOMIC_FILE::create(path, permissions, m_message);
    }

    bool write(ATOMIC_FILE& file, const std::string& text)
    {
        return file.write({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()}, m_message);
    }

    /// The whole way; the text is written in blocks.
    bool replace(const std::string& path, const std::string& text)
    {
        const auto file = create(path);
        if (file == nullptr) {
            return false;
        }
        for (std::size_t start = 0; start < text.size(); start += BLOCK) {
            if (!write(*file, text.substr(start, BLOCK))) {
                std::string kept = m_message;
                EXPECT_FALSE(file->commit(m_message));
                m_message = kept;
                return false;
            }
        }
        return file->commit(m_message);
    }

    /// The old file is as it was, and nothing else is in the directory.
    void expect_only_the_old_file()
    {
        EXPECT_EQ(m_directory.entries(), (NAMES{"top.rbf"}));
        EXPECT_EQ(read_text_file(m_directory / "top.rbf"), "old");
    }

    TEMPORARY_DIRECTORY m_directory;
    FAULT_INJECTION m_faults;
    std::string m_message;
};

INSTANTIATE_TEST_SUITE_P(file_systems, ATOMIC, testing::Bool(), [](const auto& each) {
    return each.param ? "without_unnamed_files" : "with_unnamed_files";
});

TEST_P(ATOMIC, appears_under_its_name_when_it_is_committed)
{
    const std::string path = m_directory / "top.rbf";
    const auto file = create(path);
    ASSERT_NE(file, nullptr) << m_message;
    ASSERT_TRUE(write(*file, "ab"));
    ASSERT_TRUE(write(*file, "cd"));
    EXPECT_EQ(file->size(), 4u);
    EXPECT_FALSE(fs::exists(path));
    ASSERT_TRUE(file->commit(m_message)) << m_message;
    EXPECT_EQ(read_text_file(path), "abcd");
    EXPECT_EQ(m_directory.entries(), (NAMES{"top.rbf"}));
}

TEST_P(ATOMIC, replaces_the_old_file_in_one_step)
{
    write_file(m_directory / "top.rbf", std::string("old"));
    const auto file = create(m_directory / "top.rbf");
    ASSERT_NE(file, nullptr) << m_message;
    ASSERT_TRUE(write(*file, "new"));
    EXPECT_EQ(read_text_file(m_directory / "top.rbf"), "old");
    ASSERT_TRUE(file->commit(m_message)) << m_message;
    EXPECT_EQ(read_text_file(m_directory / "top.rbf"), "new");
    EXPECT_EQ(m_directory.entries(), (NAMES{"top.rbf"}));
}

TEST_P(ATOMIC, leaves_nothing_behind_without_a_commit)
{
    write_file(m_directory / "top.rbf", std::string("old"));
    {
        const auto file = create(m_directory / "top.rbf");
        ASSERT_NE(file, nullptr) << m_message;
        ASSERT_TRUE(write(*file, "new"));
    }
    expect_only_the_old_file();
}

TEST_P(ATOMIC, can_be_written_back_and_read_before_the_commit)
{
    const auto file = create(m_directory / "top.pof");
    ASSERT_NE(file, nullptr) << m_message;
    ASSERT_TRUE(write(*file, "headBODY"));
    const std::uint8_t head[] = {'H', 'E', 'A', 'D'};
    ASSERT_TRUE(file->write_at(0, head, m_message));
    const auto source = file->read_back(m_message);
    ASSERT_NE(source, nullptr) << m_message;
    MEMORY_SINK sink;
    ASSERT_TRUE(copy_source(*source, sink, m_message)) << m_message;
    EXPECT_EQ(std::string(sink.bytes().begin(), sink.bytes().end()), "HEADBODY");
    EXPECT_INTERNAL_ERROR(file->write_at(5, head, m_message), "offset + bytes.size() <= size()");
    EXPECT_INTERNAL_ERROR(file->write_at(UINT64_MAX, head, m_message), "offset + bytes.size() <= size()");
    ASSERT_TRUE(file->commit(m_message)) << m_message;
    EXPECT_INTERNAL_ERROR(file->write(head, m_message), "file is not committed");
    EXPECT_EQ(read_text_file(m_directory / "top.pof"), "HEADBODY");
}

TEST_P(ATOMIC, has_the_permissions_asked_for_whatever_the_old_file_had)
{
    write_file(m_directory / "top.ekp", std::string("old"));
    const auto file = create(m_directory / "top.ekp", 0600);
    ASSERT_NE(file, nullptr) << m_message;
    ASSERT_TRUE(file->commit(m_message)) << m_message;
    EXPECT_EQ(fs::status(m_directory / "top.ekp").permissions(), fs::perms(0600));
}

TEST_P(ATOMIC, survives_short_and_interrupted_writes)
{
    m_faults.longest_write = 1000;
    m_faults.interrupts = 3;
    const std::string text(10 * BLOCK, 'x');
    ASSERT_TRUE(replace(m_directory / "top.rbf", text)) << m_message;
    EXPECT_EQ(read_text_file(m_directory / "top.rbf"), text);
}

TEST_P(ATOMIC, a_full_disk_at_any_block_leaves_the_old_file)
{
    write_file(m_directory / "top.rbf", std::string("old"));
    for (std::uint64_t block = 0; block < 8; ++block) {
        for (const std::uint64_t odd : {0, 1, 4095}) {
            m_faults.write_error = ENOSPC;
            m_faults.writable_bytes = block * BLOCK + odd;
            EXPECT_FALSE(replace(m_directory / "top.rbf", std::string(8 * BLOCK, 'n')));
            EXPECT_EQ(m_message, m_directory / "top.rbf" + " cannot be written: the disk is full; free some "
                                                           "space and try again.");
            expect_only_the_old_file();
        }
    }
}

TEST_P(ATOMIC, an_error_of_the_disk_in_any_step_before_the_rename_leaves_the_old_file)
{
    write_file(m_directory / "top.rbf", std::string("old"));
    int FAULT_INJECTION::*const steps[] = {&FAULT_INJECTION::file_sync_error, &FAULT_INJECTION::rename_error};
    for (int FAULT_INJECTION::*const step : steps) {
        m_faults.*step = EIO;
        EXPECT_FALSE(replace(m_directory / "top.rbf", "new"));
        EXPECT_EQ(m_message, m_directory / "top.rbf" + " cannot be written: the disk reports an error.");
        m_faults.*step = 0;
        expect_only_the_old_file();
    }
    EXPECT_TRUE(replace(m_directory / "top.rbf", "new")) << m_message;
}

TEST_P(ATOMIC, says_that_the_file_stands_but_may_not_last_when_the_directory_cannot_be_flushed)
{
    m_faults.directory_sync_error = EIO;
    EXPECT_FALSE(replace(m_directory / "top.rbf", "new"));
    EXPECT_EQ(m_message, m_directory / "top.rbf" +
                             " is written, but may be lost when the power fails now: the "
                             "disk reports an error.");
    EXPECT_EQ(read_text_file(m_directory / "top.rbf"), "new");
    m_faults.directory_sync_error = EINVAL;
    EXPECT_TRUE(replace(m_directory / "top.rbf", "new")) << m_message;
}

TEST_P(ATOMIC, does_not_commit_data_that_never_reached_the_file)
{
    write_file(m_directory / "top.rbf", std::string("old"));
    m_faults.swallow_writes = true;
    EXPECT_FALSE(replace(m_directory / "top.rbf", "new"));
    expect_only_the_old_file();
}

TEST_P(ATOMIC, follows_symbolic_links_and_keeps_them)
{
    fs::create_directory(m_directory / "real");
    fs::create_symlink("real/top.rbf", m_directory / "link.rbf");
    fs::create_symlink("link.rbf", m_directory / "chain.rbf");
    ASSERT_TRUE(replace(m_directory / "chain.rbf", "first")) << m_message;
    EXPECT_EQ(read_text_file(m_directory / "real/top.rbf"), "first");
    ASSERT_TRUE(replace(m_directory / "link.rbf", "second")) << m_message;
    EXPECT_EQ(read_text_file(m_directory / "real/top.rbf"), "second");
    EXPECT_TRUE(fs::is_symlink(m_directory / "link.rbf"));
    EXPECT_TRUE(fs::is_symlink(m_directory / "chain.rbf"));
    EXPECT_EQ(m_directory.entries(), (NAMES{"chain.rbf", "link.rbf", "real"}));
}

TEST_P(ATOMIC, leaves_other_hard_links_their_contents)
{
    write_file(m_directory / "top.rbf", std::string("old"));
    fs::create_hard_link(m_directory / "top.rbf", m_directory / "other.rbf");
    ASSERT_TRUE(replace(m_directory / "top.rbf", "new")) << m_message;
    EXPECT_EQ(read_text_file(m_directory / "top.rbf"), "new");
    EXPECT_EQ(read_text_file(m_directory / "other.rbf"), "old");
}

TEST_P(ATOMIC, refuses_a_target_that_is_no_regular_file)
{
    fs::create_directory(m_directory / "dir");
    ASSERT_EQ(mkfifo((m_directory / "pipe").c_str(), 0600), 0);
    fs::create_symlink("loop", m_directory / "loop");
    EXPECT_EQ(create(m_directory / "dir"), nullptr);
    EXPECT_EQ(m_message, m_directory / "dir" +
                             " cannot be written: there is a directory with this name. Choose "
                             "another name.");
    for (const std::string& path : {m_directory / "pipe", m_directory / "loop", std::string("/dev/null")}) {
        EXPECT_EQ(create(path), nullptr);
        EXPECT_EQ(m_message, path +
                                 " cannot be written: there is a pipe, socket, device or endless link with "
                                 "this name. Choose another name.");
    }
    EXPECT_TRUE(fs::is_fifo(m_directory / "pipe"));
    EXPECT_TRUE(fs::is_character_file("/dev/null"));
}

TEST_P(ATOMIC, refuses_a_pipe_that_comes_up_before_the_commit)
{
    const auto file = create(m_directory / "top.rbf");
    ASSERT_NE(file, nullptr) << m_message;
    ASSERT_EQ(mkfifo((m_directory / "top.rbf").c_str(), 0600), 0);
    EXPECT_FALSE(file->commit(m_message));
    EXPECT_TRUE(fs::is_fifo(m_directory / "top.rbf"));
}

TEST_P(ATOMIC, refuses_a_name_that_is_none)
{
    for (const char* const name : {"", ".", "..", "/", "dir/"}) {
        EXPECT_EQ(create(name), nullptr);
        EXPECT_EQ(m_message, "\"" + std::string(name) + "\" is no name for a file.");
    }
}

TEST_P(ATOMIC, names_a_missing_directory)
{
    EXPECT_EQ(create(m_directory / "absent/top.rbf"), nullptr);
    EXPECT_EQ(m_message, m_directory / "absent/top.rbf" + " cannot be written: the directory " +
                             m_directory.path() + "/absent does not exist.");
}

TEST_P(ATOMIC, names_a_directory_in_which_nothing_can_be_created)
{
    fs::permissions(m_directory.path(), fs::perms(0555));
    const std::string path = m_directory / "top.rbf";
    const std::string answer = in_child_without_privileges([this, &path] {
        EXPECT_EQ(create(path), nullptr);
        return m_message;
    });
    fs::permissions(m_directory.path(), fs::perms(0755));
    EXPECT_EQ(answer, path + " cannot be written: nothing can be created in the directory " +
                          m_directory.path() + ", permission denied.");
}

TEST_P(ATOMIC, refuses_a_write_protected_file)
{
    write_file(m_directory / "top.rbf", std::string("old"));
    fs::permissions(m_directory / "top.rbf", fs::perms(0444));
    fs::permissions(m_directory.path(), fs::perms(0777));
    const std::string path = m_directory / "top.rbf";
    const std::string answer = in_child_without_privileges([this, &path] {
        EXPECT_EQ(create(path), nullptr);
        return m_message;
    });
    EXPECT_EQ(answer, path + " cannot be written: it is write-protected.");
    expect_only_the_old_file();
}

TEST_P(ATOMIC, takes_the_longest_name_and_refuses_a_longer_one_at_once)
{
    const std::string longest(255, 'n');
    ASSERT_TRUE(replace(m_directory / longest, "new")) << m_message;
    EXPECT_EQ(m_directory.entries(), (NAMES{longest}));
    EXPECT_EQ(create(m_directory / (longest + "n")), nullptr);
    EXPECT_EQ(m_message, m_directory / (longest + "n") + " cannot be written: the name is too long.");
}

TEST_P(ATOMIC, works_in_a_directory_of_four_thousand_characters_and_any_bytes)
{
    std::string directory = m_directory.path();
    while (directory.size() < 3700) {
        directory += "/" + std::string(180, 'd') + "J\xFCrgen \xE6\x97\xA5";
        ASSERT_EQ(mkdir(directory.c_str(), 0755), 0);
    }
    const std::string path = directory + "/" + std::string(4000 - directory.size() - 1, 'f');
    ASSERT_TRUE(replace(path, "new")) << m_message;
    const auto source = FILE_SOURCE::open(path, m_message);
    ASSERT_NE(source, nullptr) << m_message;
    EXPECT_EQ(source->size(), 3u);
}

TEST_P(ATOMIC, takes_a_bare_name_in_the_current_directory)
{
    const std::string answer = in_child([this]() -> std::string {
        if (chdir(m_directory.path().c_str()) != 0) {
            return "chdir";
        }
        return replace("top.rbf", "new") ? "done" : m_message;
    });
    EXPECT_EQ(answer, "done");
    EXPECT_EQ(read_text_file(m_directory / "top.rbf"), "new");
}

TEST_P(ATOMIC, a_killed_process_leaves_no_file_under_the_name_and_the_sweep_removes_the_rest)
{
    std::unique_ptr<ATOMIC_FILE> file;
    const pid_t child = start_waiting_child([this, &file] {
        file = create(m_directory / "top.rbf");
        write(*file, "half");
    });
    ATOMIC_FILE::sweep_stale_files(m_directory.path());
    const NAMES hidden = m_directory.entries();
    EXPECT_EQ(hidden.size(), GetParam() ? 1u : 0u) << "a file in work is not swept";
    kill_child(child);
    EXPECT_EQ(m_directory.entries(), hidden);
    ATOMIC_FILE::sweep_stale_files(m_directory.path());
    EXPECT_EQ(m_directory.entries(), NAMES{});
}

TEST_P(ATOMIC, a_limit_on_file_sizes_leaves_the_old_file)
{
    write_file(m_directory / "top.rbf", std::string("old"));
    const std::string answer = in_child([this]() -> std::string {
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit = {3 * BLOCK + 100, 3 * BLOCK + 100};
        if (setrlimit(RLIMIT_FSIZE, &limit) != 0) {
            return "setrlimit";
        }
        return replace(m_directory / "top.rbf", std::string(8 * BLOCK, 'n')) ? "replaced" : m_message;
    });
    EXPECT_EQ(answer, m_directory / "top.rbf" +
                          " cannot be written: the file would be larger than is allowed "
                          "here.");
    expect_only_the_old_file();
}

/// Fills a file system of 1 MiB when the user may mount one; else a limit on file sizes has to do.
std::string fill_small_disk(const std::string& mount_point, const std::function<std::string()>& work)
{
    if (unshare(CLONE_NEWNS) == 0 && mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
        mount("none", mount_point.c_str(), "tmpfs", 0, "size=1m") == 0) {
        return work();
    }
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit = {1024 * 1024, 1024 * 1024};
    return setrlimit(RLIMIT_FSIZE, &limit) == 0 ? work() : "setrlimit";
}

TEST_P(ATOMIC, a_small_disk_that_fills_up_keeps_the_old_file_alone)
{
    const std::string answer = in_child([this] {
        return fill_small_disk(m_directory.path(), [this]() -> std::string {
            if (!replace(m_directory / "top.rbf", "old")) {
                return m_message;
            }
            if (replace(m_directory / "top.rbf", std::string(2 * 1024 * 1024, 'n'))) {
                return "two MiB on a disk of one";
            }
            expect_only_the_old_file();
            // What the failed file took is free again.
            return replace(m_directory / "top.rbf", std::string(900 * 1024, 'n')) ? "kept" : m_message;
        });
    });
    EXPECT_EQ(answer, "kept");
}

TEST(sweep, leaves_the_files_of_other_users)
{
    const TEMPORARY_DIRECTORY directory;
    const std::string path = directory / ".top.rbf.imagewright-0123456789abcdef.tmp";
    write_file(path, std::string("x"));
    // Where the test may not give a file away, there is none of another user to be met.
    const bool is_foreign = chown(path.c_str(), 65534, 65534) == 0;
    ATOMIC_FILE::sweep_stale_files(directory.path());
    EXPECT_EQ(fs::exists(path), is_foreign);
}

TEST(sweep, takes_only_names_of_its_own_kind)
{
    const TEMPORARY_DIRECTORY directory;
    const NAMES kept = {".imagewright-0123456789abcdef.tmp.bak", ".top.imagewright-0123456789abcde.tmp",
                        ".top.imagewright-0123456789abcdeg.tmp", "top.imagewright-0123456789abcdef.tmp",
                        "top.rbf"};
    for (const std::string& name : kept) {
        write_file(directory / name, std::string("x"));
    }
    write_file(directory / ".top.rbf.imagewright-0123456789abcdef.tmp", std::string("x"));
    fs::create_directory(directory / ".d.imagewright-0123456789abcdef.tmp");
    fs::create_symlink("top.rbf", directory / ".l.imagewright-0123456789abcdef.tmp");
    ATOMIC_FILE::sweep_stale_files(directory.path());
    NAMES left = kept;
    left.push_back(".d.imagewright-0123456789abcdef.tmp");
    left.push_back(".l.imagewright-0123456789abcdef.tmp");
    std::sort(left.begin(), left.end());
    EXPECT_EQ(directory.entries(), left);
    ATOMIC_FILE::sweep_stale_files(directory / "absent");
}

class SPOOL : public testing::TestWithParam<bool>
{
};

INSTANTIATE_TEST_SUITE_P(file_systems, SPOOL, testing::Bool(), [](const auto& each) {
    return each.param ? "without_unnamed_files" : "with_unnamed_files";
});

TEST_P(SPOOL, holds_data_without_a_name)
{
    const TEMPORARY_DIRECTORY directory;
    FAULT_INJECTION faults;
    faults.no_unnamed_files = GetParam();
    std::string message;
    auto spool = SPOOL_FILE::create(directory.path(), message);
    ASSERT_NE(spool, nullptr) << message;
    EXPECT_EQ(directory.entries(), NAMES{});
    const std::uint8_t bytes[] = {1, 2, 3};
    ASSERT_TRUE(spool->write(bytes, message)) << message;
    const auto source = spool->source(message);
    ASSERT_NE(source, nullptr) << message;
    EXPECT_EQ(spool->size(), 3u);
    spool.reset();
    MEMORY_SINK sink;
    ASSERT_TRUE(copy_source(*source, sink, message)) << message;
    EXPECT_EQ(sink.bytes(), (std::vector<std::uint8_t>{1, 2, 3}));
}

TEST_P(SPOOL, says_what_fails)
{
    const TEMPORARY_DIRECTORY directory;
    FAULT_INJECTION faults;
    faults.no_unnamed_files = GetParam();
    std::string message;
    EXPECT_EQ(SPOOL_FILE::create(directory / "absent", message), nullptr);
    EXPECT_EQ(message, "No temporary file can be created in the directory " + directory.path() +
                           "/absent: no such file.");
    const auto spool = SPOOL_FILE::create(directory.path(), message);
    ASSERT_NE(spool, nullptr) << message;
    faults.write_error = ENOSPC;
    faults.writable_bytes = 0;
    const std::uint8_t bytes[] = {1};
    EXPECT_FALSE(spool->write(bytes, message));
    EXPECT_EQ(message, "A temporary file in the directory " + directory.path() +
                           " cannot be written: the disk is full; free some space and try again.");
}

} // namespace
