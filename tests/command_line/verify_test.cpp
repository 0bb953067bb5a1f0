#include "command_run.h"

#include <gmock/gmock.h>

#include <filesystem>

namespace
{

using testing::HasSubstr;
using testing::StartsWith;

class VERIFY : public testing::Test
{
protected:
    void generate(const std::string& setup)
    {
        m_setup = setup;
        const ANSWER answer = run({"generate", setup, "--json"});
        ASSERT_EQ(answer.exit_code, EXIT_CODE_DONE) << answer.err << answer.out;
        m_files.clear();
        const JSON json = answer.json();
        for (const JSON& file : json.at("files")) {
            m_files.push_back(file.at("file"));
        }
    }

    /// Flips a bit in several places of every output; each must be found, and the file named. In text, most
    /// bits make another character; where that spells the same value, it is still not what was generated.
    void flip_everywhere()
    {
        for (const std::string& path : m_files) {
            const std::vector<std::uint8_t> good = read_file(path);
            ASSERT_FALSE(good.empty());
            const std::size_t size = good.size();
            for (const std::size_t place : {std::size_t{0}, std::size_t{9}, size / 4, size / 3, size / 2,
                                            size - size / 5, size - 2, size - 1}) {
                for (const unsigned bit : {0U, 5U}) {
                    std::vector<std::uint8_t> bad = good;
                    bad[place] = static_cast<std::uint8_t>(bad[place] ^ (1U << bit));
                    write_file(path, bad);
                    const ANSWER answer = run({"verify", m_setup});
                    EXPECT_EQ(answer.exit_code, EXIT_CODE_REFUSED)
                        << path << " at " << place << " bit " << bit;
                    EXPECT_THAT(answer.err, StartsWith(path + ": "));
                    EXPECT_EQ(std::count(answer.err.begin(), answer.err.end(), '\n'), 1) << answer.err;
                }
            }
            write_file(path, good);
        }
        EXPECT_EQ(run({"verify", m_setup}).exit_code, EXIT_CODE_DONE);
    }

