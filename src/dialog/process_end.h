#pragma once

namespace gatescope {

// The one orderly way out of the process.

/// Removes the temporary files that are left and ends the process with `status`, or with
/// STATUS_OF_AN_ERROR when standard output could not be written.
[[noreturn]] void clean_exit(int status);

/// `status`; but STATUS_OF_AN_ERROR, after a line on standard error with the reason, when something
/// that was meant for standard output could not be written.
int status_with_output_written(int status);

}  // namespace gatescope
