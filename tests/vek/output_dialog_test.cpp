#include "nivo_hex_edit.h"
#include "output_fixture.h"
#include "vek_dlg_output_file_properties.h"
#include "vek_property_browser.h"

#include <QDialogButtonBox>
#include <QLabel>

namespace
{

using PARAMS = VEK_FILE_ASSISTANT::PARAMS;
constexpr VEK_FILE_TYPE NONE = VEK_INVALID_FILE_TYPE;

class OUTPUT_DIALOG : public OUTPUT_FIXTURE
{
protected:
    using DIALOG = VEK_DLG_OUTPUT_FILE_PROPERTIES;

    OUTPUT_DIALOG()
    {
        m_cache->family = DEV_FAMILY_NONE;
        for (const char* const type : {"SVF", "HEX", "RPD", "POF", "PERIPH_RPD", "PERIPH_JIC"}) {
            add_output(*m_vek, type, "top", ".");
        }
        add_secondary("POF", "SEC_RPD");
        add_secondary("PERIPH_JIC", "SEC_RPD");
    }
    std::unique_ptr<DIALOG> make(VEK_FILE_TYPE type, VEK_FILE_TYPE parent = NONE,
                                 VEK_FILE_TYPE grandparent = NONE) const
    {
        return std::make_unique<DIALOG>(m_vek, type, parent, grandparent, nullptr, Qt::WindowFlags());
    }
    void option(const std::string& type, PGM_COMMON_XML_VEK_CMD_PARAM_ENUM param, const std::string& value)
    {
        set(*m_vek, VEK_CMD_OPT_OUTPUT_FILE, {{VEK_CMD_PARAM_OUTPUT_FILE_TYPE, type}, {param, value}});
    }
    template <typename WIDGET>
    static WIDGET& child(const QDialog& dialog, const char* name)
    {
        return *dialog.findChild<WIDGET*>(QLatin1String(name));
    }
    static bool is_ok_enabled(const QDialog& dialog)
    {
        return dialog.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok)->isEnabled();
    }
    /// The object names of the editors that are shown, in their order.
    static std::string shown(const QDialog& dialog)
    {
        std::string names;
        for (const QWidget* const widget : dialog.findChildren<QWidget*>()) {
            const std::string name = widget->objectName().toStdString();
            if ((name.find("_edit") != std::string::npos || name.find("_combo") != std::string::npos ||
                 name.find("_check") != std::string::npos) &&
                !widget->isHidden()) {
                names += (names.empty() ? "" : " ") + name;
            }
        }
        return names;
    }
    static std::string items(const QComboBox& combo)
    {
        std::string text;
        for (int index = 0; index < combo.count(); ++index) {
            text += (index == 0 ? "" : ", ") + combo.itemText(index).toStdString();
        }
        return text;
    }
};

} // namespace

TEST_F(OUTPUT_DIALOG, each_type_shows_its_own_rows)
{
    const auto svf = make(VEK_SVF_FILE_TYPE);
    EXPECT_EQ(svf->windowTitle(), QStringLiteral("SVF Properties"));
    EXPECT_FALSE(svf->windowIcon().isNull());
    EXPECT_FALSE(svf->isSizeGripEnabled());
    EXPECT_EQ(svf->layout()->sizeConstraint(), QLayout::SetFixedSize);
    EXPECT_EQ(shown(*svf), "operation_combo frequency_edit voltage_combo");
    EXPECT_EQ(items(child<QComboBox>(*svf, "operation_combo")), "Program, Verify, Blank-check and program");
    EXPECT_EQ(items(child<QComboBox>(*svf, "voltage_combo")),
              "1.5 volts, 1.8 volts, 2.5 volts, 3.3 volts, 5.0 volts");
    const auto hex = make(VEK_HEX_FILE_TYPE);
    EXPECT_EQ(hex->windowTitle(), QStringLiteral("HEX Properties"));
    EXPECT_EQ(shown(*hex), "start_edit direction_combo");
    EXPECT_EQ(items(child<QComboBox>(*hex, "direction_combo")), "Up, Down");
    EXPECT_EQ(child<NIVO_HEX_EDIT>(*hex, "start_edit").get_digits(), 8);
    const auto rpd = make(VEK_RPD_FILE_TYPE);
    EXPECT_EQ(rpd->windowTitle(), QStringLiteral("RPD Properties"));
    EXPECT_EQ(shown(*rpd), "relative_check start_edit bitswap_combo");
    EXPECT_EQ(items(child<QComboBox>(*rpd, "bitswap_combo")), "Off, On");
    EXPECT_EQ(shown(*make(VEK_PERIPH_RPD_FILE_TYPE, VEK_CVP_GROUP_FILE_TYPE)),
              "relative_check start_edit bitswap_combo");
    EXPECT_EQ(shown(*make(VEK_SEC_RPD_FILE_TYPE, VEK_POF_FILE_TYPE)), "sec_bitswap_combo");
}

