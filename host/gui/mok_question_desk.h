#ifndef MOK_QUESTION_DESK_H
#define MOK_QUESTION_DESK_H

#include "msg_base.h"

#include <QObject>
#include <QString>

#include <memory>

/// Puts the yes-or-no questions of all threads to the user, one after the other, in a modal box on the GUI
/// thread. The thread that asks waits for the answer; meanwhile the GUI thread must not wait for it.
///
/// It is the answerer of the message service while it lives. When it goes, all questions that still wait are
/// answered with no, so that no thread is left behind.
class MOK_QUESTION_DESK : public QObject
{
    Q_OBJECT
public:
    MOK_QUESTION_DESK();
    ~MOK_QUESTION_DESK() override;

private slots:
    void serve();

private:
    struct QUESTION;
    struct STATE;

    static int ask(const std::shared_ptr<STATE>& state, const MSG_RECORD& record);
    static int show_box(const QString& text);

    std::shared_ptr<STATE> m_state;
};

#endif
