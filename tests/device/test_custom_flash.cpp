#include "custom_flash.h"
#include "temporary_directory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <sys/stat.h>

namespace
{

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr const char* SOUND = R"(<?xml version="1.0" encoding="UTF-8"?>
<FLASH_DEVICE version="1" name="W25Q64FV" type="serial-3v" size="8388608" sector_size="0x10000" page_size="256"
              address_width="24" jedec_id="EF 40 17"/>
)";

bool read_text(const std::string& text, PGM_DEVICE& device, std::string& message)
{
    const std::vector<std::uint8_t> bytes(text.begin(), text.end());
    return read_flash_device_bytes(bytes, "flash.xml", device, message);
}

/// A device file with one attribute replaced; an empty value leaves it out.
std::string with(const std::string& attribute, const std::string& value)
{
    const std::vector<std::pair<std::string, std::string>> sound{
        {"version", "1"},         {"name", "MY_FLASH"}, {"type", "serial-3v"}, {"size", "8388608"},
        {"sector_size", "65536"}, {"page_size", "256"}, {"address_width", ""}, {"jedec_id", ""}};
    std::string text = "<FLASH_DEVICE";
    bool known = false;
    for (const auto& [name, usual] : sound) {
        const std::string& chosen = name == attribute ? value : usual;
        known = known || name == attribute;
        text += chosen.empty() ? "" : " " + name + "=\"" + chosen + "\"";
    }
    return text + (known ? "" : " " + attribute + "=\"" + value + "\"") + "/>";
}

std::string refusal(const std::string& text)
{
    PGM_DEVICE device;
    device.name = "untouched";
    std::string message;
    EXPECT_FALSE(read_text(text, device, message)) << text;
    EXPECT_EQ(device.name, "untouched");
    return message;
}

PGM_DEVICE accepted(const std::string& text)
{
    PGM_DEVICE device;
    std::string message;
    EXPECT_TRUE(read_text(text, device, message)) << message;
    return device;
}

TEST(custom_flash, a_file_gives_all_of_a_device)
{
    const PGM_DEVICE device = accepted(SOUND);
    EXPECT_EQ(device.name, "W25Q64FV");
    EXPECT_EQ(device.family, DEV_FAMILY_SERIAL_A);
    EXPECT_EQ(device.device_class, DEV_CLASS_CONFIG_FLASH);
    EXPECT_EQ(device.flash_bytes, 8U * 1024 * 1024);
    EXPECT_EQ(device.sector_bytes, 65536U);
    EXPECT_EQ(device.page_bytes, 256U);
    EXPECT_EQ(device.address_width, 24U);
    EXPECT_EQ(device.jedec_id, (std::array<std::uint8_t, 3>{0xEF, 0x40, 0x17}));
    EXPECT_TRUE(device.flash_loader);
    EXPECT_FALSE(device.ask_not_listed);
    EXPECT_FALSE(device.is_dev_no_pof());
}

TEST(custom_flash, the_documented_example_is_sound)
{
    const std::string page =
        read_text_file(std::string(IMAGEWRIGHT_SOURCE_DIR) + "/docs/formats/flash-device-file.md");
    const std::size_t start = page.find("<?xml");
    const std::size_t end = page.find("```", start);
    ASSERT_NE(end, std::string::npos);
    EXPECT_EQ(accepted(page.substr(start, end - start)).name, "W25Q64FV");
}

TEST(custom_flash, each_type_has_its_family)
{
    EXPECT_EQ(accepted(with("type", "serial-1v8")).family, DEV_FAMILY_SERIAL_B);
    PGM_DEVICE device;
    std::string message;
    ASSERT_TRUE(read_text(R"(<FLASH_DEVICE version="1" name="BOARD_64MB" type="parallel" size="8388608"
                             sector_size="131072" page_size="32"/>)",
                          device, message))
        << message;
    EXPECT_EQ(device.family, DEV_FAMILY_CFI_FLASH);
    EXPECT_EQ(device.device_class, DEV_CLASS_PARALLEL_FLASH);
    EXPECT_EQ(device.user_name(), "BOARD_64Mb");
    EXPECT_EQ(device.address_width, 22U);
    EXPECT_TRUE(device.sized_in_bits);
}

