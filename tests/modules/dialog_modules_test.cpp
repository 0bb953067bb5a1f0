#include "cfg.h"
#include "config_device.h"
#include "dset_oti_dev_options_info.h"
#include "gfpdb_mgr.h"
#include "modal_answers.h"
#include "nivo_dialog_modules.h"
#include "nivo_native_file_dlg.h"
#include "pgm_device.h"
#include "temporary_directory.h"
#include "thr_drl.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTreeWidget>

#include <filesystem>

namespace
{

class DIALOG_MODULES : public testing::Test
{
protected:
    DIALOG_MODULES() : m_old_config(qgetenv("XDG_CONFIG_HOME"))
    {
        qputenv("XDG_CONFIG_HOME", (m_directory / "config").c_str());
        std::filesystem::create_directory(m_directory / "own");
    }
    ~DIALOG_MODULES() override
    {
        GFPDB_MGR::set_db_custom_dir(std::string());
        cfg_clear_overrides();
        qputenv("XDG_CONFIG_HOME", m_old_config);
    }

    template <typename FUNCTION>
    static FUNCTION entry(const char* module, const char* name)
    {
        const THR_DRL_HANDLE handle = thr_drl_load(module);
        EXPECT_NE(handle, nullptr) << thr_drl_get_error();
        void* const function = thr_drl_find_function(handle, name);
        EXPECT_NE(function, nullptr) << thr_drl_get_error();
        return reinterpret_cast<FUNCTION>(function);
    }
    template <typename WIDGET>
    static WIDGET* child(const QWidget& widget, const char* name)
    {
        WIDGET* const found = widget.findChild<WIDGET*>(QLatin1String(name));
        EXPECT_NE(found, nullptr) << name;
        return found;
    }
    static QPushButton* ok(const QDialog& dialog)
    {
        return dialog.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok);
    }
    static std::string names(const QDialog& dialog)
    {
        const auto* const list = child<QTreeWidget>(dialog, "m_device_list");
        QStringList texts;
        for (int row = 0; row < list->topLevelItemCount(); ++row) {
            texts << list->topLevelItem(row)->text(0);
        }
        return texts.join(' ').toStdString();
    }
    void show_flash(CONFIG_DEVICE& device, int page = 0)
    {
        entry<NIVO_FLASH_DLG_SHOW>(NIVO_FLASH_DLG_MODULE, NIVO_FLASH_DLG_ENTRY)(nullptr, &device, page, 0, 1);
    }

    TEMPORARY_DIRECTORY m_directory;
    QByteArray m_old_config;
    MODAL_ANSWERS m_answers;
};

} // namespace

TEST_F(DIALOG_MODULES, the_device_browser_finds_a_device_by_family_and_name)
{
    const auto show = entry<NIVO_DEVICES_DLG_SHOW>(NIVO_DEVICES_DLG_MODULE, NIVO_DEVICES_DLG_ENTRY);
    m_answers.run([](QDialog& dialog) {
        EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Select Device"));
        auto* const family = child<QComboBox>(dialog, "m_family_combo");
        EXPECT_EQ(family->itemText(0), QStringLiteral("All families"));
        EXPECT_EQ(family->findText(QStringLiteral("Onyx")), -1);
        family->setCurrentText(QStringLiteral("Calcite"));
        child<QLineEdit>(dialog, "m_filter_edit")->setText(QStringLiteral("m110"));
        EXPECT_EQ(names(dialog), "CA3M110");
        const QString details = child<QLabel>(dialog, "m_details_label")->text();
        EXPECT_TRUE(details.contains(QStringLiteral("Family: Calcite")));
        EXPECT_TRUE(details.contains(QStringLiteral("JTAG IDCODE: 0x20B11BC7")));
        EXPECT_TRUE(details.contains(QStringLiteral("Configuration data: 6029312 bytes")));
        child<QLineEdit>(dialog, "m_filter_edit")->setText(QStringLiteral("no such"));
        EXPECT_FALSE(ok(dialog)->isEnabled());
        child<QLineEdit>(dialog, "m_filter_edit")->setText(QStringLiteral("M110"));
        ok(dialog)->click();
    });
    const PGM_DEVICE* device = nullptr;
    bool accepted = false;
    show(QString(), &device, true, false, &accepted);
    EXPECT_TRUE(accepted);
    ASSERT_NE(device, nullptr);
    EXPECT_EQ(device->name, "CA3M110");

    m_answers.run([](QDialog& dialog) {
        EXPECT_EQ(child<QTreeWidget>(dialog, "m_device_list")->currentItem()->text(0),
                  QStringLiteral("BS1L15"));
        EXPECT_EQ(names(dialog).find("W25Q"), std::string::npos) << "no flash loader works through a flash";
        dialog.reject();
    });
    show(QStringLiteral("BS1L15"), &device, true, false, &accepted);
    EXPECT_FALSE(accepted);
    EXPECT_EQ(device, nullptr);
}

