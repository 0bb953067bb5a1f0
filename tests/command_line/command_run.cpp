#include "command_run.h"

#include "exit_code.h"
#include "test_keys.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>

ANSWER run(const std::vector<std::string>& arguments)
{
    std::ostringstream out;
    std::ostringstream err;
    ANSWER answer;
    answer.exit_code = run_command_line(arguments, out, err);
    answer.out = out.str();
    answer.err = err.str();
    return answer;
}

std::string element(const std::string& name, const std::string& text)
{
    return "<" + name + ">" + text + "</" + name + ">";
}

std::string BOARD::bitstream(const std::string& name, const std::string& device, const std::string& scheme,
                             std::size_t core, const std::vector<std::string>& more) const
{
    std::string data(core, '\0');
    std::uint32_t state = static_cast<std::uint32_t>(core) | 1U;
    for (char& byte : data) {
        state = state * 1664525U + 1013904223U;
        byte = static_cast<char>(state >> 24);
    }
    write_file(path(name + ".core"), data);
    std::vector<std::string> command{
        "pack",     "--quiet", "--device", device,    "--core", path(name + ".core"),
        "--scheme", scheme,    "-o",       path(name)};
    command.insert(command.end(), more.begin(), more.end());
    const ANSWER answer = run(command);
    EXPECT_EQ(answer.exit_code, EXIT_CODE_DONE) << answer.err;
    return path(name);
}

std::string BOARD::setup(const std::string& name, const std::string& mode, const std::string& groups) const
{
    write_file(path(name), "<VEK version=\"1\"><SETTINGS mode=\"" + mode + "\"/>" + groups + "</VEK>");
    return path(name);
}

std::string BOARD::passive_setup() const
{
    std::filesystem::create_directory(path("out"));
    std::string outputs;
    for (const std::string type : {"RBF", "TTF", "HEX", "SVF", "JAM", "JBC"}) {
        outputs += "<OUTPUT_FILE type=\"" + type + "\" name=\"board\" directory=\"" + path("out") + "\">" +
                   element("BITSTREAM_ID", "Bitstream_1") + "</OUTPUT_FILE>";
    }
    return setup("passive.vek", "PS",
                 element("BITSTREAMS", "<BITSTREAM id=\"Bitstream_1\">" +
                                           element("PATH", bitstream("top.sof")) + "</BITSTREAM>") +
                     element("OUTPUT_FILES", outputs));
}

std::string BOARD::encrypted_stream() const
{
    write_file(path("board.key"), "board " + std::string(64, 'a') + "\n");
    std::filesystem::permissions(path("board.key"), std::filesystem::perms::owner_read);
    const ANSWER answer = run({"convert", bitstream("encrypted.sof", "CA3M050"), "-o", path("encrypted.rbf"),
                               "--option", "path_encryption=1", "--option",
                               "path_key_file1=" + path("board.key"), "--option", "path_key1=board"});
    EXPECT_EQ(answer.exit_code, EXIT_CODE_DONE) << answer.err;
    return path("encrypted.rbf");
}

std::string BOARD::signed_stream() const
{
    make_private_pem(path("sign.pem"), "P-384");
    const ANSWER answer =
        run({"convert", bitstream("signed.sof", "ZR9A012", "LNKSX8"), "-o", path("signed.rbf"), "--option",
             "path_signing=ON", "--option", "path_signing_pem_file=" + path("sign.pem")});
    EXPECT_EQ(answer.exit_code, EXIT_CODE_DONE) << answer.err;
    return path("signed.rbf");
}

std::string BOARD::chained_stream() const
{
    for (const std::string name : {"root", "line"}) {
        make_private_pem(path(name + ".pem"), "P-256");
        make_public_pem(path(name + ".pem"), path(name + ".pub"));
    }
    EXPECT_EQ(run({"chain", "--pem", path("root.pem"), "--key", path("line.pub"), "-o", path("line.skc")})
                  .exit_code,
              EXIT_CODE_DONE);
    const ANSWER answer =
        run({"convert", bitstream("chained.sof", "ZR9A012", "LNKSX8"), "-o", path("chained.rbf"), "--option",
             "path_signing=ON", "--option", "path_signing_pem_file=" + path("line.pem"), "--option",
             "path_skc_file=" + path("line.skc")});
    EXPECT_EQ(answer.exit_code, EXIT_CODE_DONE) << answer.err;
    return path("chained.rbf");
}

