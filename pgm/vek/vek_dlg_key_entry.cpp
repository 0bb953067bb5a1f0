#include "vek_dlg_key_entry.h"

#include "msg_internal_error.h"
#include "nivo_help.h"
#include "thr_drl.h"
#include "vek_key_text.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QKeyEvent>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>

namespace
{

constexpr char BACKSPACE = 8;

void show_help(const char* topic)
{
    static THR_DRL_HANDLE module = nullptr;
    if (module == nullptr) {
        module = thr_drl_load(NIVO_HELP_MODULE);
        VEK_ASSERT_TEXT(module != nullptr, thr_drl_get_error());
    }
    const auto show_context =
        reinterpret_cast<NIVO_HELP_SHOW_CONTEXT>(thr_drl_find_function(module, NIVO_HELP_ENTRY));
    VEK_ASSERT_TEXT(show_context != nullptr, thr_drl_get_error());
    show_context(topic);
}

/// The count of the digits shows beside them, as a number.
QString count_text(int count)
{
    return QStringLiteral("%0").arg(count);
}

} // namespace

VEK_DLG_KEY_ENTRY::~VEK_DLG_KEY_ENTRY()
{
    VEK_KEY_TEXT::show(*m_key_edit, QString());
    VEK_KEY_TEXT::show(*m_confirm_edit, QString());
    VEK_KEY_TEXT::wipe(m_key);
    VEK_KEY_TEXT::wipe(m_confirm);
}

void VEK_DLG_KEY_ENTRY::set_key_name(QString name)
{
    m_key_name = std::move(name);
    m_key_name_edit->setText(m_key_name);
}

void VEK_DLG_KEY_ENTRY::set_key(QString key)
{
    VEK_KEY_TEXT::wipe(m_key);
    m_key = VEK_KEY_TEXT::copy(key, get_digits());
    VEK_KEY_TEXT::wipe(key);
    m_key_count = m_key.size();
    m_key_counter->setText(count_text(m_key_count));
    VEK_KEY_TEXT::show(*m_key_edit, m_key);
}

void VEK_DLG_KEY_ENTRY::set_confirm(QString confirm)
{
    VEK_KEY_TEXT::wipe(m_confirm);
    m_confirm = VEK_KEY_TEXT::copy(confirm, get_digits());
    VEK_KEY_TEXT::wipe(confirm);
    m_confirm_count = m_confirm.size();
    m_confirm_counter->setText(count_text(m_confirm_count));
    VEK_KEY_TEXT::show(*m_confirm_edit, m_confirm);
}

void VEK_DLG_KEY_ENTRY::set_show_key(bool show_key)
{
    m_show_key = show_key;
    m_show_key_checkbox->setChecked(show_key);
}

QString VEK_DLG_KEY_ENTRY::get_key_name() const
{
    return m_key_name;
}

QString VEK_DLG_KEY_ENTRY::get_key() const
{
    return VEK_KEY_TEXT::copy(m_key);
}

QString VEK_DLG_KEY_ENTRY::get_confirm() const
{
    return VEK_KEY_TEXT::copy(m_confirm);
}

bool VEK_DLG_KEY_ENTRY::is_show_key() const
{
    return m_show_key;
}

int VEK_DLG_KEY_ENTRY::get_digits() const
{
    return static_cast<int>(n_key_bits / 4);
}

VEK_DLG_KEY_EDIT* VEK_DLG_KEY_ENTRY::get_current_edit() const
{
    return m_current_edit == CURRENT_KEY ? m_key_edit : m_confirm_edit;
}

int VEK_DLG_KEY_ENTRY::get_current_count() const
{
    return m_current_edit == CURRENT_KEY ? m_key_count : m_confirm_count;
}

