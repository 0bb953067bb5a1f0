#ifndef VEK_KEY_TEXT_H
#define VEK_KEY_TEXT_H

#include <QLineEdit>
#include <QString>

class QComboBox;

/// What keeps the digits of keys from staying behind in memory. A QString that shares its text with another
/// would take the other's digits away when it is wiped, so each owner of a key has a text of its own, made
/// with `copy`, and wipes it before it lets go of it. What Qt keeps all the same stands in docs/security.md.
class VEK_KEY_TEXT
{
public:
    /// A text that shares nothing with `text`, with room to grow to `capacity` characters in place.
    static QString copy(const QString& text, int capacity = 0);
    /// Adds a character; a text that has to move leaves nothing at its old place.
    static void append(QString& text, QChar character);
    /// Overwrites the characters and leaves the text empty. A text that is shared, or part of the program, is
    /// only let go of.
    static void wipe(QString& text);

    /// Overwrites the part of the stack that calls before this one have left. The run-time linker and the
    /// functions that copy whole registers leave pieces of a key there.
    static void wipe_stack();

    /// Shows a copy of `text` in the echo mode; what the edit showed before is overwritten, unless somebody
    /// outside it has kept it.
    static void show(QLineEdit& edit, const QString& text, QLineEdit::EchoMode echo_mode);
    /// The same without a change of the echo mode.
    static void show(QLineEdit& edit, const QString& text);
    /// Overwrites the text of a row that is about to leave the combo.
    static void wipe_row(QComboBox& combo, int row);
};

#endif
