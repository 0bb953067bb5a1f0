#include "fio_path.h"
#include "frame_fixture.h"
#include "mok_recent_files.h"

#include <QAction>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QMenu>
#include <QMimeData>
#include <QSignalSpy>
#include <QTest>
#include <QUrl>

#include <functional>
#include <unistd.h>

namespace
{
class FILE_BOOKS_TEST : public FRAME_FIXTURE
{
protected:
    /// Whether the window takes a drop of these files; the drop is delivered when it does, and `meanwhile`
    /// happens before the window comes to it.
    bool drop(QWidget& window, const QStringList& paths, const std::function<void()>& meanwhile = {})
    {
        QMimeData data;
        QList<QUrl> urls;
        for (const QString& path : paths) {
            urls << QUrl::fromLocalFile(path);
        }
        data.setUrls(urls);
        QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        enter.setAccepted(false);
        QCoreApplication::sendEvent(&window, &enter);
        if (enter.isAccepted()) {
            QDropEvent event(QPointF(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
            QCoreApplication::sendEvent(&window, &event);
            if (meanwhile) {
                meanwhile();
            }
            QCoreApplication::processEvents();
        }
        return enter.isAccepted();
    }
};

TEST_F(FILE_BOOKS_TEST, the_long_form_ends_in_the_virtual_short_form)
{
    NOTING_FRAME frame;
    const QString path = make_file("board.vek");
    const QSignalSpy changes(&frame, SIGNAL(current_file_changed(QString)));
    EXPECT_TRUE(frame.open_file(path, 0, 0, 0, true, true));
    EXPECT_EQ(frame.m_opened, QStringList{path});
    EXPECT_EQ(frame.get_current_file(), path);
    EXPECT_EQ(frame.windowTitle(), "board.vek[*] - Imagewright");
    EXPECT_EQ(MOK_RECENT_FILES::get(), QStringList{path});
    EXPECT_EQ(changes.size(), 1);
}

TEST_F(FILE_BOOKS_TEST, a_file_that_is_not_to_be_remembered_is_not_listed)
{
    NOTING_FRAME frame;
    EXPECT_TRUE(frame.open_file(make_file("a.vek"), 0, 0, 0, true, false));
    EXPECT_TRUE(MOK_RECENT_FILES::get().isEmpty());
    EXPECT_TRUE(frame.save_file(make_file("b.vek")));
    EXPECT_EQ(MOK_RECENT_FILES::get().size(), 1) << "only the one opening was asked not to be remembered";
}

TEST_F(FILE_BOOKS_TEST, a_forgotten_file_is_open_no_longer)
{
    NOTING_FRAME frame;
    const QString path = make_file("a.vek");
    ASSERT_TRUE(frame.open_file(path, 0, 0, 0, true, true));
    frame.set_modified(true);
    const QSignalSpy changes(&frame, SIGNAL(current_file_changed(QString)));
    frame.forget_file();
    frame.forget_file();
    ASSERT_EQ(changes.count(), 1);
    EXPECT_EQ(changes.at(0).at(0).toString(), "");
    EXPECT_EQ(frame.get_current_file(), "");
    EXPECT_EQ(frame.windowTitle(), "Imagewright[*]");
    EXPECT_FALSE(frame.isWindowModified());
    EXPECT_FALSE(entry(frame, MOK_MENU_FILE, MOK_FILE_COPY_PATH)->isEnabled());
    EXPECT_FALSE(MOK_FRAME_WND::find_open_file(path, false));
    EXPECT_FALSE(frame.reload_file());
    EXPECT_EQ(MOK_RECENT_FILES::get(), QStringList{path});
}

TEST_F(FILE_BOOKS_TEST, a_file_that_forgets_itself_while_it_is_reloaded_comes_back)
{
    class FORGETFUL : public MOK_FRAME_WND
    {
    public:
        FORGETFUL() : MOK_FRAME_WND(nullptr, MOK_FW_STATE_MAIN) {}
        using MOK_FRAME_WND::open_file;
        bool open_file(const QString& path) override
        {
            forget_file();
            return MOK_FRAME_WND::open_file(path);
        }
    } frame;
    const QString path = make_file("a.vek");
    ASSERT_TRUE(frame.open_file(path, 0, 0, 0, true, true));
    ASSERT_TRUE(frame.reload_file());
    EXPECT_EQ(frame.get_current_file(), path);
}

TEST_F(FILE_BOOKS_TEST, a_file_that_does_not_load_changes_nothing)
{
    NOTING_FRAME frame;
    frame.m_can_load = false;
    EXPECT_FALSE(frame.open_file(make_file("a.vek"), 0, 0, 0, true, true));
    EXPECT_EQ(frame.get_current_file(), "");
    EXPECT_EQ(frame.windowTitle(), "Imagewright[*]");
    EXPECT_TRUE(MOK_RECENT_FILES::get().isEmpty());
}

TEST_F(FILE_BOOKS_TEST, the_modified_mark_goes_when_the_file_is_saved)
{
    NOTING_FRAME frame;
    const QString path = make_file("a.vek");
    ASSERT_TRUE(frame.open_file(path, 0, 0, 0, true, true));
    frame.set_modified(true);
    EXPECT_TRUE(frame.isWindowModified());
    EXPECT_TRUE(frame.save_file(path));
    EXPECT_FALSE(frame.isWindowModified());
}

TEST_F(FILE_BOOKS_TEST, a_name_with_the_mark_in_it_is_shown_as_it_is)
{
    NOTING_FRAME frame;
    ASSERT_TRUE(frame.open_file(make_file("a[*].vek"), 0, 0, 0, true, true));
    EXPECT_EQ(frame.windowTitle(), "a[*][*].vek[*] - Imagewright");
}

TEST_F(FILE_BOOKS_TEST, an_open_file_is_found_by_what_it_is_and_not_by_its_path)
{
    NOTING_FRAME frame;
    const QString path = make_file("a.vek");
    const QString other = make_file("b.vek");
    EXPECT_FALSE(MOK_FRAME_WND::find_open_file(path, true));
    ASSERT_TRUE(frame.open_file(path, 0, 0, 0, true, true));
    const QString link = m_directory.filePath("link.vek");
    ASSERT_EQ(symlink(path.toLocal8Bit().constData(), link.toLocal8Bit().constData()), 0);
    EXPECT_TRUE(MOK_FRAME_WND::find_open_file(path, false));
    EXPECT_TRUE(MOK_FRAME_WND::find_open_file(link, true));
    EXPECT_TRUE(MOK_FRAME_WND::find_open_file(m_directory.path() + "/./a.vek", true));
    EXPECT_FALSE(MOK_FRAME_WND::find_open_file(other, true));
    EXPECT_FALSE(MOK_FRAME_WND::find_open_file(m_directory.filePath("missing.vek"), true));
}

TEST_F(FILE_BOOKS_TEST, open_asks_with_the_file_dialog_and_opens_the_choice)
{
    NOTING_FRAME frame;
    const QString path = make_file("a.vek");
    NIVO_NATIVE_FILE_DLG::answer_next({path});
    entry(frame, MOK_MENU_FILE, MOK_FILE_OPEN)->trigger();
    const NIVO_NATIVE_FILE_DLG::QUESTION& question = NIVO_NATIVE_FILE_DLG::last_question();
    EXPECT_EQ(question.title, "Open");
    EXPECT_EQ(question.name_filters, (QStringList{"Imagewright files (*.vek)", "All files (*)"}));
    EXPECT_EQ(question.file_mode, QFileDialog::ExistingFile);
    EXPECT_EQ(question.accept_mode, QFileDialog::AcceptOpen);
    EXPECT_TRUE(question.has_checkbox);
    EXPECT_EQ(question.parent, &frame);
    EXPECT_EQ(frame.m_opened, QStringList{path});

    NIVO_NATIVE_FILE_DLG::answer_next({path});
    entry(frame, MOK_MENU_FILE, MOK_FILE_OPEN)->trigger();
    EXPECT_EQ(frame.m_opened, QStringList{path}) << "it is open already";

    NIVO_NATIVE_FILE_DLG::reject_next();
    entry(frame, MOK_MENU_FILE, MOK_FILE_OPEN)->trigger();
    EXPECT_EQ(frame.m_opened, QStringList{path});
}

TEST_F(FILE_BOOKS_TEST, save_without_a_file_is_save_as)
{
    class SAVE_AS_FRAME : public NOTING_FRAME
    {
    public:
        bool save_as(const FIO_PATH& path) override
        {
            m_save_as << QString::fromStdString(path.fullpath());
            return true;
        }
        QStringList m_save_as;
    };
    SAVE_AS_FRAME frame;
    entry(frame, MOK_MENU_FILE, MOK_FILE_SAVE)->trigger();
    EXPECT_EQ(frame.m_save_as, QStringList{QString("")});
    EXPECT_TRUE(frame.m_saved.isEmpty());

    const QString path = make_file("a.vek");
    ASSERT_TRUE(frame.open_file(path, 0, 0, 0, true, true));
    entry(frame, MOK_MENU_FILE, MOK_FILE_SAVE)->trigger();
    EXPECT_EQ(frame.m_saved, QStringList{path});
    entry(frame, MOK_MENU_FILE, MOK_FILE_SAVE_AS)->trigger();
    EXPECT_EQ(frame.m_save_as, (QStringList{QString(""), path}));
}

TEST_F(FILE_BOOKS_TEST, the_base_saves_under_the_path_that_save_as_names)
{
    NOTING_FRAME frame;
    const QString path = m_directory.filePath("new.vek");
    EXPECT_TRUE(frame.save_as(FIO_PATH(path.toStdString())));
    EXPECT_EQ(frame.m_saved, QStringList{path});
    EXPECT_EQ(frame.get_current_file(), path);
}

TEST_F(FILE_BOOKS_TEST, recent_files_are_ten_the_latest_first_without_those_that_have_gone)
{
    QStringList expected;
    for (int i = 0; i < 12; ++i) {
        const QString path = make_file(QString("recent %1\n.vek").arg(i));
        MOK_RECENT_FILES::add(path);
        expected.prepend(path);
    }
    expected = expected.mid(0, 10);
    EXPECT_EQ(MOK_RECENT_FILES::get(), expected);
    MOK_RECENT_FILES::add(expected[4]);
    expected.move(4, 0);
    EXPECT_EQ(MOK_RECENT_FILES::get(), expected);
    ASSERT_TRUE(QFile::remove(expected.takeAt(2)));
    EXPECT_EQ(MOK_RECENT_FILES::get(), expected);
    MOK_RECENT_FILES::clear();
    EXPECT_TRUE(MOK_RECENT_FILES::get().isEmpty());
}

TEST_F(FILE_BOOKS_TEST, the_recent_menu_opens_its_files)
{
    NOTING_FRAME frame;
    QMenu* const menu = entry(frame, MOK_MENU_FILE, MOK_FILE_OPEN_RECENT)->menu();
    emit menu->aboutToShow();
    ASSERT_EQ(menu->actions().size(), 1);
    EXPECT_EQ(menu->actions()[0]->text(), "No recent files");
    EXPECT_FALSE(menu->actions()[0]->isEnabled());

    const QString path = make_file("a&b.vek");
    MOK_RECENT_FILES::add(path);
    emit menu->aboutToShow();
    ASSERT_EQ(menu->actions().size(), 1);
    EXPECT_EQ(menu->actions()[0]->text(), "&1  a&&b.vek");
    EXPECT_EQ(menu->actions()[0]->toolTip(), path);
    menu->actions()[0]->trigger();
    EXPECT_EQ(frame.m_opened, QStringList{path});

    entry(frame, MOK_MENU_FILE, MOK_FILE_CLEAR_RECENT)->trigger();
    EXPECT_TRUE(MOK_RECENT_FILES::get().isEmpty());
}

TEST_F(FILE_BOOKS_TEST, nothing_opens_while_a_background_task_has_disabled_open)
{
    NOTING_FRAME frame;
    const QString path = make_file("a.vek");
    ASSERT_TRUE(frame.open_file(path, 0, 0, 0, true, true));
    frame.m_opened.clear();
    const QString other = make_file("b.vek");
    MOK_RECENT_FILES::add(other);
    entry(frame, MOK_MENU_FILE, MOK_FILE_OPEN)->setEnabled(false);
    entry(frame, MOK_MENU_FILE, MOK_FILE_SAVE)->setEnabled(false);
    EXPECT_FALSE(drop(frame, {other}));
    EXPECT_FALSE(frame.open_and_remember(other));
    entry(frame, MOK_MENU_FILE, MOK_FILE_RELOAD)->trigger();
    QMenu* const menu = entry(frame, MOK_MENU_FILE, MOK_FILE_OPEN_RECENT)->menu();
    emit menu->aboutToShow();
    ASSERT_EQ(menu->actions().size(), 2);
    EXPECT_FALSE(menu->actions()[0]->isEnabled());
    EXPECT_TRUE(frame.m_opened.isEmpty());
    entry(frame, MOK_MENU_FILE, MOK_FILE_SAVE_ALL)->trigger();
    EXPECT_TRUE(frame.m_saved.isEmpty());
}

TEST_F(FILE_BOOKS_TEST, a_dropped_setup_is_opened)
{
    NOTING_FRAME frame;
    const QString path = make_file("a.VEK");
    EXPECT_TRUE(drop(frame, {path}));
    EXPECT_EQ(frame.m_opened, QStringList{path});
    EXPECT_TRUE(drop(frame, {path}));
    EXPECT_EQ(frame.m_opened, QStringList{path}) << "it is open already";
}

TEST_F(FILE_BOOKS_TEST, a_drop_is_refused_while_a_dialog_is_open)
{
    NOTING_FRAME frame;
    const QString path = make_file("a.vek");
    QDialog dialog(&frame);
    dialog.setModal(true);
    dialog.show();
    EXPECT_FALSE(drop(frame, {path}));
    dialog.hide();
    EXPECT_TRUE(drop(frame, {path}));
    EXPECT_EQ(frame.m_opened, QStringList{path});
}

TEST_F(FILE_BOOKS_TEST, a_drop_is_forgotten_when_a_background_task_starts_before_its_turn)
{
    NOTING_FRAME frame;
    EXPECT_TRUE(drop(frame, {make_file("a.vek")},
                     [&frame] { entry(frame, MOK_MENU_FILE, MOK_FILE_OPEN)->setEnabled(false); }));
    EXPECT_TRUE(frame.m_opened.isEmpty());
}

TEST_F(FILE_BOOKS_TEST, a_drop_is_forgotten_when_a_dialog_opens_before_its_turn)
{
    NOTING_FRAME frame;
    QDialog dialog(&frame);
    dialog.setModal(true);
    EXPECT_TRUE(drop(frame, {make_file("a.vek")}, [&dialog] { dialog.show(); }));
    EXPECT_TRUE(frame.m_opened.isEmpty());
}

TEST_F(FILE_BOOKS_TEST, a_drop_of_anything_else_is_refused)
{
    NOTING_FRAME frame;
    const QString path = make_file("a.vek");
    EXPECT_FALSE(drop(frame, {make_file("a.txt")}));
    EXPECT_FALSE(drop(frame, {path, make_file("b.vek")}));
    EXPECT_FALSE(drop(frame, {}));
    EXPECT_FALSE(drop(frame, {m_directory.filePath("missing.vek")}));
    ASSERT_TRUE(QDir(m_directory.path()).mkdir("folder.vek"));
    EXPECT_FALSE(drop(frame, {m_directory.filePath("folder.vek")}));
    EXPECT_TRUE(frame.m_opened.isEmpty());
}

TEST_F(FILE_BOOKS_TEST, size_and_pane_come_back_in_the_next_run)
{
    {
        MOK_FRAME_WND frame(nullptr, MOK_FW_STATE_MAIN);
        entry(frame, MOK_MENU_VIEW, MOK_VIEW_MESSAGES)->trigger();
        frame.show();
        frame.resize(701, 533);
        entry(frame, MOK_MENU_VIEW, MOK_VIEW_MESSAGES)->trigger();
        EXPECT_TRUE(frame.close());
    }
    MOK_FRAME_WND frame(nullptr, MOK_FW_STATE_MAIN);
    entry(frame, MOK_MENU_VIEW, MOK_VIEW_MESSAGES)->trigger();
    EXPECT_NE(frame.size(), QSize(701, 533));
    frame.show();
    EXPECT_EQ(frame.size(), QSize(701, 533));
    EXPECT_FALSE(entry(frame, MOK_MENU_VIEW, MOK_VIEW_MESSAGES)->isChecked());
}

TEST_F(FILE_BOOKS_TEST, a_damaged_layout_setting_is_passed_over)
{
    ASSERT_TRUE(QDir(m_directory.path()).mkpath("imagewright"));
    make_file("imagewright/imagewright.ini", "WINDOW_LAYOUT = !!! ???\n");
    MOK_FRAME_WND frame(nullptr, MOK_FW_STATE_MAIN);
    frame.show();
    EXPECT_TRUE(frame.isVisible());
    EXPECT_GE(frame.width(), 400);
}
} // namespace
