#include "frame_fixture.h"
#include "modal_answers.h"
#include "mok_message_model.h"
#include "mok_message_pane.h"
#include "nivo_tree_view.h"

#include <QAbstractItemModelTester>
#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QRegularExpression>
#include <QScrollBar>
#include <QTest>
#include <QToolButton>

#include <atomic>
#include <thread>
#include <vector>

namespace
{
class MESSAGES_TEST : public FRAME_FIXTURE
{
protected:
    void SetUp() override
    {
        FRAME_FIXTURE::SetUp();
        m_frame = std::make_unique<MOK_FRAME_WND>(nullptr, MOK_FW_STATE_MAIN);
    }
    void TearDown() override
    {
        m_frame.reset();
        FRAME_FIXTURE::TearDown();
    }

    template <class WIDGET>
    WIDGET& part(const char* name)
    {
        return *m_frame->get_message_pane()->findChild<WIDGET*>(name);
    }

    QStringList shown_texts()
    {
        QStringList texts;
        const QAbstractItemModel& model = *part<NIVO_TREE_VIEW>("message_view").model();
        for (int row = 0; row < model.rowCount(); ++row) {
            texts << model.index(row, MOK_MESSAGE_MODEL::COLUMN_TEXT).data().toString();
        }
        return texts;
    }

