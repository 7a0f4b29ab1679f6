#pragma once

#include "policy/region.h"

/// Which of gatescope's own settings the guided walks ask for.
inline constexpr char IMPORTANT_SETTINGS = 'M';
inline constexpr char ALL_SETTINGS = 'A';

/// Prompts for the important setting (the UNIX checker) or for all eight, one after the other; a
/// cancelled or aborted one is left as it is. The region's settings are loaded again after each
/// change. Any other mode gripes.
void ask_all_configure(char mode, RegionSettings* region);
