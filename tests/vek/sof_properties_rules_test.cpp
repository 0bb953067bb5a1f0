#include "cfg.h"
#include "gen_legal_text.h"
#include "nivo_icon.h"
#include "pgm_common_ini.h"
#include "sof_properties_fixture.h"
#include "vek_file_edit.h"
#include "vek_key_entry_edit.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTextEdit>
#include <QVBoxLayout>
#include <gmock/gmock.h>

#include <algorithm>

namespace
{

using testing::ElementsAre;

constexpr auto COMPRESSION = VEK_CMD_PARAM_BITSTREAM_PATH_COMPRESSION;
constexpr auto ENHANCED = VEK_CMD_PARAM_BITSTREAM_PATH_ENHANCED_COMPRESSION;
constexpr auto ENCRYPTION = VEK_CMD_PARAM_BITSTREAM_PATH_ENCRYPTION;
constexpr auto NON_VOLATILE = VEK_CMD_PARAM_BITSTREAM_PATH_NON_VOLATILE_KEY;
constexpr auto KEY_FILE = VEK_CMD_PARAM_BITSTREAM_PATH_KEY_FILE1;
constexpr auto KEY = VEK_CMD_PARAM_BITSTREAM_PATH_KEY1;
constexpr auto EKP_FILE = VEK_CMD_PARAM_BITSTREAM_PATH_EKP_FILE;
constexpr auto ELK_FILE = VEK_CMD_PARAM_BITSTREAM_PATH_ELK_FILE;
constexpr auto SIGNING = VEK_CMD_PARAM_BITSTREAM_PATH_SIGNING;
constexpr auto PEM_FILE = VEK_CMD_PARAM_BITSTREAM_PATH_SIGNING_PEM_FILE;
constexpr auto FINALIZE = VEK_CMD_PARAM_BITSTREAM_PATH_FINALIZE_ENCRYPTION;
constexpr auto AEK_FILE = VEK_CMD_PARAM_BITSTREAM_PATH_AEK_FILE;
constexpr auto HPS_PATH = VEK_CMD_PARAM_BITSTREAM_PATH_HPS_PATH;
constexpr auto SECURE = VEK_CMD_PARAM_BITSTREAM_PATH_SECURITY_OPT_SECURE;
constexpr auto BITSWAP = VEK_CMD_PARAM_RAW_FILE_BITSWAP;

class SOF_PROPERTIES_RULES : public SOF_PROPERTIES_FIXTURE
{
protected:
    static QCheckBox* legal_checkbox(const VEK_DLG_SOF_PROPERTIES& dialog)
    {
        return dialog.findChild<QCheckBox*>(QStringLiteral("m_legal_checkbox"));
    }
    void write_key_file(const std::string& name, const std::string& text)
    {
        write_file(m_directory / name, text);
    }
    static const inline std::string DIGITS = std::string(64, 'A');
};

// The window

TEST_F(SOF_PROPERTIES_RULES, the_window_has_title_icon_and_fixed_size)
{
    const DIALOG dialog = make(DEV_FAMILY_CALCITE, FIO_SOF_FILE);
    EXPECT_EQ(dialog->windowTitle(), QStringLiteral("Input File Properties"));
    EXPECT_EQ(dialog->windowIcon().pixmap(32).toImage(),
              nivo_get_icon(NIVO_ICON_IMAGEWRIGHT).pixmap(32).toImage());
    EXPECT_FALSE(dialog->isSizeGripEnabled());
    ASSERT_NE(qobject_cast<QVBoxLayout*>(dialog->layout()), nullptr);
    EXPECT_EQ(dialog->layout()->sizeConstraint(), QLayout::SetFixedSize);
    ASSERT_EQ(dialog->layout()->count(), 4);
    EXPECT_EQ(dialog->layout()->itemAt(0)->widget(), browser(*dialog));
    EXPECT_NE(qobject_cast<QTextEdit*>(dialog->layout()->itemAt(1)->widget()), nullptr);
    EXPECT_EQ(dialog->layout()->itemAt(2)->widget(), legal_checkbox(*dialog));
    EXPECT_EQ(dialog->layout()->itemAt(3)->widget(), ok_button(*dialog)->parentWidget());
}

TEST_F(SOF_PROPERTIES_RULES, ok_accepts_and_cancel_rejects)
{
    const DIALOG dialog = make(DEV_FAMILY_NONE, FIO_HEX_FILE);
    ok_button(*dialog)->click();
    EXPECT_EQ(dialog->result(), QDialog::Accepted);
    dialog->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Cancel)->click();
    EXPECT_EQ(dialog->result(), QDialog::Rejected);
}

