#ifndef VEK_DLG_KEY_EDIT_H
#define VEK_DLG_KEY_EDIT_H

#include <QLineEdit>
#include <QVariant>

class VEK_DLG_KEY_ENTRY;

/// An edit that only shows: nothing that is typed, pasted, dropped or composed goes into it. It announces
/// keys and clicks, and hands the characters that its mode takes to the dialog, which sets the text.
class VEK_DLG_KEY_EDIT : public QLineEdit
{
    Q_OBJECT
public:
    enum mode : int {
        MODE_DISABLED = 0,     ///< takes no character from the keyboard
        MODE_HEX = 1,          ///< hexadecimal digits, for the key
        MODE_ALPHANUMERIC = 2, ///< characters of a name
    };

    explicit VEK_DLG_KEY_EDIT(QWidget* parent);

    void set_edit_mode(mode edit_mode, VEK_DLG_KEY_ENTRY* dialog);
    /// Without the keyboard an edit for digits takes backspace alone.
    void enable_keyboard(bool enabled);
    void send_key_char(char character);
    /// Takes the first character of what was typed, or says why not.
    void on_char(QString text);

    /// Tells input methods nothing, so that the digits do not leave the process through them. Both forms are
    /// asked for.
    QVariant inputMethodQuery(Qt::InputMethodQuery query) const override;
    Q_INVOKABLE QVariant inputMethodQuery(Qt::InputMethodQuery query, QVariant argument) const;

signals:
    void mouse_click();
    void key_press(const QString& text);

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    /// Drops what would select, copy, paste or compose past the dialog.
    bool event(QEvent* event) override;

private:
    void refuse(const QString& sentence, char character);

    bool m_is_keyboard_enabled = true;
    VEK_DLG_KEY_ENTRY* m_dialog = nullptr;
    mode m_mode = MODE_DISABLED;
};

#endif
