#include "nivo_style.h"

#include "nivo_icon.h"

#include <QStyleOptionHeader>

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

QSize NIVO_STYLE::sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& size,
                                   const QWidget* widget) const
{
    const auto* const head = qstyleoption_cast<const QStyleOptionHeader*>(option);
    if (type != CT_HeaderSection || head == nullptr || widget == nullptr) {
        return QProxyStyle::sizeFromContents(type, option, size, widget);
    }
    QStyleOptionHeader drawn(*head);
    drawn.fontMetrics = widget->fontMetrics();
    return QProxyStyle::sizeFromContents(type, &drawn, size, widget);
}