TEST_F(SOF_PROPERTIES_RULES, a_file_without_properties_says_so)
{
    for (const DEV_FAMILY_ENUM family : {DEV_FAMILY_DOLOMITE, DEV_FAMILY_GYPSUM}) {
        const DIALOG dialog = make(family, FIO_SOF_FILE);
        ASSERT_EQ(dialog->layout()->count(), 3);
        EXPECT_EQ(qobject_cast<QLabel*>(dialog->layout()->itemAt(1)->widget())->text(),
                  QStringLiteral("There is nothing to set for this file."));
        EXPECT_TRUE(ok_button(*dialog)->isEnabled());
    }
    EXPECT_EQ(make(DEV_FAMILY_BASALT, FIO_SOF_FILE)->findChild<QLabel*>(QStringLiteral("m_nothing_label")),
              nullptr);
}

TEST_F(SOF_PROPERTIES_RULES, on_a_small_screen_the_properties_scroll_over_the_buttons)
{
    nivo_override_screen_room(QSize(1024, 600));
    const DIALOG dialog = make(DEV_FAMILY_GRANITE, FIO_SOF_FILE);
    dialog->show();
    EXPECT_EQ(dialog->height(), 600);
    EXPECT_EQ(dialog->layout()->sizeConstraint(), QLayout::SetFixedSize);
    ASSERT_EQ(dialog->layout()->count(), 4);
    EXPECT_TRUE(dialog->layout()->itemAt(0)->widget()->isAncestorOf(browser(*dialog)));
    EXPECT_EQ(dialog->layout()->itemAt(2)->widget(), legal_checkbox(*dialog));
    EXPECT_TRUE(is_visible(*dialog, SECURE));
    EXPECT_EQ(value(*dialog, SECURE), "2");
}

// The disclaimer

TEST_F(SOF_PROPERTIES_RULES, security_settings_bring_the_disclaimer_and_its_box)
{
    const DIALOG dialog = make(DEV_FAMILY_CALCITE, FIO_SOF_FILE);
    const auto* const text = dialog->findChild<QTextEdit*>();
    ASSERT_NE(text, nullptr);
    EXPECT_EQ(text->toPlainText().toStdString(), gen_get_bitstream_encryption_legal_text());
    EXPECT_EQ(text->font().pointSize(), 10);
    EXPECT_EQ(text->font().styleHint(), QFont::TypeWriter);
    EXPECT_EQ(text->font().styleStrategy(), QFont::PreferDefault);
    EXPECT_EQ(text->minimumSize(), QSize(560, 60));
    EXPECT_EQ(text->maximumSize(), QSize(560, 60));
    EXPECT_FALSE(text->isReadOnly());
    for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
        EXPECT_EQ(text->palette().brush(group, QPalette::Base),
                  dialog->palette().brush(QPalette::Active, QPalette::Window));
    }
    ASSERT_NE(legal_checkbox(*dialog), nullptr);
    EXPECT_EQ(legal_checkbox(*dialog)->text(),
              QStringLiteral("By checking the box, you acknowledge that you have read and understand the "
                             "disclaimer above. (This must be \nchecked to enable bitstream encryption "
                             "generation.)"));
}

TEST_F(SOF_PROPERTIES_RULES, ok_waits_for_the_tick_which_no_opening_remembers)
{
    for (int opening = 0; opening < 2; ++opening) {
        const DIALOG dialog = make(DEV_FAMILY_GRANITE, FIO_SOF_FILE);
        EXPECT_FALSE(legal_checkbox(*dialog)->isChecked());
        EXPECT_FALSE(ok_button(*dialog)->isEnabled());
        legal_checkbox(*dialog)->click();
        EXPECT_TRUE(ok_button(*dialog)->isEnabled());
        legal_checkbox(*dialog)->click();
        EXPECT_FALSE(ok_button(*dialog)->isEnabled());
        legal_checkbox(*dialog)->click();
    }
}

