#include "frame_fixture.h"
#include "internal_error_trap.h"
#include "modal_answers.h"
#include "mok_ui_mgr.h"
#include "nivo_busy_dlg.h"
#include "nivo_dialog.h"
#include "nivo_hex_edit.h"
#include "nivo_icon.h"
#include "nivo_safe_connect.h"
#include "nivo_tree_view.h"
#include "nivo_wait_cursor.h"
#include "progress.h"

#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QHelpEvent>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QProgressBar>
#include <QPushButton>
#include <QStandardItemModel>
#include <QTest>
#include <QTimer>
#include <QToolTip>

#include <set>

namespace
{
using FILE_DIALOG_TEST = FRAME_FIXTURE;

TEST(APP_TEST, the_application_is_found_while_it_lives_and_is_one)
{
    EXPECT_EQ(nivo_get_app(), nullptr);
    {
        const MOK_APP app;
        EXPECT_EQ(nivo_get_app(), &app);
        EXPECT_EQ(dynamic_cast<MOK_APP*>(nivo_get_app()), &app);
        ASSERT_NE(app.get_ui_mgr(), nullptr);
        EXPECT_EQ(app.get_ui_mgr()->get_working_directory(), "");
        app.get_ui_mgr()->set_working_directory("/some/place");
        EXPECT_EQ(app.get_ui_mgr()->get_working_directory(), "/some/place");
        EXPECT_INTERNAL_ERROR(MOK_APP(), "there is one application in a process");
    }
    EXPECT_EQ(nivo_get_app(), nullptr);
    const MOK_APP without_manager(nullptr);
    EXPECT_EQ(without_manager.get_ui_mgr(), nullptr);
}

TEST(BUSY_DLG_TEST, it_shows_itself_and_blocks_the_window_of_its_parent_until_it_is_deleted)
{
    QWidget window;
    QWidget* const central = new QWidget(&window);
    window.show();
    auto* const dialog =
        new NIVO_BUSY_DLG("Please wait while the Imagewright is processing...", "Imagewright", central);
    EXPECT_TRUE(dialog->isVisible());
    EXPECT_EQ(dialog->windowTitle(), "Imagewright");
    EXPECT_EQ(dialog->findChild<QLabel*>("text_label")->text(),
              "Please wait while the Imagewright is processing...");
    EXPECT_EQ(dialog->windowModality(), Qt::WindowModal);
    EXPECT_EQ(QApplication::activeModalWidget(), dialog);
    delete dialog;
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
}

TEST(BUSY_DLG_TEST, the_user_cannot_close_it)
{
    QWidget window;
    window.show();
    NIVO_BUSY_DLG dialog("text", "title", &window);
    QTest::keyClick(&dialog, Qt::Key_Escape);
    EXPECT_TRUE(dialog.isVisible());
    EXPECT_FALSE(dialog.close());
    EXPECT_TRUE(dialog.isVisible());
    EXPECT_FALSE(dialog.windowFlags().testFlag(Qt::WindowCloseButtonHint));
}

TEST(BUSY_DLG_TEST, it_shows_under_a_parent_that_is_disabled)
{
    QWidget window;
    window.show();
    QWidget* const central = new QWidget(&window);
    central->setEnabled(false);
    const NIVO_BUSY_DLG dialog("text", "title", central);
    EXPECT_TRUE(dialog.isVisible());
}

TEST(BUSY_DLG_TEST, percent_and_file_appear_as_soon_as_the_task_reports_them)
{
    QWidget window;
    window.show();
    const NIVO_BUSY_DLG dialog("text", "title", &window);
    const QProgressBar& bar = *dialog.findChild<QProgressBar*>("progress_bar");
    const QLabel& file = *dialog.findChild<QLabel*>("file_label");
    EXPECT_EQ(bar.maximum(), 0) << "nobody knows how far it is";
    EXPECT_EQ(dialog.findChild<QLabel*>("elapsed_label")->text(), "Elapsed time: 0:00");
    const PROGRESS_SCOPE run(200);
    PROGRESS::instance().advance(50, "/some/where/output.rbf");
    EXPECT_TRUE(QTest::qWaitFor([&bar] { return bar.value() == 25; }, 10000));
    EXPECT_EQ(bar.maximum(), 100);
    EXPECT_EQ(file.text(), "output.rbf");
    EXPECT_EQ(file.toolTip(), "/some/where/output.rbf");
    PROGRESS::instance().advance(150, "/some/where/output.map");
    EXPECT_TRUE(QTest::qWaitFor([&bar] { return bar.value() == 100; }, 10000));
    EXPECT_EQ(file.text(), "output.map");
}

TEST_F(FILE_DIALOG_TEST, an_answer_given_in_advance_serves_once_and_keeps_the_question)
{
    QWidget parent;
    NIVO_NATIVE_FILE_DLG dialog(&parent);
    dialog.set_special_mode(2);
    dialog.enable_checkbox(false);
    dialog.setWindowTitle("Save As");
    dialog.setNameFilters({"Setups (*.vek)", "All (*)"});
    dialog.setFileMode(QFileDialog::AnyFile);
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setOption(QFileDialog::ShowDirsOnly);
    dialog.setDirectory(m_directory.path());
    NIVO_NATIVE_FILE_DLG::answer_next({"/x/a.vek", "/x/b.vek"}, "All (*)");
    NIVO_NATIVE_FILE_DLG::reject_next();
    EXPECT_EQ(dialog.exec(), QDialog::Accepted);
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
    EXPECT_EQ(dialog.selectedFiles(), (QStringList{"/x/a.vek", "/x/b.vek"}));
    EXPECT_EQ(dialog.selectedNameFilter(), "All (*)");
    const NIVO_NATIVE_FILE_DLG::QUESTION& question = NIVO_NATIVE_FILE_DLG::last_question();
    EXPECT_EQ(question.title, "Save As");
    EXPECT_EQ(question.name_filters, (QStringList{"Setups (*.vek)", "All (*)"}));
    EXPECT_EQ(question.file_mode, QFileDialog::AnyFile);
    EXPECT_EQ(question.accept_mode, QFileDialog::AcceptSave);
    EXPECT_TRUE(question.options.testFlag(QFileDialog::ShowDirsOnly));
    EXPECT_EQ(question.directory, m_directory.path());
    EXPECT_EQ(question.special_mode, NIVO_NATIVE_FILE_DLG::SPECIAL_MODE_SAVE_DOCUMENT);
    EXPECT_FALSE(question.has_checkbox);
    EXPECT_EQ(question.parent, &parent);
    EXPECT_TRUE(NIVO_NATIVE_FILE_DLG::has_answer());
    EXPECT_EQ(dialog.exec(), QDialog::Rejected);
    EXPECT_FALSE(NIVO_NATIVE_FILE_DLG::has_answer());
}

TEST_F(FILE_DIALOG_TEST, an_answer_without_a_name_filter_takes_the_first)
{
    NIVO_NATIVE_FILE_DLG dialog;
    dialog.setNameFilters({"Setups (*.vek)", "All (*)"});
    NIVO_NATIVE_FILE_DLG::answer_next({"/x/a.vek"});
    EXPECT_EQ(dialog.exec(), QDialog::Accepted);
    EXPECT_EQ(dialog.selectedNameFilter(), "Setups (*.vek)");
}

TEST_F(FILE_DIALOG_TEST, it_opens_in_the_current_directory_of_the_process)
{
    const QString before = QDir::currentPath();
    ASSERT_TRUE(QDir::setCurrent(m_directory.path()));
    EXPECT_EQ(NIVO_NATIVE_FILE_DLG().directory().absolutePath(), QDir::currentPath());
    ASSERT_TRUE(QDir::setCurrent("/usr"));
    EXPECT_EQ(NIVO_NATIVE_FILE_DLG().directory().absolutePath(), "/usr") << "not where the last one was";
    ASSERT_TRUE(QDir::setCurrent(before));
}

TEST_F(FILE_DIALOG_TEST, without_an_answer_the_dialog_comes_up_with_its_checkbox)
{
    const QString path = make_file("a.vek");
    NIVO_NATIVE_FILE_DLG dialog;
    dialog.setDirectory(m_directory.path());
    dialog.setFileMode(QFileDialog::ExistingFile);
    dialog.set_special_mode(NIVO_NATIVE_FILE_DLG::SPECIAL_MODE_OPEN_DOCUMENT);
    dialog.enable_checkbox(true);
    EXPECT_TRUE(dialog.is_checkbox_checked());
    MODAL_ANSWERS answers;
    answers.run([&path](QDialog& shown) {
        QCheckBox* const checkbox = shown.findChild<QCheckBox*>("remember_checkbox");
        EXPECT_TRUE(checkbox->isVisible());
        EXPECT_EQ(checkbox->text(), "&Remember in Open Recent");
        checkbox->click();
        // Typed, because the dialog lists the directory in its own time.
        shown.findChild<QLineEdit*>("fileNameEdit")->setText(path);
        shown.accept();
    });
    EXPECT_EQ(dialog.exec(), QDialog::Accepted);
    EXPECT_FALSE(dialog.is_checkbox_checked());
    EXPECT_EQ(dialog.selectedFiles(), QStringList{path});
}

TEST_F(FILE_DIALOG_TEST, a_document_saved_without_its_extension_replaces_no_file_unasked)
{
    const QString path = make_file("a.vek");
    NIVO_NATIVE_FILE_DLG dialog;
    dialog.setDirectory(m_directory.path());
    dialog.setNameFilter("Setups (*.vek)");
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.set_special_mode(NIVO_NATIVE_FILE_DLG::SPECIAL_MODE_SAVE_DOCUMENT);
    MODAL_ANSWERS answers;
    answers.run([&](QDialog& shown) {
        shown.findChild<QLineEdit*>("fileNameEdit")->setText(path.chopped(4));
        answers.click(QMessageBox::No);
        shown.accept();
        EXPECT_TRUE(shown.isVisible());
        answers.click(QMessageBox::Yes);
        shown.accept();
    });
    EXPECT_EQ(dialog.exec(), QDialog::Accepted);
    EXPECT_EQ(answers.boxes().size(), 2);
    EXPECT_EQ(dialog.selectedFiles(), QStringList{path});
}

TEST_F(FILE_DIALOG_TEST, a_document_saved_with_another_extension_replaces_no_file_unasked)
{
    const QString path = make_file("a.vek");
    const QString other = path.chopped(5) + "b.vek";
    NIVO_NATIVE_FILE_DLG dialog;
    dialog.setWindowTitle("Save As");
    dialog.setDirectory(m_directory.path());
    dialog.setNameFilter("Setups (*.vek)");
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.set_special_mode(NIVO_NATIVE_FILE_DLG::SPECIAL_MODE_SAVE_DOCUMENT);
    const auto type = [](const QString& text) {
        return [text](QDialog& shown) {
            shown.findChild<QLineEdit*>("fileNameEdit")->setText(text);
            shown.accept();
        };
    };
    {
        MODAL_ANSWERS answers;
        answers.run(type(path.chopped(4) + ".txt"));
        answers.click(QMessageBox::No);
        answers.run(type(other));
        EXPECT_EQ(dialog.exec(), QDialog::Accepted);
        EXPECT_EQ(dialog.selectedFiles(), QStringList{other});
        ASSERT_EQ(answers.boxes().size(), 1);
        EXPECT_EQ(answers.boxes().at(0).title, "Save As");
        EXPECT_EQ(answers.boxes().at(0).text, "a.vek already exists.\nDo you want to replace it?");
        EXPECT_EQ(answers.boxes().at(0).default_button, QMessageBox::No);
    }
    {
        MODAL_ANSWERS answers;
        answers.run(type(path.chopped(4) + ".txt"));
        answers.click(QMessageBox::Yes);
        EXPECT_EQ(dialog.exec(), QDialog::Accepted);
        EXPECT_EQ(dialog.selectedFiles(), QStringList{path.chopped(4) + ".txt"})
            << "whoever saves exchanges it";
    }
    {
        MODAL_ANSWERS answers;
        answers.run(type(path.chopped(5) + "new.txt"));
        EXPECT_EQ(dialog.exec(), QDialog::Accepted);
        EXPECT_TRUE(answers.boxes().isEmpty()) << "nothing is replaced";
    }
    MODAL_ANSWERS answers;
    answers.run([](QDialog& shown) { shown.reject(); });
    EXPECT_EQ(dialog.exec(), QDialog::Rejected);
}

TEST_F(FILE_DIALOG_TEST, a_dialog_about_no_document_has_no_checkbox)
{
    NIVO_NATIVE_FILE_DLG dialog;
    dialog.enable_checkbox(true);
    MODAL_ANSWERS answers;
    answers.run([](QDialog& shown) {
        EXPECT_EQ(shown.findChild<QCheckBox*>("remember_checkbox"), nullptr);
        shown.reject();
    });
    EXPECT_EQ(dialog.exec(), QDialog::Rejected);
}

TEST_F(FILE_DIALOG_TEST, an_unknown_special_mode_is_a_fault)
{
    NIVO_NATIVE_FILE_DLG dialog;
    EXPECT_INTERNAL_ERROR(dialog.set_special_mode(3), "the file dialog knows the special mode");
    EXPECT_INTERNAL_ERROR(dialog.set_special_mode(-1), "the file dialog knows the special mode");
}

TEST(HEX_EDIT_TEST, it_takes_digits_up_to_its_width_with_or_without_a_prefix)
{
    NIVO_HEX_EDIT edit(8);
    QTest::keyClicks(&edit, "12zG 34aBcDeF");
    EXPECT_EQ(edit.text(), "1234aBcD");
    edit.clear();
    QTest::keyClicks(&edit, "0x123456789");
    EXPECT_EQ(edit.text(), "0x12345678");
    std::uint64_t value = 0;
    EXPECT_TRUE(edit.get_value(value));
    EXPECT_EQ(value, 0x12345678u);
}

TEST(HEX_EDIT_TEST, a_number_gets_its_full_form_when_the_edit_is_left_or_return_pressed)
{
    NIVO_HEX_EDIT edit(8);
    QTest::keyClicks(&edit, "1f00");
    EXPECT_EQ(edit.text(), "1f00");
    QTest::keyClick(&edit, Qt::Key_Return);
    EXPECT_EQ(edit.text(), "0x00001F00");

    QWidget window;
    NIVO_HEX_EDIT first(4, &window);
    QLineEdit second(&window);
    window.show();
    window.activateWindow();
    first.setFocus();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    QTest::keyClicks(&first, "0XaB");
    second.setFocus();
    EXPECT_EQ(first.text(), "0x00AB");

    first.setFocus();
    first.selectAll();
    QTest::keyClicks(&first, "0x");
    second.setFocus();
    EXPECT_EQ(first.text(), "") << "a prefix alone is no number";
}

TEST(HEX_EDIT_TEST, a_text_that_is_set_stands_as_it_is)
{
    NIVO_HEX_EDIT edit(8);
    for (const char* const text : {"0xFFFFFFFF", "0x1000", "auto", ""}) {
        edit.setText(text);
        EXPECT_EQ(edit.text(), text);
    }
}

TEST(HEX_EDIT_TEST, what_is_no_number_of_the_width_gives_no_value)
{
    NIVO_HEX_EDIT edit(4);
    for (const char* const text : {"", "0x", "auto", "12345", "-1", "0x0x1"}) {
        edit.setText(text);
        std::uint64_t value = 77;
        EXPECT_FALSE(edit.get_value(value)) << text;
        EXPECT_EQ(value, 77u);
    }
    edit.clear();
    QTest::keyClick(&edit, Qt::Key_Return);
    EXPECT_EQ(edit.text(), "") << "an empty edit stays empty";
}

TEST(HEX_EDIT_TEST, the_widest_edit_holds_64_bits)
{
    NIVO_HEX_EDIT edit(16);
    edit.set_value(~std::uint64_t{0});
    EXPECT_EQ(edit.text(), "0xFFFFFFFFFFFFFFFF");
    std::uint64_t value = 0;
    EXPECT_TRUE(edit.get_value(value));
    EXPECT_EQ(value, ~std::uint64_t{0});
    edit.set_value(0);
    EXPECT_EQ(edit.text(), "0x0000000000000000");
    EXPECT_EQ(edit.get_digits(), 16);
    EXPECT_INTERNAL_ERROR(NIVO_HEX_EDIT(0), "digits >= 1 && digits <= 16");
    EXPECT_INTERNAL_ERROR(NIVO_HEX_EDIT(17), "digits >= 1 && digits <= 16");
}

TEST(SAFE_CONNECT_TEST, a_connection_that_can_be_made_is_made)
{
    QPushButton button;
    QLineEdit edit("text");
    nivo_safe_connect(&button, SIGNAL(clicked()), &edit, SLOT(clear()), Qt::AutoConnection, __FILE__,
                      __LINE__);
    button.click();
    EXPECT_EQ(edit.text(), "");
}

TEST(SAFE_CONNECT_TEST, a_failure_names_signal_and_slot_and_the_place_of_the_call)
{
    QPushButton button;
    QLineEdit edit;
    const auto try_connect = [](const QObject* sender, const char* signal, const QObject* receiver,
                                const char* slot, Qt::ConnectionType type = Qt::AutoConnection) {
        nivo_safe_connect(sender, signal, receiver, slot, type, "somewhere.cpp", 12);
    };
    EXPECT_INTERNAL_ERROR(try_connect(&button, SIGNAL(clocked()), &edit, SLOT(clear())),
                          "cannot connect QPushButton::clocked() to QLineEdit::clear()");
    EXPECT_INTERNAL_ERROR(try_connect(&button, SIGNAL(clicked()), &edit, SLOT(cleared())),
                          "cannot connect QPushButton::clicked() to QLineEdit::cleared()");
    EXPECT_INTERNAL_ERROR(try_connect(&button, SIGNAL(clicked()), &edit, SLOT(setText(QString))),
                          "cannot connect QPushButton::clicked() to QLineEdit::setText(QString)");
    EXPECT_INTERNAL_ERROR(try_connect(nullptr, SIGNAL(clicked()), &edit, SLOT(clear())),
                          "cannot connect null::clicked() to QLineEdit::clear()");
    EXPECT_INTERNAL_ERROR(try_connect(&button, SIGNAL(clicked()), nullptr, SLOT(clear())),
                          "cannot connect QPushButton::clicked() to null::clear()");
    EXPECT_INTERNAL_ERROR(try_connect(&button, SIGNAL(clocked()), &edit, SLOT(clear()), Qt::UniqueConnection),
                          "cannot connect QPushButton::clocked() to QLineEdit::clear()");
    try {
        try_connect(&button, nullptr, &edit, nullptr);
        ADD_FAILURE() << "no internal error";
    } catch (const INTERNAL_ERROR_RAISED& raised) {
        EXPECT_EQ(raised.condition, "cannot connect QPushButton::(none) to QLineEdit::(none)");
        EXPECT_EQ(raised.source, "somewhere.cpp");
        EXPECT_EQ(raised.line, 12);
    }
}

TEST(SAFE_CONNECT_TEST, a_unique_connection_may_be_made_again_and_stays_one)
{
    QPushButton button;
    QTimer timer;
    QStandardItemModel counter;
    for (int i = 0; i < 3; ++i) {
        nivo_safe_connect(&button, SIGNAL(clicked()), &counter, SLOT(submit()),
                          static_cast<Qt::ConnectionType>(Qt::AutoConnection | Qt::UniqueConnection),
                          __FILE__, __LINE__);
        nivo_safe_connect(&button, SIGNAL(clicked()), &timer, SLOT(start()), Qt::UniqueConnection, __FILE__,
                          __LINE__);
    }
    button.click();
    EXPECT_TRUE(timer.isActive());
    EXPECT_TRUE(QObject::disconnect(&button, SIGNAL(clicked()), &timer, SLOT(start())));
    EXPECT_FALSE(QObject::disconnect(&button, SIGNAL(clicked()), &timer, SLOT(start())));
}

TEST(DIALOG_TEST, a_dialog_has_no_help_button_and_keeps_the_flags_it_is_given)
{
    const NIVO_DIALOG plain;
    EXPECT_FALSE(plain.windowFlags().testFlag(Qt::WindowContextHelpButtonHint));
    const NIVO_DIALOG fixed(nullptr, Qt::MSWindowsFixedSizeDialogHint | Qt::WindowTitleHint);
    EXPECT_TRUE(fixed.windowFlags().testFlag(Qt::MSWindowsFixedSizeDialogHint));
    EXPECT_FALSE(fixed.windowFlags().testFlag(Qt::WindowContextHelpButtonHint));
}

TEST(WAIT_CURSOR_TEST, the_cursor_waits_while_one_lives)
{
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
    {
        const NIVO_WAIT_CURSOR outer;
        {
            const NIVO_WAIT_CURSOR inner;
        }
        ASSERT_NE(QApplication::overrideCursor(), nullptr);
        EXPECT_EQ(QApplication::overrideCursor()->shape(), Qt::WaitCursor);
    }
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
}

/// Share of the pixels of an icon that stand out from a background.
double visible_share(const QIcon& icon, const QColor& background)
{
    QImage image(32, 32, QImage::Format_RGB32);
    image.fill(background);
    QPainter painter(&image);
    icon.paint(&painter, image.rect());
    painter.end();
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            count += qAbs(qGray(image.pixel(x, y)) - qGray(background.rgb())) > 60 ? 1 : 0;
        }
    }
    return count / (32.0 * 32.0);
}

