#include "key_entry_fixture.h"
#include "nivo_icon.h"

#include <QCheckBox>
#include <QClipboard>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QInputMethodEvent>
#include <QLabel>
#include <QMimeData>

namespace
{

/// A dialog for keys of 16 bits, on the screen.
class KEY_ENTRY_DIALOG : public KEY_ENTRY_FIXTURE
{
protected:
    KEY_ENTRY_DIALOG() : m_dialog(nullptr) { prepare(QString(), QString(), false); }
    void SetUp() override { show_active(m_dialog); }

    void prepare(const QString& name, const QString& key, bool show_key, unsigned key_bits = 16)
    {
        m_dialog.set_key_name(name);
        m_dialog.set_key(key);
        m_dialog.set_show_key(show_key);
        m_dialog.n_key_bits = key_bits;
        m_dialog.set_confirm(QString());
        m_dialog.common_init();
    }

    void press(const QString& digits) { press_keypad(m_dialog, digits); }
    void use_keyboard() { choose_method(m_dialog, 1); }
    VEK_DLG_KEY_EDIT* name_edit() { return find<VEK_DLG_KEY_EDIT>(m_dialog, "m_key_name_edit"); }
    VEK_DLG_KEY_EDIT* key_edit() { return find<VEK_DLG_KEY_EDIT>(m_dialog, "m_key_edit"); }
    VEK_DLG_KEY_EDIT* confirm_edit() { return find<VEK_DLG_KEY_EDIT>(m_dialog, "m_confirm_edit"); }
    QString key_counter() { return find<QLineEdit>(m_dialog, "m_key_counter")->text(); }
    QString confirm_counter() { return find<QLineEdit>(m_dialog, "m_confirm_counter")->text(); }
    QString instruction() { return find<QLabel>(m_dialog, "m_instruction_label")->text(); }
    QPushButton* clear_button() { return find<QPushButton>(m_dialog, "m_clear_button"); }
    QCheckBox* show_box() { return find<QCheckBox>(m_dialog, "m_show_key_checkbox"); }
    bool is_ok_enabled() { return button(m_dialog, QDialogButtonBox::Ok)->isEnabled(); }
    bool is_keypad_enabled()
    {
        int enabled = 0;
        for (const char* digit = "0123456789abcdef"; *digit != '\0'; ++digit) {
            enabled += keypad_button(m_dialog, QLatin1Char(*digit))->isEnabled() ? 1 : 0;
        }
        EXPECT_TRUE(enabled == 0 || enabled == 16);
        return enabled == 16;
    }
    static void click(QWidget* widget) { QTest::mouseClick(widget, Qt::LeftButton); }
    void expect_message(const std::function<void()>& action, const QString& text)
    {
        MODAL_ANSWERS answers;
        answers.click(QMessageBox::Ok);
        action();
        ASSERT_EQ(answers.boxes().size(), 1);
        EXPECT_EQ(answers.boxes().at(0).text, text);
        EXPECT_EQ(answers.boxes().at(0).icon, QMessageBox::Critical);
        EXPECT_EQ(answers.boxes().at(0).title, QString());
    }

    VEK_DLG_KEY_ENTRY m_dialog;
};

} // namespace

// The window

TEST_F(KEY_ENTRY_DIALOG, the_window_has_its_flags_title_icon_and_fixed_size)
{
    EXPECT_EQ(m_dialog.windowTitle(), QStringLiteral("Encryption Key Entry"));
    EXPECT_EQ(m_dialog.windowIcon().pixmap(32).toImage(), nivo_get_icon(NIVO_ICON_KEY).pixmap(32).toImage());
    EXPECT_FALSE(m_dialog.isSizeGripEnabled());
    EXPECT_EQ(m_dialog.layout()->sizeConstraint(), QLayout::SetFixedSize);
    const Qt::WindowFlags flags = m_dialog.windowFlags();
    EXPECT_TRUE(flags & Qt::MSWindowsFixedSizeDialogHint);
    EXPECT_TRUE(flags & Qt::WindowTitleHint);
    EXPECT_TRUE(flags & Qt::WindowSystemMenuHint);
    EXPECT_TRUE(flags & Qt::WindowCloseButtonHint);
    EXPECT_FALSE(flags & Qt::WindowContextHelpButtonHint);
}

