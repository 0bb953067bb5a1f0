#include "internal_error_trap.h"
#include "msg_internal_error.h"

#include <gtest/gtest.h>

namespace
{

MSG_INTERNAL_ERROR::FAULT fault_of(void (*raise)())
{
    try {
        raise();
    } catch (const INTERNAL_ERROR_RAISED& raised) {
        return {raised.condition, raised.subsystem, raised.source, raised.line};
    }
    return {};
}

TEST(internal_error, names_the_condition_and_its_place_in_the_repository)
{
    constexpr int line = __LINE__ + 1;
    const auto fault = fault_of([] { VEK_ASSERT(1 + 1 == 3); });
    EXPECT_EQ(fault.condition, "1 + 1 == 3");
    EXPECT_EQ(fault.subsystem, "VEK");
    EXPECT_EQ(fault.source, "tests/host_core/internal_error_test.cpp");
    EXPECT_EQ(fault.line, line);
}

TEST(internal_error, a_condition_that_holds_raises_nothing)
{
    int evaluations = 0;
    VEK_ASSERT(++evaluations == 1);
    VEK_ASSERT_TEXT(evaluations == 1, "evaluated once");
    EXPECT_EQ(evaluations, 1);
}

TEST(internal_error, cuts_a_module_path_from_another_root)
{
    const auto fault = fault_of([] {
        MSG_INTERNAL_ERROR::report("m_vek != nullptr", "VEK", "/elsewhere/pgm/vek/vek_frame_wnd.cpp", 7);
    });
    EXPECT_EQ(fault.source, "pgm/vek/vek_frame_wnd.cpp");
}

TEST(internal_error, formats_a_condition)
{
    const auto fault =
        fault_of([] { MSG_INTERNAL_ERROR::report_varg("VEK", "a.cpp", 1, "row %d of %s", 3, "table"); });
    EXPECT_EQ(fault.condition, "row 3 of table");
}

TEST(internal_error_death, without_a_handler_prints_condition_source_and_line_and_ends_the_run)
{
    EXPECT_EXIT(
        {
            MSG_INTERNAL_ERROR::set_handler({});
            MSG_INTERNAL_ERROR::report("m_cache != nullptr", "VEK", "pgm/vek/vek_frame_wnd.cpp", 12);
        },
        testing::KilledBySignal(SIGABRT),
        "Internal error: m_cache != nullptr\nSubsystem: VEK\nSource: pgm/vek/vek_frame_wnd.cpp, line 12");
}

TEST(internal_error_death, ends_the_run_even_when_the_handler_returns)
{
    EXPECT_EXIT(
        {
            MSG_INTERNAL_ERROR::set_handler(
                [](const auto& fault) { fputs(fault.condition.c_str(), stderr); });
            MSG_INTERNAL_ERROR::report("status", "VEK", "a.cpp", 1);
        },
        testing::KilledBySignal(SIGABRT), "status");
}

} // namespace
