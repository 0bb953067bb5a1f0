#include "vek_dlg_key_edit.h"

#include "vek_dlg_key_entry.h"

#include <QKeyEvent>
#include <QMessageBox>

namespace
{

constexpr char BACKSPACE = 8;
constexpr char CARRIAGE_RETURN = 13;

bool is_digit(char character)
{
    return character >= '0' && character <= '9';
}

bool is_hexadecimal(char character)
{
    return is_digit(character) || (character >= 'a' && character <= 'f') ||
           (character >= 'A' && character <= 'F');
}

bool is_of_a_name(char character)
{
    return is_digit(character) || (character >= 'A' && character <= 'Z') ||
           (character >= 'a' && character <= 'z') || character == '_';
}

} // namespace

VEK_DLG_KEY_EDIT::VEK_DLG_KEY_EDIT(QWidget* parent) : QLineEdit(parent)
{
    setContextMenuPolicy(Qt::NoContextMenu);
    setAcceptDrops(false);
    setDragEnabled(false);
}

void VEK_DLG_KEY_EDIT::set_edit_mode(mode edit_mode, VEK_DLG_KEY_ENTRY* dialog)
{
    m_mode = edit_mode;
    m_dialog = dialog;
}

void VEK_DLG_KEY_EDIT::enable_keyboard(bool enabled)
{
    m_is_keyboard_enabled = enabled;
}

void VEK_DLG_KEY_EDIT::send_key_char(char character)
{
    if (m_dialog == nullptr) {
        return;
    }
    switch (m_mode) {
    case MODE_DISABLED:
        return;
    case MODE_HEX:
        return m_dialog->set_key_char(character);
    case MODE_ALPHANUMERIC:
        return m_dialog->update_key_name(character);
    }
}

void VEK_DLG_KEY_EDIT::on_char(QString text)
{
    // Zero, for a character beyond these, is in no list.
    const char character = text.isEmpty() ? '\0' : text.at(0).toLatin1();
    switch (m_mode) {
    case MODE_DISABLED:
        return;
    case MODE_HEX:
        if (character == BACKSPACE || (m_is_keyboard_enabled && is_hexadecimal(character))) {
            send_key_char(character);
        } else if (m_is_keyboard_enabled && character != CARRIAGE_RETURN) {
            refuse(tr("%c is not a valid hexadecimal character. Please enter a valid hexadecimal "
                      "character."),
                   character);
        }
        return;
    case MODE_ALPHANUMERIC:
        if (character == BACKSPACE || is_of_a_name(character)) {
            send_key_char(character);
        } else if (character != CARRIAGE_RETURN) {
            refuse(tr("%c is not a valid alphanumeric character. Please enter a valid alphanumeric "
                      "character."),
                   character);
        }
        return;
    }
}

void VEK_DLG_KEY_EDIT::refuse(const QString& sentence, char character)
{
    QMessageBox box(this);
    box.setIcon(QMessageBox::Critical);
    box.setTextFormat(Qt::PlainText);
    box.setText(QString(sentence).replace(QLatin1String("%c"), QString(QLatin1Char(character))));
    box.exec();
}

QVariant VEK_DLG_KEY_EDIT::inputMethodQuery(Qt::InputMethodQuery query) const
{
    switch (query) {
    case Qt::ImCursorRectangle:
    case Qt::ImAnchorRectangle:
    case Qt::ImFont:
    case Qt::ImHints:
        return QLineEdit::inputMethodQuery(query);
    case Qt::ImEnabled:
        return false;
    default:
        return {};
    }
}

QVariant VEK_DLG_KEY_EDIT::inputMethodQuery(Qt::InputMethodQuery query, QVariant) const
{
    return inputMethodQuery(query);
}

void VEK_DLG_KEY_EDIT::mousePressEvent(QMouseEvent* event)
{
    emit mouse_click();
    QWidget::mousePressEvent(event);
}

void VEK_DLG_KEY_EDIT::keyPressEvent(QKeyEvent* event)
{
    emit key_press(event->text());
    QWidget::keyPressEvent(event);
}

bool VEK_DLG_KEY_EDIT::event(QEvent* event)
{
    switch (event->type()) {
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseMove:
    case QEvent::MouseButtonRelease:
    case QEvent::InputMethod:
    case QEvent::DragEnter:
    case QEvent::DragMove:
    case QEvent::Drop:
        return true;
    case QEvent::FocusOut: {
        // Qt is silent when the text has not changed; who waits for the focus to leave must hear of it.
        const bool is_handled = QLineEdit::event(event);
        emit editingFinished();
        return is_handled;
    }
    default:
        return QLineEdit::event(event);
    }
}
