#include "user_hands.h"

#include <QApplication>
#include <QCheckBox>
#include <QDialogButtonBox>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QStyleOptionViewItem>
#include <QTabBar>
#include <QTest>
#include <gtest/gtest.h>

namespace
{

bool can_be_used(const QWidget& widget)
{
    EXPECT_TRUE(widget.isVisible()) << widget.objectName().toStdString() << " is not to be seen";
    EXPECT_TRUE(widget.isEnabled()) << widget.objectName().toStdString() << " is disabled";
    return widget.isVisible() && widget.isEnabled();
}

template <typename WIDGET>
WIDGET* find(const QWidget& window, const char* object_name)
{
    WIDGET* const found = window.findChild<WIDGET*>(QLatin1String(object_name));
    EXPECT_NE(found, nullptr) << object_name;
    return found;
}

QString plain(QString text)
{
    return text.remove(QLatin1Char('&'));
}

/// The entry of a menu or menu bar.
template <typename MENU>
QAction* find_action(const MENU& menu, const QString& text)
{
    for (QAction* const action : menu.actions()) {
        if (plain(action->text()) == text && action->isVisible()) {
            EXPECT_TRUE(action->isEnabled()) << text.toStdString();
            return action;
        }
    }
    ADD_FAILURE() << "no entry " << text.toStdString();
    return nullptr;
}

/// A list that opens under the mouse takes its first release for the end of the click that opened it, until
/// the time of a double click is over.
class NO_DOUBLE_CLICKS
{
public:
    NO_DOUBLE_CLICKS() : m_interval(QApplication::doubleClickInterval())
    {
        QApplication::setDoubleClickInterval(0);
    }
    ~NO_DOUBLE_CLICKS() { QApplication::setDoubleClickInterval(m_interval); }

private:
    int m_interval;
};

} // namespace

void USER_HANDS::click(QWidget& widget)
{
    if (can_be_used(widget)) {
        // The box of a check box and its text answer to a click, the rest of its row does not.
        const bool is_box = qobject_cast<QCheckBox*>(&widget) != nullptr;
        QTest::mouseClick(&widget, Qt::LeftButton, Qt::NoModifier,
                          is_box ? QPoint(8, widget.height() / 2) : widget.rect().center());
    }
}

void USER_HANDS::click(const QWidget& window, const char* object_name)
{
    if (QWidget* const widget = find<QWidget>(window, object_name)) {
        click(*widget);
    }
}

void USER_HANDS::click_standard_button(const QWidget& dialog, int button)
{
    const QDialogButtonBox* const box = dialog.findChild<QDialogButtonBox*>();
    ASSERT_NE(box, nullptr);
    QPushButton* const found = box->button(static_cast<QDialogButtonBox::StandardButton>(button));
    ASSERT_NE(found, nullptr);
    click(*found);
}

void USER_HANDS::choose(QComboBox& combo, const QString& text)
{
    const int row = combo.findText(text);
    ASSERT_GE(row, 0) << combo.objectName().toStdString() << " does not offer " << text.toStdString();
    ASSERT_TRUE(can_be_used(combo));
    const NO_DOUBLE_CLICKS no_double_clicks;
    QTest::mouseClick(&combo, Qt::LeftButton);
    QAbstractItemView& list = *combo.view();
    ASSERT_TRUE(QTest::qWaitFor([&list] { return list.isVisible(); }));
    QCoreApplication::processEvents();
    const QModelIndex index = combo.model()->index(row, combo.modelColumn(), combo.rootModelIndex());
    // Near its edges the list would scroll under the mouse.
    list.scrollTo(index, QAbstractItemView::PositionAtCenter);
    QCoreApplication::processEvents();
    const QPoint place = list.visualRect(index).center();
    QTest::mouseMove(list.viewport(), place);
    QTest::mouseClick(list.viewport(), Qt::LeftButton, Qt::NoModifier, place);
    EXPECT_FALSE(list.isVisible());
    EXPECT_EQ(combo.currentText().toStdString(), text.toStdString());
}

void USER_HANDS::choose(const QWidget& window, const char* object_name, const QString& text)
{
    if (QComboBox* const combo = find<QComboBox>(window, object_name)) {
        choose(*combo, text);
    }
}

