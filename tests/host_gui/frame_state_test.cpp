#include "frame_fixture.h"
#include "internal_error_trap.h"
#include "nivo_style.h"

#include <QApplication>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QStatusBar>
#include <QTest>
#include <QToolBar>

namespace
{
using FRAME_STATE_TEST = FRAME_FIXTURE;

MOK_FRAME_INFO host_info(bool has_mdi_area, bool is_mok_window = true)
{
    MOK_FRAME_INFO info;
    info.clsid = NIVO_CLSID_HOST_MAIN;
    info.application_name = "Host";
    info.has_mdi_area = has_mdi_area;
    info.is_mok_window = is_mok_window;
    return info;
}

TEST_F(FRAME_STATE_TEST, without_information_the_frame_is_a_window_for_setups)
{
    const MOK_FRAME_WND frame(nullptr, MOK_FW_STATE_MAIN);
    EXPECT_EQ(frame.get_clsid(), NIVO_CLSID_VEK_DEFAULT_DOC);
    EXPECT_EQ(frame.windowTitle(), "Imagewright[*]");
}

TEST_F(FRAME_STATE_TEST, the_application_has_the_style_of_the_host)
{
    EXPECT_NE(dynamic_cast<NIVO_STYLE*>(QApplication::style()), nullptr);
}

TEST_F(FRAME_STATE_TEST, a_tool_by_itself_is_a_main_window_without_a_host)
{
    const MOK_FRAME_WND frame(nullptr, MOK_FW_STATE_MAIN);
    EXPECT_TRUE(frame.is_main_window());
    EXPECT_FALSE(frame.main_wnd_has_mdi_area());
    EXPECT_FALSE(frame.is_mok_window());
    EXPECT_EQ(mok_get_main_frame_wnd(), nullptr);
}

TEST_F(FRAME_STATE_TEST, an_attached_tool_finds_the_main_frame_of_its_host)
{
    EXPECT_EQ(mok_get_main_frame_wnd(), nullptr);
    const MOK_FRAME_INFO info = host_info(true);
    MOK_FRAME_WND host(&info, MOK_FW_STATE_MAIN);
    MOK_FRAME_WND tool(nullptr, MOK_FW_STATE_ATTACHED);
    EXPECT_EQ(mok_get_main_frame_wnd(), &host);
    EXPECT_TRUE(host.is_main_window());
    EXPECT_TRUE(host.is_mok_window());
    EXPECT_FALSE(tool.is_main_window());
    EXPECT_TRUE(tool.main_wnd_has_mdi_area());
}

TEST_F(FRAME_STATE_TEST, a_host_may_have_no_mdi_area_and_be_no_mok_window)
{
    const MOK_FRAME_INFO info = host_info(false, false);
    const MOK_FRAME_WND host(&info, MOK_FW_STATE_MAIN);
    const MOK_FRAME_WND tool(nullptr, MOK_FW_STATE_ATTACHED);
    EXPECT_FALSE(host.is_mok_window());
    EXPECT_FALSE(tool.main_wnd_has_mdi_area());
    EXPECT_EQ(host.get_mdi_area(), nullptr);
}

TEST_F(FRAME_STATE_TEST, frames_are_found_by_class_id_while_they_live)
{
    EXPECT_EQ(mok_get_main_frame_wnd_with_clsid(NIVO_CLSID_VEK_DEFAULT_DOC), nullptr);
    {
        const MOK_FRAME_WND first(nullptr, MOK_FW_STATE_MAIN);
        EXPECT_EQ(mok_get_main_frame_wnd_with_clsid(NIVO_CLSID_VEK_DEFAULT_DOC), &first);
        const MOK_FRAME_WND second(nullptr, MOK_FW_STATE_MAIN);
        EXPECT_EQ(mok_get_main_frame_wnd_with_clsid(NIVO_CLSID_VEK_DEFAULT_DOC), &second);
        EXPECT_EQ(mok_get_main_frame_wnd_with_clsid(NIVO_CLSID_HOST_MAIN), nullptr);
    }
    EXPECT_EQ(mok_get_main_frame_wnd_with_clsid(NIVO_CLSID_VEK_DEFAULT_DOC), nullptr);
}

TEST_F(FRAME_STATE_TEST, the_active_frame_of_a_class_goes_before_a_later_one)
{
    MOK_FRAME_WND first(nullptr, MOK_FW_STATE_MAIN);
    MOK_FRAME_WND second(nullptr, MOK_FW_STATE_MAIN);
    second.show();
    first.show();
    first.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&first));
    EXPECT_EQ(mok_get_main_frame_wnd_with_clsid(NIVO_CLSID_VEK_DEFAULT_DOC), &first);
}

