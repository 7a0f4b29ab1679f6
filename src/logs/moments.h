#pragma once

#include <chrono>

// Waiting for log writers. Each opens a file, appends one record and closes the file, at the
// latest LATEST_WRITER after it has looked for the pruning token.

using Moment = std::chrono::steady_clock::time_point;

/// Who looks at this moment has written at the one that comes back.
Moment when_writers_have_written();

/// Gives those who have looked, and not opened a file yet, the time to do so.
void short_pause();
