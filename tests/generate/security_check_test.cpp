// What users get wrong about keys: each with the sentence that they read.

#include "aek_file.h"
#include "firmware_archive.h"
#include "lock_file.h"
#include "security_fixture.h"

namespace
{

using testing::HasSubstr;

const std::string LABEL = "BITSTREAM \"Bitstream_1\" / PATH \"Bitstream_1.sof\": ";

FINDINGS check(SETUP_BUILDER& setup)
{
    FINDINGS findings;
    check_setup(setup.document(), true, "", findings);
    return findings;
}

/// The one finding, of that kind; and the generation says the same and writes nothing.
void expect_refused(SETUP_BUILDER& setup, FINDING_KIND kind, const std::string& text)
{
    const FINDINGS findings = check(setup);
    ASSERT_EQ(findings.all().size(), 1U) << findings.message();
    EXPECT_EQ(findings.all()[0].kind, kind) << findings.all()[0].row().name;
    EXPECT_EQ(findings.message(), LABEL + text);
    EXPECT_FALSE(findings.can_generate());
    const std::vector<std::string> before = setup.directory().entries();
    const SECURE_RUN run = run_generation(setup);
    EXPECT_FALSE(run.success);
    EXPECT_THAT(run.messages, HasSubstr(text));
    EXPECT_EQ(setup.directory().entries(), before);
}

std::string in_quotes(const std::string& text)
{
    return "\"" + text + "\"";
}

} // namespace

TEST(bad_keys, key_files)
{
    ENCRYPTED setup;
    setup.output("RBF", {"Bitstream_1"});
    PGM_COMMON_XML_VEK_PATH& file = file_of(setup);
    const std::string name = file.key_file1;
    file.key1 = "third";
    expect_refused(setup, FINDING_KEY_NAME,
                   "The key file " + in_quotes(name) + " has no key \"third\"; choose one of its keys.");
    file.key1 = "second";
    const std::string refused =
        "The key file " + in_quotes(name) + " is refused; give it one key of 256 bits a line.";
    write_secret(name, "second " + KEY_DIGITS.substr(0, 62) + "\n");
    expect_refused(setup, FINDING_KEY_FILE, refused);
    write_secret(name, "this is no key file");
    expect_refused(setup, FINDING_KEY_FILE, refused);
    file.key_file1 = "";
    expect_refused(setup, FINDING_KEY_FILE, "No key file is named although encryption is on; name one.");
}

TEST(bad_keys, lock_files)
{
    ENCRYPTED setup;
    setup.output("RBF", {"Bitstream_1"});
    PGM_COMMON_XML_VEK_PATH& file = file_of(setup);
    const BYTES digits = key_of(KEY_DIGITS);
    const auto key = STREAM_KEY::derive(SECRET_BYTES(digits.begin(), digits.end()));
    std::string message;
    ASSERT_TRUE(write_lock_file(setup.path("other.elk"), {"CA3M110", false, key}, message)) << message;
    ASSERT_TRUE(write_lock_file(setup.path("fuses.elk"), {"CA3M050", true, key}, message)) << message;
    ASSERT_TRUE(write_lock_file(setup.path("good.elk"), {"CA3M050", false, key}, message)) << message;
    file.elk_file = setup.path("good.elk");
    expect_refused(setup, FINDING_OPTION_CONFLICT,
                   "The encryption lock file and the key file exclude each other; remove one of them.");
    file.key_file1 = file.key1 = "";
    file.elk_file = setup.path("other.elk");
    expect_refused(
        setup, FINDING_LOCK_FILE,
        "The encryption lock file " + in_quotes(file.elk_file) +
            " is for the device CA3M110, and the bitstream for CA3M050; name the lock file of this "
            "device.");
    file.elk_file = setup.path("fuses.elk");
    expect_refused(setup, FINDING_LOCK_FILE,
                   "The encryption lock file " + in_quotes(file.elk_file) +
                       " is for a non-volatile key; switch the non-volatile key on.");
    file.elk_file = setup.path("good.elk");
    file.ekp_file = setup.path("own.ekp");
    expect_refused(
        setup, FINDING_KEY_PROGRAMMING,
        "A key programming file is asked for, and the lock file holds no key to program; name a key "
        "file or remove the key programming file.");
}

TEST(bad_keys, a_key_programming_file_without_a_key)
{
    ENCRYPTED setup;
    setup.output("EKP", {"Bitstream_1"});
    file_of(setup).encryption = "0";
    const FINDINGS findings = check(setup);
    ASSERT_EQ(findings.all().size(), 1U) << findings.message();
    EXPECT_EQ(findings.message(),
              "OUTPUT_FILE \"EKP\": The file " + in_quotes(file_of(setup).text) +
                  " is not encrypted, so there is no key to program; switch its encryption "
                  "on or remove the output file.");
    EXPECT_FALSE(run_generation(setup).success);
}

