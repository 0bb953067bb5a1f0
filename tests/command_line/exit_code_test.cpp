#include "command_run.h"

#include <gmock/gmock.h>

#include <filesystem>

namespace
{

/// A call and the code that it must end with.
struct CALL {
    std::vector<std::string> arguments;
    EXIT_CODE code;
};

/// Every command with every kind of end that it can come to. In the arguments, @ stands for the directory.
const CALL CALLS[] = {
    {{"--help"}, EXIT_CODE_DONE},
    {{"--version"}, EXIT_CODE_DONE},
    {{}, EXIT_CODE_USAGE},
    {{"nonsense"}, EXIT_CODE_USAGE},
    {{"-C", "@/missing", "list", "modes"}, EXIT_CODE_USAGE},

    {{"generate", "@/passive.vek"}, EXIT_CODE_DONE},
    {{"generate", "@/refused.vek"}, EXIT_CODE_REFUSED},
    {{"generate"}, EXIT_CODE_USAGE},
    {{"generate", "@/passive.vek", "--nonsense"}, EXIT_CODE_USAGE},
    {{"generate", "@/missing.vek"}, EXIT_CODE_INPUT_UNREADABLE},
    {{"generate", "@"}, EXIT_CODE_INPUT_UNREADABLE},
    {{"generate", "@/out"}, EXIT_CODE_INPUT_UNREADABLE},
    {{"generate", "@/passive.vek", "--output-directory", "@/blocked"}, EXIT_CODE_REFUSED},

    {{"convert", "@/top.sof", "-o", "@/top.rbf"}, EXIT_CODE_DONE},
    {{"convert", "@/top.sof", "-o", "@/missing/top.rbf"}, EXIT_CODE_REFUSED},
    {{"convert", "@/top.sof", "-o", "@/top.xyz"}, EXIT_CODE_USAGE},
    {{"convert", "@/missing.sof", "-o", "@/top.rbf"}, EXIT_CODE_INPUT_UNREADABLE},
    {{"convert", "@/top.sof", "-o", "@/top.rbf", "--save", "@/missing/a.vek"}, EXIT_CODE_OUTPUT_NOT_WRITTEN},

    {{"check", "@/passive.vek"}, EXIT_CODE_DONE},
    {{"check", "@/refused.vek"}, EXIT_CODE_REFUSED},
    {{"check"}, EXIT_CODE_USAGE},
    {{"check", "@/unreadable.vek"}, EXIT_CODE_INPUT_UNREADABLE},

    {{"show", "@/passive.vek"}, EXIT_CODE_DONE},
    {{"show", "@/passive.vek", "more"}, EXIT_CODE_USAGE},
    {{"show", "@/unreadable.vek"}, EXIT_CODE_INPUT_UNREADABLE},

    {{"edit", "@/passive.vek", "settings", "mode=FPP", "-o", "@/edited.vek"}, EXIT_CODE_DONE},
    {{"edit", "@/passive.vek", "output_file", "type=PRRBF", "bitstream_id=None"}, EXIT_CODE_REFUSED},
    {{"edit", "@/passive.vek", "settings", "mod=FPP"}, EXIT_CODE_USAGE},
    {{"edit", "@/missing.vek", "settings", "mode=FPP"}, EXIT_CODE_INPUT_UNREADABLE},
    {{"edit", "@/passive.vek", "settings", "mode=FPP", "-o", "@/missing/a.vek"},
     EXIT_CODE_OUTPUT_NOT_WRITTEN},

    {{"verify", "@/generated.vek"}, EXIT_CODE_DONE},
    {{"verify", "@/damaged.rbf"}, EXIT_CODE_REFUSED},
    {{"verify", "@/refused.vek"}, EXIT_CODE_REFUSED},
    {{"verify", "@/top.sof.core"}, EXIT_CODE_USAGE},
    {{"verify", "@/missing.vek"}, EXIT_CODE_INPUT_UNREADABLE},
    {{"verify", "@/top.sof", "--against", "@/missing.vek"}, EXIT_CODE_INPUT_UNREADABLE},

    {{"map", "@/flash.vek"}, EXIT_CODE_DONE},
    {{"map", "@/overlap.vek"}, EXIT_CODE_REFUSED},
    {{"map", "@/flash.vek", "--svg"}, EXIT_CODE_USAGE},
    {{"map", "@/missing.vek"}, EXIT_CODE_INPUT_UNREADABLE},
    {{"map", "@/flash.vek", "--svg", "-o", "@/missing/a.svg"}, EXIT_CODE_OUTPUT_NOT_WRITTEN},

    {{"inspect", "@/top.sof"}, EXIT_CODE_DONE},
    {{"inspect", "@/top.sof", "--extract", "nothing", "-o", "@/a"}, EXIT_CODE_USAGE},
    {{"inspect", "@/damaged.rbf"}, EXIT_CODE_INPUT_UNREADABLE},
    {{"inspect", "@/top.sof", "--extract", "core", "-o", "@/missing/a"}, EXIT_CODE_OUTPUT_NOT_WRITTEN},

    {{"pack", "--device", "BS1L15", "--core", "@/top.sof.core", "-o", "@/a.sof"}, EXIT_CODE_DONE},
    {{"pack", "--device", "BS1L15", "--core", "@/top.sof.core", "-o", "@/top.sof.core"}, EXIT_CODE_USAGE},
    {{"pack", "--device", "BS1L15", "--core", "@/missing", "-o", "@/a.sof"}, EXIT_CODE_INPUT_UNREADABLE},
    {{"pack", "--device", "BS1L15", "--core", "@/top.sof.core", "-o", "@/missing/a.sof"},
     EXIT_CODE_OUTPUT_NOT_WRITTEN},

    {{"sample", "--device", "BS1L15", "-o", "@/a.sof"}, EXIT_CODE_DONE},
    {{"sample", "--device", "NONE", "-o", "@/a.sof"}, EXIT_CODE_USAGE},
    {{"sample", "--device", "BS1L15", "-o", "@/missing/a.sof"}, EXIT_CODE_OUTPUT_NOT_WRITTEN},

    {{"key", "aes", "--key-file", "@/board.key", "--key", "k", "-o", "@/a.aek"}, EXIT_CODE_DONE},
    {{"key", "lock", "--key-file", "@/board.key", "--key", "k", "-o", "@/a.elk"}, EXIT_CODE_USAGE},
    {{"key", "aes", "--key-file", "@/missing.key", "--key", "k", "-o", "@/b.aek"},
     EXIT_CODE_INPUT_UNREADABLE},
    {{"key", "aes", "--key-file", "@/board.key", "--key", "k", "-o", "@/a.aek"},
     EXIT_CODE_OUTPUT_NOT_WRITTEN},

    {{"firmware", "--image", "@/top.sof", "--family", "Zircon", "--pem", "@/missing.pem", "-o", "@/a.fw"},
     EXIT_CODE_INPUT_UNREADABLE},

    {{"list", "modes"}, EXIT_CODE_DONE},
    {{"list", "nonsense"}, EXIT_CODE_USAGE},

    {{"completion", "zsh"}, EXIT_CODE_DONE},
    {{"completion"}, EXIT_CODE_USAGE},
};

TEST(exit_codes, every_command_tells_how_it_has_ended)
{
    const BOARD board;
    board.passive_setup();
    board.flash_setup();
    board.setup("refused.vek", "PS", "");
    write_file(board.path("board.key"), "k " + std::string(64, 'A') + "\n");
    board.setup("overlap.vek", "ASX4",
                element("FLASH_DEVICES",
                        "<FLASH_DEVICE type=\"W25Q128JV\" id=\"F\">"
                        "<PARTITION id=\"A\" s_addr=\"0\" e_addr=\"1FFFF\"/>"
                        "<PARTITION id=\"B\" s_addr=\"10000\" e_addr=\"2FFFF\"/></FLASH_DEVICE>"));
    write_file(board.path("unreadable.vek"), std::string("<VEK>"));
    ASSERT_EQ(run({"convert", board.path("top.sof"), "-o", board.path("generated.rbf"), "--save",
                   board.path("generated.vek"), "--quiet"})
                  .exit_code,
              EXIT_CODE_DONE);
    std::vector<std::uint8_t> bytes = read_file(board.path("generated.rbf"));
    bytes[bytes.size() / 2] ^= 1U;
    write_file(board.path("damaged.rbf"), bytes);

    for (const CALL& call : CALLS) {
        std::vector<std::string> arguments = call.arguments;
        std::string line;
        for (std::string& argument : arguments) {
            if (argument.starts_with('@')) {
                argument.replace(0, 1, board.directory().path());
            }
            line += ' ' + argument;
        }
        const ANSWER answer = run(arguments);
        EXPECT_EQ(answer.exit_code, call.code) << line << '\n' << answer.err;
        if (call.code != EXIT_CODE_DONE) {
            EXPECT_NE(answer.err + answer.out, "") << line;
        }
    }
}

TEST(exit_codes, a_file_that_cannot_be_written_while_generating_is_told_by_its_own_code)
{
    const BOARD board;
    const std::string setup = board.passive_setup();
    // A directory in the place of the temporary file's directory cannot be met as root, so a symbolic link
    // that leads nowhere stands in the place of an output.
    std::filesystem::create_symlink(board.path("nowhere/board.rbf"), board.path("out/board.rbf"));
    const ANSWER answer = run({"generate", setup, "--json"});
    EXPECT_EQ(answer.exit_code, EXIT_CODE_OUTPUT_NOT_WRITTEN) << answer.err;
    EXPECT_EQ(answer.json().at("complete"), false);
    EXPECT_THAT(answer.err, testing::HasSubstr("board.rbf"));
    EXPECT_TRUE(std::filesystem::exists(board.path("out/board.ttf")));
}

} // namespace
