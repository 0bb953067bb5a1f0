#include "config_device.h"
#include "config_device_fixture.h"
#include "msg_debug.h"
#include "msg_service.h"
#include "nivo_dialog_modules.h"
#include "nivo_safe_connect.h"
#include "pgm_device.h"
#include "vek_tab_config_device.h"
#include "vek_tree_config_device.h"

#include <QFormLayout>
#include <QGridLayout>

namespace
{

/// What the dialog modules of these tests were called with, and what they answer.
struct MODULE_CALLS {
    std::string devices;
    const PGM_DEVICE* chosen = nullptr;
    bool accepted = true;
    std::string flash;
    std::string flash_answer = "W25Q128JV";
    std::string options;
    QWidget* parent = nullptr;
    DSET_OTI_DEV_OPTIONS_INFO seen;
} calls;

void devices_dlg(QString name, const PGM_DEVICE** device, bool first, bool second, bool* accepted)
{
    calls.devices = "\"" + name.toStdString() + "\" " + std::to_string(first) + std::to_string(second);
    *device = calls.chosen;
    *accepted = calls.accepted;
}

void flash_dlg(QWidget* parent, CONFIG_DEVICE* config_device, int first, int second, int third)
{
    calls.parent = parent;
    calls.flash = std::to_string(config_device->family) + "/" + std::to_string(config_device->config_mode) +
                  "/" + config_device->device_name + "/" +
                  std::to_string(config_device->modes_by_family.size()) + " " + std::to_string(first) +
                  std::to_string(second) + std::to_string(third);
    config_device->device_name = calls.flash_answer;
}

void options_dlg(QWidget* parent, DSET_OTI_DEV_OPTIONS_INFO* options, bool first, bool dual, bool timing,
                 bool security, QList<QString> sectors, QString* text, bool last)
{
    calls.parent = parent;
    calls.seen = *options;
    calls.options = std::to_string(first) + std::to_string(dual) + std::to_string(timing) +
                    std::to_string(security) + " " + QStringList(sectors).join(',').toStdString() + " " +
                    std::to_string(text != nullptr) + std::to_string(last);
    options->power_on_scheme = 2;
}

class VEK_CONFIG_DEVICE_TAB : public CONFIG_DEVICE_FIXTURE
{
protected:
    VEK_CONFIG_DEVICE_TAB() : m_tab(m_vek, m_cache, nullptr, Qt::WindowFlags())
    {
        calls = {};
        m_cache->family = DEV_FAMILY_BASALT;
        m_cache->current_mode = PGMIO_CONFIG_SCHEME_AS;
        m_cache->config_mode = PGMIO_CONFIG_SCHEME_AS;
        thr_drl_double().modules["mod_devices_dlg"]["devices_dlg_show"] =
            reinterpret_cast<void*>(&devices_dlg);
        thr_drl_double().modules["mod_flash_dlg"]["flash_dlg_show"] = reinterpret_cast<void*>(&flash_dlg);
        thr_drl_double().modules["mod_options_dlg"]["options_dlg_show"] =
            reinterpret_cast<void*>(&options_dlg);
    }
    VEK_TREE_CONFIG_DEVICE* tree() { return child<VEK_TREE_CONFIG_DEVICE>(m_tab, "m_config_device_tree"); }
    QPushButton* button(const char* name) { return child<QPushButton>(m_tab, name); }
    QString loader() { return child<QLineEdit>(m_tab, "m_flash_loader_edit")->text(); }
    /// Makes the row of that name current.
    void select(const std::string& name)
    {
        const auto found =
            tree()->model()->match(tree()->model()->index(0, 0), Qt::DisplayRole,
                                   QString::fromStdString(name), 1, Qt::MatchExactly | Qt::MatchRecursive);
        ASSERT_EQ(found.size(), 1) << name;
        tree()->setCurrentIndex(found.front());
    }
    /// Add partition, edit, remove.
    std::string enabled()
    {
        std::string text;
        for (const char* const name : {"m_add_partition_button", "m_edit_button", "m_remove_button"}) {
            text += button(name)->isEnabled() ? "1" : "0";
        }
        return text;
    }
    void boot_layout()
    {
        m_cache->family = DEV_FAMILY_ZIRCON;
        m_cache->partition_rule_flag_a = true;
        m_cache->partition_rule_flag_b = true;
        bitstream("Bitstream_1", {"/in/a.sof"});
        bitstream("Bitstream_2", {"/in/b.sof"});
        raw_file("Raw_File_1", "PUF", "/in/a.puf");
        raw_file("Raw_File_2", "WKEY", "/in/a.wkey");
        tree()->add_device("W25Q128JV", false);
    }
    void onchip(PGMIO_CONFIG_SCHEME mode)
    {
        m_cache->family = DEV_FAMILY_ONCHIP_FLASH;
        m_cache->device = PGM_DEVICE_INDEX::find_by_name("GY1M16")->device;
        m_cache->device_name = "GY1M16";
        m_cache->config_mode = mode;
        m_cache->current_mode = mode;
        m_tab.update_device(QString());
    }
    static QComboBox* combo(QDialog& dialog, const char* name) { return child<QComboBox>(dialog, name); }

