#ifndef PASSWORD_FILES_H
#define PASSWORD_FILES_H

#include "pgm_common_xml_vek_auto_export.h"

#include <string>

/// Gives the files of a setup the password under which their key files are. `text` is the path of a file
/// whose first line is the password, for every file of a bitstream that names a key file which can be under
/// one (PEM, AES); or the id of a bitstream, "=" and such a path, for the files of that bitstream alone. The
/// password is held by the document in memory only and is overwritten when that goes. False with a whole
/// sentence in `message` when the file cannot be read, has an empty first line, or is readable by others.
bool apply_password_file(PGM_COMMON_XML_VEK_VEK& document, const std::string& text, std::string& message);

#endif
