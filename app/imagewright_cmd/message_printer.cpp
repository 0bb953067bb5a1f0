#include "message_printer.h"

#include "command.h"
#include "progress_bar.h"

#include <ostream>

namespace
{

bool is_wanted(MSG_SEVERITY severity, bool quiet, bool verbose)
{
    switch (severity) {
    case MSG_SEVERITY::ERROR:
        return true;
    case MSG_SEVERITY::OUTPUT:
    case MSG_SEVERITY::QUESTION:
    case MSG_SEVERITY::WARNING:
        return !quiet;
    case MSG_SEVERITY::INFORMATION:
    case MSG_SEVERITY::DEBUG:
        return verbose;
    }
    return true;
}

} // namespace

MESSAGE_PRINTER::MESSAGE_PRINTER(std::ostream& stream, bool quiet, bool verbose)
    : m_sink([&stream, quiet, verbose](const MSG_RECORD& record) {
          if (!is_wanted(record.severity, quiet, verbose)) {
              return;
          }
          const std::lock_guard<std::mutex> lock(message_stream_mutex());
          clear_progress_line();
          const std::string word = msg_severity_word(record.severity);
          if (!word.empty()) {
              stream << word;
              if (record.id != 0) {
                  stream << " (" << record.id << ')';
              }
              stream << ": ";
          }
          stream << printable(record.text) << '\n';
      })
{
}

std::mutex& message_stream_mutex()
{
    static std::mutex mutex;
    return mutex;
}
