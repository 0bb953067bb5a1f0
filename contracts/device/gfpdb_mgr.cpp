#include "gfpdb_mgr.h"

#include "custom_flash.h"
#include "device_store.h"
#include "user_settings.h"
#include "vek_msgs.h"

#include <mutex>

namespace
{

constexpr const char* SETTINGS_KEY = "flash_database_directory";

struct CUSTOM_DIRECTORY {
    std::mutex change; ///< held while a directory is read, so that changes take effect one after the other
    std::mutex access; ///< guards `directory`
    std::string directory;
};

CUSTOM_DIRECTORY& custom_directory()
{
    // Not destroyed, as threads may ask while the process ends.
    static CUSTOM_DIRECTORY* const state = new CUSTOM_DIRECTORY;
    return *state;
}

} // namespace

std::string GFPDB_MGR::get_custom_dir_from_ini()
{
    std::string directory;
    USER_SETTINGS::get(SETTINGS_KEY, directory);
    return directory;
}

bool GFPDB_MGR::save_custom_dir_to_ini(const std::string& directory, bool apply)
{
    std::string message;
    const bool saved = directory.empty() ? USER_SETTINGS::remove(SETTINGS_KEY, message)
                                         : USER_SETTINGS::set(SETTINGS_KEY, directory, message);
    if (!saved) {
        vek_report(MSG_VEK::E::SETTINGS_CHECK_ERROR(message));
    }
    if (apply) {
        set_db_custom_dir(directory);
    }
    return saved;
}

std::string GFPDB_MGR::get_db_custom_dir()
{
    CUSTOM_DIRECTORY& state = custom_directory();
    const std::lock_guard lock(state.access);
    return state.directory;
}

void GFPDB_MGR::set_db_custom_dir(const std::string& directory)
{
    std::vector<CUSTOM_FLASH_PROBLEM> problems;
    {
        CUSTOM_DIRECTORY& state = custom_directory();
        const std::lock_guard change(state.change);
        std::vector<PGM_DEVICE> devices;
        if (!directory.empty()) {
            devices = read_flash_device_directory(directory, problems);
        }
        DEVICE_STORE::instance().set_custom_devices(std::move(devices));
        const std::lock_guard access(state.access);
        state.directory = directory;
    }
    // Told when nothing is locked, as those who listen may ask for devices.
    for (const CUSTOM_FLASH_PROBLEM& problem : problems) {
        vek_report(problem.path == directory
                       ? MSG_VEK::E::SETTINGS_CHECK_ERROR(problem.reason)
                       : MSG_VEK::E::CORRUPTED_FILE_WITH_REASON(problem.path, problem.reason));
    }
}
