#pragma once

#include <chrono>

namespace gatescope {

using Moment = std::chrono::steady_clock::time_point;

/// How long log writers are waited for. Each looks for the pruning token, opens a file, appends one
/// record and closes the file.
struct Patience {
    /// How long logs are waited for, once the token stands. After it companions, and then logs that
    /// were replaced, are waited for half as long each.
    std::chrono::milliseconds longest_write{2000};
    /// A pause for writers that have looked for the token and have not opened a file yet.
    std::chrono::milliseconds pause{5};
};

}  // namespace gatescope
