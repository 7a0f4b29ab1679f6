#pragma once

namespace gatescope {

// The end of the process.

/// Removes the remaining temporary files and ends the process with status_with_output_written.
[[noreturn]] void clean_exit(int status);

/// `status`; or STATUS_ERROR, after a line with the reason on standard error, when writing to
/// standard output has failed.
int status_with_output_written(int status);

}  // namespace gatescope
