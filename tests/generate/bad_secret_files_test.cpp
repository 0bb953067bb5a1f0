// Every file with a secret, in every state that it must not be in, with the whole sentence that the user
// reads.

#include "aek_file.h"
#include "lock_file.h"
#include "security_fixture.h"

#include <filesystem>
#include <unistd.h>

namespace
{

/// The rights of nobody while it lives.
class AS_NOBODY
{
public:
    AS_NOBODY() { EXPECT_EQ(::seteuid(65534), 0); }
    ~AS_NOBODY() { EXPECT_EQ(::seteuid(m_user), 0); }
    AS_NOBODY(const AS_NOBODY&) = delete;
    AS_NOBODY& operator=(const AS_NOBODY&) = delete;

private:
    uid_t m_user = ::geteuid();
};

/// A setup in which every secret file is good, and the attribute that names one of them.
struct SECRET_FILE {
    const char* attribute;
    FINDING_KIND kind;
    std::unique_ptr<SETUP_BUILDER> (*make)();
    const char* empty;   ///< what is said about an empty file behind its path or "The key file ..."
    const char* garbage; ///< about one that is nothing of the kind
};

void PrintTo(const SECRET_FILE& file, std::ostream* stream)
{
    *stream << file.attribute;
}

std::unique_ptr<SETUP_BUILDER> with_key_file()
{
    auto setup = std::make_unique<ENCRYPTED>();
    setup->output("RBF", {"Bitstream_1"});
    return setup;
}

std::unique_ptr<SETUP_BUILDER> with_second_key_file()
{
    auto setup = with_key_file();
    write_secret(setup->path("second.key"), "other " + OTHER_DIGITS + "\n");
    file_of(*setup).key_file2 = setup->path("second.key");
    file_of(*setup).key2 = "other";
    return setup;
}

std::unique_ptr<SETUP_BUILDER> with_lock_file()
{
    auto setup = with_key_file();
    const BYTES key = key_of(KEY_DIGITS);
    std::string message;
    EXPECT_TRUE(write_lock_file(setup->path("board.elk"),
                                {"CA3M050", false, STREAM_KEY::derive(SECRET_BYTES(key.begin(), key.end()))},
                                message))
        << message;
    file_of(*setup).key_file1 = file_of(*setup).key1 = "";
    file_of(*setup).elk_file = setup->path("board.elk");
    return setup;
}

std::unique_ptr<SETUP_BUILDER> with_signing_key()
{
    auto setup = std::make_unique<SIGNED>();
    setup->output("RBF", {"Bitstream_1"});
    return setup;
}

std::unique_ptr<SETUP_BUILDER> with_aes_key_file()
{
    auto setup = with_signing_key();
    const BYTES key = key_of(KEY_DIGITS);
    const SECRET_BYTES password(SIGNED::PASSWORD.begin(), SIGNED::PASSWORD.end());
    std::string message;
    EXPECT_TRUE(
        write_aek_file(setup->path("key.aek"), SECRET_BYTES(key.begin(), key.end()), &password, message))
        << message;
    file_of(*setup).finalize_encryption = "1";
    file_of(*setup).aek_file = setup->path("key.aek");
    return setup;
}

constexpr const char* KEY_LINES = " is refused; give it one key of 256 bits a line.";
constexpr const char* NO_LOCK = " is no encryption lock file; name one.";
constexpr const char* NO_AES_KEY = " is no AES key file; name one.";
constexpr const char* NO_PEM =
    " is no PEM file; name one with an EC private key with the curve P-256 or P-384.";

const SECRET_FILE FILES[] = {
    {"key_file1", FINDING_KEY_FILE, with_key_file, nullptr, KEY_LINES},
    {"key_file2", FINDING_KEY_FILE, with_second_key_file, nullptr, KEY_LINES},
    {"elk_file", FINDING_LOCK_FILE, with_lock_file, NO_LOCK, NO_LOCK},
    {"aek_file", FINDING_AES_KEY_FILE, with_aes_key_file, NO_AES_KEY, NO_AES_KEY},
    {"signing_pem_file", FINDING_SIGNING_KEY, with_signing_key, NO_PEM, NO_PEM},
    {"password", FINDING_PASSWORD_FILE, with_signing_key,
     " has no password in its first line; write it there.", nullptr},
};

const std::string LABEL = "BITSTREAM \"Bitstream_1\" / PATH \"Bitstream_1.sof\": ";

void expect_sentence(SETUP_BUILDER& setup, FINDING_KIND kind, const std::string& text)
{
    FINDINGS findings;
    check_setup(setup.document(), true, "", findings);
    EXPECT_EQ(findings.message(), LABEL + text);
    ASSERT_FALSE(findings.all().empty());
    EXPECT_EQ(findings.all()[0].kind, kind) << findings.all()[0].row().name;
}

class bad_secret_files : public testing::TestWithParam<SECRET_FILE>
{
protected:
    std::string name() const { return m_setup->path("the secret"); }
    std::string subject() const
    {
        return GetParam().kind == FINDING_KEY_FILE ? "The key file \"" + name() + "\"" : name();
    }
    void name_it() { file_of(*m_setup).write_attribute_string(GetParam().attribute, name()); }
    std::string good() const { return file_of(*m_setup).read_attribute_string(GetParam().attribute); }

