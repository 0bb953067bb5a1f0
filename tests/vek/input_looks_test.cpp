// The second tab and its dialogs, looked at on screens of common sizes.

#include "vek_key_entry_edit.h"
#include "window_looks_fixture.h"

#include <QAbstractItemView>
#include <QCheckBox>
#include <QDialogButtonBox>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QTest>
#include <QToolButton>

#include <filesystem>

namespace
{

class INPUT_LOOKS : public WINDOW_LOOKS
{
protected:
    void look_on_each_screen(const std::string& name)
    {
        for (const QSize& size : {QSize(1024, 768), QSize(1280, 800)}) {
            use_screen(size);
            look(*m_frame, name + "_" + std::to_string(size.width()));
        }
        use_screen(SMALL_SCREEN);
    }
    /// Does this in the properties dialog of the row, then its Cancel.
    void in_properties(const QString& row, const std::function<void(QDialog&)>& work)
    {
        USER_HANDS::select(tree("m_input_file_tree"), row);
        m_answers.run([&work](QDialog& dialog) {
            work(dialog);
            dialog.reject();
        });
        USER_HANDS::click(*tabs(*m_frame)->currentWidget(), "m_properties_button");
        EXPECT_EQ(m_answers.waiting(), 0);
    }
    template <class WIDGET>
    static WIDGET& part(const QWidget& window, const char* name)
    {
        return *window.findChild<WIDGET*>(QLatin1String(name));
    }
    static VEK_KEY_ENTRY_EDIT& key_row(QDialog& dialog) { return *dialog.findChild<VEK_KEY_ENTRY_EDIT*>(); }
};

} // namespace

TEST_F(INPUT_LOOKS, the_tab_without_files_with_few_and_with_many)
{
    for (const std::string name : {"one", "two", "a_bitstream_with_a_rather_long_name_of_its_own"}) {
        make_bitstream(name + ".sof", "BS1L15", 5000);
    }
    USER_HANDS::choose(*family_combo(*m_frame), "Basalt");
    tick_output("Programmer Object File (.pof)");
    open_tab(1);
    look_on_each_screen("input_none");
    for (const std::string name : {"one", "two", "a_bitstream_with_a_rather_long_name_of_its_own"}) {
        add_bitstream(name + ".sof");
    }
    write_file(m_directory / "data.hex", std::string(":00000001FF\n"));
    add_raw_data("data.hex");
    look_on_each_screen("input_three");
    std::filesystem::remove(m_directory / "two.sof");
    look_on_each_screen("input_red");
    for (int number = 0; number < 60; ++number) {
        const std::string name = "data" + std::to_string(number) + ".bin";
        write_file(m_directory / name, std::string(16, 'x'));
        add_raw_data(name);
    }
    look_on_each_screen("input_many");
}

TEST_F(INPUT_LOOKS, the_properties_with_most_rows_on_three_screens)
{
    make_bitstream("GR5S027.sof", "GR5S027", 5000);
    USER_HANDS::choose(*family_combo(*m_frame), "Granite");
    tick_output("Programmer Object File (.pof)");
    open_tab(1);
    add_bitstream("GR5S027.sof");
    for (const QSize& size : {QSize(1024, 768), QSize(1280, 800), QSize(1920, 1200)}) {
        use_screen(size);
        in_properties("GR5S027.sof", [&size](QDialog& dialog) {
            look(dialog, "input_properties_Granite_" + std::to_string(size.width()));
            auto* const area = dialog.findChild<QScrollArea*>();
            EXPECT_EQ(area == nullptr, size.height() > 1100) << "scrolled where there is no room alone";
            const auto& ok = *part<QDialogButtonBox>(dialog, "m_button_box").button(QDialogButtonBox::Ok);
            EXPECT_LT(ok.mapTo(&dialog, QPoint(0, ok.height())).y(), dialog.height());
            if (area != nullptr) {
                EXPECT_FALSE(area->horizontalScrollBar()->isVisible());
                area->verticalScrollBar()->setValue(area->verticalScrollBar()->maximum());
                look(dialog, "input_properties_Granite_" + std::to_string(size.width()) + "_below");
            }
        });
    }
}

TEST_F(INPUT_LOOKS, the_key_row_and_the_dialog_for_a_key)
{
    make_bitstream("CA3M050.sof", "CA3M050", 5000);
    USER_HANDS::choose(*family_combo(*m_frame), "Calcite");
    tick_output("Programmer Object File (.pof)");
    open_tab(1);
    add_bitstream("CA3M050.sof");
    const QString key(64, QLatin1Char('D'));
    in_properties("CA3M050.sof", [&](QDialog& dialog) {
        USER_HANDS::choose(dialog, "Enable encryption:", "On");
        m_answers.run([](QDialog& entry) {
            look(entry, "key_entry_keypad");
            USER_HANDS::click(entry, "m_key_edit");
            for (int count = 0; count < 32; ++count) {
                USER_HANDS::click(entry, "m_button_d");
            }
            look(entry, "key_entry_half");
            USER_HANDS::choose(entry, "m_entry_method_cbx", "Keyboard");
            USER_HANDS::click(entry, "m_show_key_checkbox");
            USER_HANDS::click(entry, "m_key_edit");
            for (int count = 32; count < 64; ++count) {
                QTest::keyClick(QApplication::focusWidget(), 'D');
            }
            USER_HANDS::click(entry, "m_key_name_edit");
            QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("board_of_the_first_series"));
            look(entry, "key_entry_full");
            USER_HANDS::click_standard_button(entry, QDialogButtonBox::Ok);
        });
        USER_HANDS::click(part<QToolButton>(key_row(dialog), "m_add_button"));
        EXPECT_EQ(key_row(dialog).get_key(), QStringLiteral("board_of_the_first_series"));
        EXPECT_EQ(part<QComboBox>(key_row(dialog), "m_key_combo").currentText(),
                  QStringLiteral("board_of_the_first_series (%1)").arg(key));
        auto& keys = part<QComboBox>(key_row(dialog), "m_key_combo");
        keys.showPopup();
        QWidget& list = *keys.view()->window();
        EXPECT_GE(list.width(), std::min(keys.fontMetrics().horizontalAdvance(keys.currentText()),
                                         QGuiApplication::primaryScreen()->availableSize().width()))
            << "as wide as its longest row, or as the screen";
        look(list, "key_list");
        keys.hidePopup();
        USER_HANDS::click(part<QToolButton>(key_row(dialog), "m_show_button"));
        look(dialog, "key_row");
    });
}
