#ifndef MOK_MESSAGE_MODEL_H
#define MOK_MESSAGE_MODEL_H

#include "msg_service.h"

#include <QAbstractTableModel>
#include <QDateTime>
#include <QString>

#include <array>
#include <cstddef>
#include <deque>
#include <mutex>

/// The messages of the process as a table for views. While it lives it listens to the message service:
/// messages come in on any thread, and reach the table on the thread of the model, many at a time when many
/// come. The oldest go when there are too many.
class MOK_MESSAGE_MODEL : public QAbstractTableModel
{
    Q_OBJECT
public:
    enum COLUMN : int { COLUMN_SEVERITY, COLUMN_ID, COLUMN_TEXT, COLUMN_TIME, COLUMN_COUNT };
    /// The severity of a row, as an integer.
    static constexpr int SEVERITY_ROLE = Qt::UserRole;
    /// How many messages the table holds at most unless told otherwise.
    static constexpr std::size_t DEFAULT_LIMIT = 10000;

    explicit MOK_MESSAGE_MODEL(std::size_t limit = DEFAULT_LIMIT, QObject* parent = nullptr);
    ~MOK_MESSAGE_MODEL() override;

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

    /// How many rows are of a severity.
    int get_count(MSG_SEVERITY severity) const { return m_counts[static_cast<std::size_t>(severity)]; }
    /// One message as a line of text: time, severity, id, text.
    QString get_line(int row) const;
    void clear();

signals:
    /// Rows with an error among them have come in.
    void error_arrived();

private slots:
    void take_waiting();

private:
    struct ROW {
        MSG_SEVERITY severity;
        std::uint32_t id;
        QString text;
        QDateTime time;
    };

    void receive(const MSG_RECORD& record);

    const std::size_t m_limit;
    std::deque<ROW> m_rows;
    std::array<int, 6> m_counts{}; ///< rows by severity
    std::mutex m_waiting_mutex;    ///< guards m_waiting
    std::deque<MSG_RECORD> m_waiting;
    MSG_SERVICE::SINK_ID m_sink;
};

#endif
