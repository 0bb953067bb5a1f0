#include "child_process.h"
#include "document_compare.h"
#include "random_document.h"
#include "setup_reader.h"
#include "setup_writer.h"
#include "temporary_directory.h"
#include "vek_file_assistant.h"
#include "xml_reader.h"

#include <gtest/gtest.h>

#include <ctime>

namespace
{

using DOCUMENT = std::unique_ptr<PGM_COMMON_XML_VEK_VEK>;

DOCUMENT read_text(const std::string& text, std::string& message)
{
    DOCUMENT document;
    const std::span bytes(reinterpret_cast<const std::uint8_t*>(text.data()), text.size());
    const bool is_read = read_setup_bytes(bytes, "top.vek", document, message);
    EXPECT_EQ(is_read, document != nullptr);
    return document;
}

DOCUMENT read_good(const std::string& text)
{
    std::string message;
    DOCUMENT document = read_text(text, message);
    EXPECT_NE(document, nullptr) << message;
    return document;
}

std::string written(const PGM_COMMON_XML_VEK_VEK& document)
{
    std::string text;
    std::string message;
    EXPECT_TRUE(write_setup_text(document, text, message)) << message;
    return text;
}

std::string refusal_to_write(const PGM_COMMON_XML_VEK_VEK& document)
{
    std::string text = "untouched";
    std::string message;
    EXPECT_FALSE(write_setup_text(document, text, message));
    EXPECT_EQ(text, "untouched");
    return message;
}

std::string large_setup(unsigned count)
{
    std::string raw_files;
    std::string assignments;
    std::string partitions;
    for (unsigned number = 1; number <= count; ++number) {
        const std::string n = std::to_string(number);
        raw_files += "<RAW_FILE type=\"HEX\" id=\"Raw_File_" + n + "\">data/" + n + ".hex</RAW_FILE>\n";
        assignments += "<ASSIGNMENT partition_id=\"P" + n + "\"><RAW_FILE_ID>Raw_File_" + n +
                       "</RAW_FILE_ID></ASSIGNMENT>\n";
        partitions += "<PARTITION s_addr=\"0x1000\" e_addr=\"0x1FFF\" id=\"P" + n + "\"/>\n";
    }
    return "<VEK><RAW_FILES>" + raw_files + "</RAW_FILES><ASSIGNMENTS>" + assignments +
           "</ASSIGNMENTS><FLASH_DEVICES><FLASH_DEVICE id=\"F\">" + partitions +
           "</FLASH_DEVICE></FLASH_DEVICES></VEK>";
}

/// Processor time of the fastest of several runs, which the load of the machine touches least.
template <typename WORK>
double fastest_run(WORK work)
{
    double fastest = 1e9;
    for (int run = 0; run < 5; ++run) {
        const std::clock_t start = std::clock();
        work();
        fastest = std::min(fastest, static_cast<double>(std::clock() - start));
    }
    return fastest;
}

} // namespace

TEST(setup_file, any_document_written_and_read_back_is_equal)
{
    const TEMPORARY_DIRECTORY directory;
    for (unsigned seed = 1; seed <= 60; ++seed) {
        const DOCUMENT document = make_random_document(seed);
        std::string message;
        ASSERT_TRUE(write_setup_file(*document, directory / "top.vek", message)) << seed << message;
        DOCUMENT again;
        ASSERT_TRUE(read_setup_file(directory / "top.vek", again, message)) << seed << message;
        EXPECT_TRUE(documents_equal(*document, *again, message)) << seed << message;
        EXPECT_EQ(written(*document), written(*again)) << seed;
        EXPECT_EQ(written(*document).find("secret words"), std::string::npos);
        const CHILD_RESULT lint = run_program({"xmllint", "--noout", directory / "top.vek"});
        EXPECT_EQ(lint.exit_code, 0) << lint.err;
    }
    EXPECT_EQ(directory.entries(), std::vector<std::string>{"top.vek"});
}

