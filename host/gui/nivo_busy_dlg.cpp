#include "nivo_busy_dlg.h"

#include "nivo_icon.h"
#include "progress.h"

#include <QCloseEvent>
#include <QFileInfo>
#include <QLabel>
#include <QProgressBar>
#include <QTimer>
#include <QVBoxLayout>

namespace
{
constexpr int POLL_INTERVAL_MS = 150;
constexpr int FILE_LABEL_WIDTH = 480;

QString elapsed_text(qint64 seconds)
{
    return QStringLiteral("%1:%2").arg(seconds / 60).arg(seconds % 60, 2, 10, QLatin1Char('0'));
}
} // namespace

NIVO_BUSY_DLG::NIVO_BUSY_DLG(const QString& text, const QString& title, QWidget* parent)
    : QDialog(parent, Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint)
{
    setWindowTitle(title);
    setWindowIcon(nivo_get_icon(NIVO_ICON_IMAGEWRIGHT));
    setWindowModality(Qt::WindowModal);

    QLabel* const text_label = new QLabel(text);
    text_label->setObjectName(QStringLiteral("text_label"));
    text_label->setWordWrap(true);
    m_progress_bar = new QProgressBar;
    m_progress_bar->setObjectName(QStringLiteral("progress_bar"));
    m_progress_bar->setRange(0, 0);
    m_file_label = new QLabel;
    m_file_label->setObjectName(QStringLiteral("file_label"));
    m_file_label->setMinimumWidth(FILE_LABEL_WIDTH);
    m_elapsed_label = new QLabel;
    m_elapsed_label->setObjectName(QStringLiteral("elapsed_label"));

    QVBoxLayout* const layout = new QVBoxLayout(this);
    layout->addWidget(text_label);
    layout->addWidget(m_progress_bar);
    layout->addWidget(m_file_label);
    layout->addWidget(m_elapsed_label);
    layout->setSizeConstraint(QLayout::SetFixedSize);

    m_clock.start();
    QTimer* const timer = new QTimer(this);
    timer->setInterval(POLL_INTERVAL_MS);
    connect(timer, SIGNAL(timeout()), this, SLOT(update_progress()));
    timer->start();
    update_progress();
    show();
}

void NIVO_BUSY_DLG::reject() {}

void NIVO_BUSY_DLG::closeEvent(QCloseEvent* event)
{
    event->ignore();
}

void NIVO_BUSY_DLG::update_progress()
{
    m_elapsed_label->setText(tr("Elapsed time: %1").arg(elapsed_text(m_clock.elapsed() / 1000)));
    const PROGRESS_SNAPSHOT progress = PROGRESS::instance().snapshot();
    if (!progress.active || progress.total == 0) {
        return;
    }
    m_progress_bar->setRange(0, 100);
    m_progress_bar->setValue(static_cast<int>(progress.percent));
    const QString path = QString::fromLocal8Bit(progress.file.c_str());
    m_file_label->setText(
        fontMetrics().elidedText(QFileInfo(path).fileName(), Qt::ElideMiddle, FILE_LABEL_WIDTH));
    m_file_label->setToolTip(path);
}
