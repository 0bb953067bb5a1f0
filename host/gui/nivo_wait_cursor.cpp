#include "nivo_wait_cursor.h"

#include <QApplication>

NIVO_WAIT_CURSOR::NIVO_WAIT_CURSOR()
{
    QApplication::setOverrideCursor(Qt::WaitCursor);
}

NIVO_WAIT_CURSOR::~NIVO_WAIT_CURSOR()
{
    QApplication::restoreOverrideCursor();
}
