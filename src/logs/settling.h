#pragma once

#include <sys/types.h>

#include "base/descriptor.h"
#include "logs/patience.h"

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
