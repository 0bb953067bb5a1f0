#include "setup_argument.h"

#include "gfpdb_mgr.h"
#include "setup_reader.h"
#include "vek_file_assistant.h"

bool open_setup(const std::string& path, std::unique_ptr<PGM_COMMON_XML_VEK_VEK>& document,
                std::string& message)
{
    if (!read_setup_file(path, document, message)) {
        return false;
    }
    GFPDB_MGR::set_db_custom_dir(flash_database_of(*document));
    return true;
}

std::string flash_database_of(const PGM_COMMON_XML_VEK_VEK& document)
{
    std::string directory;
    if (!VEK_FILE_ASSISTANT::get_custom_db_dir(&document, directory) || directory.empty()) {
        directory = GFPDB_MGR::get_custom_dir_from_ini();
    }
    return directory;
}

void use_own_flash_database()
{
    GFPDB_MGR::set_db_custom_dir(GFPDB_MGR::get_custom_dir_from_ini());
}
