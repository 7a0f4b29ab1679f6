#pragma once

#include <string>
#include <vector>

#include "queries/options.h"

namespace gatescope {

/// Acts on the options that make sense only as the sole argument (-ver, -help, ...); each of them
/// ends the process. `arguments` do not include the program's name.
void obey_sole_option(const std::vector<std::string>& arguments);

/// Checks every argument, in order, and returns what they ask for. The first fault ends the process
/// through gripe, and nothing is done.
Options parse_arguments(std::vector<std::string> arguments);

}  // namespace gatescope
