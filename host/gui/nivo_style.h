#ifndef NIVO_STYLE_H
#define NIVO_STYLE_H

#include <QProxyStyle>

/// The style of the desktop, with the host's own icons where a bar that is too long continues. Those of the
/// desktop are pictures of one colour, hard to see on a dark palette, and the first of them makes the start
/// of the window wait until all image formats are loaded.
class NIVO_STYLE : public QProxyStyle
{
    Q_OBJECT

public:
    NIVO_STYLE();

    QIcon standardIcon(StandardPixmap icon, const QStyleOption* option = nullptr,
                       const QWidget* widget = nullptr) const override;

    /// Measures the heads of columns in the font that they are drawn in. The library asks for bold, as if the
    /// head of a selected column stood out, which none does here, and has to load that font for it alone.
    QSize sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& size,
                           const QWidget* widget = nullptr) const override;

    /// Frames of one pixel, the same to the pixel as those of the Fusion style, but filled. The library draws
    /// them with a pen, pixel by pixel, which takes a tenth of the time of a window's first painting. A flat
    /// button of a bar that is switched on is plain as well: rounded and shaded, each one was a picture of
    /// its own to make.
    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget = nullptr) const override;
    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget = nullptr) const override;

private:
    bool m_fills_frames;
};

#endif
