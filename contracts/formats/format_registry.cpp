#include "format_registry.h"

#include "ekp_format.h"
#include "hex_format.h"
#include "jam_format.h"
#include "jbc_format.h"
#include "map_format.h"
#include "pof_format.h"
#include "rbf_format.h"
#include "rim_format.h"
#include "rpd_format.h"
#include "svf_format.h"
#include "ttf_format.h"

#include <algorithm>

namespace
{
const RBF_FORMAT RBF;
const TTF_FORMAT TTF;
const HEX_FORMAT HEX;
const POF_FORMAT POF;
const JIC_FORMAT JIC;
const RPD_FORMAT RPD;
const MAP_FORMAT MAP;
const SVF_FORMAT SVF;
const EKP_FORMAT EKP;
const RIM_FORMAT RIM;
const JAM_FORMAT JAM;
const JBC_FORMAT JBC;

constexpr FORMAT_ROW ROWS[] = {
    {VEK_RBF_FILE_TYPE, &RBF, FORMAT_SUBJECT::STREAM},
    {VEK_TTF_FILE_TYPE, &TTF, FORMAT_SUBJECT::STREAM},
    {VEK_HEX_FILE_TYPE, &HEX, FORMAT_SUBJECT::STREAM},
    {VEK_JIC_FILE_TYPE, &JIC, FORMAT_SUBJECT::FLASH_IMAGE},
    {VEK_POF_FILE_TYPE, &POF, FORMAT_SUBJECT::FLASH_IMAGE},
    {VEK_PRRBF_FILE_TYPE, &RBF, FORMAT_SUBJECT::STREAM},
    {VEK_CVP_CORE_RBF_FILE_TYPE, &RBF, FORMAT_SUBJECT::STREAM, FORMAT_PART::CORE},
    {VEK_HPS_CORE_RBF_FILE_TYPE, &RBF, FORMAT_SUBJECT::STREAM, FORMAT_PART::CORE},
    {VEK_RPD_FILE_TYPE, &RPD, FORMAT_SUBJECT::FLASH_IMAGE},
    {VEK_MAP_FILE_TYPE, &MAP, FORMAT_SUBJECT::FLASH_IMAGE},
    {VEK_JAM_FILE_TYPE, &JAM, FORMAT_SUBJECT::STREAM},
    {VEK_JBC_FILE_TYPE, &JBC, FORMAT_SUBJECT::STREAM},
    {VEK_EKP_FILE_TYPE, &EKP, FORMAT_SUBJECT::KEYS, FORMAT_PART::ALL, true},
    {VEK_PERIPH_JIC_FILE_TYPE, &JIC, FORMAT_SUBJECT::FLASH_IMAGE, FORMAT_PART::PERIPHERY},
    {VEK_PERIPH_POF_FILE_TYPE, &POF, FORMAT_SUBJECT::FLASH_IMAGE, FORMAT_PART::PERIPHERY},
    {VEK_PERIPH_RBF_FILE_TYPE, &RBF, FORMAT_SUBJECT::STREAM, FORMAT_PART::PERIPHERY},
    {VEK_SEC_RPD_FILE_TYPE, &RPD, FORMAT_SUBJECT::FLASH_IMAGE},
    {VEK_SVF_FILE_TYPE, &SVF, FORMAT_SUBJECT::STREAM},
    {VEK_PERIPH_RPD_FILE_TYPE, &RPD, FORMAT_SUBJECT::FLASH_IMAGE, FORMAT_PART::PERIPHERY},
    {VEK_RIM_FILE_TYPE, &RIM, FORMAT_SUBJECT::MEASUREMENTS},
};
static_assert(std::is_sorted(std::begin(ROWS), std::end(ROWS),
                             [](const FORMAT_ROW& a, const FORMAT_ROW& b) { return a.type < b.type; }));
} // namespace

std::span<const FORMAT_ROW> get_format_rows()
{
    return ROWS;
}

const FORMAT_ROW* find_format_row(VEK_FILE_TYPE type)
{
    const FORMAT_ROW* const row =
        std::lower_bound(std::begin(ROWS), std::end(ROWS), type,
                         [](const FORMAT_ROW& a, VEK_FILE_TYPE b) { return a.type < b; });
    return row != std::end(ROWS) && row->type == type ? row : nullptr;
}

const FORMAT* find_format(VEK_FILE_TYPE type)
{
    const FORMAT_ROW* const row = find_format_row(type);
    return row ? row->format : nullptr;
}
