#ifndef SETUP_READER_H
#define SETUP_READER_H

#include "pgm_common_xml_vek_auto_export.h"

#include <cstdint>
#include <memory>
#include <span>
#include <string>

/// The version of the setup format that this program writes, and the newest that it reads.
inline constexpr unsigned SETUP_FORMAT_VERSION = 1;

/// Reads the setup file `path` (docs/formats/setup-file.md). On false `document` is untouched and `message`
/// is a whole sentence that names the file, the line and the column, and what was expected there. Never opens
/// anything but a regular file, never blocks, and never reaches for what the file refers to.
bool read_setup_file(const std::string& path, std::unique_ptr<PGM_COMMON_XML_VEK_VEK>& document,
                     std::string& message);

/// The same from memory; `name` stands for the file in messages.
bool read_setup_bytes(std::span<const std::uint8_t> bytes, const std::string& name,
                      std::unique_ptr<PGM_COMMON_XML_VEK_VEK>& document, std::string& message);

#endif
