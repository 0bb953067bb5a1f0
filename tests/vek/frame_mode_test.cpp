#include "brim_manager.h"
#include "gfpdb_mgr.h"
#include "missing_files_box.h"
#include "pgm_device.h"
#include "vek_db.h"
#include "vek_file_assistant_double.h"
#include "vek_frame_fixture.h"

#include <utility>

Q_DECLARE_METATYPE(PGMIO_CONFIG_SCHEME)

namespace
{

/// The modes that the window announces.
class MODE_SPY : public QSignalSpy
{
public:
    explicit MODE_SPY(const VEK_FRAME_WND& frame)
        : QSignalSpy(&frame, SIGNAL(mode_changed(PGMIO_CONFIG_SCHEME, bool)))
    {
    }
    std::vector<std::pair<PGMIO_CONFIG_SCHEME, bool>> take()
    {
        std::vector<std::pair<PGMIO_CONFIG_SCHEME, bool>> taken;
        for (const QList<QVariant>& arguments : std::as_const(*this)) {
            taken.emplace_back(arguments.at(0).value<PGMIO_CONFIG_SCHEME>(), arguments.at(1).toBool());
        }
        clear();
        return taken;
    }
};

using ANNOUNCED = std::vector<std::pair<PGMIO_CONFIG_SCHEME, bool>>;

class VEK_FRAME_MODE : public VEK_FRAME_FIXTURE
{
protected:
    VEK_FRAME_MODE() { qRegisterMetaType<PGMIO_CONFIG_SCHEME>("PGMIO_CONFIG_SCHEME"); }

    static std::vector<int> modes(const VEK_FRAME_WND& frame)
    {
        std::vector<int> found;
        for (int index = 0; index < mode_combo(frame)->count(); ++index) {
            found.push_back(mode_combo(frame)->itemData(index).toInt());
        }
        return found;
    }
    static void offer_modes(unsigned mask_a, unsigned mask_b)
    {
        vek_util_double().get_family_pcf_info =
            [mask_a, mask_b](DEV_FAMILY_ENUM, DEV_DEVICE_ENUM, unsigned& a, unsigned& b, unsigned& outputs) {
                a = mask_a;
                b = mask_b;
                outputs = 0;
            };
    }
    static PGM_COMMON_XML_VEK_VEK* document(VEK_FRAME_WND& frame)
    {
        return VEK_FRAME_WND_PROBE::document(frame).get();
    }
    static VEK_FRAME_WND_CACHE& cache(VEK_FRAME_WND& frame) { return VEK_FRAME_WND_PROBE::cache(frame); }

    const MISSING_FILES_BOX_CLOSER m_missing_files_box_closer;
};

} // namespace

TEST_F(VEK_FRAME_MODE, a_new_window_goes_through_the_first_family_to_the_default_one)
{
    const auto frame = make_frame();
    EXPECT_EQ(vek_util_double().asked_families,
              (std::vector<DEV_FAMILY_ENUM>{DEV_FAMILY_BASALT, DEV_FAMILY_DEFAULT_CHOICE}));
    EXPECT_EQ(family_combo(*frame)->currentData().toInt(), 48);
    EXPECT_EQ(cache(*frame).family, DEV_FAMILY_DEFAULT_CHOICE);
    EXPECT_EQ(cache(*frame).current_mode, PGMIO_CONFIG_SCHEME_AS);
    EXPECT_EQ(mode_combo(*frame)->currentIndex(), 0);
    EXPECT_EQ(mode_of(*document(*frame)), "ASX1");
}

TEST_F(VEK_FRAME_MODE, the_families_stand_in_the_order_of_their_names)
{
    const auto frame = make_frame();
    QStringList names;
    for (int index = 0; index < family_combo(*frame)->count(); ++index) {
        names << family_combo(*frame)->itemText(index);
        EXPECT_EQ(family_combo(*frame)->itemData(index).toInt(),
                  static_cast<int>(dstr_get_dev_family_enum_by_string(names.back().toStdString())));
    }
    EXPECT_EQ(names, (QStringList{"Basalt", "Calcite", "Dolomite", "Feldspar", "Granite", "Gypsum",
                                  "Hematite", "Zircon"}));
}

