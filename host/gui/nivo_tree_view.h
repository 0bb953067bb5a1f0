#ifndef NIVO_TREE_VIEW_H
#define NIVO_TREE_VIEW_H

#include <QTreeView>

/// A tree view with what users expect of every tree: rows of one height, a tool tip where a text is cut off,
/// the selected rows copied with the platform's copy key (columns divided by tabs), the box of the current
/// row ticked with the space bar from any of its columns, and a context menu of copy, expand all and collapse
/// all that the menu key opens as well.
class NIVO_TREE_VIEW : public QTreeView
{
    Q_OBJECT
public:
    enum FLAG : int {
        FLAG_NONE = 0,
        FLAG_ALTERNATING_ROWS = 1,
        FLAG_NO_CONTEXT_MENU = 2, ///< the owner has one of its own
    };

    explicit NIVO_TREE_VIEW(QWidget* parent = nullptr, int flags = FLAG_NONE);

    /// The selected rows as text, top to bottom, one a line.
    QString get_selected_text() const;

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    bool viewportEvent(QEvent* event) override;

private:
    void copy_selection() const;

    int m_flags;
};

#endif