TEST_F(OUTPUT_DIALOG, all_rows_are_there_in_their_order_with_kind_and_tooltip)
{
    const auto dialog = make(VEK_SVF_FILE_TYPE);
    EXPECT_EQ(dialog->get_all_properties(),
              (std::vector<std::uint32_t>{VEK_CMD_PARAM_OUTPUT_FILE_SECONDARY_FILE_FILE_OPTIONS_BITSWAP,
                                          VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_USE_RELATIVE,
                                          VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_DIRECTION,
                                          VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_BITSWAP,
                                          VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_S_ADDR,
                                          VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_FREQUENCY,
                                          VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_VOLTAGE,
                                          VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_OPERATION}));
    const auto* const browser = dialog->findChild<VEK_PROPERTY_BROWSER*>();
    EXPECT_EQ(browser->get_property(VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_S_ADDR).type, 2u);
    EXPECT_EQ(browser->get_property(VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_OPERATION).type, 1u);
    EXPECT_EQ(browser->get_property(VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_FREQUENCY).type, 3u);
    EXPECT_EQ(browser->get_property(VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_BITSWAP).type, 0u);
    EXPECT_EQ(browser->get_property(VEK_CMD_PARAM_OUTPUT_FILE_SECONDARY_FILE_FILE_OPTIONS_BITSWAP).type, 0u);
    const QCheckBox& relative = child<QCheckBox>(*dialog, "relative_check");
    EXPECT_EQ(relative.text(), QStringLiteral("Use relative address"));
    EXPECT_EQ(relative.toolTip().toStdString(),
              VEK_DB::get_description(VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_VOLTAGE))
        << "the row before it";
    EXPECT_EQ(
        browser->get_property(VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_S_ADDR).label->toolTip().toStdString(),
        VEK_DB::get_description(VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_S_ADDR));
    QStringList labels;
    for (const QLabel* const label : browser->findChildren<QLabel*>()) {
        labels << label->text();
    }
    EXPECT_EQ(labels.join(' ').toStdString(),
              "Operation: TCK frequency: Supply voltage: Start address: Direction: Bit swap: Bit swap:");
}

TEST_F(OUTPUT_DIALOG, vectors_are_read_and_returned_in_order)
{
    option("SVF", VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_OPERATION, "PB");
    option("SVF", VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_FREQUENCY, "10MHz");
    option("SVF", VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_VOLTAGE, "1_8V");
    const auto dialog = make(VEK_SVF_FILE_TYPE);
    EXPECT_EQ(child<QComboBox>(*dialog, "operation_combo").currentIndex(), 2);
    EXPECT_EQ(child<QComboBox>(*dialog, "voltage_combo").currentIndex(), 1);
    EXPECT_EQ(dialog->get_params(), (PARAMS{{VEK_CMD_PARAM_OUTPUT_FILE_TYPE, "SVF"},
                                            {VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_OPERATION, "PB"},
                                            {VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_FREQUENCY, "10MHz"},
                                            {VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_VOLTAGE, "1_8V"}}));
    child<QComboBox>(*dialog, "operation_combo").setCurrentIndex(1);
    child<QComboBox>(*dialog, "voltage_combo").setCurrentIndex(4);
    QTest::keyClicks(&child<QLineEdit>(*dialog, "frequency_edit"), QStringLiteral(" slow"));
    EXPECT_EQ(dialog->get_params(), (PARAMS{{VEK_CMD_PARAM_OUTPUT_FILE_TYPE, "SVF"},
                                            {VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_OPERATION, "V"},
                                            {VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_FREQUENCY, "10MHz slow"},
                                            {VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_VOLTAGE, "5_0V"}}))
        << "the frequency is taken as typed";
    child<QComboBox>(*dialog, "operation_combo").setCurrentIndex(-1);
    EXPECT_INTERNAL_ERROR(dialog->get_params(), "operation_index != -1");
    child<QComboBox>(*dialog, "operation_combo").setCurrentIndex(0);
    child<QComboBox>(*dialog, "operation_combo").setItemData(0, QVariant());
    EXPECT_INTERNAL_ERROR(dialog->get_params(), "operation_data.isValid()");
    child<QComboBox>(*dialog, "operation_combo").setItemData(0, QPoint());
    EXPECT_INTERNAL_ERROR(dialog->get_params(), "operation_data.canConvert<int>()");
    child<QComboBox>(*dialog, "operation_combo").setCurrentIndex(1);
    child<QComboBox>(*dialog, "voltage_combo").setCurrentIndex(-1);
    EXPECT_INTERNAL_ERROR(dialog->get_params(), "voltage_index != -1");
    child<QComboBox>(*dialog, "voltage_combo").setCurrentIndex(0);
    child<QComboBox>(*dialog, "voltage_combo").setItemData(0, QVariant());
    EXPECT_INTERNAL_ERROR(dialog->get_params(), "voltage_data.isValid()");
    child<QComboBox>(*dialog, "voltage_combo").setItemData(0, QPoint());
    EXPECT_INTERNAL_ERROR(dialog->get_params(), "voltage_data.canConvert<int>()");
}

