#include "msg_types.h"

#include "msg_service.h"

int MSG_YN::report(MSG_REPORT* destination)
{
    if (MSG_REPORT* const chosen = destination_or_own(destination); chosen != nullptr) {
        return chosen->ask(record());
    }
    return MSG_SERVICE::instance().ask(record());
}
