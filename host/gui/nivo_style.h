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
    QIcon standardIcon(StandardPixmap icon, const QStyleOption* option = nullptr,
                       const QWidget* widget = nullptr) const override;
};

#endif