TEST_F(SOF_PROPERTIES_RULES, raw_data_has_neither_disclaimer_nor_other_groups)
{
    const DIALOG dialog = make(DEV_FAMILY_NONE, FIO_HEX_FILE);
    EXPECT_EQ(legal_checkbox(*dialog), nullptr);
    EXPECT_EQ(dialog->findChild<QTextEdit*>(), nullptr);
    EXPECT_TRUE(ok_button(*dialog)->isEnabled());
    EXPECT_THAT(dialog->get_property_ids(), ElementsAre(BITSWAP));
}

TEST_F(SOF_PROPERTIES_RULES, without_security_settings_ok_needs_no_tick)
{
    for (const DEV_FAMILY_ENUM family : {DEV_FAMILY_BASALT, DEV_FAMILY_ZIRCON, DEV_FAMILY_GYPSUM}) {
        const DIALOG dialog = make(family, FIO_SOF_FILE);
        EXPECT_EQ(legal_checkbox(*dialog), nullptr);
        EXPECT_TRUE(ok_button(*dialog)->isEnabled());
        EXPECT_TRUE(browser(*dialog)->is_property_group_hidden(QStringLiteral("Security settings")));
    }
}

// Filtering

TEST_F(SOF_PROPERTIES_RULES, a_parameter_without_family_lists_is_offered_everywhere)
{
    vek_db_double().rows[SECURE] = {};
    for (const DEV_FAMILY_ENUM family : {DEV_FAMILY_BASALT, DEV_FAMILY_CALCITE, DEV_FAMILY_DOLOMITE,
                                         DEV_FAMILY_FELDSPAR, DEV_FAMILY_GYPSUM}) {
        EXPECT_TRUE(is_visible(*make(family, FIO_SOF_FILE), SECURE));
    }
}

TEST_F(SOF_PROPERTIES_RULES, a_parameter_is_hidden_when_the_table_disables_it)
{
    vek_db_double().rows[SECURE] = {.enabled = false};
    EXPECT_FALSE(is_visible(*make(DEV_FAMILY_GRANITE, FIO_SOF_FILE), SECURE));
}

TEST_F(SOF_PROPERTIES_RULES, the_configuration_can_take_a_parameter_away)
{
    EXPECT_TRUE(is_visible(*make(DEV_FAMILY_CALCITE, FIO_SOF_FILE), COMPRESSION));
    cfg_override("vek_param_bitstream_path_compression", "off");
    const DIALOG dialog = make(DEV_FAMILY_CALCITE, FIO_SOF_FILE);
    EXPECT_FALSE(is_visible(*dialog, COMPRESSION));
    EXPECT_TRUE(browser(*dialog)->is_property_group_hidden(QStringLiteral("General settings")));
}

TEST_F(SOF_PROPERTIES_RULES, an_excluded_family_hides_the_parameter_from_that_family_alone)
{
    vek_db_double().rows[SECURE] = {.excluded_families = {DEV_FAMILY_BASALT}};
    EXPECT_FALSE(is_visible(*make(DEV_FAMILY_BASALT, FIO_SOF_FILE), SECURE));
    EXPECT_TRUE(is_visible(*make(DEV_FAMILY_CALCITE, FIO_SOF_FILE), SECURE));
}

TEST_F(SOF_PROPERTIES_RULES, the_hidden_switch_opens_refused_families_of_the_hidden_list)
{
    const std::string key = PGM_COMMON_INI::encrypted_boolean_key(PGM_COMMON_INI::HIDDEN_PARAMETERS);
    vek_db_double().rows[SECURE] = {.families = {DEV_FAMILY_GRANITE},
                                    .hidden_families = {DEV_FAMILY_BASALT, DEV_FAMILY_CALCITE}};
    vek_db_double().rows[HPS_PATH] = {.excluded_families = {DEV_FAMILY_BASALT},
                                      .hidden_families = {DEV_FAMILY_BASALT}};
    vek_db_double().rows[FINALIZE] = {.families = {DEV_FAMILY_GRANITE}};
    EXPECT_FALSE(is_visible(*make(DEV_FAMILY_BASALT, FIO_SOF_FILE), SECURE));
    cfg_override(key, "on");
    const DIALOG dialog = make(DEV_FAMILY_BASALT, FIO_SOF_FILE);
    EXPECT_TRUE(is_visible(*dialog, SECURE));
    EXPECT_TRUE(is_visible(*dialog, HPS_PATH)) << "refused by exclusion";
    EXPECT_FALSE(is_visible(*dialog, FINALIZE)) << "without a hidden list";
    EXPECT_FALSE(is_visible(*make(DEV_FAMILY_DOLOMITE, FIO_SOF_FILE), SECURE)) << "not in the hidden list";
    EXPECT_TRUE(is_visible(*make(DEV_FAMILY_GRANITE, FIO_SOF_FILE), SECURE));
}