    VEK_TAB_CONFIG_DEVICE m_tab;
};

} // namespace

TEST_F(VEK_CONFIG_DEVICE_TAB, the_widgets_stand_in_their_grid)
{
    auto* const grid = qobject_cast<QGridLayout*>(m_tab.layout());
    ASSERT_NE(grid, nullptr);
    EXPECT_EQ(qobject_cast<QLabel*>(grid->itemAtPosition(0, 1)->widget())->text(),
              QStringLiteral("Specify the partition layout of the flash image. Specify the flash loader if "
                             "required."));
    const auto* const line = qobject_cast<QFrame*>(grid->itemAtPosition(1, 1)->widget());
    EXPECT_EQ(line->frameShape(), QFrame::HLine);
    EXPECT_EQ(line->frameShadow(), QFrame::Sunken);
    EXPECT_EQ(grid->itemAtPosition(2, 0)->widget(), tree());
    const auto* const box = qobject_cast<QVBoxLayout*>(grid->itemAtPosition(2, 1)->layout());
    ASSERT_EQ(box->count(), 4);
    EXPECT_EQ(box->alignment(), Qt::AlignTop);
    const char* const texts[] = {"Add Device...", "Add Partition...", "Edit...", "Remove"};
    for (int i = 0; i < 4; ++i) {
        const auto* const found = qobject_cast<QPushButton*>(box->itemAt(i)->widget());
        EXPECT_EQ(found->text(), QLatin1String(texts[i]));
        EXPECT_EQ(found->isEnabled(), i == 0);
    }
    const auto* const form = qobject_cast<QFormLayout*>(grid->itemAtPosition(3, 0)->layout());
    const auto* const edit = child<QLineEdit>(m_tab, "m_flash_loader_edit");
    EXPECT_EQ(qobject_cast<QLabel*>(form->labelForField(const_cast<QLineEdit*>(edit)))->text(),
              QStringLiteral("Flash loader:"));
    EXPECT_TRUE(edit->isReadOnly());
    EXPECT_EQ(grid->itemAtPosition(3, 1)->widget(), button("m_select_button"));
    EXPECT_EQ(button("m_select_button")->text(), QStringLiteral("Select..."));
    EXPECT_FALSE(button("m_select_button")->isEnabled());
    EXPECT_INTERNAL_ERROR(m_tab.set_vek(nullptr), "vek != nullptr");
}

TEST_F(VEK_CONFIG_DEVICE_TAB, the_connections_stand_in_their_order)
{
    std::string made;
    nivo_set_connect_watcher([&made](const QObject* sender, const QByteArray& signal, const QObject* receiver,
                                     const QByteArray& slot) {
        if (receiver->inherits("VEK_TAB_CONFIG_DEVICE")) {
            made += sender->objectName().toStdString() + " " + signal.toStdString() + " " +
                    slot.toStdString() + "\n";
        }
    });
    const VEK_TAB_CONFIG_DEVICE other(m_vek, m_cache, nullptr, Qt::WindowFlags());
    nivo_set_connect_watcher({});
    EXPECT_EQ(
        made,
        "m_add_device_button clicked() add_device()\n"
        "m_add_partition_button clicked() add_partition()\n"
        "m_edit_button clicked() edit()\n"
        "m_remove_button clicked() remove()\n"
        "m_select_button clicked() select_flash_loader()\n"
        "m_config_device_tree current_changed(const QModelIndex&, const QModelIndex&) update_buttons()\n"
        "m_config_device_tree config_device_changed() update_buttons()\n"
        "m_config_device_tree config_device_changed() config_device_changed()\n"
        "m_config_device_tree partition_changed() partition_changed()\n");
}

