#ifndef MOK_FRAME_INFO_H
#define MOK_FRAME_INFO_H

#include "nivo_clsid.h"

#include <QString>

#include <cstdint>

/// How a frame window stands to the host.
enum MOK_FW_STATE_ENUM : std::uint32_t {
    MOK_FW_STATE_MAIN =
        0, ///< the window is the main window: the tool runs by itself, or it is a host's main frame
    MOK_FW_STATE_ATTACHED = 1, ///< inside the host's main frame, where that one has an MDI area
    MOK_FW_STATE_DETACHED = 2, ///< belongs to a host's main frame, but floats beside it
};

/// What a frame window needs to know before it is built. The frame copies it.
struct MOK_FRAME_INFO {
    NIVO_CLSID clsid = NIVO_CLSID_VEK_DEFAULT_DOC;
    QString application_name = QStringLiteral("Imagewright"); ///< in the title, behind the file name
    QString document_extension = QStringLiteral("vek"); ///< without the dot; a dropped file must carry it
    bool has_mdi_area = false;                          ///< main frames: attached windows lie in an MDI area
    bool is_mok_window =
        true; ///< main frames: keeps its tools in a Window menu and lets them attach and detach
};

#endif