TEST_F(VEK_FRAME_MODE, devices_that_are_not_to_be_listed_bring_no_family)
{
    const auto make_device = [](const char* name, DEV_FAMILY_ENUM family) {
        PGM_DEVICE device;
        device.name = name;
        device.family = family;
        return device;
    };
    const PGM_DEVICE good = make_device("good", DEV_FAMILY_CALCITE);
    const PGM_DEVICE nameless = make_device("", DEV_FAMILY_BASALT);
    const PGM_DEVICE flash = make_device("flash", DEV_FAMILY_SERIAL_A);
    const PGM_DEVICE not_offered = make_device("onyx", DEV_FAMILY_NOT_OFFERED);
    PGM_DEVICE withdrawn = make_device("withdrawn", DEV_FAMILY_GRANITE);
    withdrawn.release = DEV_RELEASE::WITHDRAWN;
    withdrawn.ask_not_listed = true;
    PGM_DEVICE no_pof = make_device("no_pof", DEV_FAMILY_HEMATITE);
    no_pof.jtag_only = true;
    no_pof.ask_no_pof = true;
    PGM_DEVICE unasked = make_device("unasked", DEV_FAMILY_DOLOMITE);
    unasked.release = DEV_RELEASE::WITHDRAWN;
    PGM_DEVICE_INDEX::override_device_list(std::vector<const PGM_DEVICE*>{
        nullptr, &nameless, &flash, &not_offered, &withdrawn, &no_pof, &unasked, &good, &good});

    const auto frame = make_frame();
    ASSERT_EQ(family_combo(*frame)->count(), 2);
    EXPECT_EQ(family_combo(*frame)->itemText(0), QStringLiteral("Calcite"));
    EXPECT_EQ(family_combo(*frame)->itemText(1), QStringLiteral("Dolomite"));
    EXPECT_EQ(family_combo(*frame)->currentIndex(), -1) << "the default family is not on offer";
}

TEST_F(VEK_FRAME_MODE, selecting_no_family_selects_the_default_one)
{
    const auto frame = make_frame();
    choose_family(*frame, DEV_FAMILY_CALCITE);
    VEK_FRAME_WND_PROBE::select_family(*frame, DEV_FAMILY_NONE);
    EXPECT_EQ(family_combo(*frame)->currentData().toInt(), 48);
}

TEST_F(VEK_FRAME_MODE, the_modes_are_those_of_the_family_with_their_labels)
{
    const auto frame = make_frame();
    EXPECT_EQ(modes(*frame), (std::vector<int>{7, 13, 20, 21, 22}));
    EXPECT_EQ(mode_combo(*frame)->itemText(0), QStringLiteral("Active Serial"));
    EXPECT_EQ(mode_combo(*frame)->itemText(2), QStringLiteral("LNKS x8"));
    choose_family(*frame, DEV_FAMILY_BASALT);
    EXPECT_EQ(modes(*frame), (std::vector<int>{7, 13, 0, 6}));
}

TEST_F(VEK_FRAME_MODE, either_mask_offers_a_mode)
{
    const auto frame = make_frame();
    offer_modes(1u << 6, 1u << 20);
    choose_family(*frame, DEV_FAMILY_CALCITE);
    EXPECT_EQ(modes(*frame), (std::vector<int>{6, 20}));
    offer_modes(1u << 6, 0);
    choose_family(*frame, DEV_FAMILY_GRANITE);
    EXPECT_EQ(modes(*frame), (std::vector<int>{6}));
}

TEST_F(VEK_FRAME_MODE, masks_without_an_enabled_mode_leave_the_combo_empty_and_mode_zero)
{
    const auto frame = make_frame();
    offer_modes(0, 0);
    MODE_SPY spy(*frame);
    choose_family(*frame, DEV_FAMILY_CALCITE);
    EXPECT_EQ(mode_combo(*frame)->count(), 0);
    EXPECT_EQ(cache(*frame).current_mode, PGMIO_CONFIG_SCHEME_PS);
    EXPECT_EQ(spy.take(), (ANNOUNCED{{PGMIO_CONFIG_SCHEME_PS, true}}));
}

