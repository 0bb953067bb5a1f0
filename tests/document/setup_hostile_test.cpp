#include "child_process.h"
#include "document_compare.h"
#include "random_document.h"
#include "setup_reader.h"
#include "setup_writer.h"
#include "temporary_directory.h"
#include "xml_reader.h"

#include <gtest/gtest.h>

#include <fstream>
#include <random>
#include <sys/stat.h>

namespace
{

std::string refusal(const std::string& path)
{
    std::unique_ptr<PGM_COMMON_XML_VEK_VEK> document;
    std::string message;
    EXPECT_FALSE(read_setup_file(path, document, message));
    EXPECT_EQ(document, nullptr);
    return message;
}

std::string refusal_of_text(const std::string& text)
{
    const TEMPORARY_DIRECTORY directory;
    write_file(directory / "top.vek", text);
    const std::string message = refusal(directory / "top.vek");
    EXPECT_EQ(message.find(directory / "top.vek"), 0U) << message;
    return message.substr((directory / "top.vek").size());
}

std::string good_text(unsigned seed)
{
    std::string text;
    std::string message;
    EXPECT_TRUE(write_setup_text(*make_random_document(seed), text, message)) << message;
    return text;
}

/// Reads bytes of any kind; what is accepted can be written and read again.
void expect_survives(const std::string& text)
{
    std::unique_ptr<PGM_COMMON_XML_VEK_VEK> document;
    std::string message;
    const std::span bytes(reinterpret_cast<const std::uint8_t*>(text.data()), text.size());
    if (!read_setup_bytes(bytes, "top.vek", document, message)) {
        EXPECT_EQ(message.find("top.vek"), 0U) << message;
        EXPECT_EQ(message.back(), '.') << message;
        return;
    }
    std::string again;
    EXPECT_TRUE(write_setup_text(*document, again, message)) << message;
}

constexpr const char* DOCTYPE_REFUSED = ": a DOCTYPE is not allowed; remove it.";

} // namespace

TEST(hostile_setup, no_doctype_is_accepted_whatever_is_in_it)
{
    std::string laughs = "<!DOCTYPE VEK [<!ENTITY a0 \"ha\">";
    for (int level = 1; level < 40; ++level) {
        const std::string below = "&a" + std::to_string(level - 1) + ";";
        laughs += "<!ENTITY a" + std::to_string(level) + " \"" + below + below + below + "\">";
    }
    laughs += "]><VEK>&a39;</VEK>";
    std::string bomb = "<!DOCTYPE VEK [<!ENTITY a \"" + std::string(200000, 'a') + "\">]><VEK>";
    for (int count = 0; count < 50000; ++count) {
        bomb += "&a;";
    }
    const TEMPORARY_DIRECTORY directory;
    write_file(directory / "secret", std::string("secret"));
    const std::string texts[] = {
        laughs,
        bomb + "</VEK>",
        "<!DOCTYPE VEK [<!ENTITY x SYSTEM \"file://" + directory / "secret" + "\">]><VEK>&x;</VEK>",
        "<!DOCTYPE VEK SYSTEM \"http://127.0.0.1:1/x.dtd\"><VEK/>",
        "<!DOCTYPE VEK PUBLIC \"p\" \"" + directory / "missing.dtd" + "\"><VEK/>",
        "<!DOCTYPE VEK [<!ENTITY % p SYSTEM \"x\"> %p;]><VEK/>",
        "<!DOCTYPE VEK><VEK/>",
    };
    for (const std::string& text : texts) {
        const std::string message = refusal_of_text(text);
        EXPECT_NE(message.find(DOCTYPE_REFUSED), std::string::npos) << message;
        EXPECT_EQ(message.find(", line 1, column "), 0U) << message;
    }
}

TEST(hostile_setup, entities_that_nobody_declared_are_refused)
{
    EXPECT_NE(refusal_of_text("<VEK>&x;</VEK>").find("the file is damaged or no well-formed XML (entity 'x'"),
              std::string::npos);
}

TEST(hostile_setup, deep_nesting_ends_at_the_first_element_out_of_place)
{
    std::string text;
    for (int depth = 0; depth < 80000; ++depth) {
        text += "<VEK>";
    }
    EXPECT_EQ(
        refusal_of_text(text),
        ", line 1, column 11: the element \"VEK\" may not stand here; VEK may hold SETTINGS, RAW_FILES, "
        "ASSIGNMENTS, BITSTREAMS, FLASH_DEVICES or OUTPUT_FILES.");
}

TEST(hostile_setup, depth_is_bounded_for_every_listener)
{
    struct : XML_LISTENER {
        bool start_element(std::string_view, std::span<const XML_ATTRIBUTE>, std::string&) override
        {
            return true;
        }
        bool text(std::string_view, std::string&) override { return true; }
        bool end_element(std::string&) override { return true; }
    } listener;
    const std::string text = "<a><a><a><a/></a></a></a>";
    const std::span bytes(reinterpret_cast<const std::uint8_t*>(text.data()), text.size());
    XML_LIMITS limits;
    limits.depth = 4;
    std::string message;
    EXPECT_TRUE(read_xml_bytes(bytes, "x", limits, listener, message)) << message;
    limits.depth = 3;
    EXPECT_FALSE(read_xml_bytes(bytes, "x", limits, listener, message));
    EXPECT_EQ(message, "x, line 1, column 14: the elements are nested more than 3 deep.");
}

