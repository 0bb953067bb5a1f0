#include "mok_settings.h"

#include "msg_debug.h"
#include "user_settings.h"

bool mok_get_setting(const char* key, QByteArray& value)
{
    std::string text;
    if (!USER_SETTINGS::get(key, text)) {
        return false;
    }
    value = QByteArray::fromStdString(text);
    return true;
}

void mok_set_setting(const char* key, const QByteArray& value)
{
    std::string message;
    if (!USER_SETTINGS::set(key, value.toStdString(), message)) {
        MSG_D debug(nullptr);
        debug.set_subject("MOK");
        debug.set_level(MSG_D_LEVEL_1);
        debug.fill_args("%s", message.c_str());
        debug.report(nullptr);
    }
}
