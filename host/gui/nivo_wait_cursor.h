#ifndef NIVO_WAIT_CURSOR_H
#define NIVO_WAIT_CURSOR_H

/// Shows the wait cursor while it lives. Several may nest.
class NIVO_WAIT_CURSOR
{
public:
    NIVO_WAIT_CURSOR();
    NIVO_WAIT_CURSOR(const NIVO_WAIT_CURSOR&) = delete;
    NIVO_WAIT_CURSOR& operator=(const NIVO_WAIT_CURSOR&) = delete;
    ~NIVO_WAIT_CURSOR();
};

#endif
