#pragma once

namespace gatescope {

/// Shows what this program is and ends the process with status 0.
[[noreturn]] void show_about();

/// Tries every kind of dialog and ClearCase's command-line tool, reports what came back and ends
/// the process: status 0, or 1 when one of the two tools cannot be used.
[[noreturn]] void general_test();

}  // namespace gatescope
