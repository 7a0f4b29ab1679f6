#pragma once

#include "policy/region.h"

namespace gatescope {

/// The settings of gatescope that a guided walk asks for: the UNIX checker, or all eight.
enum class SettingsAsked { IMPORTANT, ALL };

/// Prompts for each; a cancelled or aborted one stays unchanged. The region's settings are reloaded
/// after each change.
void ask_all_configure(SettingsAsked mode, RegionSettings* region);

}  // namespace gatescope