TEST_F(KEY_ENTRY_DIALOG, the_form_has_its_rows_in_order)
{
    const auto* const group = m_dialog.findChild<QGroupBox*>();
    EXPECT_EQ(group->title(), QStringLiteral("Key entry"));
    const auto* const form = qobject_cast<QFormLayout*>(group->layout());
    ASSERT_NE(form, nullptr);
    EXPECT_EQ(form->rowWrapPolicy(), QFormLayout::DontWrapRows);
    EXPECT_EQ(form->formAlignment(), Qt::AlignHCenter | Qt::AlignTop);
    EXPECT_EQ(form->labelAlignment(), Qt::AlignLeft);
    ASSERT_EQ(form->rowCount(), 7);
    const auto label = [form](int row) {
        return qobject_cast<QLabel*>(form->itemAt(row, QFormLayout::LabelRole)->widget())->text();
    };
    EXPECT_EQ(label(0), QStringLiteral("Key Entry Method:"));
    EXPECT_EQ(form->itemAt(1, QFormLayout::SpanningRole)->widget()->objectName(),
              QStringLiteral("m_instruction_label"));
    EXPECT_EQ(form->itemAt(2, QFormLayout::SpanningRole)->widget(), show_box());
    EXPECT_EQ(show_box()->text(), QStringLiteral("Show entered keys"));
    EXPECT_EQ(label(3), QStringLiteral("Key Name (alphanumeric):"));
    EXPECT_EQ(label(4), QStringLiteral("Key (16-bit hexadecimal)"));
    EXPECT_EQ(label(5), QStringLiteral("Confirm Key (16-bit hexadecimal)"));
    EXPECT_NE(form->itemAt(6, QFormLayout::SpanningRole), nullptr);
    EXPECT_EQ(key_edit()->width(), 250);
    EXPECT_EQ(confirm_edit()->width(), 250);
    for (const char* const name : {"m_key_counter", "m_confirm_counter"}) {
        const auto* const counter = find<QLineEdit>(m_dialog, name);
        EXPECT_EQ(counter->width(), 50);
        EXPECT_TRUE(counter->isReadOnly());
        EXPECT_EQ(counter->text(), QStringLiteral("0"));
    }
}

TEST_F(KEY_ENTRY_DIALOG, the_keypad_is_a_grid_of_four_columns)
{
    const auto* const grid = m_dialog.findChild<QGridLayout*>();
    const QString digits = QStringLiteral("0123456789ABCDEF");
    for (int digit = 0; digit < 16; ++digit) {
        auto* const item = grid->itemAtPosition(digit / 4, digit % 4);
        const auto* const pad_button = qobject_cast<QPushButton*>(item->widget());
        ASSERT_NE(pad_button, nullptr);
        EXPECT_EQ(pad_button->text(), QString(digits.at(digit)));
        EXPECT_EQ(pad_button->width(), 50);
        EXPECT_EQ(item->alignment(), Qt::AlignHCenter);
    }
    EXPECT_EQ(clear_button()->text(), QStringLiteral("Clear"));
    EXPECT_EQ(grid->itemAtPosition(4, 0)->widget(), clear_button());
    EXPECT_EQ(grid->itemAtPosition(4, 1)->widget(), clear_button());
    EXPECT_EQ(grid->itemAtPosition(4, 2), nullptr);
}

TEST_F(KEY_ENTRY_DIALOG, the_method_starts_with_the_keypad_and_survives_from_run_to_run)
{
    const auto* const methods = find<QComboBox>(m_dialog, "m_entry_method_cbx");
    ASSERT_EQ(methods->count(), 2);
    EXPECT_EQ(methods->itemText(0), QStringLiteral("On-screen Keypad"));
    EXPECT_EQ(methods->itemText(1), QStringLiteral("Keyboard"));
    EXPECT_EQ(methods->currentIndex(), 0);
    EXPECT_EQ(instruction(), QStringLiteral("Use the on-screen keypad for entering the encryption key"));
    use_keyboard();
    EXPECT_EQ(instruction(), QStringLiteral("Use the keyboard for entering the encryption key"));
    prepare(QString(), QString(), false);
    EXPECT_EQ(methods->count(), 2);
    EXPECT_EQ(methods->currentIndex(), 1);
    EXPECT_EQ(instruction(), QStringLiteral("Use the keyboard for entering the encryption key"));
}

// The keypad