TEST_F(OUTPUT_DIALOG, vectors_need_a_frequency_once_the_user_has_touched_it)
{
    option("SVF", VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_FREQUENCY, "");
    const auto dialog = make(VEK_SVF_FILE_TYPE);
    EXPECT_TRUE(is_ok_enabled(*dialog)) << "an empty document does not count as a change";
    QLineEdit& frequency = child<QLineEdit>(*dialog, "frequency_edit");
    QTest::keyClicks(&frequency, QStringLiteral("1"));
    EXPECT_TRUE(is_ok_enabled(*dialog));
    QTest::keyClick(&frequency, Qt::Key_Backspace);
    EXPECT_FALSE(is_ok_enabled(*dialog));
}

TEST_F(OUTPUT_DIALOG, a_word_that_the_table_does_not_have_leaves_the_combo_without_a_selection)
{
    VEK_FILE_ASSISTANT::get_output_file_elements(m_vek.get()).at(0)->file_options.at(0)->operation = "UP";
    VEK_FILE_ASSISTANT::get_output_file_elements(m_vek.get()).at(0)->file_options.at(0)->voltage = "UP";
    const auto dialog = make(VEK_SVF_FILE_TYPE);
    EXPECT_EQ(child<QComboBox>(*dialog, "operation_combo").currentIndex(), -1);
    EXPECT_EQ(child<QComboBox>(*dialog, "voltage_combo").currentIndex(), -1);
    VEK_FILE_ASSISTANT::get_output_file_elements(m_vek.get()).at(1)->file_options.at(0)->direction = "P";
    EXPECT_INTERNAL_ERROR(make(VEK_HEX_FILE_TYPE), "direction_it != DIRECTIONS.end()");
}

TEST_F(OUTPUT_DIALOG, hexadecimal_options_are_read_and_returned_in_order)
{
    option("HEX", VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_S_ADDR, "0x00001000");
    option("HEX", VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_DIRECTION, "DOWN");
    const auto dialog = make(VEK_HEX_FILE_TYPE);
    EXPECT_EQ(dialog->get_params(), (PARAMS{{VEK_CMD_PARAM_OUTPUT_FILE_TYPE, "HEX"},
                                            {VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_S_ADDR, "0x00001000"},
                                            {VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_DIRECTION, "DOWN"}}));
    QComboBox& direction = child<QComboBox>(*dialog, "direction_combo");
    direction.setCurrentIndex(-1);
    EXPECT_INTERNAL_ERROR(dialog->get_params(), "direction_index != -1");
    direction.setCurrentIndex(0);
    direction.setItemData(0, QVariant());
    EXPECT_INTERNAL_ERROR(dialog->get_params(), "direction_data.isValid()");
    direction.setItemData(0, QPoint());
    EXPECT_INTERNAL_ERROR(dialog->get_params(), "direction_data.canConvert<int>()");
}

TEST_F(OUTPUT_DIALOG, a_hex_file_needs_a_start_address_once_the_user_has_touched_it)
{
    option("HEX", VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_S_ADDR, "");
    const auto dialog = make(VEK_HEX_FILE_TYPE);
    EXPECT_TRUE(is_ok_enabled(*dialog));
    auto& start = child<NIVO_HEX_EDIT>(*dialog, "start_edit");
    QTest::keyClicks(&start, QStringLiteral("8"));
    EXPECT_TRUE(is_ok_enabled(*dialog));
    QTest::keyClick(&start, Qt::Key_Backspace);
    EXPECT_FALSE(is_ok_enabled(*dialog));
}

