#pragma once

#include <chrono>

using Moment = std::chrono::steady_clock::time_point;

/// How long log writers are waited for. Each looks for the pruning token, opens a file, appends one
/// record and closes the file.
struct Patience {
    /// A writer that looks for the token now has written when this time is over.
    std::chrono::milliseconds latest_writer{2000};
    /// A pause for writers that have looked for the token, and have not opened a file yet.
    std::chrono::milliseconds pause{5};

    /// The moment when all writers have written that look for the token now, or before.
    [[nodiscard]] Moment deadline() const {
        return std::chrono::steady_clock::now() + latest_writer;
    }
};
