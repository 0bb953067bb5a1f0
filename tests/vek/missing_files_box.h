#ifndef IMAGEWRIGHT_TESTS_MISSING_FILES_BOX_H
#define IMAGEWRIGHT_TESTS_MISSING_FILES_BOX_H

#include <QApplication>
#include <QEvent>
#include <QMessageBox>

/// Closes the box that names missing input files as soon as it shows, for tests whose documents name files
/// that never were and that are about something else.
class MISSING_FILES_BOX_CLOSER : public QObject
{
public:
    MISSING_FILES_BOX_CLOSER() { qApp->installEventFilter(this); }
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        auto* const box = event->type() == QEvent::Show ? qobject_cast<QMessageBox*>(watched) : nullptr;
        if (box != nullptr && box->text().startsWith(QStringLiteral("Cannot find "))) {
            QMetaObject::invokeMethod(box, "accept", Qt::QueuedConnection);
        }
        return false;
    }
};

#endif
