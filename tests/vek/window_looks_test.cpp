// All windows and dialogs, looked at one by one.

#include "nivo_help.h"
#include "thr_drl.h"
#include "window_looks_fixture.h"

TEST_F(WINDOW_LOOKS, the_dialogs_of_the_output_tab)
{
    choose_family_and_mode("Basalt", "1-bit Passive Serial");
    look(*m_frame, "window_new");
    tick_output("Hexadecimal File (.hex)");
    tick_output("Serial Vector Format File (.svf)");
    look(*m_frame, "tab_output");
    for (const QString text : {"Hexadecimal File (.hex)", "Serial Vector Format File (.svf)"}) {
        USER_HANDS::select(tree("m_file_type_tree"), text);
        look_in("m_edit_button", "output_properties_" + text.left(3).toLower().toStdString());
    }
}

TEST_F(WINDOW_LOOKS, the_properties_of_an_input_file_of_each_family)
{
    const struct {
        const char* family;
        const char* device;
    } families[] = {
        {"Basalt", "BS1L15"},   {"Calcite", "CA3M050"}, {"Dolomite", "DL2E20"},  {"Feldspar", "FD7X280"},
        {"Granite", "GR5S027"}, {"Gypsum", "GY1M16"},   {"Hematite", "HM8F060"}, {"Zircon", "ZR9A012"},
    };
    for (const auto& row : families) {
        SCOPED_TRACE(row.family);
        const bool is_onchip = row.device == std::string("GY1M16");
        make_bitstream(row.device + std::string(".sof"), row.device, 5000, is_onchip ? "SINGLE_IMAGE" : "");
        USER_HANDS::choose(*family_combo(*m_frame), row.family);
        tick_output("Programmer Object File (.pof)");
        open_tab(1);
        add_bitstream(row.device + std::string(".sof"));
        USER_HANDS::select(tree("m_input_file_tree"), QString(row.device) + ".sof");
        look(*m_frame, "tab_input_" + std::string(row.family));
        look_in("m_properties_button", "input_properties_" + std::string(row.family));
        open_tab(0);
    }
}

TEST_F(WINDOW_LOOKS, the_dialogs_of_the_flash_device_tab)
{
    make_bitstream("factory.sof", "ZR9A012", 5000, "ASX4", true);
    make_bitstream("application.sof", "ZR9A012", 5000, "ASX4", true);
    write_file(m_directory / "identity.puf", std::string("helper data of the chip"));
    choose_family_and_mode("Zircon", "Active Serial x4");
    tick_output("JTAG Indirect Configuration File (.jic)");
    tick_output("Programmer Object File (.pof)");
    open_tab(1);
    add_bitstream("factory.sof");
    add_bitstream("application.sof");
    add_raw_data("identity.puf");
    open_tab(2);
    look(*m_frame, "tab_device_empty");
    look_in("m_select_button", "device_browser");
    m_answers.run([](QDialog& dialog) {
        look(dialog, "add_device");
        dialog.findChild<QComboBox*>(QStringLiteral("m_device_combo"))
            ->setCurrentText(QStringLiteral("W25Q256JW"));
        USER_HANDS::click_standard_button(dialog, QDialogButtonBox::Ok);
    });
    USER_HANDS::click(*tabs(*m_frame)->currentWidget(), "m_add_device_button");
    select_row("BOOT_INFO");
    in_partition_dialog("m_edit_button", "Bitstream_1 (factory.sof)");
    select_row("PUF");
    look_in("m_edit_button", "puf_partition_properties");
    select_row("FACTORY_IMAGE");
    look_in("m_edit_button", "partition_properties_factory");
    select_row("W25Q256JW");
    look_in("m_add_partition_button", "partition_properties_add");
    look(*m_frame, "tab_device");
}

TEST_F(WINDOW_LOOKS, the_flash_database)
{
    make_bitstream("top.sof", "CA3M050", 5000, "ASX4");
    choose_family_and_mode("Calcite", "Active Serial x4");
    tick_output("Programmer Object File (.pof)");
    open_tab(1);
    add_bitstream("top.sof");
    open_tab(2);
    look_in("m_add_device_button", "flash_database");
}

TEST_F(WINDOW_LOOKS, the_options_of_on_chip_flash)
{
    make_bitstream("top.sof", "GY1M16", 5000, "SINGLE_IMAGE");
    choose_family_and_mode("Gypsum", "Internal Configuration");
    tick_output("Programmer Object File (.pof)");
    open_tab(1);
    add_bitstream("top.sof");
    open_tab(2);
    look(*m_frame, "tab_device_onchip");
    select_row("GY1M16");
    look_in("m_edit_button", "device_options");
    select_row("UFM");
    look_in("m_edit_button", "partition_properties_ufm");
}

TEST_F(WINDOW_LOOKS, the_help_and_the_messages)
{
    const THR_DRL_HANDLE module = thr_drl_load(NIVO_HELP_MODULE);
    ASSERT_NE(module, nullptr) << thr_drl_get_error();
    const auto show =
        reinterpret_cast<NIVO_HELP_SHOW_CONTEXT>(thr_drl_find_function(module, NIVO_HELP_ENTRY));
    show(NIVO_HELP_PARTITION);
    for (QWidget* const window : QApplication::topLevelWidgets()) {
        if (window->windowTitle() == QStringLiteral("Imagewright Help")) {
            look(*window, "help");
            delete window;
        }
    }
    tick_output("Programmer Object File (.pof)");
    open_tab(1);
    write_file(m_directory / "bad.sof", std::string("no bitstream"));
    add_bitstream("bad.sof");
    look(*m_frame, "messages");
}