TEST_F(VEK_CONFIG_DEVICE_TAB, one_flash_device_is_enough)
{
    EXPECT_TRUE(button("m_add_device_button")->isEnabled());
    tree()->add_device("W25Q128JV", false);
    EXPECT_FALSE(button("m_add_device_button")->isEnabled());
    tree()->remove_device("Flash_Device_1");
    EXPECT_TRUE(button("m_add_device_button")->isEnabled());
    EXPECT_EQ(enabled(), "000");
}

TEST_F(VEK_CONFIG_DEVICE_TAB, the_buttons_follow_the_kind_of_the_row)
{
    tree()->add_device("W25Q128JV", false);
    partition("Flash_Device_1", "P1");
    mbr("Flash_Device_1", "MBR1", "Inner");
    m_tab.refresh();
    select("W25Q128JV");
    EXPECT_EQ(enabled(), "101");
    select("P1");
    EXPECT_EQ(enabled(), "011");
    select("MBR1");
    EXPECT_EQ(enabled(), "111");
    m_tab.edit();
    EXPECT_INTERNAL_ERROR(m_tab.add_partition(), "!prefix.empty()");
    select("Inner");
    EXPECT_INTERNAL_ERROR(m_tab.add_partition(), "!prefix.empty()");
    tree()->setCurrentIndex(QModelIndex());
    EXPECT_EQ(enabled(), "000");
    EXPECT_INTERNAL_ERROR(m_tab.edit(), "current_element != nullptr");
    EXPECT_INTERNAL_ERROR(m_tab.add_partition(), "parent != nullptr");
}

TEST_F(VEK_CONFIG_DEVICE_TAB, what_generation_fills_can_be_neither_edited_nor_removed)
{
    boot_layout();
    const std::map<std::string, std::string> expected{{"BOOT_INFO", "010"}, {"FACTORY_IMAGE", "010"},
                                                      {"SPT0", "000"},      {"CPB1", "000"},
                                                      {"PUF", "010"},       {"W25Q128JV", "101"}};
    for (const auto& [name, buttons] : expected) {
        select(name);
        EXPECT_EQ(enabled(), buttons) << name;
    }
    m_vek->bitstreams.front()->bitstream.front()->path.clear();
    EXPECT_INTERNAL_ERROR(select("BOOT_INFO"), "!path_elements.empty()");
}

TEST_F(VEK_CONFIG_DEVICE_TAB, on_chip_partitions_can_only_be_edited)
{
    onchip(PGMIO_CONFIG_SCHEME_SINGLE_IMAGE);
    for (const char* const name : {"GY1M16", "CFM0", "UFM"}) {
        select(name);
        EXPECT_EQ(enabled(), "010") << name;
    }
}

TEST_F(VEK_CONFIG_DEVICE_TAB, after_a_refresh_the_buttons_follow_with_the_event_loop)
{
    tree()->add_device("W25Q128JV", false);
    partition("Flash_Device_1", "P1");
    m_tab.refresh();
    select("P1");
    m_tab.set_vek(std::make_shared<PGM_COMMON_XML_VEK_VEK>(PGM_COMMON_XML_ENUM_VEK));
    m_vek.reset();
    m_tab.refresh();
    EXPECT_EQ(enabled(), "011") << "as they were";
    EXPECT_FALSE(tree()->currentIndex().isValid());
    QCoreApplication::processEvents();
    EXPECT_EQ(enabled(), "000") << "nobody can click one without a row";
}

