#ifndef RANDOM_DOCUMENT_H
#define RANDOM_DOCUMENT_H

#include "pgm_common_xml_vek_auto_export.h"

#include <memory>

/// A document with every kind of element and every attribute set, from random texts that a setup can hold:
/// markup characters, blanks at both ends, line ends, and characters of one to four bytes. Equal seeds give
/// equal documents.
std::unique_ptr<PGM_COMMON_XML_VEK_VEK> make_random_document(unsigned seed);

#endif