TEST_F(DIALOG_MODULES, the_flash_database_is_searched_by_name_jedec_id_and_capacity)
{
    CONFIG_DEVICE wanted;
    wanted.config_mode = PGMIO_CONFIG_SCHEME_AS;
    m_answers.run([](QDialog& dialog) {
        EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Flash Database"));
        EXPECT_EQ(names(dialog).find("CFI"), std::string::npos) << "not for this mode";
        auto* const search = child<QLineEdit>(dialog, "m_search_edit");
        search->setText(QStringLiteral("ef4018"));
        EXPECT_EQ(names(dialog), "W25Q128JV");
        search->setText(QStringLiteral("EF 40 18"));
        EXPECT_EQ(names(dialog), "W25Q128JV");
        search->setText(QStringLiteral("w25q128jv"));
        EXPECT_EQ(names(dialog), "W25Q128JV");
        child<QComboBox>(dialog, "m_capacity_combo")->setCurrentText(QStringLiteral("32 MiB or more"));
        EXPECT_EQ(names(dialog), "");
        EXPECT_FALSE(ok(dialog)->isEnabled());
        child<QComboBox>(dialog, "m_capacity_combo")->setCurrentText(QStringLiteral("16 MiB or more"));
        EXPECT_FALSE(child<QPushButton>(dialog, "m_remove_button")->isEnabled());
        EXPECT_FALSE(child<QPushButton>(dialog, "m_add_button")->isEnabled()) << "there is no directory yet";
        ok(dialog)->click();
    });
    show_flash(wanted);
    EXPECT_EQ(wanted.device_name, "W25Q128JV");
    m_answers.run([](QDialog& dialog) {
        EXPECT_EQ(child<QTreeWidget>(dialog, "m_device_list")->currentItem()->text(0),
                  QStringLiteral("W25Q128JV"));
        dialog.reject();
    });
    show_flash(wanted);
    EXPECT_EQ(wanted.device_name, "") << "the user gave up";
}

TEST_F(DIALOG_MODULES, a_device_of_ones_own_is_a_file_that_comes_and_goes)
{
    CONFIG_DEVICE wanted;
    wanted.config_mode = PGMIO_CONFIG_SCHEME_AS;
    const std::string own = m_directory / "own";
    NIVO_NATIVE_FILE_DLG::answer_next({QString::fromStdString(own)});
    // Answers go to the dialogs in the order in which they come up.
    m_answers.run([this](QDialog& dialog) {
        child<QPushButton>(dialog, "m_directory_button")->click();
        m_answers.run([this](QDialog& form) {
            const auto type = [&form](const char* name, const char* text) {
                child<QLineEdit>(form, name)->setText(QLatin1String(text));
            };
            type("m_name_edit", "MYFLASH-1");
            type("m_size_edit", "eight");
            m_answers.click(QMessageBox::Ok);
            ok(form)->click();
            EXPECT_TRUE(m_answers.boxes().back().text.contains(QStringLiteral("\"eight\" is no number")));
            type("m_size_edit", "8M");
            type("m_sector_size_edit", "0x30001");
            type("m_page_size_edit", "256");
            m_answers.click(QMessageBox::Ok);
            ok(form)->click();
            EXPECT_EQ(m_answers.boxes().size(), 2) << "the rules of the device file";
            type("m_sector_size_edit", "64K");
            type("m_jedec_id_edit", "AB CD 17");
            type("m_name_edit", "w25q128jv");
            m_answers.click(QMessageBox::Ok);
            ok(form)->click();
            EXPECT_TRUE(m_answers.boxes().back().text.contains(QStringLiteral("already")));
            type("m_name_edit", "MYFLASH-1");
            ok(form)->click();
        });
        child<QPushButton>(dialog, "m_add_button")->click();
        EXPECT_EQ(child<QTreeWidget>(dialog, "m_device_list")->currentItem()->text(0),
                  QStringLiteral("MYFLASH-1"));
        child<QCheckBox>(dialog, "m_custom_check")->setChecked(true);
        EXPECT_EQ(names(dialog), "MYFLASH-1");
        ok(dialog)->click();
    });
    show_flash(wanted);
    EXPECT_EQ(wanted.device_name, "MYFLASH-1");
    EXPECT_TRUE(std::filesystem::exists(own + "/MYFLASH-1.xml"));
    EXPECT_EQ(GFPDB_MGR::get_custom_dir_from_ini(), own) << "remembered for later runs";
    ASSERT_NE(PGM_DEVICE_INDEX::find_by_name("MYFLASH-1"), nullptr);
    EXPECT_EQ(PGM_DEVICE_INDEX::find_by_name("MYFLASH-1")->flash_bytes, 8U * 1024 * 1024);

    m_answers.run([this](QDialog& dialog) {
        EXPECT_EQ(names(dialog), "MYFLASH-1") << "the page of one's own devices";
        m_answers.click(QMessageBox::No);
        child<QPushButton>(dialog, "m_remove_button")->click();
        EXPECT_EQ(names(dialog), "MYFLASH-1");
        m_answers.click(QMessageBox::Yes);
        child<QPushButton>(dialog, "m_remove_button")->click();
        EXPECT_EQ(names(dialog), "");
        dialog.reject();
    });
    show_flash(wanted, 1);
    EXPECT_FALSE(std::filesystem::exists(own + "/MYFLASH-1.xml"));
    EXPECT_EQ(PGM_DEVICE_INDEX::find_by_name("MYFLASH-1"), nullptr);
}