void VEK_DLG_KEY_ENTRY::common_init()
{
    if (!isVisible()) {
        // The last run has left the focus on OK, which is disabled now and could not take it.
        m_entry_method_cbx->setFocus(Qt::OtherFocusReason);
    }
    m_key_count = m_key.size();
    m_key_counter->setText(count_text(m_key_count));
    m_confirm_counter->setText(count_text(m_confirm.size()));
    m_key_name_edit->set_edit_mode(VEK_DLG_KEY_EDIT::MODE_ALPHANUMERIC, this);
    m_entry_method_cbx->clear();
    m_entry_method_cbx->addItem(QString::fromLatin1(KEY_ENTRY_OSKEYPAD));
    m_entry_method_cbx->addItem(QString::fromLatin1(KEY_ENTRY_KEYBOARD));
    m_entry_method_cbx->setCurrentIndex(
        m_entry_method_cbx->findText(m_entry_method, Qt::MatchExactly | Qt::MatchCaseSensitive));
    enable_confirm(!m_show_key);
    m_key_label->setText(tr("Key (%0-bit hexadecimal)").arg(n_key_bits));
    m_confirm_label->setText(tr("Confirm Key (%0-bit hexadecimal)").arg(n_key_bits));
    enable_entry_method();
}

/// With the key in sight there is nothing to confirm.
void VEK_DLG_KEY_ENTRY::enable_confirm(bool enabled)
{
    m_confirm_label->setEnabled(enabled);
    m_confirm_edit->setEnabled(enabled);
    m_confirm_counter->setEnabled(enabled);
    if (enabled) {
        VEK_KEY_TEXT::show(*m_confirm_edit, m_confirm, QLineEdit::Password);
    }
    VEK_KEY_TEXT::show(*m_key_edit, m_key, enabled ? QLineEdit::Password : QLineEdit::Normal);
}

void VEK_DLG_KEY_ENTRY::set_key_char(char character)
{
    QString& text = m_current_edit == CURRENT_KEY ? m_key : m_confirm;
    int& count = m_current_edit == CURRENT_KEY ? m_key_count : m_confirm_count;
    if (character == BACKSPACE) {
        if (count > 0) {
            --count;
            text.remove(count, 1);
        }
    } else {
        ++count;
        VEK_KEY_TEXT::append(text, QLatin1Char(character));
    }
    VEK_KEY_TEXT::show(*m_key_edit, m_key);
    VEK_KEY_TEXT::show(*m_confirm_edit, m_confirm);
    m_key_counter->setText(count_text(m_key_count));
    m_confirm_counter->setText(count_text(m_confirm_count));
    set_focus_key_edit();
    enable_entry_method();
}

void VEK_DLG_KEY_ENTRY::update_key_name(char character)
{
    QString name = m_key_name;
    if (character == BACKSPACE) {
        name.chop(1);
    } else {
        name.append(QLatin1Char(character));
    }
    set_key_name(name);
    enable_ok();
}

void VEK_DLG_KEY_ENTRY::set_keypad_state(bool enabled)
{
    for (QPushButton* const button : m_keypad_buttons) {
        button->setEnabled(enabled);
    }
}

void VEK_DLG_KEY_ENTRY::enable_ok()
{
    m_button_box->button(QDialogButtonBox::Ok)
        ->setEnabled(m_key_count == get_digits() && !m_key_name.isEmpty() &&
                     (m_show_key || m_confirm_count == m_key_count));
}

void VEK_DLG_KEY_ENTRY::set_focus_key_edit()
{
    VEK_DLG_KEY_EDIT* const edit = get_current_edit();
    edit->setFocus(Qt::OtherFocusReason);
    edit->setCursorPosition(get_current_count());
}

