#include "frame_fixture.h"
#include "internal_error_trap.h"
#include "modal_answers.h"
#include "mok_message_model.h"
#include "mok_ui_mgr.h"
#include "tst_mode.h"

#include <QApplication>
#include <QClipboard>
#include <QDesktopServices>
#include <QMenuBar>

namespace
{
using MENU_RECORD_TEST = FRAME_FIXTURE;

/// Takes the place of the desktop's file manager.
class URL_NOTE : public QObject
{
    Q_OBJECT
public:
    URL_NOTE() { QDesktopServices::setUrlHandler("file", this, "note"); }
    ~URL_NOTE() override { QDesktopServices::unsetUrlHandler("file"); }
    QList<QUrl> m_urls;
public slots:
    void note(const QUrl& url) { m_urls << url; }
};

TEST_F(MENU_RECORD_TEST, every_entry_has_a_text_or_is_a_separator)
{
    const MOK_FRAME_WND frame(nullptr, MOK_FW_STATE_MAIN);
    int entries = 0;
    for (const MOK_MENU_RECORD::MENU& menu : frame.get_menu_record().get_menus()) {
        for (const QPointer<QAction>& action : menu.entries) {
            if (action == nullptr) {
                continue;
            }
            ++entries;
            EXPECT_NE(action->isSeparator(), !action->text().isEmpty()) << action->text().toStdString();
            EXPECT_TRUE(menu.menu->actions().contains(action)) << action->text().toStdString();
        }
    }
    EXPECT_EQ(entries, 21 + 10 + 7 + 4);
}

TEST_F(MENU_RECORD_TEST, every_position_that_a_tool_touches_holds_an_entry)
{
    const MOK_FRAME_WND frame(nullptr, MOK_FW_STATE_MAIN);
    for (const int position : {6, 7, 9, 10, 11, 12, 13, 14, 15, 16, 17, 19, 20, 21, 22, 23, 27}) {
        EXPECT_NE(entry(frame, 0, position), nullptr) << position;
    }
    for (const int position : {8, 9, 10, 11, 12, 13, 15}) {
        EXPECT_NE(entry(frame, 2, position), nullptr) << position;
    }
    EXPECT_NE(entry(frame, 7, 8), nullptr);
    EXPECT_NE(entry(frame, 0, 17)->menu(), nullptr);
    EXPECT_NE(entry(frame, 0, 27)->menu(), nullptr);
    EXPECT_EQ(entry(frame, 0, 7)->text(), "&Open...");
    EXPECT_EQ(entry(frame, 0, 13)->text(), "&Save");
    EXPECT_EQ(entry(frame, 0, 14)->text(), "Save &As...");
    EXPECT_EQ(entry(frame, 2, 13)->text(), "&Messages");
}

TEST_F(MENU_RECORD_TEST, positions_without_an_entry_hold_null_and_positions_outside_are_a_fault)
{
    const MOK_FRAME_WND frame(nullptr, MOK_FW_STATE_MAIN);
    const MOK_MENU_RECORD& record = frame.get_menu_record();
    EXPECT_EQ(record.get_entry(0, 0), nullptr);
    EXPECT_EQ(record.get_entry(0, 28), nullptr);
    EXPECT_EQ(record.get_menu(1), nullptr);
    EXPECT_INTERNAL_ERROR(record.get_menu(9), "menu position is in the record");
    EXPECT_INTERNAL_ERROR(record.get_menu(-1), "menu position is in the record");
    EXPECT_INTERNAL_ERROR(record.get_entry(0, -1), "entry position is in the record");
}

TEST_F(MENU_RECORD_TEST, menus_stand_in_the_order_of_their_positions)
{
    const MOK_FRAME_WND frame(nullptr, MOK_FW_STATE_MAIN);
    QStringList titles;
    for (const QAction* const action : frame.menuBar()->actions()) {
        titles << action->text();
    }
    EXPECT_EQ(titles, (QStringList{"&File", "&View", "&Window", "&Help"}));
}

TEST_F(MENU_RECORD_TEST, mnemonics_are_unique_within_a_menu)
{
    const MOK_FRAME_WND frame(nullptr, MOK_FW_STATE_MAIN);
    for (const MOK_MENU_RECORD::MENU& menu : frame.get_menu_record().get_menus()) {
        QString used;
        for (const QPointer<QAction>& action : menu.entries) {
            if (action == nullptr || action->isSeparator()) {
                continue;
            }
            const int mark = action->text().indexOf('&');
            ASSERT_GE(mark, 0) << action->text().toStdString();
            const QChar letter = action->text().at(mark + 1).toLower();
            EXPECT_FALSE(used.contains(letter)) << action->text().toStdString();
            used += letter;
        }
    }
}

TEST_F(MENU_RECORD_TEST, the_object_names_entry_shows_in_regression_mode_only)
{
    tst_set_regtest_mode(false);
    EXPECT_FALSE(entry(MOK_FRAME_WND(nullptr, MOK_FW_STATE_MAIN), 2, 10)->isVisible());
    tst_set_regtest_mode(true);
    MOK_FRAME_WND frame(nullptr, MOK_FW_STATE_MAIN);
    tst_set_regtest_mode(false);
    EXPECT_TRUE(entry(frame, 2, 10)->isVisible());
    frame.setObjectName("frame");
    entry(frame, 2, 10)->trigger();
    const QString text = QApplication::clipboard()->text();
    EXPECT_TRUE(text.startsWith("MOK_FRAME_WND frame\n")) << text.toStdString();
    EXPECT_TRUE(text.contains("\n  QToolBar standard_toolbar\n")) << text.toStdString();
}

TEST_F(MENU_RECORD_TEST, entries_that_need_a_file_are_enabled_only_with_one)
{
    MOK_FRAME_WND frame(nullptr, MOK_FW_STATE_MAIN);
    for (const int position : {9, 10, 11, 19}) {
        EXPECT_FALSE(entry(frame, 0, position)->isEnabled()) << position;
    }
    ASSERT_TRUE(frame.open_file(make_file("a.vek"), 0, 0, 0, true, true));
    for (const int position : {9, 10, 11, 19}) {
        EXPECT_TRUE(entry(frame, 0, position)->isEnabled()) << position;
    }
}

TEST_F(MENU_RECORD_TEST, an_entry_that_the_tool_hid_and_disabled_stays_so)
{
    MOK_FRAME_WND frame(nullptr, MOK_FW_STATE_MAIN);
    entry(frame, 0, 11)->setVisible(false);
    entry(frame, 0, 11)->setEnabled(false);
    ASSERT_TRUE(frame.open_file(make_file("a.vek"), 0, 0, 0, true, true));
    EXPECT_FALSE(entry(frame, 0, 11)->isVisible());
    EXPECT_FALSE(entry(frame, 0, 11)->isEnabled());
}

TEST_F(MENU_RECORD_TEST, opening_a_menu_leaves_open_and_save_disabled_for_a_background_task)
{
    MOK_FRAME_WND frame(nullptr, MOK_FW_STATE_MAIN);
    for (const int position : {7, 13, 14}) {
        entry(frame, 0, position)->setEnabled(false);
    }
    emit frame.get_menu_record().get_menu(0)->aboutToShow();
    for (const int position : {7, 13, 14}) {
        EXPECT_FALSE(entry(frame, 0, position)->isEnabled()) << position;
    }
}

TEST_F(MENU_RECORD_TEST, file_entries_work_on_the_file_in_the_window)
{
    URL_NOTE urls;
    NOTING_FRAME frame;
    const QString path = make_file("a.vek", "12345");
    ASSERT_TRUE(frame.open_file(path, 0, 0, 0, true, true));
    entry(frame, 0, MOK_FILE_OPEN_CONTAINING_FOLDER)->trigger();
    EXPECT_EQ(urls.m_urls, QList<QUrl>{QUrl::fromLocalFile(m_directory.path())});
    entry(frame, 0, MOK_FILE_COPY_PATH)->trigger();
    EXPECT_EQ(QApplication::clipboard()->text(), path);
    entry(frame, 0, MOK_FILE_RELOAD)->trigger();
    EXPECT_EQ(frame.m_opened, (QStringList{path, path}));
    entry(frame, 0, MOK_FILE_SAVE)->trigger();
    EXPECT_EQ(frame.m_saved, QStringList{path});
    entry(frame, 0, MOK_FILE_SAVE_ALL)->trigger();
    EXPECT_EQ(frame.m_saved, (QStringList{path, path}));

    MODAL_ANSWERS answers;
    answers.click(QMessageBox::Ok);
    entry(frame, 0, MOK_FILE_PROPERTIES)->trigger();
    ASSERT_EQ(answers.boxes().size(), 1);
    EXPECT_TRUE(answers.boxes()[0].text.startsWith(path + "\n\nSize: 5 bytes\n"));
}

TEST_F(MENU_RECORD_TEST, properties_of_a_file_that_has_gone_say_so)
{
    MOK_FRAME_WND frame(nullptr, MOK_FW_STATE_MAIN);
    const QString path = make_file("a.vek");
    ASSERT_TRUE(frame.open_file(path, 0, 0, 0, true, true));
    ASSERT_TRUE(QFile::remove(path));
    MODAL_ANSWERS answers;
    answers.click(QMessageBox::Ok);
    entry(frame, 0, MOK_FILE_PROPERTIES)->trigger();
    ASSERT_EQ(answers.boxes().size(), 1);
    EXPECT_EQ(answers.boxes()[0].text, "File " + path + " is no longer there.");
}

TEST_F(MENU_RECORD_TEST, working_directory_entries_follow_the_ui_manager)
{
    URL_NOTE urls;
    MOK_FRAME_WND frame(nullptr, MOK_FW_STATE_MAIN);
    m_app->get_ui_mgr()->set_working_directory("/usr");
    entry(frame, 0, MOK_FILE_OPEN_WORKING_DIRECTORY)->trigger();
    EXPECT_EQ(urls.m_urls, QList<QUrl>{QUrl::fromLocalFile("/usr")});
    entry(frame, 0, MOK_FILE_COPY_WORKING_DIRECTORY)->trigger();
    EXPECT_EQ(QApplication::clipboard()->text(), "/usr");
    NIVO_NATIVE_FILE_DLG::answer_next({m_directory.path()});
    entry(frame, 0, MOK_FILE_CHOOSE_WORKING_DIRECTORY)->trigger();
    EXPECT_EQ(NIVO_NATIVE_FILE_DLG::last_question().directory, "/usr");
    EXPECT_EQ(NIVO_NATIVE_FILE_DLG::last_question().title, "Choose Working Directory");
    EXPECT_EQ(m_app->get_ui_mgr()->get_working_directory(), m_directory.path().toStdString());
    NIVO_NATIVE_FILE_DLG::reject_next();
    entry(frame, 0, MOK_FILE_CHOOSE_WORKING_DIRECTORY)->trigger();
    EXPECT_EQ(m_app->get_ui_mgr()->get_working_directory(), m_directory.path().toStdString());
}

TEST_F(MENU_RECORD_TEST, export_writes_a_picture_and_the_messages)
{
    MOK_FRAME_WND frame(nullptr, MOK_FW_STATE_MAIN);
    post_message(MSG_SEVERITY::ERROR, 19478, "Can't save or open file a.vek");
    QCoreApplication::processEvents();
    QMenu* const menu = entry(frame, 0, MOK_FILE_EXPORT)->menu();
    emit menu->aboutToShow();
    ASSERT_EQ(menu->actions().size(), 2);

    const QString picture = m_directory.filePath("window.png");
    NIVO_NATIVE_FILE_DLG::answer_next({picture});
    menu->actions()[0]->trigger();
    EXPECT_EQ(QImage(picture).size(), frame.size());

    const QString text = m_directory.filePath("messages.txt");
    NIVO_NATIVE_FILE_DLG::answer_next({text});
    menu->actions()[1]->trigger();
    QFile file(text);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_TRUE(file.readAll().endsWith("\tError\t19478\tCan't save or open file a.vek\n"));
}

TEST_F(MENU_RECORD_TEST, an_export_that_cannot_be_written_is_told)
{
    MOK_FRAME_WND frame(nullptr, MOK_FW_STATE_MAIN);
    QMenu* const menu = entry(frame, 0, MOK_FILE_EXPORT)->menu();
    emit menu->aboutToShow();
    const QString path = m_directory.filePath("missing/messages.txt");
    NIVO_NATIVE_FILE_DLG::answer_next({path});
    MODAL_ANSWERS answers;
    answers.click(QMessageBox::Ok);
    menu->actions()[1]->trigger();
    ASSERT_EQ(answers.boxes().size(), 1);
    EXPECT_EQ(answers.boxes()[0].icon, QMessageBox::Critical);
    EXPECT_TRUE(answers.boxes()[0].text.startsWith("Can't write file " + path + ". "));
}

TEST_F(MENU_RECORD_TEST, help_lists_the_shortcuts_and_tells_the_version)
{
    QCoreApplication::setApplicationVersion("9.8.7");
    MOK_FRAME_WND frame(nullptr, MOK_FW_STATE_MAIN);
    entry(frame, 0, MOK_FILE_RELOAD)->setVisible(false);
    MODAL_ANSWERS answers;
    answers.click(QMessageBox::Ok);
    entry(frame, MOK_MENU_HELP, MOK_HELP_SHORTCUTS)->trigger();
    answers.click(QMessageBox::Ok);
    entry(frame, MOK_MENU_HELP, MOK_HELP_ABOUT)->trigger();
    ASSERT_EQ(answers.boxes().size(), 2);
    EXPECT_TRUE(answers.boxes()[0].text.contains("<td>Save As&nbsp;&nbsp;</td><td><b>Ctrl+Shift+S</b></td>"));
    EXPECT_FALSE(answers.boxes()[0].text.contains("Reload"));
    EXPECT_TRUE(answers.boxes()[1].text.contains("Imagewright 9.8.7"));
}

TEST_F(MENU_RECORD_TEST, full_screen_is_switched_on_and_off)
{
    MOK_FRAME_WND frame(nullptr, MOK_FW_STATE_MAIN);
    frame.show();
    entry(frame, MOK_MENU_VIEW, MOK_VIEW_FULL_SCREEN)->trigger();
    EXPECT_TRUE(frame.isFullScreen());
    entry(frame, MOK_MENU_VIEW, MOK_VIEW_FULL_SCREEN)->trigger();
    EXPECT_FALSE(frame.isFullScreen());
}

TEST_F(MENU_RECORD_TEST, exit_closes_the_windows)
{
    MOK_FRAME_WND frame(nullptr, MOK_FW_STATE_MAIN);
    frame.show();
    entry(frame, MOK_MENU_FILE, MOK_FILE_EXIT)->trigger();
    EXPECT_FALSE(frame.isVisible());
}
} // namespace

#include "menu_record_test.moc"
