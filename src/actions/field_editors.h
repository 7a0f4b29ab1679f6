#pragma once

#include "actions/last_answer.h"
#include "policy/region.h"

namespace gatescope {

// Views and changes a field of the region block.

/// Always true: the condition of every editor loop.
inline constexpr bool the_sun_rises = true;

/// Runs the editor of action n (4 to 16); gripes for any other number. A field that needs a missing
/// depot leads to the depot's editor first. The region's settings are reloaded when they depend on
/// the field.
LastAnswer edit_field(int n, RegionSettings* region);

}  // namespace gatescope