void VEK_DLG_KEY_ENTRY::enable_entry_method()
{
    const bool is_keypad = m_entry_method == QLatin1String(KEY_ENTRY_OSKEYPAD);
    const auto set_edit_modes = [this](VEK_DLG_KEY_EDIT::mode edit_mode, VEK_DLG_KEY_ENTRY* dialog) {
        m_key_edit->set_edit_mode(edit_mode, dialog);
        m_confirm_edit->set_edit_mode(edit_mode, dialog);
    };
    bool can_clear = false;
    QWidget* const focused = QApplication::focusWidget();
    if (focused == m_key_edit || focused == m_confirm_edit) {
        can_clear = get_current_count() > 0;
        const bool can_type = get_current_count() < get_digits();
        get_current_edit()->enable_keyboard(can_type);
        if (is_keypad) {
            set_edit_modes(VEK_DLG_KEY_EDIT::MODE_DISABLED, nullptr);
            set_keypad_state(can_type);
        } else {
            set_edit_modes(VEK_DLG_KEY_EDIT::MODE_HEX, this);
            set_keypad_state(false);
        }
        focused->setFocus(Qt::OtherFocusReason);
        if (focused == m_key_edit) {
            m_key_edit->setCursorPosition(m_key_counter->text().toInt());
        } else {
            m_confirm_edit->setCursorPosition(m_confirm_counter->text().toInt());
        }
    } else {
        set_keypad_state(false);
        set_edit_modes(VEK_DLG_KEY_EDIT::MODE_DISABLED, nullptr);
    }
    m_instruction_text = QString::fromLatin1(is_keypad ? OSKEYPAD_INSTRUCTION : KEYBOARD_INSTRUCTION);
    m_instruction_label->setText(m_instruction_text);
    m_clear_button->setEnabled(can_clear);
    enable_ok();
}

void VEK_DLG_KEY_ENTRY::on_click_clear()
{
    if (m_current_edit == CURRENT_KEY) {
        set_key(QString());
    } else {
        set_confirm(QString());
    }
    set_focus_key_edit();
    enable_entry_method();
}

void VEK_DLG_KEY_ENTRY::on_click_show_key()
{
    m_show_key = m_show_key_checkbox->isChecked();
    enable_confirm(!m_show_key);
    enable_ok();
}

void VEK_DLG_KEY_ENTRY::on_select_entry_method()
{
    m_entry_method = m_entry_method_cbx->currentText();
    enable_entry_method();
}

void VEK_DLG_KEY_ENTRY::on_keypress_key_name_edit(const QString& text)
{
    if (!text.isEmpty()) {
        m_key_name_edit->on_char(text);
    }
}

void VEK_DLG_KEY_ENTRY::on_keypress_key_edit(const QString& text)
{
    if (!text.isEmpty()) {
        m_key_edit->on_char(text);
    }
}

void VEK_DLG_KEY_ENTRY::on_keypress_confirm_edit(const QString& text)
{
    if (!text.isEmpty()) {
        m_confirm_edit->on_char(text);
    }
}

void VEK_DLG_KEY_ENTRY::on_click_key_edit()
{
    m_current_edit = CURRENT_KEY;
    enable_entry_method();
}

void VEK_DLG_KEY_ENTRY::on_click_confirm_edit()
{
    m_current_edit = CURRENT_CONFIRM;
    enable_entry_method();
}

void VEK_DLG_KEY_ENTRY::on_killfocus_key_edit()
{
    const QWidget* const focused = QApplication::focusWidget();
    if (focused == m_key_name_edit || focused == m_key_counter || focused == m_confirm_counter) {
        enable_entry_method();
    }
}

void VEK_DLG_KEY_ENTRY::OnOK()
{
    if (!m_show_key && m_key != m_confirm) {
        QMessageBox box(this);
        box.setIcon(QMessageBox::Critical);
        box.setText(tr("The key and confirmation key do not match."));
        box.exec();
        return;
    }
    accept();
}

bool VEK_DLG_KEY_ENTRY::event(QEvent* event)
{
    if (event->type() == QEvent::KeyPress && static_cast<QKeyEvent*>(event)->key() == Qt::Key_F1) {
        show_help(NIVO_HELP_KEY_ENTRY);
    }
    return NIVO_DIALOG::event(event);
}
