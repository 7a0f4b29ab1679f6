#pragma once

namespace gatescope {

/// Runs gatescope-history with the arguments of main. The exit status: 0 or 1 as its usage says, 2
/// for words that it does not know. Errors gripe.
int run_history_program(int argument_count, char** arguments);

}  // namespace gatescope