TEST(setup_file, a_difference_is_named_by_its_place)
{
    const DOCUMENT document = make_random_document(7);
    const DOCUMENT other = make_random_document(7);
    std::string difference;
    EXPECT_TRUE(documents_equal(*document, *other, difference)) << difference;
    other->flash_devices[0]->flash_device[0]->mbr[0]->partition[0]->size = "new";
    document->flash_devices[0]->flash_device[0]->mbr[0]->partition[0]->size = "old";
    EXPECT_FALSE(documents_equal(*document, *other, difference));
    EXPECT_EQ(difference,
              "VEK/FLASH_DEVICES[1]/FLASH_DEVICE[1]/MBR[1]/PARTITION[1]: size is \"old\" and \"new\"");
}

TEST(setup_file, a_document_has_one_form)
{
    PGM_COMMON_XML_VEK_VEK document(PGM_COMMON_XML_ENUM_VEK);
    using A = VEK_FILE_ASSISTANT;
    A::set(&document, VEK_CMD_OPT_SETTINGS, {{VEK_CMD_PARAM_SETTINGS_MODE, "PS"}});
    A::set(&document, VEK_CMD_OPT_RAW_FILE,
           {{VEK_CMD_PARAM_RAW_FILE_ID, "R<1>"},
            {VEK_CMD_PARAM_RAW_FILE_RAW_FILE, " a&b\n.hex"},
            {VEK_CMD_PARAM_RAW_FILE_BITSWAP, "on"}});
    A::set(&document, VEK_CMD_OPT_OUTPUT_FILE, {{VEK_CMD_PARAM_OUTPUT_FILE_TYPE, "RBF"}});
    EXPECT_EQ(written(document), "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                 "<VEK version=\"1\">\n"
                                 "  <SETTINGS mode=\"PS\"/>\n"
                                 "  <RAW_FILES>\n"
                                 "    <RAW_FILE bitswap=\"1\" id=\"R&lt;1&gt;\"> a&amp;b\n.hex</RAW_FILE>\n"
                                 "  </RAW_FILES>\n"
                                 "  <OUTPUT_FILES>\n"
                                 "    <OUTPUT_FILE type=\"RBF\">\n"
                                 "      <FILE_OPTIONS/>\n"
                                 "    </OUTPUT_FILE>\n"
                                 "  </OUTPUT_FILES>\n"
                                 "</VEK>\n");
}

TEST(setup_file, booleans_are_read_in_every_spelling_and_file_options_completed)
{
    const DOCUMENT document =
        read_good("<VEK><RAW_FILES><RAW_FILE id='a' bitswap='On'/><RAW_FILE id='b' bitswap='TRUE'/>"
                  "<RAW_FILE id='c' bitswap='off'/><RAW_FILE id='d' bitswap=''/></RAW_FILES>"
                  "<OUTPUT_FILES><OUTPUT_FILE type='RPD'><SECONDARY_FILE type='MAP'/></OUTPUT_FILE>"
                  "</OUTPUT_FILES></VEK>");
    std::string values;
    for (const auto* file : document->raw_files[0]->raw_file) {
        values += file->bitswap;
    }
    EXPECT_EQ(values, "1100");
    const auto* output = document->output_files[0]->output_file[0];
    EXPECT_EQ(output->file_options.size(), 1U);
    EXPECT_EQ(output->secondary_file[0]->file_options.size(), 1U);
}

TEST(setup_file, numbers_and_addresses_stay_the_texts_that_they_are)
{
    const DOCUMENT document =
        read_good("<VEK><FLASH_DEVICES><FLASH_DEVICE id='F'><PARTITION id='P' s_addr='zebra' "
                  "size='007'/></FLASH_DEVICE></FLASH_DEVICES></VEK>");
    EXPECT_EQ(VEK_FILE_ASSISTANT::get_partition_element(document.get(), "P")->s_addr, "zebra");
    EXPECT_EQ(VEK_FILE_ASSISTANT::get_partition_element(document.get(), "P")->size, "007");
    EXPECT_EQ(VEK_FILE_ASSISTANT::get_partition_element(document.get(), "P")->e_addr, "auto");
}

