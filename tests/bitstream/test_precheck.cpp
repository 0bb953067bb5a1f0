#include "bitstream_test_support.h"
#include "precheck.h"
#include "temporary_directory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <sys/stat.h>
#include <unistd.h>

using testing::HasSubstr;
using testing::StartsWith;

namespace
{

class precheck : public testing::Test
{
protected:
    std::string add(const std::string& name, const BYTES& bytes)
    {
        write_file(m_directory / name, bytes);
        return m_directory / name;
    }

    bool check(const std::string& path, bool must_be_bitstream = true)
    {
        return precheck_bitstream_file(path, must_be_bitstream, &m_device, m_device_name, m_message);
    }

    TEMPORARY_DIRECTORY m_directory;
    const PGM_DEVICE* m_device = nullptr;
    std::string m_device_name;
    std::string m_message;
};

TEST_F(precheck, finds_the_device_of_a_good_file)
{
    EXPECT_TRUE(check(add("top.sof", make_file(full_content())))) << m_message;
    EXPECT_EQ(m_device, &some_fpga());
    EXPECT_EQ(m_device_name, some_fpga().name);
}

TEST_F(precheck, finds_the_device_of_a_file_with_as_many_sections_as_there_may_be)
{
    TEST_CONTENT content = small_content({1});
    for (char a = 'A'; content.data.size() < 62; ++a)
        for (char b = 'A'; b <= 'J' && content.data.size() < 62; ++b)
            content.data.push_back({{'X', 'X', a, b}, {1}});
    EXPECT_TRUE(check(add("top.sof", make_file(content)))) << m_message;
    EXPECT_EQ(m_device, &some_fpga());
}

TEST_F(precheck, refuses_a_missing_file_by_its_name)
{
    EXPECT_FALSE(check(m_directory / "top.sof"));
    EXPECT_EQ(m_message, "top.sof cannot be opened: no such file.");
    EXPECT_EQ(m_device, nullptr);
}

TEST_F(precheck, refuses_what_is_no_bitstream)
{
    EXPECT_FALSE(check(add("top.sof", {'h', 'e', 'l', 'l', 'o'})));
    EXPECT_EQ(m_message, "top.sof is not a bitstream file.");
    EXPECT_FALSE(check(add("empty.sof", {})));
    EXPECT_EQ(m_message, "empty.sof is not a bitstream file.");
}

TEST_F(precheck, refuses_a_device_that_the_database_does_not_have)
{
    TEST_CONTENT content = full_content();
    content.device.name = "XX";
    EXPECT_FALSE(check(add("top.sof", make_file(content))));
    EXPECT_EQ(m_message, "top.sof is for device XX, which is not in the device database.");
    EXPECT_EQ(m_device, nullptr);
    EXPECT_EQ(m_device_name, "XX");
}

TEST_F(precheck, refuses_a_flash_device)
{
    TEST_CONTENT content = full_content();
    for (const PGM_DEVICE* device : PGM_DEVICE_INDEX::get_device_list())
        if (device->device_class == DEV_CLASS_CONFIG_FLASH)
            content.device.name = device->name;
    ASSERT_NE(content.device.name, full_content().device.name);
    EXPECT_FALSE(check(add("top.sof", make_file(content))));
    EXPECT_EQ(m_message,
              "top.sof is for device " + content.device.name + ", which is not in the device database.");
}

TEST_F(precheck, refuses_a_device_with_another_idcode)
{
    TEST_CONTENT content = full_content();
    content.device.idcode ^= 0x10000000;
    EXPECT_FALSE(check(add("top.sof", make_file(content))));
    EXPECT_EQ(m_message, "top.sof is for a device " + content.device.name +
                             " with another JTAG IDCODE than the device database has.");
}

TEST_F(precheck, refuses_a_truncated_file)
{
    BYTES file = make_file(full_content());
    const std::string size = std::to_string(file.size());
    file.pop_back();
    EXPECT_FALSE(check(add("top.sof", file)));
    EXPECT_EQ(m_message, "top.sof is cut off: it has " + std::to_string(file.size()) + " bytes instead of " +
                             size + ".");
}

TEST_F(precheck, refuses_a_flipped_bit_in_any_byte_of_the_header)
{
    const BYTES good = make_file(small_content(BYTES(100, 1)));
    const std::size_t header = good.size() - 32 - 100;
    for (std::size_t offset = 0; offset < header; ++offset) {
        BYTES file = good;
        file[offset] ^= 0x40;
        EXPECT_FALSE(check(add("top.sof", file))) << offset;
        EXPECT_THAT(m_message, StartsWith("top.sof ")) << offset;
        EXPECT_EQ(m_device, nullptr);
    }
}

TEST_F(precheck, does_not_read_the_data)
{
    BYTES file = make_file(small_content(BYTES(100000, 1)));
    file[50000] ^= 1;
    EXPECT_TRUE(check(add("top.sof", file))) << m_message;
}

TEST_F(precheck, never_opens_what_is_no_regular_file)
{
    ASSERT_EQ(::mkfifo((m_directory / "fifo.sof").c_str(), 0600), 0);
    ASSERT_EQ(::mkdir((m_directory / "directory.sof").c_str(), 0700), 0);
    for (const bool must_be_bitstream : {false, true}) {
        EXPECT_FALSE(check(m_directory / "fifo.sof", must_be_bitstream));
        EXPECT_THAT(m_message, StartsWith("fifo.sof cannot be opened: "));
        EXPECT_FALSE(check(m_directory / "directory.sof", must_be_bitstream));
        EXPECT_THAT(m_message, StartsWith("directory.sof cannot be opened: "));
        EXPECT_FALSE(check("/dev/zero", must_be_bitstream));
        EXPECT_THAT(m_message, StartsWith("zero cannot be opened: "));
    }
}

TEST_F(precheck, refuses_a_file_that_may_not_be_read)
{
    if (::geteuid() == 0) {
        // Root reads everything, so the question is asked by another user, in a process of its own.
        const std::string path = add("top.sof", make_file(full_content()));
        ASSERT_EQ(::chmod(path.c_str(), 0), 0);
        ASSERT_EQ(::chmod(m_directory.path().c_str(), 0755), 0);
        EXPECT_EXIT(
            {
                const bool dropped = ::setgid(65534) == 0 && ::setuid(65534) == 0;
                const bool refused = dropped && !check(path);
                ::_exit(refused && m_message == "top.sof cannot be opened: permission denied." ? 0 : 1);
            },
            testing::ExitedWithCode(0), "");
        return;
    }
    const std::string path = add("top.sof", make_file(full_content()));
    ASSERT_EQ(::chmod(path.c_str(), 0), 0);
    EXPECT_FALSE(check(path));
    EXPECT_EQ(m_message, "top.sof cannot be opened: permission denied.");
}

TEST_F(precheck, lets_raw_data_pass_where_no_bitstream_is_asked_for)
{
    EXPECT_TRUE(check(add("data.hex", {':', '0'}), false)) << m_message;
    EXPECT_EQ(m_device, nullptr);
    EXPECT_TRUE(check(add("data.bin", {}), false)) << m_message;
    EXPECT_FALSE(check(m_directory / "none.hex", false));
    EXPECT_EQ(m_message, "none.hex cannot be opened: no such file.");
}

TEST_F(precheck, judges_a_bitstream_by_its_content_or_its_extension)
{
    EXPECT_FALSE(check(add("top.sof", {1, 2, 3}), false));
    EXPECT_EQ(m_message, "top.sof is not a bitstream file.");
    EXPECT_FALSE(check(add("part.PMSF", {1, 2, 3}), false));
    EXPECT_TRUE(check(add("top.bin", make_file(full_content())), false)) << m_message;
    EXPECT_EQ(m_device, &some_fpga());
}

TEST_F(precheck, reads_names_with_blanks_quotes_and_foreign_letters)
{
    const std::string path = add("a \"b\" \xC3\xA4.sof", make_file(full_content()));
    EXPECT_TRUE(check(path)) << m_message;
    ASSERT_EQ(::unlink(path.c_str()), 0);
    EXPECT_FALSE(check(path));
    EXPECT_EQ(m_message, "a \"b\" \xC3\xA4.sof cannot be opened: no such file.");
}

TEST_F(precheck, refuses_a_path_of_4000_characters)
{
    const std::string name(4000, 'a');
    EXPECT_FALSE(check(m_directory / name));
    EXPECT_EQ(m_message, name + " cannot be opened: the name is too long.");
}

TEST_F(precheck, of_a_thousand_files_fits_into_a_frame)
{
    const std::string path = add("top.sof", make_file(full_content()));
    ASSERT_TRUE(check(path)) << m_message;
    // The fastest of some rounds: what the machine does besides is not what is measured.
    auto fastest = std::chrono::steady_clock::duration::max();
    for (int round = 0; round < 5; ++round) {
        const auto start = std::chrono::steady_clock::now();
        for (int i = 0; i < 1000; ++i)
            check(path);
        fastest = std::min(fastest, std::chrono::steady_clock::now() - start);
    }
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    EXPECT_LT(fastest, std::chrono::milliseconds(300));
#else
    EXPECT_LT(fastest, std::chrono::milliseconds(32));
#endif
    RecordProperty("microseconds",
                   static_cast<int>(std::chrono::duration_cast<std::chrono::microseconds>(fastest).count()));
}

} // namespace
