// What a user can get wrong in the whole window, and what it says.

#include "msg_service.h"
#include "three_tabs_fixture.h"

#include <QTest>

#include <filesystem>

namespace
{

constexpr char SUCCESS[] = "Successfully generated output file(s).";
constexpr char REFUSAL[] = "Failed to generate output file(s). ";

class WINDOW_BAD_INPUT : public THREE_TABS_FIXTURE
{
protected:
    /// A serial flash of 4 MiB for a bitstream file of 100,000 bytes, without partitions.
    void lay_out_serial_flash()
    {
        make_bitstream("top.sof", "CA3M050", 100'000, "ASX4");
        choose_family_and_mode("Calcite", "Active Serial x4");
        tick_output("Programmer Object File (.pof)");
        open_tab(1);
        add_bitstream("top.sof");
        open_tab(2);
        in_dialog("m_add_device_button", [](QDialog& dialog) {
            USER_HANDS::select(*dialog.findChild<QAbstractItemView*>("m_device_list"), "W25Q32JV");
        });
    }
    void add_partition(const QString& input, const QString& start = {}, const QString& end = {})
    {
        select_row("W25Q32JV");
        in_partition_dialog("m_add_partition_button", input, {}, start, end);
    }
    void remove_partition(const QString& name)
    {
        select_row(name);
        USER_HANDS::click(*tabs(*m_frame)->currentWidget(), "m_remove_button");
    }
    /// What Generate says against it; the files that are there afterwards are as before.
    std::string refusal()
    {
        const auto before = m_directory.entries();
        const std::string text = generate();
        EXPECT_EQ(m_directory.entries(), before);
        EXPECT_TRUE(text.starts_with(REFUSAL)) << text;
        return text.substr(std::min(text.size(), sizeof(REFUSAL) - 1));
    }
    static std::string messages()
    {
        std::string text;
        for (const MSG_RECORD& record : MSG_SERVICE::instance().history()) {
            text += record.text + "\n";
        }
        MSG_SERVICE::instance().clear_history();
        return text;
    }
};

constexpr char INPUT[] = "Bitstream_1 (top.sof)";

} // namespace

TEST_F(WINDOW_BAD_INPUT, a_block_that_cannot_be_is_refused_by_name_and_addresses)
{
    lay_out_serial_flash();
    const struct {
        const char* start;
        const char* end;
        const char* says;
    } blocks[] = {
        {"0x00200000", "0x00100000",
         "The start address 0x00200000 of partition \"P1\" lies above its end address 0x00100000; exchange "
         "or correct them."},
        {"0x003F0000", "0x0040FFFF",
         "The partition \"P1\" (0x003F0000 to 0x0040FFFF) leaves the flash device (0x00000000 to "
         "0x003FFFFF); move it down, make it smaller, or choose a larger device."},
        {"0x00400000", "",
         "The partition \"P1\" (0x00400000 to 0x0041FFFF) leaves the flash device (0x00000000 to "
         "0x003FFFFF); move it down, make it smaller, or choose a larger device."},
        {"0xFFFFFFFF", "",
         "The partition \"P1\" (0xFFFFFFFF to 0x10001FFFF) leaves the flash device (0x00000000 to "
         "0x003FFFFF); move it down, make it smaller, or choose a larger device."},
        {"0x00100000", "0x0010FFFF",
         "The partition \"P1\" (0x00100000 to 0x0010FFFF) has room for 65536 bytes, but its content needs "
         "100145 bytes; enlarge the partition or assign a smaller input."},
    };
    for (const auto& block : blocks) {
        add_partition(INPUT, block.start, block.end);
        EXPECT_EQ(refusal(), "FLASH_DEVICE \"Flash_Device_1\" / PARTITION \"P1\": " + std::string(block.says))
            << block.start << " " << block.end;
        remove_partition("P1");
    }
    add_partition(INPUT, "0x00100000", "0x0013FFFF");
    EXPECT_EQ(generate(), SUCCESS);
}

TEST_F(WINDOW_BAD_INPUT, partitions_that_overlap_are_both_named)
{
    lay_out_serial_flash();
    add_partition(INPUT, "0x00100000", "0x001FFFFF");
    add_partition("None", "0x00180000", "0x0027FFFF");
    EXPECT_EQ(
        refusal(),
        "FLASH_DEVICE \"Flash_Device_1\" / PARTITION \"P2\": No input is assigned, so that the partition "
        "stays "
        "erased; assign one or remove the partition.\n"
        "FLASH_DEVICE \"Flash_Device_1\" / PARTITION \"P2\": The partition \"P2\" (0x00180000 to 0x0027FFFF) "
        "overlaps partition \"P1\" (0x00100000 to 0x001FFFFF); move one of them, or let the tool place it "
        "with "
        "\"auto\".");
}

TEST_F(WINDOW_BAD_INPUT, an_address_takes_hexadecimal_digits_alone)
{
    lay_out_serial_flash();
    select_row("W25Q32JV");
    in_dialog("m_add_partition_button", [](QDialog& dialog) {
        USER_HANDS::choose(dialog, "m_address_mode_combo", "Start");
        auto* const start = dialog.findChild<QLineEdit*>("m_start_addr_edit");
        auto* const ok = dialog.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok);
        USER_HANDS::type(*start, "");
        EXPECT_FALSE(ok->isEnabled());
        QTest::keyClicks(start, "zero x");
        EXPECT_EQ(start->text(), QStringLiteral("e"));
        QTest::keyClicks(start, "123456789");
        EXPECT_EQ(start->text(), QStringLiteral("e1234567")) << "eight digits";
        EXPECT_TRUE(ok->isEnabled());
    });
    EXPECT_EQ(rows("m_config_device_tree"), "W25Q32JV|||\n  P1|0xE1234567|<auto>|None\n");
}

