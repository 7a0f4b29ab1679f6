#pragma once

#include <cstdint>

namespace gatescope {

// How long a bar a count asks for, and the shares of a day. Nothing is divided by a count of 0.

/// Pixels of a full bar: in a time graph (upwards or downwards) and in a bar list.
inline constexpr int DAY_BAR_PIXELS = 100;
inline constexpr int LIST_BAR_PIXELS = 400;

/// Height of a day's bar for `count`, where `scale` is the largest count: 0 for none, else at
/// least one pixel.
int bar_height(std::uint32_t count, std::uint32_t scale);

/// Width of a row's bar for `count`, where `scale` is the largest count: at least one pixel, even
/// for none.
int bar_width(std::uint32_t count, std::uint32_t scale);

/// Whole percentages of a day's allowed and denied commands: together 100, or both 0 on a day
/// without commands.
struct Percentages {
    int allowed;
    int denied;
};

/// A point lost by rounding goes to the one that lost more, to the denied ones when both lost the
/// same.
Percentages percentages(std::uint32_t allowed, std::uint32_t denied);

}  // namespace gatescope