    std::unique_ptr<SETUP_BUILDER> m_setup = GetParam().make();
};

} // namespace

TEST_P(bad_secret_files, a_good_file_is_taken)
{
    expect_written(*m_setup);
}

TEST_P(bad_secret_files, one_that_is_missing_is_named)
{
    name_it();
    expect_sentence(*m_setup, GetParam().kind, name() + " cannot be opened: no such file.");
}

TEST_P(bad_secret_files, a_directory_in_its_place_is_named)
{
    std::filesystem::create_directory(name());
    name_it();
    expect_sentence(*m_setup, GetParam().kind, name() + " cannot be opened: it is a directory.");
}

TEST_P(bad_secret_files, one_that_only_its_owner_may_read_is_named_to_others)
{
    std::filesystem::copy_file(good(), name());
    ASSERT_EQ(::chmod(name().c_str(), 0600), 0);
    ASSERT_EQ(::chmod(m_setup->directory().path().c_str(), 0755), 0);
    // Only the file in question is out of reach.
    for (const std::string& other : m_setup->directory().entries()) {
        if (other != "the secret") {
            ASSERT_EQ(::chown(m_setup->path(other).c_str(), 65534, 65534), 0);
        }
    }
    name_it();
    const AS_NOBODY nobody;
    expect_sentence(*m_setup, GetParam().kind, name() + " cannot be opened: permission denied.");
}

TEST_P(bad_secret_files, one_that_others_can_read_is_warned_about_and_taken)
{
    ASSERT_EQ(::chmod(good().c_str(), 0644), 0);
    FINDINGS findings;
    check_setup(m_setup->document(), true, "", findings);
    EXPECT_EQ(findings.message(), LABEL + "The file \"" + good() +
                                      "\" holds a secret and can be read by others; take the rights from "
                                      "them with \"chmod 600\".");
    EXPECT_TRUE(findings.can_generate());
    EXPECT_TRUE(run_generation(*m_setup).success);
}

TEST_P(bad_secret_files, an_empty_one_is_refused)
{
    write_secret(name(), "");
    name_it();
    if (GetParam().kind == FINDING_KEY_FILE) {
        const std::string key = GetParam().attribute == std::string("key_file1") ? "second" : "other";
        expect_sentence(*m_setup, FINDING_KEY_NAME,
                        subject() + " has no key \"" + key + "\"; choose one of its keys.");
    } else {
        expect_sentence(*m_setup, GetParam().kind, subject() + GetParam().empty);
    }
}

TEST_P(bad_secret_files, one_with_other_content_is_refused)
{
    write_secret(name(), "this is something else\n");
    name_it();
    if (GetParam().kind == FINDING_PASSWORD_FILE) {
        expect_sentence(*m_setup, FINDING_SIGNING_KEY,
                        m_setup->path("key.pem") +
                            " holds a private key that the password does not open; correct the password.");
    } else {
        expect_sentence(*m_setup, GetParam().kind, subject() + GetParam().garbage);
    }
}

TEST_P(bad_secret_files, one_that_is_cut_short_is_refused_and_nothing_is_written)
{
    BYTES bytes = read_file(good());
    bytes.resize(bytes.size() / 2);
    write_file(name(), bytes);
    ASSERT_EQ(::chmod(name().c_str(), 0600), 0);
    name_it();
    const SECURE_RUN run = run_generation(*m_setup);
    EXPECT_FALSE(run.success);
    EXPECT_NE(run.messages, "");
    EXPECT_FALSE(std::filesystem::exists(m_setup->path("out.rbf")));
}

INSTANTIATE_TEST_SUITE_P(of_every_kind, bad_secret_files, testing::ValuesIn(FILES),
                         [](const auto& row) { return std::string(row.param.attribute); });

TEST(bad_passwords, the_wrong_one_opens_no_aes_key_file)
{
    const auto setup = with_aes_key_file();
    // The signing key opens, so that the AES key file is the one to complain.
    make_private_pem(setup->path("plain.pem"), "P-256");
    ASSERT_EQ(::chmod(setup->path("plain.pem").c_str(), 0600), 0);
    file_of(*setup).signing_pem_file = setup->path("plain.pem");
    write_secret(setup->path("password"), "another\n");
    expect_sentence(*setup, FINDING_AES_KEY_FILE,
                    setup->path("key.aek") +
                        " holds a key that the password does not open; correct the password.");
    file_of(*setup).password = "";
    expect_sentence(*setup, FINDING_AES_KEY_FILE,
                    setup->path("key.aek") +
                        " holds a key under a password, and no password file is named; name a file with the "
                        "password in its first line.");
}
