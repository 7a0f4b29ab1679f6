#pragma once

#include <sys/types.h>

#include <chrono>

#include "base/descriptor.h"

namespace gatescope {

/// What the system tells about the processes that have a file open for writing.
enum class Writers {
    NONE,
    UNKNOWN,  ///< the file is another user's, or its file system has no leases
    SOME      ///< at least one process had it open until the deadline
};

struct Settled {
    /// 0, or why the file cannot be examined: an errno.
    int error;
    off_t size;
    Writers writers;
};

/// Waits until no process has `file`, open here for reading only, open for writing, but not beyond
/// `deadline`. Where the system does not tell, all of that time is waited.
Settled settle(const Descriptor& file, std::chrono::steady_clock::time_point deadline);

}  // namespace gatescope
