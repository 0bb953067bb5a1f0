#ifndef SETUP_WRITER_H
#define SETUP_WRITER_H

#include "pgm_common_xml_vek_auto_export.h"

#include <string>

/// Writes the document as a setup file (docs/formats/setup-file.md). The file at `path` is replaced when the
/// new one is complete on the disk, and not before. False with a whole sentence in `message` when it cannot
/// be written, or when a value cannot stand in such a file: the sentence then names element and attribute.
bool write_setup_file(const PGM_COMMON_XML_VEK_VEK& document, const std::string& path, std::string& message);

/// The text of that file.
bool write_setup_text(const PGM_COMMON_XML_VEK_VEK& document, std::string& text, std::string& message);

#endif
