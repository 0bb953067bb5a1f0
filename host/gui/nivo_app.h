#ifndef NIVO_APP_H
#define NIVO_APP_H

/// The application as the widget layer knows it. One lives in a process; it announces itself when it is built
/// and withdraws when it goes.
class NIVO_APP
{
public:
    NIVO_APP();
    NIVO_APP(const NIVO_APP&) = delete;
    NIVO_APP& operator=(const NIVO_APP&) = delete;
    virtual ~NIVO_APP();
};

/// The application of this process, or null while there is none. Cast it to MOK_APP for the frame layer.
NIVO_APP* nivo_get_app();

#endif
