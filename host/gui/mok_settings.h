#ifndef MOK_SETTINGS_H
#define MOK_SETTINGS_H

#include <QByteArray>

/// What the windows keep between runs, in the settings of the user. A setting that cannot be written is no
/// reason to disturb anybody: it goes to the debug output.
bool mok_get_setting(const char* key, QByteArray& value);
void mok_set_setting(const char* key, const QByteArray& value);

#endif
