#ifndef PARAM_ROW_H
#define PARAM_ROW_H

#include "enum_set.h"
#include "family_table.h"
#include "file_type_table.h"
#include "pgm_common_xml_enum.h"
#include "pgm_common_xml_vek_cmd_enum.h"

using PARAM_LIST = SHORT_LIST<PGM_COMMON_XML_VEK_CMD_PARAM_ENUM, 4>;
using WORD_LIST = SHORT_LIST<PGM_COMMON_XML_ENUM, 4>;

/// One parameter of the document interface. An empty list does not restrict.
struct PARAM_ROW {
    PGM_COMMON_XML_VEK_CMD_PARAM_ENUM param;
    const char* description; ///< a whole sentence
    bool enabled = false;    ///< shown in the dialogs
    FAMILY_SET families{};
    FAMILY_SET excluded_families{};
    FAMILY_SET hidden_families{}; ///< offered there under a hidden switch
    INPUT_SET inputs{};
    FILE_TYPE_SET outputs{};
    PARAM_LIST parents{};      ///< one of them must be set
    WORD_LIST parent_values{}; ///< the values of a parent with several values that count as set
    PARAM_LIST excludes{};
};

#endif