TEST_F(VEK_FRAME_MODE, a_refill_announces_mode_zero_and_the_first_mode_and_replaces_the_document)
{
    const auto frame = make_frame();
    add_output(*document(*frame), "POF", "top", ".");
    const std::weak_ptr<PGM_COMMON_XML_VEK_VEK> old_document = VEK_FRAME_WND_PROBE::document(*frame);
    MODE_SPY spy(*frame);
    choose_family(*frame, DEV_FAMILY_BASALT);
    EXPECT_EQ(spy.take(), (ANNOUNCED{{PGMIO_CONFIG_SCHEME_PS, true}, {PGMIO_CONFIG_SCHEME_AS, true}}));
    EXPECT_TRUE(old_document.expired()) << "the first mode is the one from before, and still";
    EXPECT_EQ(mode_of(*document(*frame)), "ASX1");
    EXPECT_TRUE(VEK_FILE_ASSISTANT::get_output_file_elements(document(*frame)).empty());
    EXPECT_EQ(cache(*frame).family, DEV_FAMILY_BASALT);
}

TEST_F(VEK_FRAME_MODE, another_family_leads_back_to_the_first_tab_and_closes_the_others)
{
    const auto frame = make_frame();
    add_output(*document(*frame), "POF", "top", ".");
    add_bitstream(*document(*frame), "Bitstream_1", "/in/top.sof");
    frame->update_input_files_tab();
    frame->update_config_device_tab();
    ASSERT_TRUE(tabs(*frame)->isTabEnabled(1));
    ASSERT_TRUE(tabs(*frame)->isTabEnabled(2));
    tabs(*frame)->setCurrentIndex(2);
    choose_family(*frame, DEV_FAMILY_BASALT);
    EXPECT_EQ(tabs(*frame)->currentIndex(), 0);
    EXPECT_FALSE(tabs(*frame)->isTabEnabled(1));
    EXPECT_FALSE(tabs(*frame)->isTabEnabled(2));
}

TEST_F(VEK_FRAME_MODE, choosing_the_family_in_force_changes_nothing)
{
    const auto frame = make_frame();
    const auto before = VEK_FRAME_WND_PROBE::document(*frame);
    const std::size_t asked = vek_util_double().asked_families.size();
    frame->set_family(family_combo(*frame)->currentIndex());
    EXPECT_EQ(VEK_FRAME_WND_PROBE::document(*frame), before);
    EXPECT_EQ(vek_util_double().asked_families.size(), asked);
}

