#ifndef NIVO_CLSID_H
#define NIVO_CLSID_H

#include <cstdint>

/// The kinds of frame window that the host can tell apart. A window finds another one by its kind.
enum NIVO_CLSID : std::uint32_t {
    NIVO_CLSID_NONE = 0,
    NIVO_CLSID_HOST_MAIN = 1,       ///< the main frame of a host to which tools attach
    NIVO_CLSID_VEK_DEFAULT_DOC = 2, ///< the window that edits a setup
};

#endif
