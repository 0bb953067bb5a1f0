#include "nivo_style.h"

#include "nivo_icon.h"

QIcon NIVO_STYLE::standardIcon(StandardPixmap icon, const QStyleOption* option, const QWidget* widget) const
{
    switch (icon) {
    case SP_ToolBarHorizontalExtensionButton:
        return nivo_get_icon(NIVO_ICON_MORE_ASIDE);
    case SP_ToolBarVerticalExtensionButton:
        return nivo_get_icon(NIVO_ICON_MORE_BELOW);
    default:
        return QProxyStyle::standardIcon(icon, option, widget);
    }
}
