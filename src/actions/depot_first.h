#pragma once

#include <string>

/// What make_depot_first_if_needed says.
enum DepotFirst { DEPOT_IS_THERE = 0, DEPOT_NOW_DEFINED = 1, NO_DEPOT = 2 };

/// Lets the operator define the depot of `os` (WINDOWS_OS or UNIX_OS) where `entry`, the name of
/// what needs it, cannot do without. Of the other system's depot it is only known whether there
/// is one named; this system's has to be a directory.
int make_depot_first_if_needed(const std::string& entry, const std::string& os);