TEST_F(FRAME_STATE_TEST, a_main_window_has_five_toolbars_from_the_start)
{
    const MOK_FRAME_WND frame(nullptr, MOK_FW_STATE_MAIN);
    EXPECT_EQ(QStringList(frame.get_toolbar_categories().keys()),
              (QStringList{"Applications", "File", "Processing", "Standard", "Utility Windows"}));
    for (const QString& category : frame.get_toolbar_categories().keys()) {
        ASSERT_NE(frame.get_toolbar(category), nullptr) << category.toStdString();
        EXPECT_EQ(frame.get_toolbar(category)->actions(), frame.get_toolbar_category(category));
        EXPECT_FALSE(frame.get_toolbar_category(category).isEmpty());
    }
    EXPECT_TRUE(frame.get_toolbar_category("Unheard of").isEmpty());
    EXPECT_EQ(frame.get_toolbar("Unheard of"), nullptr);
}

TEST_F(FRAME_STATE_TEST, a_toolbar_has_exactly_the_actions_that_it_was_given_last)
{
    MOK_FRAME_WND frame(nullptr, MOK_FW_STATE_MAIN);
    const QPointer<QToolBar> toolbar = frame.get_toolbar("File");
    const QList<QAction*> one{entry(frame, MOK_MENU_FILE, MOK_FILE_SAVE)};
    frame.update_toolbar("File", one);
    EXPECT_EQ(frame.get_toolbar("File"), toolbar);
    EXPECT_EQ(toolbar->actions(), one);
}

TEST_F(FRAME_STATE_TEST, a_new_window_is_not_larger_than_its_screen)
{
    MOK_FRAME_WND frame(nullptr, MOK_FW_STATE_MAIN);
    const QSize room = frame.screen()->availableSize();
    frame.resize(room * 2);
    frame.show();
    EXPECT_LE(frame.width(), room.width());
    EXPECT_LE(frame.height(), room.height());
}

TEST_F(FRAME_STATE_TEST, a_toolbar_can_be_emptied_of_separators_and_deleted)
{
    MOK_FRAME_WND frame(nullptr, MOK_FW_STATE_MAIN);
    frame.update_toolbar("File", frame.get_toolbar_category("File"));
    QToolBar* const file_toolbar = frame.get_toolbar("File");
    for (QAction* const action : file_toolbar->actions()) {
        if (action->isSeparator()) {
            file_toolbar->removeAction(action);
        }
    }
    EXPECT_EQ(file_toolbar->actions().size(), 3);
    file_toolbar->hide();

    QToolBar* const standard_toolbar = frame.get_toolbar("Standard");
    EXPECT_EQ(frame.get_standard_toolbar_list(), QList<QToolBar*>{standard_toolbar});
    frame.removeToolBar(standard_toolbar);
    delete standard_toolbar;
    frame.get_standard_toolbar_list().clear();
    EXPECT_EQ(frame.get_toolbar("Standard"), nullptr);

    frame.show();
    EXPECT_EQ(frame.get_toolbar("Standard"), nullptr);
    EXPECT_TRUE(frame.get_toolbar("File")->isHidden());
    // The entry that shows the toolbar has nothing left to show.
    emit frame.get_menu_record().get_menu(MOK_MENU_VIEW)->aboutToShow();
    EXPECT_FALSE(entry(frame, MOK_MENU_VIEW, MOK_VIEW_STANDARD_TOOLBAR)->isEnabled());
    EXPECT_TRUE(entry(frame, MOK_MENU_VIEW, MOK_VIEW_FILE_TOOLBAR)->isEnabled());
    EXPECT_FALSE(entry(frame, MOK_MENU_VIEW, MOK_VIEW_FILE_TOOLBAR)->isChecked());
    EXPECT_TRUE(entry(frame, MOK_MENU_VIEW, MOK_VIEW_UTILITY_TOOLBAR)->isChecked());
    entry(frame, MOK_MENU_VIEW, MOK_VIEW_FILE_TOOLBAR)->trigger();
    EXPECT_FALSE(frame.get_toolbar("File")->isHidden());
}

