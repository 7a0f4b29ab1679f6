#include "actions/picks.h"

#include <gtest/gtest.h>

namespace gatescope {
namespace {

TEST(Picks, NumberIsAtTheFront) {
    EXPECT_EQ(number_at_front("007 key"), 7);
    EXPECT_EQ(number_at_front("12"), 12);
    EXPECT_EQ(number_at_front("3x"), 3);
    EXPECT_EQ(number_at_front("2147483647"), 2147483647);
}

TEST(Picks, HaveNoNumberWithoutOneAtTheFrontOrAboveInt) {
    for (const char* pick :
         {"", "x1", " 1", "-1", "+1", "2147483648", "99999999999999999999999999"}) {
        EXPECT_EQ(number_at_front(pick), std::nullopt) << pick;
    }
}

}  // namespace
}  // namespace gatescope
