#ifndef MESSAGE_PRINTER_H
#define MESSAGE_PRINTER_H

#include "msg_service.h"

#include <iosfwd>

/// While it lives, the messages of the back end go to a stream, a line each: "Error (19504): text". Errors
/// always, warnings and plain output unless quiet, information when verbose. Questions are answered no: a
/// program that runs by itself overwrites nothing that it was not told to.
class MESSAGE_PRINTER
{
public:
    MESSAGE_PRINTER(std::ostream& stream, bool quiet, bool verbose);

private:
    MSG_SINK_SCOPE m_sink;
};

#endif
