#include "tst_mode.h"

#include "cfg.h"

#include <atomic>
#include <cstdlib>

namespace
{

enum class MODE : unsigned char { FROM_ENVIRONMENT, OFF, ON };
std::atomic<MODE> mode{MODE::FROM_ENVIRONMENT};

} // namespace

bool tst_is_regtest_mode()
{
    if (mode == MODE::FROM_ENVIRONMENT) {
        const char* const variable = std::getenv("IMAGEWRIGHT_REGTEST");
        bool on = false;
        return variable != nullptr && cfg_parse_switch(variable, on) && on;
    }
    return mode == MODE::ON;
}

void tst_set_regtest_mode(bool on)
{
    mode = on ? MODE::ON : MODE::OFF;
}
