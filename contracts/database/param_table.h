#ifndef PARAM_TABLE_H
#define PARAM_TABLE_H

#include "param_row.h"

/// The row of a parameter; null for a number that is no parameter.
const PARAM_ROW* find_param_row(PGM_COMMON_XML_VEK_CMD_PARAM_ENUM param);

#endif
