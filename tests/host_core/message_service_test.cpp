#include "msg_index.h"
#include "msg_service.h"
#include "msg_types.h"
#include "progress.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace
{

class MESSAGE_SERVICE : public testing::Test
{
protected:
    void SetUp() override { MSG_SERVICE::instance().clear_history(); }
    void TearDown() override
    {
        MSG_SERVICE::instance().set_history_limit(10000);
        MSG_SERVICE::instance().clear_history();
    }

    static void report(const std::string& text)
    {
        MSG_RECORD record;
        record.text = text;
        MSG_SERVICE::instance().post(record);
    }

    static std::vector<std::string> history()
    {
        std::vector<std::string> texts;
        for (const MSG_RECORD& record : MSG_SERVICE::instance().history()) {
            texts.push_back(record.text);
        }
        return texts;
    }
};

using TEXTS = std::vector<std::string>;

TEST_F(MESSAGE_SERVICE, tells_every_sink_of_every_message_in_order)
{
    TEXTS first;
    TEXTS second;
    const MSG_SINK_SCOPE one([&first](const MSG_RECORD& record) { first.push_back(record.text); });
    report("a");
    {
        const MSG_SINK_SCOPE two([&second](const MSG_RECORD& record) { second.push_back(record.text); });
        report("b");
    }
    report("c");
    EXPECT_EQ(first, (TEXTS{"a", "b", "c"}));
    EXPECT_EQ(second, (TEXTS{"b"}));
}

TEST_F(MESSAGE_SERVICE, gives_a_late_sink_the_history_when_it_wants_it)
{
    report("early");
    TEXTS texts;
    const auto id = MSG_SERVICE::instance().add_sink(
        [&texts](const MSG_RECORD& record) { texts.push_back(record.text); }, true);
    report("late");
    MSG_SERVICE::instance().remove_sink(id);
    EXPECT_EQ(texts, (TEXTS{"early", "late"}));
}

TEST_F(MESSAGE_SERVICE, keeps_the_newest_messages_up_to_its_limit)
{
    MSG_SERVICE::instance().set_history_limit(2);
    report("a");
    report("b");
    report("c");
    EXPECT_EQ(history(), (TEXTS{"b", "c"}));
    MSG_SERVICE::instance().set_history_limit(1);
    EXPECT_EQ(history(), (TEXTS{"c"}));
}

TEST_F(MESSAGE_SERVICE, numbers_records_and_notes_time_and_thread)
{
    const auto before = std::chrono::system_clock::now();
    report("a");
    report("b");
    const auto records = MSG_SERVICE::instance().history();
    ASSERT_EQ(records.size(), 2u);
    EXPECT_EQ(records[1].sequence, records[0].sequence + 1);
    EXPECT_GE(records[0].time, before);
    EXPECT_EQ(records[0].thread, std::this_thread::get_id());
}

TEST_F(MESSAGE_SERVICE, delivers_what_a_sink_reports_after_the_message_in_hand)
{
    TEXTS texts;
    const MSG_SINK_SCOPE echo([](const MSG_RECORD& record) {
        if (record.text == "question") {
            report("echo");
        }
    });
    const MSG_SINK_SCOPE sink([&texts](const MSG_RECORD& record) { texts.push_back(record.text); });
    report("question");
    EXPECT_EQ(texts, (TEXTS{"question", "echo"}));
}

TEST_F(MESSAGE_SERVICE, lets_a_sink_remove_itself)
{
    int calls = 0;
    MSG_SERVICE::SINK_ID id = 0;
    id = MSG_SERVICE::instance().add_sink([&calls, &id](const MSG_RECORD&) {
        ++calls;
        MSG_SERVICE::instance().remove_sink(id);
    });
    report("a");
    report("b");
    EXPECT_EQ(calls, 1);
}

TEST_F(MESSAGE_SERVICE, tells_a_sink_nothing_once_an_earlier_one_has_removed_it)
{
    MSG_SERVICE& service = MSG_SERVICE::instance();
    MSG_SERVICE::SINK_ID second = 0;
    int told = 0;
    const MSG_SERVICE::SINK_ID first =
        service.add_sink([&](const MSG_RECORD&) { service.remove_sink(second); });
    second = service.add_sink([&](const MSG_RECORD&) { ++told; });
    service.post(MSG_RECORD());
    service.remove_sink(first);
    EXPECT_EQ(told, 0);
}

TEST_F(MESSAGE_SERVICE, works_on_after_a_sink_has_thrown)
{
    const auto id =
        MSG_SERVICE::instance().add_sink([](const MSG_RECORD&) { throw std::runtime_error("sink"); });
    EXPECT_THROW(report("a"), std::runtime_error);
    MSG_SERVICE::instance().remove_sink(id);
    TEXTS texts;
    const MSG_SINK_SCOPE sink([&texts](const MSG_RECORD& record) { texts.push_back(record.text); });
    report("b");
    EXPECT_EQ(texts, (TEXTS{"b"}));
}

TEST_F(MESSAGE_SERVICE, records_a_question_like_any_message)
{
    MSG_YN question(nullptr);
    question.fill_args("Overwrite?/YNVEK_SAMPLE");
    question.set_id(19880);
    question.report(nullptr);
    const auto records = MSG_SERVICE::instance().history();
    ASSERT_EQ(records.size(), 1u);
    EXPECT_EQ(records[0].id, 19880u);
    EXPECT_EQ(records[0].severity, MSG_SEVERITY::QUESTION);
}

TEST_F(MESSAGE_SERVICE, takes_reports_from_many_threads_while_sinks_come_and_go)
{
    constexpr int THREADS = 6;
    constexpr int MESSAGES = 400;
    std::uint64_t told = 0; // not atomic: a sink is called by one thread at a time
    const auto constant = MSG_SERVICE::instance().add_sink([&told](const MSG_RECORD&) { ++told; });
    std::atomic<int> working{THREADS};
    std::vector<std::thread> threads;
    for (int number = 0; number < THREADS; ++number) {
        threads.emplace_back([&working, number] {
            for (int i = 0; i < MESSAGES; ++i) {
                MSG_E message(nullptr);
                message.fill_args("message %1!s!/EVEK_THREAD", std::to_string(number).c_str());
                message.report(nullptr);
                MSG_INDEX::get_default_index()->suppress(static_cast<std::uint32_t>(i));
                MSG_INDEX::get_default_index()->release(static_cast<std::uint32_t>(i));
            }
            --working;
        });
    }
    bool alive = true;
    while (working != 0) {
        // The captured object is gone right behind the removal: a later call would be seen by the sanitizer.
        auto seen = std::make_unique<std::uint64_t>(0);
        const auto id = MSG_SERVICE::instance().add_sink([&seen](const MSG_RECORD&) { ++*seen; });
        MSG_SERVICE::instance().set_answerer([](const MSG_RECORD&) { return MSG_ANSWER_YES; });
        MSG_SERVICE::instance().remove_sink(id);
        seen.reset();
        alive = alive && MSG_SERVICE::instance().history().size() <= 10000;
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    MSG_SERVICE::instance().remove_sink(constant);
    MSG_SERVICE::instance().set_answerer({});
    EXPECT_TRUE(alive);
    EXPECT_EQ(told, std::uint64_t{THREADS * MESSAGES});
    EXPECT_EQ(MSG_SERVICE::instance().history().size(), std::size_t{THREADS * MESSAGES});
}

TEST_F(MESSAGE_SERVICE, does_not_lock_up_when_two_sinks_report_from_two_threads)
{
    std::atomic<int> echoes{0};
    const auto echo = [&echoes](const MSG_RECORD& record) {
        if (record.text == "ping") {
            report("pong");
        } else {
            ++echoes;
        }
    };
    const MSG_SINK_SCOPE one(echo);
    const MSG_SINK_SCOPE two(echo);
    const auto work = [] {
        for (int i = 0; i < 200; ++i) {
            report("ping");
        }
    };
    std::thread left(work);
    std::thread right(work);
    left.join();
    right.join();
    // Each ping makes both sinks report a pong, and both sinks count each pong.
    EXPECT_EQ(echoes, 2 * 200 * 2 * 2);
}

TEST(progress, tells_the_share_done_and_the_file_in_work)
{
    PROGRESS& progress = PROGRESS::instance();
    EXPECT_FALSE(progress.snapshot().active);
    progress.begin(200);
    EXPECT_TRUE(progress.snapshot().active);
    EXPECT_EQ(progress.snapshot().percent, 0u);
    progress.advance(50, "top.rbf");
    EXPECT_EQ(progress.snapshot().percent, 25u);
    EXPECT_EQ(progress.snapshot().file, "top.rbf");
    progress.advance(500, "top.hex");
    EXPECT_EQ(progress.snapshot().percent, 100u);
    progress.finish();
    EXPECT_FALSE(progress.snapshot().active);
}

TEST(progress, starts_anew_with_each_run)
{
    PROGRESS& progress = PROGRESS::instance();
    progress.begin(10);
    progress.advance(10, "old");
    progress.finish();
    progress.begin(10);
    EXPECT_EQ(progress.snapshot().percent, 0u);
    EXPECT_EQ(progress.snapshot().file, "");
    progress.finish();
}

TEST(progress, nested_work_belongs_to_the_run_and_never_turns_it_back)
{
    PROGRESS& progress = PROGRESS::instance();
    const PROGRESS_SCOPE run(100);
    progress.advance(60, "a");
    {
        const PROGRESS_SCOPE nested(100);
        EXPECT_EQ(progress.snapshot().total, 200u);
        EXPECT_EQ(progress.snapshot().percent, 60u);
    }
    EXPECT_TRUE(progress.snapshot().active);
}

TEST(progress, passes_over_work_outside_a_run)
{
    PROGRESS& progress = PROGRESS::instance();
    progress.finish();
    progress.advance(10, "stray");
    progress.begin(0);
    progress.advance(10, "unknown size");
    EXPECT_EQ(progress.snapshot().percent, 0u);
    EXPECT_EQ(progress.snapshot().done, 10u);
    progress.finish();
}

TEST(progress, adds_up_what_parallel_outputs_do)
{
    PROGRESS& progress = PROGRESS::instance();
    progress.begin(4 * 1000);
    std::vector<std::thread> threads;
    std::atomic<bool> sane{true};
    for (int number = 0; number < 4; ++number) {
        threads.emplace_back([&progress, &sane, number] {
            const std::string file = "file" + std::to_string(number);
            unsigned last = 0;
            for (int i = 0; i < 1000; ++i) {
                progress.advance(1, file);
                const unsigned now = progress.snapshot().percent;
                if (now < last) {
                    sane = false;
                }
                last = now;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_TRUE(sane);
    EXPECT_EQ(progress.snapshot().done, 4000u);
    EXPECT_EQ(progress.snapshot().percent, 100u);
    progress.finish();
}

} // namespace
