#include "modal_answers.h"

#include "nivo_busy_dlg.h"

#include <QApplication>
#include <QPushButton>
#include <gtest/gtest.h>

#include <algorithm>

namespace
{
QString description(const QDialog& dialog)
{
    const QMessageBox* const box = qobject_cast<const QMessageBox*>(&dialog);
    return box == nullptr ? dialog.windowTitle() : box->windowTitle() + ": " + box->text();
}

MODAL_BOX contents(const QMessageBox& box)
{
    MODAL_BOX result{box.windowTitle(), box.text(), box.informativeText(), box.icon(), box.standardButtons()};
    if (box.defaultButton() != nullptr) {
        result.default_button = box.standardButton(box.defaultButton());
    }
    return result;
}
} // namespace

MODAL_ANSWERS::MODAL_ANSWERS()
{
    connect(&m_timer, SIGNAL(timeout()), this, SLOT(look()));
    m_timer.start(1);
}

MODAL_ANSWERS::~MODAL_ANSWERS()
{
    if (!m_answers.empty()) {
        ADD_FAILURE() << m_answers.size() << " answers found no dialog";
    }
}

void MODAL_ANSWERS::click(QMessageBox::StandardButton button)
{
    run([button](QDialog& dialog) {
        QMessageBox* const box = qobject_cast<QMessageBox*>(&dialog);
        QAbstractButton* const found = box == nullptr ? nullptr : box->button(button);
        if (found == nullptr) {
            ADD_FAILURE() << "no such button in " << description(dialog).toStdString();
            dialog.reject();
            return;
        }
        found->click();
    });
}

void MODAL_ANSWERS::run(std::function<void(QDialog&)> answer)
{
    m_answers.push_back(std::move(answer));
}

void MODAL_ANSWERS::look()
{
    QDialog* const dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
    // A dialog comes to the front again when one that it opened closes; only a closed one counts as new.
    m_open.erase(
        std::remove_if(m_open.begin(), m_open.end(),
                       [](const QPointer<QDialog>& seen) { return seen == nullptr || !seen->isVisible(); }),
        m_open.end());
    if (dialog == nullptr || m_open.contains(dialog) || !dialog->isVisible() ||
        qobject_cast<NIVO_BUSY_DLG*>(dialog) != nullptr) {
        return;
    }
    m_open.append(dialog);
    if (const QMessageBox* const box = qobject_cast<QMessageBox*>(dialog)) {
        m_boxes.append(contents(*box));
    }
    if (m_answers.empty()) {
        ADD_FAILURE() << "a dialog without an answer: " << description(*dialog).toStdString();
        dialog->reject();
        return;
    }
    // Not from this timer, which would rest while the answer opens a dialog of its own.
    QTimer::singleShot(0, dialog, [answer = std::move(m_answers.front()), dialog] { answer(*dialog); });
    m_answers.pop_front();
}