TEST_F(SOF_PROPERTIES_RULES, the_second_switch_counts_for_one_family_only)
{
    cfg_override(PGM_COMMON_INI::encrypted_boolean_key(PGM_COMMON_INI::HIDDEN_HEMATITE_PARAMETERS), "on");
    EXPECT_TRUE(is_visible(*make(DEV_FAMILY_HEMATITE, FIO_SOF_FILE), HPS_PATH));
    EXPECT_FALSE(is_visible(*make(DEV_FAMILY_CALCITE, FIO_SOF_FILE), SECURE));
}

TEST_F(SOF_PROPERTIES_RULES, every_output_has_to_support_a_parameter)
{
    constexpr auto RSU = VEK_CMD_PARAM_BITSTREAM_PATH_RSU_UPGRADE;
    EXPECT_TRUE(is_visible(*make(DEV_FAMILY_ZIRCON, FIO_SOF_FILE, {VEK_RPD_FILE_TYPE}), RSU));
    EXPECT_FALSE(
        is_visible(*make(DEV_FAMILY_ZIRCON, FIO_SOF_FILE, {VEK_RPD_FILE_TYPE, VEK_POF_FILE_TYPE}), RSU));
    EXPECT_TRUE(is_visible(*make(DEV_FAMILY_ZIRCON, FIO_SOF_FILE, {}), RSU)) << "no output refuses nothing";
}

TEST_F(SOF_PROPERTIES_RULES, the_kind_of_input_decides_too)
{
    EXPECT_TRUE(is_visible(*make(DEV_FAMILY_CALCITE, FIO_SOF_FILE), EKP_FILE));
    EXPECT_FALSE(is_visible(*make(DEV_FAMILY_CALCITE, FIO_PMSF_FILE), EKP_FILE));
}

// Dependency

TEST_F(SOF_PROPERTIES_RULES, a_switch_enables_its_children_and_disables_them)
{
    const DIALOG dialog = make(DEV_FAMILY_CALCITE, FIO_SOF_FILE);
    for (const PARAM child : {NON_VOLATILE, EKP_FILE, ELK_FILE, KEY_FILE, KEY}) {
        EXPECT_FALSE(is_enabled(*dialog, child)) << short_name(child);
    }
    choose(*dialog, ENCRYPTION, 1);
    for (const PARAM child : {NON_VOLATILE, EKP_FILE, ELK_FILE, KEY_FILE, KEY}) {
        EXPECT_TRUE(is_enabled(*dialog, child)) << short_name(child);
    }
    choose(*dialog, ENCRYPTION, 0);
    EXPECT_FALSE(is_enabled(*dialog, KEY));
}

TEST_F(SOF_PROPERTIES_RULES, switching_off_reaches_the_grandchildren_and_switching_on_does_not)
{
    vek_db_double().rows[EKP_FILE] = {.parents = {NON_VOLATILE}};
    const DIALOG dialog = make(DEV_FAMILY_CALCITE, FIO_SOF_FILE);
    choose(*dialog, ENCRYPTION, 1);
    EXPECT_FALSE(is_enabled(*dialog, EKP_FILE));
    choose(*dialog, NON_VOLATILE, 1);
    EXPECT_TRUE(is_enabled(*dialog, EKP_FILE));
    choose(*dialog, ENCRYPTION, 0);
    EXPECT_FALSE(is_enabled(*dialog, NON_VOLATILE));
    EXPECT_FALSE(is_enabled(*dialog, EKP_FILE));
    choose(*dialog, ENCRYPTION, 1);
    EXPECT_TRUE(is_enabled(*dialog, NON_VOLATILE));
    EXPECT_FALSE(is_enabled(*dialog, EKP_FILE)) << "until its own parent changes";
}