TEST_F(VEK_FRAME_MODE, the_width_of_the_lnks_bus_changes_without_losing_the_setup)
{
    const auto frame = make_frame();
    choose_mode(*frame, PGMIO_CONFIG_SCHEME_LNKS_X8);
    add_output(*document(*frame), "POF", "top", ".");
    add_bitstream(*document(*frame), "Bitstream_1", "/in/top.sof");
    set(*document(*frame), VEK_CMD_OPT_FLASH_DEVICE,
        {{VEK_CMD_PARAM_FLASH_DEVICE_ID, "Flash_Device_1"}, {VEK_CMD_PARAM_FLASH_DEVICE_TYPE, "CFI_128MB"}});
    frame->update_input_files_tab();
    frame->update_config_device_tab();
    ASSERT_TRUE(tabs(*frame)->isTabEnabled(1));
    ASSERT_TRUE(tabs(*frame)->isTabEnabled(2));
    const auto before = VEK_FRAME_WND_PROBE::document(*frame);

    MODE_SPY spy(*frame);
    choose_mode(*frame, PGMIO_CONFIG_SCHEME_LNKS_X16);
    EXPECT_EQ(spy.take(), (ANNOUNCED{{PGMIO_CONFIG_SCHEME_LNKS_X16, false}}));
    EXPECT_EQ(VEK_FRAME_WND_PROBE::document(*frame), before);
    EXPECT_EQ(mode_of(*before), "LNKSX16");
    EXPECT_EQ(VEK_FILE_ASSISTANT::get_output_file_elements(before.get()).size(), 1u);
    EXPECT_EQ(VEK_FILE_ASSISTANT::get_bitstream_ids(before.get()), std::vector<std::string>{"Bitstream_1"});
    EXPECT_EQ(VEK_FILE_ASSISTANT::get_flash_device_ids(before.get()),
              std::vector<std::string>{"Flash_Device_1"});
    EXPECT_TRUE(tabs(*frame)->isTabEnabled(1));
    EXPECT_TRUE(tabs(*frame)->isTabEnabled(2));
    EXPECT_EQ(cache(*frame).current_mode, PGMIO_CONFIG_SCHEME_LNKS_X16);

    choose_mode(*frame, PGMIO_CONFIG_SCHEME_LNKS_X32);
    EXPECT_EQ(spy.take(), (ANNOUNCED{{PGMIO_CONFIG_SCHEME_LNKS_X32, false}}));
    EXPECT_EQ(VEK_FRAME_WND_PROBE::document(*frame), before);
    EXPECT_EQ(mode_of(*before), "LNKSX32");
}

TEST_F(VEK_FRAME_MODE, a_mode_outside_the_group_starts_a_new_setup_without_a_question)
{
    const MODAL_ANSWERS no_questions;
    const auto frame = make_frame();
    choose_mode(*frame, PGMIO_CONFIG_SCHEME_LNKS_X8);
    add_output(*document(*frame), "POF", "top", ".");
    add_bitstream(*document(*frame), "Bitstream_1", "/in/top.sof");
    frame->update_input_files_tab();
    tabs(*frame)->setCurrentIndex(1);
    const auto before = VEK_FRAME_WND_PROBE::document(*frame);

    MODE_SPY spy(*frame);
    choose_mode(*frame, PGMIO_CONFIG_SCHEME_AS_X4);
    EXPECT_EQ(spy.take(), (ANNOUNCED{{PGMIO_CONFIG_SCHEME_AS_X4, true}}));
    EXPECT_NE(VEK_FRAME_WND_PROBE::document(*frame), before);
    EXPECT_EQ(mode_of(*document(*frame)), "ASX4");
    EXPECT_TRUE(VEK_FILE_ASSISTANT::get_output_file_elements(document(*frame)).empty());
    EXPECT_EQ(tabs(*frame)->currentIndex(), 0);
    EXPECT_FALSE(tabs(*frame)->isTabEnabled(1));
    EXPECT_FALSE(tabs(*frame)->isTabEnabled(2));
    EXPECT_EQ(VEK_FILE_ASSISTANT::get_bitstream_ids(before.get()).size(), 1u)
        << "the old document is left alone";
}

TEST_F(VEK_FRAME_MODE, announcing_the_mode_in_force_is_no_change)
{
    const auto frame = make_frame();
    MODE_SPY spy(*frame);
    frame->emit_mode_changed_signal(0);
    EXPECT_EQ(spy.take(), (ANNOUNCED{{PGMIO_CONFIG_SCHEME_AS, false}}));
}

TEST_F(VEK_FRAME_MODE, entering_the_lnks_group_is_a_change)
{
    const auto frame = make_frame();
    MODE_SPY spy(*frame);
    choose_mode(*frame, PGMIO_CONFIG_SCHEME_LNKS_X32);
    EXPECT_EQ(spy.take(), (ANNOUNCED{{PGMIO_CONFIG_SCHEME_LNKS_X32, true}}));
}