TEST_F(OUTPUT_DIALOG, raw_options_are_read_and_returned_in_order)
{
    option("RPD", VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_S_ADDR, "0x00000100");
    option("RPD", VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_BITSWAP, "1");
    const auto dialog = make(VEK_RPD_FILE_TYPE);
    EXPECT_EQ(dialog->get_params(), (PARAMS{{VEK_CMD_PARAM_OUTPUT_FILE_TYPE, "RPD"},
                                            {VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_USE_RELATIVE, "0"},
                                            {VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_S_ADDR, "0x00000100"},
                                            {VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_BITSWAP, "1"}}));
    child<NIVO_HEX_EDIT>(*dialog, "start_edit").clear();
    EXPECT_TRUE(is_ok_enabled(*dialog));
    EXPECT_EQ(dialog->get_params().at(2).second, "");
    QComboBox& bitswap = child<QComboBox>(*dialog, "bitswap_combo");
    bitswap.setCurrentIndex(-1);
    EXPECT_INTERNAL_ERROR(dialog->get_params(), "bitswap_index != -1");
    bitswap.setCurrentIndex(0);
    bitswap.setItemData(0, QVariant());
    EXPECT_INTERNAL_ERROR(dialog->get_params(), "bitswap_data.isValid()");
    bitswap.setItemData(0, QPoint());
    EXPECT_INTERNAL_ERROR(dialog->get_params(), "bitswap_data.canConvert<bool>()");
    EXPECT_EQ(make(VEK_PERIPH_RPD_FILE_TYPE, VEK_CVP_GROUP_FILE_TYPE)->get_params().at(0),
              PARAMS::value_type(VEK_CMD_PARAM_OUTPUT_FILE_TYPE, "PERIPH_RPD"));
}

TEST_F(OUTPUT_DIALOG, relative_addresses_begin_at_zero_and_the_earlier_address_is_lost)
{
    option("RPD", VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_S_ADDR, "0x00000100");
    const auto dialog = make(VEK_RPD_FILE_TYPE);
    auto& relative = child<QCheckBox>(*dialog, "relative_check");
    auto& start = child<NIVO_HEX_EDIT>(*dialog, "start_edit");
    EXPECT_TRUE(start.isEnabled());
    relative.click();
    EXPECT_FALSE(start.isEnabled());
    std::uint64_t value = 1;
    EXPECT_TRUE(start.get_value(value));
    EXPECT_EQ(value, 0u);
    relative.click();
    EXPECT_TRUE(start.isEnabled());
    EXPECT_TRUE(start.get_value(value));
    EXPECT_EQ(value, 0u);

    option("RPD", VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_USE_RELATIVE, "1");
    const auto again = make(VEK_RPD_FILE_TYPE);
    EXPECT_TRUE(child<QCheckBox>(*again, "relative_check").isChecked());
    EXPECT_FALSE(child<NIVO_HEX_EDIT>(*again, "start_edit").isEnabled());
    EXPECT_EQ(again->get_params().at(2).second, "0x00000000");
}

TEST_F(OUTPUT_DIALOG, the_secondary_set_names_the_parent)
{
    const auto dialog = make(VEK_SEC_RPD_FILE_TYPE, VEK_POF_FILE_TYPE);
    child<QComboBox>(*dialog, "sec_bitswap_combo").setCurrentIndex(1);
    const PARAMS params = dialog->get_params();
    EXPECT_EQ(params, (PARAMS{{VEK_CMD_PARAM_OUTPUT_FILE_TYPE, "POF"},
                              {VEK_CMD_PARAM_OUTPUT_FILE_SECONDARY_FILE_TYPE, "SEC_RPD"},
                              {VEK_CMD_PARAM_OUTPUT_FILE_SECONDARY_FILE_FILE_OPTIONS_BITSWAP, "1"}}));
    set(*m_vek, VEK_CMD_OPT_OUTPUT_FILE, params);
    EXPECT_EQ(
        child<QComboBox>(*make(VEK_SEC_RPD_FILE_TYPE, VEK_POF_FILE_TYPE), "sec_bitswap_combo").currentIndex(),
        1);
}