TEST_F(SOF_PROPERTIES_RULES, a_value_outside_the_list_disables_children_and_their_dependents)
{
    const DIALOG dialog = make(DEV_FAMILY_ZIRCON, FIO_SOF_FILE);
    EXPECT_FALSE(is_enabled(*dialog, FINALIZE));
    choose(*dialog, SIGNING, 1);
    EXPECT_TRUE(is_enabled(*dialog, PEM_FILE));
    EXPECT_TRUE(is_enabled(*dialog, FINALIZE));
    EXPECT_FALSE(is_enabled(*dialog, AEK_FILE));
    choose(*dialog, FINALIZE, 1);
    EXPECT_TRUE(is_enabled(*dialog, AEK_FILE));
    choose(*dialog, SIGNING, 0);
    EXPECT_FALSE(is_enabled(*dialog, PEM_FILE));
    EXPECT_FALSE(is_enabled(*dialog, FINALIZE));
    EXPECT_FALSE(is_enabled(*dialog, AEK_FILE));
    choose(*dialog, SIGNING, 1);
    EXPECT_FALSE(is_enabled(*dialog, AEK_FILE)) << "nothing is cascaded";
}

TEST_F(SOF_PROPERTIES_RULES, a_chosen_file_enables_what_depends_on_it)
{
    vek_db_double().rows[NON_VOLATILE] = {.parents = {ELK_FILE}};
    const DIALOG dialog = make(DEV_FAMILY_CALCITE, FIO_SOF_FILE);
    EXPECT_FALSE(is_enabled(*dialog, NON_VOLATILE));
    NIVO_NATIVE_FILE_DLG::answer_next({QString::fromStdString(m_directory / "lock.elk")});
    qobject_cast<VEK_FILE_EDIT*>(editor(*dialog, ELK_FILE))->browse();
    EXPECT_TRUE(is_enabled(*dialog, NON_VOLATILE));
}

TEST_F(SOF_PROPERTIES_RULES, a_key_enables_what_depends_on_it)
{
    vek_db_double().rows[NON_VOLATILE] = {.parents = {KEY}};
    const DIALOG dialog = make(DEV_FAMILY_CALCITE, FIO_SOF_FILE);
    auto* const key_edit = qobject_cast<VEK_KEY_ENTRY_EDIT*>(editor(*dialog, KEY));
    EXPECT_FALSE(is_enabled(*dialog, NON_VOLATILE));
    key_edit->add_key(QStringLiteral("k"), QString::fromStdString(DIGITS));
    EXPECT_TRUE(is_enabled(*dialog, NON_VOLATILE));
    key_edit->do_delete();
    EXPECT_FALSE(is_enabled(*dialog, NON_VOLATILE));
}

TEST_F(SOF_PROPERTIES_RULES, any_parent_that_is_set_will_do_in_a_full_pass)
{
    vek_db_double().rows[KEY_FILE] = {.parents = {ENCRYPTION, NON_VOLATILE}};
    vek_db_double().rows[NON_VOLATILE] = {};
    const DIALOG dialog = make(DEV_FAMILY_CALCITE, FIO_SOF_FILE);
    EXPECT_FALSE(is_enabled(*dialog, KEY_FILE));
    for (const auto& [encryption, non_volatile] :
         std::vector<std::pair<const char*, const char*>>{{"0", "0"}, {"0", "1"}, {"1", "0"}, {"1", "1"}}) {
        dialog->set_property_values({{ENCRYPTION, encryption}, {NON_VOLATILE, non_volatile}});
        dialog->check_dependent_properties();
        EXPECT_EQ(is_enabled(*dialog, KEY_FILE), std::string(encryption) + non_volatile != "00")
            << encryption << non_volatile;
    }
}

