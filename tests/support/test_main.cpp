#include "internal_error_trap.h"

#include <gmock/gmock.h>

int main(int argc, char** argv)
{
    testing::InitGoogleMock(&argc, argv);
    install_internal_error_trap();
    return RUN_ALL_TESTS();
}
