#include "internal_error_trap.h"
#include "msg_debug.h"
#include "msg_service.h"
#include "msg_types.h"

#include <gtest/gtest.h>

#include <vector>

namespace
{

class COLLECTOR final : public MSG_REPORT
{
public:
    void post(const MSG_RECORD& record) override { records.push_back(record); }
    int ask(const MSG_RECORD& record) override
    {
        records.push_back(record);
        return answer;
    }
    std::vector<MSG_RECORD> records;
    int answer = MSG_ANSWER_YES;
};

TEST(message, fills_placeholders_in_the_order_of_their_numbers)
{
    MSG_E message(nullptr);
    message.fill_args("%2!s! before %1!s!, and %2!s! again/EVEK_SAMPLE", "one", "two");
    EXPECT_EQ(message.text(), "two before one, and two again");
    EXPECT_EQ(message.symbolic_id(), "VEK_SAMPLE");
}

TEST(message, takes_a_placeholder_within_an_argument_as_text)
{
    MSG_E message(nullptr);
    message.fill_args("%1!s! and %2!s!/EVEK_SAMPLE", "%2!s!", "%1!s!%n%s");
    EXPECT_EQ(message.text(), "%2!s! and %1!s!%n%s");
}

TEST(message, divides_text_and_kind_at_the_last_slash)
{
    MSG_W message(nullptr);
    message.fill_args("either/or 50% %x %!s! %1!d!/WVEK_SLASH");
    EXPECT_EQ(message.text(), "either/or 50% %x %!s! %1!d!");
    EXPECT_EQ(message.symbolic_id(), "VEK_SLASH");
}

TEST(message, keeps_a_slash_of_an_argument)
{
    MSG_E message(nullptr);
    message.fill_args("File %1!s! is corrupted/EVEK_CORRUPTED_FILE", "/a/b/EX");
    EXPECT_EQ(message.text(), "File /a/b/EX is corrupted");
}

TEST(message, takes_a_null_argument_as_empty)
{
    MSG_O message(nullptr);
    message.fill_args("[%1!s!]/OVEK_NULL", static_cast<const char*>(nullptr));
    EXPECT_EQ(message.text(), "[]");
}

TEST(message, refuses_a_definition_of_another_kind)
{
    MSG_E message(nullptr);
    EXPECT_INTERNAL_ERROR(message.fill_args("text/WVEK_SAMPLE"), "definition names its kind");
    EXPECT_INTERNAL_ERROR(message.fill_args("no kind at all"), "definition names its kind");
}

TEST(message, goes_to_the_destination_given_else_to_that_of_the_constructor)
{
    COLLECTOR own;
    COLLECTOR given;
    MSG_I message(&own);
    message.fill_args("text/IVEK_SAMPLE");
    message.set_id(77);
    EXPECT_EQ(message.report(nullptr), 0);
    EXPECT_EQ(message.report(&given), 0);
    ASSERT_EQ(own.records.size(), 1u);
    ASSERT_EQ(given.records.size(), 1u);
    EXPECT_EQ(own.records[0].id, 77u);
    EXPECT_EQ(own.records[0].text, "text");
    EXPECT_EQ(own.records[0].symbolic_id, "VEK_SAMPLE");
    EXPECT_EQ(own.records[0].severity, MSG_SEVERITY::INFORMATION);
    EXPECT_EQ(own.records[0].thread, std::this_thread::get_id());
}

TEST(message, a_null_message_reports_nothing)
{
    COLLECTOR collector;
    MSG_I_NULL information(&collector);
    MSG_W_NULL warning(&collector);
    EXPECT_EQ(information.report(&collector), 0);
    EXPECT_EQ(warning.report(nullptr), 0);
    EXPECT_TRUE(collector.records.empty());
}

TEST(question, is_answered_by_whoever_is_installed_and_else_with_no)
{
    MSG_YN question(nullptr);
    question.fill_args("Overwrite?/YNVEK_SAMPLE");
    EXPECT_EQ(question.report(nullptr), 7);
    std::string asked;
    MSG_SERVICE::instance().set_answerer([&asked](const MSG_RECORD& record) {
        asked = record.text;
        return MSG_ANSWER_YES;
    });
    EXPECT_EQ(question.report(nullptr), 6);
    EXPECT_EQ(asked, "Overwrite?");
    MSG_SERVICE::instance().set_answerer([](const MSG_RECORD&) { return 1; });
    EXPECT_EQ(question.report(nullptr), 7);
    MSG_SERVICE::instance().set_answerer({});
    EXPECT_EQ(question.report(nullptr), 7);
}

TEST(question, is_asked_on_the_calling_thread)
{
    std::thread::id asked_on;
    MSG_SERVICE::instance().set_answerer([&asked_on](const MSG_RECORD&) {
        asked_on = std::this_thread::get_id();
        return MSG_ANSWER_YES;
    });
    int answer = 0;
    std::thread worker([&answer] {
        MSG_YN question(nullptr);
        question.fill_args("Overwrite?/YNVEK_SAMPLE");
        answer = question.report(nullptr);
    });
    const std::thread::id worker_id = worker.get_id();
    worker.join();
    MSG_SERVICE::instance().set_answerer({});
    EXPECT_EQ(answer, MSG_ANSWER_YES);
    EXPECT_EQ(asked_on, worker_id);
}

TEST(question, may_go_to_a_destination_of_its_own)
{
    COLLECTOR collector;
    MSG_YN question(nullptr);
    question.fill_args("Overwrite?/YNVEK_SAMPLE");
    EXPECT_EQ(question.report(&collector), MSG_ANSWER_YES);
    collector.answer = MSG_ANSWER_NO;
    EXPECT_EQ(question.report(&collector), MSG_ANSWER_NO);
    EXPECT_EQ(collector.records.size(), 2u);
}

TEST(debug_message, is_shown_up_to_the_level_in_force)
{
    COLLECTOR collector;
    MSG_D message(&collector);
    message.fill_args("unknown input file type %d (SOF=%d, PMSF=%d)", 3, 75, 94);
    message.set_subject("VEK_COMMON");
    message.set_level(MSG_D_LEVEL_2);
    msg_set_debug_level(0);
    message.report(nullptr);
    msg_set_debug_level(1);
    message.report(nullptr);
    EXPECT_TRUE(collector.records.empty());
    msg_set_debug_level(2);
    message.report(nullptr);
    msg_set_debug_level(0);
    ASSERT_EQ(collector.records.size(), 1u);
    EXPECT_EQ(collector.records[0].text, "unknown input file type 3 (SOF=75, PMSF=94)");
    EXPECT_EQ(collector.records[0].symbolic_id, "VEK_COMMON");
    EXPECT_EQ(collector.records[0].severity, MSG_SEVERITY::DEBUG);
}

TEST(debug_message, holds_a_text_of_any_length)
{
    const std::string path(4000, 'p');
    MSG_D message(nullptr);
    message.fill_args("path %s", path.c_str());
    EXPECT_EQ(message.text(), "path " + path);
}

} // namespace
