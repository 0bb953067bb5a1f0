#ifndef GFPDB_MGR_H
#define GFPDB_MGR_H

#include <string>

/// The custom flash database: a directory with a user's own flash devices, one XML file per device
/// (docs/formats/flash-device-file.md). The directory in force is global to the process; all operations are
/// safe from any thread.
class GFPDB_MGR
{
public:
    /// The directory stored among the user's settings (user_settings.h, key "flash_database_directory"),
    /// empty when there is none.
    static std::string get_custom_dir_from_ini();

    /// Stores the directory for later runs, atomically; an empty one clears it. `apply`: put it in force as
    /// well. False when it cannot be stored, which has been reported.
    static bool save_custom_dir_to_ini(const std::string& directory, bool apply);

    static std::string get_db_custom_dir();

    /// Puts a directory in force and reads its device files; the devices of the directory before leave the
    /// device list. An empty text means no custom database. A file that is no sound device file is named in a
    /// message and skipped, as is a directory that cannot be read.
    static void set_db_custom_dir(const std::string& directory);
};

#endif
