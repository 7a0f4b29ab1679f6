#pragma once

#include <sys/types.h>

#include <chrono>

// Waiting for log writers. Each opens a file, appends one record and closes the file, at the
// latest LATEST_WRITER after it has looked for the pruning token.

using Moment = std::chrono::steady_clock::time_point;

/// Who looks at this moment has written at the one that comes back.
Moment when_writers_have_written();

/// Gives those who have looked, and not opened a file yet, the time to do so.
void short_pause();

/// A file as it is when nobody is in the middle of writing to it.
struct Settled {
    off_t size;
    /// Whether somebody has the file open for writing nevertheless, and keeps it so.
    bool is_written;
};

/// Waits until nobody has the file, open here for reading only, open for writing, but not beyond
/// `deadline`. Where the system does not tell (the file is somebody else's, or its file system
/// has no leases) all of that time is waited.
Settled settle(int file, Moment deadline);