    std::unique_ptr<MOK_FRAME_WND> m_frame;
};

MSG_RECORD question_record()
{
    MSG_RECORD record;
    record.severity = MSG_SEVERITY::QUESTION;
    record.id = 19880;
    record.text = "Do you want to overwrite it?";
    return record;
}

TEST_F(MESSAGES_TEST, the_view_entry_shows_the_pane_and_hides_it)
{
    QAction* const action = entry(*m_frame, MOK_MENU_VIEW, MOK_VIEW_MESSAGES);
    EXPECT_EQ(m_frame->findChild<MOK_MESSAGE_PANE*>(), nullptr) << "made when it is first asked for";
    EXPECT_FALSE(action->isChecked());
    action->trigger();
    m_frame->show();
    ASSERT_NE(m_frame->get_message_pane(), nullptr);
    EXPECT_TRUE(m_frame->get_message_pane()->isVisible());
    EXPECT_TRUE(action->isChecked());
    EXPECT_EQ(m_frame->dockWidgetArea(m_frame->get_message_pane()), Qt::BottomDockWidgetArea);
    action->trigger();
    EXPECT_FALSE(m_frame->get_message_pane()->isVisible());
    EXPECT_FALSE(action->isChecked());
}

TEST_F(MESSAGES_TEST, closing_the_pane_takes_the_tick_from_the_view_entry)
{
    QAction* const action = entry(*m_frame, MOK_MENU_VIEW, MOK_VIEW_MESSAGES);
    action->trigger();
    m_frame->show();
    m_frame->get_message_pane()->close();
    EXPECT_FALSE(action->isChecked());
    action->trigger();
    EXPECT_TRUE(m_frame->get_message_pane()->isVisible());
}

TEST_F(MESSAGES_TEST, an_attached_window_leaves_the_messages_to_the_host)
{
    MOK_FRAME_WND tool(nullptr, MOK_FW_STATE_ATTACHED);
    EXPECT_EQ(tool.get_message_pane(), nullptr);
    entry(tool, MOK_MENU_VIEW, MOK_VIEW_MESSAGES)->trigger();
    EXPECT_EQ(tool.findChild<MOK_MESSAGE_PANE*>(), nullptr);
}

TEST_F(MESSAGES_TEST, a_message_shows_severity_id_text_and_time)
{
    post_message(MSG_SEVERITY::WARNING, 19855, "first line\nsecond line");
    QCoreApplication::processEvents();
    const MOK_MESSAGE_MODEL& model = *m_app->get_message_model();
    ASSERT_EQ(model.rowCount(), 1);
    EXPECT_EQ(model.index(0, MOK_MESSAGE_MODEL::COLUMN_SEVERITY).data(), "Warning");
    EXPECT_FALSE(model.index(0, 0).data(Qt::DecorationRole).value<QIcon>().isNull());
    EXPECT_EQ(model.index(0, MOK_MESSAGE_MODEL::COLUMN_ID).data(), "19855");
    EXPECT_EQ(model.index(0, MOK_MESSAGE_MODEL::COLUMN_TEXT).data(), "first line second line");
    const QString time = model.index(0, MOK_MESSAGE_MODEL::COLUMN_TIME).data().toString();
    EXPECT_TRUE(QRegularExpression("^\\d\\d:\\d\\d:\\d\\d$").match(time).hasMatch());
    EXPECT_EQ(model.get_line(0), time + "\tWarning\t19855\tfirst line\nsecond line");
    QStringList titles;
    for (int column = 0; column < model.columnCount(); ++column) {
        titles << model.headerData(column, Qt::Horizontal, Qt::DisplayRole).toString();
    }
    EXPECT_EQ(titles, (QStringList{"Severity", "ID", "Message", "Time"}));
}

TEST_F(MESSAGES_TEST, messages_from_before_the_application_are_shown_too)
{
    m_frame.reset();
    m_app.reset();
    post_message(MSG_SEVERITY::INFORMATION, 1, "early");
    m_app = std::make_unique<MOK_APP>();
    QCoreApplication::processEvents();
    ASSERT_EQ(m_app->get_message_model()->rowCount(), 1);
    EXPECT_EQ(m_app->get_message_model()->index(0, MOK_MESSAGE_MODEL::COLUMN_TEXT).data(), "early");
}

TEST_F(MESSAGES_TEST, messages_of_many_threads_all_arrive_each_thread_in_its_order)
{
    const QAbstractItemModelTester tester(m_app->get_message_model(),
                                          QAbstractItemModelTester::FailureReportingMode::Fatal);
    m_frame->get_message_pane()->show();
    m_frame->show();
    constexpr int THREADS = 4;
    constexpr int MESSAGES = 500;
    std::vector<std::thread> threads;
    for (int thread = 0; thread < THREADS; ++thread) {
        threads.emplace_back([thread] {
            for (int i = 0; i < MESSAGES; ++i) {
                post_message(MSG_SEVERITY::INFORMATION, static_cast<std::uint32_t>(thread + 1),
                             std::to_string(i));
            }
        });
    }
    const MOK_MESSAGE_MODEL& model = *m_app->get_message_model();
    EXPECT_TRUE(QTest::qWaitFor([&model] { return model.rowCount() == THREADS * MESSAGES; }, 30000));
    for (std::thread& thread : threads) {
        thread.join();
    }
    std::vector<int> next(THREADS, 0);
    for (int row = 0; row < model.rowCount(); ++row) {
        const auto thread = model.index(row, MOK_MESSAGE_MODEL::COLUMN_ID).data().toUInt() - 1;
        EXPECT_EQ(model.index(row, MOK_MESSAGE_MODEL::COLUMN_TEXT).data().toInt(), next[thread]++);
    }
}

TEST_F(MESSAGES_TEST, the_table_is_bounded_and_the_oldest_go_first)
{
    MOK_MESSAGE_MODEL model(5);
    const QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::Fatal);
    for (int i = 0; i < 3; ++i) {
        post_message(MSG_SEVERITY::ERROR, 1, std::to_string(i));
    }
    QCoreApplication::processEvents();
    for (int i = 3; i < 7; ++i) {
        post_message(MSG_SEVERITY::WARNING, 1, std::to_string(i));
    }
    QCoreApplication::processEvents();
    ASSERT_EQ(model.rowCount(), 5);
    EXPECT_EQ(model.index(0, MOK_MESSAGE_MODEL::COLUMN_TEXT).data(), "2");
    EXPECT_EQ(model.index(4, MOK_MESSAGE_MODEL::COLUMN_TEXT).data(), "6");
    EXPECT_EQ(model.get_count(MSG_SEVERITY::ERROR), 1);
    EXPECT_EQ(model.get_count(MSG_SEVERITY::WARNING), 4);
    for (int i = 0; i < 12; ++i) {
        post_message(MSG_SEVERITY::INFORMATION, 1, std::to_string(i));
    }
    QCoreApplication::processEvents();
    ASSERT_EQ(model.rowCount(), 5);
    EXPECT_EQ(model.index(0, MOK_MESSAGE_MODEL::COLUMN_TEXT).data(), "7");
    EXPECT_EQ(model.get_count(MSG_SEVERITY::INFORMATION), 5);
    EXPECT_EQ(model.get_count(MSG_SEVERITY::ERROR), 0);
}

