#pragma once

#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>

namespace gatescope {

// Replaces fsync of the C library. At most one source of a test program may include this.

/// The number of calls of fsync that succeed before one fails; negative: all succeed.
inline int good_syncs = -1;

/// Fails with EIO when no successful call is left.
extern "C" int fsync(int file) {
    if (good_syncs-- != 0) return static_cast<int>(syscall(SYS_fsync, file));
    errno = EIO;
    return -1;
}

}  // namespace gatescope
