#ifndef NIVO_ICON_H
#define NIVO_ICON_H

#include <QIcon>

#include <cstdint>

/// The icons of the host. The numbers are the host's.
enum NIVO_ICON_ENUM : std::uint32_t {
    NIVO_ICON_OPEN = 7,
    NIVO_ICON_SAVE = 13,
    NIVO_ICON_KEY = 51,
    NIVO_ICON_INFORMATION = 101,
    NIVO_ICON_WARNING = 102,
    NIVO_ICON_ERROR = 103,
    NIVO_ICON_OUTPUT = 104, ///< plain output to the user
    NIVO_ICON_COPY = 110,
    NIVO_ICON_CLEAR = 111,
    NIVO_ICON_DETACH = 120,
    NIVO_ICON_MORE_ASIDE = 121, ///< a bar that lies continues
    NIVO_ICON_MORE_BELOW = 122, ///< a bar that stands continues
    NIVO_ICON_IMAGEWRIGHT = 483, ///< windows and dialogs of the tool
};

/// The icon of a number. It is drawn when it is shown, in the size asked for and in the colours of the
/// palette then in force, so that it reads on light and dark backgrounds and at any pixel density.
QIcon nivo_get_icon(NIVO_ICON_ENUM icon);

#endif
