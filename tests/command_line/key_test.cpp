#include "command_run.h"
#include "test_keys.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <sys/stat.h>

namespace
{

using testing::HasSubstr;

constexpr const char* DIGITS = "00112233445566778899AABBCCDDEEFF00112233445566778899AABBCCDDEEFF";

unsigned mode_of(const std::string& path)
{
    struct stat facts {
    };
    EXPECT_EQ(stat(path.c_str(), &facts), 0) << path;
    return facts.st_mode & 0777U;
}

void write_secret(const std::string& path, const std::string& text)
{
    write_file(path, text);
    std::filesystem::permissions(path,
                                 std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
}

class KEY_COMMANDS : public testing::Test
{
protected:
    KEY_COMMANDS()
    {
        write_secret(path("board.key"), std::string("field ") + DIGITS + "\n");
        write_secret(path("password"), "correct horse\n");
    }
    std::string path(const std::string& name) const { return m_board.path(name); }
    ANSWER key(const std::string& kind, const std::string& output, std::vector<std::string> more = {}) const
    {
        std::vector<std::string> arguments = {"key",   kind,    "--key-file", path("board.key"),
                                              "--key", "field", "-o",         path(output)};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return run(arguments);
    }
    /// A setup of one bitstream with these attributes, into an output of that type.
    std::string setup(const std::string& mode, const std::string& file, const std::string& attributes,
                      const std::string& type) const
    {
        std::filesystem::create_directories(path("out"));
        return m_board.setup(
            "board.vek", mode,
            element("BITSTREAMS",
                    "<BITSTREAM id=\"B\"><PATH " + attributes + ">" + file + "</PATH></BITSTREAM>") +
                element("OUTPUT_FILES", "<OUTPUT_FILE type=\"" + type + "\" name=\"board\" directory=\"" +
                                            path("out") + "\"><BITSTREAM_ID>B</BITSTREAM_ID></OUTPUT_FILE>"));
    }

    BOARD m_board;
};

} // namespace

TEST_F(KEY_COMMANDS, a_lock_file_encrypts_what_the_key_encrypts)
{
    const ANSWER made = key("lock", "field.elk", {"--device", "CA3M050"});
    ASSERT_EQ(made.exit_code, EXIT_CODE_DONE) << made.err;
    EXPECT_EQ(mode_of(path("field.elk")), 0600U);
    const std::string file = m_board.bitstream("top.sof", "CA3M050");
    const std::string by_key =
        setup("PS", file, "encryption=\"1\" key_file1=\"" + path("board.key") + "\" key1=\"field\"", "RBF");
    ASSERT_EQ(run({"generate", by_key}).exit_code, EXIT_CODE_DONE);
    const auto first = read_file(path("out/board.rbf"));
    const std::string by_lock =
        setup("PS", file, "encryption=\"1\" elk_file=\"" + path("field.elk") + "\"", "RBF");
    const ANSWER locked = run({"generate", by_lock});
    ASSERT_EQ(locked.exit_code, EXIT_CODE_DONE) << locked.err;
    EXPECT_EQ(read_file(path("out/board.rbf")), first);
}

TEST_F(KEY_COMMANDS, a_key_file_is_never_overwritten_and_no_digit_is_printed)
{
    const ANSWER first = key("aes", "field.aek", {"--password-file", path("password")});
    ASSERT_EQ(first.exit_code, EXIT_CODE_DONE) << first.err;
    EXPECT_EQ(mode_of(path("field.aek")), 0600U);
    const auto bytes = read_file(path("field.aek"));
    const ANSWER second = key("aes", "field.aek");
    EXPECT_EQ(second.exit_code, EXIT_CODE_OUTPUT_NOT_WRITTEN);
    EXPECT_THAT(
        second.err,
        HasSubstr("field.aek is there already; a key file is never overwritten, so choose another name."));
    EXPECT_EQ(read_file(path("field.aek")), bytes);
    for (const ANSWER& answer : {first, second}) {
        EXPECT_THAT(answer.out + answer.err, testing::Not(HasSubstr("8899")));
    }
}

TEST_F(KEY_COMMANDS, wrong_choices_are_named)
{
    EXPECT_THAT(key("lock", "a.elk").err, HasSubstr("A lock file is for a device; name it behind --device."));
    EXPECT_THAT(key("lock", "a.elk", {"--device", "NONE"}).err, HasSubstr("is not in the device database"));
    EXPECT_THAT(key("lock", "a.elk", {"--device", "BS1L15"}).err,
                HasSubstr("Device BS1L15 takes no lock file"));
    EXPECT_THAT(key("lock", "a.elk", {"--device", "ZR9A012"}).err, HasSubstr("takes no lock file"));
    EXPECT_THAT(key("lock", "a.elk", {"--device", "CA3M050", "--password-file", path("password")}).err,
                HasSubstr("A lock file is under no password"));
    EXPECT_THAT(key("aes", "a.aek", {"--device", "CA3M050"}).err, HasSubstr("is for no single device"));
    EXPECT_THAT(
        run({"key", "aes", "--key-file", path("board.key"), "--key", "other", "-o", path("a.aek")}).err,
        HasSubstr("board.key has no key \"other\"; choose one of its keys."));
    write_file(path("open"), std::string("password\n"));
    EXPECT_THAT(key("aes", "a.aek", {"--password-file", path("open")}).err,
                HasSubstr("can be read by others"));
    write_secret(path("board.key"), "field 1234\n");
    EXPECT_THAT(key("aes", "a.aek").err, HasSubstr("give it one key of 256 bits a line"));
    EXPECT_FALSE(std::filesystem::exists(path("a.aek")));
    EXPECT_FALSE(std::filesystem::exists(path("a.elk")));
}

TEST_F(KEY_COMMANDS, signed_firmware_goes_into_a_signed_bitstream)
{
    write_file(path("boot.bin"), std::string(5000, 'f'));
    make_private_pem(path("maker.pem"), "P-384", "correct horse");
    make_private_pem(path("owner.pem"), "P-256");
    const auto firmware = [this](std::vector<std::string> more) {
        std::vector<std::string> arguments = {"firmware", "--image", path("boot.bin"), "-o", path("boot.fw")};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return run(arguments);
    };
    EXPECT_THAT(firmware({"--family", "Basalt", "--pem", path("maker.pem")}).err,
                HasSubstr("\"Basalt\" is no family with co-signed firmware"));
    EXPECT_THAT(firmware({"--family", "Zircon", "--pem", path("maker.pem")}).err,
                HasSubstr("holds a private key under a password"));
    make_public_pem(path("owner.pem"), path("public.pem"));
    EXPECT_THAT(firmware({"--family", "Zircon", "--pem", path("public.pem")}).err,
                HasSubstr("holds a public key alone; name the private key of the maker."));
    EXPECT_THAT(run({"firmware", "--image", path("boot.bin"), "--family", "Zircon", "--pem",
                     path("owner.pem"), "-o", path("boot.bin")})
                    .err,
                HasSubstr("boot.bin is also an input; choose another name for the archive."));
    const ANSWER made = firmware({"--family", "Zircon", "--release", "7", "--pem", path("maker.pem"),
                                  "--password-file", path("password")});
    ASSERT_EQ(made.exit_code, EXIT_CODE_DONE) << made.err;
    const std::string file = setup("LNKSX8", m_board.bitstream("top.sof", "ZR9A012", "LNKSX8"),
                                   "signing=\"ON\" signing_pem_file=\"" + path("owner.pem") +
                                       "\" fw_source=\"" + path("boot.fw") + "\"",
                                   "RBF");
    const ANSWER generated = run({"generate", file});
    ASSERT_EQ(generated.exit_code, EXIT_CODE_DONE) << generated.err;
    const auto stream = read_file(path("out/board.rbf"));
    const std::string text(stream.begin(), stream.end());
    EXPECT_NE(text.find(std::string(5000, 'f')), std::string::npos);
}

TEST_F(KEY_COMMANDS, a_prepared_stream_is_finalized_where_the_keys_are)
{
    make_private_pem(path("owner.pem"), "P-256");
    const std::string file =
        setup("LNKSX8", m_board.bitstream("top.sof", "ZR9A012", "LNKSX8", 70000, {"--encryption"}),
              "signing=\"ON\" finalize_encryption=\"1\" finalize_encryption_later=\"1\"", "RBF");
    const ANSWER generated = run({"generate", file});
    ASSERT_EQ(generated.exit_code, EXIT_CODE_DONE) << generated.err;
    EXPECT_EQ(run({"verify", file}).exit_code, EXIT_CODE_DONE);
    EXPECT_THAT(run({"inspect", path("out/board.rbf"), "--json"}).out,
                HasSubstr("\"to_be_completed\": true"));
    ASSERT_EQ(key("aes", "field.aek").exit_code, EXIT_CODE_DONE);
    const ANSWER made = run({"finalize", path("out/board.rbf"), "--aek", path("field.aek"), "--pem",
                             path("owner.pem"), "-o", path("top.rbf")});
    ASSERT_EQ(made.exit_code, EXIT_CODE_DONE) << made.err;
    EXPECT_EQ(run({"verify", path("top.rbf")}).exit_code, EXIT_CODE_DONE);
    const std::string facts = run({"inspect", path("top.rbf"), "--json"}).out;
    EXPECT_THAT(facts, HasSubstr("\"to_be_completed\": false"));
    EXPECT_THAT(facts, HasSubstr("\"signer\""));
    const ANSWER again = run({"finalize", path("top.rbf"), "--aek", path("field.aek"), "--pem",
                              path("owner.pem"), "-o", path("twice.rbf")});
    EXPECT_EQ(again.exit_code, EXIT_CODE_INPUT_UNREADABLE);
    EXPECT_THAT(again.err, HasSubstr("The stream has no image whose encryption is to be completed."));
}

TEST_F(KEY_COMMANDS, raw_data_with_regions_makes_a_partial_bitstream)
{
    m_board.bitstream("part.pmsf", "CA3M050", "PS", 70000,
                      {"--region", "left:0x1000:60000", "--region", "right:100000:10000"});
    const std::string facts = run({"inspect", path("part.pmsf"), "--json"}).out;
    EXPECT_THAT(facts, HasSubstr("\"kind\": \"partial bitstream\""));
    EXPECT_THAT(facts, HasSubstr("\"name\": \"right\""));
    EXPECT_EQ(run({"convert", path("part.pmsf"), "-o", path("part.prrbf")}).exit_code, EXIT_CODE_DONE);
    const ANSWER refused = run({"pack", "--device", "CA3M050", "--core", path("part.pmsf.core"), "--region",
                                "left:0x", "-o", path("no.pmsf")});
    EXPECT_EQ(refused.exit_code, EXIT_CODE_USAGE);
    EXPECT_THAT(refused.err, HasSubstr("\"left:0x\" is no region; write name, offset and length, as in "
                                       "left:0x1000:4096."));
}

TEST_F(KEY_COMMANDS, a_chain_of_keys_signs_in_place_of_the_root_key)
{
    for (const std::string name : {"root", "line"}) {
        make_private_pem(path(name + ".pem"), "P-256");
        make_public_pem(path(name + ".pem"), path(name + ".pub"));
    }
    const ANSWER made =
        run({"chain", "--pem", path("root.pem"), "--key", path("line.pub"), "-o", path("line.skc")});
    ASSERT_EQ(made.exit_code, EXIT_CODE_DONE) << made.err;
    const std::string file = setup("LNKSX8", m_board.bitstream("top.sof", "ZR9A012", "LNKSX8"),
                                   "signing=\"ON\" signing_pem_file=\"" + path("line.pem") +
                                       "\" skc_file=\"" + path("line.skc") + "\"",
                                   "RBF");
    const ANSWER generated = run({"generate", file});
    ASSERT_EQ(generated.exit_code, EXIT_CODE_DONE) << generated.err;
    EXPECT_EQ(run({"verify", path("out/board.rbf")}).exit_code, EXIT_CODE_DONE);
    EXPECT_THAT(run({"inspect", path("out/board.rbf"), "--json"}).out, HasSubstr("\"root\": {"));
    const ANSWER refused =
        run({"chain", "--pem", path("line.pub"), "--key", path("root.pub"), "-o", path("no.skc")});
    EXPECT_EQ(refused.exit_code, EXIT_CODE_INPUT_UNREADABLE);
    EXPECT_THAT(refused.err, HasSubstr(path("line.pub") + " holds a public key alone; name the private key "
                                                          "that is to sign."));
}
