#include "mok_message_model.h"

#include "nivo_icon.h"

#include <QIcon>

#include <algorithm>

namespace
{
NIVO_ICON_ENUM severity_icon(MSG_SEVERITY severity)
{
    switch (severity) {
    case MSG_SEVERITY::ERROR:
        return NIVO_ICON_ERROR;
    case MSG_SEVERITY::WARNING:
        return NIVO_ICON_WARNING;
    case MSG_SEVERITY::QUESTION:
    case MSG_SEVERITY::INFORMATION:
        return NIVO_ICON_INFORMATION;
    case MSG_SEVERITY::OUTPUT:
    case MSG_SEVERITY::DEBUG:
        return NIVO_ICON_OUTPUT;
    }
    return NIVO_ICON_OUTPUT;
}

QString severity_name(MSG_SEVERITY severity)
{
    return severity == MSG_SEVERITY::OUTPUT ? MOK_MESSAGE_MODEL::tr("Message")
                                            : MOK_MESSAGE_MODEL::tr(msg_severity_word(severity));
}
} // namespace

MOK_MESSAGE_MODEL::MOK_MESSAGE_MODEL(std::size_t limit, QObject* parent)
    : QAbstractTableModel(parent), m_limit(limit)
{
    m_sink = MSG_SERVICE::instance().add_sink([this](const MSG_RECORD& record) { receive(record); }, true);
}

MOK_MESSAGE_MODEL::~MOK_MESSAGE_MODEL()
{
    MSG_SERVICE::instance().remove_sink(m_sink);
}

void MOK_MESSAGE_MODEL::receive(const MSG_RECORD& record)
{
    bool is_first = false;
    {
        const std::lock_guard<std::mutex> lock(m_waiting_mutex);
        is_first = m_waiting.empty();
        m_waiting.push_back(record);
        if (m_waiting.size() > m_limit) {
            m_waiting.pop_front();
        }
    }
    // One event takes all that wait, so that a flood of messages is not a flood of events.
    if (is_first) {
        QMetaObject::invokeMethod(this, "take_waiting", Qt::QueuedConnection);
    }
}

void MOK_MESSAGE_MODEL::take_waiting()
{
    std::deque<MSG_RECORD> arrived;
    {
        const std::lock_guard<std::mutex> lock(m_waiting_mutex);
        arrived.swap(m_waiting);
    }
    if (arrived.empty()) {
        return;
    }
    const std::size_t total = m_rows.size() + arrived.size();
    if (total > m_limit) {
        const std::size_t surplus = std::min(total - m_limit, m_rows.size());
        if (surplus != 0) {
            beginRemoveRows(QModelIndex(), 0, static_cast<int>(surplus) - 1);
            for (std::size_t row = 0; row < surplus; ++row) {
                --m_counts[static_cast<std::size_t>(m_rows[row].severity)];
            }
            m_rows.erase(m_rows.begin(), m_rows.begin() + static_cast<std::ptrdiff_t>(surplus));
            endRemoveRows();
        }
    }
    bool has_error = false;
    const int first = static_cast<int>(m_rows.size());
    beginInsertRows(QModelIndex(), first, first + static_cast<int>(arrived.size()) - 1);
    for (const MSG_RECORD& record : arrived) {
        const auto since_epoch = record.time.time_since_epoch();
        const qint64 milliseconds =
            std::chrono::duration_cast<std::chrono::milliseconds>(since_epoch).count();
        m_rows.push_back({record.severity, record.id, QString::fromLocal8Bit(record.text.c_str()),
                          QDateTime::fromMSecsSinceEpoch(milliseconds)});
        ++m_counts[static_cast<std::size_t>(record.severity)];
        has_error = has_error || record.severity == MSG_SEVERITY::ERROR;
    }
    endInsertRows();
    if (has_error) {
        emit error_arrived();
    }
}

int MOK_MESSAGE_MODEL::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

int MOK_MESSAGE_MODEL::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : COLUMN_COUNT;
}

QVariant MOK_MESSAGE_MODEL::data(const QModelIndex& index, int role) const
{
    if (!index.isValid()) {
        return {};
    }
    const ROW& row = m_rows[static_cast<std::size_t>(index.row())];
    if (role == SEVERITY_ROLE) {
        return static_cast<int>(row.severity);
    }
    if (role == Qt::DecorationRole && index.column() == COLUMN_SEVERITY) {
        return nivo_get_icon(severity_icon(row.severity));
    }
    if (role != Qt::DisplayRole && role != Qt::EditRole) {
        return {};
    }
    switch (static_cast<COLUMN>(index.column())) {
    case COLUMN_SEVERITY:
        return severity_name(row.severity);
    case COLUMN_ID:
        return row.id == 0 ? QString() : QString::number(row.id);
    case COLUMN_TEXT:
        // Every row has the height of one line; the whole text is in the tool tip and in what is copied.
        return role == Qt::EditRole ? row.text
                                    : QString(row.text).replace(QLatin1Char('\n'), QLatin1Char(' '));
    case COLUMN_TIME:
        return row.time.toString(QStringLiteral("HH:mm:ss"));
    case COLUMN_COUNT:
        break;
    }
    return {};
}

QVariant MOK_MESSAGE_MODEL::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole) {
        return {};
    }
    switch (static_cast<COLUMN>(section)) {
    case COLUMN_SEVERITY:
        return tr("Severity");
    case COLUMN_ID:
        return tr("ID");
    case COLUMN_TEXT:
        return tr("Message");
    case COLUMN_TIME:
        return tr("Time");
    case COLUMN_COUNT:
        break;
    }
    return {};
}

QString MOK_MESSAGE_MODEL::get_line(int row) const
{
    QStringList cells;
    for (const int column : {COLUMN_TIME, COLUMN_SEVERITY, COLUMN_ID, COLUMN_TEXT}) {
        cells << data(index(row, column), Qt::EditRole).toString();
    }
    return cells.join(QLatin1Char('\t'));
}

void MOK_MESSAGE_MODEL::clear()
{
    // What still waits was reported before the user asked.
    take_waiting();
    beginResetModel();
    m_rows.clear();
    m_counts.fill(0);
    endResetModel();
}
