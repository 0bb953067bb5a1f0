#ifndef DOCUMENT_STRUCTURE_H
#define DOCUMENT_STRUCTURE_H

#include "pgm_common_xml_vek_auto_export.h"

#include <string>
#include <vector>

/// What must hold before a setup can be saved: the mode is set, each id stands once, each reference leads
/// somewhere and stands once in its list. Returns a sentence for each thing that does not, in document order.
/// One pass; the time grows with the size of the document alone.
std::vector<std::string> check_document_structure(const PGM_COMMON_XML_VEK_VEK& document);

#endif
