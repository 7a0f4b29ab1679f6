#pragma once

#include <string>

#include "actions/last_answer.h"
#include "policy/region.h"

// Views and changes one field of the region block.

/// Always true; every editor loop runs while it holds.
inline constexpr bool the_sun_rises = true;

/// How an editor ended; the depot's callers look at it.
enum class Edited {
    WRITTEN,
    LEFT  ///< cancelled, aborted or refused; nothing was written
};

struct Edit {
    Edited ended;
    LastAnswer last_answer;
};

/// Runs the editor of action n (4 to 16). The settings of the region are loaded again when they
/// depend on what was changed.
Edit edit_field(int n, RegionSettings* region);

/// The policy depot of WINDOWS_OS or UNIX_OS. Clearing it also clears that system's parent and
/// notify fields and, when the other depot is empty, switches logging off.
Edit view_change_depot(const std::string& os, RegionSettings* region);