    BOARD m_board;
    std::string m_setup;
    std::vector<std::string> m_files;
};

TEST_F(VERIFY, finds_nothing_wrong_with_what_was_just_generated)
{
    generate(m_board.passive_setup());
    const ANSWER answer = run({"verify", m_setup});
    EXPECT_EQ(answer.exit_code, EXIT_CODE_DONE) << answer.err;
    for (const std::string& file : m_files) {
        EXPECT_THAT(answer.out, HasSubstr(file + " is what " + m_setup + " generates.\n"));
    }
    const JSON json = run({"verify", m_setup, "--json"}).json();
    EXPECT_EQ(json.at("sound"), true);
    EXPECT_EQ(json.at("files").size(), m_files.size());
}

TEST_F(VERIFY, finds_a_flipped_bit_in_every_output_made_from_a_bitstream)
{
    generate(m_board.passive_setup());
    ASSERT_EQ(m_files.size(), 6U);
    flip_everywhere();
}

TEST_F(VERIFY, finds_a_flipped_bit_in_every_output_made_from_a_flash_device)
{
    generate(m_board.flash_setup());
    ASSERT_EQ(m_files.size(), 5U);
    flip_everywhere();
}

TEST_F(VERIFY, finds_files_that_are_cut_grown_or_gone)
{
    generate(m_board.passive_setup());
    for (const std::string& path : m_files) {
        const std::vector<std::uint8_t> good = read_file(path);
        std::vector<std::uint8_t> bad(good.begin(), good.end() - 1);
        write_file(path, bad);
        EXPECT_EQ(run({"verify", m_setup}).exit_code, EXIT_CODE_REFUSED) << path;
        bad = good;
        bad.push_back('0');
        write_file(path, bad);
        EXPECT_EQ(run({"verify", m_setup}).exit_code, EXIT_CODE_REFUSED) << path;
        std::filesystem::remove(path);
        const ANSWER answer = run({"verify", m_setup, "--json"});
        EXPECT_EQ(answer.exit_code, EXIT_CODE_REFUSED) << path;
        EXPECT_THAT(answer.err, HasSubstr(path));
        EXPECT_EQ(answer.json().at("sound"), false);
        write_file(path, good);
    }
}

TEST_F(VERIFY, writes_nothing)
{
    generate(m_board.flash_setup());
    const auto before = m_board.directory().entries();
    const auto outputs = std::filesystem::directory_iterator(m_board.path("out"));
    const auto count = std::distance(begin(outputs), end(outputs));
    const auto time = std::filesystem::last_write_time(m_files.front());
    ASSERT_EQ(run({"verify", m_setup}).exit_code, EXIT_CODE_DONE);
    EXPECT_EQ(m_board.directory().entries(), before);
    const auto after = std::filesystem::directory_iterator(m_board.path("out"));
    EXPECT_EQ(std::distance(begin(after), end(after)), count);
    EXPECT_EQ(std::filesystem::last_write_time(m_files.front()), time);
}

TEST_F(VERIFY, notices_that_an_input_has_changed_since)
{
    generate(m_board.passive_setup());
    m_board.bitstream("top.sof", "BS1L15", "PS", 6000);
    EXPECT_EQ(run({"verify", m_setup}).exit_code, EXIT_CODE_REFUSED);
}

TEST_F(VERIFY, looks_in_another_directory_when_told)
{
    generate(m_board.passive_setup());
    std::filesystem::rename(m_board.path("out"), m_board.path("moved"));
    EXPECT_EQ(run({"verify", m_setup, "--output-directory", m_board.path("moved")}).exit_code,
              EXIT_CODE_DONE);
    EXPECT_EQ(run({"verify", m_setup}).exit_code, EXIT_CODE_REFUSED);
}

TEST_F(VERIFY, compares_one_file_with_the_output_of_its_name)
{
    generate(m_board.flash_setup());
    std::filesystem::create_directory(m_board.path("card"));
    const std::string copy = m_board.path("card/board_sec.rpd");
    std::filesystem::copy(m_board.path("out/board_sec.rpd"), copy);
    const ANSWER good = run({"verify", copy, "--against", m_setup});
    EXPECT_EQ(good.exit_code, EXIT_CODE_DONE) << good.err;
    EXPECT_EQ(good.out, copy + " is what " + m_setup + " generates.\n");

    std::vector<std::uint8_t> bytes = read_file(copy);
    bytes[0x200010] ^= 0x40;
    write_file(copy, bytes);
    const ANSWER bad = run({"verify", copy, "--against", m_setup});
    EXPECT_EQ(bad.exit_code, EXIT_CODE_REFUSED);
    EXPECT_THAT(bad.err, StartsWith(copy + ": "));
    EXPECT_THAT(bad.err, HasSubstr("0x00200010"));

    std::filesystem::copy(m_board.path("out/board_sec.rpd"), m_board.path("card/other.rpd"));
    const ANSWER none = run({"verify", m_board.path("card/other.rpd"), "--against", m_setup});
    EXPECT_EQ(none.exit_code, EXIT_CODE_USAGE);
    EXPECT_THAT(none.err, HasSubstr("is none of the output files of"));
}

TEST_F(VERIFY, holds_a_file_against_its_own_check_sums)
{
    generate(m_board.passive_setup());
    for (const std::string name : {"top.sof", "out/board.rbf", "out/board.ttf", "out/board.hex",
                                   "out/board.svf", "out/board.jam", "out/board.jbc"}) {
        const std::string path = m_board.path(name);
        const ANSWER good = run({"verify", path});
        EXPECT_EQ(good.exit_code, EXIT_CODE_DONE) << good.err;
        EXPECT_EQ(good.out, path + " is sound.\n");
        const std::vector<std::uint8_t> bytes = read_file(path);
        // From the middle on, so that it falls into the data.
        for (std::size_t place = bytes.size() / 2; place < bytes.size() / 2 + 3; ++place) {
            std::vector<std::uint8_t> bad = bytes;
            bad[place] ^= 1U;
            write_file(path, bad);
            const ANSWER answer = run({"verify", path});
            EXPECT_EQ(answer.exit_code, EXIT_CODE_REFUSED) << path;
            EXPECT_THAT(answer.err, HasSubstr(path));
        }
        write_file(path, bytes);
    }
}

TEST_F(VERIFY, finds_damage_in_a_flash_file_without_its_setup)
{
    generate(m_board.flash_setup());
    for (const std::string name : {"out/board.pof", "out/board.jic"}) {
        std::vector<std::uint8_t> bytes = read_file(m_board.path(name));
        EXPECT_EQ(run({"verify", m_board.path(name)}).exit_code, EXIT_CODE_DONE);
        bytes[bytes.size() / 2] ^= 1U;
        write_file(m_board.path(name), bytes);
        EXPECT_EQ(run({"verify", m_board.path(name)}).exit_code, EXIT_CODE_REFUSED);
    }
}

TEST_F(VERIFY, says_when_a_file_cannot_be_judged_alone)
{
    generate(m_board.flash_setup());
    const ANSWER answer = run({"verify", m_board.path("out/board.rpd")});
    EXPECT_EQ(answer.exit_code, EXIT_CODE_USAGE);
    EXPECT_EQ(answer.err,
              "imagewright-cmd: " + m_board.path("out/board.rpd") +
                  " carries no check sums, so that it cannot be verified alone; name the setup that "
                  "it was made from behind --against.\n");
    EXPECT_EQ(run({"verify", m_board.path("data.bin")}).exit_code, EXIT_CODE_USAGE);
}

TEST_F(VERIFY, tells_unreadable_input_from_failed_verification)
{
    EXPECT_EQ(run({"verify", m_board.path("missing.vek")}).exit_code, EXIT_CODE_INPUT_UNREADABLE);
    EXPECT_EQ(run({"verify", m_board.path("missing.rbf")}).exit_code, EXIT_CODE_INPUT_UNREADABLE);
    generate(m_board.passive_setup());
    EXPECT_EQ(run({"verify", m_board.path("out/missing.rbf"), "--against", m_setup}).exit_code,
              EXIT_CODE_INPUT_UNREADABLE);
    std::filesystem::remove(m_board.path("top.sof"));
    const ANSWER answer = run({"verify", m_setup, "--json"});
    EXPECT_EQ(answer.exit_code, EXIT_CODE_REFUSED);
    EXPECT_EQ(answer.json().at("can_generate"), false);
}

TEST_F(VERIFY, inspect_tells_what_every_output_holds)
{
    generate(m_board.flash_setup());
    const JSON pof = run({"inspect", m_board.path("out/board.pof"), "--json"}).json();
    EXPECT_EQ(pof.at("kind"), "programming file");
    EXPECT_EQ(pof.at("device"), "W25Q128JV");
    ASSERT_EQ(pof.at("partitions").size(), 3U);
    EXPECT_EQ(pof.at("partitions").at(1).at("name"), "P2");
    EXPECT_EQ(pof.at("partitions").at(1).at("page"), 1);
    for (const std::string& file : m_files) {
        const ANSWER answer = run({"inspect", file});
        EXPECT_EQ(answer.exit_code, EXIT_CODE_DONE) << answer.err;
        EXPECT_THAT(answer.out, HasSubstr("kind: programming file\n"));
    }
    write_file(m_board.path("out/board.pof"), std::string("no such thing"));
    EXPECT_EQ(run({"inspect", m_board.path("out/board.pof")}).exit_code, EXIT_CODE_INPUT_UNREADABLE);
}

TEST_F(VERIFY, inspect_tells_what_protects_an_image_and_no_secret)
{
    const std::string stream = m_board.encrypted_stream();
    const JSON encrypted = run({"inspect", stream, "--json"}).json().at("images").at(0);
    EXPECT_EQ(encrypted.at("encryption").at("key_bits"), 256);
    EXPECT_EQ(encrypted.at("encryption").at("key_place"), "battery");
    EXPECT_EQ(encrypted.at("encryption").at("fuse_options"), JSON::object());
    EXPECT_FALSE(encrypted.contains("signer"));
    EXPECT_THAT(run({"inspect", stream}).out, testing::Not(HasSubstr("aaaaaaaa")));
    const JSON is_signed = run({"inspect", m_board.signed_stream(), "--json"}).json().at("images").at(0);
    EXPECT_EQ(is_signed.at("signer").at("curve"), "P-384");
    EXPECT_EQ(is_signed.at("signer").at("public_key").get<std::string>().size(), 192U);
    EXPECT_FALSE(is_signed.contains("encryption"));
}

} // namespace