TEST_F(MESSAGES_TEST, the_buttons_filter_by_severity_and_count)
{
    post_message(MSG_SEVERITY::ERROR, 1, "error");
    post_message(MSG_SEVERITY::WARNING, 2, "warning");
    post_message(MSG_SEVERITY::INFORMATION, 3, "information");
    post_message(MSG_SEVERITY::OUTPUT, 4, "output");
    QCoreApplication::processEvents();
    m_frame->get_message_pane()->show();
    EXPECT_EQ(part<QToolButton>("error_button").text(), "&Errors (1)");
    EXPECT_EQ(part<QToolButton>("warning_button").text(), "W&arnings (1)");
    EXPECT_EQ(part<QToolButton>("info_button").text(), "I&nformation (2)");
    EXPECT_TRUE(part<QToolButton>("debug_button").isHidden());
    EXPECT_EQ(shown_texts(), (QStringList{"error", "warning", "information", "output"}));
    part<QToolButton>("info_button").click();
    EXPECT_EQ(shown_texts(), (QStringList{"error", "warning"}));
    part<QToolButton>("error_button").click();
    EXPECT_EQ(shown_texts(), QStringList{"warning"});
    part<QToolButton>("warning_button").click();
    EXPECT_TRUE(shown_texts().isEmpty());
    part<QToolButton>("info_button").click();
    EXPECT_EQ(shown_texts(), (QStringList{"information", "output"}));
    post_message(MSG_SEVERITY::DEBUG, 0, "debug");
    QCoreApplication::processEvents();
    EXPECT_FALSE(part<QToolButton>("debug_button").isHidden());
    EXPECT_EQ(shown_texts(), (QStringList{"information", "output", "debug"}));
    part<QToolButton>("debug_button").click();
    EXPECT_EQ(shown_texts(), (QStringList{"information", "output"}));
}

TEST_F(MESSAGES_TEST, every_button_of_the_pane_is_reached_by_the_keyboard)
{
    for (const char* const name :
         {"error_button", "warning_button", "info_button", "debug_button", "copy_button", "clear_button"}) {
        m_frame->get_message_pane();
        EXPECT_EQ(part<QToolButton>(name).focusPolicy(), Qt::StrongFocus) << name;
    }
}

TEST_F(MESSAGES_TEST, copy_takes_the_selected_messages_or_all_that_are_shown)
{
    for (const char* const text : {"one", "two", "three"}) {
        post_message(MSG_SEVERITY::INFORMATION, 7, text);
    }
    post_message(MSG_SEVERITY::WARNING, 8, "hidden");
    QCoreApplication::processEvents();
    MOK_MESSAGE_PANE& pane = *m_frame->get_message_pane();
    part<QToolButton>("warning_button").click();
    part<QToolButton>("copy_button").click();
    QStringList lines = QApplication::clipboard()->text().split('\n');
    ASSERT_EQ(lines.size(), 3);
    EXPECT_TRUE(lines[0].endsWith("\tInfo\t7\tone"));
    EXPECT_EQ(QApplication::clipboard()->text(), pane.get_text());

    NIVO_TREE_VIEW& view = part<NIVO_TREE_VIEW>("message_view");
    for (const int row : {2, 0}) {
        view.selectionModel()->select(view.model()->index(row, 0),
                                      QItemSelectionModel::Select | QItemSelectionModel::Rows);
    }
    part<QToolButton>("copy_button").click();
    lines = QApplication::clipboard()->text().split('\n');
    ASSERT_EQ(lines.size(), 2);
    EXPECT_TRUE(lines[0].endsWith("\tone"));
    EXPECT_TRUE(lines[1].endsWith("\tthree"));
}

