#include "nivo_style.h"

#include "nivo_icon.h"

#include <QAbstractScrollArea>
#include <QPainter>
#include <QStyleOptionFrame>
#include <QStyleOptionHeader>

#include <algorithm>

namespace
{

/// The pixels between two corners, both included.
void fill(QPainter& painter, const QColor& color, int left, int top, int right, int bottom)
{
    painter.fillRect(QRect(QPoint(left, top), QPoint(right, bottom)), color);
}

/// The outline of what stands out of the window or is let into it.
QColor outline_of(const QPalette& palette)
{
    return palette.window().color().darker(140);
}

/// Lighter than a dark window, darker than a light one.
QColor color_of_button_that_is_on(const QPalette& palette)
{
    const QColor color = palette.button().color();
    return color.lighter(100 + std::max(1, (180 - qGray(color.rgb())) / 6)).darker(110);
}

void fill_outline(QPainter& painter, const QColor& color, const QRect& rect)
{
    fill(painter, color, rect.left(), rect.top(), rect.right(), rect.top());
    fill(painter, color, rect.left(), rect.bottom(), rect.right(), rect.bottom());
    fill(painter, color, rect.left(), rect.top() + 1, rect.left(), rect.bottom() - 1);
    fill(painter, color, rect.right(), rect.top() + 1, rect.right(), rect.bottom() - 1);
}

/// What the lines of a groove, two on each side, do not fill yet.
constexpr int SMALLEST_GROOVE = 5;

/// A groove, its shadow above and to the left.
void fill_groove(QPainter& painter, const QPalette& palette, const QRect& rect)
{
    const QColor light = palette.light().color();
    fill_outline(painter, palette.dark().color(), rect.adjusted(0, 0, -1, -1));
    fill(painter, light, rect.left() + 1, rect.top() + 1, rect.right() - 2, rect.top() + 1);
    fill(painter, light, rect.left() + 1, rect.top() + 2, rect.left() + 1, rect.bottom() - 2);
    fill(painter, light, rect.left(), rect.bottom(), rect.right(), rect.bottom());
    fill(painter, light, rect.right(), rect.top(), rect.right(), rect.bottom() - 1);
}

void fill_horizontal_groove(QPainter& painter, const QPalette& palette, const QRect& rect)
{
    const int top = rect.top() + rect.height() / 2 - 1;
    fill(painter, palette.dark().color(), rect.left(), top, rect.right(), top);
    fill(painter, palette.light().color(), rect.left(), top + 1, rect.right() - 1, top + 1);
}

} // namespace

NIVO_STYLE::NIVO_STYLE() : m_fills_frames(baseStyle()->inherits("QFusionStyle")) {}

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

void NIVO_STYLE::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                               const QWidget* widget) const
{
    if (element == PE_Frame && m_fills_frames &&
        qobject_cast<const QAbstractScrollArea*>(widget) != nullptr) {
        fill_outline(*painter, outline_of(option->palette).lighter(108), option->rect);
        return;
    }
    const bool is_at_rest = (option->state & (State_MouseOver | State_Sunken | State_HasFocus)) == 0;
    if (element == PE_PanelButtonTool && m_fills_frames && is_at_rest &&
        option->state.testFlag(State_AutoRaise) && option->state.testFlag(State_On)) {
        painter->fillRect(option->rect, color_of_button_that_is_on(option->palette));
        fill_outline(*painter, outline_of(option->palette), option->rect);
        return;
    }
    QProxyStyle::drawPrimitive(element, option, painter, widget);
}

void NIVO_STYLE::drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                             const QWidget* widget) const
{
    const auto* const frame = qstyleoption_cast<const QStyleOptionFrame*>(option);
    if (element == CE_ShapedFrame && m_fills_frames && frame != nullptr && frame->lineWidth == 1 &&
        frame->midLineWidth == 0 && frame->state.testFlag(State_Sunken)) {
        if (frame->frameShape == QFrame::Box && frame->rect.width() >= SMALLEST_GROOVE &&
            frame->rect.height() >= SMALLEST_GROOVE) {
            fill_groove(*painter, frame->palette, frame->rect);
            return;
        }
        if (frame->frameShape == QFrame::HLine) {
            fill_horizontal_groove(*painter, frame->palette, frame->rect);
            return;
        }
    }
    QProxyStyle::drawControl(element, option, painter, widget);
}