TEST_F(VEK_CONFIG_DEVICE_TAB, a_flash_loader_is_required_by_some_types_and_stays_when_they_go)
{
    const QSignalSpy changed(&m_tab, SIGNAL(flash_loader_changed()));
    set(*m_vek, VEK_CMD_OPT_FLASH_LOADER, {{VEK_CMD_PARAM_FLASH_LOADER_FLASH_LOADER, "BS1L15"}});
    add_output(*m_vek, "RPD", "top", ".");
    m_tab.update_flash_loader();
    EXPECT_FALSE(m_cache->flash_loader_required);
    EXPECT_FALSE(button("m_select_button")->isEnabled());
    add_output(*m_vek, "JIC", "top", ".");
    m_tab.update_flash_loader();
    EXPECT_TRUE(m_cache->flash_loader_required);
    EXPECT_TRUE(button("m_select_button")->isEnabled());
    ASSERT_TRUE(VEK_FILE_ASSISTANT::remove(m_vek.get(), VEK_CMD_OPT_OUTPUT_FILE,
                                           {{VEK_CMD_PARAM_OUTPUT_FILE_TYPE, "JIC"}}));
    m_tab.update_flash_loader();
    EXPECT_FALSE(m_cache->flash_loader_required);
    EXPECT_EQ(loader(), QStringLiteral("BS1L15"));
    EXPECT_EQ(VEK_FILE_ASSISTANT::get_flash_loader_elements(m_vek.get()).size(), 1U);
    EXPECT_EQ(changed.count(), 3);
}

TEST_F(VEK_CONFIG_DEVICE_TAB, selecting_a_flash_loader_writes_its_name)
{
    const QSignalSpy changed(&m_tab, SIGNAL(flash_loader_changed()));
    calls.chosen = PGM_DEVICE_INDEX::find_by_name("BS1L15");
    VEK_FILE_ASSISTANT_LOG log;
    calls.accepted = false;
    m_tab.select_flash_loader();
    calls.accepted = true;
    calls.chosen = nullptr;
    m_tab.select_flash_loader();
    EXPECT_EQ(log.take(), "");
    calls.chosen = PGM_DEVICE_INDEX::find_by_name("BS1L15");
    m_tab.select_flash_loader();
    EXPECT_EQ(calls.devices, "\"\" 10");
    EXPECT_EQ(log.take(),
              call("set", VEK_CMD_OPT_FLASH_LOADER, {{VEK_CMD_PARAM_FLASH_LOADER_FLASH_LOADER, "BS1L15"}}));
    EXPECT_EQ(loader(), QStringLiteral("BS1L15"));
    EXPECT_EQ(changed.count(), 1);
    EXPECT_EQ(
        std::count(thr_drl_double().calls.begin(), thr_drl_double().calls.end(), "unload mod_devices_dlg"),
        0);
}

TEST_F(VEK_CONFIG_DEVICE_TAB, a_missing_device_browser_is_passed_over_in_silence)
{
    thr_drl_double().modules["mod_devices_dlg"].clear();
    m_tab.select_flash_loader();
    thr_drl_double().modules.erase("mod_devices_dlg");
    thr_drl_double().missing.insert("mod_devices_dlg");
    m_tab.select_flash_loader();
    EXPECT_EQ(loader(), QString());
    EXPECT_TRUE(MSG_SERVICE::instance().history().empty());
}

TEST_F(VEK_CONFIG_DEVICE_TAB, other_missing_modules_are_internal_errors_in_the_words_of_the_loader)
{
    add_output(*m_vek, "POF", "top", ".");
    set_mode("ASX1");
    const auto raised = [](const std::function<void()>& run) {
        try {
            run();
        } catch (const INTERNAL_ERROR_RAISED& error) {
            return error.condition;
        }
        return std::string("nothing");
    };
    thr_drl_double().modules["mod_flash_dlg"].clear();
    EXPECT_TRUE(
        raised([this] { m_tab.add_device(); }).starts_with("The function flash_dlg_show cannot be found"));
    thr_drl_double().modules.erase("mod_flash_dlg");
    thr_drl_double().missing.insert("mod_flash_dlg");
    EXPECT_TRUE(raised([this] {
                    m_tab.add_device();
                }).starts_with("The module mod_flash_dlg_moved_away cannot be loaded"));

    onchip(PGMIO_CONFIG_SCHEME_SINGLE_IMAGE);
    select("GY1M16");
    thr_drl_double().modules["mod_options_dlg"].clear();
    EXPECT_TRUE(
        raised([this] { m_tab.edit(); }).starts_with("The function options_dlg_show cannot be found"));
    thr_drl_double().modules.erase("mod_options_dlg");
    thr_drl_double().missing.insert("mod_options_dlg");
    EXPECT_TRUE(raised([this] {
                    m_tab.edit();
                }).starts_with("The module mod_options_dlg_moved_away cannot be loaded"));
}