TEST_F(KEY_ENTRY_DIALOG, each_button_enters_its_digit_in_upper_case)
{
    prepare(QString(), QString(), true, 64);
    click(key_edit());
    press(QStringLiteral("0123456789abcdef"));
    EXPECT_EQ(m_dialog.get_key(), QStringLiteral("0123456789ABCDEF"));
    EXPECT_EQ(key_edit()->text(), QStringLiteral("0123456789ABCDEF"));
    EXPECT_EQ(key_counter(), QStringLiteral("16"));
    EXPECT_FALSE(is_keypad_enabled()) << "the key is full";
    EXPECT_TRUE(clear_button()->isEnabled());
    EXPECT_TRUE(key_edit()->hasFocus());
    EXPECT_EQ(key_edit()->cursorPosition(), 16);
}

TEST_F(KEY_ENTRY_DIALOG, with_the_keypad_typing_in_a_key_edit_does_nothing_silently)
{
    MODAL_ANSWERS answers;
    click(key_edit());
    QTest::keyClicks(key_edit(), QStringLiteral("1g\b"));
    EXPECT_EQ(m_dialog.get_key(), QString());
    EXPECT_TRUE(answers.boxes().isEmpty());
}

TEST_F(KEY_ENTRY_DIALOG, the_confirmation_takes_the_keypad_when_it_is_clicked_and_counts_apart)
{
    click(key_edit());
    press(QStringLiteral("12"));
    click(confirm_edit());
    press(QStringLiteral("3"));
    EXPECT_EQ(m_dialog.get_key(), QStringLiteral("12"));
    EXPECT_EQ(m_dialog.get_confirm(), QStringLiteral("3"));
    EXPECT_EQ(key_counter(), QStringLiteral("2"));
    EXPECT_EQ(confirm_counter(), QStringLiteral("1"));
    EXPECT_TRUE(confirm_edit()->hasFocus());
}

TEST_F(KEY_ENTRY_DIALOG, clear_empties_the_current_edit_alone)
{
    click(key_edit());
    press(QStringLiteral("1234"));
    click(confirm_edit());
    EXPECT_FALSE(clear_button()->isEnabled());
    press(QStringLiteral("56"));
    click(clear_button());
    EXPECT_EQ(m_dialog.get_confirm(), QString());
    EXPECT_EQ(confirm_counter(), QStringLiteral("0"));
    EXPECT_EQ(m_dialog.get_key(), QStringLiteral("1234"));
    EXPECT_FALSE(clear_button()->isEnabled());
    EXPECT_TRUE(is_keypad_enabled());
    EXPECT_TRUE(confirm_edit()->hasFocus());
}

TEST_F(KEY_ENTRY_DIALOG, with_the_focus_on_the_name_keypad_and_clear_are_disabled_and_the_name_takes_text)
{
    for (const int method : {0, 1}) {
        choose_method(m_dialog, method);
        click(key_edit());
        if (method == 0) {
            press(QStringLiteral("1"));
        }
        click(name_edit());
        EXPECT_FALSE(is_keypad_enabled());
        EXPECT_FALSE(clear_button()->isEnabled());
        QTest::keyClicks(name_edit(), QStringLiteral("aZ_9"));
        QTest::keyClick(name_edit(), Qt::Key_Backspace, Qt::NoModifier);
    }
    EXPECT_EQ(m_dialog.get_key_name(), QStringLiteral("aZ_aZ_"));
    EXPECT_EQ(name_edit()->text(), QStringLiteral("aZ_aZ_"));
}

TEST_F(KEY_ENTRY_DIALOG, nothing_can_be_entered_before_an_edit_is_chosen)
{
    EXPECT_FALSE(is_keypad_enabled());
    EXPECT_FALSE(clear_button()->isEnabled());
    click(key_edit());
    EXPECT_TRUE(is_keypad_enabled());
}

TEST_F(KEY_ENTRY_DIALOG, the_tab_key_makes_an_edit_current_too)
{
    use_keyboard();
    click(name_edit());
    QTest::keyClick(name_edit(), Qt::Key_Tab);
    ASSERT_TRUE(key_edit()->hasFocus());
    QTest::keyClicks(key_edit(), QStringLiteral("12"));
    QTest::keyClick(key_edit(), Qt::Key_Tab);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    ASSERT_TRUE(confirm_edit()->hasFocus());
    QTest::keyClicks(confirm_edit(), QStringLiteral("3"));
    EXPECT_EQ(m_dialog.get_key(), QStringLiteral("12"));
    EXPECT_EQ(m_dialog.get_confirm(), QStringLiteral("3"));
}

