#include "command_run.h"
#include "reference_loader.h"
#include "test_keys.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

namespace
{

using testing::HasSubstr;

/// A setup whose bitstream is to be signed by a key of which only the public half is here.
class SIGNING_ELSEWHERE : public testing::Test
{
protected:
    void SetUp() override
    {
        make_private_pem(m_elsewhere / "key.pem", "P-384");
        make_public_pem(m_elsewhere / "key.pem", m_board.path("public.pem"));
        for (const std::string name : {"desk", "out"}) {
            std::filesystem::create_directory(m_board.path(name));
        }
        std::string outputs;
        for (const std::string type : {"RBF", "RIM"}) {
            outputs += "<OUTPUT_FILE type=\"" + type + "\" name=\"a\" directory=\"" + m_board.path("out") +
                       "\">" + element("BITSTREAM_ID", "B") + "</OUTPUT_FILE>";
        }
        m_setup = m_board.setup(
            "signed.vek", "LNKSX8",
            element("BITSTREAMS", "<BITSTREAM id=\"B\"><PATH signing=\"ON\" signing_pem_file=\"" +
                                      m_board.path("public.pem") + "\">" +
                                      m_board.bitstream("top.sof", "ZR9A012", "LNKSX8") +
                                      "</PATH></BITSTREAM>") +
                element("OUTPUT_FILES", outputs));
    }

    bool nothing_is_written() const { return std::filesystem::is_empty(m_board.path("out")); }

    /// Signs all digests with the key in the file; how many there were.
    std::size_t sign_all(const std::string& key) const
    {
        std::size_t count = 0;
        for (const auto& entry : std::filesystem::directory_iterator(m_board.path("desk"))) {
            if (entry.path().extension() == ".sha384") {
                EXPECT_EQ(entry.file_size(), 48U);
                std::filesystem::path signature = entry.path();
                signature.replace_extension(".sig");
                run_openssl("pkeyutl -sign -inkey '" + key + "' -in '" + entry.path().string() + "' -out '" +
                            signature.string() + "'");
                ++count;
            }
        }
        return count;
    }

    /// What is said of the signature of each output, with the names of the digests that were written.
    testing::Matcher<std::string> is_of_both(const std::string& reason) const
    {
        std::vector<std::string> digests;
        for (const auto& entry : std::filesystem::directory_iterator(m_board.path("desk"))) {
            if (entry.path().extension() == ".sha384") {
                digests.push_back(entry.path().stem().string());
            }
        }
        EXPECT_EQ(digests.size(), 2U);
        const auto of_both = [&](const std::string& first, const std::string& second) {
            std::string text;
            for (const auto& [output, digest] : {std::pair{"a.rbf", first}, std::pair{"a.rim", second}}) {
                text += "Error (20809): Can't generate programming file " + m_board.path("out/") + output +
                        " - " + m_board.path("desk/") + digest + ".sig" + reason + "\n";
            }
            return text;
        };
        // The name of a digest is a part of itself: which one is of the stream, only the tool knows.
        return testing::AnyOf(of_both(digests[0], digests[1]), of_both(digests[1], digests[0]));
    }

    BOARD m_board;
    TEMPORARY_DIRECTORY m_elsewhere;
    std::string m_setup;
};

TEST_F(SIGNING_ELSEWHERE, digests_go_out_and_signatures_come_in)
{
    const ANSWER without = run({"generate", m_setup});
    EXPECT_EQ(without.exit_code, EXIT_CODE_REFUSED);
    EXPECT_THAT(without.err, HasSubstr("holds a public key alone; write the digests with"));
    const ANSWER digests = run({"generate", m_setup, "--write-digests", m_board.path("desk")});
    EXPECT_EQ(digests.exit_code, EXIT_CODE_DONE) << digests.err;
    EXPECT_THAT(digests.out, HasSubstr("Wrote the digests of " + m_setup));
    EXPECT_TRUE(nothing_is_written());
    EXPECT_EQ(sign_all(m_elsewhere / "key.pem"), 2U);
    const ANSWER done = run({"generate", m_setup, "--signatures", m_board.path("desk")});
    EXPECT_EQ(done.exit_code, EXIT_CODE_DONE) << done.err;
    LOADED_STREAM stream;
    std::string error;
    ASSERT_TRUE(load_configuration_stream(read_file(m_board.path("out/a.rbf")), stream, error)) << error;
    EXPECT_EQ(stream.images.at(0).signature_curve, "P-384");
    EXPECT_THAT(read_text_file(m_board.path("out/a.rim")), HasSubstr("\nsignature "));
    const ANSWER verified = run({"verify", m_setup, "--signatures", m_board.path("desk")});
    EXPECT_EQ(verified.exit_code, EXIT_CODE_DONE) << verified.err;
}

TEST_F(SIGNING_ELSEWHERE, signatures_of_another_key_and_missing_ones_are_refused)
{
    ASSERT_EQ(run({"generate", m_setup, "--write-digests", m_board.path("desk")}).exit_code, EXIT_CODE_DONE);
    const ANSWER missing = run({"generate", m_setup, "--signatures", m_board.path("desk")});
    EXPECT_EQ(missing.exit_code, EXIT_CODE_OUTPUT_NOT_WRITTEN);
    EXPECT_THAT(missing.err,
                is_of_both(" cannot be opened: no such file. Sign the digest of that name and put the "
                           "signature there."));
    EXPECT_TRUE(nothing_is_written());
    make_private_pem(m_elsewhere / "other.pem", "P-384");
    sign_all(m_elsewhere / "other.pem");
    const ANSWER other = run({"generate", m_setup, "--signatures", m_board.path("desk")});
    EXPECT_EQ(other.exit_code, EXIT_CODE_OUTPUT_NOT_WRITTEN);
    EXPECT_THAT(
        other.err,
        is_of_both(" is not a signature of the digest of that name by the key that the setup names; sign the "
                   "digest again with that key."));
    EXPECT_TRUE(nothing_is_written());
}

} // namespace
