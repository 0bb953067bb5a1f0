#include "mok_message_pane.h"
#include "tst_mode.h"
#include "vek_frame_fixture.h"

#include <QMenuBar>
#include <QToolBar>

namespace
{

/// The main frame of a host to which the window attaches.
std::unique_ptr<MOK_FRAME_WND> make_host(bool has_mdi_area, bool is_mok_window)
{
    MOK_FRAME_INFO info;
    info.clsid = NIVO_CLSID_HOST_MAIN;
    info.has_mdi_area = has_mdi_area;
    info.is_mok_window = is_mok_window;
    return std::make_unique<MOK_FRAME_WND>(&info, MOK_FW_STATE_MAIN);
}

class VEK_FRAME_MENU : public VEK_FRAME_FIXTURE
{
protected:
    static QAction* entry(const VEK_FRAME_WND& frame, int menu, int position)
    {
        return frame.get_menu_record().get_entry(menu, position);
    }
    static bool is_offered(const QAction* action) { return action->isVisible() && action->isEnabled(); }
    static bool is_gone(const QAction* action) { return !action->isVisible() && !action->isEnabled(); }
    static std::vector<int> shown_menus(const VEK_FRAME_WND& frame)
    {
        std::vector<int> shown;
        for (int position = 0; position < MOK_MENU_COUNT; ++position) {
            const QMenu* const menu = frame.get_menu_record().get_menu(position);
            if (menu != nullptr && menu->menuAction()->isVisible()) {
                shown.push_back(position);
            }
        }
        return shown;
    }
};

} // namespace

TEST_F(VEK_FRAME_MENU, a_window_by_itself_shows_file_view_and_help)
{
    const auto frame = make_frame();
    EXPECT_EQ(shown_menus(*frame), (std::vector<int>{0, 2, 8}));
}

TEST_F(VEK_FRAME_MENU, the_file_menu_of_a_window_by_itself_keeps_what_the_tool_needs)
{
    const auto frame = make_frame();
    for (const int position : {7, 13, 14}) {
        EXPECT_TRUE(is_offered(entry(*frame, 0, position))) << position;
    }
    for (const int position : {6, 9, 10, 11, 12, 15, 16, 17, 19, 20, 21, 22, 23}) {
        EXPECT_TRUE(is_gone(entry(*frame, 0, position))) << position;
    }
    EXPECT_FALSE(frame->get_menu_record().get_menu(0)->actions().contains(entry(*frame, 0, 27)));
}

TEST_F(VEK_FRAME_MENU, the_view_menu_of_a_window_by_itself_shows_the_message_pane)
{
    const auto frame = make_frame();
    for (const int position : {8, 9, 11, 12, 15}) {
        EXPECT_FALSE(entry(*frame, 2, position)->isVisible()) << position;
    }
    EXPECT_FALSE(entry(*frame, 2, 10)->isVisible());
    EXPECT_TRUE(entry(*frame, 2, 13)->isChecked());
    EXPECT_FALSE(frame->get_message_pane()->isHidden());
}

TEST_F(VEK_FRAME_MENU, the_regression_mode_shows_one_entry_more)
{
    tst_set_regtest_mode(true);
    const auto frame = make_frame();
    EXPECT_TRUE(entry(*frame, 2, 10)->isVisible());
}

TEST_F(VEK_FRAME_MENU, a_window_by_itself_hides_or_loses_its_toolbars)
{
    const auto frame = make_frame();
    frame->show();
    for (const char* const category : {"File", "Utility Windows"}) {
        const QToolBar* const toolbar = frame->get_toolbar(QLatin1String(category));
        ASSERT_NE(toolbar, nullptr) << category;
        EXPECT_TRUE(toolbar->isHidden()) << category;
        EXPECT_FALSE(toolbar->actions().isEmpty()) << category;
        for (const QAction* const action : toolbar->actions()) {
            EXPECT_FALSE(action->isSeparator()) << category;
        }
    }
    for (const char* const category : {"Standard", "Applications", "Processing"}) {
        EXPECT_EQ(frame->get_toolbar(QLatin1String(category)), nullptr) << category;
    }
    EXPECT_TRUE(frame->get_standard_toolbar_list().isEmpty());
    EXPECT_EQ(frame->findChildren<QToolBar*>().size(), 2);
    const auto* const status_bar = frame->findChild<QStatusBar*>();
    EXPECT_TRUE(status_bar == nullptr || status_bar->isHidden());
    EXPECT_EQ(frame->get_toolbar_categories(), frame->MOK_FRAME_WND::get_toolbar_categories());
}

