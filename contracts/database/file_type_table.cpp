#include "file_type_table.h"

#include "mode_table.h"

#include <algorithm>

namespace
{

constexpr std::size_t NO_ROW = FILE_TYPE_TABLE.size();

using INDEX = std::array<std::size_t, VEK_INVALID_FILE_TYPE>;

constexpr INDEX make_index()
{
    INDEX index{};
    index.fill(NO_ROW);
    for (std::size_t row = 0; row < FILE_TYPE_TABLE.size(); ++row) {
        index.at(FILE_TYPE_TABLE[row].type) = row; // a row above 31 does not compile
    }
    return index;
}

constexpr INDEX INDEX_BY_TYPE = make_index();

static_assert(INDEX_BY_TYPE.size() - static_cast<std::size_t>(std::ranges::count(INDEX_BY_TYPE, NO_ROW)) ==
                  FILE_TYPE_TABLE.size(),
              "no type twice");

constexpr bool words_are_unique()
{
    for (const FILE_TYPE_ROW& row : FILE_TYPE_TABLE) {
        if (std::ranges::count(FILE_TYPE_TABLE, row.word, &FILE_TYPE_ROW::word) != 1) {
            return false;
        }
    }
    return true;
}

static_assert(words_are_unique());

constexpr bool modes_stand_at_their_value()
{
    for (std::size_t i = 0; i < MODE_TABLE.size(); ++i) {
        if (MODE_TABLE[i].mode != i) {
            return false;
        }
    }
    return true;
}

static_assert(modes_stand_at_their_value());

} // namespace

const FILE_TYPE_ROW* find_file_type_row(VEK_FILE_TYPE type)
{
    const std::size_t row = type < INDEX_BY_TYPE.size() ? INDEX_BY_TYPE[type] : NO_ROW;
    return row != NO_ROW ? &FILE_TYPE_TABLE[row] : nullptr;
}