TEST(custom_flash, the_address_width_follows_the_size)
{
    EXPECT_EQ(accepted(with("size", "16777216")).address_width, 24U);
    EXPECT_EQ(accepted(with("size", "33554432")).address_width, 32U);
    EXPECT_EQ(accepted(with("address_width", "32")).address_width, 32U);
}

TEST(custom_flash, a_flash_of_four_gibibytes_is_the_largest)
{
    EXPECT_EQ(accepted(with("size", "4294967296")).flash_bytes, std::uint64_t{1} << 32);
    EXPECT_EQ(
        refusal(with("size", "4295032832")),
        "flash.xml, line 1, column 115: the attribute size must be a number of bytes from 1 to 4294967296.");
}

TEST(custom_flash, nonsense_numbers_are_refused)
{
    const char* size = "the attribute size must be a number of bytes from 1 to 4294967296.";
    for (const char* value : {"", "0", "-1", "+1", "1e6", "8388608 ", " 8388608", "8 MiB", "0x", "0xG",
                              "08x1", "18446744073709551617", "99999999999999999999999999999999"}) {
        EXPECT_THAT(refusal(with("size", value)), HasSubstr(size)) << value;
    }
    EXPECT_THAT(refusal(with("sector_size", "0")),
                HasSubstr("the attribute sector_size must be a number of bytes from 1 to 8388608."));
    EXPECT_THAT(refusal(with("sector_size", "16777216")), HasSubstr("from 1 to 8388608."));
    EXPECT_THAT(refusal(with("page_size", "131072")),
                HasSubstr("the attribute page_size must be a number of bytes from 1 to 65536."));
}

TEST(custom_flash, sizes_that_do_not_divide_are_refused)
{
    EXPECT_THAT(refusal(with("size", "8388609")),
                HasSubstr("the size 8388609 is no multiple of the sector_size 65536."));
    EXPECT_THAT(refusal(with("page_size", "300")),
                HasSubstr("the sector_size 65536 is no multiple of the page_size 300."));
}

TEST(custom_flash, a_name_that_could_do_harm_is_refused)
{
    for (const char* name : {"", "a b", "../up", "a/b", "a&quot;b", "W25Q64\xC3\xA4"}) {
        EXPECT_THAT(refusal(with("name", name)),
                    HasSubstr("the attribute name must have 1 to 64 letters, digits or "
                              "characters of \"_-.\"."))
            << name;
    }
    EXPECT_THAT(refusal(with("name", std::string(65, 'a'))), HasSubstr("must have 1 to 64 letters"));
    EXPECT_EQ(accepted(with("name", std::string(64, 'a'))).name.size(), 64U);
}

