#ifndef MESSAGE_PRINTER_H
#define MESSAGE_PRINTER_H

#include "msg_service.h"

#include <iosfwd>
#include <mutex>

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

/// Held while a message is printed. Messages come from any thread, so whatever else writes to the same stream
/// while work goes on holds it too.
std::mutex& message_stream_mutex();

#endif