TEST(ICON_TEST, every_icon_stands_out_on_light_and_dark_backgrounds_and_differs_from_the_others)
{
    const QPalette before = QApplication::palette();
    for (const bool is_dark : {false, true}) {
        const QColor background = is_dark ? QColor(0x2B, 0x2B, 0x2B) : QColor(0xF0, 0xF0, 0xF0);
        QApplication::setPalette(QPalette(background, background));
        std::set<QByteArray> pictures;
        for (const NIVO_ICON_ENUM icon :
             {NIVO_ICON_OPEN, NIVO_ICON_SAVE, NIVO_ICON_KEY, NIVO_ICON_INFORMATION, NIVO_ICON_WARNING,
              NIVO_ICON_ERROR, NIVO_ICON_OUTPUT, NIVO_ICON_COPY, NIVO_ICON_CLEAR, NIVO_ICON_DETACH,
              NIVO_ICON_MORE_ASIDE, NIVO_ICON_MORE_BELOW, NIVO_ICON_IMAGEWRIGHT}) {
            EXPECT_GT(visible_share(nivo_get_icon(icon), background), 0.05) << icon << " dark " << is_dark;
            const QImage image = nivo_get_icon(icon).pixmap(32, 32).toImage();
            pictures.insert(QByteArray(reinterpret_cast<const char*>(image.constBits()),
                                       static_cast<int>(image.sizeInBytes())));
        }
        EXPECT_EQ(pictures.size(), 13u);
    }
    QApplication::setPalette(before);
}