TEST(custom_flash, other_wrong_values_are_refused)
{
    EXPECT_THAT(refusal(with("version", "2")), HasSubstr("the attribute version must be 1."));
    EXPECT_THAT(refusal(with("version", "")), HasSubstr("the attribute version must be 1."));
    EXPECT_THAT(refusal(with("type", "nand")),
                HasSubstr("the attribute type must be serial-3v, serial-1v8 or parallel."));
    EXPECT_THAT(refusal(with("type", "parallel")),
                HasSubstr("the name of a parallel device must end in B, which is shown as b."));
    EXPECT_THAT(refusal(with("address_width", "16")),
                HasSubstr("the attribute address_width must be 24 or 32."));
    EXPECT_THAT(
        refusal(R"(<FLASH_DEVICE version="1" name="X" type="serial-3v" size="33554432" sector_size="4096"
                           page_size="256" address_width="24"/>)"),
        HasSubstr(
            "24 address bits do not reach all of 33554432 bytes; the attribute address_width must be 32."));
    EXPECT_THAT(
        refusal(R"(<FLASH_DEVICE version="1" name="XB" type="parallel" size="33554432" sector_size="4096"
                           page_size="256" address_width="24"/>)"),
        HasSubstr("the attribute address_width belongs to serial devices; remove it."));
    for (const char* id :
         {"EF4017", "EF 40", "EF 40 1", "EF 40 1G", "00 40 17", "FF FF FF", "EF-40-17", "0x 40 17"}) {
        EXPECT_THAT(refusal(with("jedec_id", id)),
                    HasSubstr("the attribute jedec_id must have three bytes like EF 40 18, "
                              "the first of them neither 00 nor FF."))
            << id;
    }
    EXPECT_THAT(refusal(with("colour", "red")), HasSubstr("the attribute colour is not known; remove it."));
}

TEST(custom_flash, anything_but_the_one_element_is_refused)
{
    EXPECT_THAT(refusal("<VEK version=\"1\"/>"),
                HasSubstr("the element VEK is not known here; the file has one element, FLASH_DEVICE."));
    const std::string sound = with("name", "X");
    EXPECT_THAT(refusal(sound.substr(0, sound.size() - 2) + "><FLASH_DEVICE/></FLASH_DEVICE>"),
                HasSubstr("the element FLASH_DEVICE is not known here"));
    EXPECT_THAT(refusal(sound.substr(0, sound.size() - 2) + ">text</FLASH_DEVICE>"),
                HasSubstr("the element FLASH_DEVICE holds no text; remove it."));
    accepted(sound.substr(0, sound.size() - 2) + "> \n </FLASH_DEVICE>");
}

TEST(custom_flash, a_doctype_is_refused_before_anything_in_it_is_read)
{
    const std::string body = with("name", "X");
    EXPECT_THAT(refusal("<!DOCTYPE FLASH_DEVICE SYSTEM \"http://127.0.0.1:9/x.dtd\">" + body),
                HasSubstr("a DOCTYPE is not allowed; remove it."));
    EXPECT_THAT(refusal("<!DOCTYPE x [<!ENTITY a \"aaaa\"><!ENTITY b \"&a;&a;&a;&a;\">]>" + body),
                HasSubstr("a DOCTYPE is not allowed; remove it."));
}

TEST(custom_flash, every_cut_of_a_good_file_is_refused_with_a_reason)
{
    const std::string sound = SOUND;
    const std::size_t end = sound.find("/>") + 2;
    for (std::size_t length = 0; length < end; ++length) {
        PGM_DEVICE device;
        std::string message;
        EXPECT_FALSE(read_text(sound.substr(0, length), device, message)) << length;
        EXPECT_THAT(message, HasSubstr("flash.xml")) << length;
    }
}

TEST(custom_flash, every_flipped_bit_is_refused_or_gives_a_sound_device)
{
    const std::string sound = SOUND;
    for (std::size_t i = 0; i < sound.size(); ++i) {
        for (int bit = 0; bit < 8; ++bit) {
            std::string damaged = sound;
            damaged[i] = static_cast<char>(damaged[i] ^ (1 << bit));
            PGM_DEVICE device;
            std::string message;
            if (read_text(damaged, device, message)) {
                EXPECT_NE(device.sector_bytes, 0U);
                EXPECT_EQ(device.flash_bytes % device.sector_bytes, 0U);
                EXPECT_FALSE(device.name.empty());
            } else {
                EXPECT_FALSE(message.empty());
            }
        }
    }
}

