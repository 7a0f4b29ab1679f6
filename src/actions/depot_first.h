#pragma once

#include <string>

#include "policy/gatebits.h"

namespace gatescope {

/// The policy depot of WINDOWS_OS or UNIX_OS in the gatebits file.
std::string depot_of(const Gatebits& gatebits, const std::string& os);

/// The question whether to define the depot of `os` first, because `entry` (the name of a field)
/// needs it; empty when it is defined. The depot of this system must also be an existing directory.
std::string question_for_missing_depot(const Gatebits& gatebits, const std::string& entry,
                                       const std::string& os);

}  // namespace gatescope
