#include "enum_set.h"

#include <gtest/gtest.h>

namespace
{

enum COLOUR : unsigned { RED = 0, GREEN = 63, BLUE = 64, WHITE = 127, OUTSIDE = 128, FAR_OUTSIDE = 65535 };
using COLOURS = ENUM_SET<COLOUR, 128>;

TEST(enum_set, members_come_in_ascending_order_across_words)
{
    EXPECT_EQ((COLOURS{WHITE, BLUE, RED, GREEN}.members()), (std::vector<COLOUR>{RED, GREEN, BLUE, WHITE}));
}

TEST(enum_set, a_value_beyond_the_limit_is_no_member)
{
    const COLOURS all = COLOURS{RED, GREEN, BLUE, WHITE};
    EXPECT_FALSE(all.contains(OUTSIDE));
    EXPECT_FALSE(all.contains(FAR_OUTSIDE));
}

TEST(enum_set, a_value_beyond_the_limit_cannot_be_inserted)
{
    COLOURS colours;
    EXPECT_THROW(colours.insert(OUTSIDE), std::out_of_range);
}

TEST(enum_set, the_operators_are_those_of_sets)
{
    const COLOURS left{RED, BLUE};
    const COLOURS right{BLUE, WHITE};
    EXPECT_EQ(left | right, (COLOURS{RED, BLUE, WHITE}));
    EXPECT_EQ(left & right, (COLOURS{BLUE}));
    EXPECT_EQ(left - right, (COLOURS{RED}));
    EXPECT_TRUE((left - left).empty());
}

TEST(short_list, keeps_the_order_in_which_it_was_written)
{
    const SHORT_LIST<COLOUR, 4> list{WHITE, RED, BLUE};
    EXPECT_EQ(list.members(), (std::vector<COLOUR>{WHITE, RED, BLUE}));
    EXPECT_TRUE(list.contains(RED));
    EXPECT_FALSE(list.contains(GREEN));
}

} // namespace