TEST_F(VEK_CONFIG_DEVICE_TAB, a_programmer_file_in_active_serial_asks_the_flash_database)
{
    add_output(*m_vek, "POF", "top", ".");
    set_mode("ASX4");
    msg_set_debug_level(2);
    std::vector<std::string> lines;
    {
        const MSG_SINK_SCOPE sink([&lines](const MSG_RECORD& record) { lines.push_back(record.text); });
        m_tab.add_device();
    }
    msg_set_debug_level(0);
    EXPECT_EQ(calls.flash, "5/13//0 001");
    EXPECT_EQ(calls.parent, &m_tab);
    const std::vector<std::string> expected{
        "Before calling MOD_FLASH_DLG: config_device.family = 5",
        "Before calling MOD_FLASH_DLG: config_device.config_mode = 13",
        "Before calling MOD_FLASH_DLG: config_device.device_name = ",
        "After calling MOD_FLASH_DLG: config_device.family = 5",
        "After calling MOD_FLASH_DLG: config_device.config_mode = 13",
        "After calling MOD_FLASH_DLG: config_device.device_name = W25Q128JV"};
    EXPECT_EQ(lines, expected);
    EXPECT_EQ(tree()->get_device(0), "W25Q128JV");
    tree()->clear();
    calls.flash_answer = "";
    m_tab.add_device();
    EXPECT_EQ(tree()->model()->rowCount(), 0) << "the user gave up";
    EXPECT_EQ(
        std::count(thr_drl_double().calls.begin(), thr_drl_double().calls.end(), "unload mod_flash_dlg"), 0);
}

TEST_F(VEK_CONFIG_DEVICE_TAB, other_outputs_and_modes_ask_the_device_list)
{
    EXPECT_THROW(m_tab.add_device(), std::out_of_range) << "the tab is closed without outputs";
    add_output(*m_vek, "JIC", "top", ".");
    add_output(*m_vek, "POF", "top", ".");
    set_mode("ASX1");
    MODAL_ANSWERS answers;
    answers.run([](QDialog& dialog) {
        EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Add Device"));
        combo(dialog, "m_device_combo")->setCurrentText(QStringLiteral("W25Q32JV"));
        dialog.accept();
    });
    answers.run([](QDialog& dialog) { dialog.reject(); });
    m_tab.add_device();
    EXPECT_EQ(tree()->get_device(0), "W25Q32JV");
    m_tab.add_device();
    EXPECT_EQ(tree()->model()->rowCount(), 1);
    EXPECT_EQ(calls.flash, "");
}

TEST_F(VEK_CONFIG_DEVICE_TAB, a_programmer_file_in_a_passive_mode_asks_the_device_list)
{
    add_output(*m_vek, "POF", "top", ".");
    set_mode("FPP");
    m_cache->config_mode = PGMIO_CONFIG_SCHEME_FPP;
    MODAL_ANSWERS answers;
    answers.run([](QDialog& dialog) {
        combo(dialog, "m_device_combo")->setCurrentText(QStringLiteral("CFI_128Mb"));
        dialog.accept();
    });
    m_tab.add_device();
    EXPECT_EQ(VEK_FILE_ASSISTANT::get_flash_device_elements(m_vek.get()).at(0)->type, "CFI_128Mb");
    EXPECT_NE(find("OPTIONS"), nullptr);
}

