#include "mok_question_desk.h"

#include "msg_service.h"

#include <QApplication>
#include <QMessageBox>
#include <QThread>

#include <deque>
#include <future>
#include <mutex>

struct MOK_QUESTION_DESK::QUESTION {
    QString text;
    std::promise<int> answer;
};

/// Outlives the desk for as long as a thread is on its way to ask.
struct MOK_QUESTION_DESK::STATE {
    std::mutex mutex;
    std::deque<std::shared_ptr<QUESTION>> waiting;
    MOK_QUESTION_DESK* desk = nullptr; ///< null when it has gone
    bool is_serving = false;           ///< GUI thread only
};

MOK_QUESTION_DESK::MOK_QUESTION_DESK() : m_state(std::make_shared<STATE>())
{
    m_state->desk = this;
    MSG_SERVICE::instance().set_answerer(
        [state = m_state](const MSG_RECORD& record) { return ask(state, record); });
}

MOK_QUESTION_DESK::~MOK_QUESTION_DESK()
{
    MSG_SERVICE::instance().set_answerer({});
    const std::lock_guard<std::mutex> lock(m_state->mutex);
    m_state->desk = nullptr;
    for (const std::shared_ptr<QUESTION>& question : m_state->waiting) {
        question->answer.set_value(MSG_ANSWER_NO);
    }
    m_state->waiting.clear();
}

int MOK_QUESTION_DESK::ask(const std::shared_ptr<STATE>& state, const MSG_RECORD& record)
{
    const QString text = QString::fromLocal8Bit(record.text.c_str());
    if (QThread::currentThread() == QCoreApplication::instance()->thread()) {
        return show_box(text);
    }
    const auto question = std::make_shared<QUESTION>();
    question->text = text;
    std::future<int> answer = question->answer.get_future();
    {
        const std::lock_guard<std::mutex> lock(state->mutex);
        if (state->desk == nullptr) {
            return MSG_ANSWER_NO;
        }
        state->waiting.push_back(question);
        QMetaObject::invokeMethod(state->desk, "serve", Qt::QueuedConnection);
    }
    return answer.get();
}

void MOK_QUESTION_DESK::serve()
{
    // The state stays when the desk goes while a box is open.
    const std::shared_ptr<STATE> state = m_state;
    if (state->is_serving) {
        return;
    }
    state->is_serving = true;
    for (;;) {
        std::shared_ptr<QUESTION> question;
        {
            const std::lock_guard<std::mutex> lock(state->mutex);
            if (state->waiting.empty()) {
                break;
            }
            question = state->waiting.front();
            state->waiting.pop_front();
        }
        question->answer.set_value(show_box(question->text));
    }
    state->is_serving = false;
}

int MOK_QUESTION_DESK::show_box(const QString& text)
{
    QWidget* const modal = QApplication::activeModalWidget();
    QMessageBox box(QMessageBox::Question, tr("Imagewright"), text, QMessageBox::Yes | QMessageBox::No,
                    modal != nullptr ? modal : QApplication::activeWindow());
    box.setObjectName(QStringLiteral("question_box"));
    box.setTextFormat(Qt::PlainText);
    // What a question is about gets lost with yes: the safe answer is the one that a hasty Return gives.
    box.setDefaultButton(QMessageBox::No);
    return box.exec() == QMessageBox::Yes ? MSG_ANSWER_YES : MSG_ANSWER_NO;
}
