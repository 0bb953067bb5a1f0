#ifndef IMAGEWRIGHT_TESTS_VEK_DB_DOUBLE_H
#define IMAGEWRIGHT_TESTS_VEK_DB_DOUBLE_H

#include "vek_db.h"

#include <map>
#include <optional>
#include <vector>

/// The rules of parameters, and the kinds of input, that a test puts in place of those of the table.
/// Parameters without an entry keep their own.
struct VEK_DB_DOUBLE {
    struct ROW {
        bool enabled = true;
        std::vector<DEV_FAMILY_ENUM> families{};
        std::vector<DEV_FAMILY_ENUM> excluded_families{};
        std::vector<DEV_FAMILY_ENUM> hidden_families{};
        std::vector<PGM_COMMON_XML_VEK_CMD_PARAM_ENUM> parents{};
        std::vector<PGM_COMMON_XML_ENUM> parent_values{};
        std::vector<PGM_COMMON_XML_VEK_CMD_PARAM_ENUM> excludes{};
    };
    std::map<PGM_COMMON_XML_VEK_CMD_PARAM_ENUM, ROW> rows;
    /// What all outputs take, in place of what the table says of them.
    std::optional<std::vector<FIO_FILE_TYPE>> common_input_file_types;
};

VEK_DB_DOUBLE& vek_db_double();

#endif
