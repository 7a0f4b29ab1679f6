#pragma once

#include <chrono>

namespace gatescope {

using Moment = std::chrono::steady_clock::time_point;

/// How long a pruning waits for log writers. A writer checks for the pruning token, opens a file,
/// appends one record and closes the file.
struct Patience {
    /// For writers of the logs, after the token is created. After its removal: half as long for
    /// writers of companions, then half as long for writers of replaced logs.
    std::chrono::milliseconds writer_timeout{2000};
    /// For writers that have checked for the token and have not opened a file yet.
    std::chrono::milliseconds pause{5};
};

}  // namespace gatescope
