#pragma once

namespace gatescope {

/// Shows the program's name and version and ends the process with status 0.
[[noreturn]] void show_about();

/// Tries every kind of dialog and ClearCase's command-line tool, reports the results and ends the
/// process: status 0, or 1 when one of the two programs cannot be run.
[[noreturn]] void general_test();

}  // namespace gatescope