// The keyboard

TEST_F(KEY_ENTRY_DIALOG, with_the_keyboard_the_keypad_is_disabled_and_a_full_key_takes_backspace_alone)
{
    use_keyboard();
    click(key_edit());
    EXPECT_FALSE(is_keypad_enabled());
    QTest::keyClicks(key_edit(), QStringLiteral("1aF0"));
    EXPECT_EQ(m_dialog.get_key(), QStringLiteral("1aF0")) << "as typed, without a change of case";
    EXPECT_EQ(key_counter(), QStringLiteral("4"));
    MODAL_ANSWERS answers;
    QTest::keyClicks(key_edit(), QStringLiteral("5x"));
    EXPECT_TRUE(answers.boxes().isEmpty()) << "dropped silently";
    EXPECT_EQ(m_dialog.get_key(), QStringLiteral("1aF0"));
    QTest::keyClick(key_edit(), Qt::Key_Backspace);
    EXPECT_EQ(m_dialog.get_key(), QStringLiteral("1aF"));
    QTest::keyClicks(key_edit(), QStringLiteral("5"));
    EXPECT_EQ(m_dialog.get_key(), QStringLiteral("1aF5"));
    EXPECT_TRUE(clear_button()->isEnabled());
}

TEST_F(KEY_ENTRY_DIALOG, backspace_on_an_empty_key_does_nothing)
{
    use_keyboard();
    click(key_edit());
    QTest::keyClick(key_edit(), Qt::Key_Backspace);
    EXPECT_EQ(m_dialog.get_key(), QString());
    EXPECT_EQ(key_counter(), QStringLiteral("0"));
    QTest::keyClicks(key_edit(), QStringLiteral("7"));
    EXPECT_EQ(m_dialog.get_key(), QStringLiteral("7"));
}

TEST_F(KEY_ENTRY_DIALOG, a_wrong_digit_is_refused_and_changes_nothing)
{
    use_keyboard();
    click(key_edit());
    QTest::keyClicks(key_edit(), QStringLiteral("1"));
    expect_message(
        [this] { QTest::keyClicks(key_edit(), QStringLiteral("g")); },
        QStringLiteral(
            "g is not a valid hexadecimal character. Please enter a valid hexadecimal character."));
    expect_message([this] { key_edit()->on_char(QString(QChar(0x7F))); },
                   QChar(0x7F) + QStringLiteral(" is not a valid hexadecimal character. Please enter a valid "
                                                "hexadecimal character."));
    expect_message([this] { key_edit()->on_char(QString(QChar(0x20AC))); },
                   QChar(0) + QStringLiteral(" is not a valid hexadecimal character. Please enter a valid "
                                             "hexadecimal character."));
    EXPECT_EQ(m_dialog.get_key(), QStringLiteral("1"));
    EXPECT_EQ(key_counter(), QStringLiteral("1"));
}

TEST_F(KEY_ENTRY_DIALOG, a_wrong_character_of_a_name_is_refused)
{
    click(name_edit());
    expect_message([this] { QTest::keyClicks(name_edit(), QStringLiteral("-")); },
                   QStringLiteral("- is not a valid alphanumeric character. Please enter a valid "
                                  "alphanumeric character."));
    expect_message([this] { name_edit()->on_char(QStringLiteral("é")); },
                   QStringLiteral("é is not a valid alphanumeric character. Please enter a valid "
                                  "alphanumeric character."));
    EXPECT_EQ(m_dialog.get_key_name(), QString());
}

TEST_F(KEY_ENTRY_DIALOG, carriage_return_and_modifiers_are_dropped_silently)
{
    MODAL_ANSWERS answers;
    use_keyboard();
    click(key_edit());
    QTest::keyClick(key_edit(), Qt::Key_Shift);
    key_edit()->on_char(QStringLiteral("\r"));
    name_edit()->on_char(QStringLiteral("\r"));
    EXPECT_TRUE(answers.boxes().isEmpty());
    EXPECT_EQ(m_dialog.get_key(), QString());
}

TEST_F(KEY_ENTRY_DIALOG, an_edit_without_a_dialog_sends_nothing)
{
    VEK_DLG_KEY_EDIT edit(nullptr);
    edit.set_edit_mode(VEK_DLG_KEY_EDIT::MODE_HEX, nullptr);
    edit.send_key_char('1');
    edit.on_char(QStringLiteral("1"));
    EXPECT_EQ(edit.text(), QString());
}