TEST_F(VEK_FRAME_MODE, losing_the_last_bitstream_puts_the_family_of_the_combo_back_without_a_refill)
{
    const auto frame = make_frame();
    const std::vector<int> modes_before = modes(*frame);
    cache(*frame).family = DEV_FAMILY_BASALT;
    cache(*frame).device = static_cast<DEV_DEVICE_ENUM>(3);
    cache(*frame).device_name = "BS1L15";
    cache(*frame).config_mode = PGMIO_CONFIG_SCHEME_AS;
    cache(*frame).mode_mask_a = 0;
    const QSignalSpy refills(mode_combo(*frame), SIGNAL(currentIndexChanged(int)));

    add_bitstream(*document(*frame), "Bitstream_1", "/in/top.sof");
    frame->update_cache();
    EXPECT_EQ(cache(*frame).family, DEV_FAMILY_BASALT) << "a bitstream is left";

    ASSERT_TRUE(VEK_FILE_ASSISTANT::remove(document(*frame), VEK_CMD_OPT_BITSTREAM,
                                           {{VEK_CMD_PARAM_BITSTREAM_ID, "Bitstream_1"}}));
    frame->update_cache();
    EXPECT_EQ(cache(*frame).family, DEV_FAMILY_DEFAULT_CHOICE);
    EXPECT_EQ(cache(*frame).device, DEV_DEVICE_NONE);
    EXPECT_EQ(cache(*frame).device_name, "");
    EXPECT_EQ(cache(*frame).config_mode, PGMIO_CONFIG_SCHEME_ILLEGAL);
    EXPECT_NE(cache(*frame).mode_mask_a, 0u);
    EXPECT_EQ(modes(*frame), modes_before);
    EXPECT_EQ(refills.count(), 0);
}

TEST_F(VEK_FRAME_MODE, the_input_tab_needs_an_output_type_and_a_name)
{
    const auto frame = make_frame();
    frame->update_input_files_tab();
    EXPECT_FALSE(tabs(*frame)->isTabEnabled(1));
    add_output(*document(*frame), "POF", "top", ".");
    frame->update_input_files_tab();
    EXPECT_TRUE(tabs(*frame)->isTabEnabled(1));

    add_bitstream(*document(*frame), "Bitstream_1", "/in/top.sof");
    frame->findChild<QLineEdit*>(QStringLiteral("m_name_edit"))->clear();
    frame->update_input_files_tab();
    EXPECT_FALSE(tabs(*frame)->isTabEnabled(1));
    EXPECT_TRUE(VEK_FILE_ASSISTANT::get_bitstream_ids(document(*frame)).empty()) << "the tab is reset";
}

TEST_F(VEK_FRAME_MODE, an_input_tab_that_closes_puts_the_family_of_the_combo_back_with_a_refill)
{
    const auto frame = make_frame();
    cache(*frame).family = DEV_FAMILY_BASALT;
    cache(*frame).device_name = "BS1L15";
    MODE_SPY spy(*frame);
    frame->update_input_files_tab();
    EXPECT_EQ(cache(*frame).family, DEV_FAMILY_DEFAULT_CHOICE);
    EXPECT_EQ(cache(*frame).device_name, "");
    EXPECT_EQ(spy.take(), (ANNOUNCED{{PGMIO_CONFIG_SCHEME_PS, true}, {PGMIO_CONFIG_SCHEME_AS, true}}));
}

TEST_F(VEK_FRAME_MODE, the_flash_tab_needs_flash_families_an_input_and_outputs_that_agree)
{
    const auto frame = make_frame();
    const auto opens = [&frame] {
        frame->update_config_device_tab();
        return tabs(*frame)->isTabEnabled(2);
    };
    EXPECT_FALSE(opens());
    add_output(*document(*frame), "POF", "top", ".");
    EXPECT_FALSE(opens()) << "no input yet";
    set(*document(*frame), VEK_CMD_OPT_RAW_FILE,
        {{VEK_CMD_PARAM_RAW_FILE_ID, "Raw_File_1"}, {VEK_CMD_PARAM_RAW_FILE_RAW_FILE, "/in/data.hex"}});
    EXPECT_TRUE(opens());
    add_output(*document(*frame), "SVF", "top", ".");
    EXPECT_FALSE(opens()) << "no flash family in common";
    ASSERT_TRUE(VEK_FILE_ASSISTANT::remove(document(*frame), VEK_CMD_OPT_OUTPUT_FILE,
                                           {{VEK_CMD_PARAM_OUTPUT_FILE_TYPE, "SVF"}}));
    EXPECT_TRUE(opens());
    ASSERT_TRUE(VEK_FILE_ASSISTANT::remove(document(*frame), VEK_CMD_OPT_SETTINGS, {}));
    EXPECT_FALSE(opens()) << "without a mode there are no flash families";
}