TEST_F(VEK_CONFIG_DEVICE_TAB, a_new_partition_gets_the_lowest_free_name)
{
    tree()->add_device("W25Q128JV", false);
    device("Flash_Device_2", "W25Q32JV");
    partition("Flash_Device_2", "P2");
    partition("Flash_Device_1", "P1");
    partition("Flash_Device_1", "P3");
    bitstream("Bitstream_1", {"/in/a.sof"});
    m_cache->max_bitstreams = 8;
    m_tab.refresh();
    select("W25Q128JV");
    MODAL_ANSWERS answers;
    answers.run([](QDialog& dialog) {
        EXPECT_EQ(dialog.parent(), nullptr);
        EXPECT_EQ(child<QLineEdit>(dialog, "m_name_edit")->text(), QStringLiteral("P2"))
            << "other devices are not looked at";
        dialog.reject();
    });
    m_tab.add_partition();
    answers.run([](QDialog& dialog) {
        child<QLineEdit>(dialog, "m_name_edit")->setText(QStringLiteral("Boot"));
        combo(dialog, "m_input_file_combo")->setCurrentIndex(1);
        combo(dialog, "m_page_combo")->setCurrentIndex(2);
        combo(dialog, "m_address_mode_combo")->setCurrentIndex(1);
        child<QLineEdit>(dialog, "m_start_addr_edit")->setText(QStringLiteral("10000"));
        child<QLineEdit>(dialog, "m_end_addr_edit")->setText(QStringLiteral("0x1ffff"));
        dialog.accept();
    });
    m_tab.add_partition();
    EXPECT_EQ(find("Boot")->s_addr, "10000");
    EXPECT_EQ(find("Boot")->e_addr, "0x1ffff");
    EXPECT_EQ(find("Boot")->reserved, "0");
    EXPECT_EQ(assignment("Boot")->page, "2");
    EXPECT_EQ(assignment("Boot")->bitstream_id.at(0)->text, "Bitstream_1");
    select("P1");
    answers.run([](QDialog& dialog) {
        child<QLineEdit>(dialog, "m_name_edit")->setText(QStringLiteral("P4"));
        dialog.accept();
    });
    m_tab.add_partition();
    EXPECT_NE(find("P4"), nullptr) << "from a partition it goes to the device of that";
}

TEST_F(VEK_CONFIG_DEVICE_TAB, an_edited_partition_is_written_as_the_dialog_says)
{
    tree()->add_device("W25Q128JV", false);
    partition("Flash_Device_1", "P1", "0x1000", "auto");
    bitstream("Bitstream_1", {"/in/a.sof"});
    raw_file("Raw_File_1", "HEX", "/in/a.hex");
    assign("P1", {{VEK_CMD_PARAM_ASSIGNMENT_RAW_FILE_ID, "Raw_File_1"}});
    m_cache->max_bitstreams = 8;
    m_tab.refresh();
    select("P1");
    MODAL_ANSWERS answers;
    answers.run([](QDialog& dialog) {
        EXPECT_EQ(combo(dialog, "m_input_file_combo")->currentText(), QStringLiteral("a.hex"));
        combo(dialog, "m_input_file_combo")->setCurrentIndex(1);
        combo(dialog, "m_page_combo")->setCurrentIndex(4);
        combo(dialog, "m_address_mode_combo")->setCurrentIndex(0);
        child<QLineEdit>(dialog, "m_name_edit")->setText(QStringLiteral("New"));
        dialog.accept();
    });
    answers.run([](QDialog& dialog) { dialog.reject(); });
    m_tab.edit();
    EXPECT_EQ(find("New")->s_addr, "auto");
    EXPECT_EQ(assignment("New")->page, "4");
    EXPECT_EQ(assignment("New")->bitstream_id.at(0)->text, "Bitstream_1");
    VEK_FILE_ASSISTANT_LOG log;
    m_tab.edit();
    EXPECT_EQ(log.take(), "");
}

TEST_F(VEK_CONFIG_DEVICE_TAB, an_unusable_bitstream_for_the_boot_information_changes_nothing)
{
    boot_layout();
    select("BOOT_INFO");
    VEK_FILE_ASSISTANT_LOG log;
    MODAL_ANSWERS answers;
    answers.run([](QDialog& dialog) {
        combo(dialog, "m_input_file_combo")->setCurrentIndex(1);
        dialog.accept();
    });
    answers.click(QMessageBox::Ok);
    m_tab.edit();
    EXPECT_EQ(log.take(), "");
    EXPECT_EQ(answers.boxes().at(0).icon, QMessageBox::Critical);
    EXPECT_FALSE(answers.boxes().at(0).text.isEmpty());
    EXPECT_EQ(assignment("BOOT_INFO"), nullptr);
}