TEST(bad_keys, pem_files_and_passwords)
{
    SIGNED setup;
    setup.output("RBF", {"Bitstream_1"});
    PGM_COMMON_XML_VEK_PATH& file = file_of(setup);
    const std::string pem = file.signing_pem_file;
    write_secret(file.password, "wrong\n");
    expect_refused(setup, FINDING_SIGNING_KEY,
                   pem + " holds a private key that the password does not open; correct the password.");
    write_secret(file.password, "\n");
    expect_refused(setup, FINDING_PASSWORD_FILE,
                   file.password + " has no password in its first line; write it there.");
    file.password = "";
    expect_refused(setup, FINDING_SIGNING_KEY,
                   pem + " holds a private key under a password, and no password file is named; name a file "
                         "with the password in its first line.");
    const std::string wanted = "name a PEM file with an EC private key with the curve P-256 or P-384.";
    const std::string rsa = setup.path("rsa.pem");
    run_openssl("genrsa -traditional -out '" + rsa + "' 1024 2>/dev/null");
    ASSERT_EQ(chmod(rsa.c_str(), 0600), 0);
    file.signing_pem_file = rsa;
    expect_refused(setup, FINDING_SIGNING_KEY, rsa + " holds an RSA key; " + wanted);
    const std::string certificate = setup.path("certificate.pem");
    write_secret(certificate, "-----BEGIN CERTIFICATE-----\nAAAA\n-----END CERTIFICATE-----\n");
    file.signing_pem_file = certificate;
    expect_refused(setup, FINDING_SIGNING_KEY,
                   certificate + " holds a certificate and no private key; " + wanted);
    const std::string garbage = setup.path("garbage.pem");
    write_secret(garbage, "garbage\n");
    file.signing_pem_file = garbage;
    expect_refused(setup, FINDING_SIGNING_KEY,
                   garbage +
                       " is no PEM file; name one with an EC private key with the curve P-256 or P-384.");
    file.signing_pem_file = "";
    expect_refused(setup, FINDING_SIGNING_KEY,
                   "No private key file is named although signing is on; name one.");
}

TEST(bad_keys, what_a_device_cannot_do_is_refused)
{
    ENCRYPTED setup;
    setup.output("RBF", {"Bitstream_1"});
    file_of(setup).encryption = "0";
    file_of(setup).signing = "ON";
    expect_refused(
        setup, FINDING_SECURITY_NOT_OFFERED,
        "Signing is on, and the family of the device CA3M050 verifies no signatures; switch it off.");
    SIGNED secure;
    secure.output("RBF", {"Bitstream_1"});
    file_of(secure).encryption = "1";
    expect_refused(
        secure, FINDING_SECURITY_NOT_OFFERED,
        "Encryption is on, and in the family of the device ZR9A012 it is finalised with an AES key "
        "file; switch it off and finalise it.");
}

TEST(bad_keys, finalising_needs_a_signature_a_prepared_bitstream_and_a_key)
{
    SIGNED setup;
    setup.output("RBF", {"Bitstream_1"});
    PGM_COMMON_XML_VEK_PATH& file = file_of(setup);
    file.finalize_encryption = "1";
    expect_refused(setup, FINDING_AES_KEY_FILE,
                   "No AES key file is named although the encryption is to be finalised; name one.");
    const BYTES digits = key_of(KEY_DIGITS);
    const SECRET_BYTES key(digits.begin(), digits.end());
    std::string message;
    ASSERT_TRUE(write_aek_file(setup.path("key.aek"), key, nullptr, message)) << message;
    file.aek_file = setup.path("key.aek");
    EXPECT_EQ(check(setup).message(), "");
    SMALL_BITSTREAM plain = setup.content;
    plain.prepared_for_encryption = false;
    write_bitstream(file.text, plain);
    expect_refused(
        setup, FINDING_ENCRYPTION_NOT_PREPARED,
        "The encryption is to be finalised, and the bitstream was compiled without it; compile it with "
        "the option sof_option_encryption or do not finalise.");
    write_bitstream(file.text, setup.content);
    file.signing = "OFF";
    expect_refused(setup, FINDING_FINALIZE_UNSIGNED,
                   "The encryption is to be finalised in a bitstream that is not signed; switch signing on.");
}

TEST(bad_keys, a_public_key_alone_does_not_sign)
{
    SIGNED setup;
    setup.output("RBF", {"Bitstream_1"});
    PGM_COMMON_XML_VEK_PATH& file = file_of(setup);
    make_private_pem(setup.path("plain.pem"), "P-256");
    make_public_pem(setup.path("plain.pem"), setup.path("public.pem"));
    file.signing_pem_file = setup.path("public.pem");
    const FINDINGS findings = check(setup);
    ASSERT_EQ(findings.all().size(), 1U) << findings.message();
    EXPECT_EQ(findings.all()[0].kind, FINDING_SIGNED_ELSEWHERE);
    EXPECT_EQ(findings.message(), LABEL + in_quotes(setup.path("public.pem")) +
                                      " holds a public key alone; write the digests with \"imagewright-cmd "
                                      "generate --write-digests\", sign them, and give the signatures with "
                                      "--signatures.");
}