TEST_F(MESSAGES_TEST, return_on_a_message_shows_the_whole_of_it)
{
    post_message(MSG_SEVERITY::WARNING, 21625, "a long text\nof two lines <b>");
    QCoreApplication::processEvents();
    m_frame->get_message_pane()->show();
    m_frame->show();
    NIVO_TREE_VIEW& view = part<NIVO_TREE_VIEW>("message_view");
    view.setCurrentIndex(view.model()->index(0, 0));
    MODAL_ANSWERS answers;
    answers.click(QMessageBox::Ok);
    QTest::keyClick(&view, Qt::Key_Return);
    ASSERT_EQ(answers.boxes().size(), 1);
    EXPECT_EQ(answers.boxes()[0].title, "Warning 21625");
    EXPECT_EQ(answers.boxes()[0].text, "a long text\nof two lines <b>");
}

TEST_F(MESSAGES_TEST, clear_empties_the_list_and_the_counts_from_pane_and_menu)
{
    m_frame->get_message_pane();
    post_message(MSG_SEVERITY::ERROR, 1, "taken");
    QCoreApplication::processEvents();
    post_message(MSG_SEVERITY::ERROR, 1, "still on its way");
    part<QToolButton>("clear_button").click();
    QCoreApplication::processEvents();
    EXPECT_TRUE(shown_texts().isEmpty());
    EXPECT_EQ(part<QToolButton>("error_button").text(), "&Errors (0)");

    post_message(MSG_SEVERITY::ERROR, 1, "again");
    QCoreApplication::processEvents();
    ASSERT_EQ(shown_texts().size(), 1);
    entry(*m_frame, MOK_MENU_VIEW, MOK_VIEW_CLEAR_MESSAGES)->trigger();
    EXPECT_TRUE(shown_texts().isEmpty());
}

TEST_F(MESSAGES_TEST, an_error_brings_a_hidden_pane_up_and_other_messages_do_not)
{
    m_frame->show();
    MOK_MESSAGE_PANE& pane = *m_frame->get_message_pane();
    EXPECT_FALSE(pane.isVisible());
    post_message(MSG_SEVERITY::WARNING, 1, "warning");
    QCoreApplication::processEvents();
    EXPECT_FALSE(pane.isVisible());
    post_message(MSG_SEVERITY::ERROR, 1, "error");
    QCoreApplication::processEvents();
    EXPECT_TRUE(pane.isVisible());
    EXPECT_TRUE(entry(*m_frame, MOK_MENU_VIEW, MOK_VIEW_MESSAGES)->isChecked());
}

TEST_F(MESSAGES_TEST, the_list_follows_the_latest_message_unless_the_user_has_scrolled_up)
{
    m_frame->get_message_pane()->show();
    m_frame->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(m_frame.get()));
    const auto post_many = [] {
        for (int i = 0; i < 200; ++i) {
            post_message(MSG_SEVERITY::INFORMATION, 1, "text");
        }
        QCoreApplication::processEvents();
    };
    const QScrollBar& bar = *part<NIVO_TREE_VIEW>("message_view").verticalScrollBar();
    post_many();
    EXPECT_GT(bar.maximum(), 0);
    EXPECT_EQ(bar.value(), bar.maximum());
    post_many();
    EXPECT_EQ(bar.value(), bar.maximum());
    part<NIVO_TREE_VIEW>("message_view").verticalScrollBar()->setValue(3);
    post_many();
    EXPECT_EQ(bar.value(), 3);
}

