#pragma once

namespace gatescope {

// The statuses that the program ends with. Scripts and scheduled jobs know them.

inline constexpr int STATUS_OF_A_WISHED_END = 0;
/// There is no gatebits file, or no program for the dialogs, to work with.
inline constexpr int STATUS_WITHOUT_MEANS = 1;
/// The operator has been told.
inline constexpr int STATUS_OF_AN_ERROR = 99;
/// The one request of a run that is not repeated has ended: the code of 'n'.
inline constexpr int STATUS_OF_ONE_REQUEST = 'n';

}  // namespace gatescope
