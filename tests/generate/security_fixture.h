#ifndef IMAGEWRIGHT_TESTS_SECURITY_FIXTURE_H
#define IMAGEWRIGHT_TESTS_SECURITY_FIXTURE_H

#include "check.h"
#include "msg_service.h"
#include "reference_crypto.h"
#include "reference_loader.h"
#include "setup_builder.h"
#include "test_keys.h"
#include "vek_util.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/stat.h>

using BYTES = std::vector<std::uint8_t>;

inline const std::string KEY_DIGITS = "00112233445566778899AABBCCDDEEFF0123456789ABCDEFFEDCBA9876543210";
inline const std::string OTHER_DIGITS = "FF112233445566778899AABBCCDDEEFF0123456789ABCDEFFEDCBA9876543210";

inline BYTES key_of(const std::string& digits)
{
    BYTES key;
    for (std::size_t i = 0; i < digits.size(); i += 2) {
        key.push_back(static_cast<std::uint8_t>(std::stoul(digits.substr(i, 2), nullptr, 16)));
    }
    return key;
}

inline void write_secret(const std::string& path, const std::string& text)
{
    write_file(path, text);
    ASSERT_EQ(chmod(path.c_str(), 0600), 0);
}

inline PGM_COMMON_XML_VEK_PATH& file_of(SETUP_BUILDER& setup)
{
    return *setup.document().bitstreams[0]->bitstream[0]->path[0];
}

/// What generation says, in one text.
struct SECURE_RUN {
    bool success = false;
    std::string messages; ///< of every severity
};

inline SECURE_RUN run_generation(SETUP_BUILDER& setup)
{
    SECURE_RUN run;
    const MSG_SINK_SCOPE sink([&run](const MSG_RECORD& record) { run.messages += record.text + "\n"; });
    run.success = VEK_UTIL::generate(&setup.document());
    return run;
}

inline void expect_written(SETUP_BUILDER& setup)
{
    FINDINGS findings;
    check_setup(setup.document(), true, "", findings);
    EXPECT_EQ(findings.message(), "");
    const SECURE_RUN run = run_generation(setup);
    EXPECT_TRUE(run.success) << run.messages;
}

/// A bitstream that is encrypted by a key of a key file, to RBF.
struct ENCRYPTED : SETUP_BUILDER {
    explicit ENCRYPTED(const std::string& mode = "PS") : SETUP_BUILDER(mode)
    {
        content.device = "CA3M050";
        bitstream("Bitstream_1", content);
        write_secret(path("keys.key"), "first " + OTHER_DIGITS + "\nsecond " + KEY_DIGITS + "\n");
        PGM_COMMON_XML_VEK_PATH& file = file_of(*this);
        file.encryption = "1";
        file.key_file1 = path("keys.key");
        file.key1 = "second";
    }
    SMALL_BITSTREAM content;
};

/// A bitstream that is signed by a key under a password, and whose encryption is finalised.
struct SIGNED : SETUP_BUILDER {
    explicit SIGNED(const std::string& mode = "LNKSX8") : SETUP_BUILDER(mode)
    {
        content.device = "ZR9A012";
        content.firmware = 5000;
        content.prepared_for_encryption = true;
        bitstream("Bitstream_1", content);
        write_secret(path("password"), PASSWORD + "\n");
        make_private_pem(path("key.pem"), "P-384", PASSWORD);
        EXPECT_EQ(chmod(path("key.pem").c_str(), 0600), 0);
        PGM_COMMON_XML_VEK_PATH& file = file_of(*this);
        file.signing = "ON";
        file.signing_pem_file = path("key.pem");
        file.password = path("password");
    }
    SMALL_BITSTREAM content;
    inline static const std::string PASSWORD = "a password of seven words and a blank";
};

#endif