TEST_F(SOF_PROPERTIES_RULES, the_parent_visited_last_speaks_for_all_its_children_in_id_order)
{
    // The lock file (119) is enabled by the compression, but is a child of the encryption too. What the pass
    // over the key file (138) then says about the encryption reaches all its children.
    vek_db_double().rows[NON_VOLATILE] = {.parents = {ENCRYPTION}};
    vek_db_double().rows[ELK_FILE] = {.parents = {COMPRESSION, ENCRYPTION}};
    vek_db_double().rows[KEY_FILE] = {.parents = {ENCRYPTION}};
    const DIALOG dialog = make(DEV_FAMILY_CALCITE, FIO_SOF_FILE);
    dialog->set_property_values({{COMPRESSION, "1"}, {ENCRYPTION, "0"}});
    dialog->check_dependent_properties();
    EXPECT_FALSE(is_enabled(*dialog, NON_VOLATILE));
    EXPECT_FALSE(is_enabled(*dialog, KEY_FILE));
    EXPECT_FALSE(is_enabled(*dialog, ELK_FILE)) << "138 comes after 119 and undoes it";
    vek_db_double().rows[KEY_FILE] = {};
    dialog->check_dependent_properties();
    EXPECT_TRUE(is_enabled(*dialog, ELK_FILE)) << "119 comes last among the children";
}

TEST_F(SOF_PROPERTIES_RULES, a_combo_parent_without_values_is_an_internal_error)
{
    vek_db_double().rows[PEM_FILE] = {.parents = {SIGNING}};
    EXPECT_INTERNAL_ERROR(make(DEV_FAMILY_ZIRCON, FIO_SOF_FILE),
                          "Missing dependent_param_enum_value of parent_param=path_signing_pem_file in cmd "
                          "param db");
}

TEST_F(SOF_PROPERTIES_RULES, a_parent_without_a_property_is_an_internal_error)
{
    vek_db_double().rows[PEM_FILE] = {.parents = {VEK_CMD_PARAM_BITSTREAM_PATH_KEY2}};
    EXPECT_INTERNAL_ERROR(make(DEV_FAMILY_ZIRCON, FIO_SOF_FILE),
                          "Unsupported property type (6) in check_dependent_properties");
}

TEST_F(SOF_PROPERTIES_RULES, a_slot_without_a_property_as_sender_is_an_internal_error)
{
    const DIALOG dialog = make(DEV_FAMILY_ZIRCON, FIO_SOF_FILE);
    EXPECT_INTERNAL_ERROR(dialog->on_change_bool_property(1), "id < VEK_CMD_PARAM_MAX");
    EXPECT_INTERNAL_ERROR(dialog->on_change_combo_property(1), "id < VEK_CMD_PARAM_MAX");
    EXPECT_INTERNAL_ERROR(dialog->on_change_file_edit_property(QString()), "id < VEK_CMD_PARAM_MAX");
    EXPECT_INTERNAL_ERROR(dialog->on_change_line_edit_property(QString()), "id < VEK_CMD_PARAM_MAX");
    EXPECT_INTERNAL_ERROR(dialog->on_change_key_edit_property(QString()), "id < VEK_CMD_PARAM_MAX");
}

// Exclusion

TEST_F(SOF_PROPERTIES_RULES, the_two_compressions_exclude_each_other)
{
    const DIALOG dialog = make(DEV_FAMILY_GRANITE, FIO_SOF_FILE);
    EXPECT_TRUE(is_enabled(*dialog, COMPRESSION));
    EXPECT_TRUE(is_enabled(*dialog, ENHANCED));
    choose(*dialog, COMPRESSION, 1);
    EXPECT_FALSE(is_enabled(*dialog, ENHANCED));
    choose(*dialog, COMPRESSION, 0);
    EXPECT_TRUE(is_enabled(*dialog, ENHANCED));
    choose(*dialog, ENHANCED, 1);
    EXPECT_FALSE(is_enabled(*dialog, COMPRESSION));
}

TEST_F(SOF_PROPERTIES_RULES, what_two_exclude_stays_disabled_while_one_is_on)
{
    vek_db_double().rows[NON_VOLATILE] = {.excludes = {COMPRESSION, ENHANCED}};
    vek_db_double().rows[COMPRESSION] = {.excludes = {NON_VOLATILE}};
    vek_db_double().rows[ENHANCED] = {.excludes = {NON_VOLATILE}};
    const DIALOG dialog = make(DEV_FAMILY_GRANITE, FIO_SOF_FILE);
    choose(*dialog, COMPRESSION, 1);
    choose(*dialog, ENHANCED, 1);
    EXPECT_FALSE(is_enabled(*dialog, NON_VOLATILE));
    choose(*dialog, COMPRESSION, 0);
    EXPECT_FALSE(is_enabled(*dialog, NON_VOLATILE));
    choose(*dialog, ENHANCED, 0);
    EXPECT_TRUE(is_enabled(*dialog, NON_VOLATILE));
}

