#include "report/bars.h"

#include <gtest/gtest.h>

#include <limits>

namespace gatescope {
namespace {

constexpr std::uint32_t LARGEST = std::numeric_limits<std::uint32_t>::max();

struct Bar {
    const char* what;
    std::uint32_t count;
    std::uint32_t scale;
    int height;
    int width;
};

constexpr Bar BARS[] = {
    {"no count needs no scale", 0, 0, 0, 1},
    {"no count has no height and a pixel of width", 0, 9, 0, 1},
    {"the largest count is a full bar", 1, 1, 100, 400},
    {"and so are larger ones", 977, 977, 100, 400},
    {"truncated", 2, 3, 66, 266},
    {"truncated just below full", 999, 1000, 99, 399},
    {"truncated to a pixel", 19, 1000, 1, 7},
    {"two pixels", 20, 1000, 2, 8},
    {"any count shows a pixel", 1, 1000, 1, 1},
    {"even the smallest share", 1, LARGEST, 1, 1},
    {"the largest numbers do not overflow", LARGEST, LARGEST, 100, 400},
    {"nor their halves", LARGEST / 2, LARGEST, 49, 199},
    {"a product beyond 32 bits", 50000000, 100000000, 50, 200},
};

TEST(Bars, AreTruncatedAndAtLeastAPixel) {
    for (const Bar& bar : BARS) {
        EXPECT_EQ(bar_height(bar.count, bar.scale), bar.height) << bar.what;
        EXPECT_EQ(bar_width(bar.count, bar.scale), bar.width) << bar.what;
    }
}

struct Day {
    const char* what;
    std::uint32_t allowed;
    std::uint32_t denied;
    int allowed_percent;
    int denied_percent;
};

constexpr Day DAYS[] = {
    {"a day without commands", 0, 0, 0, 0},
    {"whole percentages", 1, 1, 50, 50},
    {"only allowed", 1, 0, 100, 0},
    {"only denied", 0, 3, 0, 100},
    {"the lost point goes to the larger remainder", 1, 2, 33, 67},
    {"whichever has it", 2, 1, 67, 33},
    {"of equal remainders to the denied ones", 3, 5, 37, 63},
    {"also where these are fewer", 5, 3, 62, 38},
    {"the largest numbers do not overflow", LARGEST, LARGEST, 50, 50},
    {"nor beside none", LARGEST, 0, 100, 0},
};

TEST(Percentages, MakeAHundredTogether) {
    for (const Day& day : DAYS) {
        const Percentages shares = percentages(day.allowed, day.denied);
        EXPECT_EQ(shares.allowed, day.allowed_percent) << day.what;
        EXPECT_EQ(shares.denied, day.denied_percent) << day.what;
    }
}

}  // namespace
}  // namespace gatescope
