#include "child_process.h"
#include "command_run.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>

namespace
{

using testing::HasSubstr;
using testing::Not;

constexpr const char* NONE_IS_GIVEN = "holds a private key under a password, and no password file is named;";

/// A setup whose bitstream is signed with a key under a password.
class PASSWORD : public testing::Test
{
protected:
    void SetUp() override
    {
        write_secret("password", "correct horse\n");
        const CHILD_RESULT key = run_program(
            {"openssl", "genpkey", "-algorithm", "EC", "-pkeyopt", "ec_paramgen_curve:P-384", "-aes256",
             "-pass", "file:" + m_board.path("password"), "-out", m_board.path("key.pem")});
        ASSERT_EQ(key.exit_code, 0) << key.err;
        m_setup = m_board.setup(
            "signed.vek", "ASX4",
            element("BITSTREAMS",
                    "<BITSTREAM id=\"B\"><PATH signing=\"ON\" signing_pem_file=\"" + m_board.path("key.pem") +
                        "\">" + m_board.bitstream("top.sof", "ZR9A012", "ASX4") + "</PATH></BITSTREAM>") +
                element("OUTPUT_FILES", "<OUTPUT_FILE type=\"SVF\" name=\"a\" directory=\"" +
                                            m_board.directory().path() + "\">" +
                                            element("BITSTREAM_ID", "B") + "</OUTPUT_FILE>"));
    }

    void write_secret(const std::string& name, const std::string& text) const
    {
        write_file(m_board.path(name), text);
        std::filesystem::permissions(m_board.path(name), std::filesystem::perms::owner_read |
                                                             std::filesystem::perms::owner_write);
    }

    BOARD m_board;
    std::string m_setup;
};

TEST_F(PASSWORD, is_taken_from_a_file_for_all_bitstreams_or_for_one)
{
    EXPECT_THAT(run({"check", m_setup}).out, HasSubstr(NONE_IS_GIVEN));
    for (const std::string prefix : {"", "B="}) {
        EXPECT_THAT(run({"check", m_setup, "--password-file", prefix + m_board.path("password")}).out,
                    Not(HasSubstr(NONE_IS_GIVEN)));
    }
    for (const std::string command : {"generate", "verify"}) {
        EXPECT_THAT(run({command, m_setup}).err, HasSubstr(NONE_IS_GIVEN));
        EXPECT_THAT(run({command, m_setup, "--password-file", m_board.path("password")}).err,
                    Not(HasSubstr(NONE_IS_GIVEN)));
    }
    EXPECT_THAT(run({"generate", m_setup, "--shard", "1/1"}).err, HasSubstr(NONE_IS_GIVEN));
    EXPECT_THAT(run({"generate", m_setup, "--shard", "1/1", "--password-file", m_board.path("password")}).err,
                Not(HasSubstr(NONE_IS_GIVEN)));
}

TEST_F(PASSWORD, file_that_is_missing_empty_or_open_to_others_is_refused)
{
    const ANSWER missing = run({"check", m_setup, "--password-file", m_board.path("missing")});
    EXPECT_EQ(missing.exit_code, EXIT_CODE_INPUT_UNREADABLE);
    EXPECT_THAT(missing.err, HasSubstr(m_board.path("missing")));
    write_secret("empty", "\nsecond line\n");
    EXPECT_THAT(run({"check", m_setup, "--password-file", m_board.path("empty")}).err,
                HasSubstr("has no password in its first line"));
    std::filesystem::permissions(m_board.path("password"), std::filesystem::perms::others_read,
                                 std::filesystem::perm_options::add);
    const ANSWER open = run({"check", m_setup, "--password-file", m_board.path("password")});
    EXPECT_EQ(open.exit_code, EXIT_CODE_INPUT_UNREADABLE);
    EXPECT_EQ(open.err, "imagewright-cmd: " + m_board.path("password") +
                            " can be read by others; take the right from them (chmod go-rwx).\n");
}

TEST_F(PASSWORD, reaches_no_setup_that_is_saved)
{
    run({"convert", m_board.path("top.sof"), "-o", m_board.path("a.svf"), "--option", "path_signing=ON",
         "--option", "path_signing_pem_file=" + m_board.path("key.pem"), "--password-file",
         m_board.path("password"), "--save", m_board.path("saved.vek")});
    for (const std::string& name : m_board.directory().entries()) {
        if (name != "password" && std::filesystem::is_regular_file(m_board.path(name))) {
            EXPECT_THAT(read_text_file(m_board.path(name)), Not(HasSubstr("correct horse"))) << name;
        }
    }
}

} // namespace
