#pragma once

#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>

namespace gatescope {

// A disk that fails when it matters. One file of a test program may include this.

/// How many calls of fsync are good before one fails; a number below 0 stands for all.
inline int good_syncs = -1;

/// Takes the place of the C library's.
extern "C" int fsync(int file) {
    if (good_syncs-- != 0) return static_cast<int>(syscall(SYS_fsync, file));
    errno = EIO;
    return -1;
}

}  // namespace gatescope
