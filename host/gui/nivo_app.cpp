#include "nivo_app.h"

#include "msg_internal_error.h"

namespace
{
NIVO_APP* the_app = nullptr;
}

NIVO_APP::NIVO_APP()
{
    VEK_ASSERT_TEXT(the_app == nullptr, "there is one application in a process");
    the_app = this;
}

NIVO_APP::~NIVO_APP()
{
    the_app = nullptr;
}

NIVO_APP* nivo_get_app()
{
    return the_app;
}