TEST_F(SOF_PROPERTIES_RULES, a_property_does_not_exclude_itself)
{
    vek_db_double().rows[COMPRESSION] = {.excludes = {COMPRESSION, NON_VOLATILE}};
    vek_db_double().rows[NON_VOLATILE] = {.excludes = {COMPRESSION, NON_VOLATILE}};
    const DIALOG dialog = make(DEV_FAMILY_GRANITE, FIO_SOF_FILE);
    choose(*dialog, COMPRESSION, 1);
    EXPECT_TRUE(is_enabled(*dialog, COMPRESSION));
    choose(*dialog, NON_VOLATILE, 1);
    choose(*dialog, COMPRESSION, 0);
    EXPECT_TRUE(is_enabled(*dialog, NON_VOLATILE)) << "though it is on itself";
}

TEST_F(SOF_PROPERTIES_RULES, a_hidden_property_takes_no_part_in_exclusion)
{
    vek_db_double().rows[COMPRESSION] = {.families = {DEV_FAMILY_BASALT}, .excludes = {ENHANCED}};
    vek_db_double().rows[ENHANCED] = {.excludes = {COMPRESSION, NON_VOLATILE}};
    vek_db_double().rows[NON_VOLATILE] = {.excludes = {ENHANCED}};
    const DIALOG dialog = make(DEV_FAMILY_GRANITE, FIO_SOF_FILE);
    choose(*dialog, COMPRESSION, 1);
    EXPECT_TRUE(is_enabled(*dialog, ENHANCED)) << "its signal is not connected";
    choose(*dialog, NON_VOLATILE, 1);
    choose(*dialog, NON_VOLATILE, 0);
    EXPECT_TRUE(is_enabled(*dialog, ENHANCED)) << "its value does not count";
}

// Values

TEST_F(SOF_PROPERTIES_RULES, ids_and_values_are_those_of_the_visible_properties_ascending)
{
    const DIALOG dialog = make(DEV_FAMILY_CALCITE, FIO_SOF_FILE);
    EXPECT_THAT(dialog->get_property_ids(),
                ElementsAre(EKP_FILE, KEY, NON_VOLATILE, COMPRESSION, ENCRYPTION, ELK_FILE, KEY_FILE));
    std::vector<PARAM> ids;
    for (const auto& [id, text] : dialog->get_property_values()) {
        ids.push_back(id);
    }
    EXPECT_EQ(ids, dialog->get_property_ids());
}

TEST_F(SOF_PROPERTIES_RULES, a_disabled_property_keeps_its_place_among_the_values_and_a_hidden_one_has_none)
{
    const DIALOG dialog = make(DEV_FAMILY_CALCITE, FIO_SOF_FILE);
    dialog->set_property_values({{NON_VOLATILE, "1"}, {ENCRYPTION, "0"}});
    EXPECT_FALSE(is_enabled(*dialog, NON_VOLATILE));
    EXPECT_EQ(value(*dialog, NON_VOLATILE), "1");
    EXPECT_EQ(value(*dialog, SIGNING), "(no value)");
}

TEST_F(SOF_PROPERTIES_RULES, loaded_values_move_dependency_and_exclusion)
{
    const DIALOG dialog = make(DEV_FAMILY_GRANITE, FIO_SOF_FILE);
    dialog->set_property_values({{ENCRYPTION, "1"}, {COMPRESSION, "1"}, {SECURE, "3"}});
    EXPECT_TRUE(is_enabled(*dialog, SECURE));
    EXPECT_FALSE(is_enabled(*dialog, ENHANCED));
    EXPECT_EQ(value(*dialog, ENCRYPTION), "1");
    EXPECT_EQ(value(*dialog, SECURE), "3");
}