// OK

TEST_F(KEY_ENTRY_DIALOG, ok_needs_a_full_key_a_name_and_a_full_confirmation)
{
    click(key_edit());
    press(QStringLiteral("1234"));
    click(confirm_edit());
    press(QStringLiteral("1234"));
    EXPECT_FALSE(is_ok_enabled()) << "no name";
    click(name_edit());
    QTest::keyClicks(name_edit(), QStringLiteral("k"));
    EXPECT_TRUE(is_ok_enabled());
    QTest::keyClick(name_edit(), Qt::Key_Backspace);
    EXPECT_FALSE(is_ok_enabled());
    QTest::keyClicks(name_edit(), QStringLiteral("k"));
    click(confirm_edit());
    click(clear_button());
    EXPECT_FALSE(is_ok_enabled());
    press(QStringLiteral("123"));
    EXPECT_FALSE(is_ok_enabled()) << "a digit is missing";
    press(QStringLiteral("4"));
    EXPECT_TRUE(is_ok_enabled());
}

TEST_F(KEY_ENTRY_DIALOG, with_the_keys_shown_ok_needs_no_confirmation)
{
    click(key_edit());
    press(QStringLiteral("1234"));
    m_dialog.set_key_name(QStringLiteral("k"));
    EXPECT_EQ(key_edit()->echoMode(), QLineEdit::Password);
    EXPECT_EQ(confirm_edit()->echoMode(), QLineEdit::Password);
    EXPECT_FALSE(is_ok_enabled());
    show_box()->click();
    EXPECT_TRUE(m_dialog.is_show_key());
    EXPECT_EQ(key_edit()->echoMode(), QLineEdit::Normal);
    EXPECT_EQ(key_edit()->displayText(), QStringLiteral("1234"));
    EXPECT_FALSE(confirm_edit()->isEnabled());
    EXPECT_FALSE(find<QLabel>(m_dialog, "m_confirm_label")->isEnabled());
    EXPECT_FALSE(find<QLineEdit>(m_dialog, "m_confirm_counter")->isEnabled());
    EXPECT_TRUE(is_ok_enabled());
    button(m_dialog, QDialogButtonBox::Ok)->click();
    EXPECT_EQ(m_dialog.result(), QDialog::Accepted);
    show_box()->click();
    EXPECT_EQ(key_edit()->echoMode(), QLineEdit::Password);
    EXPECT_TRUE(confirm_edit()->isEnabled());
    EXPECT_FALSE(is_ok_enabled());
}

TEST_F(KEY_ENTRY_DIALOG, keys_that_differ_in_case_do_not_match_and_the_dialog_stays_open)
{
    use_keyboard();
    m_dialog.set_key_name(QStringLiteral("k"));
    click(key_edit());
    QTest::keyClicks(key_edit(), QStringLiteral("abcd"));
    click(confirm_edit());
    QTest::keyClicks(confirm_edit(), QStringLiteral("ABCD"));
    expect_message([this] { button(m_dialog, QDialogButtonBox::Ok)->click(); },
                   QStringLiteral("The key and confirmation key do not match."));
    EXPECT_TRUE(m_dialog.isVisible());
    EXPECT_EQ(m_dialog.get_key(), QStringLiteral("abcd"));
    EXPECT_EQ(m_dialog.get_confirm(), QStringLiteral("ABCD"));
}

TEST_F(KEY_ENTRY_DIALOG, equal_keys_are_accepted)
{
    click(key_edit());
    press(QStringLiteral("1234"));
    click(confirm_edit());
    press(QStringLiteral("1234"));
    click(name_edit());
    QTest::keyClicks(name_edit(), QStringLiteral("k"));
    QTest::keyClick(name_edit(), Qt::Key_Return);
    EXPECT_EQ(m_dialog.result(), QDialog::Accepted);
    EXPECT_EQ(m_dialog.get_key(), QStringLiteral("1234")) << "the key stays after the run";
}