TEST_F(VEK_CONFIG_DEVICE_TAB, a_puf_partition_takes_its_two_files)
{
    boot_layout();
    select("PUF");
    MODAL_ANSWERS answers;
    answers.run([](QDialog& dialog) {
        combo(dialog, "m_puf_file_combo")->setCurrentIndex(1);
        combo(dialog, "m_wkey_file_combo")->setCurrentIndex(1);
        dialog.accept();
    });
    m_tab.edit();
    const auto ids = VEK_FILE_ASSISTANT::get_raw_file_id_elements(m_vek.get(), "PUF");
    ASSERT_EQ(ids.size(), 2U);
    EXPECT_EQ(ids.at(0)->text, "Raw_File_1");
    EXPECT_EQ(ids.at(1)->text, "Raw_File_2");
    answers.run([](QDialog& dialog) {
        EXPECT_EQ(combo(dialog, "m_puf_file_combo")->currentText(), QStringLiteral("a.puf"));
        EXPECT_EQ(combo(dialog, "m_wkey_file_combo")->currentText(), QStringLiteral("a.wkey"));
        combo(dialog, "m_puf_file_combo")->setCurrentIndex(0);
        dialog.accept();
    });
    m_tab.edit();
    EXPECT_EQ(assignment("PUF"), nullptr);
}

TEST_F(VEK_CONFIG_DEVICE_TAB, the_source_of_the_user_flash_lies_in_the_options_of_the_device)
{
    raw_file("Raw_File_1", "HEX", "/in/ufm.hex");
    onchip(PGMIO_CONFIG_SCHEME_DUAL_COMPRESSED_IMAGES);
    const auto* const element = VEK_FILE_ASSISTANT::get_flash_device_elements(m_vek.get()).at(0);
    select("UFM");
    MODAL_ANSWERS answers;
    const auto edit = [&](const char* shown, const char* chosen) {
        answers.run([=](QDialog& dialog) {
            EXPECT_EQ(combo(dialog, "m_input_file_combo")->currentText(), QLatin1String(shown));
            combo(dialog, "m_input_file_combo")->setCurrentText(QLatin1String(chosen));
            dialog.accept();
        });
        m_tab.edit();
        return element->ufm_source + " " + element->ufm_source_file;
    };
    EXPECT_EQ(edit("CFM0", "CFM1"), "1 ");
    EXPECT_EQ(edit("CFM1", "ufm.hex"), "2 /in/ufm.hex");
    set(*m_vek, VEK_CMD_OPT_RAW_FILE,
        {{VEK_CMD_PARAM_RAW_FILE_ID, "Raw_File_1"}, {VEK_CMD_PARAM_RAW_FILE_RAW_FILE, "/in/./ufm.hex"}});
    EXPECT_EQ(edit("ufm.hex", "CFM0"), "0 ") << "paths are compared as paths";
    EXPECT_EQ(assignment("UFM"), nullptr);
}

TEST_F(VEK_CONFIG_DEVICE_TAB, the_options_of_an_on_chip_device_are_edited_by_their_module)
{
    onchip(PGMIO_CONFIG_SCHEME_DUAL_COMPRESSED_IMAGES);
    select("GY1M16");
    m_tab.edit();
    EXPECT_EQ(calls.options, "1100 CFM0,CFM1 11");
    EXPECT_EQ(calls.parent, &m_tab);
    EXPECT_EQ(calls.seen.power_on_scheme, 0U);
    EXPECT_EQ(VEK_FILE_ASSISTANT::get_flash_device_elements(m_vek.get()).at(0)->power_on_scheme, "2");
    EXPECT_EQ(thr_drl_double().calls.back(), "unload mod_options_dlg");
    m_cache->config_mode = PGMIO_CONFIG_SCHEME_SINGLE_IMAGE;
    m_tab.edit();
    EXPECT_EQ(calls.options, "1000 CFM0 11");
    calls.options.clear();
    m_cache->family = DEV_FAMILY_BASALT;
    m_tab.edit();
    EXPECT_EQ(calls.options, "") << "no other family has options";
}