TEST(custom_flash, what_is_no_regular_file_is_never_opened)
{
    const TEMPORARY_DIRECTORY directory;
    ASSERT_EQ(mkfifo((directory / "fifo.xml").c_str(), 0600), 0);
    std::filesystem::create_directory(directory / "folder.xml");
    write_file(directory / "empty.xml", std::string());
    write_file(directory / "large.xml", std::string(64 * 1024 + 1, ' '));
    std::vector<CUSTOM_FLASH_PROBLEM> problems;
    EXPECT_THAT(read_flash_device_directory(directory.path(), problems), IsEmpty());
    ASSERT_EQ(problems.size(), 4U);
    EXPECT_EQ(problems[0].path, directory / "empty.xml");
    EXPECT_THAT(problems[0].reason, HasSubstr("is empty."));
    EXPECT_EQ(problems[1].path, directory / "fifo.xml");
    EXPECT_THAT(problems[1].reason, HasSubstr("cannot be opened: it is a pipe."));
    EXPECT_EQ(problems[2].path, directory / "folder.xml");
    EXPECT_FALSE(problems[2].reason.empty());
    EXPECT_EQ(problems[3].path, directory / "large.xml");
    EXPECT_THAT(problems[3].reason, HasSubstr("at most 65536 bytes."));
}

TEST(custom_flash, a_directory_gives_its_sound_devices_in_the_order_of_the_file_names)
{
    const TEMPORARY_DIRECTORY directory;
    write_file(directory / "b.xml", with("name", "SECOND"));
    write_file(directory / "a.xml", with("name", "FIRST"));
    write_file(directory / "broken.xml", std::string("<FLASH_DEVICE"));
    write_file(directory / "notes.txt", std::string("not looked at"));
    std::vector<CUSTOM_FLASH_PROBLEM> problems;
    const std::vector<PGM_DEVICE> devices = read_flash_device_directory(directory.path(), problems);
    ASSERT_EQ(devices.size(), 2U);
    EXPECT_EQ(devices[0].name, "FIRST");
    EXPECT_EQ(devices[1].name, "SECOND");
    ASSERT_EQ(problems.size(), 1U);
    EXPECT_EQ(problems[0].path, directory / "broken.xml");
}

TEST(custom_flash, a_name_that_is_taken_is_refused)
{
    const TEMPORARY_DIRECTORY directory;
    write_file(directory / "a.xml", with("name", "w25q128jv"));
    write_file(directory / "b.xml", with("name", "Mine"));
    write_file(directory / "c.xml", with("name", "MINE"));
    std::vector<CUSTOM_FLASH_PROBLEM> problems;
    EXPECT_EQ(read_flash_device_directory(directory.path(), problems).size(), 1U);
    ASSERT_EQ(problems.size(), 2U);
    EXPECT_EQ(problems[0].reason,
              "The device name w25q128jv belongs to a device of the built-in database. Choose another name.");
    EXPECT_EQ(problems[1].path, directory / "c.xml");
    EXPECT_EQ(problems[1].reason,
              "The device name MINE is that of another file in the directory. Choose another name.");
}

TEST(custom_flash, a_directory_that_is_missing_or_overfull_gives_nothing_but_a_reason)
{
    const TEMPORARY_DIRECTORY directory;
    std::vector<CUSTOM_FLASH_PROBLEM> problems;
    const std::string missing = directory / "missing";
    EXPECT_THAT(read_flash_device_directory(missing, problems), IsEmpty());
    ASSERT_EQ(problems.size(), 1U);
    EXPECT_EQ(problems[0].path, missing);
    EXPECT_EQ(problems[0].reason,
              "The custom flash database directory " + missing +
                  " cannot be read (No such file or directory). Check that it is there and may be read.");
    for (int i = 0; i <= 1000; ++i) {
        write_file(directory / (std::to_string(i) + ".xml"), std::string());
    }
    problems.clear();
    EXPECT_THAT(read_flash_device_directory(directory.path(), problems), IsEmpty());
    ASSERT_EQ(problems.size(), 1U);
    EXPECT_THAT(problems[0].reason, HasSubstr("has more than 1000 device files."));
}

} // namespace
