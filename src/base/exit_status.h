#pragma once

namespace gatescope {

// The exit statuses of the program. Scripts and scheduled jobs depend on them.

inline constexpr int STATUS_SUCCESS = 0;
/// There is no gatebits file, or a required program cannot be run.
inline constexpr int STATUS_MISSING_PREREQUISITE = 1;
/// After an error message.
inline constexpr int STATUS_ERROR = 99;
/// The single request of a run without repetition has ended: the code of 'n'.
inline constexpr int STATUS_SINGLE_REQUEST = 'n';

}  // namespace gatescope
