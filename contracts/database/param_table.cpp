#include "param_table.h"

#include "param_rows_flash.h"
#include "param_rows_input.h"
#include "param_rows_output.h"

#include <algorithm>

namespace
{

static_assert(PARAM_ROWS_INPUT.size() + PARAM_ROWS_OUTPUT.size() + PARAM_ROWS_FLASH.size() ==
                  VEK_CMD_PARAM_MAX,
              "one row per parameter");

using INDEX = std::array<const PARAM_ROW*, VEK_CMD_PARAM_MAX>;

constexpr INDEX make_index()
{
    INDEX index{};
    const auto enter = [&index](const auto& rows) {
        for (const PARAM_ROW& row : rows) {
            index.at(row.param) = &row;
        }
    };
    enter(PARAM_ROWS_INPUT);
    enter(PARAM_ROWS_OUTPUT);
    enter(PARAM_ROWS_FLASH);
    return index;
}

constexpr INDEX INDEX_BY_PARAM = make_index();

// With as many rows as parameters, no gap means that no parameter has two rows.
static_assert(std::ranges::find(INDEX_BY_PARAM, nullptr) == INDEX_BY_PARAM.end(), "no parameter twice");

constexpr bool exclusions_are_symmetric()
{
    return std::ranges::all_of(INDEX_BY_PARAM, [](const PARAM_ROW* row) {
        return std::ranges::all_of(row->excludes, [row](PGM_COMMON_XML_VEK_CMD_PARAM_ENUM other) {
            return other != row->param && INDEX_BY_PARAM.at(other)->excludes.contains(row->param);
        });
    });
}

static_assert(exclusions_are_symmetric());

/// Whether a walk from `param` to its parents ends within `steps`.
constexpr bool ancestry_ends(PGM_COMMON_XML_VEK_CMD_PARAM_ENUM param, unsigned steps)
{
    return steps != 0 && std::ranges::all_of(INDEX_BY_PARAM.at(param)->parents,
                                             [steps](PGM_COMMON_XML_VEK_CMD_PARAM_ENUM parent) {
                                                 return ancestry_ends(parent, steps - 1);
                                             });
}

static_assert(std::ranges::all_of(INDEX_BY_PARAM,
                                  [](const PARAM_ROW* row) { return ancestry_ends(row->param, 8); }),
              "no parameter depends on itself");

} // namespace

const PARAM_ROW* find_param_row(PGM_COMMON_XML_VEK_CMD_PARAM_ENUM param)
{
    return param < INDEX_BY_PARAM.size() ? INDEX_BY_PARAM[param] : nullptr;
}