TEST(setup_file, refuses_what_the_format_does_not_know)
{
    const std::string long_value(XML_LIMITS().value_length + 1, 'a');
    // The parser hands a text on in pieces, one for each reference.
    std::string in_pieces;
    for (std::size_t piece = 0; piece <= XML_LIMITS().value_length; ++piece) {
        in_pieces += "&amp;";
    }
    const std::pair<std::string, std::string> cases[] = {
        {"<DOC/>", "line 1, column 7: the file begins with the element \"DOC\", a setup begins with VEK."},
        {"<PATH/>", "line 1, column 8: the file begins with the element \"PATH\", a setup begins with VEK."},
        {"<VEK>\n <FOO/></VEK>",
         "line 2, column 8: there is no element \"FOO\"; VEK may hold SETTINGS, RAW_FILES, "
         "ASSIGNMENTS, BITSTREAMS, FLASH_DEVICES or OUTPUT_FILES."},
        {"<VEK><vek/></VEK>",
         "line 1, column 12: there is no element \"vek\"; VEK may hold SETTINGS, RAW_FILES, "
         "ASSIGNMENTS, BITSTREAMS, FLASH_DEVICES or OUTPUT_FILES."},
        {"<VEK><SETTINGS><PATH/></SETTINGS></VEK>",
         "line 1, column 23: the element \"PATH\" may not stand here; SETTINGS holds no elements."},
        {"<VEK><SETTINGS/><SETTINGS/></VEK>",
         "line 1, column 28: VEK may hold one SETTINGS only; remove the second."},
        {"<VEK><SETTINGS speed='1'/></VEK>",
         "line 1, column 27: SETTINGS has no attribute \"speed\"; SETTINGS may have custom_db_dir or mode."},
        {"<VEK><SETTINGS mode='XX'/></VEK>", "line 1, column 27: the attribute mode of SETTINGS is \"XX\", "
                                             "expected is PS, FPP, ASX1, ASX4, LNKSX8, "
                                             "LNKSX16, LNKSX32 or INTERNAL."},
        {"<VEK><SETTINGS mode='" + std::string(200, 'X') + "'/></VEK>",
         "line 1, column 225: the attribute mode of SETTINGS is \"" + std::string(80, 'X') +
             "...\", expected is PS, FPP, ASX1, ASX4, LNKSX8, LNKSX16, LNKSX32 or INTERNAL."},
        {"<VEK><RAW_FILES><RAW_FILE id='a' bitswap='2'/></RAW_FILES></VEK>",
         "line 1, column 47: the attribute bitswap of RAW_FILE is \"2\", expected is 1, 0, ON, OFF, true or "
         "false."},
        {"<VEK><RAW_FILES><RAW_FILE/></RAW_FILES></VEK>",
         "line 1, column 28: RAW_FILE lacks the attribute id."},
        {"<VEK>words</VEK>", "line 1, column 11: VEK holds no text; remove \"words\"."},
        {"<VEK><BITSTREAMS><BITSTREAM id='B'><PATH></PATH></BITSTREAM></BITSTREAMS></VEK>",
         "line 1, column 49: PATH is empty; expected is the path of a file."},
        {"<VEK><ASSIGNMENTS><ASSIGNMENT partition_id='P'><RAW_FILE_ID/></ASSIGNMENT></ASSIGNMENTS></VEK>",
         "line 1, column 62: RAW_FILE_ID is empty; expected is the id that it refers to."},
        {"<VEK version='2'/>",
         "line 1, column 19: the setup has the format version 2, but this program reads versions up "
         "to 1; open it with a newer version of the program."},
        {"<VEK version='99999999999'/>", "line 1, column 29: the setup has the format version 99999999999, "
                                         "but this program reads versions up to 1; "
                                         "open it with a newer version of the program."},
        {"<VEK version='new'/>",
         "line 1, column 21: the version of the setup is \"new\", expected is a number."},
        {"<VEK><BITSTREAMS><BITSTREAM id='B'><PATH password='x'>a</PATH></BITSTREAM></BITSTREAMS></VEK>",
         "line 1, column 55: a setup may not hold the attribute password of PATH, which is a secret; remove "
         "it."},
        {"<VEK><BITSTREAMS><BITSTREAM id='B'><PATH "
         "key1='00112233445566778899AABBCCDDEEFF'>a</PATH></BITSTREAM>"
         "</BITSTREAMS></VEK>",
         "line 1, column 82: the attribute key1 of PATH looks like a key; expected is the name of a key in a "
         "key "
         "file."},
        {"<VEK><SETTINGS custom_db_dir='" + long_value + "'/></VEK>",
         "line 1, column 16419: the value of the attribute custom_db_dir is longer than 16384 bytes."},
        {"<VEK><BITSTREAMS><BITSTREAM id='B'><PATH>" + long_value + "</PATH></BITSTREAM></BITSTREAMS></VEK>",
         ""},
        {"<VEK><BITSTREAMS><BITSTREAM id='B'><PATH>" + in_pieces + "</PATH></BITSTREAM></BITSTREAMS></VEK>",
         ""},
    };
    for (const auto& [text, expected] : cases) {
        std::string message;
        EXPECT_EQ(read_text(text, message), nullptr);
        if (expected.empty()) {
            EXPECT_NE(message.find(": a text is longer than 16384 bytes."), std::string::npos) << message;
        } else {
            EXPECT_EQ(message, "top.vek, " + expected);
        }
    }
}

