#include "brim_manager.h"
#include "cfg.h"
#include "gen_legal_text.h"
#include "internal_error_trap.h"
#include "msg_service.h"
#include "pgm_common_ini.h"
#include "temporary_directory.h"
#include "thr_drl.h"
#include "tst_mode.h"
#include "user_settings.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace
{

class SETTINGS : public testing::Test
{
protected:
    void SetUp() override { setenv("XDG_CONFIG_HOME", m_directory.path().c_str(), 1); }
    void TearDown() override
    {
        cfg_clear_overrides();
        unsetenv("XDG_CONFIG_HOME");
    }

    std::string file() const { return m_directory / "imagewright/imagewright.ini"; }

    void write_settings(const std::string& text)
    {
        std::filesystem::create_directories(m_directory / "imagewright");
        write_file(file(), text);
    }

    std::string stored(const std::string& key) const
    {
        std::string value = "(none)";
        USER_SETTINGS::get(key, value);
        return value;
    }

    TEMPORARY_DIRECTORY m_directory;
    std::string m_message;
};

TEST_F(SETTINGS, stand_in_the_configuration_directory_of_the_user)
{
    EXPECT_EQ(USER_SETTINGS::file_path(), file());
    unsetenv("XDG_CONFIG_HOME");
    const std::string home = std::getenv("HOME") != nullptr ? std::getenv("HOME") : "";
    setenv("HOME", "/nowhere", 1);
    EXPECT_EQ(USER_SETTINGS::file_path(), "/nowhere/.config/imagewright/imagewright.ini");
    setenv("XDG_CONFIG_HOME", "relative", 1);
    EXPECT_EQ(USER_SETTINGS::file_path(), "/nowhere/.config/imagewright/imagewright.ini");
    setenv("HOME", home.c_str(), 1);
}

TEST_F(SETTINGS, keep_any_text)
{
    for (const std::string& value :
         {std::string("/data/flash devices"), std::string(), std::string(" blanks "), std::string("a=b # c"),
          std::string("line\nfeed\r\\n"), std::string("\t"), std::string("J\xFCrgen"),
          std::string(4000, 'x')}) {
        ASSERT_TRUE(USER_SETTINGS::set("directory", value, m_message)) << m_message;
        EXPECT_EQ(stored("directory"), value);
    }
}

TEST_F(SETTINGS, keep_other_lines_and_comments_as_they_are)
{
    write_settings("# mine\nfirst = 1\n\nsecond=2\n");
    ASSERT_TRUE(USER_SETTINGS::set("second", "two", m_message)) << m_message;
    ASSERT_TRUE(USER_SETTINGS::set("third", "3", m_message)) << m_message;
    EXPECT_EQ(read_text_file(file()), "# mine\nfirst = 1\n\nsecond = two\nthird = 3\n");
    ASSERT_TRUE(USER_SETTINGS::remove("first", m_message)) << m_message;
    EXPECT_EQ(stored("first"), "(none)");
    EXPECT_EQ(read_text_file(file()), "# mine\n\nsecond = two\nthird = 3\n");
}

TEST_F(SETTINGS, leave_no_temporary_file_behind)
{
    ASSERT_TRUE(USER_SETTINGS::set("a", "1", m_message)) << m_message;
    ASSERT_TRUE(USER_SETTINGS::set("a", "2", m_message)) << m_message;
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(m_directory / "imagewright")) {
        names.push_back(entry.path().filename());
    }
    std::sort(names.begin(), names.end());
    EXPECT_EQ(names, (std::vector<std::string>{"imagewright.ini", "imagewright.ini.lock"}));
}

TEST_F(SETTINGS, follow_a_symbolic_link_to_the_file)
{
    write_settings("a = 1\n");
    std::filesystem::rename(file(), m_directory / "real.ini");
    std::filesystem::create_symlink(m_directory / "real.ini", file());
    ASSERT_TRUE(USER_SETTINGS::set("a", "2", m_message)) << m_message;
    EXPECT_TRUE(std::filesystem::is_symlink(file()));
    EXPECT_EQ(read_text_file(m_directory / "real.ini"), "a = 2\n");
}

TEST_F(SETTINGS, do_not_wait_for_a_pipe_and_do_not_replace_it)
{
    std::filesystem::create_directories(m_directory / "imagewright");
    ASSERT_EQ(mkfifo(file().c_str(), 0600), 0);
    EXPECT_EQ(stored("a"), "(none)");
    EXPECT_FALSE(USER_SETTINGS::set("a", "1", m_message));
    EXPECT_EQ(m_message, file() + " cannot be read: it is no regular file.");
    EXPECT_TRUE(std::filesystem::is_fifo(file()));
}

