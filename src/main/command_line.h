#pragma once

#include <string>
#include <vector>

/// Acts on the options that make sense only as the sole argument (-ver, -help, ...); each of them
/// ends the process. `arguments` do not include the program's name.
void obey_sole_option(const std::vector<std::string>& arguments);

/// Checks every argument, in order, and fills the selections from it. The first fault ends the
/// process through gripe, and nothing is done.
void parse_arguments(std::vector<std::string> arguments);

/// Settles which gatebits file to use when the arguments named no readable one: the environment's,
/// or a new or another one as the operator answers. Ends the process with status 1 when the
/// operator gives up.
void choose_gatebits_file();
