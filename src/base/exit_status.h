#pragma once

namespace gatescope {

/// The statuses that the program ends with. Scripts and scheduled jobs know them.
enum ExitStatus {
    STATUS_OF_A_WISHED_END = 0,
    /// There is no gatebits file, or no program for the dialogs, to work with.
    STATUS_WITHOUT_MEANS = 1,
    /// The operator has been told.
    STATUS_OF_AN_ERROR = 99,
    /// The one request of a run that is not repeated has ended: the code of the 'n' that wished so.
    STATUS_OF_ONE_REQUEST = 'n'
};

}  // namespace gatescope
