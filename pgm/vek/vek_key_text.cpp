#include "vek_key_text.h"

#include <QComboBox>

#include <algorithm>
#include <array>
#include <cstring>

namespace
{

constexpr int SHORTEST_ROOM = 32;
/// Deeper than any call on the way of a key reaches.
constexpr std::size_t LEFT_STACK = 64 * 1024;

/// Overwrites the characters where they lie, unless more than `owners` share them.
void overwrite(QString& text, int owners)
{
    const QString::DataPtr data = text.data_ptr();
    if (!text.isEmpty() && !data->ref.isStatic() && data->ref.atomic.loadRelaxed() <= owners) {
        explicit_bzero(const_cast<QChar*>(text.constData()),
                       static_cast<std::size_t>(text.size()) * sizeof(QChar));
    }
}

// Who owns a text that a widget has just handed out, this side included: an edit keeps its text once and what
// it displays twice, in its layout and in the layout's engine, a combo once.
constexpr int OWNERS_OF_TEXT = 2;
constexpr int OWNERS_OF_DISPLAY_TEXT = 3;

} // namespace

QString VEK_KEY_TEXT::copy(const QString& text, int capacity)
{
    QString result;
    result.reserve(std::max({text.size(), capacity, 1}));
    result.append(text.constData(), text.size());
    return result;
}

void VEK_KEY_TEXT::append(QString& text, QChar character)
{
    if (!text.isDetached() || text.size() >= text.capacity()) {
        QString longer = copy(text, std::max(2 * text.size(), SHORTEST_ROOM));
        wipe(text);
        text.swap(longer);
    }
    text.append(character);
}

void VEK_KEY_TEXT::wipe(QString& text)
{
    overwrite(text, 1);
    text = QString();
}

void VEK_KEY_TEXT::wipe_stack()
{
    std::array<char, LEFT_STACK> left;
    explicit_bzero(left.data(), left.size());
}

void VEK_KEY_TEXT::show(QLineEdit& edit, const QString& text, QLineEdit::EchoMode echo_mode)
{
    QString old_text = edit.text();
    QString old_display_text = edit.displayText();
    overwrite(old_text, OWNERS_OF_TEXT);
    overwrite(old_display_text, OWNERS_OF_DISPLAY_TEXT);
    edit.setText(QString()); // and not clear(), which remembers what it removes
    edit.setEchoMode(echo_mode);
    edit.setText(copy(text));
}

void VEK_KEY_TEXT::show(QLineEdit& edit, const QString& text)
{
    show(edit, text, edit.echoMode());
}

void VEK_KEY_TEXT::wipe_row(QComboBox& combo, int row)
{
    QString text = combo.itemText(row);
    overwrite(text, OWNERS_OF_TEXT);
}