TEST_F(VEK_FRAME_MENU, an_attached_window_shows_file_and_window_and_keeps_the_toolbars_of_its_host)
{
    const auto host = make_host(true, true);
    host->show();
    const QList<QToolBar*> host_toolbars = host->findChildren<QToolBar*>();
    auto frame = make_frame(MOK_FW_STATE_ATTACHED);
    EXPECT_EQ(shown_menus(*frame), (std::vector<int>{0, 7}));
    EXPECT_TRUE(entry(*frame, 7, 8)->isEnabled());
    EXPECT_EQ(host->findChildren<QToolBar*>(), host_toolbars);
    for (const QToolBar* const toolbar : host_toolbars) {
        EXPECT_TRUE(toolbar->isVisible());
    }
    host->add_window(frame.get());
    frame->show();
    const auto* const status_bar = frame->findChild<QStatusBar*>();
    EXPECT_TRUE(status_bar == nullptr || status_bar->isHidden());
}

TEST_F(VEK_FRAME_MENU, the_file_menu_of_an_attached_window_closes_it_and_has_a_separator_before_save)
{
    const auto host = make_host(true, true);
    const auto frame = make_frame(MOK_FW_STATE_ATTACHED);
    for (const int position : {6, 7, 13, 14}) {
        EXPECT_TRUE(is_offered(entry(*frame, 0, position))) << position;
    }
    for (const int position : {20, 21, 22, 23}) {
        EXPECT_TRUE(is_gone(entry(*frame, 0, position))) << position;
    }
    EXPECT_TRUE(entry(*frame, 0, 15)->isVisible());
    const QMenu* const menu = frame->get_menu_record().get_menu(0);
    EXPECT_TRUE(menu->actions().contains(entry(*frame, 0, 27)));
    const int save = menu->actions().indexOf(entry(*frame, 0, 13));
    EXPECT_TRUE(menu->actions().at(save - 1)->isSeparator());
}

TEST_F(VEK_FRAME_MENU, a_host_that_is_no_mok_window_leaves_the_window_menu_hidden)
{
    const auto host = make_host(true, false);
    const auto frame = make_frame(MOK_FW_STATE_ATTACHED);
    EXPECT_EQ(shown_menus(*frame), (std::vector<int>{0}));
    EXPECT_FALSE(entry(*frame, 7, 8)->isEnabled());
}

TEST_F(VEK_FRAME_MENU, the_toolbar_categories_of_an_attached_window_follow_the_mdi_area_of_the_host)
{
    {
        const auto host = make_host(true, true);
        const auto frame = make_frame(MOK_FW_STATE_ATTACHED);
        const QMap<QString, QList<QAction*>> categories = frame->get_toolbar_categories();
        ASSERT_EQ(categories.keys(), QStringList{"Attached/Detached"});
        EXPECT_EQ(categories.first(), frame->get_toolbar_category(QStringLiteral("Attached/Detached")));
    }
    const auto host = make_host(false, true);
    const auto frame = make_frame(MOK_FW_STATE_DETACHED);
    EXPECT_TRUE(frame->get_toolbar_categories().isEmpty());
}

TEST_F(VEK_FRAME_MENU, the_file_actions_are_disabled_and_enabled_together)
{
    const auto frame = make_frame();
    frame->set_file_actions_enabled(false);
    for (const int position : {7, 13, 14}) {
        EXPECT_FALSE(entry(*frame, 0, position)->isEnabled()) << position;
    }
    EXPECT_TRUE(entry(*frame, 0, 26)->isEnabled());
    frame->set_file_actions_enabled(true);
    for (const int position : {7, 13, 14}) {
        EXPECT_TRUE(entry(*frame, 0, position)->isEnabled()) << position;
    }
}
