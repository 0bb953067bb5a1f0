#ifndef IMAGEWRIGHT_TESTS_DATABASE_WORDS_H
#define IMAGEWRIGHT_TESTS_DATABASE_WORDS_H

#include "family_table.h"
#include "vek_db.h"

#include <string>
#include <vector>

// Keys as the words that the tests are written in.

inline std::string word(VEK_FILE_TYPE type)
{
    return PGM_COMMON_XML_ENUM_STRING.at(VEK_DB::get_xml_enum(type));
}

inline std::string word(PGMIO_CONFIG_SCHEME mode)
{
    return PGM_COMMON_XML_ENUM_STRING.at(VEK_DB::get_xml_enum(mode));
}

inline std::string word(PGM_COMMON_XML_VEK_CMD_PARAM_ENUM param)
{
    return PGM_COMMON_XML_VEK_CMD_PARAM.at(param);
}

inline std::vector<PGM_COMMON_XML_VEK_CMD_PARAM_ENUM> all_params()
{
    std::vector<PGM_COMMON_XML_VEK_CMD_PARAM_ENUM> params;
    for (unsigned value = 0; value < VEK_CMD_PARAM_MAX; ++value) {
        params.push_back(static_cast<PGM_COMMON_XML_VEK_CMD_PARAM_ENUM>(value));
    }
    return params;
}

/// The families that a user can choose, in the order of their numbers.
inline std::vector<const FAMILY_ROW*> fpga_rows()
{
    std::vector<const FAMILY_ROW*> rows;
    for (const FAMILY_ROW& row : FAMILY_TABLE) {
        if (row.kind == FAMILY_KIND::FPGA) {
            rows.push_back(&row);
        }
    }
    return rows;
}

template <class KEY>
std::string joined(const std::vector<KEY>& keys)
{
    std::string text;
    for (const KEY key : keys) {
        text += (text.empty() ? "" : " ") + word(key);
    }
    return text;
}

#endif
