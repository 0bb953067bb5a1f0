#ifndef IMAGEWRIGHT_TESTS_MODAL_ANSWERS_H
#define IMAGEWRIGHT_TESTS_MODAL_ANSWERS_H

#include <QDialog>
#include <QList>
#include <QMessageBox>
#include <QObject>
#include <QPointer>
#include <QTimer>

#include <deque>
#include <functional>

/// What a message box said.
struct MODAL_BOX {
    QString title;
    QString text;
    QString informative_text;
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    QMessageBox::StandardButtons buttons;
    QMessageBox::StandardButton default_button = QMessageBox::NoButton;
};

/// Answers the modal dialogs that come up while it lives, in the order in which the answers were given. The
/// test goes on in the dialog's own event loop; nothing waits for a person.
///
///     MODAL_ANSWERS answers;
///     answers.click(QMessageBox::Yes);
///     frame.user_reset();
///     EXPECT_EQ(answers.boxes().at(0).text, "Are you sure you want to reset?");
///
/// A dialog for which there is no answer is rejected and fails the test, and so does an answer that was never
/// asked for. Busy dialogs are passed over.
class MODAL_ANSWERS : public QObject
{
    Q_OBJECT
public:
    MODAL_ANSWERS();
    ~MODAL_ANSWERS() override;

    /// The next dialog is a message box, and this button of it is clicked.
    void click(QMessageBox::StandardButton button);
    /// The next dialog is handed to the function, which ends it.
    void run(std::function<void(QDialog&)> answer);

    /// The message boxes that have come up, in order.
    const QList<MODAL_BOX>& boxes() const { return m_boxes; }
    int waiting() const { return static_cast<int>(m_answers.size()); }

private slots:
    void look();

private:
    QTimer m_timer;
    std::deque<std::function<void(QDialog&)>> m_answers;
    QList<MODAL_BOX> m_boxes;
    QList<QPointer<QDialog>> m_open; ///< the dialogs seen that have not closed yet
};

#endif