TEST(ICON_TEST, numbers_that_dialogs_ask_for_are_the_hosts)
{
    EXPECT_EQ(static_cast<int>(NIVO_ICON_IMAGEWRIGHT), 483);
    EXPECT_EQ(static_cast<int>(NIVO_ICON_KEY), 51);
    EXPECT_EQ(nivo_get_icon(NIVO_ICON_KEY).pixmap(64, 64).size(), QSize(64, 64));
}

class TREE_VIEW_TEST : public testing::Test
{
protected:
    void SetUp() override
    {
        for (const char* const name : {"one", "two"}) {
            auto* const item = new QStandardItem(name);
            item->appendRow(
                {new QStandardItem(QString(name) + " child"), new QStandardItem("a rather long text")});
            m_model.appendRow({item, new QStandardItem("second")});
        }
        m_view.setModel(&m_model);
        m_view.setSelectionMode(QAbstractItemView::ExtendedSelection);
        m_view.expandAll();
        m_view.resize(300, 200);
        m_view.show();
    }
    void select(const QModelIndex& index)
    {
        m_view.selectionModel()->select(index, QItemSelectionModel::Select | QItemSelectionModel::Rows);
    }
    QStandardItemModel m_model;
    NIVO_TREE_VIEW m_view;
};

TEST_F(TREE_VIEW_TEST, the_copy_key_takes_the_selected_rows_from_top_to_bottom)
{
    select(m_model.index(1, 0));
    select(m_model.index(0, 0, m_model.index(0, 0)));
    QTest::keySequence(&m_view, QKeySequence::Copy);
    EXPECT_EQ(QApplication::clipboard()->text(), "one child\ta rather long text\ntwo\tsecond");
    m_view.setColumnHidden(1, true);
    EXPECT_EQ(m_view.get_selected_text(), "one child\ntwo");
}

