#include "failing_threads.h"
#include "fio_file_system.h"
#include "gfpdb_mgr.h"
#include "mok_ui_mgr.h"
#include "nivo_busy_dlg.h"
#include "sample.h"
#include "vek_frame_fixture.h"

#include <atomic>
#include <future>
#include <sys/stat.h>
#include <thread>

namespace
{

class VEK_FRAME_GENERATE : public VEK_FRAME_FIXTURE
{
protected:
    static void let_check_say(bool result, bool can_generate, const std::string& message)
    {
        vek_util_double().check = [=](const PGM_COMMON_XML_VEK_VEK*, bool& save, bool& generate,
                                      std::string& text, bool&, bool include_files) {
            EXPECT_TRUE(include_files);
            save = true;
            generate = can_generate;
            text = message;
            return result;
        };
    }
    static void press(const VEK_FRAME_WND& frame)
    {
        frame.findChild<QPushButton*>(QStringLiteral("m_generate_button"))->click();
    }
    static bool is_running(VEK_FRAME_WND& frame)
    {
        return VEK_FRAME_WND_PROBE::busy_dialog(frame) != nullptr;
    }
    static bool are_entries_enabled(const VEK_FRAME_WND& frame, bool enabled)
    {
        for (const int entry : {7, 13, 14}) {
            if (frame.get_menu_record().get_entry(0, entry)->isEnabled() != enabled) {
                return false;
            }
        }
        return true;
    }
    /// Lets the event loop run until the window rests again and its result has been seen.
    static void finish(VEK_FRAME_WND& frame)
    {
        ASSERT_TRUE(QTest::qWaitFor([&frame] { return !is_running(frame); }, 60000));
    }
};

} // namespace

TEST_F(VEK_FRAME_GENERATE, a_check_that_forbids_it_is_told_and_nothing_starts)
{
    const auto frame = make_frame();
    std::atomic<int> runs = 0;
    vek_util_double().generate = [&runs](PGM_COMMON_XML_VEK_VEK*) { return ++runs > 0; };
    for (const auto& [result, can_generate] : {std::pair(true, false), std::pair(false, true)}) {
        let_check_say(result, can_generate, "There is no output file.");
        MODAL_ANSWERS answers;
        answers.click(QMessageBox::Ok);
        press(*frame);
        ASSERT_EQ(answers.boxes().size(), 1);
        EXPECT_EQ(answers.boxes().at(0).title, QStringLiteral("Imagewright"));
        EXPECT_EQ(answers.boxes().at(0).text,
                  QStringLiteral("Failed to generate output file(s). There is no output file."));
        EXPECT_EQ(answers.boxes().at(0).icon, QMessageBox::Critical);
        EXPECT_FALSE(is_running(*frame));
        EXPECT_TRUE(frame->centralWidget()->isEnabled());
        EXPECT_TRUE(are_entries_enabled(*frame, true));
    }
    EXPECT_EQ(runs, 0);
}

TEST_F(VEK_FRAME_GENERATE, a_reason_that_no_screen_holds_is_told_in_part_and_whole_on_demand)
{
    const auto frame = make_frame();
    std::string message = "Finding 1";
    for (int finding = 2; finding <= 40; ++finding) {
        message += "\nFinding " + std::to_string(finding);
    }
    let_check_say(true, false, message);
    MODAL_ANSWERS answers;
    std::string text;
    std::string details;
    answers.run([&](QDialog& dialog) {
        text = dynamic_cast<QMessageBox&>(dialog).text().toStdString();
        details = dynamic_cast<QMessageBox&>(dialog).detailedText().toStdString();
        EXPECT_EQ(dynamic_cast<QMessageBox&>(dialog).textFormat(), Qt::PlainText)
            << "a name may look like markup";
        dialog.accept();
    });
    press(*frame);
    EXPECT_EQ(text.rfind("Failed to generate output file(s). Finding 1\nFinding 2\n", 0), 0u) << text;
    EXPECT_NE(text.find("\nFinding 15\n... and 25 more"), std::string::npos) << text;
    EXPECT_EQ(details, message);
}