TEST_F(FRAME_STATE_TEST, an_attached_window_gets_the_toolbars_that_its_override_names)
{
    class EMPTY_CATEGORIES : public MOK_FRAME_WND
    {
    public:
        EMPTY_CATEGORIES() : MOK_FRAME_WND(nullptr, MOK_FW_STATE_ATTACHED) {}
        QMap<QString, QList<QAction*>> get_toolbar_categories() const override { return {}; }
    };
    MOK_FRAME_WND plain(nullptr, MOK_FW_STATE_ATTACHED);
    EXPECT_EQ(plain.get_toolbar("Attached/Detached"), nullptr);
    plain.show();
    ASSERT_NE(plain.get_toolbar("Attached/Detached"), nullptr);
    EXPECT_EQ(plain.get_toolbar("Attached/Detached")->actions(),
              QList<QAction*>{entry(plain, MOK_MENU_WINDOW, MOK_WINDOW_DETACH)});
    EXPECT_EQ(plain.get_toolbar("File"), nullptr);

    EMPTY_CATEGORIES empty;
    empty.show();
    EXPECT_TRUE(empty.findChildren<QToolBar*>().isEmpty());
}

TEST_F(FRAME_STATE_TEST, the_status_display_shows_unless_it_is_switched_off)
{
    MOK_FRAME_WND with(nullptr, MOK_FW_STATE_MAIN);
    with.show();
    EXPECT_TRUE(with.statusBar()->isVisible());
    with.status_display_set_visible(false);
    EXPECT_FALSE(with.statusBar()->isVisible());

    MOK_FRAME_WND without(nullptr, MOK_FW_STATE_MAIN);
    without.status_display_set_visible(false);
    without.show();
    EXPECT_EQ(without.findChild<QStatusBar*>(), nullptr);
    without.status_display_set_visible(true);
    EXPECT_TRUE(without.statusBar()->isVisible());
}

TEST_F(FRAME_STATE_TEST, a_tool_moves_into_the_mdi_area_and_out_of_it)
{
    const MOK_FRAME_INFO info = host_info(true);
    MOK_FRAME_WND host(&info, MOK_FW_STATE_MAIN);
    host.show();
    auto* const tool = new MOK_FRAME_WND(nullptr, MOK_FW_STATE_ATTACHED);
    host.add_window(tool);
    tool->show();
    QAction* const detach = entry(*tool, MOK_MENU_WINDOW, MOK_WINDOW_DETACH);
    EXPECT_FALSE(detach->isEnabled()) << "it is the tool that enables the entry";
    detach->setEnabled(true);
    ASSERT_EQ(host.get_mdi_area()->subWindowList().size(), 1);
    EXPECT_EQ(detach->text(), "&Detach Window");

    detach->trigger();
    EXPECT_EQ(tool->get_state(), MOK_FW_STATE_DETACHED);
    EXPECT_TRUE(host.get_mdi_area()->subWindowList().isEmpty());
    EXPECT_TRUE(tool->isWindow());
    EXPECT_TRUE(tool->isVisible());
    EXPECT_EQ(detach->text(), "&Attach Window");
    EXPECT_TRUE(detach->isEnabled());

    detach->trigger();
    EXPECT_EQ(tool->get_state(), MOK_FW_STATE_ATTACHED);
    ASSERT_EQ(host.get_mdi_area()->subWindowList().size(), 1);
    EXPECT_EQ(host.get_mdi_area()->subWindowList()[0]->widget(), tool);
    EXPECT_TRUE(tool->isVisible());
    EXPECT_FALSE(tool->is_main_window());
}

