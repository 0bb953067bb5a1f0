#ifndef NIVO_DIALOG_H
#define NIVO_DIALOG_H

#include <QDialog>

/// The base of the dialogs: a QDialog without the context help button that nothing here answers.
class NIVO_DIALOG : public QDialog
{
    Q_OBJECT
public:
    explicit NIVO_DIALOG(QWidget* parent = nullptr, Qt::WindowFlags flags = Qt::WindowFlags());
};

#endif
