#pragma once

#include "policy/region.h"

namespace gatescope {

/// Which of gatescope's own settings the guided walks ask for: the UNIX checker, or all eight.
enum class SettingsAsked { IMPORTANT, ALL };

/// Prompts for them one after the other; a cancelled or aborted one is left as it is. The region's
/// settings are loaded again after each change.
void ask_all_configure(SettingsAsked mode, RegionSettings* region);

}  // namespace gatescope
