#include "gfpdb_mgr.h"
#include "msg_service.h"
#include "pgm_device.h"
#include "temporary_directory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <mutex>
#include <sys/stat.h>
#include <thread>

namespace
{

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

void write_device(const std::string& path, const std::string& name, const std::string& size = "8388608")
{
    write_file(path, "<FLASH_DEVICE version=\"1\" name=\"" + name + "\" type=\"serial-3v\" size=\"" + size +
                         "\" sector_size=\"65536\" page_size=\"256\"/>");
}

std::vector<std::string> custom_names()
{
    std::vector<std::string> names;
    for (const PGM_DEVICE* device : PGM_DEVICE_INDEX::get_device_list()) {
        if (device->device >= DEV_DEVICE_CUSTOM_FIRST) {
            names.push_back(device->name);
        }
    }
    return names;
}

/// A user without settings, and no custom directory in force before and after.
class gfpdb_mgr : public testing::Test
{
protected:
    gfpdb_mgr()
    {
        setenv("XDG_CONFIG_HOME", m_home.path().c_str(), 1);
        GFPDB_MGR::set_db_custom_dir("");
    }
    ~gfpdb_mgr() override
    {
        GFPDB_MGR::set_db_custom_dir("");
        unsetenv("XDG_CONFIG_HOME");
    }