TEST_F(TREE_VIEW_TEST, the_context_menu_copies_expands_and_collapses)
{
    const auto with_menu = [this](const char* text) {
        QTimer::singleShot(0, &m_view, [text] {
            QMenu* const menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
            ASSERT_NE(menu, nullptr);
            for (QAction* const action : menu->actions()) {
                if (action->text() == text) {
                    action->trigger();
                }
            }
            menu->close();
        });
        QContextMenuEvent event(QContextMenuEvent::Keyboard, QPoint(5, 5), QPoint(5, 5));
        QCoreApplication::sendEvent(&m_view, &event);
    };
    with_menu("C&ollapse All");
    EXPECT_FALSE(m_view.isExpanded(m_model.index(0, 0)));
    with_menu("&Expand All");
    EXPECT_TRUE(m_view.isExpanded(m_model.index(1, 0)));
    select(m_model.index(0, 0));
    with_menu("&Copy");
    EXPECT_EQ(QApplication::clipboard()->text(), "one\tsecond");
}

TEST_F(TREE_VIEW_TEST, a_text_that_is_cut_off_has_a_tool_tip)
{
    const QModelIndex cell = m_model.index(0, 1, m_model.index(0, 0));
    const auto tip_at = [this, &cell] {
        QToolTip::hideText();
        const QPoint place = m_view.visualRect(cell).center();
        QHelpEvent event(QEvent::ToolTip, place, m_view.viewport()->mapToGlobal(place));
        QCoreApplication::sendEvent(m_view.viewport(), &event);
        return QToolTip::isVisible() ? QToolTip::text() : QString();
    };
    m_view.header()->setStretchLastSection(false);
    m_view.setColumnWidth(1, 30);
    EXPECT_EQ(tip_at(), "a rather long text");
    QToolTip::hideText();
    m_view.resize(900, 200);
    m_view.setColumnWidth(1, 400);
    ASSERT_TRUE(QTest::qWaitFor([] { return !QToolTip::isVisible(); }, 5000));
    EXPECT_EQ(tip_at(), "");
}

TEST(TREE_VIEW_FLAGS_TEST, flags_switch_the_looks)
{
    EXPECT_FALSE(NIVO_TREE_VIEW(nullptr, 0).alternatingRowColors());
    EXPECT_TRUE(NIVO_TREE_VIEW(nullptr, NIVO_TREE_VIEW::FLAG_ALTERNATING_ROWS).alternatingRowColors());
    EXPECT_EQ(NIVO_TREE_VIEW().get_selected_text(), "");
}
} // namespace
