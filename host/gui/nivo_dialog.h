#ifndef NIVO_DIALOG_H
#define NIVO_DIALOG_H

#include <QDialog>

/// The base of the dialogs: a QDialog without the context help button, whose F1 key shows the help at the
/// topic of the dialog (nivo_set_help_topic), if it has one.
class NIVO_DIALOG : public QDialog
{
    Q_OBJECT
public:
    explicit NIVO_DIALOG(QWidget* parent = nullptr, Qt::WindowFlags flags = Qt::WindowFlags());

protected:
    void keyPressEvent(QKeyEvent* event) override;
};

#endif
