#pragma once

#include <chrono>

using Moment = std::chrono::steady_clock::time_point;

/// How long log writers are waited for. Each looks for the pruning token, opens a file, appends one
/// record and closes the file.
struct Patience {
    /// The longest that this takes a writer. Logs are waited for so long once the token stands;
    /// companions and replaced logs share as much again.
    std::chrono::milliseconds longest_write{2000};
    /// A pause for writers that have looked for the token and have not opened a file yet.
    std::chrono::milliseconds pause{5};
};