TEST_F(WINDOW_BAD_INPUT, names_that_are_taken_or_reserved_keep_the_dialog_open)
{
    lay_out_serial_flash();
    add_partition("None");
    select_row("W25Q32JV");
    const int before = m_answers.boxes().size();
    m_answers.run([this](QDialog& dialog) {
        auto* const ok = dialog.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok);
        for (const char* const name : {"P1", "OPTIONS", "SPT7", "PUF"}) {
            USER_HANDS::type(dialog, "m_name_edit", QLatin1String(name));
            m_answers.click(QMessageBox::Ok);
            USER_HANDS::click(*ok);
            EXPECT_TRUE(dialog.isVisible()) << name;
        }
        USER_HANDS::type(dialog, "m_name_edit", "MY_OWN");
        USER_HANDS::click(*ok);
        EXPECT_FALSE(dialog.isVisible());
    });
    USER_HANDS::click(*tabs(*m_frame)->currentWidget(), "m_add_partition_button");
    ASSERT_EQ(m_answers.boxes().size(), before + 4);
    EXPECT_EQ(m_answers.boxes().at(before).text, QStringLiteral("Partition name already exists."));
    for (int box = 1; box < 4; ++box) {
        EXPECT_EQ(m_answers.boxes().at(before + box).text, QStringLiteral("Partition name is reserved."));
    }
    EXPECT_EQ(rows("m_config_device_tree"),
              "W25Q32JV|||\n  P1|<auto>|<auto>|None\n  MY_OWN|<auto>|<auto>|None\n");
}