TEST_F(KEY_ENTRY_DIALOG, an_existing_key_wants_to_be_retyped_unless_it_is_shown)
{
    prepare(QStringLiteral("k"), QStringLiteral("1234"), false);
    EXPECT_EQ(key_counter(), QStringLiteral("4"));
    EXPECT_EQ(confirm_counter(), QStringLiteral("0"));
    EXPECT_FALSE(is_ok_enabled());
    prepare(QStringLiteral("k"), QStringLiteral("1234"), true);
    EXPECT_TRUE(show_box()->isChecked());
    EXPECT_EQ(key_edit()->echoMode(), QLineEdit::Normal);
    EXPECT_FALSE(confirm_edit()->isEnabled());
    EXPECT_TRUE(is_ok_enabled());
}

TEST_F(KEY_ENTRY_DIALOG, keys_of_no_bits_take_no_digit)
{
    prepare(QStringLiteral("k"), QString(), false, 0);
    click(key_edit());
    EXPECT_FALSE(is_keypad_enabled());
    use_keyboard();
    click(key_edit());
    QTest::keyClicks(key_edit(), QStringLiteral("1"));
    EXPECT_EQ(m_dialog.get_key(), QString());
}

// Nothing goes past the dialog

TEST_F(KEY_ENTRY_DIALOG, no_digit_reaches_the_clipboard_or_an_undo_history)
{
    QGuiApplication::clipboard()->setText(QStringLiteral("before"));
    show_box()->click();
    use_keyboard();
    click(key_edit());
    QTest::keyClicks(key_edit(), QStringLiteral("12ab"));
    MODAL_ANSWERS answers;
    answers.click(QMessageBox::Ok);
    QTest::mouseDClick(key_edit(), Qt::LeftButton);
    QTest::mousePress(key_edit(), Qt::LeftButton, Qt::NoModifier, QPoint(4, 8));
    QTest::mouseMove(key_edit(), QPoint(60, 8));
    QTest::mouseRelease(key_edit(), Qt::LeftButton, Qt::NoModifier, QPoint(60, 8));
    EXPECT_FALSE(key_edit()->hasSelectedText());
    QTest::keyClick(key_edit(), Qt::Key_Backspace);
    QKeyEvent copy(QEvent::KeyPress, Qt::Key_C, Qt::ControlModifier, QStringLiteral("\x03"));
    QApplication::sendEvent(key_edit(), &copy);
    EXPECT_EQ(answers.boxes().size(), 1) << "a control character like any other";
    EXPECT_EQ(QGuiApplication::clipboard()->text(), QStringLiteral("before"));
    EXPECT_FALSE(key_edit()->isUndoAvailable());
    EXPECT_FALSE(key_edit()->isRedoAvailable());
    EXPECT_EQ(key_edit()->contextMenuPolicy(), Qt::NoContextMenu);
}

TEST_F(KEY_ENTRY_DIALOG, nothing_can_be_pasted_dropped_or_composed_into_an_edit)
{
    use_keyboard();
    click(key_edit());
    QGuiApplication::clipboard()->setText(QStringLiteral("ab"));
    QTest::mouseClick(key_edit(), Qt::MiddleButton);
    QInputMethodEvent composed;
    composed.setCommitString(QStringLiteral("ab"));
    QApplication::sendEvent(key_edit(), &composed);
    QMimeData data;
    data.setText(QStringLiteral("ab"));
    QDropEvent drop(QPointF(2, 2), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(key_edit(), &drop);
    EXPECT_EQ(key_edit()->text(), QString());
    EXPECT_EQ(m_dialog.get_key(), QString());
    EXPECT_FALSE(key_edit()->acceptDrops());
}

TEST_F(KEY_ENTRY_DIALOG, input_methods_learn_nothing)
{
    show_box()->click();
    click(key_edit());
    press(QStringLiteral("12"));
    QInputMethodQueryEvent question(Qt::ImQueryAll);
    QApplication::sendEvent(key_edit(), &question);
    for (const auto query :
         {Qt::ImSurroundingText, Qt::ImCurrentSelection, Qt::ImTextBeforeCursor, Qt::ImTextAfterCursor}) {
        EXPECT_EQ(question.value(query), QVariant());
        QVariant answer;
        QMetaObject::invokeMethod(key_edit(), "inputMethodQuery", Q_RETURN_ARG(QVariant, answer),
                                  Q_ARG(Qt::InputMethodQuery, query), Q_ARG(QVariant, QVariant()));
        EXPECT_EQ(answer, QVariant());
    }
    EXPECT_EQ(question.value(Qt::ImEnabled), QVariant(false));
}
