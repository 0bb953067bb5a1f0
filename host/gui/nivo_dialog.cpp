#include "nivo_dialog.h"

NIVO_DIALOG::NIVO_DIALOG(QWidget* parent, Qt::WindowFlags flags) : QDialog(parent, flags)
{
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
}
