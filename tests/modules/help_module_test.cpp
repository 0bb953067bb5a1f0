#include "nivo_help.h"
#include "thr_drl.h"

#include <QDialog>
#include <QListWidget>
#include <QTextBrowser>
#include <gtest/gtest.h>

namespace
{

using SHOW = void (*)(const char* topic);

void show_help(const char* topic)
{
    const THR_DRL_HANDLE module = thr_drl_load("mod_help");
    ASSERT_NE(module, nullptr) << thr_drl_get_error();
    const auto show = reinterpret_cast<SHOW>(thr_drl_find_function(module, "help_show_context_impl"));
    ASSERT_NE(show, nullptr) << thr_drl_get_error();
    show(topic);
}

QList<QWidget*> help_windows()
{
    QList<QWidget*> windows;
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        if (widget->windowTitle() == "Imagewright Help") {
            windows.append(widget);
        }
    }
    return windows;
}

class HELP_MODULE : public testing::Test
{
protected:
    void TearDown() override { qDeleteAll(help_windows()); }

    static QString shown_page()
    {
        return help_windows().first()->findChild<QTextBrowser*>("m_page_browser")->toPlainText();
    }
};

TEST_F(HELP_MODULE, opens_the_page_of_the_topic)
{
    show_help("SOF File Properties: Bitstream Encryption - Key Entry");
    ASSERT_EQ(help_windows().size(), 1);
    EXPECT_TRUE(help_windows().first()->isVisible());
    EXPECT_TRUE(shown_page().startsWith("Entering encryption keys"));
}

TEST_F(HELP_MODULE, shows_the_overview_for_a_topic_without_a_page)
{
    show_help("nothing of the kind");
    EXPECT_TRUE(shown_page().startsWith("Overview"));
}

TEST_F(HELP_MODULE, has_a_page_of_its_own_for_every_topic)
{
    QStringList pages;
    for (const char* const topic :
         {NIVO_HELP_OVERVIEW, NIVO_HELP_OUTPUT_FILES, NIVO_HELP_OUTPUT_FILE_PROPERTIES, NIVO_HELP_INPUT_FILES,
          NIVO_HELP_INPUT_FILE_PROPERTIES, NIVO_HELP_KEY_ENTRY, NIVO_HELP_CONFIG_DEVICE, NIVO_HELP_PARTITION,
          NIVO_HELP_FLASH_DEVICES, NIVO_HELP_DEVICE_OPTIONS, NIVO_HELP_GENERATE, NIVO_HELP_MESSAGES}) {
        show_help(topic);
        pages << shown_page();
    }
    EXPECT_EQ(pages.removeDuplicates(), 0);
    EXPECT_EQ(pages.size(), help_windows().first()->findChild<QListWidget*>("m_title_list")->count());
}

TEST_F(HELP_MODULE, stays_one_window_whatever_is_asked)
{
    show_help("Input Files");
    show_help("Output Files");
    EXPECT_EQ(help_windows().size(), 1);
    EXPECT_TRUE(shown_page().startsWith("Output files"));
}

TEST_F(HELP_MODULE, has_a_page_behind_every_title)
{
    show_help("Imagewright");
    auto* const titles = help_windows().first()->findChild<QListWidget*>("m_title_list");
    ASSERT_GT(titles->count(), 3);
    for (int row = 0; row < titles->count(); ++row) {
        titles->setCurrentRow(row);
        EXPECT_TRUE(shown_page().startsWith(titles->item(row)->text()));
        EXPECT_GT(shown_page().size(), 150) << row;
    }
}

TEST_F(HELP_MODULE, belongs_to_the_modal_dialog_that_asks)
{
    QDialog dialog;
    dialog.setModal(true);
    dialog.show();
    show_help("Generate");
    ASSERT_EQ(help_windows().size(), 1);
    EXPECT_EQ(help_windows().first()->parentWidget(), &dialog);
}

} // namespace