TEST_F(VEK_FRAME_MODE, a_flash_tab_that_closes_loses_its_devices)
{
    const auto frame = make_frame();
    set(*document(*frame), VEK_CMD_OPT_FLASH_DEVICE,
        {{VEK_CMD_PARAM_FLASH_DEVICE_ID, "Flash_Device_1"}, {VEK_CMD_PARAM_FLASH_DEVICE_TYPE, "W25Q128JV"}});
    frame->update_config_device_tab();
    EXPECT_TRUE(VEK_FILE_ASSISTANT::get_flash_device_ids(document(*frame)).empty());
}

TEST_F(VEK_FRAME_MODE, only_a_change_resets_the_flash_tab)
{
    const auto frame = make_frame();
    set(*document(*frame), VEK_CMD_OPT_FLASH_DEVICE,
        {{VEK_CMD_PARAM_FLASH_DEVICE_ID, "Flash_Device_1"}, {VEK_CMD_PARAM_FLASH_DEVICE_TYPE, "W25Q128JV"}});
    tabs(*frame)->setTabEnabled(2, true);
    frame->reset_config_device_tab(PGMIO_CONFIG_SCHEME_AS, false);
    EXPECT_TRUE(tabs(*frame)->isTabEnabled(2));
    EXPECT_EQ(VEK_FILE_ASSISTANT::get_flash_device_ids(document(*frame)).size(), 1u);
    frame->reset_config_device_tab(PGMIO_CONFIG_SCHEME_AS, true);
    EXPECT_FALSE(tabs(*frame)->isTabEnabled(2));
    EXPECT_TRUE(VEK_FILE_ASSISTANT::get_flash_device_ids(document(*frame)).empty());
}

TEST_F(VEK_FRAME_MODE, resetting_the_cache_spares_two_fields)
{
    const auto frame = make_frame();
    VEK_FRAME_WND_CACHE& changed = cache(*frame);
    changed.device_name = "ZR9A012";
    changed.max_bitstreams = 8;
    changed.max_files_per_bitstream = 1;
    changed.shares_signing_properties = true;
    changed.output_directory = "/out";
    changed.output_name = "other";
    changed.flash_loader_required = true;
    changed.partition_rule_flag_a = true;
    changed.partition_rule_flag_b = true;
    changed.sof_encryption_by_path["/in/top.sof"] = true;
    VEK_FRAME_WND_PROBE::reset_cache(*frame);
    EXPECT_EQ(changed.family, DEV_FAMILY_NONE);
    EXPECT_EQ(changed.device_name, "");
    EXPECT_EQ(changed.config_mode, 25u);
    EXPECT_EQ(changed.mode_mask_a, 0xffffffffu);
    EXPECT_EQ(changed.mode_mask_b, 0xffffffffu);
    EXPECT_EQ(changed.output_file_mask, 0u);
    EXPECT_EQ(changed.max_files_per_bitstream, 16u);
    EXPECT_EQ(changed.max_flash_devices, 1u);
    EXPECT_EQ(changed.max_bitstreams, 1u);
    EXPECT_FALSE(changed.shares_signing_properties);
    EXPECT_EQ(changed.current_mode, 25u);
    EXPECT_EQ(changed.output_directory, ".");
    EXPECT_EQ(changed.output_name, "output_file");
    EXPECT_FALSE(changed.flash_loader_required);
    EXPECT_FALSE(changed.partition_rule_flag_a);
    EXPECT_TRUE(changed.partition_rule_flag_b);
    EXPECT_EQ(changed.sof_encryption_by_path.count("/in/top.sof"), 1u);
}