    TEMPORARY_DIRECTORY m_home;
    TEMPORARY_DIRECTORY m_devices;
    std::mutex m_mutex;
    std::vector<std::string> m_messages;
    MSG_SINK_SCOPE m_sink{[this](const MSG_RECORD& record) {
        const std::lock_guard lock(m_mutex);
        m_messages.push_back(record.text);
    }};
};

TEST_F(gfpdb_mgr, nothing_is_stored_at_first)
{
    EXPECT_EQ(GFPDB_MGR::get_custom_dir_from_ini(), "");
    EXPECT_EQ(GFPDB_MGR::get_db_custom_dir(), "");
}

TEST_F(gfpdb_mgr, a_stored_directory_is_not_yet_in_force)
{
    EXPECT_TRUE(GFPDB_MGR::save_custom_dir_to_ini(m_devices.path(), false));
    EXPECT_EQ(GFPDB_MGR::get_custom_dir_from_ini(), m_devices.path());
    EXPECT_EQ(GFPDB_MGR::get_db_custom_dir(), "");
}

TEST_F(gfpdb_mgr, storing_can_put_the_directory_in_force)
{
    write_device(m_devices / "a.xml", "MINE_A");
    EXPECT_TRUE(GFPDB_MGR::save_custom_dir_to_ini(m_devices.path(), true));
    EXPECT_EQ(GFPDB_MGR::get_db_custom_dir(), m_devices.path());
    EXPECT_THAT(custom_names(), ElementsAre("MINE_A"));
}

TEST_F(gfpdb_mgr, putting_a_directory_in_force_does_not_store_it)
{
    GFPDB_MGR::set_db_custom_dir(m_devices.path());
    EXPECT_EQ(GFPDB_MGR::get_custom_dir_from_ini(), "");
}

TEST_F(gfpdb_mgr, an_empty_directory_clears_the_stored_one)
{
    GFPDB_MGR::save_custom_dir_to_ini("/somewhere/with blanks and \xC3\xA4", false);
    EXPECT_EQ(GFPDB_MGR::get_custom_dir_from_ini(), "/somewhere/with blanks and \xC3\xA4");
    EXPECT_TRUE(GFPDB_MGR::save_custom_dir_to_ini("", false));
    EXPECT_EQ(GFPDB_MGR::get_custom_dir_from_ini(), "");
}

TEST_F(gfpdb_mgr, a_directory_that_cannot_be_stored_is_reported)
{
    // A file where the settings directory would have to be.
    write_file(m_home / "imagewright", std::string("in the way"));
    EXPECT_FALSE(GFPDB_MGR::save_custom_dir_to_ini(m_devices.path(), false));
    ASSERT_EQ(m_messages.size(), 1U);
    EXPECT_THAT(m_messages[0], HasSubstr("Detected Imagewright settings error: "));
    EXPECT_EQ(GFPDB_MGR::get_custom_dir_from_ini(), "");
}

TEST_F(gfpdb_mgr, custom_devices_stand_behind_the_built_in_ones_at_once)
{
    const std::size_t built_in = PGM_DEVICE_INDEX::get_device_list().size();
    write_device(m_devices / "b.xml", "MINE_B");
    write_device(m_devices / "a.xml", "MINE_A");
    GFPDB_MGR::set_db_custom_dir(m_devices.path());
    const std::vector<const PGM_DEVICE*> devices = PGM_DEVICE_INDEX::get_device_list();
    ASSERT_EQ(devices.size(), built_in + 2);
    EXPECT_EQ(devices[built_in]->name, "MINE_A");
    EXPECT_EQ(devices[built_in + 1]->name, "MINE_B");
    EXPECT_EQ(PGM_DEVICE_INDEX::find_by_name("mine_a"), devices[built_in]);
    EXPECT_EQ(PGM_DEVICE_INDEX::find_by_enum(devices[built_in]->device), devices[built_in]);
    EXPECT_THAT(m_messages, IsEmpty());
}

TEST_F(gfpdb_mgr, the_devices_of_the_directory_before_leave_the_list_but_stay_valid)
{
    write_device(m_devices / "a.xml", "LEAVING");
    GFPDB_MGR::set_db_custom_dir(m_devices.path());
    const PGM_DEVICE* device = PGM_DEVICE_INDEX::find_by_name("LEAVING");
    ASSERT_NE(device, nullptr);
    const DEV_DEVICE_ENUM number = device->device;
    GFPDB_MGR::set_db_custom_dir("");
    EXPECT_THAT(custom_names(), IsEmpty());
    EXPECT_EQ(PGM_DEVICE_INDEX::find_by_name("LEAVING"), nullptr);
    EXPECT_EQ(device->name, "LEAVING");
    EXPECT_EQ(PGM_DEVICE_INDEX::find_by_enum(number), device);
}

TEST_F(gfpdb_mgr, a_device_that_comes_back_is_the_same_record)
{
    write_device(m_devices / "a.xml", "RETURNING");
    GFPDB_MGR::set_db_custom_dir(m_devices.path());
    const PGM_DEVICE* device = PGM_DEVICE_INDEX::find_by_name("RETURNING");
    GFPDB_MGR::set_db_custom_dir("");
    GFPDB_MGR::set_db_custom_dir(m_devices.path());
    EXPECT_EQ(PGM_DEVICE_INDEX::find_by_name("RETURNING"), device);
}

TEST_F(gfpdb_mgr, a_device_that_was_changed_is_a_new_record)
{
    write_device(m_devices / "a.xml", "CHANGING", "8388608");
    GFPDB_MGR::set_db_custom_dir(m_devices.path());
    const PGM_DEVICE* old_device = PGM_DEVICE_INDEX::find_by_name("CHANGING");
    write_device(m_devices / "a.xml", "CHANGING", "16777216");
    GFPDB_MGR::set_db_custom_dir(m_devices.path());
    const PGM_DEVICE* new_device = PGM_DEVICE_INDEX::find_by_name("CHANGING");
    EXPECT_NE(new_device, old_device);
    EXPECT_NE(new_device->device, old_device->device);
    EXPECT_EQ(old_device->flash_bytes, 8388608U);
    EXPECT_EQ(new_device->flash_bytes, 16777216U);
}

TEST_F(gfpdb_mgr, a_broken_file_is_named_in_a_message_and_skipped)
{
    write_device(m_devices / "good.xml", "GOOD");
    write_device(m_devices / "bad.xml", "BAD", "0");
    GFPDB_MGR::set_db_custom_dir(m_devices.path());
    EXPECT_THAT(custom_names(), ElementsAre("GOOD"));
    ASSERT_EQ(m_messages.size(), 1U);
    EXPECT_THAT(m_messages[0], HasSubstr("File " + (m_devices / "bad.xml") + " is corrupted. "));
    EXPECT_THAT(m_messages[0],
                HasSubstr("the attribute size must be a number of bytes from 1 to 4294967296."));
}

TEST_F(gfpdb_mgr, a_directory_that_is_not_there_is_reported_and_still_in_force)
{
    GFPDB_MGR::set_db_custom_dir(m_devices / "missing");
    EXPECT_EQ(GFPDB_MGR::get_db_custom_dir(), m_devices / "missing");
    ASSERT_EQ(m_messages.size(), 1U);
    EXPECT_THAT(m_messages[0],
                HasSubstr("Detected Imagewright settings error: The custom flash database directory " +
                          (m_devices / "missing") + " cannot be read"));
}

TEST_F(gfpdb_mgr, the_directory_may_change_while_other_threads_read_the_list)
{
    write_device(m_devices / "a.xml", "THREADED");
    std::vector<std::thread> threads;
    for (int i = 0; i < 2; ++i) {
        threads.emplace_back([this, i] {
            for (int n = 0; n < 50; ++n) {
                GFPDB_MGR::set_db_custom_dir((n + i) % 2 == 0 ? m_devices.path() : "");
            }
        });
        threads.emplace_back([] {
            for (int n = 0; n < 200; ++n) {
                for (const PGM_DEVICE* device : PGM_DEVICE_INDEX::get_device_list()) {
                    EXPECT_FALSE(device->name.empty());
                }
                if (const PGM_DEVICE* device = PGM_DEVICE_INDEX::find_by_name("THREADED")) {
                    EXPECT_EQ(PGM_DEVICE_INDEX::find_by_enum(device->device), device);
                }
                GFPDB_MGR::get_db_custom_dir();
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_THAT(m_messages, IsEmpty());
}

TEST_F(gfpdb_mgr, a_listener_of_messages_may_ask_for_devices)
{
    write_device(m_devices / "bad.xml", "BAD", "0");
    std::size_t devices = 0;
    const MSG_SINK_SCOPE sink([&devices](const MSG_RECORD&) {
        devices = PGM_DEVICE_INDEX::get_device_list().size();
        GFPDB_MGR::get_db_custom_dir();
    });
    GFPDB_MGR::set_db_custom_dir(m_devices.path());
    EXPECT_NE(devices, 0U);
}

} // namespace
