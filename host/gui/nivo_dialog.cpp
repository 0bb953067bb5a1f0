#include "nivo_dialog.h"

#include "nivo_help.h"

#include <QKeyEvent>

NIVO_DIALOG::NIVO_DIALOG(QWidget* parent, Qt::WindowFlags flags) : QDialog(parent, flags)
{
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
}

void NIVO_DIALOG::keyPressEvent(QKeyEvent* event)
{
    const QString topic = event->key() == Qt::Key_F1 ? nivo_get_help_topic(this) : QString();
    if (topic.isEmpty()) {
        QDialog::keyPressEvent(event);
        return;
    }
    nivo_show_help(topic, this);
}
