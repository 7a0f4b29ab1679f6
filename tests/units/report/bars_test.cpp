#include "report/bars.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

constexpr std::uint32_t LARGEST = std::numeric_limits<std::uint32_t>::max();

TEST(BarHeight, NoCountHasNoBarAndNeedsNoScale) {
    EXPECT_EQ(bar_height(0, 0), 0);
    EXPECT_EQ(bar_height(0, 7), 0);
}

TEST(BarHeight, TheLargestCountFillsTheColumn) {
    EXPECT_EQ(bar_height(1, 1), 100);
    EXPECT_EQ(bar_height(977, 977), 100);
}

TEST(BarHeight, IsTruncated) {
    EXPECT_EQ(bar_height(2, 3), 66);
    EXPECT_EQ(bar_height(999, 1000), 99);
    EXPECT_EQ(bar_height(19, 1000), 1);
    EXPECT_EQ(bar_height(20, 1000), 2);
}

TEST(BarHeight, AnyCountShowsAPixel) {
    EXPECT_EQ(bar_height(1, 1000), 1);
    EXPECT_EQ(bar_height(1, LARGEST), 1);
}

TEST(BarHeight, LargeCountsDoNotOverflow) {
    EXPECT_EQ(bar_height(LARGEST, LARGEST), 100);
    EXPECT_EQ(bar_height(LARGEST / 2, LARGEST), 49);
    EXPECT_EQ(bar_height(50000000, 100000000), 50);
}

TEST(BarWidth, NoCountStillShowsAPixelAndNeedsNoScale) {
    EXPECT_EQ(bar_width(0, 0), 1);
    EXPECT_EQ(bar_width(0, 9), 1);
}

TEST(BarWidth, IsTruncatedAndAtLeastAPixel) {
    EXPECT_EQ(bar_width(1, 1), 400);
    EXPECT_EQ(bar_width(2, 3), 266);
    EXPECT_EQ(bar_width(1, 401), 1);
    EXPECT_EQ(bar_width(399, 400), 399);
    EXPECT_EQ(bar_width(LARGEST / 2, LARGEST), 199);
}

TEST(Percentages, ADayWithoutCommandsHasNone) {
    EXPECT_EQ(percentages(0, 0).allowed, 0);
    EXPECT_EQ(percentages(0, 0).denied, 0);
}

TEST(Percentages, WholeOnesStay) {
    EXPECT_EQ(percentages(1, 1).allowed, 50);
    EXPECT_EQ(percentages(1, 1).denied, 50);
    EXPECT_EQ(percentages(1, 0).allowed, 100);
    EXPECT_EQ(percentages(1, 0).denied, 0);
    EXPECT_EQ(percentages(0, 3).denied, 100);
}

TEST(Percentages, TheMissingPointGoesToTheLargerRemainder) {
    EXPECT_EQ(percentages(1, 2).allowed, 33);
    EXPECT_EQ(percentages(1, 2).denied, 67);
    EXPECT_EQ(percentages(2, 1).allowed, 67);
    EXPECT_EQ(percentages(2, 1).denied, 33);
}

TEST(Percentages, OfEqualRemaindersTheDeniedOnesGetThePoint) {
    EXPECT_EQ(percentages(3, 5).allowed, 37);
    EXPECT_EQ(percentages(3, 5).denied, 63);
    EXPECT_EQ(percentages(5, 3).allowed, 62);
    EXPECT_EQ(percentages(5, 3).denied, 38);
}

TEST(Percentages, LargeCountsDoNotOverflow) {
    EXPECT_EQ(percentages(LARGEST, LARGEST).allowed, 50);
    EXPECT_EQ(percentages(LARGEST, 0).allowed, 100);
}

}  // namespace