std::string BOARD::update_stream() const
{
    const ANSWER answer =
        run({"convert", bitstream("update.sof", "ZR9A012", "LNKSX8"), "-o", path("update.rbf"), "--option",
             "path_rsu_upgrade=1", "--option", "path_rsu_version=7"});
    EXPECT_EQ(answer.exit_code, EXIT_CODE_DONE) << answer.err;
    return path("update.rbf");
}

std::string BOARD::prepared_stream() const
{
    const ANSWER answer =
        run({"convert", bitstream("prepared.sof", "ZR9A012", "LNKSX8", 70000, {"--encryption"}), "-o",
             path("prepared.rbf"), "--option", "path_signing=ON", "--option", "path_finalize_encryption=1",
             "--option", "path_finalize_encryption_later=1"});
    EXPECT_EQ(answer.exit_code, EXIT_CODE_DONE) << answer.err;
    return path("prepared.rbf");
}

std::string BOARD::flash_setup() const
{
    std::filesystem::create_directory(path("out"));
    const std::string first = bitstream("factory.sof", "CA3M050", "ASX4", 70000);
    const std::string second = bitstream("application.sof", "CA3M050", "ASX4", 900000);
    write_file(path("data.bin"), std::string(300, 'd'));
    const auto assign = [](const std::string& attributes, const std::string& input) {
        return "<ASSIGNMENT " + attributes + ">" + input + "</ASSIGNMENT>";
    };
    const auto output = [this](const std::string& type, const std::string& inside) {
        return "<OUTPUT_FILE type=\"" + type + "\" name=\"board\" directory=\"" + path("out") + "\">" +
               inside + element("FLASH_DEVICE_ID", "Flash_Device_1") + "</OUTPUT_FILE>";
    };
    return setup(
        "flash.vek", "ASX4",
        element("RAW_FILES", "<RAW_FILE type=\"RBF\" id=\"Raw_File_1\">" + path("data.bin") + "</RAW_FILE>") +
            element("ASSIGNMENTS",
                    assign("page=\"0\" partition_id=\"P1\"", element("BITSTREAM_ID", "Bitstream_1")) +
                        assign("page=\"1\" partition_id=\"P2\"", element("BITSTREAM_ID", "Bitstream_2")) +
                        assign("partition_id=\"DATA &amp; &lt;more&gt;\"",
                               element("RAW_FILE_ID", "Raw_File_1"))) +
            element("BITSTREAMS", "<BITSTREAM id=\"Bitstream_1\">" + element("PATH", first) +
                                      "</BITSTREAM><BITSTREAM id=\"Bitstream_2\">" + element("PATH", second) +
                                      "</BITSTREAM>") +
            element("FLASH_DEVICES", element("FLASH_LOADER", "CA3M050") +
                                         "<FLASH_DEVICE type=\"W25Q128JV\" id=\"Flash_Device_1\">"
                                         "<PARTITION id=\"P1\" s_addr=\"0x00000000\" e_addr=\"auto\"/>"
                                         "<PARTITION id=\"P2\" s_addr=\"0x00200000\" e_addr=\"0x003FFFFF\"/>"
                                         "<PARTITION id=\"DATA &amp; &lt;more&gt;\" s_addr=\"0x00FFF000\" "
                                         "e_addr=\"0x00FFFFFF\"/></FLASH_DEVICE>") +
            element("OUTPUT_FILES", output("POF", "<SECONDARY_FILE type=\"MAP\" name=\"board_pof\"/>"
                                                  "<SECONDARY_FILE type=\"SEC_RPD\" name=\"board_sec\"/>") +
                                        output("JIC", "") + output("RPD", "")));
}
