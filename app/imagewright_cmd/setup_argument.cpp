#include "setup_argument.h"

#include "core_dump_guard.h"
#include "gfpdb_mgr.h"
#include "password_files.h"
#include "setup_reader.h"
#include "vek_file_assistant.h"

#include <algorithm>

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

void PASSWORD_OPTION::declare(CLI::App& command)
{
    command
        .add_option(
            "--password-file", m_files,
            "File whose first line is the password of the key files, for all bitstreams or for the one "
            "whose id stands in front")
        ->type_name("[ID=]FILE")
        ->expected(1)
        ->take_all();
}

bool PASSWORD_OPTION::apply(PGM_COMMON_XML_VEK_VEK& document, std::string& message) const
{
    if (m_files.empty()) {
        return true;
    }
    // From the first password on to the end of the program, since documents come and go on many threads.
    static const CORE_DUMP_GUARD guard;
    return std::all_of(m_files.begin(), m_files.end(),
                       [&](const std::string& file) { return apply_password_file(document, file, message); });
}
