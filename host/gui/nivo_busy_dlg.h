#ifndef NIVO_BUSY_DLG_H
#define NIVO_BUSY_DLG_H

#include <QDialog>
#include <QElapsedTimer>

class QLabel;
class QProgressBar;

/// Says that a background task is at work. It shows itself when it is built and blocks the input to the
/// window of its parent until its owner deletes it; the user cannot close it. It shows the time since it was
/// built and, as soon as the task reports progress, how far it is and which file it works on.
class NIVO_BUSY_DLG : public QDialog
{
    Q_OBJECT
public:
    NIVO_BUSY_DLG(const QString& text, const QString& title, QWidget* parent);

public slots:
    /// Does nothing: Escape and the close button end here.
    void reject() override;

protected:
    void closeEvent(QCloseEvent* event) override;

private slots:
    void update_progress();

private:
    QElapsedTimer m_clock;
    QProgressBar* m_progress_bar = nullptr;
    QLabel* m_elapsed_label = nullptr;
    QLabel* m_file_label = nullptr;
};

#endif
