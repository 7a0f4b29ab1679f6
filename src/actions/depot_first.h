#pragma once

#include <string>

#include "actions/run.h"

/// What make_depot_first_if_needed says.
enum class DepotFirst { IS_THERE, NOW_DEFINED, MISSING };

struct DepotNeeded {
    DepotFirst depot;
    LastAnswer last_answer;
};

/// Lets the operator define the depot of `os` (WINDOWS_OS or UNIX_OS) where `entry`, the name of
/// what needs it, cannot do without. Of the other system's depot it is only known whether there
/// is one named; this system's has to be a directory.
DepotNeeded make_depot_first_if_needed(const std::string& entry, const std::string& os);