TEST_F(VEK_CONFIG_DEVICE_TAB, removing_a_device_with_partitions_asks_first)
{
    tree()->add_device("W25Q128JV", false);
    select("W25Q128JV");
    MODAL_ANSWERS answers;
    partition("Flash_Device_1", "P1");
    m_tab.refresh();
    select("W25Q128JV");
    answers.click(QMessageBox::No);
    m_tab.remove();
    EXPECT_EQ(tree()->model()->rowCount(), 1);
    const MODAL_BOX& box = answers.boxes().at(0);
    EXPECT_EQ(box.text, QStringLiteral("Removing this item will remove all of its child items."));
    EXPECT_EQ(box.informative_text, QStringLiteral("Do you want to continue?"));
    EXPECT_EQ(box.icon, QMessageBox::Warning);
    EXPECT_EQ(box.buttons, QMessageBox::Yes | QMessageBox::No);
    EXPECT_EQ(box.default_button, QMessageBox::No);
    select("P1");
    m_tab.remove();
    EXPECT_EQ(find("P1"), nullptr) << "a partition goes without a question";
    partition("Flash_Device_1", "P2");
    m_tab.refresh();
    select("W25Q128JV");
    answers.click(QMessageBox::Yes);
    m_tab.remove();
    EXPECT_EQ(tree()->model()->rowCount(), 0);
    EXPECT_EQ(find("P2"), nullptr);
}

TEST_F(VEK_CONFIG_DEVICE_TAB, removing_within_an_mbr_only_announces)
{
    tree()->add_device("W25Q128JV", false);
    mbr("Flash_Device_1", "MBR1", "Inner");
    m_tab.refresh();
    select("Inner");
    const QSignalSpy changed(&m_tab, SIGNAL(partition_changed()));
    VEK_FILE_ASSISTANT_LOG log;
    m_tab.remove();
    EXPECT_EQ(changed.count(), 1);
    EXPECT_EQ(log.take(), "");
    EXPECT_NE(find("Inner"), nullptr);
}

TEST_F(VEK_CONFIG_DEVICE_TAB, the_device_of_on_chip_flash_follows_the_bitstream)
{
    tree()->add_device("W25Q128JV", false);
    m_cache->device_name = "GY1M16";
    m_tab.update_device(QString());
    EXPECT_EQ(tree()->get_device(0), "W25Q128JV") << "another family";
    partition("Flash_Device_1", "P1");
    m_tab.refresh();
    onchip(PGMIO_CONFIG_SCHEME_SINGLE_IMAGE);
    EXPECT_EQ(tree()->get_device(0), "GY1M16");
    EXPECT_EQ(find("P1"), nullptr);
    EXPECT_NE(find("CFM0"), nullptr);
    EXPECT_EQ(find("CFM1"), nullptr);
    EXPECT_NE(find("UFM"), nullptr);
    VEK_FILE_ASSISTANT_LOG log;
    m_tab.update_device(QStringLiteral("not looked at"));
    EXPECT_EQ(log.take(), "") << "the same device stays";
}

TEST_F(VEK_CONFIG_DEVICE_TAB, a_reset_takes_devices_and_loader_out)
{
    add_output(*m_vek, "POF", "top", ".");
    tree()->add_device("W25Q128JV", false);
    set(*m_vek, VEK_CMD_OPT_FLASH_LOADER, {{VEK_CMD_PARAM_FLASH_LOADER_FLASH_LOADER, "BS1L15"}});
    m_tab.refresh();
    EXPECT_EQ(loader(), QStringLiteral("BS1L15"));
    VEK_FILE_ASSISTANT_LOG log;
    m_tab.reset();
    EXPECT_EQ(
        log.take(),
        call("remove", VEK_CMD_OPT_FLASH_DEVICE, {{VEK_CMD_PARAM_FLASH_DEVICE_ID, "Flash_Device_1"}}) +
            call("remove", VEK_CMD_OPT_FLASH_LOADER, {{VEK_CMD_PARAM_FLASH_LOADER_FLASH_LOADER, "BS1L15"}}));
    EXPECT_EQ(loader(), QString());
    EXPECT_TRUE(VEK_FILE_ASSISTANT::get_flash_loader_elements(m_vek.get()).empty());
}
