#include "report/bars.h"

#include <algorithm>

namespace gatescope {
namespace {

/// The share of `count` in `scale` of `full` pixels, at least 1. Count and scale are 32-bit
/// numbers, so the product cannot overflow.
int length(std::uint64_t count, std::uint64_t scale, int full) {
    return std::max(static_cast<int>(count * static_cast<std::uint64_t>(full) / scale), 1);
}

}  // namespace

int bar_height(std::uint32_t count, std::uint32_t scale) {
    return count == 0 ? 0 : length(count, scale, DAY_BAR_PIXELS);
}

int bar_width(std::uint32_t count, std::uint32_t scale) {
    return count == 0 ? 1 : length(count, scale, LIST_BAR_PIXELS);
}

Percentages percentages(std::uint32_t allowed, std::uint32_t denied) {
    const std::uint64_t total = std::uint64_t{allowed} + denied;
    if (total == 0) return {0, 0};
    const std::uint64_t allowed_hundredfold = std::uint64_t{allowed} * 100;
    const std::uint64_t denied_hundredfold = std::uint64_t{denied} * 100;
    Percentages shares = {static_cast<int>(allowed_hundredfold / total),
                          static_cast<int>(denied_hundredfold / total)};
    if (shares.allowed + shares.denied == 100) return shares;
    if (allowed_hundredfold % total > denied_hundredfold % total) {
        ++shares.allowed;
    } else {
        ++shares.denied;
    }
    return shares;
}

}  // namespace gatescope
