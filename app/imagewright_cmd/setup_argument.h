#ifndef SETUP_ARGUMENT_H
#define SETUP_ARGUMENT_H

#include "pgm_common_xml_vek_auto_export.h"

#include <CLI/CLI.hpp>

#include <memory>
#include <string>
#include <vector>

/// Reads the setup that a command was given and brings the flash database into force that it names, or else
/// the user's own. False with a whole sentence in `message`, which begins with the path.
bool open_setup(const std::string& path, std::unique_ptr<PGM_COMMON_XML_VEK_VEK>& document,
                std::string& message);

/// The directory of the flash database that a setup names, or else the user's own.
std::string flash_database_of(const PGM_COMMON_XML_VEK_VEK& document);

/// Brings the user's own flash database into force, for commands that work without a setup.
void use_own_flash_database();

/// The option by which a command takes the passwords of key files: in files, since a command line is seen by
/// others and kept by shells.
class PASSWORD_OPTION
{
public:
    void declare(CLI::App& command);
    /// Gives the setup its passwords. False with a whole sentence in `message`. Any thread.
    bool apply(PGM_COMMON_XML_VEK_VEK& document, std::string& message) const;

private:
    std::vector<std::string> m_files;
};

#endif
