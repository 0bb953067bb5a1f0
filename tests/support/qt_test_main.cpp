#include "internal_error_trap.h"

#include <QApplication>
#include <gmock/gmock.h>

int main(int argc, char** argv)
{
    testing::InitGoogleMock(&argc, argv);
    // Listing the tests must work without a display plugin.
    if (testing::GTEST_FLAG(list_tests)) {
        return RUN_ALL_TESTS();
    }
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    install_internal_error_trap();
    return RUN_ALL_TESTS();
}