TEST_F(VEK_FRAME_MODE, a_reset_asks_and_yes_is_the_default)
{
    const auto frame = make_frame();
    choose_family(*frame, DEV_FAMILY_CALCITE);
    const auto before = VEK_FRAME_WND_PROBE::document(*frame);
    MODAL_ANSWERS answers;
    answers.click(QMessageBox::No);
    frame->findChild<QPushButton*>(QStringLiteral("m_reset_button"))->click();
    ASSERT_EQ(answers.boxes().size(), 1);
    EXPECT_EQ(answers.boxes().at(0).title, QStringLiteral("Imagewright"));
    EXPECT_EQ(answers.boxes().at(0).text, QStringLiteral("Are you sure you want to reset?"));
    EXPECT_EQ(answers.boxes().at(0).icon, QMessageBox::Question);
    EXPECT_EQ(answers.boxes().at(0).buttons, QMessageBox::Yes | QMessageBox::No);
    EXPECT_EQ(answers.boxes().at(0).default_button, QMessageBox::Yes);
    EXPECT_EQ(VEK_FRAME_WND_PROBE::document(*frame), before);
    EXPECT_EQ(cache(*frame).family, DEV_FAMILY_CALCITE);
}

TEST_F(VEK_FRAME_MODE, a_confirmed_reset_goes_the_way_of_the_start)
{
    const auto frame = make_frame();
    choose_family(*frame, DEV_FAMILY_CALCITE);
    add_output(*document(*frame), "POF", "top", ".");
    frame->update_input_files_tab();
    tabs(*frame)->setCurrentIndex(1);
    cache(*frame).output_directory = "/out";
    cache(*frame).max_bitstreams = 8;
    vek_util_double().asked_families.clear();
    MODE_SPY spy(*frame);
    MODAL_ANSWERS answers;
    answers.click(QMessageBox::Yes);
    frame->user_reset();
    // The first family of the list, the default one, and once more behind both.
    const ANNOUNCED refill{{PGMIO_CONFIG_SCHEME_PS, true}, {PGMIO_CONFIG_SCHEME_AS, true}};
    ANNOUNCED three_refills;
    for (int times = 0; times < 3; ++times) {
        three_refills.insert(three_refills.end(), refill.begin(), refill.end());
    }
    EXPECT_EQ(spy.take(), three_refills);
    EXPECT_EQ(vek_util_double().asked_families,
              (std::vector<DEV_FAMILY_ENUM>{DEV_FAMILY_BASALT, DEV_FAMILY_DEFAULT_CHOICE}));
    EXPECT_EQ(cache(*frame).max_bitstreams, 1u);
    EXPECT_EQ(family_combo(*frame)->currentData().toInt(), 48);
    EXPECT_TRUE(VEK_FILE_ASSISTANT::get_output_file_elements(document(*frame)).empty());
    EXPECT_EQ(mode_of(*document(*frame)), "ASX1");
    EXPECT_EQ(tabs(*frame)->currentIndex(), 0);
    EXPECT_FALSE(tabs(*frame)->isTabEnabled(1));
    EXPECT_FALSE(tabs(*frame)->isTabEnabled(2));
}

TEST_F(VEK_FRAME_MODE, a_reset_that_finds_no_mode_leaves_an_empty_document_in_all_tabs)
{
    const auto frame = make_frame();
    add_output(*document(*frame), "POF", "top", ".");
    const std::weak_ptr<PGM_COMMON_XML_VEK_VEK> old_document = VEK_FRAME_WND_PROBE::document(*frame);
    offer_modes(0, 0);
    MODAL_ANSWERS answers;
    answers.click(QMessageBox::Yes);
    frame->user_reset();
    EXPECT_EQ(mode_combo(*frame)->count(), 0);
    EXPECT_TRUE(old_document.expired()) << "a tab holds it";
    EXPECT_TRUE(document(*frame)->m_childs.empty());
}

