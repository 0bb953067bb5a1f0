#include "param_table.h"

#include "param_rows_flash.h"
#include "param_rows_input.h"
#include "param_rows_output.h"

#include <algorithm>

namespace
{

// By value and not by pointer: GCC 12 takes no comparison of pointers for a constant under the sanitizers.
using TABLE = std::array<PARAM_ROW, VEK_CMD_PARAM_MAX>;

template <class VISIT>
constexpr void for_each_row(VISIT visit)
{
    for (const PARAM_ROW& row : PARAM_ROWS_INPUT) {
        visit(row);
    }
    for (const PARAM_ROW& row : PARAM_ROWS_OUTPUT) {
        visit(row);
    }
    for (const PARAM_ROW& row : PARAM_ROWS_FLASH) {
        visit(row);
    }
}

constexpr TABLE make_table()
{
    TABLE table{};
    for_each_row([&table](const PARAM_ROW& row) { table.at(row.param) = row; });
    return table;
}

constexpr TABLE TABLE_BY_PARAM = make_table();

constexpr bool every_param_has_one_row()
{
    std::array<unsigned, VEK_CMD_PARAM_MAX> rows{};
    for_each_row([&rows](const PARAM_ROW& row) { ++rows.at(row.param); });
    return std::ranges::all_of(rows, [](unsigned count) { return count == 1; });
}

static_assert(every_param_has_one_row());

constexpr bool exclusions_are_symmetric()
{
    return std::ranges::all_of(TABLE_BY_PARAM, [](const PARAM_ROW& row) {
        return std::ranges::all_of(row.excludes, [&row](PGM_COMMON_XML_VEK_CMD_PARAM_ENUM other) {
            return other != row.param && TABLE_BY_PARAM.at(other).excludes.contains(row.param);
        });
    });
}

static_assert(exclusions_are_symmetric());

/// Whether a walk from `param` to its parents ends within `steps`.
constexpr bool ancestry_ends(PGM_COMMON_XML_VEK_CMD_PARAM_ENUM param, unsigned steps)
{
    return steps != 0 && std::ranges::all_of(TABLE_BY_PARAM.at(param).parents,
                                             [steps](PGM_COMMON_XML_VEK_CMD_PARAM_ENUM parent) {
                                                 return ancestry_ends(parent, steps - 1);
                                             });
}

static_assert(std::ranges::all_of(TABLE_BY_PARAM,
                                  [](const PARAM_ROW& row) { return ancestry_ends(row.param, 8); }),
              "no parameter depends on itself");

} // namespace

const PARAM_ROW* find_param_row(PGM_COMMON_XML_VEK_CMD_PARAM_ENUM param)
{
    return param < TABLE_BY_PARAM.size() ? &TABLE_BY_PARAM[param] : nullptr;
}
