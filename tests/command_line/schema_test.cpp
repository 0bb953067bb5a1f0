#include "child_process.h"
#include "command_run.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <set>

namespace
{

/// Collects documents with the schemas that they are to fit, and validates all at once.
class SCHEMA : public testing::Test
{
protected:
    void add(const std::string& schema, std::vector<std::string> arguments, int exit_code = EXIT_CODE_DONE)
    {
        arguments.emplace_back("--json");
        const ANSWER answer = run(arguments);
        EXPECT_EQ(answer.exit_code, exit_code) << arguments.front() << ": " << answer.err;
        add_text(schema, answer.out);
    }

    void add_text(const std::string& schema, const std::string& document)
    {
        const std::string path = m_board.path("document_" + std::to_string(m_pairs.size()) + ".json");
        write_file(path, document);
        m_pairs.push_back(IMAGEWRIGHT_SOURCE_DIR "/docs/schema/" + schema + ".json");
        m_pairs.push_back(path);
        m_used.insert(schema + ".json");
    }

    CHILD_RESULT validate() const
    {
        // The system's own interpreter is the one that the packages belong to.
        std::vector<std::string> command{"/usr/bin/python3",
                                         IMAGEWRIGHT_SOURCE_DIR "/tests/command_line/validate_documents.py"};
        command.insert(command.end(), m_pairs.begin(), m_pairs.end());
        return run_program(command);
    }

    BOARD m_board;
    std::vector<std::string> m_pairs;
    std::set<std::string> m_used;
};

TEST_F(SCHEMA, every_document_fits_the_schema_of_its_command_and_every_schema_has_one)
{
    const std::string passive = m_board.passive_setup();
    const std::string flash = m_board.flash_setup();
    const std::string refused = m_board.setup("refused.vek", "PS", "");
    write_file(m_board.path("unreadable.vek"), std::string("<VEK>"));

    add("generate", {"generate", passive});
    add("generate", {"generate", flash});
    add("generate", {"convert", m_board.path("top.sof"), "-o", m_board.path("top.rbf")});
    add("check", {"check", flash});
    add("check", {"check", refused}, EXIT_CODE_REFUSED);
    add("check", {"generate", refused}, EXIT_CODE_REFUSED);
    add("check", {"verify", refused}, EXIT_CODE_REFUSED);
    add("generate-many", {"generate", passive, flash, refused, m_board.path("unreadable.vek")},
        EXIT_CODE_INPUT_UNREADABLE);
    add("error", {"generate", m_board.path("missing.vek")}, EXIT_CODE_INPUT_UNREADABLE);
    add("error", {"edit", passive, "settings", "mod=PS"}, EXIT_CODE_USAGE);
    add("verify", {"verify", passive});
    add("verify", {"verify", m_board.path("out/board.rbf")});
    std::filesystem::remove(m_board.path("out/board.rbf"));
    add("verify", {"verify", passive}, EXIT_CODE_REFUSED);
    add("map", {"map", flash});
    add("map", {"map", passive});
    add("edit", {"edit", flash, "get", "output_file", "type=POF", "settings", "mode=ASX1", "-o",
                 m_board.path("copy.vek")});
    add("edit", {"edit", flash, "get", "settings"});
    add("show", {"show", flash});
    add("show", {"show", passive});
    add("inspect-bitstream", {"inspect", m_board.path("top.sof")});
    add("inspect-bitstream", {"inspect", m_board.bitstream("onchip.sof", "GY1M08", "SINGLE_IMAGE")});
    add("inspect-stream", {"inspect", m_board.path("top.rbf")});
    add("inspect-stream", {"inspect", m_board.encrypted_stream()});
    add("inspect-stream", {"inspect", m_board.signed_stream()});
    add("inspect-stream", {"inspect", m_board.chained_stream()});
    add("inspect-stream", {"inspect", m_board.update_stream()});
    add("inspect-stream", {"inspect", m_board.prepared_stream()});
    for (const std::string name : {"board.pof", "board.jic", "board.rpd", "board_pof.map", "board.hex",
                                   "board.ttf", "board.svf", "board.jam", "board.jbc"}) {
        add("inspect-file", {"inspect", m_board.path("out/" + name)});
    }
    add("written-file", {"sample", "--device", "BS1L15", "-o", m_board.path("sample.sof")});
    add("written-file", {"map", flash, "--svg", "-o", m_board.path("map.svg")});
    add("written-file",
        {"inspect", m_board.path("top.sof"), "--extract", "core", "-o", m_board.path("core.bin")});
    add("written-file",
        {"pack", "--device", "BS1L15", "--core", m_board.path("core.bin"), "-o", m_board.path("packed.sof")});
    add("completion", {"completion", "bash"});
    for (const std::string what : {"families", "devices", "flash", "modes", "outputs", "params"}) {
        add("list-" + what, {"list", what});
    }

    const CHILD_RESULT result = validate();
    EXPECT_EQ(result.exit_code, 0) << result.out << result.err;

    std::set<std::string> schemas;
    for (const auto& entry : std::filesystem::directory_iterator(IMAGEWRIGHT_SOURCE_DIR "/docs/schema")) {
        schemas.insert(entry.path().filename());
    }
    EXPECT_EQ(m_used, schemas);
}

TEST_F(SCHEMA, a_document_that_lacks_or_adds_a_key_does_not_fit)
{
    add_text("written-file", R"({"file": "a.sof"})");
    add_text("written-file", R"({"file": "a.sof", "bytes": 1, "more": 2})");
    add_text("map", R"({"setup": "a.vek", "devices": [{"id": "F"}]})");
    add_text("verify", R"({"sound": "yes", "files": []})");
    add_text("written-file", R"({"file": "a.sof", "bytes": 1})");
    const CHILD_RESULT result = validate();
    EXPECT_EQ(result.exit_code, 1);
    for (const std::string number : {"0", "2", "4", "6"}) {
        EXPECT_THAT(result.out, testing::HasSubstr("document_" + number + ".json does not fit "));
    }
    EXPECT_THAT(result.out, testing::Not(testing::HasSubstr("document_8.json")));
}

} // namespace
