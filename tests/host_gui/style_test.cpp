#include "nivo_icon.h"
#include "nivo_style.h"

#include <QFrame>
#include <QHeaderView>
#include <QImage>
#include <QPainter>
#include <QPushButton>
#include <QStyleFactory>
#include <QStyleOptionButton>
#include <QStyleOptionHeader>
#include <QStyleOptionToolButton>
#include <QToolButton>
#include <QTreeView>
#include <gtest/gtest.h>

#include <memory>

namespace
{

TEST(STYLE_TEST, bars_that_are_too_long_continue_with_the_hosts_icons_and_the_rest_is_the_desktops)
{
    const NIVO_STYLE style;
    const auto picture = [](const QIcon& icon) { return icon.pixmap(32, 32).toImage(); };
    EXPECT_EQ(picture(style.standardIcon(QStyle::SP_ToolBarHorizontalExtensionButton)),
              picture(nivo_get_icon(NIVO_ICON_MORE_ASIDE)));
    EXPECT_EQ(picture(style.standardIcon(QStyle::SP_ToolBarVerticalExtensionButton)),
              picture(nivo_get_icon(NIVO_ICON_MORE_BELOW)));
    EXPECT_EQ(picture(style.standardIcon(QStyle::SP_MessageBoxWarning)),
              picture(style.baseStyle()->standardIcon(QStyle::SP_MessageBoxWarning)));
}

TEST(STYLE_TEST, heads_of_columns_are_measured_in_the_font_that_they_are_drawn_in)
{
    const NIVO_STYLE style;
    const QHeaderView head(Qt::Horizontal);
    QFont bold = head.font();
    bold.setBold(true);
    QStyleOptionHeader option;
    option.text = QStringLiteral("A rather long name of a column");
    option.fontMetrics = QFontMetrics(bold);
    const QSize measured = style.sizeFromContents(QStyle::CT_HeaderSection, &option, QSize(), &head);
    option.fontMetrics = head.fontMetrics();
    EXPECT_EQ(measured,
              style.baseStyle()->sizeFromContents(QStyle::CT_HeaderSection, &option, QSize(), &head));
    EXPECT_FALSE(head.highlightSections());
    const QPushButton button(option.text);
    QStyleOptionButton other;
    EXPECT_EQ(style.sizeFromContents(QStyle::CT_PushButton, &other, QSize(20, 20), &button),
              style.baseStyle()->sizeFromContents(QStyle::CT_PushButton, &other, QSize(20, 20), &button));
}

/// What a frame looks like that is `style`'s.
QImage picture_of(QFrame& frame, QStyle* style, QSize size, const QPalette& palette)
{
    frame.setStyle(style);
    frame.setPalette(palette);
    frame.resize(size);
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(palette.window().color());
    frame.render(&image, QPoint(), QRegion(), QWidget::DrawWindowBackground);
    return image;
}

TEST(STYLE_TEST, frames_look_as_the_desktops_to_the_pixel)
{
    NIVO_STYLE style;
    ASSERT_TRUE(style.baseStyle()->inherits("QFusionStyle"));
    // Not the one below: that asks the style above it for the parts of a frame.
    const std::unique_ptr<QStyle> desktops(QStyleFactory::create(QStringLiteral("Fusion")));
    QPalette dark(QColor(50, 52, 56));
    dark.setColor(QPalette::Light, QColor(90, 92, 96));
    for (const QPalette& palette : {QPalette(QColor(239, 239, 239)), dark}) {
        for (const QSize size : {QSize(40, 30), QSize(41, 31), QSize(5, 200), QSize(300, 5), QSize(4, 4)}) {
            SCOPED_TRACE(std::to_string(size.width()) + " by " + std::to_string(size.height()));
            QFrame box;
            for (const QFrame::Shape shape : {QFrame::Box, QFrame::HLine, QFrame::VLine, QFrame::Panel}) {
                for (const QFrame::Shadow shadow : {QFrame::Sunken, QFrame::Raised, QFrame::Plain}) {
                    for (const int width : {1, 2}) {
                        SCOPED_TRACE(std::to_string(shape) + " " + std::to_string(shadow) + " " +
                                     std::to_string(width));
                        box.setFrameShape(shape);
                        box.setFrameShadow(shadow);
                        box.setLineWidth(width);
                        EXPECT_EQ(picture_of(box, &style, size, palette),
                                  picture_of(box, desktops.get(), size, palette));
                    }
                }
            }
            QTreeView view;
            EXPECT_EQ(picture_of(view, &style, size, palette),
                      picture_of(view, desktops.get(), size, palette));
        }
    }
}

TEST(STYLE_TEST, a_flat_button_that_is_on_stands_out_and_else_looks_as_the_desktops)
{
    const NIVO_STYLE style;
    const std::unique_ptr<QStyle> desktops(QStyleFactory::create(QStringLiteral("Fusion")));
    QToolButton button;
    const auto picture = [&button](const QStyle& drawn_by, QStyle::State state) {
        QStyleOptionToolButton option;
        option.initFrom(&button);
        option.rect = QRect(0, 0, 60, 24);
        option.state = state | QStyle::State_Enabled | QStyle::State_AutoRaise;
        QImage image(option.rect.size(), QImage::Format_ARGB32_Premultiplied);
        image.fill(option.palette.window().color());
        QPainter painter(&image);
        drawn_by.drawPrimitive(QStyle::PE_PanelButtonTool, &option, &painter, &button);
        return image;
    };
    const QImage on = picture(style, QStyle::State_On);
    const QColor window = button.palette().window().color();
    button.setPalette(QPalette(QColor(50, 52, 56)));
    EXPECT_GT(picture(style, QStyle::State_On).pixelColor(30, 12).lightness(),
              button.palette().window().color().lightness());
    EXPECT_LT(on.pixelColor(30, 12).lightness(), window.lightness());
    EXPECT_LT(on.pixelColor(0, 0).lightness(), on.pixelColor(30, 12).lightness());
    EXPECT_EQ(on.pixelColor(0, 0), on.pixelColor(59, 23));
    for (const QStyle::State state :
         {QStyle::State(QStyle::State_Off), QStyle::State_On | QStyle::State_MouseOver,
          QStyle::State_On | QStyle::State_HasFocus | QStyle::State_KeyboardFocusChange,
          QStyle::State_On | QStyle::State_Sunken, QStyle::State_Off | QStyle::State_Raised}) {
        EXPECT_EQ(picture(style, state), picture(*desktops, state)) << static_cast<int>(state);
    }
}

} // namespace
