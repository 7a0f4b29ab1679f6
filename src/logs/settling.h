#pragma once

#include <sys/types.h>

#include <chrono>

#include "base/descriptor.h"

using Moment = std::chrono::steady_clock::time_point;

/// How long log writers are waited for. Each looks for the pruning token, opens a file, appends one
/// record and closes the file.
struct Patience {
    /// Who looks has written at the latest so much later.
    std::chrono::milliseconds latest_writer{2000};
    /// What is given to those who have looked, and not opened a file yet.
    std::chrono::milliseconds pause{5};

    /// Who looks at this moment has written at the one that comes back.
    [[nodiscard]] Moment deadline() const {
        return std::chrono::steady_clock::now() + latest_writer;
    }
};

/// A file as it is when nobody is in the middle of writing to it.
struct Settled {
    off_t size;
    /// Whether somebody has the file open for writing nevertheless, and keeps it so.
    bool is_written;
};

/// Waits until nobody has the file, open here for reading only, open for writing, but not beyond
/// `deadline`. Where the system does not tell (the file is somebody else's, or its file system
/// has no leases) all of that time is waited.
Settled settle(const Descriptor& file, Moment deadline);