TEST_F(VEK_FRAME_MODE, the_family_of_an_open_project_is_selected)
{
    write_file(m_directory / "top.brim", std::string("FAMILY = Granite\n"));
    std::string message;
    ASSERT_TRUE(BRIM_MANAGER::get_brim_manager()->open_project(m_directory / "top.brim", message)) << message;
    write_file(m_directory / "top.brim", std::string("FAMILY = Calcite\n")); // the lock reads it anew
    const auto frame = make_frame();
    EXPECT_EQ(cache(*frame).family, DEV_FAMILY_CALCITE);
    EXPECT_EQ(family_combo(*frame)->currentText(), QStringLiteral("Calcite"));
    EXPECT_FALSE(BRIM_MANAGER::get_brim_manager()->is_read_locked());
}

TEST_F(VEK_FRAME_MODE, a_project_that_is_locked_already_gives_its_family_too_and_a_lock_back)
{
    write_file(m_directory / "top.brim", std::string("FAMILY = Calcite\n"));
    BRIM_MANAGER& manager = *BRIM_MANAGER::get_brim_manager();
    std::string message;
    ASSERT_TRUE(manager.open_project(m_directory / "top.brim", message)) << message;
    ASSERT_TRUE(manager.read_lock(true));
    write_file(m_directory / "top.brim", std::string("FAMILY = Granite\n"));
    const auto frame = make_frame();
    EXPECT_EQ(cache(*frame).family, DEV_FAMILY_CALCITE) << "the values do not change under a lock";
    EXPECT_FALSE(manager.is_read_locked());
}

TEST_F(VEK_FRAME_MODE, a_project_of_another_family_is_passed_over_in_silence)
{
    const MODAL_ANSWERS no_questions;
    for (const std::string family : {"Sandstone", "Serial Flash 3 V"}) {
        write_file(m_directory / "top.brim", "FAMILY = " + family + "\n");
        std::string message;
        ASSERT_TRUE(BRIM_MANAGER::get_brim_manager()->open_project(m_directory / "top.brim", message))
            << message;
        const auto frame = make_frame();
        EXPECT_EQ(cache(*frame).family, DEV_FAMILY_DEFAULT_CHOICE) << family;
        EXPECT_EQ(family_combo(*frame)->currentData().toInt(), 48) << family;
        EXPECT_FALSE(BRIM_MANAGER::get_brim_manager()->is_read_locked());
    }
}

TEST_F(VEK_FRAME_MODE, the_flash_database_directory_is_copied_into_the_document_even_when_empty)
{
    const auto frame = make_frame();
    GFPDB_MGR::set_db_custom_dir(m_directory.path());
    frame->set_custom_db_dir();
    std::string directory;
    ASSERT_TRUE(VEK_FILE_ASSISTANT::get_custom_db_dir(document(*frame), directory));
    EXPECT_EQ(directory, m_directory.path());
    GFPDB_MGR::set_db_custom_dir(std::string());
    frame->set_custom_db_dir();
    ASSERT_TRUE(VEK_FILE_ASSISTANT::get_custom_db_dir(document(*frame), directory));
    EXPECT_EQ(directory, "");
}

TEST_F(VEK_FRAME_MODE, mode_and_flash_database_directory_are_written_as_settings)
{
    const auto frame = make_frame();
    GFPDB_MGR::set_db_custom_dir(m_directory.path());
    VEK_FILE_ASSISTANT_LOG log;
    choose_mode(*frame, PGMIO_CONFIG_SCHEME_AS_X4);
    EXPECT_EQ(log.take(), "set settings mode=ASX4\n");
    frame->set_custom_db_dir();
    EXPECT_EQ(log.take(), "set settings custom_db_dir=" + m_directory.path() + "\n");

    log.refuse = [](const std::string&) { return true; };
    EXPECT_INTERNAL_ERROR(frame->set_mode(0), "success");
    EXPECT_INTERNAL_ERROR(frame->set_custom_db_dir(), "status");
}
