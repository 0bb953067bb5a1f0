#ifndef DOCUMENT_COMPARE_H
#define DOCUMENT_COMPARE_H

#include "pgm_common_xml_export.h"

#include <string>

/// Whether two trees have the same elements in the same order with the same values. The version of the file
/// format is no content, and secrets are not looked at. When not, `difference` names the first place, as in
/// `VEK/RAW_FILES/RAW_FILE[2]: bitswap is "1" and "0"`.
bool documents_equal(const PGM_COMMON_XML_ELEMENT& left, const PGM_COMMON_XML_ELEMENT& right,
                     std::string& difference);

#endif
