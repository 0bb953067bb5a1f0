// F1, wherever it is pressed.

#include "nivo_help.h"
#include "thr_drl_double.h"
#include "three_tabs_fixture.h"

#include <QTest>

namespace
{

std::vector<std::string> shown;

void show_topic(const char* topic)
{
    shown.emplace_back(topic);
}

class HELP_KEY : public THREE_TABS_FIXTURE
{
protected:
    HELP_KEY()
    {
        shown.clear();
        thr_drl_double() = {};
        thr_drl_double().modules[NIVO_HELP_MODULE][NIVO_HELP_ENTRY] = reinterpret_cast<void*>(&show_topic);
        activate();
    }
    ~HELP_KEY() override { thr_drl_double() = {}; }

    /// As a window system does when a dialog over the window has closed.
    void activate() const
    {
        QApplication::setActiveWindow(m_frame.get());
        EXPECT_TRUE(QTest::qWaitForWindowActive(m_frame.get()));
    }
    /// The topic that F1 shows with the focus on that widget.
    std::string topic_at(QWidget* widget)
    {
        activate();
        widget->setFocus();
        EXPECT_EQ(QApplication::focusWidget(), widget);
        return topic_of_key(*widget);
    }
    std::string topic_at(const char* name)
    {
        return topic_at(m_frame->findChild<QWidget*>(QLatin1String(name)));
    }
    /// The topic that F1 shows in a dialog that this button opens.
    std::string topic_in(const char* button)
    {
        std::string topic;
        m_answers.run([&topic](QDialog& dialog) {
            topic = topic_of_key(dialog.focusWidget() == nullptr ? dialog : *dialog.focusWidget());
            dialog.reject();
        });
        USER_HANDS::click(*tabs(*m_frame)->currentWidget(), button);
        return topic;
    }
    static std::string topic_of_key(QWidget& widget)
    {
        const std::size_t before = shown.size();
        QTest::keyClick(&widget, Qt::Key_F1);
        EXPECT_EQ(shown.size(), before + 1) << "once";
        return shown.empty() ? "none" : shown.back();
    }
};

} // namespace

TEST_F(HELP_KEY, the_window_tells_about_what_has_the_focus)
{
    EXPECT_EQ(topic_at("m_family_combo"), NIVO_HELP_OVERVIEW);
    EXPECT_EQ(topic_at("m_generate_button"), NIVO_HELP_GENERATE);
    EXPECT_EQ(topic_at("m_name_edit"), NIVO_HELP_OUTPUT_FILES);
    EXPECT_EQ(topic_at("message_view"), NIVO_HELP_MESSAGES);
    choose_family_and_mode("Calcite", "Active Serial x4");
    tick_output("Programmer Object File (.pof)");
    open_tab(1);
    EXPECT_EQ(topic_at(tabs(*m_frame)->tabBar()), NIVO_HELP_INPUT_FILES) << "the tab itself";
    EXPECT_EQ(topic_at("m_input_file_tree"), NIVO_HELP_INPUT_FILES);
    make_bitstream("top.sof", "CA3M050", 1000, "ASX4");
    add_bitstream("top.sof");
    open_tab(2);
    EXPECT_EQ(topic_at("m_config_device_tree"), NIVO_HELP_CONFIG_DEVICE);
}

TEST_F(HELP_KEY, the_dialogs_tell_about_themselves)
{
    choose_family_and_mode("Calcite", "Active Serial x4");
    tick_output("Raw Programming Data File (.rpd)");
    USER_HANDS::select(tree("m_file_type_tree"), "Raw Programming Data File (.rpd)");
    EXPECT_EQ(topic_in("m_edit_button"), NIVO_HELP_OUTPUT_FILE_PROPERTIES);
    tick_output("Programmer Object File (.pof)");
    make_bitstream("top.sof", "CA3M050", 1000, "ASX4");
    open_tab(1);
    add_bitstream("top.sof");
    USER_HANDS::select(tree("m_input_file_tree"), "top.sof");
    EXPECT_EQ(topic_in("m_properties_button"), NIVO_HELP_INPUT_FILE_PROPERTIES);
    open_tab(2);
    EXPECT_EQ(topic_in("m_add_device_button"), NIVO_HELP_FLASH_DEVICES);
    in_dialog("m_add_device_button",
              [](QDialog& dialog) { USER_HANDS::choose(dialog, "m_device_combo", "W25Q32JV"); });
    select_row("W25Q32JV");
    EXPECT_EQ(topic_in("m_add_partition_button"), NIVO_HELP_PARTITION);
}

TEST_F(HELP_KEY, the_menu_shows_the_overview)
{
    family_combo(*m_frame)->setFocus();
    USER_HANDS::choose_entry(*m_frame, "Help", "Imagewright Help");
    EXPECT_EQ(shown, std::vector<std::string>{NIVO_HELP_OVERVIEW});
}

TEST_F(HELP_KEY, without_the_module_a_box_says_so_and_all_goes_on)
{
    thr_drl_double() = {};
    thr_drl_double().missing = {NIVO_HELP_MODULE};
    for (int time = 1; time <= 2; ++time) {
        activate();
        m_answers.click(QMessageBox::Ok);
        QTest::keyClick(family_combo(*m_frame), Qt::Key_F1);
        ASSERT_EQ(m_answers.boxes().size(), time);
        EXPECT_EQ(m_answers.boxes().back().text,
                  QStringLiteral("The help is not installed, so it cannot be shown."));
        EXPECT_TRUE(m_answers.boxes().back().informative_text.startsWith("The module mod_help"))
            << m_answers.boxes().back().informative_text.toStdString();
    }
    EXPECT_TRUE(m_frame->isEnabled());
}
