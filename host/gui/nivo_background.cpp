#include "nivo_background.h"

#include <system_error>
#include <thread>

bool nivo_has_thread()
{
    try {
        std::thread([] {}).join();
        return true;
    } catch (const std::system_error&) {
        return false;
    }
}
