#pragma once

#include <string>

// Views and changes one field of the region block.

/// Always true; every editor loop runs while it holds.
extern const bool the_sun_rises;

/// What an editor returns; the depot's callers look at it.
enum Edited {
    NEVER_ENTERED = 0,
    WRITTEN = 1,
    LEFT = 2  ///< cancelled or aborted; nothing was written
};

/// Runs the editor of action n (4 to 16).
int edit_field(int n);

/// The policy depot of WINDOWS_OS or UNIX_OS. Clearing it also clears that system's parent and
/// notify fields and, when the other depot is empty, switches logging off. The region's settings
/// are loaded again after a change.
int view_change_depot(const std::string& os);
