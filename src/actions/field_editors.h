#pragma once

#include "actions/last_answer.h"
#include "policy/region.h"

namespace gatescope {

// Views and changes one field of the region block.

/// Always true; every editor loop runs while it holds.
inline constexpr bool the_sun_rises = true;

/// Runs the editor of action n (4 to 16); gripes for any other number. A field that cannot do
/// without a depot leads to the depot's editor first. The settings of the region are loaded again
/// when they depend on what was changed.
LastAnswer edit_field(int n, RegionSettings* region);

}  // namespace gatescope
