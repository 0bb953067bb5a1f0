#ifndef IMAGEWRIGHT_TESTS_KEY_ENTRY_FIXTURE_H
#define IMAGEWRIGHT_TESTS_KEY_ENTRY_FIXTURE_H

#include "vek_dlg_key_entry.h"
#include "vek_frame_fixture.h"
#include "vek_key_entry_edit.h"

#include <QDialogButtonBox>
#include <QLineEdit>
#include <QtTest>

#include <functional>

/// Drives the key entry dialog as a user does.
class KEY_ENTRY_FIXTURE : public VEK_FRAME_FIXTURE
{
protected:
    template <class WIDGET>
    static WIDGET* find(const QWidget& parent, const char* name)
    {
        auto* const widget = parent.findChild<WIDGET*>(QString::fromLatin1(name));
        EXPECT_NE(widget, nullptr) << name;
        return widget;
    }

    static QPushButton* button(const QDialog& dialog, QDialogButtonBox::StandardButton which)
    {
        return dialog.findChild<QDialogButtonBox*>()->button(which);
    }
    static QPushButton* keypad_button(const VEK_DLG_KEY_ENTRY& dialog, QChar digit)
    {
        return dialog.findChild<QPushButton*>(QStringLiteral("m_button_") + digit.toLower());
    }
    static void press_keypad(const VEK_DLG_KEY_ENTRY& dialog, const QString& digits)
    {
        for (const QChar digit : digits) {
            QTest::mouseClick(keypad_button(dialog, digit), Qt::LeftButton);
        }
    }
    static void choose_method(const VEK_DLG_KEY_ENTRY& dialog, int index)
    {
        auto* const methods = find<QComboBox>(dialog, "m_entry_method_cbx");
        methods->setFocus();
        QTest::keyClick(methods, index == 0 ? Qt::Key_Home : Qt::Key_End);
        ASSERT_EQ(methods->currentIndex(), index);
    }
    /// The focus rules need an active window.
    static void show_active(QWidget& window)
    {
        window.show();
        window.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    }

    /// A dialog with a parent counts as active before the focus is in it, and the offscreen platform does not
    /// activate a window again that was hidden while it was active.
    static bool wait_for_focus(QDialog& dialog)
    {
        return QTest::qWaitFor([&dialog] {
            QApplication::setActiveWindow(nullptr);
            QApplication::setActiveWindow(&dialog);
            return QApplication::focusWidget() != nullptr && QApplication::focusWidget()->window() == &dialog;
        });
    }

    /// Presses a button of the row and lets `user` work in the dialog that it opens.
    static void run_dialog(VEK_KEY_ENTRY_EDIT& edit, const char* button_name,
                           const std::function<void(VEK_DLG_KEY_ENTRY&)>& user)
    {
        bool has_run = false;
        QTimer::singleShot(0, &edit, [&] {
            auto* const dialog = qobject_cast<VEK_DLG_KEY_ENTRY*>(QApplication::activeModalWidget());
            ASSERT_NE(dialog, nullptr);
            EXPECT_TRUE(wait_for_focus(*dialog));
            user(*dialog);
            has_run = true;
            if (dialog->isVisible()) {
                ADD_FAILURE() << "the dialog was left open";
                dialog->reject();
            }
        });
        find<QToolButton>(edit, button_name)->click();
        EXPECT_TRUE(has_run);
    }

    /// Types name, key and confirmation with the keyboard and presses OK.
    static void type_key(VEK_DLG_KEY_ENTRY& dialog, const QString& name, const QString& key)
    {
        choose_method(dialog, 1);
        type(find<VEK_DLG_KEY_EDIT>(dialog, "m_key_name_edit"), name);
        type(find<VEK_DLG_KEY_EDIT>(dialog, "m_key_edit"), key);
        auto* const confirm_edit = find<VEK_DLG_KEY_EDIT>(dialog, "m_confirm_edit");
        if (confirm_edit->isEnabled()) {
            type(confirm_edit, key);
        }
        QTest::mouseClick(button(dialog, QDialogButtonBox::Ok), Qt::LeftButton);
    }
    /// In place of what stands there.
    static void type(VEK_DLG_KEY_EDIT* edit, const QString& text)
    {
        QTest::mouseClick(edit, Qt::LeftButton);
        for (int length = edit->text().size(); length > 0; --length) {
            QTest::keyClick(edit, Qt::Key_Backspace);
        }
        for (const QChar character : text) {
            QTest::keyClick(edit, character.toLatin1());
        }
    }
};

#endif