TEST_F(VEK_FRAME_GENERATE, while_it_runs_the_window_is_disabled_behind_a_busy_dialog)
{
    const auto frame = make_frame();
    frame->show();
    let_check_say(true, true, "");
    std::promise<void> may_end;
    const std::shared_future<void> end = may_end.get_future().share();
    std::promise<PGM_COMMON_XML_VEK_VEK*> started;
    std::thread::id worker;
    vek_util_double().generate = [&](PGM_COMMON_XML_VEK_VEK* document) {
        worker = std::this_thread::get_id();
        started.set_value(document);
        end.wait();
        return true;
    };
    MODAL_ANSWERS answers;
    press(*frame);
    EXPECT_EQ(started.get_future().get(), VEK_FRAME_WND_PROBE::document(*frame).get());
    EXPECT_FALSE(frame->centralWidget()->isEnabled());
    EXPECT_TRUE(are_entries_enabled(*frame, false));
    const QPointer<NIVO_BUSY_DLG> busy =
        qobject_cast<NIVO_BUSY_DLG*>(VEK_FRAME_WND_PROBE::busy_dialog(*frame));
    ASSERT_NE(busy, nullptr);
    EXPECT_EQ(busy->windowTitle(), QStringLiteral("Imagewright"));
    EXPECT_EQ(busy->parent(), frame->centralWidget());
    QStringList texts;
    for (const QLabel* const label : busy->findChildren<QLabel*>()) {
        texts << label->text();
    }
    EXPECT_TRUE(texts.contains(QStringLiteral("Please wait while the Imagewright is processing...")));

    answers.click(QMessageBox::Ok);
    may_end.set_value();
    finish(*frame);
    EXPECT_NE(worker, std::this_thread::get_id());
    EXPECT_EQ(busy, nullptr) << "it is gone before the result is told";
    ASSERT_EQ(answers.boxes().size(), 1);
    EXPECT_EQ(answers.boxes().at(0).title, QStringLiteral("Imagewright"));
    EXPECT_EQ(answers.boxes().at(0).text, QStringLiteral("Successfully generated output file(s)."));
    EXPECT_EQ(answers.boxes().at(0).icon, QMessageBox::Information);
    EXPECT_TRUE(frame->centralWidget()->isEnabled());
    EXPECT_TRUE(are_entries_enabled(*frame, true));
}

TEST_F(VEK_FRAME_GENERATE, every_run_ends_with_one_dialog_also_after_a_failure)
{
    const auto frame = make_frame();
    let_check_say(true, true, "");
    std::atomic<int> runs = 0;
    vek_util_double().generate = [&runs](PGM_COMMON_XML_VEK_VEK*) { return ++runs != 1; };
    MODAL_ANSWERS answers;
    for (int run = 1; run <= 3; ++run) {
        answers.click(QMessageBox::Ok);
        press(*frame);
        finish(*frame);
        EXPECT_EQ(answers.boxes().size(), run);
        QCoreApplication::processEvents();
    }
    EXPECT_EQ(runs, 3);
    EXPECT_EQ(answers.boxes().at(0).text, QStringLiteral("Failed to generate output file(s)."));
    EXPECT_EQ(answers.boxes().at(0).icon, QMessageBox::Critical);
    EXPECT_EQ(answers.boxes().at(1).text, QStringLiteral("Successfully generated output file(s)."));
    EXPECT_EQ(answers.boxes().at(2).text, QStringLiteral("Successfully generated output file(s)."));
}

TEST_F(VEK_FRAME_GENERATE, a_machine_without_threads_does_it_in_the_window)
{
    const auto frame = make_frame();
    let_check_say(true, true, "");
    QThread* used = nullptr;
    vek_util_double().generate = [&used](PGM_COMMON_XML_VEK_VEK*) {
        used = QThread::currentThread();
        return true;
    };
    MODAL_ANSWERS answers;
    answers.click(QMessageBox::Ok);
    threads_left = 0;
    press(*frame);
    threads_left = THREADS_ENOUGH;
    finish(*frame);
    EXPECT_EQ(used, frame->thread());
    ASSERT_EQ(answers.boxes().size(), 1);
    EXPECT_EQ(answers.boxes().at(0).text, QStringLiteral("Successfully generated output file(s)."));
    EXPECT_TRUE(are_entries_enabled(*frame, true));
}

TEST_F(VEK_FRAME_GENERATE, it_works_relative_to_the_directory_of_the_host)
{
    const auto frame = make_frame();
    let_check_say(true, false, "");
    const std::string before = FIO_FILE_SYSTEM::get_current_directory();
    MODAL_ANSWERS answers;
    answers.click(QMessageBox::Ok);
    frame->generate();
    EXPECT_EQ(FIO_FILE_SYSTEM::get_current_directory(), before)
        << "without one the process stays where it is";
    set_working_directory(m_directory.path());
    answers.click(QMessageBox::Ok);
    frame->generate();
    EXPECT_EQ(FIO_FILE_SYSTEM::get_current_directory(), m_directory.path());
}

TEST_F(VEK_FRAME_GENERATE, the_flash_database_directory_goes_into_the_document_before_the_check)
{
    const auto frame = make_frame();
    GFPDB_MGR::set_db_custom_dir(m_directory.path());
    std::string seen;
    vek_util_double().check = [&seen](const PGM_COMMON_XML_VEK_VEK* document, bool&, bool&, std::string&,
                                      bool&, bool) {
        VEK_FILE_ASSISTANT::get_custom_db_dir(document, seen);
        return false;
    };
    MODAL_ANSWERS answers;
    answers.click(QMessageBox::Ok);
    frame->generate();
    EXPECT_EQ(seen, m_directory.path());
}