void USER_HANDS::choose_tab(QTabWidget& tabs, int index)
{
    ASSERT_TRUE(tabs.isTabEnabled(index)) << "tab " << index;
    QTest::mouseClick(tabs.tabBar(), Qt::LeftButton, Qt::NoModifier, tabs.tabBar()->tabRect(index).center());
    EXPECT_EQ(tabs.currentIndex(), index);
}

void USER_HANDS::choose_entry(QMainWindow& window, const QString& menu, const QString& entry)
{
    QAction* const bar_action = find_action(*window.menuBar(), menu);
    ASSERT_NE(bar_action, nullptr);
    QTest::mouseClick(window.menuBar(), Qt::LeftButton, Qt::NoModifier,
                      window.menuBar()->actionGeometry(bar_action).center());
    QMenu& popup = *bar_action->menu();
    ASSERT_TRUE(QTest::qWaitFor([&popup] { return popup.isVisible(); }));
    QAction* const action = find_action(popup, entry);
    ASSERT_NE(action, nullptr);
    QTest::mouseMove(&popup, popup.actionGeometry(action).center());
    QTest::mouseClick(&popup, Qt::LeftButton, Qt::NoModifier, popup.actionGeometry(action).center());
}

QModelIndex USER_HANDS::find_row(const QAbstractItemView& view, const QString& text)
{
    QModelIndex row;
    for (const QString& step : text.split(QStringLiteral(" > "))) {
        const auto found = view.model()->match(view.model()->index(0, 0, row), Qt::DisplayRole, step, 2,
                                               Qt::MatchExactly | Qt::MatchRecursive | Qt::MatchCaseSensitive);
        EXPECT_EQ(found.size(), 1) << "rows " << text.toStdString();
        row = found.isEmpty() ? QModelIndex() : found.front();
    }
    return row;
}

void USER_HANDS::select(QAbstractItemView& view, const QString& text)
{
    const QModelIndex index = find_row(view, text);
    ASSERT_TRUE(index.isValid() && can_be_used(view));
    view.scrollTo(index);
    const QRect place = view.visualRect(index);
    ASSERT_TRUE(place.isValid()) << text.toStdString() << " is folded away";
    QTest::mouseClick(view.viewport(), Qt::LeftButton, Qt::NoModifier,
                      place.center() + QPoint(place.width() / 4, 0));
    EXPECT_EQ(view.currentIndex(), index);
}

void USER_HANDS::tick(QAbstractItemView& view, const QString& text)
{
    const QModelIndex index = find_row(view, text);
    ASSERT_TRUE(index.isValid() && can_be_used(view));
    view.scrollTo(index);
    QStyleOptionViewItem option;
    option.initFrom(&view);
    option.rect = view.visualRect(index);
    option.features = QStyleOptionViewItem::HasCheckIndicator | QStyleOptionViewItem::HasDisplay;
    const QRect box = view.style()->subElementRect(QStyle::SE_ItemViewItemCheckIndicator, &option, &view);
    const int before = index.data(Qt::CheckStateRole).toInt();
    QTest::mouseClick(view.viewport(), Qt::LeftButton, Qt::NoModifier, box.center());
    EXPECT_NE(find_row(view, text).data(Qt::CheckStateRole).toInt(), before) << text.toStdString();
}

void USER_HANDS::type(QLineEdit& edit, const QString& text)
{
    ASSERT_TRUE(can_be_used(edit));
    QTest::mouseClick(&edit, Qt::LeftButton);
    QTest::keyClick(&edit, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(&edit, Qt::Key_Delete);
    QTest::keyClicks(&edit, text);
    EXPECT_EQ(edit.text().toStdString(), text.toStdString());
}

void USER_HANDS::type(const QWidget& window, const char* object_name, const QString& text)
{
    if (QLineEdit* const edit = find<QLineEdit>(window, object_name)) {
        type(*edit, text);
    }
}

void USER_HANDS::unfold(QAbstractItemView& view, const QString& text)
{
    select(view, text);
    QTest::keyClick(&view, Qt::Key_Plus);
}
