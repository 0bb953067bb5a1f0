#include "fio_file_system.h"
#include "vek_file_edit.h"
#include "vek_frame_fixture.h"
#include "vek_property_browser.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>

namespace
{

using BROWSER = VEK_PROPERTY_BROWSER;
using PROPERTY = BROWSER::PROPERTY;
using IDS = std::vector<std::uint32_t>;

class PROPERTY_BROWSER : public VEK_FRAME_FIXTURE
{
protected:
    static PROPERTY line(std::uint32_t id) { return BROWSER::create_line_edit_property(id, "Line:", "tip"); }
    QGridLayout* grid(int entry) const
    {
        QLayoutItem* const item = m_browser.layout()->itemAt(entry);
        return qobject_cast<QGridLayout*>(item->layout() != nullptr ? item->layout()
                                                                    : item->widget()->layout());
    }

    BROWSER m_browser;
};

const std::map<unsigned, QString> WORDS = {{PGM_COMMON_XML_ENUM_DOWN, QStringLiteral("Down")},
                                           {PGM_COMMON_XML_ENUM_UP, QStringLiteral("Up")}};

} // namespace

TEST_F(PROPERTY_BROWSER, it_is_empty_and_takes_no_more_height_than_it_needs)
{
    EXPECT_EQ(m_browser.sizePolicy().horizontalPolicy(), QSizePolicy::Preferred);
    EXPECT_EQ(m_browser.sizePolicy().verticalPolicy(), QSizePolicy::Fixed);
    EXPECT_EQ(m_browser.layout()->contentsMargins(), QMargins());
    EXPECT_TRUE(m_browser.get_ids(true).empty());
    const PROPERTY none = m_browser.get_property(7);
    EXPECT_EQ(none.label, nullptr);
    EXPECT_EQ(none.widget, nullptr);
    EXPECT_EQ(none.id, static_cast<std::uint32_t>(-1));
    EXPECT_EQ(none.type, 6u);
    EXPECT_EQ(m_browser.get_widget(7), nullptr);
}

TEST_F(PROPERTY_BROWSER, each_kind_of_row_has_its_editor)
{
    const PROPERTY rows[] = {
        BROWSER::create_bool_property(1, "Bool:", "a tip"),
        BROWSER::create_combo_property(2, "Combo:", "a tip", WORDS),
        BROWSER::create_file_edit_property(3, "File:", "a tip", {FIO_SOF_FILE}, QFileDialog::ExistingFile),
        BROWSER::create_line_edit_property(4, "Line:", "a tip"),
        BROWSER::create_check_property(5, "Check", "a tip"),
    };
    const unsigned types[] = {0, 1, 2, 3, 5};
    for (std::size_t row = 0; row < std::size(rows); ++row) {
        EXPECT_EQ(rows[row].type, types[row]);
        EXPECT_EQ(rows[row].id, row + 1);
        EXPECT_TRUE(m_browser.add_property(rows[row]));
    }
    const auto* const on_off = qobject_cast<QComboBox*>(rows[0].widget);
    EXPECT_EQ(on_off->objectName(), QStringLiteral("Bool:"));
    ASSERT_EQ(on_off->count(), 2);
    EXPECT_EQ(on_off->itemText(0), QStringLiteral("Off"));
    EXPECT_EQ(on_off->itemData(0), QVariant(false));
    EXPECT_EQ(on_off->itemText(1), QStringLiteral("On"));
    EXPECT_EQ(on_off->itemData(1), QVariant(true));
    const auto* const combo = qobject_cast<QComboBox*>(rows[1].widget);
    EXPECT_EQ(combo->itemText(0), QStringLiteral("Up")) << "in the order of the keys";
    EXPECT_EQ(combo->itemData(0).toUInt(), static_cast<unsigned>(PGM_COMMON_XML_ENUM_UP));
    auto* const file_edit = qobject_cast<VEK_FILE_EDIT*>(rows[2].widget);
    EXPECT_EQ(file_edit->get_line_edit()->objectName(), QStringLiteral("File:"));
    NIVO_NATIVE_FILE_DLG::reject_next();
    file_edit->browse();
    EXPECT_EQ(NIVO_NATIVE_FILE_DLG::last_question().file_mode, QFileDialog::ExistingFile);
    EXPECT_EQ(NIVO_NATIVE_FILE_DLG::last_question().name_filters.size(), 1);
    EXPECT_EQ(rows[3].widget->objectName(), QStringLiteral("Line:"));
    EXPECT_EQ(qobject_cast<QLabel*>(rows[3].label)->text(), QStringLiteral("Line:"));
    EXPECT_EQ(rows[3].label->toolTip(), QStringLiteral("a tip"));
    EXPECT_EQ(rows[3].widget->toolTip(), QString());
    EXPECT_EQ(rows[4].label, nullptr);
    EXPECT_EQ(qobject_cast<QCheckBox*>(rows[4].widget)->text(), QStringLiteral("Check"));
    EXPECT_EQ(rows[4].widget->toolTip(), QStringLiteral("a tip"));
}

