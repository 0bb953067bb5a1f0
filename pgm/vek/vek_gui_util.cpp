#include "vek_gui_util.h"

#include "mok_app.h"
#include "mok_ui_mgr.h"
#include "msg_internal_error.h"

std::string VEK_GUI_UTIL::get_working_directory()
{
    const auto* const app = dynamic_cast<MOK_APP*>(nivo_get_app());
    VEK_ASSERT(app != nullptr);
    const MOK_UI_MGR* const ui_mgr = app->get_ui_mgr();
    VEK_ASSERT(ui_mgr != nullptr);
    return ui_mgr->get_working_directory();
}

FIO_PATH VEK_GUI_UTIL::format_path(const FIO_PATH& path)
{
    const std::string base = get_working_directory();
    return base.empty() ? path : FIO_PATH(path.get_relative_to(base));
}

FIO_PATH VEK_GUI_UTIL::make_path_absolute(const FIO_PATH& path)
{
    const std::string base = get_working_directory();
    FIO_PATH absolute = path;
    if (!base.empty()) {
        absolute.become_absolute(base);
    }
    return absolute;
}

std::string VEK_GUI_UTIL::to_local(const QString& text)
{
    return text.toLocal8Bit().toStdString();
}

QString VEK_GUI_UTIL::from_local(const std::string& text)
{
    return QString::fromLocal8Bit(text.data(), static_cast<int>(text.size()));
}
