#include "vek_list_view.h"

#include <QHeaderView>
#include <QStandardItemModel>

VEK_LIST_VIEW::VEK_LIST_VIEW(const QStringList& columns, QWidget* parent)
    : NIVO_TREE_VIEW(parent, FLAG_ALTERNATING_ROWS), m_model(new QStandardItemModel(0, columns.size(), this))
{
    m_model->setHorizontalHeaderLabels(columns);
    setModel(m_model);
    setEditTriggers(NoEditTriggers);
    setTabKeyNavigation(false);
    header()->setStretchLastSection(true);
}

void VEK_LIST_VIEW::clear()
{
    m_model->removeRows(0, m_model->rowCount());
}

QStandardItem* VEK_LIST_VIEW::add_row(QStandardItem* parent, const QStringList& texts)
{
    QList<QStandardItem*> items;
    for (const QString& text : texts) {
        items.append(new QStandardItem(text));
    }
    (parent != nullptr ? parent : m_model->invisibleRootItem())->appendRow(items);
    return items.constFirst();
}

void VEK_LIST_VIEW::show_rows()
{
    expandAll();
    for (int column = 0; column + 1 < m_model->columnCount(); ++column) {
        // Long paths must not push the other columns out of the window.
        constexpr int MAX_WIDTH = 300;
        resizeColumnToContents(column);
        setColumnWidth(column, qMin(columnWidth(column) + fontMetrics().averageCharWidth() * 2, MAX_WIDTH));
    }
}
