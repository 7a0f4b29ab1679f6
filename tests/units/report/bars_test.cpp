#include "report/bars.h"

#include <gtest/gtest.h>

#include <limits>

namespace gatescope {
namespace {

constexpr std::uint32_t LARGEST = std::numeric_limits<std::uint32_t>::max();

struct Bar {
    const char* name;
    std::uint32_t count;
    std::uint32_t scale;
    int height;
    int width;
};

constexpr Bar BARS[] = {
    {"count and scale of 0", 0, 0, 0, 1},
    {"count of 0", 0, 9, 0, 1},
    {"full bar of one", 1, 1, 100, 400},
    {"full bar of many", 977, 977, 100, 400},
    {"truncated", 2, 3, 66, 266},
    {"truncated just below full", 999, 1000, 99, 399},
    {"truncated to a pixel", 19, 1000, 1, 7},
    {"two pixels", 20, 1000, 2, 8},
    {"less than a pixel", 1, 1000, 1, 1},
    {"smallest share", 1, LARGEST, 1, 1},
    {"largest numbers", LARGEST, LARGEST, 100, 400},
    {"half of the largest number", LARGEST / 2, LARGEST, 49, 199},
    {"product beyond 32 bits", 50000000, 100000000, 50, 200},
};

TEST(Bars, AreTruncatedToAtLeastAPixel) {
    for (const Bar& bar : BARS) {
        EXPECT_EQ(bar_height(bar.count, bar.scale), bar.height) << bar.name;
        EXPECT_EQ(bar_width(bar.count, bar.scale), bar.width) << bar.name;
    }
}

struct Day {
    const char* name;
    std::uint32_t allowed;
    std::uint32_t denied;
    int allowed_percent;
    int denied_percent;
};

constexpr Day DAYS[] = {
    {"no commands", 0, 0, 0, 0},
    {"whole percentages", 1, 1, 50, 50},
    {"only allowed", 1, 0, 100, 0},
    {"only denied", 0, 3, 0, 100},
    {"denied have the larger remainder", 1, 2, 33, 67},
    {"allowed have the larger remainder", 2, 1, 67, 33},
    {"equal remainders, more denied", 3, 5, 37, 63},
    {"equal remainders, fewer denied", 5, 3, 62, 38},
    {"largest numbers", LARGEST, LARGEST, 50, 50},
    {"largest number of allowed only", LARGEST, 0, 100, 0},
};

TEST(Percentages, AddUpToAHundred) {
    for (const Day& day : DAYS) {
        const Percentages shares = percentages(day.allowed, day.denied);
        EXPECT_EQ(shares.allowed, day.allowed_percent) << day.name;
        EXPECT_EQ(shares.denied, day.denied_percent) << day.name;
    }
}

}  // namespace
}  // namespace gatescope