TEST_F(DIALOG_MODULES, the_options_are_edited_in_place)
{
    const auto show = entry<NIVO_OPTIONS_DLG_SHOW>(NIVO_OPTIONS_DLG_MODULE, NIVO_OPTIONS_DLG_ENTRY);
    DSET_OTI_DEV_OPTIONS_INFO options;
    QString summary;
    m_answers.run([](QDialog& dialog) {
        EXPECT_EQ(dialog.findChild<QCheckBox*>(QStringLiteral("m_jtag_security_check")), nullptr);
        EXPECT_EQ(dialog.findChild<QCheckBox*>(QStringLiteral("m_enable_test_check")), nullptr);
        EXPECT_EQ(dialog.findChild<QCheckBox*>(QStringLiteral("m_cfm0_only_check")), nullptr);
        child<QComboBox>(dialog, "m_power_on_combo")->setCurrentIndex(1);
        EXPECT_FALSE(child<QLineEdit>(dialog, "m_watchdog_edit")->isEnabled());
        child<QCheckBox>(dialog, "m_watchdog_check")->setChecked(true);
        child<QLineEdit>(dialog, "m_watchdog_edit")->clear();
        EXPECT_FALSE(ok(dialog)->isEnabled());
        child<QLineEdit>(dialog, "m_watchdog_edit")->setText(QStringLiteral("FF"));
        auto* const source = child<QComboBox>(dialog, "m_ufm_source_combo");
        EXPECT_EQ(source->count(), 2);
        source->setCurrentText(QStringLiteral("File"));
        EXPECT_FALSE(ok(dialog)->isEnabled()) << "there is no file yet";
        NIVO_NATIVE_FILE_DLG::answer_next({QStringLiteral("/in/ufm.hex")});
        child<QPushButton>(dialog, "m_ufm_browse_button")->click();
        ok(dialog)->click();
    });
    show(nullptr, &options, true, false, false, false, {QStringLiteral("CFM0")}, &summary, true);
    EXPECT_EQ(options.power_on_scheme, 1U);
    EXPECT_TRUE(options.watchdog_enabled);
    EXPECT_EQ(options.watchdog_value, 255U);
    EXPECT_EQ(options.ufm_source, 2U);
    EXPECT_EQ(options.ufm_source_file, "/in/ufm.hex");
    EXPECT_EQ(summary, QStringLiteral("Power-on scheme 1\nUser watchdog\nUser flash from a file"));

    m_answers.run([](QDialog& dialog) {
        child<QCheckBox>(dialog, "m_jtag_security_check")->setChecked(true);
        child<QCheckBox>(dialog, "m_enable_test_check")->setChecked(true);
        child<QCheckBox>(dialog, "m_cfm0_only_check")->setChecked(true);
        child<QComboBox>(dialog, "m_ufm_source_combo")->setCurrentText(QStringLiteral("CFM1"));
        ok(dialog)->click();
    });
    show(nullptr, &options, true, true, true, true, {QStringLiteral("CFM0"), QStringLiteral("CFM1")}, nullptr,
         true);
    EXPECT_TRUE(options.jtag_security);
    EXPECT_TRUE(options.enable_test);
    EXPECT_FALSE(options.not_cfm0_only);
    EXPECT_EQ(options.ufm_source, 1U);
    EXPECT_EQ(options.ufm_source_file, "");

    m_answers.run([](QDialog& dialog) {
        child<QCheckBox>(dialog, "m_verify_protect_check")->setChecked(true);
        dialog.reject();
    });
    show(nullptr, &options, true, false, false, false, {QStringLiteral("CFM0")}, nullptr, true);
    EXPECT_FALSE(options.verify_protect) << "nothing changes when the user gives up";
}
