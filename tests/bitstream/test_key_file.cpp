#include "bitstream_test_support.h"
#include "memory_scan.h"
#include "msg_service.h"
#include "temporary_directory.h"
#include "vek_key_file_assistant.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using KEYS = std::map<std::string, std::string>;

namespace
{

class key_file : public testing::Test
{
protected:
    bool parse(const std::string& text, unsigned bits = 32)
    {
        write_file(m_path, text);
        return VEK_KEY_FILE_ASSISTANT::parse_key_file(m_path, bits, m_keys);
    }

    /// The one message of a refusal, without the words before the reason.
    std::string refusal(const std::string& text, unsigned bits = 32)
    {
        m_reported.clear();
        const KEYS before = m_keys;
        EXPECT_FALSE(parse(text, bits));
        EXPECT_EQ(m_keys, before) << "a refusal leaves the keys alone";
        EXPECT_EQ(m_reported.size(), 1U);
        const std::string start = "File " + m_path + " is corrupted. ";
        EXPECT_THAT(m_reported.at(0).text, testing::StartsWith(start));
        EXPECT_EQ(m_reported.at(0).severity, MSG_SEVERITY::ERROR);
        return m_reported.at(0).text.substr(start.size());
    }

    TEMPORARY_DIRECTORY m_directory;
    std::string m_path = m_directory / "board.key";
    KEYS m_keys;
    std::vector<MSG_RECORD> m_reported;
    MSG_SINK_SCOPE m_sink{[this](const MSG_RECORD& record) { m_reported.push_back(record); }};
};

TEST_F(key_file, gives_names_and_digits_as_they_stand)
{
    EXPECT_TRUE(parse("first 0123abCD\nSecond_2\t FFFFFFFF\n"));
    EXPECT_EQ(m_keys, (KEYS{{"first", "0123abCD"}, {"Second_2", "FFFFFFFF"}}));
    EXPECT_TRUE(m_reported.empty());
}

TEST_F(key_file, replaces_what_the_map_held)
{
    m_keys = {{"old", "11111111"}};
    EXPECT_TRUE(parse("new 22222222"));
    EXPECT_EQ(m_keys, (KEYS{{"new", "22222222"}}));
}

TEST_F(key_file, passes_over_comments_and_blank_lines)
{
    EXPECT_TRUE(parse("# keys\n\n  \t\n  a 00000001  # the first\n#b 00000002\n"));
    EXPECT_EQ(m_keys, (KEYS{{"a", "00000001"}}));
}

TEST_F(key_file, takes_windows_line_ends_and_a_byte_order_mark)
{
    EXPECT_TRUE(parse("\xEF\xBB\xBF# keys\r\na 00000001\r\n\r\nb 00000002"));
    EXPECT_EQ(m_keys, (KEYS{{"a", "00000001"}, {"b", "00000002"}}));
    EXPECT_TRUE(parse("\xEF\xBB\xBF"
                      "c 00000003"));
    EXPECT_EQ(m_keys, (KEYS{{"c", "00000003"}}));
}

TEST_F(key_file, a_file_without_keys_is_good)
{
    EXPECT_TRUE(parse(""));
    EXPECT_TRUE(parse("# nothing\n"));
    EXPECT_TRUE(m_keys.empty());
    EXPECT_TRUE(m_reported.empty());
}

TEST_F(key_file, names_differ_by_case)
{
    EXPECT_TRUE(parse("key 00000001\nKEY 00000002\n"));
    EXPECT_EQ(m_keys.size(), 2U);
}

TEST_F(key_file, takes_keys_of_the_length_asked_for)
{
    EXPECT_TRUE(parse("a " + std::string(64, 'A') + "\n", 256));
    EXPECT_EQ(m_keys.at("a"), std::string(64, 'A'));
    EXPECT_EQ(refusal("a " + std::string(63, 'A') + "\n", 256),
              "Line 1 has a key of 63 digits; this device takes 64.");
    EXPECT_EQ(refusal("# long\na " + std::string(65, 'A') + "\n", 256),
              "Line 2 has a key of 65 digits; this device takes 64.");
    EXPECT_EQ(refusal("a 0\n", 0), "Line 1 has a key of 1 digits; this device takes 0.");
}

TEST_F(key_file, refuses_bad_digits_with_line_and_place)
{
    EXPECT_EQ(refusal("a 00000001\r\n\r\nb 0000g002\r\n"),
              "Line 3 has a key with a character that is no hexadecimal digit, at place 5 of the key.");
    EXPECT_EQ(refusal("a 0x000001"),
              "Line 1 has a key with a character that is no hexadecimal digit, at place 2 of the key.");
    EXPECT_EQ(refusal(std::string("a 000\0"
                                  "0001",
                                  10)),
              "Line 1 has a key with a character that is no hexadecimal digit, at place 4 of the key.");
}

TEST_F(key_file, refuses_a_name_that_occurs_twice)
{
    EXPECT_EQ(refusal("a 00000001\nb 00000002\na 00000003\n"), "Line 3 repeats the key name of line 1.");
}

TEST_F(key_file, refuses_lines_of_another_shape)
{
    const std::string bad_name =
        " does not begin with a key name of at most 64 letters, digits and underscores.";
    EXPECT_EQ(refusal("a-b 00000001\n"), "Line 1" + bad_name);
    EXPECT_EQ(refusal("\xC3\xA4 00000001\n"), "Line 1" + bad_name);
    EXPECT_EQ(refusal(std::string(65, 'n') + " 00000001\n"), "Line 1" + bad_name);
    EXPECT_EQ(refusal("a\n"), "Line 1 has a key name but no key.");
    EXPECT_EQ(refusal("a # 00000001\n"), "Line 1 has a key name but no key.");
    EXPECT_EQ(refusal("a 00000001 00000002\n"), "Line 1 has more than a name and a key.");
    EXPECT_EQ(refusal("a 0000 0001\n"), "Line 1 has more than a name and a key.");
}

TEST_F(key_file, one_bad_line_refuses_the_whole_file)
{
    m_keys = {{"kept", "12345678"}};
    refusal("a 00000001\nb 1\n");
    EXPECT_EQ(m_keys, (KEYS{{"kept", "12345678"}}));
}

TEST_F(key_file, no_message_repeats_what_a_line_holds)
{
    const std::string secret = "DEADBEEF";
    for (const std::string& text :
         {"a " + secret + "0\n", "a " + secret + "x\n", secret + " a-b\n",
          "a " + secret + " " + secret + "\n", "a " + secret + "\na " + secret + "\n", secret + "\n",
          "- " + secret + "\n", secret + " 00000001\n" + secret + " 00000001\n"}) {
        refusal(text);
        EXPECT_EQ(m_reported.at(0).text.find(secret), std::string::npos) << m_reported.at(0).text;
    }
}

TEST_F(key_file, refuses_rubbish_and_large_files)
{
    std::mt19937 random(1);
    const BYTES rubbish = random_bytes(random, 10 * 1024 * 1024);
    EXPECT_EQ(refusal(std::string(rubbish.begin(), rubbish.end())),
              "It is larger than 1048576 bytes, the limit of a key file.");
    EXPECT_EQ(refusal(std::string(rubbish.begin(), rubbish.begin() + 100000)),
              "Line 1 does not begin with a key name of at most 64 letters, digits and underscores.");
    EXPECT_EQ(refusal(std::string(1024 * 1024 + 1, '\n')),
              "It is larger than 1048576 bytes, the limit of a key file.");
    EXPECT_TRUE(parse(std::string(1024 * 1024, '\n')));
}

TEST_F(key_file, reports_what_cannot_be_read)
{
    const auto reported = [&](const std::string& path) {
        m_reported.clear();
        EXPECT_FALSE(VEK_KEY_FILE_ASSISTANT::parse_key_file(path, 32, m_keys));
        EXPECT_EQ(m_reported.size(), 1U);
        return m_reported.at(0).text;
    };
    EXPECT_EQ(reported(m_path), "The " + m_path + " file does not exist.");
    EXPECT_EQ(reported(""), "The  file does not exist.");
    EXPECT_THAT(reported(m_directory.path()),
                testing::StartsWith("Can't save or open file " + m_directory.path() + ": "));
    ASSERT_EQ(::mkfifo(m_path.c_str(), 0600), 0);
    EXPECT_THAT(reported(m_path), testing::StartsWith("Can't save or open file " + m_path + ": "));
}

TEST_F(key_file, no_copy_of_a_key_stays_in_memory)
{
    const int file = ::open(m_path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    ASSERT_GE(file, 0);
    ASSERT_EQ(::write(file, "a ", 2), 2);
    const SECRET_DIGITS secret(1);
    for (int place = 0; place < SECRET_DIGITS::COUNT; ++place) {
        const char digit = secret.digit(place);
        ASSERT_EQ(::write(file, &digit, 1), 1);
    }
    // A copy is made and wiped on each way: accepted and refused. A piece of it may have stood in a register
    // when the dynamic linker looked up a function, and lies on the stack for a while; the whole key does
    // not.
    const auto copies = [&secret] { return count_in_memory(secret, SECRET_DIGITS::COUNT); };
    EXPECT_TRUE(VEK_KEY_FILE_ASSISTANT::parse_key_file(m_path, 256, m_keys));
    EXPECT_EQ(copies(), 1) << "the one that the caller holds";
    VEK_KEY_FILE_ASSISTANT::wipe_keys(m_keys);
    EXPECT_TRUE(m_keys.empty());
    EXPECT_EQ(copies(), 0);
    ASSERT_EQ(::write(file, "\nb 1\n", 5), 5);
    EXPECT_FALSE(VEK_KEY_FILE_ASSISTANT::parse_key_file(m_path, 256, m_keys));
    EXPECT_EQ(copies(), 0);
    ::close(file);
}

TEST_F(key_file, mutations_are_taken_or_refused_with_one_message)
{
    std::mt19937 random(2);
    const std::string good = "# keys\r\nfirst 01234567\n\nsecond 89abcdef # spare\n";
    for (int round = 0; round < 500; ++round) {
        std::string text = good;
        for (auto i = 1 + random() % 3; i > 0; --i) {
            const std::size_t at = random() % text.size();
            if (random() % 2 == 0)
                text[at] = static_cast<char>(random());
            else
                text.erase(at, 1 + random() % 5);
        }
        m_reported.clear();
        m_keys.clear();
        if (parse(text)) {
            EXPECT_TRUE(m_reported.empty());
            for (const auto& [name, key] : m_keys)
                ASSERT_EQ(key.size(), 8U);
        } else {
            ASSERT_EQ(m_reported.size(), 1U);
            ASSERT_THAT(m_reported[0].text, testing::HasSubstr(" is corrupted. Line "));
        }
    }
}

} // namespace
