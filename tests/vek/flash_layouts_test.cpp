// Flash images made in the whole window, from the first click to the bytes in the flash.

#include "three_tabs_fixture.h"

#include <QLabel>
#include <QTest>

namespace
{

constexpr char SUCCESS[] = "Successfully generated output file(s).";

class FLASH_LAYOUTS : public THREE_TABS_FIXTURE
{
protected:
    static std::uint32_t number(const BYTES& bytes, std::size_t offset)
    {
        return bytes.at(offset) | static_cast<std::uint32_t>(bytes.at(offset + 1)) << 8 |
               static_cast<std::uint32_t>(bytes.at(offset + 2)) << 16 |
               static_cast<std::uint32_t>(bytes.at(offset + 3)) << 24;
    }
    static std::string text(const BYTES& bytes, std::size_t offset, std::size_t length)
    {
        return {bytes.begin() + static_cast<std::ptrdiff_t>(offset),
                bytes.begin() + static_cast<std::ptrdiff_t>(offset + length)};
    }
    static const DECODED_POF::PARTITION& partition(const DECODED_POF& pof, const std::string& name)
    {
        for (const auto& found : pof.partitions) {
            if (found.name == name) {
                return found;
            }
        }
        static const DECODED_POF::PARTITION none;
        ADD_FAILURE() << "no partition " << name;
        return none;
    }
    /// The configuration data under a page, found by what the file says about its partitions.
    BYTES load_page(const DECODED_POF& pof, std::uint64_t page) const
    {
        for (const auto& found : pof.partitions) {
            if (found.has_page && found.page == page) {
                return load(pof.image, found.start);
            }
        }
        ADD_FAILURE() << "no page " << page;
        return {};
    }
};

} // namespace