TEST_F(MESSAGES_TEST, a_question_of_the_gui_thread_is_a_modal_box_that_defaults_to_no)
{
    MODAL_ANSWERS answers;
    answers.click(QMessageBox::Yes);
    EXPECT_EQ(MSG_SERVICE::instance().ask(question_record()), 6);
    answers.click(QMessageBox::No);
    EXPECT_EQ(MSG_SERVICE::instance().ask(question_record()), 7);
    answers.run([](QDialog& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); });
    EXPECT_EQ(MSG_SERVICE::instance().ask(question_record()), 7);
    ASSERT_EQ(answers.boxes().size(), 3);
    EXPECT_EQ(answers.boxes()[0].title, "Imagewright");
    EXPECT_EQ(answers.boxes()[0].text, "Do you want to overwrite it?");
    EXPECT_EQ(answers.boxes()[0].icon, QMessageBox::Question);
    EXPECT_EQ(answers.boxes()[0].buttons, QMessageBox::Yes | QMessageBox::No);
    EXPECT_EQ(answers.boxes()[0].default_button, QMessageBox::No);
}

TEST_F(MESSAGES_TEST, a_question_shows_a_file_name_that_looks_like_markup_as_it_is)
{
    MODAL_ANSWERS answers;
    answers.run([](QDialog& dialog) {
        EXPECT_EQ(dynamic_cast<QMessageBox&>(dialog).textFormat(), Qt::PlainText);
        dialog.reject();
    });
    EXPECT_EQ(MSG_SERVICE::instance().ask(question_record()), 7);
}

TEST_F(MESSAGES_TEST, questions_of_workers_are_put_on_the_gui_thread_one_at_a_time)
{
    MODAL_ANSWERS answers;
    int open = 0;
    for (int i = 0; i < 3; ++i) {
        answers.run([&open](QDialog& dialog) {
            EXPECT_EQ(++open, 1);
            // The other questions wait meanwhile; they must not come on top of this one.
            const auto have_all_asked = [] { return MSG_SERVICE::instance().history().size() == 3; };
            EXPECT_TRUE(QTest::qWaitFor(have_all_asked, 30000));
            QCoreApplication::processEvents();
            EXPECT_EQ(QApplication::activeModalWidget(), &dialog);
            EXPECT_EQ(QThread::currentThread(), QCoreApplication::instance()->thread());
            --open;
            dynamic_cast<QMessageBox&>(dialog).button(QMessageBox::Yes)->click();
        });
    }
    std::atomic<int> answered = 0;
    std::atomic<int> yes = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < 3; ++i) {
        threads.emplace_back([&answered, &yes] {
            yes += MSG_SERVICE::instance().ask(question_record()) == MSG_ANSWER_YES ? 1 : 0;
            ++answered;
        });
    }
    EXPECT_TRUE(QTest::qWaitFor([&answered] { return answered == 3; }, 30000));
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(yes, 3);
    EXPECT_EQ(answers.boxes().size(), 3);
}

TEST_F(MESSAGES_TEST, a_question_that_waits_when_the_application_goes_is_answered_with_no)
{
    std::atomic<int> answer = 0;
    std::thread worker([&answer] { answer = MSG_SERVICE::instance().ask(question_record()); });
    // The question is posted to the pane before it is put, so that its row tells that the worker has come to
    // it.
    MSG_SERVICE& service = MSG_SERVICE::instance();
    while (service.history().empty()) {
        std::this_thread::yield();
    }
    m_frame.reset();
    m_app.reset();
    worker.join();
    EXPECT_EQ(answer, MSG_ANSWER_NO);
    EXPECT_EQ(service.ask(question_record()), MSG_ANSWER_NO) << "nobody is left to answer";
}
} // namespace