TEST_F(PROPERTY_BROWSER, loose_rows_share_a_grid_until_a_group_comes_between)
{
    EXPECT_TRUE(m_browser.add_property(line(1)));
    EXPECT_TRUE(m_browser.add_property(BROWSER::create_check_property(2, "Check", "tip")));
    EXPECT_TRUE(m_browser.add_property_group(QStringLiteral("Group"), {line(3)}));
    EXPECT_TRUE(m_browser.add_property(line(4)));
    EXPECT_FALSE(m_browser.add_property(line(4))) << "the id is taken";
    ASSERT_EQ(m_browser.layout()->count(), 3);
    EXPECT_EQ(grid(0)->itemAtPosition(0, 0), nullptr) << "row 0 stays empty";
    EXPECT_EQ(grid(0)->itemAtPosition(1, 0)->widget(), m_browser.get_property(1).label);
    EXPECT_EQ(grid(0)->itemAtPosition(1, 1)->widget(), m_browser.get_widget(1));
    EXPECT_EQ(grid(0)->itemAtPosition(2, 0)->widget(), m_browser.get_widget(2));
    EXPECT_EQ(grid(0)->itemAtPosition(2, 1)->widget(), m_browser.get_widget(2)) << "to the right edge";
    EXPECT_EQ(grid(0)->itemAtPosition(2, 0)->alignment(), Qt::AlignLeft);
    EXPECT_EQ(grid(1)->itemAtPosition(1, 1)->widget(), m_browser.get_widget(3));
    EXPECT_EQ(grid(2)->itemAtPosition(1, 1)->widget(), m_browser.get_widget(4));
    EXPECT_EQ(qobject_cast<QLabel*>(m_browser.get_property(1).label)->buddy(), m_browser.get_widget(1));
}

TEST_F(PROPERTY_BROWSER, a_group_with_an_id_twice_adds_nothing_at_all)
{
    const PROPERTY rows[] = {line(1), line(2), line(2), line(9)};
    EXPECT_FALSE(m_browser.add_property_group(QStringLiteral("Group"), {rows[0], rows[1], rows[2]}));
    EXPECT_EQ(m_browser.layout()->count(), 0);
    EXPECT_TRUE(m_browser.get_ids(true).empty());
    EXPECT_TRUE(m_browser.add_property(rows[3]));
    EXPECT_FALSE(m_browser.add_property_group(QStringLiteral("Group"), {rows[0], line(9)}));
    EXPECT_EQ(m_browser.get_ids(true), IDS{9});
    for (int row = 0; row < 3; ++row) {
        delete rows[row].label;
        delete rows[row].widget;
    }
}

