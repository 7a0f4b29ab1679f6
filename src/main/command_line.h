#pragma once

#include <string>
#include <vector>

#include "queries/options.h"

namespace gatescope {

/// Runs an option that is valid as the only argument (-ver, -help, ...) and ends the process.
/// `arguments` do not include the program's name.
void run_sole_option(const std::vector<std::string>& arguments);

/// Parses all arguments in order. Gripes about the first invalid one.
Options parse_arguments(std::vector<std::string> arguments);

}  // namespace gatescope