TEST_F(FLASH_LAYOUTS, on_chip_flash_follows_the_bitstream_and_takes_user_data)
{
    make_bitstream("top.sof", "GY1M16", 30'000, "SINGLE_IMAGE");
    write_file(m_directory / "user.rbf", std::string("what the user keeps"));
    choose_family_and_mode("Gypsum", "Internal Configuration");
    tick_output("Programmer Object File (.pof)");
    open_tab(1);
    add_bitstream("top.sof");
    add_raw_data("user.rbf");
    open_tab(2);
    EXPECT_EQ(rows("m_config_device_tree"), "GY1M16|||\n"
                                            "  CFM0|0x00010000|0x0006FFFF|None\n"
                                            "  UFM|0x00000000|0x0000FFFF|CFM0\n");
    select_row("CFM0");
    in_partition_dialog("m_edit_button", "Bitstream_1 (top.sof)");
    select_row("UFM");
    in_partition_dialog("m_edit_button", "user.rbf");
    select_row("GY1M16");
    in_dialog("m_edit_button", [](QDialog& dialog) {
        EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Device Options"));
        USER_HANDS::choose(dialog, "m_power_on_combo", "Standard delay");
        USER_HANDS::click(dialog, "m_watchdog_check");
        USER_HANDS::type(dialog, "m_watchdog_edit", "0x00001234");
    });
    save_as("onchip.vek");
    reopen("onchip.vek");
    open_tab(2);
    EXPECT_EQ(rows("m_config_device_tree"), "GY1M16|||\n"
                                            "  CFM0|0x00010000|0x0006FFFF|Bitstream_1 (top.sof)\n"
                                            "  UFM|0x00000000|0x0000FFFF|user.rbf\n");
    select_row("GY1M16");
    in_dialog("m_edit_button", [](QDialog& dialog) {
        EXPECT_EQ(dialog.findChild<QComboBox*>("m_power_on_combo")->currentText(),
                  QStringLiteral("Standard delay"));
        EXPECT_EQ(dialog.findChild<QLineEdit*>("m_watchdog_edit")->text(), QStringLiteral("0x00001234"));
    });
    ASSERT_EQ(generate(), SUCCESS);

    const DECODED_POF pof = read_pof("output_file.pof");
    EXPECT_EQ(pof.device, "GY1M16");
    EXPECT_EQ(load(pof.image, partition(pof, "CFM0").start), content("top.sof"));
    const BYTES options = load_image(pof.image, partition(pof, "CFM0").start).option_block;
    ASSERT_GE(options.size(), 12u);
    EXPECT_EQ(number(options, 4), 2u) << "power-on scheme";
    EXPECT_EQ(number(options, 8), 0x1234u) << "watchdog";
    const std::string user = "what the user keeps";
    EXPECT_EQ(text(pof.image, partition(pof, "UFM").start, user.size()), user);
}

TEST_F(FLASH_LAYOUTS, parallel_flash_finds_its_pages_through_the_options)
{
    make_bitstream("factory.sof", "BS1L15", 40'000, "PS");
    make_bitstream("application.sof", "BS1L15", 50'000, "PS");
    choose_family_and_mode("Basalt", "1-bit Passive Serial");
    tick_output("Programmer Object File (.pof)");
    open_tab(1);
    add_bitstream("factory.sof");
    add_bitstream("application.sof");
    open_tab(2);
    in_dialog("m_add_device_button", [](QDialog& dialog) {
        EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Add Device"));
        USER_HANDS::choose(dialog, "m_device_combo", "CFI_32Mb");
    });
    select_row("CFI_32Mb");
    in_partition_dialog("m_add_partition_button", "Bitstream_1 (factory.sof)", "0", "0x00100000");
    select_row("CFI_32Mb");
    in_partition_dialog("m_add_partition_button", "Bitstream_2 (application.sof)", "3", "0x00200000",
                        "0x002FFFFF");
    select_row("OPTIONS");
    in_dialog("m_edit_button", [](QDialog& dialog) {
        USER_HANDS::choose(dialog, "m_address_mode_combo", "Start");
        USER_HANDS::type(dialog, "m_start_addr_edit", "0x00010000");
    });
    EXPECT_EQ(rows("m_config_device_tree"),
              "CFI_32Mb|||\n"
              "  OPTIONS|0x00010000|<auto>|None\n"
              "  P1|0x00100000|<auto>|Bitstream_1 (factory.sof at page 0)\n"
              "  P2|0x00200000|0x002FFFFF|Bitstream_2 (application.sof at page 3)\n");
    save_as("parallel.vek");
    reopen("parallel.vek");
    ASSERT_EQ(generate(), SUCCESS);

    const DECODED_POF pof = read_pof("output_file.pof");
    EXPECT_EQ(load_page(pof, 0), content("factory.sof"));
    EXPECT_EQ(load_page(pof, 3), content("application.sof"));
    // As the device finds them: by the table in OPTIONS.
    const std::size_t options = 0x10000;
    ASSERT_EQ(text(pof.image, options, 4), "IWOP");
    EXPECT_EQ(number(pof.image, options + 72), plain_crc32(pof.image.data() + options, 72));
    EXPECT_EQ(load(pof.image, number(pof.image, options + 8)), content("factory.sof"));
    EXPECT_EQ(load(pof.image, number(pof.image, options + 8 + 3 * 8)), content("application.sof"));
    EXPECT_EQ(number(pof.image, options + 8 + 8), 0xFFFFFFFFu) << "nothing under page 1";
}

TEST_F(FLASH_LAYOUTS, serial_flash_holds_its_pages_in_programmer_raw_and_loader_files)
{
    make_bitstream("a.sof", "CA3M050", 60'000, "ASX4");
    make_bitstream("b.sof", "CA3M050", 70'000, "ASX4");
    write_file(m_directory / "data.hex",
               std::string(":10000000000102030405060708090A0B0C0D0E0F78\n:00000001FF\n"));
    choose_family_and_mode("Calcite", "Active Serial x4");
    tick_output("Programmer Object File (.pof)");
    tick_output("Raw Programming Data File (.rpd)");
    tick_output("JTAG Indirect Configuration File (.jic)");
    open_tab(1);
    add_bitstream("a.sof");
    add_bitstream("b.sof");
    add_raw_data("data.hex");
    open_tab(2);
    in_dialog("m_add_device_button", [](QDialog& dialog) {
        EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Flash Database"));
        USER_HANDS::type(dialog, "m_search_edit", "EF 40 17");
        USER_HANDS::select(*dialog.findChild<QAbstractItemView*>("m_device_list"), "W25Q64JV");
    });
    select_row("W25Q64JV");
    in_partition_dialog("m_add_partition_button", "Bitstream_1 (a.sof)", "0");
    select_row("W25Q64JV");
    in_partition_dialog("m_add_partition_button", "Bitstream_2 (b.sof)", "1", "0x00400000");
    select_row("W25Q64JV");
    in_partition_dialog("m_add_partition_button", "data.hex", {}, "0x007F0000", "0x007FFFFF");
    in_dialog("m_select_button", [](QDialog& dialog) {
        EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Select Device"));
        USER_HANDS::select(*dialog.findChild<QAbstractItemView*>("m_device_list"), "CA3M050");
    });
    save_as("serial.vek");
    reopen("serial.vek");
    open_tab(2);
    EXPECT_EQ(rows("m_config_device_tree"), "W25Q64JV|||\n"
                                            "  P1|<auto>|<auto>|Bitstream_1 (a.sof at page 0)\n"
                                            "  P2|0x00400000|<auto>|Bitstream_2 (b.sof at page 1)\n"
                                            "  P3|0x007F0000|0x007FFFFF|data.hex\n");
    ASSERT_EQ(generate(), SUCCESS);

    const DECODED_POF pof = read_pof("output_file.pof");
    EXPECT_EQ(pof.device, "W25Q64JV");
    EXPECT_EQ(load_page(pof, 0), content("a.sof"));
    EXPECT_EQ(load_page(pof, 1), content("b.sof"));
    const BYTES raw = read_file(m_directory / "output_file.rpd");
    EXPECT_EQ(raw.size(), 8u * 1024 * 1024);
    EXPECT_EQ(load(raw, 0), content("a.sof"));
    EXPECT_EQ(load(raw, 0x400000), content("b.sof"));
    EXPECT_EQ(raw.at(0x7F000F), 15);
    const DECODED_POF jic = decode_jic(read_file(m_directory / "output_file.jic"));
    EXPECT_EQ(jic.fault, "");
    EXPECT_EQ(jic.loader.name, "CA3M050");
    EXPECT_EQ(load_page(jic, 1), content("b.sof"));
}

TEST_F(FLASH_LAYOUTS, a_secure_device_boots_its_factory_image_and_knows_the_others)
{
    make_bitstream("factory.sof", "ZR9A012", 80'000, "ASX4", true);
    make_bitstream("application.sof", "ZR9A012", 90'000, "ASX4", true);
    write_file(m_directory / "identity.puf", std::string("helper data of the chip"));
    write_file(m_directory / "wrapped.wkey", std::string("a wrapped key"));
    choose_family_and_mode("Zircon", "Active Serial x4");
    tick_output("Programmer Object File (.pof)");
    open_tab(1);
    add_bitstream("factory.sof");
    add_bitstream("application.sof");
    add_raw_data("identity.puf");
    add_raw_data("wrapped.wkey");
    open_tab(2);
    in_dialog("m_add_device_button", [](QDialog& dialog) {
        USER_HANDS::select(*dialog.findChild<QAbstractItemView*>("m_device_list"), "W25Q256JW");
    });
    EXPECT_EQ(rows("m_config_device_tree"), "W25Q256JW|||\n"
                                            "  BOOT_INFO|0x00000000|0x001FFFFF|None\n"
                                            "  FACTORY_IMAGE|0x00240000|<auto>|None\n"
                                            "  SPT0|0x00200000|0x0020FFFF|None\n"
                                            "  SPT1|0x00210000|0x0021FFFF|None\n"
                                            "  CPB0|0x00220000|0x0022FFFF|None\n"
                                            "  CPB1|0x00230000|0x0023FFFF|None\n"
                                            "  PUF|<auto>|<auto>|None\n");
    select_row("BOOT_INFO");
    in_partition_dialog("m_edit_button", "Bitstream_1 (factory.sof)");
    select_row("FACTORY_IMAGE");
    in_partition_dialog("m_edit_button", "Bitstream_1 (factory.sof)");
    select_row("W25Q256JW");
    in_partition_dialog("m_add_partition_button", "Bitstream_2 (application.sof)", "1");
    select_row("PUF");
    in_dialog("m_edit_button", [](QDialog& dialog) {
        USER_HANDS::choose(dialog, "m_puf_file_combo", "identity.puf");
        USER_HANDS::choose(dialog, "m_wkey_file_combo", "wrapped.wkey");
    });
    EXPECT_EQ(rows("m_config_device_tree"),
              "W25Q256JW|||\n"
              "  BOOT_INFO|0x00000000|0x001FFFFF|Bitstream_1 (factory.sof)\n"
              "  FACTORY_IMAGE|0x00240000|<auto>|Bitstream_1 (factory.sof at page 0)\n"
              "  SPT0|0x00200000|0x0020FFFF|None\n"
              "  SPT1|0x00210000|0x0021FFFF|None\n"
              "  CPB0|0x00220000|0x0022FFFF|None\n"
              "  CPB1|0x00230000|0x0023FFFF|None\n"
              "  PUF|<auto>|<auto>|identity.puf, wrapped.wkey\n"
              "  P1|<auto>|<auto>|Bitstream_2 (application.sof at page 1)\n");
    save_as("secure.vek");
    reopen("secure.vek");
    ASSERT_EQ(generate(), SUCCESS);

    const DECODED_POF pof = read_pof("output_file.pof");
    EXPECT_EQ(load_page(pof, 0), content("factory.sof"));
    EXPECT_EQ(load_page(pof, 1), content("application.sof"));
    // The way of the boot ROM: boot information, then the pointer block and the images that it names.
    ASSERT_EQ(text(pof.image, 0, 4), "IWBI");
    EXPECT_EQ(number(pof.image, 124), plain_crc32(pof.image.data(), 124));
    const std::string firmware = "firmware of factory.sof";
    EXPECT_EQ(number(pof.image, 12), firmware.size());
    EXPECT_EQ(text(pof.image, 128, firmware.size()), firmware);
    EXPECT_EQ(load(pof.image, number(pof.image, 24)), content("factory.sof"));
    for (const std::size_t pointer : {48, 56}) {
        const std::size_t block = number(pof.image, pointer);
        ASSERT_EQ(text(pof.image, block, 4), "IWCP");
        EXPECT_EQ(number(pof.image, block + 272), plain_crc32(pof.image.data() + block, 272));
        ASSERT_EQ(number(pof.image, block + 8), 1u);
        EXPECT_EQ(load(pof.image, number(pof.image, block + 16)), content("application.sof"));
    }
    const std::string data = "helper data of the chipa wrapped key";
    EXPECT_EQ(text(pof.image, partition(pof, "PUF").start, data.size()), data);
}

TEST_F(FLASH_LAYOUTS, the_mouse_alone_makes_a_flash_image_in_the_three_tabs)
{
    make_bitstream("first.sof", "CA3M050", 40'000, "ASX4");
    make_bitstream("second.sof", "CA3M050", 30'000, "ASX4");
    choose_family_and_mode("Calcite", "Active Serial x4");
    tick_output("Raw Programming Data File (.rpd)");
    tick_output("Programmer Object File (.pof)");
    open_tab(1);
    add_bitstream("first.sof");
    add_bitstream("second.sof");
    open_tab(2);
    in_dialog("m_add_device_button",
              [](QDialog& dialog) { USER_HANDS::choose(dialog, "m_device_combo", "W25Q32JV"); });
    for (int bitstream = 1; bitstream <= 2; ++bitstream) {
        select_row("W25Q32JV");
        in_partition_dialog(
            "m_add_partition_button",
            QStringLiteral("Bitstream_%1 (%2.sof)").arg(bitstream).arg(bitstream == 1 ? "first" : "second"),
            QString::number(bitstream - 1));
    }
    save_as("mouse.vek");
    reopen("mouse.vek");
    ASSERT_EQ(generate(), SUCCESS);
    const DECODED_POF pof = read_pof("output_file.pof");
    EXPECT_EQ(load_page(pof, 0), content("first.sof"));
    EXPECT_EQ(load_page(pof, 1), content("second.sof"));
    EXPECT_EQ(read_file(m_directory / "output_file.rpd"), pof.image);
}

TEST_F(FLASH_LAYOUTS, the_mouse_alone_makes_a_bitstream_file_in_two_tabs)
{
    make_bitstream("top.sof", "BS1L15", 40'000, "PS");
    choose_family_and_mode("Basalt", "1-bit Passive Serial");
    tick_output("Raw Binary File (.rbf)");
    open_tab(1);
    add_bitstream("top.sof");
    ASSERT_EQ(generate(), SUCCESS);
    EXPECT_EQ(load(read_file(m_directory / "output_file.rbf"), 0), content("top.sof"));
}