TEST_F(PROPERTY_BROWSER, rows_without_an_id_are_shown_and_never_found)
{
    const PROPERTY first = line(BROWSER::NO_ID);
    const PROPERTY second = line(BROWSER::NO_ID);
    EXPECT_TRUE(m_browser.add_property_group(QStringLiteral("Group"), {first, line(5), second}));
    EXPECT_EQ(m_browser.get_ids(true), IDS{5});
    EXPECT_EQ(grid(0)->itemAtPosition(1, 1)->widget(), first.widget);
    EXPECT_EQ(grid(0)->itemAtPosition(3, 1)->widget(), second.widget);
    EXPECT_EQ(m_browser.get_id_by_widget(first.widget), BROWSER::NO_ID);
    EXPECT_EQ(m_browser.get_id_by_widget(m_browser.get_widget(5)), 5u);
}

TEST_F(PROPERTY_BROWSER, rows_are_listed_by_their_ids)
{
    for (const std::uint32_t id : {30u, 4u, 17u}) {
        EXPECT_TRUE(m_browser.add_property(line(id)));
    }
    EXPECT_EQ(m_browser.get_ids(false), (IDS{4, 17, 30}));
    EXPECT_TRUE(m_browser.hide_property(17));
    EXPECT_FALSE(m_browser.hide_property(18));
    EXPECT_EQ(m_browser.get_ids(false), (IDS{4, 30}));
    EXPECT_EQ(m_browser.get_ids(true), (IDS{4, 17, 30}));
    EXPECT_EQ(m_browser.get_properties(false).size(), 2u);
    EXPECT_EQ(m_browser.get_properties(true).at(1).id, 17u);
    EXPECT_TRUE(m_browser.get_property(17).label->isHidden());
    EXPECT_FALSE(m_browser.get_widget(17)->isEnabled());
    EXPECT_FALSE(m_browser.get_property(4).label->isHidden());
}

TEST_F(PROPERTY_BROWSER, a_group_goes_with_its_last_row)
{
    EXPECT_TRUE(m_browser.add_property(line(1)));
    EXPECT_TRUE(m_browser.add_property_group(QStringLiteral("Group"),
                                             {line(2), BROWSER::create_check_property(3, "Check", "tip")}));
    EXPECT_TRUE(m_browser.add_property_group(QStringLiteral("Other"), {line(4)}));
    EXPECT_TRUE(m_browser.hide_property(1));
    EXPECT_TRUE(m_browser.hide_property(2));
    m_browser.hide_property_group();
    EXPECT_FALSE(m_browser.is_property_group_hidden(QStringLiteral("Group")));
    EXPECT_TRUE(m_browser.hide_property(3));
    m_browser.hide_property_group();
    EXPECT_TRUE(m_browser.is_property_group_hidden(QStringLiteral("Group")));
    EXPECT_FALSE(m_browser.is_property_group_hidden(QStringLiteral("group"))) << "no such title";
    EXPECT_FALSE(m_browser.is_property_group_hidden(QStringLiteral("Other")));
}

TEST_F(PROPERTY_BROWSER, values_go_in_and_out_as_texts)
{
    set_working_directory("/base");
    EXPECT_TRUE(m_browser.add_property(BROWSER::create_bool_property(1, "Bool:", "")));
    EXPECT_TRUE(m_browser.add_property(BROWSER::create_combo_property(2, "Combo:", "", WORDS)));
    EXPECT_TRUE(m_browser.add_property(
        BROWSER::create_file_edit_property(3, "File:", "", {FIO_SOF_FILE}, QFileDialog::ExistingFile)));
    EXPECT_TRUE(m_browser.add_property(line(4)));
    EXPECT_TRUE(m_browser.add_property(BROWSER::create_check_property(5, "Check", "")));
    const auto round = [this](std::uint32_t id, const char* text) {
        EXPECT_TRUE(m_browser.set_widget_value(id, QString::fromLatin1(text)));
        return m_browser.get_widget_value(id).toStdString();
    };
    EXPECT_EQ(round(1, "on"), "1");
    EXPECT_EQ(round(1, "0"), "0");
    EXPECT_EQ(round(2, "DOWN"), "DOWN");
    EXPECT_EQ(round(2, "UP"), "UP");
    EXPECT_EQ(round(2, "DOWN"), "DOWN");
    EXPECT_EQ(round(2, "PB"), "DOWN") << "no such item, so the selection stays";
    EXPECT_EQ(round(3, "in/top.sof"), "/base/in/top.sof") << "always absolute";
    EXPECT_EQ(round(4, " any text "), " any text ");
    EXPECT_EQ(round(5, "1"), "1");
    EXPECT_EQ(round(5, "0"), "0");
    EXPECT_FALSE(m_browser.set_widget_value(6, QStringLiteral("x")));
}

