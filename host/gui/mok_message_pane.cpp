#include "mok_message_pane.h"

#include "mok_message_model.h"
#include "nivo_help.h"
#include "nivo_icon.h"
#include "nivo_tree_view.h"

#include <QApplication>
#include <QClipboard>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QMessageBox>
#include <QScrollBar>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>
#include <tuple>

namespace
{

/// Asks for the height of a few messages; the window's own work needs the rest.
class MESSAGE_PANE_BODY : public QWidget
{
public:
    using QWidget::QWidget;
    QSize sizeHint() const override
    {
        return {QWidget::sizeHint().width(), fontMetrics().lineSpacing() * SHOWN_LINES};
    }

private:
    static constexpr int SHOWN_LINES = 6; ///< buttons and header among them
};

} // namespace

void MOK_MESSAGE_FILTER::set_shown(MSG_SEVERITY severity, bool shown)
{
    m_shown[static_cast<std::size_t>(severity)] = shown;
    invalidateFilter();
}

bool MOK_MESSAGE_FILTER::filterAcceptsRow(int row, const QModelIndex& parent) const
{
    const QVariant severity = sourceModel()->index(row, 0, parent).data(MOK_MESSAGE_MODEL::SEVERITY_ROLE);
    return m_shown[static_cast<std::size_t>(severity.toInt())];
}

MOK_MESSAGE_PANE::MOK_MESSAGE_PANE(MOK_MESSAGE_MODEL* model, QWidget* parent)
    : QDockWidget(tr("Messages"), parent), m_model(model)
{
    setObjectName(QStringLiteral("message_pane"));
    nivo_set_help_topic(*this, NIVO_HELP_MESSAGES);
    setAllowedAreas(Qt::BottomDockWidgetArea | Qt::TopDockWidgetArea);

    QWidget* const body = new MESSAGE_PANE_BODY;
    m_filter = new MOK_MESSAGE_FILTER(this);
    m_filter->setSourceModel(model);
    m_view = new NIVO_TREE_VIEW(body, NIVO_TREE_VIEW::FLAG_ALTERNATING_ROWS);
    m_view->setObjectName(QStringLiteral("message_view"));
    m_view->setAccessibleName(tr("Messages"));
    m_view->setRootIsDecorated(false);
    m_view->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_view->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_view->setModel(m_filter);
    const int digit_width = fontMetrics().horizontalAdvance(QLatin1Char('0'));
    m_view->header()->setStretchLastSection(false);
    m_view->header()->setSectionResizeMode(MOK_MESSAGE_MODEL::COLUMN_TEXT, QHeaderView::Stretch);
    m_view->header()->resizeSection(MOK_MESSAGE_MODEL::COLUMN_SEVERITY, digit_width * 14);
    m_view->header()->resizeSection(MOK_MESSAGE_MODEL::COLUMN_ID, digit_width * 9);
    m_view->header()->resizeSection(MOK_MESSAGE_MODEL::COLUMN_TIME, digit_width * 12);

    QWidget* const bar = new QWidget(body);
    QHBoxLayout* const bar_layout = new QHBoxLayout(bar);
    bar_layout->setContentsMargins(0, 0, 0, 0);
    bar_layout->setSpacing(2);
    m_error_button = add_filter_button(bar, "error_button", nivo_get_icon(NIVO_ICON_ERROR));
    m_warning_button = add_filter_button(bar, "warning_button", nivo_get_icon(NIVO_ICON_WARNING));
    m_info_button = add_filter_button(bar, "info_button", nivo_get_icon(NIVO_ICON_INFORMATION));
    m_debug_button = add_filter_button(bar, "debug_button", nivo_get_icon(NIVO_ICON_OUTPUT));
    connect(m_error_button, &QToolButton::toggled, this,
            [this](bool shown) { m_filter->set_shown(MSG_SEVERITY::ERROR, shown); });
    connect(m_warning_button, &QToolButton::toggled, this,
            [this](bool shown) { m_filter->set_shown(MSG_SEVERITY::WARNING, shown); });
    connect(m_info_button, &QToolButton::toggled, this, [this](bool shown) {
        // Plain output and questions are told apart from information by the program, hardly by its user.
        m_filter->set_shown(MSG_SEVERITY::INFORMATION, shown);
        m_filter->set_shown(MSG_SEVERITY::OUTPUT, shown);
        m_filter->set_shown(MSG_SEVERITY::QUESTION, shown);
    });
    connect(m_debug_button, &QToolButton::toggled, this,
            [this](bool shown) { m_filter->set_shown(MSG_SEVERITY::DEBUG, shown); });
    bar_layout->addStretch();
    for (const auto& [name, text, icon, slot] :
         {std::tuple{"copy_button", tr("Cop&y"), NIVO_ICON_COPY, SLOT(copy())},
          std::tuple{"clear_button", tr("C&lear"), NIVO_ICON_CLEAR, SLOT(clear())}}) {
        QToolButton* const button = new QToolButton(bar);
        button->setObjectName(QLatin1String(name));
        button->setText(text);
        button->setIcon(nivo_get_icon(icon));
        button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
        button->setAutoRaise(true);
        button->setFocusPolicy(Qt::StrongFocus);
        connect(button, SIGNAL(clicked()), this, slot);
        bar_layout->addWidget(button);
    }

    QVBoxLayout* const layout = new QVBoxLayout(body);
    layout->setContentsMargins(4, 2, 4, 4);
    layout->setSpacing(2);
    layout->addWidget(bar);
    layout->addWidget(m_view);
    setWidget(body);

    connect(m_model, SIGNAL(rowsAboutToBeInserted(QModelIndex, int, int)), this, SLOT(note_position()));
    connect(m_model, SIGNAL(rowsInserted(QModelIndex, int, int)), this, SLOT(follow()));
    connect(m_model, SIGNAL(rowsInserted(QModelIndex, int, int)), this, SLOT(update_counts()));
    connect(m_model, SIGNAL(rowsRemoved(QModelIndex, int, int)), this, SLOT(update_counts()));
    connect(m_model, SIGNAL(modelReset()), this, SLOT(update_counts()));
    connect(m_model, SIGNAL(error_arrived()), this, SLOT(show()));
    connect(m_view, SIGNAL(activated(QModelIndex)), this, SLOT(show_whole(QModelIndex)));
    update_counts();
    m_view->scrollToBottom();
}

