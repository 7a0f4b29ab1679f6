#pragma once

#include <cstdint>

namespace gatescope {

// The lengths of bars, and the percentages of a day. A scale of 0 is allowed with a count of 0.

/// Pixels of a full bar in a time graph (upwards or downwards) and in a bar list.
inline constexpr int DAY_BAR_PIXELS = 100;
inline constexpr int LIST_BAR_PIXELS = 400;

/// Height of a day's bar in pixels, where `scale` is the largest count: 0 for a count of 0, else at
/// least 1.
int bar_height(std::uint32_t count, std::uint32_t scale);

/// Width of a row's bar in pixels, where `scale` is the largest count: at least 1, even for a count
/// of 0.
int bar_width(std::uint32_t count, std::uint32_t scale);

/// Whole percentages of a day's allowed and denied commands. Their sum is 100, or 0 for a day
/// without commands.
struct Percentages {
    int allowed;
    int denied;
};

/// A point lost by truncation is added to the percentage that lost more, or to `denied` if both
/// lost the same.
Percentages percentages(std::uint32_t allowed, std::uint32_t denied);

}  // namespace gatescope
