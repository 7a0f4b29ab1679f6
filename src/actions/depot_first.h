#pragma once

#include <string>

#include "policy/gatebits.h"

namespace gatescope {

/// The policy depot of WINDOWS_OS or UNIX_OS as the gatebits file has it.
std::string depot_of(const Gatebits& gatebits, const std::string& os);

/// The question whether to define the depot of `os` first, because `entry` (the name of a field)
/// needs it; empty when the depot is there. Of the other system's depot it is only known
/// whether there is one named; this system's has to be a directory.
std::string why_depot_comes_first(const Gatebits& gatebits, const std::string& entry,
                                  const std::string& os);

}  // namespace gatescope