TEST_F(OUTPUT_DIALOG, the_element_is_found_by_the_branch)
{
    const auto output_files = VEK_FILE_ASSISTANT::get_output_file_elements(m_vek.get());
    EXPECT_EQ(make(VEK_PERIPH_RPD_FILE_TYPE, VEK_CVP_GROUP_FILE_TYPE)->get_file_options_element(),
              output_files.at(4)->file_options.at(0))
        << "a group child is found without its flag";
    EXPECT_EQ(make(VEK_PERIPH_RPD_FILE_TYPE, VEK_HPS_GROUP_FILE_TYPE)->get_file_options_element(),
              output_files.at(4)->file_options.at(0))
        << "under both groups";
    EXPECT_INTERNAL_ERROR(make(VEK_SEC_RPD_FILE_TYPE, VEK_PERIPH_JIC_FILE_TYPE, VEK_CVP_GROUP_FILE_TYPE),
                          "file_options != nullptr");
    output_files.at(5)->hps = "1";
    EXPECT_INTERNAL_ERROR(make(VEK_SEC_RPD_FILE_TYPE, VEK_PERIPH_JIC_FILE_TYPE, VEK_CVP_GROUP_FILE_TYPE),
                          "file_options != nullptr");
    EXPECT_EQ(make(VEK_SEC_RPD_FILE_TYPE, VEK_PERIPH_JIC_FILE_TYPE, VEK_HPS_GROUP_FILE_TYPE)
                  ->get_file_options_element(),
              output_files.at(5)->secondary_file.at(0)->file_options.at(0));
    EXPECT_EQ(make(VEK_SEC_RPD_FILE_TYPE, VEK_POF_FILE_TYPE)->get_file_options_element(),
              output_files.at(3)->secondary_file.at(0)->file_options.at(0));
    EXPECT_INTERNAL_ERROR(make(VEK_SEC_RPD_FILE_TYPE, VEK_RPD_FILE_TYPE), "file_options != nullptr");
    EXPECT_EQ(make(VEK_JAM_FILE_TYPE)->get_file_options_element(), nullptr);
}

TEST_F(OUTPUT_DIALOG, a_type_without_options_opens_an_empty_dialog_that_has_no_values)
{
    const auto dialog = make(VEK_POF_FILE_TYPE);
    EXPECT_EQ(dialog->windowTitle(), QStringLiteral("POF Properties"));
    EXPECT_EQ(shown(*dialog), "");
    EXPECT_INTERNAL_ERROR(dialog->get_params(), "Invalid file type.");
}

TEST_F(OUTPUT_DIALOG, the_edit_button_stores_what_was_accepted_and_forgets_the_rest)
{
    m_vek = std::make_shared<PGM_COMMON_XML_VEK_VEK>(PGM_COMMON_XML_ENUM_VEK);
    m_cache->family = DEV_FAMILY_BASALT;
    const auto tab = make_tab();
    EXPECT_INTERNAL_ERROR(tab->edit(), "!branch.empty()");
    click_box(*tab, {VEK_RPD_FILE_TYPE});
    select(*tab, {VEK_RPD_FILE_TYPE});
    VEK_FILE_ASSISTANT_LOG log;
    MODAL_ANSWERS answers;
    const auto enter = [](QDialog& dialog) {
        EXPECT_EQ(dialog.windowTitle(), QStringLiteral("RPD Properties"));
        EXPECT_TRUE(dialog.isModal());
        child<NIVO_HEX_EDIT>(dialog, "start_edit").setText(QStringLiteral("0x00000200"));
        child<QComboBox>(dialog, "bitswap_combo").setCurrentIndex(1);
    };
    const auto press = [](QDialog& dialog, QDialogButtonBox::StandardButton which) {
        QTest::mouseClick(dialog.findChild<QDialogButtonBox*>()->button(which), Qt::LeftButton);
    };
    answers.run([&](QDialog& dialog) {
        enter(dialog);
        press(dialog, QDialogButtonBox::Cancel);
    });
    QTest::mouseClick(&button(*tab, "m_edit_button"), Qt::LeftButton);
    EXPECT_EQ(log.take(), "");
    answers.run([&](QDialog& dialog) {
        enter(dialog);
        press(dialog, QDialogButtonBox::Ok);
    });
    QTest::mouseClick(&button(*tab, "m_edit_button"), Qt::LeftButton);
    EXPECT_EQ(log.take(), "set output_file type=RPD file_options_use_relative=0 "
                          "file_options_s_addr=0x00000200 file_options_bitswap=1\n");
    log.refuse = [](const std::string&) { return true; };
    answers.run([&](QDialog& dialog) { press(dialog, QDialogButtonBox::Ok); });
    EXPECT_INTERNAL_ERROR(tab->edit(), "success");
}