TEST(hostile_setup, oversized_files_and_attributes_are_refused_before_they_are_parsed)
{
    const TEMPORARY_DIRECTORY directory;
    const std::string path = directory / "top.vek";
    {
        std::ofstream stream(path, std::ios::binary);
        stream << "<VEK><SETTINGS custom_db_dir=\"";
        stream.seekp(200L * 1024 * 1024);
        stream << "\"/></VEK>";
    }
    EXPECT_EQ(refusal(path),
              path + " is 209715209 bytes long; a file of this kind has at most 67108864 bytes.");
    write_file(path, "<VEK><SETTINGS custom_db_dir=\"" + std::string(60U * 1024 * 1024, 'a') + "\"/></VEK>");
    EXPECT_EQ(refusal(path),
              path + " has more than 8388608 bytes without a tag; it is damaged or no file of this kind.");
}

TEST(hostile_setup, damaged_text_is_refused_with_its_place)
{
    const std::pair<std::string, std::string> cases[] = {
        {"<VEK>\n<SETTINGS custom_db_dir=\"\xff\xfe\"/></VEK>", ", line "},
        {std::string("<VEK>\n<SETTINGS custom_db_dir=\"a\0b\"/></VEK>", 43), ", line 2, column "},
        {"<VEK>\n<SETTINGS mode=\"PS\" mode=\"PS\"/></VEK>", ", line 2, column "},
        {"<VEK>\n<SETTINGS></VEK>", ", line 2, column "},
        {"no markup at all", ", line 1, column 1"},
        {"<VEK/><VEK/>", ", line 1, column "},
        {"<VEK>&#0;</VEK>", ", line 1, column "},
    };
    for (const auto& [text, place] : cases) {
        const std::string message = refusal_of_text(text);
        EXPECT_EQ(message.find(place), 0U) << message;
        EXPECT_NE(message.find(": the file is damaged or no well-formed XML ("), std::string::npos)
            << message;
        EXPECT_EQ(message.substr(message.size() - 2), ").") << message;
    }
    EXPECT_EQ(refusal_of_text(""), " is empty.");
}

TEST(hostile_setup, only_regular_files_are_opened)
{
    const TEMPORARY_DIRECTORY directory;
    ASSERT_EQ(mkfifo((directory / "fifo").c_str(), 0600), 0);
    for (const std::string& path :
         {directory / "fifo", directory.path(), directory / "missing", std::string("/dev/zero")}) {
        const std::string message = refusal(path);
        EXPECT_EQ(message.find(path), 0U) << message;
        EXPECT_EQ(message.back(), '.') << message;
    }
    EXPECT_NE(refusal(directory / "missing").find("no such file"), std::string::npos)
        << refusal(directory / "missing");
}

TEST(hostile_setup, an_unreadable_file_is_named)
{
    // Reading the own memory file at offset 0 fails for every user, so the test also holds for root.
    const std::string message = refusal("/proc/self/mem");
    EXPECT_EQ(message.find("/proc/self/mem"), 0U) << message;
}

TEST(hostile_setup, a_file_cut_anywhere_is_refused)
{
    const std::string text = good_text(11);
    for (std::size_t part = 0; part < 16; ++part) {
        std::string cut = text.substr(0, text.size() * part / 16);
        std::unique_ptr<PGM_COMMON_XML_VEK_VEK> document;
        std::string message;
        const std::span bytes(reinterpret_cast<const std::uint8_t*>(cut.data()), cut.size());
        EXPECT_FALSE(read_setup_bytes(bytes, "top.vek", document, message)) << part;
        EXPECT_EQ(message.find(part == 0 ? "top.vek is empty." : "top.vek, line "), 0U) << message;
    }
}

TEST(hostile_setup, any_damage_ends_in_a_document_or_in_a_sentence)
{
    const std::string text = good_text(12);
    std::mt19937 random(4711);
    for (int round = 0; round < 1500; ++round) {
        std::string damaged = text;
        const auto place = [&] { return static_cast<std::size_t>(random() % damaged.size()); };
        for (unsigned change = 0; change < 1 + random() % 4; ++change) {
            switch (random() % 4) {
            case 0:
                damaged[place()] ^= static_cast<char>(1U << (random() % 8));
                break;
            case 1:
                damaged.erase(place(), 1 + random() % 40);
                break;
            case 2: {
                const std::string piece = damaged.substr(place(), 1 + random() % 200);
                damaged.insert(place(), piece);
                break;
            }
            default:
                damaged.resize(1 + place());
            }
        }
        expect_survives(damaged);
    }
}
