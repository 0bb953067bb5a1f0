#ifndef VEK_LIST_VIEW_H
#define VEK_LIST_VIEW_H

#include "nivo_tree_view.h"

class QStandardItem;
class QStandardItemModel;

/// A read-only tree of texts in columns.
class VEK_LIST_VIEW : public NIVO_TREE_VIEW
{
    Q_OBJECT
public:
    VEK_LIST_VIEW(const QStringList& columns, QWidget* parent);

    /// Removes all rows.
    void clear();
    /// Adds a row below `parent`, or a top-level row when that is null, and gives its first item.
    QStandardItem* add_row(QStandardItem* parent, const QStringList& texts);
    /// To be called when all rows are there: opens them and fits the columns.
    void show_rows();

private:
    QStandardItemModel* m_model = nullptr;
};

#endif