TEST_F(WINDOW_BAD_INPUT, one_name_on_two_devices_is_refused)
{
    make_bitstream("top.sof", "CA3M050", 1000, "ASX4");
    write_file(m_directory / "twins.vek", std::string(R"(<?xml version="1.0" encoding="UTF-8"?>
<VEK version="1">
  <SETTINGS mode="ASX4"/>
  <BITSTREAMS><BITSTREAM id="Bitstream_1"><PATH>top.sof</PATH></BITSTREAM></BITSTREAMS>
  <ASSIGNMENTS><ASSIGNMENT page="0" partition_id="P1"><BITSTREAM_ID>Bitstream_1</BITSTREAM_ID></ASSIGNMENT></ASSIGNMENTS>
  <FLASH_DEVICES>
    <FLASH_DEVICE type="W25Q32JV" id="Flash_Device_1"><PARTITION id="P1" s_addr="auto" e_addr="auto"/></FLASH_DEVICE>
    <FLASH_DEVICE type="W25Q64JV" id="Flash_Device_2"><PARTITION id="P1" s_addr="auto" e_addr="auto"/></FLASH_DEVICE>
  </FLASH_DEVICES>
  <OUTPUT_FILES>
    <OUTPUT_FILE type="POF" name="top" directory="."><FLASH_DEVICE_ID>Flash_Device_1</FLASH_DEVICE_ID></OUTPUT_FILE>
  </OUTPUT_FILES>
</VEK>
)"));
    reopen("twins.vek");
    const std::string path = m_directory / "twins.vek";
    EXPECT_EQ(messages(),
              "File " + path + " is corrupted. " + path +
                  ", line 8, column 103: id \"P1\" of PARTITION stands in another partition already; "
                  "each needs its own.\n");
    EXPECT_EQ(m_frame->windowTitle(), QStringLiteral("Imagewright[*]")) << "not opened";
}

TEST_F(WINDOW_BAD_INPUT, a_layout_whose_bitstream_has_gone_from_the_disk_names_the_file)
{
    lay_out_serial_flash();
    add_partition(INPUT);
    save_as("top.vek");
    std::filesystem::remove(m_directory / "top.sof");
    m_answers.click(QMessageBox::Ok);
    reopen("top.vek");
    EXPECT_EQ(m_answers.boxes().back().text.toStdString(),
              "Cannot find " + (m_directory / "top.sof") +
                  " . Make sure the file(s) is located at the expected location or remove the incorrect file "
                  "path and add the new file path.");
    open_tab(2);
    EXPECT_EQ(rows("m_config_device_tree"),
              "W25Q32JV|||\n  P1|<auto>|<auto>|Bitstream_1 (top.sof at page 0)\n");
    EXPECT_EQ(refusal(),
              "BITSTREAM \"Bitstream_1\" / PATH \"top.sof\": top.sof cannot be opened: no such file.");
}

TEST_F(WINDOW_BAD_INPUT, a_layout_whose_bitstream_was_removed_holds_nothing)
{
    lay_out_serial_flash();
    make_bitstream("other.sof", "CA3M050", 1000, "ASX4");
    add_partition(INPUT);
    open_tab(1);
    add_bitstream("other.sof");
    USER_HANDS::select(tree("m_input_file_tree"), "Bitstream_1");
    m_answers.click(QMessageBox::Yes);
    USER_HANDS::click(*tabs(*m_frame)->currentWidget(), "m_remove_button");
    open_tab(2);
    EXPECT_EQ(rows("m_config_device_tree"), "W25Q32JV|||\n  P1|<auto>|<auto>|None\n");
    EXPECT_TRUE(refusal().starts_with(
        "OUTPUT_FILE \"POF\": No partition of the flash device \"Flash_Device_1\" holds an input; add a "
        "partition and assign a bitstream or a raw file to it.\n"));
}

TEST_F(WINDOW_BAD_INPUT, a_user_flash_file_that_is_too_large_is_refused)
{
    make_bitstream("top.sof", "GY1M16", 1000, "SINGLE_IMAGE");
    write_file(m_directory / "user.rbf", std::string(0x10001, 'u'));
    choose_family_and_mode("Gypsum", "Internal Configuration");
    tick_output("Programmer Object File (.pof)");
    open_tab(1);
    add_bitstream("top.sof");
    add_raw_data("user.rbf");
    open_tab(2);
    select_row("CFM0");
    in_partition_dialog("m_edit_button", INPUT);
    select_row("UFM");
    in_partition_dialog("m_edit_button", "user.rbf");
    EXPECT_EQ(refusal(), "FLASH_DEVICE \"Flash_Device_1\" / PARTITION \"UFM\": The partition \"UFM\" "
                         "(0x00000000 to 0x0000FFFF) has room for 65536 bytes, but its content needs 65537 "
                         "bytes; enlarge the partition or assign a smaller input.");
    write_file(m_directory / "user.rbf", std::string(0x10000, 'u'));
    EXPECT_EQ(generate(), SUCCESS);
}

TEST_F(WINDOW_BAD_INPUT, a_flash_device_file_with_nonsense_sizes_is_named_and_passed_over)
{
    const std::string begin = R"(<?xml version="1.0" encoding="UTF-8"?>
<FLASH_DEVICE version="1" type="serial-3v" page_size="256" name=)";
    std::filesystem::create_directory(m_directory / "own");
    const std::pair<const char*, const char*> files[] = {
        {"good.xml", R"("GOOD1" size="8388608" sector_size="65536"/>)"},
        {"huge.xml", R"("HUGE1" size="99999999999999999999" sector_size="65536"/>)"},
        {"none.xml", R"("NONE1" size="0" sector_size="65536"/>)"},
        {"odd.xml", R"("ODD1" size="8388608" sector_size="8388609"/>)"},
        {"sign.xml", R"("SIGN1" size="-8388608" sector_size="65536"/>)"},
    };
    for (const auto& [name, rest] : files) {
        write_file(m_directory / ("own/" + std::string(name)), begin + rest + "\n");
    }
    make_bitstream("top.sof", "CA3M050", 100'000, "ASX4");
    choose_family_and_mode("Calcite", "Active Serial x4");
    tick_output("Programmer Object File (.pof)");
    open_tab(1);
    add_bitstream("top.sof");
    open_tab(2);
    messages();
    in_dialog("m_add_device_button", [this](QDialog& dialog) {
        NIVO_NATIVE_FILE_DLG::answer_next({QString::fromStdString(m_directory / "own")});
        USER_HANDS::click(dialog, "m_directory_button");
        auto* const list = dialog.findChild<QAbstractItemView*>("m_device_list");
        USER_HANDS::click(dialog, "m_custom_check");
        EXPECT_EQ(list->model()->rowCount(), 1);
        USER_HANDS::select(*list, "GOOD1");
    });
    const std::string told = messages();
    EXPECT_EQ(std::count(told.begin(), told.end(), '\n'), 4) << told;
    for (const std::string name : {"huge", "none", "sign"}) {
        EXPECT_NE(told.find(name + ".xml, line 2, column "), std::string::npos) << told;
    }
    EXPECT_NE(told.find(": the attribute size must be a number of bytes from 1 to 4294967296.\n"),
              std::string::npos);
    EXPECT_NE(
        told.find(
            "odd.xml, line 2, column 110: the attribute sector_size must be a number of bytes from 1 to "
            "8388608.\n"),
        std::string::npos);
    select_row("GOOD1");
    in_partition_dialog("m_add_partition_button", INPUT);
    save_as("own.vek");
    reopen("own.vek");
    EXPECT_EQ(generate(), SUCCESS);
    EXPECT_EQ(read_pof("output_file.pof").device, "GOOD1");
}

TEST_F(WINDOW_BAD_INPUT, files_of_any_name_come_through_the_window)
{
    std::string deep = m_directory.path();
    while (deep.size() < 3980) {
        deep += "/" + std::string(std::min<std::size_t>(200, 3980 - deep.size()), 'd');
    }
    std::filesystem::create_directories(deep);
    const std::string names[] = {"with blank.sof", "it's \"so\".sof", "gr\xC3\xBC\xC3\x9F \xE2\x82\xAC.sof",
                                 "<b>&amp;%1.sof", deep.substr(m_directory.path().size() + 1) + "/x.sof"};
    ASSERT_GE((m_directory / names[4]).size(), 3980u);
    choose_family_and_mode("Basalt", "1-bit Passive Serial");
    tick_output("Raw Binary File (.rbf)");
    open_tab(1);
    for (const std::string& name : names) {
        SCOPED_TRACE(name);
        make_bitstream(name, "BS1L15", 1000, "PS");
        add_bitstream(name);
        EXPECT_NE(rows("m_input_file_tree").find("|BS1L15|"), std::string::npos);
        save_as("any.vek");
        reopen("any.vek");
        open_tab(1);
        ASSERT_EQ(generate(), SUCCESS);
        EXPECT_EQ(load(read_file(m_directory / "output_file.rbf"), 0), content(name));
        USER_HANDS::select(tree("m_input_file_tree"), "Bitstream_1");
        m_answers.click(QMessageBox::Yes);
        USER_HANDS::click(*tabs(*m_frame)->currentWidget(), "m_remove_button");
        std::filesystem::remove(m_directory / "any.vek");
    }
}
