#pragma once

// The one orderly way out of the process.

/// Removes the temporary files that are left and ends the process with `status`, or with 99 when
/// standard output could not be written.
[[noreturn]] void clean_exit(int status);
