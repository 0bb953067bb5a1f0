#ifndef IMAGEWRIGHT_TESTS_USER_HANDS_H
#define IMAGEWRIGHT_TESTS_USER_HANDS_H

#include <QAbstractItemView>
#include <QComboBox>
#include <QLineEdit>
#include <QMainWindow>
#include <QTabWidget>

/// What a user does with mouse and keyboard, on widgets that have to be seen and enabled for it: a widget
/// that is not fails the test.
class USER_HANDS
{
public:
    static void click(QWidget& widget);
    static void click(const QWidget& window, const char* object_name);
    /// Clicks the button of a dialog's button box.
    static void click_standard_button(const QWidget& dialog, int button);
    /// Opens the list of the combo box and clicks the item of that text.
    static void choose(QComboBox& combo, const QString& text);
    static void choose(const QWidget& window, const char* object_name, const QString& text);
    static void choose_tab(QTabWidget& tabs, int index);
    /// Opens the menu and clicks the entry, both by their texts without the "&".
    static void choose_entry(QMainWindow& window, const QString& menu, const QString& entry);
    /// Clicks the row whose first column shows that text. One of several that show it is found by those above
    /// it: "parent > child".
    static void select(QAbstractItemView& view, const QString& text);
    /// Clicks the box of that row.
    static void tick(QAbstractItemView& view, const QString& text);
    /// Selects that row and shows the rows below it, with the key for it.
    static void unfold(QAbstractItemView& view, const QString& text);
    /// Replaces the text of the edit.
    static void type(QLineEdit& edit, const QString& text);
    static void type(const QWidget& window, const char* object_name, const QString& text);

    /// The one row of the view whose first column shows that text, or the last of such a row of texts.
    static QModelIndex find_row(const QAbstractItemView& view, const QString& text);
};

#endif
