#pragma once

#include <sys/stat.h>

#include <chrono>

#include "base/descriptor.h"

namespace gatescope {

/// Whether processes have a file open for writing.
enum class Writers {
    NONE,
    UNKNOWN,  ///< the file is another user's, or its file system has no leases
    PRESENT   ///< at least one process had it open until the deadline
};

/// The result of wait_for_writers.
struct WriterCheck {
    /// 0 or an errno of fstat.
    int error;
    /// All 0 with an error.
    struct stat status;
    Writers writers;
};

/// Waits until no process has `file` open for writing, at most until `deadline`; always until
/// `deadline` where leases are unavailable. `file` must be open for reading only.
WriterCheck wait_for_writers(const Descriptor& file,
                             std::chrono::steady_clock::time_point deadline);

}  // namespace gatescope