TEST_F(PROPERTY_BROWSER, what_cannot_be_read_is_an_internal_error)
{
    EXPECT_INTERNAL_ERROR(m_browser.get_widget_value(1), "widget");
    const PROPERTY on_off = BROWSER::create_bool_property(1, "Bool:", "");
    const PROPERTY words = BROWSER::create_combo_property(2, "Combo:", "", {});
    PROPERTY strange = line(3);
    strange.type = BROWSER::TYPE_INVALID;
    for (const PROPERTY& property : {on_off, words, strange}) {
        EXPECT_TRUE(m_browser.add_property(property));
    }
    auto* const on_off_combo = qobject_cast<QComboBox*>(on_off.widget);
    on_off_combo->setCurrentIndex(-1);
    EXPECT_INTERNAL_ERROR(m_browser.get_widget_value(1), "index != -1");
    on_off_combo->setCurrentIndex(0);
    on_off_combo->setItemData(0, QVariant());
    EXPECT_INTERNAL_ERROR(m_browser.get_widget_value(1), "data.isValid()");
    on_off_combo->setItemData(0, QPoint());
    EXPECT_INTERNAL_ERROR(m_browser.get_widget_value(1), "data.canConvert<bool>()");
    EXPECT_INTERNAL_ERROR(m_browser.get_widget_value(2), "index != -1"); // a combo must be filled first
    qobject_cast<QComboBox*>(words.widget)->addItem(QStringLiteral("any"), QPoint());
    EXPECT_INTERNAL_ERROR(m_browser.get_widget_value(2), "data.canConvert<int>()");
    EXPECT_INTERNAL_ERROR(m_browser.get_widget_value(3), "Unrecognized property type in get function");
    EXPECT_INTERNAL_ERROR(m_browser.set_widget_value(3, QString()),
                          "Unrecognized property type in set function");
}

TEST_F(PROPERTY_BROWSER, a_key_is_never_put_into_a_row)
{
    PROPERTY key = line(1);
    key.type = BROWSER::TYPE_KEY;
    EXPECT_TRUE(m_browser.add_property(key));
    EXPECT_INTERNAL_ERROR(m_browser.set_widget_value(1, QStringLiteral("0123")),
                          "Should not set key entry property due to security concern");
}

TEST_F(PROPERTY_BROWSER, a_label_is_grey_while_its_editor_is_disabled)
{
    const PROPERTY early = line(1);
    early.widget->setEnabled(false);
    ASSERT_TRUE(m_browser.add_property_group(QStringLiteral("Group"), {early, line(2)}));
    const PROPERTY late = m_browser.get_property(2);
    EXPECT_FALSE(early.label->isEnabled());
    EXPECT_TRUE(late.label->isEnabled());
    late.widget->setEnabled(false);
    EXPECT_FALSE(late.label->isEnabled());
    m_browser.setEnabled(false);
    late.widget->setEnabled(true);
    m_browser.setEnabled(true);
    EXPECT_TRUE(late.label->isEnabled());
    EXPECT_FALSE(early.label->isEnabled());
}