TEST(setup_file, refuses_ids_that_stand_twice)
{
    const auto refusal = [](const std::string& content) {
        std::string message;
        EXPECT_EQ(read_text("<VEK>" + content + "</VEK>", message), nullptr) << content;
        return message.substr(message.find(": ") + 2);
    };
    EXPECT_EQ(refusal("<BITSTREAMS><BITSTREAM id='B'/><BITSTREAM id='B'/></BITSTREAMS>"),
              "id \"B\" of BITSTREAM stands in another input already; each needs its own.");
    EXPECT_EQ(
        refusal("<RAW_FILES><RAW_FILE id='B'/></RAW_FILES><BITSTREAMS><BITSTREAM id='B'/></BITSTREAMS>"),
        "id \"B\" of BITSTREAM stands in another input already; each needs its own.");
    EXPECT_EQ(refusal("<FLASH_DEVICES><FLASH_DEVICE id='F'/><FLASH_DEVICE id='F'/></FLASH_DEVICES>"),
              "id \"F\" of FLASH_DEVICE stands in another flash device already; each needs its own.");
    EXPECT_EQ(
        refusal("<FLASH_DEVICES><FLASH_DEVICE id='F'><PARTITION id='P'/></FLASH_DEVICE><FLASH_DEVICE id='G'>"
                "<MBR id='M'><PARTITION id='P'/></MBR></FLASH_DEVICE></FLASH_DEVICES>"),
        "id \"P\" of PARTITION stands in another partition already; each needs its own.");
    EXPECT_EQ(
        refusal("<ASSIGNMENTS><ASSIGNMENT partition_id='P'/><ASSIGNMENT partition_id='P'/></ASSIGNMENTS>"),
        "partition_id \"P\" of ASSIGNMENT stands in another assignment already; each needs its own.");
}