TEST_F(VEK_FRAME_GENERATE, a_missing_application_or_manager_is_an_internal_error)
{
    const auto frame = make_frame();
    m_app.reset();
    EXPECT_INTERNAL_ERROR(frame->generate(), "app != nullptr");
    m_app = std::make_unique<MOK_APP>(std::unique_ptr<MOK_UI_MGR>());
    EXPECT_INTERNAL_ERROR(frame->generate(), "ui_mgr != nullptr");
}

TEST_F(VEK_FRAME_GENERATE, a_window_deleted_during_a_run_leaves_the_document_to_it)
{
    auto frame = make_frame();
    let_check_say(true, true, "");
    std::promise<void> may_end;
    const std::shared_future<void> end = may_end.get_future().share();
    std::promise<std::string> seen;
    vek_util_double().generate = [&](PGM_COMMON_XML_VEK_VEK* document) {
        end.wait();
        seen.set_value(document->version);
        return true;
    };
    const std::weak_ptr<PGM_COMMON_XML_VEK_VEK> document = VEK_FRAME_WND_PROBE::document(*frame);
    frame->generate();
    frame.reset();
    EXPECT_FALSE(document.expired());
    may_end.set_value();
    EXPECT_EQ(seen.get_future().get(), "0");
    QThreadPool::globalInstance()->waitForDone();
    EXPECT_TRUE(document.expired());
}

TEST_F(VEK_FRAME_GENERATE, a_setup_opened_from_a_file_becomes_output_files)
{
    set_working_directory(m_directory.path());
    ASSERT_EQ(::mkdir((m_directory / "out").c_str(), 0700), 0);
    std::string message;
    ASSERT_TRUE(write_sample_bitstream("BS1L15", 1, "PS", m_directory / "top.sof", message)) << message;
    write_file(m_directory / "setup.vek", std::string(R"(<?xml version="1.0" encoding="UTF-8"?>
<VEK version="0">
  <SETTINGS mode="PS"/>
  <BITSTREAMS><BITSTREAM id="Bitstream_1"><PATH>top.sof</PATH></BITSTREAM></BITSTREAMS>
  <OUTPUT_FILES>
    <OUTPUT_FILE name="top" directory="out" type="RBF"><BITSTREAM_ID>Bitstream_1</BITSTREAM_ID></OUTPUT_FILE>
    <OUTPUT_FILE name="top" directory="out" type="HEX"><BITSTREAM_ID>Bitstream_1</BITSTREAM_ID></OUTPUT_FILE>
  </OUTPUT_FILES>
</VEK>
)"));
    const auto frame = make_frame();
    ASSERT_TRUE(frame->open_file(QString::fromStdString(m_directory / "setup.vek")));
    EXPECT_EQ(family_combo(*frame)->currentText(), QStringLiteral("Basalt"));
    EXPECT_EQ(mode_combo(*frame)->currentText(), QStringLiteral("1-bit Passive Serial"));
    EXPECT_TRUE(tabs(*frame)->isTabEnabled(1));
    EXPECT_FALSE(tabs(*frame)->isTabEnabled(2)) << "these outputs go to no flash device";

    MODAL_ANSWERS answers;
    std::vector<std::uint8_t> first;
    for (int run = 1; run <= 2; ++run) {
        answers.click(QMessageBox::Ok);
        press(*frame);
        finish(*frame);
        ASSERT_EQ(answers.boxes().size(), run);
        EXPECT_EQ(answers.boxes().back().text.toStdString(), "Successfully generated output file(s).");
        const std::vector<std::uint8_t> bytes = read_file(m_directory / "out/top.rbf");
        EXPECT_GT(bytes.size(), 493'568u);
        EXPECT_TRUE(run == 1 || bytes == first);
        first = bytes;
    }
    EXPECT_EQ(read_text_file(m_directory / "out/top.hex").front(), ':');

    EXPECT_TRUE(frame->save_file(QString::fromStdString(m_directory / "second.vek")));
    PGM_COMMON_XML_VEK_VEK* reread = nullptr;
    ASSERT_TRUE(VEK_UTIL::parse(&reread, m_directory / "second.vek"));
    const std::unique_ptr<PGM_COMMON_XML_VEK_VEK> owner(reread);
    EXPECT_EQ(mode_of(*reread), "PS");
    EXPECT_EQ(VEK_FILE_ASSISTANT::get_path_elements(reread, "Bitstream_1").at(0)->text, "top.sof");
    EXPECT_EQ(VEK_FILE_ASSISTANT::get_output_file_elements(reread).at(1)->directory, "out");
}

TEST_F(VEK_FRAME_GENERATE, a_real_refusal_names_what_is_missing)
{
    set_working_directory(m_directory.path());
    const auto frame = make_frame();
    MODAL_ANSWERS answers;
    answers.click(QMessageBox::Ok);
    press(*frame);
    ASSERT_EQ(answers.boxes().size(), 1);
    const std::string text = answers.boxes().at(0).text.toStdString();
    const std::string beginning = "Failed to generate output file(s). ";
    EXPECT_EQ(text.substr(0, beginning.size()), beginning);
    EXPECT_GT(text.size(), beginning.size()) << "the reason follows";
}