QToolButton* MOK_MESSAGE_PANE::add_filter_button(QWidget* bar, const char* name, const QIcon& icon)
{
    QToolButton* const button = new QToolButton(bar);
    button->setObjectName(QLatin1String(name));
    button->setIcon(icon);
    button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    button->setCheckable(true);
    button->setChecked(true);
    button->setAutoRaise(true);
    button->setFocusPolicy(Qt::StrongFocus);
    bar->layout()->addWidget(button);
    return button;
}

QString MOK_MESSAGE_PANE::get_text() const
{
    QStringList lines;
    for (int row = 0; row < m_filter->rowCount(); ++row) {
        lines << m_model->get_line(m_filter->mapToSource(m_filter->index(row, 0)).row());
    }
    return lines.join(QLatin1Char('\n'));
}

void MOK_MESSAGE_PANE::copy()
{
    QModelIndexList selected = m_view->selectionModel()->selectedRows();
    if (selected.isEmpty()) {
        QApplication::clipboard()->setText(get_text());
        return;
    }
    std::sort(selected.begin(), selected.end());
    QStringList lines;
    for (const QModelIndex& index : selected) {
        lines << m_model->get_line(m_filter->mapToSource(index).row());
    }
    QApplication::clipboard()->setText(lines.join(QLatin1Char('\n')));
}

void MOK_MESSAGE_PANE::clear()
{
    m_model->clear();
}

void MOK_MESSAGE_PANE::show_whole(const QModelIndex& index)
{
    const auto cell = [&index](int column) {
        return index.siblingAtColumn(column).data(Qt::EditRole).toString();
    };
    const QString id = cell(MOK_MESSAGE_MODEL::COLUMN_ID);
    const QString severity = cell(MOK_MESSAGE_MODEL::COLUMN_SEVERITY);
    QMessageBox box(QMessageBox::NoIcon, id.isEmpty() ? severity : severity + QLatin1Char(' ') + id,
                    cell(MOK_MESSAGE_MODEL::COLUMN_TEXT), QMessageBox::Ok, this);
    box.setObjectName(QStringLiteral("message_box"));
    box.setTextFormat(Qt::PlainText);
    box.setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    box.exec();
}

void MOK_MESSAGE_PANE::update_counts()
{
    const int info_count = m_model->get_count(MSG_SEVERITY::INFORMATION) +
                           m_model->get_count(MSG_SEVERITY::OUTPUT) +
                           m_model->get_count(MSG_SEVERITY::QUESTION);
    const int debug_count = m_model->get_count(MSG_SEVERITY::DEBUG);
    m_error_button->setText(tr("&Errors (%1)").arg(m_model->get_count(MSG_SEVERITY::ERROR)));
    m_warning_button->setText(tr("W&arnings (%1)").arg(m_model->get_count(MSG_SEVERITY::WARNING)));
    m_info_button->setText(tr("I&nformation (%1)").arg(info_count));
    m_debug_button->setText(tr("&Debug (%1)").arg(debug_count));
    m_debug_button->setVisible(debug_count != 0);
}

void MOK_MESSAGE_PANE::note_position()
{
    const QScrollBar* const bar = m_view->verticalScrollBar();
    m_is_at_end = bar->value() == bar->maximum();
}

void MOK_MESSAGE_PANE::follow()
{
    if (m_is_at_end) {
        m_view->scrollToBottom();
    }
}
