#include "nivo_tree_view.h"

#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QHeaderView>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QToolTip>

namespace
{
QString cell_text(const QModelIndex& index)
{
    // A model may show a long text shortened; the whole one is then what it would let the user edit.
    const QVariant whole = index.data(Qt::EditRole);
    return whole.isValid() ? whole.toString() : index.data(Qt::DisplayRole).toString();
}
} // namespace

NIVO_TREE_VIEW::NIVO_TREE_VIEW(QWidget* parent, int flags) : QTreeView(parent), m_flags(flags)
{
    setUniformRowHeights(true);
    setAlternatingRowColors((flags & FLAG_ALTERNATING_ROWS) != 0);
}

QString NIVO_TREE_VIEW::get_selected_text() const
{
    if (selectionModel() == nullptr) {
        return {};
    }
    QStringList lines;
    // The rows in the order in which they stand on the screen, whatever the order of selection.
    QModelIndex index = model()->index(0, 0, rootIndex());
    for (; index.isValid(); index = indexBelow(index)) {
        QStringList cells;
        bool is_selected = false;
        for (int position = 0; position < header()->count(); ++position) {
            const int column = header()->logicalIndex(position);
            const QModelIndex cell = index.sibling(index.row(), column);
            is_selected = is_selected || selectionModel()->isSelected(cell);
            if (!header()->isSectionHidden(column)) {
                cells << cell_text(cell);
            }
        }
        if (is_selected) {
            lines << cells.join(QLatin1Char('\t'));
        }
    }
    return lines.join(QLatin1Char('\n'));
}

void NIVO_TREE_VIEW::copy_selection() const
{
    const QString text = get_selected_text();
    if (!text.isEmpty()) {
        QApplication::clipboard()->setText(text);
    }
}

void NIVO_TREE_VIEW::keyPressEvent(QKeyEvent* event)
{
    if (event->matches(QKeySequence::Copy)) {
        copy_selection();
        event->accept();
        return;
    }
    // The box stands in the first column, wherever in the row the user is.
    const QModelIndex box = currentIndex().siblingAtColumn(0);
    if (event->key() == Qt::Key_Space && currentIndex().column() > 0 &&
        box.flags().testFlag(Qt::ItemIsUserCheckable) && edit(box, AnyKeyPressed, event)) {
        event->accept();
        return;
    }
    QTreeView::keyPressEvent(event);
}

void NIVO_TREE_VIEW::contextMenuEvent(QContextMenuEvent* event)
{
    if ((m_flags & FLAG_NO_CONTEXT_MENU) != 0 || model() == nullptr) {
        QTreeView::contextMenuEvent(event);
        return;
    }
    QMenu menu(this);
    QAction* const copy = menu.addAction(tr("&Copy"), this, [this] { copy_selection(); });
    copy->setShortcut(QKeySequence::Copy);
    copy->setEnabled(selectionModel()->hasSelection());
    if (rootIsDecorated()) {
        menu.addSeparator();
        menu.addAction(tr("&Expand All"), this, &QTreeView::expandAll);
        menu.addAction(tr("C&ollapse All"), this, &QTreeView::collapseAll);
    }
    menu.exec(event->globalPos());
}

bool NIVO_TREE_VIEW::viewportEvent(QEvent* event)
{
    if (event->type() == QEvent::ToolTip) {
        const QHelpEvent* const help = static_cast<QHelpEvent*>(event);
        const QModelIndex index = indexAt(help->pos());
        const QVariant own_tip = index.data(Qt::ToolTipRole);
        const bool is_cut_off =
            index.isValid() && sizeHintForIndex(index).width() > visualRect(index).width();
        if (!own_tip.isValid() && is_cut_off) {
            QToolTip::showText(help->globalPos(), cell_text(index), viewport(), visualRect(index));
            return true;
        }
    }
    return QTreeView::viewportEvent(event);
}