TEST(setup_file, is_not_written_when_it_could_not_be_read)
{
    const auto with = [](auto change) {
        const DOCUMENT document = make_random_document(3);
        change(*document);
        return refusal_to_write(*document);
    };
    EXPECT_EQ(with([](auto& root) { root.settings[0]->custom_db_dir = "a\x01"; }),
              "The setup cannot be written: the attribute custom_db_dir of SETTINGS holds a byte at position "
              "2 that is no "
              "UTF-8 text or a character that XML forbids; choose another name or path.");
    EXPECT_EQ(with([](auto& root) { root.raw_files[0]->raw_file[0]->text = "\xff.hex"; }),
              "The setup cannot be written: the text of RAW_FILE holds a byte at position 1 that is no UTF-8 "
              "text or a "
              "character that XML forbids; choose another name or path.");
    // Forms that are longer than they need be would come back as another text.
    for (const char* const overlong : {"\xE0\x80\xAF.hex", "\xF0\x80\x80\xAF.hex"}) {
        EXPECT_NE(with([overlong](auto& root) {
                      root.raw_files[0]->raw_file[0]->text = overlong;
                  }).find("holds a byte at position 1 that is no UTF-8 text"),
                  std::string::npos);
    }
    EXPECT_EQ(with([](auto& root) { root.settings[0]->mode = "XX"; }),
              "The setup cannot be written: the attribute mode of SETTINGS is \"XX\", expected is PS, FPP, "
              "ASX1, ASX4, "
              "LNKSX8, LNKSX16, LNKSX32 or INTERNAL.");
    EXPECT_EQ(with([](auto& root) { root.raw_files[0]->raw_file[0]->id.clear(); }),
              "The setup cannot be written: the attribute id of RAW_FILE is \"\", expected is a name.");
    EXPECT_EQ(
        with([](auto& root) { root.settings[0]->custom_db_dir.assign(16385, 'a'); }),
        "The setup cannot be written: the attribute custom_db_dir of SETTINGS is longer than 16384 bytes.");
    EXPECT_EQ(with([](auto& root) { root.bitstreams[0]->bitstream[0]->path[0]->key1.assign(64, 'a'); }),
              "The setup cannot be written: the attribute key1 of PATH looks like a key, which never goes "
              "into a setup; "
              "put the key into a key file and give its name.");
    EXPECT_EQ(with([](auto& root) { root.bitstreams[0]->bitstream[0]->path[0]->text.clear(); }),
              "The setup cannot be written: the text of PATH is missing.");
    EXPECT_EQ(with([](auto& root) {
                  root.raw_files[0]->raw_file[0]->id = "B";
                  root.bitstreams[0]->bitstream[0]->id = "B";
              }),
              "The setup cannot be written: id \"B\" of BITSTREAM stands in another input already; each "
              "needs its own.");
}

TEST(setup_file, a_file_that_cannot_be_written_keeps_the_old_one)
{
    const TEMPORARY_DIRECTORY directory;
    write_file(directory / "top.vek", std::string("old"));
    const DOCUMENT document = make_random_document(3);
    document->settings[0]->mode = "XX";
    std::string message;
    EXPECT_FALSE(write_setup_file(*document, directory / "top.vek", message));
    EXPECT_EQ(read_text_file(directory / "top.vek"), "old");
    document->settings[0]->mode = "PS";
    EXPECT_FALSE(write_setup_file(*document, directory / "missing/top.vek", message));
    EXPECT_NE(message.find("missing"), std::string::npos) << message;
    EXPECT_TRUE(write_setup_file(*document, directory / "top.vek", message)) << message;
}

TEST(setup_file, time_grows_with_the_size_alone)
{
    // Small enough to be quick and large enough that a quadratic step would show as a factor of four.
    const std::string half = large_setup(4000);
    const std::string whole = large_setup(8000);
    DOCUMENT document;
    const auto read = [&document](const std::string& text) {
        document = nullptr;
        document = read_good(text);
    };
    EXPECT_LT(fastest_run([&] { read(whole); }), 3.2 * fastest_run([&] { read(half); }));
    const DOCUMENT large = read_good(whole);
    const DOCUMENT small = read_good(half);
    EXPECT_LT(fastest_run([&] { written(*large); }), 3.2 * fastest_run([&] { written(*small); }));
    EXPECT_EQ(large->get_child_count(PGM_COMMON_XML_ENUM_PARTITION, false), 8000U);
}