TEST_F(SOF_PROPERTIES_RULES, keys_and_key_files_are_never_shown_again)
{
    const DIALOG dialog = make(DEV_FAMILY_CALCITE, FIO_SOF_FILE);
    dialog->set_property_values({{VEK_CMD_PARAM_BITSTREAM_PATH_KEY2, "b"},
                                 {KEY, "a"},
                                 {VEK_CMD_PARAM_BITSTREAM_PATH_KEY_FILE2, "/b.key"},
                                 {KEY_FILE, "/a.key"},
                                 {ELK_FILE, "/lock.elk"}});
    EXPECT_EQ(value(*dialog, KEY), "");
    EXPECT_EQ(value(*dialog, KEY_FILE), "");
    EXPECT_EQ(value(*dialog, ELK_FILE), "/lock.elk");
}

TEST_F(SOF_PROPERTIES_RULES, what_names_the_file_is_passed_over_and_anything_else_is_an_internal_error)
{
    const DIALOG dialog = make(DEV_FAMILY_CALCITE, FIO_SOF_FILE);
    dialog->set_property_values({{VEK_CMD_PARAM_BITSTREAM_ID, "Bitstream_1"},
                                 {VEK_CMD_PARAM_BITSTREAM_PATH, "/top.sof"},
                                 {VEK_CMD_PARAM_RAW_FILE_ID, "Raw_File_1"},
                                 {VEK_CMD_PARAM_RAW_FILE_RAW_FILE, "/raw.hex"}});
    EXPECT_INTERNAL_ERROR(dialog->set_property_values({{VEK_CMD_PARAM_BITSTREAM_PATH_PASSWORD, "x"}}),
                          "pair.first == VEK_CMD_PARAM_BITSTREAM_ID || pair.first == "
                          "VEK_CMD_PARAM_BITSTREAM_PATH || pair.first == VEK_CMD_PARAM_RAW_FILE_ID || "
                          "pair.first == VEK_CMD_PARAM_RAW_FILE_RAW_FILE");
}

TEST_F(SOF_PROPERTIES_RULES, paths_are_relative_on_the_screen_and_absolute_in_the_values)
{
    set_working_directory("/base");
    const DIALOG dialog = make(DEV_FAMILY_CALCITE, FIO_SOF_FILE);
    dialog->set_property_values({{ELK_FILE, "/base/in/lock.elk"}, {EKP_FILE, ""}});
    EXPECT_EQ(qobject_cast<VEK_FILE_EDIT*>(editor(*dialog, ELK_FILE))->get_line_edit()->text(),
              QStringLiteral("in/lock.elk"));
    EXPECT_EQ(value(*dialog, ELK_FILE), "/base/in/lock.elk");
    EXPECT_EQ(value(*dialog, EKP_FILE), "");
}

// The key file

TEST_F(SOF_PROPERTIES_RULES, a_chosen_key_file_fills_the_key_row)
{
    set_working_directory(m_directory.path());
    write_key_file("board.key", "beta " + DIGITS + "\nalpha " + DIGITS + "\n");
    const DIALOG dialog = make(DEV_FAMILY_CALCITE, FIO_SOF_FILE);
    choose(*dialog, ENCRYPTION, 1);
    // The process is left in another directory than that to which the shown path is relative.
    NIVO_NATIVE_FILE_DLG::answer_next({QString::fromStdString(m_directory / "board.key")});
    auto* const file_edit = qobject_cast<VEK_FILE_EDIT*>(editor(*dialog, KEY_FILE));
    file_edit->set_path(FIO_PATH("/tmp/elsewhere.key"));
    file_edit->browse();
    EXPECT_EQ(file_edit->get_line_edit()->text(), QStringLiteral("board.key"));
    EXPECT_EQ(value(*dialog, KEY), "alpha");
    EXPECT_EQ(value(*dialog, KEY_FILE), m_directory / "board.key");
}

TEST_F(SOF_PROPERTIES_RULES, another_file_does_not_touch_the_keys)
{
    write_key_file("board.key", "alpha " + DIGITS + "\n");
    const DIALOG dialog = make(DEV_FAMILY_CALCITE, FIO_SOF_FILE);
    NIVO_NATIVE_FILE_DLG::answer_next({QString::fromStdString(m_directory / "board.key")});
    qobject_cast<VEK_FILE_EDIT*>(editor(*dialog, ELK_FILE))->browse();
    EXPECT_EQ(value(*dialog, KEY), "");
}

} // namespace