TEST_F(FRAME_STATE_TEST, without_an_mdi_area_a_tool_floats)
{
    const MOK_FRAME_INFO info = host_info(false);
    MOK_FRAME_WND host(&info, MOK_FW_STATE_MAIN);
    auto* const tool = new MOK_FRAME_WND(nullptr, MOK_FW_STATE_ATTACHED);
    host.add_window(tool);
    tool->show();
    EXPECT_EQ(tool->get_state(), MOK_FW_STATE_DETACHED);
    EXPECT_TRUE(tool->isWindow());
    tool->set_attached(true);
    EXPECT_EQ(tool->get_state(), MOK_FW_STATE_DETACHED);
    EXPECT_TRUE(tool->isVisible());
}

TEST_F(FRAME_STATE_TEST, a_main_window_is_no_tool_of_a_host)
{
    const MOK_FRAME_INFO info = host_info(true);
    MOK_FRAME_WND host(&info, MOK_FW_STATE_MAIN);
    MOK_FRAME_WND other(nullptr, MOK_FW_STATE_MAIN);
    EXPECT_INTERNAL_ERROR(host.add_window(&other), "the window is no main window");
    EXPECT_INTERNAL_ERROR(host.add_window(nullptr), "frame != nullptr");
}

TEST_F(FRAME_STATE_TEST, window_entries_go_round_and_arrange_the_tools)
{
    const MOK_FRAME_INFO info = host_info(true);
    MOK_FRAME_WND host(&info, MOK_FW_STATE_MAIN);
    host.resize(900, 600);
    host.show();
    auto* const first = new MOK_FRAME_WND(nullptr, MOK_FW_STATE_ATTACHED);
    auto* const second = new MOK_FRAME_WND(nullptr, MOK_FW_STATE_ATTACHED);
    for (MOK_FRAME_WND* const tool : {first, second}) {
        host.add_window(tool);
        tool->show();
    }
    entry(*first, MOK_MENU_WINDOW, MOK_WINDOW_TILE)->trigger();
    EXPECT_NE(first->parentWidget()->pos(), second->parentWidget()->pos());
    EXPECT_FALSE(first->parentWidget()->geometry().intersects(second->parentWidget()->geometry()));
    entry(*first, MOK_MENU_WINDOW, MOK_WINDOW_CASCADE)->trigger();
    EXPECT_TRUE(first->parentWidget()->geometry().intersects(second->parentWidget()->geometry()));

    entry(*second, MOK_MENU_WINDOW, MOK_WINDOW_PREVIOUS)->trigger();
    EXPECT_EQ(host.get_mdi_area()->activeSubWindow(), first->parentWidget());
    entry(*first, MOK_MENU_WINDOW, MOK_WINDOW_NEXT)->trigger();
    EXPECT_EQ(host.get_mdi_area()->activeSubWindow(), second->parentWidget());

    QMenu* const windows = entry(*first, MOK_MENU_FILE, MOK_FILE_WINDOWS)->menu();
    emit windows->aboutToShow();
    ASSERT_EQ(windows->actions().size(), 3);
    windows->actions()[1]->trigger();
    EXPECT_EQ(host.get_mdi_area()->activeSubWindow(), first->parentWidget());

    entry(host, MOK_MENU_FILE, MOK_FILE_CLOSE_ALL)->trigger();
    EXPECT_FALSE(first->isVisible());
    EXPECT_FALSE(second->isVisible());
    EXPECT_TRUE(host.isVisible());
}

TEST_F(FRAME_STATE_TEST, cascade_and_tile_need_an_mdi_area)
{
    MOK_FRAME_WND frame(nullptr, MOK_FW_STATE_MAIN);
    emit frame.get_menu_record().get_menu(MOK_MENU_WINDOW)->aboutToShow();
    EXPECT_FALSE(entry(frame, MOK_MENU_WINDOW, MOK_WINDOW_CASCADE)->isEnabled());
    EXPECT_FALSE(entry(frame, MOK_MENU_WINDOW, MOK_WINDOW_TILE)->isEnabled());
}
} // namespace
