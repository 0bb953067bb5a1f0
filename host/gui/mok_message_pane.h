#ifndef MOK_MESSAGE_PANE_H
#define MOK_MESSAGE_PANE_H

#include "msg_base.h"

#include <QDockWidget>
#include <QSortFilterProxyModel>

#include <array>

class MOK_MESSAGE_MODEL;
class NIVO_TREE_VIEW;
class QToolButton;

/// The messages of some severities.
class MOK_MESSAGE_FILTER : public QSortFilterProxyModel
{
    Q_OBJECT
public:
    using QSortFilterProxyModel::QSortFilterProxyModel;

    void set_shown(MSG_SEVERITY severity, bool shown);
    bool is_shown(MSG_SEVERITY severity) const { return m_shown[static_cast<std::size_t>(severity)]; }

protected:
    bool filterAcceptsRow(int row, const QModelIndex& parent) const override;

private:
    std::array<bool, 6> m_shown{true, true, true, true, true, true};
};

/// The pane at the bottom of the window in which messages appear: a button for each kind of message that
/// shows or hides it, copy and clear, and the list. It follows the latest message while the end of the list
/// is in view, and comes up by itself when an error arrives.
class MOK_MESSAGE_PANE : public QDockWidget
{
    Q_OBJECT
public:
    MOK_MESSAGE_PANE(MOK_MESSAGE_MODEL* model, QWidget* parent);

    /// The messages shown, one a line.
    QString get_text() const;

public slots:
    /// Copies the selected messages, or all that are shown when none is selected.
    void copy();
    void clear();

private slots:
    void update_counts();
    void note_position();
    void show_whole(const QModelIndex& index);
    void follow();

private:
    QToolButton* add_filter_button(QWidget* bar, const char* name, const QIcon& icon);

    MOK_MESSAGE_MODEL* m_model;
    MOK_MESSAGE_FILTER* m_filter;
    NIVO_TREE_VIEW* m_view;
    QToolButton* m_error_button;
    QToolButton* m_warning_button;
    QToolButton* m_info_button;
    QToolButton* m_debug_button;
    bool m_is_at_end = true;
};

#endif