TEST_F(SETTINGS, say_why_they_cannot_be_written)
{
    write_file(m_directory / "imagewright", "in the way");
    EXPECT_FALSE(USER_SETTINGS::set("a", "1", m_message));
    EXPECT_EQ(m_message, file() + " cannot be written: Not a directory.");
}

TEST_F(SETTINGS, lose_nothing_when_threads_write_at_once)
{
    std::vector<std::thread> threads;
    for (int number = 0; number < 4; ++number) {
        threads.emplace_back([number] {
            for (int i = 0; i < 5; ++i) {
                std::string message;
                const std::string key = "key" + std::to_string(number) + "_" + std::to_string(i);
                USER_SETTINGS::set(key, key, message);
                std::string value;
                USER_SETTINGS::get(key, value);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    for (int number = 0; number < 4; ++number) {
        for (int i = 0; i < 5; ++i) {
            const std::string key = "key" + std::to_string(number) + "_" + std::to_string(i);
            EXPECT_EQ(stored(key), key);
        }
    }
}

TEST_F(SETTINGS, refuse_a_key_that_the_file_cannot_hold)
{
    for (const char* const key : {"", "a=b", " a", "#a", "a\nb"}) {
        EXPECT_INTERNAL_ERROR(USER_SETTINGS::set(key, "1", m_message), "is_legal_key(key)");
    }
}

TEST_F(SETTINGS, switches_understand_their_words_in_any_case)
{
    write_settings(
        "a = ON\nb = 1\nc = True\nd = off\ne = 0\nf = FALSE\ng = perhaps\nA = off\nh = yes\ni = No\n");
    for (const char* const key : {"a", "b", "c", "h"}) {
        EXPECT_TRUE(cfg_is_on(key, false)) << key;
    }
    for (const char* const key : {"d", "e", "f", "A", "i"}) {
        EXPECT_FALSE(cfg_is_on(key, true)) << key;
    }
    EXPECT_TRUE(cfg_is_on("g", true));
    EXPECT_FALSE(cfg_is_on("g", false));
}

TEST_F(SETTINGS, an_absent_switch_has_its_default)
{
    EXPECT_FALSE(cfg_is_on("VEK_ALWAYS_ALLOW_SAVE_FILE", false));
    EXPECT_TRUE(cfg_is_on("PGM_ALLOW_KELT_DEVICE", true));
}

TEST_F(SETTINGS, an_override_goes_before_the_environment_and_that_before_the_file)
{
    write_settings("pgm_allow_cfi4g = on\n");
    EXPECT_TRUE(cfg_is_on("pgm_allow_cfi4g", false));
    EXPECT_FALSE(cfg_is_on("PGM_ALLOW_CFI4G", false));
    setenv("IMAGEWRIGHT_CFG_pgm_allow_cfi4g", "off", 1);
    EXPECT_FALSE(cfg_is_on("pgm_allow_cfi4g", true));
    cfg_override("pgm_allow_cfi4g", "on");
    EXPECT_TRUE(cfg_is_on("pgm_allow_cfi4g", false));
    cfg_clear_overrides();
    EXPECT_FALSE(cfg_is_on("pgm_allow_cfi4g", true));
    unsetenv("IMAGEWRIGHT_CFG_pgm_allow_cfi4g");
}

TEST_F(SETTINGS, a_change_of_the_file_is_seen_at_once)
{
    write_settings("a = on\n");
    EXPECT_TRUE(cfg_is_on("a", false));
    write_settings("a = off\n");
    EXPECT_FALSE(cfg_is_on("a", true));
    std::filesystem::remove(file());
    EXPECT_TRUE(cfg_is_on("a", true));
}

TEST_F(SETTINGS, internal_entries_are_told_by_number)
{
    EXPECT_FALSE(PGM_COMMON_INI::get_boolean(3, false));
    EXPECT_TRUE(PGM_COMMON_INI::get_boolean(6, true));
    cfg_override(PGM_COMMON_INI::boolean_key(3), "on");
    cfg_override(PGM_COMMON_INI::boolean_key(6), "off");
    EXPECT_TRUE(PGM_COMMON_INI::get_boolean(3, false));
    EXPECT_FALSE(PGM_COMMON_INI::get_boolean(6, true));
    EXPECT_TRUE(PGM_COMMON_INI::get_boolean(999, true));
    EXPECT_FALSE(PGM_COMMON_INI::get_boolean(999, false));

    cfg_override(PGM_COMMON_INI::encrypted_boolean_key(4), "on");
    EXPECT_TRUE(PGM_COMMON_INI::get_encrypted_boolean(4, false, false));
    EXPECT_FALSE(PGM_COMMON_INI::get_encrypted_boolean(4, false, true));
    EXPECT_FALSE(PGM_COMMON_INI::get_encrypted_boolean(19, false, false));
    write_settings(PGM_COMMON_INI::encrypted_boolean_key(19) + " = on\n");
    EXPECT_TRUE(PGM_COMMON_INI::get_encrypted_boolean(19, false, true));
}

TEST_F(SETTINGS, timing_entries_tell_whether_and_what_is_set)
{
    bool is_set = true;
    std::string text = "old";
    EXPECT_FALSE(PGM_COMMON_INI::get_encrypted_timing_boolean(1, false, false, false, &is_set, &text));
    EXPECT_FALSE(is_set);
    EXPECT_EQ(text, "");
    write_settings(PGM_COMMON_INI::encrypted_timing_boolean_key(1) + " = on\n");
    EXPECT_TRUE(PGM_COMMON_INI::get_encrypted_timing_boolean(1, false, true, false, &is_set, &text));
    EXPECT_TRUE(is_set);
    EXPECT_EQ(text, "on");
    EXPECT_FALSE(PGM_COMMON_INI::get_encrypted_timing_boolean(1, false, false, true, nullptr, nullptr));
}

class PROJECT : public testing::Test
{
protected:
    void TearDown() override { m_manager.close_project(); }

    bool open(const std::string& text)
    {
        write_file(m_directory / "top.brim", text);
        return m_manager.open_project(m_directory / "top.brim", m_message);
    }

    std::string family(const char* entity = "") const
    {
        return brim_get_value(BRIM_VARIABLE_FAMILY_NAME, &m_manager, entity, nullptr, nullptr, nullptr);
    }

    TEMPORARY_DIRECTORY m_directory;
    BRIM_MANAGER& m_manager = *BRIM_MANAGER::get_brim_manager();
    std::string m_message;
};

TEST_F(PROJECT, gives_its_device_family)
{
    EXPECT_FALSE(m_manager.is_project_open());
    EXPECT_EQ(family(), "");
    ASSERT_TRUE(open("# a project\nNAME = top\n\nFAMILY = Zircon\ncore.FAMILY = Gypsum\n")) << m_message;
    EXPECT_TRUE(m_manager.is_project_open());
    EXPECT_EQ(static_cast<int>(BRIM_VARIABLE_FAMILY_NAME), 380);
    EXPECT_EQ(family(), "Zircon");
    EXPECT_EQ(family("core"), "Gypsum");
    EXPECT_EQ(family("other"), "Zircon");
    EXPECT_EQ(brim_get_value(BRIM_VARIABLE_PROJECT_NAME, &m_manager, "", nullptr, nullptr, nullptr), "top");
    EXPECT_EQ(brim_get_value(BRIM_VARIABLE_DEVICE_NAME, &m_manager, "", nullptr, nullptr, nullptr), "");
}

TEST_F(PROJECT, counts_its_read_locks)
{
    EXPECT_FALSE(m_manager.read_lock(true));
    ASSERT_TRUE(open("FAMILY = Zircon\n")) << m_message;
    EXPECT_FALSE(m_manager.is_read_locked());
    EXPECT_TRUE(m_manager.read_lock(true));
    EXPECT_TRUE(m_manager.read_lock(false));
    m_manager.read_unlock();
    EXPECT_TRUE(m_manager.is_read_locked());
    m_manager.read_unlock();
    EXPECT_FALSE(m_manager.is_read_locked());
    m_manager.read_unlock();
    EXPECT_FALSE(m_manager.is_read_locked());
}

TEST_F(PROJECT, is_read_anew_by_the_first_lock_and_stays_under_it)
{
    ASSERT_TRUE(open("FAMILY = Zircon\n")) << m_message;
    write_file(m_directory / "top.brim", "FAMILY = Basalt\n");
    EXPECT_EQ(family(), "Zircon");
    ASSERT_TRUE(m_manager.read_lock(true));
    EXPECT_EQ(family(), "Basalt");
    write_file(m_directory / "top.brim", "FAMILY = Calcite\n");
    ASSERT_TRUE(m_manager.read_lock(true));
    EXPECT_EQ(family(), "Basalt");
    m_manager.read_unlock();
    m_manager.read_unlock();
    std::filesystem::remove(m_directory / "top.brim");
    EXPECT_FALSE(m_manager.read_lock(true));
    EXPECT_FALSE(m_manager.is_read_locked());
}

TEST_F(PROJECT, loses_its_locks_when_it_is_closed)
{
    ASSERT_TRUE(open("FAMILY = Zircon\n")) << m_message;
    ASSERT_TRUE(m_manager.read_lock(false));
    m_manager.close_project();
    ASSERT_TRUE(open("FAMILY = Basalt\n")) << m_message;
    EXPECT_FALSE(m_manager.is_read_locked());
}

TEST_F(PROJECT, is_gone_when_another_one_cannot_be_opened)
{
    ASSERT_TRUE(open("FAMILY = Zircon\n")) << m_message;
    EXPECT_FALSE(m_manager.open_project(m_directory / "absent.brim", m_message));
    EXPECT_FALSE(m_manager.is_project_open());
    EXPECT_EQ(family(), "");
}

TEST(project_of_the_environment, is_opened_or_said_to_be_broken)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe"); // a process in which nobody has asked for the manager yet
    const auto said_at_the_start = [](const std::string& path) {
        setenv("IMAGEWRIGHT_PROJECT", path.c_str(), 1);
        std::string said;
        const MSG_SINK_SCOPE sink([&said](const MSG_RECORD& record) { said += record.text; });
        const BRIM_MANAGER* const manager = BRIM_MANAGER::get_brim_manager();
        return said + (manager->is_project_open() ? "open" : "");
    };
    EXPECT_EXIT(
        {
            const TEMPORARY_DIRECTORY directory;
            write_file(directory / "top.brim", "FAMILY = Zircon\n");
            _exit(said_at_the_start(directory / "top.brim") == "open" ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
    EXPECT_EXIT(
        _exit(said_at_the_start("/absent.brim") == "/absent.brim cannot be read: No such file or directory."
                  ? 0
                  : 1),
        testing::ExitedWithCode(0), "");
}

TEST_F(PROJECT, refuses_a_broken_file_with_its_line)
{
    EXPECT_FALSE(open("FAMILY = Zircon\nnonsense\n"));
    EXPECT_EQ(m_message,
              m_directory / "top.brim" +
                  ", line 2: a project file has lines of the form NAME = value; correct this line.");
    EXPECT_FALSE(m_manager.is_project_open());
    EXPECT_FALSE(m_manager.open_project(m_directory / "absent.brim", m_message));
    EXPECT_EQ(m_message, m_directory / "absent.brim" + " cannot be read: No such file or directory.");
}

TEST(dynamic_loader, finds_a_module_next_to_the_program_and_calls_into_it)
{
    THR_DRL_HANDLE const handle = thr_drl_load("host_core_sample");
    ASSERT_NE(handle, nullptr) << thr_drl_get_error();
    EXPECT_EQ(thr_drl_get_error(), "");
    auto* const answer = reinterpret_cast<int (*)()>(thr_drl_find_function(handle, "sample_answer"));
    ASSERT_NE(answer, nullptr) << thr_drl_get_error();
    EXPECT_EQ(answer(), 42);
    EXPECT_EQ(thr_drl_find_function(handle, "absent_function"), nullptr);
    EXPECT_EQ(thr_drl_get_error().find("The function absent_function cannot be found: "), 0u);
    thr_drl_unload(handle);
    EXPECT_EQ(thr_drl_get_error(), "");
}

TEST(dynamic_loader, says_why_a_module_cannot_be_loaded)
{
    EXPECT_EQ(thr_drl_load("no_such_module"), nullptr);
    EXPECT_EQ(thr_drl_get_error().find("The module no_such_module cannot be loaded: libno_such_module.so"),
              0u)
        << thr_drl_get_error();
    EXPECT_EQ(thr_drl_load("../lib/x"), nullptr);
    EXPECT_EQ(thr_drl_get_error(), "\"../lib/x\" is no module name: it has to be a bare name.");
    EXPECT_EQ(thr_drl_find_function(nullptr, "f"), nullptr);
    EXPECT_EQ(thr_drl_get_error(), "The function f cannot be found: its module is not loaded.");
    THR_DRL_HANDLE const handle = thr_drl_load("host_core_sample");
    EXPECT_EQ(thr_drl_get_error(), "") << "of the call before the last";
    EXPECT_EQ(thr_drl_load("no_such_module"), nullptr);
    EXPECT_NE(thr_drl_find_function(handle, "sample_answer"), nullptr);
    EXPECT_EQ(thr_drl_get_error(), "") << "of the call before the last";
    thr_drl_unload(handle);
    thr_drl_unload(nullptr);
    EXPECT_EQ(thr_drl_get_error(), "");
}

TEST(regression_mode, follows_the_environment_until_it_is_set)
{
    EXPECT_FALSE(tst_is_regtest_mode());
    setenv("IMAGEWRIGHT_REGTEST", "1", 1);
    EXPECT_TRUE(tst_is_regtest_mode());
    tst_set_regtest_mode(false);
    EXPECT_FALSE(tst_is_regtest_mode());
    unsetenv("IMAGEWRIGHT_REGTEST");
    tst_set_regtest_mode(true);
    EXPECT_TRUE(tst_is_regtest_mode());
    tst_set_regtest_mode(false);
}

TEST(legal_text, speaks_of_keys_and_warranty)
{
    const std::string text = gen_get_bitstream_encryption_legal_text();
    EXPECT_NE(text.find("key"), std::string::npos);
    EXPECT_NE(text.find("warranted"), std::string::npos);
}

} // namespace
